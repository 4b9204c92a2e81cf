/// The scene, environments, cameras, lights, objects and shapes.
#pragma once

#include "kova/list.h"

namespace kova {

inline constexpr Word SCENE_LIST_TAG = 0x00010000;
inline constexpr Word OBJ_LIST_TAG = 0x00020000;
inline constexpr Word SHAPE_LIST_TAG = 0x00030000;
inline constexpr Word CAM_LIST_TAG = 0x000e0000;
inline constexpr Word LIGHT_LIST_TAG = 0x000f0000;
inline constexpr Word ENV_LIST_TAG = 0x00100000;

// The decoded maker blocks of a 2.0 file: what records carry beyond version 1.0. Each is the fixed words of the block,
// then its arrays in the order in which they follow. A block that is shorter than its counts call for is decoded as far
// as it goes: words past its end are 0, arrays hold the entries that lie whole inside it, counts keep the value that
// the file gives.

struct SceneListExtHead {
  Word scene_chain_root_link_num;
  Word external_obj_num;
  Word external_env_num;
  Word external_cam_num;
  Word external_light_num;
};
static_assert(sizeof(SceneListExtHead) == 20);

struct SceneListExt : SceneListExtHead {
  Indices chain_root_link;
  std::vector<External> external_obj;
  std::vector<External> external_env;
  std::vector<External> external_cam;
  std::vector<External> external_light;
};

struct CamExt {
  External external_lookat_obj;
  External external_eye_obj;
  External external_up_obj;
};
static_assert(sizeof(CamExt) == 24);

struct ObjExtHead {
  Word obj_render_cycle_type_for_fog;
  Word obj_render_pri_for_fog;
  Word obj_render_type0_for_fog;
  Word obj_render_type1_for_fog;
  Word obj_chain_root_link_num;
  Word external_lod_obj_num; ///< governs the distances and the references
  Word external_obj_num;
};
static_assert(sizeof(ObjExtHead) == 28);

struct ObjExt : ObjExtHead {
  Indices obj_chain_root_link;
  Floats external_lod_obj_dist;
  std::vector<External> external_lod_obj;
  std::vector<External> external_obj;
};

struct ShapeExt {
  Word kind_of_node_for_geometry;
  External external_mat;
};
static_assert(sizeof(ShapeExt) == 12);

struct SceneHead {
  Word scene_header_tag;
  Word scene_header_size; ///< bytes from the start of the list to the first link: here the format means it
  Word scene_size;
  Word scene_cfg;
  Index scene_name_index;
  Word scene_obj_link_num;
  Word scene_env_link_num;
  Word scene_cam_link_num;
  Word scene_light_link_num;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(SceneHead) == 44);

/// The SceneList is one record, without list header or size table.
struct Scene : SceneHead {
  Indices obj_link;
  Indices env_link;
  Indices cam_link;
  Indices light_link;
  ExtBlk ext_blk;
  std::unique_ptr<SceneListExt> ext;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

struct EnvHead {
  Word env_tag;
  Index this_env_index;
  Word env_size;
  Index env_name_index;
  Word fog;
  Word fog_color;
  Index fog_near;
  Index fog_far;
  Word fill_color;
  Word fill_depth;
  Index bg_sprite_img; ///< an image; the format does not say of which list
  Index bg_sprite_depth;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(EnvHead) == 56);

struct Env : EnvHead {
  ExtBlk ext_blk;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

struct CamHead {
  Word cam_tag;
  Index this_cam_index;
  Word cam_size;
  Index came_name_index; ///< the format spells it so
  Word cam_type;
  float cam_near_clip;
  float cam_far_clip;
  float cam_right_clip;
  float cam_left_clip;
  float cam_top_clip;
  float cam_bottom_clip;
  float cam_fovy;
  float cam_aspect;
  float cam_scale;
  Index cam_lookat_obj;
  Index cam_eye_obj;
  Index cam_up_obj;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(CamHead) == 76);

struct Cam : CamHead {
  ExtBlk ext_blk;
  std::unique_ptr<CamExt> ext;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

/// A directional light. Type 0 stores the first nine words, and its pos_x, pos_y, pos_z are the direction dir_x,
/// dir_y, dir_z; type 1 stores all eleven.
struct DirLight {
  Word dir_light_tag;
  Index this_dir_light_index;
  Word dir_light_size;
  float dir_color_r;
  float dir_color_g;
  float dir_color_b;
  float pos_x;
  float pos_y;
  float pos_z;
  float dir_a1;
  float dir_a2;
};
static_assert(sizeof(DirLight) == 44);
inline constexpr std::size_t DIRECTION_LIGHT_BYTES = 36; ///< as stored by a light of type 0

struct LightHead {
  Word light_tag;
  Index this_light_index;
  Word light_header_size; ///< bytes from the start of the light to its directional lights, signed: the format means it
  Word light_size;
  Index light_name_index;
  Word light_type; ///< 0 and 1 store directional lights, other types none
  float ambient_r;
  float ambient_g;
  float ambient_b;
  Word dir_light_num;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(LightHead) == 48);

struct Light : LightHead {
  std::vector<DirLight> dir_light;
  ExtBlk ext_blk;
  /// Directional lights that `dir_light_num` promises and the type does not store: records of zeros, so only their
  /// number is kept. A light has these or `dir_light`, never both.
  Word zeroed_dir_light_num;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

struct ObjHead {
  Word obj_tag;
  Index this_obj_index;
  Word obj_size;
  Index obj_name_index;
  Word obj_state;
  Word obj_type;
  Index obj_group;
  Word obj_pri;
  Word obj_render_cycle_type;
  Word obj_render_pri;
  Word obj_render_type0;
  Word obj_render_type1;
  Word have_link_billboard;
  Word obj_lod_num; ///< of `LOD_dist` and of `LOD_link`
  Word obj_child_num;
  Word obj_parent_link;
  Word obj_shape_link;
  Word obj_mat_link;
  Word obj_anim_link;
  Word obj_coll_link;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(ObjHead) == 88);

struct Obj : ObjHead {
  Floats LOD_dist;
  Indices LOD_link;
  Words child_link;
  ExtBlk ext_blk;
  std::unique_ptr<ObjExt> ext;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

struct ShapeHead {
  Word shape_tag;
  Index this_shape_index;
  Word shape_size;
  Index shape_name_index;
  Word shape_type;
  Index shape_tri_link; ///< to the triangle group, whose `tri_num` counts the triangles of the shape
  Index shape_mat_link;
  Word shape_part_num; ///< of `shape_part_link`: parts, not triangles
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(ShapeHead) == 40);

struct Shape : ShapeHead {
  Indices shape_part_link;
  ExtBlk ext_blk;
  std::unique_ptr<ShapeExt> ext;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

using EnvList = List<Env>;
using CamList = List<Cam>;
using LightList = List<Light>;
using ObjList = List<Obj>;
using ShapeList = List<Shape>;

/// @return the bytes of maker block that the counts call for: its fixed words and its arrays (wraps at 32 bits). A
/// camera's and a shape's maker block have no arrays.
KOVA_API Word kvSizeofSceneListExt(const SceneListExtHead &ext);
KOVA_API Word kvSizeofObjExt(const ObjExtHead &ext);

} // namespace kova
