#include "survey/baseline.h"

#include "survey/deep.h"
#include "survey/json_line.h"
#include "survey/report_reader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace kova::survey {

namespace {

bool isError(const std::string &id) {
  const FindingRow *const row = rowOf(id.c_str());
  return row == nullptr || row->severity == Severity::error;
}

/// @return whether one result has more errors of any kind than another.
bool hasMoreErrors(const FileResult &result, const FileResult &other) {
  return std::any_of(result.counts.begin(), result.counts.end(), [&](const auto &count) {
    const auto at = other.counts.find(count.first);
    return isError(count.first) && count.second > (at == other.counts.end() ? 0 : at->second);
  });
}

FileResult withoutDeepFindings(FileResult result) {
  for (const FindingRow &row : deepRows()) {
    result.counts.erase(row.id);
    std::erase_if(result.findings, [&](const KeptFinding &finding) { return finding.id == row.id; });
  }
  return result;
}

bool saysTheSame(const FileResult &a, const FileResult &b) {
  if (a.deep != b.deep && !(a.counts.empty() && b.counts.empty())) {
    FileResult shallow_a = withoutDeepFindings(a), shallow_b = withoutDeepFindings(b);
    shallow_a.deep = shallow_b.deep;
    return saysTheSame(shallow_a, shallow_b);
  }
  return a.reason == b.reason && a.detail == b.detail && a.counts == b.counts && a.findings == b.findings;
}

/// @return a result as it comes back from a report.
FileResult asReported(const FileResult &result) {
  std::string line;
  appendLine(line, result);
  return resultOf(line).value_or(result);
}

Since sinceOf(const FileResult &before, const FileResult &now) {
  if (now.verdict != before.verdict)
    return now.verdict > before.verdict ? Since::worse : Since::better;
  if (hasMoreErrors(now, before))
    return Since::worse;
  if (hasMoreErrors(before, now))
    return Since::better;
  return saysTheSame(before, now) || saysTheSame(before, asReported(now)) ? Since::same : Since::changed;
}

bool isThere(const std::string &path) {
  struct stat status;
  return ::lstat(path.c_str(), &status) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

} // namespace

std::string openBaseline(Baseline &baseline) {
  if (baseline.path.empty())
    return "";
  openUnnamed(baseline.store, folderForUnnamed());
  std::string wrong;
  if (baseline.store.error == 0)
    wrong = readReport(
        baseline.path, [&](FileResult &&result) { takeLine(baseline.lines, result); }, CutLine::refused);
  if (wrong.empty() && baseline.store.error != 0)
    wrong = std::string("the baseline cannot be kept: ") + std::strerror(baseline.store.error);
  return wrong;
}

void compare(Baseline &baseline, FileResult &result) {
  if (baseline.path.empty())
    return;
  std::optional<FileResult> before;
  {
    const std::lock_guard lock(baseline.mutex);
    const auto at = baseline.lines.files.find(result.path);
    if (at != baseline.lines.files.end()) {
      at->second.seen = true;
      before = resultAt(baseline.lines, at->second.place);
    }
  }
  result.compared = before ? Compared{sinceOf(*before, result), before->verdict, findingCount(*before)}
                           : Compared{.since = Since::fresh};
}

bool eachGone(Baseline &baseline, const std::function<void(FileResult &&result)> &take) {
  for (const auto &[path, line] : baseline.lines.files) {
    if (line.seen || !inShard(path, baseline.shard) || (!baseline.merged && isThere(path)))
      continue;
    const std::optional<FileResult> before = resultAt(baseline.lines, line.place);
    if (before)
      take({.path = path, .compared = {Since::gone, before->verdict, findingCount(*before)}});
  }
  return baseline.store.error == 0;
}

} // namespace kova::survey
