#include "mend/holes.h"

#include "mend/derive.h"
#include "mend/empty_record.h"
#include "mend/links.h"
#include "mend/list_view.h"
#include "mend/locate.h"

#include <algorithm>

namespace kova::mend {

namespace {

class HoleSalvage {
public:
  HoleSalvage(const FileBytes &bytes, const HolesAsked &what)
      : file(bytes), version_2(hasVersion2(bytes.version())), asked(what) {}

  std::optional<Salvaged> salvage();

private:
  void lose(std::size_t list, std::optional<Word> element, std::string what) {
    made.losses.push_back({listName(list), element, std::move(what)});
  }
  void copy(std::uint64_t begin, std::uint64_t end);
  bool makeCut(const FoundList &list, const RecordLayout &kind, To to, Word number, const FoundElement &element);
  bool makeElement(const FoundList &list, bool second, Word number);
  void leaveOut(const FoundList &list, std::uint64_t table, const std::vector<Word> &numbers, Word left);
  void makeElements(const FoundList &list, bool second, std::uint64_t table);
  void makeBlocks(const FoundList &list, std::uint64_t head);
  void makeHead(const FoundList &list);
  void makeList(const FoundList &list);
  void tellParts();

  const FileBytes &file;
  bool version_2;
  HolesAsked asked;
  Spans spans = {};
  Gone gone = {};
  Salvaged made = {};
  std::vector<Copied> copied = {};
};

void HoleSalvage::copy(std::uint64_t begin, std::uint64_t end) {
  copied.push_back({made.bytes.size(), made.bytes.size() + end - begin, begin});
  append(made.bytes, file, begin, end);
}

/// Makes a record of the begin of an element, up to the first record inside that is not as it should be. @return false
/// if it makes none.
bool HoleSalvage::makeCut(const FoundList &list, const RecordLayout &kind, To to, Word number,
                          const FoundElement &element) {
  Walk walk(file, element.begin + element.size, version_2);
  walk.over({&kind, element.begin, number});
  const std::uint64_t fixed_end = element.begin + kind.fixed;
  const std::uint64_t end = walk.suspect.kind != nullptr ? std::max(fixed_end, walk.suspect.begin) : fixed_end;
  const std::span<const unsigned char> left = file.between(element.begin, end);
  Bytes bytes(left.begin(), left.end());
  const FileBytes cut(bytes);
  CutRecord record = cutRecord(cut, kind, 0, number, version_2);
  const FileBytes left_of(record.bytes);
  Walk again(left_of, record.bytes.size(), version_2);
  again.over({&kind, 0, number});
  if (!record.is_record || again.faults != 0)
    return false;
  made.bytes.insert(made.bytes.end(), record.bytes.begin(), record.bytes.end());
  lose(list.list, list.list == 0 ? std::nullopt : std::optional(number),
       "it reaches into the hole: " + (record.what.empty() ? "what is behind its fixed words is gone" : record.what));
  gone.cut.push_back({to, number, record.entries});
  return true;
}

/// Appends an element, or what is left of it. @return false if it is left out.
bool HoleSalvage::makeElement(const FoundList &list, bool second, Word number) {
  const RecordLayout &kind = elementLayout(list.list, second);
  const To to = list.list == 0 ? To::nothing : toKind(list.list, second);
  const FoundElement &element = list.elements[second][number];
  const std::optional<Word> named = list.list == 0 ? std::nullopt : std::optional(number);
  if (element.stray != 0)
    lose(list.list, named,
         std::to_string(element.stray) + (element.stray == 1 ? " byte" : " bytes") +
             " too many stood in it or behind it: left out behind it");
  if (element.doubtful)
    lose(list.list, named, "its end may lie in the hole");
  if (element.whole) {
    copy(element.begin, element.begin + element.size);
    return true;
  }
  if (asked.parts && element.isFound() && makeCut(list, kind, to, number, element))
    return true;
  if (asked.drop && list.list != 0 && LAYOUT[list.list].second == nullptr) {
    lose(list.list, named, "it lies in the hole: left out");
    return false;
  }
  const Bytes empty = emptyRecord(kind, number, version_2);
  made.bytes.insert(made.bytes.end(), empty.begin(), empty.end());
  lose(list.list, named, "it lies in the hole: now empty");
  if (to != To::nothing)
    gone.cut.push_back({to, number, {UNKNOWN, 0}});
  return true;
}

/// Takes the room in the size table that is left, and takes down the new numbers.
void HoleSalvage::leaveOut(const FoundList &list, std::uint64_t table, const std::vector<Word> &numbers, Word left) {
  const std::uint64_t unused = (numbers.size() - left) * sizeof(Word);
  const std::uint64_t begin = table + left * sizeof(Word);
  const auto at = made.bytes.begin() + static_cast<std::ptrdiff_t>(begin);
  made.bytes.erase(at, at + static_cast<std::ptrdiff_t>(unused));
  for (Copied &part : copied)
    if (part.begin > begin) {
      part.begin -= unused;
      part.end -= unused;
    }
  FileBytes(made.bytes).set(table - LAYOUT[list.list].head_bytes + list_at::COUNT, left);
  gone.numbers[static_cast<std::size_t>(toKind(list.list, false))] = numbers;
}

/// Appends the elements of one kind, and sets their entries in the size table.
void HoleSalvage::makeElements(const FoundList &list, bool second, std::uint64_t table) {
  const RecordLayout &kind = elementLayout(list.list, second);
  std::vector<Word> numbers;
  Word left = 0;
  for (std::size_t i = 0; i < list.elements[second].size(); ++i) {
    const std::uint64_t begin = made.bytes.size();
    const bool is_there = makeElement(list, second, static_cast<Word>(i));
    numbers.push_back(is_there ? left : NO_LINK);
    if (!is_there)
      continue;
    FileBytes written(made.bytes);
    if (left != i && written[begin + kind.index_at] == i)
      written.set(begin + kind.index_at, left);
    written.set(table + left++ * sizeof(Word), written[begin + kind.size_at]);
  }
  if (left != numbers.size())
    leaveOut(list, table, numbers, left);
}

/// Appends the blocks of a list, if they are known to be whole.
void HoleSalvage::makeBlocks(const FoundList &list, std::uint64_t head) {
  const Word blocks_at = LAYOUT[list.list].blocks_at;
  FileBytes written(made.bytes);
  const auto [maker, user] = blockSizes(written, head + blocks_at);
  const std::vector<FoundElement> &elements = list.elements[list.elements[1].empty() ? 0 : 1];
  const std::uint64_t begin = list.end - std::min(list.end, maker + user);
  const bool last_whole = !elements.empty() && elements.back().whole;
  const std::uint64_t behind = last_whole ? elements.back().begin + elements.back().size : NOWHERE;
  const bool whole =
      list.isFound() && (list.table_whole ? elements.empty() || behind <= begin : maker + user != 0 && behind == begin);
  if (whole)
    return copy(begin, list.end);
  setBlockSizes(written, head + blocks_at, {});
  if (maker + user != 0)
    lose(list.list, {}, remainingText({maker + user, 0}, "bytes of the blocks"));
  else if (!list.isFound() && last_whole && behind < list.end)
    lose(list.list, {}, std::to_string(list.end - behind) + " bytes behind its last element, which may be its blocks");
}

/// Appends the head of a list, and room for its size table.
void HoleSalvage::makeHead(const FoundList &list) {
  const ListLayout &layout = LAYOUT[list.list];
  const std::uint64_t head = made.bytes.size();
  const std::size_t numbers[] = {list.elements[0].size(), list.elements[1].size()};
  if (list.isFound())
    append(made.bytes, file, list.begin, list.begin + layout.head_bytes);
  else
    appendWords(made.bytes, {LISTS[list.list].tag, layout.head_bytes, 0, 0, 0, 0});
  made.bytes.resize(static_cast<std::size_t>(head) + layout.head_bytes + (numbers[0] + numbers[1]) * sizeof(Word));
  FileBytes written(made.bytes);
  written.set(head + list_at::COUNT, static_cast<Word>(numbers[0]));
  if (layout.second != nullptr)
    written.set(head + list_at::SECOND_COUNT, static_cast<Word>(numbers[1]));
  if (!list.isFound())
    lose(list.list, {}, numbers[0] + numbers[1] != 0 ? "its head lies in the hole" : "the list is gone");
  else if (!list.table_whole)
    lose(list.list, {}, "its size table lies in the hole: made again");
  if (list.isFound() && !list.numbers_known)
    lose(list.list, {}, "there may have been more elements behind the last one");
  for (const bool second : {false, layout.second != nullptr})
    gone[toKind(list.list, second)] = {list.numbers_known ? numbers[second] : UNKNOWN, numbers[second]};
}

void HoleSalvage::makeList(const FoundList &list) {
  const ListLayout &layout = LAYOUT[list.list];
  const std::uint64_t head = made.bytes.size();
  if (list.list == 0) {
    makeElement(list, false, 0);
  } else {
    makeHead(list);
    const std::uint64_t table = head + layout.head_bytes;
    makeElements(list, false, table);
    if (layout.second != nullptr)
      makeElements(list, true, table + list.elements[0].size() * sizeof(Word));
    makeBlocks(list, head);
  }
  spans[list.list] = {.sort = Decision::Sort::list, .begin = head, .end = made.bytes.size(), .list = list.list};
}

/// Tells of the elements of which neighbouring words were made again. What is between them cannot be known.
void HoleSalvage::tellParts() {
  const Change *last = nullptr;
  for (std::size_t i = 1; i < made.changes.size(); ++i) {
    const Change &change = made.changes[i];
    const bool neighbours = change.offset == made.changes[i - 1].offset + sizeof(Word);
    if (!neighbours || (last != nullptr && last->list == change.list && last->element == change.element))
      continue;
    last = &change;
    made.losses.push_back(
        {change.list, change.element, "a part of it lies in the hole: only what follows from others is right"});
  }
  if (made.losses.empty())
    lose(LIST_NUM, {}, "bytes that follow from others were missing or too many: made again");
}

std::optional<Salvaged> HoleSalvage::salvage() {
  const Found found = locate(file);
  if ((found.whole && !asked.sure) || (file.size() < file[header_at::SIZE] && !found.behind)) // else it was cut
    return std::nullopt;
  append(made.bytes, file, 0, file[header_at::HEADER_SIZE]);
  for (const FoundList &list : found.lists)
    makeList(list);
  FileBytes written(made.bytes);
  made.changes = changesBefore(applyReading(written, {.decisions = linkSpans(spans)}).changes, copied, file.size());
  tellParts();
  if (!cutLinks(written, spans, gone, made.losses))
    return std::nullopt;
  return std::move(made);
}

} // namespace

std::optional<Salvaged> salvageHoles(const FileBytes &file, HolesAsked asked) {
  std::optional<Salvaged> made = HoleSalvage(file, asked).salvage();
  if (made || !asked.drop)
    return made;
  asked.drop = false;
  return HoleSalvage(file, asked).salvage();
}

} // namespace kova::mend
