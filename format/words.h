/// Tables of words: what the words of a record are called, how they print, and what they mean.
///
///     template <> inline constexpr auto WORDS<EffectorHead> = words<EffectorHead>({
///         WORDS<ElementHead>, // the record's base
///         {"effector_type     %0#10x\n", &EffectorHead::effector_type},
///         {"obj_num           %d\n", &EffectorHead::obj_num, COUNT},
///         {"anim_index        %d\n", &EffectorHead::anim_index, link(To::anim)},
///         ...
///     });
///
/// A row has the text of the word in the dump, the member, and its meaning. Its name is what the text begins with. A
/// table covers its record from the first word to the last: it does not compile where a member is missing, stands twice
/// or out of its order. (Whether the conversions of a text fit is seen when the dump is compiled.)
///
/// `wordAt` tells about a word by its position in the record, `wordOf` gives the position of a member.
#pragma once

#include "format/roles.h"
#include "kova/list.h"

#include <array>
#include <bit>
#include <concepts>
#include <string_view>

namespace kova {

// --- The words of a member ------------------------------------------------------------------------------------------

/// What a word holds, which decides the conversions that show it.
enum class Kind : std::uint8_t { word, index, real };

/// The words of a member that one text can show. Other members have no words here.
template <class Member> inline constexpr std::array<Kind, 0> KINDS = {};
template <> inline constexpr std::array<Kind, 1> KINDS<Word> = {Kind::word};
template <> inline constexpr std::array<Kind, 1> KINDS<Index> = {Kind::index};
template <> inline constexpr std::array<Kind, 1> KINDS<float> = {Kind::real};
template <> inline constexpr std::array<Kind, 2> KINDS<St> = {Kind::real, Kind::real};
template <> inline constexpr std::array<Kind, 3> KINDS<Xyz> = {Kind::real, Kind::real, Kind::real};
template <> inline constexpr std::array<Kind, 4> KINDS<Rgba> = {Kind::real, Kind::real, Kind::real, Kind::real};
template <> inline constexpr std::array<Kind, 2> KINDS<NodeIndex> = {Kind::word, Kind::index};
template <> inline constexpr std::array<Kind, 2> KINDS<External> = {Kind::index, Kind::index};
template <std::size_t N> inline constexpr std::array<Kind, N> KINDS<std::array<Word, N>> = {}; // Kind::word is 0

/// The names of the words of a member that has several of them; none where they have only numbers.
template <class Member> inline constexpr std::array<const char *, 0> PARTS = {};
template <> inline constexpr std::array<const char *, 2> PARTS<St> = {"s", "t"};
template <> inline constexpr std::array<const char *, 3> PARTS<Xyz> = {"x", "y", "z"};
template <> inline constexpr std::array<const char *, 4> PARTS<Rgba> = {"red", "green", "blue", "alpha"};
template <> inline constexpr std::array<const char *, 2> PARTS<NodeIndex> = {"kind", "index"};
template <> inline constexpr std::array<const char *, 2> PARTS<External> = {"file_name", "name"};

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

// --- Texts ----------------------------------------------------------------------------------------------------------

/// Up to four texts that follow each other. A "%d" after a bracket is the position of an item, which is known when the
/// table is compiled.
using Texts = std::array<const char *, 4>;

/// How a member of a record prints, where `{text, &Record::member}` does not say it.
template <class Member, class Holder> struct MemberText {
  Texts texts;
  Member Holder::*member;
  Meaning meaning = {};
  bool is_later = false;
};

/// Lines that print further down, behind what follows the record's words.
template <class Member, class Holder> constexpr auto later(MemberText<Member, Holder> text) {
  text.is_later = true;
  return text;
}

/// A member that prints nothing, so its name is given.
template <class Member, class Holder>
constexpr MemberText<Member, Holder> unprinted(const char *name, Member Holder::*member, Meaning meaning = {}) {
  return {{}, member, named(name, meaning)};
}

/// The texts of the members that are several words, behind their labels.
inline constexpr char EXTERNAL_FILE_TEXT[] = " file name[%d]   %d\n";
inline constexpr char EXTERNAL_NAME_TEXT[] = " name[%d]        %d\n";
inline constexpr char NODE_KIND_TEXT[] = " kind[%d]   %0#10x\n";
inline constexpr char NODE_INDEX_TEXT[] = " index[%d]  %d\n";
inline constexpr char RGBA_TEXT[] = " red  %#g green %#g blue %#g alpha %#g\n";
inline constexpr char XYZ_TEXT[] = "  %#g %#g %#g ; x,y,z\n";

template <class Holder> constexpr MemberText<External, Holder> external(const char *label, External Holder::*member) {
  return {{label, EXTERNAL_FILE_TEXT, label, EXTERNAL_NAME_TEXT}, member, link(To::external_name)};
}
template <class Holder>
constexpr MemberText<NodeIndex, Holder> node(const char *label, NodeIndex Holder::*member, To to = To::any) {
  return {{label, NODE_KIND_TEXT, label, NODE_INDEX_TEXT}, member, link(to)};
}
template <class Holder> constexpr MemberText<Rgba, Holder> rgba(const char *label, Rgba Holder::*member) {
  return {{label, RGBA_TEXT}, member};
}
template <class Holder> constexpr MemberText<Xyz, Holder> xyz(const char *label, Xyz Holder::*member) {
  return {{label, XYZ_TEXT}, member};
}

/// A raw-word block: its label between these two, then its words, so many to a row, and a line end after each row.
inline constexpr char BLOCK_OPENER_TEXT[] = "[";
inline constexpr char BLOCK_LABEL_TEXT[] = "]\n";
inline constexpr char BLOCK_WORD_TEXT[] = "%0#10x  ";
inline constexpr char BLOCK_ROW_TEXT[] = "\n";
inline constexpr std::size_t BLOCK_WORDS_TO_A_ROW = 6;

/// The text of the words of a block, and a terminating zero.
template <std::size_t WORD_NUM>
inline constexpr auto BLOCK_WORDS_TEXT = [] {
  constexpr std::string_view WORD = BLOCK_WORD_TEXT;
  constexpr std::string_view ROW = BLOCK_ROW_TEXT;
  constexpr std::size_t ROWS = (WORD_NUM + BLOCK_WORDS_TO_A_ROW - 1) / BLOCK_WORDS_TO_A_ROW;
  std::array<char, WORD_NUM * WORD.size() + ROWS * ROW.size() + 1> text{};
  char *at = text.data();
  for (std::size_t word = 1; word <= WORD_NUM; ++word) {
    at = std::copy(WORD.begin(), WORD.end(), at);
    if (word % BLOCK_WORDS_TO_A_ROW == 0 || word == WORD_NUM)
      at = std::copy(ROW.begin(), ROW.end(), at);
  }
  return text;
}();

template <std::size_t N, class Holder>
constexpr MemberText<std::array<Word, N>, Holder> wordBlock(const char *label, std::array<Word, N> Holder::*member) {
  return {{BLOCK_OPENER_TEXT, label, BLOCK_LABEL_TEXT, BLOCK_WORDS_TEXT<N>.data()}, member, named(label)};
}

// --- Rows and tables ------------------------------------------------------------------------------------------------

/// A row of any table.
struct WordRow {
  std::size_t first = 0;                ///< word of the record
  std::size_t words = 0;                ///< how many the member has
  Texts texts = {};                     ///< of a member that is no record
  std::span<const Kind> kinds{};        ///< of its words
  std::span<const char *const> parts{}; ///< the names of its words, if they have such
  Meaning meaning = {};
  bool is_printed = true;
  bool is_later = false;
  std::span<const WordRow> inner{}; ///< the table of a member or base that is a record
  const char *heading = "";         ///< before each of these records; "%d" in it is its position
  std::size_t count = 0;            ///< of these records
};

/// The table of a record.
template <class R, std::size_t N> struct WordTable {
  using Record = R;
  static constexpr std::size_t WORD_NUM = sizeof(Record) / sizeof(Word);

  std::array<WordRow, N> row;

  constexpr operator std::span<const WordRow>() const { return row; }
};

/// The table of each type of record, which is given by a specialization beside the record's content.
template <class Record> inline constexpr auto WORDS = nullptr;

/// A member that is a record, or an array of records, with a table of its own.
template <class Member, class Holder> struct NestedWords {
  const char *heading;
  std::span<const WordRow> table;
  Member Holder::*member;
  std::size_t count;
};

template <class Record, class Holder>
constexpr NestedWords<Record, Holder> nested(const char *heading, Record Holder::*member) {
  return {heading, WORDS<Record>, member, 1};
}
template <class Record, std::size_t N, class Holder>
constexpr NestedWords<std::array<Record, N>, Holder> nested(const char *heading,
                                                            std::array<Record, N> Holder::*member) {
  static_assert(N <= 10, "a position is one digit");
  return {heading, WORDS<Record>, member, N};
}

/// One row of the table of a record, as it is written there.
template <class Record> struct Row : WordRow {
  /// A member by one text.
  constexpr Row(const char *text, Word Record::*member, Meaning meant = {})
      : Row({text}, KINDS<Word>, wordOf<Record>(member), meant) {}
  constexpr Row(const char *text, Index Record::*member, Meaning meant = {})
      : Row({text}, KINDS<Index>, wordOf<Record>(member), meant) {}
  constexpr Row(const char *text, float Record::*member) : Row({text}, KINDS<float>, wordOf<Record>(member), {}) {}
  constexpr Row(const char *text, Xyz Record::*member) : Row({text}, KINDS<Xyz>, wordOf<Record>(member), {}) {
    parts = PARTS<Xyz>;
  }

  template <class Member, class Holder>
  constexpr Row(const MemberText<Member, Holder> &text)
      : Row(text.texts, KINDS<Member>, wordOf<Record>(text.member), text.meaning) {
    static_assert(!KINDS<Member>.empty(), "a member of this type needs a table of its own");
    parts = PARTS<Member>;
    is_printed = texts[0] != nullptr;
    is_later = text.is_later;
  }

  template <class Member, class Holder> constexpr Row(const NestedWords<Member, Holder> &record) {
    first = wordOf<Record>(record.member);
    words = sizeof(Member) / sizeof(Word);
    inner = record.table;
    heading = record.heading;
    count = record.count;
  }

  /// The base of the record.
  template <class Base, std::size_t N>
  requires std::derived_from<Record, Base>
  constexpr Row(const WordTable<Base, N> &base) {
    words = WordTable<Base, N>::WORD_NUM;
    inner = base;
    count = 1;
  }

private:
  constexpr Row(const Texts &all, std::span<const Kind> of_words, std::size_t word, const Meaning &meant) {
    first = word;
    words = of_words.size();
    texts = all;
    kinds = of_words;
    meaning = meant;
  }
};

/// Throws, which is a compile error here, unless the rows cover the words of their record one after the other.
constexpr void checkOrder(std::span<const WordRow> rows, std::size_t words) {
  std::size_t next = 0;
  std::size_t shown = 0;
  bool is_ordered = true;
  for (const WordRow &row : rows) {
    is_ordered = is_ordered && row.first == next;
    next = row.first + row.words;
    shown += row.words;
    for (const WordRow &other : rows)
      if (&other != &row && other.first < next && row.first < other.first + other.words)
        throw "a member stands twice";
  }
  if (shown != words)
    throw "a member of the record is missing";
  if (!is_ordered)
    throw "the members are not in the order of the record";
}

/// Makes the table of a record.
template <class Record, std::size_t N> consteval WordTable<Record, N> words(const Row<Record> (&rows)[N]) {
  WordTable<Record, N> table;
  for (std::size_t i = 0; i < N; ++i)
    table.row[i] = rows[i];
  checkOrder(table.row, table.WORD_NUM);
  return table;
}

// --- Questions ------------------------------------------------------------------------------------------------------

/// The name of a word, with a terminating zero.
struct WordName {
  static constexpr std::size_t LENGTH_MAX = 47;

  char text[LENGTH_MAX + 1] = {};
  std::size_t length = 0;

  constexpr operator std::string_view() const { return {text, length}; }
  constexpr const char *c_str() const { return text; }
};

/// What is known of a word.
struct WordInfo {
  WordName name;
  std::string_view label; ///< what the name is made of
  Kind kind;
  Role role;
  To to;            ///< of a link
  std::size_t part; ///< which of the words of its member it is
  std::size_t parts;
};

/// @return what a text begins with, up to two blanks, a tab or a number, even one in brackets.
constexpr std::string_view labelInText(std::string_view text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    const std::string_view rest = text.substr(at);
    for (const char *const end : {"\t", "%", "=", "  ", " %", "[%", "(%"})
      if (rest.starts_with(end))
        return text.substr(0, at);
  }
  return text;
}

/// @return the name that a label makes: square brackets are left out, and blanks become underscores.
constexpr WordName nameOf(std::string_view label) {
  WordName name;
  for (const char character : label)
    if (character != '[' && character != ']')
      name.text[name.length++] = character == ' ' ? '_' : character;
  return name;
}
constexpr WordName nameInText(std::string_view text) { return nameOf(labelInText(text)); }

constexpr std::string_view labelOf(const WordRow &row) {
  return labelInText(row.meaning.name != nullptr ? row.meaning.name : row.texts[0]);
}
constexpr WordName nameOf(const WordRow &row) { return nameOf(labelOf(row)); }

/// @return what is known of the word at a position of a record. Of a reference to a node, the first word is no link.
constexpr WordInfo wordAt(std::span<const WordRow> rows, std::size_t word) {
  for (const WordRow &row : rows) {
    if (word < row.first || word >= row.first + row.words)
      continue;
    const std::size_t part = word - row.first;
    if (!row.inner.empty())
      return wordAt(row.inner, part % (row.words / row.count));
    const bool is_plain = row.meaning.role == Role::link && row.words > 1 && row.kinds[part] != Kind::index;
    return {nameOf(row),
            labelOf(row),
            row.kinds[part],
            is_plain ? Role::plain : row.meaning.role,
            is_plain ? To::nothing : row.meaning.to,
            part,
            row.words};
  }
  throw "the record has no such word";
}

/// What is known of all words of a record, in their order.
template <const auto &TABLE>
inline constexpr auto WORD_INFOS = [] {
  std::array<WordInfo, TABLE.WORD_NUM> infos{};
  for (std::size_t word = 0; word < infos.size(); ++word)
    infos[word] = wordAt(TABLE, word);
  return infos;
}();

/// @return the position of the first word with a role; WORD_NUM where there is none.
template <class Record, std::size_t N> constexpr std::size_t wordWith(const WordTable<Record, N> &table, Role role) {
  std::size_t word = 0;
  while (word < table.WORD_NUM && wordAt(table, word).role != role)
    ++word;
  return word;
}

} // namespace kova
