/// The JUnit report, which build servers show.
#pragma once

#include "survey/summary.h"

#include <cstdio>

namespace kova::survey {

/// Writes the report as XML. A file that is ERR is a failure, one without a verdict an error. Paths are printable.
/// @param each hands on the results in order
/// @return 1; 0 with a reason in `errno`
int writeJunit(std::FILE *to, const Tally &tally, const EachResult &each);

} // namespace kova::survey
