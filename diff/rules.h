/// What counts as a difference.
#pragma once

#include "diff/pieces.h"

#include <bitset>
#include <optional>
#include <set>

namespace kova::diff {

struct Rules {
  std::optional<std::uint64_t> ulp = {};           ///< floats that are at most so many apart are equal
  std::optional<double> epsilon = {};              ///< floats whose difference is at most this are equal
  bool ignore_derived = false;                     ///< sizes, counts and own indices
  bool ignore_gaps = false;                        ///< bytes that no record takes in
  std::set<std::string, std::less<>> ignored = {}; ///< fields
  std::bitset<LIST_NUM> lists = std::bitset<LIST_NUM>().set();
  bool by_name = false;
  bool order = false; ///< the order of the elements counts
};

/// @return the words of an entry that are not compared, a bit for each.
std::uint64_t ignoredWords(const Piece &piece, const Rules &rules);

/// @return whether all of an array, a text and so on is ignored, also how long it is, or a record that it is in.
bool isIgnored(const Pieces &all, const Piece &piece, const Rules &rules);

/// @return whether a word follows from others and is compared as such; a tag is compared by itself.
inline bool isDerived(Role role) { return follows(role) && role != Role::tag; }

/// @return how many floats there are from one to the other, -0 being 0; none where one is not a number.
std::optional<std::uint64_t> ulpsBetween(Word a, Word b);

/// @return whether two words that are not the same bits count as equal floats.
bool closeFloats(Word a, Word b, const Rules &rules);

} // namespace kova::diff
