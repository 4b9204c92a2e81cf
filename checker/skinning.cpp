#include "kova/skinning.h"

#include "checker/steps.h"

namespace kova {

namespace {

// --- The bytes of the parts of an envelope in the file ---------------------------------------------------------------

/// Blocks are whole words.
template <class Record> std::uint64_t blockBytesOf(const Record &record) {
  return std::uint64_t{record.van_ext_blk_size & ~Word{3}} + (record.usr_ext_blk_size & ~Word{3});
}

std::uint64_t bytesOf(const FullWeightedPart &part) { return sizeof(FullWeightedPartHead) + blockBytesOf(part); }

std::uint64_t bytesOf(const WeightedPart &part) {
  const std::uint64_t affected = std::uint64_t{part.affected_node_num} + part.external_affected_obj_num;
  return sizeof(WeightedPartHead) + affected * (sizeof(NodeIndex) + sizeof(Index) + sizeof(VtxTriNvColor)) +
         blockBytesOf(part);
}

std::uint64_t bytesOf(const MorphPart &part) {
  return sizeof(MorphPartHead) + std::uint64_t{part.table_num} * sizeof(VtxTriNvColor) + blockBytesOf(part);
}

std::uint64_t bytesOf(const EnvelopeTri &) { return sizeof(EnvelopeTri); }

// --- The parts of an envelope ----------------------------------------------------------------------------------------

int checkPart(const Place &place, const FullWeightedPart &part) {
  const Word sum = fixedBytes<FullWeightedPartHead> + part.van_ext_blk_size + part.usr_ext_blk_size;
  if (part.size == sum)
    return 1;
  return report<"full-weighted-part-sum">(place, {part.size, sum}, part.this_index, part.size,
                                          fixedBytes<FullWeightedPartHead>, part.van_ext_blk_size,
                                          part.usr_ext_blk_size);
}

int checkPart(const Place &place, const WeightedPart &part) {
  const Word nodes = part.affected_node_num;
  const Word externals = part.external_affected_obj_num;
  constexpr Word HEAD = fixedBytes<WeightedPartHead>;
  constexpr Word PAIR = fixedBytes<NodeIndex>;
  constexpr Word WEIGHT_GROUP_INDEX = fixedBytes<Index>;
  constexpr Word GROUP_INDICES = fixedBytes<VtxTriNvColor>;
  static_assert(PAIR == fixedBytes<External>);
  const Word sum = HEAD + (PAIR + WEIGHT_GROUP_INDEX + GROUP_INDICES) * (nodes + externals) + part.van_ext_blk_size +
                   part.usr_ext_blk_size;
  if (part.size == sum)
    return 1;
  return report<"weighted-part-sum">(place, {part.size, sum}, part.this_index, part.size, HEAD, nodes, PAIR, externals,
                                     PAIR, nodes, externals, WEIGHT_GROUP_INDEX, nodes, externals, GROUP_INDICES,
                                     part.van_ext_blk_size, part.usr_ext_blk_size);
}

int checkPart(const Place &place, const MorphPart &part) {
  const Word sum = fixedBytes<MorphPartHead> + fixedBytes<VtxTriNvColor> * part.table_num + part.van_ext_blk_size +
                   part.usr_ext_blk_size;
  if (part.size == sum)
    return 1;
  return report<"morph-part-sum">(place, {part.size, sum}, part.this_index, part.size, fixedBytes<MorphPartHead>,
                                  part.table_num, fixedBytes<VtxTriNvColor>, part.van_ext_blk_size,
                                  part.usr_ext_blk_size);
}

int checkPart(const Place &place, const EnvelopeTri &triangle) {
  const Word size = triangle.envelope_tri_size;
  return checkSame<"envelope-triangle-size">(wordOf(place, triangle, &EnvelopeTri::envelope_tri_size),
                                             {"EnvelopeTri", static_cast<Word>(triangle.this_envelope_tri_index), ""},
                                             size, fixedBytes<EnvelopeTri>, {size, fixedBytes<EnvelopeTri>});
}

/// Checks all `parts` and moves `place` from the first of them to what follows the last.
template <class Part> int checkParts(Place &place, std::span<const Part> parts) {
  int ok = 1;
  for (const Part &part : parts) {
    ok *= checkPart(place, part);
    place = after(place, bytesOf(part));
  }
  return ok;
}

// --- The elements of the lists ---------------------------------------------------------------------------------------

/// Checks an envelope and everything below it; a last line names the envelope after all of that.
int checkEnvelope(const Listed<Envelope> &listed) {
  const Envelope &envelope = listed.element;
  int ok = checkIndexSize("Envelope", listed);

  const auto full_weighted_parts = counted(envelope.full_weighted_part_num, envelope.full_weighted_part);
  const auto weighted_parts = counted(envelope.weighted_part_num, envelope.weighted_part);
  const auto morph_parts = counted(envelope.morph_part_num, envelope.morph_part);
  const auto triangles = counted(envelope.envelope_tri_num, envelope.envelope_tri);
  const Word sum = fixedBytes<EnvelopeHead> + sumofElementSize(full_weighted_parts) + sumofElementSize(weighted_parts) +
                   sumofElementSize(morph_parts) + sumofMemberVal(triangles, &EnvelopeTri::envelope_tri_size) +
                   envelope.van_ext_blk_size + envelope.usr_ext_blk_size;
  if (envelope.size != sum)
    ok = report<"envelope-sum">(listed.place, {envelope.size, sum}, listed.number, envelope.size, sum);

  Place place = after(listed.place, sizeof(EnvelopeHead));
  ok *= checkParts(place, full_weighted_parts);
  ok *= checkParts(place, weighted_parts);
  ok *= checkParts(place, morph_parts);
  ok *= checkParts(place, triangles);
  return ok ? 1 : report<"envelope-faulty">(listed.place, {}, listed.number);
}

/// As an envelope. The size message shows what the size should be and not what it is, on purpose.
int checkClusterShape(const Listed<ClusterShape> &listed) {
  const ClusterShape &shape = listed.element;
  int ok = checkIndexSize("ClusterShape", listed);

  const Word expected = fixedBytes<ClusterShapeHead> + fixedBytes<Cluster> * shape.cluster_num +
                        fixedBytes<ClusterTri> * shape.cluster_tri_num + shape.van_ext_blk_size +
                        shape.usr_ext_blk_size;
  if (shape.size != expected)
    ok = report<"cluster-shape-sum">(listed.place, {shape.size, expected}, listed.number, expected,
                                     fixedBytes<ClusterShapeHead>, shape.cluster_num, fixedBytes<Cluster>,
                                     shape.cluster_tri_num, fixedBytes<ClusterTri>, shape.van_ext_blk_size,
                                     shape.usr_ext_blk_size);

  // These two go by position, where the parts of an envelope go by the index that they store.
  Place place = after(listed.place, sizeof(ClusterShapeHead));
  for (Word j = 0; const Cluster &cluster : counted(shape.cluster_num, shape.cluster)) {
    ok *= checkSame<"cluster-size">(wordOf(place, cluster, &Cluster::size), {"Cluster", j++, ""}, cluster.size,
                                    fixedBytes<Cluster>, {cluster.size, fixedBytes<Cluster>});
    place = after(place, sizeof(Cluster));
  }
  for (Word j = 0; const ClusterTri &triangle : counted(shape.cluster_tri_num, shape.cluster_tri)) {
    const Word size = triangle.cluster_tri_size;
    ok *= checkSame<"cluster-triangle-size">(wordOf(place, triangle, &ClusterTri::cluster_tri_size),
                                             {"ClusterTri", j++, ""}, size, fixedBytes<ClusterTri>,
                                             {size, fixedBytes<ClusterTri>});
    place = after(place, sizeof(ClusterTri));
  }
  return ok ? 1 : report<"cluster-shape-faulty">(listed.place, {}, listed.number);
}

int checkWeightGroup(const Listed<WeightGroup> &listed) {
  const WeightGroup &group = listed.element;
  int ok = checkIndexSize("WeightGroup", listed);
  ok *= checkWordArraySum(listed.place, {"WeightGroup", listed.number, ""}, group.size, fixedBytes<WeightGroupHead>,
                          group.weight_num, group.van_ext_blk_size, group.usr_ext_blk_size);
  return ok;
}

} // namespace

int checkEnvelopeList(const Kis &kis) { return checkList(kis, listRow("EnvelopeList"), kis.envelope, checkEnvelope); }

int checkFullWeightedPart(const FullWeightedPart &part) { return checkPart({}, part); }
int checkWeightedPart(const WeightedPart &part) { return checkPart({}, part); }
int checkMorphPart(const MorphPart &part) { return checkPart({}, part); }
int checkEnvelopeTri(const EnvelopeTri &triangle) { return checkPart({}, triangle); }

int checkClusterList(const Kis &kis) { return checkList(kis, listRow("ClusterList"), kis.cluster, checkClusterShape); }

int checkWeightList(const Kis &kis) { return checkList(kis, listRow("WeightList"), kis.weight, checkWeightGroup); }

} // namespace kova
