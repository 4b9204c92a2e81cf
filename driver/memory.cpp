#include "driver/memory.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <new>
#include <sys/mman.h>
#include <sys/stat.h>

#if defined(__has_feature)
#define KBAUDIT_CLANG_ASAN __has_feature(address_sanitizer)
#else
#define KBAUDIT_CLANG_ASAN 0
#endif

#if defined(__SANITIZE_ADDRESS__) || KBAUDIT_CLANG_ASAN || !defined(MADV_HUGEPAGE)

void reserveMemory(const char *) {}

#else

namespace {

constexpr std::size_t BIG_BLOCK = 32 * 1024; // smaller ones are left to malloc
constexpr off_t BIG_FILE = 4 * 1024 * 1024;  // below this there is nothing to gain
constexpr std::size_t HUGE_PAGE = 2 * 1024 * 1024;
constexpr std::size_t ALIGNMENT = 64;

/// The reserved space. Blocks are cut from it one after the other and never given back: the program reads one file,
/// and its model lives until the process ends.
struct Reserve {
  std::byte *begin = nullptr;
  std::byte *next = nullptr;
  std::byte *end = nullptr;
};
constinit Reserve reserve;

bool isReserved(const void *block) {
  return !std::less<>()(block, static_cast<const void *>(reserve.begin)) &&
         std::less<>()(block, static_cast<const void *>(reserve.end));
}

} // namespace

void reserveMemory(const char *path) {
  struct stat status;
  if (::stat(path, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size < BIG_FILE)
    return;
  // What a large file usually takes; what goes beyond comes from malloc.
  const auto file_bytes = static_cast<std::uint64_t>(status.st_size);
  const std::uint64_t bytes = (file_bytes + file_bytes / 4) / HUGE_PAGE * HUGE_PAGE;
  if (bytes > SIZE_MAX / 2)
    return;
  void *const space = ::mmap(nullptr, static_cast<std::size_t>(bytes), PROT_READ | PROT_WRITE,
                             MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (space == MAP_FAILED)
    return;
  ::madvise(space, static_cast<std::size_t>(bytes), MADV_HUGEPAGE);
  reserve.begin = reserve.next = static_cast<std::byte *>(space);
  reserve.end = reserve.begin + bytes;
}

// Not inlined: the compiler would take malloc and delete, or new and free, for a mismatched pair.
[[gnu::noinline]] void *operator new(std::size_t bytes) {
  const std::size_t rounded = (bytes + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT;
  if (bytes >= BIG_BLOCK && rounded >= bytes && rounded <= static_cast<std::size_t>(reserve.end - reserve.next)) {
    void *const block = reserve.next;
    reserve.next += rounded;
    return block;
  }
  if (void *const block = std::malloc(bytes != 0 ? bytes : 1))
    return block;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void *block) noexcept {
  if (!isReserved(block))
    std::free(block);
}
void *operator new[](std::size_t bytes) { return operator new(bytes); }
void operator delete(void *block, std::size_t) noexcept { operator delete(block); }
void operator delete[](void *block) noexcept { operator delete(block); }
void operator delete[](void *block, std::size_t) noexcept { operator delete(block); }

#endif
