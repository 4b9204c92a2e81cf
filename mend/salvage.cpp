#include "mend/salvage.h"

#include "mend/derive.h"
#include "mend/links.h"

#include <algorithm>

namespace kova::mend {

namespace {

class Salvage {
public:
  explicit Salvage(const FileBytes &file) : image(file), version_2(file.version() == VERSION_2) {}

  std::optional<Salvaged> salvage();

private:
  void salvageHeader();
  bool salvageList(std::size_t list, std::uint64_t begin, std::uint64_t size);
  void emptyList(std::size_t list);
  void cutScene(std::uint64_t begin);
  void cutList(std::size_t list, std::uint64_t begin);
  std::uint64_t cutElements(std::size_t list, const Kind &kind, std::uint64_t &at, std::uint64_t table, Word number,
                            Bytes &elements, std::vector<Word> &sizes);
  void lose(std::size_t list, std::optional<Word> element, std::string what) {
    made.losses.push_back({list < LIST_NUM ? LISTS[list].name : "FileHeader", element, std::move(what)});
  }
  void copy(std::uint64_t begin, std::uint64_t end, std::uint64_t from) { copied.push_back({begin, end, from}); }
  Word headerWord(std::uint64_t at) const { return at + 4 <= image.size() ? image[at] : 0; }

  const FileBytes &image;
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
  append(bytes, image, 0, std::min<std::uint64_t>(image.size() & ~std::uint64_t{3}, FILE_HEADER_BYTES));
  bytes.resize(FILE_HEADER_BYTES);
  const std::uint64_t maker = headerWord(header_at::BLOCKS);
  const std::uint64_t user = headerWord(header_at::BLOCKS + 4);
  lists_begin = FILE_HEADER_BYTES + maker + user;
  const std::uint64_t there = image.size() > FILE_HEADER_BYTES ? image.size() - FILE_HEADER_BYTES : 0;
  const auto whole_words = [](std::uint64_t size) { return size & ~std::uint64_t{3}; };
  const std::uint64_t kept_maker = maker <= there ? maker : whole_words(there);
  const std::uint64_t kept_user = maker <= there ? std::min(user, whole_words(there - maker)) : 0;
  const std::uint64_t filled = version_2 ? std::max<std::uint64_t>(kept_maker, VERSION_2_SIZES_BYTES) : kept_maker;
  if (kept_maker != 0)
    append(bytes, image, FILE_HEADER_BYTES, FILE_HEADER_BYTES + kept_maker);
  bytes.resize(FILE_HEADER_BYTES + static_cast<std::size_t>(filled));
  if (kept_user != 0)
    append(bytes, image, FILE_HEADER_BYTES + maker, FILE_HEADER_BYTES + maker + kept_user);
  FileBytes(bytes).set(header_at::BLOCKS, static_cast<Word>(filled));
  FileBytes(bytes).set(header_at::BLOCKS + 4, static_cast<Word>(kept_user));
  copy(8, kept_maker == maker && filled == maker && kept_user == user ? 16 : 12, 8);
  if (image.size() < FILE_HEADER_BYTES)
    lose(LIST_NUM, {}, leftOf({FILE_HEADER_BYTES, image.size()}, "bytes"));
  else if (kept_maker < maker || kept_user < user)
    lose(LIST_NUM, {}, leftOf({maker + user, kept_maker + kept_user}, "bytes of the blocks"));
}

/// A list without elements, or a scene without links.
void Salvage::emptyList(std::size_t list) {
  const ListLayout &layout = LAYOUT[list];
  Bytes &bytes = made.bytes;
  if (layout.first == nullptr) {
    const std::uint64_t begin = bytes.size();
    appendWords(bytes, {SCENE.tag, SCENE.fixed, SCENE.fixed, 0, NO_LINK, 0, 0, 0, 0, 0, 0});
    if (version_2) {
      const FileBytes written(bytes);
      Walk walk(written, bytes.size(), true);
      walk.over({&SCENE, begin});
      FileBytes(bytes).set(begin + SCENE.blocks_at, static_cast<Word>(-walk.maker_spare));
      bytes.resize(bytes.size() + static_cast<std::size_t>(-walk.maker_spare));
    }
    return;
  }
  appendWords(bytes, {LISTS[list].tag, layout.head_bytes, layout.head_bytes, 0, 0, 0});
  if (layout.second != nullptr)
    appendWords(bytes, {0});
}

void Salvage::cutScene(std::uint64_t begin) {
  const CutRecord scene = cutRecord(image, SCENE, begin, 0, version_2);
  if (!scene.kept) {
    lose(0, {}, "the scene is gone");
    return emptyList(0);
  }
  made.bytes.insert(made.bytes.end(), scene.bytes.begin(), scene.bytes.end());
  lose(0, {}, scene.told);
}

/// Appends the elements that are left, and their entries in the size table. @return their number.
std::uint64_t Salvage::cutElements(std::size_t list, const Kind &kind, std::uint64_t &at, std::uint64_t table,
                                   Word number, Bytes &elements, std::vector<Word> &sizes) {
  const To to = toKind(list, &kind == LAYOUT[list].second);
  Left &counted = gone[to] = {number, 0};
  for (Word i = 0; i < number && at < image.size(); ++i) {
    if (at + kind.fixed <= image.size() && !isElementTag(kind, image[at]))
      break;
    Walk walk(image, image.size(), version_2);
    const std::uint64_t end = at + kind.fixed <= image.size() ? walk.over({&kind, at, i}) : UNKNOWN;
    if (end <= image.size() && !walk.broken) {
      append(elements, image, at, end);
      const Word entry = image[table + std::uint64_t{i} * sizeof(Word)];
      sizes.push_back((entry & ~Word{3}) == end - at ? entry : image[at + kind.size_at]);
      at = whole_end = end;
      ++counted.now;
      continue;
    }
    const CutRecord record = cutRecord(image, kind, at, i, version_2);
    if (record.kept) {
      elements.insert(elements.end(), record.bytes.begin(), record.bytes.end());
      sizes.push_back(static_cast<Word>(record.bytes.size()));
      ++counted.now;
      lose(list, i, record.told);
      gone.cut.push_back({to, i, record.entries});
    }
    at = image.size();
  }
  if (counted.now < counted.before)
    lose(list, {}, leftOf(counted, "elements"));
  return counted.now;
}

void Salvage::cutList(std::size_t list, std::uint64_t begin) {
  const ListLayout &layout = LAYOUT[list];
  const std::uint64_t table = begin + layout.head_bytes;
  const Word first = table <= image.size() ? image[begin + 12] : 0;
  const Word second = table <= image.size() && layout.second != nullptr ? image[begin + 16] : 0;
  std::uint64_t at = table + (std::uint64_t{first} + second) * sizeof(Word);
  if (table > image.size() || at > image.size()) {
    gone[toKind(list, false)] = {table > image.size() ? UNKNOWN : first, 0};
    if (layout.second != nullptr)
      gone[toKind(list, true)] = {table > image.size() ? UNKNOWN : second, 0};
    lose(list, {}, table > image.size() ? "the list is gone" : leftOf({std::uint64_t{first} + second, 0}, "elements"));
    return emptyList(list);
  }
  Bytes elements;
  std::vector<Word> sizes; // for the size tables
  const std::uint64_t second_table = table + std::uint64_t{first} * sizeof(Word);
  const std::uint64_t elements_begin = whole_end = at;
  const std::uint64_t first_left = cutElements(list, *layout.first, at, table, first, elements, sizes);
  std::uint64_t second_left =
      layout.second != nullptr ? cutElements(list, *layout.second, at, second_table, second, elements, sizes) : 0;
  const bool whole = first_left == first && second_left == second && gone.cut.empty();
  const std::uint64_t there = whole ? image.size() - at : 0;
  const std::uint64_t maker = image[begin + layout.blocks_at] & ~Word{3};
  const std::uint64_t user = image[begin + layout.blocks_at + 4] & ~Word{3};
  const auto kept_maker = static_cast<Word>(std::min(maker, there & ~std::uint64_t{3}));
  const auto kept_user = static_cast<Word>(there > maker ? std::min(user, (there - maker) & ~std::uint64_t{3}) : 0);
  if (kept_maker < maker || kept_user < user)
    lose(list, {}, leftOf({maker + user, std::uint64_t{kept_maker} + kept_user}, "bytes of the blocks"));
  if (there > maker + user)
    lose(list, {}, std::to_string(there - maker - user) + " bytes behind the blocks");

  // The format's library reads as many groups of vertex colours as there are of triangle colours.
  if (LISTS[list].tag == COLOR_LIST_TAG && second_left < first_left) {
    made.losses.push_back(
        {LISTS[list].name, {}, std::to_string(first_left - second_left) + " empty groups of vertex colours", true});
    for (; second_left < first_left; ++second_left) {
      const auto index = static_cast<Word>(second_left);
      appendWords(elements, {layout.second->tag, index, layout.second->fixed, layout.second->fixed, 0});
      gone.cut.push_back({To::vtx_color, index, {UNKNOWN, 0}});
    }
    gone[To::vtx_color].now = second_left;
  }

  Bytes &bytes = made.bytes;
  const std::uint64_t head = bytes.size();
  append(bytes, image, begin, table);
  FileBytes written(bytes);
  written.set(head + 12, static_cast<Word>(first_left));
  if (layout.second != nullptr)
    written.set(head + 16, static_cast<Word>(second_left));
  written.set(head + layout.blocks_at, kept_maker);
  written.set(head + layout.blocks_at + 4, kept_user);
  for (std::uint64_t i = 0; i < first_left + second_left; ++i)
    appendWords(bytes, {i < sizes.size() ? sizes[static_cast<std::size_t>(i)] : layout.second->fixed});
  copy(bytes.size(), bytes.size() + whole_end - elements_begin, elements_begin);
  bytes.insert(bytes.end(), elements.begin(), elements.end());
  append(bytes, image, at, at + kept_maker);
  if (kept_user != 0)
    append(bytes, image, at + maker, at + maker + kept_user);
}

/// @return false where the list does not stand where it should.
bool Salvage::salvageList(std::size_t list, std::uint64_t begin, std::uint64_t size) {
  const ListLayout &layout = LAYOUT[list];
  const std::uint64_t made_begin = made.bytes.size();
  if (begin + 4 <= image.size() && !isListTag(list, image[begin]))
    return false;
  if (begin + size <= image.size()) {
    append(made.bytes, image, begin, begin + size);
    copy(made_begin, made.bytes.size(), begin);
    if (layout.first != nullptr && size >= layout.head_bytes)
      gone[toKind(list, false)] = {image[begin + 12], image[begin + 12]};
    if (layout.second != nullptr && size >= layout.head_bytes)
      gone[toKind(list, true)] = {image[begin + 16], image[begin + 16]};
  } else if (begin < image.size()) {
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
    spans[list] = {.sort = Claim::Sort::list, .begin = made_begin, .end = made.bytes.size(), .list = list};
  return true;
}

/// @return whether the records of a list of the salvaged file end within it. What was whole can be damaged, too.
bool isSound(const FileBytes &image, const Claim &span, bool version_2) {
  const ListLayout &layout = LAYOUT[span.list];
  const auto goOver = [&](const Kind &kind, std::uint64_t &at, Word number) {
    if (at + kind.fixed > span.end || (kind.tag != 0 && !isElementTag(kind, image[at])))
      return false;
    Walk walk(image, span.end, version_2);
    at = walk.over({&kind, at, number});
    return !walk.broken && at <= span.end;
  };
  std::uint64_t at = span.begin;
  if (layout.first == nullptr)
    return goOver(SCENE, at, 0) && at == span.end;
  if (at + layout.head_bytes > span.end)
    return false;
  const Word first = image[at + 12];
  const Word second = layout.second != nullptr ? image[at + 16] : 0;
  const std::uint64_t blocks =
      std::uint64_t{image[at + layout.blocks_at] & ~Word{3}} + (image[at + layout.blocks_at + 4] & ~Word{3});
  at += layout.head_bytes + (std::uint64_t{first} + second) * sizeof(Word);
  for (Word i = 0; i < first; ++i)
    if (!goOver(*layout.first, at, i))
      return false;
  for (Word i = 0; i < second; ++i)
    if (!goOver(*layout.second, at, i))
      return false;
  return at + blocks == span.end;
}

std::optional<Salvaged> Salvage::salvage() {
  salvageHeader();
  const bool has_version_2_lists = version_2 && headerWord(header_at::BLOCKS) >= VERSION_2_SIZES_BYTES;
  std::uint64_t begin = lists_begin;
  for (std::size_t list = 0; list < (has_version_2_lists ? LIST_NUM : VERSION_1_LIST_NUM); ++list) {
    const std::uint64_t word = LAYOUT[list].header_word_at;
    const bool has_word = word + sizeof(Word) <= image.size();
    const std::uint64_t size = has_word ? image[word] : 0;
    if (has_word && size == 0)
      continue; // it had no such list
    if (!salvageList(list, has_word ? begin : std::max<std::uint64_t>(begin, image.size()), size))
      return std::nullopt;
    begin += size;
  }
  if (begin < image.size())
    lose(LIST_NUM, {}, std::to_string(image.size() - begin) + " bytes behind the last list");
  const Claim *before = nullptr;
  for (Claim &span : spans)
    if (span.end != 0) {
      span.before = before;
      before = &span;
    }
  FileBytes written(made.bytes);
  for (const Claim &span : spans)
    if (span.end != 0 && !isSound(written, span, version_2))
      return std::nullopt;
  made.changes = changesBefore(applyReading(written, {.claims = before}).changes, copied, image.size());
  cutLinks(written, spans, gone, made.losses);
  return std::move(made);
}

} // namespace

std::vector<Change> changesBefore(std::vector<Change> changes, const std::vector<Copied> &copied,
                                  std::uint64_t size_before) {
  std::vector<Change> told;
  for (Change &change : changes) {
    // Parts are copied in the order of the new file.
    auto part = std::upper_bound(copied.begin(), copied.end(), change.offset,
                                 [](std::uint64_t at, const Copied &other) { return at < other.begin; });
    if (part == copied.begin() || change.offset + sizeof(Word) > (--part)->end)
      continue;
    change.offset += part->from - part->begin;
    if (change.offset + sizeof(Word) <= size_before)
      told.push_back(std::move(change));
  }
  return told;
}

std::optional<Salvaged> salvageFile(const FileBytes &cut) {
  if (cut.size() < sizeof(Word))
    return std::nullopt;
  return Salvage(cut).salvage();
}

} // namespace kova::mend
