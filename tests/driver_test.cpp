#include "samples/builder.h"
#include "tests/support.h"

#include <gtest/gtest.h>

namespace kova::test {

namespace {

const std::string BANNER = "KOVA 1.0/2.0 data checker.  Revised on 02/05/99\n";
const std::string STARS = std::string(60, '*') + "\n";
const std::string ERROR_BLOCK = STARS + "**** ERR : Can't Read File Correctly.\n" + STARS;

std::string summary(const std::string &path, const char *version, bool fine) {
  return STARS + "**** File Name    : " + path + "\n**** KOVA Version : " + version + "\n**** check result : " +
         (fine ? "OK\n**** But, this does not guarantee all data are correct.\n" : "ERR !!\n") + STARS;
}

/// What stands between the banner and the dump.
std::string beforeDump(const Ran &ran) {
  EXPECT_TRUE(ran.out.starts_with(BANNER));
  const std::size_t dump = ran.out.find("<FileHeader>");
  EXPECT_NE(dump, std::string::npos);
  return linesWithout(ran.out.substr(BANNER.size(), dump - BANNER.size()), "---- checking ");
}

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
}

TEST(Driver, GivesItsVerdictAndDumps) {
  File wrong = goodFile2();
  setWord(wrong, "Env", 0, "this_env_index", 9);
  setWord(wrong, "Joint", 1, "this_index", 9);
  File warned = goodFile1();
  setWord(warned, "Tri", 1, "tri_size", 0); // nothing checks it
  File version = goodFile1();
  setWord(version, "FileHeader", 0, "version", 0x00070100);
  File cut = goodFile1();
  cut.bytes.resize(cut.bytes.size() - 2);
  File tag = goodFile1();
  setWord(tag, "CamList", 0, "list_tag", 1);
  struct Row {
    const char *name;
    File file;
    bool loaded;
    const char *version;
    bool fine;
    const char *errors;
    const char *findings; ///< null: not looked at
  };
  const Row rows[] = {
      {"good, 1.0", goodFile1(), true, " 1.00", true, "", ""},
      {"good, 2.0", goodFile2(), true, " 2.00", true, "", ""},
      {"version with high bits", version, true, " 1.00", true, "", ""},
      {"size that nothing checks", warned, true, " 1.00", true, "", ""},
      {"wrong indices", wrong, true, " 2.00", false, "",
       "Env[0] index is wrong. 0 != 9\nJoint[1] index is wrong. 1 != 9\n"},
      {"wrong tag", tag, false, " 1.00", false, "irregular tag ! 0x00000001 != 0x000e0000\n", nullptr},
      {"cut", cut, false, " 1.00", false, "file size 6119 6121\nData file size is incorrect - missing data.\n",
       nullptr},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    const ScratchFile file(row.file.bytes);
    const Ran ran = runProgram({file.path, "-h"}); // the second argument is ignored
    const std::string before = beforeDump(ran);
    EXPECT_EQ(ran.status, 0);
    EXPECT_EQ(ran.err, row.errors);
    EXPECT_TRUE(before.ends_with(summary(file.path, row.version, row.fine))) << before;
    EXPECT_EQ(before.starts_with(ERROR_BLOCK), !row.loaded) << before;
    EXPECT_EQ(before, row.findings == nullptr ? before : row.findings + summary(file.path, row.version, row.fine));
    Kis kis;
    capture([&] { loadBytes(row.file.bytes, kis); });
    EXPECT_TRUE(sameText(ran.out.substr(ran.out.find("<FileHeader>")), dumpOf(kis))) << "and nothing behind the dump";
  }
}

} // namespace kova::test
