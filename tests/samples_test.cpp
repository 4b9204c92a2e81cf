/// The bundled samples: each gives the output that lies beside it, and those that the project makes are the builder's.

#include "samples/made.h"
#include "tests/support.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

namespace kova::test {

namespace {

const std::string FOLDER = KOVA_SOURCE_DIR "/samples/";

std::string contentsOr(const std::string &path, const std::string &otherwise) {
  return std::filesystem::exists(path) ? readFile(path) : otherwise;
}

} // namespace

TEST(Samples, GiveTheOutputBesideThem) {
  std::filesystem::current_path(FOLDER); // the output names the file as it was given
  std::size_t compared = 0;
  for (const auto &entry : std::filesystem::directory_iterator(FOLDER)) {
    if (entry.path().extension() != ".kb")
      continue;
    const std::string name = entry.path().stem();
    const Ran ran = runProgram({name + ".kb"});
    EXPECT_TRUE(sameText(ran.out, contentsOr(FOLDER + name + ".out", "no such file"))) << name;
    EXPECT_EQ(ran.err, contentsOr(FOLDER + name + ".err", "")) << name;
    EXPECT_EQ(ran.status, name == "version" ? 255 : 0) << name;
    ++compared;
  }
  EXPECT_GE(compared, 15U);
}

TEST(Samples, AreMadeByTheBuilder) {
  const std::string index = readFile(FOLDER + "README.md");
  for (const samples::Made &made : samples::madeSamples()) {
    const std::string committed = readFile(FOLDER + made.name + ".kb");
    const auto [at, other] = std::ranges::mismatch(made.bytes, committed, {}, {},
                                                   [](char byte) { return static_cast<unsigned char>(byte); });
    EXPECT_TRUE(at == made.bytes.end() && other == committed.end())
        << made.name << ".kb differs at byte " << at - made.bytes.begin();
    EXPECT_NE(index.find("`" + made.name + ".kb`"), std::string::npos) << made.name;
  }
}

} // namespace kova::test
