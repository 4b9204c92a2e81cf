/// findings: prints what is wrong with a KOVA file, one line for each finding, sorted by where in the file it is.
///
///     findings file
///
/// A line is the finding's id, the offset in the file of the word or record that it is about ("-" if it has none), and
/// the text, separated by tabs. Bytes of the text outside printable ASCII, and backslashes, are printed as escapes, so
/// that a finding is one line.
///
/// Exit status 0: no errors; 1: errors; 2: no file is named, or no memory.

#include "kova/findings.h"
#include "kova/check.h"
#include "kova/kova.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace {

struct Line {
  std::optional<std::uint64_t> offset;
  std::string id;
  std::string text;
};

void printEscaped(const std::string &text) {
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if (character == '\n')
      std::fputs("\\n", stdout);
    else if (byte < ' ' || byte > '~' || character == '\\')
      std::printf("\\x%02x", byte);
    else
      std::putchar(character);
  }
}

void printLine(const Line &line) {
  if (line.offset)
    std::printf("%s\t%llu\t", line.id.c_str(), static_cast<unsigned long long>(*line.offset));
  else
    std::printf("%s\t-\t", line.id.c_str());
  printEscaped(line.text);
  std::putchar('\n');
}

} // namespace

int main(int argc, char **argv) {
  const kova::KisHandle kis = kova::kvNewKis();
  if (argc != 2 || !kis) {
    std::fputs("Usage: findings file\n", stderr);
    return 2;
  }
  std::vector<Line> lines;
  const kova::FindingReceiver receiver([&lines](const kova::Finding &finding) {
    lines.push_back({finding.offset, finding.row->id, kova::kvFindingText(finding)});
  });
  int ok = kova::kvOpenKb(argv[1], *kis);
  const kova::Word version = kova::kvKOVAver(kis->file_header);
  if (version == kova::VERSION_1 || version == kova::VERSION_2)
    ok *= kova::checkKOVA(*kis); // what could be read is checked, also after a failed load
  std::stable_sort(lines.begin(), lines.end(), [](const Line &a, const Line &b) { return a.offset < b.offset; });
  for (const Line &line : lines)
    printLine(line);
  return ok != 0 ? 0 : 1;
}
