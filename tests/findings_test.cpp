/// Findings: the catalogue and its page, what a receiver gets and where it points, and that every row is shown.

#include "kova/findings.h"

#include "kova/check.h"
#include "kova/kt.h"
#include "reader/findings.h"
#include "samples/made.h"
#include "tests/damage.h"
#include "tests/support.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>
#include <sstream>

namespace kova::test {

namespace {

const std::string SOURCE = KOVA_SOURCE_DIR "/";

/// A finding that outlives its receiver.
struct Received {
  const FindingRow *row;
  std::string list;
  std::optional<Word> element;
  std::optional<std::uint64_t> offset;
  std::optional<Word> found;
  std::optional<Word> expected;
  std::string text;

  bool operator==(const Received &) const = default;
};

Received keep(const Finding &finding) {
  return {finding.row,           finding.list != nullptr ? finding.list : "",
          finding.element,       finding.offset,
          finding.found,         finding.expected,
          kvFindingText(finding)};
}

/// A file loaded and checked with a receiver in place.
struct Audited {
  int loaded;
  int verdict;
  std::vector<Received> findings;
};

template <class Load> Audited auditWith(Kis &kis, Load load) {
  Audited audited{};
  const FindingReceiver receiver([&](const Finding &finding) { audited.findings.push_back(keep(finding)); });
  audited.loaded = load(kis);
  audited.verdict = checkKOVA(kis);
  return audited;
}

Audited auditMemory(const Bytes &bytes) {
  Kis kis;
  return auditWith(kis, [&](Kis &to) { return kvOpenKbMemory(bytes, "in memory", to); });
}

std::string textsOf(const std::vector<Received> &findings, Stage stage) {
  std::string texts;
  for (const Received &finding : findings)
    if (finding.row->stage == stage)
      texts += finding.text;
  return texts;
}

Word wordAt(const Bytes &bytes, std::uint64_t at) {
  return at + sizeof(Word) > bytes.size() ? 0 : harness::wordAt(bytes, static_cast<std::size_t>(at));
}

/// What must hold for the findings of any file. @return what does not.
std::string brokenRule(const Bytes &bytes, const Audited &audited) {
  int check_errors = 0;
  for (const Received &finding : audited.findings) {
    const std::string id = finding.row->id;
    if (finding.row->severity == Severity::error && finding.row->stage == Stage::load && audited.loaded != 0)
      return id + " in a file that was loaded";
    check_errors += finding.row->severity == Severity::error && finding.row->stage == Stage::check;
    if (finding.offset && *finding.offset >= bytes.size())
      return id + " points behind the file";
    if (!finding.offset || !finding.found)
      continue;
    if (*finding.offset % sizeof(Word) != 0) // behind an odd number of texels, where words are not read as they stand
      continue;
    // A finding about a word points to it; one about the sum of a record to the record, whose size is its third or
    // fourth word.
    const bool sum = id.ends_with("-sum") && finding.list != "FileHeader";
    const bool there = sum ? *finding.found == wordAt(bytes, *finding.offset + 8) ||
                                 *finding.found == wordAt(bytes, *finding.offset + 12)
                           : *finding.found == wordAt(bytes, *finding.offset);
    if (!there)
      return id + " points to another word: " + finding.text;
  }
  return (audited.verdict == 0) == (check_errors > 0) ? "" : "the verdict is not what the findings say";
}

int loadStream(const Bytes &bytes, Kis &kis) {
  const harness::ScratchFile file(bytes);
  const Stream stream(std::fopen(file.path.c_str(), "rb"));
  return kvOpenKbStream(stream.get(), "a stream", kis);
}

/// The same file printed, received from a file, from a stream, and from memory.
void compareAll(const Bytes &bytes, const std::string &what) {
  const Audit printed = audit(bytes);
  ASSERT_LE(printed.findings.size() + printed.dump.size(), outputBound(bytes.size())) << what;
  Kis from_file;
  Kis from_memory;
  const Audited file = auditWith(from_file, [&](Kis &kis) { return loadBytes(bytes, kis); });
  const Audited memory = auditWith(from_memory, [&](Kis &kis) { return kvOpenKbMemory(bytes, "", kis); });
  ASSERT_EQ(textsOf(file.findings, Stage::load), printed.errors) << what;
  ASSERT_EQ(textsOf(file.findings, Stage::check), printed.findings) << what;
  ASSERT_EQ(file.loaded, printed.loaded) << what;
  ASSERT_EQ(file.verdict, printed.verdict) << what;
  ASSERT_EQ(brokenRule(bytes, file), "") << what;
  ASSERT_TRUE(memory.findings == file.findings) << what;
  ASSERT_EQ(memory.loaded, file.loaded) << what;
  ASSERT_EQ(memory.verdict, file.verdict) << what;
  ASSERT_EQ(dumpOf(from_memory), printed.dump) << what;
  Kis from_stream;
  const Audited stream = auditWith(from_stream, [&](Kis &kis) { return loadStream(bytes, kis); });
  ASSERT_TRUE(stream.findings == file.findings && stream.loaded == file.loaded) << what;
  ASSERT_EQ(dumpOf(from_stream), printed.dump) << what;
}

Bytes bytesOf(const std::string &path) {
  const std::string text = readFile(path);
  return {text.begin(), text.end()};
}

std::vector<std::string> sampleFiles() {
  std::vector<std::string> names;
  for (const auto &entry : std::filesystem::directory_iterator(SOURCE + "samples"))
    if (entry.path().extension() == ".kb")
      names.push_back(entry.path().stem());
  std::sort(names.begin(), names.end());
  return names;
}

/// Every `step`-th cut and changed word of the small samples.
void sweep(std::size_t step) {
  std::size_t number = 0;
  for (const Sample &sample : smallSamples())
    for (const auto every : {everyCut, everyWord})
      every(sample.file, [&](const Bytes &bytes, const std::string &what) {
        if (number++ % step == 0 && !::testing::Test::HasFatalFailure())
          compareAll(bytes, sample.name + ' ' + what);
      });
}

/// A text as it stands in the source.
std::string escaped(const std::string &text) { return std::regex_replace(text, std::regex("\n"), "\\n"); }

std::vector<std::string> codeSpansOf(const std::string &text) {
  std::vector<std::string> spans;
  static const std::regex SPAN("`([^`]*)`");
  for (std::sregex_iterator at(text.begin(), text.end(), SPAN), end; at != end; ++at)
    spans.push_back((*at)[1]);
  return spans;
}

} // namespace

// Arguments that do not fit a format do not compile.
static_assert(formatFits<>("no conversion\n"));
static_assert(formatFits<const char *, Word, Index, Terms<1>>("%s %0#10x %d{ + %d}\n"));
static_assert(formatFits<Label, char[3], Terms<3>>("%s %-17s{ +(%d+%d+%d)}"));
static_assert(!formatFits<>("%d"));
static_assert(!formatFits<Word, Word>("%d"));
static_assert(!formatFits<const char *>("%d"));
static_assert(!formatFits<std::uint64_t>("%d"));
static_assert(!formatFits<Word>("%s"));
static_assert(!formatFits<Index>("%8x"));
static_assert(!formatFits<Word>("%u"));
static_assert(!formatFits<Word>("{ + %d}"));
static_assert(!formatFits<Terms<2>>("{ + %d}"));
static_assert(!formatFits<Terms<1>>("%d"));

TEST(Findings, RowsAreFoundByTheirIds) {
  std::set<std::string> ids;
  for (const FindingRow &row : kvFindingRows()) {
    EXPECT_TRUE(std::regex_match(row.id, std::regex("[a-z0-9]+(-[a-z0-9]+)*"))) << row.id;
    EXPECT_EQ(kvFindingRow(row.id), &row);
    EXPECT_TRUE(ids.insert(row.id).second) << row.id;
  }
  EXPECT_EQ(kvFindingRow("no-such-id"), nullptr);
}

/// docs/findings.md shows the rows of the catalogue and no others: in its table, and each under the heading that is its
/// format.
TEST(Findings, ThePageShowsTheCatalogue) {
  std::istringstream page(readFile(SOURCE + "docs/findings.md"));
  std::set<std::string> table;
  std::map<std::string, std::string> format_of;
  std::string format;
  bool of_library = false;
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("## ")) {
      of_library = std::regex_search(line, std::regex("^## (Opening|Loading|Checking)"));
      format.clear();
    } else if (of_library && line.starts_with("### `")) {
      EXPECT_TRUE(format.empty()) << "no id under: " << format;
      format = line.substr(5, line.size() - 6);
      if (format.starts_with("---- checking") || format.starts_with("%s[%d]%s")) // no findings
        format.clear();
    } else if (line.starts_with("- Id: ")) {
      while (!line.ends_with('.')) {
        std::string more;
        std::getline(page, more);
        line += more;
      }
      for (const std::string &id : codeSpansOf(line))
        EXPECT_TRUE(format_of.emplace(id, format).second) << id << " twice";
      format.clear();
    } else if (std::regex_search(line, std::regex("^\\| `[a-z0-9-]+` \\|"))) {
      table.insert(line);
    }
  }
  for (const FindingRow &row : kvFindingRows()) {
    EXPECT_EQ(format_of[row.id], escaped(row.format)) << row.id;
    const std::string line = std::string("| `") + row.id + "` | " + (row.stage == Stage::load ? "load" : "check") +
                             " | " + (row.severity == Severity::error ? "error" : "warning") + " | " + row.meaning +
                             " | " + row.next_step + " |";
    EXPECT_EQ(table.erase(line), 1U) << "missing in the table:\n" << line;
  }
  EXPECT_TRUE(table.empty()) << "not in the catalogue: " << *table.begin();
  EXPECT_EQ(format_of.size(), kvFindingRows().size());
}

TEST(Findings, NothingElseInTheReaderAndTheChecksPrints) {
  const std::regex prints("\\b(v?f?printf|f?puts|f?putc|putchar|perror|cout|cerr)\\b");
  for (const char *const folder : {"reader", "checker"})
    for (const auto &entry : std::filesystem::directory_iterator(SOURCE + folder)) {
      const std::string text = readFile(entry.path());
      EXPECT_EQ(std::regex_search(text, prints), entry.path().filename() == "findings.cpp") << entry.path();
    }
}

TEST(Findings, AreWhatThePrintedSamplesSay) {
  for (const std::string &name : sampleFiles())
    compareAll(bytesOf(SOURCE + "samples/" + name + ".kb"), name);
}

TEST(Findings, AreWhatIsPrintedOfDamagedFiles) { sweep(151); }
TEST(SlowFindings, AreWhatIsPrintedOfDamagedFiles) { sweep(13); }

/// Every row is provoked by a bundled sample, and samples/README.md names it there.
TEST(Findings, AreShownBySamples) {
  // What no content of a file can provoke.
  const std::map<std::string, std::string> exempt = {
      {"input-open", "a path that cannot be opened"},
      {"output-open", "only a program that writes a dump to a file opens one"},
      {"output-write", "only a program that writes a dump to a file can fail to"},
      {"input-read", "a device that fails"},
      {"input-changed", "a file that is replaced while it is read"},
      {"out-of-memory", "a memory limit"},
      {"unequal-words", "only a program that calls checksame itself"},
  };
  std::map<std::string, std::set<std::string>> shown;
  for (const std::string &name : sampleFiles())
    for (const Received &finding : auditMemory(bytesOf(SOURCE + "samples/" + name + ".kb")).findings)
      shown[finding.row->id].insert(name);
  for (const FindingRow &row : kvFindingRows())
    EXPECT_NE(shown.contains(row.id), exempt.contains(row.id)) << row.id;

  std::istringstream page(readFile(SOURCE + "samples/README.md"));
  std::size_t listed = 0;
  for (std::string line; std::getline(page, line);) {
    const std::vector<std::string> spans = codeSpansOf(line);
    if (spans.empty() || kvFindingRow(spans[0].c_str()) == nullptr || !line.starts_with("| `"))
      continue;
    ++listed;
    ASSERT_GE(spans.size(), 2U) << line;
    for (std::size_t i = 1; i < spans.size(); ++i)
      EXPECT_TRUE(shown[spans[0]].contains(spans[i].substr(0, spans[i].find('.')))) << line;
  }
  EXPECT_EQ(listed, shown.size());
}

TEST(FindingReceiver, IsTheInnermostOne) {
  std::vector<std::string> got;
  const auto into = [&got](const char *name) {
    return [&got, name](const Finding &finding) { got.push_back(name + (": " + kvFindingText(finding))); };
  };
  const Printed printed = capture([&] {
    checksame("before", 1, 2);
    {
      const FindingReceiver outer(into("outer"));
      checksame("a", 1, 2);
      {
        const FindingReceiver inner(into("inner"));
        checkTag(1, 0);
      }
      kvCheckTag(3, 4);
      checkEnvList(Kis{}); // its heading is not printed
    }
    checksame("after", 1, 2);
  });
  ASSERT_GE(got.size(), 3U);
  EXPECT_EQ(got[0], "outer: a is wrong. 1 != 2\n");
  EXPECT_EQ(got[1], "inner: irregular tag ! 0x00000001 != 0000000000\n");
  EXPECT_EQ(got[2], "outer: irregular tag ! 0x00000003 != 0x00000004\n");
  EXPECT_EQ(printed.out, "before is wrong. 1 != 2\nafter is wrong. 1 != 2\n");
  EXPECT_EQ(printed.err, "");
}

/// A sum of a million terms is one finding, whose text is made only for who wants it.
TEST(FindingReceiver, GetsLongMessages) {
  const Words sizes(1'000'000, ~Word{0});
  std::string text;
  std::string streamed;
  {
    const FindingReceiver receiver([&](const Finding &finding) {
      text = kvFindingText(finding);
      const ScratchFile file;
      const Stream stream(std::fopen(file.path.c_str(), "w"));
      EXPECT_EQ(kvPrintFinding(stream.get(), finding), 1);
      std::fflush(stream.get());
      streamed = readFile(file.path);
    });
    EXPECT_EQ(check_whole_structured_size("x", 1, 2, sizes, 1'000'000, 3, 4), 0);
  }
  EXPECT_EQ(text.size(),
            std::string("x Some of size data is incorrect. 1 != 2 + 4 * 1000000 + 3 + 4\n").size() + 5 * sizes.size());
  EXPECT_EQ(text.substr(0, 62), "x Some of size data is incorrect. 1 != 2 + 4 * 1000000 + -1 + ");
  EXPECT_TRUE(text.ends_with(" + -1 + 3 + 4\n"));
  EXPECT_TRUE(streamed == text);
}

TEST(Memory, CanBeReadAtAnyLength) {
  for (const File &good : {goodFile1(), goodFile2()})
    for (std::size_t size = 0; size < good.bytes.size(); size += 61)
      ASSERT_NO_FATAL_FAILURE(compareAll({good.bytes.begin(), good.bytes.begin() + static_cast<std::ptrdiff_t>(size)},
                                         std::to_string(size)));
  Kis kis;
  const Printed printed = capture([&] { EXPECT_EQ(kvOpenKbMemory({}, "nothing", kis), 0); });
  EXPECT_TRUE(printed.err.starts_with("       0\nUnknown version number.\n")) << printed.err;
  EXPECT_EQ(kis.file_name, "nothing");
}

} // namespace kova::test
