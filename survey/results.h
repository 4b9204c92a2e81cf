/// What comes of a survey: the reports, and what is printed.
#pragma once

#include "survey/baseline.h"
#include "survey/line_store.h"
#include "survey/options.h"
#include "survey/page.h"
#include "survey/report.h"
#include "survey/summary.h"

#include <mutex>

namespace kova::survey {

/// What is kept of a file in memory. The rest is in the store, if it is needed at all.
struct Listed {
  std::string path;
  std::string line = {}; ///< that is printed of it; empty if none is
  Place place = {};      ///< of its line in the store, if it is there
  std::uint64_t bytes = 0;
  Version version = Version::unknown;
  Verdict verdict = Verdict::none;
  bool plain = false;  ///< nothing was found: this is all that there is to know
  bool folder = false; ///< it is a folder that cannot be read
  Compared compared = {};
};

struct Results {
  std::mutex mutex = {}; ///< of all of this, while there are several threads
  Report json, junit, html;
  Output print;
  bool print0 = false;
  Style style = {};                 ///< of what is printed
  LineStore store = {};             ///< if a report is made in the end
  std::vector<LineStore> left = {}; ///< journals of runs that were killed: the JSON report replaces them, too
  Baseline baseline = {};
  std::string spare = {}; ///< room for a line when there is no memory
  Tally tally = {};
  PageHead head = {};
  ShownFindings shown = {};
  std::vector<Listed> listed = {}; ///< all files if a report is made in the end, else those with a line
  std::uint64_t lost = 0;          ///< files for which there was no memory at all
};

/// How the lines of a run are kept.
enum class Keeping {
  journal, ///< so that a run that is killed can be resumed
  unnamed  ///< for a run that is quickly done again
};

/// Makes ready for the reports that were asked for. @return whether they can be written, as far as is known; a failure
/// is told, and nothing is left behind.
bool openResults(Results &results, const Options &options, Keeping keeping);

/// Makes room for the results of so many files, so that this cannot fail when they come.
void reserveResults(Results &results, std::size_t files);

/// Takes the result of a file: counts it, writes its line, and keeps what is needed in the end. Several threads may
/// call this at once. Does not throw.
void take(Results &results, FileResult &&result);

/// The same for a result whose line is in the store already.
void takeStored(Results &results, FileResult &&result, Place place);

/// Writes the reports and prints the lines and the summary. @return the exit status.
/// @param seconds how long it took; none for what was not audited now
Status finishResults(Results &results, std::optional<double> seconds);

/// Removes journals that runs have left. @return whether they are gone; a failure is told
bool removeStores(std::vector<LineStore> &stores);

/// Ends a run without reports.
void dropResults(Results &results);

} // namespace kova::survey
