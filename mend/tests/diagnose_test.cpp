/// What is said about damaged files: one of each kind lies in samples/hurt, with all diagnoses in one file.

#include "mend/diagnose.h"
#include "harness/bytes.h"
#include "mend/foreign.h"
#include "samples/hurt.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>

namespace kova::mend {

namespace {

const std::string FOLDER = KOVA_SOURCE_DIR "/samples/hurt/";

std::string contentOf(const std::string &path) {
  std::ifstream stream(path, std::ios::binary);
  EXPECT_TRUE(stream) << path;
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::string diagnosisOf(BytesView file, const std::string &name) {
  const Diagnosis diagnosis = diagnose(file);
  std::string text;
  for (const Damage &damage : diagnosis.damages) {
    EXPECT_LE(damage.begin, damage.end) << name;
    text += textOf(damage) + '\n';
  }
  return text + name + ": " + remedyText(diagnosis) + '\n';
}

TEST(Diagnose, SaysWhatHasHappened) {
  std::map<std::string, std::string> diagnoses;
  for (const samples::DamageKind &kind : samples::damageKinds()) {
    const std::string name = kind.name + std::string(".hurt");
    const Bytes file = samples::hurtSample(kind);
    EXPECT_EQ(contentOf(FOLDER + name), std::string(file.begin(), file.end())) << name;
    diagnoses[name] = diagnosisOf(file, name);
  }
  std::string all;
  for (const auto &[name, text] : diagnoses)
    all += text;
  EXPECT_EQ(all, contentOf(FOLDER + "diagnoses.txt"));
}

TEST(Diagnose, KnowsOtherKinds) {
  const auto kindOf = [](std::string_view begin) {
    Bytes file(begin.begin(), begin.end());
    const ForeignKind *const kind = foreignKind(file);
    return std::string(kind != nullptr ? kind->name : "");
  };
  using namespace std::string_view_literals;
  EXPECT_EQ(kindOf("\x89PNG\r\n\x1a\n\0\0"sv), "a PNG image");
  EXPECT_EQ(kindOf(std::string(257, '\0') + "ustar"), "a tar archive");
  EXPECT_EQ(kindOf("BM, a remark of twenty letters\n"sv), "a text");
  EXPECT_EQ(kindOf("a remark of twenty \x0e"sv), "");
  EXPECT_EQ(kindOf("a \xd0\xbf\xd1\x80\xd0\xb8\xd0\xbc\xd0\xb5\xd1\x80\xd0\xb0 b"sv), "");
  EXPECT_EQ(kindOf("BM\x36\0\0\0\0\0\0\0\x36\0\0\0"sv), "a BMP image");
  EXPECT_EQ(kindOf("\0\0\1\0\0\0\0\0\0\0\0\0\0\0\0\x64"sv), "");
}

TEST(Diagnose, SaysWhatFilesLookLike) {
  using namespace std::string_literals;
  const auto repeated = [](int number, const char *text) {
    std::string all;
    while (number-- > 0)
      all += text;
    return all;
  };
  const std::pair<std::string, const char *> FILES[] = {
      {"", "at 0x00000000 empty: the file is empty (certain)\nx: kbrepair cannot mend it"},
      {"\x1f\x8b\x08"s,
       "packed: by its first bytes it is a gzip archive (likely)\nx: what is in it may be a KOVA file"},
      {"%PDF-1.4 and more", "other-kind: by its first bytes it is a PDF document (likely)\nx: kbrepair cannot"},
      {repeated(8, "\xef\xbf\xbd"), "replaced by the character U+FFFD: 8 (likely)"},
      {repeated(9, "\xef\xbf\xbd"), "replaced by the character U+FFFD: 9 (certain)"},
      {repeated(9, "\xef\xbf\xbd") + "\xef\xbf", "unknown: nothing in it is like a KOVA file (likely)"},
  };
  for (const auto &[file, expected] : FILES) {
    const std::string told = diagnosisOf(Bytes(file.begin(), file.end()), "x");
    EXPECT_NE(told.find(expected), std::string::npos) << told << "not: " << expected;
  }
}

} // namespace

} // namespace kova::mend
