#include "mend/locate.h"

#include "mend/list_view.h"
#include "mend/reading.h"

#include <algorithm>
#include <cstdlib>

namespace kova::mend {

namespace {

/// How many places an element is looked for at, where bytes are missing one by one.
constexpr std::int64_t MOST_SHIFTS = 64;
/// How much may be gone over, compared with the file.
constexpr std::uint64_t GO_OVER = 64;
/// Bytes of the smallest element with its entry in the size table.
constexpr std::uint64_t SMALLEST_ELEMENT = 20;
/// Bytes of a record that are looked at to tell it from a hole.
constexpr std::uint64_t BEGINS = 16;
/// At how many places heads of lists are looked for, compared with the bytes of the file.
constexpr std::uint64_t LOOK_AT = 8;

class Locator {
public:
  explicit Locator(const FileBytes &bytes)
      : file(bytes), version_2(hasVersion2(bytes.version())), steps_left(GO_OVER * bytes.size()),
        places_left(LOOK_AT * bytes.size()), elements_left(bytes.size() / SMALLEST_ELEMENT),
        moved(static_cast<std::int64_t>(bytes.size()) - static_cast<std::int64_t>(bytes[header_at::SIZE])) {}

  Found locate();

private:
  static std::uint64_t shifted(std::uint64_t was_at, std::int64_t by) {
    return was_at + static_cast<std::uint64_t>(by);
  }
  int headAgreement(const FoundList &list, std::uint64_t at) const;
  bool isStrange(const FoundList &list) const;
  void findHeads();
  void findEnd(std::size_t number);
  int agreement(const RecordLayout &kind, std::uint64_t at, Word number, Word size) const;
  bool isElement(const RecordLayout &kind, std::uint64_t at, Word number);
  bool findByTable(FoundList &list);
  bool isStrange(const RecordLayout &kind, std::uint64_t at, Word number, Word size);
  void findElement(const RecordLayout &kind, std::uint64_t was_at, Word number, Word size, std::int64_t last,
                   FoundElement &element);
  void findInTable(const FoundList &list, const RecordLayout &kind, std::uint64_t table, std::uint64_t &was_at,
                   std::vector<FoundElement> &elements);
  void findByTags(FoundList &list);
  void findScene(FoundList &list);
  std::uint64_t blocksOf(const FoundList &list) const;
  void judge(FoundList &list);

  const FileBytes &file;
  bool version_2;
  std::uint64_t steps_left;
  std::uint64_t places_left;
  std::uint64_t elements_left; ///< as many as there can be: a number that is wrong promises any
  std::int64_t moved;          ///< by how much the file is too long
  std::int64_t shift = 0;      ///< of what was found last
  Found found = {};
};

// --- Heads of lists -------------------------------------------------------------------------------------------------

/// @return how many of tag and size are those of a list.
int Locator::headAgreement(const FoundList &list, std::uint64_t at) const {
  return isListTag(list.list, file[at]) + (file[at + list_at::SIZE] == list.size);
}

/// @return whether a list that was not found is not near its place, either, where wrong sizes in the header put it.
bool Locator::isStrange(const FoundList &list) const {
  const Word head_bytes = LAYOUT[list.list].head_bytes;
  if (list.size < head_bytes || file[list.was_at + list_at::HEADER_SIZE] == head_bytes)
    return false;
  for (std::int64_t by = -MOST_SHIFTS; by <= MOST_SHIFTS; ++by)
    if (isListTag(list.list, file[shifted(list.was_at, by)]) &&
        file[shifted(list.was_at + list_at::HEADER_SIZE, by)] == head_bytes)
      return false;
  return true;
}

/// The heads of the lists, each as far from where it was as the one before it, or as the end of the file.
void Locator::findHeads() {
  std::uint64_t was_at = file[header_at::HEADER_SIZE];
  const bool version_2_lists = hasVersion2Lists(file);
  for (std::size_t number = 0; number < (version_2_lists ? LIST_NUM : VERSION_1_LIST_NUM); ++number) {
    FoundList list = {.list = number, .was_at = was_at, .size = file[LAYOUT[number].header_word_at]};
    was_at += list.size;
    if (list.size == 0)
      continue;
    const auto isAt = [&](std::int64_t tried, int enough) {
      if (headAgreement(list, shifted(list.was_at, tried)) < enough)
        return false;
      list.begin = shifted(list.was_at, tried);
      shift = tried;
      found.behind |= tried != 0;
      return true;
    };
    // One word that agrees may be chance: the two sizes of an empty list are the same.
    bool is_found = isAt(shift, 2) || isAt(moved, 2) || isAt(shift, 1);
    // It is looked for only where it lies within the file: the header may say anything.
    const auto was = static_cast<std::int64_t>(list.was_at);
    const std::int64_t least = std::max(-was, std::min(shift, moved));
    const std::int64_t most = std::min(static_cast<std::int64_t>(file.size()) - was, std::max(shift, moved));
    const std::int64_t step = moved < shift ? -1 : 1;
    for (std::int64_t tried = step < 0 ? most : least; !is_found && tried >= least && tried <= most; tried += step) {
      if (places_left == 0)
        break;
      --places_left;
      is_found = isAt(tried, 2);
    }
    found.lists.push_back(std::move(list));
  }
}

/// Sets where what follows a list begins: the next list that was found, or the end of the file.
void Locator::findEnd(std::size_t number) {
  FoundList &list = found.lists[number];
  list.moved_behind = moved;
  for (std::size_t i = number + 1; i < found.lists.size(); ++i)
    if (found.lists[i].isFound()) {
      list.moved_behind = found.lists[i].shift();
      break;
    }
  list.next_found = number + 1 == found.lists.size() || found.lists[number + 1].isFound();
  const std::int64_t most = list.next_found ? list.moved_behind : std::max(shift, list.moved_behind);
  list.end = std::min(file.size(), shifted(list.was_at + list.size, most));
}

// --- Elements -------------------------------------------------------------------------------------------------------

/// @return how many of tag, number and size are those of an element.
int Locator::agreement(const RecordLayout &kind, std::uint64_t at, Word number, Word size) const {
  return isElementTag(kind, file[at]) + (file[at + kind.index_at] == number) + (file[at + kind.size_at] == size);
}

/// @return whether an element stands at a place, as its tag and its own words say.
bool Locator::isElement(const RecordLayout &kind, std::uint64_t at, Word number) {
  const Word size = file[at + kind.size_at];
  if (!isElementTag(kind, file[at]) || file[at + kind.index_at] - number >= elements_left || size < kind.fixed)
    return false;
  Walk walk(file, version_2, nullptr, steps_left);
  const std::uint64_t by_words = walk.over({&kind, at, number});
  return by_words == at + wholeWords(kind, size);
}

/// @return whether something that nothing confirms is not even like what stood there, with some words wrong.
bool Locator::isStrange(const RecordLayout &kind, std::uint64_t at, Word number, Word size) {
  const std::span<const unsigned char> begins = file.between(at, at + BEGINS);
  if (std::all_of(begins.begin(), begins.end(), [](unsigned char byte) { return byte == 0; }))
    return true;
  Walk walk(file, version_2, nullptr, steps_left);
  return agreement(kind, at, number, size) == 0 && walk.over({&kind, at, number}) != at + size;
}

/// Looks for an element that was at a place. It has moved as far as the one before it, as far as what follows the list,
/// or anything between, if that are few places.
void Locator::findElement(const RecordLayout &kind, std::uint64_t was_at, Word number, Word size, std::int64_t last,
                          FoundElement &element) {
  const auto isAt = [&](std::int64_t tried, int enough) {
    const std::uint64_t at = shifted(was_at, tried);
    if (agreement(kind, at, number, size) < enough)
      return false;
    element.begin = at;
    shift = tried;
    return true;
  };
  if (isAt(shift, 2))
    return;
  found.strange |= isStrange(kind, shifted(was_at, shift), number, size);
  if (shift == last || isAt(last, 3) || std::abs(last - shift) > MOST_SHIFTS)
    return;
  const std::int64_t step = last < shift ? -1 : 1;
  for (std::int64_t tried = shift + step; tried != last && !isAt(tried, 3); tried += step)
    ;
}

/// Finds the elements of one kind where the size table says they were.
void Locator::findInTable(const FoundList &list, const RecordLayout &kind, std::uint64_t table, std::uint64_t &was_at,
                          std::vector<FoundElement> &elements) {
  for (std::size_t number = 0; number < elements.size(); ++number) {
    const Word size = file[table + number * sizeof(Word)];
    elements[number].size = wholeWords(kind, size);
    findElement(kind, was_at, static_cast<Word>(number), size, list.moved_behind, elements[number]);
    was_at += elements[number].size;
  }
}

/// @return false where the size table is not whole.
bool Locator::findByTable(FoundList &list) {
  const ListView view(file, list.list, list.begin);
  if (!view.addsUpTo(file, list.size))
    return false;
  std::uint64_t was_at = list.was_at + (view.elements() - view.begin);
  list.elements[0].resize(static_cast<std::size_t>(view.first));
  list.elements[1].resize(static_cast<std::size_t>(view.second));
  findInTable(list, elementLayout(list.list, false), view.entry(0), was_at, list.elements[0]);
  if (view.second != 0)
    findInTable(list, elementLayout(list.list, true), view.entry(view.first), was_at, list.elements[1]);
  list.numbers_known = list.table_whole = true;
  return true;
}

/// Finds the elements by their tags, one after the other.
void Locator::findByTags(FoundList &list) {
  const ListLayout &layout = LAYOUT[list.list];
  const RecordLayout *const kinds[] = {layout.first, layout.second};
  const ListView view(file, list.list, list.isFound() ? list.begin : file.size()); // behind the file stand zeros
  const std::uint64_t numbers[] = {view.first, view.second};
  const std::uint64_t table = (numbers[0] + numbers[1]) * sizeof(Word);
  const std::uint64_t least =
      table + numbers[0] * layout.first->fixed + (numbers[1] != 0 ? numbers[1] * layout.second->fixed : 0);
  const Word head = list.isFound() ? file[list.begin + list_at::HEADER_SIZE] : 0;
  list.numbers_known = (head == layout.head_bytes || head == layout.head_bytes + table) &&
                       layout.head_bytes + least <= list.size && (least != 0 || list.size == layout.head_bytes) &&
                       numbers[0] + numbers[1] <= elements_left;
  const std::uint64_t gone = static_cast<std::uint64_t>(-std::min({shift, moved, std::int64_t{0}}));
  std::uint64_t at = list.isFound()        ? list.begin + layout.head_bytes
                     : list.was_at >= gone ? shifted(list.was_at, std::min(shift, moved))
                                           : 0; // so much is gone that it may begin anywhere
  for (const std::size_t i : {std::size_t{0}, std::size_t{1}}) {
    std::vector<FoundElement> &elements = list.elements[i];
    while (kinds[i] != nullptr && at + kinds[i]->fixed <= list.end) {
      const auto number = static_cast<Word>(elements.size());
      std::uint64_t next = at;
      while (next + kinds[i]->fixed <= list.end && !isElement(*kinds[i], next, number))
        ++next;
      if (next + kinds[i]->fixed > list.end)
        break;
      elements_left -= file[next + kinds[i]->index_at] + std::uint64_t{1} - number;
      elements.resize(file[next + kinds[i]->index_at] + std::size_t{1});
      const Word size = file[next + kinds[i]->size_at];
      elements.back() = {next, wholeWords(*kinds[i], size)};
      at = next + elements.back().size;
    }
    if (list.numbers_known && numbers[i] > elements.size()) {
      const std::uint64_t more = std::min(numbers[i] - elements.size(), elements_left);
      elements.resize(elements.size() + static_cast<std::size_t>(more));
      elements_left -= more;
    }
  }
}

/// The scene has no size table.
void Locator::findScene(FoundList &list) {
  if (list.isFound())
    list.elements[0] = {{list.begin, list.size}};
  else
    list.elements[0] = {{NOWHERE, list.size}};
  list.numbers_known = list.table_whole = true;
}

/// @return the bytes of the blocks of a list that are there.
std::uint64_t Locator::blocksOf(const FoundList &list) const {
  if (list.list == 0 || !list.isFound())
    return 0;
  const std::uint64_t sizes_at = list.begin + LAYOUT[list.list].blocks_at;
  const std::uint64_t bytes = blockSizes(file, sizes_at).sum();
  return bytes <= list.size && list.table_whole ? bytes : 0;
}

/// An element is whole if it ends by its own words where its size says, and if nothing else begins before that.
void Locator::judge(FoundList &list) {
  bool next_found = list.next_found;
  std::uint64_t next = list.end - blocksOf(list);
  for (const std::size_t i : {std::size_t{1}, std::size_t{0}}) {
    for (std::size_t number = list.elements[i].size(); number-- > 0;) {
      const RecordLayout &kind = elementLayout(list.list, i != 0);
      FoundElement &element = list.elements[i][number];
      found.whole &= element.isFound();
      if (!element.isFound()) {
        next_found = false;
        continue;
      }
      Walk walk(file, version_2, nullptr, steps_left);
      const std::uint64_t end = walk.over({&kind, element.begin, static_cast<Word>(number)});
      element.whole = !walk.broken && walk.faults == 0 && end == element.begin + element.size && end <= next;
      element.doubtful = element.whole && !next_found;
      if (element.whole && next_found && moved > 0)
        element.stray = next - end;
      next_found = true;
      next = element.begin;
      found.whole &= element.whole;
      found.behind |= moved != 0 && (shift != 0 || (list.list != 0 && !list.table_whole));
    }
  }
  found.whole &= list.isFound() && list.table_whole;
}

Found Locator::locate() {
  findHeads();
  shift = 0;
  found.whole = moved == 0;
  for (std::size_t number = 0; number < found.lists.size(); ++number) {
    FoundList &list = found.lists[number];
    if (list.isFound())
      shift = list.shift();
    found.strange |= !list.isFound() && isStrange(list);
    findEnd(number);
    if (list.list == 0)
      findScene(list);
    else if (!list.isFound() || !findByTable(list))
      findByTags(list);
    judge(list);
  }
  return std::move(found);
}

} // namespace

Found locate(FileBytes file) { return Locator(file).locate(); }

} // namespace kova::mend
