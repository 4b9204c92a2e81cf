/// The sections of the colour-index images and the colour palettes, and what the sections of all version-2 lists share.
#pragma once

#include "textdump/extension.h"
#include "textdump/lines.h"

namespace kova {

void kvWriteKtCiimgList(Text &text, const CiImgList &list);
void kvWriteKtColorPaletteList(Text &text, const ColorPaletteList &list);

/// Writes the section of a version-2 list.
/// @tparam COUNT the line of the list's count.
/// @param size_table the name of its size table.
/// @param element writes an element without its blocks; its heading prints the stored index, not the number.
template <Format COUNT, class Element>
void writeVersion2Section(Text &text, const List<Element> &list, const char *name, const char *size_table,
                          void (*element)(Text &, const Element &, Index)) {
  kvWriteKtListTop(text, list, name);
  print<COUNT>(text, list.num);
  print<"van_ext_blk_size   %d\n">(text, list.van_ext_blk_size);
  print<"usr_ext_blk_size   %d\n">(text, list.usr_ext_blk_size);
  kvWriteKtArray(text, counted(list.num, list.num_byte), size_table);
  print<"\n">(text);
  writeElements(text, list.num, list.element, element, writeExtBlk<Element>);
  writeListEnd(text, list, name);
}

// --- Line tables: the words behind an element's heading -------------------------------------------------------------

using CiImgFormat = Run<CiImgHead, &CiImgHead::ci_img_width, &CiImgHead::ci_img_pixel_depth>;
inline constexpr auto CI_IMG_LINES = lines<CiImgFormat>({
    "ci_img_width        %d\n",
    "ci_img_height       %d\n",
    "ci_img_pixel_depth  %d\n",
});

using CiImgBlkSizes = Run<CiImgHead, &CiImgHead::van_ext_blk_size, &CiImgHead::usr_ext_blk_size>;
inline constexpr auto CI_IMG_BLK_SIZE_LINES = lines<CiImgBlkSizes>({
    "van_ext_blk_size    %d\n",
    "usr_ext_blk_size    %d\n",
});

using ColorPaletteFormat = Run<ColorPaletteHead, &ColorPaletteHead::color_num, &ColorPaletteHead::color_type>;
inline constexpr auto COLOR_PALETTE_LINES = lines<ColorPaletteFormat>({
    "color_num         %d\n",
    "color_type        %0#10x\n",
});

using ColorPaletteBlkSizes =
    Run<ColorPaletteHead, &ColorPaletteHead::van_ext_blk_size, &ColorPaletteHead::usr_ext_blk_size>;
inline constexpr auto COLOR_PALETTE_BLK_SIZE_LINES = lines<ColorPaletteBlkSizes>({
    "van_ext_blk_size  %d\n",
    "usr_ext_blk_size  %d\n",
});

} // namespace kova
