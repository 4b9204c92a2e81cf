/// Vertices, triangles, colours, normals, texture coordinates and parts.
#pragma once

#include "kova/list.h"

#include <array>

namespace kova {

inline constexpr Word VTX_LIST_TAG = 0x00040000;
inline constexpr Word COLOR_LIST_TAG = 0x00050000;
inline constexpr Word VECTOR_LIST_TAG = 0x00060000;
inline constexpr Word ST_LIST_TAG = 0x00070000;
inline constexpr Word TRI_LIST_TAG = 0x00080000;
inline constexpr Word PART_LIST_TAG = 0x00090000;

struct VtxGroupHead {
  Word vtx_group_tag;
  Index this_vtx_group_index;
  Word vtx_group_header_size;
  Word vtx_group_size;
  Index vtx_group_name; ///< the index of the name, like the siblings that are called so
  Word vtx_num;
};
static_assert(sizeof(VtxGroupHead) == 24);

struct VtxGroup : VtxGroupHead {
  std::vector<Xyz> vtx;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

struct TriColorGroupHead {
  Word tri_color_group_tag;
  Index this_tri_color_group_index;
  Word tri_color_group_header_size;
  Word tri_color_group_size;
  Word tri_color_num;
};
static_assert(sizeof(TriColorGroupHead) == 20);

struct TriColorGroup : TriColorGroupHead {
  std::vector<Rgba> color;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

struct VtxColorGroupHead {
  Word vtx_color_group_tag;
  Index this_vtx_color_group_index;
  Word vtx_color_group_header_size;
  Word vtx_color_group_size;
  Word vtx_color_num;
};
static_assert(sizeof(VtxColorGroupHead) == 20);

struct VtxColorGroup : VtxColorGroupHead {
  std::vector<Rgba> color;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

struct TriNvGroupHead {
  Word tri_nv_group_tag;
  Index this_tri_nv_group_index;
  Word tri_nv_group_header_size;
  Word tri_nv_group_size;
  Word tri_nv_num;
};
static_assert(sizeof(TriNvGroupHead) == 20);

struct TriNvGroup : TriNvGroupHead {
  std::vector<Xyz> normal;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

/// Two of the names miss a part that their siblings have; the format has them so.
struct VtxNvGroupHead {
  Word vtx_nv_group_tag;
  Index vtx_nv_group_index;
  Word nv_group_header_size;
  Word vtx_nv_group_size;
  Word vtx_nv_num;
};
static_assert(sizeof(VtxNvGroupHead) == 20);

struct VtxNvGroup : VtxNvGroupHead {
  std::vector<Xyz> normal;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

struct StGroupHead {
  Word st_group_tag;
  Index this_st_group_index;
  Word st_group_header_size;
  Word st_group_size;
  Word st_num;
};
static_assert(sizeof(StGroupHead) == 20);

struct StGroup : StGroupHead {
  std::vector<St> st;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

/// What a triangle group says of one kind of data: the group of that kind that it uses, once, per frame or per key. A
/// view of the group's words; see `kvRefs`.
struct AnimRef {
  Word key_num;               ///< only in the key form
  std::span<const Index> key; ///< only in the key form
  std::span<const Index> group_index;
};

/// The six references of a triangle group, in file order.
enum RefKind : std::size_t { refVtx, refTriColor, refVtxColor, refTriNv, refVtxNv, refSt, REF_KIND_NUM };

/// How a reference is stored; each has two bits of `tri_anim_type`, and the frame bit wins.
enum class RefForm : std::uint8_t { single, frames, keys };

/// @return how reference `kind`, a RefKind, is stored in a group of this `tri_anim_type`.
inline constexpr RefForm refForm(Word tri_anim_type, std::size_t kind) {
  const Word bits = tri_anim_type >> (4 * kind);
  return (bits & 1) != 0 ? RefForm::frames : (bits & 2) != 0 ? RefForm::keys : RefForm::single;
}

struct TriHead {
  Word tri_tag; ///< not tested
  Index this_tri_index;
  Word tri_size;
  Index tri_nv_index; ///< this and the others: in the groups that the references of the triangle group name
  Index tri_color_index;
  Index vtx_index0, st_index0, vtx_nv_index0, vtx_color_index0;
  Index vtx_index1, st_index1, vtx_nv_index1, vtx_color_index1;
  Index vtx_index2, st_index2, vtx_nv_index2, vtx_color_index2;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(TriHead) == 76);

struct Tri : TriHead {
  ExtBlk ext_blk;
};

struct TriGroupHead {
  Word tri_group_tag;
  Index this_tri_group_index;
  Word tri_group_header_size;
  Word tri_group_size;
  Index tri_group_name_index;
  Word tri_anim_type;
  Index tri_anim_frame_num; ///< frames 0 to this one: the frame form has one index more
  Word tri_num;
};
static_assert(sizeof(TriGroupHead) == 32);

struct TriGroup : TriGroupHead {
  /// The words of the six references as the file has them, after a few of the library's own; null where there are none.
  /// `kvRefs` takes them apart, `kvSetRefs` sets them. A file can have very many small groups, so this costs one
  /// pointer.
  std::unique_ptr<Index[]> ref;
  std::vector<Tri> tri;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

struct PartHead {
  Word part_tag;
  Index this_part_index;
  Word part_size;
  Index part_name_index;
  Index mat_index;
  Index tri_group_index;
  Word part_tri_num; ///< of `tri_index`: triangles of the group `tri_group_index`
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(PartHead) == 36);

struct Part : PartHead {
  Indices tri_index;
  ExtBlk ext_blk;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

using VtxList = List<VtxGroup>;
using TriList = List<TriGroup>;
using ColorList = TwoKindList<TriColorGroup, VtxColorGroup>;
using VectorList = TwoKindList<TriNvGroup, VtxNvGroup>;
using StList = List<StGroup>;
using PartList = List<Part>;

/// @return the six references of a group, by `RefKind`. An array is there whole or, where reading ended before it,
/// empty; where a program has lowered `tri_anim_frame_num` since, it is as long as that says. The views stay good as
/// long as the group does.
KOVA_API std::array<AnimRef, REF_KIND_NUM> kvRefs(const TriGroup &group);

/// Gives a group its six references, by `RefKind`, each in the form that the group's `tri_anim_type` and
/// `tri_anim_frame_num` call for: one group index, one for each frame, or `key_num` keys and as many group indices.
/// They are copied, and may be views of the group's own (`kvRefs`). A new group needs this: without references its file
/// cannot be read. Sizes are not changed; see `kvAdjustListSizeData`.
/// @return 1; 0 with the group as it was where an array has not the length of its form, or memory cannot be had
KOVA_API int kvSetRefs(TriGroup &group, const std::array<AnimRef, REF_KIND_NUM> &refs);

} // namespace kova
