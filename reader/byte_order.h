/// Byte order: the file's is big-endian, the host's may be either.
#pragma once

#include "kova/words.h"

#include <bit>
#include <cstddef>

namespace kova {

inline constexpr bool HOST_IS_FILE_ORDER = std::endian::native == std::endian::big;

/// Copies `bytes` / 4 words from `from` to `to`, which may be the same place, and converts each between file order and
/// host order. Odd bytes at the end are not copied.
void copyConverted(void *to, const void *from, std::size_t bytes);

} // namespace kova
