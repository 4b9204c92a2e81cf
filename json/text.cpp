#include "json/text.h"

#include <algorithm>

namespace kova::json {

namespace {

constexpr char BASE64[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// Puts a line end and blanks where the innermost brackets have items on lines of their own.
void breakLine(Text &out) {
  if (!out.level[out.depth].breaks)
    return;
  put(out, '\n');
  const std::size_t blanks = out.layout == Layout::pretty ? 2 * out.depth : 0;
  std::fill_n(room(out, blanks), blanks, ' ');
  out.used += blanks;
}

/// Whether the items of brackets that are opened at this depth stand on lines of their own: the document is at depth 1,
/// its lists at 2, their arrays of elements at 3.
bool breaksAt(const Text &out) {
  return out.layout == Layout::pretty || (out.layout == Layout::lines && out.depth <= 3);
}

/// Puts the base64 of `count` groups of up to three bytes; `byteAt(i)` is a byte.
template <class ByteAt> void putGroups(Text &out, std::size_t size, ByteAt byte_at) {
  put(out, '"');
  for (std::size_t at = 0; at < size; at += 3) {
    const std::size_t left = std::min<std::size_t>(size - at, 3);
    Word bits = 0;
    for (std::size_t i = 0; i < 3; ++i)
      bits = bits << 8 | (i < left ? byte_at(at + i) : 0);
    char *const to = room(out, 4);
    for (std::size_t i = 0; i < 4; ++i)
      to[i] = i <= left ? BASE64[bits >> (18 - 6 * i) & 63] : '=';
    out.used += 4;
  }
  put(out, '"');
}

} // namespace

void flush(Text &out) {
  if (!out.failed)
    out.failed = std::fwrite(out.buffer.data(), 1, out.used, out.stream) != out.used;
  out.used = 0;
}

void put(Text &out, std::string_view text) {
  while (!text.empty()) {
    const std::size_t piece = std::min<std::size_t>(text.size(), 4096);
    std::copy_n(text.data(), piece, room(out, piece));
    out.used += piece;
    text.remove_prefix(piece);
  }
}

void open(Text &out, char bracket, bool inline_always) {
  put(out, bracket);
  ++out.depth;
  out.level[out.depth] = {!inline_always && breaksAt(out), true};
}

void close(Text &out, char bracket) {
  const Text::Level closed = out.level[out.depth--];
  if (closed.breaks && !closed.first) {
    put(out, '\n');
    const std::size_t blanks = out.layout == Layout::pretty ? 2 * out.depth : 0;
    std::fill_n(room(out, blanks), blanks, ' ');
    out.used += blanks;
  }
  put(out, bracket);
}

void nextItem(Text &out) {
  if (!out.level[out.depth].first)
    put(out, ',');
  out.level[out.depth].first = false;
  breakLine(out);
}

void putKey(Text &out, std::string_view key) {
  nextItem(out);
  put(out, '"');
  put(out, key);
  put(out, out.layout == Layout::pretty ? "\": " : "\":");
}

void putString(Text &out, std::string_view text) {
  put(out, '"');
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte >= 0x20 && character != '"' && character != '\\') {
      put(out, character);
      continue;
    }
    put(out, '\\');
    if (byte >= 0x20) {
      put(out, character);
      continue;
    }
    put(out, "u00");
    put(out, "0123456789abcdef"[byte >> 4]);
    put(out, "0123456789abcdef"[byte & 15]);
  }
  put(out, '"');
}

void putBase64(Text &out, std::span<const unsigned char> bytes) {
  putGroups(out, bytes.size(), [&](std::size_t at) { return bytes[at]; });
}

void putBase64(Text &out, std::span<const Word> words) {
  putGroups(out, words.size_bytes(), [&](std::size_t at) { return words[at / 4] >> (24 - 8 * (at % 4)) & 0xff; });
}

char *writeNotFinite(char *to, Word word) {
  char hex[16];
  writeHex(hex, word);
  to = std::copy_n("\"nan:", 5, to);
  return std::copy_n(hex + 3, 9, to); // the digits and the quote
}

} // namespace kova::json
