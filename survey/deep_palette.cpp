#include "survey/deep_check.h"

namespace kova::survey::deep {

void checkPaletteLists(Check &check, const Kis &kis) {
  checkList(check, "CiImgList", kis.ci_img.element);
  checkList(check, "ColorPaletteList", kis.color_palette.element);
}

} // namespace kova::survey::deep
