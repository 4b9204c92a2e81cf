/// Files with which nothing can be done, or that were made to do harm: no crash, no hang, nothing untold.

#include "harness/bytes.h"
#include "mend/diagnose.h"
#include "mend/tests/damage.h"
#include "mend/tests/mending.h"
#include "tests/allocations.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <gtest/gtest.h>
#include <random>

namespace kova::mend {

namespace {

using harness::setWordAt;
using harness::wordAt;

TEST(Hostile, AnyDamageIsStood) {
  for (std::uint32_t seed = 0; seed < 6000; ++seed) {
    std::mt19937 random(seed);
    Bytes file = madeFiles()[random() % madeFiles().size()].file.bytes;
    if (seed % 3 == 0)
      file.resize(random() % file.size());
    for (std::size_t i = 1 + random() % (std::size_t{1} << random() % 9); i != 0 && file.size() > 7; --i) {
      const std::size_t at = 4 + random() % (file.size() - 4);
      if (random() % 2 == 0)
        file[at] = static_cast<unsigned char>(random());
      else if (at + 4 <= file.size())
        setWordAt(file, at / 4 * 4, wordAt(file, random() % (file.size() - 3)));
    }
    EXPECT_EQ(auditMending(file), "") << "seed " << seed;
    EXPECT_EQ(auditMending(damagedFile(seed)), "") << "structure, seed " << seed;
  }
}

/// The notation of a file in which nothing stands behind the list.
std::string lastList(const std::string &list, const std::string &content) {
  std::string text = list + content;
  bool behind = false;
  for (const ListRow &row : std::span(LISTS).first(VERSION_1_LIST_NUM)) {
    if (behind)
      text += std::string(" ") + row.name + " absent=1";
    behind |= row.name == list;
  }
  return text;
}

/// Maker blocks that end with the file, at every word, with counts that promise more than any file has.
TEST(Hostile, NothingIsReadBehindMakerBlocks) {
  struct {
    const char *list, *record, *more;
    std::size_t block; ///< bytes, without arrays
  } const rows[] = {{"SceneList", "", "", 20},       {"CamList", "Cam", "", 24},
                    {"ObjList", "Obj", "", 28},      {"ShapeList", "Shape", "", 12},
                    {"MatList", "Mat", "", 104},     {"TexList", "Tex", "{ TexStill }", 20},
                    {"TeximgList", "Teximg", "", 4}, {"AnimList", "AnimGroup", "", 148}};
  for (const auto &[list, record, more, block] : rows)
    for (std::size_t bytes = 0; bytes <= block; bytes += 4) {
      const std::string maker = " V=" + std::to_string(bytes) + ' ' + more;
      const std::string content = *record == '\0' ? maker : std::string(" { ") + record + maker + " }";
      const samples::File file = samples::build(VERSION_2, lastList(list, content));
      for (std::size_t at = file.bytes.size() - std::min<std::size_t>(bytes, 12); at <= file.bytes.size(); at += 4)
        for (const Word value : {1U, 0x10000001U, 0x20000001U, 0x40000001U, 0x7fffffffU, 0x80000000U, ~0U}) {
          Bytes damaged = file.bytes;
          if (at < damaged.size())
            setWordAt(damaged, at, value);
          EXPECT_EQ(auditMending(damaged), "") << list << ' ' << bytes << ' ' << at << ' ' << value;
        }
    }
}

/// A file of one word, over and over, behind a header that promises all of it to one list.
Bytes monotonous(Word version, std::size_t list, std::size_t size, std::vector<Word> words) {
  Bytes file(size);
  for (std::size_t at = 0; at < size; at += 4)
    setWordAt(file, at, words[at / 4 % words.size()]);
  const std::size_t header = version == VERSION_1 ? FILE_HEADER_BYTES : FILE_HEADER_BYTES + VERSION_2_SIZES_BYTES;
  for (std::size_t at = 0; at < header; at += 4)
    setWordAt(file, at, 0);
  setWordAt(file, 0, version);
  setWordAt(file, 4, static_cast<Word>(size));
  setWordAt(file, 12, static_cast<Word>(header));
  setWordAt(file, 92, static_cast<Word>(header - FILE_HEADER_BYTES));
  setWordAt(file, harness::sizeOffset(LISTS[list]), static_cast<Word>(size - header));
  setWordAt(file, header, LISTS[list].tag);
  setWordAt(file, header + 8, static_cast<Word>(size - header));
  return file;
}

/// What a load may take of a damaged file, the file that is made, and what is known of its records.
constexpr std::size_t memoryBound(std::size_t size) { return (16 << 20) + 48 * size; }

TEST(Hostile, MemoryAndTimeDependOnTheSizeAlone) {
  constexpr std::size_t SIZE = 1 << 20;
  double most = 0;
  for (std::size_t list = 0; list < LIST_NUM; ++list) {
    const Word version = list < VERSION_1_LIST_NUM ? VERSION_1 : VERSION_2;
    const Word element = LISTS[list].tag + 0x100;
    for (const std::vector<Word> &words :
         {std::vector<Word>{~0U}, {0}, {1}, {element}, {element, 0}, {element, 1, 8, 8}, {0x1000}, {0x40000}}) {
      for (const std::size_t cut : {0U, 5U}) {
        Bytes file = monotonous(version, list, SIZE, words);
        file.resize(SIZE - cut);
        const std::size_t held = test::allocations.held;
        test::allocations.peak = held;
        mendBytes(file, {.salvage = true});
        const std::size_t taken = test::allocations.peak - held;
        most = std::max(most, static_cast<double>(taken) / SIZE);
        EXPECT_LE(taken, memoryBound(SIZE)) << LISTS[list].name << ' ' << words[0];
      }
    }
  }
  std::printf("memory of mending: up to %.1f x the file\n", most);
}

/// A few hundred bytes whose header promises gigabytes, in which heads, tables and elements would have to be looked
/// for.
TEST(Hostile, PromisesCostNothing) {
  const samples::File good = samples::build(VERSION_1, "VtxList { VtxGroup*2 }");
  for (const Word promised : {0x10000000U, 0x70000000U, 0xf0000000U})
    for (const Word count : {2U, (promised - 24) / 4, (promised - 24) / 28})
      for (const char *const list : {"VtxList", "TriList", "NameList"}) { // what is behind it is not there
        samples::File file = good;
        setWord(file, list, 0, "list_size", promised);
        setWord(file, list, 0, "num", count);
        const auto *const row =
            std::find_if(LISTS.begin(), LISTS.end(), [&](auto &other) { return other.name == std::string(list); });
        const Word before = wordAt(file.bytes, harness::sizeOffset(*row));
        setWordAt(file.bytes, harness::sizeOffset(*row), promised);
        setWordAt(file.bytes, 4, wordAt(file.bytes, 4) + promised - before);
        const std::size_t held = test::allocations.held;
        const std::clock_t begin = std::clock();
        test::allocations.peak = held;
        diagnose(file.bytes);
        EXPECT_LE(test::allocations.peak - held, memoryBound(file.bytes.size()))
            << list << ' ' << promised << ' ' << count;
        EXPECT_LE(std::clock() - begin, CLOCKS_PER_SEC) << list << ' ' << promised << ' ' << count;
      }
}

/// Header sizes that place what follows upon the fixed words, in a file that is cut there.
TEST(Hostile, HeaderSizesThatPointBackAreStood) {
  struct {
    const char *kind, *field;
  } const words[] = {{"SceneList", "scene_header_size"}, {"Light", "light_header_size"}, {"Name", "name_header_size"}};
  for (const samples::File &good : {samples::goodFile1(), samples::goodFile2()})
    for (const auto &[kind, field] : words)
      for (const Word size : {0U, 4U, 40U, 0x7ffffffcU, ~0U}) {
        samples::File file = good;
        setWord(file, kind, 0, field, size);
        const std::size_t at = offsetOf(file, kind, 0, field);
        for (std::size_t cut = at + 4; cut < std::min(file.bytes.size(), at + 260); cut += 3)
          EXPECT_EQ(mendAndCheck(Bytes(file.bytes.begin(), file.bytes.begin() + static_cast<long>(cut)), true).broken,
                    "")
              << kind << ' ' << size << ' ' << cut;
      }
}

} // namespace

} // namespace kova::mend
