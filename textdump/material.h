/// The dump sections of materials, textures and texture images.
#pragma once

#include "kova/material.h"
#include "textdump/text.h"

namespace kova {

// One line to a word.

inline constexpr auto MAT_LIST_LINES = lines<ListHead>({
    "mat_list_tag          %0#10x\n",
    "mat_list_header_size  %d\n",
    "mat_list_size         %d\n",
    "mat_num               %d\n",
    "van_ext_blk_size      %d\n",
    "usr_ext_blk_size      %d\n",
});
inline constexpr auto MAT_LINES = lines<MatHead>({
    "mat_tag            %0#10x\n", "this_mat_index     %d\n",     "mat_size           %d\n",
    "mat_name_index     %d\n",     "mat_type           %0#10x\n", "mat_shade_type     %0#10x\n",
    "mat_color_type0    %0#10x\n", "mat_color_type1    %0#10x\n", "mat_alpha_type0    %0#10x\n",
    "mat_alpha_type1    %0#10x\n", "prim_red           %#g\n",    "prim_green         %#g\n",
    "prim_blue          %#g\n",    "prim_alpha         %#g\n",    "usr_flag0          %0#10x\n",
    "usr_flag1          %0#10x\n", "usr_flag2          %0#10x\n", "usr_flag3          %0#10x\n",
    "usr_flag4          %0#10x\n", "usr_flag5          %0#10x\n", "usr_flag6          %0#10x\n",
    "usr_flag7          %0#10x\n", "local_light_index  %d\n",     "tex_num            %d\n",
    "van_ext_blk_size   %d\n",     "usr_ext_blk_size   %d\n",
});

inline constexpr auto TEX_LIST_LINES = lines<ListHead>({
    "tex_list_tag          %0#10x\n",
    "tex_list_header_size  %d\n",
    "tex_list_size         %d\n",
    "tex_num               %d\n",
    "van_ext_blk_size      %d\n",
    "usr_ext_blk_size      %d\n",
});
inline constexpr auto TEX_LINES = lines<TexHead>({
    "tex_tag              %0#10x\n",
    "this_tex_index       %d\n",
    "tex_header_size      %d\n",
    "tex_size             %d\n",
    "tex_name_index       %d\n",
    "tex_type             %0#10x\n",
    "tex_wrap_s           %0#10x\n",
    "tex_wrap_t           %0#10x\n",
    "tex_anim             %0#10x\n",
    "tex_data_area_size   %d\n",
    "tex_anim_frame_rate  %d\n",
    "van_ext_blk_size     %d\n",
    "usr_ext_blk_size     %d\n",
});

/// The data area of a still texture, and the leading words of that of a tile-animated one.
inline constexpr auto TEX_STILL_LINES = lines<TexStill>({
    "tex_img_width    %d\n",
    "tex_img_height   %d\n",
    "tex_tile_width   %d\n",
    "tex_tile_height  %d\n",
    "tex_offset_x     %d\n",
    "tex_offset_y     %d\n",
    "tex_img_index    %d\n",
});
inline constexpr auto TEX_TILES_LINES = lines<TexTilesHead>({
    "tex_img_width        %d\n",
    "tex_img_height       %d\n",
    "tex_tile_scale_num   %d\n",
    "tex_tile_offset_num  %d\n",
    "tex_tile_img_num     %d\n",
});

inline constexpr auto TEXIMG_LIST_LINES = lines<ListHead>({
    "tex_img_list_tag          %0#10x\n",
    "tex_img_list_header_size  %d\n",
    "tex_img_list_size         %d\n",
    "tex_img_num               %d\n",
    "van_ext_blk_size          %d\n",
    "usr_ext_blk_size          %d\n",
});
inline constexpr auto TEXIMG_LINES = lines<TeximgHead>({
    "tex_img_tag          %0#10x\n",
    "this_tex_img_index   %d\n",
    "tex_img_header_size  %d\n",
    "tex_img_size         %d\n",
    "van_ext_blk_size     %d\n",
    "usr_ext_blk_size     %d\n",
});

/// Whole sections of a 1.0 dump.
void kvWriteKtMatList1(Text &text, const MatList &list);
void kvWriteKtTexList1(Text &text, const TexList &list);
void kvWriteKtTeximgList1(Text &text, const TeximgList &list);

/// Whole sections of a 2.0 dump.
void kvWriteKtMatList(Text &text, const MatList &list);
void kvWriteKtTexList(Text &text, const TexList &list);
void kvWriteKtTeximgList(Text &text, const TeximgList &list);

/// Opener, header lines and size table.
void kvWriteKtMatListFix1(Text &text, const MatList &list);
void kvWriteKtTexListFix1(Text &text, const TexList &list);
void kvWriteKtTeximgListFix1(Text &text, const TeximgList &list);

/// Heading, fields and arrays of one element, without its blocks. The last row of texels has no line end.
void kvWriteKtMatFix1(Text &text, const Mat &mat, Index number);
void kvWriteKtTexFix1(Text &text, const Tex &tex, Index number);
void kvWriteKtTeximgFix1(Text &text, const Teximg &image, Index number);

} // namespace kova
