#include "survey/json_text.h"

#include "common/text.h"

#include <array>
#include <charconv>

namespace kova::survey {

namespace {

constexpr std::string_view HEX = "0123456789abcdef";

/// @return whether a byte of ASCII stands for itself in a string.
constexpr bool isPlain(unsigned char byte) { return byte >= ' ' && byte < 0x80 && byte != '"' && byte != '\\'; }

/// The control characters that have a letter.
struct Letter {
  char byte, letter;
};
constexpr std::array<Letter, 6> LETTERS = {
    {{'"', '"'}, {'\b', 'b'}, {'\f', 'f'}, {'\n', 'n'}, {'\r', 'r'}, {'\t', 't'}}};

/// Appends a quotation mark or a control character.
void appendControl(std::string &json, char byte) {
  for (const Letter &known : LETTERS)
    if (known.byte == byte) {
      json += {'\\', known.letter};
      return;
    }
  json += "\\u00";
  json += {HEX[static_cast<unsigned char>(byte) >> 4], HEX[static_cast<unsigned char>(byte) & 15]};
}

/// Appends a byte that is shown by its number.
void appendNumbered(std::string &json, char byte) {
  json += "\\\\x";
  json += {HEX[static_cast<unsigned char>(byte) >> 4], HEX[static_cast<unsigned char>(byte) & 15]};
}

} // namespace

void appendString(std::string &json, std::string_view bytes) {
  json += '"';
  for (std::size_t at = 0; at < bytes.size();) {
    std::size_t plain = at;
    while (plain < bytes.size() && isPlain(static_cast<unsigned char>(bytes[plain])))
      ++plain;
    json += bytes.substr(at, plain - at);
    at = plain;
    if (at == bytes.size())
      break;
    const std::size_t taken = bytes[at] == '\\' ? 0 : characterBytes(bytes.substr(at));
    if (taken == 0)
      appendNumbered(json, bytes[at]);
    else if (taken == 1)
      appendControl(json, bytes[at]);
    else
      json += bytes.substr(at, taken);
    at += taken == 0 ? 1 : taken;
  }
  json += '"';
}

void appendNumber(std::string &json, std::uint64_t number) {
  std::array<char, 24> digits;
  json.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
}

} // namespace kova::survey
