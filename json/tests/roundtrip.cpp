#include "json/tests/roundtrip.h"

#include "harness/scratch.h"

namespace kova::json {

std::string documentOf(std::span<const unsigned char> file, const Shape &shape) {
  return harness::written([&](std::FILE *stream) { return printScene(stream, file, shape); }).value();
}

Back fileOf(const std::string &document) {
  Document scene;
  // A stream of nothing cannot be opened in memory.
  const Stream stream(document.empty() ? std::fopen("/dev/null", "rb")
                                       : ::fmemopen(const_cast<char *>(document.data()), document.size(), "rb"));
  std::string wrong = readScene(stream.get(), scene);
  if (!wrong.empty())
    return {wrong, {}};
  const std::string bytes = harness::written([&](std::FILE *to) { return writeScene(to, scene); }).value();
  return {"", Bytes(bytes.begin(), bytes.end())};
}

std::string brokenRoundTrips(std::span<const unsigned char> file) {
  std::string broken;
  for (const Layout layout : {Layout::compact, Layout::lines, Layout::pretty})
    for (const bool lean : {false, true}) {
      const Back back = fileOf(documentOf(file, {layout, lean}));
      if (!back.wrong.empty() || !std::equal(file.begin(), file.end(), back.file.begin(), back.file.end()))
        broken +=
            std::string(lean ? "lean, " : "") + std::to_string(static_cast<int>(layout)) + ": " + back.wrong + '\n';
      if (file.size() > 20'000) // one layout will do
        break;
    }
  return broken;
}

std::string brokenDocument(std::string_view text) {
  const Back back = fileOf(std::string(text));
  return back.wrong.empty() ? brokenRoundTrips(back.file) : "";
}

} // namespace kova::json
