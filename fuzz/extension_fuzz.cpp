/// libFuzzer target: a maker block through its decoder, its check and its dump.
#include "fuzz/target.h"
#include "harness/audit.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size) {
  return kova::fuzz::endRound(kova::harness::auditExtension({data, size}));
}
