/// The steps that checks are made of.
#pragma once

#include "format/lists.h"
#include "kova/check.h"
#include "reader/findings.h"

namespace kova {

// --- Small helpers --------------------------------------------------------------------------------------------------

/// A word as messages show it.
inline constexpr Index asSigned(Word word) { return static_cast<Index>(word); }

/// The bytes that a word, an item of an array or the fixed words of a record take in the file.
template <class Fixed> inline constexpr Word fixedBytes = sizeof(Fixed);

/// `checksame` of two words, reported as the finding called `ID`. `label` is what the message begins with, `compared`
/// the same words as what is in the file and what was expected.
template <FindingId ID>
int checkSame(const Place &place, const Label &label, Word left, Word right, const Compared &compared) {
  return left == right ? 1 : report<ID>(place, compared, label, left, right);
}

// The public checks of sums, of a record at `place`.
int checkAreaSize(const Place &place, const Label &label, Word declared, Word header, Word element_size, Word count,
                  Word ext1, Word ext2);
int checkListSum(const Place &place, Word declared, Word header, std::span<const Word> sizes, Word count, Word ext1,
                 Word ext2);
int checkWordArraySum(const Place &place, const Label &label, Word declared, Word header, Word count, Word ext1,
                      Word ext2);
int checkTwoKindListSum(const Place &place, Word declared, Word header, std::span<const Word> sizes1, Word count1,
                        std::span<const Word> sizes2, Word count2, Word ext1, Word ext2);
int checkChainNodeSum(const Place &place, const Label &label, Word declared, Word header, Word count4, Word count8,
                      Word ext1, Word ext2);

/// `checkTag` of the external name list or one of its names, whose tag is at `place`.
int checkNameTag(const Place &place, Word found, Word expected);

/// `checkExtsize` of the maker block whose size is at `place`.
int checkBlockSize(const Place &place, Word declared, Word required);

/// The same for the block of element `number`, which messages call `name`.
int checkElementBlockSize(const Place &place, Word declared, Word required, Word number, const char *name);

// --- Elements -------------------------------------------------------------------------------------------------------

/// An element of a list, as checks see it.
template <class Element> struct Listed {
  Place place;
  Word number;     ///< its position
  Word table_size; ///< its entry in the size table
  const Element &element;
};

/// Folds `checkElement(listed)` over `elements`, in order from number 0. The size table of a list that was read is at
/// least as long; an entry that is not held counts as 0.
template <class Element, class CheckElement>
int checkElements(const char *list_name, std::span<const Word> table, std::span<const Element> elements,
                  CheckElement checkElement) {
  int ok = 1;
  for (std::size_t i = 0; i < elements.size(); ++i) {
    const Word number = static_cast<Word>(i);
    const Word table_size = i < table.size() ? table[i] : 0;
    ok *= checkElement(Listed<Element>{{list_name, number, elements[i].offset}, number, table_size, elements[i]});
  }
  return ok;
}

/// The index of an element against its position.
template <class Element> int checkIndex(const Label &label, const Listed<Element> &listed, Index Element::*index) {
  const Word stored = static_cast<Word>(listed.element.*index);
  return checkSame<"element-index">(wordOf(listed.place, listed.element, index), label, listed.number, stored,
                                    {stored, listed.number});
}

/// `check_index_size` of an element.
template <class Element>
int checkIndexSize(const char *name, const Listed<Element> &listed, Index Element::*index, Word Element::*size) {
  int ok = checkIndex({name, listed.number, " index"}, listed, index);
  const Word stored = listed.element.*size;
  ok *= checkSame<"element-size">(wordOf(listed.place, listed.element, size), {name, listed.number, " size"},
                                  listed.table_size, stored, {stored, listed.table_size});
  return ok;
}

/// The same for an element of a version-2 list.
template <class Element> int checkIndexSize(const char *name, const Listed<Element> &listed) {
  return checkIndexSize<Element>(name, listed, &Element::this_index, &Element::size);
}

/// What differs between the elements of the regular lists.
template <class Element> struct ElementRow {
  const char *name; ///< as messages call the element
  Index Element::*index;
  Word Element::*size;
  Word fixed_bytes = 0;              ///< 0 where the size is compared with the size table only
  Word item_bytes = 0;               ///< bytes of each item of the element's array; 0 where it has none
  Word Element::*item_num = nullptr; ///< the number of items; null where there is no array
  const char *size_name = nullptr;   ///< the name in the message of a wrong sum, where it is another one
};

/// `check_index_size`; then `check_whole_area_size` of the fixed words, the items and the blocks, which are 0 for the
/// records that the format gives none.
template <class Element> int checkElement(const ElementRow<Element> &row, const Listed<Element> &listed) {
  const Element &element = listed.element;
  int ok = checkIndexSize(row.name, listed, row.index, row.size);
  if (row.fixed_bytes == 0)
    return ok;
  const char *const size_name = row.size_name != nullptr ? row.size_name : row.name;
  const Word item_num = row.item_num != nullptr ? element.*row.item_num : 0;
  Word van = 0;
  Word usr = 0;
  if constexpr (requires { element.van_ext_blk_size; }) {
    van = element.van_ext_blk_size;
    usr = element.usr_ext_blk_size;
  }
  ok *= checkAreaSize(listed.place, {size_name, listed.number, " size"}, element.*row.size, row.fixed_bytes,
                      row.item_bytes, item_num, van, usr);
  return ok;
}

/// `checkElement` of all `elements`.
template <class Element>
int checkElements(const char *list_name, std::span<const Word> table, std::span<const Element> elements,
                  const ElementRow<Element> &row) {
  return checkElements(list_name, table, elements,
                       [&row](const Listed<Element> &listed) { return checkElement(row, listed); });
}

// --- Lists ----------------------------------------------------------------------------------------------------------

/// @return the list called `name`. A name that no list has does not compile.
consteval const ListRow &listRow(std::string_view name) {
  for (const ListRow &row : LISTS)
    if (name == row.name)
      return row;
  throw "no list has this name";
}

/// @return the place of the list's size word in the header or in its maker block, which may lack it.
Place sizeWordPlace(const FileHeader &header, const ListRow &row);

/// `checksame` under "list size" of the header's word for the list and the list's own, which is `size`.
template <class List, class Holder>
int checkListSize(const Kis &kis, const ListRow &row, const List &list, Word Holder::*size) {
  const Word in_header = kis.file_header.*row.size;
  const Word in_list = list.*size;
  if (list.offset == NO_OFFSET) // it was not read
    return checkSame<"list-size">(sizeWordPlace(kis.file_header, row), "list size", in_header, in_list,
                                  {in_header, in_list});
  return checkSame<"list-size">(wordOf(Place{row.name, {}, list.offset}, list, size), "list size", in_header, in_list,
                                {in_list, in_header});
}

/// `checkListSize`, then the sum of the list.
template <class Element> int checkListSizes(const Kis &kis, const ListRow &row, const List<Element> &list) {
  int ok = checkListSize(kis, row, list, &List<Element>::list_size);
  ok *= checkListSum({row.name, {}, list.offset}, list.list_size, fixedBytes<ListHead>, list.num_byte, list.num,
                     list.van_ext_blk_size, list.usr_ext_blk_size);
  return ok;
}

/// The common form of a list check: heading, `checkListSizes`, then `checkElements`.
template <class Element, class CheckElement>
int checkList(const Kis &kis, const ListRow &row, const List<Element> &list, CheckElement checkElement) {
  checkHeading(row.name);
  int ok = checkListSizes(kis, row, list);
  ok *= checkElements(row.name, list.num_byte, counted(list.num, list.element), checkElement);
  return ok;
}

/// The same for a regular list, whose elements differ by a row.
template <class Element>
int checkList(const Kis &kis, const ListRow &row, const List<Element> &list, const ElementRow<Element> &element_row) {
  return checkList<Element, const ElementRow<Element> &>(kis, row, list, element_row);
}

// --- Maker blocks ---------------------------------------------------------------------------------------------------

/// @return the fixed words of a record's decoded maker block; zeros where it has none.
template <class Head, class Record> Head blockHead(const Record &record) {
  return record.ext ? static_cast<const Head &>(*record.ext) : Head{};
}

/// What differs between the checks of the maker blocks of the lists' elements.
template <class Element> struct BlockRow {
  const char *list;
  const char *heading;
  const char *name; ///< as messages call the element
  Word fixed_bytes;
  Word (*counted_bytes)(const Element &) = nullptr; ///< what the counts call for; null for blocks without arrays
};

/// The maker blocks of all elements of a list, each against its fixed words and against what its counts call for. Both
/// tests always run, so a block that is shorter than its fixed words is reported twice where it has arrays.
template <class Element> int checkBlocks(const List<Element> &list, const BlockRow<Element> &row) {
  checkHeading(row.heading);
  return checkElements(row.list, {}, counted(list.num, list.element), [&row](const Listed<Element> &listed) {
    const Element &element = listed.element;
    const Place place = wordOf(listed.place, element, &Element::van_ext_blk_size);
    int ok = checkElementBlockSize(place, element.van_ext_blk_size, row.fixed_bytes, listed.number, row.name);
    if (row.counted_bytes != nullptr)
      ok *= checkElementBlockSize(place, element.van_ext_blk_size, row.counted_bytes(element), listed.number, row.name);
    return ok;
  });
}

} // namespace kova
