#include "kova/palette.h"

#include "format/palette.h"
#include "reader/elements.h"

namespace kova {

int kvSetupCiimgList(Cursor &cursor, CiImgList &list) { return readList(cursor, list, CI_IMG_LIST_TAG); }
int kvSetupColorPaletteList(Cursor &cursor, ColorPaletteList &list) {
  return readList(cursor, list, COLOR_PALETTE_LIST_TAG);
}

int kvSetCiimg0(CiImgList &list) {
  list.num = 0;
  return 1;
}

int kvSetColorPalette0(ColorPaletteList &list) {
  list.num = 0;
  return 1;
}

Word kvSizeofPixelIndexArray(const CiImgHead &image) {
  return (image.ci_img_width * image.ci_img_height * image.ci_img_pixel_depth + 31) / 32;
}

} // namespace kova
