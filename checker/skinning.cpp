#include "kova/skinning.h"

#include "checker/steps.h"

namespace kova {

namespace {

/// Checks an envelope and everything below it; a last line names the envelope after all of that.
int checkEnvelope(Word number, Word table_size, const Envelope &envelope) {
  int ok = checkIndexSize("Envelope", number, table_size, envelope);

  const auto full_weighted_parts = counted(envelope.full_weighted_part_num, envelope.full_weighted_part);
  const auto weighted_parts = counted(envelope.weighted_part_num, envelope.weighted_part);
  const auto morph_parts = counted(envelope.morph_part_num, envelope.morph_part);
  const auto triangles = counted(envelope.envelope_tri_num, envelope.envelope_tri);
  const Word sum = fixedBytes<EnvelopeHead> + sumofElementSize(full_weighted_parts) + sumofElementSize(weighted_parts) +
                   sumofElementSize(morph_parts) + sumofMemberVal(triangles, &EnvelopeTri::envelope_tri_size) +
                   envelope.van_ext_blk_size + envelope.usr_ext_blk_size;
  if (envelope.size != sum) {
    std::printf("Envelope[%d] %d != %d : some of size data is wrong in Envelope\n"
                "or FullWeigtedPart/WeightedPart/MorphPart/EnvelopeTri\n",
                asSigned(number), asSigned(envelope.size), asSigned(sum));
    ok = 0;
  }

  for (const FullWeightedPart &part : full_weighted_parts)
    ok *= checkFullWeightedPart(part);
  for (const WeightedPart &part : weighted_parts)
    ok *= checkWeightedPart(part);
  for (const MorphPart &part : morph_parts)
    ok *= checkMorphPart(part);
  for (const EnvelopeTri &triangle : triangles)
    ok *= checkEnvelopeTri(triangle);
  if (!ok)
    std::printf("--- Error in Envelope[%d]\n", asSigned(number));
  return ok;
}

/// As an envelope. The size message shows what the size should be and not what it is, on purpose.
int checkClusterShape(Word number, Word table_size, const ClusterShape &shape) {
  int ok = checkIndexSize("ClusterShape", number, table_size, shape);

  const Word expected = fixedBytes<ClusterShapeHead> + fixedBytes<Cluster> * shape.cluster_num +
                        fixedBytes<ClusterTri> * shape.cluster_tri_num + shape.van_ext_blk_size +
                        shape.usr_ext_blk_size;
  if (shape.size != expected) {
    std::printf("Cluster_Shape[%d] : some of size data is wrong.  %d = %d + %d * %d + %d * %d + %d +%d\n",
                asSigned(number), asSigned(expected), asSigned(fixedBytes<ClusterShapeHead>),
                asSigned(shape.cluster_num), asSigned(fixedBytes<Cluster>), asSigned(shape.cluster_tri_num),
                asSigned(fixedBytes<ClusterTri>), asSigned(shape.van_ext_blk_size), asSigned(shape.usr_ext_blk_size));
    ok = 0;
  }

  // These two go by position, where the parts of an envelope go by the index that they store.
  ok *= checkEach(counted(shape.cluster_num, shape.cluster), [](Word j, const Cluster &cluster) {
    return checksame(elementLabel("Cluster", j, "").text, cluster.size, fixedBytes<Cluster>);
  });
  ok *= checkEach(counted(shape.cluster_tri_num, shape.cluster_tri), [](Word j, const ClusterTri &triangle) {
    return checksame(elementLabel("ClusterTri", j, "").text, triangle.cluster_tri_size, fixedBytes<ClusterTri>);
  });
  if (!ok)
    std::printf("--- Error in ClusterShape[%d]\n", asSigned(number));
  return ok;
}

int checkWeightGroup(Word number, Word table_size, const WeightGroup &group) {
  int ok = checkIndexSize("WeightGroup", number, table_size, group);
  ok *=
      check_whole_structured_size(elementLabel("WeightGroup", number, "").text, group.size, fixedBytes<WeightGroupHead>,
                                  {}, group.weight_num, group.van_ext_blk_size, group.usr_ext_blk_size);
  return ok;
}

} // namespace

int checkEnvelopeList(const Kis &kis) { return checkList(kis, listRow("EnvelopeList"), kis.envelope, checkEnvelope); }

int checkFullWeightedPart(const FullWeightedPart &part) {
  if (part.size == fixedBytes<FullWeightedPartHead> + part.van_ext_blk_size + part.usr_ext_blk_size)
    return 1;
  std::printf("FullWeightedPart[%d] size : %d != %d + %d + %d\n", part.this_index, asSigned(part.size),
              asSigned(fixedBytes<FullWeightedPartHead>), asSigned(part.van_ext_blk_size),
              asSigned(part.usr_ext_blk_size));
  return 0;
}

int checkWeightedPart(const WeightedPart &part) {
  const Word nodes = part.affected_node_num;
  const Word externals = part.external_affected_obj_num;
  constexpr Word HEAD = fixedBytes<WeightedPartHead>;
  constexpr Word PAIR = fixedBytes<NodeIndex>;
  constexpr Word WEIGHT_GROUP_INDEX = fixedBytes<Index>;
  constexpr Word GROUP_INDICES = fixedBytes<VtxTriNvColor>;
  static_assert(PAIR == fixedBytes<External>);
  if (part.size == HEAD + (PAIR + WEIGHT_GROUP_INDEX + GROUP_INDICES) * (nodes + externals) + part.van_ext_blk_size +
                       part.usr_ext_blk_size)
    return 1;
  std::printf("WeightedPart[%d] size : %d != %d + %d*%d + %d*%d + (%d+%d)*%d + (%d+%d)*%d + %d + %d\n", part.this_index,
              asSigned(part.size), asSigned(HEAD), asSigned(nodes), asSigned(PAIR), asSigned(externals), asSigned(PAIR),
              asSigned(nodes), asSigned(externals), asSigned(WEIGHT_GROUP_INDEX), asSigned(nodes), asSigned(externals),
              asSigned(GROUP_INDICES), asSigned(part.van_ext_blk_size), asSigned(part.usr_ext_blk_size));
  return 0;
}

int checkMorphPart(const MorphPart &part) {
  if (part.size == fixedBytes<MorphPartHead> + fixedBytes<VtxTriNvColor> * part.table_num + part.van_ext_blk_size +
                       part.usr_ext_blk_size)
    return 1;
  std::printf("MorphPart[%d] size : %d != %d + %d * %d + %d + %d\n", part.this_index, asSigned(part.size),
              asSigned(fixedBytes<MorphPartHead>), asSigned(part.table_num), asSigned(fixedBytes<VtxTriNvColor>),
              asSigned(part.van_ext_blk_size), asSigned(part.usr_ext_blk_size));
  return 0;
}

int checkEnvelopeTri(const EnvelopeTri &triangle) {
  return checksame(elementLabel("EnvelopeTri", static_cast<Word>(triangle.this_envelope_tri_index), "").text,
                   triangle.envelope_tri_size, fixedBytes<EnvelopeTri>);
}

int checkClusterList(const Kis &kis) { return checkList(kis, listRow("ClusterList"), kis.cluster, checkClusterShape); }

int checkWeightList(const Kis &kis) { return checkList(kis, listRow("WeightList"), kis.weight, checkWeightGroup); }

} // namespace kova
