#include "kova/material.h"

#include "format/material.h"
#include "reader/elements.h"
#include "reader/makerblock.h"

namespace kova {

int kvSetupMatList(Cursor &cursor, MatList &list) { return readList(cursor, list, MAT_LIST_TAG); }
int kvSetupTexList(Cursor &cursor, TexList &list) { return readList(cursor, list, TEX_LIST_TAG); }
int kvSetupTeximgList(Cursor &cursor, TeximgList &list) { return readList(cursor, list, TEXIMG_LIST_TAG); }

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

int kvSetupMatExt(MatList &list) { return setupBlocks<MatExtHead>(list, "MatList"); }
int kvSetupTexExt(TexList &list) { return setupBlocks<TexExtHead>(list, "TexList"); }
int kvSetupTeximgExt(TeximgList &list) { return setupBlocks<TeximgExtHead>(list, "TeximgList"); }

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
