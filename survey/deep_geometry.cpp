#include "survey/deep_check.h"

#include <optional>

namespace kova::survey::deep {

namespace {

template <class Group> std::vector<Word> sizesOf(const std::vector<Group> &groups, Word Group::*number) {
  std::vector<Word> sizes;
  sizes.reserve(groups.size());
  for (const Group &group : groups)
    sizes.push_back(group.*number);
  return sizes;
}

/// @return the size of the smallest group that a reference names; unknown if it names none that is there, 0 if it names
/// none at all.
std::uint64_t smallestGroup(const AnimRef &ref, const std::vector<Word> &sizes) {
  std::optional<std::uint64_t> smallest;
  for (const Index group : ref.group_index)
    if (static_cast<Word>(group) != NO_LINK)
      smallest = std::min(smallest.value_or(UNKNOWN), sizeOf(sizes, group));
  return smallest.value_or(0);
}

/// @return the bytes of a group before its first triangle.
std::uint64_t bytesBefore(const TriGroup &group, const std::array<AnimRef, REF_KIND_NUM> &refs) {
  std::uint64_t bytes = sizeof(TriGroupHead);
  for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind) {
    bytes += sizeof(Word) * (refs[kind].key.size() + refs[kind].group_index.size());
    if (refForm(group.tri_anim_type, kind) == RefForm::keys)
      bytes += sizeof(Word);
  }
  return bytes;
}

void checkTriangles(Check &check, const GroupSizes &sizes, const TriGroup &group, Place place) {
  const auto refs = kvRefs(group);
  for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind)
    check.number[FIRST_OWN + kind] = smallestGroup(refs[kind], sizes.number[kind]);
  place = after(place, bytesBefore(group, refs));
  for (const Tri &tri : group.tri) {
    checkRecord(check, tri, place);
    place = after(place, sizeof(TriHead) + vanExtBlk(tri.ext_blk).size_bytes() + usrExtBlk(tri.ext_blk).size_bytes());
  }
}

/// @return the number of triangles of a part's group; unknown if the group is not there.
std::uint64_t trianglesOf(const TriList &list, const Part &part) {
  const auto group = static_cast<Word>(part.tri_group_index);
  return group < list.element.size() ? list.element[group].tri_num : UNKNOWN;
}

void checkParts(Check &check, const TriList &triangles, const PartList &list) {
  Place place = {"PartList", 0};
  for (const Part &part : list.element) {
    place.offset = part.offset;
    check[Target::own_tri] = trianglesOf(triangles, part);
    checkRecord(check, part, place);
    ++*place.element;
  }
}

} // namespace

GroupSizes groupSizes(const Kis &kis) {
  GroupSizes sizes;
  sizes.number[refVtx] = sizesOf<VtxGroup>(kis.vtx.element, &VtxGroup::vtx_num);
  sizes.number[refTriColor] = sizesOf<TriColorGroup>(kis.color.tri_group, &TriColorGroup::tri_color_num);
  sizes.number[refVtxColor] = sizesOf<VtxColorGroup>(kis.color.vtx_group, &VtxColorGroup::vtx_color_num);
  sizes.number[refTriNv] = sizesOf<TriNvGroup>(kis.vector.tri_group, &TriNvGroup::tri_nv_num);
  sizes.number[refVtxNv] = sizesOf<VtxNvGroup>(kis.vector.vtx_group, &VtxNvGroup::vtx_nv_num);
  sizes.number[refSt] = sizesOf<StGroup>(kis.st.element, &StGroup::st_num);
  sizes.number[WEIGHTS] = sizesOf<WeightGroup>(kis.weight.element, &WeightGroup::weight_num);
  return sizes;
}

void checkGeometryLists(Check &check, const GroupSizes &sizes, const Kis &kis) {
  checkList(check, "VtxList", kis.vtx.element);
  checkList(check, "TriList", kis.tri.element,
            [&](const TriGroup &group, const Place &place) { checkTriangles(check, sizes, group, place); });
  checkList(check, "ColorList", kis.color.tri_group);
  checkList(check, "ColorList", kis.color.vtx_group);
  checkList(check, "VectorList", kis.vector.tri_group);
  checkList(check, "VectorList", kis.vector.vtx_group);
  checkList(check, "StList", kis.st.element);
  checkParts(check, kis.tri, kis.part);
}

} // namespace kova::survey::deep
