#include "format/skinning.h"
#include "textdump/content.h"

namespace kova {

namespace {

void writeFullWeightedPart(Text &text, const FullWeightedPart &part, Index) {
  kvWriteKtElementTop<LINES<FullWeightedPartHead>>(text, part, "FullWeightedPart");
}

void writeWeightedPart(Text &text, const WeightedPart &part, Index) {
  kvWriteKtElementTop<LINES<WeightedPartHead>>(text, part, "WeightedPart");
  printContent<WeightedPartHead>(text, part);
}

void writeMorphPart(Text &text, const MorphPart &part, Index) {
  kvWriteKtElementTop<LINES<MorphPartHead>>(text, part, "MorphPart");
  printContent<MorphPartHead>(text, part);
}

void writeEnvelope(Text &text, const Envelope &envelope, Index) {
  kvWriteKtElementTop<LINES<EnvelopeHead>>(text, envelope, "Envelope");
  writeElements(text, envelope.full_weighted_part_num, envelope.full_weighted_part, writeFullWeightedPart,
                writeExtBlk<FullWeightedPart>);
  writeElements(text, envelope.weighted_part_num, envelope.weighted_part, writeWeightedPart, writeExtBlk<WeightedPart>);
  writeElements(text, envelope.morph_part_num, envelope.morph_part, writeMorphPart, writeExtBlk<MorphPart>);
  printContent<EnvelopeHead>(text, envelope);
}

void writeClusterShape(Text &text, const ClusterShape &shape, Index) {
  kvWriteKtElementTop<LINES<ClusterShapeHead>>(text, shape, "ClusterShape");
  printContent<ClusterShapeHead>(text, shape);
}

void writeWeightGroup(Text &text, const WeightGroup &group, Index) {
  kvWriteKtElementTop<LINES<WeightGroupHead>>(text, group, "WeightGroup");
  printContent<WeightGroupHead>(text, group);
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
