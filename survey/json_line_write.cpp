#include "survey/json_line.h"

#include "survey/json_text.h"

namespace kova::survey {

namespace {

void appendStringOrNull(std::string &json, std::string_view bytes) {
  if (bytes.empty())
    json += "null";
  else
    appendString(json, bytes);
}

template <class Enum> const char *nameOf(std::span<const char *const> names, Enum value) {
  return names[static_cast<std::size_t>(value)];
}

void appendFinding(std::string &json, const KeptFinding &finding) {
  json += "{\"id\":";
  appendString(json, finding.id);
  json += ",\"stage\":";
  appendString(json, nameOf(STAGE_NAMES, finding.stage));
  json += ",\"severity\":";
  appendString(json, nameOf(SEVERITY_NAMES, finding.severity));
  json += ",\"list\":";
  appendStringOrNull(json, finding.list);
  json += ",\"element\":";
  appendNumber(json, finding.element);
  json += ",\"offset\":";
  appendNumber(json, finding.offset);
  json += ",\"found\":";
  appendNumber(json, finding.found);
  json += ",\"expected\":";
  appendNumber(json, finding.expected);
  json += ",\"text\":";
  appendString(json, finding.text);
  json += '}';
}

void appendTime(std::string &json, const std::optional<FileTime> &time) {
  if (time)
    appendString(json, timeText(*time));
  else
    json += "null";
}

void appendCounts(std::string &json, const std::map<std::string, std::uint64_t> &counts) {
  json += ",\"counts\":{";
  bool first = true;
  for (const auto &[id, count] : counts) {
    json += first ? "" : ",";
    appendString(json, id);
    json += ':';
    appendNumber(json, count);
    first = false;
  }
  json += '}';
}

/// Whether the file can be mended is told only if that was asked.
void appendRepair(std::string &json, const FileResult &result) {
  if (result.repair == Repair::not_asked)
    return;
  json += ",\"repair\":";
  appendStringOrNull(json, nameOf(REPAIR_NAMES, result.repair));
  json += ",\"repair_words\":";
  if (result.repair == Repair::mended)
    appendNumber(json, result.repair_words);
  else
    json += "null";
  if (result.repair_undone != 0) {
    json += ",\"repair_undone\":";
    appendNumber(json, result.repair_undone);
  }
  if (result.repair_lines.empty())
    return;
  json += result.repair == Repair::mended ? ",\"repair_changes\":[" : ",\"repair_damages\":[";
  for (const std::string &line : result.repair_lines) {
    json += json.ends_with('[') ? "" : ",";
    appendString(json, line);
  }
  json += ']';
}

constexpr std::string_view END_OF_LINE = "]}\n";

} // namespace

std::size_t appendLine(std::string &lines, const FileResult &result) {
  const std::size_t begin = lines.size();
  lines += "{\"path\":";
  appendString(lines, result.path);
  lines += ",\"bytes\":";
  appendNumber(lines, result.bytes);
  lines += ",\"modified\":";
  appendTime(lines, result.modified);
  lines += ",\"version\":";
  appendStringOrNull(lines, nameOf(VERSION_NAMES, result.version));
  lines += ",\"verdict\":";
  appendString(lines, nameOf(VERDICT_NAMES, result.verdict));
  lines += ",\"reason\":";
  appendStringOrNull(lines, nameOf(REASON_NAMES, result.reason));
  lines += ",\"detail\":";
  appendStringOrNull(lines, result.detail);
  lines += result.deep ? ",\"deep\":true" : ",\"deep\":false";
  appendRepair(lines, result);
  appendCounts(lines, result.counts);
  lines += ",\"findings\":[";
  std::size_t first_findings = lines.size();
  for (std::size_t i = 0; i < result.findings.size(); ++i) {
    lines += i == 0 ? "" : ",";
    appendFinding(lines, result.findings[i]);
    if (i < FIRST_FINDINGS)
      first_findings = lines.size();
  }
  lines += END_OF_LINE;
  return first_findings - begin;
}

void completeLine(std::string &cut) { cut += END_OF_LINE; }

} // namespace kova::survey
