#include "survey/progress.h"

#include <algorithm>
#include <cstdio>

namespace kova::survey {

std::string progressText(const Progress &progress, double seconds) {
  const auto number = [](std::uint64_t value) { return static_cast<double>(value); };
  // A file costs something, too, however small it is.
  constexpr double BYTES_PER_FILE = 20e3;
  const double done = number(progress.bytes_done) + BYTES_PER_FILE * number(progress.files_done);
  const double all = number(progress.bytes) + BYTES_PER_FILE * number(progress.files);
  const double left = done > 0 ? std::max(0.0, (all - done) * seconds / done) : 0;
  const auto seconds_left = static_cast<unsigned long long>(std::min(left, 1e9) + 0.5);
  const double rate = seconds > 0 ? number(progress.bytes_done) / 1e6 / seconds : 0;
  char text[160];
  const int length = std::snprintf(
      text, sizeof text, "%llu/%llu files, %llu bad, %.1f MB/s", static_cast<unsigned long long>(progress.files_done),
      static_cast<unsigned long long>(progress.files), static_cast<unsigned long long>(progress.bad), rate);
  std::string line(text, static_cast<std::size_t>(length));
  if (progress.files_done > 0) {
    std::snprintf(text, sizeof text, ", %llu:%02llu left", seconds_left / 60, seconds_left % 60);
    line += text;
  }
  return line;
}

} // namespace kova::survey
