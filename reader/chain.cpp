#include "kova/chain.h"

#include "reader/elements.h"

namespace kova {

namespace {

/// Reads a chain root, a joint or an effector: a fixed head, its objects, its blocks.
template <class Head, class Node> int readNode(Cursor &cursor, Node &node, Word tag) {
  return readHead<Head>(cursor, node, tag) && kvReadArray(cursor, node.obj_index, node.obj_num) &&
         kvReadExternal(cursor, node.external_obj, node.external_obj_num) && readExtBlk(cursor, node);
}

} // namespace

int kvSetupChainRootList(Cursor &cursor, ChainRootList &list) {
  return readList<ChainRootHead>(cursor, list, CHAIN_ROOT_LIST_TAG, [](Cursor &at, ChainRoot &root) {
    return readNode<ChainRootHead>(at, root, CHAIN_ROOT_LIST_TAG + ELEMENT_KIND);
  });
}

int kvSetupJointList(Cursor &cursor, JointList &list) {
  return readList<JointHead>(cursor, list, JOINT_LIST_TAG, [](Cursor &at, Joint &joint) {
    return readNode<JointHead>(at, joint, JOINT_LIST_TAG + ELEMENT_KIND);
  });
}

int kvSetupEffectorList(Cursor &cursor, EffectorList &list) {
  return readList<EffectorHead>(cursor, list, EFFECTOR_LIST_TAG, [](Cursor &at, Effector &effector) {
    return readNode<EffectorHead>(at, effector, EFFECTOR_LIST_TAG + ELEMENT_KIND);
  });
}

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
