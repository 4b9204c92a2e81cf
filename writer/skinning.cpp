#include "writer/elements.h"
#include "writer/lists.h"

namespace kova {

namespace {

void putVtxTriNvColor(Output &out, const std::vector<VtxTriNvColor> &records, std::uint64_t count) {
  putMembers(out, records, count, &VtxTriNvColor::vtx_group_index, &VtxTriNvColor::vtx_nv_group_index,
             &VtxTriNvColor::tri_nv_group_index, &VtxTriNvColor::vtx_color_group_index,
             &VtxTriNvColor::tri_color_group_index);
}

void putWeightedPart(Output &out, const WeightedPart &part) {
  const std::uint64_t affected = std::uint64_t{part.affected_node_num} + part.external_affected_obj_num;
  putFixed<WeightedPartHead>(out, part);
  putNodeIndex(out, part.affected_node, part.affected_node_num);
  putExternal(out, part.external_affected_obj, part.external_affected_obj_num);
  putRun(out, part.weight_group_index, affected);
  putVtxTriNvColor(out, part.group_index, affected);
  putExtBlk(out, part);
}

void putMorphPart(Output &out, const MorphPart &part) {
  putFixed<MorphPartHead>(out, part);
  putVtxTriNvColor(out, part.group_index, part.table_num);
  putExtBlk(out, part);
}

void putEnvelope(Output &out, const Envelope &envelope) {
  putFixed<EnvelopeHead>(out, envelope);
  for (const FullWeightedPart &part : counted(envelope.full_weighted_part_num, envelope.full_weighted_part)) {
    putFixed<FullWeightedPartHead>(out, part);
    putExtBlk(out, part);
  }
  for (const WeightedPart &part : counted(envelope.weighted_part_num, envelope.weighted_part))
    putWeightedPart(out, part);
  for (const MorphPart &part : counted(envelope.morph_part_num, envelope.morph_part))
    putMorphPart(out, part);
  putRun(out, envelope.envelope_tri, envelope.envelope_tri_num);
  putExtBlk(out, envelope);
}

} // namespace

void writeEnvelopeList(Output &out, const EnvelopeList &list) { putList(out, list, putEnvelope); }

void writeClusterList(Output &out, const ClusterList &list) {
  putList(out, list, [](Output &to, const ClusterShape &shape) {
    putFixed<ClusterShapeHead>(to, shape);
    putRun(to, shape.cluster, shape.cluster_num);
    putRun(to, shape.cluster_tri, shape.cluster_tri_num);
    putExtBlk(to, shape);
  });
}

void writeWeightList(Output &out, const WeightList &list) {
  putList(out, list, [](Output &to, const WeightGroup &group) {
    putFixed<WeightGroupHead>(to, group);
    putRun(to, group.weight, group.weight_num);
    putExtBlk(to, group);
  });
}

} // namespace kova
