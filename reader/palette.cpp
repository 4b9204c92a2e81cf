#include "kova/palette.h"

#include "reader/elements.h"

namespace kova {

int kvSetupCiimgList(Cursor &cursor, CiImgList &list) {
  return readList<CiImgHead>(cursor, list, CI_IMG_LIST_TAG, [](Cursor &at, CiImg &image) {
    return readHead<CiImgHead>(at, image, CI_IMG_LIST_TAG + ELEMENT_KIND) &&
           kvReadArray(at, image.pixel_index_array, kvSizeofPixelIndexArray(image)) && readExtBlk(at, image);
  });
}

int kvSetupColorPaletteList(Cursor &cursor, ColorPaletteList &list) {
  return readList<ColorPaletteHead>(cursor, list, COLOR_PALETTE_LIST_TAG, [](Cursor &at, ColorPalette &palette) {
    // Rounded down on purpose: the last colour of an odd number is left where it stands.
    return readHead<ColorPaletteHead>(at, palette, COLOR_PALETTE_LIST_TAG + ELEMENT_KIND) &&
           kvReadArray(at, palette.color_array, palette.color_num / 2) && readExtBlk(at, palette);
  });
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
