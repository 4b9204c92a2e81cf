/// Files that were cut, and what is left of them.

#include "format/lists.h"
#include "harness/golden.h"
#include "kova/kb.h"
#include "mend/tests/damage.h"
#include "mend/tests/elements.h"
#include "survey/deep.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <set>

namespace kova::mend {

namespace {

using harness::setWordAt;
using harness::wordAt;

/// What a survey finds in the meaning of a file.
survey::FileResult deepResult(const Bytes &file) {
  const FindingReceiver silent([](const Finding &) {});
  Kis kis;
  kvOpenKbMemory(file, "", kis);
  survey::FileResult result;
  survey::deepCheck(kis, result);
  return result;
}

bool isLink(const std::string &id) {
  return !id.starts_with("float") && !id.starts_with("object") && !id.starts_with("key");
}

/// The number of links that lead nowhere.
std::map<std::string, std::uint64_t> deadLinks(const Bytes &file) {
  std::map<std::string, std::uint64_t> links;
  for (const auto &[id, count] : deepResult(file).counts)
    if (isLink(id))
      links[id] = count;
  return links;
}

/// @return what does not hold of a file that was cut: every element that was whole is there, and only links differ that
/// lead nowhere now.
std::string missing(const Bytes &original, std::size_t cut, const Bytes &salvaged, bool with_links) {
  return firstLost(original, {cut, original.size()}, salvaged, [&](std::size_t at, Word was) {
    Bytes linked = salvaged;
    setWordAt(linked, at, was);
    return !with_links || deadLinks(linked) != deadLinks(salvaged);
  });
}

struct Cuts {
  std::string name;
  Bytes file;
  std::size_t step;
  bool links; ///< all lead to something
};

std::vector<Cuts> cuts() {
  std::vector<Cuts> files = {{"good 1", samples::goodFile1().bytes, 7, false},
                             {"good 2", samples::goodFile2().bytes, 7, false},
                             {"town", sampleFile("town"), 503, true},
                             {"figure", sampleFile("figure"), 397, true},
                             {"every form 1", sampleFile("every-form-1"), 61, true},
                             {"every form 2", sampleFile("every-form-2"), 61, true}};
  for (samples::Sample &sample : samples::smallSamples())
    files.push_back({sample.name, std::move(sample.file.bytes), 3, false});
  return files;
}

/// Every so many bytes; and before each list, within its header, in its size table, and in its middle.
std::set<std::size_t> placesToCut(const Cuts &cut) {
  std::set<std::size_t> places;
  for (std::size_t size = 4; size < cut.file.size(); size += cut.step)
    places.insert(size);
  std::size_t begin = wordAt(cut.file, 12);
  for (const ListRow &list : LISTS) {
    if (harness::sizeOffset(list) >= wordAt(cut.file, 12))
      break;
    const std::size_t size = wordAt(cut.file, harness::sizeOffset(list));
    for (const std::size_t at : {begin, begin + 16, begin + 29, begin + size / 8 * 4})
      if (at < cut.file.size())
        places.insert(at);
    begin += size;
  }
  return places;
}

TEST(Salvage, WhatWasWholeIsThere) {
  std::size_t total = 0;
  std::size_t salvaged = 0;
  std::string golden;
  Word sum = 0;
  for (const Cuts &cut : cuts()) {
    std::map<std::string, std::uint64_t> dead_before = deadLinks(cut.file);
    for (const std::size_t size : placesToCut(cut)) {
      SCOPED_TRACE(cut.name + " cut to " + std::to_string(size));
      const Bytes file(cut.file.begin(), cut.file.begin() + static_cast<std::ptrdiff_t>(size));
      const Mending refused = mendAndCheck(file, false);
      EXPECT_EQ(refused.broken, "");
      EXPECT_EQ(refused.result.outcome, Outcome::hopeless);
      const Mending mending = mendAndCheck(file, true);
      EXPECT_EQ(mending.broken, "");
      const std::string story = cut.name + " cut to " + std::to_string(size) + ": " + storyOf(mending);
      golden += total % 200 == 0 ? story : ""; // of the others the sum tells whether anything has changed
      sum = sumOf(story, sum);
      ++total;
      if (mending.result.outcome != Outcome::salvaged)
        continue;
      ++salvaged;
      EXPECT_EQ(missing(cut.file, size, mending.bytes, cut.links), "");
      for (const auto &[id, count] : deadLinks(mending.bytes))
        EXPECT_LE(count, dead_before[id]) << id;
    }
  }
  std::printf("%zu of %zu files salvaged\n", salvaged, total);
  golden += "sum of all: " + std::to_string(sum) + '\n';
  EXPECT_EQ(harness::differsFromGolden(KOVA_SOURCE_DIR "/mend/tests/golden/salvage.out", golden), "");
  EXPECT_GE(static_cast<double>(salvaged), 0.99 * static_cast<double>(total));
}

/// A word of an element that is wrong beside the cut: it is told if it is mended, and nothing else is changed.
TEST(Salvage, WhatIsWrongBesideIsTold) {
  std::size_t told = 0;
  for (std::uint32_t seed = 0; seed < 12000; ++seed) {
    std::mt19937 random(seed);
    const samples::File &original = madeFiles()[random() % madeFiles().size()].file;
    const samples::NamedWord &word = original.words[random() % original.words.size()];
    const bool length = word.field.find("_num") != std::string::npos || word.field.ends_with("_blk_size");
    if (length || word.kind.ends_with("List") || word.kind.starts_with("FileHeader"))
      continue; // a record with another length can look like the one that is cut
    Bytes damaged = original.bytes;
    const Word old = wordAt(damaged, word.offset);
    setWordAt(damaged, word.offset, std::array{old + 1, old - 4, 0U, ~0U}[random() % 4]);
    const std::size_t size = word.offset + 4 + random() % (damaged.size() - word.offset - 3);
    const Mending mending = mendAndCheck(Bytes(damaged.begin(), damaged.begin() + static_cast<long>(size)), true);
    ASSERT_EQ(mending.broken, "") << seed;
    if (mending.result.outcome != Outcome::salvaged)
      continue;
    for (const Change &change : mending.result.changes)
      setWordAt(damaged, static_cast<std::size_t>(change.offset), change.new_value);
    const std::string broken = missing(damaged, size, mending.bytes, false);
    EXPECT_EQ(broken.find("another"), broken.npos) << broken << seed << ' ' << word.kind << ' ' << word.field;
    told += mending.result.changes.size();
  }
  EXPECT_GT(told, 100U);
}

} // namespace

} // namespace kova::mend
