#include "survey/json.h"

#include "common/text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <limits>
#include <nlohmann/json.hpp>

namespace kova::survey {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char *STAGE_NAMES[] = {"load", "check"};
constexpr const char *SEVERITY_NAMES[] = {"error", "warning"};

template <class Enum> const char *nameOf(std::span<const char *const> names, Enum value) {
  return names[static_cast<std::size_t>(value)];
}

template <class Enum> bool takeName(std::span<const char *const> names, const Json &json, Enum &value) {
  if (!json.is_string())
    return false;
  const auto at = std::find(names.begin(), names.end(), json.get_ref<const std::string &>());
  value = static_cast<Enum>(at - names.begin());
  return at != names.end();
}

Json textOrNull(const std::string &text) { return text.empty() ? Json() : Json(escaped(text)); }

template <class Number> Json numberOrNull(const std::optional<Number> &number) {
  return number ? Json(*number) : Json();
}

Json jsonOf(const KeptFinding &finding) {
  return {{"id", escaped(finding.id)},
          {"stage", nameOf(STAGE_NAMES, finding.stage)},
          {"severity", nameOf(SEVERITY_NAMES, finding.severity)},
          {"list", textOrNull(finding.list)},
          {"element", numberOrNull(finding.element)},
          {"offset", numberOrNull(finding.offset)},
          {"found", numberOrNull(finding.found)},
          {"expected", numberOrNull(finding.expected)},
          {"text", escaped(finding.text)}};
}

// --- Reading --------------------------------------------------------------------------------------------------------

/// @return the member of that name; null if there is none.
const Json &member(const Json &object, const char *name) {
  static const Json nothing;
  const auto at = object.find(name);
  return at == object.end() ? nothing : *at;
}

bool takeText(const Json &json, std::string &text) {
  if (json.is_null())
    return true;
  const std::optional<std::string> bytes =
      json.is_string() ? unescaped(json.get_ref<const std::string &>()) : std::nullopt;
  text = bytes.value_or("");
  return bytes.has_value();
}

/// A name of the catalogue or of a list: ASCII letters and digits, and in an id hyphens between them.
bool takeName(const Json &json, std::string &name, bool is_id) {
  const auto isOfIt = [&](char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || (is_id ? c == '-' : c >= 'A' && c <= 'Z');
  };
  if (!json.is_string())
    return false;
  name = json.get_ref<const std::string &>();
  return !name.empty() && name.size() <= MOST_NAME && std::all_of(name.begin(), name.end(), isOfIt) &&
         name.front() != '-' && name.back() != '-' && name.find("--") == name.npos;
}

bool takeTime(const Json &json, std::optional<FileTime> &time) {
  if (json.is_null())
    return true;
  time = json.is_string() ? timeOf(json.get_ref<const std::string &>()) : std::nullopt;
  return time.has_value();
}

template <class Number> bool takeNumber(const Json &json, std::optional<Number> &number) {
  if (json.is_null())
    return true;
  if (!json.is_number_unsigned() || json.get<std::uint64_t>() > std::numeric_limits<Number>::max())
    return false;
  number = json.get<Number>();
  return true;
}

bool takeFinding(const Json &json, KeptFinding &finding) {
  const Json &list = member(json, "list");
  return json.is_object() && takeName(member(json, "id"), finding.id, true) &&
         takeName(STAGE_NAMES, member(json, "stage"), finding.stage) &&
         takeName(SEVERITY_NAMES, member(json, "severity"), finding.severity) &&
         (list.is_null() || takeName(list, finding.list, false)) &&
         takeNumber(member(json, "element"), finding.element) && takeNumber(member(json, "offset"), finding.offset) &&
         takeNumber(member(json, "found"), finding.found) && takeNumber(member(json, "expected"), finding.expected) &&
         takeText(member(json, "text"), finding.text) && finding.text.size() <= MOST_TEXT;
}

bool takeFindings(const Json &json, std::vector<KeptFinding> &findings) {
  if (!json.is_array() || json.size() > MOST_FINDINGS)
    return false;
  findings.resize(json.size());
  return std::equal(json.begin(), json.end(), findings.begin(), takeFinding);
}

bool takeCounts(const Json &json, std::map<std::string, std::uint64_t> &counts) {
  if (!json.is_object())
    return false;
  for (const auto &[id, count] : json.items()) {
    std::string name;
    if (!takeName(Json(id), name, true) || !count.is_number_unsigned() || count == 0)
      return false;
    counts[name] = count.template get<std::uint64_t>();
  }
  return true;
}

/// What was judged is of a version that is known.
bool takeVersion(const Json &json, FileResult &record) {
  if (!json.is_null() && !takeName(VERSION_NAMES, json, record.version))
    return false;
  return record.verdict == Verdict::none || record.version != Version::unknown;
}

/// A path without NUL, which no file has: it would be two of a list.
bool takePath(const Json &json, std::string &path) {
  return json.is_string() && takeText(json, path) && !path.empty() && path.find('\0') == path.npos;
}

bool takeReason(const Json &json, FileResult &record) {
  if (!json.is_null() && !takeName(REASON_NAMES, json, record.reason))
    return false;
  return (record.verdict == Verdict::none) == (record.reason != Reason::has_verdict);
}

/// Without the member, it was not asked. A number of words goes with a file that can be mended, and with no other.
bool takeRepair(const Json &object, FileResult &record) {
  if (!object.contains("repair"))
    return !object.contains("repair_words");
  const Json &repair = member(object, "repair");
  std::optional<std::uint64_t> words;
  if (!takeNumber(member(object, "repair_words"), words))
    return false;
  record.repair_words = words.value_or(0);
  record.repair = Repair::needless;
  if (!repair.is_null() && !(takeName(REPAIR_NAMES, repair, record.repair) && needsRepair(record) &&
                             record.repair > Repair::needless)) // whose name is empty
    return false;
  return (record.repair == Repair::mended) == (record.repair_words != 0);
}

bool takeRecord(const Json &json, FileResult &record) {
  std::optional<std::uint64_t> bytes;
  const Json &deep = member(json, "deep");
  if (!json.is_object() || !deep.is_boolean() || !takeNumber(member(json, "bytes"), bytes) || !bytes)
    return false;
  record.bytes = *bytes;
  record.deep = deep.get<bool>();
  return takePath(member(json, "path"), record.path) && takeTime(member(json, "modified"), record.modified) &&
         takeName(VERDICT_NAMES, member(json, "verdict"), record.verdict) &&
         takeVersion(member(json, "version"), record) && takeReason(member(json, "reason"), record) &&
         takeText(member(json, "detail"), record.detail) && record.detail.size() <= MOST_TEXT &&
         takeRepair(json, record) && takeCounts(member(json, "counts"), record.counts) &&
         takeFindings(member(json, "findings"), record.findings) && findingCount(record) >= record.findings.size();
}

/// @return whether the line ended with a line break, which is taken off.
bool readLine(std::istream &stream, std::string &line) { return std::getline(stream, line) && !stream.eof(); }

Report readFrom(std::istream &stream, const std::string &name) {
  Report report;
  std::string line;
  for (std::size_t number = 1; readLine(stream, line); ++number) {
    std::optional<FileResult> record = recordOf(line);
    if (!record) {
      report.error = name + ":" + std::to_string(number) + ": not a line of a report";
      return report;
    }
    report.records.push_back(std::move(*record));
  }
  if (stream.bad())
    report.error = name + ": cannot be read";
  return report;
}

} // namespace

std::string jsonLine(const FileResult &record) {
  Json findings = Json::array();
  for (const KeptFinding &finding : record.findings)
    findings.push_back(jsonOf(finding));
  Json counts = Json::object();
  for (const auto &[id, count] : record.counts)
    counts[escaped(id)] = count;
  Json json = {{"path", escaped(record.path)},
               {"bytes", record.bytes},
               {"modified", record.modified ? Json(timeText(*record.modified)) : Json()},
               {"version", textOrNull(nameOf(VERSION_NAMES, record.version))},
               {"verdict", nameOf(VERDICT_NAMES, record.verdict)},
               {"reason", textOrNull(nameOf(REASON_NAMES, record.reason))},
               {"detail", textOrNull(record.detail)},
               {"deep", record.deep}};
  if (record.repair != Repair::not_asked) {
    json["repair"] = textOrNull(nameOf(REPAIR_NAMES, record.repair));
    json["repair_words"] = record.repair == Repair::mended ? Json(record.repair_words) : Json();
  }
  json["counts"] = std::move(counts);
  json["findings"] = std::move(findings);
  return json.dump() + '\n';
}

std::optional<FileResult> recordOf(const std::string &line) {
  const Json json = Json::parse(line, nullptr, false);
  FileResult record;
  return !json.is_discarded() && takeRecord(json, record) ? std::optional(std::move(record)) : std::nullopt;
}

Report readReport(const std::string &path) {
  const std::string name = printable(path);
  if (path == "-")
    return readFrom(std::cin, "standard input");
  std::ifstream stream(path, std::ios::binary);
  if (!stream)
    return {{}, name + ": " + std::strerror(errno)};
  return readFrom(stream, name);
}

void sortRecords(std::vector<FileResult> &records) {
  const auto laterFirst = [](const FileResult &a, const FileResult &b) {
    return a.path != b.path ? a.path < b.path : a.modified > b.modified;
  };
  // Records that differ though nothing tells which is later are put in the order of their lines, so that the result
  // does not depend on that of the reports.
  std::sort(records.begin(), records.end(), [&](const FileResult &a, const FileResult &b) {
    if (laterFirst(a, b) || laterFirst(b, a))
      return laterFirst(a, b);
    return jsonLine(a) < jsonLine(b);
  });
  const auto same = [](const FileResult &a, const FileResult &b) { return a.path == b.path; };
  records.erase(std::unique(records.begin(), records.end(), same), records.end());
}

} // namespace kova::survey
