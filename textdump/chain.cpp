#include "format/chain.h"
#include "textdump/lines.h"

namespace kova {

namespace {

/// The objects that a chain root, a joint or an effector moves.
template <class Node> void writeObjs(Text &text, const Node &node) {
  kvWriteKtArray(text, counted(node.obj_num, node.obj_index), "obj_index");
  kvWriteKtExternal(text, counted(node.external_obj_num, node.external_obj), "external_obj");
}

void writeChainRoot(Text &text, const ChainRoot &root, Index) {
  kvWriteKtElementTop<LINES<ChainRootHead>>(text, root, "ChainRoot");
  writeObjs(text, root);
}

void writeJoint(Text &text, const Joint &joint, Index) {
  kvWriteKtElementTop<LINES<JointHead>>(text, joint, "Joint");
  writeObjs(text, joint);
}

void writeEffector(Text &text, const Effector &effector, Index) {
  kvWriteKtElementTop<LINES<EffectorHead>>(text, effector, "Effector");
  writeObjs(text, effector);
}

} // namespace

void kvWriteKtChainRootList(Text &text, const ChainRootList &list) {
  writeVersion2Section<LINES_OF<CHAIN_ROOT_LIST_WORDS>>(text, list, "ChainRootList", "chain_root_num_byte",
                                                        writeChainRoot);
}

void kvWriteKtJointList(Text &text, const JointList &list) {
  writeVersion2Section<LINES_OF<JOINT_LIST_WORDS>>(text, list, "JointList", "joint_num_byte", writeJoint);
}

void kvWriteKtEffectorList(Text &text, const EffectorList &list) {
  writeVersion2Section<LINES_OF<EFFECTOR_LIST_WORDS>>(text, list, "EffectorList", "effector_num_byte", writeEffector);
}

} // namespace kova
