/// The dump sections of vertices, triangles, colours, normals, texture coordinates and parts.
///
/// Trailing blanks and odd names in the tables are the format's own.
#pragma once

#include "kova/geometry.h"
#include "textdump/text.h"

namespace kova {

// One line to a word.

inline constexpr auto VTX_LIST_LINES = lines<ListHead>({
    "vtx_list_tag %0#10x\n",
    "vtx_list_header_size  %d\n",
    "vtx_list_size         %d\n",
    "vtx_group_num         %d\n",
    "van_ext_blk_size      %d\n",
    "usr_ext_blk_size      %d\n",
});
inline constexpr auto VTX_GROUP_LINES = lines<VtxGroupHead>({
    "vtx_group_tag          %0#10x\n",
    "this_vtx_group_index   %d\n",
    "vtx_group_header_size  %d\n",
    "vtx_group_size         %d\n",
    "vtx_group_name         %d\n",
    "vtx_num                %d\n",
});

inline constexpr auto TRI_LIST_LINES = lines<ListHead>({
    "tri_list_tag          %0#10x\n",
    "tri_list_header_size  %d\n",
    "tri_list_size         %d\n",
    "tri_group_num         %d\n",
    "van_ext_blk_size      %d\n",
    "usr_ext_blk_size      %d\n",
});
inline constexpr auto TRI_GROUP_LINES = lines<TriGroupHead>({
    "tri_group_tag          %0#10x\n",
    "this_tri_group_index   %d\n",
    "tri_group_header_size  %d\n",
    "tri_group_size         %d\n",
    "tri_group_name_index   %d\n",
    "tri_anim_type          %0#10x\n",
    "tri_anim_frame_num     %d\n",
    "tri_num                %d\n",
});

/// The four words of a corner share a line.
inline constexpr auto TRI_LINES = lines<TriHead>({
    "tri_tag          %0#10x\n", "this_tri_index   %d\n",  "tri_size         %d\n",  "tri_nv_index     %d\n",
    "tri_color_index  %d\n",     "vtx_index0  %d  ",       "st_index0  %d  ",        "vtx_nv_index0  %d  ",
    "vtx_color_index0  %d\n",    "vtx_index1  %d  ",       "st_index1  %d  ",        "vtx_nv_index1  %d  ",
    "vtx_color_index1  %d\n",    "vtx_index2  %d  ",       "st_index2  %d  ",        "vtx_nv_index2  %d  ",
    "vtx_color_index2  %d\n",    "van_ext_blk_size  %d\n", "usr_ext_blk_size  %d\n",
});

inline constexpr auto COLOR_LIST_LINES = lines<TwoKindListHead>({
    "color_list_tag          %0#10x\n",
    "color_list_header_size  %d\n",
    "color_list_size         %d\n",
    "tri_color_group_num     %d\n",
    "vtx_color_group_num     %d\n",
    "van_ext_blk_size        %d\n",
    "usr_ext_blk_size        %d\n",
});
inline constexpr auto TRI_COLOR_GROUP_LINES = lines<TriColorGroupHead>({
    "tri_color_group_tag          %0#10x\n",
    "this_tri_color_group_index   %d\n",
    "tri_color_group_header_size  %d\n",
    "tri_color_group_size         %d\n",
    "tri_color_num                %d\n",
});
inline constexpr auto VTX_COLOR_GROUP_LINES = lines<VtxColorGroupHead>({
    "vtx_color_group_tag          %0#10x\n",
    "this_vtx_color_group_index   %d\n",
    "vtx_color_group_header_size  %d\n",
    "vtx_color_group_size         %d\n",
    "vtx_color_num                %d\n",
});

inline constexpr auto VECTOR_LIST_LINES = lines<TwoKindListHead>({
    "vector_list_tag          %0#10x\n",
    "vector_list_header_size  %d\n",
    "vector_list_size         %d\n",
    "tri_nv_group_num         %d\n",
    "vtx_nv_group_num         %d\n",
    "van_ext_blk_size         %d\n",
    "usr_ext_blk_size         %d\n",
});
inline constexpr auto TRI_NV_GROUP_LINES = lines<TriNvGroupHead>({
    "tri_nv_group_tag         %0#10x\n",
    "this_tri_nv_group_index  %d\n",
    "tri_nv_group_header_size %d\n",
    "tri_nv_group_size        %d\n",
    "tri_nv_num               %d\n",
});
inline constexpr auto VTX_NV_GROUP_LINES = lines<VtxNvGroupHead>({
    "vtx_nv_group_tag     %0#10x\n",
    "vtx_nv_group_index   %d\n",
    "nv_group_header_size %d\n",
    "vtx_nv_group_size    %d\n",
    "vtx_nv_num           %d\n",
});

inline constexpr auto ST_LIST_LINES = lines<ListHead>({
    "st_list_tag          %0#10x\n",
    "st_list_header_size  %d\n",
    "st_list_size         %d\n",
    "st_group_num         %d\n",
    "van_ext_blk_size     %d\n",
    "usr_ext_blk_size     %d\n",
});
inline constexpr auto ST_GROUP_LINES = lines<StGroupHead>({
    "st_group_tag         %0#10x\n",
    "this_st_group_index  %d\n",
    "st_group_header_size %d\n",
    "st_group_size        %d\n",
    "st_num               %d\n",
});

inline constexpr auto PART_LIST_LINES = lines<ListHead>({
    "part_list_tag          %0#10x\n",
    "part_list_header_size  %d\n",
    "part_list_size         %d\n",
    "part_num               %d\n",
    "van_ext_blk_size       %d\n",
    "usr_ext_blk_size       %d\n",
});
inline constexpr auto PART_LINES = lines<PartHead>({
    "part_tag          %0#10x\n",
    "this_part_index   %d\n",
    "part_size         %d\n",
    "part_name_index   %d\n",
    "mat_index         %d\n",
    "tri_group_index   %d\n",
    "part_tri_num      %d\n",
    "van_ext_blk_size  %d\n",
    "usr_ext_blk_size  %d\n",
});

/// Whole sections of a 1.0 dump.
void kvWriteKtVtxList1(Text &text, const VtxList &list);
void kvWriteKtTriList1(Text &text, const TriList &list);
void kvWriteKtColorList1(Text &text, const ColorList &list);
void kvWriteKtVectorList1(Text &text, const VectorList &list);
void kvWriteKtStList1(Text &text, const StList &list);
void kvWriteKtPartList1(Text &text, const PartList &list);

/// Whole sections of a 2.0 dump, which look the same: these lists have no decoded maker blocks.
void kvWriteKtVtxList(Text &text, const VtxList &list);
void kvWriteKtTriList(Text &text, const TriList &list);
void kvWriteKtColorList(Text &text, const ColorList &list);
void kvWriteKtVectorList(Text &text, const VectorList &list);
void kvWriteKtStList(Text &text, const StList &list);
void kvWriteKtPartList(Text &text, const PartList &list);

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
