#include "textdump/palette.h"

namespace kova {

namespace {

void writeCiImg(Text &text, const CiImg &image, Index) {
  kvWriteKtElementTop<CI_IMG_LINES>(text, image, "CiImg");
  kvWriteKtList(text, image.pixel_index_array, kvSizeofPixelIndexArray(image) * 4, "pixel_index_array");
}

void writeColorPalette(Text &text, const ColorPalette &palette, Index) {
  kvWriteKtElementTop<COLOR_PALETTE_LINES>(text, palette, "ColorPalette");
  kvWriteKtList(text, palette.color_array, palette.color_num / 2 * 4, "color_array");
}

} // namespace

void kvWriteKtCiimgList(Text &text, const CiImgList &list) {
  writeVersion2Section<CI_IMG_LIST_LINES>(text, list, "CiImgList", "ci_img_num_byte", writeCiImg);
}

void kvWriteKtColorPaletteList(Text &text, const ColorPaletteList &list) {
  writeVersion2Section<COLOR_PALETTE_LIST_LINES>(text, list, "ColorPaletteList", "color_palette_num_byte",
                                                 writeColorPalette);
}

} // namespace kova
