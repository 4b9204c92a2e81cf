/// What all lists share: the common list header, the element list, the list of two kinds of group.
#pragma once

#include "kova/words.h"

#include <concepts>

namespace kova {

/// Leads the element tags of a list: element tag = list tag + ELEMENT_KIND; the second element kind of the colour and
/// vector lists has list tag + SECOND_ELEMENT_KIND.
inline constexpr Word ELEMENT_KIND = 0x100;
inline constexpr Word SECOND_ELEMENT_KIND = 0x200;

/// The six words that every list but the scene, colour and vector lists begins with. The dump prints them under
/// the list's own prefix (env_list_tag, env_num and so on).
struct ListHead {
  Word list_tag;
  Word list_header_size; ///< bytes; recorded, never used to find the elements
  Word list_size;        ///< bytes, the whole list
  Word num;              ///< the count that the file gives; `element` may hold fewer
  Word van_ext_blk_size; ///< bytes
  Word usr_ext_blk_size; ///< bytes
};
static_assert(sizeof(ListHead) == 24);

/// A list in memory. After a read that failed it holds what was read before the fault.
template <class Element> struct List : ListHead {
  Words num_byte; ///< the size table: bytes of each element, as the file gives them
  std::vector<Element> element;
  ExtBlk ext_blk;
  std::uint64_t offset = NO_OFFSET; ///< in the file, as that of each element

  List() : ListHead{} {}
};

/// The seven words of the colour list's and the vector list's header.
struct TwoKindListHead {
  Word list_tag;
  Word list_header_size;
  Word list_size;
  Word tri_group_num;
  Word vtx_group_num;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(TwoKindListHead) == 28);

/// A list of groups for triangles and groups for vertices, each kind with a size table of its own.
template <class TriGroupElement, class VtxGroupElement> struct TwoKindList : TwoKindListHead {
  Words tri_group_size;
  Words vtx_group_size;
  std::vector<TriGroupElement> tri_group;
  std::vector<VtxGroupElement> vtx_group;
  ExtBlk ext_blk;
  std::uint64_t offset = NO_OFFSET; ///< in the file, as that of each group

  TwoKindList() : TwoKindListHead{} {}
};

/// Every element of a version-2 list begins with these four words.
struct ElementHead {
  Word tag;
  Index this_index;
  Word size;
  Index name_index;
};
static_assert(sizeof(ElementHead) == 16);

/// The types that links and indices have as fields.
template <class Field>
concept LinkField = std::same_as<Field, Word> || std::same_as<Field, Index>;

/// @return a pointer to the element that a link leads to; null if it leads nowhere, as `NO_LINK` does. `list` is a
/// `List`, or the vector of one kind of group of a `TwoKindList`; if it is not constant, nor is the element.
template <class Elements, LinkField Link> auto *kvElement(Elements &list, Link link) {
  const auto at = static_cast<Word>(link);
  if constexpr (requires { list.element; })
    return at < list.element.size() ? &list.element[at] : nullptr;
  else
    return at < list.size() ? &list[at] : nullptr;
}

/// The first `count` records of those that are held; all of them where there are fewer. For loops over what a
/// count takes in: `for (const Env &env : counted(list.num, list.element))`.
template <class Record> std::span<const Record> counted(std::uint64_t count, const std::vector<Record> &held) {
  return std::span<const Record>(held).first(count < held.size() ? static_cast<std::size_t>(count) : held.size());
}

} // namespace kova
