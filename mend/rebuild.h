/// Files whose header is gone, in part or whole. Each list says how long it is, and the next one begins behind it:
/// where this chain is whole to the end of the file, it says all that a header says.
#pragma once

#include "mend/header.h"

#include <optional>

namespace kova::mend {

/// A file with a header that was made again. What was in front of the first list or element that is left is zeros.
struct Rebuilt {
  Bytes bytes = {};
  std::uint64_t gone = 0; ///< up to here nothing of the damaged file is left
  std::size_t first = 0;  ///< list of which something is left
  std::int64_t moved = 0; ///< how far the rest has moved
};

/// @return the file with a header; none where no chain of lists reaches its end. Takes time linear in the file.
std::optional<Rebuilt> rebuildHeader(BytesView file);

} // namespace kova::mend
