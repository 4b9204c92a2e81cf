#include "kova/behavior.h"

#include "checker/steps.h"

namespace kova {

namespace {

/// The bytes of one record of an animation group. A type that stores none has no record size of its own: it gets that
/// of the group before it.
Word animBytes(Word type, Word previous) {
  switch (type) {
  case 0:
  case 2:
    return fixedBytes<AnimStep>;
  case 3:
    return fixedBytes<AnimKeyframe>;
  case 4:
    return fixedBytes<AnimNode>;
  default:
    return previous;
  }
}

} // namespace

// --- Lists ----------------------------------------------------------------------------------------------------------

int checkAnimList(const Kis &kis) {
  ElementRow<AnimGroup> row = {.name = "AnimGroup",
                               .index = &AnimGroup::this_anim_group_index,
                               .size = &AnimGroup::anim_group_size,
                               .fixed_bytes = fixedBytes<AnimGroupHead>,
                               .item_num = &AnimGroup::anim_num};
  return checkList(kis, listRow("AnimList"), kis.anim, [&row](const Listed<AnimGroup> &group) {
    row.item_bytes = animBytes(group.element.type, row.item_bytes);
    return checkElement(row, group);
  });
}

int checkCollList(const Kis &kis) {
  return checkList<CollGroup>(
      kis, listRow("CollList"), kis.coll,
      {.name = "CollGroup", .index = &CollGroup::this_coll_group_index, .size = &CollGroup::coll_group_size});
}

int checkSwitchList(const Kis &kis) {
  return checkList<Switch>(kis, listRow("SwitchList"), kis.switch_,
                           {.name = "Switch", .index = &Switch::this_switch_index, .size = &Switch::switch_size});
}

int checkNameList(const Kis &) { return 1; }

// --- Maker blocks ---------------------------------------------------------------------------------------------------

/// The heading has another name than the lines below it.
int checkAnimGroupExt(const AnimList &list) {
  return checkBlocks<AnimGroup>(list, {.list = "AnimList",
                                       .heading = "AnimNode Vantor Extension Block",
                                       .name = "AnimGroup",
                                       .fixed_bytes = fixedBytes<AnimGroupExtHead>,
                                       .counted_bytes = [](const AnimGroup &group) {
                                         return kvSizeofAnimGroupExt(blockHead<AnimGroupExtHead>(group));
                                       }});
}

} // namespace kova
