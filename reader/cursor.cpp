#include "reader/cursor.h"

#include "reader/byte_order.h"
#include "reader/findings.h"
#include "reader/window.h"

#include <algorithm>
#include <cstddef>

namespace kova {

namespace {

/// The bytes of a list that are whole words. Those of an incomplete last word are never converted.
std::uint64_t wholeWords(const Cursor &cursor) { return cursor.size / sizeof(Word) * sizeof(Word); }

/// Byte `at` of the list as it stands in the file.
int takeFileByte(const Cursor &cursor, std::uint64_t at, unsigned char &byte) {
  if (cursor.window)
    return takeFromWindow(*cursor.window, at, &byte, 1, Order::file);
  byte = cursor.data[!HOST_IS_FILE_ORDER && at < wholeWords(cursor) ? at ^ 3 : at];
  return 1;
}

int takeFileBytes(const Cursor &cursor, unsigned char *to, std::size_t bytes) {
  if (cursor.window)
    return takeFromWindow(*cursor.window, cursor.offset, to, bytes, Order::file);
  for (std::size_t i = 0; i < bytes; ++i)
    takeFileByte(cursor, cursor.offset + i, to[i]);
  return 1;
}

/// Words at a place that is no multiple of 4, which follow an odd number of texels. They are taken from the list as a
/// little-endian host has converted it, whatever this host is: its byte p is byte p ^ 3 of the file, and a word is four
/// such bytes, the least significant first.
int takeOddWords(const Cursor &cursor, unsigned char *to, std::size_t bytes) {
  for (std::size_t i = 0; i < bytes; ++i) {
    const std::uint64_t at = cursor.offset + (HOST_IS_FILE_ORDER ? i ^ 3 : i);
    if (!takeFileByte(cursor, at < wholeWords(cursor) ? at ^ 3 : at, to[i]))
      return 0;
  }
  return 1;
}

int takeWords(const Cursor &cursor, unsigned char *to, std::size_t bytes) {
  if (cursor.offset % sizeof(Word) != 0)
    return takeOddWords(cursor, to, bytes);
  if (cursor.window)
    return takeFromWindow(*cursor.window, cursor.offset, to, bytes, Order::host);
  std::memcpy(to, cursor.data + cursor.offset, bytes);
  return 1;
}

/// The one place where bytes leave a list.
int take(Cursor &cursor, unsigned char *to, std::size_t bytes, Order order) {
  if (!require(cursor, bytes, 1))
    return 0;
  if (bytes == 0) // a cursor past the end has no place to copy nothing from
    return 1;
  if (!(order == Order::host ? takeWords(cursor, to, bytes) : takeFileBytes(cursor, to, bytes)))
    return refuse(cursor, Fault::past_end);
  cursor.offset += bytes;
  return 1;
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

int copyBytes(Cursor &cursor, void *to, std::size_t bytes) {
  return take(cursor, static_cast<unsigned char *>(to), bytes, Order::host);
}

int copyFileOrder(Cursor &cursor, unsigned char *to, std::size_t bytes) { return take(cursor, to, bytes, Order::file); }

int sayNoMemory(const char *list_name) { return report<"out-of-memory">({.list = list_name}, {}, list_name); }

int kvReadArray(Cursor &cursor, Words &destination, Word count) { return readRun(cursor, destination, count); }
int kvReadArray(Cursor &cursor, Indices &destination, Word count) { return readRun(cursor, destination, count); }
int kvReadArray(Cursor &cursor, Floats &destination, Word count) { return readRun(cursor, destination, count); }

int kvSetupArray(Cursor &cursor, Words &destination, Word count) { return setupRun(cursor, destination, count); }
int kvSetupArray(Cursor &cursor, Indices &destination, Word count) { return setupRun(cursor, destination, count); }
int kvSetupArray(Cursor &cursor, Floats &destination, Word count) { return setupRun(cursor, destination, count); }

Word *kvReadArea(Cursor &cursor, Words &area, Word *&destination, Word bytes_per_row, Word rows) {
  const std::uint64_t row_words = bytes_per_row / sizeof(Word);
  // Room for one word at least, so that an empty area has a place, too.
  if (!withinMemory(cursor, [&] { return area.reserve(1), 1; }) || !readRun(cursor, area, row_words * rows))
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

int kvReadExternal(Cursor &cursor, std::vector<External> &destination, Word count) {
  return readPairs(cursor, destination, count);
}

int kvReadNodeIndex(Cursor &cursor, std::vector<NodeIndex> &destination, Word count) {
  return readPairs(cursor, destination, count);
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
    readWordOf(cursor, destination, offsetof(External, file_name)); // the words of a block are there
    readWordOf(second, destination, offsetof(External, name));
    return 1;
  });
  cursor.offset = cursor.size;
  return ok;
}

} // namespace kova
