/// Bytes of paths as text. A path may hold nearly any byte; what is written here can neither add a line nor an escape
/// sequence to a text, nor make a document invalid.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kova {

/// For terminals and line-oriented output: each byte outside printable ASCII, and each backslash, becomes `\xHH`.
std::string printable(std::string_view bytes);

/// For terminals that show UTF-8: as `printable`, but characters beyond ASCII stay if they can be seen and do nothing
/// to others. Each byte of the others becomes `\xHH`: control characters, those that change the direction of writing or
/// have no width, blanks of other kinds, and bytes that are no UTF-8.
std::string visible(std::string_view bytes);

/// For JSON: each byte that is not part of valid UTF-8, and each backslash, becomes `\xHH`. The result is valid UTF-8.
std::string escaped(std::string_view bytes);

/// @return the bytes of the UTF-8 character that a text begins with; 0 if it begins with none. The text is not empty.
std::size_t characterBytes(std::string_view text);

/// @return the bytes that `printable` or `escaped` have made the text of; none for a text that neither has made.
std::optional<std::string> unescaped(std::string_view text);

/// @return where the first control byte is; `npos` if there is none. Control bytes are those below the blank, DEL, and
/// 0x80 to 0x9f, which are control characters of 8-bit character sets and, as the second byte of a character, of UTF-8.
/// In other characters of valid UTF-8 these bytes control nothing.
std::size_t controlByte(std::string_view bytes);

/// @return the lines of a finding's text as one printable line.
/// @param show makes a line printable
std::string oneLine(std::string_view text, std::string (*show)(std::string_view) = printable);

} // namespace kova
