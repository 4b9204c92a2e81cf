#include "samples/builder.h"
#include "tests/support.h"

#include <gtest/gtest.h>

namespace kova::test {

namespace {

const std::string BANNER = "KOVA 1.0/2.0 data checker.  Revised on 02/05/99\n";
const std::string STARS = std::string(60, '*') + "\n";
const std::string ERROR_BLOCK = STARS + "**** ERR : Can't Read File Correctly.\n" + STARS;

} // namespace

TEST(Driver, ShowsItsUsage) {
  const std::vector<std::vector<std::string>> asking = {{}, {"-h"}, {"-help"}, {"-h", "x"}};
  for (const std::vector<std::string> &arguments : asking) {
    const Ran ran = runProgram(arguments);
    SCOPED_TRACE(arguments.empty() ? "no argument" : arguments.front());
    EXPECT_EQ(ran.status, 255);
    EXPECT_EQ(ran.out, BANNER);
    EXPECT_EQ(ran.err, "Usage:\tkbaudit file\n      \tfile is an input KOVA file.\n");
  }
}

TEST(Driver, TakesAnyOtherWordAsAFile) {
  for (const char *const argument : {"-H", "--help", "-x", "", "/no/such/file"}) {
    const Ran ran = runProgram({argument});
    SCOPED_TRACE(argument);
    EXPECT_EQ(ran.status, 255);
    EXPECT_EQ(ran.out, BANNER + ERROR_BLOCK + "This file is not KOVA 2.0\nversion = 0000000000\n");
    EXPECT_EQ(ran.err, "Input File Open Error\n");
  }
}

TEST(Driver, RefusesUnknownVersions) {
  File file = build(0x100, "");
  setWord(file, "FileHeader", 0, "version", 0xab000300);
  const ScratchFile written(file.bytes);
  const Ran ran = runProgram({written.path});
  EXPECT_EQ(ran.status, 255);
  EXPECT_EQ(ran.out, BANNER + ERROR_BLOCK + "This file is not KOVA 2.0\nversion = 0xab000300\n");
  EXPECT_EQ(ran.err, "ab000300\nUnknown version number.\n");
  setWord(file, "FileHeader", 0, "version", 0xab000100);
  const Ran good = runProgram({ScratchFile(file.bytes).path, "-h"}); // the second argument is ignored
  EXPECT_EQ(good.status, 0);
  EXPECT_NE(good.out.find("**** KOVA Version :  1.00\n**** check result : OK\n"), std::string::npos);
}

} // namespace kova::test
