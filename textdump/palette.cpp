#include "textdump/palette.h"

namespace kova {

namespace {

void writeCiImg(Text &text, const CiImg &image, Index) {
  kvWriteKtElementTop(text, image, "CiImg");
  putRecord<CI_IMG_LINES, CiImgFormat>(text, image);
  kvWriteKtList(text, image.reserved, sizeof image.reserved, "reserved");
  putRecord<CI_IMG_BLK_SIZE_LINES, CiImgBlkSizes>(text, image);
  kvWriteKtList(text, image.pixel_index_array, kvSizeofPixelIndexArray(image) * 4, "pixel_index_array");
}

void writeColorPalette(Text &text, const ColorPalette &palette, Index) {
  kvWriteKtElementTop(text, palette, "ColorPalette");
  putRecord<COLOR_PALETTE_LINES, ColorPaletteFormat>(text, palette);
  kvWriteKtList(text, palette.reserved, sizeof palette.reserved, "reserved");
  putRecord<COLOR_PALETTE_BLK_SIZE_LINES, ColorPaletteBlkSizes>(text, palette);
  kvWriteKtList(text, palette.color_array, palette.color_num / 2 * 4, "color_array");
}

} // namespace

void kvWriteKtCiimgList(Text &text, const CiImgList &list) {
  writeVersion2Section<"ci_img_num         %d\n">(text, list, "CiImgList", "ci_img_num_byte", writeCiImg);
}

void kvWriteKtColorPaletteList(Text &text, const ColorPaletteList &list) {
  writeVersion2Section<"color_palette_num  %d\n">(text, list, "ColorPaletteList", "color_palette_num_byte",
                                                  writeColorPalette);
}

} // namespace kova
