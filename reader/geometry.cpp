#include "kova/geometry.h"

#include "reader/elements.h"

namespace kova {

namespace {

/// Reads a group that is a fixed head and a packed run of tuples.
template <class Head, class Group, class Tuple>
int readGroup(Cursor &cursor, Group &group, Word tag, Word Head::*count, std::vector<Tuple> Group::*tuples) {
  return readHead<Head>(cursor, group, tag) && readRun(cursor, group.*tuples, group.*count);
}

/// Reads one reference of a triangle group in the form that its two bits choose.
int readRef(Cursor &cursor, AnimRef &ref, RefForm form, Index frame_num) {
  switch (form) {
  case RefForm::frames: {
    const std::int64_t frames = std::int64_t{frame_num} + 1; // frames 0 to frame_num
    return readRun(cursor, ref.group_index, frames > 0 ? static_cast<std::uint64_t>(frames) : 0);
  }
  case RefForm::keys:
    return readFixed(cursor, ref.key_num) && kvReadArray(cursor, ref.key, ref.key_num) &&
           kvReadArray(cursor, ref.group_index, ref.key_num);
  case RefForm::single:
    break;
  }
  return kvReadArray(cursor, ref.group_index, 1);
}

int readTri(Cursor &cursor, Tri &tri) {
  TriHead &head = tri;
  return readFixed(cursor, head) && readExtBlk(cursor, tri);
}

int readTriGroup(Cursor &cursor, TriGroup &group) {
  if (!readHead<TriGroupHead>(cursor, group, TRI_LIST_TAG + ELEMENT_KIND))
    return 0;
  for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind)
    if (!readRef(cursor, group.ref[kind], refForm(group.tri_anim_type, kind), group.tri_anim_frame_num))
      return 0;
  return readElements<TriHead>(cursor, group.tri, group.tri_num, sizeof(TriHead), readTri);
}

/// Reads a list of two kinds of group. `vtx_count` is how many groups of the second kind follow.
template <class TriHeadWords, class VtxHeadWords, class TwoKinds, class ReadTriGroup, class ReadVtxGroup>
int readTwoKinds(Cursor &cursor, TwoKinds &list, Word list_tag, Word TwoKindListHead::*vtx_count,
                 ReadTriGroup readTriKind, ReadVtxGroup readVtxKind) {
  return withinMemory(cursor, [&] {
    list = TwoKinds();
    TwoKindListHead &head = list;
    return int{
        readFixed(cursor, head) && kvCheckTag(list.list_tag, list_tag) &&
        kvReadArray(cursor, list.tri_group_size, list.tri_group_num) &&
        kvReadArray(cursor, list.vtx_group_size, list.vtx_group_num) &&
        readElements<TriHeadWords>(cursor, list.tri_group, list.tri_group_num, sizeof(TriHeadWords), readTriKind) &&
        readElements<VtxHeadWords>(cursor, list.vtx_group, list.*vtx_count, sizeof(VtxHeadWords), readVtxKind) &&
        readExtBlk(cursor, list)};
  });
}

} // namespace

int kvSetupVtxList(Cursor &cursor, VtxList &list) {
  return readList<VtxGroupHead>(cursor, list, VTX_LIST_TAG, [](Cursor &at, VtxGroup &group) {
    return readGroup<VtxGroupHead>(at, group, VTX_LIST_TAG + ELEMENT_KIND, &VtxGroupHead::vtx_num, &VtxGroup::vtx);
  });
}

int kvSetupTriList(Cursor &cursor, TriList &list) {
  return readList<TriGroupHead>(cursor, list, TRI_LIST_TAG, readTriGroup);
}

int kvSetupColorList(Cursor &cursor, ColorList &list) {
  // The format's library goes by the first count for both kinds of group, and files are read the way it reads them.
  return readTwoKinds<TriColorGroupHead, VtxColorGroupHead>(
      cursor, list, COLOR_LIST_TAG, &TwoKindListHead::tri_group_num,
      [](Cursor &at, TriColorGroup &group) {
        return readGroup<TriColorGroupHead>(at, group, COLOR_LIST_TAG + ELEMENT_KIND, &TriColorGroupHead::tri_color_num,
                                            &TriColorGroup::color);
      },
      [](Cursor &at, VtxColorGroup &group) {
        return readGroup<VtxColorGroupHead>(at, group, COLOR_LIST_TAG + SECOND_ELEMENT_KIND,
                                            &VtxColorGroupHead::vtx_color_num, &VtxColorGroup::color);
      });
}

int kvSetupVectorList(Cursor &cursor, VectorList &list) {
  return readTwoKinds<TriNvGroupHead, VtxNvGroupHead>(
      cursor, list, VECTOR_LIST_TAG, &TwoKindListHead::vtx_group_num,
      [](Cursor &at, TriNvGroup &group) {
        return readGroup<TriNvGroupHead>(at, group, VECTOR_LIST_TAG + ELEMENT_KIND, &TriNvGroupHead::tri_nv_num,
                                         &TriNvGroup::normal);
      },
      [](Cursor &at, VtxNvGroup &group) {
        return readGroup<VtxNvGroupHead>(at, group, VECTOR_LIST_TAG + SECOND_ELEMENT_KIND, &VtxNvGroupHead::vtx_nv_num,
                                         &VtxNvGroup::normal);
      });
}

int kvSetupStList(Cursor &cursor, StList &list) {
  return readList<StGroupHead>(cursor, list, ST_LIST_TAG, [](Cursor &at, StGroup &group) {
    return readGroup<StGroupHead>(at, group, ST_LIST_TAG + ELEMENT_KIND, &StGroupHead::st_num, &StGroup::st);
  });
}

int kvSetupPartList(Cursor &cursor, PartList &list) {
  return readList<PartHead>(cursor, list, PART_LIST_TAG, [](Cursor &at, Part &part) {
    return readHead<PartHead>(at, part, PART_LIST_TAG + ELEMENT_KIND) &&
           kvReadArray(at, part.tri_index, part.part_tri_num) && readExtBlk(at, part);
  });
}

int kvSetVtx0(VtxList &) { return 1; }
int kvSetTri0(TriList &) { return 1; }
int kvSetColor0(ColorList &) { return 1; }
int kvSetVector0(VectorList &) { return 1; }
int kvSetSt0(StList &) { return 1; }
int kvSetPart0(PartList &) { return 1; }

} // namespace kova
