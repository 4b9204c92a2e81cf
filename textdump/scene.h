/// The dump sections of the scene, environments, cameras, lights, objects and shapes.
///
/// Trailing blanks, tabs and odd names in the tables are the format's own.
#pragma once

#include "kova/scene.h"
#include "textdump/text.h"

#include <array>

namespace kova {

// One line to a word.

inline constexpr auto SCENE_LINES = lines<SceneHead>({
    "scene_header_tag      %0#10x\n",
    "scene_header_size     %d\n",
    "scene_size            %d\n",
    "scene_cfg\t     %0#10x\n",
    "scene_name_index      %d\n",
    "scene_obj_link_num    %d\n",
    "scene_env_link_num    %d\n",
    "scene_cam_link_num    %d\n",
    "scene_light_link_num  %d\n",
    "van_ext_blk_size      %d\n",
    "usr_ext_blk_size      %d\n",
});

inline constexpr auto ENV_LIST_LINES = lines<ListHead>({
    "env_list_tag          %0#10x\n",
    "env_list_header_size  %d\n",
    "env_list_size         %d\n",
    "env_num               %d\n",
    "van_ext_blk_size      %d\n",
    "usr_ext_blk_size      %d\n",
});
inline constexpr auto ENV_LINES = lines<EnvHead>({
    "env_tag          %0#10x\n",
    "this_env_index   %d\n",
    "env_size         %d\n",
    "env_name_index   %d\n",
    "fog              %0#10x\n",
    "fog_color        %0#10x\n",
    "fog_near         %d\n",
    "fog_far          %d\n",
    "fill_color       %0#10x\n",
    "fill_depth       %0#10x\n",
    "bg_sprite_img    %d\n",
    "bg_sprite_depth  %d\n",
    "van_ext_blk_size  %d\n",
    "usr_ext_blk_size  %d\n",
});

inline constexpr auto CAM_LIST_LINES = lines<ListHead>({
    "cam_list_tag           %0#10x\n",
    "cam_list_header_size   %d \n",
    "cam_list_size          %d \n",
    "cam_num                %d\n",
    "van_ext_blk_size       %d\n",
    "usr_ext_blk_size       %d\n",
});
inline constexpr auto CAM_LINES = lines<CamHead>({
    "cam_tag           %0#10x\n", "this_cam_index    %d\n",  "cam_size          %d\n",  "came_name_index   %d\n",
    "cam_type          %0#10x\n", "cam_near_clip     %#g\n", "cam_far_clip      %#g\n", "cam_right_clip    %#g\n",
    "cam_left_clip     %#g\n",    "cam_top_clip      %#g\n", "cam_bottom_clip   %#g\n", "cam_fovy          %#g\n",
    "cam_aspect        %#g\n",    "cam_scale         %#g\n", "cam_lookat_obj    %d\n",  "cam_eye_obj       %d\n",
    "cam_up_obj        %d\n",     "van_ext_blk_size  %d\n",  "usr_ext_blk_size  %d\n",
});

inline constexpr auto LIGHT_LIST_LINES = lines<ListHead>({
    "light_list_tag          %0#10x\n",
    "light_list_header_size  %d\n",
    "light_list_size         %d \n",
    "light_num\t       %d\n",
    "van_ext_blk_size        %d\n",
    "usr_ext_blk_size        %d\n",
});
inline constexpr auto LIGHT_LINES = lines<LightHead>({
    "light_tag          %0#10x\n",
    "this_light_index   %d\n",
    "light_header_size  %d\n",
    "light_size         %d\n",
    "light_name_index   %d\n",
    "light_type         %0#10x\n",
    "ambient_r          %#g\n",
    "ambient_g          %#g\n",
    "ambient_b          %#g\n",
    "dir_light_num      %d\n",
    "van_ext_blk_size   %d\n",
    "usr_ext_blk_size   %d\n",
});

/// A directional light, in a light of type 1 and (its leading words) of type 0.
inline constexpr auto DIR_LIGHT_LINES = lines<DirLight>({
    "dir_light_tag         %0#10x\n",
    "this_dir_light_index  %d\n",
    "dir_light_size        %d\n",
    "dir_color_r           %#g\n",
    "dir_color_g           %#g\n",
    "dir_color_b           %#g\n",
    "pos_x                 %#g\n",
    "pos_y                 %#g\n",
    "pos_z                 %#g\n",
    "dir_a1                %#g\n",
    "dir_a2                %#g\n",
});
inline constexpr auto DIRECTION_LIGHT_LINES = lines<std::array<Word, DIRECTION_LIGHT_BYTES / sizeof(Word)>>({
    "dir_light_tag         %0#10x\n",
    "this_dir_light_index  %d\n",
    "dir_light_size        %d\n",
    "dir_color_r           %#g\n",
    "dir_color_g           %#g\n",
    "dir_color_b           %#g\n",
    "dir_x                 %#g\n",
    "dir_y                 %#g\n",
    "dir_z                 %#g\n",
});

inline constexpr auto OBJ_LIST_LINES = lines<ListHead>({
    "obj_list_tag          %0#10x\n",
    "obj_list_header_size  %d \n",
    "obj_list_size         %d \n",
    "obj_num               %d\n",
    "van_ext_blk_size      %d\n",
    "usr_ext_blk_size      %d\n",
});
inline constexpr auto OBJ_LINES = lines<ObjHead>({
    "obj_tag                %0#10x\n", "this_obj_index         %d\n",     "obj_size               %d\n",
    "obj_name_index         %d\n",     "obj_state              %0#10x\n", "obj_type               %0#10x\n",
    "obj_group              %d\n",     "obj_pri                %0#10x\n", "obj_render_cycle_type  %0#10x\n",
    "obj_render_pri         %0#10x\n", "obj_render_type0       %0#10x\n", "obj_render_type1       %0#10x\n",
    "have_link_billboard    %0#10x\n", "obj_lod_num            %d\n",     "obj_child_num          %d\n",
    "obj_parent_link        %0#10x\n", "obj_shape_link         %0#10x\n", "obj_mat_link           %0#10x\n",
    "obj_anim_link          %0#10x\n", "obj_coll_link          %0#10x\n", "van_ext_blk_size       %d\n",
    "usr_ext_blk_size       %d\n",
});

inline constexpr auto SHAPE_LIST_LINES = lines<ListHead>({
    "shape_list_tag          %0#10x\n",
    "shape_list_header_size  %d\n",
    "shape_list_size         %d\n",
    "shape_num               %d\n",
    "van_ext_blk_size        %d\n",
    "usr_ext_blk_size        %d\n",
});
inline constexpr auto SHAPE_LINES = lines<ShapeHead>({
    "shape_tag           %0#10x\n",
    "this_shape_index    %d\n",
    "shape_size          %d\n",
    "shape_name_index    %d\n",
    "shape_type          %0#10x\n",
    "shape_tri_link      %d\n",
    "shape_mat_link      %d\n",
    "shape_part_num      %d\n",
    "van_ext_blk_size    %d\n",
    "usr_ext_blk_size    %d\n",
});

/// Whole sections of a 1.0 dump.
void kvWriteKtSceneList1(Text &text, const Scene &scene);
void kvWriteKtEnvList1(Text &text, const EnvList &list);
void kvWriteKtCamList1(Text &text, const CamList &list);
void kvWriteKtLightList1(Text &text, const LightList &list);
void kvWriteKtObjList1(Text &text, const ObjList &list);
void kvWriteKtShapeList1(Text &text, const ShapeList &list);

/// Whole sections of a 2.0 dump: environments and lights have no decoded maker blocks and look as in a 1.0 dump.
void kvWriteKtSceneList(Text &text, const Scene &scene);
void kvWriteKtEnvList(Text &text, const EnvList &list);
void kvWriteKtCamList(Text &text, const CamList &list);
void kvWriteKtLightList(Text &text, const LightList &list);
void kvWriteKtObjList(Text &text, const ObjList &list);
void kvWriteKtShapeList(Text &text, const ShapeList &list);

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
