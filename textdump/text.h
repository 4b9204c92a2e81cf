/// The text buffer and the line formats of the dump.
///
/// A format text stands in the code exactly as it prints; it is taken apart at compile time into literals and
/// conversions, so that writing a line is a few copies of known length and the numbers. A text with a wrong or missing
/// conversion, or an argument of the wrong kind, does not compile.
#pragma once

#include "kova/words.h"
#include "textdump/number.h"
#include "textdump/run.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string_view>
#include <tuple>

namespace kova {

/// Text on its way to a stream. Lives on the stack of a dump, asks for no memory, and drains when it is full; `flush`
/// drains the rest.
struct Text {
  std::FILE *stream;
  std::size_t used = 0;
  std::array<char, 64 * 1024> buffer;

  explicit Text(std::FILE *to) : stream(to) {} // the buffer is left unset on purpose
};

/// Hands everything written so far to the stream. Errors of the stream are not reported.
inline void flush(Text &text) {
  std::fwrite(text.buffer.data(), 1, text.used, text.stream);
  text.used = 0;
}

/// @return where the next bytes go, with at least `bytes` free. No line and no record needs more than the buffer has.
inline char *room(Text &text, std::size_t bytes) {
  if (text.buffer.size() - text.used < bytes) [[unlikely]]
    flush(text);
  return text.buffer.data() + text.used;
}

inline void advanceTo(Text &text, const char *end) { text.used = static_cast<std::size_t>(end - text.buffer.data()); }

/// Writes bytes of any number, which may be more than the buffer has.
inline void putBytes(Text &text, const char *bytes, std::size_t count) {
  while (count > 0) {
    char *at = room(text, 1);
    const std::size_t free = text.buffer.size() - text.used;
    const std::size_t piece = count < free ? count : free;
    std::memcpy(at, bytes, piece);
    text.used += piece;
    bytes += piece;
    count -= piece;
  }
}
inline void putString(Text &text, const char *string) { putBytes(text, string, std::strlen(string)); }

// --- Format texts ---------------------------------------------------------------------------------------------------

/// The conversions that the format uses.
enum class Conversion : std::uint8_t {
  none,
  decimal, ///< %d
  hex,     ///< %0#10x
  real,    ///< %#g
  real12,  ///< %#12g
  byte     ///< %0#4x with the blank behind it
};

/// One literal of a format text and the conversion that follows it; the last piece of a text has none.
struct Piece {
  std::size_t begin = 0;
  std::size_t length = 0;
  Conversion conversion = Conversion::none;
};

/// A string literal as a template argument.
template <std::size_t N> struct Format {
  char text[N];
  consteval Format(const char (&literal)[N]) { std::copy_n(literal, N, text); }
};

struct Spelling {
  const char *text;
  Conversion conversion;
};
inline constexpr std::array<Spelling, 5> SPELLINGS = {{
    {"%d", Conversion::decimal},
    {"%0#10x", Conversion::hex},
    {"%#g", Conversion::real},
    {"%#12g", Conversion::real12},
    {"%0#4x ", Conversion::byte},
}};

inline constexpr std::size_t PIECES_MAX = 8;

struct Pieces {
  std::array<Piece, PIECES_MAX> piece{};
  std::size_t count = 0;
};

/// Takes a format text apart. Throws, which is a compile error here, at a conversion that the format does not know.
constexpr Pieces parseFormat(const char *text) {
  Pieces pieces;
  std::size_t at = 0;
  for (;;) {
    Piece &piece = pieces.piece.at(pieces.count++);
    piece.begin = at;
    while (text[at] != '\0' && text[at] != '%')
      ++at;
    piece.length = at - piece.begin;
    if (text[at] == '\0')
      return pieces;
    for (const Spelling &spelling : SPELLINGS) {
      const std::string_view known(spelling.text);
      if (std::string_view(text + at).starts_with(known)) {
        piece.conversion = spelling.conversion;
        at += known.size();
        break;
      }
    }
    if (piece.conversion == Conversion::none)
      throw "a conversion that the dump does not know";
  }
}

/// No number is longer; "%0#10x", "%d" and "%#12g" come close.
inline constexpr std::size_t NUMBER_MAX = 12;

/// Writes one number.
template <Conversion CONVERSION, class Number> char *putNumber(char *at, Number number) {
  if constexpr (CONVERSION == Conversion::decimal) {
    static_assert(std::is_integral_v<Number>, "%d takes a word or an index");
    return putDec(at, static_cast<std::int32_t>(number));
  } else if constexpr (CONVERSION == Conversion::hex) {
    static_assert(std::is_same_v<Number, Word>, "%0#10x takes a word");
    return putHex(at, number);
  } else if constexpr (CONVERSION == Conversion::byte) {
    static_assert(std::is_same_v<Number, unsigned char>, "%0#4x takes a byte");
    return putByte(at, number);
  } else {
    static_assert(std::is_same_v<Number, float>, "%#g takes a float");
    return CONVERSION == Conversion::real ? putFloat(at, number) : putFloat12(at, number);
  }
}

/// The room that a format text with `numbers` numbers needs at most.
template <Format FORMAT> constexpr std::size_t formatRoom(std::size_t numbers) {
  return sizeof FORMAT.text + NUMBER_MAX * numbers + NUMBER_SLACK;
}

/// Writes a format text with its numbers where there is room for them. @return where the text ends.
template <Format FORMAT, class... Numbers> char *putFormat(char *at, Numbers... numbers) {
  static constexpr Pieces PIECES = parseFormat(FORMAT.text);
  static_assert(PIECES.count == sizeof...(Numbers) + 1, "one argument for each conversion");
  [&]<std::size_t... I>(std::index_sequence<I...>) {
    ((std::memcpy(at, FORMAT.text + PIECES.piece[I].begin, PIECES.piece[I].length), at += PIECES.piece[I].length,
      at = putNumber<PIECES.piece[I].conversion>(at, numbers)),
     ...);
  }
  (std::index_sequence_for<Numbers...>());
  constexpr Piece LAST = PIECES.piece[PIECES.count - 1];
  std::memcpy(at, FORMAT.text + LAST.begin, LAST.length);
  return at + LAST.length;
}

/// Writes a format text with its numbers: print<"Env(%d)\n">(text, i).
template <Format FORMAT, class... Numbers> void print(Text &text, Numbers... numbers) {
  char *at = room(text, formatRoom<FORMAT>(sizeof...(Numbers)));
  advanceTo(text, putFormat<FORMAT>(at, numbers...));
}

/// Labels up to this length share one test for room with the line behind them.
inline constexpr std::size_t SHORT_LABEL = 256;

/// Writes a label of any length and a format text behind it.
template <Format FORMAT, class... Numbers> void printBehind(Text &text, std::string_view label, Numbers... numbers) {
  if (label.size() > SHORT_LABEL) [[unlikely]] {
    putBytes(text, label.data(), label.size());
    label = {};
  }
  char *at = room(text, SHORT_LABEL + formatRoom<FORMAT>(sizeof...(Numbers)));
  std::copy_n(label.data(), label.size(), at);
  advanceTo(text, putFormat<FORMAT>(at + label.size(), numbers...));
}

/// Writes a short run of numbers, each by the same format text, with one test for room: a row of words or of texels. A
/// row whose length is known when this is compiled is written without a loop.
template <Format FORMAT, class Number, std::size_t N> void printRow(Text &text, std::span<const Number, N> row) {
  char *at = room(text, formatRoom<FORMAT>(1) * row.size() + NUMBER_SLACK);
  for (const Number number : row)
    at = putFormat<FORMAT>(at, number);
  advanceTo(text, at);
}

/// Calls `write(row)` for the rows of `PER_ROW` items that an array falls into; the last one may be shorter.
template <std::size_t PER_ROW, class Item, class Write> void eachRow(std::span<const Item> items, Write write) {
  for (; items.size() >= PER_ROW; items = items.subspan(PER_ROW))
    write(items.template first<PER_ROW>());
  if (!items.empty())
    write(items);
}

/// Writes one line for each entry of an array: its position, then its value.
template <Format FORMAT, class Numbers> void printEach(Text &text, const Numbers &numbers) {
  Index position = 0;
  for (const auto number : numbers)
    print<FORMAT>(text, position++, number);
}

// --- Line tables ----------------------------------------------------------------------------------------------------

/// The line of one word of a record: literal, conversion, literal.
struct Line {
  const char *text; ///< the whole format text
  Pieces pieces;
};

/// The lines of a record's fixed words, one text per word, in file order. A table whose length is not the record's does
/// not compile.
template <class Record, std::size_t N> consteval auto lines(const char *const (&texts)[N]) {
  static_assert(N * sizeof(Word) == sizeof(Record), "one line for each word of the record");
  std::array<Line, N> table{};
  for (std::size_t i = 0; i < N; ++i) {
    table[i] = Line{texts[i], parseFormat(texts[i])};
    if (table[i].pieces.count != 2)
      throw "a line has one conversion";
  }
  return table;
}

/// @return the bytes that a record's lines need at most.
template <const auto &TABLE> consteval std::size_t linesRoom() {
  std::size_t bytes = NUMBER_SLACK;
  for (const Line &line : TABLE)
    bytes += line.pieces.piece[0].length + NUMBER_MAX + line.pieces.piece[1].length;
  return bytes;
}

template <const auto &TABLE, std::size_t I> char *putLine(char *at, Word word) {
  constexpr const Line &LINE = TABLE[I];
  constexpr Piece BEFORE = LINE.pieces.piece[0];
  constexpr Piece AFTER = LINE.pieces.piece[1];
  std::memcpy(at, LINE.text + BEFORE.begin, BEFORE.length);
  at += BEFORE.length;
  if constexpr (BEFORE.conversion == Conversion::real || BEFORE.conversion == Conversion::real12)
    at = putNumber<BEFORE.conversion>(at, std::bit_cast<float>(word));
  else
    at = putNumber<BEFORE.conversion>(at, word);
  std::memcpy(at, LINE.text + AFTER.begin, AFTER.length);
  return at + AFTER.length;
}

/// Writes the fixed words of a record through its table: putRecord<ENV_LINES, EnvHead>(text, env).
template <const auto &TABLE, class Record> void putRecord(Text &text, const Record &record) {
  const auto words = std::bit_cast<std::array<Word, TABLE.size()>>(record);
  char *at = room(text, linesRoom<TABLE>());
  [&]<std::size_t... I>(std::index_sequence<I...>) { ((at = putLine<TABLE, I>(at, words[I])), ...); }
  (std::make_index_sequence<TABLE.size()>());
  advanceTo(text, at);
}

/// Writes the leading words of a record, as many as the table has lines.
template <const auto &TABLE, class Record> void putLeading(Text &text, const Record &record) {
  std::array<Word, TABLE.size()> words;
  static_assert(sizeof words <= sizeof record && std::is_trivially_copyable_v<Record>);
  std::memcpy(words.data(), &record, sizeof words);
  putRecord<TABLE>(text, words);
}

} // namespace kova
