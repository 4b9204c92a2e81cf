#include "kova/scene.h"

#include "reader/elements.h"
#include "reader/makerblock.h"

namespace kova {

namespace {

/// Only types 0 and 1 store their directional lights, each in a form of its own.
int readDirLights(Cursor &cursor, Light &light) {
  const Word count = light.dir_light_num;
  if (light.light_type > 1)
    return takeZeroed(cursor, light.zeroed_dir_light_num, count);
  if (light.light_type == 1)
    return readRun(cursor, light.dir_light, count);
  if (!require(cursor, count, DIRECTION_LIGHT_BYTES))
    return 0;
  light.dir_light.resize(count); // dir_a1 and dir_a2, which this form lacks, are 0
  for (DirLight &dir_light : light.dir_light)
    if (!copyBytes(cursor, &dir_light, DIRECTION_LIGHT_BYTES))
      return clearAndFail(light.dir_light);
  return 1;
}

/// The one element whose recorded header size moves the cursor, from the element's start and before its tag is tested.
int readLight(Cursor &cursor, Light &light) {
  const Place place = placeBefore(cursor, 0);
  const std::uint64_t start = cursor.offset;
  LightHead &head = light;
  if (!readFixed(cursor, head))
    return 0;
  cursor.offset = start;
  return moveBy(cursor, static_cast<Index>(light.light_header_size)) &&
         checkTagAt(place, light.light_tag, LIGHT_LIST_TAG + ELEMENT_KIND) && readDirLights(cursor, light) &&
         readExtBlk(cursor, light);
}

} // namespace

int kvSetupSceneList(Cursor &cursor, Scene &scene) {
  return withinMemory(cursor, [&] {
    scene = Scene();
    const Place place = placeBefore(cursor, 0);
    const std::uint64_t start = cursor.offset;
    SceneHead &head = scene;
    if (!readFixed(cursor, head))
      return 0;
    scene.offset = place.offset;
    cursor.offset = start + scene.scene_header_size; // not a fixed place: this header size is meant
    return int{checkTagAt(place, scene.scene_header_tag, SCENE_LIST_TAG) &&
               kvReadArray(cursor, scene.obj_link, scene.scene_obj_link_num) &&
               kvReadArray(cursor, scene.env_link, scene.scene_env_link_num) &&
               kvReadArray(cursor, scene.cam_link, scene.scene_cam_link_num) &&
               kvReadArray(cursor, scene.light_link, scene.scene_light_link_num) && readExtBlk(cursor, scene)};
  });
}

int kvSetupEnvList(Cursor &cursor, EnvList &list) {
  return readList<EnvHead>(cursor, list, ENV_LIST_TAG, [](Cursor &at, Env &env) {
    return readHead<EnvHead>(at, env, ENV_LIST_TAG + ELEMENT_KIND) && readExtBlk(at, env);
  });
}

int kvSetupCamList(Cursor &cursor, CamList &list) {
  return readList<CamHead>(cursor, list, CAM_LIST_TAG, [](Cursor &at, Cam &cam) {
    return readHead<CamHead>(at, cam, CAM_LIST_TAG + ELEMENT_KIND) && readExtBlk(at, cam);
  });
}

int kvSetupLightList(Cursor &cursor, LightList &list) {
  // A light may not move the cursor at all (header size 0), so only the size table bounds their number.
  return readListTagged<LightHead>(
      cursor, list, 0, [](const Place &place, Word found) { return checkTagAt(place, found, LIGHT_LIST_TAG); },
      readLight);
}

int kvSetupObjList(Cursor &cursor, ObjList &list) {
  return readList<ObjHead>(cursor, list, OBJ_LIST_TAG, [](Cursor &at, Obj &obj) {
    return readHead<ObjHead>(at, obj, OBJ_LIST_TAG + ELEMENT_KIND) && kvReadArray(at, obj.LOD_dist, obj.obj_lod_num) &&
           kvReadArray(at, obj.LOD_link, obj.obj_lod_num) && kvReadArray(at, obj.child_link, obj.obj_child_num) &&
           readExtBlk(at, obj);
  });
}

int kvSetupShapeList(Cursor &cursor, ShapeList &list) {
  return readList<ShapeHead>(cursor, list, SHAPE_LIST_TAG, [](Cursor &at, Shape &shape) {
    return readHead<ShapeHead>(at, shape, SHAPE_LIST_TAG + ELEMENT_KIND) &&
           kvReadArray(at, shape.shape_part_link, shape.shape_part_num) && readExtBlk(at, shape);
  });
}

int kvSetScene0(Scene &) { return 1; }
int kvSetEnv0(EnvList &) { return 1; }
int kvSetCam0(CamList &) { return 1; }
int kvSetLight0(LightList &) { return 1; }
int kvSetObj0(ObjList &) { return 1; }
int kvSetShape0(ShapeList &) { return 1; }

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

Word kvSizeofSceneListExt(const SceneListExtHead &ext) {
  return blockBytes<SceneListExtHead>(1) + blockBytes<Index>(ext.scene_chain_root_link_num) +
         blockBytes<External>(ext.external_obj_num + ext.external_env_num + ext.external_cam_num +
                              ext.external_light_num);
}

Word kvSizeofObjExt(const ObjExtHead &ext) {
  return blockBytes<ObjExtHead>(1) + blockBytes<Index>(ext.obj_chain_root_link_num) +
         blockBytes<float>(ext.external_lod_obj_num) +
         blockBytes<External>(ext.external_lod_obj_num + ext.external_obj_num);
}

} // namespace kova
