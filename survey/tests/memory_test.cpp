/// What a survey does where memory cannot be had: the file of which too little is there has no verdict, and the others
/// are not touched by that.
#include "harness/scratch.h"
#include "samples/builder.h"
#include "survey/audit.h"
#include "survey/report_reader.h"
#include "survey/results.h"
#include "tests/allocations.h"

#include <gtest/gtest.h>

namespace kova::survey {

TEST(SurveyMemory, EachAllocationMayFail) {
  const harness::ScratchFile file(samples::build(0x100, "ObjList { Obj this_obj_index=7 }").bytes), report, page;
  constexpr Questions ALL = {.deep = true, .repairable = true};
  Workspace enough;
  const FileResult wanted = audit({.path = file.path}, ALL, enough);
  EXPECT_EQ(wanted.repair, Repair::mended);
  Results results;
  ASSERT_TRUE(openResults(results, {.json = report.path, .html = page.path}, Keeping::unnamed));
  results.print.stream = std::fopen("/dev/null", "w"); // in place of standard output, which would be closed
  reserveResults(results, 100'000);
  std::uint64_t rounds = 0;
  for (bool all_given = false; !all_given; ++rounds) {
    Workspace workspace;
    Input input{.path = file.path};
    // The search for a mending asks for much, again and again.
    test::allocations.left = static_cast<long>(rounds < 200 ? rounds : rounds * rounds / 200);
    take(results, audit(std::move(input), ALL, workspace));
    all_given = test::allocations.left.exchange(-1) >= 0;
  }
  finishResults(results, {});
  EXPECT_EQ(results.lost, 0U);
  std::vector<FileResult> reported;
  ASSERT_EQ(readReport(report.path, [&](FileResult &&result) { reported.push_back(std::move(result)); }), "");
  ASSERT_EQ(reported.size(), rounds);
  for (FileResult &result : reported) {
    EXPECT_EQ(result.path, file.path);
    if (result.reason == Reason::no_memory) {
      EXPECT_TRUE(result.verdict == Verdict::none && result.counts.empty() && result.repair == Repair::needless);
    } else if (result.repair == Repair::unknown) {
      EXPECT_EQ(result.findings, wanted.findings);
    } else {
      EXPECT_TRUE(result == wanted);
    }
  }
}

} // namespace kova::survey
