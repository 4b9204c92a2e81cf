/// The page: a report for people, in one file.
#pragma once

#include "survey/file_result.h"

namespace kova::survey {

/// @param records sorted by path
/// @return the page. It needs nothing but itself. No byte of a path or finding can become markup or script.
std::string pageOf(const std::vector<FileResult> &records);

} // namespace kova::survey
