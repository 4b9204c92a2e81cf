/// Lists: every end that something gives for one is followed, and every number of elements.
#include "mend/list_view.h"
#include "mend/reading.h"

#include <algorithm>

namespace kova::mend {

/// How many places are tried at which the elements of a list could begin.
constexpr int MOST_BEGINNINGS = 3;

/// Follows every end that something gives for a list of which the elements were read.
void Reader::closeList(std::size_t list, std::uint64_t begin, const Reading &inner, Readings &readings) {
  const std::uint64_t sizes_at = begin + LAYOUT[list].blocks_at;
  const std::uint64_t by_words = inner.at + blockSizes(file, sizes_at).sum();
  const std::uint64_t by_size = begin + file[begin + list_at::SIZE];
  const std::uint64_t by_header = begin + declared(list);
  std::vector<std::uint64_t> ends = {by_words};
  addEnd(ends, by_size);
  addEnd(ends, by_header);
  // Where no size says so, the list ends by its words only if none of them is doubted.
  const bool sound = isListTag(list, file[begin]) && (inner.decisions == nullptr || inner.decisions->begin < begin);
  for (const std::uint64_t end : ends) {
    if (end < inner.at || end > file.size() || !(sound || end == by_size || end == by_header))
      continue;
    Reading reading = inner;
    reading.at = end;
    reading.cost += Word{end != by_size} + Word{end != by_header};
    for (Reading &closed : closeBlocks(list, sizes_at, inner.at, reading)) {
      if (closed.decisions != inner.decisions && find(inner.at, end, LAYOUT[list].first->tag, std::nullopt) != 0)
        closed.cost += cost::SWALLOWED;
      add(readings, closed);
    }
  }
}

/// @return the readings of two blocks of which the sizes stand at `sizes_at`, and which reach from `begin` to where
/// `reading` is: as they are, or with one of the sizes changed.
Reader::Readings Reader::closeBlocks(std::size_t list, std::uint64_t sizes_at, std::uint64_t begin,
                                     const Reading &reading) {
  const std::uint64_t room = reading.at - begin;
  const auto [maker, user] = statedBlockSizes(file, sizes_at);
  const std::uint64_t sizes[] = {maker, user};
  if (sizes[0] + sizes[1] == room)
    return {reading};
  Readings readings;
  for (const std::size_t i : {std::size_t{0}, std::size_t{1}}) {
    if (room < sizes[1 - i] || room % sizeof(Word) != 0 || sizes[1 - i] % sizeof(Word) != 0)
      continue;
    Reading changed = reading;
    ++changed.cost;
    changed.decisions =
        decide({.begin = sizes_at + i * sizeof(Word),
                .list = list,
                .field = headerWordName(header_at::BLOCKS + i * sizeof(Word)), // all blocks have these names

                .value = static_cast<Word>(room - sizes[1 - i]),
                .why = list < LIST_NUM ? "where the list ends" : "where the header ends"},
               reading.decisions);
    readings.push_back(changed);
  }
  return readings;
}

/// Reads a list with so many elements of its kinds.
void Reader::readNumbered(std::size_t list, const Reading &before, Word first, Word second, Readings &readings) {
  const ListLayout &layout = LAYOUT[list];
  const std::uint64_t begin = before.at;
  const std::uint64_t table = begin + layout.head_bytes;
  const std::uint64_t second_table = table + std::uint64_t{first} * sizeof(Word);
  Reading reading = before;
  reading.at = second_table + std::uint64_t{second} * sizeof(Word);
  if (reading.at > file.size())
    return;
  // What costs more than a list that nothing explains is not worth the memory.
  const Word most_cost = before.cost + cost::UNSOLVED_LIST + cost::MOST_BEHIND;
  Readings inner = readElements(list, *layout.first, {reading}, table, first, most_cost);
  if (layout.second != nullptr)
    inner = readElements(list, *layout.second, std::move(inner), second_table, second, most_cost);
  for (const Reading &read : inner)
    closeList(list, begin, read, readings);
  prune(readings);
}

/// @return whether the first element of the list at `begin` is where the counts say.
bool Reader::beginsAsCounted(std::size_t list, std::uint64_t begin) const {
  const ListView view(file, list, begin);
  const std::uint64_t at = view.elements();
  const RecordLayout &kind = view.first != 0 || view.second == 0 ? *view.layout.first : *view.layout.second;
  return file.holds(at + kind.index_at) && isElementTag(kind, file[at]) && file[at + kind.index_at] == 0;
}

/// @return how many of so many elements are of the first kind by their tags, which are found by the size table.
Word Reader::firstByTags(std::size_t list, std::uint64_t table, std::uint64_t at, Word number) {
  Word first = 0;
  while (first < number && isElementTag(*LAYOUT[list].first, file[at]) && list_left.read_steps != 0) {
    at += file[table + std::uint64_t{first++} * sizeof(Word)];
    --list_left.read_steps;
  }
  return first;
}

/// Reads a list whose count is wrong: its first element tells how long the size table is.
void Reader::readOtherNumbers(std::size_t list, const Reading &before, Readings &readings) {
  const std::uint64_t begin = before.at;
  const ListView view(file, list, begin);
  const std::uint64_t table = view.entry(0);
  const auto first = static_cast<Word>(view.first), second = static_cast<Word>(view.second);
  const auto follow = [&](Word new_first, Word new_second) {
    if (new_first == first && new_second == second)
      return;
    Reading reading = before;
    const auto change = [&](std::uint64_t at, const char *field, Word value) {
      ++reading.cost;
      reading.decisions =
          decide({.begin = begin + at, .list = list, .field = field, .value = value, .why = "where the elements begin"},
                 reading.decisions);
    };
    if (new_first != first)
      change(list_at::COUNT, view.layout.count_name, new_first);
    if (new_second != second)
      change(list_at::SECOND_COUNT, view.layout.second_count_name, new_second);
    readNumbered(list, reading, new_first, new_second, readings);
  };
  for (const RecordLayout *const kind : {view.layout.first, view.layout.second}) {
    std::uint64_t at = table;
    for (int i = 0; kind != nullptr && i < MOST_BEGINNINGS && (at = find(at, list_end, kind->tag, 0)) != 0;
         ++i, at += sizeof(Word)) {
      const auto together = static_cast<Word>((at - table) / sizeof(Word));
      if (together >= second)
        follow(together - second, second);
      if (view.layout.second == nullptr)
        continue;
      if (together >= first)
        follow(first, together - first);
      const Word by_tags = firstByTags(list, table, at, together);
      follow(by_tags, together - by_tags);
    }
  }
  follow(0, second);
  if (view.layout.second != nullptr)
    follow(first, 0);
}

/// The scene is a record of its own.
void Reader::readScene(const Reading &before, Readings &readings) {
  constexpr std::size_t SCENE_LIST = 0;
  const std::uint64_t begin = before.at;
  const RecordAt record = {&SCENE, begin};
  std::uint64_t by_words = 0;
  const Walk walk = read(record, by_words);
  const std::uint64_t by_size = begin + file[begin + SCENE.size_at];
  const std::uint64_t by_header = begin + declared(SCENE_LIST);
  std::vector<std::uint64_t> ends;
  if (!walk.broken)
    addEnd(ends, by_words);
  addEnd(ends, by_size);
  addEnd(ends, by_header);
  for (const std::uint64_t end : ends) {
    Reading ended = before;
    ended.cost += end != by_header;
    if (end >= begin + SCENE.fixed && end <= file.size())
      readElementTo(SCENE_LIST, record, ended, end, 0, end == by_size, false, readings);
  }
}

/// Passes a list without looking into it.
void Reader::passList(std::size_t list, const Reading &before, Readings &readings) {
  const std::uint64_t begin = before.at;
  for (const Word size : {file[begin + list_at::SIZE], declared(list)}) {
    if (size < LAYOUT[list].head_bytes || begin + size > file.size())
      continue;
    Reading reading = before;
    reading.at = begin + size;
    reading.cost += cost::UNSOLVED_LIST + Word{size != file[begin + list_at::SIZE]} + Word{size != declared(list)};
    reading.decisions =
        decide({.sort = Decision::Sort::unsolved, .begin = begin, .end = reading.at, .list = list}, before.decisions);
    add(readings, reading);
  }
}

/// Reads a list that is there.
void Reader::readListAt(const Reading &before, std::size_t list, Readings &readings) {
  const std::uint64_t begin = before.at;
  list_end = std::min(file.size(), begin + std::max(file[begin + list_at::SIZE], declared(list)));
  beginList(list_end - begin);
  Reading inside = before;
  inside.cost += Word{!isListTag(list, file[begin])};
  Readings ends;
  if (LAYOUT[list].first == nullptr) {
    readScene(inside, ends);
  } else {
    const Word second = LAYOUT[list].second != nullptr ? file[begin + list_at::SECOND_COUNT] : 0;
    readNumbered(list, inside, file[begin + list_at::COUNT], second, ends);
    if ((ends.empty() || ends.front().cost > inside.cost) && !beginsAsCounted(list, begin))
      readOtherNumbers(list, inside, ends);
  }
  if (ends.empty() || ends.front().cost > before.cost) // what its sizes say may hold, whatever is inside
    passList(list, inside, ends);
  prune(ends);
  for (Reading &end : ends) {
    end.decisions = decide({.sort = Decision::Sort::list, .begin = begin, .end = end.at, .list = list}, end.decisions);
    add(readings, end);
  }
}

/// Reads a list, or passes it if it is not there.
void Reader::readList(std::size_t list, const Reading &before, Readings &readings) {
  const bool is_declared = declared(list) != 0;
  const bool has_head = before.at + LAYOUT[list].head_bytes <= file.size();
  const bool has_tag = has_head && isListTag(list, file[before.at]);
  if (has_head && (is_declared || has_tag))
    readListAt(before, list, readings);
  // What the header promises behind the end of a file that is cut was there once.
  const bool is_cut_off = is_declared && before.at == file.size() && file[header_at::SIZE] > file.size();
  if (!has_tag && !is_cut_off) {
    Reading absent = before;
    absent.cost += is_declared ? cost::ABSENT : 0;
    add(readings, absent);
  }
}

} // namespace kova::mend
