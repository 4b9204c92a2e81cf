#include "kova/skinning.h"

#include "reader/elements.h"

namespace kova {

namespace {

int readFullWeightedPart(Cursor &cursor, FullWeightedPart &part) {
  FullWeightedPartHead &head = part;
  return readFixed(cursor, head) && readExtBlk(cursor, part);
}

int readWeightedPart(Cursor &cursor, WeightedPart &part) {
  WeightedPartHead &head = part;
  if (!readFixed(cursor, head))
    return 0;
  const std::uint64_t affected = std::uint64_t{part.affected_node_num} + part.external_affected_obj_num;
  return kvReadNodeIndex(cursor, part.affected_node, part.affected_node_num) &&
         kvReadExternal(cursor, part.external_affected_obj, part.external_affected_obj_num) &&
         readRun(cursor, part.weight_group_index, affected) &&
         kvSetupVtxTriNvColor(cursor, part.group_index, affected) && readExtBlk(cursor, part);
}

int readMorphPart(Cursor &cursor, MorphPart &part) {
  MorphPartHead &head = part;
  return readFixed(cursor, head) && kvSetupVtxTriNvColor(cursor, part.group_index, part.table_num) &&
         readExtBlk(cursor, part);
}

int readEnvelope(Cursor &cursor, Envelope &envelope) {
  return readHead<EnvelopeHead>(cursor, envelope, ENVELOPE_LIST_TAG + ELEMENT_KIND) &&
         readElements<FullWeightedPartHead>(cursor, envelope.full_weighted_part, envelope.full_weighted_part_num,
                                            sizeof(FullWeightedPartHead), readFullWeightedPart) &&
         readElements<WeightedPartHead>(cursor, envelope.weighted_part, envelope.weighted_part_num,
                                        sizeof(WeightedPartHead), readWeightedPart) &&
         readElements<MorphPartHead>(cursor, envelope.morph_part, envelope.morph_part_num, sizeof(MorphPartHead),
                                     readMorphPart) &&
         readRun(cursor, envelope.envelope_tri, envelope.envelope_tri_num) && readExtBlk(cursor, envelope);
}

} // namespace

int kvSetupEnvelopeList(Cursor &cursor, EnvelopeList &list) {
  return readList<EnvelopeHead>(cursor, list, ENVELOPE_LIST_TAG, readEnvelope);
}

int kvSetupClusterList(Cursor &cursor, ClusterList &list) {
  return readList<ClusterShapeHead>(cursor, list, CLUSTER_LIST_TAG, [](Cursor &at, ClusterShape &shape) {
    return readHead<ClusterShapeHead>(at, shape, CLUSTER_LIST_TAG + ELEMENT_KIND) &&
           readRun(at, shape.cluster, shape.cluster_num) && readRun(at, shape.cluster_tri, shape.cluster_tri_num) &&
           readExtBlk(at, shape);
  });
}

int kvSetupWeightList(Cursor &cursor, WeightList &list) {
  return readList<WeightGroupHead>(cursor, list, WEIGHT_LIST_TAG, [](Cursor &at, WeightGroup &group) {
    return readHead<WeightGroupHead>(at, group, WEIGHT_LIST_TAG + ELEMENT_KIND) &&
           kvReadArray(at, group.weight, group.weight_num) && readExtBlk(at, group);
  });
}

int kvSetEnvelope0(EnvelopeList &list) {
  list.num = 0;
  return 1;
}

int kvSetCluster0(ClusterList &list) {
  list.num = 0;
  return 1;
}

int kvSetWeight0(WeightList &list) {
  list.num = 0;
  return 1;
}

int kvSetupVtxTriNvColor(Cursor &cursor, std::vector<VtxTriNvColor> &destination, std::uint64_t count) {
  destination.clear();
  if (!require(cursor, count, sizeof(VtxTriNvColor)))
    return 0;
  return withinMemory(cursor, [&] {
    destination.resize(static_cast<std::size_t>(count));
    return (readMember(cursor, destination, &VtxTriNvColor::vtx_group_index) &&
            readMember(cursor, destination, &VtxTriNvColor::vtx_nv_group_index) &&
            readMember(cursor, destination, &VtxTriNvColor::tri_nv_group_index) &&
            readMember(cursor, destination, &VtxTriNvColor::vtx_color_group_index) &&
            readMember(cursor, destination, &VtxTriNvColor::tri_color_group_index)) ||
           clearAndFail(destination);
  });
}

} // namespace kova
