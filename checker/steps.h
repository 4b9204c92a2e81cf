/// The steps that list checks are made of.
#pragma once

#include "kova/check.h"

namespace kova {

/// A label with an element's number, in a buffer that holds the longest one.
struct Label {
  char text[48];
};

/// @return "%s[%d]%s" of the three arguments, such as "Env[3] size".
Label elementLabel(const char *name, Word number, const char *what);

/// Prints "---- checking %s ----\n".
void checkHeading(const char *name);

/// `checksame` under "list size" of the header's word for the list and the list's own size, then
/// `check_whole_structured_size` of the list without a label.
/// @param num_byte the list's size table
int checkListSizes(Word list_num, const ListHead &list, std::span<const Word> num_byte);

/// A word as messages show it.
inline constexpr Index shown(Word word) { return static_cast<Index>(word); }

/// The bytes that the fixed words of a record take in the file.
template <class Head> inline constexpr Word fixedBytes = sizeof(Head);

/// Folds `checkElement(number, table_size, element)` over `elements`, in order from number 0. The size table of a list
/// that was read is at least as long; an entry that is not held counts as 0.
template <class Element, class CheckElement>
int checkElements(std::span<const Word> table, std::span<const Element> elements, CheckElement checkElement) {
  int ok = 1;
  for (std::size_t i = 0; i < elements.size(); ++i)
    ok *= checkElement(static_cast<Word>(i), i < table.size() ? table[i] : 0, elements[i]);
  return ok;
}

/// The common form of a list check: heading, `checkListSizes`, then `checkElements`.
/// @param list_num the header's word for the list
template <class Element, class CheckElement>
int checkList(const char *name, Word list_num, const List<Element> &list, CheckElement checkElement) {
  checkHeading(name);
  int ok = checkListSizes(list_num, list, list.num_byte);
  ok *= checkElements(list.num_byte, counted(list.num, list.element), checkElement);
  return ok;
}

} // namespace kova
