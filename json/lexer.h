/// Reading JSON from a stream, piece by piece: the caller asks for what has to come next.
///
/// Every function that reads returns false after an error, which is kept with its place; then all others do. Nothing is
/// read that nobody asked for, so a document can be no deeper than what it is about. `path` says where in the document
/// the reading is.
#pragma once

#include "kova/words.h"

#include <array>
#include <charconv>
#include <string>
#include <string_view>

namespace kova::json {

struct Lexer {
  static constexpr std::size_t BYTES = 256 * 1024;
  static constexpr std::size_t LONGEST_NUMBER = 256;
  static constexpr std::size_t DEEPEST = 16; ///< more than any document has

  explicit Lexer(std::FILE *from) : stream(from), buffer(std::make_unique_for_overwrite<char[]>(BYTES + 1)) {
    at = end = buffer.get();
    *end = '\0';
  }

  /// A step of the path: a key, or a position in an array.
  struct Step {
    const char *key;
    std::size_t position;
  };

  std::FILE *stream; ///< not owned
  std::unique_ptr<char[]> buffer;
  char *at;
  char *end;                    ///< a zero stands there
  std::uint64_t begin = 0;      ///< place of the buffer in the document
  std::uint64_t lines = 0;      ///< line ends before the buffer
  std::uint64_t line_begin = 0; ///< place behind the last of them
  std::array<Step, DEEPEST> path = {};
  std::size_t depth = 0;
  std::string text;  ///< of the last key or string that was not plain
  std::string error; ///< empty while all is well
};

/// Notes an error at the present place, unless there is one: "LINE:COLUMN: PATH: what". @return false
bool fail(Lexer &in, const std::string &what);

/// Reads on, keeping what is not used yet. @return false at the end of the stream
bool refill(Lexer &in);

/// @return the next character that is no blank, which is not taken; 0 at the end.
inline char peek(Lexer &in) {
  for (;;) {
    while (*in.at == ' ' || *in.at == '\n' || *in.at == '\r' || *in.at == '\t')
      ++in.at;
    if (*in.at != '\0' || in.at != in.end || !refill(in))
      return *in.at;
  }
}

/// Takes one character. @param what is said to be expected
inline bool take(Lexer &in, char character, const char *what) {
  if (peek(in) != character)
    return fail(in, std::string("expected ") + what);
  ++in.at;
  return true;
}

/// Takes what leads to the next item of an array or an object, or its closing bracket. @param first in the beginning
/// true. @return whether there is an item
inline bool next(Lexer &in, char closing, bool &first) {
  const char character = peek(in);
  if (character == closing) {
    ++in.at;
    return false;
  }
  if (!first) {
    if (character != ',')
      return fail(in, closing == ']' ? "expected , or ]" : "expected , or }");
    ++in.at;
  }
  first = false;
  return true;
}

/// Reads the key of the next member, up to the colon. It stays good until something else is read.
bool readKey(Lexer &in, std::string_view &key);

/// Reads an object. `member` gets each key, and reads its value. @return false after an error
template <class Member> bool readObject(Lexer &in, Member member) {
  bool first = true;
  if (!take(in, '{', "an object"))
    return false;
  while (next(in, '}', first)) {
    std::string_view key;
    if (!readKey(in, key) || !member(key))
      return false;
  }
  return in.error.empty();
}

/// Reads a string whole into `text`, as UTF-8.
bool readString(Lexer &in);

/// Reads a string of base64.
bool readBase64(Lexer &in, std::vector<unsigned char> &bytes);

/// Reads what is no plain number: "0x...", "nan:...", or a mistake.
bool readOtherWord(Lexer &in, Word &word, bool real);

/// Reads a float. @param word its bits
bool readReal(Lexer &in, Word &word);

/// Reads a word, in any of the forms in which words are written.
inline bool readWord(Lexer &in, Word &word, bool real) {
  const char begin = peek(in);
  if (in.end - in.at < static_cast<std::ptrdiff_t>(Lexer::LONGEST_NUMBER))
    refill(in);
  if (begin == '"')
    return readOtherWord(in, word, real);
  if (real)
    return readReal(in, word);
  const char *digits = in.at + (begin == '-' ? 1 : 0);
  const char *digit = digits;
  std::uint64_t value = 0;
  while (*digit >= '0' && *digit <= '9' && digit - digits < 10)
    value = 10 * value + static_cast<std::uint64_t>(*digit++ - '0');
  const bool is_whole = digit != digits && (*digits != '0' || digit == digits + 1) && *digit != '.' &&
                        (*digit | 0x20) != 'e' && !(*digit >= '0' && *digit <= '9');
  if (!is_whole || value > (begin == '-' ? 0x80000000 : 0xffffffff))
    return readOtherWord(in, word, real);
  word = static_cast<Word>(begin == '-' ? 0 - value : value);
  in.at += digit - in.at;
  return true;
}

/// Enters an object's member or an item of an array, for messages; `leave` goes back.
inline void enter(Lexer &in, const char *key, std::size_t position = 0) { in.path[in.depth++] = {key, position}; }
inline void leave(Lexer &in) { --in.depth; }

} // namespace kova::json
