/// Parts of records: what a line table covers where a record is not all lines.
#pragma once

#include "kova/words.h"

#include <algorithm>
#include <array>
#include <bit>

namespace kova {

/// A single item as the array of one that the array writers take.
template <class Item> std::span<const Item> one(const Item &item) { return {&item, 1}; }

/// @return at which word of a record a field stands.
template <class Record, class Field> consteval std::size_t wordOf(Field Record::*field) {
  Record record{};
  record.*field = 1;
  const auto words = std::bit_cast<std::array<Word, sizeof(Record) / sizeof(Word)>>(record);
  return static_cast<std::size_t>(std::find_if(words.begin(), words.end(), [](Word word) { return word != 0; }) -
                                  words.begin());
}

/// The words of a record from one field to another, both included: what a line table covers where a record is not all
/// lines. Made from the record on the way into `putRecord`.
template <class Record, auto FIRST, auto LAST> struct Run {
  static constexpr std::size_t first = wordOf(FIRST);
  std::array<Word, wordOf(LAST) + 1 - first> words;

  Run(const Record &record) {
    const auto all = std::bit_cast<std::array<Word, sizeof(Record) / sizeof(Word)>>(record);
    std::copy_n(all.begin() + first, words.size(), words.begin());
  }
};

} // namespace kova
