#include "mend/header.h"

#include "mend/layout.h"

namespace kova::mend {

Word Ordered::word(std::uint64_t at) const {
  Word word = 0;
  if (at > size() || size() - at < sizeof word)
    return 0;
  for (std::uint64_t i = at; i < at + sizeof word; ++i)
    word = word << 8 | file[static_cast<std::size_t>(place(i))];
  return word;
}

HeaderFacts headerFacts(const Ordered &file) { return headerFacts(file, file.word(0)); }

HeaderFacts headerFacts(const Ordered &file, Word version) {
  HeaderFacts facts = {.version = version, .stated = file.word(header_at::SIZE)};
  if (file.size() < FILE_HEADER_BYTES)
    return facts;
  const std::uint64_t header = file.word(header_at::HEADER_SIZE);
  const Word maker = file.word(header_at::BLOCKS);
  const bool version_2_lists = hasVersion2(version) && maker >= VERSION_2_SIZES_BYTES;
  std::uint64_t at = header;
  std::size_t lists = 0;
  std::size_t right = 0;
  bool first_tag = false;
  bool first_size = false;
  for (std::size_t list = 0; list < (version_2_lists ? LIST_NUM : VERSION_1_LIST_NUM); ++list) {
    const Word size = file.word(LAYOUT[list].header_word_at);
    if (size == 0)
      continue;
    const bool tag_holds = file.word(at) == LISTS[list].tag;
    const bool size_holds = file.word(at + list_at::SIZE) == size;
    if (lists++ == 0) {
      first_tag = tag_holds;
      first_size = size_holds;
    }
    right += tag_holds && size_holds;
    at += size;
  }
  facts.sum = at;
  facts.holding = isVersion(version) + (file.word(header_at::TAG) == 0) +
                  (header == std::uint64_t{FILE_HEADER_BYTES} + maker + file.word(header_at::BLOCKS + sizeof(Word))) +
                  (facts.sum == facts.stated) + first_tag + first_size;
  facts.lists_hold = right == lists && at == file.size();
  facts.agreement = facts.holding + static_cast<int>(right) + (at == file.size()) + (facts.stated == file.size());
  return facts;
}

} // namespace kova::mend
