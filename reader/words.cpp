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
    return readMember(cursor, destination, first) && readMember(cursor, destination, second);
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
  if (!require(cursor, bytes, 1))
    return 0;
  if (bytes > 0) // a cursor past the end has no place to copy nothing from
    std::memcpy(to, cursor.data + cursor.offset, bytes);
  cursor.offset += bytes;
  return 1;
}

int copyFileOrder(Cursor &cursor, unsigned char *to, std::size_t bytes) {
  const std::uint64_t begin = cursor.offset;
  if (HOST_IS_FILE_ORDER || bytes == 0)
    return copyBytes(cursor, to, bytes);
  if (!require(cursor, bytes, 1))
    return 0;
  cursor.offset += bytes;
  // Byte p of the file stands at p ^ 3 of its converted word; the bytes behind the last whole word were not converted.
  const std::uint64_t converted_end = cursor.size & ~std::uint64_t{3};
  std::size_t done = 0;
  if (begin % sizeof(Word) == 0 && begin < converted_end) {
    const std::uint64_t words = std::min<std::uint64_t>(bytes, converted_end - begin) / sizeof(Word);
    copySwapped(to, cursor.data + begin, static_cast<std::size_t>(words));
    done = static_cast<std::size_t>(words * sizeof(Word));
  }
  for (; done < bytes; ++done) {
    const std::uint64_t at = begin + done;
    to[done] = cursor.data[at < converted_end ? at ^ 3 : at];
  }
  return 1;
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
