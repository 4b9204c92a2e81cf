#include "textdump/lines.h"

namespace kova {

namespace {

template <Format FORMAT, class Number>
void printEachBehind(Text &text, std::string_view label, std::span<const Number> numbers) {
  Index position = 0;
  for (const Number number : numbers)
    printBehind<FORMAT>(text, label, position++, number);
}

constexpr std::size_t WORDS_TO_A_ROW = 6;

/// The part of a block from byte `bytes` on.
std::span<const Word> wordsAfter(std::span<const Word> words, Word bytes) {
  return words.subspan(std::min<std::size_t>(bytes / sizeof(Word), words.size()));
}

} // namespace

void kvWriteKtListName(Text &text, const char *name) {
  print<"<">(text);
  printBehind<"> ;--------------------------------------------------\n\n">(text, name);
}

void kvWriteKtListEnd(Text &text, const char *name) {
  print<"</">(text);
  printBehind<">\n\n">(text, name);
}

void kvWriteKtListTop(Text &text, const ListHead &head, const char *name) {
  kvWriteKtListName(text, name);
  print<"list_tag     %0#10x\n">(text, head.list_tag);
  print<"header_size  %d\n">(text, head.list_header_size);
  print<"list_size    %d\n">(text, head.list_size);
}

void kvWriteKtElementTop(Text &text, const ElementHead &head, const char *label) {
  printBehind<"(%d)\n">(text, label, head.this_index);
  putRecord<ELEMENT_TOP_LINES, ElementHead>(text, head);
}

void kvWriteKtList(Text &text, std::span<const Word> words, Word bytes, const char *label) {
  print<"[">(text);
  printBehind<"]\n">(text, label);
  words = words.first(std::min<std::size_t>(bytes / sizeof(Word), words.size()));
  eachRow<WORDS_TO_A_ROW>(words, [&text](auto row) {
    printRow<"%0#10x  ">(text, row);
    print<"\n">(text);
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
  printEachBehind<"[%d]  %d\n">(text, label, words);
}

void kvWriteKtArray(Text &text, std::span<const Index> indices, const char *label) {
  printEachBehind<"[%d]  %d\n">(text, label, indices);
}

void kvWriteKtArrayf(Text &text, std::span<const float> floats, const char *label) {
  printEachBehind<"[%d]  %#g\n">(text, label, floats);
}

void kvWriteKtExternal(Text &text, std::span<const External> externals, const char *label) {
  Index position = 0;
  for (const External &external : externals)
    printBehind<" file name[%d]   %d\n">(text, label, position++, external.file_name);
  position = 0;
  for (const External &external : externals)
    printBehind<" name[%d]        %d\n">(text, label, position++, external.name);
}

void kvWriteKtNodeIndex(Text &text, std::span<const NodeIndex> nodes, const char *label) {
  Index position = 0;
  for (const NodeIndex &node : nodes)
    printBehind<" kind[%d]   %0#10x\n">(text, label, position++, node.kind);
  position = 0;
  for (const NodeIndex &node : nodes)
    printBehind<" index[%d]  %d\n">(text, label, position++, node.index);
}

void kvWriteKtRGBA(Text &text, const Rgba &colour, const char *label) {
  printBehind<" red  %#g green %#g blue %#g alpha %#g\n">(text, label, colour.red, colour.green, colour.blue,
                                                          colour.alpha);
}

void kvWriteKtXYZ(Text &text, const Xyz &vector, const char *label) {
  printBehind<"  %#g %#g %#g ; x,y,z\n">(text, label, vector.x, vector.y, vector.z);
}

void kvWriteKtRotateX(Text &text, std::span<const RotateE> keys, const char *label) {
  Index position = 0;
  for (const RotateE &key : keys) {
    printBehind<"(%d)\n">(text, label, position++);
    print<"interpolation type  %0#10x\n">(text, key.interpolation_type);
    print<"key  %d\n">(text, key.key);
    print<"rotation angle  %#g\n">(text, key.rotation_angle);
    print<"differential rotation angle  %#g\n">(text, key.differential_rotation_angle);
  }
}

void kvWriteKtUniqScale(Text &text, std::span<const Scale> keys, const char *label) {
  Index position = 0;
  for (const Scale &key : keys) {
    printBehind<"Scale(%d)">(text, label, position++); // no line end, on purpose: the next text continues the line
    print<"interpolation type  %0#10x\n">(text, key.interpolation_type);
    print<"key  %d\n">(text, key.key);
    kvWriteKtXYZ(text, key.scale, "scale");
    kvWriteKtXYZ(text, key.differential_scale, "differential scale");
  }
}

void kvWriteKtPrimColorAnim(Text &text, std::span<const PrimColorAnim> keys, const char *label) {
  Index position = 0;
  for (const PrimColorAnim &key : keys) {
    print<"PrimColorAnim">(text);
    printBehind<"(%d)\n">(text, label, position++);
    print<"interpolation_type  %0#10x\n">(text, key.interpolation_type);
    print<"key                 %d\n">(text, key.key);
    kvWriteKtRGBA(text, key.prim_color_anim, "prim_color_anim");
  }
}

void kvWriteKtFileHeaderFix1(Text &text, const FileHeader &header) {
  kvWriteKtListName(text, "FileHeader");
  putRecord<FILE_HEADER_LINES, FileHeaderHead>(text, header);
}

void kvWriteKtFileHeader1(Text &text, const FileHeader &header) {
  kvWriteKtFileHeaderFix1(text, header);
  kvWriteKtExtBlk1(text, header.ext_blk, header.van_ext_blk_size, header.usr_ext_blk_size);
  kvWriteKtListEnd(text, "FileHeader");
}

void kvWriteKtFileHeader(Text &text, const FileHeader &header) {
  kvWriteKtFileHeaderFix1(text, header);
  putRecord<VERSION_2_SIZES_LINES, Version2Sizes>(text, header);
  kvWriteKtExtBlk2(text, header.ext_blk, header.van_ext_blk_size, header.usr_ext_blk_size, VERSION_2_SIZES_BYTES);
  kvWriteKtListEnd(text, "FileHeader");
}

} // namespace kova
