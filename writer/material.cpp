#include "writer/elements.h"
#include "writer/lists.h"

namespace kova {

namespace {

void putTiles(Output &out, const TexTiles &tiles) {
  putFixed<TexTilesHead>(out, tiles);
  putRun(out, tiles.tex_tile_scale_key, tiles.tex_tile_scale_num);
  putRun(out, tiles.tex_tile_width, tiles.tex_tile_scale_num);
  putRun(out, tiles.tex_tile_height, tiles.tex_tile_scale_num);
  putRun(out, tiles.tex_tile_offset_key, tiles.tex_tile_offset_num);
  putRun(out, tiles.tex_tile_offset_x, tiles.tex_tile_offset_num);
  putRun(out, tiles.tex_tile_offset_y, tiles.tex_tile_offset_num);
  putRun(out, tiles.tex_tile_img_key, tiles.tex_tile_img_num);
  putRun(out, tiles.tex_tile_img_index, tiles.tex_tile_img_num);
}

} // namespace

void writeMatList(Output &out, const MatList &list) {
  putList(out, list, [](Output &to, const Mat &mat) {
    putFixed<MatHead>(to, mat);
    putRun(to, mat.tex_index, mat.tex_num);
    putExtBlk(to, mat);
  });
}

void writeTexList(Output &out, const TexList &list) {
  putList(out, list, [](Output &to, const Tex &tex) {
    putFixed<TexHead>(to, tex);
    if (tex.tex_anim == 0)
      putFixed<TexStill>(to, tex.still);
    else
      putTiles(to, tex.tiles);
    putExtBlk(to, tex);
  });
}

void writeTeximgList(Output &out, const TeximgList &list) {
  putList(out, list, [](Output &to, const Teximg &image) {
    putFixed<TeximgHead>(to, image);
    putBytes(to, image.texel.data(), image.texel.size());
    putExtBlk(to, image);
  });
}

} // namespace kova
