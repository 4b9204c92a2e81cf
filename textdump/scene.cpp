#include "textdump/scene.h"

#include "textdump/content.h"

namespace kova {

namespace {

constexpr const char *SCENE_SECTION = "SceneList";
constexpr Section<Env> ENV_SECTION = {"EnvList", kvWriteKtEnvListFix1, kvWriteKtEnvFix1};
constexpr Section<Cam> CAM_SECTION = {"CamList", kvWriteKtCamListFix1, kvWriteKtCamFix1};
constexpr Section<Light> LIGHT_SECTION = {"LightList", kvWriteKtLightListFix1, kvWriteKtLightFix1};
constexpr Section<Obj> OBJ_SECTION = {"ObjList", kvWriteKtObjListFix1, kvWriteKtObjFix1};
constexpr Section<Shape> SHAPE_SECTION = {"ShapeList", kvWriteKtShapeListFix1, kvWriteKtShapeFix1};

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

void kvWriteKtEnvListFix1(Text &text, const EnvList &list) {
  writeListHead<LINES_OF<ENV_LIST_WORDS>, "env_num_byte[%d]   %d\n">(text, list, ENV_SECTION.name);
  print<"\n">(text);
}

void kvWriteKtEnvFix1(Text &text, const Env &env, Index number) {
  print<"Env(%d)\n">(text, number);
  putRecord<LINES<EnvHead>>(text, env);
}

void kvWriteKtEnvList1(Text &text, const EnvList &list) { writeSection(text, ENV_SECTION, list); }
void kvWriteKtEnvList(Text &text, const EnvList &list) { kvWriteKtEnvList1(text, list); }

// --- CamList ---------------------------------------------------------------------------------------------------------

void kvWriteKtCamListFix1(Text &text, const CamList &list) {
  writeListHead<LINES_OF<CAM_LIST_WORDS>, "cam_num_byte[%d]  %d \n">(text, list, CAM_SECTION.name);
  print<"\n">(text);
}

void kvWriteKtCamFix1(Text &text, const Cam &cam, Index number) {
  print<"Cam(%d)\n">(text, number);
  putRecord<LINES<CamHead>>(text, cam);
}

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

void kvWriteKtLightListFix1(Text &text, const LightList &list) {
  writeListHead<LINES_OF<LIGHT_LIST_WORDS>, "light_num_byte[%d]  %d \n">(text, list, LIGHT_SECTION.name);
  print<"\n">(text);
}

/// A light of a type that stores no directional lights prints none, whatever its count says.
void kvWriteKtLightFix1(Text &text, const Light &light, Index number) {
  print<"Light(%d)\n">(text, number);
  putRecord<LINES<LightHead>>(text, light);
  printContent<LightHead>(text, light);
}

void kvWriteKtLightList1(Text &text, const LightList &list) { writeSection(text, LIGHT_SECTION, list); }
void kvWriteKtLightList(Text &text, const LightList &list) { kvWriteKtLightList1(text, list); }

// --- ObjList ---------------------------------------------------------------------------------------------------------

void kvWriteKtObjListFix1(Text &text, const ObjList &list) {
  writeListHead<LINES_OF<OBJ_LIST_WORDS>, "obj_num_byte[%d]    %d\n">(text, list, OBJ_SECTION.name);
}

void kvWriteKtObjFix1(Text &text, const Obj &obj, Index number) {
  print<"Obj(%d)\n">(text, number);
  putRecord<LINES<ObjHead>>(text, obj);
  printContent<ObjHead>(text, obj);
}

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

void kvWriteKtShapeListFix1(Text &text, const ShapeList &list) {
  writeListHead<LINES_OF<SHAPE_LIST_WORDS>, "shape_num_byte[%d]  %d\n">(text, list, SHAPE_SECTION.name);
}

void kvWriteKtShapeFix1(Text &text, const Shape &shape, Index number) {
  print<"Shape(%d)\n">(text, number);
  putRecord<LINES<ShapeHead>>(text, shape);
  printContent<ShapeHead>(text, shape);
}

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
