#include "survey/page.h"

#include "common/text.h"
#include "kova/version.h"
#include "survey/json_line.h"
#include "survey/json_text.h"
#include "survey/output.h"
#include "survey/page_parts.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ctime>

namespace kova::survey {

namespace {

/// Bounds of the page, so that one of 10,000 bad files is still quick to open: of each file, as many findings are shown
/// as fit, at most the first `MOST_SHOWN[0]`; the JSON report has more of them.
constexpr std::size_t SHOWN_TEXT = 240;
constexpr std::size_t FINDINGS_BYTES = 2'500'000;
static_assert(MOST_SHOWN[0] <= FIRST_FINDINGS);

/// Gives each text a number, from 0, in the order in which they come.
struct Numbers {
  std::map<std::string, std::size_t> numbers = {};
  std::vector<const std::string *> texts = {}; ///< the keys of `numbers`
};

std::size_t numberOf(Numbers &numbers, const std::string &text) {
  const auto [at, added] = numbers.numbers.try_emplace(text, numbers.texts.size());
  if (added)
    numbers.texts.push_back(&at->first);
  return at->second;
}

struct Page {
  Output to;
  std::size_t shown;     ///< findings of a file, at most
  std::string json = {}; ///< what is not written yet
  Numbers folders = {}, ids = {}, lists = {};
  std::size_t files = 0;             ///< written until now
  std::string since = {}, gone = {}; ///< what has become of files since the baseline: members of arrays
};

void put(Page &page, std::string_view text) { write(page.to, text); }

/// Writes the JSON that is there. It can stand in a `script` element: what could end the element is only in its
/// strings.
void flush(Page &page) {
  std::string_view json = page.json;
  while (!json.empty()) {
    const std::size_t markup = json.find_first_of("<>&");
    put(page, json.substr(0, markup));
    if (markup == json.npos)
      break;
    put(page, json[markup] == '<' ? "\\u003c" : json[markup] == '>' ? "\\u003e" : "\\u0026");
    json.remove_prefix(markup + 1);
  }
  page.json.clear();
}

// --- Pieces of the data ---------------------------------------------------------------------------------------------

/// Appends the members of an array, commas between them.
template <class List, class Append> void appendList(std::string &json, const List &list, const Append &append) {
  json += '[';
  bool first = true;
  for (const auto &member : list) {
    json += first ? "" : ",";
    append(member);
    first = false;
  }
  json += ']';
}

void appendStrings(std::string &json, std::span<const std::string> texts) {
  appendList(json, texts, [&](const std::string &text) { appendString(json, text); });
}

/// Appends a number and a comma.
void appendCell(std::string &json, std::uint64_t number) {
  appendNumber(json, number);
  json += ',';
}

std::string shownText(const KeptFinding &finding) {
  const std::string line = oneLine(finding.text);
  return line.size() <= SHOWN_TEXT ? line : line.substr(0, SHOWN_TEXT) + "...";
}

void appendFinding(Page &page, const KeptFinding &finding) {
  page.json += '[';
  appendCell(page.json, numberOf(page.ids, finding.id));
  appendCell(page.json, numberOf(page.lists, finding.list));
  appendNumber(page.json, finding.element);
  page.json += ',';
  appendNumber(page.json, finding.offset);
  page.json += ',';
  appendString(page.json, shownText(finding));
  page.json += ']';
}

/// What is told of a file with findings or without a verdict.
void appendDetails(Page &page, const FileResult &file) {
  std::string &json = page.json;
  json += ',';
  appendCell(json, static_cast<std::uint64_t>(file.reason));
  appendString(json, file.detail);
  json += ',';
  appendList(json, file.counts, [&](const auto &count) {
    appendCell(json, numberOf(page.ids, count.first));
    appendNumber(json, count.second);
  });
  json += ',';
  appendList(json, std::span(file.findings).first(std::min(page.shown, file.findings.size())),
             [&](const KeptFinding &finding) { appendFinding(page, finding); });
  if (file.repair > Repair::needless) {
    json += ',';
    appendCell(json, static_cast<std::uint64_t>(file.repair));
    appendNumber(json, file.repair_words);
    json += ',';
    appendStrings(json, std::span(file.repair_lines).first(std::min(page.shown, file.repair_lines.size())));
    json += ',';
    appendNumber(json, file.repair_undone);
  }
}

/// Appends [folder, name, bytes, version, verdict], and for a file with findings or without a verdict behind it
/// [reason, detail, [id, count, id, count...], findings], and if it was asked whether it can be mended, behind that
/// [repair, words, [change...], transformations].
void appendFile(Page &page, const FileResult &file) {
  const std::size_t slash = file.path.rfind('/');
  const std::size_t name = slash == file.path.npos ? 0 : slash + 1;
  std::string &json = page.json;
  json += '[';
  appendCell(json, numberOf(page.folders, file.path.substr(0, name)));
  appendString(json, std::string_view(file.path).substr(name));
  json += ',';
  appendCell(json, file.bytes);
  appendString(json, VERSION_NAMES[static_cast<std::size_t>(file.version)]);
  json += ',';
  appendNumber(json, static_cast<std::uint64_t>(file.verdict));
  if (file.verdict != Verdict::ok || !file.counts.empty())
    appendDetails(page, file);
  json += ']';
}

/// Appends [id, severity, meaning, next step].
void appendHelp(std::string &json, const std::string &id) {
  const FindingRow *const row = rowOf(id.c_str());
  const char *const texts[] = {row == nullptr ? "" : SEVERITY_NAMES[static_cast<std::size_t>(row->severity)],
                               row == nullptr ? "This version of kbsurvey does not know this finding." : row->meaning,
                               row == nullptr ? "" : row->next_step};
  json += '[';
  appendString(json, id);
  for (const char *const text : texts) {
    json += ',';
    appendString(json, text);
  }
  json += ']';
}

/// Appends to a list of what has become of files: [number, since, what it was], or for one that is gone [path, what it
/// was].
void appendCompared(Page &page, const FileResult &file) {
  const bool gone = file.compared.since == Since::gone;
  std::string &json = gone ? page.gone : page.since;
  json += json.empty() ? "[" : ",[";
  if (gone)
    appendString(json, file.path);
  else {
    appendCell(json, page.files);
    appendNumber(json, static_cast<std::uint64_t>(file.compared.since));
  }
  json += ',';
  appendString(json, file.compared.since == Since::fresh ? "" : wasText(file.compared));
  json += ']';
}

// --- The members of the data ----------------------------------------------------------------------------------------

void appendKey(std::string &json, std::string_view key) {
  json += json.ends_with('{') ? "" : ",";
  appendString(json, key);
  json += ':';
}

template <class Names> void appendNames(std::string &json, std::string_view key, const Names &names) {
  appendKey(json, key);
  appendList(json, names, [&](const char *name) { appendString(json, name); });
}

template <class Numbers> void appendNumbers(std::string &json, std::string_view key, const Numbers &numbers) {
  appendKey(json, key);
  appendList(json, numbers, [&](std::uint64_t number) { appendNumber(json, number); });
}

/// The date is that of the page.
void appendHead(std::string &json, const PageHead &head) {
  json += "\"survey\":{";
  appendKey(json, "version");
  appendString(json, KOVA_VERSION);
  appendKey(json, "date");
  appendNumber(json, static_cast<std::uint64_t>(std::time(nullptr)));
  appendKey(json, "seconds");
  char seconds[32] = "null";
  if (head.seconds)
    std::snprintf(seconds, sizeof seconds, "%.2f", *head.seconds);
  json += seconds;
  appendKey(json, "command");
  appendStrings(json, head.command);
  appendKey(json, "paths");
  appendStrings(json, head.paths);
  json += "}";
}

void appendTotals(Page &page, const Tally &tally) {
  std::string &json = page.json;
  appendNames(json, "verdicts", VERDICT_NAMES);
  appendNames(json, "reasons", REASON_TEXTS);
  appendNames(json, "repairs", REPAIR_TEXTS);
  json += ",\"totals\":{";
  appendKey(json, "files");
  appendNumber(json, tally.files);
  appendKey(json, "bytes");
  appendNumber(json, tally.bytes);
  appendNumbers(json, "verdicts", tally.by_verdict);
  appendNumbers(json, "reasons", tally.by_reason);
  appendNumbers(json, "repairs", tally.by_repair);
  json += '}';
  appendKey(json, "histogram");
  appendList(json, mostFrequent(tally), [&](const auto &row) {
    json += '[';
    appendCell(json, numberOf(page.ids, row.first));
    appendCell(json, row.second.findings);
    appendNumber(json, row.second.files);
    json += ']';
  });
}

/// @return whether the results could be read
int appendFiles(Page &page, const EachResult &each) {
  constexpr std::size_t AT_ONCE = 64 * 1024;
  appendKey(page.json, "files");
  page.json += '[';
  const int ok = each([&](const FileResult &file) {
    if (file.compared.since > Since::same)
      appendCompared(page, file);
    if (file.compared.since == Since::gone)
      return;
    page.json += page.files++ == 0 ? "" : ",";
    appendFile(page, file);
    if (page.json.size() >= AT_ONCE)
      flush(page);
  });
  page.json += ']';
  return ok;
}

/// Appends what has become of the files since the baseline, if there is one.
void appendSince(Page &page, const PageHead &head, const Tally &tally) {
  if (head.baseline.empty())
    return;
  std::string &json = page.json;
  json += ",\"since\":{";
  appendKey(json, "baseline");
  appendString(json, head.baseline);
  appendNames(json, "names", SINCE_NAMES);
  appendNumbers(json, "counts", tally.by_since);
  json += ",\"files\":[" + page.since + "],\"gone\":[" + page.gone + "]}";
}

/// Appends the texts that the rows before have by their numbers.
void appendNumbered(Page &page) {
  std::string &json = page.json;
  appendKey(json, "ids");
  appendList(json, page.ids.texts, [&](const std::string *id) { appendHelp(json, *id); });
  for (const auto &[key, numbers] : {std::pair("lists", &page.lists), std::pair("folders", &page.folders)}) {
    appendKey(json, key);
    appendList(json, numbers->texts, [&](const std::string *text) { appendString(json, *text); });
  }
}

} // namespace

void count(ShownFindings &shown, const FileResult &result) {
  constexpr std::size_t BYTES_BESIDES_TEXT = 32;
  std::size_t bytes = 0, number = 0, changes = 0;
  for (std::size_t most = MOST_SHOWN.size(); most-- > 0; shown.bytes[most] += bytes) {
    for (; number < std::min(MOST_SHOWN[most], result.findings.size()); ++number)
      bytes += std::min(result.findings[number].text.size(), SHOWN_TEXT) + BYTES_BESIDES_TEXT;
    for (; changes < std::min(MOST_SHOWN[most], result.repair_lines.size()); ++changes)
      bytes += result.repair_lines[changes].size();
  }
}

int writePage(std::FILE *to, const PageHead &head, const Tally &tally, const ShownFindings &shown,
              const EachResult &each) {
  const auto fitting = std::find_if(shown.bytes.begin(), shown.bytes.end() - 1,
                                    [](std::uint64_t bytes) { return bytes <= FINDINGS_BYTES; });
  Page page{{.stream = to}, MOST_SHOWN[static_cast<std::size_t>(fitting - shown.bytes.begin())]};
  put(page, PAGE_BEGIN);
  page.json += '{';
  appendHead(page.json, head);
  appendTotals(page, tally);
  if (appendFiles(page, each) == 0)
    return 0;
  appendSince(page, head, tally);
  appendNumbered(page);
  page.json += '}';
  flush(page);
  put(page, PAGE_END);
  errno = page.to.error;
  return errno == 0 ? 1 : 0;
}

} // namespace kova::survey
