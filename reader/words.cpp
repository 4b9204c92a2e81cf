#include "kova/words.h"

#include "reader/byte_order.h"
#include "reader/elements.h"
#include "reader/file.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <exception>

namespace kova {

namespace {

Stream openInput(const char *path, const char *mode) {
  Stream stream(std::fopen(path, mode));
  if (!stream)
    report<"input-open">({}, {});
  return stream;
}

Stream openOutput(const char *path, const char *mode) {
  Stream stream(std::fopen(path, mode));
  if (!stream)
    report<"output-open">({}, {});
  return stream;
}

} // namespace

void endianSwap4(void *buffer, std::size_t bytes) { copyConverted(buffer, buffer, bytes); }

std::size_t freadEndianSwap4(void *buffer, std::size_t bytes, std::FILE *stream) {
  // Converted piece by piece, while a piece is still in the cache.
  constexpr std::size_t PIECE = 256 * 1024;
  auto *const to = static_cast<unsigned char *>(buffer);
  std::size_t done = 0;
  while (done < bytes) {
    const std::size_t wanted = std::min(PIECE, bytes - done);
    const std::size_t got = readBytes(stream, to + done, wanted);
    endianSwap4(to + done, got);
    done += got;
    if (got < wanted)
      break;
  }
  return done;
}

std::size_t fwriteEndianSwap4(const void *buffer, std::size_t size, std::size_t count, std::FILE *stream) {
  if (size == 0 || count == 0)
    return 0;
  try {
    const auto *const from = static_cast<const unsigned char *>(buffer);
    std::vector<unsigned char> converted(from, from + size * count);
    endianSwap4(converted.data(), converted.size());
    return std::fwrite(converted.data(), 1, converted.size(), stream);
  } catch (const std::exception &) {
    return 0;
  }
}

Stream kvKbReadOpen(const char *path) { return openInput(path, "rb"); }
Stream kvKbWriteOpen(const char *path) { return openOutput(path, "wb"); }
Stream kvKtReadOpen(const char *path) { return openInput(path, "r"); }
Stream kvKtWriteOpen(const char *path) { return openOutput(path, "w"); }

int checkTagAt(const Place &place, Word found, Word expected) {
  return found == expected ? 1 : report<"tag">(place, {found, expected}, found, expected);
}

int kvCheckTag(Word found, Word expected) { return checkTagAt({}, found, expected); }

void kvSetNoExternal(External &external) { external = {-1, -1}; }

int kvTestSet(Word &word, Word value) {
  if (word == value)
    return 0;
  word = value;
  return 1;
}

void kvSetPoly(Word *poly, Word first, Word second, Word third, Word fourth, Word fifth) {
  const std::array<Word, 5> values = {first, second, third, fourth, fifth};
  std::copy(values.begin(), values.end(), poly);
}

void kvSp2_(char *text) { std::replace(text, text + std::strlen(text), ' ', '_'); }

} // namespace kova
