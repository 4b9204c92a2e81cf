#include "kova/material.h"

#include "reader/elements.h"
#include "reader/makerblock.h"

namespace kova {

namespace {

int readTiles(Cursor &cursor, TexTiles &tiles) {
  TexTilesHead &head = tiles;
  return readFixed(cursor, head) && kvReadArray(cursor, tiles.tex_tile_scale_key, tiles.tex_tile_scale_num) &&
         kvReadArray(cursor, tiles.tex_tile_width, tiles.tex_tile_scale_num) &&
         kvReadArray(cursor, tiles.tex_tile_height, tiles.tex_tile_scale_num) &&
         kvReadArray(cursor, tiles.tex_tile_offset_key, tiles.tex_tile_offset_num) &&
         kvReadArray(cursor, tiles.tex_tile_offset_x, tiles.tex_tile_offset_num) &&
         kvReadArray(cursor, tiles.tex_tile_offset_y, tiles.tex_tile_offset_num) &&
         kvReadArray(cursor, tiles.tex_tile_img_key, tiles.tex_tile_img_num) &&
         kvReadArray(cursor, tiles.tex_tile_img_index, tiles.tex_tile_img_num);
}

/// Texels are the one thing of the format that is bytes, not words: where their number is no multiple of 4 the cursor
/// goes on from that odd offset.
int readTexels(Cursor &cursor, Teximg &image) {
  const Word bytes = kvSizeofTeximg(image);
  if (!require(cursor, bytes, 1))
    return 0;
  image.texel.resize(bytes);
  return copyFileOrder(cursor, image.texel.data(), bytes) || clearAndFail(image.texel);
}

} // namespace

int kvSetupMatList(Cursor &cursor, MatList &list) {
  return readList<MatHead>(cursor, list, MAT_LIST_TAG, [](Cursor &at, Mat &mat) {
    return readHead<MatHead>(at, mat, MAT_LIST_TAG + ELEMENT_KIND) && kvReadArray(at, mat.tex_index, mat.tex_num) &&
           readExtBlk(at, mat);
  });
}

int kvSetupTexList(Cursor &cursor, TexList &list) {
  return readList<TexHead>(cursor, list, TEX_LIST_TAG, [](Cursor &at, Tex &tex) {
    return readHead<TexHead>(at, tex, TEX_LIST_TAG + ELEMENT_KIND) &&
           (tex.tex_anim == 0 ? readFixed(at, tex.still) : readTiles(at, tex.tiles)) && readExtBlk(at, tex);
  });
}

int kvSetupTeximgList(Cursor &cursor, TeximgList &list) {
  return readList<TeximgHead>(cursor, list, TEXIMG_LIST_TAG, [](Cursor &at, Teximg &image) {
    return readHead<TeximgHead>(at, image, TEXIMG_LIST_TAG + ELEMENT_KIND) && readTexels(at, image) &&
           readExtBlk(at, image);
  });
}

int kvSetMat0(MatList &) { return 1; }
int kvSetTex0(TexList &) { return 1; }
int kvSetTeximg0(TeximgList &) { return 1; }

Word kvSizeofTeximg(const TeximgList &list, std::size_t index) {
  return index < list.element.size() ? kvSizeofTeximg(list.element[index]) : 0;
}

Word kvSizeofTeximg(const TeximgHead &image) {
  return image.tex_img_size - image.tex_img_header_size - image.van_ext_blk_size - image.usr_ext_blk_size;
}

Word kvCiTileNum(const Tex &tex) {
  if (!tex.ext || tex.ext->use_color_palette == 0)
    return 0;
  return tex.tex_anim == 0 ? 1 : tex.tiles.tex_tile_img_num;
}

int kvSetupMatExt(MatList &list) {
  return setupBlocks<MatExtHead>(list, "MatList", [](Cursor &cursor, MatExt &ext, const Mat &) {
    return kvSetupExternal(cursor, ext.external_tex, ext.external_tex_num) &&
           setupRun(cursor, ext.prim_color_anim, ext.prim_color_anim_num) &&
           setupRun(cursor, ext.prim_color_anim_for_fog, ext.prim_color_anim_num_for_fog);
  });
}

int kvSetupTexExt(TexList &list) {
  return setupBlocks<TexExtHead>(list, "TexList", [](Cursor &cursor, TexExt &ext, const Tex &tex) {
    const Word tiles = kvCiTileNum(tex);
    return kvSetupArray(cursor, ext.color_palette_index, tiles) &&
           kvSetupArray(cursor, ext.tlut_palette_number, tiles) &&
           kvSetupExternal(cursor, ext.external_tex_img, ext.external_tex_img_num) &&
           kvSetupExternal(cursor, ext.external_palette, ext.external_tex_img_num);
  });
}

int kvSetupTeximgExt(TeximgList &list) {
  return setupBlocks<TeximgExtHead>(list, "TeximgList", [](Cursor &cursor, TeximgExt &ext, const Teximg &) {
    return kvSetupArray(cursor, ext.mipmap_img_offset, ext.mipmap_max_level);
  });
}

Word kvSizeofMatExt(const MatExtHead &ext) {
  return blockBytes<MatExtHead>(1) + blockBytes<External>(ext.external_tex_num) +
         blockBytes<PrimColorAnim>(ext.prim_color_anim_num + ext.prim_color_anim_num_for_fog);
}

Word kvSizeofTexExt(const TexExtHead &ext, Word tile_num) {
  return blockBytes<TexExtHead>(1) + 2 * blockBytes<Index>(tile_num) +
         2 * blockBytes<External>(ext.external_tex_img_num);
}

Word kvSizeofTeximgExt(const TeximgExtHead &ext) {
  return blockBytes<TeximgExtHead>(1) + blockBytes<Index>(ext.mipmap_max_level);
}

} // namespace kova
