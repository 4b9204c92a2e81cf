#include "kova/material.h"

#include "checker/steps.h"

namespace kova {

namespace {

/// The least that a texture's maker block has to hold. It counts one of the two references of an external image, on
/// purpose: the check is a lower bound, more lenient than `kvSizeofTexExt`.
Word texBlockBytes(const Tex &tex) {
  return fixedBytes<TexExtHead> + fixedBytes<External> * blockHead<TexExtHead>(tex).external_tex_img_num +
         2 * fixedBytes<Index> * kvCiTileNum(tex);
}

} // namespace

// --- Lists ----------------------------------------------------------------------------------------------------------

int checkMatList(const Kis &kis) {
  return checkList<Mat>(kis, listRow("MatList"), kis.mat,
                        {.name = "Mat",
                         .index = &Mat::this_mat_index,
                         .size = &Mat::mat_size,
                         .fixed_bytes = fixedBytes<MatHead>,
                         .item_bytes = fixedBytes<Word>,
                         .item_num = &Mat::tex_num});
}

int checkTexList(const Kis &kis) {
  return checkList<Tex>(kis, listRow("TexList"), kis.tex,
                        {.name = "Tex", .index = &Tex::this_tex_index, .size = &Tex::tex_size});
}

/// An image's size is compared with nothing, and the label has no number.
int checkTeximgList(const Kis &kis) {
  return checkList(kis, listRow("TeximgList"), kis.teximg, [](const Listed<Teximg> &image) {
    return checkIndex<Teximg>("Teximg", image, &Teximg::this_tex_img_index);
  });
}

// --- Maker blocks ---------------------------------------------------------------------------------------------------

int checkMatExt(const MatList &list) {
  return checkBlocks<Mat>(list,
                          {.list = "MatList",
                           .heading = "MatNode Vantor Extension Block",
                           .name = "Mat",
                           .fixed_bytes = fixedBytes<MatExtHead>,
                           .counted_bytes = [](const Mat &mat) { return kvSizeofMatExt(blockHead<MatExtHead>(mat)); }});
}

int checkTexExt(const TexList &list) {
  return checkBlocks<Tex>(list, {.list = "TexList",
                                 .heading = "TexNode Vantor Extension Block",
                                 .name = "Tex",
                                 .fixed_bytes = fixedBytes<TexExtHead>,
                                 .counted_bytes = texBlockBytes});
}

int checkTeximgExt(const TeximgList &list) {
  return checkBlocks<Teximg>(
      list, {.list = "TeximgList",
             .heading = "TeximgNode Vantor Extension Block",
             .name = "Teximg",
             .fixed_bytes = fixedBytes<TeximgExtHead>,
             .counted_bytes = [](const Teximg &image) { return kvSizeofTeximgExt(blockHead<TeximgExtHead>(image)); }});
}

} // namespace kova
