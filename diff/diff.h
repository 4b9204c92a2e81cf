/// The comparison of two files by their paths.
#pragma once

#include "diff/options.h"

namespace kova::diff {

/// Compares two files. What is printed is in `printer`; its paths are those of the files.
/// @param reason of trouble, for people
Status diffFiles(const Rules &rules, Printer &printer, std::string &reason);

} // namespace kova::diff
