/// The words of the envelopes, the clusters and the weights.
#pragma once

#include "format/list.h"
#include "kova/skinning.h"

namespace kova {

inline constexpr char VTX_TRI_NV_COLOR_HEADING[] = "VtxTriNvColor(%d)\n";
template <>
inline constexpr auto WORDS<VtxTriNvColor> = words<VtxTriNvColor>({
    {"vtx_group_index        %d\n", &VtxTriNvColor::vtx_group_index, link(To::vtx)},
    {"vtx_nv_group_index     %d\n", &VtxTriNvColor::vtx_nv_group_index, link(To::vtx_nv)},
    {"tri_nv_group_index     %d\n", &VtxTriNvColor::tri_nv_group_index, link(To::tri_nv)},
    {"vtx_color_group_index  %d\n", &VtxTriNvColor::vtx_color_group_index, link(To::vtx_color)},
    {"tri_color_group_index  %d\n", &VtxTriNvColor::tri_color_group_index, link(To::tri_color)},
});

inline constexpr auto ENVELOPE_LIST_WORDS = version2ListWords("envelope_num       %d\n");
template <>
inline constexpr auto WORDS<EnvelopeHead> = words<EnvelopeHead>({
    WORDS<ElementHead>,
    {"envelope_type           %0#10x\n", &EnvelopeHead::envelope_type},
    {"full_weighted_part_num  %d\n", &EnvelopeHead::full_weighted_part_num, COUNT},
    {"weighted_part_num       %d\n", &EnvelopeHead::weighted_part_num, COUNT},
    {"morph_part_num          %d\n", &EnvelopeHead::morph_part_num, COUNT},
    {"envelope_tri_num        %d\n", &EnvelopeHead::envelope_tri_num, COUNT},
    {"van_ext_blk_size        %d\n", &EnvelopeHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size        %d\n", &EnvelopeHead::usr_ext_blk_size, USR_SIZE},
});

template <>
inline constexpr auto WORDS<FullWeightedPartHead> = words<FullWeightedPartHead>({
    WORDS<ElementHead>,
    node("transform_node_full", &FullWeightedPartHead::transform_node_full),
    external("external_transform_obj", &FullWeightedPartHead::external_transform_obj),
    nested(VTX_TRI_NV_COLOR_HEADING, &FullWeightedPartHead::group_index),
    {"full_weighted_st_group_index  %d\n", &FullWeightedPartHead::full_weighted_st_group_index, link(To::st)},
    {"van_ext_blk_size              %d\n", &FullWeightedPartHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size              %d\n", &FullWeightedPartHead::usr_ext_blk_size, USR_SIZE},
});

template <>
inline constexpr auto WORDS<WeightedPartHead> = words<WeightedPartHead>({
    WORDS<ElementHead>,
    {"affected_node_num          %d\n", &WeightedPartHead::affected_node_num, COUNT},
    {"weight_st_group_index      %d\n", &WeightedPartHead::weight_st_group_index, link(To::st)},
    {"external_affected_obj_num  %d\n", &WeightedPartHead::external_affected_obj_num, COUNT},
    {"van_ext_blk_size           %d\n", &WeightedPartHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size           %d\n", &WeightedPartHead::usr_ext_blk_size, USR_SIZE},
});

template <>
inline constexpr auto WORDS<MorphPartHead> = words<MorphPartHead>({
    WORDS<ElementHead>,
    node("node[0]", &MorphPartHead::node0),
    external("external_obj[0]", &MorphPartHead::external_obj0),
    node("node[1]", &MorphPartHead::node1),
    external("external_obj[1]", &MorphPartHead::external_obj1),
    {"morph_st_group_index  %d\n", &MorphPartHead::morph_st_group_index, link(To::st)},
    {"table_num             %d\n", &MorphPartHead::table_num, COUNT},
    {"van_ext_blk_size      %d\n", &MorphPartHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size      %d\n", &MorphPartHead::usr_ext_blk_size, USR_SIZE},
});

template <>
inline constexpr auto WORDS<EnvelopeVtx> = words<EnvelopeVtx>({
    node("envelope_part", &EnvelopeVtx::envelope_part, To::own_part),
    {"vtx_index        %d\n", &EnvelopeVtx::vtx_index, link(To::own_vtx)},
    {"st_index         %d\n", &EnvelopeVtx::st_index, link(To::own_st)},
    {"vtx_nv_index     %d\n", &EnvelopeVtx::vtx_nv_index, link(To::own_vtx_nv)},
    {"vtx_color_index  %d\n", &EnvelopeVtx::vtx_color_index, link(To::own_vtx_color)},
    {"weight_index     %d\n", &EnvelopeVtx::weight_index, link(To::own_weight)},
});
template <>
inline constexpr auto WORDS<EnvelopeTri> = words<EnvelopeTri>({
    {"envelope_tri_tag         %0#10x\n", &EnvelopeTri::envelope_tri_tag, TAG},
    {"this_envelope_tri_index  %d\n", &EnvelopeTri::this_envelope_tri_index, OWN_INDEX},
    {"envelope_tri_size        %d\n", &EnvelopeTri::envelope_tri_size, SIZE},
    node("envelope_part_for_tri", &EnvelopeTri::envelope_part_for_tri, To::own_part),
    {"tri_nv_index             %d\n", &EnvelopeTri::tri_nv_index, link(To::own_tri_nv)},
    {"tri_color_index          %d\n", &EnvelopeTri::tri_color_index, link(To::own_tri_color)},
    {"weight_index_tri         %d\n", &EnvelopeTri::weight_index_tri, link(To::own_weight)},
    nested("EnvelopeVtx(%d)\n", &EnvelopeTri::vtx),
});

inline constexpr auto CLUSTER_LIST_WORDS = version2ListWords("cluster_shape_num  %d\n");
template <>
inline constexpr auto WORDS<ClusterShapeHead> = words<ClusterShapeHead>({
    WORDS<ElementHead>,
    {"cluster_shape_type  %0#10x\n", &ClusterShapeHead::cluster_shape_type},
    {"cluster_num         %d\n", &ClusterShapeHead::cluster_num, COUNT},
    {"cluster_tri_num     %d\n", &ClusterShapeHead::cluster_tri_num, COUNT},
    {"van_ext_blk_size    %d\n", &ClusterShapeHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size    %d\n", &ClusterShapeHead::usr_ext_blk_size, USR_SIZE},
});

template <>
inline constexpr auto WORDS<Cluster> = words<Cluster>({
    WORDS<ElementHead>,
    node("transform_node", &Cluster::transform_node),
    external("external_transform_obj", &Cluster::external_transform_obj),
    nested(VTX_TRI_NV_COLOR_HEADING, &Cluster::group_index),
    {"cluster_st_group_index  %d\n", &Cluster::cluster_st_group_index, link(To::st)},
});

template <>
inline constexpr auto WORDS<ClusterVtx> = words<ClusterVtx>({
    node("cluster", &ClusterVtx::cluster, To::own_cluster),
    {"vtx_index        %d\n", &ClusterVtx::vtx_index, link(To::own_vtx)},
    {"st_index         %d\n", &ClusterVtx::st_index, link(To::own_st)},
    {"vtx_nv_index     %d\n", &ClusterVtx::vtx_nv_index, link(To::own_vtx_nv)},
    {"vtx_color_index  %d\n", &ClusterVtx::vtx_color_index, link(To::own_vtx_color)},
});
template <>
inline constexpr auto WORDS<ClusterTri> = words<ClusterTri>({
    {"cluster_tri_tag         %0#10x\n", &ClusterTri::cluster_tri_tag, TAG},
    {"this_cluster_tri_index  %d\n", &ClusterTri::this_cluster_tri_index, OWN_INDEX},
    {"cluster_tri_size        %d\n", &ClusterTri::cluster_tri_size, SIZE},
    node("cluster_for_tri", &ClusterTri::cluster_for_tri, To::own_cluster),
    {"tri_nv_index            %d\n", &ClusterTri::tri_nv_index, link(To::own_tri_nv)},
    {"tri_color_index         %d\n", &ClusterTri::tri_color_index, link(To::own_tri_color)},
    nested("ClusterVtx(%d)\n", &ClusterTri::vtx),
});

inline constexpr auto WEIGHT_LIST_WORDS = version2ListWords("weight_group_num   %d\n");
template <>
inline constexpr auto WORDS<WeightGroupHead> = words<WeightGroupHead>({
    WORDS<ElementHead>,
    {"weight_num        %d\n", &WeightGroupHead::weight_num, COUNT},
    {"van_ext_blk_size  %d\n", &WeightGroupHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size  %d\n", &WeightGroupHead::usr_ext_blk_size, USR_SIZE},
});

// --- Content --------------------------------------------------------------------------------------------------------

template <class Io> constexpr int content(Io &io, const FullWeightedPartHead &) { return io.blocks(); }

/// Every affected node and every external affected object has a weight group and a record of group indices.
template <class Io> constexpr int content(Io &io, const WeightedPartHead &) {
  constexpr Sum AFFECTED = {&WeightedPart::affected_node_num, &WeightedPart::external_affected_obj_num};
  return io.pairs(label<"affected_node">, &WeightedPart::affected_node, &WeightedPart::affected_node_num, To::any) &&
         io.pairs(label<"external_affected_obj">, &WeightedPart::external_affected_obj,
                  &WeightedPart::external_affected_obj_num, To::external_name) &&
         io.array(line<"weight_group_index[%d]  %d\n">, &WeightedPart::weight_group_index, AFFECTED, To::weight) &&
         io.pairs(label<"group_index">, &WeightedPart::group_index, AFFECTED) && io.blocks();
}

template <class Io> constexpr int content(Io &io, const MorphPartHead &) {
  return io.pairs(label<"group_index">, &MorphPart::group_index, &MorphPart::table_num) && io.blocks();
}

template <class Io> constexpr int content(Io &io, const EnvelopeHead &) {
  return io.records(items<FullWeightedPartHead, "full_weighted_part", "FullWeightedPart(%d)\n">,
                    &Envelope::full_weighted_part, &Envelope::full_weighted_part_num) &&
         io.records(items<WeightedPartHead, "weighted_part", "WeightedPart(%d)\n">, &Envelope::weighted_part,
                    &Envelope::weighted_part_num) &&
         io.records(items<MorphPartHead, "morph_part", "MorphPart(%d)\n">, &Envelope::morph_part,
                    &Envelope::morph_part_num) &&
         io.run(items<EnvelopeTri, "envelope_tri", "EnvelopeTri(%d)\n">, &Envelope::envelope_tri,
                &Envelope::envelope_tri_num) &&
         io.blocks();
}

template <class Io> constexpr int content(Io &io, const ClusterShapeHead &) {
  return io.run(items<Cluster, "cluster", "Cluster(%d)\n">, &ClusterShape::cluster, &ClusterShape::cluster_num) &&
         io.run(items<ClusterTri, "cluster_tri", "ClusterTri(%d)\n">, &ClusterShape::cluster_tri,
                &ClusterShape::cluster_tri_num) &&
         io.blocks();
}

template <class Io> constexpr int content(Io &io, const WeightGroupHead &) {
  return io.array(line<"weight[%d]  %#g\n">, &WeightGroup::weight, &WeightGroup::weight_num) && io.blocks();
}

template <>
struct ListFormat<EnvelopeList>
    : CommonList<Envelope, ENVELOPE_LIST_WORDS, "envelope_size[%d]  %d\n",
                 items<EnvelopeHead, "element", "Envelope(%d)\n", ENVELOPE_LIST_TAG + ELEMENT_KIND>> {};

template <>
struct ListFormat<ClusterList>
    : CommonList<ClusterShape, CLUSTER_LIST_WORDS, "cluster_shape_size[%d]  %d\n",
                 items<ClusterShapeHead, "element", "ClusterShape(%d)\n", CLUSTER_LIST_TAG + ELEMENT_KIND>> {};

template <>
struct ListFormat<WeightList>
    : CommonList<WeightGroup, WEIGHT_LIST_WORDS, "weight_group_num_byte[%d]  %d\n",
                 items<WeightGroupHead, "element", "WeightGroup(%d)\n", WEIGHT_LIST_TAG + ELEMENT_KIND>> {};

} // namespace kova
