#include "textdump/skinning.h"

namespace kova {

namespace {

void writeVtxTriNvColor(Text &text, std::span<const VtxTriNvColor> records) {
  Index position = 0;
  for (const VtxTriNvColor &record : records) {
    print<VTX_TRI_NV_COLOR_HEADING>(text, position++);
    putRecord<VTX_TRI_NV_COLOR_LINES>(text, record);
  }
}

void writeFullWeightedPart(Text &text, const FullWeightedPart &part, Index) {
  kvWriteKtElementTop<FULL_WEIGHTED_PART_LINES>(text, part, "FullWeightedPart");
}

void writeWeightedPart(Text &text, const WeightedPart &part, Index) {
  kvWriteKtElementTop<WEIGHTED_PART_LINES>(text, part, "WeightedPart");
  const std::uint64_t affected = std::uint64_t{part.affected_node_num} + part.external_affected_obj_num;
  kvWriteKtNodeIndex(text, counted(part.affected_node_num, part.affected_node), "affected_node");
  kvWriteKtExternal(text, counted(part.external_affected_obj_num, part.external_affected_obj), "external_affected_obj");
  kvWriteKtArray(text, counted(affected, part.weight_group_index), "weight_group_index");
  writeVtxTriNvColor(text, counted(affected, part.group_index));
}

void writeMorphPart(Text &text, const MorphPart &part, Index) {
  kvWriteKtElementTop<MORPH_PART_LINES>(text, part, "MorphPart");
  writeVtxTriNvColor(text, counted(part.table_num, part.group_index));
}

void writeEnvelope(Text &text, const Envelope &envelope, Index) {
  kvWriteKtElementTop<ENVELOPE_LINES>(text, envelope, "Envelope");
  writeElements(text, envelope.full_weighted_part_num, envelope.full_weighted_part, writeFullWeightedPart,
                writeExtBlk<FullWeightedPart>);
  writeElements(text, envelope.weighted_part_num, envelope.weighted_part, writeWeightedPart, writeExtBlk<WeightedPart>);
  writeElements(text, envelope.morph_part_num, envelope.morph_part, writeMorphPart, writeExtBlk<MorphPart>);
  Index position = 0;
  for (const EnvelopeTri &tri : counted(envelope.envelope_tri_num, envelope.envelope_tri)) {
    print<"EnvelopeTri(%d)\n">(text, position++);
    putRecord<ENVELOPE_TRI_LINES>(text, tri);
  }
}

void writeClusterShape(Text &text, const ClusterShape &shape, Index) {
  kvWriteKtElementTop<CLUSTER_SHAPE_LINES>(text, shape, "ClusterShape");
  for (const Cluster &cluster : counted(shape.cluster_num, shape.cluster))
    kvWriteKtElementTop<CLUSTER_LINES>(text, cluster, "Cluster");
  Index position = 0;
  for (const ClusterTri &tri : counted(shape.cluster_tri_num, shape.cluster_tri)) {
    print<"ClusterTri(%d)\n">(text, position++);
    putRecord<CLUSTER_TRI_LINES>(text, tri);
  }
}

void writeWeightGroup(Text &text, const WeightGroup &group, Index) {
  kvWriteKtElementTop<WEIGHT_GROUP_LINES>(text, group, "WeightGroup");
  kvWriteKtArrayf(text, counted(group.weight_num, group.weight), "weight");
}

} // namespace

void kvWriteKtEnvelopeList(Text &text, const EnvelopeList &list) {
  writeVersion2Section<ENVELOPE_LIST_LINES>(text, list, "EnvelopeList", "envelope_size", writeEnvelope);
}

void kvWriteKtClusterList(Text &text, const ClusterList &list) {
  writeVersion2Section<CLUSTER_LIST_LINES>(text, list, "ClusterList", "cluster_shape_size", writeClusterShape);
}

void kvWriteKtWeightList(Text &text, const WeightList &list) {
  writeVersion2Section<WEIGHT_LIST_LINES>(text, list, "WeightList", "weight_group_num_byte", writeWeightGroup);
}

} // namespace kova
