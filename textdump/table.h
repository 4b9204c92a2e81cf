/// Line tables: the lines of a record, each a format text and the member that it shows.
///
///     inline constexpr auto EFFECTOR_LINES = lines<EffectorHead>({
///         ELEMENT_TOP_LINES, // the lines of the record's base
///         {"effector_type     %0#10x\n", &EffectorHead::effector_type},
///         ...
///     });
///
/// A table covers its record from the first word to the last. It does not compile where a member is missing, stands
/// twice or out of its order, or where the conversions of a text do not fit the words of its member.
#pragma once

#include "textdump/format.h"

#include <bit>
#include <concepts>

namespace kova {

/// What a word holds, which decides the conversions that show it.
enum class Kind : std::uint8_t { word, index, real };

/// The words of a member that one text can show. Other members have no words here.
template <class Member> inline constexpr std::array<Kind, 0> KINDS = {};
template <> inline constexpr std::array<Kind, 1> KINDS<Word> = {Kind::word};
template <> inline constexpr std::array<Kind, 1> KINDS<Index> = {Kind::index};
template <> inline constexpr std::array<Kind, 1> KINDS<float> = {Kind::real};
template <> inline constexpr std::array<Kind, 3> KINDS<Xyz> = {Kind::real, Kind::real, Kind::real};
template <> inline constexpr std::array<Kind, 4> KINDS<Rgba> = {Kind::real, Kind::real, Kind::real, Kind::real};
template <> inline constexpr std::array<Kind, 2> KINDS<NodeIndex> = {Kind::word, Kind::index};
template <> inline constexpr std::array<Kind, 2> KINDS<External> = {Kind::index, Kind::index};
template <std::size_t N> inline constexpr std::array<Kind, N> KINDS<std::array<Word, N>> = {}; // Kind::word is 0

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

/// A table of any record, as another one includes it.
struct TableView {
  std::string_view text;
  std::span<const Step> step;
};

/// The lines of a record, made by `lines`: the literals of all texts in one piece, so that the end of a line and the
/// beginning of the next one are copied together, and the numbers between them.
template <class R> struct Table {
  using Record = R;
  static constexpr std::size_t WORDS = sizeof(Record) / sizeof(Word);
  static constexpr std::size_t TEXT_MAX = 256 + 64 * WORDS;

  char text[TEXT_MAX] = {};
  Step step[WORDS] = {};
  Steps now;   ///< what `putRecord` prints
  Steps later; ///< what `putLater` prints

  constexpr TableView view() const {
    if (later.end != now.end)
      throw "a table with lines that print later cannot be part of another one";
    return {{text, now.last_begin + now.last_length}, {step, now.end}};
  }
};

template <const auto &TABLE> using RecordOf = typename std::remove_cvref_t<decltype(TABLE)>::Record;

/// Up to four texts that follow each other. A "%d" after a bracket is the position of an item, which is known when the
/// table is compiled.
using Texts = std::array<std::string_view, 4>;

/// How a member of a record prints, where `{text, &Record::member}` does not say it.
template <class Member, class Holder> struct MemberLines {
  Texts texts;
  Member Holder::*member;
  bool is_later = false;
};

/// Lines that print further down, by `putLater`.
template <class Member, class Holder> constexpr auto later(MemberLines<Member, Holder> lines) {
  lines.is_later = true;
  return lines;
}

/// A member that prints nothing.
template <class Member, class Holder> constexpr MemberLines<Member, Holder> unprinted(Member Holder::*member) {
  return {{}, member};
}

/// A member that is a record, or an array of records, with a table of its own.
template <class Member, class Holder> struct NestedLines {
  const char *heading;
  TableView table;
  Member Holder::*member;
  std::size_t count;
};

/// @param heading stands before each record; "%d" in it is its position.
template <class Record, class Holder>
constexpr NestedLines<Record, Holder> nested(const char *heading, const Table<Record> &table, Record Holder::*member) {
  return {heading, table.view(), member, 1};
}
template <class Record, std::size_t N, class Holder>
constexpr NestedLines<std::array<Record, N>, Holder> nested(const char *heading, const Table<Record> &table,
                                                            std::array<Record, N> Holder::*member) {
  static_assert(N <= 10, "a position is one digit");
  return {heading, table.view(), member, N};
}

/// @return at which word of a record a member begins.
template <class Record, class Member, class Holder> constexpr std::size_t wordOf(Member Holder::*member) {
  std::array<Word, sizeof(Member) / sizeof(Word)> marks{};
  marks[0] = 1;
  Record record{};
  record.*member = std::bit_cast<Member>(marks);
  const auto words = std::bit_cast<std::array<Word, sizeof(Record) / sizeof(Word)>>(record);
  std::size_t word = 0;
  while (words[word] == 0)
    ++word;
  return word;
}

/// One row of the table of a record.
template <class Record> struct Row {
  std::size_t first; ///< word of the record
  std::size_t words;
  Texts texts = {};              ///< of a member that is no record
  std::span<const Kind> kinds{}; ///< of its words; none where it does not print
  bool is_later = false;
  TableView table{}; ///< of a member or base that is a record
  const char *heading = "";
  std::size_t count = 0; ///< of records

  /// A member by one text.
  constexpr Row(const char *text, Word Record::*member) : Row({text}, KINDS<Word>, wordOf<Record>(member)) {}
  constexpr Row(const char *text, Index Record::*member) : Row({text}, KINDS<Index>, wordOf<Record>(member)) {}
  constexpr Row(const char *text, float Record::*member) : Row({text}, KINDS<float>, wordOf<Record>(member)) {}
  constexpr Row(const char *text, Xyz Record::*member) : Row({text}, KINDS<Xyz>, wordOf<Record>(member)) {}

  template <class Member, class Holder>
  constexpr Row(const MemberLines<Member, Holder> &lines)
      : Row(lines.texts, KINDS<Member>, wordOf<Record>(lines.member)) {
    static_assert(!KINDS<Member>.empty(), "a member of this type needs a table of its own");
    is_later = lines.is_later;
    if (texts[0].empty())
      kinds = {};
  }

  template <class Member, class Holder>
  constexpr Row(const NestedLines<Member, Holder> &lines)
      : first(wordOf<Record>(lines.member)), words(sizeof(Member) / sizeof(Word)), table(lines.table),
        heading(lines.heading), count(lines.count) {}

  /// The base of the record.
  template <class Base>
  requires std::derived_from<Record, Base>
  constexpr Row(const Table<Base> &base) : first(0), words(Table<Base>::WORDS), table(base.view()), count(1) {}

  constexpr Row(const Texts &all, std::span<const Kind> of_words, std::size_t word)
      : first(word), words(of_words.size()), texts(all), kinds(of_words) {}
};

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

  constexpr void addTable(const TableView &inner, std::size_t word) {
    std::size_t copied = 0;
    for (const Step &step : inner.step) {
      for (; copied < step.begin + step.length; ++copied)
        addCharacter(inner.text[copied]);
      addNumber(step.conversion, word + step.word);
    }
    for (; copied < inner.text.size(); ++copied)
      addCharacter(inner.text[copied]);
  }

  constexpr void addRow(const Row<Record> &row) {
    std::span<const Kind> kinds = row.kinds;
    for (const std::string_view text : row.texts)
      kinds = addText(text, kinds, row.first + row.kinds.size() - kinds.size(), 0);
    if (!kinds.empty())
      throw "a text has one conversion for each word of its member";
    for (std::size_t position = 0; position < row.count; ++position) {
      addText(row.heading, {}, 0, position);
      addTable(row.table, row.first + row.words / row.count * position);
    }
  }

  /// Adds the rows that print now, or those that print later.
  constexpr Steps addRows(std::span<const Row<Record>> rows, bool is_later) {
    const std::size_t first = steps;
    for (const Row<Record> &row : rows)
      if (row.is_later == is_later)
        addRow(row);
    const Steps added = {first, steps, literal, length - literal};
    literal = length;
    return added;
  }
};

/// Throws, which is a compile error here, unless the rows cover the words of their record one after the other.
template <class Record> constexpr void checkOrder(std::span<const Row<Record>> rows) {
  std::array<int, Table<Record>::WORDS> times{};
  std::size_t next = 0;
  bool is_ordered = true;
  for (const Row<Record> &row : rows) {
    is_ordered = is_ordered && row.first == next;
    next = row.first + row.words;
    for (std::size_t word = row.first; word < next; ++word)
      ++times[word];
  }
  for (const int shown : times)
    if (shown > 1)
      throw "a member stands twice";
  for (const int shown : times)
    if (shown == 0)
      throw "a member of the record is missing";
  if (!is_ordered)
    throw "the members are not in the order of the record";
}

/// Makes the table of a record.
template <class Record, std::size_t N> consteval Table<Record> lines(const Row<Record> (&rows)[N]) {
  checkOrder<Record>(rows);
  TableMaker<Record> maker;
  maker.table.now = maker.addRows(rows, false);
  maker.table.later = maker.addRows(rows, true);
  return maker.table;
}

} // namespace kova
