/// What is left of a file in which something is missing, strange or too much.
#pragma once

#include "mend/salvage.h"

namespace kova::mend {

/// @return a file with all elements that were found whole. The others are empty; links lead to the same elements as
/// before. None where the header does not tell where the lists were, or where all of them are in their place and it is
/// not `sure` that there is a hole.
/// @param drop whether elements of which nothing is left are left out, and links to those behind them renumbered. This
/// is not done in lists with two kinds of elements, which belong together, nor where a link may lead into one of
/// several lists.
std::optional<Salvaged> salvageHoles(const FileBytes &file, bool sure, bool drop);

} // namespace kova::mend
