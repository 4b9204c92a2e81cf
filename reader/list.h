/// What all lists share: the common list header, the element list, and the way they are read.
#pragma once

#include "reader/words.h"

#include <cstring>

namespace kova {

/// Leads the element tags of a list: element tag = list tag + ELEMENT_KIND; the second element kind of the colour and
/// vector lists has list tag + SECOND_ELEMENT_KIND.
inline constexpr Word ELEMENT_KIND = 0x100;
inline constexpr Word SECOND_ELEMENT_KIND = 0x200;

/// The six words that every list but the scene, colour and vector lists begins with. The dump prints them under
/// the list's own prefix (env_list_tag, env_num and so on).
struct ListHead {
  Word list_tag;
  Word list_header_size; ///< bytes; recorded, never used to find the elements
  Word list_size;        ///< bytes, the whole list
  Word num;              ///< the count that the file gives; `element` may hold fewer
  Word van_ext_blk_size; ///< bytes
  Word usr_ext_blk_size; ///< bytes
};
static_assert(sizeof(ListHead) == 24);

/// A list in memory. After a read that failed it holds what was read before the fault.
template <class Element> struct List : ListHead {
  Words num_byte; ///< the size table: bytes of each element, as the file gives them
  std::vector<Element> element;
  ExtBlk ext_blk;

  List() : ListHead{} {}
};

/// The seven words of the colour list's and the vector list's header.
struct TwoKindListHead {
  Word list_tag;
  Word list_header_size;
  Word list_size;
  Word tri_group_num;
  Word vtx_group_num;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(TwoKindListHead) == 28);

/// A list of groups for triangles and groups for vertices, each kind with a size table of its own.
template <class TriGroupElement, class VtxGroupElement> struct TwoKindList : TwoKindListHead {
  Words tri_group_size;
  Words vtx_group_size;
  std::vector<TriGroupElement> tri_group;
  std::vector<VtxGroupElement> vtx_group;
  ExtBlk ext_blk;

  TwoKindList() : TwoKindListHead{} {}
};

/// @return how many of `held` records a loop over `count` walks: never more than the count, never more than are there.
inline std::size_t walked(Word count, std::size_t held) { return count < held ? count : held; }

/// The first `walked` records of a container, for loops.
template <class Record> std::span<const Record> walked(Word count, const std::vector<Record> &held) {
  return std::span<const Record>(held).first(walked(count, held.size()));
}

/// Reads `count` elements, each from its fixed head on. An element whose head lies inside the buffer is held, with as
/// much as could be read of it; `readElement(cursor, element)` reads it, head included.
/// @param least the fewest bytes by which an element moves the cursor; 0 where it may not move at all (the caller then
///        has bounded the count by words that are there).
template <class Head, class Element, class ReadElement>
int readElements(Cursor &cursor, std::vector<Element> &destination, Word count, std::size_t least,
                 ReadElement readElement) {
  destination.clear();
  const std::uint64_t room = least == 0 ? count : bytesLeft(cursor) / least;
  destination.reserve(static_cast<std::size_t>(count < room ? count : room));
  for (Word i = 0; i < count; ++i) {
    if (!require(cursor, 1, sizeof(Head)))
      return 0;
    if (!readElement(cursor, destination.emplace_back()))
      return 0;
  }
  return 1;
}

/// Reads the fixed head of an element and tests its tag, which is its first word.
template <class Head, class Element> int readHead(Cursor &cursor, Element &element, Word tag) {
  Head &head = element;
  if (!readFixed(cursor, head))
    return 0;
  Word found;
  std::memcpy(&found, &head, sizeof found);
  return kvCheckTag(found, tag);
}

/// Reads a list that begins with the common header: header, list tag, size table, elements, blocks.
/// @param tagIsRight tests the list tag and prints its message.
template <class Head, class Element, class TagIsRight, class ReadElement>
int readListTagged(Cursor &cursor, List<Element> &list, std::size_t least, TagIsRight tagIsRight,
                   ReadElement readElement) {
  return withinMemory(cursor, [&] {
    list = List<Element>();
    ListHead &head = list;
    return readFixed(cursor, head) && tagIsRight(list.list_tag) && kvReadArray(cursor, list.num_byte, list.num) &&
           readElements<Head>(cursor, list.element, list.num, least, readElement) &&
           kvReadExtBlk1(cursor, list.ext_blk, list.van_ext_blk_size, list.usr_ext_blk_size);
  });
}

template <class Head, class Element, class ReadElement>
int readList(Cursor &cursor, List<Element> &list, Word list_tag, ReadElement readElement) {
  return readListTagged<Head>(
      cursor, list, sizeof(Head), [list_tag](Word found) { return kvCheckTag(found, list_tag); }, readElement);
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
