#include "common/terminal.h"

#include "common/text.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <sys/ioctl.h>
#include <unistd.h>

namespace kova {

namespace {

std::string variable(const char *name) {
  const char *const value = std::getenv(name);
  return value != nullptr ? value : "";
}

/// @return whether the characters of the locale are UTF-8: of its variables, the first that is set counts.
bool localeIsUtf8() {
  for (const char *const name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    std::string locale = variable(name);
    std::transform(locale.begin(), locale.end(), locale.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (!locale.empty())
      return locale.find("utf-8") != locale.npos || locale.find("utf8") != locale.npos;
  }
  return false;
}

} // namespace

Style styleOf(int stream, Colour colour) {
  Style style{.terminal = ::isatty(stream) == 1};
  const std::string kind = variable("TERM");
  const bool can = style.terminal && !kind.empty() && kind != "dumb" && variable("NO_COLOR").empty();
  style.colour = colour == Colour::always || (colour == Colour::automatic && can);
  style.utf8 = style.terminal && localeIsUtf8();
  return style;
}

std::size_t widthOf(int stream) {
  constexpr std::size_t USUAL = 80, LEAST = 40;
  winsize size{};
  if (::ioctl(stream, TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
    return USUAL;
  return std::max<std::size_t>(size.ws_col, LEAST);
}

std::string coloured(const Style &style, const char *colour, std::string_view text) {
  if (!style.colour)
    return std::string(text);
  return std::string("\x1b[") + colour + 'm' + std::string(text) + "\x1b[m";
}

Show showOf(const Style &style) { return style.utf8 ? visible : printable; }

} // namespace kova
