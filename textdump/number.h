/// Numbers as text, byte for byte as the C standard has printf write them in the C locale; a NaN as the GNU C library
/// writes it, with its sign.
#pragma once

#include "textdump/wide.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kova {

/// Texts are copied in pieces of fixed size, so each function may overwrite up to this many bytes after the text that
/// it writes. The caller sees to it that there is room for them.
inline constexpr std::size_t NUMBER_SLACK = 16;

// Each writes its text at `at`, without a terminating zero, and returns one past the last byte of it.

char *putDec(char *at, std::int32_t value);  ///< "%d"
char *putHex(char *at, std::uint32_t value); ///< "%0#10x": 10 bytes; zero is ten zeros, without the "0x"
char *putByte(char *at, std::uint8_t value); ///< "%0#4x ": 5 bytes; zero is "0000 ", without the "0x"
char *putFloat(char *at, float value);       ///< "%#g", 3 to 12 bytes
char *putFloat12(char *at, float value);     ///< "%#12g", 12 bytes

// --- The arithmetic of "%#g" ----------------------------------------------------------------------------------------
//
// Wanted are the six digits D = x * 10^(5-X), rounded half to even, where X is the decimal exponent for which D lies in
// [10^5, 10^6) after the rounding. Let x = m * 2^e with 2^23 <= m < 2^24; the significand of a denormal is shifted up.
//
// Decade. The x of one e, a binade, lie in two decades at most, as 2 < 10. The upper one begins where the rounding
// leads to 10^(X+1), at the first x >= (10^6 - 1/2) * 10^(X-5); the tie belongs to it, as 10^6 is even. LOWER_END holds
// the bit pattern before that x, from exact arithmetic. Bit patterns ascend as their values do, so one comparison gives
// X before any digit is known, and the rounding never leads out of that decade.
//
// Product. MULTIPLIERS holds M = ceil(2^64 * 2^e * 10^(5-X)) for both decades of each e. D <= 10^6 and m >= 2^23 make M
// less than 2^61. Let z be the upper 64 bits of (m * 2^40) * M. Without the ceil, that product would be t * 2^64 for
// the true t = 2^40 * x * 10^(5-X). The ceil adds less than 1 to M, hence less than 2^64 to the product and less than 1
// to t; z is the floor of the sum. So z is t where t is an integer, and differs from t by less than 1 everywhere else.
//
// Rounding. A tie is a t that is 2^39 above a multiple of 2^40, an integer, so z shows it exactly. Every other t is
// more than 2^9 away from all ties (643 at the nearest, over all m, e and both decades, found by exact arithmetic), so
// no other z looks like a tie or lies on the wrong side of one. Hence D = (z + 2^39 - 1 + odd) >> 40, where odd is the
// lowest bit of z >> 40: this is right for every x, and no second, slower way is needed.
//
// Digits. D is two groups of three digits. The point follows the first, second or third digit of one of them or none,
// and tables of all groups with the point in each place give them as they are printed. All the rest of the text -
// spaces, sign, leading "0.000", exponent - depends on the decade and the sign only; it is copied first, the groups go
// over it.
//
// Zero, infinity and NaN are rows of the same tables. Zero is a binade with multipliers 0 in the decade of 1. Infinity
// and NaN are the two "decades" of the topmost binade: their texts are complete, and the groups go after the end of
// them.
namespace number {

using PointedGroups = std::array<std::array<char, 4>, 1000>; ///< three digits and a point, or three digits and an 'e'

/// All that the texts of a decade have in common. Places count from the start of the 12 bytes of "%#12g".
struct alignas(64) Decade {
  std::array<char, 45> text; ///< the 12 bytes from 0 if positive, from 16 if negative; 16 may be copied from any one
  std::uint8_t indent;       ///< spaces before the text if positive
  std::uint8_t front_at;     ///< place of the upper three digits
  std::uint8_t back_at;      ///< place of the lower three digits
  const PointedGroups *front;
  const PointedGroups *back;
};

/// The rows of the float tables: the 23 binades of the denormals, then one for each value of the exponent field, where
/// zero has the row of the value 0.
inline constexpr std::size_t ZERO_ROW = 23;
inline constexpr std::size_t ROWS = ZERO_ROW + 256;
inline constexpr std::size_t ENTRIES = 2 * ROWS; ///< a row has two, first of its lower, then of its upper decade

extern const std::array<std::uint32_t, ROWS> LOWER_END;      ///< by row: bit pattern of the lower decade's last value
extern const std::array<std::uint64_t, ENTRIES> MULTIPLIERS; ///< by entry
extern const std::array<const Decade *, ENTRIES> DECADE_OF;  ///< by entry
extern const std::array<PointedGroups, 4> POINTED_GROUPS;    ///< by the digits before the point, or 0 for the 'e'
extern const std::array<std::array<char, 8>, 256> BYTES;     ///< "0x0a ", padded to the size of a word

/// The digits of a float and the place of them.
struct Decimal {
  std::uint32_t digits;
  const Decade *decade;
};

/// Takes the bit pattern of a float.
inline Decimal toDecimal(std::uint32_t bits) {
  const std::uint32_t magnitude = bits & 0x7fffffff;
  std::uint64_t significand = std::uint64_t{bits | 0x800000} << 40; // sign and exponent drop out
  std::size_t row = magnitude >> 23;                                // counted from ZERO_ROW
  if (magnitude - 1 < 0x7fffff) [[unlikely]] {                      // denormal
    const auto zeros = static_cast<std::size_t>(std::countl_zero(magnitude));
    significand = std::uint64_t{magnitude} << (32 + zeros);
    row = 8 - zeros; // wraps below zero
  }
  const bool is_upper = magnitude > LOWER_END[ZERO_ROW + row];
  const std::size_t entry = 2 * (ZERO_ROW + row) + is_upper;
  const std::uint64_t scaled = highProduct(significand, MULTIPLIERS[entry]);
  const std::uint64_t odd = scaled >> 40 & 1;
  const std::uint64_t rounded = scaled + ((std::uint64_t{1} << 39) - 1) + odd;
  return {static_cast<std::uint32_t>(rounded >> 40), DECADE_OF[entry]};
}

/// Writes the two groups. `at` is where the byte of place `start` goes.
inline void putDigits(char *at, std::size_t start, Decimal decimal) {
  const Decade &decade = *decimal.decade;
  std::memcpy(at + (decade.front_at - start), (*decade.front)[decimal.digits / 1000].data(), 4);
  std::memcpy(at + (decade.back_at - start), (*decade.back)[decimal.digits % 1000].data(), 4);
}

} // namespace number

inline char *putByte(char *at, std::uint8_t value) {
  std::memcpy(at, number::BYTES[value].data(), 8);
  return at + 5;
}

inline char *putFloat12(char *at, float value) {
  const auto bits = std::bit_cast<std::uint32_t>(value);
  const number::Decimal decimal = number::toDecimal(bits);
  const std::size_t negative = bits >> 31;
  std::memcpy(at, decimal.decade->text.data() + 16 * negative, 16);
  number::putDigits(at, 0, decimal);
  return at + 12;
}

} // namespace kova
