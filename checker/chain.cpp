#include "kova/chain.h"

#include "checker/steps.h"

namespace kova {

namespace {

/// The check of the list of chain roots, joints or effectors, whose elements are called `name`.
template <class Head, class Node>
int checkNodeList(const Kis &kis, const ListRow &row, const List<Node> &list, const char *name) {
  return checkList(kis, row, list, [name](const Listed<Node> &listed) {
    const Node &node = listed.element;
    int ok = checkIndexSize(name, listed);
    ok *= checkChainNodeSum(listed.place, {name, listed.number, ""}, node.size, fixedBytes<Head>, node.obj_num,
                            node.external_obj_num, node.van_ext_blk_size, node.usr_ext_blk_size);
    return ok;
  });
}

} // namespace

int checkChainRootList(const Kis &kis) {
  return checkNodeList<ChainRootHead>(kis, listRow("ChainRootList"), kis.chain_root, "ChainRoot");
}

int checkJointList(const Kis &kis) { return checkNodeList<JointHead>(kis, listRow("JointList"), kis.joint, "Joint"); }

int checkEffectorList(const Kis &kis) {
  return checkNodeList<EffectorHead>(kis, listRow("EffectorList"), kis.effector, "Effector");
}

/// The tags of the list and of each name are tested first; a name's own size is compared with the size table only.
int checkExternalNameList(const Kis &kis) {
  constexpr const ListRow &LIST = listRow("ExternalNameList");
  const ExternalNameList &list = kis.external_name;
  checkHeading(LIST.name);
  int ok = checkNameTag({LIST.name, {}, list.offset}, list.list_tag, LIST.tag);
  ok *= checkListSizes(kis, LIST, list);
  ok *= checkElements(LIST.name, list.num_byte, counted(list.num, list.element), [](const Listed<Name> &name) {
    int name_ok = checkNameTag(name.place, name.element.name_tag, LIST.tag + ELEMENT_KIND);
    name_ok *= checkIndexSize<Name>("ExternalName", name, &Name::this_name_index, &Name::name_size);
    return name_ok;
  });
  return ok;
}

} // namespace kova
