/// Format texts: what a line of the dump looks like.
///
/// A format text is written exactly as it prints; it is split at compile time into literals and
/// conversions. A conversion that the format does not have does not compile.
#pragma once

#include "format/line.h"
#include "kova/words.h"

#include <array>
#include <string_view>

namespace kova {

/// The conversions that the format uses.
enum class Conversion : std::uint8_t {
  none,
  decimal, ///< %d
  hex,     ///< %0#10x
  real,    ///< %#g
  real12,  ///< %#12g
  byte     ///< %0#4x with the blank after it
};

struct Spelling {
  std::string_view text;
  Conversion conversion;
};
inline constexpr std::array<Spelling, 5> SPELLINGS = {{
    {"%d", Conversion::decimal},
    {"%0#10x", Conversion::hex},
    {"%#g", Conversion::real},
    {"%#12g", Conversion::real12},
    {"%0#4x ", Conversion::byte},
}};

/// @return the conversion that a text begins with. Throws, which is a compile error here, where it is not one of the
/// format's.
constexpr const Spelling &spellingAt(std::string_view text) {
  for (const Spelling &spelling : SPELLINGS)
    if (text.starts_with(spelling.text))
      return spelling;
  throw "a conversion that the dump does not know";
}

/// @return how a conversion is spelled.
constexpr std::string_view spellingOf(Conversion conversion) {
  for (const Spelling &spelling : SPELLINGS)
    if (spelling.conversion == conversion)
      return spelling.text;
  return {};
}

/// One literal of a format text and the conversion that follows it; the last piece of a text has none.
struct Piece {
  std::size_t begin = 0;
  std::size_t length = 0;
  Conversion conversion = Conversion::none;
};

inline constexpr std::size_t PIECES_MAX = 8;

struct Pieces {
  std::array<Piece, PIECES_MAX> piece{};
  std::size_t count = 0;
};

/// Splits a format text.
constexpr Pieces parseFormat(std::string_view text) {
  Pieces pieces;
  std::size_t at = 0;
  for (;;) {
    Piece &piece = pieces.piece.at(pieces.count++);
    piece.begin = at;
    while (at < text.size() && text[at] != '%')
      ++at;
    piece.length = at - piece.begin;
    if (at == text.size())
      return pieces;
    const Spelling &spelling = spellingAt(text.substr(at));
    piece.conversion = spelling.conversion;
    at += spelling.text.size();
  }
}

} // namespace kova
