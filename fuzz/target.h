/// What ends every fuzz target.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace kova::fuzz {

/// Ends a round, and the process where the round broke an invariant. @return what libFuzzer expects of a target.
inline int endRound(const std::string &broken) {
  if (broken.empty())
    return 0;
  std::fprintf(stderr, "broken invariants:\n%s\n", broken.c_str());
  std::abort();
}

} // namespace kova::fuzz
