/// libFuzzer target: a whole file through load, check and dump. Its mutator repairs the header, so that most inputs get
/// past it; one in eight is left as it is.
#include "fuzz/audit.h"

#include <algorithm>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t *data, std::size_t size, std::size_t max_size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  kova::fuzz::auditFile(data, size);
  return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t *data, std::size_t size, std::size_t max_size,
                                               unsigned int seed) {
  size = LLVMFuzzerMutate(data, size, max_size);
  if (seed % 8 == 0)
    return size;
  std::vector<std::uint8_t> file(data, data + size);
  kova::fuzz::repairHeader(file);
  std::copy(file.begin(), file.end(), data);
  return size;
}
