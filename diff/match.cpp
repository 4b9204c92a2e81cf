#include "diff/match.h"

#include <algorithm>
#include <numeric>

namespace kova::diff {

namespace {

/// Hashes of an element: of its content; with what its links lead to; and twice more, also with what leads to it.
constexpr std::size_t LEVELS = 4;

constexpr std::uint64_t combine(std::uint64_t hash, std::uint64_t value) {
  hash = (hash ^ value) * 0xff51afd7ed558ccd;
  return hash ^ hash >> 32;
}

/// A link of an element, by the numbers of all elements.
struct Edge {
  std::uint32_t from;
  std::uint32_t to; ///< ALONE: it leads nowhere
  std::uint32_t ordinal;
};

/// The elements of a file, numbered through.
struct Graph {
  std::array<std::uint32_t, SPACE_NUM + 1> first = {};
  std::vector<Edge> edges = {};          ///< in the order of the elements
  std::vector<std::uint32_t> edges_of{}; ///< of each element: its first edge
  std::array<std::vector<std::uint64_t>, LEVELS> hash = {};
  std::vector<std::uint64_t> name = {}; ///< 0 for none
};

std::size_t countOf(const Side &side, std::size_t space) {
  const LoadedList &list = side.lists[spaceOf(space).list];
  return list.elements[spaceOf(space).second ? 1 : 0];
}

/// Adds the links of an element, as far as it is known into which list they lead.
void addEdges(Graph &graph, const Pieces &element, std::uint32_t from) {
  std::uint32_t ordinal = 0;
  for (const Piece &piece : element.pieces)
    for (std::size_t word = 0; word < piece.fields.size(); ++word) {
      const auto space = static_cast<std::size_t>(targetOf(piece, piece.fields[word]));
      if (space == 0 || space >= SPACE_NUM)
        continue;
      const std::uint32_t there = graph.first[space + 1] - graph.first[space];
      for (std::size_t entry = 0; entry < piece.entries; ++entry) {
        const Word link = wordOf(piece, entry, word);
        graph.edges.push_back({from, link < there ? graph.first[space] + link : ALONE, ordinal++});
      }
    }
}

Graph graphOf(const Side &side, const Rules &rules) {
  Graph graph;
  for (std::size_t space = 0; space < SPACE_NUM; ++space)
    graph.first[space + 1] = graph.first[space] + static_cast<std::uint32_t>(countOf(side, space));
  graph.hash[0].reserve(graph.first[SPACE_NUM]);
  Pieces element;
  for (std::size_t space = 0; space < SPACE_NUM; ++space)
    for (std::size_t i = 0; i < countOf(side, space); ++i) {
      element.pieces.clear();
      element.parents.resize(1);
      element.derives = false;
      const auto number = static_cast<std::uint32_t>(graph.hash[0].size());
      takeElement(element, side.kis, spaceOf(space).list, spaceOf(space).second, i);
      graph.edges_of.push_back(static_cast<std::uint32_t>(graph.edges.size()));
      addEdges(graph, element, number);
      graph.hash[0].push_back(combine(hashOf(element, rules), space));
      const std::string name = nameOf(side.kis, element);
      graph.name.push_back(name.empty() ? 0 : combine(std::hash<std::string>()(name), space) | 1);
    }
  graph.edges_of.push_back(static_cast<std::uint32_t>(graph.edges.size()));
  for (std::size_t level = 1; level < LEVELS; ++level) {
    const std::vector<std::uint64_t> &before = graph.hash[level - 1];
    std::vector<std::uint64_t> &now = graph.hash[level] = before;
    for (const Edge &edge : graph.edges)
      now[edge.from] = combine(now[edge.from], combine(edge.to == ALONE ? 0 : before[edge.to], edge.ordinal));
    for (const Edge &edge : graph.edges) // apart, and a sum: the order of the elements does not matter
      if (level > 1 && edge.to != ALONE)
        now[edge.to] += combine(before[edge.from], edge.ordinal);
  }
  return graph;
}

/// The matching while it is made. Elements are numbered through.
struct Matcher {
  const Graph &a;
  const Graph &b;
  std::vector<std::uint32_t> to_b = std::vector<std::uint32_t>(a.first[SPACE_NUM], ALONE);
  std::vector<std::uint32_t> to_a = std::vector<std::uint32_t>(b.first[SPACE_NUM], ALONE);
  std::vector<std::uint32_t> led = {}; ///< elements of A that are matched, whose links are not yet gone along
};

/// Matches two elements, and what their links lead to where that looks alike.
void match(Matcher &to, std::uint32_t a, std::uint32_t b, std::size_t level) {
  to.to_b[a] = b;
  to.to_a[b] = a;
  to.led.push_back(a);
  while (!to.led.empty()) {
    const std::uint32_t from = to.led.back();
    to.led.pop_back();
    const std::uint32_t other = to.to_b[from];
    const std::span edges_a =
        std::span(to.a.edges).subspan(to.a.edges_of[from], to.a.edges_of[from + 1] - to.a.edges_of[from]);
    const std::span edges_b =
        std::span(to.b.edges).subspan(to.b.edges_of[other], to.b.edges_of[other + 1] - to.b.edges_of[other]);
    for (std::size_t i = 0; i < std::min(edges_a.size(), edges_b.size()); ++i) {
      const std::uint32_t at_a = edges_a[i].to, at_b = edges_b[i].to;
      if (at_a == ALONE || at_b == ALONE || to.to_b[at_a] != ALONE || to.to_a[at_b] != ALONE ||
          to.a.hash[level][at_a] != to.b.hash[level][at_b])
        continue;
      to.to_b[at_a] = at_b;
      to.to_a[at_b] = at_a;
      to.led.push_back(at_a);
    }
  }
}

std::vector<std::uint32_t> unmatched(const std::vector<std::uint32_t> &matched, const Graph &graph, std::size_t space) {
  std::vector<std::uint32_t> alone;
  for (std::uint32_t i = graph.first[space]; i < graph.first[space + 1]; ++i)
    if (matched[i] == ALONE)
      alone.push_back(i);
  return alone;
}

/// Matches elements of a space that have the same key: those at the begin and at the end, then the others, of several
/// with one key each with the next.
/// @param key_a,key_b 0 for an element that has none
void matchKeys(Matcher &to, std::size_t space, const std::vector<std::uint64_t> &key_a,
               const std::vector<std::uint64_t> &key_b, std::size_t level) {
  std::vector<std::uint32_t> a = unmatched(to.to_b, to.a, space), b = unmatched(to.to_a, to.b, space);
  const auto try_match = [&](std::uint32_t at_a, std::uint32_t at_b) {
    const bool is_same = key_a[at_a] == key_b[at_b] && key_a[at_a] != 0;
    if (is_same && to.to_b[at_a] == ALONE && to.to_a[at_b] == ALONE)
      match(to, at_a, at_b, level);
    return is_same && to.to_b[at_a] == at_b;
  };
  std::size_t begin = 0, behind = 0;
  const std::size_t least = std::min(a.size(), b.size());
  while (begin < least && try_match(a[begin], b[begin]))
    ++begin;
  while (behind < least - begin && try_match(a[a.size() - 1 - behind], b[b.size() - 1 - behind]))
    ++behind;
  if (begin + behind == least)
    return;
  std::stable_sort(a.begin(), a.end(), [&](std::uint32_t x, std::uint32_t y) { return key_a[x] < key_a[y]; });
  std::stable_sort(b.begin(), b.end(), [&](std::uint32_t x, std::uint32_t y) { return key_b[x] < key_b[y]; });
  for (std::size_t i = 0, j = 0; i < a.size() && j < b.size();) {
    if (to.to_b[a[i]] != ALONE || key_a[a[i]] < key_b[b[j]])
      ++i;
    else if (to.to_a[b[j]] != ALONE || key_b[b[j]] < key_a[a[i]])
      ++j;
    else
      try_match(a[i++], b[j++]);
  }
}

/// Matches what is left by its place: behind a matched element, or before one, each with the one behind or before the
/// other. The same comes out whichever file is the first.
void matchPlaces(Matcher &to, std::size_t space, bool from_behind) {
  std::vector<std::pair<std::uint32_t, std::uint32_t>> pairs;
  const std::int64_t a_first = to.a.first[space], a_end = to.a.first[space + 1];
  const std::int64_t b_first = to.b.first[space], b_end = to.b.first[space + 1];
  const std::int64_t step = from_behind ? -1 : 1;
  std::int64_t anchor = from_behind ? b_end : b_first - 1; // what the one before is matched with
  std::int64_t next = anchor + step;
  for (std::int64_t i = from_behind ? a_end - 1 : a_first; i >= a_first && i < a_end; i += step) {
    const auto at = static_cast<std::size_t>(i);
    if (to.to_b[at] != ALONE) {
      next = std::int64_t{to.to_b[at]} + step;
      continue;
    }
    if (next < b_first || next >= b_end || to.to_a[static_cast<std::size_t>(next)] != ALONE) {
      next = -2; // the other gap is full
      continue;
    }
    pairs.emplace_back(static_cast<std::uint32_t>(i), static_cast<std::uint32_t>(next));
    next += step;
  }
  for (const auto &[at_a, at_b] : pairs) {
    to.to_b[at_a] = at_b;
    to.to_a[at_b] = at_a;
  }
}

/// @return whether bytes follow the last element, which may be elements that a wrong count leaves out.
bool hasRest(const LoadedList &list) { return list.ok && list.rest < list.begin + list.bytes; }

/// Puts the matching of all elements into those of the spaces.
Matching spacesOf(const Matcher &from, const Side &a, const Side &b) {
  Matching matching;
  for (std::size_t space = 0; space < SPACE_NUM; ++space) {
    Space &to = matching[space];
    const auto take = [](const std::vector<std::uint32_t> &all, const Graph &own, const Graph &other, std::size_t at) {
      std::vector<std::uint32_t> part(all.begin() + own.first[at], all.begin() + own.first[at + 1]);
      for (std::uint32_t &number : part)
        number -= number != ALONE ? other.first[at] : 0;
      return part;
    };
    to.to_b = take(from.to_b, from.a, from.b, space);
    to.to_a = take(from.to_a, from.b, from.a, space);
    const std::size_t list = spaceOf(space).list;
    to.is_cut = a.lists[list].is_cut || b.lists[list].is_cut;
    to.has_rest = hasRest(a.lists[list]) || hasRest(b.lists[list]);
    to.is_identity = to.to_a.size() == to.to_b.size();
    for (std::size_t i = 0; to.is_identity && i < to.to_b.size(); ++i)
      to.is_identity = to.to_b[i] == i;
  }
  return matching;
}

/// @return whether a link into a list leads to the same. Of a list that is cut the number counts, too.
bool leadsToSame(const Space &space, Word a, Word b) {
  const bool is_in_a = a < space.to_b.size(), is_in_b = b < space.to_a.size();
  const bool is_unknown = space.is_cut || (space.has_rest && is_in_a != is_in_b);
  return (is_in_a && is_in_b && space.to_b[a] == b) || (a == b && ((!is_in_a && !is_in_b) || is_unknown));
}

} // namespace

std::string nameOf(const Kis &kis, const Pieces &element) {
  for (const Piece &piece : element.pieces) {
    if (piece.matter == Matter::text)
      return textBytes({reinterpret_cast<const Word *>(piece.data), piece.entries});
    if (piece.parent != 0 || piece.is_array)
      continue;
    for (std::size_t word = 0; word < piece.fields.size(); ++word)
      if (piece.fields[word].role == Role::link && piece.fields[word].to == To::name) {
        const Name *const name = kvElement(kis.name, wordOf(piece, 0, word));
        return name != nullptr ? textBytes(name->text) : "";
      }
  }
  return "";
}

Matching matchElements(const Side &a, const Side &b, const Rules &rules) {
  const Graph graph_a = graphOf(a, rules), graph_b = graphOf(b, rules);
  Matcher matcher{graph_a, graph_b};
  const auto each_space = [](auto visit) {
    for (std::size_t space = 0; space < SPACE_NUM; ++space)
      visit(space);
  };
  const auto by_name = [&](std::size_t space) { matchKeys(matcher, space, graph_a.name, graph_b.name, LEVELS - 1); };
  if (rules.by_name)
    each_space(by_name);
  for (std::size_t level = LEVELS; level-- > 0;)
    each_space([&](std::size_t space) { matchKeys(matcher, space, graph_a.hash[level], graph_b.hash[level], level); });
  each_space(by_name);
  each_space([&](std::size_t space) {
    matchPlaces(matcher, space, false);
    matchPlaces(matcher, space, true);
  });
  return spacesOf(matcher, a, b);
}

bool sameLink(const Matching &matching, To to, Word a, Word b) {
  const auto space = static_cast<std::size_t>(to);
  if (space < SPACE_NUM)
    return leadsToSame(matching[space], a, b);
  bool leads_somewhere = false;
  for (std::size_t list = 1; list < SPACE_NUM; ++list) {
    if (to == To::image && list != static_cast<std::size_t>(To::teximg) && list != static_cast<std::size_t>(To::ci_img))
      continue;
    const Space &known = matching[list];
    if (a >= known.to_b.size() && b >= known.to_a.size())
      continue;
    leads_somewhere = true;
    if (leadsToSame(known, a, b))
      return true;
  }
  return !leads_somewhere && a == b;
}

} // namespace kova::diff
