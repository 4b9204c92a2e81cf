/// How text is printed to people: on a terminal, or into a file or a pipe.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kova {

enum class Colour { automatic, always, never };

/// What a stream can show.
struct Style {
  bool terminal = false; ///< what is printed is for people alone
  bool colour = false;
  bool utf8 = false; ///< characters beyond ASCII are shown as themselves
};

/// @param stream a standard stream. On a terminal there is colour, unless NO_COLOR is set or it is a dumb one; and
/// characters beyond ASCII, if the locale has UTF-8.
Style styleOf(int stream, Colour colour);

/// @return the number of characters in a line of a terminal; 80 where that is not known.
std::size_t widthOf(int stream);

/// The colours, as the terminal knows them.
inline constexpr const char *RED = "1;31";
inline constexpr const char *YELLOW = "33";

/// @return a text in a colour if the stream has colours.
std::string coloured(const Style &style, const char *colour, std::string_view text);

/// @return what makes bytes printable: `visible` where the stream shows more than ASCII, else `printable`.
using Show = std::string (*)(std::string_view);
Show showOf(const Style &style);

} // namespace kova
