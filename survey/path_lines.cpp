#include "survey/path_lines.h"

#include "survey/json_line.h"

namespace kova::survey {

namespace {

bool countsMore(PathLines &lines, const FileResult &result, const std::string &line, const CountingLine &counting) {
  if (result.modified != counting.modified)
    return result.modified > counting.modified;
  std::string other;
  return read(lines.store, counting.place, other) && line < other;
}

} // namespace

void takeLine(PathLines &lines, const FileResult &result) {
  std::string line;
  const std::size_t first_findings = appendLine(line, result);
  const auto [at, is_new] = lines.files.try_emplace(result.path);
  if (is_new || countsMore(lines, result, line, at->second))
    at->second = {.modified = result.modified, .place = append(lines.store, line, first_findings)};
}

std::optional<FileResult> resultAt(PathLines &lines, Place place) {
  std::string line;
  return read(lines.store, place, line) ? resultOf(line) : std::nullopt;
}

} // namespace kova::survey
