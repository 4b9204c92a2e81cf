#include "kova/skinning.h"

#include "format/skinning.h"
#include "reader/elements.h"

namespace kova {

int kvSetupEnvelopeList(Cursor &cursor, EnvelopeList &list) { return readList(cursor, list, ENVELOPE_LIST_TAG); }
int kvSetupClusterList(Cursor &cursor, ClusterList &list) { return readList(cursor, list, CLUSTER_LIST_TAG); }
int kvSetupWeightList(Cursor &cursor, WeightList &list) { return readList(cursor, list, WEIGHT_LIST_TAG); }

int kvSetEnvelope0(EnvelopeList &list) {
  list.num = 0;
  return 1;
}

int kvSetCluster0(ClusterList &list) {
  list.num = 0;
  return 1;
}

int kvSetWeight0(WeightList &list) {
  list.num = 0;
  return 1;
}

int kvSetupVtxTriNvColor(Cursor &cursor, std::vector<VtxTriNvColor> &destination, std::uint64_t count) {
  return readPairs(cursor, destination, count);
}

} // namespace kova
