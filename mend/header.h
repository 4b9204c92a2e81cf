/// What the header of a file says, and how much of it is confirmed by the rest of the file: what tells a KOVA file from
/// any other bytes.
#pragma once

#include "kova/kova.h"

#include <cstdint>
#include <span>
#include <vector>

namespace kova::mend {

using Bytes = std::vector<unsigned char>;
using BytesView = std::span<const unsigned char>;

/// The bytes of a file in another order: the byte that belongs at `i` stands at `i ^ mask`. Bytes at the end that do
/// not fill a block of that order stand where they belong.
struct Ordered {
  BytesView file;
  std::uint64_t mask = 0;

  std::uint64_t size() const { return file.size(); }
  /// @return how many bytes are grouped together: 1, 2, 4 or 8.
  std::uint64_t block() const { return mask == 0 ? 1 : mask == 1 ? 2 : mask < 4 ? 4 : 8; }
  /// @return where the byte stands that belongs at `i`, which lies within the file.
  std::uint64_t place(std::uint64_t i) const { return i < size() - size() % block() ? i ^ mask : i; }
  /// @return the big-endian word at an offset; 0 if it does not lie within the file.
  Word word(std::uint64_t at) const;
};

/// The facts that a whole file confirms: its version is known, its header has no tag and is as long as its parts, all
/// lists together are as long as the file is said to be, and the first one has its tag and its size.
inline constexpr int HEADER_FACTS = 6;
/// If so many hold, it is a header, of a file that may be damaged.
inline constexpr int ENOUGH_FACTS = 4;

struct HeaderFacts {
  Word version = 0;
  std::uint64_t stated = 0; ///< the size of the file, as the header says
  std::uint64_t sum = 0;    ///< of the header and all lists
  int holding = 0;          ///< of the facts
  int agreement = 0;        ///< the same, with all lists and the real size of the file
  bool lists_hold = false;  ///< every list has its tag and its size in its place, and the last one ends with the file

  bool isHeader() const { return holding >= ENOUGH_FACTS; }
  bool isWhole() const { return holding == HEADER_FACTS && lists_hold; }
};

/// Looks at the header of a file.
HeaderFacts headerFacts(const Ordered &file);
/// The same as if the file had that version.
HeaderFacts headerFacts(const Ordered &file, Word version);

} // namespace kova::mend
