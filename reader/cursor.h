/// Reading through the bounded cursor: the steps that the list readers are made of.
#pragma once

#include "kova/setup.h"

#include <algorithm>
#include <exception>
#include <type_traits>
#include <utility>

namespace kova {

/// @return the bytes between the cursor and the end of its buffer; 0 past the end.
inline std::uint64_t bytesLeft(const Cursor &cursor) {
  return cursor.offset < cursor.size ? cursor.size - cursor.offset : 0;
}

/// Notes a fault. @return 0, the result of a reader that fails.
inline int refuse(Cursor &cursor, Fault fault) {
  cursor.fault = fault;
  return 0;
}

/// @return 1 where `count` items of `item_bytes` bytes each lie before the end; else 0, the fault noted.
inline int require(Cursor &cursor, std::uint64_t count, std::uint64_t item_bytes) {
  // Divided, not multiplied: nothing here can wrap.
  return count == 0 || count <= bytesLeft(cursor) / item_bytes ? 1 : refuse(cursor, Fault::past_end);
}

/// Moves the cursor by a signed distance in bytes; a move that leads backwards is refused.
inline int moveBy(Cursor &cursor, std::int64_t bytes) {
  if (bytes < 0)
    return refuse(cursor, Fault::past_end);
  cursor.offset += static_cast<std::uint64_t>(bytes);
  return 1;
}

/// Copies `bytes` bytes as they stand in the buffer (host order) and moves past them; all or nothing.
int copyBytes(Cursor &cursor, void *to, std::size_t bytes);

/// Copies `bytes` bytes in file order, as texels want them, and moves past them; all or nothing.
int copyFileOrder(Cursor &cursor, unsigned char *to, std::size_t bytes);

/// Runs `body`, which may ask for memory. Where that cannot be had the fault is noted and the result is 0, so that
/// no exception leaves a reader.
template <class Body> int withinMemory(Cursor &cursor, Body &&body) {
  try {
    return body();
  } catch (const std::exception &) { // bad_alloc, or length_error where an address space is small
    return refuse(cursor, Fault::no_memory);
  }
}

/// Reports that there is no memory for a list. @return 0, the result of a reader that fails.
int sayNoMemory(const char *list_name);

/// Anything that is nothing but 32-bit words: a word, a tuple, the fixed head of a record.
template <class T>
concept WordRecord = std::is_trivially_copyable_v<T> && sizeof(T) % sizeof(Word) == 0 && alignof(T) == alignof(Word);

/// Copies the fixed words of a record and moves past them; all or nothing.
template <WordRecord Record> int readFixed(Cursor &cursor, Record &record) {
  return copyBytes(cursor, &record, sizeof(Record));
}

/// As `readFixed` for the inside of a maker block: words past its end are 0.
template <WordRecord Record> void setupFixed(Cursor &cursor, Record &record) {
  const std::uint64_t there = bytesLeft(cursor) / sizeof(Word) * sizeof(Word);
  record = Record{};
  copyBytes(cursor, &record, static_cast<std::size_t>(there < sizeof record ? there : sizeof record));
}

/// Empties a run whose stream gave less than it had promised. @return 0.
template <class Item> int clearAndFail(std::vector<Item> &run) {
  run.clear();
  return 0;
}

/// Fills `run` with `count` items, some at a time: `copy(to, bytes)` sets them while the zeros that they begin with are
/// still in the cache. @return 0 where it does, the run then being empty.
template <class Item, class Copy> int fillRun(std::vector<Item> &run, std::size_t count, Copy copy) {
  constexpr std::size_t AT_ONCE = 256 * 1024 / sizeof(Item);
  run.reserve(count);
  run.clear();
  for (std::size_t done = 0; done < count; done = run.size()) {
    const std::size_t more = std::min(AT_ONCE, count - done);
    run.resize(done + more);
    if (!copy(&run[done], more * sizeof(Item)))
      return clearAndFail(run);
  }
  return 1;
}

/// Fills `destination` with `count` items of host-order words; all or nothing: a run that is not all there leaves it as
/// it was. The items are there before memory for them is asked for.
template <WordRecord Item> int readRun(Cursor &cursor, std::vector<Item> &destination, std::uint64_t count) {
  if (!require(cursor, count, sizeof(Item)))
    return 0;
  return withinMemory(cursor, [&] {
    return fillRun(destination, static_cast<std::size_t>(count),
                   [&](Item *to, std::size_t bytes) { return copyBytes(cursor, to, bytes); });
  });
}

/// Sets the word at byte `at` of each record from a run of words.
template <WordRecord Record> int readWordOf(Cursor &cursor, std::vector<Record> &records, std::size_t at) {
  for (Record &record : records)
    if (!copyBytes(cursor, reinterpret_cast<unsigned char *>(&record) + at, sizeof(Word)))
      return 0;
  return 1;
}

/// As `readRun` for items that are stored as a run of their first words, a run of their second words and so on; where
/// they are not all there, none is held.
template <WordRecord Item> int readPairs(Cursor &cursor, std::vector<Item> &destination, std::uint64_t count) {
  destination.clear();
  if (!require(cursor, count, sizeof(Item)))
    return 0;
  return withinMemory(cursor, [&] {
    destination.resize(static_cast<std::size_t>(count));
    for (std::size_t at = 0; at < sizeof(Item); at += sizeof(Word))
      if (!readWordOf(cursor, destination, at))
        return clearAndFail(destination);
    return 1;
  });
}

/// As `readRun`, but holds what is there: the items that lie whole inside the buffer. What follows a run that was cut
/// short is out of reach, so the cursor then stands at the end. @return 0 only where memory cannot be had.
template <WordRecord Item> int setupRun(Cursor &cursor, std::vector<Item> &destination, Word count) {
  const std::uint64_t there = bytesLeft(cursor) / sizeof(Item);
  const int ok = readRun(cursor, destination, count < there ? count : there);
  if (ok && there < count)
    cursor.offset = cursor.size;
  return ok;
}

} // namespace kova
