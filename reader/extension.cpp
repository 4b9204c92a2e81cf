#include "reader/kova.h"

#include <algorithm>

namespace kova {

namespace {

/// Decodes the maker block of one record into its `ext`. `setupArrays(cursor, ext)` reads what follows the fixed words.
/// @return 1; 0 where the record has no maker block, or where memory cannot be had (then `fault` says so).
template <class Head, class Record, class SetupArrays>
int setupBlock(Record &record, Fault &fault, SetupArrays setupArrays) {
  if (record.van_ext_blk_size == 0)
    return 0;
  const std::span<const Word> block = vanExtBlk(record.ext_blk);
  Cursor cursor = cursorOf(block);
  const int ok = withinMemory(cursor, [&] {
    using Ext = typename decltype(record.ext)::element_type;
    record.ext = std::make_unique<Ext>();
    Head &head = *record.ext;
    setupFixed(cursor, head);
    return int{setupArrays(cursor, *record.ext)};
  });
  fault = std::max(fault, cursor.fault);
  return ok;
}

/// Decodes the maker blocks of all elements of a list; one that lacks its block does not keep the others from theirs.
template <class Head, class Element, class SetupArrays>
int setupBlocks(List<Element> &list, const char *list_name, SetupArrays setupArrays) {
  int ok = 1;
  Fault fault = Fault::none;
  for (std::size_t i = 0; i < walked(list.num, list.element.size()); ++i) {
    Element &element = list.element[i];
    ok *=
        setupBlock<Head>(element, fault, [&](Cursor &cursor, auto &ext) { return setupArrays(cursor, ext, element); });
  }
  return fault == Fault::no_memory ? sayNoMemory(list_name) : ok;
}

constexpr auto NO_ARRAYS = [](Cursor &, const auto &, const auto &) { return true; };

} // namespace

int kvSetupRotateE(Cursor &cursor, std::vector<RotateE> &destination, Word count) {
  return setupRun(cursor, destination, count);
}

int kvSetupScale(Cursor &cursor, std::vector<Scale> &destination, Word count) {
  return setupRun(cursor, destination, count);
}

int kvSetupSceneListExt(Scene &scene) {
  Fault fault = Fault::none;
  const int ok = setupBlock<SceneListExtHead>(scene, fault, [](Cursor &cursor, SceneListExt &ext) {
    return kvSetupArray(cursor, ext.chain_root_link, ext.scene_chain_root_link_num) &&
           kvSetupExternal(cursor, ext.external_obj, ext.external_obj_num) &&
           kvSetupExternal(cursor, ext.external_env, ext.external_env_num) &&
           kvSetupExternal(cursor, ext.external_cam, ext.external_cam_num) &&
           kvSetupExternal(cursor, ext.external_light, ext.external_light_num);
  });
  return fault == Fault::no_memory ? sayNoMemory("SceneList") : ok;
}

int kvSetupCamExt(CamList &list) { return setupBlocks<CamExt>(list, "CamList", NO_ARRAYS); }

int kvSetupObjExt(ObjList &list) {
  return setupBlocks<ObjExtHead>(list, "ObjList", [](Cursor &cursor, ObjExt &ext, const Obj &) {
    return kvSetupArray(cursor, ext.obj_chain_root_link, ext.obj_chain_root_link_num) &&
           kvSetupArray(cursor, ext.external_lod_obj_dist, ext.external_lod_obj_num) &&
           kvSetupExternal(cursor, ext.external_lod_obj, ext.external_lod_obj_num) &&
           kvSetupExternal(cursor, ext.external_obj, ext.external_obj_num);
  });
}

int kvSetupShapeExt(ShapeList &list) { return setupBlocks<ShapeExt>(list, "ShapeList", NO_ARRAYS); }

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

int kvSetupAnimGroupExt(AnimList &list) {
  return setupBlocks<AnimGroupExtHead>(list, "AnimList", [](Cursor &cursor, AnimGroupExt &ext, const AnimGroup &) {
    return setupRun(cursor, ext.rotate_axis, ext.rotate_axis_num) &&
           kvSetupRotateE(cursor, ext.rotate_x, ext.rotate_x_num) &&
           kvSetupRotateE(cursor, ext.rotate_y, ext.rotate_y_num) &&
           kvSetupRotateE(cursor, ext.rotate_z, ext.rotate_z_num) &&
           setupRun(cursor, ext.orientation_xy, ext.orientation_xy_num) &&
           setupRun(cursor, ext.translation, ext.translation_num) &&
           kvSetupScale(cursor, ext.unique_scale, ext.unique_scale_num) &&
           kvSetupScale(cursor, ext.classic_scale, ext.classic_scale_num);
  });
}

Word kvSizeofAnimGroupExt(const AnimGroupExtHead &ext) {
  return static_cast<Word>(sizeof ext) + 40 * ext.rotate_axis_num +
         16 * (ext.rotate_x_num + ext.rotate_y_num + ext.rotate_z_num) + 56 * ext.orientation_xy_num +
         32 * (ext.translation_num + ext.unique_scale_num + ext.classic_scale_num);
}

} // namespace kova
