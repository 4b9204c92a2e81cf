#include "common/text.h"

#include "survey/progress.h"
#include "survey/summary.h"

#include <gtest/gtest.h>

namespace kova::survey {

namespace {

TEST(SurveyText, Escapes) {
  constexpr std::size_t NONE = std::string_view::npos;
  struct Case {
    std::string_view bytes, printable, escaped;
    std::size_t control = NONE; ///< where the first control byte is
  };
  using namespace std::string_view_literals;
  constexpr Case CASES[] = {
      {"a/b c.kb"sv, "a/b c.kb", "a/b c.kb"},
      {"\\xff"sv, "\\x5cxff", "\\x5cxff"},
      {"\n\x1b\x7f\0"sv, "\\x0a\\x1b\\x7f\\x00", "\n\x1b\x7f\0"sv, 0}, // JSON escapes control characters itself
      {"b\x7f"sv, "b\\x7f", "b\x7f", 1},
      {"b\xc2\x9b"sv, "b\\xc2\\x9b", "b\xc2\x9b", 2},
      {"\xc2\xa0\x9f"sv, "\\xc2\\xa0\\x9f", "\xc2\xa0\\x9f", 2},
      {"\xe1\x80\x9b\xa0\xff"sv, "\\xe1\\x80\\x9b\\xa0\\xff", "\xe1\x80\x9b\\xa0\\xff"},
      {"\xc3\xa4"sv, "\\xc3\\xa4", "\xc3\xa4"},
      {"\xf0\x9f\x98\x80!"sv, "\\xf0\\x9f\\x98\\x80!", "\xf0\x9f\x98\x80!"},
      {"\xc3(\xff\xe2\x82"sv, "\\xc3(\\xff\\xe2\\x82", "\\xc3(\\xff\\xe2\\x82", 4}, // cut sequences
      {"\xc0\xaf\xe0\x80\xaf\xf0\x80\x80\xaf"sv, "\\xc0\\xaf\\xe0\\x80\\xaf\\xf0\\x80\\x80\\xaf",
       "\\xc0\\xaf\\xe0\\x80\\xaf\\xf0\\x80\\x80\\xaf", 3}, // longer than needed
      {"\xed\xa0\x80\xf4\x90\x80\x80"sv, "\\xed\\xa0\\x80\\xf4\\x90\\x80\\x80", "\\xed\\xa0\\x80\\xf4\\x90\\x80\\x80",
       2}, // a surrogate, and beyond the last character
  };
  for (const Case &tried : CASES) {
    EXPECT_EQ(printable(tried.bytes), tried.printable);
    EXPECT_EQ(escaped(tried.bytes), tried.escaped);
    EXPECT_EQ(unescaped(tried.printable), tried.bytes);
    EXPECT_EQ(unescaped(tried.escaped), tried.bytes);
    EXPECT_EQ(controlByte(tried.bytes), tried.control) << tried.printable;
  }
  for (const char *const wrong : {"\\", "a\\x", "\\x1", "\\xFF", "\\n", "\\xg0"})
    EXPECT_EQ(unescaped(wrong), std::nullopt) << wrong;
}

TEST(SurveyText, EverySequenceOfTwoBytesComesBack) {
  for (int first = 0; first < 256; ++first)
    for (int second = 0; second < 256; ++second) {
      const std::string bytes = {static_cast<char>(first), static_cast<char>(second)};
      ASSERT_EQ(unescaped(escaped(bytes)), bytes);
      ASSERT_EQ(unescaped(printable(bytes)), bytes);
    }
}

TEST(SurveyText, OneLine) {
  EXPECT_EQ(oneLine("     300\nUnknown\x1b version.\n"), "300; Unknown\\x1b version.");
  EXPECT_EQ(oneLine(" \n\n"), "");
}

TEST(SurveyText, BytesForPeople) {
  EXPECT_EQ(bytesText(1), "1 byte");
  EXPECT_EQ(bytesText(999), "999 bytes");
  EXPECT_EQ(bytesText(1000), "1.0 kB");
  EXPECT_EQ(bytesText(999'950), "1.0 MB");
  EXPECT_EQ(bytesText(~std::uint64_t{0}), "18.4 EB");
}

TEST(SurveyText, TimesBeforeAndAfter1970) {
  struct Case {
    FileTime time;
    const char *text;
  };
  constexpr std::int64_t MOST = 9'223'372'036'854'775'807;
  constexpr Case CASES[] = {{{0, 0}, "0.000000000"},
                            {{7, 50}, "7.000000050"},
                            {{-1, 750'000'000}, "-0.250000000"},
                            {{-1, 0}, "-1.000000000"},
                            {{-2, 1}, "-1.999999999"},
                            {{MOST, 999'999'999}, "9223372036854775807.999999999"},
                            {{-MOST - 1, 0}, "-9223372036854775808.000000000"},
                            {{-MOST - 1, 1}, "-9223372036854775807.999999999"}};
  for (const Case &tried : CASES) {
    EXPECT_EQ(timeText(tried.time), tried.text);
    EXPECT_TRUE(timeOf(tried.text) == tried.time) << tried.text;
  }
  for (const char *const wrong : {"", "-", "1", "1.", "1.5", ".000000000", "--1.000000000", "1.-00000000",
                                  "9223372036854775808.000000000", "1.0000000000", " 1.000000000"})
    EXPECT_FALSE(timeOf(wrong)) << wrong;
}

TEST(SurveyText, Progress) {
  EXPECT_EQ(progressText({.files = 9, .bytes = 90}, 0), "0/9 files, 0 bad, 0.0 MB/s");
  EXPECT_EQ(progressText({.files = 4, .bytes = 400'000'000, .files_done = 1, .bytes_done = 100'000'000, .bad = 1}, 25),
            "1/4 files, 1 bad, 4.0 MB/s, 1:15 left");
}

TEST(SurveyText, WhatIsWrongTellsTheFirstErrorAndItsList) {
  FileResult result{.path = "a\nOK.kb", .verdict = Verdict::err};
  result.findings = {{.id = "w", .severity = Severity::warning, .list = "ObjList", .text = "a warning\n"},
                     {.id = "e", .severity = Severity::error, .list = "EnvList", .text = "size is wrong\n"}};
  result.counts = {{"w", 2000}, {"e", 1}};
  EXPECT_EQ(fileLine(result), "ERR   a\\x0aOK.kb  2001 findings: EnvList: size is wrong\n");
  EXPECT_EQ(fileLine({.path = "b", .reason = Reason::unreadable, .detail = "gone\r"}),
            "NONE  b  cannot be read: gone\\x0d\n");
  std::vector<FileResult> results;
  for (const Repair repair : {Repair::needless, Repair::unknown})
    results.push_back({.path = "a", .verdict = Verdict::ok, .repair = repair});
  EXPECT_TRUE(summary(tallyOf(results), std::nullopt).ends_with("to repair: 1 unknown whether it can be mended\n"));
}

} // namespace

} // namespace kova::survey
