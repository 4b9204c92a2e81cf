#include "common/memory.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <functional>
#include <memory>
#include <sys/mman.h>
#include <utility>

namespace {

constexpr std::size_t BIG_BLOCK = 32 * 1024;        // smaller ones are left to malloc
constexpr std::uint64_t BIG_FILE = 4 * 1024 * 1024; // below this there is nothing to gain
constexpr std::size_t KEPT = 128 * 1024 * 1024;
constexpr std::size_t HUGE_PAGE = 2 * 1024 * 1024;
constexpr std::size_t ALIGNMENT = 64;
constexpr std::size_t MOST_MODELS = 64;

/// What is reserved for a thread. Blocks are cut from it one after the other; it is used again when all are freed.
struct Space {
  std::byte *begin = nullptr;
  std::byte *next = nullptr;
  std::byte *end = nullptr;
  std::atomic<std::size_t> blocks = 0; ///< that are not freed yet
};

struct Reserve {
  std::byte *begin = nullptr;
  std::byte *end = nullptr;
  std::size_t space_bytes = 0;
  std::array<Space, MOST_MODELS> spaces;
  std::atomic<std::size_t> taken = 0;
};
constinit Reserve reserve;
constinit thread_local Space *own_space = nullptr; ///< of this thread, when it has held a model
constinit thread_local Space *space = nullptr;     ///< from which this thread takes big blocks at the moment

void startAgain() {
  const auto used = static_cast<std::size_t>(space->next - space->begin);
  if (space->blocks.load(std::memory_order_acquire) != 0)
    return;
  if (used > KEPT)
    ::madvise(space->begin + KEPT, used - KEPT, MADV_DONTNEED);
  space->next = space->begin;
}

} // namespace

void adviseHugePages([[maybe_unused]] void *block, [[maybe_unused]] std::size_t bytes) {
#ifdef MADV_HUGEPAGE
  const int error = errno; // a system without huge pages declines, which is no error of what is done
  void *begin = block;
  if (bytes >= BIG_FILE && std::align(HUGE_PAGE, HUGE_PAGE, begin, bytes) != nullptr)
    ::madvise(begin, bytes / HUGE_PAGE * HUGE_PAGE, MADV_HUGEPAGE);
  errno = error;
#endif
}

void reserveMemory(std::uint64_t file_bytes, std::size_t models) {
  // What a large file usually takes; what goes beyond comes from malloc.
  const std::uint64_t bytes = (file_bytes + file_bytes / 4) / HUGE_PAGE * HUGE_PAGE;
  models = std::min(models, MOST_MODELS);
  if (file_bytes < BIG_FILE || models == 0 || bytes > SIZE_MAX / 2 / models)
    return;
  const auto space_bytes = static_cast<std::size_t>(bytes);
  void *const found =
      ::mmap(nullptr, models * space_bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (found == MAP_FAILED)
    return;
  adviseHugePages(found, models * space_bytes);
  reserve.space_bytes = space_bytes;
  reserve.begin = reserve.end = static_cast<std::byte *>(found);
  for (std::size_t i = 0; i < models; ++i, reserve.end += space_bytes) {
    reserve.spaces[i].begin = reserve.spaces[i].next = reserve.end;
    reserve.spaces[i].end = reserve.end + space_bytes;
  }
}

ModelMemory::ModelMemory() {
  if (own_space == nullptr)
    if (const std::size_t number = reserve.taken.fetch_add(1); number < MOST_MODELS)
      own_space = &reserve.spaces[number];
  space = own_space;
}

ModelMemory::~ModelMemory() {
  if (space != nullptr)
    startAgain();
  space = nullptr;
}

void *takeReserved(std::size_t bytes) {
  if (bytes < BIG_BLOCK || space == nullptr)
    return nullptr;
  const std::size_t rounded = (bytes + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT;
  if (rounded < bytes || rounded > static_cast<std::size_t>(space->end - space->next))
    return nullptr;
  space->blocks.fetch_add(1, std::memory_order_relaxed);
  return std::exchange(space->next, space->next + rounded);
}

bool giveBackReserved(void *block) {
  auto *const begin = static_cast<std::byte *>(block);
  if (std::less<>()(begin, reserve.begin) || !std::less<>()(begin, reserve.end))
    return false;
  const std::size_t number = static_cast<std::size_t>(begin - reserve.begin) / reserve.space_bytes;
  reserve.spaces[number].blocks.fetch_sub(1, std::memory_order_release);
  return true;
}
