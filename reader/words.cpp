#include "reader/words.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace kova {

namespace {

constexpr bool HOST_IS_FILE_ORDER = std::endian::native == std::endian::big;

Word swapped(Word word) { return word << 24 | (word & 0xff00) << 8 | (word >> 8 & 0xff00) | word >> 24; }

/// Copies whole words from `from` to `to`, which may be the same place, turning the byte order of each.
void copySwapped(unsigned char *to, const unsigned char *from, std::size_t words) {
  for (std::size_t i = 0; i < words; ++i) {
    Word word;
    std::memcpy(&word, from + i * sizeof word, sizeof word);
    word = swapped(word);
    std::memcpy(to + i * sizeof word, &word, sizeof word);
  }
}

enum class Order : std::uint8_t { host, file };

/// Copies a piece of a list out of memory, where it stands in host order from byte `begin` on; the words up to
/// `converted_end` were converted, the bytes of an incomplete last word were not.
void copyPiece(unsigned char *to, const unsigned char *data, std::uint64_t begin, std::size_t bytes,
               std::uint64_t converted_end, Order order) {
  if (order == Order::host) {
    std::memcpy(to, data + begin, bytes);
    return;
  }
  std::size_t done = 0;
  if (begin % sizeof(Word) == 0 && begin < converted_end) {
    const std::uint64_t words = std::min<std::uint64_t>(bytes, converted_end - begin) / sizeof(Word);
    copySwapped(to, data + begin, static_cast<std::size_t>(words));
    done = static_cast<std::size_t>(words * sizeof(Word));
  }
  for (; done < bytes; ++done) { // byte p of the file stands at p ^ 3 of its converted word
    const std::uint64_t at = begin + done;
    to[done] = data[at < converted_end ? at ^ 3 : at];
  }
}

/// Readers step back within the record that they are at, by no more than this.
constexpr std::uint64_t STEP_BACK = 64;

/// Moves the window of a stream so that it holds byte `offset` of the list, and what a reader may step back to.
void moveWindow(ListStream &source, std::uint64_t offset, std::uint64_t size) {
  if (offset < source.window_begin || offset > source.window_end) {
    source.window_begin = source.window_end = offset & ~std::uint64_t{3};
    std::fseek(source.stream, source.begin + static_cast<long>(source.window_begin), SEEK_SET);
  }
  const std::uint64_t kept = std::min(STEP_BACK, source.window_end - source.window_begin);
  unsigned char *const window = source.window.get();
  std::memmove(window, window + (source.window_end - source.window_begin - kept), kept);
  source.window_begin = source.window_end - kept;
  const std::uint64_t wanted = std::min(LIST_WINDOW - kept, size - source.window_end);
  source.window_end += freadEndianSwap4(window + kept, static_cast<std::size_t>(wanted), source.stream);
}

/// Reads whole words straight to where they are kept. @return 0 where the stream gives less.
int readThrough(ListStream &source, unsigned char *to, std::size_t bytes, Order order) {
  const std::size_t got =
      order == Order::host ? freadEndianSwap4(to, bytes, source.stream) : std::fread(to, 1, bytes, source.stream);
  source.window_begin = source.window_end += got;
  if (got % sizeof(Word) != 0) // the next window is sought, at a whole word
    source.window_begin = source.window_end = ~std::uint64_t{3};
  return got == bytes;
}

int takeFromStream(ListStream &source, std::uint64_t offset, std::uint64_t size, unsigned char *to, std::size_t bytes,
                   Order order) {
  while (bytes > 0) {
    std::size_t piece;
    if (offset >= source.window_begin && offset < source.window_end) {
      piece = static_cast<std::size_t>(std::min<std::uint64_t>(bytes, source.window_end - offset));
      copyPiece(to, source.window.get(), offset - source.window_begin, piece,
                (size & ~std::uint64_t{3}) - source.window_begin, order);
    } else if (bytes >= LIST_WINDOW && offset == source.window_end && offset % sizeof(Word) == 0) {
      piece = bytes / sizeof(Word) * sizeof(Word);
      if (!readThrough(source, to, piece, order))
        return 0;
    } else {
      moveWindow(source, offset, size);
      if (offset >= source.window_end)
        return 0; // the file has become shorter
      continue;
    }
    to += piece;
    offset += piece;
    bytes -= piece;
  }
  return 1;
}

/// The one place where bytes leave a list.
int take(Cursor &cursor, unsigned char *to, std::size_t bytes, Order order) {
  if (!require(cursor, bytes, 1))
    return 0;
  if (bytes == 0) // a cursor past the end has no place to copy nothing from
    return 1;
  if (!cursor.source)
    copyPiece(to, cursor.data, cursor.offset, bytes, cursor.size & ~std::uint64_t{3}, order);
  else if (!takeFromStream(*cursor.source, cursor.offset, cursor.size, to, bytes, order))
    return refuse(cursor, Fault::past_end);
  cursor.offset += bytes;
  return 1;
}

Stream openOrSay(const char *path, const char *mode, const char *message) {
  Stream stream(std::fopen(path, mode));
  if (!stream)
    std::fputs(message, stderr);
  return stream;
}

template <class Pair, class First, class Second>
int readPairs(Cursor &cursor, std::vector<Pair> &destination, Word count, First Pair::*first, Second Pair::*second) {
  destination.clear();
  if (!require(cursor, count, sizeof(Pair)))
    return 0;
  return withinMemory(cursor, [&] {
    destination.resize(count);
    return (readMember(cursor, destination, first) && readMember(cursor, destination, second)) || dropped(destination);
  });
}

/// Reads both blocks of a record; `readArray(words, count)` reads one.
template <class ReadArray>
int readBlocks(Cursor &cursor, ExtBlk &blk, Word van_size, Word usr_size, ReadArray readArray) {
  if (van_size / sizeof(Word) == 0 && usr_size / sizeof(Word) == 0) {
    blk.words.reset();
    return 1;
  }
  return withinMemory(cursor, [&] {
    if (!blk.words)
      blk.words = std::make_unique<ExtBlkWords>();
    return int{readArray(blk.words->van, van_size >> 2) && readArray(blk.words->usr, usr_size >> 2)};
  });
}

} // namespace

void endianSwap4(void *buffer, std::size_t bytes) {
  auto *const at = static_cast<unsigned char *>(buffer);
  if constexpr (!HOST_IS_FILE_ORDER)
    copySwapped(at, at, bytes / sizeof(Word));
}

std::size_t freadEndianSwap4(void *buffer, std::size_t bytes, std::FILE *stream) {
  // Converted piece by piece, while a piece is still in the cache.
  constexpr std::size_t PIECE = 256 * 1024;
  auto *const to = static_cast<unsigned char *>(buffer);
  std::size_t done = 0;
  while (done < bytes) {
    const std::size_t wanted = std::min(PIECE, bytes - done);
    const std::size_t got = std::fread(to + done, 1, wanted, stream);
    endianSwap4(to + done, got);
    done += got;
    if (got < wanted)
      break;
  }
  return done;
}

std::size_t fwriteEndianSwap4(const void *buffer, std::size_t size, std::size_t count, std::FILE *stream) {
  try {
    const auto *const from = static_cast<const unsigned char *>(buffer);
    std::vector<unsigned char> converted(from, from + size * count);
    endianSwap4(converted.data(), converted.size());
    return std::fwrite(converted.data(), 1, converted.size(), stream);
  } catch (const std::exception &) {
    return 0;
  }
}

Stream kvKbReadOpen(const char *path) { return openOrSay(path, "rb", INPUT_OPEN_ERROR); }
Stream kvKbWriteOpen(const char *path) { return openOrSay(path, "wb", OUTPUT_OPEN_ERROR); }
Stream kvKtReadOpen(const char *path) { return openOrSay(path, "r", INPUT_OPEN_ERROR); }
Stream kvKtWriteOpen(const char *path) { return openOrSay(path, "w", OUTPUT_OPEN_ERROR); }

int copyBytes(Cursor &cursor, void *to, std::size_t bytes) {
  return take(cursor, static_cast<unsigned char *>(to), bytes, Order::host);
}

int copyFileOrder(Cursor &cursor, unsigned char *to, std::size_t bytes) {
  return take(cursor, to, bytes, HOST_IS_FILE_ORDER ? Order::host : Order::file);
}

int sayNoMemory(const char *list_name) {
  std::fprintf(stderr, "%s: out of memory.\n", list_name);
  return 0;
}

int kvReadArray(Cursor &cursor, Words &destination, Word count) { return readRun(cursor, destination, count); }
int kvReadArray(Cursor &cursor, Indices &destination, Word count) { return readRun(cursor, destination, count); }
int kvReadArray(Cursor &cursor, Floats &destination, Word count) { return readRun(cursor, destination, count); }

int kvSetupArray(Cursor &cursor, Words &destination, Word count) { return setupRun(cursor, destination, count); }
int kvSetupArray(Cursor &cursor, Indices &destination, Word count) { return setupRun(cursor, destination, count); }
int kvSetupArray(Cursor &cursor, Floats &destination, Word count) { return setupRun(cursor, destination, count); }

Word *kvReadArea(Cursor &cursor, Words &area, Word *&destination, Word bytes_per_row, Word rows) {
  const std::uint64_t row_words = bytes_per_row / sizeof(Word);
  if (!readRun(cursor, area, row_words * rows))
    return destination = nullptr;
  return destination = area.data() + area.size();
}

int kvReadExtBlk1(Cursor &cursor, ExtBlk &blk, Word van_size, Word usr_size) {
  return readBlocks(cursor, blk, van_size, usr_size,
                    [&](Words &words, Word count) { return kvReadArray(cursor, words, count); });
}

int kvSetupExtBlk1(Cursor &cursor, ExtBlk &blk, Word van_size, Word usr_size) {
  return readBlocks(cursor, blk, van_size, usr_size,
                    [&](Words &words, Word count) { return kvSetupArray(cursor, words, count); });
}

int kvCheckTag(Word found, Word expected) {
  if (found == expected)
    return 1;
  std::fprintf(stderr, "irregular tag ! %0#10x != %0#10x\n", found, expected);
  return 0;
}

int kvReadExternal(Cursor &cursor, std::vector<External> &destination, Word count) {
  return readPairs(cursor, destination, count, &External::file_name, &External::name);
}

int kvReadNodeIndex(Cursor &cursor, std::vector<NodeIndex> &destination, Word count) {
  return readPairs(cursor, destination, count, &NodeIndex::kind, &NodeIndex::index);
}

int kvSetupExternal(Cursor &cursor, std::vector<External> &destination, Word count) {
  // Pair i is there when word count + i is, so a block that is cut within the second members keeps the first pairs.
  const std::uint64_t there = bytesLeft(cursor) / sizeof(Word);
  const std::uint64_t held = there <= count ? 0 : std::min<std::uint64_t>(count, there - count);
  if (held == count)
    return kvReadExternal(cursor, destination, count);
  destination.clear();
  Cursor second = cursor;
  second.offset += std::uint64_t{count} * sizeof(Word);
  const int ok = withinMemory(cursor, [&] {
    destination.resize(static_cast<std::size_t>(held));
    return readMember(cursor, destination, &External::file_name) && readMember(second, destination, &External::name);
  });
  cursor.offset = cursor.size;
  return ok;
}

void kvSetNoExternal(External &external) { external = {-1, -1}; }

int kvTestSet(Word &word, Word value) {
  if (word == value)
    return 0;
  word = value;
  return 1;
}

void kvSetPoly(Word *poly, Word first, Word second, Word third, Word fourth, Word fifth) {
  const std::array<Word, 5> values = {first, second, third, fourth, fifth};
  std::copy(values.begin(), values.end(), poly);
}

void kvSp2_(char *text) { std::replace(text, text + std::strlen(text), ' ', '_'); }

} // namespace kova
