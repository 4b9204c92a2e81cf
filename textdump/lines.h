/// The line writers that all sections of the dump share. They are the only homes of their formats.
///
/// Arrays print the entries that are held; positions count from 0.
#pragma once

#include "format/list.h"
#include "kova/kova.h"
#include "textdump/sections.h"
#include "textdump/text.h"

namespace kova {

// --- Writers --------------------------------------------------------------------------------------------------------

/// "<%s> ;" with 50 dashes after it, then an empty line.
void kvWriteKtListName(Text &text, const char *name);

/// "</%s>", then an empty line.
void kvWriteKtListEnd(Text &text, const char *name);

/// The opener of a version-2 list and the lines "list_tag", "header_size" and "list_size", or those of another table of
/// the list's header.
template <const auto &TABLE = LINES_OF<LIST_TOP_WORDS>>
void kvWriteKtListTop(Text &text, const ListHead &head, const char *name) {
  kvWriteKtListName(text, name);
  putRecord<TABLE>(text, head);
}

/// "%s(%d)" with the label and the stored index, then the lines "tag", "this_index", "size" and "name_index", or those
/// of the table of a record that begins with these.
template <const auto &TABLE = LINES_OF<WORDS<ElementHead>>>
void kvWriteKtElementTop(Text &text, const RecordOf<TABLE> &head, const char *label) {
  printLabelled<"(%d)\n">(text, label, head.this_index);
  putRecord<TABLE>(text, head);
}

/// A raw-word block: "[%s]", then the words held, at most `bytes` / 4, six to a row.
void kvWriteKtList(Text &text, std::span<const Word> words, Word bytes, const char *label);

/// The blocks of a record: "V_EXT" where `van_size` is not 0, "U_EXT" where `usr_size` is not 0, then an empty line.
void kvWriteKtExtBlk1(Text &text, const ExtBlk &blk, Word van_size, Word usr_size);

/// As `kvWriteKtExtBlk1` for a record whose maker block begins with `decoded` bytes that are printed elsewhere: what
/// follows them is "V_EXT_OTHERS". Sizes are compared unsigned.
void kvWriteKtExtBlk2(Text &text, const ExtBlk &blk, Word van_size, Word usr_size, Word decoded);

/// "%s[%d]  %d" for each word, "%s[%d]  %#g" for each float.
void kvWriteKtArray(Text &text, std::span<const Word> words, const char *label);
void kvWriteKtArray(Text &text, std::span<const Index> indices, const char *label);
void kvWriteKtArrayf(Text &text, std::span<const float> floats, const char *label);

/// "%s file name[%d]   %d" for every reference, then "%s name[%d]        %d" for every reference.
void kvWriteKtExternal(Text &text, std::span<const External> externals, const char *label);

/// "%s kind[%d]   %0#10x" for every reference, then "%s index[%d]  %d" for every reference.
void kvWriteKtNodeIndex(Text &text, std::span<const NodeIndex> nodes, const char *label);

/// "%s red  %#g green %#g blue %#g alpha %#g" and "%s  %#g %#g %#g ; x,y,z".
void kvWriteKtRGBA(Text &text, const Rgba &colour, const char *label);
void kvWriteKtXYZ(Text &text, const Xyz &vector, const char *label);

/// Keyframes. The heading of a scale key has no line end: its interpolation type continues the line.
void kvWriteKtRotateX(Text &text, std::span<const RotateE> keys, const char *label);
void kvWriteKtUniqScale(Text &text, std::span<const Scale> keys, const char *label);
void kvWriteKtPrimColorAnim(Text &text, std::span<const PrimColorAnim> keys, const char *label);

/// The file-header section of a 2.0 dump and of a 1.0 dump, and what both begin with: the opener and the 25 header
/// lines.
void kvWriteKtFileHeader(Text &text, const FileHeader &header);
void kvWriteKtFileHeader1(Text &text, const FileHeader &header);
void kvWriteKtFileHeaderFix1(Text &text, const FileHeader &header);

// --- Sections of the version-1 lists --------------------------------------------------------------------------------

/// Writes the opener, the header lines and the size table of a list with the common header.
template <const auto &TABLE, Format SIZE_LINE, class Element>
void writeListHead(Text &text, const List<Element> &list, const char *name) {
  kvWriteKtListName(text, name);
  putRecord<TABLE>(text, list);
  printEach<SIZE_LINE>(text, counted(list.num, list.num_byte));
}

/// Writes the elements that are held, each with its number, and what ends it.
template <class Element>
void writeElements(Text &text, Word count, const std::vector<Element> &held,
                   void (*element)(Text &, const Element &, Index), void (*end)(Text &, const Element &)) {
  Index number = 0;
  for (const Element &each : counted(count, held)) {
    element(text, each, number++);
    end(text, each);
  }
}

/// Ends an element that carries no blocks: an empty line.
template <class Element> void writeEmptyLine(Text &text, const Element &) { print<"\n">(text); }

/// Ends an element with its blocks as raw words.
template <class Record> void writeExtBlk(Text &text, const Record &record) {
  kvWriteKtExtBlk1(text, record.ext_blk, record.van_ext_blk_size, record.usr_ext_blk_size);
}

/// Ends a section: the list's own blocks and the closer.
template <class List> void writeListEnd(Text &text, const List &list, const char *name) {
  writeExtBlk(text, list);
  kvWriteKtListEnd(text, name);
}

/// What differs between the sections of the common form.
template <class Element> struct Section {
  const char *name;
  void (*head)(Text &, const List<Element> &);     ///< opener, header lines, size table
  void (*element)(Text &, const Element &, Index); ///< heading and fields
};

/// Writes a section of the common shape. The 2.0 dump differs by what ends an element.
template <class Element>
void writeSection(Text &text, const Section<Element> &section, const List<Element> &list,
                  void (*end)(Text &, const Element &) = writeExtBlk<Element>) {
  section.head(text, list);
  print<"\n">(text);
  writeElements(text, list.num, list.element, section.element, end);
  writeListEnd(text, list, section.name);
}

/// Ends an element of a 2.0 dump whose maker block begins with `decoded` bytes that are printed elsewhere. The sizes of
/// blocks are sums of words: they wrap at 32 bits.
template <class Record> void writeExtBlkAfter(Text &text, const Record &record, Word decoded) {
  kvWriteKtExtBlk2(text, record.ext_blk, record.van_ext_blk_size, record.usr_ext_blk_size, decoded);
}

// --- Sections of the version-2 lists --------------------------------------------------------------------------------

/// Writes the section of a version-2 list.
/// @tparam TABLE the lines of its header
/// @param size_table the name of its size table
/// @param element writes an element without its blocks; its heading prints the stored index, not the number
template <const auto &TABLE, class Element>
void writeVersion2Section(Text &text, const List<Element> &list, const char *name, const char *size_table,
                          void (*element)(Text &, const Element &, Index)) {
  kvWriteKtListTop<TABLE>(text, list, name);
  kvWriteKtArray(text, counted(list.num, list.num_byte), size_table);
  print<"\n">(text);
  writeElements(text, list.num, list.element, element, writeExtBlk<Element>);
  writeListEnd(text, list, name);
}

} // namespace kova
