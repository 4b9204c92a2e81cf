/// Writing JSON: brackets, commas, line ends and the words of records, through one buffer to a stream.
#pragma once

#include "records/slots.h"

#include <charconv>
#include <vector>

namespace kova::json {

/// Where lines end.
enum class Layout : std::uint8_t {
  compact, ///< nowhere but at the end
  lines,   ///< behind every element of a list
  pretty   ///< behind every member; rows of numbers stay on a line
};

struct Text {
  static constexpr std::size_t BYTES = 256 * 1024;
  static constexpr std::size_t DEEPEST = 16; ///< more than any document has

  std::FILE *stream; ///< not owned
  Layout layout = Layout::compact;
  bool failed = false;
  std::size_t used = 0;
  std::size_t depth = 0;
  struct Level {
    bool breaks = false;
    bool first = true;
  };
  std::array<Level, DEEPEST> level = {};
  std::vector<char> buffer = std::vector<char>(BYTES);
};

/// Hands what is buffered to the stream.
void flush(Text &out);

/// @return room for so many bytes, at most 4096, which `used` is to be raised by.
inline char *room(Text &out, std::size_t bytes) {
  if (out.used + bytes > Text::BYTES)
    flush(out);
  return out.buffer.data() + out.used;
}

inline void put(Text &out, char character) {
  *room(out, 1) = character;
  ++out.used;
}
void put(Text &out, std::string_view text);

/// Begins an object or an array as the next item. @param inline_always whether it stays on one line
void open(Text &out, char bracket, bool inline_always = false);
/// Ends it.
void close(Text &out, char bracket);
/// Begins the next item of an array.
void nextItem(Text &out);
/// Begins the next member of an object.
void putKey(Text &out, std::string_view key);

/// Puts any bytes that are UTF-8 as a JSON string.
void putString(Text &out, std::string_view text);
/// Puts bytes as a string of base64, as they are.
void putBase64(Text &out, std::span<const unsigned char> bytes);
/// The same of words in file order.
void putBase64(Text &out, std::span<const Word> words);

/// The longest form of one word: "nan:7fc00001" in its quotes.
inline constexpr std::size_t WORD_CHARACTERS = 24;

/// Writes 0x and eight digits in quotes. @return the end
inline char *writeHex(char *to, Word word) {
  *to++ = '"';
  *to++ = '0';
  *to++ = 'x';
  for (int shift = 28; shift >= 0; shift -= 4)
    *to++ = "0123456789abcdef"[word >> shift & 15];
  *to++ = '"';
  return to;
}

/// Writes the bits of a float that is no number. @return the end
char *writeNotFinite(char *to, Word word);

/// Writes a word as a slot shows it: a float in the shortest text that gives it back, else in hexadecimal or as a
/// signed number. @return the end
inline char *writeWord(char *to, Word word, bool real, bool hex) {
  if (real) {
    if ((word >> 23 & 0xff) == 0xff)
      return writeNotFinite(to, word);
    return std::to_chars(to, to + WORD_CHARACTERS, std::bit_cast<float>(word)).ptr;
  }
  return hex ? writeHex(to, word) : std::to_chars(to, to + WORD_CHARACTERS, static_cast<Index>(word)).ptr;
}

/// Writes the words of a slot, which are at `words`; several in brackets. @return the end. There is room for
/// `WORD_CHARACTERS` for each of them and two more.
inline char *writeSlot(char *to, const Slot &slot, const unsigned char *words) {
  if (slot.words > 1)
    *to++ = '[';
  for (std::size_t part = 0; part < slot.words; ++part) {
    Word word;
    std::memcpy(&word, words + part * sizeof word, sizeof word);
    if (part > 0)
      *to++ = ',';
    to = writeWord(to, word, (slot.real >> part & 1) != 0, (slot.hex >> part & 1) != 0);
  }
  if (slot.words > 1)
    *to++ = ']';
  return to;
}

/// Puts the words of a slot as a value.
template <class Head> void putSlot(Text &out, const Slot &slot, const Head &head) {
  char *const begin = room(out, slot.words * WORD_CHARACTERS + 2);
  const auto *const words = reinterpret_cast<const unsigned char *>(&head) + slot.first * sizeof(Word);
  out.used += static_cast<std::size_t>(writeSlot(begin, slot, words) - begin);
}

/// Puts an array of items as an array; every one of several words is an array, too.
template <class Item> void putItems(Text &out, const Slot &slot, std::span<const Item> items) {
  const bool broken = slot.words > 1 && !items.empty();
  open(out, '[', !broken);
  const bool breaks = out.level[out.depth].breaks;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (breaks)
      nextItem(out);
    else if (i > 0)
      put(out, ',');
    putSlot(out, slot, items[i]);
  }
  close(out, ']');
}

} // namespace kova::json
