#include "writer/output.h"

#include "reader/byte_order.h"

#include <algorithm>
#include <cstring>

namespace kova {

namespace {

std::uint64_t bytesLeft(const Output &out) { return out.offset < out.size ? out.size - out.offset : 0; }

/// Fills the buffer with zeros up to a place that it reaches.
void fillTo(Output &out, std::uint64_t place) {
  if (out.filled >= place)
    return;
  std::memset(out.bytes.data() + (out.filled - out.begin), 0, static_cast<std::size_t>(place - out.filled));
  out.filled = place;
}

/// Hands what lies before `place` to the stream; the buffer begins there afterwards.
void flushTo(Output &out, std::uint64_t place) {
  while (out.begin < place) {
    const auto piece = static_cast<std::size_t>(std::min<std::uint64_t>(place - out.begin, OUTPUT_BYTES));
    fillTo(out, out.begin + piece);
    if (!out.failed)
      out.failed = std::fwrite(out.bytes.data(), 1, piece, out.stream) != piece;
    const auto kept = static_cast<std::size_t>(out.filled - out.begin) - piece;
    std::memmove(out.bytes.data(), out.bytes.data() + piece, kept);
    out.begin += piece;
  }
}

/// Makes room for some bytes at the present place and fills the gap before it. @return the bytes that there is room
/// for, two words at least.
std::size_t makeRoom(Output &out) {
  if (out.offset + 2 * sizeof(Word) > out.begin + OUTPUT_BYTES)
    flushTo(out, out.offset / sizeof(Word) * sizeof(Word) - LOOK_BACK_BYTES);
  fillTo(out, out.offset);
  return static_cast<std::size_t>(out.begin + OUTPUT_BYTES - out.offset);
}

/// A word at a place that is no multiple of 4: the opposite of how the cursor takes one (`takeOddWords`).
void putOddWord(Output &out, Word word) {
  makeRoom(out);
  const std::uint64_t whole = out.size / sizeof(Word) * sizeof(Word);
  fillTo(out, std::min(out.size, (out.offset / sizeof(Word) + 2) * sizeof(Word)));
  for (std::size_t i = 0; i < sizeof(Word); ++i) {
    const std::uint64_t at = out.offset + i < whole ? (out.offset + i) ^ 3 : out.offset + i;
    out.bytes[static_cast<std::size_t>(at - out.begin)] = static_cast<unsigned char>(word >> (8 * i));
  }
  out.offset += sizeof(Word);
}

void putOddWords(Output &out, const unsigned char *from, std::size_t bytes) {
  for (std::size_t at = 0; at < bytes; at += sizeof(Word)) {
    Word word;
    std::memcpy(&word, from + at, sizeof word);
    putOddWord(out, word);
  }
}

/// Passes bytes into the buffer in pieces; `copy(to, from, bytes)` copies one.
template <class Copy> void put(Output &out, const unsigned char *from, std::size_t bytes, Copy copy) {
  while (bytes > 0) {
    const std::size_t piece = std::min(bytes, makeRoom(out) / sizeof(Word) * sizeof(Word));
    copy(out.bytes.data() + (out.offset - out.begin), from, piece);
    from += piece;
    bytes -= piece;
    out.offset += piece;
    out.filled = std::max(out.filled, out.offset);
  }
}

} // namespace

void beginList(Output &out, std::uint64_t size) {
  out.size = size;
  out.offset = out.begin = out.filled = 0;
}

void endList(Output &out) { flushTo(out, out.size); }

void putWords(Output &out, const void *words, std::size_t bytes) {
  const auto *const from = static_cast<const unsigned char *>(words);
  const std::uint64_t end = out.offset + bytes;
  const std::uint64_t room = bytesLeft(out) / sizeof(Word) * sizeof(Word);
  const auto inside = static_cast<std::size_t>(std::min<std::uint64_t>(bytes, room));
  if (out.offset % sizeof(Word) != 0)
    putOddWords(out, from, inside);
  else
    put(out, from, inside, copyConverted);
  out.offset = end;
}

void putBytes(Output &out, const unsigned char *from, std::size_t bytes) {
  const std::uint64_t end = out.offset + bytes;
  put(out, from, static_cast<std::size_t>(std::min<std::uint64_t>(bytes, bytesLeft(out))),
      [](unsigned char *to, const unsigned char *piece, std::size_t count) { std::memcpy(to, piece, count); });
  out.offset = end;
}

} // namespace kova
