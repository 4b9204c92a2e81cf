/// Which element of one file is which of the other.
#pragma once

#include "diff/rules.h"
#include "diff/scene.h"

namespace kova::diff {

/// What links lead to, by `To`: place 0 is the scene. The last two are the second kinds of groups.
inline constexpr std::size_t SPACE_NUM = static_cast<std::size_t>(To::vtx_nv) + 1;

/// @return the list of a space, and whether its elements are of the second kind.
struct SpaceOf {
  std::size_t list;
  bool second;
};
constexpr SpaceOf spaceOf(std::size_t space) {
  if (space < LIST_NUM)
    return {space, false};
  return {static_cast<std::size_t>(space == static_cast<std::size_t>(To::vtx_color) ? To::tri_color : To::tri_nv),
          true};
}

inline constexpr std::uint32_t ALONE = ~std::uint32_t{0}; ///< an element that the other file does not have

struct Space {
  std::vector<std::uint32_t> to_b = {}; ///< of each element of A, the one of B that it is
  std::vector<std::uint32_t> to_a = {};
  bool is_identity = true; ///< each is the one at the same place
  bool is_cut = false;     ///< a file does not have all of its elements
  bool has_rest = false;   ///< in a file, bytes follow the last of its elements
};
using Matching = std::array<Space, SPACE_NUM>;

Matching matchElements(const Side &a, const Side &b, const Rules &rules);

/// @return whether two links lead to the same. Where the format does not say into which list, one that could have been
/// renumbered is taken for it.
bool sameLink(const Matching &matching, To to, Word a, Word b);

/// @return the name of an element; empty if it has none.
std::string nameOf(const Kis &kis, const Pieces &element);

/// @return what tells records with different content apart, but for words that follow from others, and for links.
std::uint64_t hashOf(const Pieces &element, const Rules &rules);

} // namespace kova::diff
