/// Files of other kinds, told by their first bytes.
#pragma once

#include "mend/header.h"

namespace kova::mend {

/// A kind of file that is none of the format.
struct ForeignKind {
  const char *name;   ///< for people: "a PNG image"
  bool packed;        ///< what it holds may be a file of the format
  std::size_t at;     ///< where its mark stands
  const char *mark;   ///< what stands there
  std::size_t length; ///< of the mark, which may hold zeros
};

/// How many of the first bytes are looked at.
inline constexpr std::size_t FOREIGN_BYTES = 512;

/// @return the kind that a file seems to be of; null if its first bytes tell of none.
const ForeignKind *foreignKind(BytesView file);

} // namespace kova::mend
