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

/// `ID` tells whose size it is.
template <FindingId ID>
int checkStructuredSize(const Place &place, const Label &label, Word declared, Word header, std::span<const Word> sizes,
                        Word count, Word ext1, Word ext2) {
  const std::span<const Word> terms = termsOf(sizes, count);
  const Word sum = header + fixedBytes<Word> * count + sumOf(terms) + ext1 + ext2;
  if (declared == sum)
    return 1;
  return report<ID>(place, {declared, sum}, label, declared, header, fixedBytes<Word>, count, termsOfWords(terms), ext1,
                    ext2);
}

} // namespace

// --- With a place ---------------------------------------------------------------------------------------------------

int checkAreaSize(const Place &place, const Label &label, Word declared, Word header, Word element_size, Word count,
                  Word ext1, Word ext2) {
  const Word sum = header + element_size * count + ext1 + ext2;
  if (declared == sum)
    return 1;
  return report<"element-sum">(place, {declared, sum}, label, declared, header, element_size, count, ext1, ext2);
}

int checkListSum(const Place &place, Word declared, Word header, std::span<const Word> sizes, Word count, Word ext1,
                 Word ext2) {
  return checkStructuredSize<"list-sum">(place, "", declared, header, sizes, count, ext1, ext2);
}

int checkWordArraySum(const Place &place, const Label &label, Word declared, Word header, Word count, Word ext1,
                      Word ext2) {
  return checkStructuredSize<"word-array-sum">(place, label, declared, header, {}, count, ext1, ext2);
}

int checkTwoKindListSum(const Place &place, Word declared, Word header, std::span<const Word> sizes1, Word count1,
                        std::span<const Word> sizes2, Word count2, Word ext1, Word ext2) {
  const std::span<const Word> terms1 = termsOf(sizes1, count1);
  const std::span<const Word> terms2 = termsOf(sizes2, count2);
  const Word sum = header + fixedBytes<Word> * (count1 + count2) + sumOf(terms1) + sumOf(terms2) + ext1 + ext2;
  if (declared == sum)
    return 1;
  return report<"two-kind-list-sum">(place, {declared, sum}, declared, header, fixedBytes<Word>, count1,
                                     fixedBytes<Word>, count2, termsOfWords(terms1), termsOfWords(terms2), ext1, ext2);
}

/// In this message a count stands before the bytes of its items, in those above after them, on purpose.
int checkChainNodeSum(const Place &place, const Label &label, Word declared, Word header, Word count4, Word count8,
                      Word ext1, Word ext2) {
  const Word sum = header + fixedBytes<Index> * count4 + fixedBytes<External> * count8 + ext1 + ext2;
  if (declared == sum)
    return 1;
  return report<"chain-node-sum">(place, {declared, sum}, label, declared, header, count4, fixedBytes<Index>, count8,
                                  fixedBytes<External>, ext1, ext2);
}

int checkBlockSize(const Place &place, Word declared, Word required) {
  return declared >= required ? 1 : report<"maker-block-short">(place, {declared, required}, declared, required);
}

int checkElementBlockSize(const Place &place, Word declared, Word required, Word number, const char *name) {
  if (declared >= required)
    return 1;
  return report<"element-maker-block-short">(place, {declared, required}, declared, required, name, number);
}

int checkNameTag(const Place &place, Word found, Word expected) {
  return found == expected ? 1 : report<"external-name-tag">(place, {found, expected}, found, expected);
}

// --- Without one: for programs that check by themselves --------------------------------------------------------------

int checksame(const char *label, Word a, Word b) { return checkSame<"unequal-words">({}, label, a, b, {}); }

int checkTag(Word found, Word expected) { return checkNameTag({}, found, expected); }

int checkZero(Word value, const char *name) {
  return value != 0 ? 1 : report<"version-2-list-missing">({.list = name}, {}, name);
}

int checkExtsize(Word declared, Word required) { return checkBlockSize({}, declared, required); }

int checkExtsizeI(Word declared, Word required, Word number, const char *name) {
  return checkElementBlockSize({.element = number}, declared, required, number, name);
}

int check_whole_area_size(const char *label, Word declared, Word header, Word element_size, Word count, Word ext1,
                          Word ext2) {
  return checkAreaSize({}, label, declared, header, element_size, count, ext1, ext2);
}

int check_whole_structured_size(const char *label, Word declared, Word header, std::span<const Word> sizes, Word count,
                                Word ext1, Word ext2) {
  return checkStructuredSize<"list-sum">({}, label, declared, header, sizes, count, ext1, ext2);
}

int check_color_list_size(Word declared, Word header, std::span<const Word> sizes1, Word count1,
                          std::span<const Word> sizes2, Word count2, Word ext1, Word ext2) {
  return checkTwoKindListSum({}, declared, header, sizes1, count1, sizes2, count2, ext1, ext2);
}

int checkChainRoot(const char *label, Word declared, Word header, Word count4, Word count8, Word ext1, Word ext2) {
  return checkChainNodeSum({}, label, declared, header, count4, count8, ext1, ext2);
}

int check_index_size(const char *name, Word number, Index stored_index, Word table_size, Word record_size) {
  const Place place = {.element = number};
  const Word stored = static_cast<Word>(stored_index);
  int ok = checkSame<"element-index">(place, {name, number, " index"}, number, stored, {stored, number});
  ok *= checkSame<"element-size">(place, {name, number, " size"}, table_size, record_size, {record_size, table_size});
  return ok;
}

} // namespace kova
