/// Findings: the catalogue and its page, what a receiver gets and where it points, and that every row is shown.

#include "kova/findings.h"

#include "kova/check.h"
#include "kova/kt.h"
#include "reader/findings.h"
#include "samples/made.h"
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
  return at + 4 > bytes.size()
             ? 0
             : Word{bytes[at]} << 24 | Word{bytes[at + 1]} << 16 | Word{bytes[at + 2]} << 8 | Word{bytes[at + 3]};
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

/// Changes one word in `step` of every small sample, and cuts the sample there.
void sweep(std::size_t step) {
  std::size_t first = 0;
  for (const Sample &sample : smallSamples())
    for (std::size_t at = 4 * (first++ % step); at + 4 <= sample.file.bytes.size(); at += 4 * step) {
      const std::string what = sample.name + " at " + std::to_string(at);
      for (const Word value : {0U, ~0U, wordAt(sample.file.bytes, at) + 4, 0x40000001U}) {
        Bytes bytes = sample.file.bytes;
        for (std::size_t i = 0; i < 4; ++i)
          bytes[at + i] = static_cast<unsigned char>(value >> (24 - 8 * i));
        ASSERT_NO_FATAL_FAILURE(compareAll(bytes, what + " set to " + std::to_string(value)));
      }
      const Bytes cut(sample.file.bytes.begin(), sample.file.bytes.begin() + static_cast<std::ptrdiff_t>(at));
      ASSERT_NO_FATAL_FAILURE(compareAll(cut, what + " cut"));
    }
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

TEST(Findings, AreWhatIsPrintedOfDamagedFiles) { sweep(23); }
TEST(SlowFindings, AreWhatIsPrintedOfDamagedFiles) { sweep(3); }

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

/// One edit of a file in which nothing is wrong, and the finding that it must bring, with the place of the word that
/// was named.
struct Pointed {
  Word version;
  const char *edit;
  const char *id;
  const char *list;
  std::optional<Word> element;
  const char *kind; ///< the record to which the finding points
  std::size_t number;
  const char *field; ///< null for the record itself
};

TEST(Findings, PointToTheWordOrTheRecord) {
  constexpr auto NONE = std::nullopt;
  const Pointed cases[] = {
      {0x100, "FileHeader 0 size +4", "file-size", "FileHeader", NONE, "FileHeader", 0, "size"},
      {0x100, "FileHeader 0 size +4", "lists-sum", "FileHeader", NONE, "FileHeader", 0, "size"},
      {0x100, "FileHeader 0 file_header_num +4", "header-size", "FileHeader", NONE, "FileHeader", 0, "file_header_num"},
      {0x100, "FileHeader 0 header_tag 1", "header-tag", "FileHeader", NONE, "FileHeader", 0, "header_tag"},
      {0x100, "SceneList 0 scene_header_tag 1", "tag", "SceneList", NONE, "SceneList", 0, "scene_header_tag"},
      {0x100, "VectorList 0 list_tag 1", "tag", "VectorList", NONE, "VectorList", 0, "list_tag"},
      {0x100, "Env 1 env_tag 1", "tag", "EnvList", 1, "Env", 1, "env_tag"},
      {0x100, "Light 1 light_tag 1", "tag", "LightList", 1, "Light", 1, "light_tag"},
      {0x100, "Name 1 name_tag 1", "name-tag", "NameList", 1, "Name", 1, "name_tag"},
      {0x100, "Part 0 part_tri_num 100000", "list-runs-past-end", "PartList", 0, "Part", 0, "tri_index[0]"},
      {0x100, "EnvList 0 list_size +4", "list-size", "EnvList", NONE, "EnvList", 0, "list_size"},
      {0x100, "EnvList 0 list_size +4", "list-sum", "EnvList", NONE, "EnvList", 0, nullptr},
      {0x100, "SceneList 0 scene_size +4", "scene-sum", "SceneList", NONE, "SceneList", 0, nullptr},
      {0x100, "Obj 1 this_obj_index 9", "element-index", "ObjList", 1, "Obj", 1, "this_obj_index"},
      {0x100, "Teximg 1 this_tex_img_index 9", "element-index", "TeximgList", 1, "Teximg", 1, "this_tex_img_index"},
      {0x100, "Env 1 env_size +4", "element-size", "EnvList", 1, "Env", 1, "env_size"},
      {0x100, "Env 1 env_size +4", "element-sum", "EnvList", 1, "Env", 1, nullptr},
      {0x100, "Obj 1 obj_size +4", "object-sum", "ObjList", 1, "Obj", 1, nullptr},
      {0x100, "TriGroup 1 tri_group_size +4", "triangle-group-sum", "TriList", 1, "TriGroup", 1, nullptr},
      {0x100, "ColorList 0 list_size +4", "two-kind-list-sum", "ColorList", NONE, "ColorList", 0, nullptr},
      {0x100, "VtxNvGroup 0 vtx_nv_group_index 9", "element-index", "VectorList", 0, "VtxNvGroup", 0,
       "vtx_nv_group_index"},
      {0x100, "DirLight0 1 dir_light_size 9", "directional-light-size", "LightList", 0, "DirLight0", 1,
       "dir_light_size"},
      {0x200, "FileHeaderExt 0 external_name_list_num +4", "all-lists-sum", "FileHeader", NONE, "FileHeader", 0,
       "size"},
      {0x200, "CiImg 0 size +4", "word-array-sum", "CiImgList", 0, "CiImg", 0, nullptr},
      {0x200, "Effector 0 size +4", "chain-node-sum", "EffectorList", 0, "Effector", 0, nullptr},
      {0x200, "Envelope 0 size +4", "envelope-sum", "EnvelopeList", 0, "Envelope", 0, nullptr},
      {0x200, "FullWeightedPart 1 size +4", "full-weighted-part-sum", "EnvelopeList", 0, "FullWeightedPart", 1,
       nullptr},
      {0x200, "WeightedPart 1 size +4", "weighted-part-sum", "EnvelopeList", 0, "WeightedPart", 1, nullptr},
      {0x200, "MorphPart 1 size +4", "morph-part-sum", "EnvelopeList", 0, "MorphPart", 1, nullptr},
      {0x200, "EnvelopeTri 1 envelope_tri_size 9", "envelope-triangle-size", "EnvelopeList", 0, "EnvelopeTri", 1,
       "envelope_tri_size"},
      {0x200, "EnvelopeTri 1 envelope_tri_size 9", "envelope-faulty", "EnvelopeList", 0, "Envelope", 0, nullptr},
      {0x200, "ClusterShape 0 size +4", "cluster-shape-sum", "ClusterList", 0, "ClusterShape", 0, nullptr},
      {0x200, "Cluster 1 size 9", "cluster-size", "ClusterList", 0, "Cluster", 1, "size"},
      {0x200, "ClusterTri 1 cluster_tri_size 9", "cluster-triangle-size", "ClusterList", 0, "ClusterTri", 1,
       "cluster_tri_size"},
      {0x200, "ExternalNameList 0 list_tag 1114112", "external-name-tag", "ExternalNameList", NONE, "ExternalNameList",
       0, "list_tag"},
      {0x200, "ObjExt 0 external_obj_num +99", "element-maker-block-short", "ObjList", 0, "Obj", 0, "van_ext_blk_size"},
      {0x200, "SceneListExt 0 external_obj_num +99", "maker-block-short", "SceneList", NONE, "SceneList", 0,
       "van_ext_blk_size"},
  };
  for (const Pointed &row : cases) {
    const File good = row.version == VERSION_1 ? goodFile1() : goodFile2();
    const std::vector<Received> findings = auditMemory(edited(good, row.edit).bytes).findings;
    const auto finding = std::find_if(findings.begin(), findings.end(), [&](const Received &one) {
      return one.row == kvFindingRow(row.id) && one.list == row.list;
    });
    ASSERT_NE(finding, findings.end()) << row.edit << ": no " << row.id;
    std::size_t offset = ~std::size_t{0};
    for (const NamedWord &word : good.words)
      if (word.kind == row.kind && word.number == row.number)
        if (row.field == nullptr ? word.offset < offset : word.field == row.field)
          offset = word.offset;
    EXPECT_EQ(finding->element, row.element) << row.edit;
    EXPECT_EQ(finding->offset.value_or(0), offset) << row.edit << ": " << finding->text;
  }
}

/// The version-2 lists that a file lacks are remarks on the header's words behind byte 100.
TEST(Findings, PointToTheSizesOfVersion2Lists) {
  std::vector<std::uint64_t> offsets;
  for (const Received &finding : auditMemory(build(0x200, "").bytes).findings)
    if (finding.row == kvFindingRow("version-2-list-missing"))
      offsets.push_back(finding.offset.value_or(0));
  EXPECT_EQ(offsets, (std::vector<std::uint64_t>{100, 104, 108, 112, 116, 120, 124, 128, 132}));
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
