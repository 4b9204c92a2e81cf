#include "format/palette.h"
#include "textdump/lines.h"

namespace kova {

namespace {

void writeCiImg(Text &text, const CiImg &image, Index) {
  kvWriteKtElementTop<LINES<CiImgHead>>(text, image, "CiImg");
  kvWriteKtList(text, image.pixel_index_array, kvSizeofPixelIndexArray(image) * 4, "pixel_index_array");
}

void writeColorPalette(Text &text, const ColorPalette &palette, Index) {
  kvWriteKtElementTop<LINES<ColorPaletteHead>>(text, palette, "ColorPalette");
  kvWriteKtList(text, palette.color_array, palette.color_num / 2 * 4, "color_array");
}

} // namespace

void kvWriteKtCiimgList(Text &text, const CiImgList &list) {
  writeVersion2Section<LINES_OF<CI_IMG_LIST_WORDS>>(text, list, "CiImgList", "ci_img_num_byte", writeCiImg);
}

void kvWriteKtColorPaletteList(Text &text, const ColorPaletteList &list) {
  writeVersion2Section<LINES_OF<COLOR_PALETTE_LIST_WORDS>>(text, list, "ColorPaletteList", "color_palette_num_byte",
                                                           writeColorPalette);
}

} // namespace kova
