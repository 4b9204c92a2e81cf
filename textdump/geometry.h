/// The line tables and the writers of vertices, triangles, colours, normals, texture coordinates and parts.
///
/// Trailing blanks and odd names in the tables are the format's own.
#pragma once

#include "textdump/lines.h"

namespace kova {

// --- Line tables ----------------------------------------------------------------------------------------------------

inline constexpr auto VTX_LIST_LINES = lines<ListHead>({
    {"vtx_list_tag %0#10x\n", &ListHead::list_tag},
    {"vtx_list_header_size  %d\n", &ListHead::list_header_size},
    {"vtx_list_size         %d\n", &ListHead::list_size},
    {"vtx_group_num         %d\n", &ListHead::num},
    {"van_ext_blk_size      %d\n", &ListHead::van_ext_blk_size},
    {"usr_ext_blk_size      %d\n", &ListHead::usr_ext_blk_size},
});
inline constexpr auto VTX_GROUP_LINES = lines<VtxGroupHead>({
    {"vtx_group_tag          %0#10x\n", &VtxGroupHead::vtx_group_tag},
    {"this_vtx_group_index   %d\n", &VtxGroupHead::this_vtx_group_index},
    {"vtx_group_header_size  %d\n", &VtxGroupHead::vtx_group_header_size},
    {"vtx_group_size         %d\n", &VtxGroupHead::vtx_group_size},
    {"vtx_group_name         %d\n", &VtxGroupHead::vtx_group_name},
    {"vtx_num                %d\n", &VtxGroupHead::vtx_num},
});

inline constexpr auto TRI_LIST_LINES = lines<ListHead>({
    {"tri_list_tag          %0#10x\n", &ListHead::list_tag},
    {"tri_list_header_size  %d\n", &ListHead::list_header_size},
    {"tri_list_size         %d\n", &ListHead::list_size},
    {"tri_group_num         %d\n", &ListHead::num},
    {"van_ext_blk_size      %d\n", &ListHead::van_ext_blk_size},
    {"usr_ext_blk_size      %d\n", &ListHead::usr_ext_blk_size},
});
inline constexpr auto TRI_GROUP_LINES = lines<TriGroupHead>({
    {"tri_group_tag          %0#10x\n", &TriGroupHead::tri_group_tag},
    {"this_tri_group_index   %d\n", &TriGroupHead::this_tri_group_index},
    {"tri_group_header_size  %d\n", &TriGroupHead::tri_group_header_size},
    {"tri_group_size         %d\n", &TriGroupHead::tri_group_size},
    {"tri_group_name_index   %d\n", &TriGroupHead::tri_group_name_index},
    {"tri_anim_type          %0#10x\n", &TriGroupHead::tri_anim_type},
    {"tri_anim_frame_num     %d\n", &TriGroupHead::tri_anim_frame_num},
    {"tri_num                %d\n", &TriGroupHead::tri_num},
});

/// The four words of a corner share a line.
inline constexpr auto TRI_LINES = lines<TriHead>({
    {"tri_tag          %0#10x\n", &TriHead::tri_tag},
    {"this_tri_index   %d\n", &TriHead::this_tri_index},
    {"tri_size         %d\n", &TriHead::tri_size},
    {"tri_nv_index     %d\n", &TriHead::tri_nv_index},
    {"tri_color_index  %d\n", &TriHead::tri_color_index},
    {"vtx_index0  %d  ", &TriHead::vtx_index0},
    {"st_index0  %d  ", &TriHead::st_index0},
    {"vtx_nv_index0  %d  ", &TriHead::vtx_nv_index0},
    {"vtx_color_index0  %d\n", &TriHead::vtx_color_index0},
    {"vtx_index1  %d  ", &TriHead::vtx_index1},
    {"st_index1  %d  ", &TriHead::st_index1},
    {"vtx_nv_index1  %d  ", &TriHead::vtx_nv_index1},
    {"vtx_color_index1  %d\n", &TriHead::vtx_color_index1},
    {"vtx_index2  %d  ", &TriHead::vtx_index2},
    {"st_index2  %d  ", &TriHead::st_index2},
    {"vtx_nv_index2  %d  ", &TriHead::vtx_nv_index2},
    {"vtx_color_index2  %d\n", &TriHead::vtx_color_index2},
    {"van_ext_blk_size  %d\n", &TriHead::van_ext_blk_size},
    {"usr_ext_blk_size  %d\n", &TriHead::usr_ext_blk_size},
});

inline constexpr auto COLOR_LIST_LINES = lines<TwoKindListHead>({
    {"color_list_tag          %0#10x\n", &TwoKindListHead::list_tag},
    {"color_list_header_size  %d\n", &TwoKindListHead::list_header_size},
    {"color_list_size         %d\n", &TwoKindListHead::list_size},
    {"tri_color_group_num     %d\n", &TwoKindListHead::tri_group_num},
    {"vtx_color_group_num     %d\n", &TwoKindListHead::vtx_group_num},
    {"van_ext_blk_size        %d\n", &TwoKindListHead::van_ext_blk_size},
    {"usr_ext_blk_size        %d\n", &TwoKindListHead::usr_ext_blk_size},
});
inline constexpr auto TRI_COLOR_GROUP_LINES = lines<TriColorGroupHead>({
    {"tri_color_group_tag          %0#10x\n", &TriColorGroupHead::tri_color_group_tag},
    {"this_tri_color_group_index   %d\n", &TriColorGroupHead::this_tri_color_group_index},
    {"tri_color_group_header_size  %d\n", &TriColorGroupHead::tri_color_group_header_size},
    {"tri_color_group_size         %d\n", &TriColorGroupHead::tri_color_group_size},
    {"tri_color_num                %d\n", &TriColorGroupHead::tri_color_num},
});
inline constexpr auto VTX_COLOR_GROUP_LINES = lines<VtxColorGroupHead>({
    {"vtx_color_group_tag          %0#10x\n", &VtxColorGroupHead::vtx_color_group_tag},
    {"this_vtx_color_group_index   %d\n", &VtxColorGroupHead::this_vtx_color_group_index},
    {"vtx_color_group_header_size  %d\n", &VtxColorGroupHead::vtx_color_group_header_size},
    {"vtx_color_group_size         %d\n", &VtxColorGroupHead::vtx_color_group_size},
    {"vtx_color_num                %d\n", &VtxColorGroupHead::vtx_color_num},
});

inline constexpr auto VECTOR_LIST_LINES = lines<TwoKindListHead>({
    {"vector_list_tag          %0#10x\n", &TwoKindListHead::list_tag},
    {"vector_list_header_size  %d\n", &TwoKindListHead::list_header_size},
    {"vector_list_size         %d\n", &TwoKindListHead::list_size},
    {"tri_nv_group_num         %d\n", &TwoKindListHead::tri_group_num},
    {"vtx_nv_group_num         %d\n", &TwoKindListHead::vtx_group_num},
    {"van_ext_blk_size         %d\n", &TwoKindListHead::van_ext_blk_size},
    {"usr_ext_blk_size         %d\n", &TwoKindListHead::usr_ext_blk_size},
});
inline constexpr auto TRI_NV_GROUP_LINES = lines<TriNvGroupHead>({
    {"tri_nv_group_tag         %0#10x\n", &TriNvGroupHead::tri_nv_group_tag},
    {"this_tri_nv_group_index  %d\n", &TriNvGroupHead::this_tri_nv_group_index},
    {"tri_nv_group_header_size %d\n", &TriNvGroupHead::tri_nv_group_header_size},
    {"tri_nv_group_size        %d\n", &TriNvGroupHead::tri_nv_group_size},
    {"tri_nv_num               %d\n", &TriNvGroupHead::tri_nv_num},
});
inline constexpr auto VTX_NV_GROUP_LINES = lines<VtxNvGroupHead>({
    {"vtx_nv_group_tag     %0#10x\n", &VtxNvGroupHead::vtx_nv_group_tag},
    {"vtx_nv_group_index   %d\n", &VtxNvGroupHead::vtx_nv_group_index},
    {"nv_group_header_size %d\n", &VtxNvGroupHead::nv_group_header_size},
    {"vtx_nv_group_size    %d\n", &VtxNvGroupHead::vtx_nv_group_size},
    {"vtx_nv_num           %d\n", &VtxNvGroupHead::vtx_nv_num},
});

inline constexpr auto ST_LIST_LINES = lines<ListHead>({
    {"st_list_tag          %0#10x\n", &ListHead::list_tag},
    {"st_list_header_size  %d\n", &ListHead::list_header_size},
    {"st_list_size         %d\n", &ListHead::list_size},
    {"st_group_num         %d\n", &ListHead::num},
    {"van_ext_blk_size     %d\n", &ListHead::van_ext_blk_size},
    {"usr_ext_blk_size     %d\n", &ListHead::usr_ext_blk_size},
});
inline constexpr auto ST_GROUP_LINES = lines<StGroupHead>({
    {"st_group_tag         %0#10x\n", &StGroupHead::st_group_tag},
    {"this_st_group_index  %d\n", &StGroupHead::this_st_group_index},
    {"st_group_header_size %d\n", &StGroupHead::st_group_header_size},
    {"st_group_size        %d\n", &StGroupHead::st_group_size},
    {"st_num               %d\n", &StGroupHead::st_num},
});

inline constexpr auto PART_LIST_LINES = lines<ListHead>({
    {"part_list_tag          %0#10x\n", &ListHead::list_tag},
    {"part_list_header_size  %d\n", &ListHead::list_header_size},
    {"part_list_size         %d\n", &ListHead::list_size},
    {"part_num               %d\n", &ListHead::num},
    {"van_ext_blk_size       %d\n", &ListHead::van_ext_blk_size},
    {"usr_ext_blk_size       %d\n", &ListHead::usr_ext_blk_size},
});
inline constexpr auto PART_LINES = lines<PartHead>({
    {"part_tag          %0#10x\n", &PartHead::part_tag},
    {"this_part_index   %d\n", &PartHead::this_part_index},
    {"part_size         %d\n", &PartHead::part_size},
    {"part_name_index   %d\n", &PartHead::part_name_index},
    {"mat_index         %d\n", &PartHead::mat_index},
    {"tri_group_index   %d\n", &PartHead::tri_group_index},
    {"part_tri_num      %d\n", &PartHead::part_tri_num},
    {"van_ext_blk_size  %d\n", &PartHead::van_ext_blk_size},
    {"usr_ext_blk_size  %d\n", &PartHead::usr_ext_blk_size},
});

// --- Writers --------------------------------------------------------------------------------------------------------

/// Opener, header lines and size tables; of vertices, colours, normals and texture coordinates also the groups.
void kvWriteKtVtxListFix1(Text &text, const VtxList &list);
void kvWriteKtTriListFix1(Text &text, const TriList &list);
void kvWriteKtColorListFix1(Text &text, const ColorList &list);
void kvWriteKtVectorListFix1(Text &text, const VectorList &list);
void kvWriteKtStListFix1(Text &text, const StList &list);
void kvWriteKtPartListFix1(Text &text, const PartList &list);

/// Heading, fields and arrays of one element, without its blocks. A triangle group comes with its references and its
/// triangles, blocks of the triangles included.
void kvWriteKtVtxFix1(Text &text, const VtxGroup &group, Index number);
void kvWriteKtTriGroupFix1(Text &text, const TriGroup &group, Index number);
void kvWriteKtTriFix1(Text &text, const Tri &tri, Index number);
void kvWriteKtTriColorFix1(Text &text, const TriColorGroup &group, Index number);
void kvWriteKtVtxColorFix1(Text &text, const VtxColorGroup &group, Index number);
void kvWriteKtTriNvFix1(Text &text, const TriNvGroup &group, Index number);
void kvWriteKtVtxNvFix1(Text &text, const VtxNvGroup &group, Index number);
void kvWriteKtStFix1(Text &text, const StGroup &group, Index number);
void kvWriteKtPartFix1(Text &text, const Part &part, Index number);

} // namespace kova
