/// The words of the chain roots, the joints and the effectors.
#pragma once

#include "format/list.h"
#include "kova/chain.h"

namespace kova {

inline constexpr auto CHAIN_ROOT_LIST_WORDS = version2ListWords("chain_root_num     %d\n");
template <>
inline constexpr auto WORDS<ChainRootHead> = words<ChainRootHead>({
    WORDS<ElementHead>,
    {"chain_root_type   %0#10x\n", &ChainRootHead::chain_root_type},
    {"obj_num           %d\n", &ChainRootHead::obj_num, COUNT},
    {"external_obj_num  %d\n", &ChainRootHead::external_obj_num, COUNT},
    {"anim_index        %d\n", &ChainRootHead::anim_index, link(To::anim)},
    {"joint_index       %d\n", &ChainRootHead::joint_index, link(To::joint)},
    {"van_ext_blk_size  %d\n", &ChainRootHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size  %d\n", &ChainRootHead::usr_ext_blk_size, USR_SIZE},
});

inline constexpr auto JOINT_LIST_WORDS = version2ListWords("joint_num          %d\n");
template <>
inline constexpr auto WORDS<JointHead> = words<JointHead>({
    WORDS<ElementHead>,
    {"joint_type        %0#10x\n", &JointHead::joint_type},
    {"joint_length      %#g\n", &JointHead::joint_length},
    xyz("resplain_axis", &JointHead::resplain_axis),
    {"obj_num           %d\n", &JointHead::obj_num, COUNT},
    {"external_obj_num  %d\n", &JointHead::external_obj_num, COUNT},
    {"joint_index       %d\n", &JointHead::joint_index, link(To::joint)},
    {"effector_index    %d\n", &JointHead::effector_index, link(To::effector)},
    {"anim_index        %d\n", &JointHead::anim_index, link(To::anim)},
    {"van_ext_blk_size  %d\n", &JointHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size  %d\n", &JointHead::usr_ext_blk_size, USR_SIZE},
});

inline constexpr auto EFFECTOR_LIST_WORDS = version2ListWords("effector_num       %d\n");
template <>
inline constexpr auto WORDS<EffectorHead> = words<EffectorHead>({
    WORDS<ElementHead>,
    {"effector_type     %0#10x\n", &EffectorHead::effector_type},
    {"obj_num           %d\n", &EffectorHead::obj_num, COUNT},
    {"external_obj_num  %d\n", &EffectorHead::external_obj_num, COUNT},
    {"anim_index        %d\n", &EffectorHead::anim_index, link(To::anim)},
    {"van_ext_blk_size  %d\n", &EffectorHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size  %d\n", &EffectorHead::usr_ext_blk_size, USR_SIZE},
});

// --- Content --------------------------------------------------------------------------------------------------------

/// The objects that a chain root, a joint or an effector moves.
template <class Node, class Io> constexpr int chainObjs(Io &io) {
  return io.array(line<"obj_index[%d]  %d\n">, &Node::obj_index, &Node::obj_num, To::obj) &&
         io.pairs(label<"external_obj">, &Node::external_obj, &Node::external_obj_num, To::external_name) &&
         io.blocks();
}
template <class Io> constexpr int content(Io &io, const ChainRootHead &) { return chainObjs<ChainRoot>(io); }
template <class Io> constexpr int content(Io &io, const JointHead &) { return chainObjs<Joint>(io); }
template <class Io> constexpr int content(Io &io, const EffectorHead &) { return chainObjs<Effector>(io); }

template <>
struct ListFormat<ChainRootList>
    : CommonList<ChainRoot, CHAIN_ROOT_LIST_WORDS, "chain_root_num_byte[%d]  %d\n",
                 items<ChainRootHead, "element", "ChainRoot(%d)\n", CHAIN_ROOT_LIST_TAG + ELEMENT_KIND>> {};

template <>
struct ListFormat<JointList> : CommonList<Joint, JOINT_LIST_WORDS, "joint_num_byte[%d]  %d\n",
                                          items<JointHead, "element", "Joint(%d)\n", JOINT_LIST_TAG + ELEMENT_KIND>> {};

template <>
struct ListFormat<EffectorList>
    : CommonList<Effector, EFFECTOR_LIST_WORDS, "effector_num_byte[%d]  %d\n",
                 items<EffectorHead, "element", "Effector(%d)\n", EFFECTOR_LIST_TAG + ELEMENT_KIND>> {};

} // namespace kova
