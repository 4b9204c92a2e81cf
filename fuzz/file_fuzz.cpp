/// libFuzzer target: a whole file through load, check, dump and save. Its mutator repairs the header, so that most
/// inputs get past it; one in eight is left as it is.
#include "fuzz/target.h"
#include "harness/audit.h"

#include <algorithm>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t *data, std::size_t size, std::size_t max_size);

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size) {
  return kova::fuzz::endRound(kova::harness::auditFile({data, size}));
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t *data, std::size_t size, std::size_t max_size,
                                               unsigned int seed) {
  size = LLVMFuzzerMutate(data, size, max_size);
  if (seed % 8 == 0)
    return size;
  kova::harness::Bytes file(data, data + size);
  kova::harness::repairHeader(file);
  std::copy(file.begin(), file.end(), data);
  return size;
}
