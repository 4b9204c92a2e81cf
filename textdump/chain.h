/// The line tables of the chain roots, the joints and the effectors.
#pragma once

#include "textdump/lines.h"

namespace kova {

// --- Line tables ----------------------------------------------------------------------------------------------------

inline constexpr auto CHAIN_ROOT_LIST_LINES = version2ListLines("chain_root_num     %d\n");
inline constexpr auto CHAIN_ROOT_LINES = lines<ChainRootHead>({
    ELEMENT_TOP_LINES,
    {"chain_root_type   %0#10x\n", &ChainRootHead::chain_root_type},
    {"obj_num           %d\n", &ChainRootHead::obj_num},
    {"external_obj_num  %d\n", &ChainRootHead::external_obj_num},
    {"anim_index        %d\n", &ChainRootHead::anim_index},
    {"joint_index       %d\n", &ChainRootHead::joint_index},
    {"van_ext_blk_size  %d\n", &ChainRootHead::van_ext_blk_size},
    {"usr_ext_blk_size  %d\n", &ChainRootHead::usr_ext_blk_size},
});

inline constexpr auto JOINT_LIST_LINES = version2ListLines("joint_num          %d\n");
inline constexpr auto JOINT_LINES = lines<JointHead>({
    ELEMENT_TOP_LINES,
    {"joint_type        %0#10x\n", &JointHead::joint_type},
    {"joint_length      %#g\n", &JointHead::joint_length},
    xyzLine("resplain_axis", &JointHead::resplain_axis),
    {"obj_num           %d\n", &JointHead::obj_num},
    {"external_obj_num  %d\n", &JointHead::external_obj_num},
    {"joint_index       %d\n", &JointHead::joint_index},
    {"effector_index    %d\n", &JointHead::effector_index},
    {"anim_index        %d\n", &JointHead::anim_index},
    {"van_ext_blk_size  %d\n", &JointHead::van_ext_blk_size},
    {"usr_ext_blk_size  %d\n", &JointHead::usr_ext_blk_size},
});

inline constexpr auto EFFECTOR_LIST_LINES = version2ListLines("effector_num       %d\n");
inline constexpr auto EFFECTOR_LINES = lines<EffectorHead>({
    ELEMENT_TOP_LINES,
    {"effector_type     %0#10x\n", &EffectorHead::effector_type},
    {"obj_num           %d\n", &EffectorHead::obj_num},
    {"external_obj_num  %d\n", &EffectorHead::external_obj_num},
    {"anim_index        %d\n", &EffectorHead::anim_index},
    {"van_ext_blk_size  %d\n", &EffectorHead::van_ext_blk_size},
    {"usr_ext_blk_size  %d\n", &EffectorHead::usr_ext_blk_size},
});

} // namespace kova
