/// The progress line on a terminal.
#pragma once

#include <cstdint>
#include <string>

namespace kova::survey {

struct Progress {
  std::uint64_t files = 0; ///< to do
  std::uint64_t bytes = 0;
  std::uint64_t files_done = 0;
  std::uint64_t bytes_done = 0;
  std::uint64_t bad = 0;
};

/// @return the line, without line break: "120/2000 files, 3 bad, 45.6 MB/s, 0:12 left".
std::string progressText(const Progress &progress, double seconds);

} // namespace kova::survey
