/// The text buffer of the dump, and writing format texts and line tables into it.
///
/// Writing a line is a few copies of known length and the numbers. A text with a wrong or missing conversion, or an
/// argument of the wrong kind, does not compile.
#pragma once

#include "textdump/batch.h"
#include "textdump/number.h"
#include "textdump/table.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string_view>
#include <utility>

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

/// No number is longer; "%0#10x", "%d" and "%#12g" come close.
inline constexpr std::size_t NUMBER_MAX = 12;

/// Writes one number.
template <Conversion CONVERSION, class Number> char *putNumber(char *at, Number number) {
  if constexpr (CONVERSION == Conversion::decimal) {
    static_assert(std::is_integral_v<Number>, "%d takes a Word or an Index");
    return putDec(at, static_cast<std::int32_t>(number));
  } else if constexpr (CONVERSION == Conversion::hex) {
    static_assert(std::is_same_v<Number, Word>, "%0#10x takes a Word");
    return putHex(at, number);
  } else if constexpr (CONVERSION == Conversion::byte) {
    static_assert(std::is_same_v<Number, unsigned char>, "%0#4x takes a byte");
    return putByte(at, number);
  } else {
    static_assert(std::is_same_v<Number, float>, "%#g and %#12g take a float");
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

/// Labels up to this length share one test for room with the line after them.
inline constexpr std::size_t SHORT_LABEL = 256;

/// Writes a label of any length and a format text after it.
template <Format FORMAT, class... Numbers> void printLabelled(Text &text, std::string_view label, Numbers... numbers) {
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

// --- Many numbers at a time -----------------------------------------------------------------------------------------
//
// Each of these writes as many items from the front as can be written many at a time, and returns their number: none on
// a processor that cannot do it. The caller writes the others.

/// Has the bytes of the first `count` items brought into the cache while others are written.
template <class Item> void fetchAhead(std::span<const Item> items, std::size_t count) {
  constexpr std::size_t CACHE_LINE = 64;
  const std::span<const std::byte> bytes = std::as_bytes(items.first(std::min(count, items.size())));
  for (std::size_t i = 0; i < bytes.size(); i += CACHE_LINE)
    __builtin_prefetch(&bytes[i]);
}

/// Writes the lines of an array, if they are those of tuples of floats.
template <Format FORMAT, class Item> std::size_t printTuples(Text &text, std::span<const Item> items) {
  std::size_t first = 0;
  if constexpr (isTupleLine(FORMAT.text)) {
    static constexpr TupleLines LINES = tupleLines(FORMAT.text);
    static_assert(sizeof(Item) == LINES.width * sizeof(float), "one conversion for each float");
    const Batch *const batch = fastestBatch();
    while (batch != nullptr && first < items.size()) {
      const std::size_t count = std::min(TUPLES_AT_ONCE, items.size() - first);
      fetchAhead(items.subspan(first + count), TUPLES_AT_ONCE);
      const auto *const values = reinterpret_cast<const float *>(&items[first]);
      char *const at = room(text, TUPLES_ROOM);
      advanceTo(text, putTuples(*batch, at, LINES, values, count, first));
      first += count;
    }
  }
  return first;
}

/// Writes triangles without blocks, each with its heading, numbered from `first`, and the empty line after it. Stops
/// before the first one that has blocks.
inline std::size_t printTriangles(Text &text, std::span<const Tri> triangles, std::size_t first) {
  const Batch *const batch = fastestBatch();
  std::size_t done = 0;
  for (std::size_t more = TRIANGLES_AT_ONCE; batch != nullptr && more == TRIANGLES_AT_ONCE; done += more) {
    const std::size_t count = std::min(TRIANGLES_AT_ONCE, triangles.size() - done);
    fetchAhead(triangles.subspan(done + count), TRIANGLES_AT_ONCE);
    char *at = room(text, TRIANGLES_ROOM);
    more = putTriangles(*batch, at, triangles.subspan(done, count), first + done);
    advanceTo(text, at);
  }
  return done;
}

/// Writes rows of texels, a line end before each.
/// @return the number of texels.
inline std::size_t printTexels(Text &text, std::span<const unsigned char> texels) {
  constexpr std::size_t READ_BEYOND = 4;
  const Batch *const batch = fastestBatch();
  if (batch == nullptr || texels.size() < READ_BEYOND)
    return 0;
  const std::size_t rows = (texels.size() - READ_BEYOND) / TEXELS_TO_A_ROW;
  for (std::size_t row = 0; row < rows; row += TEXEL_ROWS_AT_ONCE) {
    const std::size_t count = std::min(TEXEL_ROWS_AT_ONCE, rows - row);
    fetchAhead(texels.subspan((row + count) * TEXELS_TO_A_ROW), count * TEXELS_TO_A_ROW);
    char *const at = room(text, TEXEL_ROWS_ROOM);
    advanceTo(text, putTexels(*batch, at, &texels[row * TEXELS_TO_A_ROW], count));
  }
  return rows * TEXELS_TO_A_ROW;
}

// --- Line tables ----------------------------------------------------------------------------------------------------

/// Literals are copied in whole pieces of this size: what is too much is overwritten by the number after it, or lies in
/// the slack at the end.
inline constexpr std::size_t LITERAL_PIECE = 16;
static_assert(LITERAL_PIECE <= NUMBER_SLACK);

constexpr std::size_t inWholePieces(std::size_t length) {
  return (length + LITERAL_PIECE - 1) / LITERAL_PIECE * LITERAL_PIECE;
}

template <const auto &TABLE> consteval auto literalsOf() {
  std::array<char, TABLE.later.last_begin + TABLE.later.last_length + LITERAL_PIECE> literals{};
  std::copy_n(TABLE.text, literals.size() - LITERAL_PIECE, literals.begin());
  return literals;
}
/// The literals of a table, as many as there are, with a piece to spare.
template <const auto &TABLE> inline constexpr auto LITERALS = literalsOf<TABLE>();

template <const auto &TABLE, std::size_t I> char *putStep(char *at, Word word) {
  constexpr Step STEP = TABLE.step[I];
  std::memcpy(at, LITERALS<TABLE>.data() + STEP.begin, inWholePieces(STEP.length));
  at += STEP.length;
  if constexpr (STEP.conversion == Conversion::real || STEP.conversion == Conversion::real12)
    return putNumber<STEP.conversion>(at, std::bit_cast<float>(word));
  else
    return putNumber<STEP.conversion>(at, word);
}

template <const auto &TABLE, bool IS_LATER, std::size_t... I>
void putSteps(Text &text, const RecordOf<TABLE> &record, std::index_sequence<I...>) {
  constexpr Steps STEPS = IS_LATER ? TABLE.later : TABLE.now;
  const auto words = std::bit_cast<std::array<Word, TABLE.WORDS>>(record);
  char *at = room(text, LITERALS<TABLE>.size() + NUMBER_MAX * sizeof...(I) + NUMBER_SLACK);
  ((at = putStep<TABLE, STEPS.first + I>(at, words[TABLE.step[STEPS.first + I].word])), ...);
  std::memcpy(at, LITERALS<TABLE>.data() + STEPS.last_begin, inWholePieces(STEPS.last_length));
  advanceTo(text, at + STEPS.last_length);
}

/// Writes a record through its table: putRecord<ENV_LINES>(text, env).
template <const auto &TABLE> void putRecord(Text &text, const RecordOf<TABLE> &record) {
  putSteps<TABLE, false>(text, record, std::make_index_sequence<TABLE.now.end>());
}

/// Writes the lines that `putRecord` leaves for later.
template <const auto &TABLE> void putLater(Text &text, const RecordOf<TABLE> &record) {
  static_assert(TABLE.later.first != TABLE.later.end, "no line of the table prints later");
  putSteps<TABLE, true>(text, record, std::make_index_sequence<TABLE.later.end - TABLE.later.first>());
}

} // namespace kova
