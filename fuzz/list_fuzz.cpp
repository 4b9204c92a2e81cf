/// libFuzzer target: one list through its reader, its check and its dump.
#include "fuzz/audit.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  kova::fuzz::auditList(data, size);
  return 0;
}
