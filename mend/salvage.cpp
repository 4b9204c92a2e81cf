#include "mend/salvage.h"

#include "mend/derive.h"
#include "mend/empty_record.h"
#include "mend/links.h"
#include "mend/list_view.h"

#include <algorithm>

namespace kova::mend {

namespace {

/// The elements that are left of a list that was cut.
struct CutElements {
  Bytes bytes = {};
  std::vector<Word> sizes = {}; ///< for the size tables
  std::uint64_t first = 0;      ///< how many are left of the first kind
  std::uint64_t second = 0;     ///< and of the second one
};

class Salvage {
public:
  explicit Salvage(const FileBytes &bytes) : file(bytes), version_2(hasVersion2(file.version())) {}

  std::optional<Salvaged> salvage();

private:
  void salvageHeader();
  bool salvageList(std::size_t list, std::uint64_t begin, std::uint64_t size);
  void emptyList(std::size_t list);
  void cutScene(std::uint64_t begin);
  void cutList(std::size_t list, std::uint64_t begin);
  std::uint64_t cutElements(std::size_t list, const RecordLayout &kind, std::uint64_t &at, std::uint64_t table,
                            Word number, CutElements &cut);
  void loseElements(const ListView &view, std::size_t list, bool has_head);
  BlockSizes cutBlocks(std::size_t list, const BlockSizes &blocks, std::uint64_t there);
  void addEmptyGroups(std::size_t list, CutElements &cut);
  void appendHead(const ListView &view, const CutElements &cut, const BlockSizes &blocks);
  void lose(std::size_t list, std::optional<Word> element, std::string what) {
    made.losses.push_back({listName(list), element, std::move(what)});
  }
  void copy(std::uint64_t begin, std::uint64_t end, std::uint64_t from) { copied.push_back({begin, end, from}); }

  const FileBytes &file;
  bool version_2;
  std::uint64_t lists_begin = FILE_HEADER_BYTES; ///< in the cut file
  std::uint64_t whole_end = 0;                   ///< of the elements of the list that are whole
  Spans spans = {};                              ///< of the lists that are left, in the salvaged file
  Gone gone = {};
  Salvaged made = {};
  std::vector<Copied> copied = {};
};

/// The header, with what is left of its blocks. The sizes of the version-2 lists have to be there.
void Salvage::salvageHeader() {
  Bytes &bytes = made.bytes;
  append(bytes, file, 0, std::min<std::uint64_t>(file.size() & ~std::uint64_t{3}, FILE_HEADER_BYTES));
  bytes.resize(FILE_HEADER_BYTES);
  const auto [maker, user] = statedBlockSizes(file, header_at::BLOCKS);
  lists_begin = headerEnd(file);
  const std::uint64_t there = file.size() > FILE_HEADER_BYTES ? file.size() - FILE_HEADER_BYTES : 0;
  const auto whole_words = [](std::uint64_t size) { return size & ~std::uint64_t{3}; };
  const std::uint64_t maker_left = maker <= there ? maker : whole_words(there);
  const std::uint64_t user_left = maker <= there ? std::min(user, whole_words(there - maker)) : 0;
  const std::uint64_t filled = version_2 ? std::max<std::uint64_t>(maker_left, VERSION_2_SIZES_BYTES) : maker_left;
  if (maker_left != 0)
    append(bytes, file, FILE_HEADER_BYTES, FILE_HEADER_BYTES + maker_left);
  bytes.resize(FILE_HEADER_BYTES + static_cast<std::size_t>(filled));
  if (user_left != 0)
    append(bytes, file, FILE_HEADER_BYTES + maker, FILE_HEADER_BYTES + maker + user_left);
  FileBytes written(bytes);
  setBlockSizes(written, header_at::BLOCKS, {filled, user_left});
  const bool keeps_size = maker_left == maker && filled == maker && user_left == user;
  copy(header_at::TAG, header_at::HEADER_SIZE + (keeps_size ? sizeof(Word) : 0), header_at::TAG);
  if (file.size() < FILE_HEADER_BYTES)
    lose(LIST_NUM, {}, remainingText({FILE_HEADER_BYTES, file.size()}, "bytes"));
  else if (maker_left < maker || user_left < user)
    lose(LIST_NUM, {}, remainingText({maker + user, maker_left + user_left}, "bytes of the blocks"));
}

/// A list without elements, or a scene without links.
void Salvage::emptyList(std::size_t list) {
  const ListLayout &layout = LAYOUT[list];
  Bytes &bytes = made.bytes;
  if (layout.first == nullptr) {
    const Bytes scene = emptyRecord(SCENE, 0, version_2);
    bytes.insert(bytes.end(), scene.begin(), scene.end());
    return;
  }
  appendWords(bytes, {LISTS[list].tag, layout.head_bytes, layout.head_bytes, 0, 0, 0});
  if (layout.second != nullptr)
    appendWords(bytes, {0});
}

void Salvage::cutScene(std::uint64_t begin) {
  const CutRecord scene = cutRecord(file, SCENE, begin, 0, version_2);
  if (!scene.is_record) {
    lose(0, {}, "the scene is gone");
    return emptyList(0);
  }
  made.bytes.insert(made.bytes.end(), scene.bytes.begin(), scene.bytes.end());
  lose(0, {}, scene.what);
}

/// Appends the elements that are left, and their entries in the size table. @return their number.
std::uint64_t Salvage::cutElements(std::size_t list, const RecordLayout &kind, std::uint64_t &at, std::uint64_t table,
                                   Word number, CutElements &cut) {
  const To to = toKind(list, &kind == LAYOUT[list].second);
  Remaining &counted = gone[to] = {number, 0};
  for (Word i = 0; i < number && at < file.size(); ++i) {
    if (at + kind.fixed <= file.size() && !isElementTag(kind, file[at]))
      break;
    Walk walk(file, file.size(), version_2);
    const std::uint64_t end = at + kind.fixed <= file.size() ? walk.over({&kind, at, i}) : UNKNOWN;
    if (end <= file.size() && !walk.broken) {
      append(cut.bytes, file, at, end);
      const Word entry = file[table + std::uint64_t{i} * sizeof(Word)];
      cut.sizes.push_back((entry & ~Word{3}) == end - at ? entry : file[at + kind.size_at]);
      at = whole_end = end;
      ++counted.now;
      continue;
    }
    const CutRecord record = cutRecord(file, kind, at, i, version_2);
    if (record.is_record) {
      cut.bytes.insert(cut.bytes.end(), record.bytes.begin(), record.bytes.end());
      cut.sizes.push_back(static_cast<Word>(record.bytes.size()));
      ++counted.now;
      lose(list, i, record.what);
      gone.cut.push_back({to, i, record.entries});
    }
    at = file.size();
  }
  if (counted.now < counted.before)
    lose(list, {}, remainingText(counted, "elements"));
  return counted.now;
}

/// A list of which no element is left.
void Salvage::loseElements(const ListView &view, std::size_t list, bool has_head) {
  gone[toKind(list, false)] = {has_head ? view.first : UNKNOWN, 0};
  if (view.layout.second != nullptr)
    gone[toKind(list, true)] = {has_head ? view.second : UNKNOWN, 0};
  lose(list, {}, has_head ? remainingText({view.number(), 0}, "elements") : "the list is gone");
  emptyList(list);
}

/// @return what is left of the blocks of a list of which so many bytes are there behind the elements.
BlockSizes Salvage::cutBlocks(std::size_t list, const BlockSizes &blocks, std::uint64_t there) {
  const BlockSizes blocks_left = blocks.trimmed(there);
  if (blocks_left.sum() < blocks.sum())
    lose(list, {}, remainingText({blocks.sum(), blocks_left.sum()}, "bytes of the blocks"));
  if (there > blocks.sum())
    lose(list, {}, std::to_string(there - blocks.sum()) + " bytes behind the blocks");
  return blocks_left;
}

/// Files are read as if there were as many groups of vertex colours as there are of triangle colours.
void Salvage::addEmptyGroups(std::size_t list, CutElements &cut) {
  if (LISTS[list].tag != COLOR_LIST_TAG || cut.second >= cut.first)
    return;
  const RecordLayout &kind = *LAYOUT[list].second;
  made.losses.push_back(
      {LISTS[list].name, {}, std::to_string(cut.first - cut.second) + " empty groups of vertex colours", true});
  for (; cut.second < cut.first; ++cut.second) {
    const auto index = static_cast<Word>(cut.second);
    const Bytes group = emptyRecord(kind, index, version_2);
    cut.bytes.insert(cut.bytes.end(), group.begin(), group.end());
    cut.sizes.push_back(kind.fixed);
    gone.cut.push_back({To::vtx_color, index, {UNKNOWN, 0}});
  }
  gone[To::vtx_color].now = cut.second;
}

/// Appends the header and the size table of a list of which elements are left.
void Salvage::appendHead(const ListView &view, const CutElements &cut, const BlockSizes &blocks) {
  const std::uint64_t head = made.bytes.size();
  append(made.bytes, file, view.begin, view.entry(0));
  FileBytes written(made.bytes);
  written.set(head + list_at::COUNT, static_cast<Word>(cut.first));
  if (view.layout.second != nullptr)
    written.set(head + list_at::SECOND_COUNT, static_cast<Word>(cut.second));
  setBlockSizes(written, head + view.layout.blocks_at, blocks);
  for (const Word size : cut.sizes)
    appendWords(made.bytes, {size});
}

void Salvage::cutList(std::size_t list, std::uint64_t begin) {
  const ListView view(file, list, begin);
  const bool has_head = view.entry(0) <= file.size();
  std::uint64_t at = view.elements();
  if (!has_head || at > file.size())
    return loseElements(view, list, has_head);
  whole_end = at;
  CutElements cut;
  cut.first = cutElements(list, *view.layout.first, at, view.entry(0), static_cast<Word>(view.first), cut);
  if (view.layout.second != nullptr)
    cut.second =
        cutElements(list, *view.layout.second, at, view.entry(view.first), static_cast<Word>(view.second), cut);
  const bool whole = cut.first == view.first && cut.second == view.second && gone.cut.empty();
  const BlockSizes blocks = blockSizes(file, begin + view.layout.blocks_at);
  const BlockSizes blocks_left = cutBlocks(list, blocks, whole ? file.size() - at : 0);
  addEmptyGroups(list, cut);
  appendHead(view, cut, blocks_left);
  Bytes &bytes = made.bytes;
  copy(bytes.size(), bytes.size() + whole_end - view.elements(), view.elements());
  bytes.insert(bytes.end(), cut.bytes.begin(), cut.bytes.end());
  append(bytes, file, at, at + blocks_left.maker);
  if (blocks_left.user != 0)
    append(bytes, file, at + blocks.maker, at + blocks.maker + blocks_left.user);
}

/// @return false where the list does not stand where it should.
bool Salvage::salvageList(std::size_t list, std::uint64_t begin, std::uint64_t size) {
  const ListLayout &layout = LAYOUT[list];
  const std::uint64_t made_begin = made.bytes.size();
  if (file.holds(begin) && !isListTag(list, file[begin]))
    return false;
  if (begin + size <= file.size()) {
    append(made.bytes, file, begin, begin + size);
    copy(made_begin, made.bytes.size(), begin);
    if (layout.first != nullptr && size >= layout.head_bytes)
      gone[toKind(list, false)] = {file[begin + list_at::COUNT], file[begin + list_at::COUNT]};
    if (layout.second != nullptr && size >= layout.head_bytes)
      gone[toKind(list, true)] = {file[begin + list_at::SECOND_COUNT], file[begin + list_at::SECOND_COUNT]};
  } else if (begin < file.size()) {
    layout.first == nullptr ? cutScene(begin) : cutList(list, begin);
  } else {
    if (layout.first != nullptr) {
      gone[toKind(list, false)] = {UNKNOWN, 0};
      if (layout.second != nullptr)
        gone[toKind(list, true)] = {UNKNOWN, 0};
    }
    lose(list, {}, "the list is gone");
    if (list < VERSION_1_LIST_NUM)
      emptyList(list);
  }
  if (made.bytes.size() != made_begin)
    spans[list] = {.sort = Decision::Sort::list, .begin = made_begin, .end = made.bytes.size(), .list = list};
  return true;
}

/// @return whether the records of a list of the salvaged file end within it. What was whole can be damaged, too.
bool isSound(const FileBytes &file, const Decision &span, bool version_2) {
  const ListLayout &layout = LAYOUT[span.list];
  const auto goOver = [&](const RecordAt &record, std::uint64_t &end) {
    if (record.begin + record.kind->fixed > span.end || !isElementTag(*record.kind, file[record.begin]))
      return false;
    Walk walk(file, span.end, version_2);
    end = walk.over(record);
    return !walk.broken && end <= span.end;
  };
  std::uint64_t at = span.begin;
  if (layout.first == nullptr)
    return goOver({&SCENE, at}, at) && at == span.end;
  if (at + layout.head_bytes > span.end)
    return false;
  const ListView view(file, span.list, at);
  at = view.elements();
  for (std::uint64_t i = 0; i < view.number(); ++i)
    if (!goOver(view.element(i, at), at))
      return false;
  return at + blockSizes(file, span.begin + layout.blocks_at).sum() == span.end;
}

std::optional<Salvaged> Salvage::salvage() {
  salvageHeader();
  const bool has_version_2_lists = version_2 && file[header_at::BLOCKS] >= VERSION_2_SIZES_BYTES;
  std::uint64_t begin = lists_begin;
  for (std::size_t list = 0; list < (has_version_2_lists ? LIST_NUM : VERSION_1_LIST_NUM); ++list) {
    const std::uint64_t word = LAYOUT[list].header_word_at;
    const bool has_word = file.holds(word);
    const std::uint64_t size = file[word];
    if (has_word && size == 0)
      continue; // it had no such list
    if (!salvageList(list, has_word ? begin : std::max<std::uint64_t>(begin, file.size()), size))
      return std::nullopt;
    begin += size;
  }
  if (begin < file.size())
    lose(LIST_NUM, {}, std::to_string(file.size() - begin) + " bytes behind the last list");
  FileBytes written(made.bytes);
  for (const Decision &span : spans)
    if (span.end != 0 && !isSound(written, span, version_2))
      return std::nullopt;
  made.changes = changesBefore(applyReading(written, {.decisions = linkSpans(spans)}).changes, copied, file.size());
  cutLinks(written, spans, gone, made.losses);
  return std::move(made);
}

} // namespace

std::vector<Change> changesBefore(std::vector<Change> changes, const std::vector<Copied> &copied,
                                  std::uint64_t size_before) {
  std::vector<Change> before;
  for (Change &change : changes) {
    // Parts are copied in the order of the new file.
    auto part = std::upper_bound(copied.begin(), copied.end(), change.offset,
                                 [](std::uint64_t at, const Copied &other) { return at < other.begin; });
    if (part == copied.begin() || change.offset + sizeof(Word) > (--part)->end)
      continue;
    change.offset += part->from - part->begin;
    if (change.offset + sizeof(Word) <= size_before)
      before.push_back(std::move(change));
  }
  return before;
}

std::optional<Salvaged> salvageFile(const FileBytes &cut) { return Salvage(cut).salvage(); }

} // namespace kova::mend
