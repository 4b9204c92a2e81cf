/// The slow twin of the dump's text header: the same interface, every line through one fprintf.
///
/// The dump's own sources are compiled a second time with this folder in front of the include path. Tables, section
/// writers and order are thus the very same; what differs is only how a line becomes text.
#pragma once

#include "kova/words.h"
#include "textdump/run.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace kova {

struct Text {
  std::FILE *stream;

  explicit Text(std::FILE *to) : stream(to) {}
};

inline void flush(Text &) {}
inline void putBytes(Text &text, const char *bytes, std::size_t count) { std::fwrite(bytes, 1, count, text.stream); }
inline void putString(Text &text, const char *string) { std::fputs(string, text.stream); }

template <std::size_t N> struct Format {
  char text[N];
  consteval Format(const char (&literal)[N]) { std::copy_n(literal, N, text); }
};

// The texts are the tables' own, checked against their arguments where the fast dump compiles them.
#pragma GCC diagnostic ignored "-Wformat-security"
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

template <Format FORMAT, class... Numbers> void print(Text &text, Numbers... numbers) {
  std::fprintf(text.stream, FORMAT.text, numbers...);
}

template <Format FORMAT, class... Numbers> void printBehind(Text &text, std::string_view label, Numbers... numbers) {
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

struct Line {
  const char *text;
  bool real;
};

consteval bool isReal(std::string_view text) {
  const std::size_t conversion = text.find_first_of("dxg", text.find('%'));
  return text[conversion] == 'g';
}

template <class Record, std::size_t N> consteval auto lines(const char *const (&texts)[N]) {
  static_assert(N * sizeof(Word) == sizeof(Record));
  std::array<Line, N> table{};
  for (std::size_t i = 0; i < N; ++i)
    table[i] = Line{texts[i], isReal(texts[i])};
  return table;
}

template <const auto &TABLE, class Record> void putRecord(Text &text, const Record &record) {
  const auto words = std::bit_cast<std::array<Word, TABLE.size()>>(record);
  for (std::size_t i = 0; i < TABLE.size(); ++i)
    if (TABLE[i].real)
      std::fprintf(text.stream, TABLE[i].text, static_cast<double>(std::bit_cast<float>(words[i])));
    else
      std::fprintf(text.stream, TABLE[i].text, words[i]);
}

template <const auto &TABLE, class Record> void putLeading(Text &text, const Record &record) {
  std::array<Word, TABLE.size()> words;
  std::memcpy(words.data(), &record, sizeof words);
  putRecord<TABLE>(text, words);
}

} // namespace kova
