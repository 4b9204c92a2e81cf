/// kbaudit: loads a KOVA scene file, checks it, prints the verdict, and writes the text form of what it holds.

#include "kova/check.h"
#include "kova/kova.h"
#include "kova/kt.h"

#include <cstdio>
#include <cstring>

namespace {

constexpr int EXIT_REFUSED = -1; // usage and unknown versions; a bad file is told by the verdict alone
constexpr const char *STARS = "************************************************************\n";

bool asksForUsage(const char *argument) {
  return argument == nullptr || std::strcmp(argument, "-h") == 0 || std::strcmp(argument, "-help") == 0;
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

} // namespace

int main(int argc, char **argv) {
  const kova::KisHandle kis = kova::kvNewKis();
  if (!kis) {
    std::fputs("kbaudit: out of memory.\n", stderr);
    return EXIT_REFUSED;
  }
  int verdict = 1;
  std::printf("KOVA 1.0/2.0 data checker.  Revised on %s\n", "02/05/99");
  if (asksForUsage(argc > 1 ? argv[1] : nullptr))
    return refuseArguments();

  verdict *= kova::kvOpenKb(argv[1], *kis);
  if (verdict == 0)
    printLoadError(); // what could be read is checked and dumped all the same

  const kova::Word version = kova::kvKOVAver(kis->file_header);
  if (version != kova::VERSION_1 && version != kova::VERSION_2)
    return refuseVersion(kis->file_header.version);
  verdict *= kova::checkKOVA(*kis);

  printSummary(*kis, version, verdict);
  kova::kvOutputKt(*kis);
  return 0;
}
