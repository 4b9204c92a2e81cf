/// The line tables and the writers of materials, textures and texture images.
#pragma once

#include "textdump/lines.h"

namespace kova {

// --- Line tables ----------------------------------------------------------------------------------------------------

inline constexpr auto MAT_LIST_LINES = lines<ListHead>({
    {"mat_list_tag          %0#10x\n", &ListHead::list_tag},
    {"mat_list_header_size  %d\n", &ListHead::list_header_size},
    {"mat_list_size         %d\n", &ListHead::list_size},
    {"mat_num               %d\n", &ListHead::num},
    {"van_ext_blk_size      %d\n", &ListHead::van_ext_blk_size},
    {"usr_ext_blk_size      %d\n", &ListHead::usr_ext_blk_size},
});
inline constexpr auto MAT_LINES = lines<MatHead>({
    {"mat_tag            %0#10x\n", &MatHead::mat_tag},
    {"this_mat_index     %d\n", &MatHead::this_mat_index},
    {"mat_size           %d\n", &MatHead::mat_size},
    {"mat_name_index     %d\n", &MatHead::mat_name_index},
    {"mat_type           %0#10x\n", &MatHead::mat_type},
    {"mat_shade_type     %0#10x\n", &MatHead::mat_shade_type},
    {"mat_color_type0    %0#10x\n", &MatHead::mat_color_type0},
    {"mat_color_type1    %0#10x\n", &MatHead::mat_color_type1},
    {"mat_alpha_type0    %0#10x\n", &MatHead::mat_alpha_type0},
    {"mat_alpha_type1    %0#10x\n", &MatHead::mat_alpha_type1},
    {"prim_red           %#g\n", &MatHead::prim_red},
    {"prim_green         %#g\n", &MatHead::prim_green},
    {"prim_blue          %#g\n", &MatHead::prim_blue},
    {"prim_alpha         %#g\n", &MatHead::prim_alpha},
    {"usr_flag0          %0#10x\n", &MatHead::usr_flag0},
    {"usr_flag1          %0#10x\n", &MatHead::usr_flag1},
    {"usr_flag2          %0#10x\n", &MatHead::usr_flag2},
    {"usr_flag3          %0#10x\n", &MatHead::usr_flag3},
    {"usr_flag4          %0#10x\n", &MatHead::usr_flag4},
    {"usr_flag5          %0#10x\n", &MatHead::usr_flag5},
    {"usr_flag6          %0#10x\n", &MatHead::usr_flag6},
    {"usr_flag7          %0#10x\n", &MatHead::usr_flag7},
    {"local_light_index  %d\n", &MatHead::local_light_index},
    {"tex_num            %d\n", &MatHead::tex_num},
    {"van_ext_blk_size   %d\n", &MatHead::van_ext_blk_size},
    {"usr_ext_blk_size   %d\n", &MatHead::usr_ext_blk_size},
});

inline constexpr auto TEX_LIST_LINES = lines<ListHead>({
    {"tex_list_tag          %0#10x\n", &ListHead::list_tag},
    {"tex_list_header_size  %d\n", &ListHead::list_header_size},
    {"tex_list_size         %d\n", &ListHead::list_size},
    {"tex_num               %d\n", &ListHead::num},
    {"van_ext_blk_size      %d\n", &ListHead::van_ext_blk_size},
    {"usr_ext_blk_size      %d\n", &ListHead::usr_ext_blk_size},
});
inline constexpr auto TEX_LINES = lines<TexHead>({
    {"tex_tag              %0#10x\n", &TexHead::tex_tag},
    {"this_tex_index       %d\n", &TexHead::this_tex_index},
    {"tex_header_size      %d\n", &TexHead::tex_header_size},
    {"tex_size             %d\n", &TexHead::tex_size},
    {"tex_name_index       %d\n", &TexHead::tex_name_index},
    {"tex_type             %0#10x\n", &TexHead::tex_type},
    {"tex_wrap_s           %0#10x\n", &TexHead::tex_wrap_s},
    {"tex_wrap_t           %0#10x\n", &TexHead::tex_wrap_t},
    {"tex_anim             %0#10x\n", &TexHead::tex_anim},
    {"tex_data_area_size   %d\n", &TexHead::tex_data_area_size},
    {"tex_anim_frame_rate  %d\n", &TexHead::tex_anim_frame_rate},
    {"van_ext_blk_size     %d\n", &TexHead::van_ext_blk_size},
    {"usr_ext_blk_size     %d\n", &TexHead::usr_ext_blk_size},
});

/// The data area of a still texture, and the leading words of that of a tile-animated one.
inline constexpr auto TEX_STILL_LINES = lines<TexStill>({
    {"tex_img_width    %d\n", &TexStill::tex_img_width},
    {"tex_img_height   %d\n", &TexStill::tex_img_height},
    {"tex_tile_width   %d\n", &TexStill::tex_tile_width},
    {"tex_tile_height  %d\n", &TexStill::tex_tile_height},
    {"tex_offset_x     %d\n", &TexStill::tex_offset_x},
    {"tex_offset_y     %d\n", &TexStill::tex_offset_y},
    {"tex_img_index    %d\n", &TexStill::tex_img_index},
});
inline constexpr auto TEX_TILES_LINES = lines<TexTilesHead>({
    {"tex_img_width        %d\n", &TexTilesHead::tex_img_width},
    {"tex_img_height       %d\n", &TexTilesHead::tex_img_height},
    {"tex_tile_scale_num   %d\n", &TexTilesHead::tex_tile_scale_num},
    {"tex_tile_offset_num  %d\n", &TexTilesHead::tex_tile_offset_num},
    {"tex_tile_img_num     %d\n", &TexTilesHead::tex_tile_img_num},
});

inline constexpr auto TEXIMG_LIST_LINES = lines<ListHead>({
    {"tex_img_list_tag          %0#10x\n", &ListHead::list_tag},
    {"tex_img_list_header_size  %d\n", &ListHead::list_header_size},
    {"tex_img_list_size         %d\n", &ListHead::list_size},
    {"tex_img_num               %d\n", &ListHead::num},
    {"van_ext_blk_size          %d\n", &ListHead::van_ext_blk_size},
    {"usr_ext_blk_size          %d\n", &ListHead::usr_ext_blk_size},
});
inline constexpr auto TEXIMG_LINES = lines<TeximgHead>({
    {"tex_img_tag          %0#10x\n", &TeximgHead::tex_img_tag},
    {"this_tex_img_index   %d\n", &TeximgHead::this_tex_img_index},
    {"tex_img_header_size  %d\n", &TeximgHead::tex_img_header_size},
    {"tex_img_size         %d\n", &TeximgHead::tex_img_size},
    {"van_ext_blk_size     %d\n", &TeximgHead::van_ext_blk_size},
    {"usr_ext_blk_size     %d\n", &TeximgHead::usr_ext_blk_size},
});

// The decoded maker blocks of a 2.0 file.

/// The reference prints after the keyframes.
inline constexpr auto MAT_EXT_LINES = lines<MatExtHead>({
    rgbaLine("ambient", &MatExtHead::ambient),
    rgbaLine("emission", &MatExtHead::emission),
    rgbaLine("diffuse", &MatExtHead::diffuse),
    {"mat_type_for_fog         %0#10x\n", &MatExtHead::mat_type_for_fog},
    {"mat_color_type0_for_fog  %0#10x\n", &MatExtHead::mat_color_type0_for_fog},
    {"mat_color_type1_for_fog  %0#10x\n", &MatExtHead::mat_color_type1_for_fog},
    {"mat_alpha_type0_for_fog  %0#10x\n", &MatExtHead::mat_alpha_type0_for_fog},
    {"mat_alpha_type1_for_fog  %0#10x\n", &MatExtHead::mat_alpha_type1_for_fog},
    rgbaLine("prim_for_fog", &MatExtHead::prim_for_fog),
    later(externalLines("external local light", &MatExtHead::external_local_light)),
    {"external_tex_num             %d\n", &MatExtHead::external_tex_num},
    {"prim_color_anim_num          %d\n", &MatExtHead::prim_color_anim_num},
    {"prim_color_anim_num_for_fog  %d\n", &MatExtHead::prim_color_anim_num_for_fog},
});

/// The count of external images stands in hexadecimal among the flags.
inline constexpr auto TEX_EXT_LINES = lines<TexExtHead>({
    {"tex_filter                  %0#10x\n", &TexExtHead::tex_filter},
    {"use_perspective_correction  %0#10x\n", &TexExtHead::use_perspective_correction},
    {"mipmap_level              %d\n", &TexExtHead::mipmap_level},
    {"use_color_palette           %0#10x\n", &TexExtHead::use_color_palette},
    {"external_tex_img_num        %0#10x\n", &TexExtHead::external_tex_img_num},
});

inline constexpr auto TEXIMG_EXT_LINES = lines<TeximgExtHead>({
    {"mipmap_max_level  %d\n", &TeximgExtHead::mipmap_max_level},
});

// --- Writers --------------------------------------------------------------------------------------------------------

/// Opener, header lines and size table.
void kvWriteKtMatListFix1(Text &text, const MatList &list);
void kvWriteKtTexListFix1(Text &text, const TexList &list);
void kvWriteKtTeximgListFix1(Text &text, const TeximgList &list);

/// Heading, fields and arrays of one element, without its blocks. The last row of texels has no line end.
void kvWriteKtMatFix1(Text &text, const Mat &mat, Index number);
void kvWriteKtTexFix1(Text &text, const Tex &tex, Index number);
void kvWriteKtTeximgFix1(Text &text, const Teximg &image, Index number);

} // namespace kova
