/// Reading lists and records: the steps of `content` that fill a model from the file.
#pragma once

#include "format/list.h"
#include "kova/behavior.h"
#include "kova/geometry.h"
#include "kova/scene.h"
#include "reader/cursor.h"
#include "reader/findings.h"

#include <cstring>

namespace kova {

/// Elements of a list know where they begin in the file; the records inside of them do not.
template <class Element>
concept ListElement = requires(Element element) {
  element.offset;
};

/// @return the place of what begins `bytes` bytes before the cursor.
inline Place placeBefore(const Cursor &cursor, std::uint64_t bytes) {
  return {cursor.list, cursor.element, offsetAfter(cursor.begin, cursor.offset - bytes)};
}

/// Reads `count` elements, each from its fixed head on. An element whose head lies inside the buffer is held, with as
/// much as could be read of it; `readElement(cursor, element)` reads it, head included.
/// @param min_bytes the fewest bytes by which an element moves the cursor; 0 where it may not move at all (the caller
/// then
///        has bounded the count by words that are there).
template <class Head, class Element, class ReadElement>
int readElements(Cursor &cursor, std::vector<Element> &destination, Word count, std::size_t min_bytes,
                 ReadElement readElement) {
  destination.clear();
  const std::uint64_t room = min_bytes == 0 ? count : bytesLeft(cursor) / min_bytes;
  destination.reserve(static_cast<std::size_t>(count < room ? count : room));
  for (Word i = 0; i < count; ++i) {
    if constexpr (ListElement<Element>)
      cursor.element = i;
    if (!require(cursor, 1, sizeof(Head)))
      return 0;
    Element &element = destination.emplace_back();
    if constexpr (ListElement<Element>)
      element.offset = offsetAfter(cursor.begin, cursor.offset);
    if (!readElement(cursor, element))
      return 0;
  }
  if constexpr (ListElement<Element>)
    cursor.element.reset();
  return 1;
}

/// As `kvCheckTag` for the tag of what is at `place`.
int checkTagAt(const Place &place, Word found, Word expected);

/// The same for a list of names, or a name, which may carry the tag of either list of names. The message shows
/// `list_tag`, also where the wrong one is a name's.
int nameTagAt(const Place &place, Word found, Word expected, Word list_tag);

/// Tests the tag of the record whose fixed words were read last.
/// @param around the record that it is inside of
template <class Head, class Around>
int testTag(const Cursor &cursor, const Head &head, Word expected, const Around &around) {
  Word found;
  std::memcpy(&found, &head, sizeof found);
  const Place place = placeBefore(cursor, sizeof head);
  if constexpr (std::is_same_v<Around, NameList>)
    return nameTagAt(place, found, expected, around.list_tag);
  else
    return checkTagAt(place, found, expected);
}

/// Whether the fixed words of an element let its reading go on, before its tag is looked at.
template <class Head> int goesOn(Cursor &, const Head &) { return 1; }
/// What follows a light would lie before it.
inline int goesOn(Cursor &cursor, const LightHead &light) {
  if (static_cast<Index>(light.light_header_size) >= 0)
    return 1;
  cursor.offset -= sizeof light;
  return refuse(cursor, Fault::past_end);
}

/// The fewest bytes by which an element moves the cursor: a light may not move it at all (header size 0), so only the
/// size table bounds their number.
template <class Head> inline constexpr std::size_t MIN_BYTES = sizeof(Head);
template <> inline constexpr std::size_t MIN_BYTES<LightHead> = 0;

/// Hands out `count` records that a count promises and the form does not store. They are records of zeros, so only
/// their number is kept; together they may not outnumber the words of the list, which keeps every loop over them
/// linear.
inline int takeZeroed(Cursor &cursor, Word &zeroed, Word count) {
  if (cursor.zeroed + count > cursor.size / sizeof(Word))
    return refuse(cursor, Fault::past_end);
  cursor.zeroed += count;
  zeroed = count;
  return 1;
}

/// Reads the references of a triangle group.
int readRefs(Cursor &cursor, TriGroup &group);

/// Reads ten words whatever the kind of a collision is; those past the end of the list are 0. They do not move the
/// cursor.
void readCollData(Cursor at, CollData &data);

/// Reads what follows the fixed words of a record.
/// @tparam Around the record that this one is inside of; itself where there is none
template <class Record, class Around = Record> struct RecordReader {
  Cursor &cursor;
  Record &record;
  Around &around;
  std::uint64_t begin; ///< of the record, in its list

  template <class Text, class Item, class Holder, class Count>
  int array(Text, std::vector<Item> Holder::*member, Count count, To = To::nothing) {
    return readRun(cursor, record.*member, numberOf(record, count));
  }

  template <class Text, class Item, class Holder, class Count>
  int pairs(Text, std::vector<Item> Holder::*member, Count count, To = To::nothing) {
    return readPairs(cursor, record.*member, numberOf(record, count));
  }

  template <class Form, class Item, class Holder, class Count>
  int run(Form, std::vector<Item> Holder::*member, Count count) {
    const std::uint64_t number = numberOf(record, count);
    std::vector<Item> &held = record.*member;
    if constexpr (Form::bytes == sizeof(Item))
      return readRun(cursor, held, number);
    if (!require(cursor, number, Form::bytes))
      return 0;
    held.resize(static_cast<std::size_t>(number)); // the words that this form lacks are 0
    for (Item &item : held)
      if (!copyBytes(cursor, &item, Form::bytes))
        return clearAndFail(held);
    return 1;
  }

  template <class Form, class Item, class Holder, class Count>
  int records(Form, std::vector<Item> Holder::*member, Count count) {
    using Head = typename Form::Head;
    const auto number = static_cast<Word>(numberOf(record, count));
    return readElements<Head>(cursor, record.*member, number, MIN_BYTES<Head>, [this](Cursor &at, Item &item) {
      Head &head = item;
      RecordReader<Item, Record> reader{at, item, record, at.offset};
      if (!readFixed(at, head) || !goesOn(at, head))
        return 0;
      if constexpr (Form::tag != 0) {
        if (!testTag(at, head, Form::tag, record))
          return 0;
      }
      return int{content(reader, head)};
    });
  }

  template <class Form, class Item, class Holder> int inner(Form, Item Holder::*member) {
    Item &item = record.*member;
    typename Form::Head &head = item;
    RecordReader<Item, Record> reader{cursor, item, record, cursor.offset};
    return readFixed(cursor, head) && content(reader, head);
  }

  int blocks() {
    if (record.van_ext_blk_size == 0 && record.usr_ext_blk_size == 0 && !record.ext_blk.words)
      return 1; // as of nearly all triangles
    return kvReadExtBlk1(cursor, record.ext_blk, record.van_ext_blk_size, record.usr_ext_blk_size);
  }
  /// Maker blocks are decoded when the whole file is read.
  template <class Form, class Ext> int blocks(Form, Ext) { return blocks(); }

  /// The blocks of the last record are those of the record around.
  template <class Holder> int blocksAround(ExtBlk Holder::*member) {
    const int ok = kvReadExtBlk1(cursor, around.ext_blk, around.van_ext_blk_size, around.usr_ext_blk_size);
    if (around.ext_blk.words)
      (record.*member).words = std::make_unique<ExtBlkWords>(*around.ext_blk.words);
    return ok;
  }

  template <class Holder> int header(Word Holder::*bytes) {
    cursor.offset = begin + record.*bytes;
    return 1;
  }

  template <class Text, class Holder, class Count> int absent(Text, Word Holder::*member, Count count) {
    return takeZeroed(cursor, record.*member, static_cast<Word>(numberOf(record, count)));
  }

  template <class Holder> int refs(std::unique_ptr<Index[]> Holder::*) { return readRefs(cursor, record); }

  int data(CollData Coll::*member) {
    readCollData(cursor, record.*member);
    return moveBy(cursor,
                  std::int64_t{static_cast<Index>(record.coll_size)} - static_cast<Index>(record.coll_header_size));
  }

  template <class Holder> int texels(std::vector<unsigned char> Holder::*member, std::uint64_t count) {
    if (!require(cursor, count, 1))
      return 0;
    return fillRun(record.*member, static_cast<std::size_t>(count),
                   [this](unsigned char *to, std::size_t bytes) { return copyFileOrder(cursor, to, bytes); });
  }

  template <class Holder> int text(Words Holder::*member, std::uint64_t count) { return array(0, member, count); }
};

/// Reads a list, or the scene.
/// @param list_tag which its tag is compared with; of a list of names, the other one is right, too
template <class List> int readList(Cursor &cursor, List &list, Word list_tag) {
  return withinMemory(cursor, [&] {
    list = List();
    typename ListFormat<List>::Head &head = list;
    RecordReader<List> reader{cursor, list, list, cursor.offset};
    if (!readFixed(cursor, head))
      return 0;
    list.offset = placeBefore(cursor, sizeof head).offset;
    if (!testTag(cursor, head, list_tag, list))
      return 0;
    return int{ListFormat<List>::content(reader, head)};
  });
}

} // namespace kova
