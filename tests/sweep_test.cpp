/// Damage on a large scale: every cut, every byte and every word of the small samples, every allocation that can fail.
///
/// A round is clean when it ends, when nothing leaves a bound (the sanitizers see to that), when the model keeps its
/// invariants, and when the model is the same after it was written and loaded again. Of some rounds also what is
/// printed is looked at, and what comes from a file, a stream and memory.

#include "harness/audit.h"
#include "kova/check.h"
#include "kova/findings.h"
#include "kova/kt.h"
#include "tests/allocations.h"
#include "tests/damage.h"
#include "tests/support.h"

#include <gtest/gtest.h>

namespace kova::test {

namespace {

int verdictOn(const Bytes &bytes) {
  Kis kis;
  return kvOpenKbMemory(bytes, "", kis) * checkKOVA(kis);
}

/// Goes through every `step`-th variant of the small samples and shows the first fault. What is cut may not be called
/// OK, but between two lists.
void sweep(void (*every)(const File &, const Visit &), std::size_t step) {
  const FindingReceiver silent([](const Finding &) {});
  const bool are_cut = every == everyCut || every == everyCutOfAList;
  std::size_t number = 0;
  std::string fault;
  for (const Sample &sample : smallSamples())
    every(sample.file, [&](const Bytes &bytes, const std::string &what) {
      if (number++ % step != 0 || !fault.empty())
        return;
      fault = auditFile(bytes);
      if (are_cut && !what.ends_with("whole") && verdictOn(bytes) != 0)
        fault += "called OK";
      fault += fault.empty() ? "" : " in " + sample.name + ", " + what;
    });
  ::testing::Test::RecordProperty("rounds", std::to_string(number / step));
  EXPECT_EQ(fault, "");
}

} // namespace

TEST(Sweep, SomeDamage) {
  for (const auto every : {everyCut, everyCutOfAList, everyByte, everyWord})
    sweep(every, 37);
}

TEST(SlowSweep, EveryCut) { sweep(everyCut, 1); }
TEST(SlowSweep, EveryCutOfAList) { sweep(everyCutOfAList, 1); }
TEST(SlowSweep, EveryByte) { sweep(everyByte, 1); }
TEST(SlowSweep, EveryWord) { sweep(everyWord, 1); }

/// @return whether neither the checks nor the dump ask for memory.
bool needsNoMemory(Kis &kis) {
  bool none_asked = false;
  capture([&] {
    allocations.left = 0;
    checkKOVA1(kis);
    checkKOVA2(kis);
    kvSaveAsKt(kis, "/dev/null");
    const FindingReceiver receiver([](const Finding &finding) { kvPrintFinding(stdout, finding); });
    checkKOVA1(kis);
    checkKOVA2(kis);
    none_asked = allocations.left.exchange(-1) == 0;
  });
  return none_asked;
}

TEST(SlowSweep, EveryAllocation) {
  std::size_t failures = 0;
  for (const Sample &sample : goodSamples()) {
    const ScratchFile file(sample.file.bytes);
    for (long k = 0;; ++k) {
      KisHandle kis;
      int loaded = 0;
      bool all_given = false;
      const std::string errors = capture([&] {
                                   allocations.left = k;
                                   kis = kvNewKis();
                                   loaded = kis ? kvOpenKb(file.path.c_str(), *kis) : 0;
                                   const long left = allocations.left.exchange(-1);
                                   all_given = left >= 0;
                                 }).err;
      if (all_given) {
        EXPECT_TRUE(loaded) << sample.name;
        break;
      }
      ++failures;
      if (!kis)
        continue;
      // A load says whose memory was lacking; a name that could not be kept fails only a second opening.
      const bool name_lost = kis->file_name.empty();
      EXPECT_TRUE(name_lost || loaded || errors.ends_with(": out of memory.\n"))
          << sample.name << ", allocation " << k << "\n"
          << errors;
      EXPECT_EQ(brokenInvariants(*kis), "") << sample.name << ", allocation " << k;
      EXPECT_TRUE(needsNoMemory(*kis)) << sample.name << ", allocation " << k;
    }
  }
  RecordProperty("failures", std::to_string(failures));
}

} // namespace kova::test
