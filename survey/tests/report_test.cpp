#include "survey/json.h"

#include "harness/scratch.h"
#include "survey/junit.h"
#include "survey/page.h"
#include "survey/walk.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace kova::survey {

namespace {

FileResult hostileRecord(int number) {
  std::string path = "d";
  path += std::to_string(number % 10);
  path += "/</script><!--\n\xff\\\"&'.kb";
  path += std::to_string(number);
  FileResult record{.path = path,
                    .bytes = 123'456,
                    .modified = FileTime{1'700'000'000, 1},
                    .version = Version::two,
                    .verdict = Verdict::err,
                    .deep = true,
                    .repair = Repair::mended,
                    .repair_words = 12};
  for (Word i = 0; i < 20; ++i)
    record.findings.push_back({.id = "element-size",
                               .stage = Stage::check,
                               .severity = Severity::warning,
                               .list = "ObjList",
                               .element = i,
                               .offset = 0x1'0000'0000 + i,
                               .found = 0xffffffff,
                               .expected = 0,
                               .text = path});
  record.counts = {{"element-size", 20}, {"b", 1}, {"c", 1}};
  return record;
}

TEST(SurveyReport, ARecordComesBackFromItsLine) {
  const FileResult unreadable{.path = "x", .reason = Reason::unreadable, .detail = "it\xff"};
  const FileResult forged{.path = "x\x1b\xff",
                          .modified = FileTime{-1, 750'000'000},
                          .version = Version::one,
                          .verdict = Verdict::err,
                          .findings = {{.id = "x", .text = "\x1b\xff"}},
                          .counts = {{"x", 1}}};
  const FileResult hopeless{.path = "x", .reason = Reason::other_version, .repair = Repair::no};
  const FileResult good{.path = "y", .version = Version::one, .verdict = Verdict::ok};
  const FileResult asked{.path = "y", .version = Version::one, .verdict = Verdict::ok, .repair = Repair::needless};
  for (const FileResult &record : {hostileRecord(1), unreadable, forged, hopeless, good, asked}) {
    const std::string line = jsonLine(record);
    EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1);
    const std::optional<FileResult> back = recordOf(line);
    ASSERT_TRUE(back) << line;
    EXPECT_EQ(back->path, record.path);
    EXPECT_EQ(back->detail, record.detail);
    EXPECT_EQ(back->repair, record.repair);
    EXPECT_EQ(back->repair_words, record.repair_words);
    EXPECT_EQ(back->findings.size(), record.findings.size());
    EXPECT_EQ(jsonLine(*back), line);
    EXPECT_EQ(pageOf({*back}).find('\xff'), std::string::npos);
    EXPECT_EQ(junitReport({*back}).find_first_of("\x1b\xff"), std::string::npos);
  }
}

/// Each is one change to a line that is right.
TEST(SurveyReport, WhatIsNoRecordIsRefused) {
  const std::string line = jsonLine(hostileRecord(1));
  struct Change {
    const char *from, *to;
  };
  constexpr Change CHANGES[] = {
      {"\"path\":\"", "\"path\":\"\\\\n"}, // an escape that nothing makes
      {"\"path\":\"", "\"path\":7,\"x\":\""},
      {"\"bytes\":123456", "\"bytes\":-1"},
      {"\"bytes\":123456", "\"bytes\":null"},
      {"\"verdict\":\"ERR\"", "\"verdict\":\"err\""},
      {"\"verdict\":\"ERR\"", "\"verdict\":\"none\""}, // without a reason
      {"\"reason\":null", "\"reason\":\"unreadable\""},
      {"\"reason\":null", "\"reason\":\"bored\""},
      {"\"deep\":true", "\"deep\":1"},
      {"\"repair\":\"mended\"", "\"repair\":\"\""},
      {"\"repair\":\"mended\"", "\"repair\":\"good\""},
      {"\"repair\":\"mended\"", "\"repair\":null"}, // with a number of words
      {"\"repair\":\"mended\",", ""},
      {"\"repair_words\":12", "\"repair_words\":null"},
      {"\"repair_words\":12", "\"repair_words\":-1"},
      {"\"verdict\":\"ERR\"", "\"verdict\":\"OK\""}, // but it can be mended
      {"\"element\":0", "\"element\":4294967296"},
      {"\"stage\":\"check\"", "\"stage\":\"chess\""},
      {"\"path\":\"", "\"path\":\"\\u0000"},
      {"\"modified\":\"17", "\"modified\":\"+17"},
      {".000000001\"", ".00000001\""},
      {"\"version\":\"2.0\"", "\"version\":\"3.0\""},
      {"\"version\":\"2.0\"", "\"version\":null"},
      {"\"list\":\"ObjList\"", "\"list\":\"\""},
      {"\"id\":\"element-size\"", "\"id\":\"element--size\""},
      {"\"id\":\"element-size\"", "\"id\":\"Element\""},
      {"\"b\":1", "\"b\":0"},
      {"\"b\":1", "\"-b\":1"},
      {"\"id\":\"element-size\"", "\"id\":\"\""},
      {"\"counts\":{", "\"counts\":{\"a\":\"b\","},
      {"\"counts\":{", "\"counts\":{\"\\\\\":1,"},
      {"\"element-size\":20", "\"element-size\":17"}, // fewer than findings
      {"\"findings\":[", "\"findings\":[1,"},
      {"{\"path\"", "[{\"path\""},
  };
  ASSERT_TRUE(recordOf(line));
  for (const auto &[from, to] : CHANGES) {
    std::string changed = line;
    ASSERT_NE(changed.find(from), changed.npos) << from;
    changed.replace(changed.find(from), std::string_view(from).size(), to);
    EXPECT_FALSE(recordOf(changed)) << to;
  }
  for (const char *const other : {"", "null", "[]", "\"\"", "{}", "\xff"})
    EXPECT_FALSE(recordOf(other)) << other;
}

TEST(SurveyReport, AnInterruptedLineIsIgnoredAnyOtherIsAnError) {
  const std::string line = jsonLine(hostileRecord(1));
  const auto read = [](const std::string &text) {
    const harness::ScratchFile file({reinterpret_cast<const unsigned char *>(text.data()), text.size()});
    return readReport(file.path);
  };
  const Report interrupted = read(line + line.substr(0, line.size() / 2));
  EXPECT_EQ(interrupted.records.size(), 1U);
  EXPECT_EQ(interrupted.error, "");
  EXPECT_TRUE(read("").error.empty());
  EXPECT_TRUE(read(line + "x\n" + line).error.ends_with(":2: not a line of a report"));
  EXPECT_FALSE(readReport("/nowhere/at all").error.empty());
}

TEST(SurveyReport, SortingLeavesTheLastOfEachPathWhateverTheOrder) {
  std::vector<FileResult> records;
  for (const FileTime &modified : {FileTime{-10, 0}, FileTime{-9, 0}, FileTime{-9, 1}})
    records.push_back({.path = "b", .modified = modified, .verdict = Verdict::ok});
  records.push_back({.path = "b", .verdict = Verdict::ok});
  records.push_back({.path = "b", .modified = FileTime{-9, 1}, .verdict = Verdict::err});
  records.push_back({.path = "a", .verdict = Verdict::ok});
  std::vector<std::size_t> order = {0, 1, 2, 3, 4, 5};
  do {
    std::vector<FileResult> some;
    for (const std::size_t i : order)
      some.push_back(records[i]);
    sortRecords(some);
    ASSERT_EQ(some.size(), 2U);
    ASSERT_EQ(some[0].path, "a");
    ASSERT_EQ(jsonLine(some[1]), jsonLine(records[4])); // "ERR" comes before "OK"
  } while (std::next_permutation(order.begin(), order.end()));
}

std::vector<FileResult> manyRecords(int number) {
  std::vector<FileResult> records;
  for (int i = 0; i < number; ++i)
    records.push_back(hostileRecord(i));
  std::sort(records.begin(), records.end(), pathLess);
  return records;
}

TEST(SurveyReport, ThePageHasNoMarkupOfThePaths) {
  const std::string page = pageOf(manyRecords(50));
  const std::string empty = pageOf({});
  for (const char markup : {'<', '>', '&', '\xff', '\x80'})
    EXPECT_EQ(std::count(page.begin(), page.end(), markup), std::count(empty.begin(), empty.end(), markup));
  EXPECT_NE(page.find("\\u003c/script\\u003e"), page.npos);
  EXPECT_EQ(page.find("@"), page.find("@media"));
}

TEST(SurveyReport, ThePageOfTenThousandBadFilesIsSmall) { EXPECT_LE(pageOf(manyRecords(10'000)).size(), 5'000'000U); }

TEST(SurveyReport, JUnitIsEscaped) {
  const std::string report = junitReport(manyRecords(1));
  EXPECT_NE(report.find(R"(name="d0/&lt;/script>&lt;!--\x0a\xff\x5c&quot;&amp;'.kb0")"), report.npos) << report;
  EXPECT_NE(report.find(R"(tests="1" failures="1" errors="0")"), report.npos);
  EXPECT_NE(report.find(R"(message="can be mended (12 words), 22 findings: )"), report.npos);
  EXPECT_NE(report.find(R"(element-size: d0/&lt;/script&gt;&lt;!--; \xff)"), report.npos);
}

TEST(SurveyWalk, SplitsLists) {
  using namespace std::string_view_literals;
  using List = std::vector<std::string>;
  EXPECT_EQ(splitList("a\nb\n\n"), (List{"a", "b"}));
  EXPECT_EQ(splitList("a\nb\0c"sv), (List{"a\nb", "c"}));
  EXPECT_EQ(splitList(""), List{});
}

TEST(SurveyWalk, EveryFileIsInOneShardAndShardsAreOfLikeSize) {
  for (const std::uint64_t count : {1U, 2U, 7U, 16U}) {
    std::vector<int> files(count);
    for (int i = 0; i < 4000; ++i) {
      int in = 0;
      for (std::uint64_t shard = 1; shard <= count; ++shard)
        if (inShard("scenes/" + std::to_string(i) + ".kb", {shard, count})) {
          ++in;
          ++files[shard - 1];
        }
      ASSERT_EQ(in, 1);
    }
    const double even = 4000.0 / static_cast<double>(count);
    for (const int number : files)
      EXPECT_NEAR(number, even, 0.25 * even);
  }
  for (const char *const wrong : {"", "1", "/", "0/2", "3/2", "1/0", "-1/2", "1/2x", " 1/2", "1/99999999999999999999"})
    EXPECT_FALSE(parseShard(wrong)) << wrong;
  EXPECT_EQ(parseShard("2/16")->count, 16U);
}

} // namespace

} // namespace kova::survey
