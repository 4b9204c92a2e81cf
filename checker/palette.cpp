#include "kova/palette.h"

#include "checker/steps.h"

namespace kova {

namespace {

/// An image or a palette: a head and an array of words. Both of its size messages have the same label.
template <class Head> int checkWordArray(const char *name, Word number, Word table_size, const Head &head, Word words) {
  int ok = checkIndexSize(name, number, table_size, head);
  ok *= check_whole_structured_size(elementLabel(name, number, " size").text, head.size, fixedBytes<Head>, {}, words,
                                    head.van_ext_blk_size, head.usr_ext_blk_size);
  return ok;
}

} // namespace

int checkCiimgList(const Kis &kis) {
  return checkList(kis, listRow("CiImgList"), kis.ci_img, [](Word number, Word table_size, const CiImgHead &image) {
    return checkWordArray("Ciimg", number, table_size, image, kvSizeofPixelIndexArray(image));
  });
}

int checkColorPaletteList(const Kis &kis) {
  return checkList(kis, listRow("ColorPaletteList"), kis.color_palette,
                   [](Word number, Word table_size, const ColorPaletteHead &palette) {
                     const Word words = palette.color_num / 2; // two colours to a word
                     return checkWordArray("ColorPalette", number, table_size, palette, words);
                   });
}

} // namespace kova
