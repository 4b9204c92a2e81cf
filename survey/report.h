/// Reports: where they are written.
#pragma once

#include "survey/output.h"

#include <functional>

namespace kova::survey {

/// A report that was asked for, or none.
struct Report {
  std::string path = {};   ///< as it was given; empty if the report is not wanted
  std::string target = {}; ///< the file that is made or replaced in the end; empty for what cannot be replaced
  Output stream = {};      ///< of what cannot be replaced: standard output, a pipe, a device
};

inline bool isWanted(const Report &report) { return !report.path.empty(); }

/// Makes ready for a report.
/// @param path empty if it is not wanted
/// @return whether it can be written, as far as is known; else that is told
bool openReport(Report &report, const std::string &path);

/// Writes a report, a file whole or not at all: until it is whole, and on the disk, the old one stays.
/// @param write writes it; returns 0 with a reason in `errno` if that fails
/// @return whether it was written; a failure is told
bool saveReport(Report &report, const std::function<int(std::FILE *)> &write);

} // namespace kova::survey
