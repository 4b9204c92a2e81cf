/// libFuzzer target: a whole file through the engine of kbrepair, with and without salvage. Half of the inputs are made
/// anew: files that were damaged by their structure, which bytes alone are hardly ever.
#include "fuzz/target.h"
#include "mend/tests/damage.h"
#include "mend/tests/mending.h"

#include <algorithm>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t *data, std::size_t size, std::size_t max_size);

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size) {
  return kova::fuzz::endRound(kova::mend::auditMending({data, size}));
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t *data, std::size_t size, std::size_t max_size,
                                               unsigned int seed) {
  if (seed % 2 == 0)
    return LLVMFuzzerMutate(data, size, max_size);
  const kova::harness::Bytes file = kova::mend::damagedFile(seed);
  size = std::min(file.size(), max_size);
  std::copy_n(file.begin(), size, data);
  return size;
}
