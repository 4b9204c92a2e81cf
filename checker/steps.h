/// The steps that checks are made of.
#pragma once

#include "kova/check.h"
#include "reader/lists.h"

namespace kova {

// --- Small helpers --------------------------------------------------------------------------------------------------

/// A word as messages show it.
inline constexpr Index asSigned(Word word) { return static_cast<Index>(word); }

/// The bytes that a word, an item of an array or the fixed words of a record take in the file.
template <class Fixed> inline constexpr Word fixedBytes = sizeof(Fixed);

/// A label with an element's number, in a buffer that holds the longest one.
struct Label {
  char text[48];
};

/// @return "%s[%d]%s" of the three arguments, such as "Env[3] size".
Label elementLabel(const char *name, Word number, const char *what);

/// Prints "---- checking %s ----\n".
void checkHeading(const char *name);

// --- Elements -------------------------------------------------------------------------------------------------------

/// Folds `checkElement(number, table_size, element)` over `elements`, in order from number 0. The size table of a list
/// that was read is at least as long; an entry that is not held counts as 0.
template <class Element, class CheckElement>
int checkElements(std::span<const Word> table, std::span<const Element> elements, CheckElement checkElement) {
  int ok = 1;
  for (std::size_t i = 0; i < elements.size(); ++i)
    ok *= checkElement(static_cast<Word>(i), i < table.size() ? table[i] : 0, elements[i]);
  return ok;
}

/// As `checkElements` for records without a size table: folds `checkRecord(number, record)`.
template <class Record, class CheckRecord> int checkEach(std::span<const Record> records, CheckRecord checkRecord) {
  return checkElements({}, records,
                       [&](Word number, Word, const Record &record) { return checkRecord(number, record); });
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
template <class Element>
int checkElement(const ElementRow<Element> &row, Word number, Word table_size, const Element &element) {
  const Word size = element.*row.size;
  int ok = check_index_size(row.name, number, element.*row.index, table_size, size);
  if (row.fixed_bytes == 0)
    return ok;
  const Label label = elementLabel(row.size_name != nullptr ? row.size_name : row.name, number, " size");
  const Word item_num = row.item_num != nullptr ? element.*row.item_num : 0;
  Word van = 0;
  Word usr = 0;
  if constexpr (requires { element.van_ext_blk_size; }) {
    van = element.van_ext_blk_size;
    usr = element.usr_ext_blk_size;
  }
  ok *= check_whole_area_size(label.text, size, row.fixed_bytes, row.item_bytes, item_num, van, usr);
  return ok;
}

/// `checkElement` of all `elements`.
template <class Element>
int checkElements(std::span<const Word> table, std::span<const Element> elements, const ElementRow<Element> &row) {
  return checkElements(table, elements, [&row](Word number, Word table_size, const Element &element) {
    return checkElement(row, number, table_size, element);
  });
}

/// `check_index_size` of an element of a version-2 list.
int checkIndexSize(const char *name, Word number, Word table_size, const ElementHead &element);

// --- Lists ----------------------------------------------------------------------------------------------------------

/// @return the list called `name`. A name that no list has does not compile.
consteval const ListRow &listRow(std::string_view name) {
  for (const ListRow &row : LISTS)
    if (name == row.name)
      return row;
  throw "no list has this name";
}

/// `checksame` under "list size" of the header's word for the list and `list_size`, the list's own.
int checkListSize(const Kis &kis, const ListRow &row, Word list_size);

/// `checkListSize`, then `check_whole_structured_size` of the list without a label.
/// @param num_byte the list's size table
int checkListSizes(const Kis &kis, const ListRow &row, const ListHead &list, std::span<const Word> num_byte);

/// The common form of a list check: heading, `checkListSizes`, then `checkElements`.
template <class Element, class CheckElement>
int checkList(const Kis &kis, const ListRow &row, const List<Element> &list, CheckElement checkElement) {
  checkHeading(row.name);
  int ok = checkListSizes(kis, row, list, list.num_byte);
  ok *= checkElements(list.num_byte, counted(list.num, list.element), checkElement);
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
  const char *heading;
  const char *name; ///< as messages call the element
  Word fixed_bytes;
  Word (*counted_bytes)(const Element &) = nullptr; ///< what the counts call for; null for blocks without arrays
};

/// The maker blocks of all elements of a list, each against its fixed words and against what its counts call for. Both
/// tests always run, so a block that is shorter than its fixed words is reported twice where it has arrays.
template <class Element> int checkBlocks(const List<Element> &list, const BlockRow<Element> &row) {
  checkHeading(row.heading);
  return checkEach(counted(list.num, list.element), [&row](Word number, const Element &element) {
    int ok = checkExtsizeI(element.van_ext_blk_size, row.fixed_bytes, number, row.name);
    if (row.counted_bytes != nullptr)
      ok *= checkExtsizeI(element.van_ext_blk_size, row.counted_bytes(element), number, row.name);
    return ok;
  });
}

} // namespace kova
