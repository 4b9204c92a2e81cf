/// Reporting findings: the one way in which the reader and the checks say something.
///
///     return report<"object-sum">(place, {size, sum}, number, size, ...);
///
/// An id that the catalogue lacks, or an argument that does not fit the row's format, does not compile. Nothing here
/// asks for memory, and no text is made before it is asked for.
#pragma once

#include "kova/list.h"
#include "reader/catalogue.h"

#include <algorithm>
#include <array>
#include <type_traits>
#include <variant>

namespace kova {

// --- Places ---------------------------------------------------------------------------------------------------------

/// What a finding is about.
struct Place {
  const char *list = nullptr;
  std::optional<Word> element = {};
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

/// @return the offset `bytes` after another, which may be none.
inline std::uint64_t offsetAfter(std::uint64_t offset, std::uint64_t bytes) {
  return offset == NO_OFFSET ? NO_OFFSET : offset + bytes;
}

/// @return the place `bytes` after another.
inline Place after(Place place, std::uint64_t bytes) {
  place.offset = offsetAfter(place.offset, bytes);
  return place;
}

/// @return the place of one word of the record at `place`: records begin with their words, as they are in the file.
template <class Record, class Member, class Holder>
Place wordOf(const Place &place, const Record &record, Member Holder::*member) {
  const auto *const begin = reinterpret_cast<const char *>(&record);
  return after(place, static_cast<std::uint64_t>(reinterpret_cast<const char *>(&(record.*member)) - begin));
}

/// The place of the header, which the version-2 sizes follow in the file as they do in the record.
inline constexpr Place HEADER = {"FileHeader", {}, 0};

/// @return the place of one word of the header or of its version-2 sizes; without an offset if the file lacks the word.
template <class Header, class Holder> Place headerWord(const Header &header, Word Holder::*member) {
  Place place = wordOf(HEADER, header, member);
  if (place.offset + sizeof(Word) > header.held + vanExtBlk(header.ext_blk).size_bytes())
    place.offset = NO_OFFSET;
  return place;
}

/// Two numbers that were compared, if there are two.
struct Compared {
  std::optional<Word> found = {}; ///< in the file
  std::optional<Word> expected = {};
};

// --- Arguments of messages ------------------------------------------------------------------------------------------

/// A text with an element's number in it: "%s[%d]%s". Without a number it is the name alone.
struct Label {
  const char *name;
  std::optional<Word> number = {};
  const char *what = "";

  constexpr Label(const char *only) : name(only) {}
  constexpr Label(const char *element, Word element_number, const char *about)
      : name(element), number(element_number), what(about) {}
};

/// Terms of a sum, any number of them, each of some columns: for a part of a format in braces.
struct AnyTerms {
  const void *records;
  std::size_t count;
  Word (*word)(const void *records, std::size_t term, int column);
};
template <int COUNT> struct Terms : AnyTerms { static constexpr int COLUMNS = COUNT; };

/// One column: the words themselves.
inline Terms<1> termsOfWords(std::span<const Word> words) {
  return {{words.data(), words.size(),
           [](const void *records, std::size_t term, int) { return static_cast<const Word *>(records)[term]; }}};
}

/// Refers to labels and terms, which live as long as the call that reports.
using Argument = std::variant<Word, const char *, const Label *, const AnyTerms *>;

// --- Formats --------------------------------------------------------------------------------------------------------

/// @return the part that a format begins with: characters that stand for themselves, a conversion up to its letter, or
/// a part in braces. Empty at the end.
constexpr std::string_view firstPiece(std::string_view format) {
  if (format.empty())
    return format;
  if (format[0] == '%')
    return format.substr(0, format.find_first_of("sdx") + 1);
  if (format[0] == '{')
    return format.substr(0, format.find('}') + 1);
  return format.substr(0, format.find_first_of("%{"));
}

/// @return the number of conversions in a part of a format.
constexpr int conversionsIn(std::string_view part) {
  return static_cast<int>(std::count(part.begin(), part.end(), '%'));
}

/// What an argument's type is for a format.
struct ArgumentType {
  char letter = '?'; ///< d: signed number, x: word, s: text, t: terms
  int columns = 0;
};

template <class Type> consteval ArgumentType argumentType() {
  using Plain = std::remove_cvref_t<Type>;
  if (std::is_same_v<Plain, Word>)
    return {'x'};
  if (std::is_same_v<Plain, Index>)
    return {'d'};
  if (std::is_same_v<Plain, Label> || std::is_convertible_v<const Plain &, const char *>)
    return {'s'};
  if constexpr (requires { Plain::COLUMNS; })
    return {'t', Plain::COLUMNS};
  return {};
}

/// The conversions that messages use. A word is shown as a signed decimal or in hexadecimal.
constexpr bool pieceFits(std::string_view piece, ArgumentType type) {
  if (piece[0] == '{')
    return type.letter == 't' && type.columns == conversionsIn(piece);
  if (piece == "%d")
    return type.letter == 'd' || type.letter == 'x';
  if (piece == "%0#10x" || piece == "%8x")
    return type.letter == 'x';
  return (piece == "%s" || piece == "%-17s") && type.letter == 's';
}

/// @return whether a format has one conversion or part in braces for each argument, in order, and each fits.
template <class... Arguments> consteval bool formatFits(std::string_view format) {
  constexpr std::array<ArgumentType, sizeof...(Arguments)> TYPES = {argumentType<Arguments>()...};
  std::size_t used = 0;
  for (std::string_view piece = firstPiece(format); !piece.empty(); piece = firstPiece(format)) {
    if (piece[0] == '%' || piece[0] == '{')
      if (used == TYPES.size() || !pieceFits(piece, TYPES[used++]))
        return false;
    format.remove_prefix(piece.size());
  }
  return used == TYPES.size();
}

// --- Reporting ------------------------------------------------------------------------------------------------------

struct FindingText {
  const char *format;
  std::span<const Argument> arguments;
};

/// Gives a finding to the thread's innermost receiver, or prints it. @return 0, the result of whoever found it.
int deliver(const FindingRow &row, const Place &place, const Compared &compared, std::span<const Argument> arguments);

/// An id as a template argument.
template <std::size_t SIZE> struct FindingId {
  char text[SIZE];

  consteval FindingId(const char (&id)[SIZE]) { std::copy_n(id, SIZE, text); }
};

constexpr Argument argumentOf(Word word) { return word; }
constexpr Argument argumentOf(Index number) { return static_cast<Word>(number); }
constexpr Argument argumentOf(const char *text) { return text; }
constexpr Argument argumentOf(const Label &label) { return &label; }
constexpr Argument argumentOf(const AnyTerms &terms) { return &terms; }

/// Reports the finding of the row called `ID`; its text is made of `arguments`. @return 0.
template <FindingId ID, class... Arguments>
[[gnu::noinline, gnu::cold]] int report(const Place &place, const Compared &compared, const Arguments &...arguments) {
  constexpr const FindingRow &ROW = findingRow(ID.text);
  static_assert(formatFits<Arguments...>(ROW.format), "the arguments do not fit the format");
  const std::array<Argument, sizeof...(Arguments)> list = {argumentOf(arguments)...};
  return deliver(ROW, place, compared, list);
}

/// Prints "---- checking %s ----\n", unless the thread has a receiver.
void checkHeading(const char *name);

} // namespace kova
