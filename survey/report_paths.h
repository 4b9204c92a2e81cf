/// Reports that would be in each other's way, or in that of what is read.
#pragma once

#include "survey/options.h"

namespace kova::survey {

/// @param inputs the files that will be audited
/// @return what is wrong with the paths of the reports, however they are spelt, for people; empty if nothing is.
std::string clashOfReports(const Options &options, const std::vector<Input> &inputs);

} // namespace kova::survey
