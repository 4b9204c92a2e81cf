#include "survey/deep_check.h"

#include <tuple>

namespace kova::survey::deep {

namespace {

/// What the triangles of a skin can use of a part: for each kind the size of the largest group, as it is not said which
/// of them an index is about; unknown if a group is not there.
using Reach = std::array<std::uint64_t, REF_KIND_NUM + 1>;

/// Extends a reach by the groups of a part. A part without groups has nothing that a triangle could use.
void extend(Reach &reach, const GroupSizes &sizes, std::span<const VtxTriNvColor> groups, Index st,
            std::span<const Index> weights) {
  if (groups.empty())
    return;
  const auto take = [&](std::size_t kind, Index group) {
    reach[kind] = std::max(reach[kind], sizeOf(sizes.number[kind], group));
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

const NodeIndex &partOf(const EnvelopeTri &triangle) { return triangle.envelope_part_for_tri; }
const NodeIndex &partOf(const EnvelopeVtx &corner) { return corner.envelope_part; }
const NodeIndex &partOf(const ClusterTri &triangle) { return triangle.cluster_for_tri; }
const NodeIndex &partOf(const ClusterVtx &corner) { return corner.cluster; }

/// Checks a triangle or a corner against the part that it names.
template <class Record>
void checkAgainstPart(Check &check, const std::vector<Reach> &reach, const Record &record, const Place &place) {
  const auto part = static_cast<Word>(partOf(record).index);
  for (std::size_t kind = 0; kind < REF_KIND_NUM + 1; ++kind)
    check.number[FIRST_OWN + kind] = part < reach.size() ? reach[part][kind] : UNKNOWN;
  checkRecord(check, record, place);
}

template <class Triangle>
void checkSkinTriangles(Check &check, const std::vector<Reach> &reach, const std::vector<Triangle> &triangles,
                        const Place &place) {
  for (const Triangle &triangle : triangles) {
    checkAgainstPart(check, reach, triangle, place);
    for (const auto &corner : triangle.vtx)
      checkAgainstPart(check, reach, corner, place);
  }
}

void checkEnvelope(Check &check, const GroupSizes &sizes, const Envelope &envelope, const Place &place) {
  const Place inside = {place.list, place.element};
  for (const FullWeightedPart &part : envelope.full_weighted_part) {
    checkRecord(check, part, inside);
    checkRecord(check, part.group_index, inside);
  }
  for (const WeightedPart &part : envelope.weighted_part) {
    checkRecord(check, part, inside);
    for (const VtxTriNvColor &groups : part.group_index)
      checkRecord(check, groups, inside);
  }
  for (const MorphPart &part : envelope.morph_part) {
    checkRecord(check, part, inside);
    for (const VtxTriNvColor &groups : part.group_index)
      checkRecord(check, groups, inside);
  }
  const std::vector<Reach> reach = reachOfParts(sizes, envelope);
  check[Target::own_part] = reach.size();
  checkSkinTriangles(check, reach, envelope.envelope_tri, inside);
}

void checkClusters(Check &check, const GroupSizes &sizes, const ClusterShape &shape, const Place &place) {
  const Place inside = {place.list, place.element};
  for (const Cluster &cluster : shape.cluster) {
    checkRecord(check, cluster, inside);
    checkRecord(check, cluster.group_index, inside);
  }
  const std::vector<Reach> reach = reachOfClusters(sizes, shape);
  check[Target::own_cluster] = reach.size();
  checkSkinTriangles(check, reach, shape.cluster_tri, inside);
}

} // namespace

void checkSkinningLists(Check &check, const GroupSizes &sizes, const Kis &kis) {
  checkList(check, "EnvelopeList", kis.envelope.element,
            [&](const Envelope &envelope, const Place &place) { checkEnvelope(check, sizes, envelope, place); });
  checkList(check, "ClusterList", kis.cluster.element,
            [&](const ClusterShape &shape, const Place &place) { checkClusters(check, sizes, shape, place); });
  checkList(check, "WeightList", kis.weight.element);
}

} // namespace kova::survey::deep
