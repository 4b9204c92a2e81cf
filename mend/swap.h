/// Two blocks of a storage device that stand in each other's place.
#pragma once

#include "mend/transform.h"

namespace kova::mend {

/// Takes a file that may have been the original. @return whether it was.
using IsOriginal = std::function<bool(Bytes &file)>;

/// @return the exchange that makes a file with a whole header agree that is accepted; none if there is no such
/// exchange, or if several are that make different files of it. The bytes are exchanged in the search, and are
/// afterwards as they were.
std::vector<Undoing> findSwap(Bytes &bytes, const IsOriginal &accepts);

} // namespace kova::mend
