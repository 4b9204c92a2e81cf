/// The lines that large files mostly consist of - tuples of floats, triangles, texels - many numbers at a time, on
/// processors that have the vectors for it. The text is that of number.h to the byte.
#pragma once

#include "kova/geometry.h"
#include "textdump/format.h"

#include <span>

namespace kova {

inline constexpr std::size_t FLOAT_BYTES = 12; ///< of "%#12g"
inline constexpr std::size_t HEX_BYTES = 10;   ///< of "%0#10x"

/// The lines of an array of tuples, "opener(N) value value value end": what their format text has between its numbers,
/// which are a "%d", then "%#12g" with the same blanks between them.
struct TupleLines {
  std::array<char, 16> opener{};
  std::array<char, 4> after{}; ///< the number
  std::array<char, 16> end{};
  std::size_t opener_length = 0;
  std::size_t after_length = 0;
  std::size_t end_length = 0;
  std::size_t width = 0; ///< floats in a tuple
  std::size_t step = 0;  ///< bytes from one float to the next
};

/// Whether a format text is the line of a tuple.
consteval bool isTupleLine(std::string_view format) {
  const Pieces pieces = parseFormat(format);
  for (std::size_t i = 0; i + 1 < pieces.count; ++i)
    if (pieces.piece[i].conversion != (i == 0 ? Conversion::decimal : Conversion::real12))
      return false;
  return pieces.count >= 4;
}

/// Takes the line of a tuple apart. Throws, which is a compile error here, where it is of no form that is known.
consteval TupleLines tupleLines(std::string_view format) {
  const Pieces pieces = parseFormat(format);
  TupleLines lines;
  lines.width = pieces.count - 2;
  const auto copy = [&](std::size_t piece, auto &to) {
    if (pieces.piece[piece].length > to.size())
      throw "a literal of the line is too long";
    std::copy_n(format.begin() + pieces.piece[piece].begin, pieces.piece[piece].length, to.begin());
    return pieces.piece[piece].length;
  };
  lines.opener_length = copy(0, lines.opener);
  lines.after_length = copy(1, lines.after);
  lines.end_length = copy(pieces.count - 1, lines.end);
  for (std::size_t i = 2; i < pieces.count - 1; ++i) {
    std::array<char, 4> between = {' ', ' ', ' ', ' '};
    lines.step = FLOAT_BYTES + copy(i, between);
    if (between != std::array{' ', ' ', ' ', ' '} || pieces.piece[i].length != pieces.piece[2].length)
      throw "there are the same blanks between all floats of a tuple";
  }
  return lines;
}

// What one call writes at most. Many enough that a call costs nothing, few enough for the first cache.
inline constexpr std::size_t TUPLES_AT_ONCE = 100;
inline constexpr std::size_t TRIANGLES_AT_ONCE = 16;
inline constexpr std::size_t TEXEL_ROWS_AT_ONCE = 256;

/// The room that they need for it, with what they overwrite behind the text.
inline constexpr std::size_t TUPLES_ROOM = TUPLES_AT_ONCE * 128;
inline constexpr std::size_t TRIANGLES_ROOM = TRIANGLES_AT_ONCE * 768;
inline constexpr std::size_t TEXELS_TO_A_ROW = 12;
inline constexpr std::size_t TEXEL_ROW_BYTES = 1 + 5 * TEXELS_TO_A_ROW;
inline constexpr std::size_t TEXEL_ROWS_ROOM = TEXEL_ROWS_AT_ONCE * TEXEL_ROW_BYTES + 64;

namespace digits {
struct Converters;
}

/// What one kind of processor can do.
struct Batch {
  const char *name;
  const digits::Converters &converters;
};

/// @return those of this processor, the fastest first; none where numbers are written one at a time.
std::span<const Batch> batches();

/// @return the fastest; null where there is none.
inline const Batch *fastestBatch() { return batches().data(); }

// Each writes its text at `at` and returns where it ends.

/// Writes `count` tuples, numbered from `first`, which is a multiple of 100. The numbers are below 2^31.
char *putTuples(const Batch &batch, char *at, const TupleLines &lines, const float *values, std::size_t count,
                std::size_t first);

/// Writes the first of these triangles, up to one that has blocks, numbered from `first`, each with its heading and the
/// empty line after it. @return how many.
std::size_t putTriangles(const Batch &batch, char *&at, std::span<const Tri> triangles, std::size_t first);

/// Writes rows of twelve texels, a line end before each. Four bytes after the last row are read, too.
char *putTexels(const Batch &batch, char *at, const unsigned char *texels, std::size_t rows);

} // namespace kova
