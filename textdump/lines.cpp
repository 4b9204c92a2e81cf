#include "textdump/lines.h"

#include "format/header.h"

namespace kova {

namespace {

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
