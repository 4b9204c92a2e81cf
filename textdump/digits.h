/// How vectors turn many numbers into text.
///
/// **Floats.** In plain notation, from 10^-4 up to 999999.5, "%#g" shows six digits: x * 10^k rounded half to even,
/// where k = 5 - X is 0 to 9 for the decimal exponent X. A float has 24 bits and 5^9 has 21, so a double holds that
/// product exactly, and rounding it to an integer gives the digits. X is known before, from one comparison: bit
/// patterns ascend as their values do, and each decade begins at the first float that rounds into it (see number.h).
///
/// A text is a shuffle of its digits and a shape, which has all that is not a digit (blanks, sign, point, leading
/// "0.00") and says for each place which digit goes there.
///
/// **Integers** of up to seven digits are halved into two numbers below 10^4, these into numbers below 100, and these
/// into digits, all at the same time. Leading zeros are shifted out.
///
/// Other numbers are rare. They are only told, and number.h writes them.
#pragma once

#include "textdump/batch.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace kova::digits {

/// The most numbers that are converted at a time: few enough for the first cache.
inline constexpr std::size_t NUMBERS_MOST = 416;

// --- Floats, as "%#12g" ----------------------------------------------------------------------------------------------

/// Six digits in the order in which they come out of the vectors, and the place of the shape, in bytes from the first.
struct Digits {
  std::array<std::uint8_t, 6> digit;
  std::uint16_t shape;
};
static_assert(sizeof(Digits) == 8);

/// Where the first to sixth digit stand in `Digits`.
inline constexpr std::array<std::uint8_t, 6> PLACES = {2, 3, 5, 0, 1, 4};
inline constexpr std::uint8_t NO_DIGIT = 0x80;

struct alignas(32) Shape {
  std::array<std::uint8_t, 16> pick; ///< the place in `Digits` of the digit that goes here, or `NO_DIGIT`
  std::array<char, 16> text;         ///< twelve bytes of text, with zeros for digits, and four blanks
};
inline constexpr std::size_t NEGATIVE = 16; ///< added to the number of a shape for a negative number
using Shapes = std::array<Shape, 2 * NEGATIVE>;

inline constexpr int LEAST_EXPONENT = -4;
inline constexpr std::size_t DECADES = 10;                    ///< of plain notation; a decade's number is its shape's
inline constexpr std::size_t ZERO_SHAPE = 0 - LEAST_EXPONENT; ///< "0.00000", as the decade of 1

consteval double powerOfTen(std::size_t exponent) {
  double power = 1;
  for (std::size_t i = 0; i < exponent; ++i)
    power *= 10;
  return power;
}

/// The bit pattern of the first float of a decade: with the power of ten of the decade before, it gives 999999.5 or
/// more. That product is exact, too.
consteval std::uint32_t firstOf(std::size_t decade) {
  std::uint32_t below = 0;
  std::uint32_t first = 0x7f800000;
  while (first - below > 1) {
    const std::uint32_t middle = below + (first - below) / 2;
    const bool is_there = static_cast<double>(std::bit_cast<float>(middle)) * powerOfTen(DECADES - decade) >= 999999.5;
    (is_there ? first : below) = middle;
  }
  return first;
}
inline constexpr std::uint32_t PLAIN_BEGIN = firstOf(0);
inline constexpr std::uint32_t PLAIN_END = firstOf(DECADES);

/// The estimate of a decade. The upper half of a bit pattern is nearly a logarithm, so this is right or one too small.
inline constexpr std::uint32_t ESTIMATE_BEGIN = 0x38db;
inline constexpr std::uint32_t ESTIMATE_FACTOR = 154; ///< log10(2) / 2^7, in units of 2^-16
constexpr std::size_t estimateOf(std::uint32_t magnitude) {
  const std::uint32_t upper = magnitude >> 16;
  return (upper < ESTIMATE_BEGIN ? 0 : upper - ESTIMATE_BEGIN) * ESTIMATE_FACTOR >> 16;
}

/// A table that vectors look up in.
using Table = std::array<std::uint32_t, 16>;

/// The last bit pattern of each decade: above it, an estimate is one too small.
consteval Table lastOfDecades() {
  Table last{};
  for (std::size_t i = 0; i < DECADES; ++i) {
    last[i] = firstOf(i + 1) - 1;
    if (estimateOf(last[i]) > i || estimateOf(firstOf(i)) + 1 < i) // it never falls, so these two show it for all
      throw "the estimate is wrong";
  }
  return last;
}
inline constexpr Table LAST_OF_DECADE = lastOfDecades();

/// Shifted by this, the bit pattern of a magnitude is that of a double. Exponents of doubles are counted from 1023
/// instead of 127, so it is 2^-896 times the value; the powers of ten make up for it. Of these, here are the upper
/// halves; the lower ones are 0.
inline constexpr unsigned DOUBLE_SHIFT = 29;
consteval Table powersOfDecades() {
  Table powers{};
  for (std::size_t i = 0; i < DECADES; ++i) {
    const std::uint64_t bits = std::bit_cast<std::uint64_t>(powerOfTen(DECADES - 1 - i)) + (896ULL << 52);
    if ((bits & 0xffffffff) != 0)
      throw "a power of ten has too many bits";
    powers[i] = static_cast<std::uint32_t>(bits >> 32);
  }
  return powers;
}
inline constexpr Table POWER_OF_DECADE = powersOfDecades();

consteval Shape makeShape(int exponent, bool is_negative) {
  Shape shape;
  shape.pick.fill(NO_DIGIT);
  shape.text.fill(' ');
  std::size_t at = exponent < 0 ? static_cast<std::size_t>(5 + exponent) : 5;
  if (is_negative)
    shape.text[at - 1] = '-';
  for (int zero = exponent; zero < 0; ++zero) {
    shape.text[at++] = '0';
    if (zero == exponent)
      shape.text[at++] = '.';
  }
  for (int digit = 0; digit < 6; ++digit) {
    shape.pick[at] = PLACES[static_cast<std::size_t>(digit)];
    shape.text[at++] = '0';
    if (digit == exponent)
      shape.text[at++] = '.';
  }
  return shape;
}

consteval Shapes makeShapes() {
  Shapes shapes{};
  for (std::size_t i = 0; i < DECADES; ++i) {
    shapes[i] = makeShape(static_cast<int>(i) + LEAST_EXPONENT, false);
    shapes[NEGATIVE + i] = makeShape(static_cast<int>(i) + LEAST_EXPONENT, true);
  }
  return shapes;
}
inline constexpr Shapes SHAPES = makeShapes();

/// One bit for each number that is rare.
using Rare = std::array<std::uint8_t, NUMBERS_MOST / 8>;

inline bool isRare(const Rare &rare, std::size_t number) { return (rare[number / 8] >> number % 8 & 1) != 0; }

/// Blocks begin at a line of the cache. (The AddressSanitizer of g++ gives local variables no more than 32.)
#ifdef __SANITIZE_ADDRESS__
inline constexpr std::size_t BLOCK_ALIGNMENT = 32;
#else
inline constexpr std::size_t BLOCK_ALIGNMENT = 64;
#endif

struct FloatBlock {
  alignas(BLOCK_ALIGNMENT) std::array<std::uint32_t, NUMBERS_MOST> bits;
  alignas(BLOCK_ALIGNMENT) std::array<Digits, NUMBERS_MOST> digits; ///< of a rare one those of 0
  alignas(BLOCK_ALIGNMENT) Rare rare;
};

/// Floats on their way to digits. Each step is a loop of its own, so that the processor sees more independent work.
struct ScaledFloats {
  alignas(BLOCK_ALIGNMENT) std::array<float, NUMBERS_MOST> number;        ///< the six digits, added to `UNIT`
  alignas(BLOCK_ALIGNMENT) std::array<std::uint32_t, NUMBERS_MOST> shape; ///< its place, in the upper half
};

/// From here on floats have no fraction: what is added to it is in the lower bits.
inline constexpr float UNIT = 0x1p23F;
inline constexpr std::uint32_t UNIT_BITS = std::bit_cast<std::uint32_t>(UNIT);

inline constexpr unsigned SHAPE_SHIFT = 16 + 5; ///< from the number of a shape to its place
static_assert(sizeof(Shape) == 1 << 5 && NEGATIVE == 1 << 4);

// --- Integers, as "%d" ----------------------------------------------------------------------------------------------

inline constexpr std::uint32_t MOST_DECIMAL = 9999999; ///< greater magnitudes are rare
inline constexpr std::size_t DECIMAL_BYTES = 8;

struct DecimalBlock {
  alignas(BLOCK_ALIGNMENT) std::array<std::uint32_t, NUMBERS_MOST> bits;
  alignas(BLOCK_ALIGNMENT)
      std::array<std::array<char, DECIMAL_BYTES>, NUMBERS_MOST> text; ///< zeros after it; of a rare one not set
  alignas(BLOCK_ALIGNMENT) std::array<std::uint32_t, NUMBERS_MOST> length;
  alignas(BLOCK_ALIGNMENT) Rare rare;
};

/// Integers on their way to text.
struct HalvedDecimals {
  alignas(BLOCK_ALIGNMENT) std::array<std::uint32_t, NUMBERS_MOST> halves; ///< four digits each, the upper ones first
  alignas(BLOCK_ALIGNMENT) std::array<std::uint32_t, NUMBERS_MOST> drop;   ///< the bits of leading zeros
  alignas(BLOCK_ALIGNMENT) std::array<std::uint32_t, NUMBERS_MOST> sign;   ///< what makes a leading zero a sign
};

// --- Texels ---------------------------------------------------------------------------------------------------------

/// What the bytes of a row's text are made of: a digit of a texel, and what is added to it.
struct TexelText {
  using Bytes = std::array<std::uint8_t, 64>;
  Bytes texel{};          ///< the place of the texel, or `NO_DIGIT`
  Bytes upper{}, lower{}; ///< the bits of the texel that are its digit
  Bytes unlike{};         ///< `more` is added where the texel is not this
  Bytes more{};
};

inline constexpr TexelText TEXEL_TEXT = [] {
  constexpr std::string_view PATTERN = "0x00 ";
  TexelText text;
  text.texel.fill(NO_DIGIT);
  text.unlike.fill(1);
  text.more[0] = static_cast<std::uint8_t>('\n' - '0');
  for (std::size_t at = 1; at < TEXEL_ROW_BYTES; ++at) {
    const std::size_t place = (at - 1) % PATTERN.size();
    text.more[at] = static_cast<std::uint8_t>(PATTERN[place] - '0');
    if (place == 0 || place == 4)
      continue;
    text.texel[at] = static_cast<std::uint8_t>((at - 1) / PATTERN.size());
    text.unlike[at] = 0; // a zero has no "x"
    text.upper[at] = place == 2 ? 0xf : 0;
    text.lower[at] = place == 3 ? 0xf : 0;
  }
  return text;
}();

// --- Converters -----------------------------------------------------------------------------------------------------

/// What one kind of processor does: converts the first `count` numbers, a multiple of 16, or writes rows of texels, one
/// behind the other.
struct Converters {
  void (*floats)(FloatBlock &floats, std::size_t count);
  void (*decimals)(DecimalBlock &decimals, std::size_t count);
  void (*texels)(char *at, const unsigned char *texels, std::size_t rows);
};

extern const Converters AVX2;
extern const Converters AVX512;

} // namespace kova::digits
