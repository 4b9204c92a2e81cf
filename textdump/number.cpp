#include "textdump/number.h"

namespace kova::number {

namespace {

constexpr int LEAST_EXPONENT = -45;
constexpr int MOST_EXPONENT = 38;
constexpr std::uint32_t INFINITY_ROW = MOST_EXPONENT - LEAST_EXPONENT + 1;

consteval Wide powerOfFive(int exponent) {
  Wide power = 1;
  for (int i = 0; i < exponent; ++i)
    power *= 5;
  return power;
}

// ceil(factor * 10^ten * 2^two), exactly. The result must fit 64 bits, and factor * 5^|ten| 120 bits.
consteval std::uint64_t scaledUp(std::uint32_t factor, int ten, int two) {
  two += ten;
  const Wide divisor = ten < 0 ? powerOfFive(-ten) : 1;
  const Wide dividend = ten > 0 ? factor * powerOfFive(ten) : factor;
  if (two < 0)
    return static_cast<std::uint64_t>((dividend + (Wide{1} << -two) - 1) >> -two);
  Wide quotient = dividend / divisor;
  Wide rest = dividend % divisor;
  while (two > 0) {
    const int step = two < 8 ? two : 8;
    rest <<= step;
    quotient = (quotient << step) + rest / divisor;
    rest %= divisor;
    two -= step;
  }
  return static_cast<std::uint64_t>(quotient + (rest != 0));
}

consteval std::uint64_t firstAbove(int exponent, int two) { return scaledUp(1999999, exponent - 5, -two - 1); }

consteval Binade makeBinade(int exponent, int two) {
  constexpr std::uint64_t END = std::uint64_t{1} << 24;
  const std::uint64_t upperFrom = firstAbove(exponent, two);
  return {{scaledUp(1, 5 - exponent, 64 + two), scaledUp(1, 4 - exponent, 64 + two)},
          upperFrom < END ? static_cast<std::uint32_t>(upperFrom << 8) : 0xffffffff,
          static_cast<std::uint32_t>(exponent - LEAST_EXPONENT)};
}

consteval std::array<Binade, DENORMAL_ROWS + 256> makeBinades() {
  std::array<Binade, DENORMAL_ROWS + 256> rows{};
  int exponent = LEAST_EXPONENT;
  int two = -149 - DENORMAL_ROWS;
  for (int row = 0; row < DENORMAL_ROWS + 255; ++row) {
    if (row == DENORMAL_ROWS)
      continue;
    if (firstAbove(exponent, two) <= 1 << 23)
      ++exponent;
    rows[static_cast<std::size_t>(row)] = makeBinade(exponent, two);
    ++two;
  }
  rows[DENORMAL_ROWS] = {{0, 0}, 0xffffffff, -LEAST_EXPONENT};
  rows[DENORMAL_ROWS + 255] = {{0, 0}, 0x80000001, INFINITY_ROW};
  return rows;
}

consteval Decade makeDecade(const char *text, int length, int digitsAt, int point, Text added) {
  Decade decade{{}, static_cast<std::uint8_t>(digitsAt), static_cast<std::uint8_t>(length), 0, added};
  for (std::size_t i = 0; i < decade.text.size(); ++i)
    decade.text[i] = ' ';
  for (std::size_t i = 0; i < static_cast<std::size_t>(length); ++i)
    decade.text[12 - static_cast<std::size_t>(length) + i] = text[i];
  if (point < 6) {
    decade.behindPoint = ~Text{0} << (8 * point);
    decade.added |= Text{'.'} << (8 * point);
  } else if (point == 6)
    decade.added |= Text{'.'} << 48;
  return decade;
}

consteval Decade makeDecade(int exponent) {
  if (exponent >= 0 && exponent <= 5)
    return makeDecade("       ", 7, 5, exponent + 1, 0);
  if (exponent < 0 && exponent >= -4)
    return makeDecade("0.000000000", 7 - exponent, 6, 7, 0);
  const int size = exponent < 0 ? -exponent : exponent;
  const char text[] = {' ', ' ', ' ', ' ', ' ', ' ', ' ', 'e', exponent < 0 ? '-' : '+', static_cast<char>('0' + size / 10), static_cast<char>('0' + size % 10)};
  return makeDecade(text, 11, 1, 1, Text{'e'} << 56);
}

consteval std::array<Decade, 86> makeDecades() {
  std::array<Decade, 86> rows{};
  for (int exponent = LEAST_EXPONENT; exponent <= MOST_EXPONENT; ++exponent)
    rows[static_cast<std::size_t>(exponent - LEAST_EXPONENT)] = makeDecade(exponent);
  rows[INFINITY_ROW] = makeDecade("inf", 3, 12, 7, 0);
  rows[INFINITY_ROW + 1] = makeDecade("nan", 3, 12, 7, 0);
  return rows;
}

consteval std::array<std::uint32_t, 1000> makeThreeDigits() {
  std::array<std::uint32_t, 1000> rows{};
  for (std::uint32_t i = 0; i < rows.size(); ++i)
    rows[i] = 0x303030 + i / 100 + (i / 10 % 10 << 8) + (i % 10 << 16);
  return rows;
}

consteval std::array<std::array<char, 8>, 256> makeBytes() {
  std::array<std::array<char, 8>, 256> rows{};
  for (std::size_t i = 0; i < rows.size(); ++i)
    rows[i] = {'0', i == 0 ? '0' : 'x', "0123456789abcdef"[i / 16], "0123456789abcdef"[i % 16], ' '};
  return rows;
}

} // namespace

constinit const std::array<Binade, DENORMAL_ROWS + 256> BINADES = makeBinades();
constinit const std::array<Decade, 86> DECADES = makeDecades();
constinit const std::array<std::uint32_t, 1000> THREE_DIGITS = makeThreeDigits();
constinit const std::array<std::array<char, 8>, 256> BYTES = makeBytes();

} // namespace kova::number
