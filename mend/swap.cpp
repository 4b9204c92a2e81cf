#include "mend/swap.h"

#include "mend/list_view.h"
#include "mend/locate.h"
#include "mend/mend.h"
#include "mend/reading.h"

#include <algorithm>

namespace kova::mend {

namespace {

/// The blocks that storage devices exchange.
constexpr std::uint64_t BLOCKS[] = {512, 2048, 4096};
/// What the search may read for each byte of the file, in bytes.
constexpr std::uint64_t READ_FOR_EACH = 64;
/// Exchanges after which the first place that was wrong is right; more of them are chance.
constexpr std::size_t MOST_TRIED = 8;

Bytes swapBlocks(BytesView file, const Undoing &way) {
  Bytes bytes(file.begin(), file.end());
  const auto at = [&](std::uint64_t place) { return bytes.begin() + static_cast<std::ptrdiff_t>(place); };
  std::swap_ranges(at(way.at), at(way.at + way.count), at(way.value));
  return bytes;
}

std::string tellSwap(const Undoing &way) {
  return "the blocks of " + std::to_string(way.count) + " bytes at " + offsetText(way.at) + " and " +
         offsetText(way.value) + " stood in each other's place: exchanged";
}

constexpr Transformation SWAP = {"swapped", nullptr, swapBlocks, tellSwap};

/// The first part of a file that is not as it should be, and what it should be.
struct Broken {
  enum class Sort : std::uint8_t { none, head, table, element };
  Sort sort = Sort::none;
  const FoundList *list = nullptr;
  const RecordLayout *kind = nullptr; ///< of an element
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
  Word number = 0;
  std::uint64_t size = 0;
};

class SwapSearch {
public:
  SwapSearch(Bytes &file_bytes, const IsOriginal &is_original)
      : accepts(is_original), bytes(file_bytes), file(bytes), version_2(hasVersion2(file.version())),
        left(READ_FOR_EACH * bytes.size()) {}

  std::vector<Undoing> find();

private:
  Broken firstBroken(const Found &found);
  Broken firstBrokenElement(const FoundList &list);
  bool isSound(const RecordAt &spot, std::uint64_t end);
  bool isRight(const Broken &broken);
  bool isTableRight(const Broken &broken) const;
  bool isElementRight(const Broken &broken);
  void swap(const Undoing &way);
  void tryAll(const Broken &broken, std::uint64_t block);
  void tryOne(const Broken &broken, const Undoing &way);

  const IsOriginal &accepts;
  Bytes &bytes; ///< blocks are exchanged in place, and exchanged back
  FileBytes file;
  bool version_2;
  std::uint64_t left;  ///< of what may be read
  bool strict = false; ///< records inside are looked at, too, as far as the words that are doubtful show them
  std::size_t tried = 0;
  std::optional<Undoing> found_way = {};
  Bytes original = {};
  bool several = false;
};

// --- What is wrong --------------------------------------------------------------------------------------------------

/// @return whether a record is whole, and its words agree with each other.
bool SwapSearch::isSound(const RecordAt &spot, std::uint64_t end) {
  std::uint64_t steps = end - spot.begin;
  Walk walk(file, version_2, nullptr, steps);
  return walk.over(spot) == end && !walk.broken && walk.faults == 0 && (!strict || walk.doubts == 0);
}

Broken SwapSearch::firstBrokenElement(const FoundList &list) {
  const std::uint64_t numbers = list.elements[0].size() + list.elements[1].size();
  std::uint64_t at = list.was_at;
  if (list.list != 0)
    at += LAYOUT[list.list].head_bytes + numbers * sizeof(Word);
  for (const std::size_t second : {std::size_t{0}, std::size_t{1}})
    for (std::size_t i = 0; i < list.elements[second].size(); ++i) {
      const FoundElement &element = list.elements[second][i];
      const RecordLayout &kind = elementLayout(list.list, second != 0);
      const bool whole = element.whole && (!strict || isSound({&kind, at, static_cast<Word>(i)}, at + element.size));
      if (!whole)
        return {Broken::Sort::element, &list, &kind, at, at + element.size, static_cast<Word>(i), element.size};
      at += element.size;
    }
  return {};
}

Broken SwapSearch::firstBroken(const Found &found) {
  for (const FoundList &list : found.lists) {
    const std::uint64_t head = LAYOUT[list.list].head_bytes;
    if (!isListTag(list.list, file[list.was_at]) || file[list.was_at + list_at::SIZE] != list.size)
      return {.sort = Broken::Sort::head, .list = &list, .begin = list.was_at, .end = list.was_at + head};
    const std::uint64_t numbers = file[list.was_at + list_at::COUNT];
    if (!list.table_whole)
      return {.sort = Broken::Sort::table,
              .list = &list,
              .begin = list.was_at,
              .end = list.was_at + std::min(list.size, head + numbers * sizeof(Word))};
    if (const Broken element = firstBrokenElement(list); element.sort != Broken::Sort::none)
      return element;
  }
  return {};
}

/// @return whether the size table of a list says how long the list is.
bool SwapSearch::isTableRight(const Broken &broken) const {
  return ListView(file, broken.list->list, broken.begin).addsUpTo(file, broken.list->size);
}

bool SwapSearch::isElementRight(const Broken &broken) {
  const RecordLayout &kind = *broken.kind;
  if (!isElementTag(kind, file[broken.begin]) || wholeWords(kind, file[broken.begin + kind.size_at]) != broken.size ||
      (kind.index_at != NO_WORD && file[broken.begin + kind.index_at] != broken.number))
    return false;
  left -= std::min(left, broken.size / sizeof(Word));
  return isSound({&kind, broken.begin, broken.number}, broken.end);
}

bool SwapSearch::isRight(const Broken &broken) {
  if (broken.sort == Broken::Sort::element)
    return isElementRight(broken);
  if (broken.sort == Broken::Sort::head)
    return isListTag(broken.list->list, file[broken.begin]) && file[broken.begin + list_at::SIZE] == broken.list->size;
  left -= std::min(left, broken.end - broken.begin);
  return isTableRight(broken);
}

// --- The search -----------------------------------------------------------------------------------------------------

void SwapSearch::swap(const Undoing &way) {
  const auto at = [&](std::uint64_t place) { return bytes.begin() + static_cast<std::ptrdiff_t>(place); };
  std::swap_ranges(at(way.at), at(way.at + way.count), at(way.value));
}

void SwapSearch::tryOne(const Broken &broken, const Undoing &way) {
  left -= std::min(left, way.count / 4);
  swap(way);
  if (isRight(broken) && headerFacts({bytes}).isWhole()) {
    ++tried;
    Bytes copy = bytes;
    if (locate(file).whole && accepts(copy)) {
      several |= found_way && copy != original;
      found_way = way;
      original = std::move(copy);
    }
  }
  swap(way);
}

/// Exchanges each block of what is wrong with each other block behind the header.
void SwapSearch::tryAll(const Broken &broken, std::uint64_t block) {
  const std::uint64_t number = file.size() / block;
  for (std::uint64_t one = broken.begin / block; one * block < broken.end && one < number; ++one)
    for (std::uint64_t other = 1; other < number && left != 0 && tried <= MOST_TRIED && !several; ++other)
      if (other != one)
        tryOne(broken, {&SWAP, std::min(one, other) * block, block, std::max(one, other) * block});
}

std::vector<Undoing> SwapSearch::find() {
  const Found found = locate(file);
  Broken broken = firstBroken(found);
  if (broken.sort == Broken::Sort::none) { // but perhaps what is in an element
    strict = true;
    broken = firstBroken(found);
  }
  for (const std::uint64_t block : BLOCKS)
    if (broken.sort != Broken::Sort::none)
      tryAll(broken, block);
  if (!found_way || several || tried > MOST_TRIED || left == 0)
    return {};
  return {*found_way};
}

} // namespace

std::vector<Undoing> findSwap(Bytes &bytes, const IsOriginal &accepts) {
  const HeaderFacts facts = headerFacts({bytes});
  if (!facts.isHeader() || facts.sum != facts.stated || facts.stated != bytes.size())
    return {};
  return SwapSearch(bytes, accepts).find();
}

} // namespace kova::mend
