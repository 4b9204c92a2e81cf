#include "checker/steps.h"

#include <algorithm>

namespace kova {

namespace {

struct BlockSizes {
  Word van;
  Word usr;
};

// The sizes of a record's two blocks; zeros for the records that the format gives none.
template <class Element> BlockSizes blockSizes(const Element &element) {
  if constexpr (requires { element.van_ext_blk_size; })
    return {element.van_ext_blk_size, element.usr_ext_blk_size};
  else
    return {0, 0};
}

// What differs between the elements of the regular lists.
template <class Element> struct Row {
  const char *name;
  Index Element::*index;
  Word Element::*size;
  // How the size is made up. Without a name it is compared with the size table only.
  const char *size_name = nullptr;
  Word fixed_bytes = 0;
  Word item_bytes = 0;
  Word Element::*item_num = nullptr;
};

template <class Element>
int checkElement(const Row<Element> &row, Word number, Word table_size, const Element &element) {
  int ok = check_index_size(row.name, number, element.*row.index, table_size, element.*row.size);
  if (row.size_name != nullptr) {
    const BlockSizes blocks = blockSizes(element);
    ok *= check_whole_area_size(elementLabel(row.size_name, number, " size").text, element.*row.size, row.fixed_bytes,
                                row.item_bytes, row.item_num != nullptr ? element.*row.item_num : 0, blocks.van,
                                blocks.usr);
  }
  return ok;
}

template <class Element> auto byRow(const Row<Element> &row) {
  return [row](Word number, Word table_size, const Element &element) {
    return checkElement(row, number, table_size, element);
  };
}

// The colour and vector lists: seven header words, two size tables, and all triangle groups before all vertex groups.
// The colour list holds as many vertex groups as it counts triangle groups; the second count is the one that the
// second size table goes by, so it is the one that is walked, as far as groups are held.
template <class ForTri, class ForVtx>
int checkTwoKindList(const char *name, Word list_num, const TwoKindList<ForTri, ForVtx> &list,
                     const Row<ForTri> &tri_row, const Row<ForVtx> &vtx_row) {
  checkHeading(name);
  int ok = checksame("list size", list_num, list.list_size);
  ok *= check_color_list_size(list.list_size, fixedBytes<TwoKindListHead>, list.tri_group_size, list.tri_group_num,
                              list.vtx_group_size, list.vtx_group_num, list.van_ext_blk_size, list.usr_ext_blk_size);
  ok *= checkElements(list.tri_group_size, counted(list.tri_group_num, list.tri_group), byRow(tri_row));
  ok *= checkElements(list.vtx_group_size, counted(list.vtx_group_num, list.vtx_group), byRow(vtx_row));
  return ok;
}

int checkLight(Word number, Word table_size, const Light &light) {
  const Word dir_light_bytes = light.light_type != 0 ? fixedBytes<DirLight> : Word{DIRECTION_LIGHT_BYTES};
  int ok = checkElement<Light>({"Light", &Light::this_light_index, &Light::light_size, "Light", fixedBytes<LightHead>,
                                dir_light_bytes, &Light::dir_light_num},
                               number, table_size, light);
  // One label for all of them: it carries the light's number, not the directional light's.
  const Label label = elementLabel("Light", number, ".dirlight size");
  for (const DirLight &dir_light : counted(light.dir_light_num, light.dir_light))
    ok *= checksame(label.text, dir_light.dir_light_size, dir_light_bytes);
  for (std::size_t i = 0; i < std::min(light.dir_light_num, light.zeroed_dir_light_num); ++i)
    ok *= checksame(label.text, 0, dir_light_bytes);
  return ok;
}

// Each level of detail has a distance and a link. A wrong size is reported only: it does not fail the list.
int checkObj(Word number, Word table_size, const Obj &obj) {
  const int ok = check_index_size("Obj", number, obj.this_obj_index, table_size, obj.obj_size);
  const Word expected = fixedBytes<ObjHead> + 4 * (obj.obj_lod_num + obj.obj_lod_num + obj.obj_child_num) +
                        obj.van_ext_blk_size + obj.usr_ext_blk_size;
  if (obj.obj_size != expected)
    std::printf("Obj[%d] size %d != %d + 4*(%d + %d + %d) + %d + %d\n", shown(number), shown(obj.obj_size),
                shown(fixedBytes<ObjHead>), shown(obj.obj_lod_num), shown(obj.obj_lod_num), shown(obj.obj_child_num),
                shown(obj.van_ext_blk_size), shown(obj.usr_ext_blk_size));
  return ok;
}

Word refBytes(const TriGroup &group, std::size_t kind) {
  switch (refForm(group.tri_anim_type, kind)) {
  case RefForm::frames:
    return 4 + 4 * static_cast<Word>(group.tri_anim_frame_num);
  case RefForm::keys:
    return 4 + 8 * group.ref[kind].key_num;
  case RefForm::single:
    break;
  }
  return 4;
}

// Only a warning: it has no verdict. The 32 of the group's head comes last in the line, although it is counted first.
void warnOfTriGroup(const TriGroup &group) {
  std::array<Word, REF_KIND_NUM> ref;
  Word expected = fixedBytes<TriGroupHead> + fixedBytes<TriHead> * group.tri_num;
  for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind)
    expected += ref[kind] = refBytes(group, kind);
  const std::span<const Tri> triangles = counted(group.tri_num, group.tri);
  expected += sumofMemberVal(triangles, &Tri::van_ext_blk_size) + sumofMemberVal(triangles, &Tri::usr_ext_blk_size);
  if (group.tri_group_size == expected)
    return;

  std::printf("###### Warning!! ######:(TriGroup)Some of number/size is incorrect. "
              "%d != %d + (%d + %d + %d + %d + %d + %d)",
              shown(group.tri_group_size), shown(ref[refVtx]), shown(ref[refTriColor]), shown(ref[refVtxColor]),
              shown(ref[refTriNv]), shown(ref[refVtxNv]), shown(ref[refSt]), shown(fixedBytes<TriGroupHead>));
  for (const Tri &tri : triangles)
    std::printf(" +(%d+%d+%d)", shown(fixedBytes<TriHead>), shown(tri.van_ext_blk_size), shown(tri.usr_ext_blk_size));
  std::printf("\n");
}

// The bytes of one record of an animation group. A type that stores none has no record size of its own: it gets that of
// the group before it.
Word animBytes(Word type, Word previous) {
  switch (type) {
  case 0:
  case 2:
    return fixedBytes<AnimStep>;
  case 3:
    return fixedBytes<AnimKeyframe>;
  case 4:
    return fixedBytes<AnimNode>;
  default:
    return previous;
  }
}

} // namespace

// One record without a size table, and the only list that goes by the header size which the file gives. A scene that
// the file lacks passes: all its terms are 0.
int checkSceneList(const Kis &kis) {
  const Scene &scene = kis.scene;
  checkHeading("SceneList");
  int ok = checksame("list size", kis.file_header.scene_list_num, scene.scene_size);
  const Word links =
      scene.scene_obj_link_num + scene.scene_env_link_num + scene.scene_cam_link_num + scene.scene_light_link_num;
  if (scene.scene_size != scene.scene_header_size + 4 * links + scene.van_ext_blk_size + scene.usr_ext_blk_size) {
    std::printf("Some of size data is incorrect. %d ! = %d + %d * (%d + %d + %d + %d) + %d + %d\n",
                shown(scene.scene_size), shown(scene.scene_header_size), 4, shown(scene.scene_obj_link_num),
                shown(scene.scene_env_link_num), shown(scene.scene_cam_link_num), shown(scene.scene_light_link_num),
                shown(scene.van_ext_blk_size), shown(scene.usr_ext_blk_size));
    ok = 0;
  }
  return ok;
}

int checkEnvList(const Kis &kis) {
  return checkList("EnvList", kis.file_header.env_list_num, kis.env,
                   byRow<Env>({"Env", &Env::this_env_index, &Env::env_size, "Env", fixedBytes<EnvHead>}));
}

int checkCamList(const Kis &kis) {
  return checkList("CamList", kis.file_header.cam_list_num, kis.cam,
                   byRow<Cam>({"Cam", &Cam::this_cam_index, &Cam::cam_size, "Cam", fixedBytes<CamHead>}));
}

int checkLightList(const Kis &kis) {
  return checkList("LightList", kis.file_header.light_list_num, kis.light, checkLight);
}

int checkObjList(const Kis &kis) { return checkList("ObjList", kis.file_header.obj_list_num, kis.obj, checkObj); }

int checkShapeList(const Kis &kis) {
  return checkList("ShapeList", kis.file_header.shape_list_num, kis.shape,
                   byRow<Shape>({"Shape", &Shape::this_shape_index, &Shape::shape_size, "Shape", fixedBytes<ShapeHead>,
                                 fixedBytes<Index>, &Shape::shape_part_num}));
}

// The one list whose element goes by two names.
int checkVtxList(const Kis &kis) {
  return checkList("VtxList", kis.file_header.vtx_list_num, kis.vtx,
                   byRow<VtxGroup>({"VtxGroup", &VtxGroup::this_vtx_group_index, &VtxGroup::vtx_group_size, "Vtx",
                                    fixedBytes<VtxGroupHead>, fixedBytes<Xyz>, &VtxGroup::vtx_num}));
}

int checkTriList(const Kis &kis) {
  const int ok = checkList("TriList", kis.file_header.tri_list_num, kis.tri,
                           byRow<TriGroup>({"TriGroup", &TriGroup::this_tri_group_index, &TriGroup::tri_group_size}));
  for (const TriGroup &group : counted(kis.tri.num, kis.tri.element))
    warnOfTriGroup(group);
  return ok;
}

int checkColorList(const Kis &kis) {
  return checkTwoKindList<TriColorGroup, VtxColorGroup>(
      "ColorList", kis.file_header.color_list_num, kis.color,
      {"TriColorGroup", &TriColorGroup::this_tri_color_group_index, &TriColorGroup::tri_color_group_size,
       "TriColorGroup", fixedBytes<TriColorGroupHead>, fixedBytes<Rgba>, &TriColorGroup::tri_color_num},
      {"VtxColorGroup", &VtxColorGroup::this_vtx_color_group_index, &VtxColorGroup::vtx_color_group_size,
       "VtxColorGroup", fixedBytes<VtxColorGroupHead>, fixedBytes<Rgba>, &VtxColorGroup::vtx_color_num});
}

int checkVectorList(const Kis &kis) {
  return checkTwoKindList<TriNvGroup, VtxNvGroup>(
      "VectorList", kis.file_header.vector_list_num, kis.vector,
      {"TriNvGroup", &TriNvGroup::this_tri_nv_group_index, &TriNvGroup::tri_nv_group_size, "TriNvGroup",
       fixedBytes<TriNvGroupHead>, fixedBytes<Xyz>, &TriNvGroup::tri_nv_num},
      {"VtxNvGroup", &VtxNvGroup::vtx_nv_group_index, &VtxNvGroup::vtx_nv_group_size, "VtxNvGroup",
       fixedBytes<VtxNvGroupHead>, fixedBytes<Xyz>, &VtxNvGroup::vtx_nv_num});
}

int checkStList(const Kis &kis) {
  return checkList("StList", kis.file_header.st_list_num, kis.st,
                   byRow<StGroup>({"StGroup", &StGroup::this_st_group_index, &StGroup::st_group_size, "StGroup",
                                   fixedBytes<StGroupHead>, fixedBytes<St>, &StGroup::st_num}));
}

int checkPartList(const Kis &kis) {
  return checkList("PartList", kis.file_header.part_list_num, kis.part,
                   byRow<Part>({"Part", &Part::this_part_index, &Part::part_size, "Part", fixedBytes<PartHead>,
                                fixedBytes<Index>, &Part::part_tri_num}));
}

int checkMatList(const Kis &kis) {
  return checkList("MatList", kis.file_header.mat_list_num, kis.mat,
                   byRow<Mat>({"Mat", &Mat::this_mat_index, &Mat::mat_size, "Mat", fixedBytes<MatHead>,
                               fixedBytes<Word>, &Mat::tex_num}));
}

int checkTexList(const Kis &kis) {
  return checkList("TexList", kis.file_header.tex_list_num, kis.tex,
                   byRow<Tex>({"Tex", &Tex::this_tex_index, &Tex::tex_size}));
}

// The narrowest check: an image's size is compared with nothing, and the label has no number.
int checkTeximgList(const Kis &kis) {
  return checkList("TeximgList", kis.file_header.tex_img_list_num, kis.teximg,
                   [](Word number, Word, const Teximg &image) {
                     return checksame("Teximg", number, static_cast<Word>(image.this_tex_img_index));
                   });
}

int checkAnimList(const Kis &kis) {
  Word anim_bytes = 0;
  return checkList("AnimList", kis.file_header.anim_list_num, kis.anim,
                   [&anim_bytes](Word number, Word table_size, const AnimGroup &group) {
                     anim_bytes = animBytes(group.type, anim_bytes);
                     return checkElement<AnimGroup>({"AnimGroup", &AnimGroup::this_anim_group_index,
                                                     &AnimGroup::anim_group_size, "AnimGroup",
                                                     fixedBytes<AnimGroupHead>, anim_bytes, &AnimGroup::anim_num},
                                                    number, table_size, group);
                   });
}

int checkCollList(const Kis &kis) {
  return checkList("CollList", kis.file_header.coll_list_num, kis.coll,
                   byRow<CollGroup>({"CollGroup", &CollGroup::this_coll_group_index, &CollGroup::coll_group_size}));
}

int checkSwitchList(const Kis &kis) {
  return checkList("SwitchList", kis.file_header.switch_list_num, kis.switch_,
                   byRow<Switch>({"Switch", &Switch::this_switch_index, &Switch::switch_size}));
}

int checkNameList(const Kis &) { return 1; }

int checkKOVA1(const Kis &kis) {
  constexpr int (*CHECKS[])(const Kis &) = {
      checkSceneList,  checkEnvList,   checkCamList,    checkLightList,  checkObjList,  checkShapeList, checkVtxList,
      checkTriList,    checkColorList, checkVectorList, checkStList,     checkPartList, checkMatList,   checkTexList,
      checkTeximgList, checkAnimList,  checkCollList,   checkSwitchList, checkNameList};
  int ok = 1;
  for (const auto check : CHECKS)
    ok *= check(kis);
  return ok;
}

} // namespace kova
