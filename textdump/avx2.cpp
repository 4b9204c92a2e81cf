/// Many numbers at a time with AVX2, in vectors of 32 bytes.
#include "textdump/digits.h"

#ifdef __x86_64__

#include "textdump/avx2.h"

namespace kova::digits {

namespace {

[[gnu::target("avx2"), gnu::always_inline]] inline Vector all(std::uint32_t lane) {
  return _mm256_set1_epi32(static_cast<int>(lane));
}
[[gnu::target("avx2"), gnu::always_inline]] inline Vector allHalves(short half) { return _mm256_set1_epi16(half); }

/// One bit for each lane that is not all ones.
[[gnu::target("avx2"), gnu::always_inline]] inline std::uint8_t othersThan(Vector lanes) {
  return static_cast<std::uint8_t>(~_mm256_movemask_ps(_mm256_castsi256_ps(lanes)));
}

// --- Floats to digits ------------------------------------------------------------------------------------------------

/// Looks up eight entries of a table.
[[gnu::target("avx2"), gnu::always_inline]] inline Vector lookUp(const Table &table, Vector index) {
  const Vector low = _mm256_permutevar8x32_epi32(load(&table[0]), index);
  const Vector high = _mm256_permutevar8x32_epi32(load(&table[8]), index);
  const Vector is_high = _mm256_slli_epi32(index, 28); // bit 3 to the top
  return _mm256_castps_si256(
      _mm256_blendv_ps(_mm256_castsi256_ps(low), _mm256_castsi256_ps(high), _mm256_castsi256_ps(is_high)));
}

[[gnu::target("avx2"), gnu::always_inline]] inline Vector decadesOf(Vector magnitude) {
  const Vector above = _mm256_subs_epu16(magnitude, all(ESTIMATE_BEGIN << 16));
  const Vector scaled = _mm256_mulhi_epu16(above, all(ESTIMATE_FACTOR << 16));
  const Vector estimate = _mm256_srli_epi32(scaled, 16);
  const Vector is_less = _mm256_cmpgt_epi32(magnitude, lookUp(LAST_OF_DECADE, estimate));
  return _mm256_sub_epi32(estimate, is_less);
}

/// Four magnitudes times their powers of ten, each in the upper half of its lane. @return `UNIT` and the product, in
/// the lower halves. They are rounded half to even, whatever the rounding of this thread is.
[[gnu::target("avx2"), gnu::always_inline]] inline __m256 scaled(Vector magnitude, Vector power) {
  const __m256d value = _mm256_castsi256_pd(_mm256_srli_epi64(magnitude, 32 - DOUBLE_SHIFT));
  const __m256d product = _mm256_mul_pd(value, _mm256_castsi256_pd(power));
  const __m256d rounded = _mm256_round_pd(product, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC);
  return _mm256_castpd_ps(_mm256_add_pd(rounded, _mm256_set1_pd(0x1.8p52 + UNIT_BITS)));
}

/// Eight floats. @return the rare ones.
[[gnu::target("avx2"), gnu::always_inline]] inline std::uint8_t scaleFloats(Vector bits, float *number,
                                                                            std::uint32_t *shape) {
  const Vector zero = _mm256_setzero_si256();
  const Vector given = _mm256_and_si256(bits, all(0x7fffffff));
  const Vector is_zero = _mm256_cmpeq_epi32(given, zero);
  const Vector offset = _mm256_sub_epi32(given, all(PLAIN_BEGIN));
  const Vector most = all(PLAIN_END - 1 - PLAIN_BEGIN);
  const Vector is_plain = _mm256_cmpeq_epi32(_mm256_min_epu32(offset, most), offset);
  const Vector magnitude = _mm256_and_si256(given, is_plain);
  const Vector decade = decadesOf(magnitude);
  const Vector power = lookUp(POWER_OF_DECADE, decade);
  const __m256 low = scaled(_mm256_unpacklo_epi32(zero, magnitude), _mm256_unpacklo_epi32(zero, power));
  const __m256 high = scaled(_mm256_unpackhi_epi32(zero, magnitude), _mm256_unpackhi_epi32(zero, power));
  _mm256_storeu_ps(number, _mm256_shuffle_ps(low, high, 0x88)); // the lower halves
  const Vector kind = _mm256_blendv_epi8(decade, all(ZERO_SHAPE), is_zero);
  const Vector sign = _mm256_srli_epi32(_mm256_xor_si256(bits, given), 31 - SHAPE_SHIFT - 4);
  store(shape, _mm256_or_si256(_mm256_slli_epi32(kind, SHAPE_SHIFT), sign));
  return othersThan(_mm256_or_si256(is_plain, is_zero));
}

/// The digits of eight numbers below 10^6. Each is two groups of three digits in a vector of halves, the lower one
/// first. A digit is what is carried over when a fraction of 2^16 is multiplied by ten.
[[gnu::target("avx2"), gnu::always_inline]] inline void splitFloats(const float *from, const std::uint32_t *shapes,
                                                                    Digits *to) {
  // At the end lanes are interleaved, but within 16 bytes each. In this order they come out right.
  const Vector number = _mm256_permute4x64_epi64(load(from), 0xd8);
  const Vector shape = _mm256_permute4x64_epi64(load(shapes), 0xd8);
  // Half a unit more keeps the product far enough from integers: its error does not matter.
  const __m256 half_more = _mm256_sub_ps(_mm256_castsi256_ps(number), _mm256_set1_ps(UNIT - 0.5F));
  const Vector thousands = _mm256_cvttps_epi32(_mm256_mul_ps(half_more, _mm256_set1_ps(0.001F)));
  const Vector groups =
      _mm256_add_epi32(_mm256_sub_epi32(number, all(UNIT_BITS)), _mm256_mullo_epi32(thousands, all((1 << 16) - 1000)));
  const Vector ten = allHalves(10);
  const Vector hundredth = allHalves((1 << 16) / 100 + 1);
  const Vector tenth = allHalves((1 << 16) / 10 + 1);
  const Vector first = _mm256_mulhi_epu16(groups, hundredth);
  const Vector second = _mm256_mulhi_epu16(_mm256_mullo_epi16(groups, hundredth), ten);
  const Vector third = _mm256_mulhi_epu16(_mm256_mullo_epi16(groups, tenth), ten);
  const Vector firsts_and_seconds = _mm256_or_si256(first, _mm256_slli_epi16(second, 8));
  const Vector thirds = _mm256_madd_epi16(third, all(1 << 24 | 1)); // to the two lower bytes
  const Vector thirds_and_shape = _mm256_or_si256(thirds, shape);
  store(to, _mm256_unpacklo_epi32(firsts_and_seconds, thirds_and_shape));
  store(to + 4, _mm256_unpackhi_epi32(firsts_and_seconds, thirds_and_shape));
}

[[gnu::target("avx2")]] void convertFloats(FloatBlock &floats, std::size_t count) {
  ScaledFloats scaled;
  for (std::size_t i = 0; i < count; i += 8)
    floats.rare[i / 8] = scaleFloats(load(&floats.bits[i]), &scaled.number[i], &scaled.shape[i]);
  for (std::size_t i = 0; i < count; i += 8)
    splitFloats(&scaled.number[i], &scaled.shape[i], &floats.digits[i]);
}

// --- Integers to text -----------------------------------------------------------------------------------------------

/// Eight integers. @return the rare ones.
[[gnu::target("avx2"), gnu::always_inline]] inline std::uint8_t halveDecimals(Vector integer, std::uint32_t *length,
                                                                              HalvedDecimals &halved, std::size_t at) {
  const Vector magnitude = _mm256_abs_epi32(integer);
  const Vector is_negative = _mm256_srai_epi32(integer, 31);
  const Vector factor = all(0xd1b71759); // 2^45 / 10^4, for all of 32 bits
  const Vector even = _mm256_srli_epi64(_mm256_mul_epu32(magnitude, factor), 45);
  const Vector odd = _mm256_srli_epi64(_mm256_mul_epu32(_mm256_srli_epi64(magnitude, 32), factor), 45 - 32);
  const Vector upper = _mm256_blend_epi32(even, odd, 0xaa);
  const Vector lower = _mm256_sub_epi32(magnitude, _mm256_madd_epi16(upper, all(10000)));
  store(&halved.halves[at], _mm256_add_epi32(upper, _mm256_slli_epi32(lower, 16)));
  Vector bytes = _mm256_sub_epi32(all(1), is_negative);
  for (const std::uint32_t most : {9U, 99U, 999U, 9999U, 99999U, 999999U})
    bytes = _mm256_sub_epi32(bytes, _mm256_cmpgt_epi32(magnitude, all(most)));
  store(length, bytes);
  store(&halved.drop[at], _mm256_sub_epi32(all(64), _mm256_slli_epi32(bytes, 3)));
  store(&halved.sign[at], _mm256_and_si256(is_negative, all('0' - '-')));
  return othersThan(_mm256_cmpeq_epi32(_mm256_min_epu32(magnitude, all(MOST_DECIMAL)), magnitude));
}

/// Numbers below 100 in halves, to two digits each.
[[gnu::target("avx2"), gnu::always_inline]] inline Vector pairsOf(Vector number) {
  const Vector tenth = allHalves((1 << 16) / 10 + 1);
  const Vector first = _mm256_mulhi_epu16(number, tenth);
  const Vector second = _mm256_mulhi_epu16(_mm256_mullo_epi16(number, tenth), allHalves(10));
  return _mm256_or_si256(first, _mm256_slli_epi16(second, 8));
}

/// Four texts of eight digits: leading zeros go, but one becomes a sign.
[[gnu::target("avx2"), gnu::always_inline]] inline void putDecimals(Vector digits, const std::uint32_t *drop,
                                                                    const std::uint32_t *sign, void *to) {
  const Vector text =
      _mm256_srlv_epi64(_mm256_or_si256(digits, _mm256_set1_epi8('0')), _mm256_cvtepu32_epi64(loadHalf(drop)));
  store(to, _mm256_sub_epi64(text, _mm256_cvtepu32_epi64(loadHalf(sign))));
}

[[gnu::target("avx2")]] void convertDecimals(DecimalBlock &decimals, std::size_t count) {
  HalvedDecimals halved;
  for (std::size_t i = 0; i < count; i += 8)
    decimals.rare[i / 8] = halveDecimals(load(&decimals.bits[i]), &decimals.length[i], halved, i);
  for (std::size_t i = 0; i < count; i += 8) {
    const Vector halves = _mm256_permute4x64_epi64(load(&halved.halves[i]), 0xd8);          // as in `splitFloats`
    const Vector upper = _mm256_srli_epi16(_mm256_mulhi_epu16(halves, allHalves(5243)), 3); // 2^19 / 100
    const Vector lower = _mm256_sub_epi16(halves, _mm256_mullo_epi16(upper, allHalves(100)));
    const Vector upper_pairs = pairsOf(upper);
    const Vector lower_pairs = pairsOf(lower);
    putDecimals(_mm256_unpacklo_epi16(upper_pairs, lower_pairs), &halved.drop[i], &halved.sign[i], &decimals.text[i]);
    putDecimals(_mm256_unpackhi_epi16(upper_pairs, lower_pairs), &halved.drop[i + 4], &halved.sign[i + 4],
                &decimals.text[i + 4]);
  }
}

// --- Texels ---------------------------------------------------------------------------------------------------------

/// The text of a row from byte `FROM` on. `texels` are in both halves of the vector.
template <std::size_t FROM> [[gnu::target("avx2"), gnu::always_inline]] inline Vector texelText(Vector texels) {
  const Vector hex = _mm256_broadcastsi128_si256(loadHalf("0123456789abcdef"));
  const Vector texel = _mm256_shuffle_epi8(texels, load(&TEXEL_TEXT.texel[FROM]));
  const Vector upper = _mm256_and_si256(_mm256_srli_epi16(texel, 4), load(&TEXEL_TEXT.upper[FROM]));
  const Vector lower = _mm256_and_si256(texel, load(&TEXEL_TEXT.lower[FROM]));
  const Vector digit = _mm256_shuffle_epi8(hex, _mm256_or_si256(upper, lower));
  const Vector is_like = _mm256_cmpeq_epi8(texel, load(&TEXEL_TEXT.unlike[FROM]));
  return _mm256_add_epi8(digit, _mm256_andnot_si256(is_like, load(&TEXEL_TEXT.more[FROM])));
}

[[gnu::target("avx2")]] void putTexels(char *at, const unsigned char *texels, std::size_t rows) {
  for (; rows > 0; --rows, texels += TEXELS_TO_A_ROW, at += TEXEL_ROW_BYTES) {
    const Vector row = _mm256_broadcastsi128_si256(loadHalf(texels));
    store(at, texelText<0>(row));
    store(at + sizeof(Vector), texelText<sizeof(Vector)>(row));
  }
}

} // namespace

constinit const Converters AVX2 = {convertFloats, convertDecimals, putTexels};

} // namespace kova::digits

#endif
