/// libFuzzer target: a whole file through the survey, with all that can be asked of it. The line of the report, read
/// again, gives the same result; so does the line without the findings beyond the first, but for them.
#include "fuzz/file_mutator.h"
#include "fuzz/target.h"
#include "harness/scratch.h"
#include "survey/audit.h"
#include "survey/json_line.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size) {
  using namespace kova::survey;
  static Workspace workspace;
  const kova::harness::ScratchFile file({data, size});
  FileResult result = audit({.path = file.path}, {.deep = true, .repairable = true}, workspace);
  std::string line;
  const std::size_t cut = appendLine(line, result);
  if (resultOf(line) != result)
    return kova::fuzz::endRound("another result of the line: " + line);
  line.resize(cut);
  completeLine(line);
  result.findings.resize(std::min(result.findings.size(), FIRST_FINDINGS));
  return kova::fuzz::endRound(resultOf(line) == result ? "" : "another result of the line that was cut: " + line);
}
