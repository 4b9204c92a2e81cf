/// Every file comes back byte for byte, whatever is wrong with it.
#include "json/tests/roundtrip.h"
#include "samples/hurt.h"
#include "samples/made.h"

#include <gtest/gtest.h>
#include <random>

namespace kova::json {
namespace {

using namespace samples;

/// All files without damage that the builder makes for tests.
const std::vector<File> &goodFiles() {
  static const std::vector<File> FILES = [] {
    std::vector<File> files;
    for (const LinkWords links : {LinkWords::positions, LinkWords::none}) {
      files.push_back(goodFile1(links));
      files.push_back(goodFile2(links));
    }
    for (Sample &sample : smallSamples())
      files.push_back(std::move(sample.file));
    return files;
  }();
  return FILES;
}

/// A file with damage that the seed chooses: words changed, a cut, or what happens to whole files.
Bytes damaged(unsigned seed) {
  std::mt19937 random(seed);
  const File &file = goodFiles()[random() % goodFiles().size()];
  Bytes bytes = file.bytes;
  for (std::size_t i = random() % 4; i > 0; --i) {
    const std::size_t at = file.words[random() % file.words.size()].offset;
    const Word old = harness::wordAt(bytes, at);
    const Word values[] = {0,
                           1,
                           0xffffffff,
                           0x7fc00001,
                           0x80000000,
                           old + 1,
                           old - 1,
                           old + 4,
                           old - 4,
                           old * 2,
                           static_cast<Word>(random()),
                           static_cast<Word>(random() % 200)};
    harness::setWordAt(bytes, at, values[random() % std::size(values)]);
  }
  const unsigned kind = static_cast<unsigned>(random() % 6);
  if (kind == 0)
    bytes.resize(random() % (bytes.size() + 1));
  if (kind == 1 && bytes.size() > FILE_HEADER_BYTES)
    bytes = damageKinds()[random() % damageKinds().size()].inflict(bytes, random).bytes;
  if (kind == 2)
    bytes.resize(bytes.size() + random() % 9, 0x55);
  return bytes;
}

void expectRoundTrips(unsigned first, unsigned last) {
  for (unsigned seed = first; seed < last; ++seed)
    ASSERT_EQ(brokenRoundTrips(damaged(seed)), "") << "seed " << seed;
}

TEST(RoundTrip, GoodFiles) {
  for (const File &file : goodFiles())
    EXPECT_EQ(brokenRoundTrips(file.bytes), "");
  for (const Made &made : madeSamples())
    EXPECT_EQ(brokenRoundTrips(made.bytes), "") << made.name;
}

TEST(RoundTrip, DamagedFiles) { expectRoundTrips(0, 2'000); }
TEST(SlowRoundTrip, DamagedFiles) { expectRoundTrips(2'000, 22'000); }

TEST(RoundTrip, CutAtEveryByte) {
  const Bytes file = goodFile2().bytes;
  for (std::size_t size = 0; size < 300; ++size)
    ASSERT_EQ(brokenRoundTrips(std::span(file).first(size)), "") << size;
  for (std::size_t size = 300; size < file.size(); size += 41)
    ASSERT_EQ(brokenRoundTrips(std::span(file).first(size)), "") << size;
}

/// A lean document holds no word that follows from others: all of them are computed.
TEST(RoundTrip, LeanDocumentsSayNothingTwice) {
  for (const File &file : goodFiles()) {
    const std::string document = documentOf(file.bytes, {Layout::pretty, true});
    if (document.find("\"name_size\"") != document.npos) // more than the whole words of the text
      continue;
    for (const char *const word : {"_list_tag\"", "list_size\"", "_list_header_size\"", "num_byte\"", "group_size\"",
                                   "\"this_index\"", "\"size\"", "obj_num\"", "\"raw\""})
      EXPECT_EQ(document.find(word), std::string::npos) << word << document.substr(0, 200);
  }
}

} // namespace
} // namespace kova::json
