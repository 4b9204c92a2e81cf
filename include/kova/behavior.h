/// Animation, collision, switches and names.
#pragma once

#include "kova/list.h"

#include <array>
#include <cstring>
#include <type_traits>

namespace kova {

inline constexpr Word ANIM_LIST_TAG = 0x000c0000;
inline constexpr Word COLL_LIST_TAG = 0x000d0000;
inline constexpr Word COLL_TAG = 0x000d1000; ///< of a collision inside a group; not made like the other element tags
inline constexpr Word NAME_LIST_TAG = 0x00110000;
inline constexpr Word SWITCH_LIST_TAG = 0x00130000;
inline constexpr Word EXTERNAL_NAME_LIST_TAG = 0x00270000;

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

/// What every animation record begins with.
struct AnimHead {
  Word anim_tag; ///< not tested
  Index this_anim_index;
  Word anim_size;
};
/// Types 0 and 2.
struct AnimStep : AnimHead {
  Xyz translate;
  Xyz rotate_axis;
  Word rotate_expand_flag;
  Xyz scale;
};
static_assert(sizeof(AnimStep) == 52);
/// Type 3.
struct AnimKeyframe : AnimHead {
  Index key;
  Index next_key;
  Index interpolation;
  Xyz translate;
  Xyz rotate_axis;
  Word rotate_expand_flag;
  Xyz scale;
};
static_assert(sizeof(AnimKeyframe) == 64);
/// Type 4.
struct AnimNode : AnimHead {
  Index lookat;
  Index upper;
};
static_assert(sizeof(AnimNode) == 20);

struct AnimGroupHead {
  Word anim_group_tag;
  Index this_anim_group_index;
  Word anim_group_header_size;
  Word anim_group_size;
  Index anim_name_index;
  Word type; ///< the form of the records
  Index frame_rate;
  Word anim_num;
  Index anim_loop;
  Word rotation_matrix_order;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(AnimGroupHead) == 48);

/// An animation group holds records of the one form that its type says.
struct AnimGroup : AnimGroupHead {
  std::vector<AnimStep> step;         ///< types 0 and 2
  std::vector<AnimKeyframe> keyframe; ///< type 3
  std::vector<AnimNode> node;         ///< type 4
  /// Records that `anim_num` promises and the type does not store: records of zeros, so only their number is kept.
  Word zeroed_anim_num;
  ExtBlk ext_blk;
  std::unique_ptr<AnimGroupExt> ext;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

struct CollHead {
  Word coll_tag;
  Index this_coll_index;
  Word coll_header_size;
  Word coll_size; ///< bytes; what it has beyond `coll_header_size` is the data
  Index coll_name_index;
  Word coll_type; ///< 0x10 terrain, 0x20 point, 0x21 circle, 0x22 sphere, 0x23 cylinder, 0x24 box
};
static_assert(sizeof(CollHead) == 24);

/// The first ten words after a collision's head, whatever its kind: a longer kind does not exist, a shorter one leaves
/// what follows it in the list in the last of them.
using CollData = std::array<Word, 10>;

struct Coll : CollHead {
  CollData data;
  ExtBlk group_ext_blk; ///< the group's blocks as they follow this collision
};

/// What the data of every kind begins with.
struct CollDataHead {
  Word coll_data_tag;
  Index this_coll_data_index;
  Word coll_data_size;
};
struct CollTerrain : CollDataHead {
  Index x_subdivide;
  Index z_subdivide;
  Index shape_list_index;
};
static_assert(sizeof(CollTerrain) == 24);
struct CollPoint : CollDataHead {
  Xyz coll_point;
};
static_assert(sizeof(CollPoint) == 24);
struct CollCircle : CollDataHead {
  Xyz center;
  Xyz normal;
  float radius;
};
static_assert(sizeof(CollCircle) == 40);
struct CollSphere : CollDataHead {
  Xyz center;
  float radius;
};
static_assert(sizeof(CollSphere) == 28);
struct CollCylinder : CollDataHead {
  Xyz center;
  float radius;
  float height;
};
static_assert(sizeof(CollCylinder) == 32);
struct CollBox : CollDataHead {
  Xyz center;
  Xyz length;
};
static_assert(sizeof(CollBox) == 36);

/// @return the data of a collision as the kind that `Data` is: collData<CollBox>(coll).
template <class Data> Data collData(const Coll &coll) {
  static_assert(std::is_base_of_v<CollDataHead, Data> && sizeof(Data) <= sizeof(CollData));
  Data data;
  std::memcpy(&data, coll.data.data(), sizeof data);
  return data;
}

struct CollGroupHead {
  Word coll_group_tag;
  Index this_coll_group_index;
  Word coll_group_header; ///< the header size; the format names it so
  Word coll_group_size;
  Index coll_group_name_index;
  Word coll_num;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(CollGroupHead) == 32);

/// The group's blocks stand once after every collision; the last ones read whole are held.
struct CollGroup : CollGroupHead {
  Words coll_num_byte;
  std::vector<Coll> coll;
  ExtBlk ext_blk;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

struct SwitchHead {
  Word switch_tag;
  Index this_switch_index;
  Word switch_size;
  Word link_list_type;
  Index default_link_index;
  Word case_node_num;
  Index switch_condition;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(SwitchHead) == 36);

struct Switch : SwitchHead {
  Indices case_val;
  Indices case_dest_index;
  ExtBlk ext_blk;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

struct NameHead {
  Word name_tag;
  Index this_name_index;
  Word name_header_size;
  Word name_size; ///< bytes, with the head; see `kvGetNamelen`
};
static_assert(sizeof(NameHead) == 16);

struct Name : NameHead {
  Words text;                       ///< four characters to a word, the first in the highest byte
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

using AnimList = List<AnimGroup>;
using CollList = List<CollGroup>;
using SwitchList = List<Switch>;
using NameList = List<Name>;

/// @return the number of text bytes that a name states: `name_size` less `name_header_size`, negative in a corrupt one.
KOVA_API Index kvGetNamelen(const NameHead &name);

/// @return the text of a name, blanks turned into underscores; empty where the length is negative or memory cannot be
/// had.
KOVA_API std::string kvGetName(const Name &name);

/// @return the bytes of maker block that the counts call for; see `kvSizeofSceneListExt`.
KOVA_API Word kvSizeofAnimGroupExt(const AnimGroupExtHead &ext);

} // namespace kova
