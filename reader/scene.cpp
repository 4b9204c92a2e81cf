#include "kova/scene.h"

#include "format/scene.h"
#include "reader/elements.h"
#include "reader/makerblock.h"

namespace kova {

int kvSetupSceneList(Cursor &cursor, Scene &scene) { return readList(cursor, scene, SCENE_LIST_TAG); }
int kvSetupEnvList(Cursor &cursor, EnvList &list) { return readList(cursor, list, ENV_LIST_TAG); }
int kvSetupCamList(Cursor &cursor, CamList &list) { return readList(cursor, list, CAM_LIST_TAG); }
int kvSetupLightList(Cursor &cursor, LightList &list) { return readList(cursor, list, LIGHT_LIST_TAG); }
int kvSetupObjList(Cursor &cursor, ObjList &list) { return readList(cursor, list, OBJ_LIST_TAG); }
int kvSetupShapeList(Cursor &cursor, ShapeList &list) { return readList(cursor, list, SHAPE_LIST_TAG); }

int kvSetScene0(Scene &) { return 1; }
int kvSetEnv0(EnvList &) { return 1; }
int kvSetCam0(CamList &) { return 1; }
int kvSetLight0(LightList &) { return 1; }
int kvSetObj0(ObjList &) { return 1; }
int kvSetShape0(ShapeList &) { return 1; }

int kvSetupSceneListExt(Scene &scene) {
  Fault fault = Fault::none;
  const int ok = setupBlock<SceneListExtHead>(scene, fault);
  return fault == Fault::no_memory ? sayNoMemory("SceneList") : ok;
}
int kvSetupCamExt(CamList &list) { return setupBlocks<CamExt>(list, "CamList"); }
int kvSetupObjExt(ObjList &list) { return setupBlocks<ObjExtHead>(list, "ObjList"); }
int kvSetupShapeExt(ShapeList &list) { return setupBlocks<ShapeExt>(list, "ShapeList"); }

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
