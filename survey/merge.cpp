#include "survey/survey.h"

#include "survey/json_line.h"
#include "survey/report_paths.h"
#include "survey/report_reader.h"
#include "survey/results.h"

#include <cstdio>
#include <cstring>
#include <map>

namespace kova::survey {

namespace {

/// Of the lines about a file, the one that counts.
struct Counting {
  std::optional<FileTime> modified;
  Place place; ///< in the store
};

struct Merge {
  Results &results;
  std::map<std::string, Counting> files = {}; ///< by path
};

/// @return whether a line counts more than the one that has counted by now: it is about the file as it was modified
/// later. Of lines that differ though nothing tells which is later, the one counts that comes first in the order of
/// texts: so the result does not depend on that of the reports.
bool countsMore(Merge &merge, const FileResult &result, const std::string &line, const Counting &counting) {
  if (result.modified != counting.modified)
    return result.modified > counting.modified;
  std::string other;
  return read(merge.results.store, counting.place, other) && line < other;
}

void takeLine(Merge &merge, FileResult &&result) {
  std::string line;
  const std::size_t first_findings = appendLine(line, result);
  const auto [at, is_new] = merge.files.try_emplace(result.path);
  if (is_new || countsMore(merge, result, line, at->second))
    at->second = {result.modified, append(merge.results.store, line, first_findings)};
}

/// Hands the lines that count to the results.
bool takeAll(Merge &merge) {
  std::string line;
  for (const auto &[path, counting] : merge.files) {
    std::optional<FileResult> result;
    if (!read(merge.results.store, counting.place, line) || !(result = resultOf(line)))
      return false;
    takeStored(merge.results, std::move(*result), counting.place);
  }
  return true;
}

} // namespace

Status mergeReports(const Options &options) {
  if (!canTell(options, {}))
    return FAILED;
  Results results;
  Merge merge{results};
  std::string wrong = clashOfReports(options, {});
  if (wrong.empty() && !openResults(results, options, Keeping::unnamed))
    return FAILED;
  for (const std::string &path : options.paths)
    if (wrong.empty())
      wrong = readReport(path, [&](FileResult &&result) { takeLine(merge, std::move(result)); });
  if (wrong.empty() && !takeAll(merge))
    wrong = std::string("the lines to merge cannot be kept: ") + std::strerror(results.store.error);
  if (!wrong.empty()) {
    std::fprintf(stderr, "kbsurvey: %s.\n", wrong.c_str());
    return FAILED;
  }
  return finishResults(results, std::nullopt);
}

} // namespace kova::survey
