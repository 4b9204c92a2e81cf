#include "writer/elements.h"
#include "writer/lists.h"

namespace kova {

namespace {

/// The records of the one form that the type stores; other types store none.
void putAnims(Output &out, const AnimGroup &group) {
  switch (group.type) {
  case 0:
  case 2:
    return putRun(out, group.step, group.anim_num);
  case 3:
    return putRun(out, group.keyframe, group.anim_num);
  case 4:
    return putRun(out, group.node, group.anim_num);
  default:
    return;
  }
}

/// The ten words of data, of which those past the collision's own size are again those of what follows: that is written
/// over them. A collision with a wrong tag may hold no data, its read having ended there.
void putCollData(Output &out, const Coll &coll) {
  const std::uint64_t start = out.offset;
  const std::int64_t data_bytes =
      std::int64_t{static_cast<Index>(coll.coll_size)} - static_cast<Index>(coll.coll_header_size);
  if (coll.coll_tag == COLL_TAG || coll.data != CollData{})
    putFixed<CollData>(out, coll.data);
  moveTo(out, start + static_cast<std::uint64_t>(std::max<std::int64_t>(data_bytes, 0)));
}

void putCollGroup(Output &out, const CollGroup &group) {
  putFixed<CollGroupHead>(out, group);
  putRun(out, group.coll_num_byte, group.coll_num);
  for (const Coll &coll : counted(group.coll_num, group.coll)) {
    putFixed<CollHead>(out, coll);
    putCollData(out, coll);
    putExtBlk(out, coll.group_ext_blk, group.van_ext_blk_size, group.usr_ext_blk_size);
  }
}

} // namespace

void writeAnimList(Output &out, const AnimList &list) {
  putList(out, list, [](Output &to, const AnimGroup &group) {
    putFixed<AnimGroupHead>(to, group);
    putAnims(to, group);
    putExtBlk(to, group);
  });
}

void writeCollList(Output &out, const CollList &list) { putList(out, list, putCollGroup); }

void writeSwitchList(Output &out, const SwitchList &list) {
  putList(out, list, [](Output &to, const Switch &node) {
    putFixed<SwitchHead>(to, node);
    putRun(to, node.case_val, node.case_node_num);
    putRun(to, node.case_dest_index, node.case_node_num);
    putExtBlk(to, node);
  });
}

void writeNameList(Output &out, const NameList &list) {
  putList(out, list, [](Output &to, const Name &name) {
    putFixed<NameHead>(to, name);
    putRun(to, name.text, static_cast<std::uint64_t>(std::max(kvGetNamelen(name), 0)) / sizeof(Word));
  });
}

} // namespace kova
