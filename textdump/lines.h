/// The line writers that all sections of the dump share. They are the only homes of their formats.
///
/// Arrays print the entries that are held; positions count from 0.
#pragma once

#include "kova/kova.h"
#include "textdump/sections.h"
#include "textdump/text.h"

namespace kova {

// --- Texts with a label before them ---------------------------------------------------------------------------------

inline constexpr char EXTERNAL_FILE_TEXT[] = " file name[%d]   %d\n";
inline constexpr char EXTERNAL_NAME_TEXT[] = " name[%d]        %d\n";
inline constexpr char NODE_KIND_TEXT[] = " kind[%d]   %0#10x\n";
inline constexpr char NODE_INDEX_TEXT[] = " index[%d]  %d\n";
inline constexpr char RGBA_TEXT[] = " red  %#g green %#g blue %#g alpha %#g\n";
inline constexpr char XYZ_TEXT[] = "  %#g %#g %#g ; x,y,z\n";

/// A raw-word block: its label between these two, then its words, so many to a row, and a line end after each row.
inline constexpr char BLOCK_OPENER_TEXT[] = "[";
inline constexpr char BLOCK_LABEL_TEXT[] = "]\n";
inline constexpr char BLOCK_WORD_TEXT[] = "%0#10x  ";
inline constexpr char BLOCK_ROW_TEXT[] = "\n";
inline constexpr std::size_t BLOCK_WORDS_TO_A_ROW = 6;

// --- Rows of line tables: members that print as the writers of the same name have it --------------------------------

template <class Holder>
constexpr MemberLines<External, Holder> externalLines(const char *label, External Holder::*member) {
  return {{label, EXTERNAL_FILE_TEXT, label, EXTERNAL_NAME_TEXT}, member};
}
template <class Holder>
constexpr MemberLines<NodeIndex, Holder> nodeIndexLines(const char *label, NodeIndex Holder::*member) {
  return {{label, NODE_KIND_TEXT, label, NODE_INDEX_TEXT}, member};
}
template <class Holder> constexpr MemberLines<Rgba, Holder> rgbaLine(const char *label, Rgba Holder::*member) {
  return {{label, RGBA_TEXT}, member};
}
template <class Holder> constexpr MemberLines<Xyz, Holder> xyzLine(const char *label, Xyz Holder::*member) {
  return {{label, XYZ_TEXT}, member};
}

/// The text of the words of a block, and a terminating zero.
template <std::size_t WORDS>
inline constexpr auto BLOCK_WORDS_TEXT = [] {
  constexpr std::string_view WORD = BLOCK_WORD_TEXT;
  constexpr std::string_view ROW = BLOCK_ROW_TEXT;
  constexpr std::size_t ROWS = (WORDS + BLOCK_WORDS_TO_A_ROW - 1) / BLOCK_WORDS_TO_A_ROW;
  std::array<char, WORDS * WORD.size() + ROWS * ROW.size() + 1> text{};
  char *at = text.data();
  for (std::size_t word = 1; word <= WORDS; ++word) {
    at = std::copy(WORD.begin(), WORD.end(), at);
    if (word % BLOCK_WORDS_TO_A_ROW == 0 || word == WORDS)
      at = std::copy(ROW.begin(), ROW.end(), at);
  }
  return text;
}();

template <std::size_t N, class Holder>
constexpr MemberLines<std::array<Word, N>, Holder> wordBlock(const char *label, std::array<Word, N> Holder::*member) {
  return {{BLOCK_OPENER_TEXT, label, BLOCK_LABEL_TEXT, BLOCK_WORDS_TEXT<N>.data()}, member};
}

// --- Line tables ----------------------------------------------------------------------------------------------------

/// The lines of the file header, and of the nine sizes after them in a 2.0 dump.
inline constexpr auto FILE_HEADER_LINES = lines<FileHeaderHead>({
    {"version           %0#10x\n", &FileHeaderHead::version},
    {"size              %d\n", &FileHeaderHead::size},
    {"header_tag        %0#10x\n", &FileHeaderHead::header_tag},
    {"file_header_num   %d\n", &FileHeaderHead::file_header_num},
    {"scene_list_num    %d\n", &FileHeaderHead::scene_list_num},
    {"env_list_num      %d\n", &FileHeaderHead::env_list_num},
    {"cam_list_num      %d\n", &FileHeaderHead::cam_list_num},
    {"light_list_num    %d\n", &FileHeaderHead::light_list_num},
    {"obj_list_num      %d\n", &FileHeaderHead::obj_list_num},
    {"shape_list_num    %d\n", &FileHeaderHead::shape_list_num},
    {"vtx_list_num      %d\n", &FileHeaderHead::vtx_list_num},
    {"color_list_num    %d\n", &FileHeaderHead::color_list_num},
    {"vector_list_num   %d\n", &FileHeaderHead::vector_list_num},
    {"st_list_num       %d\n", &FileHeaderHead::st_list_num},
    {"tri_list_num      %d\n", &FileHeaderHead::tri_list_num},
    {"part_list_num     %d\n", &FileHeaderHead::part_list_num},
    {"mat_list_num      %d\n", &FileHeaderHead::mat_list_num},
    {"tex_list_num      %d\n", &FileHeaderHead::tex_list_num},
    {"tex_img_list_num  %d\n", &FileHeaderHead::tex_img_list_num},
    {"anim_list_num     %d\n", &FileHeaderHead::anim_list_num},
    {"coll_list_num     %d\n", &FileHeaderHead::coll_list_num},
    {"switch_list_num   %d\n", &FileHeaderHead::switch_list_num},
    {"name_list_num     %d\n", &FileHeaderHead::name_list_num},
    {"van_ext_blk_size  %d\n", &FileHeaderHead::van_ext_blk_size},
    {"usr_ext_blk_size  %d\n", &FileHeaderHead::usr_ext_blk_size},
});
inline constexpr auto VERSION_2_SIZES_LINES = lines<Version2Sizes>({
    {"ci_img_list_num        %d\n", &Version2Sizes::ci_img_list_num},
    {"color_palette_list_num %d\n", &Version2Sizes::color_palette_list_num},
    {"envelope_list_num      %d\n", &Version2Sizes::envelope_list_num},
    {"cluster_list_num       %d\n", &Version2Sizes::cluster_list_num},
    {"weight_list_num        %d\n", &Version2Sizes::weight_list_num},
    {"chain_root_list_num    %d\n", &Version2Sizes::chain_root_list_num},
    {"joint_list_num         %d\n", &Version2Sizes::joint_list_num},
    {"effector_list_num      %d\n", &Version2Sizes::effector_list_num},
    {"external_name_list_num %d\n", &Version2Sizes::external_name_list_num},
});

/// The words that every element of a version-2 list begins with.
inline constexpr auto ELEMENT_TOP_LINES = lines<ElementHead>({
    {"tag          %0#10x\n", &ElementHead::tag},
    {"this_index   %d\n", &ElementHead::this_index},
    {"size         %d\n", &ElementHead::size},
    {"name_index   %d\n", &ElementHead::name_index},
});

/// What the header of every version-2 list begins with, and a header with the line of its count.
inline constexpr char LIST_TAG_TEXT[] = "list_tag     %0#10x\n";
inline constexpr char LIST_HEADER_SIZE_TEXT[] = "header_size  %d\n";
inline constexpr char LIST_SIZE_TEXT[] = "list_size    %d\n";
inline constexpr auto LIST_TOP_LINES = lines<ListHead>({
    {LIST_TAG_TEXT, &ListHead::list_tag},
    {LIST_HEADER_SIZE_TEXT, &ListHead::list_header_size},
    {LIST_SIZE_TEXT, &ListHead::list_size},
    unprinted(&ListHead::num),
    unprinted(&ListHead::van_ext_blk_size),
    unprinted(&ListHead::usr_ext_blk_size),
});
consteval Table<ListHead> version2ListLines(const char *num_text) {
  return lines<ListHead>({
      {LIST_TAG_TEXT, &ListHead::list_tag},
      {LIST_HEADER_SIZE_TEXT, &ListHead::list_header_size},
      {LIST_SIZE_TEXT, &ListHead::list_size},
      {num_text, &ListHead::num},
      {"van_ext_blk_size   %d\n", &ListHead::van_ext_blk_size},
      {"usr_ext_blk_size   %d\n", &ListHead::usr_ext_blk_size},
  });
}

/// Keyframes.
inline constexpr auto ROTATE_E_LINES = lines<RotateE>({
    {"interpolation type  %0#10x\n", &RotateE::interpolation_type},
    {"key  %d\n", &RotateE::key},
    {"rotation angle  %#g\n", &RotateE::rotation_angle},
    {"differential rotation angle  %#g\n", &RotateE::differential_rotation_angle},
});
inline constexpr auto SCALE_LINES = lines<Scale>({
    {"interpolation type  %0#10x\n", &Scale::interpolation_type},
    {"key  %d\n", &Scale::key},
    xyzLine("scale", &Scale::scale),
    xyzLine("differential scale", &Scale::differential_scale),
});
inline constexpr auto PRIM_COLOR_ANIM_LINES = lines<PrimColorAnim>({
    {"interpolation_type  %0#10x\n", &PrimColorAnim::interpolation_type},
    {"key                 %d\n", &PrimColorAnim::key},
    rgbaLine("prim_color_anim", &PrimColorAnim::prim_color_anim),
});

// --- Writers --------------------------------------------------------------------------------------------------------

/// "<%s> ;" with 50 dashes after it, then an empty line.
void kvWriteKtListName(Text &text, const char *name);

/// "</%s>", then an empty line.
void kvWriteKtListEnd(Text &text, const char *name);

/// The opener of a version-2 list and the lines "list_tag", "header_size" and "list_size", or those of another table of
/// the list's header.
template <const auto &TABLE = LIST_TOP_LINES>
void kvWriteKtListTop(Text &text, const ListHead &head, const char *name) {
  kvWriteKtListName(text, name);
  putRecord<TABLE>(text, head);
}

/// "%s(%d)" with the label and the stored index, then the lines "tag", "this_index", "size" and "name_index", or those
/// of the table of a record that begins with these.
template <const auto &TABLE = ELEMENT_TOP_LINES>
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
