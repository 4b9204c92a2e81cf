/// The one buffer between the model and the stream.
///
/// A list is written from its start to its end, but not quite in order: a light whose header size is less than its
/// head, and words at odd places, go back by some bytes. So the last bytes before the place stay in the buffer. Bytes
/// that nothing was put at are zeros; bytes past the end of the list are not written.
#pragma once

#include "kova/words.h"

#include <array>

namespace kova {

/// The bytes that go to the stream in one piece.
inline constexpr std::size_t OUTPUT_BYTES = 64 * 1024;

/// How far `moveTo` may go back: more than the longest record that others can lie upon.
inline constexpr std::size_t LOOK_BACK_BYTES = 64;

struct Output {
  std::FILE *stream; ///< not owned
  bool failed = false;
  bool all_held = false;    ///< all that is held is written and nothing more, whatever counts and block sizes say
  std::uint64_t size = 0;   ///< of the list that is being written, in bytes
  std::uint64_t offset = 0; ///< the place in the list where the next record goes; may lie past the end
  std::uint64_t begin = 0;  ///< the place in the list of the first byte in the buffer, a multiple of 4
  std::uint64_t filled = 0; ///< the place in the list up to which the buffer is filled
  std::array<unsigned char, OUTPUT_BYTES> bytes;

  explicit Output(std::FILE *to) : stream(to) {} // the buffer stays unset
};

/// Begins a list of `size` bytes.
void beginList(Output &out, std::uint64_t size);

/// Ends the list: fills it up with zeros and hands it to the stream.
void endList(Output &out);

/// Goes to a place in the list, forwards by any distance, backwards by up to `LOOK_BACK_BYTES`.
inline void moveTo(Output &out, std::uint64_t offset) { out.offset = offset; }

/// Puts `bytes` / 4 words in file order, each where a reader takes it from; words that are not whole inside the list
/// are left out. Moves past them.
void putWords(Output &out, const void *words, std::size_t bytes);

/// Puts bytes as they are, and moves past them.
void putBytes(Output &out, const unsigned char *from, std::size_t bytes);

} // namespace kova
