/// kbsurvey: audits whole collections of KOVA scene files, and reports what it finds to people and to programs.

#include "common/file.h"
#include "survey/survey.h"

#include <cstdio>
#include <exception>

namespace {

int run(int argc, char **argv) {
  using namespace kova::survey;
  int status = FAILED;
  const std::optional<Options> options = readOptions(argc, argv, status);
  if (!options)
    return status;
  switch (options->task) {
  case Task::survey:
    return surveyFiles(*options);
  case Task::merge:
    return mergeReports(*options);
  case Task::list_findings:
    return listFindings(options->colour);
  case Task::explain:
    return explainFinding(options->explained, options->colour);
  }
  return FAILED;
}

} // namespace

int main(int argc, char **argv) {
  kova::prepareStreams();
  try {
    return run(argc, argv);
  } catch (const std::exception &error) { // no memory for what is not about one file
    std::fprintf(stderr, "kbsurvey: %s.\n", error.what());
    return kova::survey::FAILED;
  }
}
