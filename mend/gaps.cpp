#include "mend/gaps.h"

namespace kova::mend {

namespace {

/// Goes over what was found, and takes down what lies between.
class GapFinder {
public:
  explicit GapFinder(const FileBytes &bytes) : file(bytes) {}

  std::vector<Gap> find(const Found &found);

private:
  void whole(std::uint64_t begin, std::uint64_t end, std::int64_t shift);
  void broken(std::size_t list, std::optional<Word> element);
  void head(const FoundList &list);
  void elements(const FoundList &list, std::size_t second, std::uint64_t &was_at);

  const FileBytes &file;
  std::uint64_t at = 0;         ///< up to here, all is whole or in a gap
  std::int64_t shift_now = 0;   ///< how far that has moved
  std::optional<Gap> open = {}; ///< what begins there
  std::size_t list_now = LIST_NUM;
  std::optional<Word> element_now = {};
  std::vector<Gap> gaps = {};
};

/// Takes something that is whole.
void GapFinder::whole(std::uint64_t begin, std::uint64_t end, std::int64_t shift) {
  if (begin > at || shift != shift_now || open) {
    Gap gap = open.value_or(Gap{.list = list_now, .element = element_now});
    gap.begin = std::min(at, begin);
    gap.end = std::max(gap.begin, begin);
    gap.missing = shift_now - shift;
    gaps.push_back(gap);
  }
  open.reset();
  at = std::max(at, end);
  shift_now = shift;
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
    whole(list.begin, list.begin + bytes + (list.table_whole ? numbers * sizeof(Word) : 0), list.shift());
  if (!list.isFound() || !list.table_whole)
    broken(list.list, {});
}

void GapFinder::elements(const FoundList &list, std::size_t second, std::uint64_t &was_at) {
  for (std::size_t i = 0; i < list.elements[second].size(); ++i) {
    const FoundElement &element = list.elements[second][i];
    list_now = list.list;
    element_now = list.list == 0 ? std::nullopt : std::optional(static_cast<Word>(i));
    if (element.whole)
      whole(element.begin, element.begin + element.size,
            list.table_whole && list.isFound() ? static_cast<std::int64_t>(element.begin - was_at) : shift_now);
    else
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
    if (list.table_whole && !open && list.list != 0) // its blocks
      at = std::min(file.size(), at + (list.was_at + list.size - std::min(was_at, list.was_at + list.size)));
  }
  whole(file.size(), file.size(), static_cast<std::int64_t>(file.size()) - file[header_at::SIZE]);
  return std::move(gaps);
}

} // namespace

std::vector<Gap> gapsOf(const FileBytes &file, const Found &found) { return GapFinder(file).find(found); }

} // namespace kova::mend
