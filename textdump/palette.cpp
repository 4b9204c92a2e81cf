#include "format/palette.h"
#include "textdump/content.h"

namespace kova {

namespace {

void writeCiImg(Text &text, const CiImg &image, Index) {
  kvWriteKtElementTop<LINES<CiImgHead>>(text, image, "CiImg");
  printContent<CiImgHead>(text, image);
}

void writeColorPalette(Text &text, const ColorPalette &palette, Index) {
  kvWriteKtElementTop<LINES<ColorPaletteHead>>(text, palette, "ColorPalette");
  printContent<ColorPaletteHead>(text, palette);
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
