#include "repair/salvage.h"

#include "repair/derive.h"

#include <algorithm>

namespace kova::repair {

namespace {

using Bytes = std::vector<unsigned char>;

constexpr Word NO_LINK = 0xffffffff;

/// How many of something there were, and how many are left.
struct Left {
  std::uint64_t before = 0;
  std::uint64_t now = 0;

  bool gone(Word index) const { return index >= now && index < before && index != NO_LINK; }
};

/// Stands for a number that was cut off.
constexpr std::uint64_t UNKNOWN = ~std::uint64_t{0};

std::string leftOf(const Left &left, const char *what) {
  if (left.before == UNKNOWN)
    return std::to_string(left.now) + ' ' + what + " are left";
  return std::to_string(left.now) + " of " + std::to_string(left.before) + ' ' + what + " are left";
}

void append(Bytes &bytes, const FileBytes &image, std::uint64_t begin, std::uint64_t end) {
  const std::span<const unsigned char> part = image.between(begin, end);
  bytes.insert(bytes.end(), part.begin(), part.end());
}

void appendWords(Bytes &bytes, std::initializer_list<Word> words) {
  for (const Word word : words) {
    bytes.resize(bytes.size() + sizeof word);
    FileBytes(bytes).set(bytes.size() - sizeof word, word);
  }
}

// --- A record that is cut -------------------------------------------------------------------------------------------

/// A table or a row of records of a record.
struct Piece {
  std::uint64_t begin;
  std::uint64_t number;
  std::uint64_t bytes; ///< of one entry; 0: records
  std::uint64_t count_at;
  std::vector<std::uint64_t> ends = {}; ///< of the records
};

/// Takes down the pieces of a record.
struct Pieces : Events {
  std::vector<Piece> pieces;
  std::vector<Site> sites;
  int depth_now = 0;

  bool wantsBroken() const override { return true; }
  void enter(const Spot &, int) override { ++depth_now; }
  void leave(const Spot &, std::uint64_t end, int) override {
    if (--depth_now == 1)
      pieces.back().ends.push_back(end);
  }
  void site(const Site &site) override {
    if (depth_now == 1)
      sites.push_back(site);
  }
  void table(std::uint64_t begin, std::uint64_t entries, std::span<const Column> columns,
             std::uint64_t count_at) override {
    std::uint64_t bytes = 0;
    for (const Column &column : columns)
      bytes += column.bytes;
    if (depth_now == 1)
      pieces.push_back({begin, entries, bytes, count_at});
  }
  void series(const Spot &first, Word number) override {
    const auto counts = [&](const Site &site) { return site.records == first.kind; };
    const auto site = std::find_if(sites.begin(), sites.end(), counts);
    if (depth_now == 1)
      pieces.push_back({first.begin, number, 0, site != sites.end() ? site->offset : 0});
  }
};

/// A record that ends where the file was cut, with the counts of what is left of it.
class CutRecord {
public:
  CutRecord(const FileBytes &file, const Kind &kind_of_record, std::uint64_t begins_at, Word number, bool is_version_2)
      : image(file), kind(kind_of_record), begin(begins_at), version_2(is_version_2) {
    if (begin + kind.fixed > image.size() || (kind.tag != 0 && !isElementTag(kind, image[begin])))
      return;
    Walk walk(image, image.size(), false, &found);
    const std::uint64_t end = walk.over({&kind, begin, number});
    if (!found.pieces.empty() && found.pieces.front().begin < begin + kind.fixed)
      return; // a header size that puts them upon the fixed words
    kept = keepPieces(end) && keepBlocks() && isWhole();
  }

  bool kept = false;
  Bytes bytes;
  std::string told;
  Left entries = {}; ///< of the table that is cut

private:
  bool keepPieces(std::uint64_t end);
  bool keepPiece(Piece &piece);
  bool keepBlocks();
  bool isWhole();

  const FileBytes &image;
  const Kind &kind;
  std::uint64_t begin;
  bool version_2;
  Pieces found;
  bool cut_before_blocks = false;
  Word maker = 0; ///< sizes of the blocks
  Word user = 0;
};

/// Keeps the pieces as far as they are whole. @return false where what is left is no record.
bool CutRecord::keepPieces(std::uint64_t end) {
  const bool has_blocks = kind.blocks_at != NO_WORD;
  maker = has_blocks ? image[begin + kind.blocks_at] & ~Word{3} : 0;
  user = has_blocks ? image[begin + kind.blocks_at + 4] & ~Word{3} : 0;
  append(bytes, image, begin, begin + kind.fixed);
  for (Piece &piece : found.pieces)
    if (!keepPiece(piece))
      return false;
  const std::uint64_t content_end = end - maker - user;
  if (!cut_before_blocks && content_end >= begin + kind.fixed &&
      content_end <= image.size()) { // also what is no piece, as the size of an image
    bytes.clear();
    append(bytes, image, begin, content_end);
    return true;
  }
  return cut_before_blocks;
}

bool CutRecord::keepPiece(Piece &piece) {
  std::uint64_t keep = 0;
  std::uint64_t keep_end = piece.begin;
  if (!cut_before_blocks) {
    if (piece.begin > image.size()) // something before it that is no piece is cut
      return false;
    keep = std::min(piece.number, piece.bytes != 0 ? (image.size() - piece.begin) / piece.bytes : piece.number);
    keep_end += keep * piece.bytes;
    if (piece.bytes == 0) {
      const auto first_cut = std::upper_bound(piece.ends.begin(), piece.ends.end(), image.size());
      keep = static_cast<std::uint64_t>(first_cut - piece.ends.begin());
      keep_end = keep != 0 ? piece.ends[keep - 1] : piece.begin;
    }
  }
  if (keep == piece.number && !cut_before_blocks)
    return true;
  if (!cut_before_blocks) {
    bytes.clear();
    append(bytes, image, begin, std::min(keep_end, image.size()));
  }
  cut_before_blocks = true;
  if (piece.number == 0)
    return true;
  // A count that is not that of this piece alone cannot be cut.
  const auto others = std::count_if(found.pieces.begin(), found.pieces.end(),
                                    [&](const Piece &other) { return other.count_at == piece.count_at; });
  if (piece.count_at < begin || others != 1)
    return false;
  FileBytes(bytes).set(piece.count_at - begin, static_cast<Word>(keep));
  if (piece.bytes != 0 && entries.before == 0)
    entries = {piece.number, keep};
  if (!told.empty())
    told += ", ";
  told += leftOf({piece.number, keep}, piece.bytes != 0 ? "entries" : "records");
  return true;
}

/// Keeps the words of the blocks that are there. The maker block of a 2.0 record has to be as long as what it says.
bool CutRecord::keepBlocks() {
  if (kind.blocks_at == NO_WORD)
    return true;
  const std::uint64_t blocks = begin + bytes.size();
  const std::uint64_t there = cut_before_blocks ? 0 : image.size() - blocks;
  const auto kept_maker = static_cast<Word>(std::min<std::uint64_t>(maker, there) & ~std::uint64_t{3});
  const auto kept_user =
      static_cast<Word>(std::min<std::uint64_t>(user, there > maker ? there - maker : 0) & ~std::uint64_t{3});
  FileBytes(bytes).set(kind.blocks_at, kept_maker);
  FileBytes(bytes).set(Word{kind.blocks_at} + 4, 0);
  append(bytes, image, blocks, blocks + kept_maker);
  FileBytes made(bytes);
  made.set(kind.size_at, static_cast<Word>(bytes.size())); // the size of an image follows from it
  Walk walk(made, bytes.size(), version_2);
  walk.over({&kind, 0});
  const std::uint64_t lacking = walk.maker_spare < 0 ? static_cast<std::uint64_t>(-walk.maker_spare) : 0;
  if (lacking > image.size())
    return false;
  bytes.resize(bytes.size() + static_cast<std::size_t>(lacking));
  FileBytes(bytes).set(kind.blocks_at, kept_maker + static_cast<Word>(lacking));
  FileBytes(bytes).set(Word{kind.blocks_at} + 4, kept_user);
  if (kept_user != 0)
    append(bytes, image, blocks + maker, blocks + maker + kept_user);
  FileBytes(bytes).set(kind.size_at, static_cast<Word>(bytes.size()));
  const auto tell = [&](const std::string &what) { told += (told.empty() ? "" : ", ") + what; };
  if (lacking != 0)
    tell("the maker block is filled up with " + std::to_string(lacking) + " bytes of zeros");
  if (kept_maker < maker && lacking == 0)
    tell(leftOf({maker, kept_maker}, "bytes of the maker block"));
  if (kept_user < user)
    tell(leftOf({user, kept_user}, "bytes of the user block"));
  return true;
}

/// @return whether what is left is a record: counts that stand between the tables of some can be cut off.
bool CutRecord::isWhole() {
  const FileBytes made(bytes);
  Walk walk(made, bytes.size(), version_2);
  return walk.over({&kind, 0}) == bytes.size() && !walk.broken;
}

// --- The file -------------------------------------------------------------------------------------------------------

/// The element that is there in part, and how much its table held.
struct CutElement {
  To to = To::nothing;
  Word number = 0;
  Left entries = {};
};

class Salvage {
public:
  explicit Salvage(const FileBytes &file) : image(file), version_2(file.version() == VERSION_2) {}

  std::optional<Salvaged> salvage();

  std::array<Claim, LIST_NUM> spans = {}; ///< of the lists that are left, in the salvaged file
  std::array<Left, TO_NUM> left = {};     ///< by what links lead to
  CutElement cut_element = {};

private:
  /// What stands between `begin` and `end` now, and stood at `from` before.
  struct Copied {
    std::uint64_t begin;
    std::uint64_t end;
    std::uint64_t from;
  };

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
  void tellChanges(std::vector<Change> changes);
  Word headerWord(std::uint64_t at) const { return at + 4 <= image.size() ? image[at] : 0; }

  const FileBytes &image;
  bool version_2;
  std::uint64_t lists_begin = FILE_HEADER_BYTES; ///< in the cut file
  std::uint64_t whole_end = 0;                   ///< of the elements of the list that are whole
  Salvaged made = {};
  std::vector<Copied> copied = {};
};

std::size_t slot(To to) { return static_cast<std::size_t>(to); }

/// @return what a link leads to that leads to elements of that kind.
To toKind(std::size_t list, bool second) {
  if (!second)
    return static_cast<To>(list);
  return LISTS[list].tag == COLOR_LIST_TAG ? To::vtx_color : To::vtx_nv;
}

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
  appendWords(bytes, {LISTS[list].tag, layout.headBytes(), layout.headBytes(), 0, 0, 0});
  if (layout.second != nullptr)
    appendWords(bytes, {0});
}

void Salvage::cutScene(std::uint64_t begin) {
  const CutRecord scene(image, SCENE, begin, 0, version_2);
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
  Left &counted = left[slot(to)] = {number, 0};
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
    const CutRecord record(image, kind, at, i, version_2);
    if (record.kept) {
      elements.insert(elements.end(), record.bytes.begin(), record.bytes.end());
      sizes.push_back(static_cast<Word>(record.bytes.size()));
      ++counted.now;
      lose(list, i, record.told);
      cut_element = {to, i, record.entries};
    }
    at = image.size();
  }
  if (counted.now < counted.before)
    lose(list, {}, leftOf(counted, "elements"));
  return counted.now;
}

void Salvage::cutList(std::size_t list, std::uint64_t begin) {
  const ListLayout &layout = LAYOUT[list];
  const std::uint64_t table = begin + layout.headBytes();
  const Word first = table <= image.size() ? image[begin + 12] : 0;
  const Word second = table <= image.size() && layout.second != nullptr ? image[begin + 16] : 0;
  std::uint64_t at = table + (std::uint64_t{first} + second) * sizeof(Word);
  if (table > image.size() || at > image.size()) {
    left[slot(toKind(list, false))] = {table > image.size() ? UNKNOWN : first, 0};
    if (layout.second != nullptr)
      left[slot(toKind(list, true))] = {table > image.size() ? UNKNOWN : second, 0};
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
  const bool whole = first_left == first && second_left == second && cut_element.to == To::nothing;
  const std::uint64_t there = whole ? image.size() - at : 0;
  const std::uint64_t maker = image[begin + layout.blocksAt()] & ~Word{3};
  const std::uint64_t user = image[begin + layout.blocksAt() + 4] & ~Word{3};
  const auto kept_maker = static_cast<Word>(std::min(maker, there & ~std::uint64_t{3}));
  const auto kept_user = static_cast<Word>(there > maker ? std::min(user, (there - maker) & ~std::uint64_t{3}) : 0);
  if (kept_maker < maker || kept_user < user)
    lose(list, {}, leftOf({maker + user, std::uint64_t{kept_maker} + kept_user}, "bytes of the blocks"));
  if (there > maker + user)
    lose(list, {}, std::to_string(there - maker - user) + " bytes behind the blocks");

  // The format's library reads as many groups of vertex colours as there are of triangle colours.
  if (LISTS[list].tag == COLOR_LIST_TAG && second_left < first_left) {
    lose(list, {}, std::to_string(first_left - second_left) + " empty groups of vertex colours were added");
    for (; second_left < first_left; ++second_left)
      appendWords(elements,
                  {layout.second->tag, static_cast<Word>(second_left), layout.second->fixed, layout.second->fixed, 0});
  }

  Bytes &bytes = made.bytes;
  const std::uint64_t head = bytes.size();
  append(bytes, image, begin, table);
  FileBytes written(bytes);
  written.set(head + 12, static_cast<Word>(first_left));
  if (layout.second != nullptr)
    written.set(head + 16, static_cast<Word>(second_left));
  written.set(head + layout.blocksAt(), kept_maker);
  written.set(head + layout.blocksAt() + 4, kept_user);
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
    if (layout.first != nullptr && size >= layout.headBytes())
      left[slot(toKind(list, false))] = {image[begin + 12], image[begin + 12]};
  } else if (begin < image.size()) {
    layout.first == nullptr ? cutScene(begin) : cutList(list, begin);
  } else {
    if (layout.first != nullptr) {
      left[slot(toKind(list, false))] = {UNKNOWN, 0};
      if (layout.second != nullptr)
        left[slot(toKind(list, true))] = {UNKNOWN, 0};
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
  if (at + layout.headBytes() > span.end)
    return false;
  const Word first = image[at + 12];
  const Word second = layout.second != nullptr ? image[at + 16] : 0;
  const std::uint64_t blocks =
      std::uint64_t{image[at + layout.blocksAt()] & ~Word{3}} + (image[at + layout.blocksAt() + 4] & ~Word{3});
  at += layout.headBytes() + (std::uint64_t{first} + second) * sizeof(Word);
  for (Word i = 0; i < first; ++i)
    if (!goOver(*layout.first, at, i))
      return false;
  for (Word i = 0; i < second; ++i)
    if (!goOver(*layout.second, at, i))
      return false;
  return at + blocks == span.end;
}

/// Sets the links into what is gone to none.
class LinkCutter : public Events {
public:
  LinkCutter(FileBytes &file, const Salvage &salvage, std::vector<Loss> &told)
      : image(file), left(salvage.left), cut(salvage.cut_element), losses(told) {}

  void startElement(const char *list, std::optional<Word> element) {
    finish();
    where = {list, element, {}};
    own = {};
  }
  /// Tells what was cut of the links of one element.
  void finish() {
    if (count != 0) {
      where.what = std::to_string(count) + (count == 1 ? " link" : " links") + " into what is gone: now none";
      losses.push_back(where);
    }
    count = 0;
  }

  void enter(const Spot &spot, int) override {
    for (const Link &link : spot.kind->links)
      follow(spot.begin + link.at, link.to);
  }
  void table(std::uint64_t begin, std::uint64_t entries, std::span<const Column> columns, std::uint64_t) override {
    for (const Column &column : columns) {
      if (column.to != To::nothing)
        for (std::uint64_t i = 0; i < entries && begin + 4 * i + 4 <= image.size(); ++i)
          follow(begin + 4 * i, column.to);
      begin += entries * column.bytes;
    }
  }

private:
  static constexpr std::size_t OWN_NUM = 6;

  void follow(std::uint64_t at, To to) {
    const Word index = image[at];
    if (slot(to) > slot(To::nothing)) {
      if (own[slot(to) - slot(To::own_vtx)].gone(index))
        none(at);
      return;
    }
    noteGroup(to, index);
    if (left[slot(to)].gone(index))
      none(at);
  }
  void none(std::uint64_t at) {
    image.set(at, NO_LINK);
    ++count;
  }
  /// Where triangles refer to the group that is there in part, their corners are links into it.
  void noteGroup(To to, Word index) {
    static constexpr To GROUPS[OWN_NUM] = {To::vtx, To::tri_color, To::vtx_color, To::tri_nv, To::vtx_nv, To::st};
    if (to != cut.to || index != cut.number)
      return;
    for (std::size_t i = 0; i < OWN_NUM; ++i)
      if (GROUPS[i] == to)
        own[i] = cut.entries;
  }

  FileBytes &image;
  const std::array<Left, TO_NUM> &left;
  const CutElement &cut;
  std::vector<Loss> &losses;
  std::array<Left, OWN_NUM> own = {};
  Loss where = {};
  std::size_t count = 0;
};

/// Walks over every record of the salvaged file.
void cutLinks(FileBytes &image, const Salvage &salvage, bool version_2, std::vector<Loss> &losses) {
  LinkCutter cutter(image, salvage, losses);
  for (std::size_t list = 0; list < LIST_NUM; ++list) {
    const Claim &span = salvage.spans[list];
    if (span.end == 0)
      continue;
    const ListLayout &layout = LAYOUT[list];
    if (layout.first == nullptr) {
      cutter.startElement(LISTS[list].name, {});
      Walk(image, image.size(), version_2, &cutter).over({&SCENE, span.begin});
      continue;
    }
    const Word first = image[span.begin + 12];
    const Word second = layout.second != nullptr ? image[span.begin + 16] : 0;
    std::uint64_t at = span.begin + layout.headBytes() + (std::uint64_t{first} + second) * sizeof(Word);
    for (std::uint64_t i = 0; i < std::uint64_t{first} + second && at < span.end; ++i) {
      const Kind &kind = i < first ? *layout.first : *layout.second;
      const auto number = static_cast<Word>(i < first ? i : i - first);
      cutter.startElement(LISTS[list].name, number);
      at = Walk(image, image.size(), version_2, &cutter).over({&kind, at, number});
    }
  }
  cutter.finish();
}

/// Keeps the changes of words that were there before. The others follow from the cut.
void Salvage::tellChanges(std::vector<Change> changes) {
  for (Change &change : changes)
    for (const Copied &part : copied)
      if (change.offset >= part.begin && change.offset + sizeof(Word) <= part.end) {
        change.offset += part.from - part.begin;
        if (change.offset + sizeof(Word) <= image.size())
          made.changes.push_back(std::move(change));
        break;
      }
}

std::optional<Salvaged> Salvage::salvage() {
  salvageHeader();
  const bool has_version_2_lists = version_2 && headerWord(header_at::BLOCKS) >= VERSION_2_SIZES_BYTES;
  std::uint64_t begin = lists_begin;
  for (std::size_t list = 0; list < (has_version_2_lists ? LIST_NUM : VERSION_1_LIST_NUM); ++list) {
    const std::uint64_t word = sizeWordOffset(list);
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
  tellChanges(applyReading(written, {.claims = before}).changes);
  const Left &images = left[slot(To::teximg)];
  const Left &index_images = left[slot(To::ci_img)];
  left[slot(To::image)] = {std::max(images.before, index_images.before), std::max(images.now, index_images.now)};
  cutLinks(written, *this, version_2, made.losses);
  return std::move(made);
}

} // namespace

std::optional<Salvaged> salvageFile(const FileBytes &cut) {
  if (cut.size() < sizeof(Word))
    return std::nullopt;
  return Salvage(cut).salvage();
}

} // namespace kova::repair
