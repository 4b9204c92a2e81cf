/// The bytes of a KOVA file, and its words by their places. Independent of the reader's own conversions.
#pragma once

#include "format/lists.h"

#include <vector>

namespace kova::harness {

using Bytes = std::vector<unsigned char>;

/// The big-endian word at a byte offset, which must lie within the file.
inline Word wordAt(const Bytes &file, std::size_t offset) {
  Word word = 0;
  for (std::size_t i = 0; i < sizeof word; ++i)
    word = word << 8 | file.at(offset + i);
  return word;
}

inline void setWordAt(Bytes &file, std::size_t offset, Word word) {
  for (std::size_t i = 0; i < sizeof word; ++i)
    file.at(offset + i) = static_cast<unsigned char>(word >> (24 - 8 * i));
}

/// @return the byte offset of the word with the list's size. `FileHeader` begins with the words of a file in their
/// order: those of the header, then those that its maker block begins with.
inline std::size_t sizeOffset(const ListRow &list) {
  const FileHeader header{};
  const auto *const begin = reinterpret_cast<const unsigned char *>(&header);
  return static_cast<std::size_t>(reinterpret_cast<const unsigned char *>(&(header.*list.size)) - begin);
}

} // namespace kova::harness
