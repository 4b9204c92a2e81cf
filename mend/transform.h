/// What transfers and machines make of the bytes of a whole file, and how it is undone. Each of these transformations
/// leaves all bytes recoverable, so undoing it gives the file as it was.
#pragma once

#include "mend/header.h"

#include <functional>
#include <string>

namespace kova::mend {

struct Transformation;

/// A transformation that a file shows, as it is to be undone. What the numbers stand for depends on the transformation.
struct Undoing {
  const Transformation *transformation = nullptr;
  std::uint64_t at = 0;    ///< a place in the file as it was before
  std::uint64_t count = 0; ///< how many
  std::uint64_t value = 0;

  bool operator==(const Undoing &) const = default;
};

/// A kind of transformation. Both functions are linear in the file.
struct Transformation {
  const char *id;
  /// Adds each way in which the file could be undone; none if it does not look like the transformation.
  void (*find)(BytesView file, const HeaderFacts &facts, std::vector<Undoing> &ways);
  Bytes (*undo)(BytesView file, const Undoing &way);
  /// Says what was wrong and is undone, for people.
  std::string (*tell)(const Undoing &way);
  bool is_judged = false; ///< contents speak for it, which the audit does not see: no word may be wrong besides
};

/// @return the file before the transformation.
Bytes undo(BytesView file, const Undoing &way);

/// @return whether it is undone by setting the version word, to `value`.
bool setsVersion(const Undoing &way);

/// Takes a file that may have been the original, and may change it; `is_judged` as above. @return whether it was.
using Accepts = std::function<bool(Bytes &file, const HeaderFacts &facts, bool is_judged)>;

/// Goes through all that can be undone in a file, one transformation after the other. @return the steps to the one file
/// that is accepted; none if no file is, or several that differ.
std::vector<Undoing> findOriginal(BytesView file, const Accepts &accepts);

/// A scene of a file in which several stand one behind the other.
struct Part {
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
};

/// @return the scenes of a file; at most one for a file that holds one, whatever else is in it.
std::vector<Part> findParts(BytesView file);

/// What takes one of them is told like a transformation.
Undoing takePart(const std::vector<Part> &parts, std::size_t number);

} // namespace kova::mend
