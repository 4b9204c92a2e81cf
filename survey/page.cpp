#include "survey/page.h"

#include "common/text.h"
#include "survey/page_parts.h"
#include "survey/summary.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace kova::survey {

namespace {

using Json = nlohmann::ordered_json;

/// Bounds of the page, so that one of 10,000 bad files is still quick to open: of each file, as many findings are shown
/// as fit, at most the first `SHOWN_FINDINGS`; the JSON report has more of them.
constexpr std::size_t SHOWN_FINDINGS = 100;
constexpr std::size_t SHOWN_TEXT = 240;
constexpr std::size_t FINDINGS_BYTES = 2'500'000;

/// Gives each text a number, from 0, in the order in which they come.
struct Numbers {
  std::map<std::string, std::size_t> numbers = {};
  Json texts = Json::array();
};

std::size_t numberOf(Numbers &numbers, const std::string &text) {
  const auto [at, added] = numbers.numbers.try_emplace(text, numbers.texts.size());
  if (added)
    numbers.texts.push_back(escaped(text));
  return at->second;
}

struct PageData {
  std::size_t shown; ///< findings of a file, at most
  Numbers folders = {};
  Numbers ids = {};
  Numbers lists = {};
};

template <class Number> Json numberOrNull(const std::optional<Number> &number) {
  return number ? Json(*number) : Json();
}

std::string shownText(const KeptFinding &finding) {
  const std::string line = oneLine(finding.text);
  return line.size() <= SHOWN_TEXT ? line : line.substr(0, SHOWN_TEXT) + "...";
}

Json shownFindings(PageData &data, const FileResult &record) {
  Json list = Json::array();
  for (std::size_t i = 0; i < std::min(data.shown, record.findings.size()); ++i) {
    const KeptFinding &finding = record.findings[i];
    list.push_back({numberOf(data.ids, finding.id), numberOf(data.lists, finding.list), numberOrNull(finding.element),
                    numberOrNull(finding.offset), shownText(finding)});
  }
  return list;
}

/// @return how many findings of each file can be shown. It depends on the records alone.
std::size_t fittingFindings(const std::vector<FileResult> &records) {
  constexpr std::size_t BYTES_BESIDES_TEXT = 32;
  for (std::size_t shown = SHOWN_FINDINGS;; shown /= 2) {
    std::size_t bytes = 0;
    for (const FileResult &record : records)
      for (std::size_t i = 0; i < std::min(shown, record.findings.size()); ++i)
        bytes += std::min(record.findings[i].text.size(), SHOWN_TEXT) + BYTES_BESIDES_TEXT;
    if (bytes <= FINDINGS_BYTES || shown == 1)
      return shown;
  }
}

/// @return [folder, name, bytes, version, verdict], and for a file with findings or without a verdict behind it
/// [reason, detail, [id, count, id, count...], findings], and if it was asked whether it can be mended, behind that
/// [repair, words].
Json fileRow(PageData &data, const FileResult &record) {
  const std::size_t slash = record.path.rfind('/');
  const std::size_t name = slash == record.path.npos ? 0 : slash + 1;
  Json row = {numberOf(data.folders, record.path.substr(0, name)), escaped(record.path.substr(name)), record.bytes,
              VERSION_NAMES[static_cast<std::size_t>(record.version)], record.verdict};
  if (record.verdict == Verdict::ok && record.counts.empty())
    return row;
  Json counts = Json::array();
  for (const auto &[id, number] : record.counts) {
    counts.push_back(numberOf(data.ids, id));
    counts.push_back(number);
  }
  row.push_back(record.reason);
  row.push_back(escaped(record.detail));
  row.push_back(std::move(counts));
  row.push_back(shownFindings(data, record));
  if (record.repair > Repair::needless) {
    row.push_back(record.repair);
    row.push_back(record.repair_words);
  }
  return row;
}

/// @return for each id: [id, severity, meaning, next step].
Json helpRows(const Numbers &ids) {
  Json help = Json::array();
  for (const Json &id : ids.texts) {
    const auto &text = id.get_ref<const std::string &>();
    const FindingRow *const row = rowOf(text.c_str());
    if (row == nullptr)
      help.push_back({text, "", "This version of kbsurvey does not know this finding.", ""});
    else
      help.push_back({text, row->severity == Severity::error ? "error" : "warning", row->meaning, row->next_step});
  }
  return help;
}

Json pageData(const std::vector<FileResult> &records) {
  PageData data{fittingFindings(records)};
  const Tally tally = tallyOf(records);
  Json histogram = Json::array();
  for (const auto &[id, frequency] : mostFrequent(tally))
    histogram.push_back({numberOf(data.ids, id), frequency.findings, frequency.files});
  Json files = Json::array();
  for (const FileResult &record : records)
    files.push_back(fileRow(data, record));
  return {{"verdicts", VERDICT_NAMES},
          {"reasons", REASON_TEXTS},
          {"repairs", REPAIR_TEXTS},
          {"totals",
           {{"files", tally.files},
            {"bytes", tally.bytes},
            {"verdicts", tally.by_verdict},
            {"reasons", tally.by_reason},
            {"repairs", tally.by_repair}}},
          {"histogram", std::move(histogram)},
          {"ids", helpRows(data.ids)},
          {"lists", std::move(data.lists.texts)},
          {"folders", std::move(data.folders.texts)},
          {"files", std::move(files)}};
}

/// @return JSON that can stand in a `script` element: what could end the element is only in its strings.
std::string scriptSafe(const std::string &json) {
  std::string text;
  for (const char byte : json)
    switch (byte) {
    case '<':
      text += "\\u003c";
      break;
    case '>':
      text += "\\u003e";
      break;
    case '&':
      text += "\\u0026";
      break;
    default:
      text += byte;
    }
  return text;
}

} // namespace

std::string pageOf(const std::vector<FileResult> &records) {
  return std::string(PAGE_BEGIN) + scriptSafe(pageData(records).dump()) + PAGE_END;
}

} // namespace kova::survey
