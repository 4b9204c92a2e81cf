/// How well damaged files are mended: words that follow from others, counts and sizes of blocks, one or several.

#include "harness/golden.h"
#include "mend/diagnose.h"
#include "mend/tests/damage.h"
#include "mend/tests/elements.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <optional>
#include <random>
#include <set>

namespace kova::mend {

namespace {

using samples::File;
using samples::NamedWord;

// --- The faults -----------------------------------------------------------------------------------------------------

bool is(const std::string &text, std::initializer_list<const char *> words) {
  return std::any_of(words.begin(), words.end(), [&](const char *word) { return text == word; });
}
bool endsWith(const std::string &text, std::initializer_list<const char *> endings) {
  return std::any_of(endings.begin(), endings.end(), [&](const char *ending) { return text.ends_with(ending); });
}

/// @return whether a word follows from others, as sizes, tags and indices do, or is a count; nothing if it is neither.
std::optional<bool> isDerived(const NamedWord &word) {
  const std::string field = word.field.substr(0, word.field.find('['));
  if (endsWith(field, {"_header_size", "_blk_size"}))
    return false;
  if (is(field, {"tag", "size", "num_byte", "file_header_num"}) || endsWith(field, {"_tag", "_size", "_list_num"}) ||
      field.starts_with("this_") || (word.kind == "VtxNvGroup" && field == "vtx_nv_group_index"))
    return field.ends_with("area_size") ? std::nullopt : std::optional(true);
  return field == "num" || field.find("_num") != field.npos ? std::optional(false) : std::nullopt;
}

/// What becomes of a word.
std::vector<Word> damages(Word word, std::size_t offset) {
  const Word swapped = word << 24 | (word & 0xff00) << 8 | (word >> 8 & 0xff00) | word >> 24;
  std::vector<Word> values = {word ^ 1U << offset * 7 % 32, word + 1, word - 1, word + 4, word - 4, 0, ~0U, swapped};
  std::erase(values, word);
  return values;
}

// --- The rates ------------------------------------------------------------------------------------------------------

/// What became of faults that the audit does not accept.
struct Rate {
  std::size_t total = 0, exact = 0, refused = 0, other = 0;

  void count(const Mending &mending, const Bytes &original) {
    const bool exact_now = mending.bytes == original;
    const bool refused_now =
        mending.result.outcome == Outcome::ambiguous || mending.result.outcome == Outcome::hopeless;
    ++total;
    ++(exact_now ? exact : refused_now ? refused : other);
  }
  double share() const { return total != 0 ? static_cast<double>(exact) / static_cast<double>(total) : 1; }
  void print(const char *name) const {
    std::printf("%-36s %7zu %7zu %7zu %7zu %6.1f %%\n", name, total, exact, refused, other, 100 * share());
  }
};

/// @return of so many words of a file one is damaged.
std::size_t stepOf(const samples::Sample &sample) {
  return sample.name == "good 1" ? 3 : sample.name == "good 2" ? 5 : 1;
}

void expectGolden(const char *name, const std::string &found) {
  EXPECT_EQ(harness::differsFromGolden(std::string(KOVA_SOURCE_DIR "/mend/tests/golden/") + name + ".out", found), "");
}

/// A change bears the name of the word that it changes. For the words of lists, the builder has names of its own.
void expectName(const std::vector<Change> &changes, const NamedWord &word) {
  for (const Change &change : changes)
    EXPECT_TRUE(change.offset != word.offset || word.kind.ends_with("List") || change.field == word.field)
        << word.kind << ' ' << word.field << ": " << change.field;
}

/// The golden file has a line for each word: what comes of each damage, = for the file as it was, ~ for another one, ?
/// for none, and blank where the audit accepts it; and, in the large files, what is told of
/// the first one.
TEST(Mend, OneWordIsMended) {
  Rate all;
  std::string golden;
  for (const samples::Sample &original : madeFiles()) {
    const std::size_t step = stepOf(original);
    std::size_t number = 0;
    golden += "== " + original.name + '\n';
    for (const NamedWord &word : original.file.words) {
      const std::optional<bool> is_derived = isDerived(word);
      if (!is_derived || number++ % step != 0)
        continue;
      std::string outcomes, story;
      for (const Word value : damages(harness::wordAt(original.file.bytes, word.offset), word.offset)) {
        Bytes damaged = original.file.bytes;
        harness::setWordAt(damaged, word.offset, value);
        const Mending mending = mendAndCheck(damaged, false);
        ASSERT_EQ(mending.broken, "") << word.kind << ' ' << word.number << ' ' << word.field << " = " << value;
        expectName(mending.result.changes, word);
        if (auditsOk(damaged)) {
          outcomes += ' ';
          continue;
        }
        outcomes += mending.bytes == original.file.bytes ? '=' : mending.bytes == damaged ? '?' : '~';
        story = story.empty() && step > 1 ? storyOf(mending) : story;
        if (*is_derived)
          all.count(mending, original.file.bytes);
      }
      golden += word.kind + ' ' + std::to_string(word.number) + ' ' + word.field + " [" + outcomes + "] " +
                (story.empty() ? "\n" : story);
    }
  }
  std::printf("%-36s %7s %7s %7s %7s\n", "one word", "total", "exact", "refused", "other");
  all.print("all that follow from others");
  EXPECT_GT(all.total, 20000U);
  EXPECT_GE(all.share(), 0.999);
  expectGolden("words", golden);
}

TEST(Mend, SeveralWordsAreMended) {
  std::array<Rate, 5> rates;
  Rate all;
  for (std::uint32_t seed = 0; seed < 6000; ++seed) {
    std::mt19937 random(seed);
    const samples::Sample &original = madeFiles()[random() % madeFiles().size()];
    Bytes damaged = original.file.bytes;
    const std::size_t faults = 2 + seed % 3;
    for (std::set<std::size_t> places; places.size() < faults;) {
      const NamedWord &word = original.file.words[random() % original.file.words.size()];
      if (!isDerived(word).value_or(false) || places.contains(word.offset))
        continue;
      const std::vector<Word> values = damages(harness::wordAt(damaged, word.offset), word.offset);
      const Word value = values[random() % values.size()];
      Bytes alone = original.file.bytes;
      harness::setWordAt(alone, word.offset, value);
      if (auditsOk(alone)) // nothing contradicts it
        continue;
      harness::setWordAt(damaged, word.offset, value);
      places.insert(word.offset);
    }
    const Mending mending = mendAndCheck(damaged, false);
    EXPECT_EQ(mending.broken, "") << original.name << ", seed " << seed;
    EXPECT_EQ(mendAndCheck(damaged, true).broken, "") << original.name << ", salvage, seed " << seed;
    rates[faults].count(mending, original.file.bytes);
    all.count(mending, original.file.bytes);
  }
  std::printf("%-36s %7s %7s %7s %7s\n", "several words", "total", "exact", "refused", "other");
  rates[2].print("two");
  rates[3].print("three");
  rates[4].print("four");
  all.print("two to four");
  EXPECT_GE(all.share(), 0.98);
}

/// Names that all have the number 0, and triangles that have nothing of their own: the audit accepts that, and one
/// other word is mended as if they were numbered.
TEST(Mend, WordsThatNobodyLooksAtMayBeAnything) {
  std::string text = "TriList { TriGroup { Tri*5 } TriGroup { Tri*3 } } NameList {";
  for (int i = 0; i < 100; ++i)
    text += " Name text=" + std::string(static_cast<std::size_t>(i % 7 * 4 + 1), 'x');
  File file = samples::build(VERSION_1, text + " }");
  for (const NamedWord &word : file.words)
    if (is(word.field, {"this_name_index", "this_tri_index", "tri_size"}))
      harness::setWordAt(file.bytes, word.offset, 0);
  EXPECT_EQ(mendAndCheck(file.bytes, false).result.outcome, Outcome::good);
  Rate rate;
  std::string golden;
  for (const NamedWord &word : file.words) {
    const bool is_length = endsWith(word.field, {"_size", "num"}) && !endsWith(word.field, {"header_size", "blk_size"});
    if (!is_length || !is(word.kind, {"NameList", "Name", "TriList", "TriGroup"}) || word.number > 20)
      continue;
    for (const Word value : damages(harness::wordAt(file.bytes, word.offset), word.offset)) {
      Bytes damaged = file.bytes;
      harness::setWordAt(damaged, word.offset, value);
      const Mending mending = mendAndCheck(damaged, false);
      EXPECT_EQ(mending.broken, "") << word.kind << word.number << word.field << value;
      golden += word.kind + ' ' + std::to_string(word.number) + ' ' + word.field + " = " + std::to_string(value) +
                ": " + storyOf(mending);
      if (!auditsOk(damaged))
        rate.count(mending, file.bytes);
    }
  }
  rate.print("with other numbers");
  expectGolden("other-numbers", golden);
  EXPECT_GT(rate.total, 150U);
  EXPECT_GE(rate.share(), 0.97);
}

/// Words that the audit takes as they are: one that is not as the others of its kind is mended, in a file that follows
/// the format, and in one whose lists count their size tables in. Where no rule shows, it stays.
TEST(Mend, WordsThatNobodyLooksAtFollowTheOthers) {
  struct {
    const char *kind, *field;
    bool mended;
  } constexpr WORDS_OF[] = {
      {"VtxList", "list_header_size", true},
      {"EnvList", "list_header_size", true}, // which is empty
      {"VtxGroup", "vtx_group_header_size", true},
      {"TriGroup", "tri_group_header_size", false}, // there are too few
      {"Tri", "tri_tag", true},
      {"AnimStep", "anim_tag", false},
      {"Tex", "tex_data_area_size", true},
      {"CollGroup", "coll_num_byte[2]", true},
      {"Tri", "this_tri_index", true},
  };
  for (const bool counts_tables : {false, true}) {
    File file = samples::build(
        VERSION_1, "ObjList { Obj*4 } ShapeList { Shape*3 } VtxList { VtxGroup*5 vtx_num=2 } "
                   "TriList { TriGroup { Tri*9 } } PartList { Part*2 } MatList { Mat*2 } "
                   "TexList { Tex*4 tex_data_area_size=28 { TexStill } Tex tex_data_area_size=28 { TexStill } } "
                   "AnimList { AnimGroup { AnimStep*3 } } "
                   "CollList { CollGroup { Coll*5 coll_type=0x20 { Point } } }");
    for (const NamedWord &word : file.words)
      if (counts_tables && word.field == "list_header_size")
        harness::setWordAt(file.bytes, word.offset,
                           harness::wordAt(file.bytes, word.offset) + 4 * harness::wordAt(file.bytes, word.offset + 8));
    EXPECT_EQ(mendAndCheck(file.bytes, false).result.outcome, Outcome::good);
    for (const auto &[kind, field, mended] : WORDS_OF) {
      File damaged = file;
      samples::setWord(damaged, kind, 0, field, 0x1234);
      const Mending mending = mendAndCheck(damaged.bytes, false);
      EXPECT_EQ(mending.broken, "") << field;
      EXPECT_EQ(mending.bytes, mended ? file.bytes : damaged.bytes) << kind << ' ' << field;
    }
    for (const char *const field : {"tri_tag", "this_tri_index"}) // a hole, which the audit does not see
      samples::setWord(file, "Tri", 4, field, 0);
    EXPECT_EQ(mendAndCheck(file.bytes, false).result.outcome, Outcome::good);
  }
}

// --- Examples -------------------------------------------------------------------------------------------------------

constexpr const char *EXAMPLES[][3] = {
    {"levels of detail and children can stand in for each other", "ObjList { Obj obj_lod_num=2 obj_child_num=2 }",
     "Obj 0 obj_child_num 4"},
    {"both of a list's sizes against its elements", "EnvList { Env }",
     "EnvList 0 list_size +8; FileHeader 0 env_list_num +8"},
    {"the count of a list by its first element", "EnvList { Env Env Env }", "EnvList 0 num -1"},
    {"a huge count of a list", "EnvList { Env Env Env }", "EnvList 0 num 0x7fffffff"},
    {"the second count of a list with two kinds",
     "ColorList { TriColorGroup TriColorGroup VtxColorGroup VtxColorGroup }", "ColorList 0 tri_group_num 1"},
    {"both counts of a list with two kinds: the tags tell them apart",
     "ColorList { TriColorGroup TriColorGroup VtxColorGroup VtxColorGroup }",
     "ColorList 0 tri_group_num 0 vtx_group_num -3"},
    {"an element that is counted is not taken for a block", "AnimList { AnimGroup type=4 { AnimNode*2 } }",
     "AnimList 0 usr_ext_blk_size -1 num_byte[0] -93; AnimGroup 0 anim_group_tag -1 this_anim_group_index -1"},
    {"a list's size in the header and its own", "EnvList { Env }  CamList { Cam }",
     "EnvList 0 list_size 4; FileHeader 0 env_list_num 8"},
};
constexpr const char *SHORT[] = {
    "SceneList V=16 U=8",
    "CamList { Cam Cam V=20 U=4 Cam }",
    "ObjList { Obj V=0 U=4 }",
    "ShapeList U=8 { Shape V=4 shape_part_num=2 }",
    "MatList { Mat V=100 }",
    "TexList { Tex V=16 U=4 { TexStill } }",
    "TeximgList { Teximg texels=8 V=0 U=4 Teximg }",
    "AnimList { AnimGroup V=8 }",
};

/// Several words that are wrong, maker blocks that are too short, and what becomes of every bundled sample.
TEST(Mend, Examples) {
  std::string golden;
  const auto add = [&](const std::string &what, const Bytes &file, const Bytes &original, bool salvage) {
    const Mending mending = mendAndCheck(file, salvage);
    EXPECT_EQ(mending.broken, "") << what;
    golden += what + ": " + (mending.bytes == original ? "as it was, " : "") + storyOf(mending);
  };
  for (const auto &[what, text, edits] : EXAMPLES) {
    const File original = samples::build(VERSION_1, text, samples::LinkWords::none);
    add(what, samples::edited(original, edits).bytes, original.bytes, false);
  }
  for (const char *const text : SHORT)
    for (const bool salvage : {false, true})
      add(text, samples::build(VERSION_2, text).bytes, {}, salvage);
  std::map<std::string, Bytes> files;
  for (const auto &entry : std::filesystem::directory_iterator(KOVA_SOURCE_DIR "/samples"))
    if (entry.path().extension() == ".kb")
      files[entry.path().stem()] = sampleFile(entry.path().stem());
  for (const auto &[name, file] : files)
    for (const bool salvage : {false, true})
      add(name, file, name == "damaged" ? files["town"] : files["small-1"], salvage);
  expectGolden("examples", golden);
}

/// Not only a few words are wrong in such files; that some are without their highest bits can be chance.
TEST(Mend, StrangeFilesAreHopeless) {
  for (const char *const list : {"VtxList", "VtxList { VtxGroup vtx_num=2 }"}) {
    const Bytes file = samples::build(VERSION_1, list, samples::LinkWords::none).bytes;
    for (const bool all : {false, true}) {
      Bytes stripped = file;
      for (std::size_t i = 0; i < (all ? file.size() : FILE_HEADER_BYTES); ++i)
        stripped[i] &= 0x7f;
      const Mending mending = mendAndCheck(stripped, false);
      EXPECT_EQ(mending.broken, "");
      EXPECT_EQ(mending.bytes, all ? stripped : file) << list;
    }
  }
  // The last three have another word that is wrong.
  for (Bytes stripped : {samples::goodFile1().bytes, samples::goodFile2().bytes, sampleFile("color-size"),
                         sampleFile("envelope"), sampleFile("scene-size")}) {
    for (unsigned char &byte : stripped)
      byte &= 0x7f;
    const Mending mending = mendAndCheck(stripped, false);
    EXPECT_EQ(mending.broken, "");
    EXPECT_NE(mending.result.outcome, Outcome::mended);
    EXPECT_TRUE(mending.bytes == stripped);
  }
}

/// What fuzzing has found stays clean. A line of the golden file says what can be done, and has the sum of all that is
/// told and made of a file in each way.
TEST(Mend, FuzzingCorpus) {
  std::map<std::string, std::string> lines;
  for (const auto &input : std::filesystem::directory_iterator(KOVA_SOURCE_DIR "/fuzz/corpus/mend")) {
    std::ifstream stream(input.path(), std::ios::binary);
    const Bytes file(std::istreambuf_iterator<char>(stream), {});
    EXPECT_EQ(auditMending(file), "") << input.path();
    const Diagnosis diagnosis = diagnose(file);
    std::string told;
    for (const Damage &damage : diagnosis.damages)
      told += textOf(damage) + '\n';
    for (const Asked &asked : {Asked{}, Asked{.salvage = true, .drop = true}, Asked{.reading = 1}, Asked{.reading = 2},
                               Asked{.part = 1}, Asked{.part = 2}}) {
      Bytes mended = file;
      const Result result = mendBytes(mended, asked);
      told += storyOf({result, mended, ""});
    }
    const std::string name = input.path().filename();
    lines[name] = name + ' ' + std::to_string(sumOf(told)) + ' ' + remedyText(diagnosis) + '\n';
  }
  EXPECT_GT(lines.size(), 100U);
  std::string golden;
  for (const auto &[name, line] : lines)
    golden += line;
  expectGolden("corpus", golden);
}

/// Several scenes in a file: each one is taken as it was.
TEST(Mend, PartsAreTaken) {
  const Bytes one = sampleFile("small-1"), two = sampleFile("small-2");
  Bytes both = one;
  both.insert(both.end(), two.begin(), two.end());
  const auto taken = [](Bytes file, std::size_t part) {
    return mendBytes(file, {.part = part}).outcome == Outcome::hopeless ? Bytes() : file;
  };
  EXPECT_EQ(taken(both, 0), Bytes());
  EXPECT_EQ(taken(both, 1), one);
  EXPECT_EQ(taken(both, 2), two);
  EXPECT_EQ(taken(both, 3), Bytes());
  EXPECT_EQ(taken(one, 1), one);
  EXPECT_EQ(taken(one, 2), Bytes());
}

/// Two blocks of a large element in each other's place: they are exchanged if that can be done in one way only.
TEST(Mend, BlocksAreExchangedInOneWayOnly) {
  const Bytes file = samples::build(VERSION_1, "VtxList { VtxGroup vtx_num=600 } EnvList { Env }").bytes;
  constexpr long BLOCK = 512, HELD = 2 * BLOCK; // contents of the vertices
  const long head = static_cast<long>(file.size()) / BLOCK * BLOCK - BLOCK;
  for (const long copies : {0, 1, 9}) {
    Bytes whole = file; // in which vertices look like what stands in the last blocks
    for (long i = 1; i <= copies; ++i) {
      std::copy_n(whole.begin() + head, BLOCK, whole.begin() + HELD + i * BLOCK);
      ++whole[static_cast<std::size_t>(HELD + i * BLOCK)];
    }
    Bytes hurt = whole;
    std::swap_ranges(hurt.begin() + HELD, hurt.begin() + HELD + BLOCK, hurt.begin() + head);
    const Mending mending = mendAndCheck(hurt, false);
    EXPECT_EQ(mending.broken, "");
    EXPECT_EQ(mending.bytes, copies == 0 ? whole : hurt) << copies;
  }
}

} // namespace

} // namespace kova::mend
