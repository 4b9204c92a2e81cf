/// The words that lists and their elements begin with.
#pragma once

#include "format/content.h"

namespace kova {

/// The words of a list's header, by their texts.
consteval auto listWords(const std::array<const char *, 6> &text) {
  return words<ListHead>({
      {text[0], &ListHead::list_tag, TAG},
      {text[1], &ListHead::list_header_size, HEADER_SIZE},
      {text[2], &ListHead::list_size, SIZE},
      {text[3], &ListHead::num, COUNT},
      {text[4], &ListHead::van_ext_blk_size, VAN_SIZE},
      {text[5], &ListHead::usr_ext_blk_size, USR_SIZE},
  });
}

/// The same of a list with two kinds of group.
consteval auto twoKindListWords(const std::array<const char *, 7> &text) {
  return words<TwoKindListHead>({
      {text[0], &TwoKindListHead::list_tag, TAG},
      {text[1], &TwoKindListHead::list_header_size, HEADER_SIZE},
      {text[2], &TwoKindListHead::list_size, SIZE},
      {text[3], &TwoKindListHead::tri_group_num, COUNT},
      {text[4], &TwoKindListHead::vtx_group_num, COUNT},
      {text[5], &TwoKindListHead::van_ext_blk_size, VAN_SIZE},
      {text[6], &TwoKindListHead::usr_ext_blk_size, USR_SIZE},
  });
}

/// The same of a version-2 list, which has only a count of its own.
consteval auto version2ListWords(const char *num_text) {
  return listWords({
      "list_tag     %0#10x\n",
      "header_size  %d\n",
      "list_size    %d\n",
      num_text,
      "van_ext_blk_size   %d\n",
      "usr_ext_blk_size   %d\n",
  });
}

/// The words that every element of a version-2 list begins with.
template <>
inline constexpr auto WORDS<ElementHead> = words<ElementHead>({
    {"tag          %0#10x\n", &ElementHead::tag, TAG},
    {"this_index   %d\n", &ElementHead::this_index, OWN_INDEX},
    {"size         %d\n", &ElementHead::size, SIZE},
    {"name_index   %d\n", &ElementHead::name_index, link(To::name)},
});

// --- Content of lists -----------------------------------------------------------------------------------------------

/// What a list holds: its words as its own names, its content, and the forms of its elements. Specialized for each type
/// of list.
template <class List> struct ListFormat;

/// A list with the common header.
/// @tparam TABLE_LINE of its size table
template <class Element, const auto &HEAD_WORDS, Format TABLE_LINE, const auto &ELEMENTS> struct CommonList {
  using Head = ListHead;
  static constexpr auto &words = HEAD_WORDS;
  static constexpr auto &table = line<TABLE_LINE>;
  static constexpr auto &elements = ELEMENTS;

  template <class Io> static constexpr int content(Io &io, const Head &) {
    return io.array(table, &List<Element>::num_byte, &ListHead::num) &&
           io.records(elements, &List<Element>::element, &ListHead::num) && io.blocks();
  }
};

/// A list of groups for triangles and groups for vertices.
/// @tparam VTX_COUNT says how many groups for vertices there are
template <class List, const auto &HEAD_WORDS, Format TRI_LINE, Format VTX_LINE, const auto &TRI_GROUPS,
          const auto &VTX_GROUPS, Word TwoKindListHead::*VTX_COUNT>
struct TwoKinds {
  using Head = TwoKindListHead;
  static constexpr auto &words = HEAD_WORDS;
  static constexpr auto &table = line<TRI_LINE>;
  static constexpr auto &second_table = line<VTX_LINE>;
  static constexpr auto &elements = TRI_GROUPS;
  static constexpr auto &second_elements = VTX_GROUPS;

  template <class Io> static constexpr int content(Io &io, const Head &) {
    return io.array(table, &List::tri_group_size, &Head::tri_group_num) &&
           io.array(second_table, &List::vtx_group_size, &Head::vtx_group_num) &&
           io.records(elements, &List::tri_group, &Head::tri_group_num) &&
           io.records(second_elements, &List::vtx_group, VTX_COUNT) && io.blocks();
  }
};

} // namespace kova
