#include "tests/allocations.h"

#include <cstdlib>
#include <malloc.h>
#include <new>

namespace kova::test {

Allocations allocations;

namespace {

/// What a block takes: the bytes that can be used and the word in front of them.
std::size_t bytesOf(void *at) { return malloc_usable_size(at) + sizeof(std::size_t); }

void *take(std::size_t bytes) {
  if (allocations.left >= 0 && allocations.left-- == 0)
    throw std::bad_alloc();
  void *const at = std::malloc(bytes != 0 ? bytes : 1);
  if (at == nullptr)
    throw std::bad_alloc();
  const std::size_t held = allocations.held += bytesOf(at);
  for (std::size_t peak = allocations.peak; held > peak && !allocations.peak.compare_exchange_weak(peak, held);) {
  }
  return at;
}

void giveBack(void *at) {
  if (at != nullptr)
    allocations.held -= bytesOf(at);
  std::free(at);
}

} // namespace

} // namespace kova::test

// Not inlined: the compiler would take malloc and delete, or new and free, for a mismatched pair.
[[gnu::noinline]] void *operator new(std::size_t bytes) { return kova::test::take(bytes); }
[[gnu::noinline]] void *operator new(std::size_t bytes, const std::nothrow_t &) noexcept {
  try {
    return kova::test::take(bytes);
  } catch (const std::bad_alloc &) {
    return nullptr;
  }
}
[[gnu::noinline]] void *operator new[](std::size_t bytes) { return kova::test::take(bytes); }
[[gnu::noinline]] void operator delete(void *at) noexcept { kova::test::giveBack(at); }
[[gnu::noinline]] void operator delete(void *at, std::size_t) noexcept { kova::test::giveBack(at); }
[[gnu::noinline]] void operator delete[](void *at) noexcept { kova::test::giveBack(at); }
[[gnu::noinline]] void operator delete[](void *at, std::size_t) noexcept { kova::test::giveBack(at); }
