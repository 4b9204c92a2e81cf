/// Compares putFloat and putFloat12 with printf for every bit pattern of a float, and whatever writes many numbers at a
/// time with them.
///
///     exhaustive [threads]
///
/// Each of the 2^32 patterns, of both signs and with all NaNs, is printed once by snprintf("%#g"). This is the text
/// that putFloat must give; aligned right to 12 bytes, which is all that "%#12g" adds, the one that putFloat12 and each
/// batch that this processor can run must give. The one exception: from 999999.5 up to 10^6 the C standard asks for
/// 1.00000e+06, and this exact text is asked for here, whatever the C library prints. Then the batches write all
/// integers of up to eight digits, which have to look as when they are written one at a time. The exit status is 1
/// after any mismatch.
#include "textdump/batch.h"
#include "textdump/geometry.h"
#include "textdump/number.h"

#include <algorithm>
#include <array>
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

constexpr std::uint64_t TOGETHER = 256; ///< numbers that a batch writes with one call
constexpr std::size_t MOST_BATCHES = 4;
constexpr std::int64_t MOST_INTEGER = 99'999'999;

struct Counts {
  std::uint64_t compared = 0;
  std::uint64_t mismatches = 0;
  std::uint64_t integers = 0;
  std::array<std::uint64_t, MOST_BATCHES> batch_mismatches{};
  std::uint64_t exceptions = 0;     // patterns whose text the C standard decides
  std::uint64_t libraryDiffers = 0; // those of them that the C library prints in another way
};

struct Run {
  std::atomic<std::uint64_t> nextChunk = 0;
  std::atomic<std::int64_t> nextInteger = -MOST_INTEGER;
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

/// The text of a float by the C library.
struct Expected {
  std::array<char, 64> printed;
  std::size_t length;

  std::string_view text() const { return {printed.data(), length}; }
};

Expected compare(Run &run, Counts &counts, std::uint32_t bits) {
  const auto value = std::bit_cast<float>(bits);
  Expected expected;
  expected.length = static_cast<std::size_t>(
      std::snprintf(expected.printed.data(), expected.printed.size(), "%#g", static_cast<double>(value)));
  if (std::abs(value) >= 999999.5F && std::abs(value) < 1e6F) {
    const std::string_view standard = value < 0 ? "-1.00000e+06" : "1.00000e+06";
    ++counts.exceptions;
    counts.libraryDiffers += expected.text() != standard;
    expected.length = standard.copy(expected.printed.data(), standard.size());
  }
  char text[64];
  char text12[64];
  const std::string_view got(text, static_cast<std::size_t>(kova::putFloat(text, value) - text));
  const std::string_view got12(text12, static_cast<std::size_t>(kova::putFloat12(text12, value) - text12));
  ++counts.compared;
  if (got != expected.text() || !isRightAligned(got12, expected.text())) {
    ++counts.mismatches;
    show(run, bits, expected.text(), got, got12);
  }
  return expected;
}

/// Has each batch write the floats from `begin` on, four to a line.
void compareTogether(Counts &counts, std::uint32_t begin, const std::array<Expected, TOGETHER> &expected) {
  static constexpr kova::TupleLines LINES = kova::tupleLines("(%d) %#12g %#12g %#12g %#12g\n");
  static constexpr std::size_t HEAD = std::string_view("(100) ").size();
  std::array<float, TOGETHER> values;
  for (std::uint32_t i = 0; i < TOGETHER; ++i)
    values[i] = std::bit_cast<float>(begin + i);
  std::vector<char> text(kova::TUPLES_ROOM);
  for (std::size_t batch = 0; batch < kova::batches().size(); ++batch) {
    const char *at = text.data();
    kova::putTuples(kova::batches()[batch], text.data(), LINES, values.data(), TOGETHER / 4, 100);
    for (std::size_t i = 0; i < TOGETHER; ++i) {
      at += i % 4 == 0 ? HEAD : 1;
      counts.batch_mismatches[batch] += !isRightAligned({at, kova::FLOAT_BYTES}, expected[i].text());
      at += kova::FLOAT_BYTES + (i % 4 == 3);
    }
  }
}

/// Has each batch write triangles of the integers from `begin` on.
void compareIntegers(Counts &counts, std::int64_t begin) {
  constexpr std::int64_t WORDS = 16; // the second to seventeenth of a triangle
  std::vector<kova::Tri> triangles(kova::TRIANGLES_AT_ONCE);
  kova::Text expected(nullptr);
  for (std::size_t i = 0; i < triangles.size(); ++i) {
    std::array<std::int32_t, sizeof(kova::TriHead) / 4> words{};
    for (std::int64_t word = 1; word <= WORDS; ++word)
      words[static_cast<std::size_t>(word)] = static_cast<std::int32_t>(begin++);
    static_cast<kova::TriHead &>(triangles[i]) = std::bit_cast<kova::TriHead>(words);
    kova::print<"Tri(%d)\n">(expected, static_cast<kova::Index>(i));
    kova::putRecord<kova::LINES<kova::TriHead>>(expected, triangles[i]);
    kova::print<"\n">(expected);
  }
  counts.integers += triangles.size() * WORDS;
  std::vector<char> text(kova::TRIANGLES_ROOM);
  for (std::size_t batch = 0; batch < kova::batches().size(); ++batch) {
    char *end = text.data();
    kova::putTriangles(kova::batches()[batch], end, triangles, 0);
    counts.batch_mismatches[batch] +=
        std::string_view(text.data(), end) != std::string_view(expected.buffer.data(), expected.used);
  }
}

void work(Run &run) {
  Counts counts;
  std::array<Expected, TOGETHER> expected;
  for (std::uint64_t begin; (begin = run.nextChunk.fetch_add(1) * CHUNK) < PATTERNS;)
    for (std::uint64_t bits = begin; bits < begin + CHUNK; bits += TOGETHER) {
      for (std::uint64_t i = 0; i < TOGETHER; ++i)
        expected[i] = compare(run, counts, static_cast<std::uint32_t>(bits + i));
      compareTogether(counts, static_cast<std::uint32_t>(bits), expected);
    }
  for (std::int64_t begin; (begin = run.nextInteger.fetch_add(TOGETHER)) <= MOST_INTEGER;)
    compareIntegers(counts, begin);
  const std::scoped_lock lock(run.mutex);
  run.total.compared += counts.compared;
  run.total.mismatches += counts.mismatches;
  run.total.integers += counts.integers;
  run.total.exceptions += counts.exceptions;
  run.total.libraryDiffers += counts.libraryDiffers;
  for (std::size_t batch = 0; batch < MOST_BATCHES; ++batch)
    run.total.batch_mismatches[batch] += counts.batch_mismatches[batch];
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
  std::uint64_t mismatches = run.total.mismatches;
  for (std::size_t batch = 0; batch < kova::batches().size(); ++batch) {
    std::printf("many at a time by %s, mismatches among them and %llu integers: %llu\n", kova::batches()[batch].name,
                static_cast<unsigned long long>(run.total.integers),
                static_cast<unsigned long long>(run.total.batch_mismatches[batch]));
    mismatches += run.total.batch_mismatches[batch];
  }
  return mismatches == 0 && run.total.compared == PATTERNS ? 0 : 1;
}
