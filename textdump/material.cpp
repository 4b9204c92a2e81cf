#include "textdump/material.h"

namespace kova {

namespace {

constexpr Section<Mat> MAT_SECTION = {"MatList", kvWriteKtMatListFix1, kvWriteKtMatFix1};
constexpr Section<Tex> TEX_SECTION = {"TexList", kvWriteKtTexListFix1, kvWriteKtTexFix1};
/// The section's name has a capital that the list's name has not.
constexpr Section<Teximg> TEXIMG_SECTION = {"TexImgList", kvWriteKtTeximgListFix1, kvWriteKtTeximgFix1};

} // namespace

// --- MatList ---------------------------------------------------------------------------------------------------------

void kvWriteKtMatListFix1(Text &text, const MatList &list) {
  writeListHead<LINES_OF<MAT_LIST_WORDS>, "mat_num_byte[%d]    %d\n">(text, list, MAT_SECTION.name);
}

void kvWriteKtMatFix1(Text &text, const Mat &mat, Index number) {
  print<"Mat(%d)\n">(text, number);
  putRecord<LINES<MatHead>>(text, mat);
  printEach<"tex_index[%d]   %0#10x\n">(text, counted(mat.tex_num, mat.tex_index));
}

namespace {

void writeMatExt(Text &text, const Mat &mat) {
  if (!mat.ext)
    return writeExtBlkAfter(text, mat, 0);
  const MatExt &ext = *mat.ext;
  putRecord<LINES<MatExtHead>>(text, ext);
  kvWriteKtPrimColorAnim(text, counted(ext.prim_color_anim_num, ext.prim_color_anim), "");
  kvWriteKtPrimColorAnim(text, counted(ext.prim_color_anim_num_for_fog, ext.prim_color_anim_for_fog), "ForFog");
  putLater<LINES<MatExtHead>>(text, ext);
  kvWriteKtExternal(text, counted(ext.external_tex_num, ext.external_tex), "external tex");
  writeExtBlkAfter(text, mat, kvSizeofMatExt(ext));
}

} // namespace

void kvWriteKtMatList1(Text &text, const MatList &list) { writeSection(text, MAT_SECTION, list); }
void kvWriteKtMatList(Text &text, const MatList &list) { writeSection(text, MAT_SECTION, list, writeMatExt); }

// --- TexList ---------------------------------------------------------------------------------------------------------

namespace {

void writeTiles(Text &text, const TexTiles &tiles) {
  putRecord<LINES<TexTilesHead>>(text, tiles);
  printEach<"tex_tile_scale_key[%d]   %d\n">(text, counted(tiles.tex_tile_scale_num, tiles.tex_tile_scale_key));
  printEach<"tex_tile_width[%d]       %d\n">(text, counted(tiles.tex_tile_scale_num, tiles.tex_tile_width));
  printEach<"tex_tile_height[%d]      %d\n">(text, counted(tiles.tex_tile_scale_num, tiles.tex_tile_height));
  printEach<"tex_tile_offset_key[%d]  %d\n">(text, counted(tiles.tex_tile_offset_num, tiles.tex_tile_offset_key));
  printEach<"tex_tile_offset_x[%d]    %d\n">(text, counted(tiles.tex_tile_offset_num, tiles.tex_tile_offset_x));
  printEach<"tex_tile_offset_y[%d]    %d\n">(text, counted(tiles.tex_tile_offset_num, tiles.tex_tile_offset_y));
  printEach<"tex_tile_img_key[%d]     %d\n">(text, counted(tiles.tex_tile_img_num, tiles.tex_tile_img_key));
  printEach<"tex_tile_img_index[%d]   %d\n">(text, counted(tiles.tex_tile_img_num, tiles.tex_tile_img_index));
  print<"\n">(text); // an empty line that a still texture has not
}

void writeTexExt(Text &text, const Tex &tex) {
  if (!tex.ext)
    return writeExtBlkAfter(text, tex, 0);
  const TexExt &ext = *tex.ext;
  putRecord<LINES<TexExtHead>>(text, ext);
  const Word tile_num = kvCiTileNum(tex);
  kvWriteKtArray(text, counted(tile_num, ext.color_palette_index), "color_palette_index");
  kvWriteKtArray(text, counted(tile_num, ext.tlut_palette_number), "tlut_palette_number");
  kvWriteKtExternal(text, counted(ext.external_tex_img_num, ext.external_tex_img), "external_tex_img");
  kvWriteKtExternal(text, counted(ext.external_tex_img_num, ext.external_palette), "external_palette");
  writeExtBlkAfter(text, tex, kvSizeofTexExt(ext, tile_num));
}

} // namespace

void kvWriteKtTexListFix1(Text &text, const TexList &list) {
  writeListHead<LINES_OF<TEX_LIST_WORDS>, "tex_num_byte[%d]    %d\n">(text, list, TEX_SECTION.name);
}

void kvWriteKtTexFix1(Text &text, const Tex &tex, Index number) {
  print<"Tex(%d)\n">(text, number);
  putRecord<LINES<TexHead>>(text, tex);
  if (tex.tex_anim == 0)
    putRecord<LINES<TexStill>>(text, tex.still);
  else
    writeTiles(text, tex.tiles);
}

void kvWriteKtTexList1(Text &text, const TexList &list) { writeSection(text, TEX_SECTION, list); }
void kvWriteKtTexList(Text &text, const TexList &list) { writeSection(text, TEX_SECTION, list, writeTexExt); }

// --- TeximgList: each row of texels begins with a line end, so what ends the image ends the last row -----------------

namespace {

constexpr std::size_t TEXELS_TO_A_ROW = 12;

void writeTexels(Text &text, std::span<const unsigned char> texels) {
  print<"TexImgData">(text);
  eachRow<TEXELS_TO_A_ROW>(texels, [&text](auto row) {
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
  const TeximgExt &ext = *image.ext;
  putRecord<LINES<TeximgExtHead>>(text, ext);
  kvWriteKtArray(text, counted(ext.mipmap_max_level, ext.mipmap_img_offset), "mipmap img offset");
  writeExtBlkAfter(text, image, kvSizeofTeximgExt(ext));
}

} // namespace

void kvWriteKtTeximgListFix1(Text &text, const TeximgList &list) {
  writeListHead<LINES_OF<TEXIMG_LIST_WORDS>, "tex_img_num_byte[%d]    %d\n">(text, list, TEXIMG_SECTION.name);
}

void kvWriteKtTeximgFix1(Text &text, const Teximg &image, Index number) {
  print<"TexImg(%d)\n">(text, number);
  putRecord<LINES<TeximgHead>>(text, image);
  writeTexels(text, counted(kvSizeofTeximg(image), image.texel));
}

void kvWriteKtTeximgList1(Text &text, const TeximgList &list) {
  writeSection(text, TEXIMG_SECTION, list, writeTeximgEnd1);
}
void kvWriteKtTeximgList(Text &text, const TeximgList &list) {
  writeSection(text, TEXIMG_SECTION, list, writeTeximgEnd2);
}

} // namespace kova
