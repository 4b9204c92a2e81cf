/// Reports that are read.
#pragma once

#include "common/file.h"
#include "survey/file_result.h"

#include <functional>

namespace kova::survey {

using TakeResult = std::function<void(FileResult &&result)>;

/// Reads a JSON report from a file, or from standard input for "-", line by line. A last line without its line break is
/// ignored: it is what an interrupted run leaves.
/// @return what is wrong with it, for people; empty if nothing is. What stands before the fault was taken.
std::string readReport(const std::string &path, const TakeResult &take);

/// Reads the lines of an open file, from its start. @return whether all of it was lines of a report.
bool readLines(const Descriptor &file, const TakeResult &take);

} // namespace kova::survey
