#include "kova/geometry.h"

#include "checker/steps.h"

namespace kova {

namespace {

/// The colour and vector lists: seven header words, two size tables, and all triangle groups before all vertex groups.
/// The colour list holds as many vertex groups as it counts triangle groups; the second count is the one that the
/// second size table goes by, so it is the one that is walked, as far as groups are held.
template <class ForTri, class ForVtx>
int checkTwoKindList(const Kis &kis, const ListRow &row, const TwoKindList<ForTri, ForVtx> &list,
                     const ElementRow<ForTri> &tri_row, const ElementRow<ForVtx> &vtx_row) {
  checkHeading(row.name);
  int ok = checkListSize(kis, row, list, &TwoKindList<ForTri, ForVtx>::list_size);
  ok *= checkTwoKindListSum({row.name, {}, list.offset}, list.list_size, fixedBytes<TwoKindListHead>,
                            list.tri_group_size, list.tri_group_num, list.vtx_group_size, list.vtx_group_num,
                            list.van_ext_blk_size, list.usr_ext_blk_size);
  ok *= checkElements(row.name, list.tri_group_size, counted(list.tri_group_num, list.tri_group), tri_row);
  ok *= checkElements(row.name, list.vtx_group_size, counted(list.vtx_group_num, list.vtx_group), vtx_row);
  return ok;
}

Word refBytes(const TriGroupHead &group, const AnimRef &ref, std::size_t kind) {
  switch (refForm(group.tri_anim_type, kind)) {
  case RefForm::frames:
    return fixedBytes<Index> * (1 + static_cast<Word>(group.tri_anim_frame_num));
  case RefForm::keys: // their number, then as many keys and as many groups
    return fixedBytes<Word> + 2 * fixedBytes<Index> * ref.key_num;
  case RefForm::single:
    break;
  }
  return fixedBytes<Index>;
}

/// Of each triangle its fixed bytes and the sizes of its two blocks.
Terms<3> termsOfTriangles(std::span<const Tri> triangles) {
  return {{triangles.data(), triangles.size(), [](const void *records, std::size_t number, int column) {
             const Tri &tri = static_cast<const Tri *>(records)[number];
             return column == 0 ? fixedBytes<TriHead> : column == 1 ? tri.van_ext_blk_size : tri.usr_ext_blk_size;
           }}};
}

/// Only a warning: it has no verdict. The bytes of the group's head come after those of its references.
void warnOfTriGroup(const Place &place, const TriGroup &group) {
  std::array<Word, REF_KIND_NUM> ref;
  Word expected = fixedBytes<TriGroupHead> + fixedBytes<TriHead> * group.tri_num;
  const std::array<AnimRef, REF_KIND_NUM> refs = kvRefs(group);
  for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind)
    expected += ref[kind] = refBytes(group, refs[kind], kind);
  const std::span<const Tri> triangles = counted(group.tri_num, group.tri);
  for (const Tri &tri : triangles)
    expected += tri.van_ext_blk_size + tri.usr_ext_blk_size;
  if (group.tri_group_size == expected)
    return;

  report<"triangle-group-sum">(place, {group.tri_group_size, expected}, group.tri_group_size, ref[refVtx],
                               ref[refTriColor], ref[refVtxColor], ref[refTriNv], ref[refVtxNv], ref[refSt],
                               fixedBytes<TriGroupHead>, termsOfTriangles(triangles));
}

} // namespace

/// The only list whose element goes by two names.
int checkVtxList(const Kis &kis) {
  return checkList<VtxGroup>(kis, listRow("VtxList"), kis.vtx,
                             {.name = "VtxGroup",
                              .index = &VtxGroup::this_vtx_group_index,
                              .size = &VtxGroup::vtx_group_size,
                              .fixed_bytes = fixedBytes<VtxGroupHead>,
                              .item_bytes = fixedBytes<Xyz>,
                              .item_num = &VtxGroup::vtx_num,
                              .size_name = "Vtx"});
}

int checkTriList(const Kis &kis) {
  constexpr const ListRow &LIST = listRow("TriList");
  const int ok = checkList<TriGroup>(
      kis, LIST, kis.tri,
      {.name = "TriGroup", .index = &TriGroup::this_tri_group_index, .size = &TriGroup::tri_group_size});
  checkElements(LIST.name, {}, counted(kis.tri.num, kis.tri.element), [](const Listed<TriGroup> &group) {
    warnOfTriGroup(group.place, group.element);
    return 1;
  });
  return ok;
}

int checkColorList(const Kis &kis) {
  return checkTwoKindList<TriColorGroup, VtxColorGroup>(kis, listRow("ColorList"), kis.color,
                                                        {.name = "TriColorGroup",
                                                         .index = &TriColorGroup::this_tri_color_group_index,
                                                         .size = &TriColorGroup::tri_color_group_size,
                                                         .fixed_bytes = fixedBytes<TriColorGroupHead>,
                                                         .item_bytes = fixedBytes<Rgba>,
                                                         .item_num = &TriColorGroup::tri_color_num},
                                                        {.name = "VtxColorGroup",
                                                         .index = &VtxColorGroup::this_vtx_color_group_index,
                                                         .size = &VtxColorGroup::vtx_color_group_size,
                                                         .fixed_bytes = fixedBytes<VtxColorGroupHead>,
                                                         .item_bytes = fixedBytes<Rgba>,
                                                         .item_num = &VtxColorGroup::vtx_color_num});
}

int checkVectorList(const Kis &kis) {
  return checkTwoKindList<TriNvGroup, VtxNvGroup>(kis, listRow("VectorList"), kis.vector,
                                                  {.name = "TriNvGroup",
                                                   .index = &TriNvGroup::this_tri_nv_group_index,
                                                   .size = &TriNvGroup::tri_nv_group_size,
                                                   .fixed_bytes = fixedBytes<TriNvGroupHead>,
                                                   .item_bytes = fixedBytes<Xyz>,
                                                   .item_num = &TriNvGroup::tri_nv_num},
                                                  {.name = "VtxNvGroup",
                                                   .index = &VtxNvGroup::vtx_nv_group_index,
                                                   .size = &VtxNvGroup::vtx_nv_group_size,
                                                   .fixed_bytes = fixedBytes<VtxNvGroupHead>,
                                                   .item_bytes = fixedBytes<Xyz>,
                                                   .item_num = &VtxNvGroup::vtx_nv_num});
}

int checkStList(const Kis &kis) {
  return checkList<StGroup>(kis, listRow("StList"), kis.st,
                            {.name = "StGroup",
                             .index = &StGroup::this_st_group_index,
                             .size = &StGroup::st_group_size,
                             .fixed_bytes = fixedBytes<StGroupHead>,
                             .item_bytes = fixedBytes<St>,
                             .item_num = &StGroup::st_num});
}

int checkPartList(const Kis &kis) {
  return checkList<Part>(kis, listRow("PartList"), kis.part,
                         {.name = "Part",
                          .index = &Part::this_part_index,
                          .size = &Part::part_size,
                          .fixed_bytes = fixedBytes<PartHead>,
                          .item_bytes = fixedBytes<Index>,
                          .item_num = &Part::part_tri_num});
}

} // namespace kova
