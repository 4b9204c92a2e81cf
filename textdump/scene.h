/// The line tables and the writers of the scene, environments, cameras, lights, objects and shapes.
///
/// Trailing blanks, tabs and odd names in the tables are the format's own.
#pragma once

#include "textdump/lines.h"

namespace kova {

// --- Line tables ----------------------------------------------------------------------------------------------------

inline constexpr auto SCENE_LINES = lines<SceneHead>({
    {"scene_header_tag      %0#10x\n", &SceneHead::scene_header_tag},
    {"scene_header_size     %d\n", &SceneHead::scene_header_size},
    {"scene_size            %d\n", &SceneHead::scene_size},
    {"scene_cfg\t     %0#10x\n", &SceneHead::scene_cfg},
    {"scene_name_index      %d\n", &SceneHead::scene_name_index},
    {"scene_obj_link_num    %d\n", &SceneHead::scene_obj_link_num},
    {"scene_env_link_num    %d\n", &SceneHead::scene_env_link_num},
    {"scene_cam_link_num    %d\n", &SceneHead::scene_cam_link_num},
    {"scene_light_link_num  %d\n", &SceneHead::scene_light_link_num},
    {"van_ext_blk_size      %d\n", &SceneHead::van_ext_blk_size},
    {"usr_ext_blk_size      %d\n", &SceneHead::usr_ext_blk_size},
});

inline constexpr auto ENV_LIST_LINES = lines<ListHead>({
    {"env_list_tag          %0#10x\n", &ListHead::list_tag},
    {"env_list_header_size  %d\n", &ListHead::list_header_size},
    {"env_list_size         %d\n", &ListHead::list_size},
    {"env_num               %d\n", &ListHead::num},
    {"van_ext_blk_size      %d\n", &ListHead::van_ext_blk_size},
    {"usr_ext_blk_size      %d\n", &ListHead::usr_ext_blk_size},
});
inline constexpr auto ENV_LINES = lines<EnvHead>({
    {"env_tag          %0#10x\n", &EnvHead::env_tag},
    {"this_env_index   %d\n", &EnvHead::this_env_index},
    {"env_size         %d\n", &EnvHead::env_size},
    {"env_name_index   %d\n", &EnvHead::env_name_index},
    {"fog              %0#10x\n", &EnvHead::fog},
    {"fog_color        %0#10x\n", &EnvHead::fog_color},
    {"fog_near         %d\n", &EnvHead::fog_near},
    {"fog_far          %d\n", &EnvHead::fog_far},
    {"fill_color       %0#10x\n", &EnvHead::fill_color},
    {"fill_depth       %0#10x\n", &EnvHead::fill_depth},
    {"bg_sprite_img    %d\n", &EnvHead::bg_sprite_img},
    {"bg_sprite_depth  %d\n", &EnvHead::bg_sprite_depth},
    {"van_ext_blk_size  %d\n", &EnvHead::van_ext_blk_size},
    {"usr_ext_blk_size  %d\n", &EnvHead::usr_ext_blk_size},
});

inline constexpr auto CAM_LIST_LINES = lines<ListHead>({
    {"cam_list_tag           %0#10x\n", &ListHead::list_tag},
    {"cam_list_header_size   %d \n", &ListHead::list_header_size},
    {"cam_list_size          %d \n", &ListHead::list_size},
    {"cam_num                %d\n", &ListHead::num},
    {"van_ext_blk_size       %d\n", &ListHead::van_ext_blk_size},
    {"usr_ext_blk_size       %d\n", &ListHead::usr_ext_blk_size},
});
inline constexpr auto CAM_LINES = lines<CamHead>({
    {"cam_tag           %0#10x\n", &CamHead::cam_tag},      {"this_cam_index    %d\n", &CamHead::this_cam_index},
    {"cam_size          %d\n", &CamHead::cam_size},         {"came_name_index   %d\n", &CamHead::came_name_index},
    {"cam_type          %0#10x\n", &CamHead::cam_type},     {"cam_near_clip     %#g\n", &CamHead::cam_near_clip},
    {"cam_far_clip      %#g\n", &CamHead::cam_far_clip},    {"cam_right_clip    %#g\n", &CamHead::cam_right_clip},
    {"cam_left_clip     %#g\n", &CamHead::cam_left_clip},   {"cam_top_clip      %#g\n", &CamHead::cam_top_clip},
    {"cam_bottom_clip   %#g\n", &CamHead::cam_bottom_clip}, {"cam_fovy          %#g\n", &CamHead::cam_fovy},
    {"cam_aspect        %#g\n", &CamHead::cam_aspect},      {"cam_scale         %#g\n", &CamHead::cam_scale},
    {"cam_lookat_obj    %d\n", &CamHead::cam_lookat_obj},   {"cam_eye_obj       %d\n", &CamHead::cam_eye_obj},
    {"cam_up_obj        %d\n", &CamHead::cam_up_obj},       {"van_ext_blk_size  %d\n", &CamHead::van_ext_blk_size},
    {"usr_ext_blk_size  %d\n", &CamHead::usr_ext_blk_size},
});

inline constexpr auto LIGHT_LIST_LINES = lines<ListHead>({
    {"light_list_tag          %0#10x\n", &ListHead::list_tag},
    {"light_list_header_size  %d\n", &ListHead::list_header_size},
    {"light_list_size         %d \n", &ListHead::list_size},
    {"light_num\t       %d\n", &ListHead::num},
    {"van_ext_blk_size        %d\n", &ListHead::van_ext_blk_size},
    {"usr_ext_blk_size        %d\n", &ListHead::usr_ext_blk_size},
});
inline constexpr auto LIGHT_LINES = lines<LightHead>({
    {"light_tag          %0#10x\n", &LightHead::light_tag},
    {"this_light_index   %d\n", &LightHead::this_light_index},
    {"light_header_size  %d\n", &LightHead::light_header_size},
    {"light_size         %d\n", &LightHead::light_size},
    {"light_name_index   %d\n", &LightHead::light_name_index},
    {"light_type         %0#10x\n", &LightHead::light_type},
    {"ambient_r          %#g\n", &LightHead::ambient_r},
    {"ambient_g          %#g\n", &LightHead::ambient_g},
    {"ambient_b          %#g\n", &LightHead::ambient_b},
    {"dir_light_num      %d\n", &LightHead::dir_light_num},
    {"van_ext_blk_size   %d\n", &LightHead::van_ext_blk_size},
    {"usr_ext_blk_size   %d\n", &LightHead::usr_ext_blk_size},
});

/// A directional light in a light of type 1.
inline constexpr auto DIR_LIGHT_LINES = lines<DirLight>({
    {"dir_light_tag         %0#10x\n", &DirLight::dir_light_tag},
    {"this_dir_light_index  %d\n", &DirLight::this_dir_light_index},
    {"dir_light_size        %d\n", &DirLight::dir_light_size},
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
inline constexpr auto DIRECTION_LIGHT_LINES = lines<DirLight>({
    {"dir_light_tag         %0#10x\n", &DirLight::dir_light_tag},
    {"this_dir_light_index  %d\n", &DirLight::this_dir_light_index},
    {"dir_light_size        %d\n", &DirLight::dir_light_size},
    {"dir_color_r           %#g\n", &DirLight::dir_color_r},
    {"dir_color_g           %#g\n", &DirLight::dir_color_g},
    {"dir_color_b           %#g\n", &DirLight::dir_color_b},
    {"dir_x                 %#g\n", &DirLight::pos_x},
    {"dir_y                 %#g\n", &DirLight::pos_y},
    {"dir_z                 %#g\n", &DirLight::pos_z},
    unprinted(&DirLight::dir_a1),
    unprinted(&DirLight::dir_a2),
});

inline constexpr auto OBJ_LIST_LINES = lines<ListHead>({
    {"obj_list_tag          %0#10x\n", &ListHead::list_tag},
    {"obj_list_header_size  %d \n", &ListHead::list_header_size},
    {"obj_list_size         %d \n", &ListHead::list_size},
    {"obj_num               %d\n", &ListHead::num},
    {"van_ext_blk_size      %d\n", &ListHead::van_ext_blk_size},
    {"usr_ext_blk_size      %d\n", &ListHead::usr_ext_blk_size},
});
inline constexpr auto OBJ_LINES = lines<ObjHead>({
    {"obj_tag                %0#10x\n", &ObjHead::obj_tag},
    {"this_obj_index         %d\n", &ObjHead::this_obj_index},
    {"obj_size               %d\n", &ObjHead::obj_size},
    {"obj_name_index         %d\n", &ObjHead::obj_name_index},
    {"obj_state              %0#10x\n", &ObjHead::obj_state},
    {"obj_type               %0#10x\n", &ObjHead::obj_type},
    {"obj_group              %d\n", &ObjHead::obj_group},
    {"obj_pri                %0#10x\n", &ObjHead::obj_pri},
    {"obj_render_cycle_type  %0#10x\n", &ObjHead::obj_render_cycle_type},
    {"obj_render_pri         %0#10x\n", &ObjHead::obj_render_pri},
    {"obj_render_type0       %0#10x\n", &ObjHead::obj_render_type0},
    {"obj_render_type1       %0#10x\n", &ObjHead::obj_render_type1},
    {"have_link_billboard    %0#10x\n", &ObjHead::have_link_billboard},
    {"obj_lod_num            %d\n", &ObjHead::obj_lod_num},
    {"obj_child_num          %d\n", &ObjHead::obj_child_num},
    {"obj_parent_link        %0#10x\n", &ObjHead::obj_parent_link},
    {"obj_shape_link         %0#10x\n", &ObjHead::obj_shape_link},
    {"obj_mat_link           %0#10x\n", &ObjHead::obj_mat_link},
    {"obj_anim_link          %0#10x\n", &ObjHead::obj_anim_link},
    {"obj_coll_link          %0#10x\n", &ObjHead::obj_coll_link},
    {"van_ext_blk_size       %d\n", &ObjHead::van_ext_blk_size},
    {"usr_ext_blk_size       %d\n", &ObjHead::usr_ext_blk_size},
});

inline constexpr auto SHAPE_LIST_LINES = lines<ListHead>({
    {"shape_list_tag          %0#10x\n", &ListHead::list_tag},
    {"shape_list_header_size  %d\n", &ListHead::list_header_size},
    {"shape_list_size         %d\n", &ListHead::list_size},
    {"shape_num               %d\n", &ListHead::num},
    {"van_ext_blk_size        %d\n", &ListHead::van_ext_blk_size},
    {"usr_ext_blk_size        %d\n", &ListHead::usr_ext_blk_size},
});
inline constexpr auto SHAPE_LINES = lines<ShapeHead>({
    {"shape_tag           %0#10x\n", &ShapeHead::shape_tag},
    {"this_shape_index    %d\n", &ShapeHead::this_shape_index},
    {"shape_size          %d\n", &ShapeHead::shape_size},
    {"shape_name_index    %d\n", &ShapeHead::shape_name_index},
    {"shape_type          %0#10x\n", &ShapeHead::shape_type},
    {"shape_tri_link      %d\n", &ShapeHead::shape_tri_link},
    {"shape_mat_link      %d\n", &ShapeHead::shape_mat_link},
    {"shape_part_num      %d\n", &ShapeHead::shape_part_num},
    {"van_ext_blk_size    %d\n", &ShapeHead::van_ext_blk_size},
    {"usr_ext_blk_size    %d\n", &ShapeHead::usr_ext_blk_size},
});

// The decoded maker blocks of a 2.0 file.

inline constexpr auto SCENE_LIST_EXT_LINES = lines<SceneListExtHead>({
    {"scene_chain_root_link_num %d\n", &SceneListExtHead::scene_chain_root_link_num},
    {"external_obj_num          %d\n", &SceneListExtHead::external_obj_num},
    {"external_env_num          %d\n", &SceneListExtHead::external_env_num},
    {"external_cam_num          %d\n", &SceneListExtHead::external_cam_num},
    {"external_light_num        %d\n", &SceneListExtHead::external_light_num},
});
inline constexpr auto CAM_EXT_LINES = lines<CamExt>({
    externalLines("external lookat obj", &CamExt::external_lookat_obj),
    externalLines("external eye obj", &CamExt::external_eye_obj),
    externalLines("external up obj", &CamExt::external_up_obj),
});

/// Flags and counts stand in columns of their own.
inline constexpr auto OBJ_EXT_LINES = lines<ObjExtHead>({
    {"obj_render_cycle_type_for_fog %0#10x\n", &ObjExtHead::obj_render_cycle_type_for_fog},
    {"obj_render_pri_for_fog        %0#10x\n", &ObjExtHead::obj_render_pri_for_fog},
    {"obj_render_type0_for_fog      %0#10x\n", &ObjExtHead::obj_render_type0_for_fog},
    {"obj_render_type1_for_fog      %0#10x\n", &ObjExtHead::obj_render_type1_for_fog},
    {"obj_chain_root_link_num     %d\n", &ObjExtHead::obj_chain_root_link_num},
    {"external_lod_obj_num        %d\n", &ObjExtHead::external_lod_obj_num},
    {"external_obj_num            %d\n", &ObjExtHead::external_obj_num},
});

inline constexpr auto SHAPE_EXT_LINES = lines<ShapeExt>({
    {"kind_of_node_for_geometry  %0#10x\n", &ShapeExt::kind_of_node_for_geometry},
    externalLines("external mat", &ShapeExt::external_mat),
});

// --- Writers --------------------------------------------------------------------------------------------------------

/// Opener, header lines and size table; of the scene, opener, fields and links.
void kvWriteKtSceneListFix1(Text &text, const Scene &scene);
void kvWriteKtEnvListFix1(Text &text, const EnvList &list);
void kvWriteKtCamListFix1(Text &text, const CamList &list);
void kvWriteKtLightListFix1(Text &text, const LightList &list);
void kvWriteKtObjListFix1(Text &text, const ObjList &list);
void kvWriteKtShapeListFix1(Text &text, const ShapeList &list);

/// Heading, fields, arrays and sub-records of one element, without its blocks.
void kvWriteKtEnvFix1(Text &text, const Env &env, Index number);
void kvWriteKtCamFix1(Text &text, const Cam &cam, Index number);
void kvWriteKtLightFix1(Text &text, const Light &light, Index number);
void kvWriteKtObjFix1(Text &text, const Obj &obj, Index number);
void kvWriteKtShapeFix1(Text &text, const Shape &shape, Index number);

} // namespace kova
