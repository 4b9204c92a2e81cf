#include "writer/elements.h"
#include "writer/lists.h"

namespace kova {

void writeCiImgList(Output &out, const CiImgList &list) {
  putList(out, list, [](Output &to, const CiImg &image) {
    putFixed<CiImgHead>(to, image);
    putRun(to, image.pixel_index_array, kvSizeofPixelIndexArray(image));
    putExtBlk(to, image);
  });
}

void writeColorPaletteList(Output &out, const ColorPaletteList &list) {
  putList(out, list, [](Output &to, const ColorPalette &palette) {
    putFixed<ColorPaletteHead>(to, palette);
    putRun(to, palette.color_array, palette.color_num / 2); // as it is read: without the last one of an odd number
    putExtBlk(to, palette);
  });
}

} // namespace kova
