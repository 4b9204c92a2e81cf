#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

// Numbers as text, byte for byte as the GNU C library's printf writes them in the C locale. Each function writes at
// `at` and returns one past the last byte of the text; no terminating zero is written.
//
// Words of text are stored whole, so up to NUMBER_SLACK bytes behind the text may be overwritten; the caller sees to it
// that this room exists.
//
// THE ARITHMETIC OF "%#g"
//
// Wanted are the six digits D = round(x * 10^(5-X)), half to even, where X is the decimal exponent for which D, after
// the rounding, lies in [10^5, 10^6). Let x = m * 2^e with 2^23 <= m < 2^24; a denormal is shifted up until it fits.
//
// Decade. A binade (all x of one e) touches two decades at most, since 2 < 10. The upper one begins with the first x
// that rounds to 10^(X+1): x >= (10^6 - 1/2) * 10^(X-5), a tie going to the even 10^6. The table holds the least m that
// fulfils it, computed exactly; so the decade that the rounding leads to is known before any digit is.
//
// Product. The table holds M = ceil(2^64 * 2^e * 10^(5-X)) for both decades. D < 10^6 and m >= 2^23 give M < 2^61. The
// high word of (m * 2^40) * M is z = floor(2^40 * m * M / 2^64), that is D with 40 bits of fraction. Rounding M up makes
// m * 2^40 * M too big by less than 2^64, hence before the floor z is too big by less than 1, and never too small.
//
// Ties. Where x * 10^(5-X) is exactly halfway between two integers, the true fraction is 2^39 of these units, and the
// floor of a number in [2^39, 2^39 + 1) is 2^39: a tie is seen exactly. Any other x is at least 2^9 units away from
// halfway (the smallest distance over all binades, decades and m is 2^33.MM / 2^64), so the error of less than 1 does
// not lead it to the tie or across. Therefore adding 2^39 - 1 + (1 if D is odd) and dropping the fraction is the correct
// rounding for every x, and no second, slower way is needed.
//
// Zero, infinity and NaN are rows of the same tables: zero is a binade with the multiplier 0 in the decade of 1;
// infinity and NaN are the two "decades" of the binade above all others, whose texts take their digits behind the end.

namespace kova {

// The most bytes that a function here may overwrite behind the text it writes.
inline constexpr std::size_t NUMBER_SLACK = 16;

namespace number {

// A word of text holds its first character in the lowest byte, on every host.
using Text = std::uint64_t;

__extension__ using Wide = unsigned __int128;

inline constexpr int DENORMAL_ROWS = 23;

struct Binade {
  std::array<std::uint64_t, 2> multiplier;
  std::uint32_t upperFrom;
  std::uint32_t decade;
};

struct Decade {
  std::array<char, 28> text;
  std::uint8_t digitsAt;
  std::uint8_t length;
  Text behindPoint;
  Text added;
};

extern const std::array<Binade, DENORMAL_ROWS + 256> BINADES;
extern const std::array<Decade, 86> DECADES;
extern const std::array<std::uint32_t, 1000> THREE_DIGITS;
extern const std::array<std::array<char, 8>, 256> BYTES;

inline void store(char *at, Text text) {
  if constexpr (std::endian::native == std::endian::little)
    std::memcpy(at, &text, sizeof text);
  else
    for (std::size_t i = 0; i < sizeof text; ++i)
      at[i] = static_cast<char>(text >> (8 * i));
}

// value < 10^6
inline Text sixDigits(std::uint32_t value) {
  return THREE_DIGITS[value / 1000] | Text{THREE_DIGITS[value % 1000]} << 24;
}

inline char *putSixOrLess(char *at, std::uint32_t value) {
  const Text padded = sixDigits(value);
  const int zeros = std::countr_zero((padded & 0x0f0f0f0f0f0f) | Text{1} << 40) & ~7;
  store(at, padded >> zeros);
  return at + 6 - zeros / 8;
}

struct Decimal {
  Text digits;
  const Decade *decade;
};

inline Decimal toDecimal(std::uint32_t bits) {
  const std::uint32_t magnitude = bits & 0x7fffffff;
  std::uint32_t significand = magnitude << 8 | 0x80000000;
  std::int32_t row = static_cast<std::int32_t>(magnitude >> 23);
  if (magnitude - 1 < 0x7fffff) [[unlikely]] {
    const int shift = std::countl_zero(magnitude);
    significand = magnitude << shift;
    row = 8 - shift;
  }
  const Binade &binade = BINADES[static_cast<std::size_t>(row + DENORMAL_ROWS)];
  const std::uint32_t upper = significand >= binade.upperFrom;
  const std::uint64_t scaled =
      static_cast<std::uint64_t>(Wide{std::uint64_t{significand} << 32} * binade.multiplier[upper] >> 64);
  const std::uint64_t odd = scaled >> 40 & 1;
  const std::uint64_t digits = (scaled + ((std::uint64_t{1} << 39) - 1) + odd) >> 40;
  return {sixDigits(static_cast<std::uint32_t>(digits)), &DECADES[binade.decade + upper]};
}

inline Text withPoint(const Decimal &decimal) {
  const Text behind = decimal.digits & decimal.decade->behindPoint;
  return (decimal.digits ^ behind) | behind << 8 | decimal.decade->added;
}

} // namespace number

inline char *putDec(char *at, std::int32_t value) {
  *at = '-';
  at += value < 0;
  const auto bits = static_cast<std::uint32_t>(value);
  const std::uint32_t magnitude = value < 0 ? 0 - bits : bits;
  if (magnitude < 1000000) [[likely]]
    return number::putSixOrLess(at, magnitude);
  at = number::putSixOrLess(at, magnitude / 1000000);
  number::store(at, number::sixDigits(magnitude % 1000000));
  return at + 6;
}

inline char *putHex(char *at, std::uint32_t value) {
  std::uint64_t x = value >> 16 | std::uint64_t{value & 0xffff} << 32;
  x = (x >> 8 & 0x000000ff000000ff) | (x & 0x000000ff000000ff) << 16;
  x = (x >> 4 & 0x000f000f000f000f) | (x & 0x000f000f000f000f) << 8;
  const std::uint64_t letters = (x + 0x0606060606060606) >> 4 & 0x0101010101010101;
  at[0] = '0';
  at[1] = value != 0 ? 'x' : '0';
  number::store(at + 2, x + 0x3030303030303030 + letters * ('a' - '0' - 10));
  return at + 10;
}

inline char *putByte(char *at, std::uint8_t value) {
  std::memcpy(at, number::BYTES[value].data(), 8);
  return at + 5;
}

inline char *putFloat(char *at, float value) {
  const auto bits = std::bit_cast<std::uint32_t>(value);
  const number::Decimal decimal = number::toDecimal(bits);
  const number::Decade &decade = *decimal.decade;
  const std::size_t indent = 12 - std::size_t{decade.length};
  *at = '-';
  at += bits >> 31;
  std::memcpy(at, decade.text.data() + indent, 16);
  number::store(at + decade.digitsAt - indent, number::withPoint(decimal));
  return at + decade.length;
}

inline char *putFloat12(char *at, float value) {
  const auto bits = std::bit_cast<std::uint32_t>(value);
  const number::Decimal decimal = number::toDecimal(bits);
  const number::Decade &decade = *decimal.decade;
  std::memcpy(at, decade.text.data(), 16);
  at[11 - decade.length] = static_cast<char>(' ' + (bits >> 31) * ('-' - ' '));
  number::store(at + decade.digitsAt, number::withPoint(decimal));
  return at + 12;
}

} // namespace kova
