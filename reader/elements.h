/// Reading lists: the common header, the size table, the elements, the blocks.
#pragma once

#include "kova/list.h"
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

/// Reads the fixed head of an element and tests its tag, which is its first word.
template <class Head, class Element> int readHead(Cursor &cursor, Element &element, Word tag) {
  Head &head = element;
  if (!readFixed(cursor, head))
    return 0;
  Word found;
  std::memcpy(&found, &head, sizeof found);
  return checkTagAt(placeBefore(cursor, sizeof(Head)), found, tag);
}

/// Reads a list that begins with the common header: header, list tag, size table, elements, blocks.
/// @param tagIsRight tests the list tag and reports a wrong one; its arguments are the list's place and the tag.
template <class Head, class Element, class TagIsRight, class ReadElement>
int readListTagged(Cursor &cursor, List<Element> &list, std::size_t min_bytes, TagIsRight tagIsRight,
                   ReadElement readElement) {
  return withinMemory(cursor, [&] {
    list = List<Element>();
    ListHead &head = list;
    if (!readFixed(cursor, head))
      return 0;
    const Place place = placeBefore(cursor, sizeof head);
    list.offset = place.offset;
    return int{tagIsRight(place, list.list_tag) && kvReadArray(cursor, list.num_byte, list.num) &&
               readElements<Head>(cursor, list.element, list.num, min_bytes, readElement) &&
               kvReadExtBlk1(cursor, list.ext_blk, list.van_ext_blk_size, list.usr_ext_blk_size)};
  });
}

template <class Head, class Element, class ReadElement>
int readList(Cursor &cursor, List<Element> &list, Word list_tag, ReadElement readElement) {
  return readListTagged<Head>(
      cursor, list, sizeof(Head),
      [list_tag](const Place &place, Word found) { return checkTagAt(place, found, list_tag); }, readElement);
}

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

/// Reads the two blocks of an element, whose sizes stand in its head.
template <class Element> int readExtBlk(Cursor &cursor, Element &element) {
  return kvReadExtBlk1(cursor, element.ext_blk, element.van_ext_blk_size, element.usr_ext_blk_size);
}

} // namespace kova
