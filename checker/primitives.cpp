#include "checker/steps.h"

#include <algorithm>

namespace kova {

namespace {

// The entries of a size table that a count takes in: those whose number is below it, compared signed.
std::span<const Word> termsOf(std::span<const Word> sizes, Word count) {
  return shown(count) > 0 ? sizes.first(std::min<std::size_t>(count, sizes.size())) : std::span<const Word>();
}

Word sumOf(std::span<const Word> sizes) {
  Word sum = 0;
  for (const Word size : sizes)
    sum += size;
  return sum;
}

void printTerms(std::span<const Word> sizes) {
  for (const Word size : sizes)
    std::printf(" + %d", shown(size));
}

void printBlocks(Word ext1, Word ext2) { std::printf(" + %d + %d\n", shown(ext1), shown(ext2)); }

} // namespace

int checksame(const char *label, Word a, Word b) {
  if (a == b)
    return 1;
  std::printf("%s is wrong. %d != %d\n", label, shown(a), shown(b));
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
              shown(declared), shown(required));
  return 0;
}

int checkExtsizeI(Word declared, Word required, Word number, const char *name) {
  if (checkExtsize(declared, required))
    return 1;
  std::printf("Error in %s[%d]\n", name, shown(number));
  return 0;
}

int check_whole_area_size(const char *label, Word declared, Word header, Word element_size, Word count, Word ext1,
                          Word ext2) {
  if (declared == header + element_size * count + ext1 + ext2)
    return 1;
  std::printf("%s %d != %d + %d * %d + %d + %d\n", label, shown(declared), shown(header), shown(element_size),
              shown(count), shown(ext1), shown(ext2));
  return 0;
}

int check_whole_structured_size(const char *label, Word declared, Word header, std::span<const Word> sizes, Word count,
                                Word ext1, Word ext2) {
  const std::span<const Word> terms = termsOf(sizes, count);
  if (declared == header + 4 * count + sumOf(terms) + ext1 + ext2)
    return 1;
  std::printf("%s Some of size data is incorrect. %d != %d + %d * %d", label, shown(declared), shown(header), 4,
              shown(count));
  printTerms(terms);
  printBlocks(ext1, ext2);
  return 0;
}

int check_color_list_size(Word declared, Word header, std::span<const Word> sizes1, Word count1,
                          std::span<const Word> sizes2, Word count2, Word ext1, Word ext2) {
  const std::span<const Word> terms1 = termsOf(sizes1, count1);
  const std::span<const Word> terms2 = termsOf(sizes2, count2);
  if (declared == header + 4 * count1 + 4 * count2 + sumOf(terms1) + sumOf(terms2) + ext1 + ext2)
    return 1;
  std::printf("Some of size data is incorrect. %d != %d + %d * %d + %d * %d", shown(declared), shown(header), 4,
              shown(count1), 4, shown(count2));
  printTerms(terms1);
  printTerms(terms2);
  printBlocks(ext1, ext2);
  return 0;
}

// In this message the count stands before its factor, in those above behind it: meant so.
int checkChainRoot(const char *label, Word declared, Word header, Word count4, Word count8, Word ext1, Word ext2) {
  if (declared == header + 4 * count4 + 8 * count8 + ext1 + ext2)
    return 1;
  std::printf("%s %d != %d + %d*%d + %d*%d + %d + %d\n", label, shown(declared), shown(header), shown(count4), 4,
              shown(count8), 8, shown(ext1), shown(ext2));
  return 0;
}

int check_index_size(const char *name, Word number, Index stored_index, Word table_size, Word record_size) {
  int ok = checksame(elementLabel(name, number, " index").text, number, static_cast<Word>(stored_index));
  ok *= checksame(elementLabel(name, number, " size").text, table_size, record_size);
  return ok;
}

Label elementLabel(const char *name, Word number, const char *what) {
  Label label;
  std::snprintf(label.text, sizeof label.text, "%s[%d]%s", name, shown(number), what);
  return label;
}

void checkHeading(const char *name) { std::printf("---- checking %s ----\n", name); }

int checkListSizes(Word list_num, const ListHead &list, std::span<const Word> num_byte) {
  int ok = checksame("list size", list_num, list.list_size);
  ok *= check_whole_structured_size("", list.list_size, fixedBytes<ListHead>, num_byte, list.num, list.van_ext_blk_size,
                                    list.usr_ext_blk_size);
  return ok;
}

} // namespace kova
