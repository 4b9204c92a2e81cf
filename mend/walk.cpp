#include "mend/conventions.h"

namespace kova::mend {

bool Walk::isInMakerBlock(std::uint64_t offset) const { return maker_end == 0 || offset + sizeof(Word) <= maker_end; }

Word Walk::wordAt(std::uint64_t offset) {
  if (!isInMakerBlock(offset))
    return 0; // as the library decodes a block that is too short
  if (offset + sizeof(Word) > limit) {
    broken = true;
    return 0;
  }
  return image[offset];
}

Word Walk::next() {
  const Word word = wordAt(position);
  position += sizeof(Word);
  return word;
}

void Walk::takeSite(std::uint64_t offset, const char *field, Word value, std::int32_t unit, const Kind *records,
                    bool block) {
  if (events != nullptr && !broken && isInMakerBlock(offset))
    events->site({offset, field, value, unit, records, block, maker_end != 0});
}

Word Walk::count(Word at, const char *field, std::int32_t unit, const Kind *records) {
  const Word value = word(at);
  takeSite(base + at, field, value, unit, records, false);
  return value;
}

Word Walk::nextCount(const char *field, std::int32_t unit) {
  const Word value = next();
  takeSite(position - sizeof(Word), field, value, unit, nullptr, false);
  return value;
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

void Walk::records(Word number, const Kind &kind) {
  if (events != nullptr)
    events->series({&kind, position, 0, base}, number);
  // Else each of many records with such a number would be followed to the end of the file.
  if ((events == nullptr || !events->wantsBroken()) && position + std::uint64_t{number} * kind.fixed > limit) {
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
    const Spot spot = {&kind, position, i, base};
    const Word doubts_before = doubts;
    over(spot, 1);
    if (suspect.kind != nullptr)
      continue;
    (doubts == doubts_before ? before : suspect) = spot;
  }
}

void Walk::blocks() { blocksOf(base + kind_->blocks_at); }

void Walk::outerBlocks(Word at) { blocksOf(outer + at); }

void Walk::blocksOf(std::uint64_t sizes_at) {
  const Word maker = wordAt(sizes_at);
  const Word user = wordAt(sizes_at + 4);
  takeSite(sizes_at, "van_ext_blk_size", maker, 1, nullptr, true);
  takeSite(sizes_at + 4, "usr_ext_blk_size", user, 1, nullptr, true);
  passBlocks(maker, user);
}

void Walk::passBlocks(Word maker, Word user) {
  faults += (maker & 3) != 0;
  faults += (user & 3) != 0;
  if (version_2 && kind_->maker != nullptr)
    lookIntoMakerBlock(maker);
  position += std::uint64_t{maker} - maker % sizeof(Word);
  position += std::uint64_t{user} - user % sizeof(Word);
}

/// Goes over what a maker block begins with, and comes back to where it begins.
void Walk::lookIntoMakerBlock(Word bytes) {
  const std::uint64_t begin = position;
  const std::uint64_t record = base;
  const std::uint64_t around = outer;
  maker_end = std::max<std::uint64_t>(std::min(begin + bytes, limit), 1);
  maker_not_counted = 0;
  outer = base;
  base = begin;
  kind_->maker(*this);
  const std::uint64_t taken = position - begin;
  faults += taken - maker_not_counted > bytes;
  maker_spare = static_cast<std::int64_t>(bytes) - static_cast<std::int64_t>(taken);
  maker_end = 0;
  outer = around;
  base = record;
  position = begin;
}

/// @return whether a word of a record inside is not what it should be, and those of its kind are in this file.
bool Walk::isOdd(const Spot &spot) {
  const Kind &kind = *spot.kind;
  const auto tells = [&](Own own) { return conventions == nullptr || conventions->follows(kind, own); };
  if (kind.tag != 0 && word(0) != kind.tag)
    return true;
  if (kind.index_at != NO_WORD && word(kind.index_at) != spot.number && tells(Own::index))
    return true;
  return kind.size_at != NO_WORD && word(kind.size_at) != position - base && tells(Own::size);
}

std::uint64_t Walk::over(const Spot &spot, int depth) {
  const Kind *const kind_around = kind_;
  const std::uint64_t base_around = base;
  const std::uint64_t outer_around = outer;
  const Kind &kind = *spot.kind;
  outer = spot.around;
  base = spot.begin;
  kind_ = &kind;
  position = base + kind.fixed;
  if (position > limit || (steps != nullptr && *steps == 0)) {
    broken = true;
    return position;
  }
  if (steps != nullptr)
    --*steps;
  if (events != nullptr)
    events->enter(spot, depth);
  if (kind.content != nullptr)
    kind.content(*this);
  broken |= went_back;
  if (depth > 0 && isOdd(spot))
    doubt();
  if (events != nullptr)
    events->leave(spot, position, depth);
  kind_ = kind_around;
  base = base_around;
  outer = outer_around;
  return position;
}

} // namespace kova::mend
