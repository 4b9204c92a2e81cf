/// Printing what follows the words of a record: its arrays, pairs and runs of records, in the order of the file.
///
/// Blocks, and what has lines of its own (the references of triangles, texels, names, the data of collisions and of
/// textures), print where their sections are.
#pragma once

#include "format/content.h"
#include "format/skinning.h"
#include "textdump/lines.h"

namespace kova {

/// The numbers in a line.
template <Format LINE> inline constexpr std::size_t NUMBERS = parseFormat(LINE.text).count - 1;

template <Format LINE> void printTuple(Text &text, Index position, const Xyz &tuple) {
  print<LINE>(text, position, tuple.x, tuple.y, tuple.z);
}
template <Format LINE> void printTuple(Text &text, Index position, const Rgba &tuple) {
  print<LINE>(text, position, tuple.red, tuple.green, tuple.blue, tuple.alpha);
}
template <Format LINE> void printTuple(Text &text, Index position, const St &tuple) {
  print<LINE>(text, position, tuple.s, tuple.t);
}
/// Without its position, or with it.
template <Format LINE, class Number>
requires std::is_arithmetic_v<Number>
void printTuple(Text &text, [[maybe_unused]] Index position, Number number) {
  if constexpr (NUMBERS<LINE> == 1)
    print<LINE>(text, number);
  else
    print<LINE>(text, position, number);
}

/// Records of group indices.
template <Format LABEL> void printPairs(Text &text, std::span<const VtxTriNvColor> records) {
  Index position = 0;
  for (const VtxTriNvColor &each : records) {
    print<VTX_TRI_NV_COLOR_HEADING>(text, position++);
    putRecord<LINES<VtxTriNvColor>>(text, each);
  }
}
template <Format LABEL> void printPairs(Text &text, std::span<const External> references) {
  kvWriteKtExternal(text, references, LABEL.text);
}
template <Format LABEL> void printPairs(Text &text, std::span<const NodeIndex> nodes) {
  kvWriteKtNodeIndex(text, nodes, LABEL.text);
}

/// Which parts print: in a maker block, external references stand behind all others.
enum class Printed : std::uint8_t { all, others, externals };

template <class Form, class Record> void writeVersion2Record(Text &text, const Record &record);

template <Printed PART, class Record, class Around = Record> struct Printer : PassingIo {
  Text &out;
  const Record &record;
  const Around &around;

  template <Format LINE, Format NAME, class Item, class Holder, class Count>
  int array(ArrayLine<LINE, NAME>, std::vector<Item> Holder::*member, Count count, To = To::nothing) {
    const auto items_held = counted(numberOf(record, count), record.*member);
    if constexpr (PART == Printed::externals)
      return 1;
    else if constexpr (NUMBERS<LINE> == 0)
      kvWriteKtList(out, items_held, static_cast<Word>(items_held.size_bytes()), LINE.text);
    else
      for (std::size_t i = printTuples<LINE>(out, items_held); i < items_held.size(); ++i)
        printTuple<LINE>(out, static_cast<Index>(i), items_held[i]);
    return 1;
  }

  template <Format LABEL, class Item, class Holder, class Count>
  int pairs(PairsLabel<LABEL>, std::vector<Item> Holder::*member, Count count, To = To::nothing) {
    if constexpr (PART == Printed::all || (PART == Printed::externals) == std::is_same_v<Item, External>)
      printPairs<LABEL>(out, counted(numberOf(record, count), record.*member));
    return 1;
  }

  /// An element that has the words of version 2 shows its stored index.
  template <class Form, class Item, class Holder, class Count>
  int run(Form, std::vector<Item> Holder::*member, Count count) {
    if constexpr (PART != Printed::externals)
      for (Index position = 0; const Item &item : counted(numberOf(record, count), record.*member)) {
        if constexpr (std::is_base_of_v<ElementHead, Item>)
          print<Form::TEXT>(out, item.this_index);
        else
          print<Form::TEXT>(out, position++);
        putRecord<LINES_OF<Form::words>>(out, item);
      }
    return 1;
  }

  /// Records with the words of version 2; others have sections of their own.
  template <class Form, class Item, class Holder, class Count>
  int records(Form, std::vector<Item> Holder::*member, Count count) {
    if constexpr (std::is_base_of_v<ElementHead, Item>)
      for (const Item &item : counted(numberOf(record, count), record.*member))
        writeVersion2Record<Form>(out, item);
    return 1;
  }

  /// Records that are not stored print their headings, if they have such.
  template <Format LINE, Format NAME, class Holder, class Count>
  int absent(ArrayLine<LINE, NAME>, Word Holder::*number, Count count) {
    if constexpr (NUMBERS<LINE> == 1)
      for (Word i = 0; i < std::min<std::uint64_t>(numberOf(record, count), record.*number); ++i)
        print<LINE>(out, i);
    return 1;
  }

  Word tiles() const { return kvCiTileNum(around); }
};

/// Prints what follows the words of a record.
template <class Head, class Record> void printContent(Text &text, const Record &record) {
  Printer<Printed::all, Record> printer{{}, text, record, record};
  content(printer, static_cast<const Head &>(record));
}

/// Prints the heading and the words of a record by its form, then what follows them.
template <class Form, class Record> void writeRecord(Text &text, const Record &record, Index number) {
  print<Form::TEXT>(text, number);
  putRecord<LINES_OF<Form::words>>(text, record);
  printContent<typename Form::Head>(text, record);
}

/// The same for an element of a list, and of its second kind of element.
template <class List, class Element> void writeElement(Text &text, const Element &element, Index number) {
  writeRecord<std::remove_cvref_t<decltype(ListFormat<List>::elements)>>(text, element, number);
}
template <class List, class Element> void writeSecondElement(Text &text, const Element &element, Index number) {
  writeRecord<std::remove_cvref_t<decltype(ListFormat<List>::second_elements)>>(text, element, number);
}

/// Prints a record with the words of version 2, whose heading shows its stored index, and its blocks.
template <class Form, class Record> void writeVersion2Record(Text &text, const Record &record) {
  writeRecord<Form>(text, record, record.this_index);
  writeExtBlk(text, record);
}

/// Writes the section of a version-2 list.
template <class Element> void writeVersion2Section(Text &text, const List<Element> &list, const char *name) {
  writeListHead(text, list, name);
  print<"\n">(text);
  for (const Element &element : counted(list.num, list.element))
    writeVersion2Record<std::remove_cvref_t<decltype(ListFormat<List<Element>>::elements)>>(text, element);
  writeListEnd(text, list, name);
}

/// Prints what is decoded of a maker block: its words, what follows them, then the lines and the references that are
/// kept for the end.
template <class Head, class Ext, class Around> void printMaker(Text &text, const Ext &ext, const Around &around) {
  const Head &head = ext;
  putRecord<LINES<Head>>(text, head);
  Printer<Printed::others, Ext, Around> others{{}, text, ext, around};
  content(others, head);
  if constexpr (LINES<Head>.later.first != LINES<Head>.later.end)
    putLater<LINES<Head>>(text, head);
  Printer<Printed::externals, Ext, Around> externals{{}, text, ext, around};
  content(externals, head);
}

} // namespace kova
