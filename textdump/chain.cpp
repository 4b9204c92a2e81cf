#include "format/chain.h"
#include "textdump/content.h"

namespace kova {

namespace {

void writeChainRoot(Text &text, const ChainRoot &root, Index) {
  kvWriteKtElementTop<LINES<ChainRootHead>>(text, root, "ChainRoot");
  printContent<ChainRootHead>(text, root);
}

void writeJoint(Text &text, const Joint &joint, Index) {
  kvWriteKtElementTop<LINES<JointHead>>(text, joint, "Joint");
  printContent<JointHead>(text, joint);
}

void writeEffector(Text &text, const Effector &effector, Index) {
  kvWriteKtElementTop<LINES<EffectorHead>>(text, effector, "Effector");
  printContent<EffectorHead>(text, effector);
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
