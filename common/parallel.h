/// Threads.
#pragma once

#include <cstddef>
#include <functional>

namespace kova {

/// Calls `work` in several threads, one of them the calling one, and waits for all. If no more threads can be had,
/// there are fewer. `work` must not throw.
void inParallel(std::size_t threads, const std::function<void()> &work);

/// Calls `work` once for each number below `count`, in several threads. It must not throw.
void forEachNumber(std::size_t count, std::size_t threads, const std::function<void(std::size_t)> &work);

} // namespace kova
