/// libFuzzer target: a line of a JSON report, as --resume and --merge read it. What was read is written, and that is
/// read again and written as the same.
#include "fuzz/target.h"
#include "survey/json_line.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size) {
  using namespace kova::survey;
  const std::optional<FileResult> read = resultOf(std::string(data, data + size));
  if (!read)
    return 0;
  std::string line, second;
  appendLine(line, *read);
  const std::optional<FileResult> again = resultOf(line);
  if (again)
    appendLine(second, *again);
  const bool same = line == second;
  return kova::fuzz::endRound(same ? "" : "another line: " + line);
}
