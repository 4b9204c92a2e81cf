/// Elements: every end that something gives for one is followed.
#include "mend/reading.h"

#include <algorithm>

namespace kova::mend {

/// Follows one end of an element, of which the size table gives the size. @param own_size whether the element's own
/// size says so, too. @param believed whether the end holds even if nothing explains it.
void Reader::readElementTo(std::size_t list, const RecordAt &record, const Reading &before, std::uint64_t end,
                           Word table_size, bool own_size, bool believed, Readings &readings) {
  Proposals proposals = solve(record, end);
  const std::uint64_t size_word = record.begin + record.kind->size_at;
  std::erase_if(proposals, [&](const Proposal &proposal) { // a new size has to say so, too
    return proposal.changes && proposal.length_word.offset == size_word &&
           record.begin + wholeWords(*record.kind, proposal.value) != end;
  });
  Reading reading = before;
  reading.at = end;
  for (const Proposal &proposal : proposals) {
    reading.cost = before.cost + proposal.cost;
    const bool changes_size = proposal.changes && proposal.length_word.offset == size_word;
    const bool in_table = changes_size && record.begin + wholeWords(*record.kind, table_size) == end;
    const bool ends_in_word = changes_size && !in_table && proposal.value % sizeof(Word) != 0;
    reading.doubts = before.doubts + proposal.doubts + Word{ends_in_word};
    reading.decisions = before.decisions;
    if (!own_size && !changes_size)
      ++reading.cost;
    if (proposal.changes)
      reading.decisions =
          decide({.begin = proposal.length_word.offset,
                  .list = list,
                  .element = record.number,
                  .field = proposal.length_word.field,
                  .value = in_table ? table_size : proposal.value,
                  .maker = proposal.length_word.maker,
                  .why = proposal.length_word.maker ? "the size of the maker block" : "where the record ends"},
                 before.decisions);
    add(readings, reading);
  }
  if (proposals.empty() && believed) {
    reading.cost = before.cost + cost::UNSOLVED;
    reading.doubts = before.doubts;
    reading.decisions = decide(
        {.sort = Decision::Sort::unsolved, .begin = record.begin, .end = end, .list = list, .element = record.number},
        before.decisions);
    add(readings, reading);
  }
}

/// Follows every end that something gives for an element: its words, its own size, the size table, the next tag.
void Reader::readElement(std::size_t list, const RecordLayout &kind, const Reading &before, Word number,
                         Word table_size, Readings &readings) {
  const std::uint64_t begin = before.at;
  if (begin + kind.fixed > file.size())
    return;
  const RecordAt record = {&kind, begin, number};
  std::uint64_t by_words = 0;
  const Walk walk = read(record, by_words);
  const std::uint64_t by_size = begin + wholeWords(kind, file[begin + kind.size_at]);
  const std::uint64_t by_table = begin + wholeWords(kind, table_size);
  const bool other_index = file[begin + kind.index_at] != number;
  Reading inner = before;
  inner.cost += Word{!isElementTag(kind, file[begin])} + Word{other_index && kind.index_checked};
  inner.doubts += other_index && !kind.index_checked && tells(kind, Own::index);
  const bool table_tells = by_size == by_table || tells(kind, Own::table_entry);
  const bool as_in_table = by_size == by_table || (!table_tells && findNext(record, list_end) == by_words);
  if (by_words == by_size && as_in_table && !walk.broken && walk.faults == 0) {
    inner.at = by_words;
    inner.doubts += walk.doubts;
    return add(readings, inner);
  }
  std::vector<std::uint64_t> ends;
  if (!walk.broken)
    addEnd(ends, by_words);
  addEnd(ends, by_size);
  addEnd(ends, by_table);
  if (ends.size() == 3 || (ends.size() == 2 && walk.broken) || !table_tells)
    addEnd(ends, findNext(record, list_end));
  for (const std::uint64_t end : ends) {
    if (end < begin + kind.fixed || end > file.size())
      continue;
    const bool other_in_table = end != by_table && table_tells;
    Reading ended = inner;
    (kind.size_checked ? ended.cost : ended.doubts) += other_in_table;
    readElementTo(list, record, ended, end, table_size, end == by_size, end == by_size && !other_in_table, readings);
  }
}

/// Reads elements, in all ways that cost no more than `most_cost`.
Reader::Readings Reader::readElements(std::size_t list, const RecordLayout &kind, Readings before, std::uint64_t table,
                                      Word number, Word most_cost) {
  for (Word i = 0; i < number && !before.empty(); ++i) {
    const Word table_size = file[table + std::uint64_t{i} * sizeof(Word)];
    Readings after;
    for (const Reading &reading : before)
      readElement(list, kind, reading, i, table_size, after);
    std::erase_if(after, [&](const Reading &reading) { return reading.cost > most_cost; });
    prune(after);
    before = std::move(after);
  }
  return before;
}

} // namespace kova::mend
