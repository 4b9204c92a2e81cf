#include "common/text.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace kova {

namespace {

constexpr std::string_view DIGITS = "0123456789abcdef";

void appendEscape(std::string &text, char byte) {
  const auto value = static_cast<unsigned char>(byte);
  text.append({'\\', 'x', DIGITS[value >> 4], DIGITS[value & 15]});
}

bool isPrintable(char byte) { return byte >= ' ' && byte <= '~' && byte != '\\'; }

/// The valid UTF-8 sequences of more than one byte: their first byte, and what their second byte may be. (Third and
/// fourth bytes are 0x80 to 0xbf.)
struct Sequence {
  unsigned char first, last;               ///< of the first byte
  unsigned char second_first, second_last; ///< of the second byte
  std::size_t bytes;
};
constexpr std::array<Sequence, 8> SEQUENCES = {{{0xc2, 0xdf, 0x80, 0xbf, 2},
                                                {0xe0, 0xe0, 0xa0, 0xbf, 3},
                                                {0xe1, 0xec, 0x80, 0xbf, 3},
                                                {0xed, 0xed, 0x80, 0x9f, 3}, // no surrogates
                                                {0xee, 0xef, 0x80, 0xbf, 3},
                                                {0xf0, 0xf0, 0x90, 0xbf, 4},
                                                {0xf1, 0xf3, 0x80, 0xbf, 4},
                                                {0xf4, 0xf4, 0x80, 0x8f, 4}}};

/// Characters that are not shown as themselves: first and last of each run.
struct Run {
  char32_t first, last;
};
constexpr Run HIDDEN[] = {
    {0x80, 0xa0},     {0xad, 0xad},     {0x34f, 0x34f},     {0x61c, 0x61c},     {0x115f, 0x1160},   {0x1680, 0x1680},
    {0x17b4, 0x17b5}, {0x180b, 0x180f}, {0x2000, 0x200f},   {0x2028, 0x202f},   {0x205f, 0x206f},   {0x2800, 0x2800},
    {0x3000, 0x3000}, {0x3164, 0x3164}, {0xd800, 0xf8ff},   {0xfdd0, 0xfdef},   {0xfe00, 0xfe0f},   {0xfeff, 0xfeff},
    {0xffa0, 0xffa0}, {0xfff0, 0xffff}, {0x1d173, 0x1d17a}, {0x1fffe, 0x1ffff}, {0x2fffe, 0x2ffff}, {0x3fffe, 0x10ffff},
};

/// @param character a valid sequence of more than one byte
char32_t codeOf(std::string_view character) {
  const auto at = [&](std::size_t i) { return static_cast<unsigned char>(character[i]); };
  char32_t code = at(0) & (0xffU >> (character.size() + 1));
  for (std::size_t i = 1; i < character.size(); ++i)
    code = code << 6 | (at(i) & 0x3fU);
  return code;
}

bool isHidden(std::string_view character) {
  const char32_t code = codeOf(character);
  return std::any_of(std::begin(HIDDEN), std::end(HIDDEN),
                     [&](const Run &run) { return code >= run.first && code <= run.last; });
}

} // namespace

std::size_t characterBytes(std::string_view text) {
  const auto at = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  if (at(0) < 0x80)
    return 1;
  for (const Sequence &sequence : SEQUENCES) {
    if (at(0) < sequence.first || at(0) > sequence.last)
      continue;
    if (text.size() < sequence.bytes || at(1) < sequence.second_first || at(1) > sequence.second_last)
      return 0;
    for (std::size_t i = 2; i < sequence.bytes; ++i)
      if (at(i) < 0x80 || at(i) > 0xbf)
        return 0;
    return sequence.bytes;
  }
  return 0;
}

std::string printable(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes)
    if (isPrintable(byte))
      text += byte;
    else
      appendEscape(text, byte);
  return text;
}

std::string visible(std::string_view bytes) {
  std::string text;
  while (!bytes.empty()) {
    const std::size_t taken = std::max<std::size_t>(characterBytes(bytes), 1);
    const std::string_view character = bytes.substr(0, taken);
    text += taken > 1 && !isHidden(character) ? std::string(character) : printable(character);
    bytes.remove_prefix(taken);
  }
  return text;
}

std::string escaped(std::string_view bytes) {
  std::string text;
  while (!bytes.empty()) {
    const std::size_t taken = bytes[0] == '\\' ? 0 : characterBytes(bytes);
    if (taken == 0)
      appendEscape(text, bytes[0]);
    else
      text += bytes.substr(0, taken);
    bytes.remove_prefix(std::max<std::size_t>(taken, 1));
  }
  return text;
}

std::optional<std::string> unescaped(std::string_view text) {
  std::string bytes;
  for (std::size_t at = text.find('\\'); at != text.npos; at = text.find('\\')) {
    bytes += text.substr(0, at);
    text.remove_prefix(at);
    if (text.size() < 4 || text[1] != 'x')
      return std::nullopt;
    const std::size_t high = DIGITS.find(text[2]), low = DIGITS.find(text[3]);
    if (high == DIGITS.npos || low == DIGITS.npos)
      return std::nullopt;
    bytes += static_cast<char>(high << 4 | low);
    text.remove_prefix(4);
  }
  bytes += text;
  return bytes;
}

std::size_t controlByte(std::string_view bytes) {
  for (std::size_t at = 0; at < bytes.size();) {
    const auto byte = static_cast<unsigned char>(bytes[at]);
    const std::size_t taken = characterBytes(bytes.substr(at));
    if (byte < ' ' || byte == 0x7f || (taken == 0 && byte >= 0x80 && byte <= 0x9f))
      return at;
    if (byte == 0xc2 && taken == 2 && static_cast<unsigned char>(bytes[at + 1]) <= 0x9f)
      return at + 1;
    at += std::max<std::size_t>(taken, 1);
  }
  return bytes.npos;
}

std::string oneLine(std::string_view text, std::string (*show)(std::string_view)) {
  std::string line;
  while (!text.empty()) {
    const std::string_view part = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), part.size() + 1));
    const std::size_t begin = part.find_first_not_of(' ');
    if (begin == part.npos)
      continue;
    line += line.empty() ? "" : "; ";
    line += show(part.substr(begin));
  }
  return line;
}

} // namespace kova
