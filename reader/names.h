/// The text of a name in pieces, for whoever prints names of any length without asking for memory.
#pragma once

#include "kova/behavior.h"

namespace kova {

/// Unpacks up to `room` characters of a name, from character `first` on, blanks turned into underscores. The text ends
/// at its claimed length, at the last word held, or at its first NUL. @return the characters put at `to`; fewer than
/// `room` only where the text ends.
std::size_t unpackName(const Name &name, std::size_t first, char *to, std::size_t room);

} // namespace kova
