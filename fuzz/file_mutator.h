/// The mutator of targets that take whole files: it repairs the header, so that most inputs get past it; one in eight
/// is left as it is.
#pragma once

#include "harness/audit.h"

#include <algorithm>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t *data, std::size_t size, std::size_t max_size);

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
