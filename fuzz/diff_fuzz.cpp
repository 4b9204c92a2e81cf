/// libFuzzer target: two files through kbdiff. Four bytes say how long the first one is. Half of the inputs are made
/// anew: a file that was damaged by its structure, and another one or the same with some words changed.
#include "diff/tests/pairs.h"
#include "fuzz/target.h"
#include "mend/tests/damage.h"

#include <algorithm>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t *data, std::size_t size, std::size_t max_size);

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size) {
  if (size < sizeof(kova::Word))
    return 0;
  std::size_t length = 0;
  for (std::size_t i = 0; i < sizeof(kova::Word); ++i)
    length = length << 8 | data[i];
  const std::span<const unsigned char> both(data + sizeof(kova::Word), size - sizeof(kova::Word));
  length = std::min(length, both.size());
  return kova::fuzz::endRound(kova::diff::brokenPair(both.first(length), both.subspan(length)));
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t *data, std::size_t size, std::size_t max_size,
                                               unsigned int seed) {
  using namespace kova;
  if (seed % 2 == 0)
    return LLVMFuzzerMutate(data, size, max_size);
  std::mt19937 random(seed);
  const harness::Bytes a = mend::damagedFile(seed);
  harness::Bytes b = seed % 8 == 1 ? mend::damagedFile(seed + 1) : a;
  for (std::size_t i = random() % 4; i > 0 && b.size() >= sizeof(Word); --i)
    harness::setWordAt(b, random() % (b.size() / sizeof(Word)) * sizeof(Word), static_cast<Word>(random() % 64));
  harness::Bytes input(sizeof(Word));
  harness::setWordAt(input, 0, static_cast<Word>(a.size()));
  input.insert(input.end(), a.begin(), a.end());
  input.insert(input.end(), b.begin(), b.end());
  size = std::min(input.size(), max_size);
  std::copy_n(input.begin(), size, data);
  return size;
}
