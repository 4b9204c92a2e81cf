#include "survey/json_line.h"

#include "harness/scratch.h"
#include "survey/junit.h"
#include "survey/page.h"
#include "survey/report_reader.h"
#include "survey/walk.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace kova::survey {

namespace {

FileResult hostileResult(int number) {
  std::string path = "d";
  path += std::to_string(number % 10);
  path += "/</script><!--\n\xff\\\"&'.kb";
  path += std::to_string(number);
  FileResult result{.path = path,
                    .bytes = 123'456,
                    .modified = FileTime{1'700'000'000, 1},
                    .version = Version::two,
                    .verdict = Verdict::err,
                    .deep = true,
                    .repair = Repair::mended,
                    .repair_words = 12,
                    .repair_undone = 2,
                    .repair_lines = std::vector<std::string>(12, path)};
  for (Word i = 0; i < 20; ++i)
    result.findings.push_back({.id = "element-size",
                               .stage = Stage::check,
                               .severity = Severity::warning,
                               .list = "ObjList",
                               .element = i,
                               .offset = 0x1'0000'0000 + i,
                               .found = 0xffffffff,
                               .expected = 0,
                               .text = path});
  result.counts = {{"element-size", 20}, {"b", 1}, {"c", 1}};
  return result;
}

std::string jsonLine(const FileResult &result) {
  std::string line;
  appendLine(line, result);
  return line;
}

EachResult eachOf(const std::vector<FileResult> &results) {
  return [&](const TakeEach &take) {
    std::for_each(results.begin(), results.end(), take);
    return 1;
  };
}

std::string pageOf(const std::vector<FileResult> &results) {
  ShownFindings shown;
  for (const FileResult &result : results)
    count(shown, result);
  return harness::written([&](std::FILE *to) { return writePage(to, {}, tallyOf(results), shown, eachOf(results)); })
      .value();
}

std::string junitReport(const std::vector<FileResult> &results) {
  return harness::written([&](std::FILE *to) { return writeJunit(to, tallyOf(results), eachOf(results)); }).value();
}

TEST(Schema, HasAllVersions) {
  std::ifstream file(KOVA_SOURCE_DIR "/survey/report.schema.json");
  const std::string schema{std::istreambuf_iterator<char>(file), {}};
  for (const VersionRow &row : VERSIONS)
    EXPECT_NE(schema.find('"' + std::string(row.name) + '"'), schema.npos) << row.name;
}

TEST(SurveyReport, AResultComesBackFromItsLine) {
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
  for (const FileResult &result : {hostileResult(1), unreadable, forged, hopeless, good, asked}) {
    const std::string line = jsonLine(result);
    EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1);
    const std::optional<FileResult> back = resultOf(line);
    ASSERT_TRUE(back) << line;
    EXPECT_EQ(*back, result) << line;
    EXPECT_EQ(jsonLine(*back), line);
    EXPECT_EQ(pageOf({*back}).find('\xff'), std::string::npos);
    EXPECT_EQ(junitReport({*back}).find_first_of("\x1b\xff"), std::string::npos);
  }
}

/// What later versions of the program tell of a file or a finding.
TEST(SurveyReport, MembersThatAreNotKnownAreSkipped) {
  const FileResult result = hostileResult(1);
  std::string line = jsonLine(result);
  for (const std::string before : {"\"path\"", "\"id\""})
    line.insert(line.find(before), R"("later":{"a":[1,{"id":null}],"path":[[]]},"too":[{},-1,0.5],)");
  EXPECT_EQ(resultOf(line), result) << line;
}

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
    {"\"repair_words\":12", "\"repair_words\":11"},  // fewer than changes
    {"\"repair_undone\":2", "\"repair_undone\":13"}, // more than all
    {"\"repair_changes\":[", "\"repair_changes\":[1,"},
    {"\"repair_changes\":[", "\"repair_damages\":[\"a\"],\"repair_changes\":["}, // then there are too many
    {"\"verdict\":\"ERR\"", "\"verdict\":\"OK\""},                               // but it can be mended
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

/// Each is one change to a line that is right.
TEST(SurveyReport, WhatIsNoResultIsRefused) {
  const std::string line = jsonLine(hostileResult(1));
  ASSERT_TRUE(resultOf(line));
  for (const auto &[from, to] : CHANGES) {
    std::string changed = line;
    ASSERT_NE(changed.find(from), changed.npos) << from;
    changed.replace(changed.find(from), std::string_view(from).size(), to);
    EXPECT_FALSE(resultOf(changed)) << to;
  }
  for (const char *const other : {"", "null", "[]", "\"\"", "{}", "\xff"})
    EXPECT_FALSE(resultOf(other)) << other;
}

TEST(SurveyReport, AnInterruptedLineIsIgnoredAnyOtherIsAnError) {
  const std::string line = jsonLine(hostileResult(1));
  const auto read = [](const std::string &text) {
    const harness::ScratchFile file({reinterpret_cast<const unsigned char *>(text.data()), text.size()});
    std::pair<std::string, std::size_t> wrong_and_number;
    wrong_and_number.first = readReport(file.path, [&](FileResult &&) { ++wrong_and_number.second; });
    return wrong_and_number;
  };
  EXPECT_EQ(read(line + line.substr(0, line.size() / 2)), std::pair(std::string(), std::size_t{1}));
  EXPECT_EQ(read("").first, "");
  EXPECT_TRUE(read(line + "x\n" + line).first.ends_with(":2: not a line of a report"));
  EXPECT_TRUE(read(std::string(20'000'000, ' ')).first.ends_with(":1: not a line of a report"));
  EXPECT_FALSE(readReport("/nowhere/at all", {}).empty());
}

std::vector<FileResult> manyResults(int number) {
  std::vector<FileResult> results;
  for (int i = 0; i < number; ++i)
    results.push_back(hostileResult(i));
  std::sort(results.begin(), results.end(), [](const FileResult &a, const FileResult &b) { return a.path < b.path; });
  return results;
}

TEST(SurveyReport, ThePageHasNoMarkupOfThePaths) {
  const std::string page = pageOf(manyResults(50));
  const std::string empty = pageOf({});
  for (const char markup : {'<', '>', '&', '\xff', '\x80'})
    EXPECT_EQ(std::count(page.begin(), page.end(), markup), std::count(empty.begin(), empty.end(), markup));
  EXPECT_NE(page.find("\\u003c/script\\u003e"), page.npos);
  EXPECT_EQ(page.find("@"), page.find("@media"));
}

TEST(SurveyReport, ThePageOfTenThousandBadFilesIsSmall) { EXPECT_LE(pageOf(manyResults(10'000)).size(), 5'000'000U); }

TEST(SurveyReport, JUnitIsEscaped) {
  const std::string report = junitReport(manyResults(1));
  EXPECT_NE(report.find(R"(name="d0/&lt;/script>&lt;!--\x0a\xff\x5c&quot;&amp;'.kb0")"), report.npos) << report;
  EXPECT_NE(report.find(R"(tests="1" failures="1" errors="0")"), report.npos);
  EXPECT_NE(report.find(R"(message="can be mended (2 transformations, 10 words), 22 findings: )"), report.npos);
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
