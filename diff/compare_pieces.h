/// The comparison of two elements, piece by piece.
#pragma once

#include "diff/change.h"
#include "diff/match.h"

namespace kova::diff {

/// What the pieces of two records are compared with.
struct Against {
  const Side &a;
  const Side &b;
  const Rules &rules;
  const Matching *matching; ///< null: links are compared by their numbers
};

/// What was found.
struct Found {
  std::vector<Change> changes = {};
  std::array<std::size_t, 2> alone = {}; ///< the record that only A, or only B, has and that was told last
  std::array<bool, 2> lacks = {};        ///< whether A, or B, lacks a record that the other one has
  bool is_wrong = false; ///< one of the files may be damaged: a word does not follow, or the forms are not the same
};

/// Compares two records.
void comparePieces(Found &found, const Against &against, const Pieces &a, const Pieces &b);

/// Compares a record of one file with the words at the same places of the other one.
/// @param is_b the record is of B
void compareInPlace(Found &found, const Against &against, const Pieces &record, bool is_b);

/// Compares bytes of the files.
/// @param what they are
/// @return whether they differ
bool compareBytes(Found &found, const Against &against, std::string what, std::uint64_t at_a, std::uint64_t bytes_a,
                  std::uint64_t at_b, std::uint64_t bytes_b);

} // namespace kova::diff
