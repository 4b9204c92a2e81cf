/// libFuzzer target: a whole file through load, check, dump and save.
#include "fuzz/file_mutator.h"
#include "fuzz/target.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size) {
  return kova::fuzz::endRound(kova::harness::auditFile({data, size}));
}
