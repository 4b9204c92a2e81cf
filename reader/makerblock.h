/// Decoding maker blocks: the eight kinds of record that carry more in a 2.0 file.
#pragma once

#include "format/content.h"
#include "reader/cursor.h"

#include <algorithm>

namespace kova {

/// Decodes what follows the fixed words of a maker block, as far as the block goes.
/// @tparam Around the record that has the block
template <class Ext, class Around> struct MakerReader : PassingIo {
  Cursor &cursor;
  Ext &ext;
  const Around &around;

  template <class Text, class Item, class Holder, class Count>
  int array(Text, std::vector<Item> Holder::*member, Count count, To = To::nothing) {
    return setupRun(cursor, ext.*member, static_cast<Word>(numberOf(ext, count)));
  }
  template <class Form, class Item, class Holder, class Count>
  int run(Form form, std::vector<Item> Holder::*member, Count count) {
    return array(form, member, count);
  }
  template <class Text, class Holder, class Count>
  int pairs(Text, std::vector<External> Holder::*member, Count count, To) {
    return kvSetupExternal(cursor, ext.*member, static_cast<Word>(numberOf(ext, count)));
  }

  Word tiles() const { return kvCiTileNum(around); }
};

/// Decodes the maker block of one record into its `ext`.
/// @return 1; 0 where the record has no maker block, or where memory cannot be had (then `fault` says so).
template <class Head, class Record> int setupBlock(Record &record, Fault &fault) {
  if (record.van_ext_blk_size == 0)
    return 0;
  Cursor cursor = cursorOf(vanExtBlk(record.ext_blk));
  const int ok = withinMemory(cursor, [&] {
    using Ext = typename decltype(record.ext)::element_type;
    record.ext = std::make_unique<Ext>();
    Head &head = *record.ext;
    setupFixed(cursor, head);
    MakerReader<Ext, Record> reader{{}, cursor, *record.ext, record};
    return int{content(reader, head)};
  });
  fault = std::max(fault, cursor.fault);
  return ok;
}

/// Decodes the maker blocks of all elements of a list; one that lacks its block does not keep the others from theirs.
template <class Head, class Element> int setupBlocks(List<Element> &list, const char *list_name) {
  int ok = 1;
  Fault fault = Fault::none;
  const std::size_t count = std::min<std::size_t>(list.num, list.element.size());
  for (Element &element : std::span(list.element).first(count))
    ok *= setupBlock<Head>(element, fault);
  return fault == Fault::no_memory ? sayNoMemory(list_name) : ok;
}

/// The bytes of `count` items of a maker block (wraps at 32 bits).
template <class Item> constexpr Word blockBytes(Word count) { return Word{sizeof(Item)} * count; }

} // namespace kova
