/// What is left of a file in which something is missing, strange or too much.
#pragma once

#include "mend/salvage.h"

namespace kova::mend {

/// What is asked for where a file with holes is salvaged.
struct HolesAsked {
  bool sure = false; ///< there is a hole, also where all is in its place
  /// Elements of which nothing is left are left out, and links to those behind them renumbered. This is not done in
  /// lists with two kinds of elements, which belong together, nor where a link may lead into one of several lists.
  bool drop = false;
  bool parts = true; ///< what is left of an element whose end lies in the hole is kept
};

/// @return a file with all elements that were found whole. The others are empty; links lead to the same elements as
/// before. None where the header does not tell where the lists were, or where there seems to be no hole.
std::optional<Salvaged> salvageHoles(const FileBytes &file, HolesAsked asked);

} // namespace kova::mend
