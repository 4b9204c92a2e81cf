/// verdict: checks many KOVA files and prints one line for each: "OK", "ERR" or "NONE", a tab and the path.
///
///     verdict file...
///
/// NONE means that there is no verdict: the file cannot be read as a KOVA file of version 1.0 or 2.0. Bytes of the path
/// outside printable ASCII, and backslashes, are printed as \xHH, so that no path can add a line.
///
/// Exit status 0: all files are OK; 1: some are ERR; 2: some have no verdict, or no file is named; 3: the output could
/// not be written. If several apply, it is the highest.

#include "kova/check.h"
#include "kova/findings.h"
#include "kova/kova.h"

#include <algorithm>
#include <cstdio>

namespace {

enum Status { ALL_OK, SOME_ERR, NO_VERDICT, NOT_WRITTEN };

constexpr const char *LABELS[] = {"OK", "ERR", "NONE"};

Status audit(const char *path) {
  const kova::KisHandle kis = kova::kvNewKis();
  if (!kis)
    return NO_VERDICT;
  int ok = kova::kvOpenKb(path, *kis);
  const kova::Word version = kova::kvKOVAver(kis->file_header); // 0 where the file could not be opened or read
  if (version != kova::VERSION_1 && version != kova::VERSION_2)
    return NO_VERDICT;
  ok *= kova::checkKOVA(*kis); // what could be read is checked, also after a failed load
  return ok != 0 ? ALL_OK : SOME_ERR;
}

void printLine(const char *label, const char *path) {
  std::printf("%s\t", label);
  for (; *path != '\0'; ++path) {
    const auto byte = static_cast<unsigned char>(*path);
    const bool printable = byte >= ' ' && byte <= '~' && byte != '\\';
    std::printf(printable ? "%c" : "\\x%02x", byte);
  }
  std::putchar('\n');
}

} // namespace

int main(int argc, char **argv) {
  if (argc < 2) {
    std::fputs("Usage: verdict file...\n", stderr);
    return NO_VERDICT;
  }
  const kova::FindingReceiver ignored([](const kova::Finding &) {}); // else the library would print them
  Status status = ALL_OK;
  for (int i = 1; i < argc; ++i) {
    const Status one = audit(argv[i]);
    printLine(LABELS[one], argv[i]);
    status = std::max(status, one);
  }
  return std::fflush(stdout) != 0 || std::ferror(stdout) != 0 ? NOT_WRITTEN : status;
}
