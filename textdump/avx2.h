/// Vectors of 32 bytes.
///
/// Only functions that say so are compiled for processors with AVX2, and all of them say so.
#pragma once

#include <cstdint>
#include <immintrin.h>

namespace kova {

using Vector = __m256i;

[[gnu::target("avx2"), gnu::always_inline]] inline Vector load(const void *from) {
  return _mm256_loadu_si256(static_cast<const Vector *>(from));
}
[[gnu::target("avx2"), gnu::always_inline]] inline void store(void *to, Vector vector) {
  _mm256_storeu_si256(static_cast<Vector *>(to), vector);
}
[[gnu::target("avx2"), gnu::always_inline]] inline __m128i loadHalf(const void *from) {
  return _mm_loadu_si128(static_cast<const __m128i *>(from));
}
[[gnu::target("avx2"), gnu::always_inline]] inline void storeHalf(void *to, __m128i vector) {
  _mm_storeu_si128(static_cast<__m128i *>(to), vector);
}

} // namespace kova
