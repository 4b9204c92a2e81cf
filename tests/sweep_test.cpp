/// Damage on a large scale: every cut, every byte and every word of the small samples, every allocation that can fail.
///
/// A round is clean when it ends, when nothing leaves a bound (the sanitizers see to that), when the model keeps its
/// invariants, and when the output stays within its bound.

#include "kova/check.h"
#include "kova/kt.h"
#include "tests/allocations.h"
#include "tests/support.h"

#include <algorithm>
#include <fcntl.h>
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

} // namespace

TEST(SlowSweep, EveryCut) {
  Sweep sweep;
  for (const Sample &sample : smallSamples())
    for (std::size_t size = 0; size < sample.file.bytes.size(); ++size) {
      const std::string what = sample.name + " cut to " + std::to_string(size);
      const Bytes cut(sample.file.bytes.begin(), sample.file.bytes.begin() + static_cast<std::ptrdiff_t>(size));
      if (sweep.round(cut, what).verdict != 0 && sweep.fault.empty())
        sweep.fault = what + ": called OK";
    }
  report(sweep);
}

/// The header is told of the cut: the list that is cut is as short as what is left of it, later lists are absent. So
/// the load gets to that list, which then ends too early.
TEST(SlowSweep, EveryCutOfAList) {
  Sweep sweep;
  for (const Sample &sample : smallSamples()) {
    const Bytes &whole = sample.file.bytes;
    const auto lists = std::span(LISTS).first(wordAt(whole, 0) == VERSION_1 ? VERSION_1_LIST_NUM : LIST_NUM);
    for (std::size_t size = wordAt(whole, 12); size < whole.size(); size += 4) {
      Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
      setWordAt(cut, 4, static_cast<Word>(size));
      std::size_t left = size - wordAt(whole, 12);
      bool between_lists = true;
      for (const ListRow &list : lists) {
        const std::size_t bytes = wordAt(whole, sizeOffset(list));
        between_lists = between_lists && (left >= bytes || left == 0);
        setWordAt(cut, sizeOffset(list), static_cast<Word>(std::min(bytes, left)));
        left -= std::min(bytes, left);
      }
      const std::string what = sample.name + " told to end at " + std::to_string(size);
      if (sweep.round(cut, what).verdict != 0 && !between_lists && sweep.fault.empty())
        sweep.fault = what + ": called OK";
    }
  }
  report(sweep);
}

TEST(SlowSweep, EveryByte) {
  Sweep sweep;
  for (const Sample &sample : smallSamples()) {
    Bytes bytes = sample.file.bytes;
    for (unsigned char &byte : bytes) {
      const unsigned char old = byte;
      for (const int value : {old + 1, old - 1, 0, 0xff}) {
        byte = static_cast<unsigned char>(value);
        if (byte != old)
          sweep.round(bytes, sample.name + " byte " + std::to_string(&byte - bytes.data()));
      }
      byte = old;
    }
  }
  report(sweep);
}

TEST(SlowSweep, EveryWord) {
  Sweep sweep;
  for (const Sample &sample : smallSamples()) {
    Bytes bytes = sample.file.bytes;
    for (std::size_t at = 0; at + 4 <= bytes.size(); at += 4) {
      const Word old = wordAt(bytes, at);
      for (const Word value : {0U, 1U, ~0U, old + 1, old - 1, 0x40000001U, 0x7fffffffU, 0x80000000U}) {
        setWordAt(bytes, at, value);
        sweep.round(bytes, sample.name + " word " + std::to_string(at / 4));
      }
      setWordAt(bytes, at, old);
    }
  }
  report(sweep);
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
        EXPECT_EQ(allocations.left.exchange(-1), 0) << sample.name << ", allocation " << k;
      });
    }
  }
  RecordProperty("failures", std::to_string(failures));
}

} // namespace kova::test
