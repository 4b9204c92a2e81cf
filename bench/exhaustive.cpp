/// Compares putFloat and putFloat12 with printf for every bit pattern of a float.
///
///     exhaustive [threads]
///
/// Each of the 2^32 patterns, of both signs and with all NaNs, is printed once by snprintf("%#g"). This is the text
/// that putFloat must give; aligned right to 12 bytes, which is all that "%#12g" adds, the one that putFloat12 must
/// give. The one exception: from 999999.5 up to 10^6 the C standard asks for 1.00000e+06, and this exact text is asked
/// for here, whatever the C library prints. The exit status is 1 after any mismatch.
#include "textdump/number.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <string_view>
#include <thread>
#include <vector>

namespace {

constexpr std::uint64_t PATTERNS = std::uint64_t{1} << 32;
constexpr std::uint64_t CHUNK = std::uint64_t{1} << 20;
constexpr std::uint64_t SHOWN = 20;

struct Counts {
  std::uint64_t compared = 0;
  std::uint64_t mismatches = 0;
  std::uint64_t exceptions = 0;     // patterns whose text the C standard decides
  std::uint64_t libraryDiffers = 0; // those of them that the C library prints in another way
};

struct Run {
  std::atomic<std::uint64_t> nextChunk = 0;
  std::mutex mutex; // guards what follows
  Counts total;
  std::uint64_t shown = 0;
};

void show(Run &run, std::uint32_t bits, std::string_view expected, std::string_view got, std::string_view got12) {
  const std::scoped_lock lock(run.mutex);
  if (run.shown++ < SHOWN)
    std::printf("mismatch %08x: expected '%.*s', putFloat '%.*s', putFloat12 '%.*s'\n", bits,
                static_cast<int>(expected.size()), expected.data(), static_cast<int>(got.size()), got.data(),
                static_cast<int>(got12.size()), got12.data());
}

bool isRightAligned(std::string_view got12, std::string_view expected) {
  return got12.size() == std::max<std::size_t>(12, expected.size()) && got12.ends_with(expected) &&
         got12.find_first_not_of(' ') == got12.size() - expected.size();
}

void compare(Run &run, Counts &counts, std::uint32_t bits) {
  const auto value = std::bit_cast<float>(bits);
  char printed[64];
  const int length = std::snprintf(printed, sizeof printed, "%#g", static_cast<double>(value));
  std::string_view expected(printed, static_cast<std::size_t>(length));
  if (std::abs(value) >= 999999.5F && std::abs(value) < 1e6F) {
    const std::string_view standard = value < 0 ? "-1.00000e+06" : "1.00000e+06";
    ++counts.exceptions;
    counts.libraryDiffers += expected != standard;
    expected = standard;
  }
  char text[64];
  char text12[64];
  const std::string_view got(text, static_cast<std::size_t>(kova::putFloat(text, value) - text));
  const std::string_view got12(text12, static_cast<std::size_t>(kova::putFloat12(text12, value) - text12));
  ++counts.compared;
  if (got != expected || !isRightAligned(got12, expected)) {
    ++counts.mismatches;
    show(run, bits, expected, got, got12);
  }
}

void work(Run &run) {
  Counts counts;
  for (std::uint64_t begin; (begin = run.nextChunk.fetch_add(1) * CHUNK) < PATTERNS;)
    for (std::uint64_t bits = begin; bits < begin + CHUNK; ++bits)
      compare(run, counts, static_cast<std::uint32_t>(bits));
  const std::scoped_lock lock(run.mutex);
  run.total.compared += counts.compared;
  run.total.mismatches += counts.mismatches;
  run.total.exceptions += counts.exceptions;
  run.total.libraryDiffers += counts.libraryDiffers;
}

} // namespace

int main(int argc, char **argv) {
  const int threadCount = argc > 1 ? std::atoi(argv[1]) : 2;
  if (argc > 2 || threadCount < 1 || threadCount > 1024) {
    std::fprintf(stderr, "usage: exhaustive [threads]\n");
    return 2;
  }
  Run run;
  std::vector<std::thread> threads;
  for (int i = 0; i < threadCount; ++i)
    threads.emplace_back(work, std::ref(run));
  for (std::thread &thread : threads)
    thread.join();
  std::printf(
      "bit patterns compared, each with putFloat and putFloat12: %llu\n"
      "mismatches: %llu\n"
      "patterns from 999999.5 up to 10^6, compared with 1.00000e+06: %llu\n"
      "    of which this C library prints another text: %llu\n",
      static_cast<unsigned long long>(run.total.compared), static_cast<unsigned long long>(run.total.mismatches),
      static_cast<unsigned long long>(run.total.exceptions), static_cast<unsigned long long>(run.total.libraryDiffers));
  return run.total.mismatches == 0 && run.total.compared == PATTERNS ? 0 : 1;
}
