#include "survey/summary.h"

#include "common/text.h"

#include <algorithm>
#include <cstdio>

namespace kova::survey {

namespace {

constexpr std::size_t FREQUENT = 10;

/// Verdicts as they are printed.
constexpr const char *PRINTED_VERDICTS[] = {"OK", "ERR", "NONE"};

std::string counted(std::uint64_t number, const char *one, const char *many) {
  return std::to_string(number) + (number == 1 ? one : many);
}

/// @return ": 2 cannot be read, 1 other version", of the reasons that occur.
std::string reasons(const Tally &tally) {
  std::string text;
  for (std::size_t i = 1; i < tally.by_reason.size(); ++i)
    if (tally.by_reason[i] != 0)
      text += (text.empty() ? " (" : ", ") + std::to_string(tally.by_reason[i]) + ' ' + REASON_TEXTS[i];
  return text.empty() ? text : text + ')';
}

/// @return "since old.json: 2 worse, 1 better, 97 same", of what occurs, as a line.
std::string changes(const Tally &tally, const std::string &baseline) {
  std::string text;
  for (const Since since : {Since::worse, Since::changed, Since::better, Since::fresh, Since::gone, Since::same})
    if (const std::uint64_t number = tally.by_since[static_cast<std::size_t>(since)]; number != 0)
      text += (text.empty() ? "" : ", ") + std::to_string(number) + ' ' + SINCE_NAMES[static_cast<std::size_t>(since)];
  return "since " + printable(baseline) + ": " + (text.empty() ? "nothing to compare" : text) + '\n';
}

/// @return "to repair: 3 can be mended, 1 cannot be mended", of the answers that occur, as a line; empty if there are
/// none.
std::string repairs(const Tally &tally) {
  std::string text;
  for (std::size_t i = static_cast<std::size_t>(Repair::mended); i < tally.by_repair.size(); ++i)
    if (tally.by_repair[i] != 0)
      text += (text.empty() ? "to repair: " : ", ") + std::to_string(tally.by_repair[i]) + ' ' + REPAIR_TEXTS[i];
  return text.empty() ? text : text + '\n';
}

/// @return "1 transformation, 2 words", of what would be undone and changed.
std::string repairCounts(const FileResult &result) {
  const std::uint64_t words = result.repair_words - result.repair_undone;
  std::string text;
  if (result.repair_undone != 0)
    text = counted(result.repair_undone, " transformation", " transformations");
  return words == 0 ? text : text + (text.empty() ? "" : ", ") + counted(words, " word", " words");
}

/// @return "can be mended (2 words), ", or another answer; empty if there is none.
std::string repairText(const FileResult &result) {
  std::string text = REPAIR_TEXTS[static_cast<std::size_t>(result.repair)];
  if (result.repair == Repair::mended)
    text += " (" + repairCounts(result) + ')';
  return text.empty() ? text : text + ", ";
}

/// Warnings do not change the verdict: of a file that is ERR, the first error is told.
const KeptFinding *toldFinding(const FileResult &result) {
  const auto error = std::find_if(result.findings.begin(), result.findings.end(),
                                  [](const KeptFinding &kept) { return kept.severity == Severity::error; });
  if (error != result.findings.end())
    return &*error;
  return result.findings.empty() ? nullptr : &result.findings.front();
}

/// What is wrong with a file, in printable lines.
struct Wrong {
  std::string text;         ///< the answer about the repair, and the number of findings or the reason
  std::string finding = {}; ///< the first one; empty if there is none
  Severity severity = Severity::error;
};

Wrong wrongOf(const FileResult &result, Show show) {
  if (result.verdict == Verdict::ok && result.counts.empty())
    return {""};
  if (result.verdict == Verdict::none)
    return {repairText(result) + REASON_TEXTS[static_cast<std::size_t>(result.reason)] +
            (result.detail.empty() ? "" : ": " + show(result.detail))};
  Wrong wrong{repairText(result) + counted(findingCount(result), " finding", " findings")};
  if (const KeptFinding *const told = toldFinding(result)) {
    // Most texts do not say which list they are about.
    const std::string text = oneLine(told->text, show), list = show(told->list);
    wrong.finding = (list.empty() || text.starts_with(list) ? "" : list + ": ") + text;
    wrong.severity = told->severity;
  }
  return wrong;
}

/// @return a word, coloured if it has a colour, and blanks up to a width.
std::string column(const Style &style, const char *colour, std::string_view word, std::size_t width) {
  return (colour == nullptr ? std::string(word) : coloured(style, colour, word)) +
         std::string(width - word.size(), ' ');
}

/// @return what a line begins with: what has become of the file, if that was asked, and its verdict.
std::string firstColumns(const FileResult &result, const Style &style) {
  constexpr std::size_t SINCE_WIDTH = 8, VERDICT_WIDTH = 6;
  constexpr const char *COLOURS[] = {nullptr, RED, YELLOW};
  const auto verdict = static_cast<std::size_t>(result.verdict);
  const Since since = result.compared.since;
  std::string text;
  if (since != Since::not_asked)
    text =
        column(style, since == Since::worse ? RED : nullptr, SINCE_NAMES[static_cast<std::size_t>(since)], SINCE_WIDTH);
  return text + (since == Since::gone ? column(style, nullptr, "-", VERDICT_WIDTH)
                                      : column(style, COLOURS[verdict], PRINTED_VERDICTS[verdict], VERDICT_WIDTH));
}

} // namespace

void count(Tally &tally, const FileResult &result) {
  for (const auto &[id, number] : result.counts) // what can fail comes first
    tally.by_finding.try_emplace(id);
  ++tally.files;
  tally.bytes += result.bytes;
  ++tally.by_verdict[static_cast<std::size_t>(result.verdict)];
  ++tally.by_reason[static_cast<std::size_t>(result.reason)];
  ++tally.by_repair[static_cast<std::size_t>(result.repair)];
  ++tally.by_since[static_cast<std::size_t>(result.compared.since)];
  tally.failing[static_cast<std::size_t>(result.verdict)] += countsForStatus(result.compared.since);
  for (const auto &[id, number] : result.counts) {
    Frequency &frequency = tally.by_finding[id];
    frequency.findings += number;
    ++frequency.files;
  }
}

Tally tallyOf(const std::vector<FileResult> &results) {
  Tally tally;
  for (const FileResult &result : results)
    count(tally, result);
  return tally;
}

std::vector<std::pair<std::string, Frequency>> mostFrequent(const Tally &tally) {
  std::vector<std::pair<std::string, Frequency>> list(tally.by_finding.begin(), tally.by_finding.end());
  std::stable_sort(list.begin(), list.end(),
                   [](const auto &a, const auto &b) { return a.second.findings > b.second.findings; });
  return list;
}

std::string whatIsWrong(const FileResult &result) {
  const Wrong wrong = wrongOf(result, printable);
  return wrong.finding.empty() ? wrong.text : wrong.text + ": " + wrong.finding;
}

std::string wasText(const Compared &compared) {
  return std::string("was ") + PRINTED_VERDICTS[static_cast<std::size_t>(compared.verdict)] +
         (compared.findings == 0 ? "" : ", " + counted(compared.findings, " finding", " findings"));
}

std::string fileLine(const FileResult &result, const Style &style) {
  const Show show = showOf(style);
  const Wrong wrong = wrongOf(result, show);
  std::string line = firstColumns(result, style) + show(result.path);
  if (!wrong.text.empty())
    line += "  " + wrong.text;
  if (result.compared.since > Since::fresh)
    line += (wrong.text.empty() ? "  (" : " (") + wasText(result.compared) + ')';
  if (!wrong.finding.empty() && !style.terminal)
    line += ": " + wrong.finding;
  else if (!wrong.finding.empty())
    line += "\n      " +
            coloured(style, wrong.severity == Severity::error ? RED : YELLOW,
                     SEVERITY_NAMES[static_cast<std::size_t>(wrong.severity)]) +
            ": " + wrong.finding;
  return line + '\n';
}

std::string summary(const Tally &tally, std::optional<double> seconds, const std::string &baseline) {
  std::string text = counted(tally.files, " file: ", " files: ") + std::to_string(tally.of(Verdict::ok)) + " OK, " +
                     std::to_string(tally.of(Verdict::err)) + " ERR, " + std::to_string(tally.of(Verdict::none)) +
                     " without verdict" + reasons(tally) + "; " + bytesText(tally.bytes);
  if (seconds) {
    char time[32];
    std::snprintf(time, sizeof time, " in %.2f s", *seconds);
    text += time;
  }
  text += '\n' + (baseline.empty() ? "" : changes(tally, baseline)) + repairs(tally);
  const auto list = mostFrequent(tally);
  if (!list.empty())
    text += list.size() > FREQUENT ? "most frequent findings:\n" : "findings:\n";
  for (std::size_t i = 0; i < std::min(list.size(), FREQUENT); ++i) {
    char line[160];
    std::snprintf(line, sizeof line, "%8llu  %-24.60s in %s\n",
                  static_cast<unsigned long long>(list[i].second.findings), printable(list[i].first).c_str(),
                  counted(list[i].second.files, " file", " files").c_str());
    text += line;
  }
  return text;
}

std::string bytesText(std::uint64_t bytes) {
  constexpr const char *UNITS[] = {"kB", "MB", "GB", "TB", "PB", "EB"};
  if (bytes < 1000)
    return counted(bytes, " byte", " bytes");
  double number = static_cast<double>(bytes) / 1000;
  std::size_t unit = 0;
  for (; number >= 999.95; number /= 1000)
    ++unit;
  char text[32];
  std::snprintf(text, sizeof text, "%.1f %s", number, UNITS[unit]);
  return text;
}

} // namespace kova::survey
