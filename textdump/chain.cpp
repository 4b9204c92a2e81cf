#include "textdump/chain.h"

#include "textdump/behavior.h"

namespace kova {

namespace {

void writeObjs(Text &text, const ChainObjs &objs) {
  kvWriteKtArray(text, objs.obj_index, "obj_index");
  kvWriteKtExternal(text, objs.external_obj, "external_obj");
}

void writeChainRoot(Text &text, const ChainRoot &root, Index) {
  kvWriteKtElementTop(text, root, "ChainRoot");
  putRecord<CHAIN_ROOT_LINES, ChainRootWords>(text, root);
  writeObjs(text, root);
}

void writeJoint(Text &text, const Joint &joint, Index) {
  kvWriteKtElementTop(text, joint, "Joint");
  putRecord<JOINT_LINES, JointForm>(text, joint);
  kvWriteKtXYZ(text, joint.resplain_axis, "resplain_axis");
  putRecord<JOINT_WORD_LINES, JointWords>(text, joint);
  writeObjs(text, joint);
}

void writeEffector(Text &text, const Effector &effector, Index) {
  kvWriteKtElementTop(text, effector, "Effector");
  putRecord<EFFECTOR_LINES, EffectorWords>(text, effector);
  writeObjs(text, effector);
}

} // namespace

void kvWriteKtChainRootList(Text &text, const ChainRootList &list) {
  writeVersion2Section<"chain_root_num     %d\n">(text, list, "ChainRootList", "chain_root_num_byte", writeChainRoot);
}

void kvWriteKtJointList(Text &text, const JointList &list) {
  writeVersion2Section<"joint_num          %d\n">(text, list, "JointList", "joint_num_byte", writeJoint);
}

void kvWriteKtEffectorList(Text &text, const EffectorList &list) {
  writeVersion2Section<"effector_num       %d\n">(text, list, "EffectorList", "effector_num_byte", writeEffector);
}

void kvWriteKtExternalNameList(Text &text, const ExternalNameList &list) {
  writeNameSection(text, list, "ExternalNameList");
}

} // namespace kova
