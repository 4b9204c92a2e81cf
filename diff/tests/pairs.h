/// The comparison of two files in memory, and what has to hold of it for any two. Shared by the tests and the fuzz
/// target.
#pragma once

#include "diff/compare.h"
#include "harness/bytes.h"

#include <string>

namespace kova::diff {

using harness::Bytes;

/// What was found in two files.
struct Seen {
  Place place;
  Change change;

  bool operator==(const Seen &) const = default;
};
using SeenAll = std::vector<Seen>;

/// @param is_renumbered set to whether elements stand at other places
SeenAll differencesOf(std::span<const unsigned char> a, std::span<const unsigned char> b, const Rules &rules = {},
                      bool *is_renumbered = nullptr);

/// @return the same with A and B exchanged.
Seen mirrored(Seen seen);

/// @return differences as lines, sorted.
std::string linesOf(const SeenAll &all);

/// @return what does not hold of two files, whatever they are; empty where all is well.
std::string brokenPair(std::span<const unsigned char> a, std::span<const unsigned char> b);

} // namespace kova::diff
