/// One record: the one word in it that would have to be another for the record to end where it has to end.
#include "mend/reading.h"

#include <algorithm>
#include <limits>

namespace kova::mend {

namespace {

/// Takes down the words on which the length of a record depends, and its rows of records.
struct WordsAndSeries : OwnLengthWords {
  std::vector<RecordAt> series_of; ///< the first of each row of records inside

  void series(const RecordAt &first, Word) override { series_of.push_back(first); }
};

/// @return whether a count or a size can have that value.
bool isNumber(std::int64_t value) { return value >= 0 && value <= std::numeric_limits<Index>::max(); }

} // namespace

/// Goes over a record as a part of the search for a wrong word.
Walk Reader::measure(const FileBytes &tried, const RecordAt &record, std::uint64_t &end, Events *events) {
  Walk walk(tried, version_2, events, list_left.search_steps, &known());
  end = walk.over(record);
  return walk;
}

/// Proposes `value` for a word if the record then ends at `end`.
void Reader::tryWord(const RecordAt &record, std::uint64_t end, const LengthWord &length_word, Word value,
                     Proposals &proposals) {
  if (value == file[length_word.offset])
    return;
  std::uint64_t ends_at = 0;
  const Walk walk = measure(file.with(length_word.offset, value), record, ends_at);
  if (walk.broken || ends_at != end)
    return;
  proposals.push_back({1 + walk.faults, walk.doubts, true, length_word, value});
}

/// Proposes values for the words of the record itself.
void Reader::solveCounts(const RecordAt &record, std::uint64_t end, Proposals &proposals) {
  WordsAndSeries found;
  std::uint64_t ends_at = 0;
  const Walk walk = measure(file, record, ends_at, &found);
  const auto lacking = static_cast<std::int64_t>(end - ends_at);
  // Where the blocks are, too, may be wrong if their sizes do not tell where the record ends.
  const bool blocks_tell = std::any_of(found.length_words.begin(), found.length_words.end(),
                                       [](const LengthWord &length_word) { return length_word.block; });
  for (const LengthWord &length_word : found.length_words) {
    if (length_word.maker) { // changes nothing about the end
      if (lacking == 0 && walk.maker_spare < 0 && blocks_tell)
        growWord(record, end, length_word, length_word.value, walk.maker_spare, proposals);
    } else if (length_word.block) {
      tryWord(record, end, length_word, length_word.value & ~Word{3}, proposals); // no block ends within a word
      growWord(record, end, length_word, length_word.value & ~Word{3}, lacking, proposals);
    } else if (length_word.unit < 0) { // a header size
      tryWord(record, end, length_word, record.kind->fixed, proposals);
    } else if (length_word.unit == 0) {
      tryWord(record, end, length_word, 0, proposals);
    } else if (lacking != 0) {
      const Word parts = length_word.unit == 2 ? ~Word{1} : ~Word{0}; // colours stand two to a word
      growWord(record, end, length_word, length_word.value & parts, lacking, proposals);
      growWord(record, end, length_word, static_cast<Index>(length_word.value & parts), lacking, proposals);
      if (record.kind->size_at != NO_WORD &&
          length_word.offset == record.begin + record.kind->size_at) // texts take up whole words
        growWord(record, end, length_word, length_word.value & ~Word{3}, lacking, proposals);
      if (length_word.records != nullptr)
        solveRecords(record, end, length_word, found.series_of, proposals);
      else if (walk.broken || !found.series_of.empty())
        searchValue(record, end, length_word, proposals);
    }
  }
}

/// Proposes the value with which the record is longer by so many bytes.
void Reader::growWord(const RecordAt &record, std::uint64_t end, const LengthWord &length_word, std::int64_t from,
                      std::int64_t bytes, Proposals &proposals) {
  const std::int64_t value = from + bytes / length_word.unit;
  if (bytes % length_word.unit == 0 && isNumber(value))
    tryWord(record, end, length_word, static_cast<Word>(value), proposals);
}

/// Proposes numbers of records, which may be of unequal length: as many as stand in a row; or, where a table with an
/// entry for each stands before them, as many as that has.
void Reader::solveRecords(const RecordAt &record, std::uint64_t end, const LengthWord &length_word,
                          std::span<const RecordAt> series_of, Proposals &proposals) {
  for (const RecordAt &first : series_of)
    if (first.kind == length_word.records)
      tryWord(record, end, length_word, recordsInARow(first, end), proposals);
  const std::uint64_t table = record.begin + record.kind->fixed;
  if (length_word.records->tag != 0)
    if (const std::uint64_t first = find(table, end, length_word.records->tag, 0))
      tryWord(record, end, length_word, static_cast<Word>((first - table) / sizeof(Word)), proposals);
}

/// Tries one value after the other, where a wrong one hides by how much it is wrong.
void Reader::searchValue(const RecordAt &record, std::uint64_t end, const LengthWord &length_word,
                         Proposals &proposals) {
  const std::uint64_t length = end - record.begin;
  const std::uint64_t most = length / static_cast<std::uint64_t>(length_word.unit);
  // As many records as this one could have inside are gone over each time.
  if (most * (1 + length / SMALLEST_INSIDE) > list_left.search_steps / 2)
    return;
  for (Word value = 0; value <= most; ++value)
    tryWord(record, end, length_word, value, proposals);
}

/// @return how many records that raise no doubt stand in a row.
Word Reader::recordsInARow(RecordAt record, std::uint64_t end) {
  Walk walk(file, version_2, nullptr, list_left.search_steps, &known());
  while (record.begin + record.kind->fixed <= end) {
    record.begin = walk.over(record, 1);
    if (walk.doubts != 0 || walk.broken || record.begin > end)
      break;
    ++record.number;
  }
  return record.number;
}

/// Proposes values for the words of a record inside: it ends where its own size says, where the next one begins, or so
/// that all is as long as it has to be.
void Reader::solveInside(const RecordAt &record, std::uint64_t end, const RecordAt &inner, std::int64_t lacking,
                         Proposals &proposals) {
  if (inner.kind == nullptr)
    return;
  std::uint64_t inner_end = 0;
  measure(file, inner, inner_end);
  std::uint64_t ends[] = {inner_end + static_cast<std::uint64_t>(lacking), 0, 0};
  if (inner.kind->size_at != NO_WORD)
    ends[1] = inner.begin + file[inner.begin + inner.kind->size_at];
  if (inner.kind->tag != 0)
    ends[2] = findNext(inner, end);
  Proposals inside;
  for (const std::uint64_t to : ends)
    if (to > inner.begin && to <= end && to != inner_end)
      solveCounts(inner, to, inside);
  for (const Proposal &proposal : inside)
    tryWord(record, end, proposal.length_word, proposal.value, proposals);
}

Reader::Proposals Reader::solve(const RecordAt &record, std::uint64_t end) {
  Proposals proposals;
  std::uint64_t ends_at = 0;
  const Walk walk = measure(file, record, ends_at);
  if (!walk.broken && ends_at == end)
    proposals.push_back({walk.faults * cost::FAULT, walk.doubts, false, {}, 0});
  if (proposals.empty() || walk.faults != 0)
    solveCounts(record, end, proposals);
  if (ends_at != end) {
    const auto lacking = static_cast<std::int64_t>(end - ends_at);
    for (const RecordAt &inner : {walk.suspect, walk.before})
      solveInside(record, end, inner, lacking, proposals);
  }
  if (list_left.search_steps == 0) // there may be others that are as good
    proposals.clear();
  keepBest(proposals);
  return proposals;
}

/// Keeps the proposals of the least cost, each once.
void Reader::keepBest(Proposals &proposals) {
  // Whole records are not likely to be anything else.
  const bool records = std::any_of(proposals.begin(), proposals.end(), [](const Proposal &proposal) {
    return proposal.length_word.records != nullptr && proposal.value > 0 && proposal.doubts == 0;
  });
  for (Proposal &proposal : proposals)
    proposal.doubts += records && proposal.changes && proposal.length_word.records == nullptr;
  const auto less = [](const Proposal &a, const Proposal &b) {
    return a.cost != b.cost ? a.cost < b.cost : a.doubts < b.doubts;
  };
  const auto same = [](const Proposal &a, const Proposal &b) {
    return a.length_word.offset == b.length_word.offset && a.value == b.value;
  };
  if (proposals.empty())
    return;
  const Proposal best = *std::min_element(proposals.begin(), proposals.end(), less);
  Proposals equally_good;
  for (const Proposal &proposal : proposals)
    if (!less(best, proposal) && std::none_of(equally_good.begin(), equally_good.end(),
                                              [&](const Proposal &other) { return same(other, proposal); }))
      equally_good.push_back(proposal);
  proposals = std::move(equally_good);
}

} // namespace kova::mend
