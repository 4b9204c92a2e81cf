/// The words of vertices, triangles, colours, normals, texture coordinates and parts.
///
/// Trailing blanks and odd names in the tables are the format's own.
#pragma once

#include "format/list.h"
#include "kova/geometry.h"

namespace kova {

inline constexpr auto VTX_LIST_WORDS = listWords({
    "vtx_list_tag %0#10x\n",
    "vtx_list_header_size  %d\n",
    "vtx_list_size         %d\n",
    "vtx_group_num         %d\n",
    "van_ext_blk_size      %d\n",
    "usr_ext_blk_size      %d\n",
});
template <>
inline constexpr auto WORDS<VtxGroupHead> = words<VtxGroupHead>({
    {"vtx_group_tag          %0#10x\n", &VtxGroupHead::vtx_group_tag, TAG},
    {"this_vtx_group_index   %d\n", &VtxGroupHead::this_vtx_group_index, OWN_INDEX},
    {"vtx_group_header_size  %d\n", &VtxGroupHead::vtx_group_header_size, HEADER_SIZE},
    {"vtx_group_size         %d\n", &VtxGroupHead::vtx_group_size, SIZE},
    {"vtx_group_name         %d\n", &VtxGroupHead::vtx_group_name, link(To::name)},
    {"vtx_num                %d\n", &VtxGroupHead::vtx_num, COUNT},
});

inline constexpr auto TRI_LIST_WORDS = listWords({
    "tri_list_tag          %0#10x\n",
    "tri_list_header_size  %d\n",
    "tri_list_size         %d\n",
    "tri_group_num         %d\n",
    "van_ext_blk_size      %d\n",
    "usr_ext_blk_size      %d\n",
});
template <>
inline constexpr auto WORDS<TriGroupHead> = words<TriGroupHead>({
    {"tri_group_tag          %0#10x\n", &TriGroupHead::tri_group_tag, TAG},
    {"this_tri_group_index   %d\n", &TriGroupHead::this_tri_group_index, OWN_INDEX},
    {"tri_group_header_size  %d\n", &TriGroupHead::tri_group_header_size, HEADER_SIZE},
    {"tri_group_size         %d\n", &TriGroupHead::tri_group_size, SIZE},
    {"tri_group_name_index   %d\n", &TriGroupHead::tri_group_name_index, link(To::name)},
    {"tri_anim_type          %0#10x\n", &TriGroupHead::tri_anim_type},
    {"tri_anim_frame_num     %d\n", &TriGroupHead::tri_anim_frame_num, COUNT},
    {"tri_num                %d\n", &TriGroupHead::tri_num, COUNT},
});

/// The four words of a corner share a line.
template <>
inline constexpr auto WORDS<TriHead> = words<TriHead>({
    {"tri_tag          %0#10x\n", &TriHead::tri_tag, TAG},
    {"this_tri_index   %d\n", &TriHead::this_tri_index, OWN_INDEX},
    {"tri_size         %d\n", &TriHead::tri_size, SIZE},
    {"tri_nv_index     %d\n", &TriHead::tri_nv_index, link(To::own_tri_nv)},
    {"tri_color_index  %d\n", &TriHead::tri_color_index, link(To::own_tri_color)},
    {"vtx_index0  %d  ", &TriHead::vtx_index0, link(To::own_vtx)},
    {"st_index0  %d  ", &TriHead::st_index0, link(To::own_st)},
    {"vtx_nv_index0  %d  ", &TriHead::vtx_nv_index0, link(To::own_vtx_nv)},
    {"vtx_color_index0  %d\n", &TriHead::vtx_color_index0, link(To::own_vtx_color)},
    {"vtx_index1  %d  ", &TriHead::vtx_index1, link(To::own_vtx)},
    {"st_index1  %d  ", &TriHead::st_index1, link(To::own_st)},
    {"vtx_nv_index1  %d  ", &TriHead::vtx_nv_index1, link(To::own_vtx_nv)},
    {"vtx_color_index1  %d\n", &TriHead::vtx_color_index1, link(To::own_vtx_color)},
    {"vtx_index2  %d  ", &TriHead::vtx_index2, link(To::own_vtx)},
    {"st_index2  %d  ", &TriHead::st_index2, link(To::own_st)},
    {"vtx_nv_index2  %d  ", &TriHead::vtx_nv_index2, link(To::own_vtx_nv)},
    {"vtx_color_index2  %d\n", &TriHead::vtx_color_index2, link(To::own_vtx_color)},
    {"van_ext_blk_size  %d\n", &TriHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size  %d\n", &TriHead::usr_ext_blk_size, USR_SIZE},
});

inline constexpr auto COLOR_LIST_WORDS = twoKindListWords({
    "color_list_tag          %0#10x\n",
    "color_list_header_size  %d\n",
    "color_list_size         %d\n",
    "tri_color_group_num     %d\n",
    "vtx_color_group_num     %d\n",
    "van_ext_blk_size        %d\n",
    "usr_ext_blk_size        %d\n",
});
template <>
inline constexpr auto WORDS<TriColorGroupHead> = words<TriColorGroupHead>({
    {"tri_color_group_tag          %0#10x\n", &TriColorGroupHead::tri_color_group_tag, TAG},
    {"this_tri_color_group_index   %d\n", &TriColorGroupHead::this_tri_color_group_index, OWN_INDEX},
    {"tri_color_group_header_size  %d\n", &TriColorGroupHead::tri_color_group_header_size, HEADER_SIZE},
    {"tri_color_group_size         %d\n", &TriColorGroupHead::tri_color_group_size, SIZE},
    {"tri_color_num                %d\n", &TriColorGroupHead::tri_color_num, COUNT},
});
template <>
inline constexpr auto WORDS<VtxColorGroupHead> = words<VtxColorGroupHead>({
    {"vtx_color_group_tag          %0#10x\n", &VtxColorGroupHead::vtx_color_group_tag, TAG},
    {"this_vtx_color_group_index   %d\n", &VtxColorGroupHead::this_vtx_color_group_index, OWN_INDEX},
    {"vtx_color_group_header_size  %d\n", &VtxColorGroupHead::vtx_color_group_header_size, HEADER_SIZE},
    {"vtx_color_group_size         %d\n", &VtxColorGroupHead::vtx_color_group_size, SIZE},
    {"vtx_color_num                %d\n", &VtxColorGroupHead::vtx_color_num, COUNT},
});

inline constexpr auto VECTOR_LIST_WORDS = twoKindListWords({
    "vector_list_tag          %0#10x\n",
    "vector_list_header_size  %d\n",
    "vector_list_size         %d\n",
    "tri_nv_group_num         %d\n",
    "vtx_nv_group_num         %d\n",
    "van_ext_blk_size         %d\n",
    "usr_ext_blk_size         %d\n",
});
template <>
inline constexpr auto WORDS<TriNvGroupHead> = words<TriNvGroupHead>({
    {"tri_nv_group_tag         %0#10x\n", &TriNvGroupHead::tri_nv_group_tag, TAG},
    {"this_tri_nv_group_index  %d\n", &TriNvGroupHead::this_tri_nv_group_index, OWN_INDEX},
    {"tri_nv_group_header_size %d\n", &TriNvGroupHead::tri_nv_group_header_size, HEADER_SIZE},
    {"tri_nv_group_size        %d\n", &TriNvGroupHead::tri_nv_group_size, SIZE},
    {"tri_nv_num               %d\n", &TriNvGroupHead::tri_nv_num, COUNT},
});
template <>
inline constexpr auto WORDS<VtxNvGroupHead> = words<VtxNvGroupHead>({
    {"vtx_nv_group_tag     %0#10x\n", &VtxNvGroupHead::vtx_nv_group_tag, TAG},
    {"vtx_nv_group_index   %d\n", &VtxNvGroupHead::vtx_nv_group_index, OWN_INDEX},
    {"nv_group_header_size %d\n", &VtxNvGroupHead::nv_group_header_size, HEADER_SIZE},
    {"vtx_nv_group_size    %d\n", &VtxNvGroupHead::vtx_nv_group_size, SIZE},
    {"vtx_nv_num           %d\n", &VtxNvGroupHead::vtx_nv_num, COUNT},
});

inline constexpr auto ST_LIST_WORDS = listWords({
    "st_list_tag          %0#10x\n",
    "st_list_header_size  %d\n",
    "st_list_size         %d\n",
    "st_group_num         %d\n",
    "van_ext_blk_size     %d\n",
    "usr_ext_blk_size     %d\n",
});
template <>
inline constexpr auto WORDS<StGroupHead> = words<StGroupHead>({
    {"st_group_tag         %0#10x\n", &StGroupHead::st_group_tag, TAG},
    {"this_st_group_index  %d\n", &StGroupHead::this_st_group_index, OWN_INDEX},
    {"st_group_header_size %d\n", &StGroupHead::st_group_header_size, HEADER_SIZE},
    {"st_group_size        %d\n", &StGroupHead::st_group_size, SIZE},
    {"st_num               %d\n", &StGroupHead::st_num, COUNT},
});

inline constexpr auto PART_LIST_WORDS = listWords({
    "part_list_tag          %0#10x\n",
    "part_list_header_size  %d\n",
    "part_list_size         %d\n",
    "part_num               %d\n",
    "van_ext_blk_size       %d\n",
    "usr_ext_blk_size       %d\n",
});
template <>
inline constexpr auto WORDS<PartHead> = words<PartHead>({
    {"part_tag          %0#10x\n", &PartHead::part_tag, TAG},
    {"this_part_index   %d\n", &PartHead::this_part_index, OWN_INDEX},
    {"part_size         %d\n", &PartHead::part_size, SIZE},
    {"part_name_index   %d\n", &PartHead::part_name_index, link(To::name)},
    {"mat_index         %d\n", &PartHead::mat_index, link(To::mat)},
    {"tri_group_index   %d\n", &PartHead::tri_group_index, link(To::tri)},
    {"part_tri_num      %d\n", &PartHead::part_tri_num, COUNT},
    {"van_ext_blk_size  %d\n", &PartHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size  %d\n", &PartHead::usr_ext_blk_size, USR_SIZE},
});

// --- Content --------------------------------------------------------------------------------------------------------

template <class Io> constexpr int content(Io &io, const VtxGroupHead &) {
  return io.array(line<" Vtx(%d) %#12g %#12g %#12g   ; x,y,z\n", "vtx">, &VtxGroup::vtx, &VtxGroup::vtx_num);
}

template <class Io> constexpr int content(Io &io, const TriColorGroupHead &) {
  return io.array(line<"TriColor(%d) %#12g %#12g %#12g %#12g    ; RGBA\n", "color">, &TriColorGroup::color,
                  &TriColorGroup::tri_color_num);
}
template <class Io> constexpr int content(Io &io, const VtxColorGroupHead &) {
  return io.array(line<"VtxColor(%d) %#12g %#12g %#12g %#12g    ; RGBA\n", "color">, &VtxColorGroup::color,
                  &VtxColorGroup::vtx_color_num);
}

template <class Io> constexpr int content(Io &io, const TriNvGroupHead &) {
  return io.array(line<" TriNv(%d) %#12g %#12g %#12g    ; Nx,Ny,Nz\n", "normal">, &TriNvGroup::normal,
                  &TriNvGroup::tri_nv_num);
}
template <class Io> constexpr int content(Io &io, const VtxNvGroupHead &) {
  return io.array(line<" VtxNv(%d) %#12g %#12g %#12g    ; Nx,Ny,Nz\n", "normal">, &VtxNvGroup::normal,
                  &VtxNvGroup::vtx_nv_num);
}

template <class Io> constexpr int content(Io &io, const StGroupHead &) {
  return io.array(line<"St(%d)  %#12g  %#12g    ; s,t\n", "st">, &StGroup::st, &StGroup::st_num);
}

/// A reference of a triangle group: the names of its words, and where it leads.
struct RefWords {
  const char *key_num; ///< only in the key form
  const char *key;     ///< only in the key form
  const char *group_index;
  To to;
};

/// By `RefKind`.
inline constexpr std::array<RefWords, REF_KIND_NUM> REFS = {{
    {"vtx_anim_key_num", "vtx_anim_key", "vtx_group_index", To::vtx},
    {"tri_color_anim_key_num", "tri_color_anim_key", "tri_color_group_index", To::tri_color},
    {"vtx_color_anim_key_num", "vtx_color_anim_key", "vtx_color_group_index", To::vtx_color},
    {"tri_nv_anim_key_num", "tri_nv_anim_key", "tri_nv_group_index", To::tri_nv},
    {"vtx_nv_anim_key_num", "vtx_nv_anim_key", "vtx_nv_group_index", To::vtx_nv},
    {"st_anim_key_num", "st_anim_key", "st_group_index", To::st},
}};

/// @return how many frames a reference in the frame form has: 0 to `tri_anim_frame_num`.
constexpr std::uint64_t framesOf(const TriGroupHead &group) {
  const std::int64_t frames = std::int64_t{group.tri_anim_frame_num} + 1;
  return frames > 0 ? static_cast<std::uint64_t>(frames) : 0;
}

template <class Io> constexpr int content(Io &io, const TriHead &) { return io.blocks(); }

/// Each of the six references has one of three forms: a group index, one for each frame, or a number of keys, the keys
/// and a group index for each of them. In the model they are one piece, see `kvRefs`.
template <class Io> constexpr int content(Io &io, const TriGroupHead &) {
  return io.refs(&TriGroup::ref) && io.records(items<TriHead, "tri", "Tri(%d)\n">, &TriGroup::tri, &TriGroup::tri_num);
}

template <class Io> constexpr int content(Io &io, const PartHead &) {
  return io.array(line<"tri_index[%d]     %d\n">, &Part::tri_index, &Part::part_tri_num, To::own_tri) && io.blocks();
}

template <>
struct ListFormat<VtxList> : CommonList<VtxGroup, VTX_LIST_WORDS, "vtx_group_num_byte[%d]  %d \n",
                                        items<VtxGroupHead, "element", "VtxGroup(%d)\n", VTX_LIST_TAG + ELEMENT_KIND>> {
};

template <>
struct ListFormat<TriList> : CommonList<TriGroup, TRI_LIST_WORDS, "tri_group_num_byte[%d] %d\n",
                                        items<TriGroupHead, "element", "TriGroup(%d)\n", TRI_LIST_TAG + ELEMENT_KIND>> {
};

/// The format's library goes by the first count for both kinds of group, and files are read the way it reads them.
template <>
struct ListFormat<ColorList>
    : TwoKinds<ColorList, COLOR_LIST_WORDS, "tri_color_group_size[%d]   %d\n", "vtx_color_group_size[%d]   %d\n",
               items<TriColorGroupHead, "tri_group", "TriColorGroup(%d)\n", COLOR_LIST_TAG + ELEMENT_KIND>,
               items<VtxColorGroupHead, "vtx_group", "VtxColorGroup(%d)\n", COLOR_LIST_TAG + SECOND_ELEMENT_KIND>,
               &TwoKindListHead::tri_group_num> {};

template <>
struct ListFormat<VectorList>
    : TwoKinds<VectorList, VECTOR_LIST_WORDS, "tri_nv_group_size[%d]     %d\n", "vtx_nv_group_size[%d]     %d\n",
               items<TriNvGroupHead, "tri_group", "TriNvGroup(%d)\n", VECTOR_LIST_TAG + ELEMENT_KIND>,
               items<VtxNvGroupHead, "vtx_group", "VtxNvGroup(%d)\n", VECTOR_LIST_TAG + SECOND_ELEMENT_KIND>,
               &TwoKindListHead::vtx_group_num> {};

template <>
struct ListFormat<StList> : CommonList<StGroup, ST_LIST_WORDS, "st_group_size[%d]   %d\n",
                                       items<StGroupHead, "element", "StGroup(%d)\n", ST_LIST_TAG + ELEMENT_KIND>> {};

template <>
struct ListFormat<PartList> : CommonList<Part, PART_LIST_WORDS, "part_num_byte[%d]    %d\n",
                                         items<PartHead, "element", "Part(%d)\n", PART_LIST_TAG + ELEMENT_KIND>> {};

} // namespace kova
