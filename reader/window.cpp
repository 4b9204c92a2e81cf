#include "reader/window.h"

#include "reader/byte_order.h"
#include "reader/file.h"

#include <algorithm>

namespace kova {

namespace {

/// Moves the stream to a place in the list, where it does not stand there.
void seek(ListWindow &window, std::uint64_t offset) {
  if (window.stream_at != offset)
    seekStream(window.stream, window.list_begin + offset);
  window.stream_at = offset;
}

/// Moves the window to the word in which byte `offset` of the list stands.
void moveTo(ListWindow &window, std::uint64_t offset) {
  window.begin = offset / sizeof(Word) * sizeof(Word);
  const std::uint64_t wanted = std::min<std::uint64_t>(WINDOW_BYTES, window.list_size - window.begin);
  seek(window, window.begin);
  window.stream_at += readBytes(window.stream, window.owned.get(), static_cast<std::size_t>(wanted));
  window.end = window.stream_at;
}

/// @return how many bytes the window holds from place `offset` on.
std::uint64_t heldFrom(const ListWindow &window, std::uint64_t offset) {
  return offset >= window.begin && offset < window.end ? window.end - offset : 0;
}

void copyOut(unsigned char *to, const unsigned char *from, std::size_t bytes, Order order) {
  if (order == Order::host)
    copyConverted(to, from, bytes);
  else
    std::memcpy(to, from, bytes);
}

/// Reads a run from the stream to where it is kept. @return 0 where the stream gives less.
int readPast(ListWindow &window, std::uint64_t offset, unsigned char *to, std::size_t bytes, Order order) {
  seek(window, offset);
  const std::size_t got =
      order == Order::host ? freadEndianSwap4(to, bytes, window.stream) : readBytes(window.stream, to, bytes);
  window.stream_at += got;
  return got == bytes;
}

} // namespace

int takeFromWindow(ListWindow &window, std::uint64_t offset, unsigned char *to, std::size_t bytes, Order order) {
  const std::size_t unit = order == Order::host ? sizeof(Word) : 1;
  while (bytes > 0) {
    if (heldFrom(window, offset) < unit) {
      if (window.stream == nullptr)
        return 0;
      if (bytes >= WINDOW_BYTES)
        return readPast(window, offset, to, bytes, order);
      moveTo(window, offset);
      if (heldFrom(window, offset) < unit)
        return 0; // the file has become shorter
    }
    const std::uint64_t held = heldFrom(window, offset) / unit * unit;
    const auto piece = static_cast<std::size_t>(std::min<std::uint64_t>(bytes, held));
    copyOut(to, window.bytes + (offset - window.begin), piece, order);
    to += piece;
    offset += piece;
    bytes -= piece;
  }
  return 1;
}

} // namespace kova
