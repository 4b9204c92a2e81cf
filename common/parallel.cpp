#include "common/parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <thread>
#include <vector>

namespace kova {

void inParallel(std::size_t threads, const std::function<void()> &work) {
  std::vector<std::jthread> others;
  try {
    others.reserve(threads);
    while (others.size() + 1 < threads)
      others.emplace_back(work);
  } catch (const std::exception &) { // those that are there do it all
  }
  work();
}

void forEachNumber(std::size_t count, std::size_t threads, const std::function<void(std::size_t)> &work) {
  // A thread takes some numbers at a time, so that the threads are seldom in each other's way.
  constexpr std::size_t AT_ONCE = 16;
  std::atomic<std::size_t> next = 0;
  inParallel(std::min(threads, (count + AT_ONCE - 1) / AT_ONCE), [&] {
    for (std::size_t first = next.fetch_add(AT_ONCE); first < count; first = next.fetch_add(AT_ONCE))
      for (std::size_t i = first; i < std::min(count, first + AT_ONCE); ++i)
        work(i);
  });
}

} // namespace kova
