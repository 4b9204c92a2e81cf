#include "survey/file_time.h"

#include <charconv>
#include <cstdio>
#include <limits>

namespace kova::survey {

namespace {

constexpr std::int32_t NANOSECONDS = 1'000'000'000;
constexpr std::size_t DIGITS = 9;

/// Reads a number that consists of digits alone. @return false for another text.
bool readDigits(std::string_view text, std::uint64_t &number) {
  const char *const end = text.data() + text.size();
  const auto [behind, error] = std::from_chars(text.data(), end, number);
  return !text.empty() && behind == end && error == std::errc();
}

} // namespace

std::string timeText(FileTime time) {
  const bool before = time.seconds < 0;
  std::uint64_t whole = static_cast<std::uint64_t>(time.seconds);
  std::int32_t part = time.nanoseconds;
  if (before && part != 0) {
    ++whole;
    part = NANOSECONDS - part;
  }
  char text[48];
  std::snprintf(text, sizeof text, "%s%llu.%09d", before ? "-" : "",
                static_cast<unsigned long long>(before ? 0 - whole : whole), part);
  return text;
}

std::optional<FileTime> timeOf(std::string_view text) {
  const bool before = text.starts_with('-');
  text.remove_prefix(before ? 1 : 0);
  const std::size_t point = text.find('.');
  std::uint64_t whole = 0, digits = 0;
  if (point == text.npos || text.size() - point - 1 != DIGITS || !readDigits(text.substr(0, point), whole) ||
      !readDigits(text.substr(point + 1), digits))
    return std::nullopt;
  const auto part = static_cast<std::int32_t>(digits);
  constexpr std::uint64_t MOST = std::numeric_limits<std::int64_t>::max();
  if (whole > MOST && !(before && part == 0 && whole == MOST + 1))
    return std::nullopt;
  const std::uint64_t seconds = before ? 0 - whole - (part != 0 ? 1 : 0) : whole;
  return FileTime{static_cast<std::int64_t>(seconds), before && part != 0 ? NANOSECONDS - part : part};
}

} // namespace kova::survey
