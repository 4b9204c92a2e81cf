/// The sections of the chain roots, the joints, the effectors and the external names.
#pragma once

#include "textdump/palette.h"

namespace kova {

void kvWriteKtChainRootList(Text &text, const ChainRootList &list);
void kvWriteKtJointList(Text &text, const JointList &list);
void kvWriteKtEffectorList(Text &text, const EffectorList &list);

/// The NameList's section, field names included, under its own opener and closer.
void kvWriteKtExternalNameList(Text &text, const ExternalNameList &list);

// --- Line tables: the words behind an element's heading -------------------------------------------------------------

using ChainRootWords = Run<ChainRootHead, &ChainRootHead::chain_root_type, &ChainRootHead::usr_ext_blk_size>;
inline constexpr auto CHAIN_ROOT_LINES = lines<ChainRootWords>({
    "chain_root_type   %0#10x\n",
    "obj_num           %d\n",
    "external_obj_num  %d\n",
    "anim_index        %d\n",
    "joint_index       %d\n",
    "van_ext_blk_size  %d\n",
    "usr_ext_blk_size  %d\n",
});

using JointForm = Run<JointHead, &JointHead::joint_type, &JointHead::joint_length>;
inline constexpr auto JOINT_LINES = lines<JointForm>({
    "joint_type        %0#10x\n",
    "joint_length      %#g\n",
});

using JointWords = Run<JointHead, &JointHead::obj_num, &JointHead::usr_ext_blk_size>;
inline constexpr auto JOINT_WORD_LINES = lines<JointWords>({
    "obj_num           %d\n",
    "external_obj_num  %d\n",
    "joint_index       %d\n",
    "effector_index    %d\n",
    "anim_index        %d\n",
    "van_ext_blk_size  %d\n",
    "usr_ext_blk_size  %d\n",
});

using EffectorWords = Run<EffectorHead, &EffectorHead::effector_type, &EffectorHead::usr_ext_blk_size>;
inline constexpr auto EFFECTOR_LINES = lines<EffectorWords>({
    "effector_type     %0#10x\n",
    "obj_num           %d\n",
    "external_obj_num  %d\n",
    "anim_index        %d\n",
    "van_ext_blk_size  %d\n",
    "usr_ext_blk_size  %d\n",
});

} // namespace kova
