/// The line tables of the colour-index images and the colour palettes.
#pragma once

#include "textdump/lines.h"

namespace kova {

// --- Line tables ----------------------------------------------------------------------------------------------------

inline constexpr auto CI_IMG_LIST_LINES = version2ListLines("ci_img_num         %d\n");
inline constexpr auto CI_IMG_LINES = lines<CiImgHead>({
    ELEMENT_TOP_LINES,
    {"ci_img_width        %d\n", &CiImgHead::ci_img_width},
    {"ci_img_height       %d\n", &CiImgHead::ci_img_height},
    {"ci_img_pixel_depth  %d\n", &CiImgHead::ci_img_pixel_depth},
    wordBlock("reserved", &CiImgHead::reserved),
    {"van_ext_blk_size    %d\n", &CiImgHead::van_ext_blk_size},
    {"usr_ext_blk_size    %d\n", &CiImgHead::usr_ext_blk_size},
});

inline constexpr auto COLOR_PALETTE_LIST_LINES = version2ListLines("color_palette_num  %d\n");
inline constexpr auto COLOR_PALETTE_LINES = lines<ColorPaletteHead>({
    ELEMENT_TOP_LINES,
    {"color_num         %d\n", &ColorPaletteHead::color_num},
    {"color_type        %0#10x\n", &ColorPaletteHead::color_type},
    wordBlock("reserved", &ColorPaletteHead::reserved),
    {"van_ext_blk_size  %d\n", &ColorPaletteHead::van_ext_blk_size},
    {"usr_ext_blk_size  %d\n", &ColorPaletteHead::usr_ext_blk_size},
});

} // namespace kova
