#include "survey/deep_check.h"

#include <tuple>

namespace kova::survey::deep {

namespace {

/// Extends by the groups of a part what the triangles of a skin can use of it: for each kind the size of the largest
/// group, as it is not said which of them an index is about; unknown if a group is not there. A part without groups has
/// nothing that a triangle could use.
void extend(Reach &reach, const GroupSizes &sizes, std::span<const VtxTriNvColor> groups, Index st,
            std::span<const Index> weights) {
  if (groups.empty())
    return;
  const auto take = [&](std::size_t kind, Index group) {
    reach[kind] = std::max(reach[kind], sizeOf(sizes[kind], group));
  };
  for (const VtxTriNvColor &group : groups) {
    take(refVtx, group.vtx_group_index);
    take(refTriColor, group.tri_color_group_index);
    take(refVtxColor, group.vtx_color_group_index);
    take(refTriNv, group.tri_nv_group_index);
    take(refVtxNv, group.vtx_nv_group_index);
  }
  take(refSt, st);
  for (const Index group : weights)
    take(WEIGHTS, group);
  if (weights.empty()) // what its corners then say of weights is nowhere laid down
    reach[WEIGHTS] = UNKNOWN;
}

/// @return what triangles can use of the parts with each number. The kind of a reference to a part would say which of
/// the lists it is about; as kinds are not known, any of the parts with the number will do.
std::vector<Reach> reachOfParts(const GroupSizes &sizes, const Envelope &envelope) {
  const auto &[full, weighted, morph] =
      std::tie(envelope.full_weighted_part, envelope.weighted_part, envelope.morph_part);
  std::vector<Reach> reach(std::max({full.size(), weighted.size(), morph.size()}));
  for (std::size_t i = 0; i < full.size(); ++i)
    extend(reach[i], sizes, std::span(&full[i].group_index, 1), full[i].full_weighted_st_group_index, {});
  for (std::size_t i = 0; i < weighted.size(); ++i)
    extend(reach[i], sizes, weighted[i].group_index, weighted[i].weight_st_group_index, weighted[i].weight_group_index);
  for (std::size_t i = 0; i < morph.size(); ++i)
    extend(reach[i], sizes, morph[i].group_index, morph[i].morph_st_group_index, {});
  return reach;
}

std::vector<Reach> reachOfClusters(const GroupSizes &sizes, const ClusterShape &shape) {
  std::vector<Reach> reach(shape.cluster.size());
  for (std::size_t i = 0; i < reach.size(); ++i)
    extend(reach[i], sizes, std::span(&shape.cluster[i].group_index, 1), shape.cluster[i].cluster_st_group_index, {});
  return reach;
}

/// Sets what a triangle or a corner can use of the part that it names.
void enterPart(Check &check, const NodeIndex &part) {
  const auto at = static_cast<Word>(part.index);
  for (std::size_t kind = 0; kind < GROUP_KIND_NUM; ++kind)
    check.number[FIRST_OWN + kind] = at < check.reach.size() ? check.reach[at][kind] : UNKNOWN;
}

} // namespace

void enter(Check &check, const Envelope &envelope) {
  check.reach = reachOfParts(check.sizes, envelope);
  check[To::own_part] = check.reach.size();
}

void enter(Check &check, const ClusterShape &shape) {
  check.reach = reachOfClusters(check.sizes, shape);
  check[To::own_cluster] = check.reach.size();
}

void enter(Check &check, const EnvelopeTri &triangle) { enterPart(check, triangle.envelope_part_for_tri); }
void enter(Check &check, const EnvelopeVtx &corner) { enterPart(check, corner.envelope_part); }
void enter(Check &check, const ClusterTri &triangle) { enterPart(check, triangle.cluster_for_tri); }
void enter(Check &check, const ClusterVtx &corner) { enterPart(check, corner.cluster); }

} // namespace kova::survey::deep
