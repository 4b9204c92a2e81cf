#include "survey/survey.h"

#include "survey/path_lines.h"
#include "survey/report_paths.h"
#include "survey/report_reader.h"
#include "survey/results.h"

#include <cstdio>
#include <cstring>

namespace kova::survey {

namespace {

/// Hands the lines that count to the results.
bool takeAll(PathLines &lines, Results &results) {
  for (const auto &[path, counting] : lines.files) {
    std::optional<FileResult> result = resultAt(lines, counting.place);
    if (!result)
      return false;
    takeStored(results, std::move(*result), counting.place);
  }
  return true;
}

} // namespace

Status mergeReports(const Options &options) {
  if (!canTell(options, {}))
    return FAILED;
  Results results;
  PathLines lines{results.store};
  std::string wrong = clashOfReports(options, {});
  if (wrong.empty() && !openResults(results, options, Keeping::unnamed))
    return FAILED;
  for (const std::string &path : options.paths)
    if (wrong.empty())
      wrong = readReport(path, [&](FileResult &&result) { takeLine(lines, result); });
  if (wrong.empty() && !takeAll(lines, results))
    wrong = std::string("the lines to merge cannot be kept: ") + std::strerror(results.store.error);
  if (!wrong.empty()) {
    std::fprintf(stderr, "kbsurvey: %s.\n", wrong.c_str());
    return FAILED;
  }
  return finishResults(results, std::nullopt);
}

} // namespace kova::survey
