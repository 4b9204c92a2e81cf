/// Pairs of scenes with known differences: a scene is loaded, edited as a model and written again.
#pragma once

#include "diff/tests/pairs.h"

#include <random>

namespace kova::diff {

/// Two files, and what is different in them.
struct EditedPair {
  Bytes a;
  Bytes b;
  std::vector<std::string> expected; ///< "LIST[A -> B] FIELD", "LIST[A] only in A" and so on, sorted
};

/// @return a pair that the seed chooses, and its edits: words changed, elements put in, taken out, permuted with all
/// links to them.
/// @param only_permuted nothing else is done
EditedPair editedPair(const Bytes &scene, std::uint32_t seed, bool only_permuted = false);

/// @return differences in the form of `EditedPair::expected`, sorted.
std::vector<std::string> toldBy(const SeenAll &all);

} // namespace kova::diff
