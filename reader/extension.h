/// The decoded maker blocks of a 2.0 file: what eight kinds of version-1 record carry beyond version 1.0.
///
/// Each record here is the fixed words of the block, then its arrays in the order in which they follow. A block that is
/// shorter than its counts call for is decoded as far as it goes: words past its end are 0, arrays hold the entries
/// that lie whole inside it, counts keep the value that the file gives.
#pragma once

#include "reader/words.h"

namespace kova {

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

/// A colour keyframe.
struct PrimColorAnim {
  Word interpolation_type;
  Index key;
  Rgba prim_color_anim;
};
static_assert(sizeof(PrimColorAnim) == 24);

struct MatExtHead {
  Rgba ambient;
  Rgba emission;
  Rgba diffuse;
  Word mat_type_for_fog;
  Word mat_color_type0_for_fog;
  Word mat_color_type1_for_fog;
  Word mat_alpha_type0_for_fog;
  Word mat_alpha_type1_for_fog;
  Rgba prim_for_fog;
  External external_local_light;
  Word external_tex_num;
  Word prim_color_anim_num;
  Word prim_color_anim_num_for_fog;
};
static_assert(sizeof(MatExtHead) == 104);

struct MatExt : MatExtHead {
  std::vector<External> external_tex;
  std::vector<PrimColorAnim> prim_color_anim;
  std::vector<PrimColorAnim> prim_color_anim_for_fog;
};

struct TexExtHead {
  Word tex_filter;
  Word use_perspective_correction;
  Index mipmap_level;
  Word use_color_palette; ///< 0: no palette
  Word external_tex_img_num;
};
static_assert(sizeof(TexExtHead) == 20);

/// The first two arrays have `kvCiTileNum` entries, the other two `external_tex_img_num`.
struct TexExt : TexExtHead {
  Indices color_palette_index;
  Indices tlut_palette_number;
  std::vector<External> external_tex_img;
  std::vector<External> external_palette;
};

struct TeximgExtHead {
  Word mipmap_max_level;
};
static_assert(sizeof(TeximgExtHead) == 4);

struct TeximgExt : TeximgExtHead {
  Indices mipmap_img_offset;
};

struct RotateAxis {
  Word interpolation_type;
  Index key;
  Xyz axis;
  float rotation_angle;
  Xyz differential_axis;
  float differential_rotation_angle;
};
static_assert(sizeof(RotateAxis) == 40);

/// A rotation about x, y or z.
struct RotateE {
  Word interpolation_type;
  Index key;
  float rotation_angle;
  float differential_rotation_angle;
};
static_assert(sizeof(RotateE) == 16);

struct OrientationXY {
  Word interpolation_type;
  Index key;
  Xyz x_axis;
  Xyz y_axis;
  Xyz differential_x_axis;
  Xyz differential_y_axis;
};
static_assert(sizeof(OrientationXY) == 56);

struct Translation {
  Word interpolation_type;
  Index key;
  Xyz translate;
  Xyz differential_translate;
};
static_assert(sizeof(Translation) == 32);

/// A unique or a classic scale.
struct Scale {
  Word interpolation_type;
  Index key;
  Xyz scale;
  Xyz differential_scale;
};
static_assert(sizeof(Scale) == 32);

struct AnimGroupExtHead {
  Word use_animation_channel;
  Word rotate_axis_num;
  Word rotate_x_num;
  Word rotate_y_num;
  Word rotate_z_num;
  Word orientation_xy_num;
  Word translation_num;
  Word unique_scale_num;
  Word classic_scale_num;
  NodeIndex orientation_constraint;
  NodeIndex direction_constraint;
  NodeIndex upvector_constraint;
  NodeIndex preferred_axis_constraint;
  NodeIndex position_constraint;
  NodeIndex unique_scale_constraint;
  NodeIndex classic_scale_constraint;
  External external_orientation_constraint;
  External external_direction_constraint;
  External external_upvector_constraint;
  External external_preferred_axis_constraint;
  External external_position_constraint;
  External external_unique_scale_constraint;
  External external_classic_scale_constraint;
};
static_assert(sizeof(AnimGroupExtHead) == 148);

struct AnimGroupExt : AnimGroupExtHead {
  std::vector<RotateAxis> rotate_axis;
  std::vector<RotateE> rotate_x;
  std::vector<RotateE> rotate_y;
  std::vector<RotateE> rotate_z;
  std::vector<OrientationXY> orientation_xy;
  std::vector<Translation> translation;
  std::vector<Scale> unique_scale;
  std::vector<Scale> classic_scale;
};

/// Read `count` keyframes from inside a maker block and move past them; those that lie inside the block are held, and
/// an array that is cut leaves nothing for what follows. @return 0 only where memory cannot be had.
KOVA_API int kvSetupRotateE(Cursor &cursor, std::vector<RotateE> &destination, Word count);
KOVA_API int kvSetupScale(Cursor &cursor, std::vector<Scale> &destination, Word count);

/// @return the bytes that the block's counts call for: its fixed words and its eight keyframe arrays (wraps at 32
/// bits).
KOVA_API Word kvSizeofAnimGroupExt(const AnimGroupExtHead &ext);

} // namespace kova
