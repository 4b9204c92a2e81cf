/// The totals of a survey, and what is printed of them.
#pragma once

#include "common/terminal.h"
#include "survey/file_result.h"

#include <array>
#include <functional>

namespace kova::survey {

/// Gets the result of one file after the other.
using TakeEach = std::function<void(const FileResult &result)>;

/// Hands on the results of all files, in the order of the paths. @return 1; 0 with a reason in `errno`
using EachResult = std::function<int(const TakeEach &take)>;

/// How often a finding occurs.
struct Frequency {
  std::uint64_t findings = 0;
  std::uint64_t files = 0;
};

struct Tally {
  std::uint64_t files = 0;
  std::uint64_t bytes = 0;
  std::array<std::uint64_t, std::size(VERDICT_NAMES)> by_verdict = {};
  std::array<std::uint64_t, std::size(REASON_NAMES)> by_reason = {};
  std::array<std::uint64_t, std::size(REPAIR_NAMES)> by_repair = {};
  std::array<std::uint64_t, std::size(SINCE_NAMES)> by_since = {};
  std::array<std::uint64_t, std::size(VERDICT_NAMES)> failing = {}; ///< the files that `countsForStatus`, by verdict
  std::map<std::string, Frequency> by_finding = {};

  std::uint64_t of(Verdict verdict) const { return by_verdict[static_cast<std::size_t>(verdict)]; }
};

/// Adds a result to the totals. If there is no memory for it, the numbers are as before.
void count(Tally &tally, const FileResult &result);

Tally tallyOf(const std::vector<FileResult> &results);

/// @return the findings by their frequency, the most frequent first.
std::vector<std::pair<std::string, Frequency>> mostFrequent(const Tally &tally);

/// @return what is wrong with a file, in one printable line: whether it can be mended, if that was asked; the number of
/// findings and the first one, or why there is no verdict.
std::string whatIsWrong(const FileResult &result);

/// @return what a file was in the baseline: "was ERR, 3 findings".
std::string wasText(const Compared &compared);

/// @return the line of a file that is told, with its line break. On a terminal, its first finding stands below it.
std::string fileLine(const FileResult &result, const Style &style = {});

/// @return the lines of the summary.
/// @param seconds how long it took; none for what was not audited now
/// @param baseline the report that it was compared with; empty if there is none
std::string summary(const Tally &tally, std::optional<double> seconds, const std::string &baseline = {});

/// @return a number of bytes as people read it: "12.3 MB".
std::string bytesText(std::uint64_t bytes);

} // namespace kova::survey
