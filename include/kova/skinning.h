/// Envelopes, clusters and weights (version 2.0).
#pragma once

#include "kova/list.h"

#include <array>

namespace kova {

inline constexpr Word ENVELOPE_LIST_TAG = 0x00220000;
inline constexpr Word WEIGHT_LIST_TAG = 0x00230000;
inline constexpr Word CLUSTER_LIST_TAG = 0x00280000; ///< the highest tag, though the list stands fourth

/// The five groups that a part of a skin takes its geometry from.
struct VtxTriNvColor {
  Index vtx_group_index;
  Index vtx_nv_group_index;
  Index tri_nv_group_index;
  Index vtx_color_group_index;
  Index tri_color_group_index;
};
static_assert(sizeof(VtxTriNvColor) == 20);

struct FullWeightedPartHead : ElementHead {
  NodeIndex transform_node_full;
  External external_transform_obj;
  VtxTriNvColor group_index;
  Index full_weighted_st_group_index;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(FullWeightedPartHead) == 64);

struct FullWeightedPart : FullWeightedPartHead {
  ExtBlk ext_blk;
};

struct WeightedPartHead : ElementHead {
  Word affected_node_num;
  Index weight_st_group_index;
  Word external_affected_obj_num;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(WeightedPartHead) == 36);

/// Every affected node and every external affected object has a weight group and a record of group indices.
struct WeightedPart : WeightedPartHead {
  std::vector<NodeIndex> affected_node;
  std::vector<External> external_affected_obj;
  Indices weight_group_index;
  std::vector<VtxTriNvColor> group_index;
  ExtBlk ext_blk;
};

struct MorphPartHead : ElementHead {
  NodeIndex node0;
  External external_obj0;
  NodeIndex node1;
  External external_obj1;
  Index morph_st_group_index;
  Word table_num;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(MorphPartHead) == 64);

struct MorphPart : MorphPartHead {
  std::vector<VtxTriNvColor> group_index; ///< `table_num` records
  ExtBlk ext_blk;
};

struct EnvelopeVtx {
  NodeIndex envelope_part;
  Index vtx_index;
  Index st_index;
  Index vtx_nv_index;
  Index vtx_color_index;
  Index weight_index;
};
static_assert(sizeof(EnvelopeVtx) == 28);

struct EnvelopeTri {
  Word envelope_tri_tag;
  Index this_envelope_tri_index;
  Word envelope_tri_size;
  NodeIndex envelope_part_for_tri;
  Index tri_nv_index;
  Index tri_color_index;
  Index weight_index_tri;
  std::array<EnvelopeVtx, 3> vtx;
};
static_assert(sizeof(EnvelopeTri) == 116);

struct EnvelopeHead : ElementHead {
  Word envelope_type;
  Word full_weighted_part_num;
  Word weighted_part_num;
  Word morph_part_num;
  Word envelope_tri_num;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(EnvelopeHead) == 44);

struct Envelope : EnvelopeHead {
  std::vector<FullWeightedPart> full_weighted_part;
  std::vector<WeightedPart> weighted_part;
  std::vector<MorphPart> morph_part;
  std::vector<EnvelopeTri> envelope_tri;
  ExtBlk ext_blk;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

struct Cluster : ElementHead {
  NodeIndex transform_node;
  External external_transform_obj;
  VtxTriNvColor group_index;
  Index cluster_st_group_index;
};
static_assert(sizeof(Cluster) == 56);

struct ClusterVtx {
  NodeIndex cluster;
  Index vtx_index;
  Index st_index;
  Index vtx_nv_index;
  Index vtx_color_index;
};
static_assert(sizeof(ClusterVtx) == 24);

struct ClusterTri {
  Word cluster_tri_tag;
  Index this_cluster_tri_index;
  Word cluster_tri_size;
  NodeIndex cluster_for_tri;
  Index tri_nv_index;
  Index tri_color_index;
  std::array<ClusterVtx, 3> vtx;
};
static_assert(sizeof(ClusterTri) == 100);

struct ClusterShapeHead : ElementHead {
  Word cluster_shape_type;
  Word cluster_num;
  Word cluster_tri_num;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(ClusterShapeHead) == 36);

struct ClusterShape : ClusterShapeHead {
  std::vector<Cluster> cluster;
  std::vector<ClusterTri> cluster_tri;
  ExtBlk ext_blk;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

struct WeightGroupHead : ElementHead {
  Word weight_num;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(WeightGroupHead) == 28);

struct WeightGroup : WeightGroupHead {
  Floats weight;
  ExtBlk ext_blk;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

using EnvelopeList = List<Envelope>;
using ClusterList = List<ClusterShape>;
using WeightList = List<WeightGroup>;

} // namespace kova
