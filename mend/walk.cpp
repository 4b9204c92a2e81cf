#include "mend/walk.h"

#include "mend/conventions.h"

namespace kova::mend {

/// The next word, which is passed. Maker blocks have none of these.
Word Walk::next() {
  const std::uint64_t at = position;
  position += sizeof(Word);
  broken |= position > limit;
  return position > limit ? 0 : file[at];
}

void Walk::lengthWord(std::uint64_t offset, const char *field, Word value, std::int32_t unit,
                      const RecordLayout *records, bool block) {
  if (events != nullptr && !broken && offset + sizeof(Word) <= limit && isInMakerBlock(offset))
    events->lengthWord({offset, field, value, unit, records, block, maker_end != 0});
}

void Walk::table(std::uint64_t entries, std::initializer_list<Column> columns, std::uint64_t count_at) {
  if (events != nullptr)
    events->table(position, entries, {columns.begin(), columns.size()}, count_at);
  for (const Column &column : columns) {
    position += entries * column.bytes;
    if (!column.counts)
      maker_not_counted += entries * column.bytes;
  }
}

void Walk::records(Word number, const RecordLayout &kind, std::uint64_t around) {
  if (events != nullptr)
    events->series({&kind, position, 0, around}, number);
  // Else each of many records with such a number would be followed to the end of the file.
  if (position + std::uint64_t{number} * kind.fixed > limit) {
    position += std::uint64_t{number} * kind.fixed;
    broken = true;
    return;
  }
  for (Word i = 0; i < number; ++i) {
    if (position + kind.fixed > limit) { // the others are not there
      position += std::uint64_t{number - i} * kind.fixed;
      broken = true;
      return;
    }
    const RecordAt record = {&kind, position, i, around};
    const Word doubts_before = doubts;
    over(record, 1);
    if (suspect.kind != nullptr)
      continue;
    (doubts == doubts_before ? before : suspect) = record;
  }
}

/// @return whether a word of a record inside is not what it should be, and those of its kind are in this file.
bool Walk::isOdd(const RecordAt &record) const {
  const RecordLayout &kind = *record.kind;
  const auto tells = [&](Own own) { return conventions == nullptr || conventions->follows(kind, own); };
  if (kind.tag != 0 && file[record.begin] != kind.tag)
    return true;
  if (file[record.begin + kind.index_at] != record.number && tells(Own::index))
    return true;
  return kind.size_at != NO_WORD && file[record.begin + kind.size_at] != position - record.begin && tells(Own::size);
}

std::uint64_t Walk::over(const RecordAt &record, int depth) {
  const RecordLayout &kind = *record.kind;
  position = record.begin + kind.fixed;
  if (position > limit || (steps != nullptr && *steps == 0)) {
    broken = true;
    return position;
  }
  if (steps != nullptr)
    --*steps;
  if (events != nullptr)
    events->enter(record, depth);
  if (kind.content != nullptr)
    kind.content(*this, record);
  broken |= went_back;
  if (depth > 0 && isOdd(record))
    ++doubts;
  if (events != nullptr)
    events->leave(record, position, depth);
  return position;
}

bool hasMaker(const RecordLayout &kind) {
  std::vector<unsigned char> zeros(kind.fixed);
  const FileBytes record(zeros);
  Walk walk(record, zeros.size(), true);
  walk.over({&kind});
  return walk.has_maker;
}

} // namespace kova::mend
