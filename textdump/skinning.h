/// The line tables of the envelopes, the clusters and the weights.
#pragma once

#include "textdump/lines.h"

namespace kova {

// --- Line tables ----------------------------------------------------------------------------------------------------

inline constexpr char VTX_TRI_NV_COLOR_HEADING[] = "VtxTriNvColor(%d)\n";
inline constexpr auto VTX_TRI_NV_COLOR_LINES = lines<VtxTriNvColor>({
    {"vtx_group_index        %d\n", &VtxTriNvColor::vtx_group_index},
    {"vtx_nv_group_index     %d\n", &VtxTriNvColor::vtx_nv_group_index},
    {"tri_nv_group_index     %d\n", &VtxTriNvColor::tri_nv_group_index},
    {"vtx_color_group_index  %d\n", &VtxTriNvColor::vtx_color_group_index},
    {"tri_color_group_index  %d\n", &VtxTriNvColor::tri_color_group_index},
});

inline constexpr auto ENVELOPE_LIST_LINES = version2ListLines("envelope_num       %d\n");
inline constexpr auto ENVELOPE_LINES = lines<EnvelopeHead>({
    ELEMENT_TOP_LINES,
    {"envelope_type           %0#10x\n", &EnvelopeHead::envelope_type},
    {"full_weighted_part_num  %d\n", &EnvelopeHead::full_weighted_part_num},
    {"weighted_part_num       %d\n", &EnvelopeHead::weighted_part_num},
    {"morph_part_num          %d\n", &EnvelopeHead::morph_part_num},
    {"envelope_tri_num        %d\n", &EnvelopeHead::envelope_tri_num},
    {"van_ext_blk_size        %d\n", &EnvelopeHead::van_ext_blk_size},
    {"usr_ext_blk_size        %d\n", &EnvelopeHead::usr_ext_blk_size},
});

inline constexpr auto FULL_WEIGHTED_PART_LINES = lines<FullWeightedPartHead>({
    ELEMENT_TOP_LINES,
    nodeIndexLines("transform_node_full", &FullWeightedPartHead::transform_node_full),
    externalLines("external_transform_obj", &FullWeightedPartHead::external_transform_obj),
    nested(VTX_TRI_NV_COLOR_HEADING, VTX_TRI_NV_COLOR_LINES, &FullWeightedPartHead::group_index),
    {"full_weighted_st_group_index  %d\n", &FullWeightedPartHead::full_weighted_st_group_index},
    {"van_ext_blk_size              %d\n", &FullWeightedPartHead::van_ext_blk_size},
    {"usr_ext_blk_size              %d\n", &FullWeightedPartHead::usr_ext_blk_size},
});

inline constexpr auto WEIGHTED_PART_LINES = lines<WeightedPartHead>({
    ELEMENT_TOP_LINES,
    {"affected_node_num          %d\n", &WeightedPartHead::affected_node_num},
    {"weight_st_group_index      %d\n", &WeightedPartHead::weight_st_group_index},
    {"external_affected_obj_num  %d\n", &WeightedPartHead::external_affected_obj_num},
    {"van_ext_blk_size           %d\n", &WeightedPartHead::van_ext_blk_size},
    {"usr_ext_blk_size           %d\n", &WeightedPartHead::usr_ext_blk_size},
});

inline constexpr auto MORPH_PART_LINES = lines<MorphPartHead>({
    ELEMENT_TOP_LINES,
    nodeIndexLines("node[0]", &MorphPartHead::node0),
    externalLines("external_obj[0]", &MorphPartHead::external_obj0),
    nodeIndexLines("node[1]", &MorphPartHead::node1),
    externalLines("external_obj[1]", &MorphPartHead::external_obj1),
    {"morph_st_group_index  %d\n", &MorphPartHead::morph_st_group_index},
    {"table_num             %d\n", &MorphPartHead::table_num},
    {"van_ext_blk_size      %d\n", &MorphPartHead::van_ext_blk_size},
    {"usr_ext_blk_size      %d\n", &MorphPartHead::usr_ext_blk_size},
});

inline constexpr auto ENVELOPE_VTX_LINES = lines<EnvelopeVtx>({
    nodeIndexLines("envelope_part", &EnvelopeVtx::envelope_part),
    {"vtx_index        %d\n", &EnvelopeVtx::vtx_index},
    {"st_index         %d\n", &EnvelopeVtx::st_index},
    {"vtx_nv_index     %d\n", &EnvelopeVtx::vtx_nv_index},
    {"vtx_color_index  %d\n", &EnvelopeVtx::vtx_color_index},
    {"weight_index     %d\n", &EnvelopeVtx::weight_index},
});
inline constexpr auto ENVELOPE_TRI_LINES = lines<EnvelopeTri>({
    {"envelope_tri_tag         %0#10x\n", &EnvelopeTri::envelope_tri_tag},
    {"this_envelope_tri_index  %d\n", &EnvelopeTri::this_envelope_tri_index},
    {"envelope_tri_size        %d\n", &EnvelopeTri::envelope_tri_size},
    nodeIndexLines("envelope_part_for_tri", &EnvelopeTri::envelope_part_for_tri),
    {"tri_nv_index             %d\n", &EnvelopeTri::tri_nv_index},
    {"tri_color_index          %d\n", &EnvelopeTri::tri_color_index},
    {"weight_index_tri         %d\n", &EnvelopeTri::weight_index_tri},
    nested("EnvelopeVtx(%d)\n", ENVELOPE_VTX_LINES, &EnvelopeTri::vtx),
});

inline constexpr auto CLUSTER_LIST_LINES = version2ListLines("cluster_shape_num  %d\n");
inline constexpr auto CLUSTER_SHAPE_LINES = lines<ClusterShapeHead>({
    ELEMENT_TOP_LINES,
    {"cluster_shape_type  %0#10x\n", &ClusterShapeHead::cluster_shape_type},
    {"cluster_num         %d\n", &ClusterShapeHead::cluster_num},
    {"cluster_tri_num     %d\n", &ClusterShapeHead::cluster_tri_num},
    {"van_ext_blk_size    %d\n", &ClusterShapeHead::van_ext_blk_size},
    {"usr_ext_blk_size    %d\n", &ClusterShapeHead::usr_ext_blk_size},
});

inline constexpr auto CLUSTER_LINES = lines<Cluster>({
    ELEMENT_TOP_LINES,
    nodeIndexLines("transform_node", &Cluster::transform_node),
    externalLines("external_transform_obj", &Cluster::external_transform_obj),
    nested(VTX_TRI_NV_COLOR_HEADING, VTX_TRI_NV_COLOR_LINES, &Cluster::group_index),
    {"cluster_st_group_index  %d\n", &Cluster::cluster_st_group_index},
});

inline constexpr auto CLUSTER_VTX_LINES = lines<ClusterVtx>({
    nodeIndexLines("cluster", &ClusterVtx::cluster),
    {"vtx_index        %d\n", &ClusterVtx::vtx_index},
    {"st_index         %d\n", &ClusterVtx::st_index},
    {"vtx_nv_index     %d\n", &ClusterVtx::vtx_nv_index},
    {"vtx_color_index  %d\n", &ClusterVtx::vtx_color_index},
});
inline constexpr auto CLUSTER_TRI_LINES = lines<ClusterTri>({
    {"cluster_tri_tag         %0#10x\n", &ClusterTri::cluster_tri_tag},
    {"this_cluster_tri_index  %d\n", &ClusterTri::this_cluster_tri_index},
    {"cluster_tri_size        %d\n", &ClusterTri::cluster_tri_size},
    nodeIndexLines("cluster_for_tri", &ClusterTri::cluster_for_tri),
    {"tri_nv_index            %d\n", &ClusterTri::tri_nv_index},
    {"tri_color_index         %d\n", &ClusterTri::tri_color_index},
    nested("ClusterVtx(%d)\n", CLUSTER_VTX_LINES, &ClusterTri::vtx),
});

inline constexpr auto WEIGHT_LIST_LINES = version2ListLines("weight_group_num   %d\n");
inline constexpr auto WEIGHT_GROUP_LINES = lines<WeightGroupHead>({
    ELEMENT_TOP_LINES,
    {"weight_num        %d\n", &WeightGroupHead::weight_num},
    {"van_ext_blk_size  %d\n", &WeightGroupHead::van_ext_blk_size},
    {"usr_ext_blk_size  %d\n", &WeightGroupHead::usr_ext_blk_size},
});

} // namespace kova
