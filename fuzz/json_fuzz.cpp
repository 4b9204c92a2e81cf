/// libFuzzer target: a document, or else a file, through kbjson. A file comes back byte for byte from documents of all
/// kinds; so does the file that a document is about.
#include "fuzz/target.h"
#include "json/tests/roundtrip.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size) {
  using namespace kova::json;
  if (size > 0 && data[0] == '{')
    return kova::fuzz::endRound(brokenDocument({reinterpret_cast<const char *>(data), size}));
  return kova::fuzz::endRound(brokenRoundTrips({data, size}));
}
