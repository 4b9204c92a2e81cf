/// Decoding maker blocks: the eight kinds of record that carry more in a 2.0 file.
#pragma once

#include "kova/list.h"
#include "reader/cursor.h"

#include <algorithm>

namespace kova {

/// Decodes the maker block of one record into its `ext`. `setupArrays(cursor, ext)` reads what follows the fixed words.
/// @return 1; 0 where the record has no maker block, or where memory cannot be had (then `fault` says so).
template <class Head, class Record, class SetupArrays>
int setupBlock(Record &record, Fault &fault, SetupArrays setupArrays) {
  if (record.van_ext_blk_size == 0)
    return 0;
  const std::span<const Word> block = vanExtBlk(record.ext_blk);
  Cursor cursor = cursorOf(block);
  const int ok = withinMemory(cursor, [&] {
    using Ext = typename decltype(record.ext)::element_type;
    record.ext = std::make_unique<Ext>();
    Head &head = *record.ext;
    setupFixed(cursor, head);
    return int{setupArrays(cursor, *record.ext)};
  });
  fault = std::max(fault, cursor.fault);
  return ok;
}

/// Decodes the maker blocks of all elements of a list; one that lacks its block does not keep the others from theirs.
template <class Head, class Element, class SetupArrays>
int setupBlocks(List<Element> &list, const char *list_name, SetupArrays setupArrays) {
  int ok = 1;
  Fault fault = Fault::none;
  const std::size_t count = std::min<std::size_t>(list.num, list.element.size());
  for (Element &element : std::span(list.element).first(count)) {
    ok *=
        setupBlock<Head>(element, fault, [&](Cursor &cursor, auto &ext) { return setupArrays(cursor, ext, element); });
  }
  return fault == Fault::no_memory ? sayNoMemory(list_name) : ok;
}

/// The bytes of `count` items of a maker block (wraps at 32 bits).
template <class Item> constexpr Word blockBytes(Word count) { return Word{sizeof(Item)} * count; }

inline constexpr auto NO_ARRAYS = [](Cursor &, const auto &, const auto &) { return true; };

} // namespace kova
