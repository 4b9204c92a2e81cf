#include "textdump/number.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

namespace kova {
namespace {

constexpr char GUARD = '\x5a';

/// What a function writes, after checking that it wrote nothing before its text and nothing behind its slack.
template <class Put, class Number> std::string textOf(Put put, Number number) {
  std::array<char, 64> buffer;
  buffer.fill(GUARD);
  char *const begin = buffer.data() + 8;
  char *const end = put(begin, number);
  const auto isGuard = [](char byte) { return byte == GUARD; };
  EXPECT_TRUE(std::all_of(buffer.data(), begin, isGuard));
  EXPECT_TRUE(std::all_of(end + NUMBER_SLACK, buffer.data() + buffer.size(), isGuard));
  return {begin, end};
}

template <class... Numbers> std::string printed(const char *format, Numbers... numbers) {
  std::array<char, 64> buffer;
  const int length = std::snprintf(buffer.data(), buffer.size(), format, numbers...);
  return {buffer.data(), static_cast<std::size_t>(length)};
}

/// 999999.5 and what follows rounds to 10^6 and takes the exponent form; some C libraries leave its digits out.
std::string printedFloat(const char *format, float value) {
  if (std::fabs(value) >= 999999.5F && std::fabs(value) < 1e6F)
    return printed(format[2] == '1' ? "%12s" : "%s", value < 0 ? "-1.00000e+06" : "1.00000e+06");
  return printed(format, static_cast<double>(value));
}

void expectBits(std::uint32_t bits) {
  const auto value = std::bit_cast<float>(bits);
  ASSERT_EQ(textOf(putFloat, value), printedFloat("%#g", value)) << std::hex << bits;
  ASSERT_EQ(textOf(putFloat12, value), printedFloat("%#12g", value)) << std::hex << bits;
}

void expectFloat(float value) {
  expectBits(std::bit_cast<std::uint32_t>(value));
  expectBits(std::bit_cast<std::uint32_t>(-value));
}

void expectDec(std::int64_t value) {
  const auto number = static_cast<std::int32_t>(value);
  ASSERT_EQ(textOf(putDec, number), printed("%d", number));
}

void expectHex(std::uint32_t value) { ASSERT_EQ(textOf(putHex, value), printed("%0#10x", value)); }

TEST(Number, FloatsOfEveryExponent) {
  std::mt19937 random(1);
  for (std::uint32_t signAndExponent = 0; signAndExponent < 512; ++signAndExponent) {
    for (const std::uint32_t mantissa : {0U, 1U, 2U, 0x3fffffU, 0x400000U, 0x400001U, 0x7ffffeU, 0x7fffffU})
      expectBits(signAndExponent << 23 | mantissa);
    for (int i = 0; i < 300; ++i)
      expectBits(signAndExponent << 23 | static_cast<std::uint32_t>(random() & 0x7fffff));
  }
}

TEST(Number, FloatsAroundEveryDecade) {
  for (std::uint32_t power = 1; power < 0x800000; power *= 2) // denormals of every size
    for (const std::uint32_t bits : {power - 1, power, power + 1, power + power / 2})
      expectFloat(std::bit_cast<float>(bits));
  for (int exponent = -45; exponent <= 38; ++exponent)
    for (const char *digits : {"1", "0.9999995", "0.9999985", "9.999985", "1.000005"}) {
      const float near = std::strtof((digits + printed("e%d", exponent)).c_str(), nullptr);
      const auto bits = std::bit_cast<std::uint32_t>(near);
      for (std::uint32_t neighbour = bits < 4 ? 0 : bits - 4; neighbour <= bits + 4; ++neighbour)
        expectFloat(std::bit_cast<float>(neighbour));
    }
}

/// All floats that lie exactly between two texts have the form n * 5^i * 2^j with an odd n; this takes many of them.
TEST(Number, FloatsBetweenTwoTexts) {
  for (int scale = -2; scale <= 7; ++scale) { // 10^scale makes the six digits an integer and a half
    int count = 0;
    const double five = std::pow(5.0, std::abs(scale));
    const double least = scale > 0 ? 200001 / five : 200001;
    const double end = std::min(scale > 0 ? 2e6 / five : 2e6, scale < 0 ? 0x1p24 / five : 0x1p24);
    for (double n = 2 * std::floor(least / 2) + 1; n < end; n += scale < 4 ? 70 : 2, ++count) {
      const auto value = static_cast<float>(std::ldexp(scale < 0 ? n * five : n, -scale - 1));
      expectFloat(value);
      expectFloat(std::nextafter(value, 0.0F));
      expectFloat(std::nextafter(value, 1e9F));
    }
    EXPECT_GE(count, 10) << scale;
  }
}

TEST(Number, RoundsIntoTheExponentForm) {
  for (const float value : {999999.5F, 999999.5625F, 999999.9375F}) {
    EXPECT_EQ(textOf(putFloat, value), "1.00000e+06");
    EXPECT_EQ(textOf(putFloat12, value), " 1.00000e+06");
    EXPECT_EQ(textOf(putFloat12, -value), "-1.00000e+06");
  }
  EXPECT_EQ(textOf(putFloat, 999999.4375F), "999999.");
}

TEST(Number, Integers) {
  for (std::int64_t value = -2000; value <= 1002000; ++value)
    expectDec(value);
  for (std::int64_t power = 1; power <= 10000000000; power *= 10)
    for (const std::int64_t value : {power - 1, power, power + 1})
      for (const std::int64_t number : {value, -value})
        expectDec(std::clamp<std::int64_t>(number, std::numeric_limits<std::int32_t>::min(),
                                           std::numeric_limits<std::int32_t>::max()));
  std::mt19937 random(2);
  for (unsigned i = 0; i < 200000; ++i)
    expectDec(static_cast<std::int32_t>(random()) >> i % 32);
}

TEST(Number, Hexadecimal) {
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    EXPECT_EQ(textOf(putByte, static_cast<std::uint8_t>(byte)), printed("%0#4x ", byte));
    for (const int shift : {0, 8, 16, 24})
      expectHex(byte << shift);
  }
  expectHex(0xffffffff);
  std::mt19937 random(3);
  for (unsigned i = 0; i < 100000; ++i)
    expectHex(static_cast<std::uint32_t>(random()) >> i % 32);
}

TEST(Number, HighProducts) {
  struct Case {
    std::uint64_t a, b, high;
  };
  constexpr std::uint64_t MOST = 0xffffffffffffffff;
  for (const Case &product : {Case{0, MOST, 0}, Case{1, MOST, 0}, Case{2, MOST, 1}, Case{MOST, MOST, MOST - 1},
                              Case{0x100000000, 0x100000000, 1}, Case{0xffffffff, 0x100000001, 0},
                              Case{0x8000000000000000, 0x8000000000000000, 0x4000000000000000},
                              Case{0xffffffff00000000, 0xffffffff, 0xfffffffe},
                              Case{0x123456789abcdef0, 0xfedcba9876543210, 0x121fa00ad77d7422}}) {
    EXPECT_EQ(number::highProductOfHalves(product.a, product.b), product.high);
    EXPECT_EQ(number::highProductOfHalves(product.b, product.a), product.high);
  }
  std::mt19937_64 random(4);
  for (unsigned i = 0; i < 100000; ++i) {
    const std::uint64_t a = random() >> i % 64;
    const std::uint64_t b = random() >> i / 64 % 64;
    ASSERT_EQ(number::highProductOfHalves(a, b), number::highProduct(a, b)) << a << " * " << b;
  }
}

} // namespace
} // namespace kova
