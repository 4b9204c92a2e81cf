/// Numbers as text, and the tables that they are made from. The compiler computes all of them; number.h says what those
/// of floats are for.
#include "textdump/number.h"

#include <string_view>

namespace kova::number {
namespace {

constexpr int LEAST_EXPONENT = -45; // decimal exponents of the least denormal and of the greatest float
constexpr int MOST_EXPONENT = 38;
constexpr std::size_t INFINITY_DECADE = MOST_EXPONENT - LEAST_EXPONENT + 1;
constexpr std::size_t NAN_DECADE = INFINITY_DECADE + 1;
constexpr std::size_t DECADE_COUNT = NAN_DECADE + 1;

consteval std::size_t decadeIndex(int exponent) { return static_cast<std::size_t>(exponent - LEAST_EXPONENT); }

/// An integer of 192 bits, the lowest 32 first.
using Limbs = std::array<std::uint32_t, 6>;

consteval void multiply(Limbs &number, std::uint32_t factor) {
  std::uint64_t carry = 0;
  for (std::uint32_t &limb : number) {
    carry += std::uint64_t{limb} * factor;
    limb = static_cast<std::uint32_t>(carry);
    carry >>= 32;
  }
}

/// @return the remainder.
consteval std::uint32_t divide(Limbs &number, std::uint32_t divisor) {
  std::uint64_t rest = 0;
  for (std::size_t i = number.size(); i-- > 0;) {
    rest = rest << 32 | number[i];
    number[i] = static_cast<std::uint32_t>(rest / divisor);
    rest %= divisor;
  }
  return static_cast<std::uint32_t>(rest);
}

/// Takes from base^exponent a power that fits 32 bits, and leaves the exponent of the rest.
consteval std::uint32_t takePower(std::uint32_t base, int &exponent) {
  std::uint32_t power = 1;
  for (; exponent > 0 && power <= 0xffffffff / base; --exponent)
    power *= base;
  return power;
}

/// Multiplies by base^exponent; by 1 where the exponent is not positive.
consteval void multiplyByPower(Limbs &number, std::uint32_t base, int exponent) {
  while (exponent > 0)
    multiply(number, takePower(base, exponent));
}

/// Divides by base^exponent, rounding down; by 1 where the exponent is not positive. @return whether it is exact. The
/// divisions are many, each rounded down; one by the whole power would give the same.
consteval bool divideByPower(Limbs &number, std::uint32_t base, int exponent) {
  bool isExact = true;
  while (exponent > 0)
    isExact &= divide(number, takePower(base, exponent)) == 0;
  return isExact;
}

/// ceil(factor * 10^ten * 2^two), exactly. The result must fit 64 bits, what is divided for it 192.
consteval std::uint64_t scaledUp(std::uint32_t factor, int ten, int two) {
  Limbs number{factor};
  multiplyByPower(number, 5, ten);
  multiplyByPower(number, 2, ten + two);
  bool isExact = divideByPower(number, 5, -ten);
  isExact &= divideByPower(number, 2, -ten - two);
  return (std::uint64_t{number[1]} << 32 | number[0]) + (isExact ? 0 : 1);
}

/// The least m whose m * 2^two is at least (10^6 - 1/2) * 10^(exponent - 5), that is, rounds to 10^(exponent + 1).
consteval std::uint64_t firstAbove(int exponent, int two) { return scaledUp(1999999, exponent - 5, -two - 1); }

struct FloatTables {
  std::array<std::uint32_t, ROWS> lower_end{};
  std::array<std::uint64_t, ENTRIES> multipliers{};
  std::array<std::size_t, ENTRIES> decades{};
};

/// The row of the values m * 2^two, of which the least, with m = 2^23, lies in the decade of `exponent`.
consteval void fillRow(FloatTables &tables, std::size_t row, int two, int exponent) {
  const int unit = two < -149 ? -149 : two; // what one step of the bit pattern adds
  const std::uint64_t before = static_cast<std::uint64_t>(unit + 149) << 23;
  tables.lower_end[row] = static_cast<std::uint32_t>(before + firstAbove(exponent, unit) - 1);
  for (std::size_t upper = 0; upper < 2; ++upper) {
    const int decimal = exponent + static_cast<int>(upper);
    tables.multipliers[2 * row + upper] = scaledUp(1, 5 - decimal, 64 + two);
    tables.decades[2 * row + upper] = decadeIndex(decimal);
  }
}

consteval FloatTables makeFloatTables() {
  FloatTables tables;
  int exponent = LEAST_EXPONENT;
  int two = -149 - static_cast<int>(ZERO_ROW);
  for (std::size_t row = 0; row < ROWS - 1; ++row) {
    if (row == ZERO_ROW)
      continue;
    exponent += firstAbove(exponent, two) <= 1 << 23;
    fillRow(tables, row, two++, exponent);
  }
  tables.decades[2 * ZERO_ROW] = decadeIndex(0);
  tables.lower_end[ROWS - 1] = 0x7f800000; // infinity, above it the NaNs
  tables.decades[ENTRIES - 2] = INFINITY_DECADE;
  tables.decades[ENTRIES - 1] = NAN_DECADE;
  return tables;
}

constexpr FloatTables FLOAT_TABLES = makeFloatTables();

/// `text` is the text of a positive value with zeros for digits, `digits_at` the place of its first digit among the 12
/// bytes, `point` the number of digits before the point, 0 if it is not among them.
consteval Decade makeDecade(std::string_view text, std::size_t digits_at, std::size_t point) {
  const std::size_t indent = 12 - text.size();
  const bool in_front = point >= 1 && point <= 3;
  Decade decade{{},
                static_cast<std::uint8_t>(indent),
                static_cast<std::uint8_t>(digits_at),
                static_cast<std::uint8_t>(digits_at + (in_front ? 4 : 3)),
                &POINTED_GROUPS[in_front ? point : 0],
                &POINTED_GROUPS[point > 3 ? point - 3 : 0]};
  decade.text.fill(' ');
  for (std::size_t i = 0; i < text.size(); ++i)
    decade.text[indent + i] = decade.text[16 + indent + i] = text[i];
  decade.text[16 + indent - 1] = '-';
  return decade;
}

consteval Decade makeDecade(int exponent) {
  const std::string_view fixed = "0.000000000";
  if (exponent >= 0 && exponent <= 5)
    return makeDecade(fixed.substr(0, 7), 5, static_cast<std::size_t>(exponent) + 1);
  if (exponent < 0 && exponent >= -4)
    return makeDecade(fixed.substr(0, static_cast<std::size_t>(7 - exponent)), 6, 0);
  std::array<char, 11> scientific{'0', '.', '0', '0', '0', '0', '0', 'e', exponent < 0 ? '-' : '+'};
  const int size = exponent < 0 ? -exponent : exponent;
  scientific[9] = static_cast<char>('0' + size / 10);
  scientific[10] = static_cast<char>('0' + size % 10);
  return makeDecade({scientific.data(), scientific.size()}, 1, 1);
}

consteval std::array<Decade, DECADE_COUNT> makeDecades() {
  std::array<Decade, DECADE_COUNT> decades{};
  for (int exponent = LEAST_EXPONENT; exponent <= MOST_EXPONENT; ++exponent)
    decades[decadeIndex(exponent)] = makeDecade(exponent);
  decades[INFINITY_DECADE] = makeDecade("inf", 12, 0);
  decades[NAN_DECADE] = makeDecade("nan", 12, 0);
  return decades;
}

constexpr std::array<Decade, DECADE_COUNT> DECADES = makeDecades();

consteval std::array<const Decade *, ENTRIES> makeDecadeOf() {
  std::array<const Decade *, ENTRIES> decade_of{};
  for (std::size_t i = 0; i < decade_of.size(); ++i)
    decade_of[i] = &DECADES[FLOAT_TABLES.decades[i]];
  return decade_of;
}

consteval std::array<char, 3> threeDigits(std::size_t value) {
  return {static_cast<char>('0' + value / 100), static_cast<char>('0' + value / 10 % 10),
          static_cast<char>('0' + value % 10)};
}

consteval std::array<PointedGroups, 4> makePointedGroups() {
  std::array<PointedGroups, 4> tables{};
  for (std::size_t value = 0; value < 1000; ++value) {
    const auto [a, b, c] = threeDigits(value);
    tables[0][value] = {a, b, c, 'e'};
    tables[1][value] = {a, '.', b, c};
    tables[2][value] = {a, b, '.', c};
    tables[3][value] = {a, b, c, '.'};
  }
  return tables;
}

/// A number below 1000 in an integer. Copied whole, length included: four bytes are copied faster than up to three.
struct Group {
  std::array<char, 3> text;
  std::uint8_t length;
};
using Groups = std::array<Group, 1000>;

/// The last `length` digits of each number below 1000, where the length is at least `least` and leaves out leading
/// zeros.
consteval Groups makeGroups(std::size_t least) {
  Groups groups{};
  for (std::size_t value = 0; value < groups.size(); ++value) {
    const std::size_t needed = value >= 100 ? 3 : value >= 10 ? 2 : value >= 1 ? 1 : 0;
    const std::size_t length = needed > least ? needed : least;
    for (std::size_t i = 0; i < length; ++i)
      groups[value].text[i] = threeDigits(value)[3 - length + i];
    groups[value].length = static_cast<std::uint8_t>(length);
  }
  return groups;
}

constexpr Groups FIRST_GROUP = makeGroups(0);                                // without leading zeros; nothing for 0
constexpr std::array<Groups, 2> LAST_GROUP = {makeGroups(3), makeGroups(1)}; // with leading zeros; without, "0" for 0

char *putGroup(char *at, const Group &group) {
  std::memcpy(at, &group, sizeof group);
  return at + group.length;
}

/// value < 10^6
char *putBelowMillion(char *at, std::uint32_t value) {
  const std::uint32_t thousands = value / 1000;
  at = putGroup(at, FIRST_GROUP[thousands]);
  return putGroup(at, LAST_GROUP[thousands == 0][value % 1000]);
}

consteval std::array<std::array<char, 8>, 256> makeBytes() {
  std::array<std::array<char, 8>, 256> bytes{};
  const std::string_view digits = "0123456789abcdef";
  for (std::size_t value = 0; value < bytes.size(); ++value)
    bytes[value] = {'0', value != 0 ? 'x' : '0', digits[value / 16], digits[value % 16], ' '};
  return bytes;
}

void putHexPair(char *at, std::uint32_t byte) { std::memcpy(at, &BYTES[byte][2], 2); }

} // namespace

constinit const std::array<std::uint32_t, ROWS> LOWER_END = FLOAT_TABLES.lower_end;
constinit const std::array<std::uint64_t, ENTRIES> MULTIPLIERS = FLOAT_TABLES.multipliers;
constinit const std::array<const Decade *, ENTRIES> DECADE_OF = makeDecadeOf();
constinit const std::array<PointedGroups, 4> POINTED_GROUPS = makePointedGroups();
constinit const std::array<std::array<char, 8>, 256> BYTES = makeBytes();

} // namespace kova::number

namespace kova {

char *putDec(char *at, std::int32_t value) {
  *at = '-'; // is written over unless negative: no branch on the sign
  at += value < 0;
  const auto bits = static_cast<std::uint32_t>(value);
  const std::uint32_t magnitude = value < 0 ? 0 - bits : bits;
  if (magnitude < 1000000) [[likely]]
    return number::putBelowMillion(at, magnitude);
  at = number::putBelowMillion(at, magnitude / 1000000);
  at = number::putGroup(at, number::LAST_GROUP[0][magnitude / 1000 % 1000]);
  return number::putGroup(at, number::LAST_GROUP[0][magnitude % 1000]);
}

char *putHex(char *at, std::uint32_t value) {
  at[0] = '0';
  at[1] = value != 0 ? 'x' : '0';
  number::putHexPair(at + 2, value >> 24);
  number::putHexPair(at + 4, value >> 16 & 0xff);
  number::putHexPair(at + 6, value >> 8 & 0xff);
  number::putHexPair(at + 8, value & 0xff);
  return at + 10;
}

char *putFloat(char *at, float value) {
  const auto bits = std::bit_cast<std::uint32_t>(value);
  const number::Decimal decimal = number::toDecimal(bits);
  const std::size_t negative = bits >> 31;
  const std::size_t start = decimal.decade->indent - negative;
  std::memcpy(at, decimal.decade->text.data() + 16 * negative + start, 16);
  number::putDigits(at, start, decimal);
  return at + (12 - start);
}

} // namespace kova
