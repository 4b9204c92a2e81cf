#include "textdump/skinning.h"

namespace kova {

namespace {

void writeVtxTriNvColor(Text &text, std::span<const VtxTriNvColor> records) {
  Index position = 0;
  for (const VtxTriNvColor &record : records) {
    print<"VtxTriNvColor(%d)\n">(text, position++);
    putRecord<VTX_TRI_NV_COLOR_LINES>(text, record);
  }
}

void writeFullWeightedPart(Text &text, const FullWeightedPart &part, Index) {
  kvWriteKtElementTop(text, part, "FullWeightedPart");
  kvWriteKtNodeIndex(text, one(part.transform_node_full), "transform_node_full");
  kvWriteKtExternal(text, one(part.external_transform_obj), "external_transform_obj");
  writeVtxTriNvColor(text, one(part.group_index));
  putRecord<FULL_WEIGHTED_PART_LINES, FullWeightedPartWords>(text, part);
}

void writeWeightedPart(Text &text, const WeightedPart &part, Index) {
  kvWriteKtElementTop(text, part, "WeightedPart");
  putRecord<WEIGHTED_PART_LINES, WeightedPartWords>(text, part);
  kvWriteKtNodeIndex(text, part.affected_node, "affected_node");
  kvWriteKtExternal(text, part.external_affected_obj, "external_affected_obj");
  kvWriteKtArray(text, part.weight_group_index, "weight_group_index");
  writeVtxTriNvColor(text, part.group_index);
}

void writeMorphPart(Text &text, const MorphPart &part, Index) {
  kvWriteKtElementTop(text, part, "MorphPart");
  kvWriteKtNodeIndex(text, one(part.node0), "node[0]");
  kvWriteKtExternal(text, one(part.external_obj0), "external_obj[0]");
  kvWriteKtNodeIndex(text, one(part.node1), "node[1]");
  kvWriteKtExternal(text, one(part.external_obj1), "external_obj[1]");
  putRecord<MORPH_PART_LINES, MorphPartWords>(text, part);
  writeVtxTriNvColor(text, part.group_index);
}

void writeEnvelopeTri(Text &text, const EnvelopeTri &tri, Index position) {
  print<"EnvelopeTri(%d)\n">(text, position);
  putRecord<ENVELOPE_TRI_LINES, EnvelopeTriTop>(text, tri);
  kvWriteKtNodeIndex(text, one(tri.envelope_part_for_tri), "envelope_part_for_tri");
  putRecord<ENVELOPE_TRI_INDEX_LINES, EnvelopeTriIndices>(text, tri);
  Index corner = 0;
  for (const EnvelopeVtx &vtx : tri.vtx) {
    print<"EnvelopeVtx(%d)\n">(text, corner++);
    kvWriteKtNodeIndex(text, one(vtx.envelope_part), "envelope_part");
    putRecord<ENVELOPE_VTX_LINES, EnvelopeVtxIndices>(text, vtx);
  }
}

void writeEnvelope(Text &text, const Envelope &envelope, Index) {
  kvWriteKtElementTop(text, envelope, "Envelope");
  putRecord<ENVELOPE_LINES, EnvelopeWords>(text, envelope);
  writeElements(text, envelope.full_weighted_part_num, envelope.full_weighted_part, writeFullWeightedPart,
                writeExtBlk<FullWeightedPart>);
  writeElements(text, envelope.weighted_part_num, envelope.weighted_part, writeWeightedPart, writeExtBlk<WeightedPart>);
  writeElements(text, envelope.morph_part_num, envelope.morph_part, writeMorphPart, writeExtBlk<MorphPart>);
  Index position = 0;
  for (const EnvelopeTri &tri : counted(envelope.envelope_tri_num, envelope.envelope_tri))
    writeEnvelopeTri(text, tri, position++);
}

void writeCluster(Text &text, const Cluster &cluster) {
  kvWriteKtElementTop(text, cluster, "Cluster");
  kvWriteKtNodeIndex(text, one(cluster.transform_node), "transform_node");
  kvWriteKtExternal(text, one(cluster.external_transform_obj), "external_transform_obj");
  writeVtxTriNvColor(text, one(cluster.group_index));
  print<"cluster_st_group_index  %d\n">(text, cluster.cluster_st_group_index);
}

void writeClusterTri(Text &text, const ClusterTri &tri, Index position) {
  print<"ClusterTri(%d)\n">(text, position);
  putRecord<CLUSTER_TRI_LINES, ClusterTriTop>(text, tri);
  kvWriteKtNodeIndex(text, one(tri.cluster_for_tri), "cluster_for_tri");
  putRecord<CLUSTER_TRI_INDEX_LINES, ClusterTriIndices>(text, tri);
  Index corner = 0;
  for (const ClusterVtx &vtx : tri.vtx) {
    print<"ClusterVtx(%d)\n">(text, corner++);
    kvWriteKtNodeIndex(text, one(vtx.cluster), "cluster");
    putRecord<CLUSTER_VTX_LINES, ClusterVtxIndices>(text, vtx);
  }
}

void writeClusterShape(Text &text, const ClusterShape &shape, Index) {
  kvWriteKtElementTop(text, shape, "ClusterShape");
  putRecord<CLUSTER_SHAPE_LINES, ClusterShapeWords>(text, shape);
  for (const Cluster &cluster : counted(shape.cluster_num, shape.cluster))
    writeCluster(text, cluster);
  Index position = 0;
  for (const ClusterTri &tri : counted(shape.cluster_tri_num, shape.cluster_tri))
    writeClusterTri(text, tri, position++);
}

void writeWeightGroup(Text &text, const WeightGroup &group, Index) {
  kvWriteKtElementTop(text, group, "WeightGroup");
  putRecord<WEIGHT_GROUP_LINES, WeightGroupWords>(text, group);
  kvWriteKtArrayf(text, group.weight, "weight");
}

} // namespace

void kvWriteKtEnvelopeList(Text &text, const EnvelopeList &list) {
  writeVersion2Section<"envelope_num       %d\n">(text, list, "EnvelopeList", "envelope_size", writeEnvelope);
}

void kvWriteKtClusterList(Text &text, const ClusterList &list) {
  writeVersion2Section<"cluster_shape_num  %d\n">(text, list, "ClusterList", "cluster_shape_size", writeClusterShape);
}

void kvWriteKtWeightList(Text &text, const WeightList &list) {
  writeVersion2Section<"weight_group_num   %d\n">(text, list, "WeightList", "weight_group_num_byte", writeWeightGroup);
}

} // namespace kova
