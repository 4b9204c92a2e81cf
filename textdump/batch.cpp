/// The texts that are made of numbers converted many at a time: for all x86 processors with AVX2 or more.
#include "textdump/batch.h"

#ifdef __x86_64__

#include "format/geometry.h"
#include "reader/processor.h"
#include "textdump/avx2.h"
#include "textdump/digits.h"
#include "textdump/number.h"
#include "textdump/table.h"

#include <utility>

namespace kova {

namespace {

using digits::DecimalBlock;
using digits::Digits;
using digits::FloatBlock;
using digits::Shape;

constexpr std::size_t MOST_DIGITS = 12; ///< that a number has, with its sign

/// @return `count`, up to a multiple of `UNIT`.
template <std::size_t UNIT> constexpr std::size_t inWhole(std::size_t count) {
  return (count + UNIT - 1) / UNIT * UNIT;
}

// --- Tuples of floats -----------------------------------------------------------------------------------------------

/// What the lines of ten tuples and more begin with: the number of the first one, of which the last two digits are
/// counted up.
struct Head {
  std::array<char, 16 + MOST_DIGITS + NUMBER_SLACK> text;
  std::size_t last; ///< the place of the last digit
  std::size_t length;
};

Head headOf(const TupleLines &lines, std::size_t number) {
  Head head;
  std::copy(lines.opener.begin(), lines.opener.end(), head.text.begin());
  char *const end = putDec(&head.text[lines.opener_length], static_cast<std::int32_t>(number));
  std::copy(lines.after.begin(), lines.after.end(), end);
  head.last = static_cast<std::size_t>(end - head.text.data()) - 1;
  head.length = head.last + 1 + lines.after_length;
  return head;
}

/// From 32 - i on: a one in byte i.
constexpr std::array<std::uint8_t, 65> ONES = [] {
  std::array<std::uint8_t, 65> ones{};
  ones[32] = 1;
  return ones;
}();

[[gnu::target("avx2"), gnu::always_inline]] inline void putFloat(char *at, const Digits &digits) {
  const auto *const shape = reinterpret_cast<const char *>(&digits::SHAPES) + digits.shape;
  const __m128i six = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(&digits));
  const __m128i picked = _mm_shuffle_epi8(six, loadHalf(shape + offsetof(Shape, pick)));
  storeHalf(at, _mm_or_si128(picked, loadHalf(shape + offsetof(Shape, text))));
}

/// Writes up to a hundred tuples, whose numbers have the same length. The bytes of rare floats are left to `putRare`.
/// @param digits those of the first tuple
template <std::size_t WIDTH>
[[gnu::target("avx2")]] char *putPlain(char *at, const TupleLines &lines, const Head &head, std::size_t count,
                                       const Digits *digits) {
  const std::size_t head_length = head.length;
  const std::size_t step = lines.step;
  const std::size_t rest = FLOAT_BYTES + lines.end_length;
  const __m128i end = loadHalf(lines.end.data());
  const Vector one = load(&ONES[32 - head.last]);
  const Vector ten = load(&ONES[33 - head.last]);
  Vector tens = load(head.text.data());
  for (std::size_t done = 0; done < count; tens = _mm256_add_epi8(tens, ten)) {
    Vector opener = tens;
    for (const std::size_t stop = std::min(count, done + 10); done < stop; ++done, at += rest) {
      store(at, opener);
      opener = _mm256_add_epi8(opener, one);
      at += head_length;
      for (std::size_t column = 0; column < WIDTH; ++column)
        putFloat(at + column * step, *digits++);
      at += (WIDTH - 1) * step;
      storeHalf(at + FLOAT_BYTES, end);
    }
  }
  return at;
}

/// Writes the rare floats among `count` tuples. `at` is where their text begins.
template <std::size_t WIDTH>
void putRare(char *at, const TupleLines &lines, const Head &head, std::size_t count, const FloatBlock &floats,
             std::size_t first) {
  const std::size_t length = head.length + (WIDTH - 1) * lines.step + FLOAT_BYTES + lines.end_length;
  for (std::size_t i = 0; i < count * WIDTH; ++i)
    if (digits::isRare(floats.rare, first + i)) {
      std::array<char, FLOAT_BYTES + NUMBER_SLACK> text;
      putFloat12(text.data(), std::bit_cast<float>(floats.bits[first + i]));
      std::copy_n(text.begin(), FLOAT_BYTES, at + i / WIDTH * length + head.length + i % WIDTH * lines.step);
    }
}

template <std::size_t WIDTH>
char *putConverted(char *at, const TupleLines &lines, const FloatBlock &floats, std::size_t count, std::size_t first) {
  const bool any_rare = std::find_if(floats.rare.begin(), floats.rare.end(), std::identity()) != floats.rare.end();
  for (std::size_t done = 0; done < count;) {
    const std::size_t some = first + done == 0 ? std::min<std::size_t>(count, 10) : count - done;
    const Head head = headOf(lines, first + done);
    char *const begin = at;
    at = putPlain<WIDTH>(at, lines, head, some, &floats.digits[done * WIDTH]);
    if (any_rare) [[unlikely]]
      putRare<WIDTH>(begin, lines, head, some, floats, done * WIDTH);
    done += some;
  }
  return at;
}

} // namespace

char *putTuples(const Batch &batch, char *at, const TupleLines &lines, const float *values, std::size_t count,
                std::size_t first) {
  FloatBlock floats;
  const std::size_t numbers = count * lines.width;
  const std::size_t converted = inWhole<16>(numbers);
  std::memcpy(floats.bits.data(), values, numbers * sizeof(float));
  std::fill(&floats.bits[numbers], &floats.bits[converted], 0);
  batch.converters.floats(floats, converted);
  std::fill(&floats.rare[converted / 8], floats.rare.end(), 0);
  return lines.width == 2   ? putConverted<2>(at, lines, floats, count, first)
         : lines.width == 3 ? putConverted<3>(at, lines, floats, count, first)
                            : putConverted<4>(at, lines, floats, count, first);
}

namespace {

// --- Triangles ------------------------------------------------------------------------------------------------------

/// The numbers of a triangle: that of its heading, then the words of its record.
constexpr std::size_t TRI_NUMBERS = 1 + LINES<TriHead>.WORDS;
constexpr std::size_t TRI_LANES = inWhole<8>(TRI_NUMBERS);
constexpr std::size_t TAG_LANE = 1;
static_assert(TRI_LANES * TRIANGLES_AT_ONCE <= digits::NUMBERS_MOST);

/// What stands after each number of a triangle; after the last one also the empty line and the next heading.
struct TriText {
  struct Literal {
    alignas(32) std::array<char, sizeof(Vector)> text{};
    std::size_t length = 0;
    std::size_t at = 0; ///< the length of the literals before it
  };
  std::array<Literal, TRI_NUMBERS> after{};
  std::size_t length = 0; ///< of all of them
};
constexpr std::string_view TRI_HEADING = "Tri(";

constexpr TriText TRI_TEXT = [] {
  TriText tri;
  for (std::size_t i = 0; i < TRI_NUMBERS; ++i) {
    const Steps &steps = LINES<TriHead>.now;
    const std::size_t begin = i < steps.end ? LINES<TriHead>.step[i].begin : steps.last_begin;
    const std::size_t length = i < steps.end ? LINES<TriHead>.step[i].length : steps.last_length;
    TriText::Literal &literal = tri.after[i];
    literal.at = tri.length;
    const auto add = [&](std::string_view text) {
      std::copy(text.begin(), text.end(), literal.text.begin() + static_cast<std::ptrdiff_t>(literal.length));
      literal.length += text.size();
    };
    add(i == 0 ? ")\n" : "");
    add(std::string_view(LINES<TriHead>.text + begin, length));
    add(i < steps.end ? "" : "\n");
    add(i < steps.end ? "" : TRI_HEADING);
    tri.length += literal.length;
  }
  return tri;
}();
static_assert(TRI_TEXT.length + TRI_NUMBERS * MOST_DIGITS + NUMBER_SLACK + 2 * sizeof(Vector) <=
              TRIANGLES_ROOM / TRIANGLES_AT_ONCE);
static_assert(LINES<TriHead>.step[TAG_LANE - 1].conversion == Conversion::hex);

/// A triangle among converted numbers.
struct TriNumbers {
  const std::array<char, digits::DECIMAL_BYTES> *text;
  const std::uint32_t *length;
  const char *tag;
};

/// Writes number `I` and what stands after it. @return the length of the numbers up to it.
///
/// The places of all pieces depend on lengths only, which are known long before: so the processor knows early that what
/// it loads next is not what is still on its way to memory.
template <std::size_t I>
[[gnu::target("avx2"), gnu::always_inline]] inline std::size_t putPiece(char *at, std::size_t length,
                                                                        const TriNumbers &numbers) {
  constexpr const TriText::Literal &AFTER = TRI_TEXT.after[I];
  char *const number = at + AFTER.at + length;
  if constexpr (I == TAG_LANE) {
    std::memcpy(number, numbers.tag, 16);
    length += HEX_BYTES;
  } else {
    std::memcpy(number, numbers.text[I].data(), digits::DECIMAL_BYTES);
    length += numbers.length[I];
  }
  store(at + AFTER.at + length, load(AFTER.text.data()));
  return length;
}

template <std::size_t... I>
[[gnu::target("avx2"), gnu::always_inline]] inline char *putTriangle(char *at, const TriNumbers &numbers,
                                                                     std::index_sequence<I...>) {
  std::size_t length = 0;
  ((length = putPiece<I>(at, length, numbers)), ...);
  return at + TRI_TEXT.length + length;
}

/// Writes a triangle with a rare number.
char *putRareTriangle(char *at, const std::uint32_t *numbers) {
  for (std::size_t i = 0; i < TRI_NUMBERS; ++i) {
    const TriText::Literal &after = TRI_TEXT.after[i];
    at = i == TAG_LANE ? putHex(at, numbers[i]) : putDec(at, static_cast<std::int32_t>(numbers[i]));
    at = std::copy_n(after.text.begin(), after.length, at);
  }
  return at;
}

/// @return how many of the triangles there are before the first one with blocks.
std::size_t takeTriangles(DecimalBlock &decimals, std::span<const Tri> triangles, std::size_t first) {
  std::size_t count = 0;
  for (; count < triangles.size(); ++count) {
    const Tri &tri = triangles[count];
    if (tri.van_ext_blk_size != 0 || tri.usr_ext_blk_size != 0)
      break;
    std::uint32_t *const numbers = &decimals.bits[count * TRI_LANES];
    numbers[0] = static_cast<std::uint32_t>(first + count);
    std::memcpy(&numbers[1], &tri, sizeof(TriHead));
    std::fill(&numbers[TRI_NUMBERS], &numbers[TRI_LANES], 0);
  }
  std::fill(&decimals.bits[count * TRI_LANES], &decimals.bits[inWhole<16>(count * TRI_LANES)], 0);
  return count;
}

/// @return whether a number of a triangle is rare; its tag may be.
bool isRare(const DecimalBlock &decimals, std::size_t lane) {
  unsigned rare = 0;
  for (std::size_t i = 0; i < TRI_LANES; i += 8)
    rare |= decimals.rare[(lane + i) / 8] & (i == 0 ? ~(1U << TAG_LANE) : ~0U);
  return rare != 0;
}

[[gnu::target("avx2")]] char *putConverted(char *at, const DecimalBlock &decimals, std::size_t lanes) {
  std::array<char, HEX_BYTES + NUMBER_SLACK> tag;
  Word tag_word = ~decimals.bits[TAG_LANE];
  for (std::size_t i = 0; i < lanes; i += TRI_LANES) {
    if (decimals.bits[i + TAG_LANE] != tag_word) [[unlikely]]
      putHex(tag.data(), tag_word = decimals.bits[i + TAG_LANE]);
    at = isRare(decimals, i) ? putRareTriangle(at, &decimals.bits[i])
                             : putTriangle(at, {&decimals.text[i], &decimals.length[i], tag.data()},
                                           std::make_index_sequence<TRI_NUMBERS>());
  }
  return at;
}

} // namespace

std::size_t putTriangles(const Batch &batch, char *&at, std::span<const Tri> triangles, std::size_t first) {
  DecimalBlock decimals;
  const std::size_t count = takeTriangles(decimals, triangles, first);
  batch.converters.decimals(decimals, inWhole<16>(count * TRI_LANES));
  at = std::copy(TRI_HEADING.begin(), TRI_HEADING.end(), at);
  at = putConverted(at, decimals, count * TRI_LANES) - TRI_HEADING.size();
  return count;
}

// --- Texels ---------------------------------------------------------------------------------------------------------

char *putTexels(const Batch &batch, char *at, const unsigned char *texels, std::size_t rows) {
  batch.converters.texels(at, texels, rows);
  return at + rows * TEXEL_ROW_BYTES;
}

// --- Batches --------------------------------------------------------------------------------------------------------

namespace {

constexpr std::array<Batch, 2> BATCHES = {{{"AVX-512", digits::AVX512}, {"AVX2", digits::AVX2}}};

/// @return how many of them this processor cannot run.
std::size_t beyondThisProcessor() {
  if (!hasAvx2())
    return 2;
  // Processors that have AVX-512 without VBMI are slower while they work on vectors of 64 bytes.
  return hasAvx512() && hasAvx512Vbmi() ? 0 : 1;
}

} // namespace

std::span<const Batch> batches() {
  static const std::size_t beyond = beyondThisProcessor();
  return beyond == BATCHES.size() ? std::span<const Batch>() : std::span(BATCHES).subspan(beyond);
}

} // namespace kova

#else

namespace kova {

std::span<const Batch> batches() { return {}; }

// Without a batch nothing calls these.
char *putTuples(const Batch &, char *at, const TupleLines &, const float *, std::size_t, std::size_t) { return at; }
std::size_t putTriangles(const Batch &, char *&, std::span<const Tri>, std::size_t) { return 0; }
char *putTexels(const Batch &, char *at, const unsigned char *, std::size_t) { return at; }

} // namespace kova

#endif
