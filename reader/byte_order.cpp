#include "reader/byte_order.h"

#include "reader/processor.h"

#include <cstring>
#ifdef __x86_64__
#include <immintrin.h>
#endif

namespace kova {

#ifdef __x86_64__
namespace {

/// Copies as many words as fill vectors. @return their bytes.
[[gnu::target("avx2")]] std::size_t copyVectors(unsigned char *to, const unsigned char *from, std::size_t bytes) {
  constexpr std::size_t VECTOR = sizeof(__m256i);
  const __m256i order =
      _mm256_broadcastsi128_si256(_mm_setr_epi8(3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12));
  std::size_t at = 0;
  for (; at + VECTOR <= bytes; at += VECTOR) {
    const __m256i words = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(from + at));
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(to + at), _mm256_shuffle_epi8(words, order));
  }
  return at;
}

} // namespace
#endif

void copyConverted(void *to, const void *from, std::size_t bytes) {
  auto *const target = static_cast<unsigned char *>(to);
  const auto *const source = static_cast<const unsigned char *>(from);
  std::size_t at = 0;
#ifdef __x86_64__
  static const bool has_avx2 = hasAvx2();
  if (has_avx2)
    at = copyVectors(target, source, bytes);
#endif
  for (; at + sizeof(Word) <= bytes; at += sizeof(Word)) {
    Word word;
    std::memcpy(&word, source + at, sizeof word);
    if constexpr (!HOST_IS_FILE_ORDER)
      word = word << 24 | (word & 0xff00) << 8 | (word >> 8 & 0xff00) | word >> 24;
    std::memcpy(target + at, &word, sizeof word);
  }
}

} // namespace kova
