/// The JUnit report, which build servers show.
#pragma once

#include "survey/file_result.h"

namespace kova::survey {

/// @return the report as XML. A file that is ERR is a failure, one without a verdict an error. Paths are printable.
std::string junitReport(const std::vector<FileResult> &records);

} // namespace kova::survey
