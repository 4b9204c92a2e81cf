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

// --- The bounded cursor ---------------------------------------------------------------------------------------------

/// Why a read was refused.
enum class Fault : std::uint8_t {
  none,
  past_end, ///< it needs what lies outside the buffer
  no_memory ///< the memory for what is there cannot be had
};

/// A list that is read from its stream piece by piece; private to the library.
struct ListWindow;

/// The offset of what was not read from a file, or from a stream that has no positions.
inline constexpr std::uint64_t NO_OFFSET = ~std::uint64_t{0};

/// A byte offset into a list of host-order words, which lies in memory or comes from a stream. Moving it is free, also
/// past the end; a read needs all of its words inside the list, and a read of nothing succeeds wherever the cursor
/// stands.
struct Cursor {
  const unsigned char *data = nullptr; ///< not owned; the whole list, unless it comes from a stream
  std::size_t size = 0;                ///< in bytes, as many as are really there
  std::uint64_t offset = 0;            ///< in bytes
  std::uint64_t zeroed = 0;            ///< records handed out so far that a count promised and the form does not store
  Fault fault = Fault::none;           ///< the first refusal
  ListWindow *window = nullptr;        ///< not owned; null for a list in memory
  // For findings: what is being read.
  const char *list = nullptr;       ///< the list's name
  std::uint64_t begin = NO_OFFSET;  ///< of the list in its file
  std::optional<Word> element = {}; ///< its position in the list
};

/// @return a cursor at the start of a block of words.
inline Cursor cursorOf(std::span<const Word> block) {
  return Cursor{reinterpret_cast<const unsigned char *>(block.data()), block.size_bytes()};
}

/// Reads `count` words into `destination`; all or nothing. @return 1, also for a count of 0; else 0.
KOVA_API int kvReadArray(Cursor &cursor, Words &destination, Word count);
KOVA_API int kvReadArray(Cursor &cursor, Indices &destination, Word count);
KOVA_API int kvReadArray(Cursor &cursor, Floats &destination, Word count);

/// The twin of `kvReadArray` for the inside of maker blocks: holds the words that lie inside the block, at most
/// `count`.
/// @return 0 only where memory cannot be had.
KOVA_API int kvSetupArray(Cursor &cursor, Words &destination, Word count);
KOVA_API int kvSetupArray(Cursor &cursor, Indices &destination, Word count);
KOVA_API int kvSetupArray(Cursor &cursor, Floats &destination, Word count);

/// Reads `rows` rows of `bytes_per_row` / 4 words each into `area`, which owns them. On return `destination` points
/// just past the copied words; the start is `area.data()`.
/// @return `destination`, which is not null, also where no word was asked for; null where the words are not all there
/// or memory cannot be had.
KOVA_API Word *kvReadArea(Cursor &cursor, Words &area, Word *&destination, Word bytes_per_row, Word rows);

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

/// Reads `van_size` / 4 words of maker block, then `usr_size` / 4 words of user block (sizes in bytes, remainders
/// dropped), replacing what `blk` held. Each block is held whole or not at all. @return 1, or 0 where one is not all
/// there.
KOVA_API int kvReadExtBlk1(Cursor &cursor, ExtBlk &blk, Word van_size, Word usr_size);

/// The twin of `kvReadExtBlk1` that holds what is there, built on `kvSetupArray`.
KOVA_API int kvSetupExtBlk1(Cursor &cursor, ExtBlk &blk, Word van_size, Word usr_size);

// --- Tags, references, small setters --------------------------------------------------------------------------------

/// @return 1 where equal; else 0 after "irregular tag ! %0#10x != %0#10x\n" (found, expected) on standard error.
KOVA_API int kvCheckTag(Word found, Word expected);

/// Reads a run of pairs that is stored as `count` first members, then `count` second members; all or nothing.
/// @return 1, also for a count of 0; else 0.
KOVA_API int kvReadExternal(Cursor &cursor, std::vector<External> &destination, Word count);
KOVA_API int kvReadNodeIndex(Cursor &cursor, std::vector<NodeIndex> &destination, Word count);

/// The twin of `kvReadExternal` for the inside of maker blocks: pair i is held when its second member lies inside the
/// block. @return 0 only where memory cannot be had.
KOVA_API int kvSetupExternal(Cursor &cursor, std::vector<External> &destination, Word count);

/// Sets both members to -1: no external reference.
KOVA_API void kvSetNoExternal(External &external);

/// Stores `value`. @return 0 where the word held it already, else 1.
KOVA_API int kvTestSet(Word &word, Word value);

/// Stores five values in order into the five words at `poly`.
KOVA_API void kvSetPoly(Word *poly, Word first, Word second, Word third, Word fourth, Word fifth);

/// Turns every blank of a NUL-terminated string into an underscore, in place; tabs stay.
KOVA_API void kvSp2_(char *text);

} // namespace kova
