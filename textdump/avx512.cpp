/// Many numbers at a time with AVX-512, in vectors of 64 bytes: the steps of avx2.cpp, where they are explained.
#include "textdump/digits.h"

#ifdef __x86_64__

#ifndef __clang__
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized" // g++ 12 warns of its own header
#endif
#include <immintrin.h>

namespace kova::digits {

namespace {

using Vector = __m512i;

[[gnu::target("avx512bw,avx512cd"), gnu::always_inline]] inline Vector load(const void *from) {
  return _mm512_loadu_si512(from);
}
[[gnu::target("avx512bw,avx512cd"), gnu::always_inline]] inline Vector all(std::uint32_t lane) {
  return _mm512_set1_epi32(static_cast<int>(lane));
}
[[gnu::target("avx512bw,avx512cd"), gnu::always_inline]] inline Vector allHalves(short half) {
  return _mm512_set1_epi16(half);
}
[[gnu::target("avx512bw,avx512cd"), gnu::always_inline]] inline Vector lookUp(const Table &table, Vector index) {
  return _mm512_permutexvar_epi32(index, load(table.data()));
}

/// Puts pairs of lanes in the order that comes out right when lanes are interleaved within 16 bytes each.
[[gnu::target("avx512bw,avx512cd"), gnu::always_inline]] inline Vector loadToInterleave(const void *from) {
  return _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 4, 1, 5, 2, 6, 3, 7), load(from));
}

[[gnu::target("avx512bw,avx512cd"), gnu::always_inline]] inline void putRare(__mmask16 rare, std::uint8_t *to) {
  to[0] = static_cast<std::uint8_t>(rare);
  to[1] = static_cast<std::uint8_t>(rare >> 8);
}

// --- Floats to digits ------------------------------------------------------------------------------------------------

[[gnu::target("avx512bw,avx512cd"), gnu::always_inline]] inline Vector decadesOf(Vector magnitude) {
  const Vector above = _mm512_subs_epu16(magnitude, all(ESTIMATE_BEGIN << 16));
  const Vector scaled = _mm512_mulhi_epu16(above, all(ESTIMATE_FACTOR << 16));
  const Vector estimate = _mm512_srli_epi32(scaled, 16);
  const __mmask16 is_less = _mm512_cmpgt_epi32_mask(magnitude, lookUp(LAST_OF_DECADE, estimate));
  return _mm512_mask_add_epi32(estimate, is_less, estimate, all(1));
}

/// The product is exact, so this rounds once, as it says.
[[gnu::target("avx512bw,avx512cd"), gnu::always_inline]] inline __m512 scaled(Vector magnitude, Vector power) {
  const __m512d value = _mm512_castsi512_pd(_mm512_srli_epi64(magnitude, 32 - DOUBLE_SHIFT));
  return _mm512_castpd_ps(_mm512_fmadd_round_pd(value, _mm512_castsi512_pd(power), _mm512_set1_pd(0x1.8p52 + UNIT_BITS),
                                                _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC));
}

[[gnu::target("avx512bw,avx512cd"), gnu::always_inline]] inline __mmask16 scaleFloats(Vector bits, float *number,
                                                                                      std::uint32_t *shape) {
  const Vector zero = _mm512_setzero_si512();
  const Vector given = _mm512_and_si512(bits, all(0x7fffffff));
  const __mmask16 is_zero = _mm512_testn_epi32_mask(given, given);
  const __mmask16 is_plain =
      _mm512_cmplt_epu32_mask(_mm512_sub_epi32(given, all(PLAIN_BEGIN)), all(PLAIN_END - PLAIN_BEGIN));
  const Vector magnitude = _mm512_maskz_mov_epi32(is_plain, given);
  const Vector decade = decadesOf(magnitude);
  const Vector power = lookUp(POWER_OF_DECADE, decade);
  const __m512 low = scaled(_mm512_unpacklo_epi32(zero, magnitude), _mm512_unpacklo_epi32(zero, power));
  const __m512 high = scaled(_mm512_unpackhi_epi32(zero, magnitude), _mm512_unpackhi_epi32(zero, power));
  _mm512_storeu_ps(number, _mm512_shuffle_ps(low, high, 0x88));
  const Vector kind = _mm512_mask_mov_epi32(decade, is_zero, all(ZERO_SHAPE));
  const Vector sign = _mm512_srli_epi32(_mm512_xor_si512(bits, given), 31 - SHAPE_SHIFT - 4);
  _mm512_storeu_si512(shape, _mm512_or_si512(_mm512_slli_epi32(kind, SHAPE_SHIFT), sign));
  return static_cast<__mmask16>(~(is_plain | is_zero));
}

[[gnu::target("avx512bw,avx512cd"), gnu::always_inline]] inline void
splitFloats(const float *from, const std::uint32_t *shapes, Digits *to) {
  const Vector number = loadToInterleave(from);
  const Vector shape = loadToInterleave(shapes);
  const __m512 half_more = _mm512_sub_ps(_mm512_castsi512_ps(number), _mm512_set1_ps(UNIT - 0.5F));
  const Vector thousands = _mm512_cvttps_epi32(_mm512_mul_ps(half_more, _mm512_set1_ps(0.001F)));
  const Vector groups =
      _mm512_add_epi32(_mm512_sub_epi32(number, all(UNIT_BITS)), _mm512_mullo_epi32(thousands, all((1 << 16) - 1000)));
  const Vector ten = allHalves(10);
  const Vector hundredth = allHalves((1 << 16) / 100 + 1);
  const Vector tenth = allHalves((1 << 16) / 10 + 1);
  const Vector first = _mm512_mulhi_epu16(groups, hundredth);
  const Vector second = _mm512_mulhi_epu16(_mm512_mullo_epi16(groups, hundredth), ten);
  const Vector third = _mm512_mulhi_epu16(_mm512_mullo_epi16(groups, tenth), ten);
  const Vector firsts_and_seconds = _mm512_or_si512(first, _mm512_slli_epi16(second, 8));
  const Vector thirds_and_shape = _mm512_or_si512(_mm512_madd_epi16(third, all(1 << 24 | 1)), shape);
  _mm512_storeu_si512(to, _mm512_unpacklo_epi32(firsts_and_seconds, thirds_and_shape));
  _mm512_storeu_si512(to + 8, _mm512_unpackhi_epi32(firsts_and_seconds, thirds_and_shape));
}

[[gnu::target("avx512bw,avx512cd")]] void convertFloats(FloatBlock &floats, std::size_t count) {
  ScaledFloats scaled;
  for (std::size_t i = 0; i < count; i += 16)
    putRare(scaleFloats(load(&floats.bits[i]), &scaled.number[i], &scaled.shape[i]), &floats.rare[i / 8]);
  for (std::size_t i = 0; i < count; i += 16)
    splitFloats(&scaled.number[i], &scaled.shape[i], &floats.digits[i]);
}

// --- Integers to text -----------------------------------------------------------------------------------------------

/// By the bits of a number: the least length that it can have, and the last number that has it.
constexpr auto LENGTHS = [] {
  struct {
    std::array<std::uint32_t, 32> length{}, last{};
  } table;
  for (std::size_t bits = 0; bits < 32; ++bits) {
    std::uint64_t end = 10;
    table.length[bits] = 1;
    for (; end <= (std::uint64_t{1} << bits >> 1); end *= 10)
      ++table.length[bits];
    table.last[bits] = static_cast<std::uint32_t>(end - 1);
  }
  return table;
}();

[[gnu::target("avx512bw,avx512cd"), gnu::always_inline]] inline Vector
lookUpInTwo(const std::array<std::uint32_t, 32> &table, Vector index) {
  return _mm512_permutex2var_epi32(load(&table[0]), index, load(&table[16]));
}

[[gnu::target("avx512bw,avx512cd"), gnu::always_inline]] inline __mmask16
halveDecimals(Vector integer, std::uint32_t *length, HalvedDecimals &halved, std::size_t at) {
  const Vector magnitude = _mm512_abs_epi32(integer);
  const __mmask16 is_negative = _mm512_cmpgt_epi32_mask(_mm512_setzero_si512(), integer);
  const Vector factor = all(0xd1b71759);
  const Vector even = _mm512_srli_epi64(_mm512_mul_epu32(magnitude, factor), 45);
  const Vector odd = _mm512_srli_epi64(_mm512_mul_epu32(_mm512_srli_epi64(magnitude, 32), factor), 45 - 32);
  const Vector upper = _mm512_mask_blend_epi32(0xaaaa, even, odd);
  const Vector lower = _mm512_sub_epi32(magnitude, _mm512_madd_epi16(upper, all(10000)));
  _mm512_storeu_si512(&halved.halves[at], _mm512_add_epi32(upper, _mm512_slli_epi32(lower, 16)));
  const Vector bits = _mm512_sub_epi32(all(32), _mm512_lzcnt_epi32(magnitude));
  const __mmask16 is_longer = _mm512_cmpgt_epu32_mask(magnitude, lookUpInTwo(LENGTHS.last, bits));
  Vector bytes = lookUpInTwo(LENGTHS.length, bits);
  bytes = _mm512_mask_add_epi32(bytes, is_longer, bytes, all(1));
  bytes = _mm512_mask_add_epi32(bytes, is_negative, bytes, all(1));
  _mm512_storeu_si512(length, bytes);
  _mm512_storeu_si512(&halved.drop[at], _mm512_sub_epi32(all(64), _mm512_slli_epi32(bytes, 3)));
  _mm512_storeu_si512(&halved.sign[at], _mm512_maskz_mov_epi32(is_negative, all('0' - '-')));
  return _mm512_cmpgt_epu32_mask(magnitude, all(MOST_DECIMAL));
}

[[gnu::target("avx512bw,avx512cd"), gnu::always_inline]] inline Vector pairsOf(Vector number) {
  const Vector tenth = allHalves((1 << 16) / 10 + 1);
  const Vector first = _mm512_mulhi_epu16(number, tenth);
  const Vector second = _mm512_mulhi_epu16(_mm512_mullo_epi16(number, tenth), allHalves(10));
  return _mm512_or_si512(first, _mm512_slli_epi16(second, 8));
}

[[gnu::target("avx512bw,avx512cd"), gnu::always_inline]] inline Vector loadWidened(const std::uint32_t *from) {
  return _mm512_cvtepu32_epi64(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(from)));
}

/// Eight texts.
[[gnu::target("avx512bw,avx512cd"), gnu::always_inline]] inline void
putDecimals(Vector digits, const std::uint32_t *drop, const std::uint32_t *sign, void *to) {
  const Vector text = _mm512_srlv_epi64(_mm512_or_si512(digits, _mm512_set1_epi8('0')), loadWidened(drop));
  _mm512_storeu_si512(to, _mm512_sub_epi64(text, loadWidened(sign)));
}

[[gnu::target("avx512bw,avx512cd")]] void convertDecimals(DecimalBlock &decimals, std::size_t count) {
  HalvedDecimals halved;
  for (std::size_t i = 0; i < count; i += 16)
    putRare(halveDecimals(load(&decimals.bits[i]), &decimals.length[i], halved, i), &decimals.rare[i / 8]);
  for (std::size_t i = 0; i < count; i += 16) {
    const Vector halves = loadToInterleave(&halved.halves[i]);
    const Vector upper = _mm512_srli_epi16(_mm512_mulhi_epu16(halves, allHalves(5243)), 3);
    const Vector lower = _mm512_sub_epi16(halves, _mm512_mullo_epi16(upper, allHalves(100)));
    const Vector upper_pairs = pairsOf(upper);
    const Vector lower_pairs = pairsOf(lower);
    putDecimals(_mm512_unpacklo_epi16(upper_pairs, lower_pairs), &halved.drop[i], &halved.sign[i], &decimals.text[i]);
    putDecimals(_mm512_unpackhi_epi16(upper_pairs, lower_pairs), &halved.drop[i + 8], &halved.sign[i + 8],
                &decimals.text[i + 8]);
  }
}

// --- Texels ---------------------------------------------------------------------------------------------------------

/// A bit for each byte of a row's text that is not 0.
consteval std::uint64_t maskOf(const TexelText::Bytes &bytes) {
  std::uint64_t mask = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i)
    mask |= std::uint64_t{bytes[i] != 0} << i;
  return mask;
}

[[gnu::target("avx512bw,avx512cd"), gnu::always_inline]] inline Vector fourTimes(const void *from) {
  constexpr __mmask16 ALL = 0xffff;
  return _mm512_maskz_broadcast_i32x4(ALL, _mm_loadu_si128(static_cast<const __m128i *>(from)));
}

/// One vector is the text of a row.
[[gnu::target("avx512bw,avx512cd")]] void putTexels(char *at, const unsigned char *texels, std::size_t rows) {
  const Vector hex = fourTimes("0123456789abcdef");
  const Vector place = load(TEXEL_TEXT.texel.data()), unlike = load(TEXEL_TEXT.unlike.data());
  const Vector lower = load(TEXEL_TEXT.lower.data()), more = load(TEXEL_TEXT.more.data());
  const Vector digit_bits = _mm512_or_si512(lower, load(TEXEL_TEXT.upper.data()));
  for (; rows > 0; --rows, texels += TEXELS_TO_A_ROW, at += TEXEL_ROW_BYTES) {
    const Vector texel = _mm512_shuffle_epi8(fourTimes(texels), place);
    const Vector shifted = _mm512_srli_epi16(texel, 4);
    const Vector half = _mm512_mask_blend_epi8(maskOf(TEXEL_TEXT.upper), texel, shifted);
    const Vector digit = _mm512_shuffle_epi8(hex, _mm512_and_si512(half, digit_bits));
    const __mmask64 has_more = _mm512_cmpneq_epi8_mask(texel, unlike);
    _mm512_storeu_si512(at, _mm512_mask_add_epi8(digit, has_more, digit, more));
  }
}

} // namespace

constinit const Converters AVX512 = {convertFloats, convertDecimals, putTexels};

} // namespace kova::digits

#endif
