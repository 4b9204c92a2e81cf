/// The lines of reports by the paths of the files that they are about.
#pragma once

#include "survey/file_result.h"
#include "survey/line_store.h"

#include <map>
#include <optional>
#include <string>

namespace kova::survey {

/// Of the lines about a file, the one that counts.
struct CountingLine {
  std::optional<FileTime> modified = {};
  Place place = {};  ///< in the store
  bool seen = false; ///< for whoever goes over other files
};

struct PathLines {
  LineStore &store;
  std::map<std::string, CountingLine> files = {}; ///< by path
};

/// Puts the line of a result into the store if it counts more than the one that has counted until then: if it is about
/// the file as it was modified later. Of lines that differ though nothing tells which is later, the one counts that
/// comes first in the order of texts: so the outcome does not depend on that of the reports.
void takeLine(PathLines &lines, const FileResult &result);

/// @return what a line of the store says; none if it cannot be read
std::optional<FileResult> resultAt(PathLines &lines, Place place);

} // namespace kova::survey
