/// The notation in which `builder.h` takes files, and the layouts of the records that they are made of.
#pragma once

#include "kova/words.h"

#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace kova::samples {

/// A piece of a record's layout. The text of a layout is the kind of the record, then its words in file order; a line
/// that begins with blanks continues the one above it.
///
///     name           a word; it holds its position in the record unless set
///     ~name          the same as a float
///     .name          a word that is 0 unless set: a count, or what chooses a form
///     >name          a link or an index: a word like the first, or -1 for none, as the caller wishes
///     &name          the same for node references: pairs of a kind, which is 0 where there are no links, and a link
///     !name #name    the record's tag, its index among its siblings
///     ^name =name    bytes of its head, bytes of the whole record
///     @name:Kind     the number of its children of that kind; `Kind*` means all whose kind begins so
///     *name:Kind     the table of those children's sizes, as many entries as their number says
///     name[count]    an array; its number of entries is worked out from left to right
///     V U            the sizes of the maker block and of the user block
///     %name          a number that a text may set and that is not stored
///     $form          words that the builder knows
///
/// Of the children, the record of a decoded maker block stands last.
struct Field {
  char mark; ///< 'w' for a plain word
  std::string name;
  std::string count; ///< of an array: how many entries; of @ and *: which children
};
using Layout = std::vector<Field>;

/// The layouts of all records by their kinds.
std::map<std::string, Layout> parseLayouts();

/// A record as a text tells it.
struct Node {
  std::string kind;
  std::map<std::string, Word> set;
  std::string text; ///< of a name
  std::vector<Node> child;
};

/// Parses nodes up to the end or a closing brace. What follows `Kind*2` holds for both.
std::vector<Node> parseNodes(std::istringstream &tokens);

/// The two sizes that end most heads have short names: V and U.
std::string fullName(const std::string &name);

} // namespace kova::samples
