/// Damage on a large scale: every cut, every byte and every word of the small samples, every allocation that can fail.
///
/// A round is clean when it ends, when nothing leaves a bound (the sanitizers see to that), when the model keeps its
/// invariants, and when the output stays within its bound.

#include "kova/check.h"
#include "kova/findings.h"
#include "kova/kt.h"
#include "tests/allocations.h"
#include "tests/damage.h"
#include "tests/support.h"

#include <algorithm>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <unistd.h>

namespace kova::test {

namespace {

/// Turns standard output over to a scratch file for a whole sweep, so that a round can measure what it printed.
struct Sink {
  ScratchFile file;
  int kept = ::dup(STDOUT_FILENO);
  int kept_errors = ::dup(STDERR_FILENO);

  Sink() {
    std::fflush(stdout);
    const int to = ::open(file.path.c_str(), O_RDWR | O_TRUNC);
    ::dup2(to, STDOUT_FILENO);
    ::close(to);
    const int nothing = ::open("/dev/null", O_WRONLY);
    ::dup2(nothing, STDERR_FILENO);
    ::close(nothing);
  }
  Sink(const Sink &) = delete;
  Sink &operator=(const Sink &) = delete;
  ~Sink() {
    std::fflush(stdout);
    ::dup2(kept, STDOUT_FILENO);
    ::dup2(kept_errors, STDERR_FILENO);
    ::close(kept);
    ::close(kept_errors);
  }

  /// @return the bytes printed since the last call.
  std::size_t drain() const {
    std::fflush(stdout);
    const auto printed = static_cast<std::size_t>(::lseek(STDOUT_FILENO, 0, SEEK_CUR));
    ::lseek(STDOUT_FILENO, 0, SEEK_SET);
    return printed;
  }
};

struct Round {
  int verdict = 0;
  std::string broken;
  std::size_t output = 0;
};

/// Loads, checks and dumps the file of a sweep as the program does; the dump goes where the checks print.
Round run(const Sink &sink, const std::string &path) {
  Round round;
  Kis kis;
  round.verdict = kvOpenKb(path.c_str(), kis);
  const Word version = kvKOVAver(kis.file_header);
  round.broken = brokenInvariants(kis);
  round.verdict *= checkKOVA(kis);
  std::fflush(stdout);
  std::FILE *const dump = ::fdopen(::dup(STDOUT_FILENO), "w");
  kvWriteKt(dump, kis);
  if (version != VERSION_1) // a 1.0 dump has closed it
    std::fclose(dump);
  round.output = sink.drain();
  return round;
}

void rewrite(const std::string &path, const Bytes &bytes) {
  const int file = ::open(path.c_str(), O_WRONLY | O_TRUNC);
  ASSERT_EQ(::write(file, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  ::close(file);
}

/// Runs rounds over variants of the samples and keeps the first that was not clean.
struct Sweep {
  Sink sink;
  ScratchFile file;
  std::string fault;
  std::size_t rounds = 0;

  Round round(const Bytes &bytes, const std::string &what) {
    rewrite(file.path, bytes);
    const Round done = run(sink, file.path);
    ++rounds;
    if (fault.empty() && !done.broken.empty())
      fault = what + ": " + done.broken;
    if (fault.empty() && done.output > outputBound(bytes.size()))
      fault = what + ": " + std::to_string(done.output) + " bytes of output";
    return done;
  }
};

void report(const Sweep &sweep) {
  ::testing::Test::RecordProperty("rounds", std::to_string(sweep.rounds));
  EXPECT_EQ(sweep.fault, "");
}

/// Runs the rounds of a sweep; `bad(what)` says whether a variant may not be called OK.
void sweepAll(void (*every)(const File &, const Visit &), const std::function<bool(const std::string &what)> &bad) {
  Sweep sweep;
  for (const Sample &sample : smallSamples())
    every(sample.file, [&](const Bytes &bytes, const std::string &what) {
      if (sweep.round(bytes, sample.name + " " + what).verdict != 0 && bad(what) && sweep.fault.empty())
        sweep.fault = sample.name + " " + what + ": called OK";
    });
  report(sweep);
}

} // namespace

TEST(SlowSweep, EveryCut) {
  sweepAll(everyCut, [](const std::string &) { return true; });
}

TEST(SlowSweep, EveryCutOfAList) {
  sweepAll(everyCutOfAList, [](const std::string &what) { return !what.ends_with("whole"); });
}

TEST(SlowSweep, EveryByte) {
  sweepAll(everyByte, [](const std::string &) { return false; });
}

TEST(SlowSweep, EveryWord) {
  sweepAll(everyWord, [](const std::string &) { return false; });
}

TEST(SlowSweep, EveryAllocation) {
  std::size_t failures = 0;
  std::vector<Sample> samples = smallSamples();
  samples.push_back({"everything of 1.0", goodFile1()});
  samples.push_back({"everything of 2.0", goodFile2()});
  for (const Sample &sample : samples) {
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
      capture([&] {
        allocations.left = 0; // neither the checks nor the dump ask for memory
        checkKOVA1(*kis);
        checkKOVA2(*kis);
        kvSaveAsKt(*kis, "/dev/null");
        const FindingReceiver receiver([](const Finding &finding) { kvPrintFinding(stdout, finding); });
        checkKOVA1(*kis);
        checkKOVA2(*kis);
        EXPECT_EQ(allocations.left.exchange(-1), 0) << sample.name << ", allocation " << k;
      });
    }
  }
  RecordProperty("failures", std::to_string(failures));
}

} // namespace kova::test
