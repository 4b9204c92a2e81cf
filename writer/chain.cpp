#include "writer/elements.h"
#include "writer/lists.h"

namespace kova {

namespace {

/// Writes a list of chain roots, joints or effectors: each a fixed head, its objects, its blocks.
template <class Head, class Node> void putNodes(Output &out, const List<Node> &list) {
  putList(out, list, [](Output &to, const Node &node) {
    putFixed<Head>(to, node);
    putRun(to, node.obj_index, node.obj_num);
    putExternal(to, node.external_obj, node.external_obj_num);
    putExtBlk(to, node);
  });
}

} // namespace

void writeChainRootList(Output &out, const ChainRootList &list) { putNodes<ChainRootHead>(out, list); }
void writeJointList(Output &out, const JointList &list) { putNodes<JointHead>(out, list); }
void writeEffectorList(Output &out, const EffectorList &list) { putNodes<EffectorHead>(out, list); }

} // namespace kova
