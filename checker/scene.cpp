#include "kova/scene.h"

#include "checker/steps.h"

#include <algorithm>

namespace kova {

namespace {

/// The size of the directional lights is that of the light's type, also in a light of a type that stores none.
int checkLight(const Listed<Light> &listed) {
  const Light &light = listed.element;
  const Word dir_light_bytes = light.light_type != 0 ? fixedBytes<DirLight> : Word{DIRECTION_LIGHT_BYTES};
  const ElementRow<Light> row = {.name = "Light",
                                 .index = &Light::this_light_index,
                                 .size = &Light::light_size,
                                 .fixed_bytes = fixedBytes<LightHead>,
                                 .item_bytes = dir_light_bytes,
                                 .item_num = &Light::dir_light_num};
  int ok = checkElement(row, listed);
  // One label for all of them: it carries the light's number, not the directional light's.
  const Label label = {row.name, listed.number, ".dirlight size"};
  Place place = after(listed.place, light.light_header_size);
  for (const DirLight &dir_light : counted(light.dir_light_num, light.dir_light)) {
    const Word size = dir_light.dir_light_size;
    ok *= checkSame<"directional-light-size">(wordOf(place, dir_light, &DirLight::dir_light_size), label, size,
                                              dir_light_bytes, {size, dir_light_bytes});
    place = after(place, dir_light_bytes);
  }
  // Those that the file does not hold have no place of their own: it is the type that is wrong, or their number.
  for (std::size_t i = 0; i < std::min(light.dir_light_num, light.zeroed_dir_light_num); ++i)
    ok *= checkSame<"directional-light-size">(wordOf(listed.place, light, &Light::light_type), label, 0,
                                              dir_light_bytes, {});
  return ok;
}

/// Each level of detail has a distance and a link. A wrong size is reported only: it does not fail the list.
int checkObj(const Listed<Obj> &listed) {
  const Obj &obj = listed.element;
  const int ok = checkIndexSize<Obj>("Obj", listed, &Obj::this_obj_index, &Obj::obj_size);
  const Word lods = obj.obj_lod_num;
  const Word children = obj.obj_child_num;
  const Word expected = fixedBytes<ObjHead> + fixedBytes<float> * lods + fixedBytes<Index> * lods +
                        fixedBytes<Word> * children + obj.van_ext_blk_size + obj.usr_ext_blk_size;
  if (obj.obj_size != expected)
    report<"object-sum">(listed.place, {obj.obj_size, expected}, listed.number, obj.obj_size, fixedBytes<ObjHead>, lods,
                         lods, children, obj.van_ext_blk_size, obj.usr_ext_blk_size);
  return ok;
}

/// The least that an object's maker block has to hold. It leaves out the links to chain roots, on purpose: the check is
/// a lower bound, more lenient than `kvSizeofObjExt`.
Word objBlockBytes(const Obj &obj) {
  const auto ext = blockHead<ObjExtHead>(obj);
  return fixedBytes<ObjExtHead> + fixedBytes<float> * ext.external_lod_obj_num +
         fixedBytes<External> * (ext.external_lod_obj_num + ext.external_obj_num);
}

} // namespace

// --- Lists ----------------------------------------------------------------------------------------------------------

/// The scene is one record without a size table, and its check is the only one that goes by the header size which the
/// file gives. A scene that the file lacks passes: all its terms are 0.
int checkSceneList(const Kis &kis) {
  constexpr const ListRow &LIST = listRow("SceneList");
  const Scene &scene = kis.scene;
  checkHeading(LIST.name);
  int ok = checkListSize(kis, LIST, scene, &Scene::scene_size);
  const Word links =
      scene.scene_obj_link_num + scene.scene_env_link_num + scene.scene_cam_link_num + scene.scene_light_link_num;
  const Word sum =
      scene.scene_header_size + fixedBytes<Index> * links + scene.van_ext_blk_size + scene.usr_ext_blk_size;
  if (scene.scene_size != sum)
    ok = report<"scene-sum">({LIST.name, {}, scene.offset}, {scene.scene_size, sum}, scene.scene_size,
                             scene.scene_header_size, fixedBytes<Index>, scene.scene_obj_link_num,
                             scene.scene_env_link_num, scene.scene_cam_link_num, scene.scene_light_link_num,
                             scene.van_ext_blk_size, scene.usr_ext_blk_size);
  return ok;
}

int checkEnvList(const Kis &kis) {
  return checkList<Env>(
      kis, listRow("EnvList"), kis.env,
      {.name = "Env", .index = &Env::this_env_index, .size = &Env::env_size, .fixed_bytes = fixedBytes<EnvHead>});
}

int checkCamList(const Kis &kis) {
  return checkList<Cam>(
      kis, listRow("CamList"), kis.cam,
      {.name = "Cam", .index = &Cam::this_cam_index, .size = &Cam::cam_size, .fixed_bytes = fixedBytes<CamHead>});
}

int checkLightList(const Kis &kis) { return checkList(kis, listRow("LightList"), kis.light, checkLight); }

int checkObjList(const Kis &kis) { return checkList(kis, listRow("ObjList"), kis.obj, checkObj); }

int checkShapeList(const Kis &kis) {
  return checkList<Shape>(kis, listRow("ShapeList"), kis.shape,
                          {.name = "Shape",
                           .index = &Shape::this_shape_index,
                           .size = &Shape::shape_size,
                           .fixed_bytes = fixedBytes<ShapeHead>,
                           .item_bytes = fixedBytes<Index>,
                           .item_num = &Shape::shape_part_num});
}

// --- Maker blocks ---------------------------------------------------------------------------------------------------

int checkSceneListExt(const Scene &scene) {
  checkHeading("SceneList Vantor Extension Block");
  const Place place = wordOf({.list = "SceneList", .offset = scene.offset}, scene, &Scene::van_ext_blk_size);
  int ok = checkBlockSize(place, scene.van_ext_blk_size, fixedBytes<SceneListExtHead>);
  ok *= checkBlockSize(place, scene.van_ext_blk_size, kvSizeofSceneListExt(blockHead<SceneListExtHead>(scene)));
  return ok;
}

int checkCamExt(const CamList &list) {
  return checkBlocks<Cam>(list, {.list = "CamList",
                                 .heading = "CamNode Vantor Extension Block",
                                 .name = "Cam",
                                 .fixed_bytes = fixedBytes<CamExt>});
}

int checkObjExt(const ObjList &list) {
  return checkBlocks<Obj>(list, {.list = "ObjList",
                                 .heading = "ObjNode Vantor Extension Block",
                                 .name = "Obj",
                                 .fixed_bytes = fixedBytes<ObjExtHead>,
                                 .counted_bytes = objBlockBytes});
}

int checkShapeExt(const ShapeList &list) {
  return checkBlocks<Shape>(list, {.list = "ShapeList",
                                   .heading = "ShapeNode Vantor Extension Block",
                                   .name = "Shape",
                                   .fixed_bytes = fixedBytes<ShapeExt>});
}

} // namespace kova
