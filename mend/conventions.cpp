#include "mend/conventions.h"

#include "mend/reading.h"

#include <algorithm>

namespace kova::mend {

namespace {

/// So few are no custom.
constexpr std::size_t FEWEST_OTHERS = 3;

/// Counts the words of the records inside an element.
struct Inside : Events {
  const FileBytes &file;
  Conventions counted = {};

  explicit Inside(const FileBytes &walked) : file(walked) {}

  void leave(const RecordAt &record, std::uint64_t end, int depth) override {
    const RecordLayout &kind = *record.kind;
    if (depth == 0)
      return;
    counted.count(kind, Own::index, file[record.begin + kind.index_at] == record.number);
    if (kind.size_at != NO_WORD)
      counted.count(kind, Own::size, file[record.begin + kind.size_at] == end - record.begin);
  }
};

} // namespace

/// The elements at which the audit does not look are found by their tags, since their sizes may be wrong.
void Conventions::countByTags(const FileBytes &file, const RecordLayout &kind, std::uint64_t table, std::uint64_t end) {
  Word number = 0;
  for (std::uint64_t at = table; at < end; at += sizeof(Word)) {
    if (!isElementTag(kind, file[at]))
      continue;
    count(kind, Own::index, file[at + kind.index_at] == number);
    count(kind, Own::table_entry, file[table + std::uint64_t{number} * sizeof(Word)] == file[at + kind.size_at]);
    ++number;
  }
}

Conventions::Conventions(const FileBytes &file) {
  const bool version_2 = hasVersion2(file.version());
  const std::size_t lists = hasVersion2Lists(file) ? LIST_NUM : VERSION_1_LIST_NUM;
  std::uint64_t steps = 2 * file.size();
  std::uint64_t begin = file[header_at::HEADER_SIZE];
  for (std::size_t list = 0; list < lists; begin += file[LAYOUT[list++].header_word_at]) {
    const ListLayout &layout = LAYOUT[list];
    if (layout.first == nullptr || layout.second != nullptr || !isListTag(list, file[begin]))
      continue; // nothing in the others is unchecked
    const RecordLayout &kind = *layout.first;
    const std::uint64_t table = begin + layout.head_bytes;
    if (!kind.index_checked) {
      countByTags(file, kind, table, std::min(file.size(), begin + file[layout.header_word_at]));
      continue;
    }
    const Word number = file[begin + list_at::COUNT];
    std::uint64_t at = table + std::uint64_t{number} * sizeof(Word);
    for (Word i = 0; i < number && isElementTag(kind, file[at]); ++i) {
      Inside inside(file);
      Walk walk(file, version_2, &inside, steps);
      const std::uint64_t end = walk.over({&kind, at, i});
      if (walk.broken || file[at + kind.size_at] != end - at) // what is inside may be anything
        break;
      add(inside.counted);
      at = end;
    }
  }
}

Conventions::Row &Conventions::rowOf(const RecordLayout &kind, Own own) {
  const auto is_it = [&](const Row &row) { return row.kind == &kind && row.own == own; };
  const auto row = std::find_if(rows.begin(), rows.end(), is_it);
  return row != rows.end() ? *row : rows.emplace_back(Row{&kind, own});
}

void Conventions::count(const RecordLayout &kind, Own own, bool as_expected) {
  Row &row = rowOf(kind, own);
  ++(as_expected ? row.as_expected : row.others);
}

void Conventions::add(const Conventions &others) {
  for (const Row &other : others.rows) {
    Row &row = rowOf(*other.kind, other.own);
    row.as_expected += other.as_expected;
    row.others += other.others;
  }
}

bool Conventions::follows(const RecordLayout &kind, Own own) const {
  const auto is_it = [&](const Row &row) { return row.kind == &kind && row.own == own; };
  const auto row = std::find_if(rows.begin(), rows.end(), is_it);
  return row == rows.end() || row->others < FEWEST_OTHERS || row->as_expected >= row->others;
}

} // namespace kova::mend
