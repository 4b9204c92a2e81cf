#include "json/lexer.h"

#include "common/text.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <optional>

namespace kova::json {

namespace {

constexpr const char *WHOLE = "expected a whole number from -2147483648 to 4294967295, or \"0x\" and up to 8 digits";
constexpr const char *REAL = "expected a number that a float can hold, or \"nan:\" and 8 digits";

std::string pathText(const Lexer &in) {
  std::string text;
  for (std::size_t i = 0; i < in.depth; ++i) {
    const Lexer::Step &step = in.path[i];
    if (step.key == nullptr)
      text.append("[").append(std::to_string(step.position)).append("]");
    else
      text.append(text.empty() ? "" : ".").append(step.key);
  }
  return text;
}

void appendUtf8(std::string &text, Word character) {
  const auto tail = [&](int shift) { text += static_cast<char>(0x80 | (character >> shift & 0x3f)); };
  if (character < 0x80) {
    text += static_cast<char>(character);
  } else if (character < 0x800) {
    text += static_cast<char>(0xc0 | character >> 6);
    tail(0);
  } else if (character < 0x10000) {
    text += static_cast<char>(0xe0 | character >> 12);
    tail(6), tail(0);
  } else {
    text += static_cast<char>(0xf0 | character >> 18);
    tail(12), tail(6), tail(0);
  }
}

int digitOf(char character) {
  const char *const digits = "0123456789abcdef";
  const char lower = character >= 'A' && character <= 'F' ? static_cast<char>(character | 0x20) : character;
  const char *const found = lower == '\0' ? nullptr : std::strchr(digits, lower);
  return found == nullptr ? -1 : static_cast<int>(found - digits);
}

/// @return the next byte, taken; 0 at the end.
char takeByte(Lexer &in) {
  if (in.at == in.end && !refill(in))
    return '\0';
  return *in.at++;
}

/// Reads the four digits behind \u.
bool readUnit(Lexer &in, Word &unit) {
  unit = 0;
  for (int i = 0; i < 4; ++i) {
    const int digit = digitOf(takeByte(in));
    if (digit < 0)
      return fail(in, "expected four hexadecimal digits behind \\u");
    unit = unit << 4 | static_cast<Word>(digit);
  }
  return true;
}

bool readUnicode(Lexer &in) {
  Word unit, low;
  if (!readUnit(in, unit))
    return false;
  if (unit >= 0xd800 && unit <= 0xdfff) {
    const bool is_pair = unit < 0xdc00 && takeByte(in) == '\\' && takeByte(in) == 'u' && readUnit(in, low) &&
                         low >= 0xdc00 && low <= 0xdfff;
    if (!is_pair)
      return fail(in, "half a character: \\ud800 to \\udfff come in pairs");
    unit = 0x10000 + ((unit & 0x3ff) << 10) + (low & 0x3ff);
  }
  appendUtf8(in.text, unit);
  return true;
}

bool readEscape(Lexer &in) {
  const char character = takeByte(in);
  constexpr std::string_view FROM = "\"\\/bfnrt";
  constexpr std::string_view TO = "\"\\/\b\f\n\r\t";
  if (character == 'u')
    return readUnicode(in);
  const std::size_t which = character == '\0' ? FROM.npos : FROM.find(character);
  if (which == FROM.npos)
    return fail(in, "expected one of \"\\/bfnrtu behind the backslash");
  in.text += TO[which];
  return true;
}

bool isUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t bytes = characterBytes(text);
    if (bytes == 0)
      return false;
    text.remove_prefix(bytes);
  }
  return true;
}

/// Reads a string up to its closing quote; the opening one is taken.
bool readStringBehindQuote(Lexer &in) {
  in.text.clear();
  for (;;) {
    const char *const from = in.at;
    while (in.at != in.end && *in.at != '"' && *in.at != '\\' && static_cast<unsigned char>(*in.at) >= 0x20)
      ++in.at;
    in.text.append(from, static_cast<std::size_t>(in.at - from));
    if (in.at == in.end && refill(in))
      continue;
    if (in.at == in.end)
      return fail(in, "the string does not end");
    const char character = *in.at;
    if (character != '"' && character != '\\')
      return fail(in, "a control character in a string: write \\u00 and its two digits");
    ++in.at;
    if (character == '"')
      return isUtf8(in.text) || fail(in, "the string is no valid UTF-8");
    if (!readEscape(in))
      return false;
  }
}

/// @return the digits of a word in hexadecimal; none where they are not.
std::optional<Word> hexWord(std::string_view digits) {
  if (digits.empty() || digits.size() > 8)
    return std::nullopt;
  Word word = 0;
  for (const char character : digits) {
    const int digit = digitOf(character);
    if (digit < 0)
      return std::nullopt;
    word = word << 4 | static_cast<Word>(digit);
  }
  return word;
}

/// Whether a number is written as JSON has it; `std::from_chars` takes more.
bool isNumber(std::string_view text) {
  const auto digits = [&] {
    const std::size_t count = std::min(text.find_first_not_of("0123456789"), text.size());
    text.remove_prefix(count);
    return count;
  };
  if (text.starts_with('-'))
    text.remove_prefix(1);
  const bool zero = text.starts_with('0');
  const std::size_t whole = digits();
  bool ok = whole > 0 && !(zero && whole > 1);
  if (text.starts_with('.')) {
    text.remove_prefix(1);
    ok = digits() > 0 && ok;
  }
  if (text.starts_with('e') || text.starts_with('E')) {
    text.remove_prefix(1);
    if (text.starts_with('+') || text.starts_with('-'))
      text.remove_prefix(1);
    ok = digits() > 0 && ok;
  }
  return ok && text.empty();
}

/// The value of each character of base64; 64 of others.
constexpr auto BASE64 = [] {
  std::array<unsigned char, 256> values{};
  values.fill(64);
  unsigned char value = 0;
  for (const char character : std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"))
    values[static_cast<unsigned char>(character)] = value++;
  return values;
}();

/// Takes the end of a base64 string, behind `count` characters of an incomplete group with these bits.
bool endBase64(Lexer &in, std::vector<unsigned char> &bytes, int count, Word bits) {
  constexpr const char *WRONG =
      "expected base64: groups of four characters of A-Z a-z 0-9 + /, the last one filled up with =";
  if (count == 1)
    return fail(in, WRONG);
  for (int i = count; count > 0 && i < 4; ++i)
    if (takeByte(in) != '=')
      return fail(in, WRONG);
  if (count >= 2)
    bytes.push_back(static_cast<unsigned char>(count == 2 ? bits >> 4 : bits >> 10));
  if (count == 3)
    bytes.push_back(static_cast<unsigned char>(bits >> 2));
  const bool rest = (count == 2 && (bits & 15) != 0) || (count == 3 && (bits & 3) != 0);
  return (takeByte(in) == '"' && !rest) || fail(in, WRONG);
}

} // namespace

bool fail(Lexer &in, const std::string &what) {
  if (!in.error.empty())
    return false;
  const auto before = std::string_view(in.buffer.get(), static_cast<std::size_t>(in.at - in.buffer.get()));
  const auto line = in.lines + static_cast<std::uint64_t>(std::count(before.begin(), before.end(), '\n'));
  const std::size_t last = before.rfind('\n');
  const std::uint64_t column =
      last == before.npos ? in.begin + before.size() - in.line_begin : before.size() - last - 1;
  const std::string path = pathText(in);
  in.error.append(std::to_string(line + 1)).append(":").append(std::to_string(column + 1)).append(": ");
  if (!path.empty())
    in.error.append(path).append(": ");
  const bool broken = std::ferror(in.stream) != 0;
  in.error += broken ? "the document cannot be read" : what;
  return false;
}

bool refill(Lexer &in) {
  const auto used = std::string_view(in.buffer.get(), static_cast<std::size_t>(in.at - in.buffer.get()));
  in.lines += static_cast<std::uint64_t>(std::count(used.begin(), used.end(), '\n'));
  if (const std::size_t last = used.rfind('\n'); last != used.npos)
    in.line_begin = in.begin + last + 1;
  in.begin += used.size();
  const auto kept = static_cast<std::size_t>(in.end - in.at);
  std::memmove(in.buffer.get(), in.at, kept);
  in.at = in.buffer.get();
  const std::size_t got = std::fread(in.at + kept, 1, Lexer::BYTES - kept, in.stream);
  in.end = in.at + kept + got;
  *in.end = '\0';
  return got > 0;
}

bool readString(Lexer &in) { return take(in, '"', "a string") && readStringBehindQuote(in); }

bool readKey(Lexer &in, std::string_view &key) {
  if (peek(in) != '"')
    return fail(in, "expected a key in quotes");
  if (in.end - in.at < static_cast<std::ptrdiff_t>(Lexer::LONGEST_NUMBER))
    refill(in);
  const char *const from = ++in.at;
  while (*in.at >= ' ' && *in.at != '"' && *in.at != '\\') // neither the end nor what is beyond ASCII
    ++in.at;
  if (*in.at == '"' && *(in.at + 1) == ':') {
    key = {from, static_cast<std::size_t>(in.at - from)};
    in.at += 2;
    return true;
  }
  in.at += from - in.at;
  if (!readStringBehindQuote(in) || !take(in, ':', ": behind the key"))
    return false;
  key = in.text;
  return true;
}

bool readOtherWord(Lexer &in, Word &word, bool real) {
  const char *const expected = real ? REAL : WHOLE;
  if (peek(in) != '"')
    return fail(in, expected);
  const char *const from = in.at + 1;
  const auto *const quote = static_cast<const char *>(std::memchr(from, '"', static_cast<std::size_t>(in.end - from)));
  const std::string_view text(from, quote == nullptr ? 0 : static_cast<std::size_t>(quote - from));
  std::optional<Word> found;
  if (text.starts_with("0x"))
    found = hexWord(text.substr(2));
  else if (text.starts_with("nan:") && text.size() == 12)
    found = hexWord(text.substr(4));
  if (!found)
    return fail(in, expected);
  word = *found;
  in.at += quote + 1 - in.at;
  return true;
}

bool readReal(Lexer &in, Word &word) {
  float value = 0;
  auto [behind, error] = std::from_chars(in.at, in.end, value);
  if (error == std::errc::result_out_of_range) { // what is too small is rounded, to zero
    value = std::strtof(in.at, nullptr);
    error = std::isinf(value) ? error : std::errc();
  }
  if (error != std::errc() || behind - in.at >= static_cast<std::ptrdiff_t>(Lexer::LONGEST_NUMBER) ||
      !isNumber({in.at, static_cast<std::size_t>(behind - in.at)}))
    return fail(in, REAL);
  word = std::bit_cast<Word>(value);
  in.at += behind - in.at;
  return true;
}

bool readBase64(Lexer &in, std::vector<unsigned char> &bytes) {
  bytes.clear();
  if (!take(in, '"', "a string of base64"))
    return false;
  Word bits = 0;
  int count = 0;
  for (;;) {
    if (in.at == in.end && !refill(in))
      return fail(in, "the string does not end");
    const unsigned char value = BASE64[static_cast<unsigned char>(*in.at)];
    if (value == 64)
      return endBase64(in, bytes, count, bits);
    ++in.at;
    bits = bits << 6 | value;
    if (++count < 4)
      continue;
    for (const int shift : {16, 8, 0})
      bytes.push_back(static_cast<unsigned char>(bits >> shift));
    bits = 0;
    count = 0;
  }
}

} // namespace kova::json
