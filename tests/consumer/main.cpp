/// Uses each part of the library once: loads a file, checks it, saves its dump, and ends with a line that tells the
/// version, the verdict and the first name.

#include "kova/check.h"
#include "kova/kova.h"
#include "kova/kt.h"

int main(int argc, char **argv) {
  const kova::KisHandle kis = kova::kvNewKis();
  if (argc != 3 || !kis || !kova::kvOpenKb(argv[1], *kis))
    return 1;
  const int good = kova::checkKOVA(*kis);
  const std::string name = kis->name.element.empty() ? "" : kova::kvGetName(kis->name.element.front());
  std::printf("%s %s %s\n", KOVA_VERSION, good != 0 ? "OK" : "ERR", name.c_str());
  return kova::kvSaveAsKt(*kis, argv[2]) ? 0 : 1;
}
