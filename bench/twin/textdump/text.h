/// The slow twin of the dump's text header: the same interface, every line through one fprintf.
///
/// The dump's own sources are compiled a second time with this folder in front of the include path. Tables, section
/// writers and order are thus the very same; what differs is only how a line becomes text.
#pragma once

#include "textdump/table.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <utility>

namespace kova {

struct Text {
  std::FILE *stream;

  explicit Text(std::FILE *to) : stream(to) {}
};

inline void flush(Text &) {}
inline void putBytes(Text &text, const char *bytes, std::size_t count) { std::fwrite(bytes, 1, count, text.stream); }
inline void putString(Text &text, const char *string) { std::fputs(string, text.stream); }

// The texts are the tables' own, checked against their arguments where the fast dump compiles them.
#pragma GCC diagnostic ignored "-Wformat-security"
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

template <Format FORMAT, class... Numbers> void print(Text &text, Numbers... numbers) {
  std::fprintf(text.stream, FORMAT.text, numbers...);
}

template <Format FORMAT, class... Numbers> void printLabelled(Text &text, std::string_view label, Numbers... numbers) {
  std::fwrite(label.data(), 1, label.size(), text.stream);
  std::fprintf(text.stream, FORMAT.text, numbers...);
}

template <Format FORMAT, class Number, std::size_t N> void printRow(Text &text, std::span<const Number, N> row) {
  for (const Number number : row)
    std::fprintf(text.stream, FORMAT.text, number);
}

template <std::size_t PER_ROW, class Item, class Write> void eachRow(std::span<const Item> items, Write write) {
  for (; !items.empty(); items = items.subspan(std::min(PER_ROW, items.size())))
    write(items.first(std::min(PER_ROW, items.size())));
}

template <Format FORMAT, class Numbers> void printEach(Text &text, const Numbers &numbers) {
  Index position = 0;
  for (const auto number : numbers)
    std::fprintf(text.stream, FORMAT.text, position++, number);
}

// Nothing is written many at a time.
template <Format FORMAT, class Tuple> std::size_t printTuples(Text &, std::span<const Tuple>) { return 0; }
template <class Triangle> std::size_t printTriangles(Text &, std::span<const Triangle>, std::size_t) { return 0; }
inline std::size_t printTexels(Text &, std::span<const unsigned char>) { return 0; }
inline constexpr std::size_t TEXELS_TO_A_ROW = 12;

/// A line of a table: its format text, with a terminating zero, and its steps.
struct LineText {
  std::size_t begin = 0;
  std::size_t first = 0;
  std::size_t end = 0;
};

/// The lines of some steps. Every line has a line end, but perhaps the last one.
template <const auto &TABLE> struct LineTexts {
  std::array<char, 2 * TABLE.TEXT_MAX> text{};
  std::array<LineText, TABLE.TEXT_MAX> line{};
  std::size_t count = 0;

  consteval LineTexts(const Steps &steps) {
    std::size_t length = 0;
    LineText current = {0, steps.first, steps.first};
    const auto addLine = [&] {
      text[length++] = '\0';
      line[count++] = current;
      current = {length, current.end, current.end};
    };
    const auto add = [&](std::size_t begin, std::size_t bytes) {
      for (std::size_t i = begin; i < begin + bytes; ++i) {
        text[length++] = TABLE.text[i];
        if (TABLE.text[i] == '\n')
          addLine();
      }
    };
    for (std::size_t i = steps.first; i < steps.end; ++i) {
      add(TABLE.step[i].begin, TABLE.step[i].length);
      for (const char character : spellingOf(TABLE.step[i].conversion))
        text[length++] = character;
      ++current.end;
    }
    add(steps.last_begin, steps.last_length);
    if (current.begin != length)
      addLine();
  }
};

template <const auto &TABLE, std::size_t I> auto argument(const auto &words) {
  constexpr Step STEP = TABLE.step[I];
  if constexpr (STEP.conversion == Conversion::real || STEP.conversion == Conversion::real12)
    return static_cast<double>(std::bit_cast<float>(words[STEP.word]));
  else
    return words[STEP.word];
}

template <const auto &TABLE, const auto &TEXTS, std::size_t LINE> void putLine(Text &text, const auto &words) {
  constexpr LineText CURRENT = TEXTS.line[LINE];
  [&]<std::size_t... I>(std::index_sequence<I...>) {
    std::fprintf(text.stream, TEXTS.text.data() + CURRENT.begin, argument<TABLE, CURRENT.first + I>(words)...);
  }
  (std::make_index_sequence<CURRENT.end - CURRENT.first>());
}

template <const auto &TABLE, const auto &TEXTS> void putLines(Text &text, const RecordOf<TABLE> &record) {
  const auto words = std::bit_cast<std::array<Word, TABLE.WORDS>>(record);
  [&]<std::size_t... LINE>(std::index_sequence<LINE...>) { (putLine<TABLE, TEXTS, LINE>(text, words), ...); }
  (std::make_index_sequence<TEXTS.count>());
}

template <const auto &TABLE> inline constexpr LineTexts<TABLE> NOW_TEXTS(TABLE.now);
template <const auto &TABLE> inline constexpr LineTexts<TABLE> LATER_TEXTS(TABLE.later);

template <const auto &TABLE> void putRecord(Text &text, const RecordOf<TABLE> &record) {
  putLines<TABLE, NOW_TEXTS<TABLE>>(text, record);
}

template <const auto &TABLE> void putLater(Text &text, const RecordOf<TABLE> &record) {
  putLines<TABLE, LATER_TEXTS<TABLE>>(text, record);
}

} // namespace kova
