/// The window through which a list is read from its stream.
///
/// A list can be much larger than the memory that one would spend on a copy of it. So the reader looks at it through a
/// window: some bytes of the list, as they stand in the file. A read inside the window is a copy. A read outside of it
/// moves the window to that place. A run of words or texels that is longer than a window does not pass through it but
/// goes from the stream straight to where it is kept. Of a file in memory the window holds the whole list.
#pragma once

#include "kova/setup.h"

namespace kova {

/// The bytes that a window holds at most.
inline constexpr std::size_t WINDOW_BYTES = 64 * 1024;

struct ListWindow {
  std::FILE *stream;                      ///< not owned; null where the window holds all of the list
  std::uint64_t list_begin;               ///< in the stream
  std::uint64_t list_size;                ///< in bytes
  std::uint64_t stream_at;                ///< the place in the list from which the stream reads next
  std::unique_ptr<unsigned char[]> owned; ///< the memory of the window; null for a file in memory
  const unsigned char *bytes;             ///< what it holds
  std::uint64_t begin = 0; ///< the window holds the bytes `begin` to `end` of the list, in file order; a multiple of 4
  std::uint64_t end = 0;
};

/// The byte order in which bytes leave a list: words for the host, or bytes as the file has them.
enum class Order : std::uint8_t { host, file };

/// Copies the bytes `offset` to `offset + bytes` of the list, which has them. For host order both are multiples of 4.
/// @return 1; 0 where the stream gives less than it had promised, `to` then being unset from there on.
int takeFromWindow(ListWindow &window, std::uint64_t offset, unsigned char *to, std::size_t bytes, Order order);

} // namespace kova
