/// Line tables: the lines of a record, compiled from its table of words into literals and numbers.
///
/// `LINES<Head>` does not compile where the conversions of a text do not fit the words of its member.
#pragma once

#include "format/words.h"
#include "textdump/format.h"

namespace kova {

/// Throws, which is a compile error here, where a conversion does not show a word of this kind.
constexpr void checkKind(Conversion conversion, Kind kind) {
  if (conversion == Conversion::decimal && kind == Kind::real)
    throw "%d takes a Word or an Index";
  if (conversion == Conversion::hex && kind != Kind::word)
    throw "%0#10x takes a Word";
  if ((conversion == Conversion::real || conversion == Conversion::real12) && kind != Kind::real)
    throw "%#g and %#12g take a float";
  if (conversion == Conversion::byte)
    throw "%0#4x takes a byte, which no record has";
}

/// The number of one word of a record, with the literal before it.
struct Step {
  std::size_t begin = 0; ///< of the literal, in the table's text
  std::size_t length = 0;
  Conversion conversion = Conversion::none;
  std::size_t word = 0; ///< position in the record
};

/// The steps from `first` to `end`, and the literal after the last one.
struct Steps {
  std::size_t first = 0;
  std::size_t end = 0;
  std::size_t last_begin = 0;
  std::size_t last_length = 0;
};

/// The lines of a record, compiled from its words: the literals of all texts in one piece, so that the end of a line
/// and the beginning of the next one are copied together, and the numbers between them.
template <class R> struct Table {
  using Record = R;
  static constexpr std::size_t WORDS = sizeof(Record) / sizeof(Word);
  static constexpr std::size_t TEXT_MAX = 256 + 64 * WORDS;

  char text[TEXT_MAX] = {};
  Step step[WORDS] = {};
  Steps now;   ///< what `putRecord` prints
  Steps later; ///< what `putLater` prints
};

template <const auto &TABLE> using RecordOf = typename std::remove_cvref_t<decltype(TABLE)>::Record;

/// Puts a table together.
template <class Record> struct TableMaker {
  Table<Record> table{};
  std::size_t length = 0;  ///< of the text so far
  std::size_t literal = 0; ///< where the literal that is being added begins
  std::size_t steps = 0;

  constexpr void addCharacter(char character) {
    if (length == Table<Record>::TEXT_MAX)
      throw "the texts of a table are too long";
    table.text[length++] = character;
  }

  constexpr void addNumber(Conversion conversion, std::size_t word) {
    table.step[steps++] = {literal, length - literal, conversion, word};
    literal = length;
  }

  /// Adds a text that shows words of these kinds, from `word` on. @return the kinds of those that it leaves over.
  constexpr std::span<const Kind> addText(std::string_view text, std::span<const Kind> kinds, std::size_t word,
                                          std::size_t position) {
    for (std::size_t at = 0; at < text.size();) {
      if (text[at] != '%') {
        addCharacter(text[at++]);
        continue;
      }
      const Spelling &spelling = spellingAt(text.substr(at));
      if (at > 0 && (text[at - 1] == '[' || text[at - 1] == '(')) {
        addCharacter(static_cast<char>('0' + position));
      } else {
        if (kinds.empty())
          throw "a text has one conversion for each word of its member";
        checkKind(spelling.conversion, kinds.front());
        addNumber(spelling.conversion, word++);
        kinds = kinds.subspan(1);
      }
      at += spelling.text.size();
    }
    return kinds;
  }

  /// Adds the rows of a record at word `begin` that print now, or those that print later.
  constexpr void addRows(std::span<const WordRow> rows, std::size_t begin, bool is_later) {
    for (const WordRow &row : rows)
      if (row.is_printed && row.is_later == is_later)
        addRow(row, begin + row.first);
  }

  constexpr void addRow(const WordRow &row, std::size_t word) {
    std::span<const Kind> kinds = row.kinds;
    for (const char *const text : row.texts)
      if (text != nullptr)
        kinds = addText(text, kinds, word + row.kinds.size() - kinds.size(), 0);
    if (!kinds.empty())
      throw "a text has one conversion for each word of its member";
    for (const WordRow &inner : row.inner)
      if (inner.is_later)
        throw "a table with lines that print later cannot be part of another one";
    for (std::size_t position = 0; position < row.count; ++position) {
      addText(row.heading, {}, 0, position);
      addRows(row.inner, word + row.words / row.count * position, false);
    }
  }

  /// As `addRows` for a whole record.
  constexpr Steps addAll(std::span<const WordRow> rows, bool is_later) {
    const std::size_t first = steps;
    addRows(rows, 0, is_later);
    const Steps added = {first, steps, literal, length - literal};
    literal = length;
    return added;
  }
};

/// Compiles the lines of a record.
template <class Record> constexpr Table<Record> linesOf(std::span<const WordRow> rows) {
  TableMaker<Record> maker;
  maker.table.now = maker.addAll(rows, false);
  maker.table.later = maker.addAll(rows, true);
  return maker.table;
}

/// The lines of a table of words.
template <const auto &TABLE>
inline constexpr auto LINES_OF = linesOf<typename std::remove_cvref_t<decltype(TABLE)>::Record>(TABLE.row);

/// The lines of a type of record, by its one table.
template <class Head> inline constexpr auto &LINES = LINES_OF<WORDS<Head>>;

} // namespace kova
