/// What comes of a survey: the reports, and what is printed.
#pragma once

#include "survey/options.h"
#include "survey/output.h"
#include "survey/summary.h"

#include <mutex>

namespace kova::survey {

/// A file that is not OK, with its line.
struct BadFile {
  std::string path;
  std::string line;
  bool folder; ///< it is a folder that cannot be read
};

struct Results {
  std::mutex mutex = {}; ///< of the JSON report and of what is kept, while there are several threads
  Output json, junit, html, print;
  bool print0 = false;
  Tally tally = {};
  std::vector<BadFile> bad = {};
  std::vector<FileResult> records = {}; ///< all of them, if a report is made of them in the end
  std::uint64_t lost = 0;               ///< records for which there was no memory
};

/// Opens the outputs that were asked for. @return whether all could be opened; a failure is told.
bool openResults(Results &results, const Options &options, Opening json);

/// Counts a record, and keeps of it what is needed in the end. Several threads may call this at once.
void keepResult(Results &results, FileResult &&record);

/// Writes a record to the JSON report, and keeps it as above. Several threads may call this at once. Does not throw.
void take(Results &results, FileResult &&record);

/// Writes the reports and prints the lines and the summary. @return the exit status.
/// @param seconds how long it took; none for what was not audited now
Status finishResults(Results &results, std::optional<double> seconds);

} // namespace kova::survey
