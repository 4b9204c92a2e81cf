/// Lists and the whole file: every place that something gives for an end is followed, and the readings that come to the
/// same place are compared.
#include "mend/reading.h"

#include <algorithm>

namespace kova::mend {

namespace {

/// More readings than these are never followed at a time: a true one does not fall so far behind.
constexpr std::size_t MOST_READINGS = 6;
constexpr Word MOST_BEHIND = cost::UNSOLVED_LIST + 8;

/// How many places are tried at which the elements of a list could begin.
constexpr int MOST_BEGINNINGS = 3;

bool sameClaims(const Claim *a, const Claim *b) {
  for (; a != b; a = a->before, b = b->before)
    if (a == nullptr || b == nullptr || a->sort != b->sort || a->begin != b->begin || a->end != b->end ||
        a->value != b->value)
      return false;
  return true;
}

/// @return the bytes that a record of that size takes up.
Word wholeWords(const Kind &kind, Word size) { return kind.size_in_bytes ? size & ~Word{3} : size; }

/// Adds a place, once.
void addEnd(std::vector<std::uint64_t> &ends, std::uint64_t end) {
  if (std::find(ends.begin(), ends.end(), end) == ends.end())
    ends.push_back(end);
}

} // namespace

std::uint64_t sizeWordOffset(std::size_t list) {
  static const FileHeader header{};
  const auto *const begin = reinterpret_cast<const unsigned char *>(&header);
  return static_cast<std::uint64_t>(reinterpret_cast<const unsigned char *>(&(header.*LISTS[list].size)) - begin);
}

bool hasVersion2Lists(const FileBytes &image) {
  return image.version() == VERSION_2 && image[header_at::BLOCKS] >= VERSION_2_SIZES_BYTES;
}

const Claim *Reader::claim(const Claim &made, const Claim *before) {
  claims.push_back(made);
  claims.back().before = before;
  return &claims.back();
}

bool Reader::isBetter(const Reading &a, const Reading &b) {
  return a.cost != b.cost ? a.cost < b.cost : a.doubts < b.doubts;
}

/// Adds a reading; of two that come to the same place the better one stays.
void Reader::add(Readings &readings, const Reading &reading) const {
  for (Reading &other : readings) {
    if (other.at != reading.at)
      continue;
    if (isBetter(reading, other))
      other = reading;
    else if (!isBetter(other, reading) && !other.has_rival && !sameClaims(reading.claims, other.claims)) {
      other.rival = reading.claims;
      other.has_rival = true;
    }
    return;
  }
  readings.push_back(reading);
}

/// Keeps the best readings.
void Reader::prune(Readings &readings) const {
  if (readings.size() < 2)
    return;
  std::stable_sort(readings.begin(), readings.end(), isBetter);
  const Word best = readings.front().cost;
  std::erase_if(readings, [&](const Reading &reading) { return reading.cost > best + MOST_BEHIND; });
  if (readings.size() > MOST_READINGS)
    readings.resize(MOST_READINGS);
}

/// @return the first place at which a record with that tag, and with that number, could begin; 0 if there is none or no
/// more may be searched.
std::uint64_t Reader::find(std::uint64_t from, std::uint64_t to, Word tag, std::optional<Word> number) {
  to = std::min(to, image.size());
  const std::uint64_t room = to >= from + 8 ? to - from - 4 : 0;
  to = from + std::min(room, list_left.scan_bytes) / sizeof(Word) * sizeof(Word);
  std::uint64_t at = from;
  while (at < to && (image[at] != tag || (number && image[at + 4] != *number)))
    at += sizeof(Word);
  list_left.scan_bytes -= at - from;
  return at < to ? at : 0;
}

/// Gives a list of so many bytes its share. What the one before has left goes back.
void Reader::beginList(std::uint64_t bytes) {
  const Budget share = budgetOf(bytes, 1);
  for (std::uint64_t Budget::*const kind : {&Budget::scan_bytes, &Budget::read_steps, &Budget::search_steps}) {
    file_left.*kind += list_left.*kind;
    list_left.*kind = std::min(share.*kind, file_left.*kind);
    file_left.*kind -= list_left.*kind;
  }
}

/// Goes over a record as it is.
Walk Reader::read(const Spot &spot, std::uint64_t &end) {
  Walk walk(image, version_2, nullptr, list_left.read_steps);
  end = walk.over(spot);
  return walk;
}

/// The first place behind the fixed words of a record at which the next one of its kind could begin.
std::uint64_t Reader::findNext(const Spot &spot, std::uint64_t to) {
  const bool by_number = spot.kind->index_at != NO_WORD && tells(*spot.kind, Own::index);
  return find(spot.begin + spot.kind->fixed, to, spot.kind->tag,
              by_number ? std::optional(spot.number + 1) : std::nullopt);
}

const Conventions &Reader::known() {
  if (!conventions)
    conventions.emplace(image);
  return *conventions;
}

/// @return whether the audit looks at a word, or else whether it follows the rule in this file.
bool Reader::tells(const Kind &kind, Own own) {
  const bool is_checked = own == Own::index ? kind.index_checked : kind.size_checked;
  return is_checked || known().follows(kind, own);
}

Word Reader::declared(std::size_t list) const {
  if (list >= VERSION_1_LIST_NUM && !version_2_lists)
    return 0;
  return image[sizeWordOffset(list)];
}

// --- Elements -------------------------------------------------------------------------------------------------------

/// Follows one end of an element, of which the size table gives the size. @param own_size whether the element's own
/// size says so, too. @param believed whether the end holds even if nothing explains it.
void Reader::readElementTo(std::size_t list, const Spot &spot, const Reading &before, std::uint64_t end,
                           Word table_size, bool own_size, bool believed, Readings &readings) {
  Proposals proposals = solve(spot, end);
  const std::uint64_t size_word = spot.begin + spot.kind->size_at;
  std::erase_if(proposals, [&](const Proposal &proposal) { // a new size has to say so, too
    return proposal.changes && proposal.site.offset == size_word &&
           spot.begin + wholeWords(*spot.kind, proposal.value) != end;
  });
  Reading reading = before;
  reading.at = end;
  for (const Proposal &proposal : proposals) {
    reading.cost = before.cost + proposal.cost;
    const bool changes_size = proposal.changes && proposal.site.offset == size_word;
    const bool in_table = changes_size && spot.begin + wholeWords(*spot.kind, table_size) == end;
    const bool ends_in_word = changes_size && !in_table && proposal.value % sizeof(Word) != 0;
    reading.doubts = before.doubts + proposal.doubts + Word{ends_in_word};
    reading.claims = before.claims;
    if (!own_size && !changes_size)
      ++reading.cost;
    if (proposal.changes)
      reading.claims = claim({.begin = proposal.site.offset,
                              .list = list,
                              .element = spot.number,
                              .field = proposal.site.field,
                              .value = in_table ? table_size : proposal.value,
                              .maker = proposal.site.maker,
                              .why = proposal.site.maker ? "the size of the maker block" : "where the record ends"},
                             before.claims);
    add(readings, reading);
  }
  if (proposals.empty() && believed) {
    reading.cost = before.cost + cost::UNSOLVED;
    reading.doubts = before.doubts;
    reading.claims =
        claim({.sort = Claim::Sort::unsolved, .begin = spot.begin, .end = end, .list = list, .element = spot.number},
              before.claims);
    add(readings, reading);
  }
}

/// Follows every end that something gives for an element: its words, its own size, the size table, the next tag.
void Reader::readElement(std::size_t list, const Kind &kind, const Reading &before, Word number, Word table_size,
                         Readings &readings) {
  const std::uint64_t begin = before.at;
  if (begin + kind.fixed > image.size())
    return;
  const Spot spot = {&kind, begin, number};
  std::uint64_t by_words = 0;
  const Walk walk = read(spot, by_words);
  const std::uint64_t by_size = begin + wholeWords(kind, image[begin + kind.size_at]);
  const std::uint64_t by_table = begin + wholeWords(kind, table_size);
  const bool other_index = image[begin + kind.index_at] != number;
  Reading inner = before;
  inner.cost += Word{!isElementTag(kind, image[begin])} + Word{other_index && kind.index_checked};
  inner.doubts += other_index && !kind.index_checked && tells(kind, Own::index);
  const bool table_tells = by_size == by_table || tells(kind, Own::table_entry);
  const bool as_in_table = by_size == by_table || (!table_tells && findNext(spot, list_end) == by_words);
  if (by_words == by_size && as_in_table && !walk.broken && walk.faults == 0) {
    inner.at = by_words;
    inner.doubts += walk.doubts;
    return add(readings, inner);
  }
  std::vector<std::uint64_t> ends;
  if (!walk.broken)
    addEnd(ends, by_words);
  addEnd(ends, by_size);
  addEnd(ends, by_table);
  if (ends.size() == 3 || (ends.size() == 2 && walk.broken) || !table_tells)
    addEnd(ends, findNext(spot, list_end));
  for (const std::uint64_t end : ends) {
    if (end < begin + kind.fixed || end > image.size())
      continue;
    const bool other_in_table = end != by_table && table_tells;
    Reading ended = inner;
    (kind.size_checked ? ended.cost : ended.doubts) += other_in_table;
    readElementTo(list, spot, ended, end, table_size, end == by_size, end == by_size && !other_in_table, readings);
  }
}

/// Reads elements, in all ways that cost no more than `most_cost`.
Reader::Readings Reader::readElements(std::size_t list, const Kind &kind, Readings before, std::uint64_t table,
                                      Word number, Word most_cost) {
  for (Word i = 0; i < number && !before.empty(); ++i) {
    const Word table_size = image[table + std::uint64_t{i} * sizeof(Word)];
    Readings after;
    for (const Reading &reading : before)
      readElement(list, kind, reading, i, table_size, after);
    std::erase_if(after, [&](const Reading &reading) { return reading.cost > most_cost; });
    prune(after);
    before = std::move(after);
  }
  return before;
}

// --- Lists ----------------------------------------------------------------------------------------------------------

/// Follows every end that something gives for a list of which the elements were read.
void Reader::closeList(std::size_t list, std::uint64_t begin, const Reading &inner, Readings &readings) {
  const std::uint64_t sizes_at = begin + LAYOUT[list].blocksAt();
  const std::uint64_t maker = image[sizes_at] & ~Word{3};
  const std::uint64_t user = image[sizes_at + 4] & ~Word{3};
  const std::uint64_t by_words = inner.at + maker + user;
  const std::uint64_t by_size = begin + image[begin + 8];
  const std::uint64_t by_header = begin + declared(list);
  std::vector<std::uint64_t> ends = {by_words};
  addEnd(ends, by_size);
  addEnd(ends, by_header);
  // Where no size says so, the list ends by its words only if none of them is doubted.
  const bool sound = isListTag(list, image[begin]) && (inner.claims == nullptr || inner.claims->begin < begin);
  for (const std::uint64_t end : ends) {
    if (end < inner.at || end > image.size() || !(sound || end == by_size || end == by_header))
      continue;
    Reading reading = inner;
    reading.at = end;
    reading.cost += Word{end != by_size} + Word{end != by_header};
    for (Reading &closed : closeBlocks(list, sizes_at, inner.at, reading)) {
      if (closed.claims != inner.claims && find(inner.at, end, LAYOUT[list].first->tag, std::nullopt) != 0)
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
  const std::uint64_t sizes[] = {image[sizes_at], image[sizes_at + 4]};
  if (sizes[0] + sizes[1] == room)
    return {reading};
  Readings readings;
  for (const std::size_t i : {std::size_t{0}, std::size_t{1}}) {
    if (room < sizes[1 - i] || room % 4 != 0 || sizes[1 - i] % 4 != 0)
      continue;
    Reading changed = reading;
    ++changed.cost;
    changed.claims = claim({.begin = sizes_at + 4 * i,
                            .list = list,
                            .field = i == 0 ? "van_ext_blk_size" : "usr_ext_blk_size",
                            .value = static_cast<Word>(room - sizes[1 - i]),
                            .why = list < LIST_NUM ? "where the list ends" : "where the header ends"},
                           reading.claims);
    readings.push_back(changed);
  }
  return readings;
}

/// Reads a list with so many elements of its kinds.
void Reader::readNumbered(std::size_t list, const Reading &before, Word first, Word second, Readings &readings) {
  const ListLayout &layout = LAYOUT[list];
  const std::uint64_t begin = before.at;
  const std::uint64_t table = begin + layout.headBytes();
  const std::uint64_t second_table = table + std::uint64_t{first} * sizeof(Word);
  Reading reading = before;
  reading.at = second_table + std::uint64_t{second} * sizeof(Word);
  if (reading.at > image.size())
    return;
  // What costs more than a list that nothing explains is not worth the memory.
  const Word most_cost = before.cost + cost::UNSOLVED_LIST + MOST_BEHIND;
  Readings inner = readElements(list, *layout.first, {reading}, table, first, most_cost);
  if (layout.second != nullptr)
    inner = readElements(list, *layout.second, std::move(inner), second_table, second, most_cost);
  for (const Reading &read : inner)
    closeList(list, begin, read, readings);
  prune(readings);
}

/// @return whether the first element of the list at `begin` is where the counts say.
bool Reader::beginsAsCounted(std::size_t list, std::uint64_t begin) const {
  const ListLayout &layout = LAYOUT[list];
  const Word first = image[begin + 12];
  const Word second = layout.second != nullptr ? image[begin + 16] : 0;
  const std::uint64_t at = begin + layout.headBytes() + (std::uint64_t{first} + second) * sizeof(Word);
  const Kind &kind = first != 0 || second == 0 ? *layout.first : *layout.second;
  return at + 8 <= image.size() && isElementTag(kind, image[at]) && image[at + 4] == 0;
}

/// @return how many of so many elements are of the first kind by their tags, which are found by the size table.
Word Reader::firstByTags(std::size_t list, std::uint64_t table, std::uint64_t at, Word number) {
  Word first = 0;
  while (first < number && isElementTag(*LAYOUT[list].first, image[at]) && list_left.read_steps != 0) {
    at += image[table + std::uint64_t{first++} * sizeof(Word)];
    --list_left.read_steps;
  }
  return first;
}

/// Reads a list whose count is wrong: its first element tells how long the size table is.
void Reader::readOtherNumbers(std::size_t list, const Reading &before, Readings &readings) {
  const ListLayout &layout = LAYOUT[list];
  const std::uint64_t begin = before.at;
  const std::uint64_t table = begin + layout.headBytes();
  const Word first = image[begin + 12];
  const Word second = layout.second != nullptr ? image[begin + 16] : 0;
  const auto follow = [&](Word new_first, Word new_second) {
    if (new_first == first && new_second == second)
      return;
    Reading reading = before;
    const auto change = [&](std::uint64_t at, const char *field, Word value) {
      ++reading.cost;
      reading.claims =
          claim({.begin = begin + at, .list = list, .field = field, .value = value, .why = "where the elements begin"},
                reading.claims);
    };
    if (new_first != first)
      change(12, layout.count_name, new_first);
    if (new_second != second)
      change(16, layout.second_count_name, new_second);
    readNumbered(list, reading, new_first, new_second, readings);
  };
  for (const Kind *const kind : {layout.first, layout.second}) {
    std::uint64_t at = table;
    for (int i = 0; kind != nullptr && i < MOST_BEGINNINGS && (at = find(at, list_end, kind->tag, 0)) != 0;
         ++i, at += 4) {
      const auto together = static_cast<Word>((at - table) / sizeof(Word));
      if (together >= second)
        follow(together - second, second);
      if (layout.second == nullptr)
        continue;
      if (together >= first)
        follow(first, together - first);
      const Word by_tags = firstByTags(list, table, at, together);
      follow(by_tags, together - by_tags);
    }
  }
  follow(0, second);
  if (layout.second != nullptr)
    follow(first, 0);
}

/// The scene is a record of its own.
void Reader::readScene(const Reading &before, Readings &readings) {
  constexpr std::size_t SCENE_LIST = 0;
  const std::uint64_t begin = before.at;
  const Spot spot = {&SCENE, begin};
  std::uint64_t by_words = 0;
  const Walk walk = read(spot, by_words);
  const std::uint64_t by_size = begin + image[begin + SCENE.size_at];
  const std::uint64_t by_header = begin + declared(SCENE_LIST);
  std::vector<std::uint64_t> ends;
  if (!walk.broken)
    addEnd(ends, by_words);
  addEnd(ends, by_size);
  addEnd(ends, by_header);
  for (const std::uint64_t end : ends) {
    Reading ended = before;
    ended.cost += end != by_header;
    if (end >= begin + SCENE.fixed && end <= image.size())
      readElementTo(SCENE_LIST, spot, ended, end, 0, end == by_size, false, readings);
  }
}

/// Passes a list without looking into it.
void Reader::passList(std::size_t list, const Reading &before, Readings &readings) {
  const std::uint64_t begin = before.at;
  for (const Word size : {image[begin + 8], declared(list)}) {
    if (size < LAYOUT[list].headBytes() || begin + size > image.size())
      continue;
    Reading reading = before;
    reading.at = begin + size;
    reading.cost += cost::UNSOLVED_LIST + Word{size != image[begin + 8]} + Word{size != declared(list)};
    reading.claims =
        claim({.sort = Claim::Sort::unsolved, .begin = begin, .end = reading.at, .list = list}, before.claims);
    add(readings, reading);
  }
}

/// Reads a list that is there.
void Reader::readListAt(const Reading &before, std::size_t list, Readings &readings) {
  const std::uint64_t begin = before.at;
  list_end = std::min(image.size(), begin + std::max(image[begin + 8], declared(list)));
  beginList(list_end - begin);
  Reading inside = before;
  inside.cost += Word{!isListTag(list, image[begin])};
  Readings ends;
  if (LAYOUT[list].first == nullptr) {
    readScene(inside, ends);
  } else {
    const Word second = LAYOUT[list].second != nullptr ? image[begin + 16] : 0;
    readNumbered(list, inside, image[begin + 12], second, ends);
    if ((ends.empty() || ends.front().cost > inside.cost) && !beginsAsCounted(list, begin))
      readOtherNumbers(list, inside, ends);
  }
  if (ends.empty() || ends.front().cost > before.cost) // what its sizes say may hold, whatever is inside
    passList(list, inside, ends);
  prune(ends);
  for (Reading &end : ends) {
    end.claims = claim({.sort = Claim::Sort::list, .begin = begin, .end = end.at, .list = list}, end.claims);
    add(readings, end);
  }
}

/// Reads a list, or passes it if it is not there.
void Reader::readList(std::size_t list, const Reading &before, Readings &readings) {
  const bool is_declared = declared(list) != 0;
  const std::uint64_t head = LAYOUT[list].first != nullptr ? LAYOUT[list].headBytes() : SCENE.fixed;
  const bool has_head = before.at + head <= image.size();
  const bool has_tag = has_head && isListTag(list, image[before.at]);
  if (has_head && (is_declared || has_tag))
    readListAt(before, list, readings);
  // What the header promises behind the end of a file that is cut was there once.
  const bool is_cut_off = is_declared && before.at == image.size() && image[header_at::SIZE] > image.size();
  if (!has_tag && !is_cut_off) {
    Reading absent = before;
    absent.cost += is_declared ? cost::ABSENT : 0;
    add(readings, absent);
  }
}

// --- The file -------------------------------------------------------------------------------------------------------

/// Follows every place that the header, or the tag of the scene, gives for its end.
void Reader::readHeader(Readings &readings) {
  const std::uint64_t by_words =
      FILE_HEADER_BYTES + std::uint64_t{image[header_at::BLOCKS]} + image[header_at::BLOCKS + 4];
  const std::uint64_t by_size = image[header_at::HEADER_SIZE];
  beginList(image.size());
  std::vector<std::uint64_t> ends = {by_words};
  addEnd(ends, by_size);
  if (ends.size() == 2)
    addEnd(ends, find(FILE_HEADER_BYTES, image.size(), LISTS[0].tag, SCENE.fixed));
  for (const std::uint64_t end : ends)
    if (end >= FILE_HEADER_BYTES && end <= image.size())
      for (const Reading &closed :
           closeBlocks(LIST_NUM, header_at::BLOCKS, FILE_HEADER_BYTES, {.at = end, .cost = Word{end != by_size}}))
        readings.push_back(closed);
}

std::optional<Reading> Reader::readFile() {
  if (image.size() < FILE_HEADER_BYTES)
    return std::nullopt;
  Readings headers;
  readHeader(headers);
  Readings whole;
  for (const Reading &header : headers) {
    // The size words of the version-2 lists are there only if the header's maker block is.
    const Claim *const changed = header.claims;
    const bool changes_maker = changed != nullptr && changed->begin == header_at::BLOCKS;
    const Word maker = changes_maker ? changed->value : image[header_at::BLOCKS];
    version_2_lists = version_2 && maker >= VERSION_2_SIZES_BYTES;
    Readings readings = {header};
    if (version_2 && maker == 0) // no file of version 2.0 lacks the block
      readings.clear();
    const std::size_t lists = version_2_lists ? LIST_NUM : VERSION_1_LIST_NUM;
    for (std::size_t list = 0; list < lists; ++list) {
      Readings after;
      for (const Reading &reading : readings)
        readList(list, reading, after);
      prune(after);
      readings = std::move(after);
    }
    for (const Reading &reading : readings)
      if (reading.at == image.size())
        add(whole, reading);
  }
  return whole.empty() ? std::nullopt : std::optional(whole.front());
}

} // namespace kova::mend
