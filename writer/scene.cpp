#include "writer/elements.h"
#include "writer/lists.h"

namespace kova {

namespace {

/// Of the two forms that store directional lights, type 0 has the first nine words only.
void putDirLights(Output &out, const Light &light) {
  if (light.light_type > 1)
    return;
  for (const DirLight &dir_light : counted(light.dir_light_num, light.dir_light))
    putWords(out, &dir_light, light.light_type == 0 ? DIRECTION_LIGHT_BYTES : sizeof dir_light);
}

/// The header size says where the directional lights begin; less than the head, and they lie upon it.
void putLight(Output &out, const Light &light) {
  const std::uint64_t start = out.offset;
  putFixed<LightHead>(out, light);
  const auto header_size = static_cast<Index>(light.light_header_size);
  moveTo(out, start + static_cast<std::uint64_t>(std::max(header_size, 0))); // a negative one has ended the read here
  putDirLights(out, light);
  putExtBlk(out, light);
}

} // namespace

void writeSceneList(Output &out, const Scene &scene) {
  putFixed<SceneHead>(out, scene);
  moveTo(out, scene.scene_header_size);
  putRun(out, scene.obj_link, scene.scene_obj_link_num);
  putRun(out, scene.env_link, scene.scene_env_link_num);
  putRun(out, scene.cam_link, scene.scene_cam_link_num);
  putRun(out, scene.light_link, scene.scene_light_link_num);
  putExtBlk(out, scene);
}

void writeEnvList(Output &out, const EnvList &list) {
  putList(out, list, [](Output &to, const Env &env) {
    putFixed<EnvHead>(to, env);
    putExtBlk(to, env);
  });
}

void writeCamList(Output &out, const CamList &list) {
  putList(out, list, [](Output &to, const Cam &cam) {
    putFixed<CamHead>(to, cam);
    putExtBlk(to, cam);
  });
}

void writeLightList(Output &out, const LightList &list) { putList(out, list, putLight); }

void writeObjList(Output &out, const ObjList &list) {
  putList(out, list, [](Output &to, const Obj &obj) {
    putFixed<ObjHead>(to, obj);
    putRun(to, obj.LOD_dist, obj.obj_lod_num);
    putRun(to, obj.LOD_link, obj.obj_lod_num);
    putRun(to, obj.child_link, obj.obj_child_num);
    putExtBlk(to, obj);
  });
}

void writeShapeList(Output &out, const ShapeList &list) {
  putList(out, list, [](Output &to, const Shape &shape) {
    putFixed<ShapeHead>(to, shape);
    putRun(to, shape.shape_part_link, shape.shape_part_num);
    putExtBlk(to, shape);
  });
}

} // namespace kova
