/// The words of the scene, environments, cameras, lights, objects and shapes.
///
/// Trailing blanks, tabs and odd names in the tables are the format's own.
#pragma once

#include "format/list.h"
#include "kova/scene.h"

namespace kova {

template <>
inline constexpr auto WORDS<SceneHead> = words<SceneHead>({
    {"scene_header_tag      %0#10x\n", &SceneHead::scene_header_tag, TAG},
    {"scene_header_size     %d\n", &SceneHead::scene_header_size, HEADER_SIZE},
    {"scene_size            %d\n", &SceneHead::scene_size, SIZE},
    {"scene_cfg\t     %0#10x\n", &SceneHead::scene_cfg},
    {"scene_name_index      %d\n", &SceneHead::scene_name_index, link(To::name)},
    {"scene_obj_link_num    %d\n", &SceneHead::scene_obj_link_num, COUNT},
    {"scene_env_link_num    %d\n", &SceneHead::scene_env_link_num, COUNT},
    {"scene_cam_link_num    %d\n", &SceneHead::scene_cam_link_num, COUNT},
    {"scene_light_link_num  %d\n", &SceneHead::scene_light_link_num, COUNT},
    {"van_ext_blk_size      %d\n", &SceneHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size      %d\n", &SceneHead::usr_ext_blk_size, USR_SIZE},
});

inline constexpr auto ENV_LIST_WORDS = listWords({
    "env_list_tag          %0#10x\n",
    "env_list_header_size  %d\n",
    "env_list_size         %d\n",
    "env_num               %d\n",
    "van_ext_blk_size      %d\n",
    "usr_ext_blk_size      %d\n",
});
template <>
inline constexpr auto WORDS<EnvHead> = words<EnvHead>({
    {"env_tag          %0#10x\n", &EnvHead::env_tag, TAG},
    {"this_env_index   %d\n", &EnvHead::this_env_index, OWN_INDEX},
    {"env_size         %d\n", &EnvHead::env_size, SIZE},
    {"env_name_index   %d\n", &EnvHead::env_name_index, link(To::name)},
    {"fog              %0#10x\n", &EnvHead::fog},
    {"fog_color        %0#10x\n", &EnvHead::fog_color},
    {"fog_near         %d\n", &EnvHead::fog_near},
    {"fog_far          %d\n", &EnvHead::fog_far},
    {"fill_color       %0#10x\n", &EnvHead::fill_color},
    {"fill_depth       %0#10x\n", &EnvHead::fill_depth},
    {"bg_sprite_img    %d\n", &EnvHead::bg_sprite_img, link(To::image)},
    {"bg_sprite_depth  %d\n", &EnvHead::bg_sprite_depth},
    {"van_ext_blk_size  %d\n", &EnvHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size  %d\n", &EnvHead::usr_ext_blk_size, USR_SIZE},
});

inline constexpr auto CAM_LIST_WORDS = listWords({
    "cam_list_tag           %0#10x\n",
    "cam_list_header_size   %d \n",
    "cam_list_size          %d \n",
    "cam_num                %d\n",
    "van_ext_blk_size       %d\n",
    "usr_ext_blk_size       %d\n",
});
template <>
inline constexpr auto WORDS<CamHead> = words<CamHead>({
    {"cam_tag           %0#10x\n", &CamHead::cam_tag, TAG},
    {"this_cam_index    %d\n", &CamHead::this_cam_index, OWN_INDEX},
    {"cam_size          %d\n", &CamHead::cam_size, SIZE},
    {"came_name_index   %d\n", &CamHead::came_name_index, link(To::name)},
    {"cam_type          %0#10x\n", &CamHead::cam_type},
    {"cam_near_clip     %#g\n", &CamHead::cam_near_clip},
    {"cam_far_clip      %#g\n", &CamHead::cam_far_clip},
    {"cam_right_clip    %#g\n", &CamHead::cam_right_clip},
    {"cam_left_clip     %#g\n", &CamHead::cam_left_clip},
    {"cam_top_clip      %#g\n", &CamHead::cam_top_clip},
    {"cam_bottom_clip   %#g\n", &CamHead::cam_bottom_clip},
    {"cam_fovy          %#g\n", &CamHead::cam_fovy},
    {"cam_aspect        %#g\n", &CamHead::cam_aspect},
    {"cam_scale         %#g\n", &CamHead::cam_scale},
    {"cam_lookat_obj    %d\n", &CamHead::cam_lookat_obj, link(To::obj)},
    {"cam_eye_obj       %d\n", &CamHead::cam_eye_obj, link(To::obj)},
    {"cam_up_obj        %d\n", &CamHead::cam_up_obj, link(To::obj)},
    {"van_ext_blk_size  %d\n", &CamHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size  %d\n", &CamHead::usr_ext_blk_size, USR_SIZE},
});

inline constexpr auto LIGHT_LIST_WORDS = listWords({
    "light_list_tag          %0#10x\n",
    "light_list_header_size  %d\n",
    "light_list_size         %d \n",
    "light_num\t       %d\n",
    "van_ext_blk_size        %d\n",
    "usr_ext_blk_size        %d\n",
});
template <>
inline constexpr auto WORDS<LightHead> = words<LightHead>({
    {"light_tag          %0#10x\n", &LightHead::light_tag, TAG},
    {"this_light_index   %d\n", &LightHead::this_light_index, OWN_INDEX},
    {"light_header_size  %d\n", &LightHead::light_header_size, HEADER_SIZE},
    {"light_size         %d\n", &LightHead::light_size, SIZE},
    {"light_name_index   %d\n", &LightHead::light_name_index, link(To::name)},
    {"light_type         %0#10x\n", &LightHead::light_type},
    {"ambient_r          %#g\n", &LightHead::ambient_r},
    {"ambient_g          %#g\n", &LightHead::ambient_g},
    {"ambient_b          %#g\n", &LightHead::ambient_b},
    {"dir_light_num      %d\n", &LightHead::dir_light_num, COUNT},
    {"van_ext_blk_size   %d\n", &LightHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size   %d\n", &LightHead::usr_ext_blk_size, USR_SIZE},
});

/// A directional light in a light of type 1.
template <>
inline constexpr auto WORDS<DirLight> = words<DirLight>({
    {"dir_light_tag         %0#10x\n", &DirLight::dir_light_tag, TAG},
    {"this_dir_light_index  %d\n", &DirLight::this_dir_light_index, OWN_INDEX},
    {"dir_light_size        %d\n", &DirLight::dir_light_size, SIZE},
    {"dir_color_r           %#g\n", &DirLight::dir_color_r},
    {"dir_color_g           %#g\n", &DirLight::dir_color_g},
    {"dir_color_b           %#g\n", &DirLight::dir_color_b},
    {"pos_x                 %#g\n", &DirLight::pos_x},
    {"pos_y                 %#g\n", &DirLight::pos_y},
    {"pos_z                 %#g\n", &DirLight::pos_z},
    {"dir_a1                %#g\n", &DirLight::dir_a1},
    {"dir_a2                %#g\n", &DirLight::dir_a2},
});
/// A directional light in a light of type 0, which stores no more of it.
inline constexpr auto DIRECTION_LIGHT_WORDS = words<DirLight>({
    {"dir_light_tag         %0#10x\n", &DirLight::dir_light_tag, TAG},
    {"this_dir_light_index  %d\n", &DirLight::this_dir_light_index, OWN_INDEX},
    {"dir_light_size        %d\n", &DirLight::dir_light_size, SIZE},
    {"dir_color_r           %#g\n", &DirLight::dir_color_r},
    {"dir_color_g           %#g\n", &DirLight::dir_color_g},
    {"dir_color_b           %#g\n", &DirLight::dir_color_b},
    {"dir_x                 %#g\n", &DirLight::pos_x},
    {"dir_y                 %#g\n", &DirLight::pos_y},
    {"dir_z                 %#g\n", &DirLight::pos_z},
    unprinted("dir_a1", &DirLight::dir_a1),
    unprinted("dir_a2", &DirLight::dir_a2),
});

inline constexpr auto OBJ_LIST_WORDS = listWords({
    "obj_list_tag          %0#10x\n",
    "obj_list_header_size  %d \n",
    "obj_list_size         %d \n",
    "obj_num               %d\n",
    "van_ext_blk_size      %d\n",
    "usr_ext_blk_size      %d\n",
});
template <>
inline constexpr auto WORDS<ObjHead> = words<ObjHead>({
    {"obj_tag                %0#10x\n", &ObjHead::obj_tag, TAG},
    {"this_obj_index         %d\n", &ObjHead::this_obj_index, OWN_INDEX},
    {"obj_size               %d\n", &ObjHead::obj_size, SIZE},
    {"obj_name_index         %d\n", &ObjHead::obj_name_index, link(To::name)},
    {"obj_state              %0#10x\n", &ObjHead::obj_state},
    {"obj_type               %0#10x\n", &ObjHead::obj_type},
    {"obj_group              %d\n", &ObjHead::obj_group},
    {"obj_pri                %0#10x\n", &ObjHead::obj_pri},
    {"obj_render_cycle_type  %0#10x\n", &ObjHead::obj_render_cycle_type},
    {"obj_render_pri         %0#10x\n", &ObjHead::obj_render_pri},
    {"obj_render_type0       %0#10x\n", &ObjHead::obj_render_type0},
    {"obj_render_type1       %0#10x\n", &ObjHead::obj_render_type1},
    {"have_link_billboard    %0#10x\n", &ObjHead::have_link_billboard},
    {"obj_lod_num            %d\n", &ObjHead::obj_lod_num, COUNT},
    {"obj_child_num          %d\n", &ObjHead::obj_child_num, COUNT},
    {"obj_parent_link        %0#10x\n", &ObjHead::obj_parent_link, link(To::obj)},
    {"obj_shape_link         %0#10x\n", &ObjHead::obj_shape_link, link(To::shape)},
    {"obj_mat_link           %0#10x\n", &ObjHead::obj_mat_link, link(To::mat)},
    {"obj_anim_link          %0#10x\n", &ObjHead::obj_anim_link, link(To::anim)},
    {"obj_coll_link          %0#10x\n", &ObjHead::obj_coll_link, link(To::coll)},
    {"van_ext_blk_size       %d\n", &ObjHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size       %d\n", &ObjHead::usr_ext_blk_size, USR_SIZE},
});

inline constexpr auto SHAPE_LIST_WORDS = listWords({
    "shape_list_tag          %0#10x\n",
    "shape_list_header_size  %d\n",
    "shape_list_size         %d\n",
    "shape_num               %d\n",
    "van_ext_blk_size        %d\n",
    "usr_ext_blk_size        %d\n",
});
template <>
inline constexpr auto WORDS<ShapeHead> = words<ShapeHead>({
    {"shape_tag           %0#10x\n", &ShapeHead::shape_tag, TAG},
    {"this_shape_index    %d\n", &ShapeHead::this_shape_index, OWN_INDEX},
    {"shape_size          %d\n", &ShapeHead::shape_size, SIZE},
    {"shape_name_index    %d\n", &ShapeHead::shape_name_index, link(To::name)},
    {"shape_type          %0#10x\n", &ShapeHead::shape_type},
    {"shape_tri_link      %d\n", &ShapeHead::shape_tri_link, link(To::tri)},
    {"shape_mat_link      %d\n", &ShapeHead::shape_mat_link, link(To::mat)},
    {"shape_part_num      %d\n", &ShapeHead::shape_part_num, COUNT},
    {"van_ext_blk_size    %d\n", &ShapeHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size    %d\n", &ShapeHead::usr_ext_blk_size, USR_SIZE},
});

// The decoded maker blocks of a 2.0 file.

template <>
inline constexpr auto WORDS<SceneListExtHead> = words<SceneListExtHead>({
    {"scene_chain_root_link_num %d\n", &SceneListExtHead::scene_chain_root_link_num, COUNT},
    {"external_obj_num          %d\n", &SceneListExtHead::external_obj_num, COUNT},
    {"external_env_num          %d\n", &SceneListExtHead::external_env_num, COUNT},
    {"external_cam_num          %d\n", &SceneListExtHead::external_cam_num, COUNT},
    {"external_light_num        %d\n", &SceneListExtHead::external_light_num, COUNT},
});
template <>
inline constexpr auto WORDS<CamExt> = words<CamExt>({
    external("external lookat obj", &CamExt::external_lookat_obj),
    external("external eye obj", &CamExt::external_eye_obj),
    external("external up obj", &CamExt::external_up_obj),
});

/// Flags and counts stand in columns of their own.
template <>
inline constexpr auto WORDS<ObjExtHead> = words<ObjExtHead>({
    {"obj_render_cycle_type_for_fog %0#10x\n", &ObjExtHead::obj_render_cycle_type_for_fog},
    {"obj_render_pri_for_fog        %0#10x\n", &ObjExtHead::obj_render_pri_for_fog},
    {"obj_render_type0_for_fog      %0#10x\n", &ObjExtHead::obj_render_type0_for_fog},
    {"obj_render_type1_for_fog      %0#10x\n", &ObjExtHead::obj_render_type1_for_fog},
    {"obj_chain_root_link_num     %d\n", &ObjExtHead::obj_chain_root_link_num, COUNT},
    {"external_lod_obj_num        %d\n", &ObjExtHead::external_lod_obj_num, COUNT},
    {"external_obj_num            %d\n", &ObjExtHead::external_obj_num, COUNT},
});

template <>
inline constexpr auto WORDS<ShapeExt> = words<ShapeExt>({
    {"kind_of_node_for_geometry  %0#10x\n", &ShapeExt::kind_of_node_for_geometry},
    external("external mat", &ShapeExt::external_mat),
});

// --- Content --------------------------------------------------------------------------------------------------------

template <class Io> constexpr int content(Io &io, const SceneListExtHead &) {
  using Ext = SceneListExt;
  return io.array(line<"chain root link[%d]  %d\n">, &Ext::chain_root_link, &Ext::scene_chain_root_link_num,
                  To::chain_root) &&
         io.pairs(label<"external obj">, &Ext::external_obj, &Ext::external_obj_num, To::external_name) &&
         io.pairs(label<"external env">, &Ext::external_env, &Ext::external_env_num, To::external_name) &&
         io.pairs(label<"external cam">, &Ext::external_cam, &Ext::external_cam_num, To::external_name) &&
         io.pairs(label<"external light">, &Ext::external_light, &Ext::external_light_num, To::external_name);
}

/// The one list whose header size says where what follows begins.
template <class Io> constexpr int content(Io &io, const SceneHead &) {
  return io.header(&SceneHead::scene_header_size) &&
         io.array(line<"obj link[%d]    %d\n">, &Scene::obj_link, &Scene::scene_obj_link_num, To::obj) &&
         io.array(line<"env link[%d]    %d\n">, &Scene::env_link, &Scene::scene_env_link_num, To::env) &&
         io.array(line<"cam link[%d]    %d\n">, &Scene::cam_link, &Scene::scene_cam_link_num, To::cam) &&
         io.array(line<"light link[%d]    %d\n">, &Scene::light_link, &Scene::scene_light_link_num, To::light) &&
         io.blocks(maker<SceneListExtHead>, &Scene::ext);
}

template <class Io> constexpr int content(Io &io, const EnvHead &) { return io.blocks(); }

template <class Io> constexpr int content(Io &, const CamExt &) { return 1; }
template <class Io> constexpr int content(Io &io, const CamHead &) { return io.blocks(maker<CamExt>, &Cam::ext); }

/// The one element whose header size says where what follows begins. Of the two forms that store directional lights,
/// type 0 has the first nine words only; other types store none, whatever the count says.
template <class Io> constexpr int content(Io &io, const LightHead &light) {
  constexpr auto &DIRECTIONS =
      items<DirLight, "dir_light", "DirLight(%d)\n", 0, DIRECTION_LIGHT_WORDS, DIRECTION_LIGHT_BYTES>;
  constexpr auto &POSITIONS = items<DirLight, "dir_light", "DirLight(%d)\n">;
  if (!io.header(&LightHead::light_header_size))
    return 0;
  const int ok = light.light_type == 0 ? io.run(DIRECTIONS, &Light::dir_light, &Light::dir_light_num)
                 : light.light_type == 1
                     ? io.run(POSITIONS, &Light::dir_light, &Light::dir_light_num)
                     : io.absent(line<"", "dir_light">, &Light::zeroed_dir_light_num, &Light::dir_light_num);
  return ok && io.blocks();
}

template <class Io> constexpr int content(Io &io, const ObjExtHead &) {
  using Ext = ObjExt;
  return io.array(line<"obj_chain_root_link[%d] %d\n">, &Ext::obj_chain_root_link, &Ext::obj_chain_root_link_num,
                  To::chain_root) &&
         io.array(line<"external_lod_obj_dist[%d]  %#g\n">, &Ext::external_lod_obj_dist, &Ext::external_lod_obj_num) &&
         io.pairs(label<"external lod obj">, &Ext::external_lod_obj, &Ext::external_lod_obj_num, To::external_name) &&
         io.pairs(label<"external obj">, &Ext::external_obj, &Ext::external_obj_num, To::external_name);
}

template <class Io> constexpr int content(Io &io, const ObjHead &) {
  return io.array(line<"LOD_dist[%d]   %#g\n">, &Obj::LOD_dist, &Obj::obj_lod_num) &&
         io.array(line<"LOD_link[%d]   %d\n">, &Obj::LOD_link, &Obj::obj_lod_num, To::obj) &&
         io.array(line<"child link    %0#10x\n">, &Obj::child_link, &Obj::obj_child_num, To::obj) &&
         io.blocks(maker<ObjExtHead>, &Obj::ext);
}

template <class Io> constexpr int content(Io &, const ShapeExt &) { return 1; }
template <class Io> constexpr int content(Io &io, const ShapeHead &) {
  return io.array(line<"shape_part_link[%d]   %d\n">, &Shape::shape_part_link, &Shape::shape_part_num, To::part) &&
         io.blocks(maker<ShapeExt>, &Shape::ext);
}

/// The scene is a list without size table and elements: a single record.
template <> struct ListFormat<Scene> {
  using Head = SceneHead;
  static constexpr auto &words = WORDS<SceneHead>;

  template <class Io> static constexpr int content(Io &io, const SceneHead &scene) { return kova::content(io, scene); }
};

template <>
struct ListFormat<EnvList> : CommonList<Env, ENV_LIST_WORDS, "env_num_byte[%d]   %d\n",
                                        items<EnvHead, "element", "Env(%d)\n", ENV_LIST_TAG + ELEMENT_KIND>> {};

template <>
struct ListFormat<CamList> : CommonList<Cam, CAM_LIST_WORDS, "cam_num_byte[%d]  %d \n",
                                        items<CamHead, "element", "Cam(%d)\n", CAM_LIST_TAG + ELEMENT_KIND>> {};

template <>
struct ListFormat<LightList> : CommonList<Light, LIGHT_LIST_WORDS, "light_num_byte[%d]  %d \n",
                                          items<LightHead, "element", "Light(%d)\n", LIGHT_LIST_TAG + ELEMENT_KIND>> {};

template <>
struct ListFormat<ObjList> : CommonList<Obj, OBJ_LIST_WORDS, "obj_num_byte[%d]    %d\n",
                                        items<ObjHead, "element", "Obj(%d)\n", OBJ_LIST_TAG + ELEMENT_KIND>> {};

template <>
struct ListFormat<ShapeList> : CommonList<Shape, SHAPE_LIST_WORDS, "shape_num_byte[%d]  %d\n",
                                          items<ShapeHead, "element", "Shape(%d)\n", SHAPE_LIST_TAG + ELEMENT_KIND>> {};

} // namespace kova
