#include "textdump/material.h"

#include "textdump/content.h"

namespace kova {

namespace {

constexpr Section<Mat> MAT_SECTION = {"MatList", writeElement<MatList>};
constexpr Section<Tex> TEX_SECTION = {"TexList", kvWriteKtTexFix1};
/// The section's name has a capital that the list's name has not.
constexpr Section<Teximg> TEXIMG_SECTION = {"TexImgList", kvWriteKtTeximgFix1};

} // namespace

// --- MatList ---------------------------------------------------------------------------------------------------------

namespace {

void writeMatExt(Text &text, const Mat &mat) {
  if (!mat.ext)
    return writeExtBlkAfter(text, mat, 0);
  printMaker<MatExtHead>(text, *mat.ext, mat);
  writeExtBlkAfter(text, mat, kvSizeofMatExt(*mat.ext));
}

} // namespace

void kvWriteKtMatList1(Text &text, const MatList &list) { writeSection(text, MAT_SECTION, list); }
void kvWriteKtMatList(Text &text, const MatList &list) { writeSection(text, MAT_SECTION, list, writeMatExt); }

// --- TexList ---------------------------------------------------------------------------------------------------------

namespace {

void writeTiles(Text &text, const TexTiles &tiles) {
  putRecord<LINES<TexTilesHead>>(text, tiles);
  printContent<TexTilesHead>(text, tiles);
  print<"\n">(text); // an empty line that a still texture has not
}

void writeTexExt(Text &text, const Tex &tex) {
  if (!tex.ext)
    return writeExtBlkAfter(text, tex, 0);
  printMaker<TexExtHead>(text, *tex.ext, tex);
  writeExtBlkAfter(text, tex, kvSizeofTexExt(*tex.ext, kvCiTileNum(tex)));
}

} // namespace

void kvWriteKtTexFix1(Text &text, const Tex &tex, Index number) {
  writeElement<TexList>(text, tex, number);
  if (tex.tex_anim == 0)
    putRecord<LINES<TexStill>>(text, tex.still);
  else
    writeTiles(text, tex.tiles);
}

void kvWriteKtTexList1(Text &text, const TexList &list) { writeSection(text, TEX_SECTION, list); }
void kvWriteKtTexList(Text &text, const TexList &list) { writeSection(text, TEX_SECTION, list, writeTexExt); }

// --- TeximgList: each row of texels begins with a line end, so what ends the image ends the last row -----------------

namespace {

void writeTexels(Text &text, std::span<const unsigned char> texels) {
  print<"TexImgData">(text);
  eachRow<TEXELS_TO_A_ROW>(texels.subspan(printTexels(text, texels)), [&text](auto row) {
    print<"\n">(text);
    printRow<"%0#4x ">(text, row);
  });
}

void writeTeximgEnd1(Text &text, const Teximg &image) {
  print<"\n">(text);
  writeExtBlk(text, image);
}

void writeTeximgEnd2(Text &text, const Teximg &image) {
  print<"\n">(text);
  if (!image.ext)
    return writeExtBlkAfter(text, image, 0);
  printMaker<TeximgExtHead>(text, *image.ext, image);
  writeExtBlkAfter(text, image, kvSizeofTeximgExt(*image.ext));
}

} // namespace

void kvWriteKtTeximgFix1(Text &text, const Teximg &image, Index number) {
  writeElement<TeximgList>(text, image, number);
  writeTexels(text, counted(kvSizeofTeximg(image), image.texel));
}

void kvWriteKtTeximgList1(Text &text, const TeximgList &list) {
  writeSection(text, TEXIMG_SECTION, list, writeTeximgEnd1);
}
void kvWriteKtTeximgList(Text &text, const TeximgList &list) {
  writeSection(text, TEXIMG_SECTION, list, writeTeximgEnd2);
}

} // namespace kova
