/// What is left of something, and pieces of files that are made of it.
#pragma once

#include "mend/walk.h"

#include <string>
#include <vector>

namespace kova::mend {

using Bytes = std::vector<unsigned char>;

/// Stands for a number that is not known any more.
inline constexpr std::uint64_t UNKNOWN = ~std::uint64_t{0};

/// How many of something there were, and how many are left.
struct Remaining {
  std::uint64_t before = 0;
  std::uint64_t now = 0;

  bool gone(Word index) const { return index >= now && index < before && index != NO_LINK; }
};

/// @return "12 of 20 elements are left".
std::string remainingText(const Remaining &left, const char *what);

void append(Bytes &bytes, const FileBytes &file, std::uint64_t begin, std::uint64_t end);
void appendWords(Bytes &bytes, std::initializer_list<Word> words);

/// A record of which the end is missing, with the counts of what is left of it.
struct CutRecord {
  bool is_record = false; ///< it is still a record
  Bytes bytes = {};
  std::string what = {};  ///< is missing, for people
  Remaining entries = {}; ///< of the table that is cut
};

/// Cuts a record where the file ends.
CutRecord cutRecord(const FileBytes &file, const RecordLayout &kind, std::uint64_t begin, Word number, bool version_2);

} // namespace kova::mend
