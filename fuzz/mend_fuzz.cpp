/// libFuzzer target: a whole file through the engine of kbrepair, with and without salvage.
#include "fuzz/target.h"
#include "repair/tests/mending.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size) {
  return kova::fuzz::endRound(kova::repair::auditMending({data, size}));
}
