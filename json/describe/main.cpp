/// Writes what other programs know the format by into a folder.
#include "kova/kb.h"
#include "json/describe/record.h"

#include <span>

/// Usage: kova_describe FOLDER
int main(int argc, char **argv) {
  using namespace kova;
  const std::vector<describe::Record> records = describe::describeFormat();
  const std::pair<const char *, std::string> files[] = {{"/kova.ksy", describe::kaitaiText(records)},
                                                        {"/kova.hexpat", describe::imhexText(records)},
                                                        {"/kova.magic", describe::magicText()},
                                                        {"/kova.xml", describe::mimeText()}};
  bool ok = argc == 2;
  for (const auto &[name, text] : files) {
    const std::span bytes(reinterpret_cast<const unsigned char *>(text.data()), text.size());
    ok = ok && kvSaveBytes(bytes, (argv[1] + std::string(name)).c_str(), Existing::replace, 0666);
  }
  return ok ? 0 : 1;
}
