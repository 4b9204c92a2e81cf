/// The time at which a file was modified.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kova::survey {

/// Before 1970 the seconds are negative, and the nanoseconds go forward from them, too: -0.25 s is -1 s and 750,000,000
/// ns.
struct FileTime {
  std::int64_t seconds = 0;     ///< since 1970
  std::int32_t nanoseconds = 0; ///< below 1,000,000,000

  auto operator<=>(const FileTime &) const = default;
};

/// @return seconds since 1970, a point, nine digits: "-0.250000000".
std::string timeText(FileTime time);

/// @return the time of such a text; none for another text.
std::optional<FileTime> timeOf(std::string_view text);

} // namespace kova::survey
