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

/// A raw-word block: "[%s]", then the words held, at most `bytes` / 4, six to a row.
void kvWriteKtList(Text &text, std::span<const Word> words, Word bytes, const char *label);

/// The blocks of a record: "V_EXT" where `van_size` is not 0, "U_EXT" where `usr_size` is not 0, then an empty line.
void kvWriteKtExtBlk1(Text &text, const ExtBlk &blk, Word van_size, Word usr_size);

/// As `kvWriteKtExtBlk1` for a record whose maker block begins with `decoded` bytes that are printed elsewhere: what
/// follows them is "V_EXT_OTHERS". Sizes are compared unsigned.
void kvWriteKtExtBlk2(Text &text, const ExtBlk &blk, Word van_size, Word usr_size, Word decoded);

/// "%s file name[%d]   %d" for every reference, then "%s name[%d]        %d" for every reference.
void kvWriteKtExternal(Text &text, std::span<const External> externals, const char *label);

/// "%s kind[%d]   %0#10x" for every reference, then "%s index[%d]  %d" for every reference.
void kvWriteKtNodeIndex(Text &text, std::span<const NodeIndex> nodes, const char *label);

/// The file-header section of a 2.0 dump and of a 1.0 dump, and what both begin with: the opener and the 25 header
/// lines.
void kvWriteKtFileHeader(Text &text, const FileHeader &header);
void kvWriteKtFileHeader1(Text &text, const FileHeader &header);
void kvWriteKtFileHeaderFix1(Text &text, const FileHeader &header);

// --- Sections of the version-1 lists --------------------------------------------------------------------------------

/// Writes the opener, the header lines and the size table of a list with the common header.
template <class List> void writeListHead(Text &text, const List &list, const char *name) {
  kvWriteKtListName(text, name);
  putRecord<LINES_OF<ListFormat<List>::words>>(text, list);
  printEach<ListFormat<List>::table.TEXT>(text, counted(list.num, list.num_byte));
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
  void (*element)(Text &, const Element &, Index); ///< heading and fields
  bool is_spaced = false;                          ///< whether two empty lines follow the size table
};

/// Writes a section of the common shape. The 2.0 dump differs by what ends an element.
template <class Element>
void writeSection(Text &text, const Section<Element> &section, const List<Element> &list,
                  void (*end)(Text &, const Element &) = writeExtBlk<Element>) {
  writeListHead(text, list, section.name);
  if (section.is_spaced)
    print<"\n">(text);
  print<"\n">(text);
  writeElements(text, list.num, list.element, section.element, end);
  writeListEnd(text, list, section.name);
}

/// Ends an element of a 2.0 dump whose maker block begins with `decoded` bytes that are printed elsewhere. The sizes of
/// blocks are sums of words: they wrap at 32 bits.
template <class Record> void writeExtBlkAfter(Text &text, const Record &record, Word decoded) {
  kvWriteKtExtBlk2(text, record.ext_blk, record.van_ext_blk_size, record.usr_ext_blk_size, decoded);
}

} // namespace kova
