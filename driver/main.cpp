/// kbaudit: loads a KOVA scene file, checks it, prints the verdict, and writes the text form of what it holds.

#include "common/memory.h"
#include "kova/check.h"
#include "kova/kova.h"
#include "kova/kt.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>

namespace {

constexpr int EXIT_REFUSED = -1; // no verdict or no complete report; a damaged file is reported by the verdict alone
constexpr const char *STARS = "************************************************************\n";

bool asksForUsage(const char *argument) {
  return argument == nullptr || std::strcmp(argument, "-h") == 0 || std::strcmp(argument, "-help") == 0;
}

/// The reason for which standard output could not be written, once one is known.
struct Output {
  int error = 0;
};

/// Looks at standard output after a step. The system's reason is still there: a step that has failed to write sets it,
/// and what it writes afterwards with success leaves it as it is.
void noteWriteError(Output &output) {
  if (output.error == 0 && std::ferror(stdout) != 0)
    output.error = errno != 0 ? errno : EIO;
  errno = 0;
}

/// Closes standard output. @return `status`, or `EXIT_REFUSED` where the output is not complete. This is reported,
/// unless the reader of a pipe has closed it.
int finish(Output &output, int status) {
  noteWriteError(output);
  if (std::fclose(stdout) != 0 && output.error == 0)
    output.error = errno;
  if (output.error == 0)
    return status;
  if (output.error != EPIPE)
    std::fprintf(stderr, "kbaudit: standard output cannot be written: %s.\n", std::strerror(output.error));
  return EXIT_REFUSED;
}

int refuseArguments() {
  std::fputs("Usage:\tkbaudit file\n"
             "      \tfile is an input KOVA file.\n",
             stderr);
  return EXIT_REFUSED;
}

int refuseVersion(kova::Word version) {
  std::printf("This file is not KOVA 2.0\n");
  std::printf("version = %0#10x\n", version);
  return EXIT_REFUSED;
}

void printLoadError() { std::printf("%s**** ERR : Can't Read File Correctly.\n%s", STARS, STARS); }

void printSummary(const kova::Kis &kis, kova::Word version, int verdict) {
  std::printf("%s", STARS);
  std::printf("**** File Name    : %s\n", kis.file_name.c_str());
  std::printf("**** KOVA Version : %2x.%0#2x\n", version >> 8, version & 0xff);
  std::printf("**** check result : %s\n", verdict != 0 ? "OK" : "ERR !!");
  if (verdict == 1)
    std::printf("**** But, this does not guarantee all data are correct.\n");
  std::printf("%s", STARS);
}

/// Loads, checks and dumps the file at `path`. @return the exit status.
int audit(const char *path, kova::Kis &kis, Output &output) {
  int verdict = kova::kvOpenKb(path, kis);
  if (verdict == 0)
    printLoadError(); // what could be read is checked and dumped all the same

  const kova::Word version = kova::kvKOVAver(kis.file_header);
  if (version != kova::VERSION_1 && version != kova::VERSION_2)
    return refuseVersion(kis.file_header.version);
  noteWriteError(output);
  verdict *= kova::checkKOVA(kis);
  noteWriteError(output);
  printSummary(kis, version, verdict);
  kova::kvPrintKt(stdout, kis);
  return EXIT_SUCCESS;
}

/// @return the size of a regular file; 0 of anything else.
std::uint64_t sizeOf(const char *path) {
  struct stat status;
  return ::stat(path, &status) == 0 && S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
}

} // namespace

int main(int argc, char **argv) {
  const char *const path = argc > 1 ? argv[1] : nullptr;
  if (path != nullptr)
    reserveMemory(sizeOf(path), 1);
  const ModelMemory memory;
  // The model lives until the process ends: to free it would only cost time.
  static kova::Kis *const kis = kova::kvNewKis().release();
  if (kis == nullptr) {
    std::fputs("kbaudit: out of memory.\n", stderr);
    return EXIT_REFUSED;
  }
  Output output;
  std::printf("KOVA 1.0/2.0 data checker.  Revised on %s\n", "02/05/99");
  return finish(output, asksForUsage(path) ? refuseArguments() : audit(path, *kis, output));
}
