/// Byte order: the file's is big-endian, the host's may be either.
#pragma once

#include "kova/words.h"

#include <bit>
#include <cstring>

namespace kova {

inline constexpr bool HOST_IS_FILE_ORDER = std::endian::native == std::endian::big;

/// Copies `bytes` / 4 words from `from` to `to`, which may be the same place, and converts each between file order and
/// host order. Odd bytes at the end are not copied.
inline void copyConverted(void *to, const void *from, std::size_t bytes) {
  auto *const target = static_cast<unsigned char *>(to);
  const auto *const source = static_cast<const unsigned char *>(from);
  for (std::size_t at = 0; at + sizeof(Word) <= bytes; at += sizeof(Word)) {
    Word word;
    std::memcpy(&word, source + at, sizeof word);
    if constexpr (!HOST_IS_FILE_ORDER)
      word = word << 24 | (word & 0xff00) << 8 | (word >> 8 & 0xff00) | word >> 24;
    std::memcpy(target + at, &word, sizeof word);
  }
}

} // namespace kova
