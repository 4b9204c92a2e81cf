#include "tests/damage.h"

#include "harness/bytes.h"

#include <algorithm>

namespace kova::test {

namespace {

Bytes firstBytes(const Bytes &bytes, std::size_t size) {
  return Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
}

} // namespace

void everyCut(const File &file, const Visit &visit) {
  for (std::size_t size = 0; size < file.bytes.size(); ++size)
    visit(firstBytes(file.bytes, size), "cut to " + std::to_string(size));
}

void everyCutOfAList(const File &file, const Visit &visit) {
  const Bytes &whole = file.bytes;
  const auto lists = std::span(LISTS).first(wordAt(whole, 0) == VERSION_1 ? VERSION_1_LIST_NUM : LIST_NUM);
  for (std::size_t size = wordAt(whole, 12); size < whole.size(); size += 4) {
    Bytes cut = firstBytes(whole, size);
    setWordAt(cut, 4, static_cast<Word>(size));
    std::size_t left = size - wordAt(whole, 12);
    bool between_lists = true;
    for (const ListRow &list : lists) {
      const std::size_t bytes = wordAt(whole, sizeOffset(list));
      between_lists = between_lists && (left >= bytes || left == 0);
      setWordAt(cut, sizeOffset(list), static_cast<Word>(std::min(bytes, left)));
      left -= std::min(bytes, left);
    }
    visit(cut, "told to end at " + std::to_string(size) + (between_lists ? ", whole" : ""));
  }
}

void everyByte(const File &file, const Visit &visit) {
  Bytes bytes = file.bytes;
  for (unsigned char &byte : bytes) {
    const unsigned char old = byte;
    for (const int value : {old + 1, old - 1, 0, 0xff}) {
      byte = static_cast<unsigned char>(value);
      if (byte != old)
        visit(bytes, "byte " + std::to_string(&byte - bytes.data()));
    }
    byte = old;
  }
}

void everyWord(const File &file, const Visit &visit) {
  Bytes bytes = file.bytes;
  for (std::size_t at = 0; at + 4 <= bytes.size(); at += 4) {
    const Word old = wordAt(bytes, at);
    for (const Word value : {0U, 1U, ~0U, old + 1, old - 1, 0x40000001U, 0x7fffffffU, 0x80000000U}) {
      setWordAt(bytes, at, value);
      visit(bytes, "word " + std::to_string(at / 4) + " = " + std::to_string(value));
    }
    setWordAt(bytes, at, old);
  }
}

} // namespace kova::test
