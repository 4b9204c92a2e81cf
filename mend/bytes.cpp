#include "mend/bytes.h"

namespace kova::mend {

void FileBytes::copyWords(std::uint64_t offset, std::uint64_t end, std::span<Word> words) const {
  for (Word &word : words) {
    word = offset + sizeof word <= end ? (*this)[offset] : 0;
    offset += sizeof word;
  }
}

std::uint64_t FileBytes::findWord(std::uint64_t from, std::uint64_t to, Word word) const {
  constexpr std::size_t ROW = 16; // of words, which are compared at once
  const std::array pattern = {byteOf(word, 0), byteOf(word, 1), byteOf(word, 2), byteOf(word, 3)};
  const auto stands_in_row = [&](std::uint64_t at) {
    bool stands = false;
    for (std::size_t i = 0; i < ROW; ++i)
      stands |= std::memcmp(bytes.data() + at + i * sizeof word, pattern.data(), sizeof word) == 0;
    return stands;
  };
  std::uint64_t at = from;
  while (at + ROW * sizeof word <= std::min(to, size()) && !isTried(at, ROW * sizeof word) && !stands_in_row(at))
    at += ROW * sizeof word;
  while (at < to && (*this)[at] != word)
    at += sizeof word;
  return at;
}

} // namespace kova::mend
