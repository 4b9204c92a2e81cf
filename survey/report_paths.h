/// Reports that would be in each other's way, or in that of what is read.
#pragma once

#include "survey/options.h"

namespace kova::survey {

/// @return whether standard error can be written to: no file that is audited or read is changed by a message.
bool canTell(const Options &options, const std::vector<Input> &inputs);

/// @param inputs the files that will be audited
/// @return what is wrong with the paths of the reports and with standard output, however they are spelt, for people;
/// empty if nothing is.
std::string clashOfReports(const Options &options, const std::vector<Input> &inputs);

} // namespace kova::survey
