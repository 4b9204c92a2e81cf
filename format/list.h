/// The words that lists and their elements begin with.
#pragma once

#include "format/words.h"

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

/// What a section of a version-2 list begins with where its header's lines are not all shown.
inline constexpr auto LIST_TOP_WORDS = words<ListHead>({
    {"list_tag     %0#10x\n", &ListHead::list_tag, TAG},
    {"header_size  %d\n", &ListHead::list_header_size, HEADER_SIZE},
    {"list_size    %d\n", &ListHead::list_size, SIZE},
    unprinted("num", &ListHead::num, COUNT),
    unprinted("van_ext_blk_size", &ListHead::van_ext_blk_size, VAN_SIZE),
    unprinted("usr_ext_blk_size", &ListHead::usr_ext_blk_size, USR_SIZE),
});

/// The words that every element of a version-2 list begins with.
template <>
inline constexpr auto WORDS<ElementHead> = words<ElementHead>({
    {"tag          %0#10x\n", &ElementHead::tag, TAG},
    {"this_index   %d\n", &ElementHead::this_index, OWN_INDEX},
    {"size         %d\n", &ElementHead::size, SIZE},
    {"name_index   %d\n", &ElementHead::name_index, link(To::name)},
});

} // namespace kova
