/// The words of materials, textures and texture images.
#pragma once

#include "format/list.h"
#include "kova/material.h"

namespace kova {

inline constexpr auto MAT_LIST_WORDS = listWords({
    "mat_list_tag          %0#10x\n",
    "mat_list_header_size  %d\n",
    "mat_list_size         %d\n",
    "mat_num               %d\n",
    "van_ext_blk_size      %d\n",
    "usr_ext_blk_size      %d\n",
});
template <>
inline constexpr auto WORDS<MatHead> = words<MatHead>({
    {"mat_tag            %0#10x\n", &MatHead::mat_tag, TAG},
    {"this_mat_index     %d\n", &MatHead::this_mat_index, OWN_INDEX},
    {"mat_size           %d\n", &MatHead::mat_size, SIZE},
    {"mat_name_index     %d\n", &MatHead::mat_name_index, link(To::name)},
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
    {"local_light_index  %d\n", &MatHead::local_light_index, link(To::light)},
    {"tex_num            %d\n", &MatHead::tex_num, COUNT},
    {"van_ext_blk_size   %d\n", &MatHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size   %d\n", &MatHead::usr_ext_blk_size, USR_SIZE},
});

inline constexpr auto TEX_LIST_WORDS = listWords({
    "tex_list_tag          %0#10x\n",
    "tex_list_header_size  %d\n",
    "tex_list_size         %d\n",
    "tex_num               %d\n",
    "van_ext_blk_size      %d\n",
    "usr_ext_blk_size      %d\n",
});
template <>
inline constexpr auto WORDS<TexHead> = words<TexHead>({
    {"tex_tag              %0#10x\n", &TexHead::tex_tag, TAG},
    {"this_tex_index       %d\n", &TexHead::this_tex_index, OWN_INDEX},
    {"tex_header_size      %d\n", &TexHead::tex_header_size, HEADER_SIZE},
    {"tex_size             %d\n", &TexHead::tex_size, SIZE},
    {"tex_name_index       %d\n", &TexHead::tex_name_index, link(To::name)},
    {"tex_type             %0#10x\n", &TexHead::tex_type},
    {"tex_wrap_s           %0#10x\n", &TexHead::tex_wrap_s},
    {"tex_wrap_t           %0#10x\n", &TexHead::tex_wrap_t},
    {"tex_anim             %0#10x\n", &TexHead::tex_anim},
    {"tex_data_area_size   %d\n", &TexHead::tex_data_area_size, DATA_SIZE},
    {"tex_anim_frame_rate  %d\n", &TexHead::tex_anim_frame_rate},
    {"van_ext_blk_size     %d\n", &TexHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size     %d\n", &TexHead::usr_ext_blk_size, USR_SIZE},
});

/// The data area of a still texture, and the leading words of that of a tile-animated one.
template <>
inline constexpr auto WORDS<TexStill> = words<TexStill>({
    {"tex_img_width    %d\n", &TexStill::tex_img_width},
    {"tex_img_height   %d\n", &TexStill::tex_img_height},
    {"tex_tile_width   %d\n", &TexStill::tex_tile_width},
    {"tex_tile_height  %d\n", &TexStill::tex_tile_height},
    {"tex_offset_x     %d\n", &TexStill::tex_offset_x},
    {"tex_offset_y     %d\n", &TexStill::tex_offset_y},
    {"tex_img_index    %d\n", &TexStill::tex_img_index, link(To::image)},
});
template <>
inline constexpr auto WORDS<TexTilesHead> = words<TexTilesHead>({
    {"tex_img_width        %d\n", &TexTilesHead::tex_img_width},
    {"tex_img_height       %d\n", &TexTilesHead::tex_img_height},
    {"tex_tile_scale_num   %d\n", &TexTilesHead::tex_tile_scale_num, COUNT},
    {"tex_tile_offset_num  %d\n", &TexTilesHead::tex_tile_offset_num, COUNT},
    {"tex_tile_img_num     %d\n", &TexTilesHead::tex_tile_img_num, COUNT},
});

inline constexpr auto TEXIMG_LIST_WORDS = listWords({
    "tex_img_list_tag          %0#10x\n",
    "tex_img_list_header_size  %d\n",
    "tex_img_list_size         %d\n",
    "tex_img_num               %d\n",
    "van_ext_blk_size          %d\n",
    "usr_ext_blk_size          %d\n",
});
template <>
inline constexpr auto WORDS<TeximgHead> = words<TeximgHead>({
    {"tex_img_tag          %0#10x\n", &TeximgHead::tex_img_tag, TAG},
    {"this_tex_img_index   %d\n", &TeximgHead::this_tex_img_index, OWN_INDEX},
    {"tex_img_header_size  %d\n", &TeximgHead::tex_img_header_size, HEADER_SIZE},
    {"tex_img_size         %d\n", &TeximgHead::tex_img_size, SIZE},
    {"van_ext_blk_size     %d\n", &TeximgHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size     %d\n", &TeximgHead::usr_ext_blk_size, USR_SIZE},
});

// The decoded maker blocks of a 2.0 file.

/// The reference prints after the keyframes.
template <>
inline constexpr auto WORDS<MatExtHead> = words<MatExtHead>({
    rgba("ambient", &MatExtHead::ambient),
    rgba("emission", &MatExtHead::emission),
    rgba("diffuse", &MatExtHead::diffuse),
    {"mat_type_for_fog         %0#10x\n", &MatExtHead::mat_type_for_fog},
    {"mat_color_type0_for_fog  %0#10x\n", &MatExtHead::mat_color_type0_for_fog},
    {"mat_color_type1_for_fog  %0#10x\n", &MatExtHead::mat_color_type1_for_fog},
    {"mat_alpha_type0_for_fog  %0#10x\n", &MatExtHead::mat_alpha_type0_for_fog},
    {"mat_alpha_type1_for_fog  %0#10x\n", &MatExtHead::mat_alpha_type1_for_fog},
    rgba("prim_for_fog", &MatExtHead::prim_for_fog),
    later(external("external local light", &MatExtHead::external_local_light)),
    {"external_tex_num             %d\n", &MatExtHead::external_tex_num, COUNT},
    {"prim_color_anim_num          %d\n", &MatExtHead::prim_color_anim_num, COUNT},
    {"prim_color_anim_num_for_fog  %d\n", &MatExtHead::prim_color_anim_num_for_fog, COUNT},
});

/// The count of external images stands in hexadecimal among the flags.
template <>
inline constexpr auto WORDS<TexExtHead> = words<TexExtHead>({
    {"tex_filter                  %0#10x\n", &TexExtHead::tex_filter},
    {"use_perspective_correction  %0#10x\n", &TexExtHead::use_perspective_correction},
    {"mipmap_level              %d\n", &TexExtHead::mipmap_level},
    {"use_color_palette           %0#10x\n", &TexExtHead::use_color_palette},
    {"external_tex_img_num        %0#10x\n", &TexExtHead::external_tex_img_num, COUNT},
});

template <>
inline constexpr auto WORDS<TeximgExtHead> = words<TeximgExtHead>({
    {"mipmap_max_level  %d\n", &TeximgExtHead::mipmap_max_level, COUNT},
});

template <>
inline constexpr auto WORDS<PrimColorAnim> = words<PrimColorAnim>({
    {"interpolation_type  %0#10x\n", &PrimColorAnim::interpolation_type},
    {"key                 %d\n", &PrimColorAnim::key, KEY},
    rgba("prim_color_anim", &PrimColorAnim::prim_color_anim),
});

// --- Content --------------------------------------------------------------------------------------------------------

template <class Io> constexpr int content(Io &io, const MatExtHead &) {
  using Ext = MatExt;
  return io.pairs(label<"external tex">, &Ext::external_tex, &Ext::external_tex_num, To::external_name) &&
         io.run(items<PrimColorAnim, "prim_color_anim", "PrimColorAnim(%d)\n">, &Ext::prim_color_anim,
                &Ext::prim_color_anim_num) &&
         io.run(items<PrimColorAnim, "prim_color_anim_for_fog", "PrimColorAnimForFog(%d)\n">,
                &Ext::prim_color_anim_for_fog, &Ext::prim_color_anim_num_for_fog);
}

template <class Io> constexpr int content(Io &io, const MatHead &) {
  return io.array(line<"tex_index[%d]   %0#10x\n">, &Mat::tex_index, &Mat::tex_num, To::tex) &&
         io.blocks(maker<MatExtHead>, &Mat::ext);
}

/// A texture with a palette has a palette for each of its tiles.
template <class Io> constexpr int content(Io &io, const TexExtHead &ext) {
  using Ext = TexExt;
  const Word tiles = ext.use_color_palette == 0 ? 0 : io.tiles();
  return io.array(line<"color_palette_index[%d]  %d\n">, &Ext::color_palette_index, tiles, To::color_palette) &&
         io.array(line<"tlut_palette_number[%d]  %d\n">, &Ext::tlut_palette_number, tiles) &&
         io.pairs(label<"external_tex_img">, &Ext::external_tex_img, &Ext::external_tex_img_num, To::external_name) &&
         io.pairs(label<"external_palette">, &Ext::external_palette, &Ext::external_tex_img_num, To::external_name);
}

template <class Io> constexpr int content(Io &, const TexStill &) { return 1; }

template <class Io> constexpr int content(Io &io, const TexTilesHead &) {
  using Tiles = TexTiles;
  constexpr auto SCALES = &Tiles::tex_tile_scale_num;
  constexpr auto OFFSETS = &Tiles::tex_tile_offset_num;
  constexpr auto IMAGES = &Tiles::tex_tile_img_num;
  return io.array(keys<"tex_tile_scale_key[%d]   %d\n">, &Tiles::tex_tile_scale_key, SCALES) &&
         io.array(line<"tex_tile_width[%d]       %d\n">, &Tiles::tex_tile_width, SCALES) &&
         io.array(line<"tex_tile_height[%d]      %d\n">, &Tiles::tex_tile_height, SCALES) &&
         io.array(keys<"tex_tile_offset_key[%d]  %d\n">, &Tiles::tex_tile_offset_key, OFFSETS) &&
         io.array(line<"tex_tile_offset_x[%d]    %d\n">, &Tiles::tex_tile_offset_x, OFFSETS) &&
         io.array(line<"tex_tile_offset_y[%d]    %d\n">, &Tiles::tex_tile_offset_y, OFFSETS) &&
         io.array(keys<"tex_tile_img_key[%d]     %d\n">, &Tiles::tex_tile_img_key, IMAGES) &&
         io.array(line<"tex_tile_img_index[%d]   %d\n">, &Tiles::tex_tile_img_index, IMAGES, To::image);
}

/// The data area has one of two forms.
template <class Io> constexpr int content(Io &io, const TexHead &tex) {
  return (tex.tex_anim == 0 ? io.inner(items<TexStill, "still">, &Tex::still)
                            : io.inner(items<TexTilesHead, "tiles">, &Tex::tiles)) &&
         io.blocks(maker<TexExtHead>, &Tex::ext);
}

template <class Io> constexpr int content(Io &io, const TeximgExtHead &) {
  return io.array(line<"mipmap img offset[%d]  %d\n">, &TeximgExt::mipmap_img_offset, &TeximgExt::mipmap_max_level);
}

/// Texels are the one thing of the format that is bytes, not words: their number may be no multiple of 4.
template <class Io> constexpr int content(Io &io, const TeximgHead &image) {
  return io.texels(&Teximg::texel, kvSizeofTeximg(image)) && io.blocks(maker<TeximgExtHead>, &Teximg::ext);
}

template <>
struct ListFormat<MatList> : CommonList<Mat, MAT_LIST_WORDS, "mat_num_byte[%d]    %d\n",
                                        items<MatHead, "element", "Mat(%d)\n", MAT_LIST_TAG + ELEMENT_KIND>> {};

template <>
struct ListFormat<TexList> : CommonList<Tex, TEX_LIST_WORDS, "tex_num_byte[%d]    %d\n",
                                        items<TexHead, "element", "Tex(%d)\n", TEX_LIST_TAG + ELEMENT_KIND>> {};

template <>
struct ListFormat<TeximgList>
    : CommonList<Teximg, TEXIMG_LIST_WORDS, "tex_img_num_byte[%d]    %d\n",
                 items<TeximgHead, "element", "TexImg(%d)\n", TEXIMG_LIST_TAG + ELEMENT_KIND>> {};

} // namespace kova
