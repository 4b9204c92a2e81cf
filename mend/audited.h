/// What the audit looks at, and how lenient it is, where that does not follow from the words of a record. These are
/// properties of the checks, which state them in their own way.
#pragma once

#include "format/all.h"

namespace kova::mend {

/// Of elements the audit looks at index and size. Of the records inside it looks at no index, and at the size of all
/// but these.
template <class Head> inline constexpr bool SIZE_IS_AUDITED = true;
template <> inline constexpr bool SIZE_IS_AUDITED<TriHead> = false;
template <> inline constexpr bool SIZE_IS_AUDITED<AnimStep> = false;
template <> inline constexpr bool SIZE_IS_AUDITED<AnimKeyframe> = false;
template <> inline constexpr bool SIZE_IS_AUDITED<AnimNode> = false;
template <> inline constexpr bool SIZE_IS_AUDITED<CollHead> = false;

/// Names are not looked at, and their sizes may end within a word. Those of the external names are looked at.
inline constexpr Word UNAUDITED_TAG = NAME_LIST_TAG + ELEMENT_KIND;

/// Whether a count of records that the form does not store has to be 0.
template <class Head> inline constexpr bool ABSENT_IS_AUDITED = false;
template <> inline constexpr bool ABSENT_IS_AUDITED<LightHead> = true;

/// Whether the audit counts an array in when it says how long a maker block has to be.
constexpr bool isAudited(const auto &) { return true; }
constexpr bool isAudited(Indices ObjExt::*member) { return member != &ObjExt::obj_chain_root_link; }
constexpr bool isAudited(std::vector<External> TexExt::*member) { return member != &TexExt::external_palette; }

/// Whether the size of a record takes in its blocks: behind a collision stand blocks of its group's sizes.
template <class Head> inline constexpr bool SIZE_IS_OF_ALL = true;
template <> inline constexpr bool SIZE_IS_OF_ALL<CollHead> = false;
/// Whether the blocks of a record stand at its end.
template <class Head> inline constexpr bool BLOCKS_ARE_OWN = true;
template <> inline constexpr bool BLOCKS_ARE_OWN<CollGroupHead> = false;

/// Whether a header size that is wrong may be any number; else only that of the fixed words is tried.
template <class Head> inline constexpr bool HEADER_SIZE_IS_FREE = false;
template <> inline constexpr bool HEADER_SIZE_IS_FREE<SceneHead> = true;

} // namespace kova::mend
