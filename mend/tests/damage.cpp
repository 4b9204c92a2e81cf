#include "mend/tests/damage.h"

#include <algorithm>

namespace kova::mend {

namespace {

using harness::setWordAt;
using harness::wordAt;
using samples::File;
using samples::NamedWord;

bool isOfMakerBlock(const NamedWord &word) {
  return word.field.starts_with("van[") || (word.kind.ends_with("Ext") && word.kind != "FileHeaderExt");
}

Word otherValue(const File &file, std::size_t at, std::mt19937 &random) {
  const Word old = wordAt(file.bytes, at);
  const auto size = static_cast<Word>(file.bytes.size());
  const Word values[] = {0,
                         1,
                         2,
                         old + 1,
                         old - 1,
                         old + 4,
                         old - 4,
                         old ^ 1U << random() % 32,
                         old << 8,
                         ~0U,
                         0x7fffffff,
                         0x80000000,
                         0x40000001,
                         0x20000001,
                         size,
                         size / 4,
                         (size - static_cast<Word>(at)) / 8,
                         wordAt(file.bytes, random() % (file.bytes.size() / 4) * 4)};
  return values[random() % std::size(values)];
}

/// @return any of the words of which that holds; null if there is none.
template <class Holds> const NamedWord *anyWord(const File &file, std::mt19937 &random, Holds holds) {
  for (int tries = 0; tries < 100; ++tries) {
    const NamedWord &word = file.words[random() % file.words.size()];
    if (word.offset + 4 <= file.bytes.size() && holds(word))
      return &word;
  }
  return nullptr;
}

/// The word with the size of the record, or of the maker block, that the word at `place` belongs to.
void endWord(File &file, std::size_t place, const char *ending, std::size_t begin) {
  for (const NamedWord &word : file.words)
    if (word.offset >= begin && word.offset < place && word.field.ends_with(ending))
      return setWordAt(file.bytes, word.offset, static_cast<Word>(place - begin));
}

} // namespace

bool isStructure(const NamedWord &word) {
  return word.field.find("num") != std::string::npos || word.field.find("size") != std::string::npos ||
         word.field.find("tag") != std::string::npos || word.field.find("type") != std::string::npos ||
         word.field.starts_with("this_");
}

const std::vector<samples::Sample> &madeFiles() {
  static const std::vector<samples::Sample> FILES = samples::goodSamples();
  return FILES;
}

void endAt(File &file, std::size_t place) {
  std::size_t begin = wordAt(file.bytes, 12);
  for (const ListRow &list : LISTS) {
    const std::size_t size_at = harness::sizeOffset(list);
    if (size_at + 4 > std::min<std::size_t>(wordAt(file.bytes, 12), place))
      break;
    const std::size_t size = wordAt(file.bytes, size_at);
    const std::size_t left = std::min(size, place - std::min(begin, place));
    setWordAt(file.bytes, size_at, static_cast<Word>(left));
    if (left != 0 && left < size)
      endWord(file, place, "_size", begin);
    begin += size;
  }
  setWordAt(file.bytes, 4, static_cast<Word>(place));
  file.bytes.resize(place);
}

harness::Bytes damagedFile(std::uint32_t seed) {
  std::mt19937 random(seed);
  File file = madeFiles()[random() % madeFiles().size()].file;
  for (std::size_t i = random() % 4; i != 0; --i)
    if (const NamedWord *const word = anyWord(file, random, isStructure))
      setWordAt(file.bytes, word->offset, otherValue(file, word->offset, random));
  const bool in_maker_block = random() % 2 == 0;
  const NamedWord *const cut =
      anyWord(file, random, [&](const NamedWord &word) { return !in_maker_block || isOfMakerBlock(word); });
  if (cut == nullptr || random() % 4 == 0)
    return file.bytes;
  const std::size_t place = cut->offset + random() % 5;
  if (place > FILE_HEADER_BYTES && random() % 2 == 0)
    endAt(file, place);
  else
    file.bytes.resize(place);
  return file.bytes;
}

} // namespace kova::mend
