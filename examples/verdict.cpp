/// verdict: checks many KOVA files and prints one line for each, "OK" or "ERR", a tab and the path.
///
///     verdict file...
///
/// Exit status 1 if any file is bad, 2 if no file is named. What is wrong with a file is not told: `kbaudit` tells it.

#include "kova/check.h"
#include "kova/kova.h"

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

/// The library says what it finds on the standard streams, as the program does. This example wants only the verdict, so
/// it keeps a stream of its own and points the standard ones at nothing.
std::FILE *takeOverOutput() {
  const int own = ::dup(STDOUT_FILENO);
  const int nothing = ::open("/dev/null", O_WRONLY);
  ::dup2(nothing, STDOUT_FILENO);
  ::dup2(nothing, STDERR_FILENO);
  return ::fdopen(own, "w");
}

bool isGood(const char *path) {
  const kova::KisHandle kis = kova::kvNewKis();
  return kis && kova::kvOpenKb(path, *kis) && kova::checkKOVA(*kis);
}

} // namespace

int main(int argc, char **argv) {
  if (argc < 2) {
    std::fputs("Usage: verdict file...\n", stderr);
    return 2;
  }
  std::FILE *out = takeOverOutput();
  if (!out)
    return 2;
  int status = 0;
  for (int i = 1; i < argc; ++i) {
    const bool good = isGood(argv[i]);
    std::fprintf(out, "%s\t%s\n", good ? "OK" : "ERR", argv[i]);
    if (!good)
      status = 1;
  }
  std::fclose(out);
  return status;
}
