/// The memory that the test program asks for: counted, and refused where a test wants it refused.
#pragma once

#include <atomic>
#include <cstddef>

namespace kova::test {

struct Allocations {
  std::atomic<long> left = -1;      ///< counts down to the allocation that fails; below zero none does
  std::atomic<std::size_t> held{0}; ///< bytes that are asked for and not yet given back, the allocator's own included
  std::atomic<std::size_t> peak{0}; ///< the most that were ever held; a test sets it back
};
extern Allocations allocations;

} // namespace kova::test
