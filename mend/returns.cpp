#include "mend/returns.h"

#include "mend/mend.h"

#include <algorithm>
#include <array>

namespace kova::mend {

namespace {

/// So many strange words more make a reading a worse one.
constexpr Word MARGIN = 2;
/// Of the words of a gap, this part may be strange in a reading that its words confirm.
constexpr std::uint64_t FEW = 8;
/// Readings that are told; of more, none is.
constexpr std::size_t MOST_READINGS = 2;
/// What the table of a gap may hold, compared with the file: one cost for so many bytes.
constexpr std::uint64_t BYTES_FOR_A_COST = 8;
/// The cost of what cannot be.
constexpr Word IMPOSSIBLE = 1U << 30;

/// Of line feeds, in their order: whether a carriage return stood before each.
using Reading = std::vector<bool>;

/// @return whether a word is neither a small number nor a floating-point number that contents have.
bool isStrange(Word word) {
  constexpr Word SMALL = 0x10000;
  constexpr Word LEAST_EXPONENT = 107; // 2 to the power of -20, and of 20
  constexpr Word EXPONENTS = 41;
  return word + SMALL >= 2 * SMALL && (word >> 23 & 0xff) - LEAST_EXPONENT >= EXPONENTS;
}

/// A part of a file in which carriage returns are missing.
class Stretch {
public:
  Stretch(BytesView bytes, std::uint64_t from, std::uint64_t to, std::uint64_t missing_before, std::size_t missing_in)
      : file({bytes}), begin(from), end(to), before(missing_before), missing(missing_in) {}

  /// @return the readings that are as good as the best; none if they are many.
  std::vector<Reading> readings() const;
  /// @return whether the words of the stretch tell a reading from any other way to lose so many bytes.
  bool confirms(const Reading &reading) const;

private:
  Word word(std::uint64_t at) const { return file.word(at); }
  /// @return the first word from a place on, if so many returns are put in before it.
  std::uint64_t firstWord(std::uint64_t from, std::uint64_t returns) const { return from + (-(from + returns) & 3); }
  Word strangeWords(std::uint64_t from, std::uint64_t to, std::uint64_t returns) const;
  Word strangeWords(const Reading &reading) const;
  Word leastOfOneBlock() const;
  bool isClear(Word strange) const { return strange * FEW <= (end - begin) / sizeof(Word); }
  std::vector<std::uint64_t> edges() const;
  std::vector<Word> leastStrange(const std::vector<std::uint64_t> &edges) const;

  Ordered file;
  std::uint64_t begin;
  std::uint64_t end;
  std::uint64_t before; ///< returns that are missing before it
  std::size_t missing;  ///< returns
};

/// @return how many of the words are strange that lie between two places.
Word Stretch::strangeWords(std::uint64_t from, std::uint64_t to, std::uint64_t returns) const {
  Word strange = 0;
  for (std::uint64_t at = firstWord(from, returns); at + sizeof(Word) <= to; at += sizeof(Word))
    strange += isStrange(word(at));
  return strange;
}

/// The same of a reading. Words with a line feed in them are left out.
Word Stretch::strangeWords(const Reading &reading) const {
  Word strange = 0;
  std::uint64_t from = begin;
  std::uint64_t returns = before;
  std::size_t feed = 0;
  for (std::uint64_t at = begin; at < end; ++at)
    if (file.file[static_cast<std::size_t>(at)] == '\n') {
      strange += strangeWords(from, at, returns);
      returns += reading[feed++];
      from = at + 1;
    }
  return strange + strangeWords(from, end, returns);
}

/// @return the same if all bytes that are missing stood in one place, at the best one.
Word Stretch::leastOfOneBlock() const {
  Word strange = strangeWords(begin, end, before + missing);
  Word least = strange;
  const std::uint64_t first = firstWord(begin, before);
  const std::uint64_t other = firstWord(first, before + missing) - first;
  for (std::uint64_t at = first; at + 2 * sizeof(Word) <= end; at += sizeof(Word)) {
    strange = strange + isStrange(word(at)) - isStrange(word(at + other));
    least = std::min(least, strange);
  }
  return least;
}

bool Stretch::confirms(const Reading &reading) const {
  const Word strange = strangeWords(reading);
  const Word at_begin = strangeWords(begin, end, before + missing);
  const Word at_end = strangeWords(begin, end, before);
  return isClear(strange) && strange <= leastOfOneBlock() && strange + MARGIN <= std::min(at_begin, at_end);
}

/// @return the line feeds, and the places in front of the stretch and behind it.
std::vector<std::uint64_t> Stretch::edges() const {
  std::vector<std::uint64_t> edges = {begin - 1};
  for (std::uint64_t at = begin; at < end; ++at)
    if (file.file[static_cast<std::size_t>(at)] == '\n')
      edges.push_back(at);
  edges.push_back(end);
  return edges;
}

/// @return a row for each edge but the last, and one more: for each number of returns put in before, how many words are
/// strange from there on at least.
std::vector<Word> Stretch::leastStrange(const std::vector<std::uint64_t> &edges) const {
  const std::size_t columns = missing + 2; // no more can be put in than are missing
  const std::size_t last = edges.size() - 2;
  std::vector<Word> least(edges.size() * columns, IMPOSSIBLE);
  least[(last + 1) * columns + missing] = 0;
  for (std::size_t i = last + 1; i-- > 0;) {
    std::array<Word, sizeof(Word)> strange; // words stand in one of four ways
    for (std::size_t way = 0; way < strange.size(); ++way)
      strange[way] = strangeWords(edges[i] + 1, edges[i + 1], before + way);
    for (std::size_t returns = 0; returns <= missing; ++returns) {
      const Word *const behind = &least[(i + 1) * columns + returns];
      const Word best = std::min(behind[0], behind[i != last]); // behind the last edge, none is put in
      least[i * columns + returns] = std::min(IMPOSSIBLE, best + strange[returns % strange.size()]);
    }
  }
  return least;
}

/// A reading up to a line feed.
struct Begun {
  Reading reading = {};
  std::size_t returns = 0;
  Word worse = 0; ///< than the best one

  Begun with(bool return_put_in, Word more_worse) && {
    reading.push_back(return_put_in);
    return {std::move(reading), returns + return_put_in, worse + more_worse};
  }
};

std::vector<Reading> Stretch::readings() const {
  const auto first = file.file.begin();
  const auto number = static_cast<std::size_t>(
      std::count(first + static_cast<std::ptrdiff_t>(begin), first + static_cast<std::ptrdiff_t>(end), '\n'));
  if (number == missing)
    return {Reading(number, true)};
  const std::size_t columns = missing + 2;
  if (number + 2 > file.size() / BYTES_FOR_A_COST / columns)
    return {};
  const std::vector<Word> least = leastStrange(edges());
  const Word margin = isClear(least[0]) ? MARGIN : IMPOSSIBLE / 2; // where all are strange, none is worse
  std::vector<Begun> begun = {{}};
  for (std::size_t i = 1; i <= number; ++i) {
    std::vector<Begun> next;
    for (Begun &one : begun) {
      const Word *const costs = &least[i * columns + one.returns];
      const Word without = costs[0] - std::min(costs[0], costs[1]);
      const Word put_in = costs[1] - std::min(costs[0], costs[1]);
      // One that is kept leads to the end. So copies are few.
      if (one.worse + without >= margin) {
        next.push_back(std::move(one).with(true, put_in));
        continue;
      }
      if (one.worse + put_in < margin)
        next.push_back(Begun(one).with(true, put_in));
      next.push_back(std::move(one).with(false, without));
    }
    if (next.size() > MOST_READINGS)
      return {};
    begun = std::move(next);
  }
  std::vector<Reading> readings;
  for (Begun &one : begun)
    readings.push_back(std::move(one.reading));
  return readings;
}

/// @return the readings of a file, each of all line feeds up to the last gap; none if there are none, or many.
std::vector<Reading> readingsOf(BytesView file) {
  Bytes copy(file.begin(), file.end());
  const FileBytes bytes(copy);
  const std::vector<Gap> gaps = gapsOf(bytes, locate(bytes));
  if (!canLackReturns(file, gaps))
    return {};
  std::vector<Reading> all = {{}};
  std::uint64_t at = 0;
  std::uint64_t before = 0;
  bool is_confirmed = false; // bytes can be missing for other reasons
  for (const Gap &gap : gaps) {
    const std::uint64_t begin = std::clamp<std::uint64_t>(gap.begin, at, file.size());
    const std::uint64_t end = std::clamp<std::uint64_t>(gap.end, begin, file.size());
    const Stretch stretch(file, begin, end, before, static_cast<std::size_t>(gap.missing));
    const std::vector<Reading> readings = stretch.readings();
    is_confirmed |= std::all_of(readings.begin(), readings.end(),
                                [&](const Reading &reading) { return stretch.confirms(reading); });
    if (readings.empty() || readings.size() * all.size() > MOST_READINGS)
      return {};
    const auto between = file.subspan(static_cast<std::size_t>(at), static_cast<std::size_t>(begin - at));
    const auto feeds = static_cast<std::size_t>(std::count(between.begin(), between.end(), '\n'));
    std::vector<Reading> longer;
    for (const Reading &first : all)
      for (const Reading &second : readings) {
        longer.push_back(first);
        longer.back().resize(first.size() + feeds);
        longer.back().insert(longer.back().end(), second.begin(), second.end());
      }
    all = std::move(longer);
    at = end;
    before += static_cast<std::uint64_t>(gap.missing);
  }
  return is_confirmed ? std::move(all) : std::vector<Reading>();
}

/// @return the first line feed before which a return is put in one reading, and none in another.
std::uint64_t firstPlace(BytesView file, const Reading &reading, const Reading &other) {
  std::size_t feed = 0;
  for (std::size_t at = 0; at < file.size() && feed < reading.size(); ++at)
    if (file[at] == '\n') {
      if (reading[feed] && !other[feed])
        return at;
      ++feed;
    }
  return file.size();
}

void findLostReturns(BytesView file, const HeaderFacts &facts, std::vector<Undoing> &ways) {
  if (!facts.isHeader() || facts.sum != facts.stated || facts.stated <= file.size())
    return;
  const std::vector<Reading> readings = readingsOf(file);
  for (std::size_t i = 0; i < readings.size(); ++i) {
    const bool alone = readings.size() == 1;
    const Reading other = alone ? Reading(readings[0].size()) : readings[1 - i];
    ways.push_back(
        {.at = firstPlace(file, readings[i], other), .count = facts.stated - file.size(), .value = alone ? 0 : i + 1});
  }
}

Bytes putReturnsBack(BytesView file, const Undoing &way) {
  const Reading reading = readingsOf(file).at(static_cast<std::size_t>(std::max<std::uint64_t>(way.value, 1) - 1));
  Bytes bytes;
  bytes.reserve(file.size() + static_cast<std::size_t>(way.count));
  std::size_t feed = 0;
  for (const unsigned char byte : file) {
    if (byte == '\n' && feed < reading.size() && reading[feed++])
      bytes.push_back('\r');
    bytes.push_back(byte);
  }
  return bytes;
}

std::string tellLostReturns(const Undoing &way) {
  const std::string text = "carriage returns taken out before line feeds: " + std::to_string(way.count) + " put back";
  return way.value == 0 ? text : text + ", one of them at " + offsetText(way.at);
}

} // namespace

const Transformation LOST_RETURNS = {"returns-lost", findLostReturns, putReturnsBack, tellLostReturns, true};

std::vector<Undoing> eitherReturns(BytesView file, const std::function<bool(Bytes &)> &accepts) {
  std::vector<Undoing> ways;
  findLostReturns(file, headerFacts({file}), ways);
  if (ways.size() != MOST_READINGS)
    return {};
  for (Undoing &way : ways) {
    way.transformation = &LOST_RETURNS;
    Bytes bytes = undo(file, way);
    if (!accepts(bytes))
      return {};
  }
  return ways;
}

bool canLackReturns(BytesView file, const std::vector<Gap> &gaps) {
  constexpr std::string_view LINE_END = "\r\n";
  if (gaps.empty() || std::search(file.begin(), file.end(), LINE_END.begin(), LINE_END.end()) != file.end())
    return false;
  return std::all_of(gaps.begin(), gaps.end(), [&](const Gap &gap) {
    const auto begin = file.begin() + static_cast<std::ptrdiff_t>(gap.begin);
    const auto end = file.begin() + static_cast<std::ptrdiff_t>(std::min<std::uint64_t>(gap.end, file.size()));
    return gap.missing > 0 && std::count(begin, end, '\n') >= gap.missing;
  });
}

} // namespace kova::mend
