#include "survey/deep_check.h"

namespace kova::survey::deep {

namespace {

Word wordAt(FieldBytes bytes, std::size_t number) {
  Word word;
  std::memcpy(&word, bytes.data() + number * sizeof word, sizeof word);
  return word;
}

std::size_t wordsIn(FieldBytes bytes) { return bytes.size() / sizeof(Word); }

/// @return the place of a field of the record at `place`. Where the arrays begin is not known.
Place fieldPlace(const Place &place, const Field &field, const void *record, FieldBytes bytes) {
  if (field.is_array)
    return {place.list, place.element};
  return after(place, static_cast<std::uint64_t>(bytes.data() - static_cast<const std::byte *>(record)));
}

bool notFinite(Word bits) { return (bits & 0x7f800000) == 0x7f800000; }

} // namespace

FieldBytes heldBytes(const Field &field, const void *record, std::uint64_t held) {
  const FieldBytes bytes = field.bytes(record);
  if (field.is_array || held == WHOLE)
    return bytes;
  const auto begin = static_cast<std::uint64_t>(bytes.data() - static_cast<const std::byte *>(record));
  const std::uint64_t there = std::min<std::uint64_t>(bytes.size(), held - std::min(held, begin));
  return bytes.first(static_cast<std::size_t>(there / sizeof(Word) * sizeof(Word)));
}

void checkLink(Check &check, const LinkRow &row, const void *record, FieldBytes bytes, const Place &place) {
  const std::uint64_t number = check[row.target];
  for (std::size_t i = row.first; i < wordsIn(bytes); i += row.stride) {
    const Word index = wordAt(bytes, i);
    if (index < number || index == NO_LINK)
      continue;
    const auto has = static_cast<Word>(number);
    say(check, static_cast<std::size_t>(&row - LINKS), after(fieldPlace(place, row, record, bytes), i * sizeof(Word)),
        {index, has}, row.name, index, TARGETS[static_cast<std::size_t>(row.target)].name, has);
  }
}

void checkFloats(Check &check, const WordsRow &row, const void *record, FieldBytes bytes, const Place &place) {
  for (std::size_t begin = 0; begin + row.stride <= wordsIn(bytes); begin += row.stride)
    for (std::size_t i = begin + row.first; i < begin + row.first + row.count; ++i)
      if (notFinite(wordAt(bytes, i)))
        return say<floatNotFinite>(check, after(fieldPlace(place, row, record, bytes), i * sizeof(Word)), {}, row.name);
}

void checkKeys(Check &check, const WordsRow &row, const void *record, FieldBytes bytes, const Place &place) {
  for (std::size_t i = row.stride + row.first; i < wordsIn(bytes); i += row.stride) {
    const Word before = wordAt(bytes, i - row.stride), key = wordAt(bytes, i);
    if (static_cast<Index>(key) < static_cast<Index>(before))
      return say<keysOutOfOrder>(check, fieldPlace(place, row, record, bytes), {key, before}, row.name, key, before);
  }
}

} // namespace kova::survey::deep
