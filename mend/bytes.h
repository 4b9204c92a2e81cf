/// The bytes of a file as its big-endian words. All of mending reads and writes a file through this.
#pragma once

#include "kova/words.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <span>

namespace kova::mend {

/// Nothing outside of the file is read or written: a word that does not lie within it whole is 0, and cannot be set.
class FileBytes {
public:
  explicit FileBytes(std::span<unsigned char> file) : bytes(file) {}

  std::uint64_t size() const { return bytes.size(); }
  bool holds(std::uint64_t offset) const { return offset < bytes.size() && bytes.size() - offset >= sizeof(Word); }

  Word operator[](std::uint64_t offset) const {
    if (!holds(offset))
      return 0;
    return isTried(offset, sizeof(Word)) ? overlaid(offset) : load(bytes.data() + offset);
  }
  Word version() const { return (*this)[0] & 0xffff; }

  /// @return the fixed words of a record. Those that do not lie before `end` are 0, too.
  template <class Head> Head head(std::uint64_t offset, std::uint64_t end) const {
    constexpr std::size_t WORDS = sizeof(Head) / sizeof(Word);
    end = std::min(end, size());
    if (offset < end && end - offset >= sizeof(Head) && !isTried(offset, sizeof(Head))) [[likely]]
      return loadHead<Head>(bytes.data() + offset, std::make_index_sequence<WORDS>());
    std::array<Word, WORDS> words;
    copyWords(offset, end, words);
    return std::bit_cast<Head>(words);
  }

  void set(std::uint64_t offset, Word word) {
    if (holds(offset))
      for (std::size_t i = 0; i < sizeof word; ++i)
        bytes[static_cast<std::size_t>(offset) + i] = byteOf(word, i);
  }

  /// @return the same file with another word at a place, for those who read it through the result. It cannot be nested.
  FileBytes with(std::uint64_t offset, Word word) const {
    FileBytes file = *this;
    file.tried_at = offset;
    file.tried = word;
    return file;
  }

  /// @return the first of the places `from`, `from` + 4 and so on before `to` at which the word stands; else the first
  /// of them that is not before `to`, which lies within the file.
  std::uint64_t findWord(std::uint64_t from, std::uint64_t to, Word word) const;

  /// The bytes from `begin` to `end`, as far as they are there.
  std::span<const unsigned char> between(std::uint64_t begin, std::uint64_t end) const {
    const std::uint64_t from = std::min(begin, size());
    return bytes.subspan(static_cast<std::size_t>(from),
                         static_cast<std::size_t>(std::max(from, std::min(end, size())) - from));
  }

private:
  static constexpr std::uint64_t NOWHERE = std::uint64_t{1} << 63;

  static Word load(const unsigned char *at) {
    return Word{at[0]} << 24 | Word{at[1]} << 16 | Word{at[2]} << 8 | Word{at[3]};
  }
  /// Word by word, so that the compiler leaves out those that nobody asks for.
  template <class Head, std::size_t... I> static Head loadHead(const unsigned char *at, std::index_sequence<I...>) {
    const Word words[] = {load(at + I * sizeof(Word))...};
    Head head;
    auto *const to = reinterpret_cast<unsigned char *>(&head);
    (std::memcpy(to + I * sizeof(Word), &words[I], sizeof(Word)), ...);
    return head;
  }
  void copyWords(std::uint64_t offset, std::uint64_t end, std::span<Word> words) const;

  /// @return whether bytes overlap the word that is tried.
  bool isTried(std::uint64_t offset, std::uint64_t length) const {
    return offset + (length - 1) - tried_at < length + sizeof(Word) - 1;
  }

  static unsigned char byteOf(Word word, std::size_t i) { return static_cast<unsigned char>(word >> (24 - 8 * i)); }

  Word overlaid(std::uint64_t offset) const {
    Word word = 0;
    for (std::size_t i = 0; i < sizeof word; ++i) {
      const std::uint64_t at = offset + i;
      const bool is_tried = at - tried_at < sizeof word;
      word = word << 8 |
             (is_tried ? byteOf(tried, static_cast<std::size_t>(at - tried_at)) : bytes[static_cast<std::size_t>(at)]);
    }
    return word;
  }

  std::span<unsigned char> bytes;
  std::uint64_t tried_at = NOWHERE;
  Word tried = 0;
};

} // namespace kova::mend
