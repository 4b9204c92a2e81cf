/// The sections of the envelopes, the clusters and the weights.
#pragma once

#include "textdump/palette.h"

namespace kova {

void kvWriteKtEnvelopeList(Text &text, const EnvelopeList &list);
void kvWriteKtClusterList(Text &text, const ClusterList &list);
void kvWriteKtWeightList(Text &text, const WeightList &list);

// --- Line tables: the words behind a heading, but for the node and external references among them -------------------

inline constexpr auto VTX_TRI_NV_COLOR_LINES = lines<VtxTriNvColor>({
    "vtx_group_index        %d\n",
    "vtx_nv_group_index     %d\n",
    "tri_nv_group_index     %d\n",
    "vtx_color_group_index  %d\n",
    "tri_color_group_index  %d\n",
});

using EnvelopeWords = Run<EnvelopeHead, &EnvelopeHead::envelope_type, &EnvelopeHead::usr_ext_blk_size>;
inline constexpr auto ENVELOPE_LINES = lines<EnvelopeWords>({
    "envelope_type           %0#10x\n",
    "full_weighted_part_num  %d\n",
    "weighted_part_num       %d\n",
    "morph_part_num          %d\n",
    "envelope_tri_num        %d\n",
    "van_ext_blk_size        %d\n",
    "usr_ext_blk_size        %d\n",
});

using FullWeightedPartWords = Run<FullWeightedPartHead, &FullWeightedPartHead::full_weighted_st_group_index,
                                  &FullWeightedPartHead::usr_ext_blk_size>;
inline constexpr auto FULL_WEIGHTED_PART_LINES = lines<FullWeightedPartWords>({
    "full_weighted_st_group_index  %d\n",
    "van_ext_blk_size              %d\n",
    "usr_ext_blk_size              %d\n",
});

using WeightedPartWords =
    Run<WeightedPartHead, &WeightedPartHead::affected_node_num, &WeightedPartHead::usr_ext_blk_size>;
inline constexpr auto WEIGHTED_PART_LINES = lines<WeightedPartWords>({
    "affected_node_num          %d\n",
    "weight_st_group_index      %d\n",
    "external_affected_obj_num  %d\n",
    "van_ext_blk_size           %d\n",
    "usr_ext_blk_size           %d\n",
});

using MorphPartWords = Run<MorphPartHead, &MorphPartHead::morph_st_group_index, &MorphPartHead::usr_ext_blk_size>;
inline constexpr auto MORPH_PART_LINES = lines<MorphPartWords>({
    "morph_st_group_index  %d\n",
    "table_num             %d\n",
    "van_ext_blk_size      %d\n",
    "usr_ext_blk_size      %d\n",
});

using EnvelopeTriTop = Run<EnvelopeTri, &EnvelopeTri::envelope_tri_tag, &EnvelopeTri::envelope_tri_size>;
inline constexpr auto ENVELOPE_TRI_LINES = lines<EnvelopeTriTop>({
    "envelope_tri_tag         %0#10x\n",
    "this_envelope_tri_index  %d\n",
    "envelope_tri_size        %d\n",
});

using EnvelopeTriIndices = Run<EnvelopeTri, &EnvelopeTri::tri_nv_index, &EnvelopeTri::weight_index_tri>;
inline constexpr auto ENVELOPE_TRI_INDEX_LINES = lines<EnvelopeTriIndices>({
    "tri_nv_index             %d\n",
    "tri_color_index          %d\n",
    "weight_index_tri         %d\n",
});

using EnvelopeVtxIndices = Run<EnvelopeVtx, &EnvelopeVtx::vtx_index, &EnvelopeVtx::weight_index>;
inline constexpr auto ENVELOPE_VTX_LINES = lines<EnvelopeVtxIndices>({
    "vtx_index        %d\n",
    "st_index         %d\n",
    "vtx_nv_index     %d\n",
    "vtx_color_index  %d\n",
    "weight_index     %d\n",
});

using ClusterShapeWords =
    Run<ClusterShapeHead, &ClusterShapeHead::cluster_shape_type, &ClusterShapeHead::usr_ext_blk_size>;
inline constexpr auto CLUSTER_SHAPE_LINES = lines<ClusterShapeWords>({
    "cluster_shape_type  %0#10x\n",
    "cluster_num         %d\n",
    "cluster_tri_num     %d\n",
    "van_ext_blk_size    %d\n",
    "usr_ext_blk_size    %d\n",
});

using ClusterTriTop = Run<ClusterTri, &ClusterTri::cluster_tri_tag, &ClusterTri::cluster_tri_size>;
inline constexpr auto CLUSTER_TRI_LINES = lines<ClusterTriTop>({
    "cluster_tri_tag         %0#10x\n",
    "this_cluster_tri_index  %d\n",
    "cluster_tri_size        %d\n",
});

using ClusterTriIndices = Run<ClusterTri, &ClusterTri::tri_nv_index, &ClusterTri::tri_color_index>;
inline constexpr auto CLUSTER_TRI_INDEX_LINES = lines<ClusterTriIndices>({
    "tri_nv_index            %d\n",
    "tri_color_index         %d\n",
});

using ClusterVtxIndices = Run<ClusterVtx, &ClusterVtx::vtx_index, &ClusterVtx::vtx_color_index>;
inline constexpr auto CLUSTER_VTX_LINES = lines<ClusterVtxIndices>({
    "vtx_index        %d\n",
    "st_index         %d\n",
    "vtx_nv_index     %d\n",
    "vtx_color_index  %d\n",
});

using WeightGroupWords = Run<WeightGroupHead, &WeightGroupHead::weight_num, &WeightGroupHead::usr_ext_blk_size>;
inline constexpr auto WEIGHT_GROUP_LINES = lines<WeightGroupWords>({
    "weight_num        %d\n",
    "van_ext_blk_size  %d\n",
    "usr_ext_blk_size  %d\n",
});

} // namespace kova
