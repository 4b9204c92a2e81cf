/// The allocation of a program: big blocks of models come from what is reserved for them, other big ones are backed
/// with huge pages. Part of the programs, and of no library. Left out under a sanitizer, which brings an allocator of
/// its own.
#include "common/memory.h"

#include <cstdlib>
#include <new>

#if defined(__has_feature)
#define KOVA_CLANG_SANITIZER (__has_feature(address_sanitizer) || __has_feature(thread_sanitizer))
#else
#define KOVA_CLANG_SANITIZER 0
#endif

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) && !KOVA_CLANG_SANITIZER

/// The library's own would throw and catch, for which there may be too little memory as well.
void *operator new(std::size_t bytes, const std::nothrow_t &) noexcept {
  if (void *const block = takeReserved(bytes))
    return block;
  void *const block = std::malloc(bytes != 0 ? bytes : 1);
  if (block != nullptr)
    adviseHugePages(block, bytes);
  return block;
}
// Not inlined: the compiler would take malloc and delete, or new and free, for a mismatched pair.
[[gnu::noinline]] void *operator new(std::size_t bytes) {
  if (void *const block = operator new(bytes, std::nothrow))
    return block;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void *block) noexcept {
  if (!giveBackReserved(block))
    std::free(block);
}
void *operator new[](std::size_t bytes) { return operator new(bytes); }
void operator delete(void *block, std::size_t) noexcept { operator delete(block); }
void operator delete[](void *block) noexcept { operator delete(block); }
void operator delete[](void *block, std::size_t) noexcept { operator delete(block); }

#endif
