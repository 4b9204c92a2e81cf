/// libFuzzer target: a maker block through its decoder, its check and its dump.
#include "fuzz/audit.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  kova::fuzz::auditExtension(data, size);
  return 0;
}
