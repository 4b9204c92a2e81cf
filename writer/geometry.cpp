#include "writer/elements.h"
#include "writer/lists.h"

namespace kova {

namespace {

/// Writes one reference of a triangle group.
void putRef(Output &out, const AnimRef &ref, RefForm form) {
  if (form == RefForm::keys) {
    putFixed<Word>(out, ref.key_num);
    putWords(out, ref.key.data(), ref.key.size_bytes());
  }
  putWords(out, ref.group_index.data(), ref.group_index.size_bytes());
}

void putTriGroup(Output &out, const TriGroup &group) {
  putFixed<TriGroupHead>(out, group);
  const std::array<AnimRef, REF_KIND_NUM> refs = kvRefs(group);
  for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind)
    putRef(out, refs[kind], refForm(group.tri_anim_type, kind));
  for (const Tri &tri : counted(group.tri_num, group.tri)) {
    putFixed<TriHead>(out, tri);
    putExtBlk(out, tri);
  }
}

/// Writes a list of two kinds of group. `vtx_count` is how many groups of the second kind follow.
template <class TwoKinds, class PutTriGroup, class PutVtxGroup>
void putTwoKinds(Output &out, const TwoKinds &list, Word vtx_count, PutTriGroup putTriKind, PutVtxGroup putVtxKind) {
  putFixed<TwoKindListHead>(out, list);
  putRun(out, list.tri_group_size, list.tri_group_num);
  putRun(out, list.vtx_group_size, list.vtx_group_num);
  for (const auto &group : counted(list.tri_group_num, list.tri_group))
    putTriKind(group);
  for (const auto &group : counted(vtx_count, list.vtx_group))
    putVtxKind(group);
  putExtBlk(out, list);
}

} // namespace

void writeVtxList(Output &out, const VtxList &list) {
  putList(out, list, [](Output &to, const VtxGroup &group) {
    putFixed<VtxGroupHead>(to, group);
    putRun(to, group.vtx, group.vtx_num);
  });
}

void writeTriList(Output &out, const TriList &list) { putList(out, list, putTriGroup); }

void writeColorList(Output &out, const ColorList &list) {
  // As they are read: the first count goes for both kinds of group.
  putTwoKinds(
      out, list, list.tri_group_num,
      [&](const TriColorGroup &group) {
        putFixed<TriColorGroupHead>(out, group);
        putRun(out, group.color, group.tri_color_num);
      },
      [&](const VtxColorGroup &group) {
        putFixed<VtxColorGroupHead>(out, group);
        putRun(out, group.color, group.vtx_color_num);
      });
}

void writeVectorList(Output &out, const VectorList &list) {
  putTwoKinds(
      out, list, list.vtx_group_num,
      [&](const TriNvGroup &group) {
        putFixed<TriNvGroupHead>(out, group);
        putRun(out, group.normal, group.tri_nv_num);
      },
      [&](const VtxNvGroup &group) {
        putFixed<VtxNvGroupHead>(out, group);
        putRun(out, group.normal, group.vtx_nv_num);
      });
}

void writeStList(Output &out, const StList &list) {
  putList(out, list, [](Output &to, const StGroup &group) {
    putFixed<StGroupHead>(to, group);
    putRun(to, group.st, group.st_num);
  });
}

void writePartList(Output &out, const PartList &list) {
  putList(out, list, [](Output &to, const Part &part) {
    putFixed<PartHead>(to, part);
    putRun(to, part.tri_index, part.part_tri_num);
    putExtBlk(to, part);
  });
}

} // namespace kova
