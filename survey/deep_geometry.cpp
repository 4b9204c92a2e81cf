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

} // namespace

void enter(Check &check, const TriGroup &group) {
  const auto refs = kvRefs(group);
  for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind)
    check.number[FIRST_OWN + kind] = smallestGroup(refs[kind], check.sizes[kind]);
}

/// Unknown if the triangle group of the part is not there.
void enter(Check &check, const Part &part) {
  const TriGroup *const group = kvElement(check.kis.tri, part.tri_group_index);
  check[To::own_tri] = group != nullptr ? group->tri_num : UNKNOWN;
}

/// Before the first triangle stand the references.
Place inside(const TriGroup &group, const Place &place) {
  const auto refs = kvRefs(group);
  std::uint64_t bytes = sizeof(TriGroupHead);
  for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind) {
    bytes += sizeof(Word) * (refs[kind].key.size() + refs[kind].group_index.size());
    if (refForm(group.tri_anim_type, kind) == RefForm::keys)
      bytes += sizeof(Word);
  }
  return after(place, bytes);
}

Place behind(const Tri &triangle, const Place &place) {
  return after(place,
               sizeof(TriHead) + vanExtBlk(triangle.ext_blk).size_bytes() + usrExtBlk(triangle.ext_blk).size_bytes());
}

GroupSizes groupSizes(const Kis &kis) {
  GroupSizes sizes;
  sizes[refVtx] = sizesOf<VtxGroup>(kis.vtx.element, &VtxGroup::vtx_num);
  sizes[refTriColor] = sizesOf<TriColorGroup>(kis.color.tri_group, &TriColorGroup::tri_color_num);
  sizes[refVtxColor] = sizesOf<VtxColorGroup>(kis.color.vtx_group, &VtxColorGroup::vtx_color_num);
  sizes[refTriNv] = sizesOf<TriNvGroup>(kis.vector.tri_group, &TriNvGroup::tri_nv_num);
  sizes[refVtxNv] = sizesOf<VtxNvGroup>(kis.vector.vtx_group, &VtxNvGroup::vtx_nv_num);
  sizes[refSt] = sizesOf<StGroup>(kis.st.element, &StGroup::st_num);
  sizes[WEIGHTS] = sizesOf<WeightGroup>(kis.weight.element, &WeightGroup::weight_num);
  return sizes;
}

} // namespace kova::survey::deep
