#include "mend/derive.h"

#include "mend/list_view.h"

#include <algorithm>
#include <unordered_map>

namespace kova::mend {

namespace {

/// A word to which the audit pays no attention is changed only if the same word of other records of its kind shows that
/// it is meant to follow: of so many, ...
constexpr std::size_t FEWEST_WITNESSES = 3;
/// ... and if at most one of so many does not.
constexpr std::size_t WITNESSES_EACH = 4;

/// What one unchecked word of the records of a kind, or of lists, is like in this file.
struct UncheckedWord {
  const RecordLayout *kind; ///< null: it is one of lists
  const char *field;
  std::size_t follow = 0;
  std::vector<Change> others = {};
};

/// A tag that records of a kind have in this file, where the audit takes any.
struct UncheckedTag {
  const RecordLayout *kind;
  Word value;
  std::size_t number = 0;
  std::vector<Change> places = {}; ///< of those with it, unless there are many
};

/// A table of words in a record.
struct Table {
  std::uint64_t begin = 0;
  std::uint64_t entries = 0;
  const char *name = "";
};

/// Goes over the file as it was read, and sets what follows.
class Deriver : public Events {
public:
  Deriver(FileBytes &bytes, const Reading &reading) : file(bytes), version_2(hasVersion2(file.version())) {
    for (const Decision *decision = reading.decisions; decision != nullptr; decision = decision->before) {
      if (decision->sort == Decision::Sort::list)
        spans[decision->list] = decision;
      else if (decision->sort == Decision::Sort::unsolved)
        unsolved.emplace(decision->begin, decision->end);
      else
        applied.push_back(decision);
    }
  }

  Applied derive();

private:
  void set(std::uint64_t offset, std::string field, Word value, const char *why);
  void expect(const RecordLayout *kind, const char *group, std::uint64_t offset, std::string field, Word value,
              const char *why);
  void table(std::uint64_t begin, std::uint64_t entries, std::span<const Column> columns,
             std::uint64_t count_at) override;
  void series(const RecordAt &first, Word number) override;
  void expectEntry(const RecordAt &record, Word size);
  void expectHeaderSize(const RecordAt &record, std::uint64_t end);
  void expectListHeaderSize(const ListView &list);
  void countTag(const RecordAt &record);
  void setUncheckedWords();
  void setUncheckedTags();
  void leave(const RecordAt &record, std::uint64_t end, int depth) override;
  void countMaker(const Walk &walk);
  void deriveHeader();
  void deriveList();
  void deriveElements(const RecordLayout &kind, std::uint64_t &at, std::uint64_t table, const char *table_name,
                      Word number);
  void deriveElement(const RecordLayout &kind, std::uint64_t begin, std::uint64_t end, Word number,
                     std::uint64_t table_word, const char *table_name);

  FileBytes &file;
  bool version_2;
  std::array<const Decision *, LIST_NUM> spans = {};
  std::unordered_map<std::uint64_t, std::uint64_t> unsolved = {};
  std::vector<const Decision *> applied = {};
  std::vector<Change> changes = {};
  std::vector<UncheckedWord> unchecked_words = {};
  std::vector<UncheckedTag> unchecked_tags = {};
  Table last_table = {};
  Table sizes_inside = {}; ///< of the records that are gone over
  std::size_t looked_at = 0;
  std::size_t used_up_blocks = 0; ///< maker blocks that hold just what their counts call for
  std::size_t longer_blocks = 0;
  std::size_t list_now = LIST_NUM;
  std::optional<Word> element_now = {};
};

void sortByOffset(std::vector<Change> &changes) {
  std::stable_sort(changes.begin(), changes.end(),
                   [](const Change &a, const Change &b) { return a.offset < b.offset; });
}

constexpr const char *BY_POSITION = "its position";
constexpr const char *BY_PARTS = "the sum of its parts";
constexpr const char *BY_PLACE = "the list's place in the file";

void Deriver::set(std::uint64_t offset, std::string field, Word value, const char *why) {
  const Word old = file[offset];
  ++looked_at;
  if (old == value)
    return;
  file.set(offset, value);
  changes.push_back({offset, listName(list_now), element_now, std::move(field), old, value, why});
}

/// Takes down whether a word is as the others of its kind may be.
void Deriver::expect(const RecordLayout *kind, const char *group, std::uint64_t offset, std::string field, Word value,
                     const char *why) {
  auto word = std::find_if(unchecked_words.begin(), unchecked_words.end(),
                           [&](const UncheckedWord &other) { return other.kind == kind && other.field == group; });
  if (word == unchecked_words.end())
    word = unchecked_words.insert(word, {kind, group});
  if (file[offset] == value)
    ++word->follow;
  else if (word->others.size() * WITNESSES_EACH <= word->follow + 64) // else none of them is meant to follow
    word->others.push_back({offset, listName(list_now), element_now, std::move(field), file[offset], value, why});
}

void Deriver::table(std::uint64_t begin, std::uint64_t entries, std::span<const Column> columns, std::uint64_t) {
  last_table = {begin, entries, columns.front().name};
}

/// A table with an entry for each of the records behind it holds their sizes.
void Deriver::series(const RecordAt &first, Word number) {
  const bool is_of_sizes = last_table.entries == number && last_table.begin + number * sizeof(Word) == first.begin;
  sizes_inside = is_of_sizes ? last_table : Table{};
}

void Deriver::expectEntry(const RecordAt &record, Word size) {
  if (record.number < sizes_inside.entries)
    expect(record.kind, sizes_inside.name, sizes_inside.begin + record.number * sizeof(Word),
           std::string(sizes_inside.name) + '[' + std::to_string(record.number) + ']', size, "the size of the record");
}

/// The header size of a record, where nothing depends on it.
void Deriver::expectHeaderSize(const RecordAt &record, std::uint64_t end) {
  const RecordLayout &kind = *record.kind;
  if (kind.header_size_at == NO_WORD)
    return;
  const std::uint64_t at = record.begin + kind.header_size_at;
  const FileBytes other = file.with(at, kind.fixed);
  if (file[at] == kind.fixed || Walk(other, other.size(), version_2).over(record) == end)
    expect(&kind, kind.header_size_name, at, kind.header_size_name, kind.fixed, "the bytes of its fixed words");
}

/// The header size of a list: some programs count the size table in. A list without elements does not tell which.
void Deriver::expectListHeaderSize(const ListView &list) {
  const std::uint64_t at = list.begin + list_at::HEADER_SIZE;
  const Word alone = list.layout.head_bytes;
  const Word with_table = alone + static_cast<Word>(list.number() * sizeof(Word));
  if (alone == with_table && file[at] == alone)
    return;
  const char *const field = list.layout.header_size_name;
  expect(nullptr, "alone", at, field, alone, "the bytes of its head");
  expect(nullptr, "with table", at, field, with_table, "the bytes of its head and its size table");
}

/// Takes down a tag where the audit takes any.
void Deriver::countTag(const RecordAt &record) {
  constexpr std::ptrdiff_t MOST_TAGS = 8; // those that come after them count as the last one
  constexpr std::size_t MOST_PLACES = 64;
  const Word value = file[record.begin];
  const auto is_of_kind = [&](const UncheckedTag &tag) { return tag.kind == record.kind; };
  auto tag = std::find_if(unchecked_tags.begin(), unchecked_tags.end(),
                          [&](const UncheckedTag &other) { return is_of_kind(other) && other.value == value; });
  if (tag == unchecked_tags.end()) {
    if (std::count_if(unchecked_tags.begin(), unchecked_tags.end(), is_of_kind) < MOST_TAGS)
      tag = unchecked_tags.insert(tag, {record.kind, value});
    else
      tag = std::find_if(unchecked_tags.rbegin(), unchecked_tags.rend(), is_of_kind).base() - 1;
  }
  if (++tag->number <= MOST_PLACES)
    tag->places.push_back({record.begin, listName(list_now), element_now, record.kind->tag_name, value, 0,
                           "the tag of the others of its kind"});
}

/// The words of the records inside.
void Deriver::leave(const RecordAt &record, std::uint64_t end, int depth) {
  const RecordLayout &kind = *record.kind;
  if (depth == 0)
    return;
  if (kind.tag != 0)
    set(record.begin, kind.tag_name, kind.tag, "the place of the record");
  const auto size = static_cast<Word>(end - record.begin);
  const bool has_size = kind.size_at != NO_WORD;
  if (has_size && kind.size_checked)
    set(record.begin + kind.size_at, kind.size_name, size, BY_PARTS);
  // A record with no word as expected may be none.
  if (has_size && file[record.begin + kind.size_at] != size && file[record.begin + kind.index_at] != record.number)
    return;
  if (kind.tag == 0)
    countTag(record);
  if (has_size && !kind.size_checked)
    expect(&kind, kind.size_name, record.begin + kind.size_at, kind.size_name, size, BY_PARTS);
  expectEntry(record, size);
  expectHeaderSize(record, end);
  expect(&kind, kind.index_name, record.begin + kind.index_at, kind.index_name, record.number, BY_POSITION);
}

void Deriver::countMaker(const Walk &walk) {
  used_up_blocks += walk.has_maker && walk.maker_spare == 0;
  longer_blocks += walk.maker_spare > 0;
}

void Deriver::deriveElement(const RecordLayout &kind, std::uint64_t begin, std::uint64_t end, Word number,
                            std::uint64_t table_word, const char *table_name) {
  if (!isElementTag(kind, file[begin]))
    set(begin, kind.tag_name, kind.tag, "the place of the element");
  const auto size = static_cast<Word>(end - begin);
  const std::string entry = std::string(table_name) + '[' + std::to_string(number) + ']';
  const std::uint64_t size_word = begin + kind.size_at;
  const bool other_size = file[size_word] != size && (!kind.size_in_bytes || (file[size_word] & ~Word{3}) != size);
  if (other_size)
    set(size_word, kind.size_name, size, BY_PARTS);
  if (kind.index_checked)
    set(begin + kind.index_at, kind.index_name, number, BY_POSITION);
  else
    expect(&kind, kind.index_name, begin + kind.index_at, kind.index_name, number, BY_POSITION);
  const Word own_size = file[size_word];
  if (kind.size_checked || other_size)
    set(table_word, entry, own_size, "the size of the element");
  else
    expect(&kind, table_name, table_word, entry, own_size, "the size of the element");
  expectHeaderSize({&kind, begin, number}, end);
  if (kind.data_size_at != NO_WORD) {
    const std::uint64_t blocks = blockSizes(file, begin + kind.blocks_at).sum();
    expect(&kind, kind.data_size_name, begin + kind.data_size_at, kind.data_size_name,
           static_cast<Word>(end - begin - kind.fixed - blocks), BY_PARTS);
  }
}

void Deriver::deriveElements(const RecordLayout &kind, std::uint64_t &at, std::uint64_t table, const char *table_name,
                             Word number) {
  for (Word i = 0; i < number; ++i) {
    element_now = i;
    const auto skipped = unsolved.find(at);
    if (skipped != unsolved.end()) {
      at = skipped->second;
      continue;
    }
    Walk walk(file, file.size(), version_2, this);
    const std::uint64_t end = walk.over({&kind, at, i});
    countMaker(walk);
    deriveElement(kind, at, end, i, table + std::uint64_t{i} * sizeof(Word), table_name);
    at = end;
  }
  element_now.reset();
}

void Deriver::deriveList() {
  const Decision &span = *spans[list_now];
  const ListLayout &layout = LAYOUT[list_now];
  if (!isListTag(list_now, file[span.begin]))
    set(span.begin, layout.tag_name, LISTS[list_now].tag, BY_PLACE);
  set(span.begin + list_at::SIZE, layout.size_name, static_cast<Word>(span.end - span.begin),
      layout.first == nullptr ? BY_PARTS : "where the list ends");
  if (layout.first == nullptr) {
    Walk walk(file, file.size(), version_2);
    walk.over({&SCENE, span.begin});
    countMaker(walk);
    return;
  }
  if (unsolved.contains(span.begin))
    return;
  const ListView view(file, list_now, span.begin);
  expectListHeaderSize(view);
  std::uint64_t at = view.elements();
  deriveElements(*layout.first, at, view.entry(0), layout.table_name, static_cast<Word>(view.first));
  if (layout.second != nullptr)
    deriveElements(*layout.second, at, view.entry(view.first), layout.second_table_name,
                   static_cast<Word>(view.second));
}

void Deriver::deriveHeader() {
  const auto set_word = [&](std::uint64_t at, std::uint64_t value, const char *why) {
    set(at, headerWordName(at), static_cast<Word>(value), why);
  };
  set_word(header_at::SIZE, file.size(), "the length of the file");
  set_word(header_at::TAG, 0, "the place in the file");
  set_word(header_at::HEADER_SIZE, headerEnd(file), BY_PARTS);
  const std::size_t lists = hasVersion2Lists(file) ? LIST_NUM : VERSION_1_LIST_NUM;
  for (std::size_t list = 0; list < lists; ++list) {
    const Decision *const span = spans[list];
    set(LAYOUT[list].header_word_at, LAYOUT[list].header_word,
        span != nullptr ? static_cast<Word>(span->end - span->begin) : 0, "where the list ends");
  }
}

/// @return whether so many records of a kind that follow show that the others are wrong.
bool showsOthers(std::size_t follow, std::size_t others) {
  return follow >= FEWEST_WITNESSES && others * WITNESSES_EACH <= follow;
}

void Deriver::setUncheckedWords() {
  for (const UncheckedWord &word : unchecked_words)
    if (showsOthers(word.follow, word.others.size()))
      for (const Change &change : word.others) {
        file.set(change.offset, change.new_value);
        changes.push_back(change);
      }
}

void Deriver::setUncheckedTags() {
  for (const UncheckedTag &most : unchecked_tags) {
    std::vector<Change> others;
    std::size_t number = 0;
    for (const UncheckedTag &tag : unchecked_tags)
      if (tag.kind == most.kind && tag.value != most.value) {
        others.insert(others.end(), tag.places.begin(), tag.places.end());
        number += tag.number;
      }
    if (!showsOthers(most.number, number) || number != others.size())
      continue;
    for (Change &change : others) {
      change.new_value = most.value;
      file.set(change.offset, most.value);
      changes.push_back(std::move(change));
    }
  }
}

Applied Deriver::derive() {
  for (const Decision *const decision : applied) {
    list_now = decision->list;
    element_now = decision->element;
    set(decision->begin, decision->field, decision->value, decision->why);
  }
  list_now = LIST_NUM;
  element_now.reset();
  deriveHeader();
  for (list_now = 0; list_now < LIST_NUM; ++list_now)
    if (spans[list_now] != nullptr)
      deriveList();
  const bool checked_words = !changes.empty();
  setUncheckedWords();
  setUncheckedTags();
  sortByOffset(changes);
  const bool changes_maker =
      std::any_of(applied.begin(), applied.end(), [](const Decision *decision) { return decision->maker; });
  return {std::move(changes), looked_at, checked_words, changes_maker && (longer_blocks != 0 || used_up_blocks < 2)};
}

} // namespace

Applied applyReading(FileBytes &file, const Reading &reading) { return Deriver(file, reading).derive(); }

std::vector<Change> changesOf(const FileBytes &file, const Decision *decisions) {
  std::vector<Change> changes;
  for (; decisions != nullptr; decisions = decisions->before)
    if (decisions->sort == Decision::Sort::word)
      changes.push_back({decisions->begin, listName(decisions->list), decisions->element, decisions->field,
                         file[decisions->begin], decisions->value, decisions->why});
  sortByOffset(changes);
  return changes;
}

} // namespace kova::mend
