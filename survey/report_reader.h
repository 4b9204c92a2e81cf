/// Reports that are read.
#pragma once

#include "common/file.h"
#include "survey/file_result.h"

#include <functional>

namespace kova::survey {

using TakeResult = std::function<void(FileResult &&result)>;

/// What is done about a last line without its line break, which an interrupted run leaves.
enum class CutLine { ignored, refused };

/// Reads a JSON report from a file, or from standard input for "-", line by line.
/// @return what is wrong with it, for people; empty if nothing is. What stands before the fault was taken.
std::string readReport(const std::string &path, const TakeResult &take, CutLine cut_line = CutLine::ignored);

/// Reads the lines of an open file, from its start. @return whether all of it was lines of a report.
bool readLines(const Descriptor &file, const TakeResult &take);

} // namespace kova::survey
