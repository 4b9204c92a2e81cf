#include "mend/gaps.h"

#include "mend/list_view.h"

namespace kova::mend {

namespace {

/// Goes over what was found, and takes down what lies between.
class GapFinder {
public:
  explicit GapFinder(const FileBytes &bytes) : file(bytes) {}

  std::vector<Gap> find(const Found &found);

private:
  void whole(std::uint64_t begin, std::uint64_t end, std::optional<std::int64_t> shift);
  void broken(std::size_t list, std::optional<Word> element);
  void head(const FoundList &list);
  void elements(const FoundList &list, std::size_t second, std::uint64_t &was_at);

  static constexpr std::size_t NONE = ~std::size_t{0};

  const FileBytes &file;
  std::uint64_t at = 0;         ///< up to here, all is whole or in a gap
  std::int64_t shift_now = 0;   ///< how far that has moved
  std::size_t unsure = NONE;    ///< the gap behind which nothing tells how far it has moved
  std::optional<Gap> open = {}; ///< what begins there
  std::size_t list_now = LIST_NUM;
  std::optional<Word> element_now = {};
  std::vector<Gap> gaps = {};
};

/// Takes something that is whole, and how far it has moved, if that is known.
void GapFinder::whole(std::uint64_t begin, std::uint64_t end, std::optional<std::int64_t> shift) {
  const std::int64_t missing = shift ? shift_now - *shift : 0;
  if (missing != 0 && begin <= at && !open && unsure != NONE) {
    gaps[unsure].missing = missing;
  } else if (begin > at || missing != 0 || open) {
    Gap gap = open.value_or(Gap{.list = list_now, .element = element_now});
    gap.begin = std::min(at, begin);
    gap.end = std::max(gap.begin, begin);
    gap.missing = missing;
    unsure = gaps.size();
    gaps.push_back(gap);
  }
  open.reset();
  at = std::max(at, end);
  shift_now = shift.value_or(shift_now);
  if (shift)
    unsure = NONE;
}

void GapFinder::broken(std::size_t list, std::optional<Word> element) {
  if (!open)
    open = Gap{.list = list, .element = element};
}

void GapFinder::head(const FoundList &list) {
  if (list.list == 0) // it has none
    return;
  list_now = list.list;
  element_now.reset();
  const std::uint64_t bytes = LAYOUT[list.list].head_bytes;
  const std::uint64_t numbers = list.elements[0].size() + list.elements[1].size();
  if (list.isFound())
    whole(list.begin, list.begin + (list.table_whole ? bytes + numbers * sizeof(Word) : list_at::COUNT), list.shift());
  if (!list.isFound() || !list.table_whole)
    broken(list.list, {});
}

void GapFinder::elements(const FoundList &list, std::size_t second, std::uint64_t &was_at) {
  for (std::size_t i = 0; i < list.elements[second].size(); ++i) {
    const FoundElement &element = list.elements[second][i];
    list_now = list.list;
    element_now = list.list == 0 ? std::nullopt : std::optional(static_cast<Word>(i));
    const auto shift = static_cast<std::int64_t>(element.begin - was_at);
    const bool is_whole = element.whole && !element.doubtful;
    if (is_whole)
      whole(element.begin, element.begin + (element.stray == 0 ? element.size : 0),
            list.table_whole && list.isFound() ? std::optional(shift) : std::nullopt);
    if (!is_whole || element.stray != 0) // what is too much may stand anywhere in it
      broken(list.list, element_now);
    was_at += element.size;
  }
}

std::vector<Gap> GapFinder::find(const Found &found) {
  whole(0, file[header_at::HEADER_SIZE], 0);
  for (const FoundList &list : found.lists) {
    head(list);
    const std::uint64_t numbers = list.elements[0].size() + list.elements[1].size();
    std::uint64_t was_at = list.was_at;
    if (list.list != 0)
      was_at += LAYOUT[list.list].head_bytes + numbers * sizeof(Word);
    elements(list, 0, was_at);
    elements(list, 1, was_at);
    if (list.list == 0 || open)
      continue;
    if (list.table_whole) // its blocks
      at = std::min(file.size(), at + (list.was_at + list.size - std::min(was_at, list.was_at + list.size)));
    else if (!list.isFound() || at + blockSizes(file, list.begin + LAYOUT[list.list].blocks_at).sum() == list.end)
      at = std::max(at, list.end);
  }
  whole(file.size(), file.size(), static_cast<std::int64_t>(file.size()) - file[header_at::SIZE]);
  std::erase_if(gaps, [](const Gap &gap) { return gap.begin == gap.end && gap.missing == 0; });
  return std::move(gaps);
}

} // namespace

std::vector<Gap> gapsOf(const FileBytes &file, const Found &found) { return GapFinder(file).find(found); }

} // namespace kova::mend
