/// The formatters and some line writers against the C library's printf and the standard library's to_chars.

#include "textdump/geometry.h"
#include "textdump/number.h"
#include "textdump/text.h"

#include <array>
#include <benchmark/benchmark.h>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace kova;

constexpr std::size_t NUMBERS = 4096; // too many for a branch predictor to learn by heart
constexpr std::size_t TEXT_MAX = 64;

/// Magnitudes from 0.001 to 10000, both signs, some zeros and ones, as coordinates have them.
std::vector<float> someFloats() {
  std::mt19937 random(1);
  std::uniform_real_distribution<float> exponent(-3.0F, 4.0F);
  std::vector<float> floats(NUMBERS);
  for (std::size_t i = 0; i < NUMBERS; ++i)
    floats[i] = i % 16 == 0   ? 0.0F
                : i % 16 == 1 ? 1.0F
                              : std::pow(10.0F, exponent(random)) * (i % 2 == 0 ? 1.0F : -1.0F);
  return floats;
}

std::vector<std::int32_t> someIndices() {
  std::mt19937 random(2);
  std::uniform_real_distribution<float> exponent(0.0F, 6.0F);
  std::vector<std::int32_t> indices(NUMBERS);
  for (std::int32_t &index : indices)
    index = static_cast<std::int32_t>(std::pow(10.0F, exponent(random)));
  return indices;
}

/// Formats all numbers again and again with `format(at, number)`, which returns where the text ends.
template <class Number, class Write>
void run(benchmark::State &state, const std::vector<Number> &numbers, Write format) {
  std::array<char, TEXT_MAX> text;
  for (auto _ : state)
    for (const Number number : numbers)
      benchmark::DoNotOptimize(format(text.data(), number));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(numbers.size()));
}

template <class Number> auto printed(const char *format) {
  return [format](char *at, Number number) { return at + std::snprintf(at, TEXT_MAX, format, number); };
}

void floatOurs(benchmark::State &state) { run(state, someFloats(), putFloat12); }
void floatPrintf(benchmark::State &state) { run(state, someFloats(), printed<float>("%#12g")); }
void floatToChars(benchmark::State &state) { // which neither pads nor keeps zeros: less than is asked for
  run(state, someFloats(), [](char *at, float number) {
    return std::to_chars(at, at + TEXT_MAX, number, std::chars_format::general, 6).ptr;
  });
}
void decimalOurs(benchmark::State &state) { run(state, someIndices(), putDec); }
void decimalPrintf(benchmark::State &state) { run(state, someIndices(), printed<std::int32_t>("%d")); }
void decimalToChars(benchmark::State &state) {
  run(state, someIndices(), [](char *at, std::int32_t number) { return std::to_chars(at, at + TEXT_MAX, number).ptr; });
}
void hexOurs(benchmark::State &state) {
  run(state, someIndices(), [](char *at, std::int32_t number) { return putHex(at, static_cast<Word>(number)); });
}
void hexPrintf(benchmark::State &state) { run(state, someIndices(), printed<std::int32_t>("%0#10x")); }

constexpr TriHead TRIANGLE = {
    TRI_LIST_TAG + 0x1000, 12, 76, 345, -1, 1, 22, 333, -1, 4444, 5, 66, -1, 777, 8888, 9, -1, 0, 0};

/// The lines of a triangle: nineteen words through a table.
void triangleOurs(benchmark::State &state) {
  std::FILE *const nothing = std::fopen("/dev/null", "w");
  Text text(nothing);
  TriHead tri = TRIANGLE;
  for (auto _ : state) {
    benchmark::DoNotOptimize(tri);
    putRecord<LINES<TriHead>>(text, tri);
  }
  flush(text);
  std::fclose(nothing);
}
void trianglePrintf(benchmark::State &state) {
  std::FILE *const nothing = std::fopen("/dev/null", "w");
  const auto words = std::bit_cast<std::array<Word, LINES<TriHead>.WORDS>>(TRIANGLE);
  std::array<std::string, LINES<TriHead>.WORDS> formats; // all of them for "%d" and "%0#10x"
  for (std::size_t i = 0; i < formats.size(); ++i) {
    const Step &step = LINES<TriHead>.step[i];
    formats[i] = std::string(LINES<TriHead>.text + step.begin, step.length) + spellingOf(step.conversion).data();
  }
  formats.back().append(LINES<TriHead>.text + LINES<TriHead>.now.last_begin, LINES<TriHead>.now.last_length);
  for (auto _ : state)
    for (std::size_t i = 0; i < words.size(); ++i)
      std::fprintf(nothing, formats[i].c_str(), words[i]);
  std::fclose(nothing);
}

} // namespace

BENCHMARK(floatOurs);
BENCHMARK(floatPrintf);
BENCHMARK(floatToChars);
BENCHMARK(decimalOurs);
BENCHMARK(decimalPrintf);
BENCHMARK(decimalToChars);
BENCHMARK(hexOurs);
BENCHMARK(hexPrintf);
BENCHMARK(triangleOurs);
BENCHMARK(trianglePrintf);

BENCHMARK_MAIN();
