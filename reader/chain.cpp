#include "kova/chain.h"

#include "format/chain.h"
#include "reader/elements.h"

namespace kova {

int kvSetupChainRootList(Cursor &cursor, ChainRootList &list) { return readList(cursor, list, CHAIN_ROOT_LIST_TAG); }
int kvSetupJointList(Cursor &cursor, JointList &list) { return readList(cursor, list, JOINT_LIST_TAG); }
int kvSetupEffectorList(Cursor &cursor, EffectorList &list) { return readList(cursor, list, EFFECTOR_LIST_TAG); }
int kvSetupExternalNameList(Cursor &cursor, ExternalNameList &list) { return kvSetupNameList(cursor, list); }

int kvSetChainRoot0(ChainRootList &list) {
  list.num = 0;
  return 1;
}

int kvSetJoint0(JointList &list) {
  list.num = 0;
  return 1;
}

int kvSetEffector0(EffectorList &list) {
  list.num = 0;
  return 1;
}

int kvSetExternalName0(ExternalNameList &list) {
  list.num = 0;
  return 1;
}

} // namespace kova
