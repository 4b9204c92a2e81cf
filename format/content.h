/// What follows the fixed words of a record, and how it is gone over.
///
/// Each type of record has one function template `content`, which names what follows its fixed words in the file, in
/// file order:
///
///     template <class Io> int content(Io &io, const JointHead &) {
///       return io.array(line<"obj_index[%d]  %d\n">, &Joint::obj_index, &Joint::obj_num, To::obj) &&
///              io.pairs(label<"external_obj">, &Joint::external_obj, &Joint::external_obj_num, To::external_name) &&
///              io.blocks();
///     }
///
/// What is done with it is the business of the `Io`: one reads, one writes, one only looks where things are. A function
/// gets the fixed words because some of them choose the form. An Io of a model holds the record, and takes what the
/// members point to. An Io without a model has filled the fixed words from the file; of the members of a record, which
/// it does not have, it uses the types, and of those of the fixed words also their places (`wordOf`) and names.
///
/// Every step returns 1, or 0 where the Io wants no more of the record.
///
///     array(text, member, count, to)    words, or tuples of floats, one behind the other
///     pairs(text, member, count, to)    items of several words, stored as a run of all first words, a run of all
///     second
///                                       words and so on
///     run(items, member, count)         records without content
///     records(items, member, count)     records, each with its content: Io of its own for each of them
///     inner(items, member)              one such record
///     blocks()                          the maker block, then the user block
///     blocks(maker, member)             the same; in a 2.0 file the maker block begins with a record that has content
///     header(member)                    what follows begins so many bytes behind the start of the record
///     absent(line, member, count)       a count of records that the form does not store; `member` has their number
///     refs(member)                      the references of a triangle group; `eachRef` takes them apart
///     data(member)                      the data of a collision, and the bytes up to the end that its sizes give
///     blocksAround(member)              blocks whose sizes stand in the record around this one
///     texels(member, count)             bytes
///     text(member, count)               the words of a name
///     tiles()                           is a question: how many tiles has the texture around this maker block?
///
/// `count` is a member of the fixed words, or one of the forms below, or a number. `to` says what the entries lead to;
/// of nodes it is the second word, of a `VtxTriNvColor` its table of words says it.
#pragma once

#include "format/line.h"
#include "format/words.h"

#include <algorithm>

namespace kova {

// --- Texts and names ------------------------------------------------------------------------------------------------

/// The line of each entry of an array in the dump; "%d" after a bracket is its position. The name of the array is what
/// the line begins with, or `NAME`.
template <Format LINE, Format NAME = ""> struct ArrayLine {
  static constexpr auto &TEXT = LINE;
  static constexpr bool are_keys = false;
  static constexpr std::string_view label() { return labelInText(NAME.text[0] != '\0' ? NAME.text : LINE.text); }
  static constexpr WordName name() { return nameOf(label()); }
};
template <Format LINE, Format NAME = ""> inline constexpr ArrayLine<LINE, NAME> line = {};

/// The same of an array of keys.
template <Format LINE> struct KeyLine : ArrayLine<LINE> { static constexpr bool are_keys = true; };
template <Format LINE> inline constexpr KeyLine<LINE> keys = {};

/// The label of a run of pairs in the dump, and its name.
template <Format LABEL> struct PairsLabel {
  static constexpr auto &TEXT = LABEL;
  static constexpr std::string_view label() { return labelInText(LABEL.text); }
  static constexpr WordName name() { return nameOf(label()); }
};
template <Format LABEL> inline constexpr PairsLabel<LABEL> label = {};

/// Records of one form inside of another record.
template <class H, Format NAME, Format HEADING, Word TAG, const auto &TABLE, std::size_t BYTES> struct Items {
  using Head = H;
  static constexpr auto &TEXT = HEADING; ///< stands before each in the dump
  static constexpr Word tag = TAG;       ///< 0 where the reader does not test it
  static constexpr auto &words = TABLE;
  static constexpr std::size_t bytes = BYTES; ///< of the fixed words, as far as they are stored
  static constexpr WordName name() { return nameInText(NAME.text); }
  static constexpr std::string_view kind() { return labelInText(HEADING.text); } ///< "Tri", "Cluster" and so on
};
template <class Head, Format NAME, Format HEADING = "", Word TAG = 0, const auto &TABLE = WORDS<Head>,
          std::size_t BYTES = sizeof(Head)>
inline constexpr Items<Head, NAME, HEADING, TAG, TABLE, BYTES> items = {};

/// The record that a maker block begins with in a 2.0 file.
template <class Head> inline constexpr auto maker = items<Head, "ext">;

// --- Counts ---------------------------------------------------------------------------------------------------------

/// A count that is the sum of two words.
template <class Head> struct Sum {
  Word Head::*first;
  Word Head::*second;
};
template <class Head> Sum(Word Head::*, Word Head::*) -> Sum<Head>;

/// A count of two to an entry; the last one of an odd number has no entry.
template <class Head> struct Half { Word Head::*number; };
template <class Head> Half(Word Head::*) -> Half<Head>;

/// @return the number of entries that a count of a record says.
template <class Record, class Head> constexpr std::uint64_t numberOf(const Record &record, Word Head::*count) {
  return record.*count;
}
template <class Record, class Head> constexpr std::uint64_t numberOf(const Record &record, const Sum<Head> &count) {
  return std::uint64_t{record.*count.first} + record.*count.second;
}
template <class Record, class Head> constexpr std::uint64_t numberOf(const Record &record, const Half<Head> &count) {
  return record.*count.number / 2;
}
template <class Record> constexpr std::uint64_t numberOf(const Record &, std::uint64_t count) { return count; }

// --- Going over -----------------------------------------------------------------------------------------------------

/// An Io that passes over everything: others are made of it, and hide the steps that matter to them.
struct PassingIo {
  template <class... Arguments> constexpr int array(const Arguments &...) { return 1; }
  template <class... Arguments> constexpr int pairs(const Arguments &...) { return 1; }
  template <class... Arguments> constexpr int run(const Arguments &...) { return 1; }
  template <class... Arguments> constexpr int records(const Arguments &...) { return 1; }
  template <class... Arguments> constexpr int inner(const Arguments &...) { return 1; }
  template <class... Arguments> constexpr int blocks(const Arguments &...) { return 1; }
  template <class... Arguments> constexpr int header(const Arguments &...) { return 1; }
  template <class... Arguments> constexpr int absent(const Arguments &...) { return 1; }
  template <class... Arguments> constexpr int refs(const Arguments &...) { return 1; }
  template <class... Arguments> constexpr int data(const Arguments &...) { return 1; }
  template <class... Arguments> constexpr int blocksAround(const Arguments &...) { return 1; }
  template <class... Arguments> constexpr int texels(const Arguments &...) { return 1; }
  template <class... Arguments> constexpr int text(const Arguments &...) { return 1; }
};

} // namespace kova
