/// Arithmetic beyond 64 bits, also where the compiler has no integer of 128: on most 32-bit hosts.
#pragma once

#include <cstdint>

namespace kova::number {

/// The upper half of the product, from products of 32-bit halves. No sum here exceeds 64 bits.
constexpr std::uint64_t highProductOfHalves(std::uint64_t a, std::uint64_t b) {
  constexpr std::uint64_t LOW = 0xffffffff;
  const std::uint64_t middle = (a >> 32) * (b & LOW) + ((a & LOW) * (b & LOW) >> 32);
  const std::uint64_t carried = (a & LOW) * (b >> 32) + (middle & LOW);
  return (a >> 32) * (b >> 32) + (middle >> 32) + (carried >> 32);
}

/// The upper 64 bits of the product of two numbers. With KOVA_NO_INT128 defined the way of a 32-bit host is taken.
constexpr std::uint64_t highProduct(std::uint64_t a, std::uint64_t b) {
#if defined(__SIZEOF_INT128__) && !defined(KOVA_NO_INT128)
  __extension__ using Wide = unsigned __int128;
  return static_cast<std::uint64_t>(Wide{a} * b >> 64);
#else
  return highProductOfHalves(a, b);
#endif
}

} // namespace kova::number
