#include "diff/compare.h"

#include "diff/compare_pieces.h"

#include <algorithm>

namespace kova::diff {

namespace {

/// What was found in an element, or in a list beside its elements.
struct Entry {
  Place place;
  std::vector<Change> changes;
};

struct Comparison {
  const Against &against;
  const Listener &listener;
  std::vector<Entry> entries = {}; ///< of a list
  std::size_t changes = 0;         ///< in them
  std::array<bool, 2> lacks = {};  ///< as in `Found`
  bool is_wrong = false;
  bool is_odd = false;
  bool differs = false;       ///< the files
  bool is_order_told = false; ///< elements that have moved are told
};

void take(Comparison &to, const Found &found) {
  to.is_wrong |= found.is_wrong;
  for (const std::size_t side : {0U, 1U})
    to.lacks[side] |= found.lacks[side];
}

void tell(Comparison &to, Place place, std::vector<Change> changes) {
  to.changes += changes.size();
  if (!changes.empty() || to.listener.wants_all)
    to.entries.push_back({std::move(place), std::move(changes)});
}

/// Hands on what was found in a list.
void handOn(Comparison &to) {
  for (Entry &entry : to.entries) {
    to.differs |= !entry.changes.empty();
    to.listener.take(entry.place, entry.changes);
  }
  to.entries.clear();
  to.changes = 0;
  to.lacks = {};
  to.is_wrong = to.is_odd = false;
}

const char *nameOfList(std::size_t list) { return LISTS[list].name; }

Pieces elementOf(const Side &side, std::size_t space, std::size_t number, bool derives) {
  Pieces pieces;
  pieces.derives = derives;
  takeElement(pieces, side.kis, spaceOf(space).list, spaceOf(space).second, number);
  return pieces;
}

/// @return the elements that are not in the longest part that is in the same order in both files.
std::vector<bool> movedIn(const Space &space) {
  std::vector<std::size_t> ends; // of the best part of each length, by the place in B
  std::vector<std::size_t> before(space.to_b.size(), NONE);
  for (std::size_t i = 0; i < space.to_b.size(); ++i) {
    if (space.to_b[i] == ALONE)
      continue;
    const auto at = std::lower_bound(ends.begin(), ends.end(), i, [&](std::size_t end, std::size_t element) {
      return space.to_b[end] < space.to_b[element];
    });
    before[i] = at == ends.begin() ? NONE : *(at - 1);
    if (at == ends.end())
      ends.push_back(i);
    else
      *at = i;
  }
  std::vector<bool> moved(space.to_b.size(), true);
  for (std::size_t i = ends.empty() ? NONE : ends.back(); i != NONE; i = before[i])
    moved[i] = false;
  return moved;
}

void compareElement(Comparison &to, std::size_t space, std::size_t a, std::size_t b, bool derives, bool is_moved) {
  const Pieces in_a = elementOf(to.against.a, space, a, derives), in_b = elementOf(to.against.b, space, b, derives);
  Found found;
  if (is_moved)
    found.changes.push_back({.what = What::moved});
  comparePieces(found, to.against, in_a, in_b);
  take(to, found);
  to.is_odd |= in_a.is_odd || in_b.is_odd;
  if (found.changes.empty() && !to.listener.wants_all)
    return;
  Place place = {nameOfList(spaceOf(space).list), kindOf(spaceOf(space).list, spaceOf(space).second), a, b,
                 nameOf(to.against.a.kis, in_a)};
  tell(to, std::move(place), std::move(found.changes));
}

void tellElement(Comparison &to, std::size_t space, std::size_t number, bool is_b) {
  const Side &side = is_b ? to.against.b : to.against.a;
  Place place = {nameOfList(spaceOf(space).list), kindOf(spaceOf(space).list, spaceOf(space).second)};
  (is_b ? place.b : place.a) = number;
  place.name = nameOf(side.kis, elementOf(side, space, number, false));
  tell(to, std::move(place), {{.what = is_b ? What::only_b : What::only_a}});
}

/// Compares the elements of a list, of one kind, in the order of A; those that only B has stand before the first of A
/// whose other is behind them.
void compareElements(Comparison &to, std::size_t space, bool derives) {
  const Space &matched = (*to.against.matching)[space];
  const std::vector<bool> moved = to.is_order_told ? movedIn(matched) : std::vector<bool>();
  std::size_t j = 0;
  const auto pass = [&](std::size_t end) {
    for (; j < end; ++j)
      if (matched.to_a[j] == ALONE)
        tellElement(to, space, j, true);
  };
  for (std::size_t i = 0; i < matched.to_b.size(); ++i) {
    if (matched.to_b[i] == ALONE) {
      tellElement(to, space, i, false);
      continue;
    }
    pass(matched.to_b[i]);
    compareElement(to, space, i, matched.to_b[i], derives, !moved.empty() && moved[i]);
  }
  pass(matched.to_a.size());
}

std::size_t secondSpaceOf(std::size_t list) {
  const auto second = list == static_cast<std::size_t>(To::tri_color) ? To::vtx_color : To::vtx_nv;
  return kindOf(list, true) != nullptr ? static_cast<std::size_t>(second) : NONE;
}

/// Compares a list as records, as far as both files hold it.
void compareRecords(Comparison &to, std::size_t list) {
  const Against &against = to.against;
  const LoadedList &a = against.a.lists[list], &b = against.b.lists[list];
  const bool derives = a.ok && b.ok;
  const auto is_held = [](const LoadedList &loaded) { return loaded.ok || loaded.rest > loaded.begin; };
  // Sizes of elements that could not be read are told with the bytes of these.
  const auto with_table = [](const LoadedList &loaded) {
    return loaded.ok ? loaded.elements : std::array<std::size_t, 2>{NONE, NONE};
  };
  Found found;
  if (is_held(a) && is_held(b)) {
    Pieces in_a, in_b;
    in_a.derives = in_b.derives = derives;
    takeList(in_a, against.a.kis, list, with_table(a), a.begin + a.bytes - a.rest);
    takeList(in_b, against.b.kis, list, with_table(b), b.begin + b.bytes - b.rest);
    comparePieces(found, against, in_a, in_b);
    to.is_odd |= in_a.is_odd || in_b.is_odd;
  }
  take(to, found);
  tell(to, {nameOfList(list)}, std::move(found.changes));
  if (list > 0)
    compareElements(to, list, derives);
  if (secondSpaceOf(list) != NONE)
    compareElements(to, secondSpaceOf(list), derives);
  found.changes.clear();
  if (!against.rules.ignore_gaps)
    to.is_wrong |=
        compareBytes(found, against, "", a.rest, a.begin + a.bytes - a.rest, b.rest, b.begin + b.bytes - b.rest);
  tell(to, {nameOfList(list)}, std::move(found.changes));
}

/// Compares the words of two lists of the same length at their places, which are named as one of them has them.
void compareInPlace(Comparison &to, std::size_t list, bool is_b) {
  const Side &side = is_b ? to.against.b : to.against.a;
  const LoadedList &named = side.lists[list];
  const LoadedList &a = to.against.a.lists[list], &b = to.against.b.lists[list];
  Found found;
  if (named.ok || named.rest > named.begin) {
    Pieces pieces;
    pieces.derives = false;
    takeList(pieces, side.kis, list, named.elements, 0);
    compareInPlace(found, to.against, pieces, is_b);
    tell(to, {nameOfList(list)}, std::move(found.changes));
  }
  for (const bool second : {false, true})
    for (std::size_t i = 0; list > 0 && i < named.elements[second ? 1 : 0]; ++i) {
      const std::size_t space = second ? secondSpaceOf(list) : list;
      const Pieces pieces = elementOf(side, space, i, false);
      found.changes.clear();
      compareInPlace(found, to.against, pieces, is_b);
      if (!found.changes.empty() || to.listener.wants_all)
        tell(to, {nameOfList(list), kindOf(list, second), i, i, nameOf(side.kis, pieces)}, std::move(found.changes));
    }
  found.changes.clear();
  const std::uint64_t held = named.rest - named.begin;
  compareBytes(found, to.against, "", a.begin + held, a.bytes - held, b.begin + held, b.bytes - held);
  tell(to, {nameOfList(list)}, std::move(found.changes));
}

bool sameListBytes(const Against &against, std::size_t list) {
  const LoadedList &a = against.a.lists[list], &b = against.b.lists[list];
  Found found;
  return !compareBytes(found, against, "", a.begin, a.bytes, b.begin, b.bytes);
}

/// Compares the words at their places if that says it in fewer changes: in a list with damaged counts and sizes. Of two
/// that are as short, the names are those of the file with more records.
void takeShorter(Comparison &to, std::size_t list) {
  const LoadedList &a = to.against.a.lists[list], &b = to.against.b.lists[list];
  const bool b_first = to.lacks[0] != to.lacks[1] ? to.lacks[0] : b.rest >= a.rest;
  for (const bool is_b : {b_first, !b_first}) {
    Comparison other{to.against, to.listener};
    compareInPlace(other, list, is_b);
    if (other.changes < to.changes) {
      to.entries = std::move(other.entries);
      to.changes = other.changes;
    }
  }
}

bool isDamaged(const Against &against, std::size_t list) {
  const LoadedList &a = against.a.lists[list], &b = against.b.lists[list];
  return (a.bytes > 0 && !a.ok) || (b.bytes > 0 && !b.ok);
}

/// @return whether links may lie in a list that cannot be read, and whose bytes are equal. If elements have moved, such
/// links lead to others than before, so it cannot be said that the files are the same.
bool hidesLinks(const Against &against) {
  const auto is_renumbered = [](const Space &space) { return !space.is_identity; };
  bool hides = false;
  if (std::any_of(against.matching->begin(), against.matching->end(), is_renumbered))
    for (std::size_t list = 0; list < LIST_NUM && !hides; ++list)
      hides = against.rules.lists[list] && isDamaged(against, list) && sameListBytes(against, list);
  return hides;
}

void compareList(Comparison &to, std::size_t list) {
  const LoadedList &a = to.against.a.lists[list], &b = to.against.b.lists[list];
  if ((a.bytes == 0 && b.bytes == 0) || !to.against.rules.lists[list])
    return;
  const bool is_same_length = a.bytes == b.bytes && a.begin == b.begin;
  const bool is_damaged = isDamaged(to.against, list), is_same = is_damaged && sameListBytes(to.against, list);
  if (is_damaged && (!is_same || to.is_order_told))
    to.listener.damaged(nameOfList(list), a.bytes > 0 && !a.ok ? a.finding : nullptr,
                        b.bytes > 0 && !b.ok ? b.finding : nullptr);
  if (is_same)
    return;
  if (a.bytes == 0 || b.bytes == 0) {
    tell(to, {nameOfList(list)}, {{.what = a.bytes == 0 ? What::only_b : What::only_a}});
  } else if (is_damaged && is_same_length) {
    compareInPlace(to, list, b.ok || (!a.ok && b.rest > a.rest));
  } else {
    compareRecords(to, list);
    if (to.is_wrong && is_same_length && !sameListBytes(to.against, list))
      takeShorter(to, list);
    if (to.is_odd && to.changes == 0 && !to.against.rules.ignore_gaps) { // bytes beside words are in no word
      Found found;
      compareBytes(found, to.against, "", a.begin, a.bytes, b.begin, b.bytes);
      tell(to, {nameOfList(list)}, std::move(found.changes));
    }
  }
  handOn(to);
}

FileHeader expectedHeader(const Side &side) {
  FileHeader derived = derivedHeader(side.kis.file_header, side.parts.blocks, side.parts.lists, side.parts.behind);
  // Of blocks that are not there, nothing is known but these words: they are compared as they are.
  derived.van_ext_blk_size = side.parts.whole_words ? side.van_bytes : 0;
  derived.usr_ext_blk_size = side.parts.whole_words ? static_cast<Word>(side.parts.blocks) - side.van_bytes : 0;
  return derived;
}

void compareHeader(Comparison &to) {
  const Side &a = to.against.a, &b = to.against.b;
  const FileHeader expected_a = expectedHeader(a), expected_b = expectedHeader(b);
  Pieces in_a, in_b;
  takeHeader(in_a, a.kis.file_header, a.parts.has_sizes, &expected_a);
  takeHeader(in_b, b.kis.file_header, b.parts.has_sizes, &expected_b);
  Found found;
  comparePieces(found, to.against, in_a, in_b);
  const bool ignore_gaps = to.against.rules.ignore_gaps;
  if (!ignore_gaps && (!a.parts.whole_words || !b.parts.whole_words))
    compareBytes(found, to.against, "", FILE_HEADER_BYTES, a.parts.blocks, FILE_HEADER_BYTES, b.parts.blocks);
  tell(to, {"FileHeader"}, std::move(found.changes));
  handOn(to);
}

} // namespace

bool compareSides(const Side &a, const Side &b, const Rules &rules, const Listener &listener) {
  Matching matching;
  const Against against = {a, b, rules, &matching};
  Comparison comparison{against, listener};
  Found found;
  if (!a.is_scene || !b.is_scene) {
    listener.damaged("File", a.is_scene ? nullptr : "version-unknown", b.is_scene ? nullptr : "version-unknown");
    compareBytes(found, against, "", 0, a.source.size, 0, b.source.size);
    tell(comparison, {"File"}, std::move(found.changes));
    handOn(comparison);
    return comparison.differs;
  }
  matching = matchElements(a, b, rules);
  comparison.is_order_told = rules.order || hidesLinks(against);
  compareHeader(comparison);
  for (std::size_t list = 0; list < LIST_NUM; ++list)
    compareList(comparison, list);
  if (!rules.ignore_gaps && rules.lists.all())
    compareBytes(found, against, "behind the lists", a.source.size - a.parts.behind, a.parts.behind,
                 b.source.size - b.parts.behind, b.parts.behind);
  tell(comparison, {"File"}, std::move(found.changes));
  handOn(comparison);
  return comparison.differs;
}

} // namespace kova::diff
