#include "mend/losses.h"

#include "mend/list_view.h"

#include <algorithm>
#include <bit>

namespace kova::mend {

namespace {

/// A list as the reading has it.
struct ListRead {
  const Decision *span = nullptr;
  const Decision *counts[2] = {}; ///< of its first and second kind, where they are changed
  bool changes_blocks = false;    ///< its own
  bool changes_lengths = false;

  Word number(const FileBytes &file, int kind) const {
    return counts[kind] != nullptr ? counts[kind]->value
                                   : file[span->begin + (kind == 0 ? list_at::COUNT : list_at::SECOND_COUNT)];
  }
};

using ListsRead = std::array<ListRead, LIST_NUM>;

ListsRead listsOf(const Reading &reading) {
  ListsRead lists = {};
  for (const Decision *decision = reading.decisions; decision != nullptr; decision = decision->before)
    if (decision->list < LIST_NUM && decision->sort == Decision::Sort::list)
      lists[decision->list].span = decision;
  for (const Decision *decision = reading.decisions; decision != nullptr; decision = decision->before) {
    if (decision->list >= LIST_NUM || decision->sort != Decision::Sort::word)
      continue;
    ListRead &list = lists[decision->list];
    const ListLayout &layout = LAYOUT[decision->list];
    list.changes_lengths = true;
    if (decision->element)
      continue;
    if (decision->begin == list.span->begin + list_at::COUNT)
      list.counts[0] = decision;
    else if (layout.second != nullptr && decision->begin == list.span->begin + list_at::SECOND_COUNT)
      list.counts[1] = decision;
    else
      list.changes_blocks = true;
  }
  return lists;
}

/// @return how many elements the counts of a list leave out to its blocks, of those that could be there.
Word leftToBlocks(const FileBytes &file, std::size_t number, const ListRead &list) {
  Word elements = 0;
  for (const int kind : {0, 1}) {
    if (list.counts[kind] == nullptr || !list.changes_blocks)
      continue;
    const RecordLayout &counted = kind == 0 ? *LAYOUT[number].first : *LAYOUT[number].second;
    const Word before = file[list.counts[kind]->begin];
    const std::uint64_t room = list.span->end - list.span->begin - LAYOUT[number].head_bytes;
    if (before > list.counts[kind]->value && std::uint64_t{before} * (sizeof(Word) + counted.fixed) <= room)
      elements += before - list.counts[kind]->value;
  }
  return elements;
}

/// @return the kind of element that begins at a place, if one does that is sound.
const RecordLayout *soundElement(const FileBytes &file, std::uint64_t at, std::uint64_t to, std::uint64_t &steps) {
  const Word tag = file[at];
  if ((tag & 0xff) != 0 || (tag & 0xf00) == 0)
    return nullptr;
  for (const ListLayout &layout : LAYOUT)
    for (const RecordLayout *const kind : {layout.first, layout.second}) {
      if (kind == nullptr || kind->tag != tag || at + kind->fixed > to)
        continue;
      Walk walk(file, hasVersion2(file.version()), nullptr, steps);
      const std::uint64_t end = walk.over({kind, at});
      const bool is_sound = !walk.broken && walk.faults == 0 && walk.doubts == 0 && end <= to;
      return is_sound && end - at == (file[at + kind->size_at] & ~Word{3}) ? kind : nullptr;
    }
  return nullptr;
}

/// Where the elements of a list begin in a reading, and of which kind they are. The file is as the reading has it.
std::vector<std::pair<std::uint64_t, const RecordLayout *>> elementsOf(const FileBytes &read, std::size_t number,
                                                                       const ListRead &list) {
  std::vector<std::pair<std::uint64_t, const RecordLayout *>> elements;
  const ListView view(read, number, list.span->begin);
  std::uint64_t at = view.elements();
  for (std::uint64_t i = 0; i < view.number() && at < list.span->end; ++i) {
    elements.emplace_back(at, &view.kind(i));
    at = Walk(read, read.size(), hasVersion2(read.version())).over(view.element(i, at));
  }
  return elements;
}

} // namespace

std::vector<Loss> lossesOf(const FileBytes &file, const FileBytes &read, const Reading &reading) {
  std::vector<Loss> losses;
  std::uint64_t steps = 2 * file.size();
  const ListsRead lists = listsOf(reading);
  for (std::size_t number = 0; number < LIST_NUM; ++number) {
    const ListRead &list = lists[number];
    if (list.span == nullptr || !list.changes_lengths)
      continue;
    std::uint64_t gone = 0;
    std::vector<std::pair<std::uint64_t, const RecordLayout *>> elements;
    if (LAYOUT[number].first != nullptr) {
      gone = leftToBlocks(file, number, list);
      elements = elementsOf(read, number, list);
    }
    const bool counts_changed = list.counts[0] != nullptr || list.counts[1] != nullptr;
    const auto is_of_other_kind = [&](const RecordLayout &kind, Word tag) {
      const RecordLayout *const other = &kind == LAYOUT[number].first ? LAYOUT[number].second : LAYOUT[number].first;
      return counts_changed && other != nullptr && tag == other->tag;
    };
    auto next = elements.begin();
    std::uint64_t tagged = 0;
    for (std::uint64_t at = list.span->begin + sizeof(Word); at < list.span->end; at += sizeof(Word)) {
      while (next != elements.end() && next->first < at)
        ++next;
      const bool begins = next != elements.end() && next->first == at;
      const RecordLayout *const kind = soundElement(file, at, list.span->end, steps);
      tagged += begins ? is_of_other_kind(*next->second, file[at]) : kind != nullptr;
    }
    gone = std::max(gone, tagged);
    if (gone != 0)
      losses.push_back(
          {LISTS[number].name,
           {},
           std::to_string(gone) + (gone == 1 ? " element is" : " elements are") + " taken for something else"});
  }
  return losses;
}

std::string strangeness(const FileBytes &file, const std::vector<Change> &changes, std::size_t looked_at) {
  constexpr std::size_t FEW = 8;
  if (changes.size() > FEW && 3 * changes.size() > looked_at)
    return "most of its sizes, counts, indices and tags are wrong";
  const auto is_stripped = [](const Change &change) { return (change.new_value & 0x7f7f7f7f) == change.old_value; };
  if (std::count_if(changes.begin(), changes.end(), is_stripped) < 3) // others can be wrong for other reasons
    return "";
  const auto bytes = file.between(0, file.size());
  auto high_bits = std::count_if(bytes.begin(), bytes.end(), [](unsigned char byte) { return byte >= 0x80; });
  for (const Change &change : changes)
    high_bits -= std::popcount(change.new_value & 0x80808080);
  return high_bits != 0 ? "" : "its bytes have lost their highest bits, also in the contents";
}

} // namespace kova::mend
