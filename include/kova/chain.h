/// Chain roots, joints, effectors and external names (version 2.0).
#pragma once

#include "kova/behavior.h"

namespace kova {

inline constexpr Word CHAIN_ROOT_LIST_TAG = 0x00240000;
inline constexpr Word JOINT_LIST_TAG = 0x00250000;
inline constexpr Word EFFECTOR_LIST_TAG = 0x00260000;

/// What the three kinds of node of a chain end with: the objects that they move.
struct ChainObjs {
  Indices obj_index;
  std::vector<External> external_obj;
  ExtBlk ext_blk;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

struct ChainRootHead : ElementHead {
  Word chain_root_type;
  Word obj_num;
  Word external_obj_num;
  Index anim_index;
  Index joint_index;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(ChainRootHead) == 44);

struct ChainRoot : ChainRootHead, ChainObjs {};

struct JointHead : ElementHead {
  Word joint_type;
  float joint_length;
  Xyz resplain_axis;
  Word obj_num;
  Word external_obj_num;
  Index joint_index;
  Index effector_index;
  Index anim_index;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(JointHead) == 64);

struct Joint : JointHead, ChainObjs {};

struct EffectorHead : ElementHead {
  Word effector_type;
  Word obj_num;
  Word external_obj_num;
  Index anim_index;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(EffectorHead) == 40);

struct Effector : EffectorHead, ChainObjs {};

using ChainRootList = List<ChainRoot>;
using JointList = List<Joint>;
using EffectorList = List<Effector>;
using ExternalNameList = NameList; ///< the layout of the NameList under tags of its own

} // namespace kova
