#include "textdump/lines.h"

#include "format/behavior.h"
#include "format/header.h"
#include "format/material.h"

namespace kova {

namespace {

template <Format FORMAT, class Number>
void printEachLabelled(Text &text, std::string_view label, std::span<const Number> numbers) {
  Index position = 0;
  for (const Number number : numbers)
    printLabelled<FORMAT>(text, label, position++, number);
}

/// The part of a block from byte `bytes` on.
std::span<const Word> wordsAfter(std::span<const Word> words, Word bytes) {
  return words.subspan(std::min<std::size_t>(bytes / sizeof(Word), words.size()));
}

} // namespace

void kvWriteKtListName(Text &text, const char *name) {
  print<"<">(text);
  printLabelled<"> ;--------------------------------------------------\n\n">(text, name);
}

void kvWriteKtListEnd(Text &text, const char *name) {
  print<"</">(text);
  printLabelled<">\n\n">(text, name);
}

void kvWriteKtList(Text &text, std::span<const Word> words, Word bytes, const char *label) {
  print<BLOCK_OPENER_TEXT>(text);
  printLabelled<BLOCK_LABEL_TEXT>(text, label);
  words = words.first(std::min<std::size_t>(bytes / sizeof(Word), words.size()));
  eachRow<BLOCK_WORDS_TO_A_ROW>(words, [&text](auto row) {
    printRow<BLOCK_WORD_TEXT>(text, row);
    print<BLOCK_ROW_TEXT>(text);
  });
}

void kvWriteKtExtBlk1(Text &text, const ExtBlk &blk, Word van_size, Word usr_size) {
  if (van_size != 0)
    kvWriteKtList(text, vanExtBlk(blk), van_size, "V_EXT");
  if (usr_size != 0)
    kvWriteKtList(text, usrExtBlk(blk), usr_size, "U_EXT");
  print<"\n">(text);
}

void kvWriteKtExtBlk2(Text &text, const ExtBlk &blk, Word van_size, Word usr_size, Word decoded) {
  if (van_size > decoded)
    kvWriteKtList(text, wordsAfter(vanExtBlk(blk), decoded), van_size - decoded, "V_EXT_OTHERS");
  if (usr_size != 0)
    kvWriteKtList(text, usrExtBlk(blk), usr_size, "U_EXT");
  print<"\n">(text);
}

void kvWriteKtArray(Text &text, std::span<const Word> words, const char *label) {
  printEachLabelled<"[%d]  %d\n">(text, label, words);
}

void kvWriteKtArray(Text &text, std::span<const Index> indices, const char *label) {
  printEachLabelled<"[%d]  %d\n">(text, label, indices);
}

void kvWriteKtArrayf(Text &text, std::span<const float> floats, const char *label) {
  printEachLabelled<"[%d]  %#g\n">(text, label, floats);
}

void kvWriteKtExternal(Text &text, std::span<const External> externals, const char *label) {
  Index position = 0;
  for (const External &external : externals)
    printLabelled<EXTERNAL_FILE_TEXT>(text, label, position++, external.file_name);
  position = 0;
  for (const External &external : externals)
    printLabelled<EXTERNAL_NAME_TEXT>(text, label, position++, external.name);
}

void kvWriteKtNodeIndex(Text &text, std::span<const NodeIndex> nodes, const char *label) {
  Index position = 0;
  for (const NodeIndex &node : nodes)
    printLabelled<NODE_KIND_TEXT>(text, label, position++, node.kind);
  position = 0;
  for (const NodeIndex &node : nodes)
    printLabelled<NODE_INDEX_TEXT>(text, label, position++, node.index);
}

void kvWriteKtRGBA(Text &text, const Rgba &colour, const char *label) {
  printLabelled<RGBA_TEXT>(text, label, colour.red, colour.green, colour.blue, colour.alpha);
}

void kvWriteKtXYZ(Text &text, const Xyz &vector, const char *label) {
  printLabelled<XYZ_TEXT>(text, label, vector.x, vector.y, vector.z);
}

void kvWriteKtRotateX(Text &text, std::span<const RotateE> keys, const char *label) {
  Index position = 0;
  for (const RotateE &key : keys) {
    printLabelled<"(%d)\n">(text, label, position++);
    putRecord<LINES<RotateE>>(text, key);
  }
}

void kvWriteKtUniqScale(Text &text, std::span<const Scale> keys, const char *label) {
  Index position = 0;
  for (const Scale &key : keys) {
    printLabelled<"Scale(%d)">(text, label, position++); // no line end, on purpose: the next text continues the line
    putRecord<LINES<Scale>>(text, key);
  }
}

void kvWriteKtPrimColorAnim(Text &text, std::span<const PrimColorAnim> keys, const char *label) {
  Index position = 0;
  for (const PrimColorAnim &key : keys) {
    print<"PrimColorAnim">(text);
    printLabelled<"(%d)\n">(text, label, position++);
    putRecord<LINES<PrimColorAnim>>(text, key);
  }
}

void kvWriteKtFileHeaderFix1(Text &text, const FileHeader &header) {
  kvWriteKtListName(text, "FileHeader");
  putRecord<LINES<FileHeaderHead>>(text, header);
}

void kvWriteKtFileHeader1(Text &text, const FileHeader &header) {
  kvWriteKtFileHeaderFix1(text, header);
  writeExtBlk(text, header);
  kvWriteKtListEnd(text, "FileHeader");
}

void kvWriteKtFileHeader(Text &text, const FileHeader &header) {
  kvWriteKtFileHeaderFix1(text, header);
  putRecord<LINES<Version2Sizes>>(text, header);
  writeExtBlkAfter(text, header, VERSION_2_SIZES_BYTES);
  kvWriteKtListEnd(text, "FileHeader");
}

} // namespace kova
