#include "survey/deep_check.h"

namespace kova::survey::deep {

void checkChainLists(Check &check, const Kis &kis) {
  checkList(check, "ChainRootList", kis.chain_root.element);
  checkList(check, "JointList", kis.joint.element);
  checkList(check, "EffectorList", kis.effector.element);
  checkNames(check, "ExternalNameList", kis.external_name.element);
}

} // namespace kova::survey::deep
