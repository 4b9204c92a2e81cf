/// Words, the bounded cursor, and the small pieces that every record of a KOVA file is made of.
///
/// A KOVA file is a sequence of 32-bit big-endian words. A list is walked in host order with one cursor that knows
/// where the list ends, whether it lies in memory or comes from a stream. Nothing else looks at a list's bytes, so no
/// file can make a reader look outside its own bytes.
#pragma once

#include "kova/export.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kova {

/// A 32-bit word in host order: tags, flags, counts and sizes. Sums of words wrap at 32 bits.
using Word = std::uint32_t;
/// An index or another number that the format means as signed; -1 usually stands for none.
using Index = std::int32_t;

using Words = std::vector<Word>;
using Indices = std::vector<Index>;
using Floats = std::vector<float>;

/// Stands for none in every link and index of the format. Some of them are fields of type `Word`, others of type
/// `Index`, where it is -1.
inline constexpr Word NO_LINK = 0xffffffff;

/// A reference into another file: both -1 where there is none.
struct External {
  Index file_name;
  Index name;
};

/// A node by kind (flags) and index.
struct NodeIndex {
  Word kind;
  Index index;
};

struct Rgba {
  float red, green, blue, alpha;
};
struct Xyz {
  float x, y, z;
};
struct St {
  float s, t;
};

// --- Streams and byte order -----------------------------------------------------------------------------------------

struct CloseStream {
  /// Takes a stream that is open; the result of closing it is dropped.
  void operator()(std::FILE *stream) const { std::fclose(stream); }
};
/// An open file that closes itself; null where opening failed.
using Stream = std::unique_ptr<std::FILE, CloseStream>;

/// Converts bytes / 4 words in place between file order and host order; odd bytes at the end stay as they are. Does
/// nothing on a big-endian host. Where `bytes` is 0 the buffer may be null, as for the next two.
KOVA_API void endianSwap4(void *buffer, std::size_t bytes);

/// Reads `bytes` bytes into `buffer` and converts the whole words among those that were read to host order. A call that
/// a signal has interrupted is made again.
/// @return the number of bytes read, which is less than asked for where the stream ends or fails.
KOVA_API std::size_t freadEndianSwap4(void *buffer, std::size_t bytes, std::FILE *stream);

/// Writes `size` x `count` bytes in file order; the caller's buffer stays in host order.
/// @return the number of bytes written: fewer where the stream fails, 0 where memory for the converted copy cannot be
/// had.
KOVA_API std::size_t fwriteEndianSwap4(const void *buffer, std::size_t size, std::size_t count, std::FILE *stream);

inline constexpr const char *INPUT_OPEN_ERROR = "Input File Open Error\n";
inline constexpr const char *INPUT_READ_ERROR = "Input File Read Error\n";
inline constexpr const char *INPUT_HAS_CHANGED = "Input File Has Changed\n";
inline constexpr const char *OUTPUT_OPEN_ERROR = "Output File Open Error\n";
inline constexpr const char *OUTPUT_WRITE_ERROR = "Output File Write Error\n";

/// Open a file for binary reading ("rb"), binary writing ("wb"), text reading ("r"), text writing ("w").
/// @return the stream, or null after "Input File Open Error\n" or "Output File Open Error\n" on standard error.
KOVA_API Stream kvKbReadOpen(const char *path);
KOVA_API Stream kvKbWriteOpen(const char *path);
KOVA_API Stream kvKtReadOpen(const char *path);
KOVA_API Stream kvKtWriteOpen(const char *path);

/// The offset of what was not read from a file, or from a stream that has no positions.
inline constexpr std::uint64_t NO_OFFSET = ~std::uint64_t{0};

// --- Extension blocks -----------------------------------------------------------------------------------------------

struct ExtBlkWords {
  Words van; ///< the maker block
  Words usr; ///< the user block
};

/// The two extension blocks that end a record, as raw words. Most records have none and then cost one pointer.
struct ExtBlk {
  std::unique_ptr<ExtBlkWords> words; ///< null while both blocks hold nothing
};

/// The words held of a record's maker block, and of its user block; empty where there are none.
inline std::span<const Word> vanExtBlk(const ExtBlk &blk) {
  return blk.words ? std::span<const Word>(blk.words->van) : std::span<const Word>();
}
inline std::span<const Word> usrExtBlk(const ExtBlk &blk) {
  return blk.words ? std::span<const Word>(blk.words->usr) : std::span<const Word>();
}

// --- Tags, references, small setters --------------------------------------------------------------------------------

/// @return 1 where equal; else 0 after "irregular tag ! %0#10x != %0#10x\n" (found, expected) on standard error.
KOVA_API int kvCheckTag(Word found, Word expected);

/// Sets both members to -1: no external reference.
KOVA_API void kvSetNoExternal(External &external);

/// Stores `value`. @return 0 where the word held it already, else 1.
KOVA_API int kvTestSet(Word &word, Word value);

/// Stores five values in order into the five words at `poly`.
KOVA_API void kvSetPoly(Word *poly, Word first, Word second, Word third, Word fourth, Word fifth);

/// Turns every blank of a NUL-terminated string into an underscore, in place; tabs stay.
KOVA_API void kvSp2_(char *text);

} // namespace kova
