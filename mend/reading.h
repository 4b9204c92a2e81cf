/// Readings of a damaged file: where its lists, elements and counts could be, each with what speaks against it.
#pragma once

#include "mend/conventions.h"

#include <algorithm>
#include <deque>
#include <string>
#include <vector>

namespace kova::mend {

/// What a reading decides beyond what the bytes say. Readings that have a beginning in common share it.
struct Decision {
  enum class Sort : std::uint8_t {
    word,    ///< the word at `begin` should be `value`
    list,    ///< the list `list` reaches from `begin` to `end`
    unsolved ///< what reaches from `begin` to `end` has no reading: an element, or a whole list
  };
  Sort sort = Sort::word;
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
  std::size_t list = 0; ///< by its place in the file; LIST_NUM: the file's header
  std::optional<Word> element = {};
  const char *field = "";
  Word value = 0;
  bool maker = false; ///< the word says how much of a maker block is used
  const char *why = "";
  const Decision *before = nullptr;
};

/// A reading of the file up to a place.
struct Reading {
  std::uint64_t at = 0;
  Word cost = 0;   ///< words that would have to be changed
  Word doubts = 0; ///< what is unusual; tells apart readings of the same cost
  const Decision *decisions = nullptr;
  const Decision *rival = nullptr;     ///< those of another reading that is as good up to a place; null: it has none
  const Decision *rivals_at = nullptr; ///< its own up to there
  bool has_rival = false;
};

/// @return the other reading of two: to where both meet as its rival, and from there on as it. @param store for the
/// decisions from there on
Reading rivalOf(const Reading &reading, std::deque<Decision> &store);

/// What counts like so many wrong words.
namespace cost {
inline constexpr Word FAULT = 2;    ///< what the audit does not accept, inside of a record
inline constexpr Word UNSOLVED = 8; ///< an element that nothing explains
inline constexpr Word UNSOLVED_LIST = 32;
inline constexpr Word ABSENT = 4;     ///< a list that the header has and the file has not
inline constexpr Word SWALLOWED = 32; ///< a block that takes in what looks like an element
/// A reading that is so much worse than the best one is followed no further.
inline constexpr Word MOST_BEHIND = UNSOLVED_LIST + 8;
} // namespace cost

/// Adds a place, once.
inline void addEnd(std::vector<std::uint64_t> &ends, std::uint64_t end) {
  if (std::find(ends.begin(), ends.end(), end) == ends.end())
    ends.push_back(end);
}

/// Reads a file in all ways that are worth it.
class Reader {
public:
  explicit Reader(const FileBytes &bytes)
      : file(bytes), version_2(hasVersion2(file.version())), file_left(budgetOf(file.size(), FILE_SHARES)) {}

  /// @return the best reading of the file, which is as long as a header at least, and whose last list ends where the
  /// file ends; none if there is no such reading.
  std::optional<Reading> readFile();

  /// What can be made of a record that is to end at a given place.
  struct Proposal {
    Word cost;
    Word doubts;
    bool changes;
    LengthWord length_word;
    Word value;
  };
  using Proposals = std::vector<Proposal>;

  /// Gives a list of so many bytes its share of what reading may take. What the one before has left goes back.
  void beginList(std::uint64_t bytes);
  /// @return the best ways in which the record can end at `end`: none, one, or several that are equally good.
  Proposals solve(const RecordAt &record, std::uint64_t end);

private:
  /// What reading may still take. Time is linear for this, whatever the file says.
  struct Budget {
    std::uint64_t scan_bytes;   ///< in which tags are looked for
    std::uint64_t read_steps;   ///< records that are gone over to read them
    std::uint64_t search_steps; ///< and to find a wrong word
  };
  /// A list has one share for its bytes, so that it does not take from the others what they need, and a file has some.
  static constexpr std::uint64_t FILE_SHARES = 4;
  static constexpr Budget budgetOf(std::uint64_t bytes, std::uint64_t shares) {
    return {shares * (16 * bytes + (16 << 20)), shares * (2 * bytes + (1 << 16)), shares * (bytes + (1 << 19))};
  }
  /// Bytes of the smallest record inside another one.
  static constexpr std::uint64_t SMALLEST_INSIDE = 20;

  using Readings = std::vector<Reading>;

  static bool isBetter(const Reading &a, const Reading &b);
  const Decision *decide(const Decision &made, const Decision *before);
  void add(Readings &readings, const Reading &reading) const;
  void prune(Readings &readings) const;

  std::uint64_t find(std::uint64_t from, std::uint64_t to, Word tag, std::optional<Word> behind);
  std::uint64_t findNext(const RecordAt &record, std::uint64_t to);
  const Conventions &known();
  bool tells(const RecordLayout &kind, Own own);

  Walk read(const RecordAt &record, std::uint64_t &end);
  Walk measure(const FileBytes &tried, const RecordAt &record, std::uint64_t &end, Events *events = nullptr);
  void tryWord(const RecordAt &record, std::uint64_t end, const LengthWord &length_word, Word value,
               Proposals &proposals);
  void solveCounts(const RecordAt &record, std::uint64_t end, Proposals &proposals);
  void growWord(const RecordAt &record, std::uint64_t end, const LengthWord &length_word, std::int64_t from,
                std::int64_t bytes, Proposals &proposals);
  void solveRecords(const RecordAt &record, std::uint64_t end, const LengthWord &length_word,
                    std::span<const RecordAt> series_of, Proposals &proposals);
  void searchValue(const RecordAt &record, std::uint64_t end, const LengthWord &length_word, Proposals &proposals);
  void solveInside(const RecordAt &record, std::uint64_t end, const RecordAt &inner, std::int64_t lacking,
                   Proposals &proposals);
  Word recordsInARow(RecordAt record, std::uint64_t end);
  static void keepBest(Proposals &proposals);

  void readElement(std::size_t list, const RecordLayout &kind, const Reading &before, Word number, Word table_size,
                   Readings &readings);
  void readElementTo(std::size_t list, const RecordAt &record, const Reading &before, std::uint64_t end,
                     Word table_size, bool own_size, bool believed, Readings &readings);
  Readings readElements(std::size_t list, const RecordLayout &kind, Readings before, std::uint64_t table, Word number,
                        Word most_cost);
  void readNumbered(std::size_t list, const Reading &before, Word first, Word second, Readings &readings);
  bool beginsAsCounted(std::size_t list, std::uint64_t begin) const;
  Word firstByTags(std::size_t list, std::uint64_t table, std::uint64_t at, Word number);
  void readOtherNumbers(std::size_t list, const Reading &before, Readings &readings);
  void closeList(std::size_t list, std::uint64_t begin, const Reading &inner, Readings &readings);
  Readings closeBlocks(std::size_t list, std::uint64_t sizes_at, std::uint64_t begin, const Reading &reading);
  void readScene(const Reading &before, Readings &readings);
  void passList(std::size_t list, const Reading &before, Readings &readings);
  void readListAt(const Reading &before, std::size_t list, Readings &readings);
  void readList(std::size_t list, const Reading &before, Readings &readings);
  void readHeader(Readings &readings);

  Word declared(std::size_t list) const;

  const FileBytes &file;
  bool version_2;
  std::uint64_t list_end = 0; ///< the latest end that something gives for the list that is read
  Budget file_left;           ///< without what the list has
  Budget list_left = {};
  std::optional<Conventions> conventions = {}; ///< of this file, once they are asked for
  std::deque<Decision> decisions;
};

/// @return whether a file with such a header has version-2 lists.
bool hasVersion2Lists(const FileBytes &file);

} // namespace kova::mend
