#include "checker/steps.h"

#include <algorithm>

namespace kova {

namespace {

/// The entries of a size table that a count takes in: those whose number is below it, compared signed.
std::span<const Word> termsOf(std::span<const Word> sizes, Word count) {
  return asSigned(count) > 0 ? sizes.first(std::min<std::size_t>(count, sizes.size())) : std::span<const Word>();
}

Word sumOf(std::span<const Word> sizes) {
  Word sum = 0;
  for (const Word size : sizes)
    sum += size;
  return sum;
}

void printTerms(std::span<const Word> sizes) {
  for (const Word size : sizes)
    std::printf(" + %d", asSigned(size));
}

void printBlocks(Word ext1, Word ext2) { std::printf(" + %d + %d\n", asSigned(ext1), asSigned(ext2)); }

} // namespace

int checksame(const char *label, Word a, Word b) {
  if (a == b)
    return 1;
  std::printf("%s is wrong. %d != %d\n", label, asSigned(a), asSigned(b));
  return 0;
}

int checkTag(Word found, Word expected) {
  if (found == expected)
    return 1;
  std::printf("irregular tag ! %0#10x != %0#10x\n", found, expected);
  return 0;
}

int checkZero(Word value, const char *name) {
  if (value != 0)
    return 1;
  std::printf("%-17s is nothing.\n", name);
  return 0;
}

int checkExtsize(Word declared, Word required) {
  if (declared >= required)
    return 1;
  std::printf("vantor_extension_block_size is fewer. %d < %d\n"
              "This size must be more or equal to KOVA2.0 definition.\n",
              asSigned(declared), asSigned(required));
  return 0;
}

int checkExtsizeI(Word declared, Word required, Word number, const char *name) {
  if (checkExtsize(declared, required))
    return 1;
  std::printf("Error in %s[%d]\n", name, asSigned(number));
  return 0;
}

int check_whole_area_size(const char *label, Word declared, Word header, Word element_size, Word count, Word ext1,
                          Word ext2) {
  if (declared == header + element_size * count + ext1 + ext2)
    return 1;
  std::printf("%s %d != %d + %d * %d + %d + %d\n", label, asSigned(declared), asSigned(header), asSigned(element_size),
              asSigned(count), asSigned(ext1), asSigned(ext2));
  return 0;
}

int check_whole_structured_size(const char *label, Word declared, Word header, std::span<const Word> sizes, Word count,
                                Word ext1, Word ext2) {
  const std::span<const Word> terms = termsOf(sizes, count);
  if (declared == header + fixedBytes<Word> * count + sumOf(terms) + ext1 + ext2)
    return 1;
  std::printf("%s Some of size data is incorrect. %d != %d + %d * %d", label, asSigned(declared), asSigned(header),
              asSigned(fixedBytes<Word>), asSigned(count));
  printTerms(terms);
  printBlocks(ext1, ext2);
  return 0;
}

int check_color_list_size(Word declared, Word header, std::span<const Word> sizes1, Word count1,
                          std::span<const Word> sizes2, Word count2, Word ext1, Word ext2) {
  const std::span<const Word> terms1 = termsOf(sizes1, count1);
  const std::span<const Word> terms2 = termsOf(sizes2, count2);
  if (declared == header + fixedBytes<Word> * (count1 + count2) + sumOf(terms1) + sumOf(terms2) + ext1 + ext2)
    return 1;
  std::printf("Some of size data is incorrect. %d != %d + %d * %d + %d * %d", asSigned(declared), asSigned(header),
              asSigned(fixedBytes<Word>), asSigned(count1), asSigned(fixedBytes<Word>), asSigned(count2));
  printTerms(terms1);
  printTerms(terms2);
  printBlocks(ext1, ext2);
  return 0;
}

/// In this message a count stands before the bytes of its items, in those above behind them, on purpose.
int checkChainRoot(const char *label, Word declared, Word header, Word count4, Word count8, Word ext1, Word ext2) {
  if (declared == header + fixedBytes<Index> * count4 + fixedBytes<External> * count8 + ext1 + ext2)
    return 1;
  std::printf("%s %d != %d + %d*%d + %d*%d + %d + %d\n", label, asSigned(declared), asSigned(header), asSigned(count4),
              asSigned(fixedBytes<Index>), asSigned(count8), asSigned(fixedBytes<External>), asSigned(ext1),
              asSigned(ext2));
  return 0;
}

int check_index_size(const char *name, Word number, Index stored_index, Word table_size, Word record_size) {
  int ok = checksame(elementLabel(name, number, " index").text, number, static_cast<Word>(stored_index));
  ok *= checksame(elementLabel(name, number, " size").text, table_size, record_size);
  return ok;
}

} // namespace kova
