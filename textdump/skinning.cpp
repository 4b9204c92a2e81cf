#include "format/skinning.h"
#include "textdump/lines.h"

namespace kova {

namespace {

void writeVtxTriNvColor(Text &text, std::span<const VtxTriNvColor> records) {
  Index position = 0;
  for (const VtxTriNvColor &record : records) {
    print<VTX_TRI_NV_COLOR_HEADING>(text, position++);
    putRecord<LINES<VtxTriNvColor>>(text, record);
  }
}

void writeFullWeightedPart(Text &text, const FullWeightedPart &part, Index) {
  kvWriteKtElementTop<LINES<FullWeightedPartHead>>(text, part, "FullWeightedPart");
}

void writeWeightedPart(Text &text, const WeightedPart &part, Index) {
  kvWriteKtElementTop<LINES<WeightedPartHead>>(text, part, "WeightedPart");
  const std::uint64_t affected = std::uint64_t{part.affected_node_num} + part.external_affected_obj_num;
  kvWriteKtNodeIndex(text, counted(part.affected_node_num, part.affected_node), "affected_node");
  kvWriteKtExternal(text, counted(part.external_affected_obj_num, part.external_affected_obj), "external_affected_obj");
  kvWriteKtArray(text, counted(affected, part.weight_group_index), "weight_group_index");
  writeVtxTriNvColor(text, counted(affected, part.group_index));
}

void writeMorphPart(Text &text, const MorphPart &part, Index) {
  kvWriteKtElementTop<LINES<MorphPartHead>>(text, part, "MorphPart");
  writeVtxTriNvColor(text, counted(part.table_num, part.group_index));
}

void writeEnvelope(Text &text, const Envelope &envelope, Index) {
  kvWriteKtElementTop<LINES<EnvelopeHead>>(text, envelope, "Envelope");
  writeElements(text, envelope.full_weighted_part_num, envelope.full_weighted_part, writeFullWeightedPart,
                writeExtBlk<FullWeightedPart>);
  writeElements(text, envelope.weighted_part_num, envelope.weighted_part, writeWeightedPart, writeExtBlk<WeightedPart>);
  writeElements(text, envelope.morph_part_num, envelope.morph_part, writeMorphPart, writeExtBlk<MorphPart>);
  Index position = 0;
  for (const EnvelopeTri &tri : counted(envelope.envelope_tri_num, envelope.envelope_tri)) {
    print<"EnvelopeTri(%d)\n">(text, position++);
    putRecord<LINES<EnvelopeTri>>(text, tri);
  }
}

void writeClusterShape(Text &text, const ClusterShape &shape, Index) {
  kvWriteKtElementTop<LINES<ClusterShapeHead>>(text, shape, "ClusterShape");
  for (const Cluster &cluster : counted(shape.cluster_num, shape.cluster))
    kvWriteKtElementTop<LINES<Cluster>>(text, cluster, "Cluster");
  Index position = 0;
  for (const ClusterTri &tri : counted(shape.cluster_tri_num, shape.cluster_tri)) {
    print<"ClusterTri(%d)\n">(text, position++);
    putRecord<LINES<ClusterTri>>(text, tri);
  }
}

void writeWeightGroup(Text &text, const WeightGroup &group, Index) {
  kvWriteKtElementTop<LINES<WeightGroupHead>>(text, group, "WeightGroup");
  kvWriteKtArrayf(text, counted(group.weight_num, group.weight), "weight");
}

} // namespace

void kvWriteKtEnvelopeList(Text &text, const EnvelopeList &list) {
  writeVersion2Section<LINES_OF<ENVELOPE_LIST_WORDS>>(text, list, "EnvelopeList", "envelope_size", writeEnvelope);
}

void kvWriteKtClusterList(Text &text, const ClusterList &list) {
  writeVersion2Section<LINES_OF<CLUSTER_LIST_WORDS>>(text, list, "ClusterList", "cluster_shape_size",
                                                     writeClusterShape);
}

void kvWriteKtWeightList(Text &text, const WeightList &list) {
  writeVersion2Section<LINES_OF<WEIGHT_LIST_WORDS>>(text, list, "WeightList", "weight_group_num_byte",
                                                    writeWeightGroup);
}

} // namespace kova
