#include "kova/palette.h"

#include "checker/steps.h"

namespace kova {

namespace {

/// An image or a palette: a head and an array of words. Both of its size messages have the same label.
template <class Head, class Element> int checkWordArray(const char *name, const Listed<Element> &listed, Word words) {
  const Head &head = listed.element;
  int ok = checkIndexSize(name, listed);
  ok *= checkWordArraySum(listed.place, {name, listed.number, " size"}, head.size, fixedBytes<Head>, words,
                          head.van_ext_blk_size, head.usr_ext_blk_size);
  return ok;
}

} // namespace

int checkCiimgList(const Kis &kis) {
  return checkList(kis, listRow("CiImgList"), kis.ci_img, [](const Listed<CiImg> &image) {
    return checkWordArray<CiImgHead>("Ciimg", image, kvSizeofPixelIndexArray(image.element));
  });
}

int checkColorPaletteList(const Kis &kis) {
  return checkList(kis, listRow("ColorPaletteList"), kis.color_palette, [](const Listed<ColorPalette> &palette) {
    const Word words = palette.element.color_num / 2; // two colours to a word
    return checkWordArray<ColorPaletteHead>("ColorPalette", palette, words);
  });
}

} // namespace kova
