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

} // namespace kova
