/// The page: a report for people, in one file.
#pragma once

#include "survey/summary.h"

#include <cstdio>

namespace kova::survey {

/// How many findings of each file the page shows, at most. To keep it small, it is one of these.
inline constexpr std::array<std::size_t, 7> MOST_SHOWN = {100, 50, 25, 12, 6, 3, 1};

/// The bytes of the findings that the page would show, for each of `MOST_SHOWN`.
struct ShownFindings {
  std::array<std::uint64_t, MOST_SHOWN.size()> bytes = {};
};

/// Adds the findings of a file.
void count(ShownFindings &shown, const FileResult &result);

/// What the page says of the survey itself.
struct PageHead {
  std::vector<std::string> command = {}; ///< behind the name of the program
  std::vector<std::string> paths = {};   ///< that were surveyed; none for merged reports
  std::string baseline = {};             ///< the report that it was compared with; empty if there is none
  std::optional<double> seconds = {};    ///< how long it took; none for what was not audited now
};

/// Writes the page. It needs nothing but itself. No byte of a path or finding can become markup or script.
/// @param each hands on the results in order, each with its first findings at least
/// @return 1; 0 with a reason in `errno`
int writePage(std::FILE *to, const PageHead &head, const Tally &tally, const ShownFindings &shown,
              const EachResult &each);

} // namespace kova::survey
