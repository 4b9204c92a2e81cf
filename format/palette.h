/// The words of the colour-index images and the colour palettes.
#pragma once

#include "format/list.h"
#include "kova/palette.h"

namespace kova {

inline constexpr auto CI_IMG_LIST_WORDS = version2ListWords("ci_img_num         %d\n");
template <>
inline constexpr auto WORDS<CiImgHead> = words<CiImgHead>({
    WORDS<ElementHead>,
    {"ci_img_width        %d\n", &CiImgHead::ci_img_width},
    {"ci_img_height       %d\n", &CiImgHead::ci_img_height},
    {"ci_img_pixel_depth  %d\n", &CiImgHead::ci_img_pixel_depth},
    wordBlock("reserved", &CiImgHead::reserved),
    {"van_ext_blk_size    %d\n", &CiImgHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size    %d\n", &CiImgHead::usr_ext_blk_size, USR_SIZE},
});

inline constexpr auto COLOR_PALETTE_LIST_WORDS = version2ListWords("color_palette_num  %d\n");
template <>
inline constexpr auto WORDS<ColorPaletteHead> = words<ColorPaletteHead>({
    WORDS<ElementHead>,
    {"color_num         %d\n", &ColorPaletteHead::color_num, COUNT},
    {"color_type        %0#10x\n", &ColorPaletteHead::color_type},
    wordBlock("reserved", &ColorPaletteHead::reserved),
    {"van_ext_blk_size  %d\n", &ColorPaletteHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size  %d\n", &ColorPaletteHead::usr_ext_blk_size, USR_SIZE},
});

// --- Content --------------------------------------------------------------------------------------------------------

template <class Io> constexpr int content(Io &io, const CiImgHead &image) {
  return io.array(line<"pixel_index_array">, &CiImg::pixel_index_array, kvSizeofPixelIndexArray(image)) && io.blocks();
}

/// Two colours to a word.
template <class Io> constexpr int content(Io &io, const ColorPaletteHead &) {
  return io.array(line<"color_array">, &ColorPalette::color_array, Half{&ColorPaletteHead::color_num}) && io.blocks();
}

template <>
struct ListFormat<CiImgList> : CommonList<CiImg, CI_IMG_LIST_WORDS, "ci_img_num_byte[%d]  %d\n",
                                          items<CiImgHead, "element", "CiImg(%d)\n", CI_IMG_LIST_TAG + ELEMENT_KIND>> {
};

template <>
struct ListFormat<ColorPaletteList>
    : CommonList<ColorPalette, COLOR_PALETTE_LIST_WORDS, "color_palette_num_byte[%d]  %d\n",
                 items<ColorPaletteHead, "element", "ColorPalette(%d)\n", COLOR_PALETTE_LIST_TAG + ELEMENT_KIND>> {};

} // namespace kova
