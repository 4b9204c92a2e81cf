/// The JUnit report, which build servers show.
#pragma once

#include "survey/summary.h"

#include <cstdio>

namespace kova::survey {

/// Writes the report as XML. A file that is ERR is a failure, one without a verdict an error. Paths are printable.
/// With a baseline, files that are the same as there are left out. Those that are better or changed pass, with what is
/// found in their output; those that are gone are skipped.
/// @param each hands on the results in order
/// @return 1; 0 with a reason in `errno`
int writeJunit(std::FILE *to, const Tally &tally, const EachResult &each);

} // namespace kova::survey
