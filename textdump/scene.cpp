#include "textdump/scene.h"

#include "textdump/content.h"

namespace kova {

namespace {

constexpr const char *SCENE_SECTION = "SceneList";
constexpr Section<Env> ENV_SECTION = {"EnvList", writeElement<EnvList>, true};
constexpr Section<Cam> CAM_SECTION = {"CamList", writeElement<CamList>, true};
constexpr Section<Light> LIGHT_SECTION = {"LightList", kvWriteKtLightFix1, true};
constexpr Section<Obj> OBJ_SECTION = {"ObjList", writeElement<ObjList>};
constexpr Section<Shape> SHAPE_SECTION = {"ShapeList", writeElement<ShapeList>};

} // namespace

// --- SceneList: one record, without list header, size table and elements ---------------------------------------------

void kvWriteKtSceneListFix1(Text &text, const Scene &scene) {
  kvWriteKtListName(text, SCENE_SECTION);
  putRecord<LINES<SceneHead>>(text, scene);
  printContent<SceneHead>(text, scene);
}

void kvWriteKtSceneList1(Text &text, const Scene &scene) {
  kvWriteKtSceneListFix1(text, scene);
  writeListEnd(text, scene, SCENE_SECTION);
}

namespace {

void writeSceneListExt(Text &text, const Scene &scene) {
  if (!scene.ext)
    return writeExtBlkAfter(text, scene, 0);
  printMaker<SceneListExtHead>(text, *scene.ext, scene);
  writeExtBlkAfter(text, scene, kvSizeofSceneListExt(*scene.ext));
}

} // namespace

void kvWriteKtSceneList(Text &text, const Scene &scene) {
  kvWriteKtSceneListFix1(text, scene);
  writeSceneListExt(text, scene);
  kvWriteKtListEnd(text, SCENE_SECTION);
}

// --- EnvList ---------------------------------------------------------------------------------------------------------

void kvWriteKtEnvList1(Text &text, const EnvList &list) { writeSection(text, ENV_SECTION, list); }
void kvWriteKtEnvList(Text &text, const EnvList &list) { kvWriteKtEnvList1(text, list); }

// --- CamList ---------------------------------------------------------------------------------------------------------

namespace {

void writeCamExt(Text &text, const Cam &cam) {
  if (!cam.ext)
    return writeExtBlkAfter(text, cam, 0);
  printMaker<CamExt>(text, *cam.ext, cam);
  writeExtBlkAfter(text, cam, sizeof(CamExt));
}

} // namespace

void kvWriteKtCamList1(Text &text, const CamList &list) { writeSection(text, CAM_SECTION, list); }
void kvWriteKtCamList(Text &text, const CamList &list) { writeSection(text, CAM_SECTION, list, writeCamExt); }

// --- LightList -------------------------------------------------------------------------------------------------------

/// A light of a type that stores no directional lights prints none, whatever its count says.
void kvWriteKtLightFix1(Text &text, const Light &light, Index number) { writeElement<LightList>(text, light, number); }

void kvWriteKtLightList1(Text &text, const LightList &list) { writeSection(text, LIGHT_SECTION, list); }
void kvWriteKtLightList(Text &text, const LightList &list) { kvWriteKtLightList1(text, list); }

// --- ObjList ---------------------------------------------------------------------------------------------------------

namespace {

void writeObjExt(Text &text, const Obj &obj) {
  if (!obj.ext)
    return writeExtBlkAfter(text, obj, 0);
  printMaker<ObjExtHead>(text, *obj.ext, obj);
  writeExtBlkAfter(text, obj, kvSizeofObjExt(*obj.ext));
}

} // namespace

void kvWriteKtObjList1(Text &text, const ObjList &list) { writeSection(text, OBJ_SECTION, list); }
void kvWriteKtObjList(Text &text, const ObjList &list) { writeSection(text, OBJ_SECTION, list, writeObjExt); }

// --- ShapeList -------------------------------------------------------------------------------------------------------

namespace {

void writeShapeExt(Text &text, const Shape &shape) {
  if (!shape.ext)
    return writeExtBlkAfter(text, shape, 0);
  printMaker<ShapeExt>(text, *shape.ext, shape);
  writeExtBlkAfter(text, shape, sizeof(ShapeExt));
}

} // namespace

void kvWriteKtShapeList1(Text &text, const ShapeList &list) { writeSection(text, SHAPE_SECTION, list); }
void kvWriteKtShapeList(Text &text, const ShapeList &list) { writeSection(text, SHAPE_SECTION, list, writeShapeExt); }

} // namespace kova
