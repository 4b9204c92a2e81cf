/// kbsurvey: audits whole collections of KOVA scene files, and reports what it finds to people and to programs.

#include "survey/survey.h"

#include <cstdio>
#include <exception>
#include <fcntl.h>
#include <unistd.h>

namespace {

/// A stream that is closed when the program starts would give its number to the first file that is opened, and what is
/// printed would end up in a report. Instead it is something that can neither be read nor written.
void fillClosedStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    if (::fcntl(stream, F_GETFD) == -1)
      static_cast<void>(::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY)); // the lowest number is free
}

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
    return listFindings();
  case Task::explain:
    return explainFinding(options->explained);
  }
  return FAILED;
}

} // namespace

int main(int argc, char **argv) {
  fillClosedStreams();
  try {
    return run(argc, argv);
  } catch (const std::exception &error) { // no memory for what is not about one file
    std::fprintf(stderr, "kbsurvey: %s.\n", error.what());
    return kova::survey::FAILED;
  }
}
