#include "diff/compare_pieces.h"

#include "reader/byte_order.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace kova::diff {

namespace {

/// So many words of an array are told one by one. Of more, their number is told, and the first of them.
constexpr std::size_t MOST_WORDS = 4;

// --- Values ---------------------------------------------------------------------------------------------------------

std::string valueText(const Field &field, Word word) {
  char text[32];
  if (field.real && (word & 0x7f800000) != 0x7f800000)
    return {text, std::to_chars(text, text + sizeof text, std::bit_cast<float>(word)).ptr};
  if (field.real)
    std::snprintf(text, sizeof text, "nan:%08x", word);
  else
    std::snprintf(text, sizeof text, field.hex ? "0x%08x" : "%d", word);
  if (field.real && (word & 0x7fffffff) == 0x7f800000)
    return word >> 31 != 0 ? "-inf" : "inf";
  return text;
}

Change valueChange(std::string name, const Piece &piece, std::size_t word, Word a, Word b) {
  Field field = piece.fields[word];
  const bool is_link = targetOf(piece, field) != To::nothing;
  field.hex = field.hex && !is_link;
  Change change = {.field = std::move(name), .old_value = valueText(field, a), .new_value = valueText(field, b)};
  change.is_link = is_link;
  if (field.real)
    change.ulps = ulpsBetween(a, b);
  return change;
}

// --- Entries --------------------------------------------------------------------------------------------------------

/// Two pieces of the same name that are compared.
struct Pair {
  const Against &against;
  const Pieces &all_a;
  const Pieces &all_b;
  const Piece &a;
  const Piece &b;
  std::uint64_t ignored;
};

Word derivedOf(const Pieces &all, const Piece &piece, std::size_t entry, std::size_t word) {
  return piece.derived == NONE ? 0 : all.derived[piece.derived + entry * piece.fields.size() + word];
}

/// @return whether a word that follows from others is as far from what it follows from as that of the other file.
bool sameDerived(const Pair &pair, Role role, std::size_t entry, std::size_t word, bool &is_wrong) {
  const Word a = wordOf(pair.a, entry, word) - derivedOf(pair.all_a, pair.a, entry, word);
  const Word b = wordOf(pair.b, entry, word) - derivedOf(pair.all_b, pair.b, entry, word);
  if (a == b || (role == Role::header_size && a - pair.a.table_bytes == b - pair.b.table_bytes))
    return true;
  is_wrong = true;
  // Where the words are equal, what they follow from is not, and is told.
  return role != Role::own_index && wordOf(pair.a, entry, word) == wordOf(pair.b, entry, word);
}

bool sameWord(const Pair &pair, std::size_t entry, std::size_t word, bool &is_wrong) {
  if ((pair.ignored >> word & 1) != 0)
    return true;
  const Field &field = pair.a.fields[word];
  if (pair.a.derived != NONE && pair.b.derived != NONE && (pair.a.is_array || isDerived(field.role)))
    return sameDerived(pair, field.role, entry, word, is_wrong);
  const Word a = wordOf(pair.a, entry, word), b = wordOf(pair.b, entry, word);
  const To to = targetOf(pair.a, field);
  if (to != To::nothing && to <= To::any && pair.against.matching != nullptr)
    return sameLink(*pair.against.matching, to, a, b);
  return a == b || (field.real && closeFloats(a, b, pair.against.rules));
}

/// @return whether equal bits are equal words, whatever they mean.
bool bitsSay(const Pair &pair) {
  if (pair.a.derived != NONE || pair.b.derived != NONE)
    return false;
  for (const Field &field : pair.a.fields) {
    const To to = targetOf(pair.a, field);
    if (to != To::nothing && to <= To::any && pair.against.matching != nullptr)
      return std::all_of(pair.against.matching->begin(), pair.against.matching->end(),
                         [](const Space &space) { return space.is_identity; });
  }
  return true;
}

/// The words of two arrays that differ.
struct Difference {
  std::size_t entry;
  std::size_t count; ///< of entries one behind the other with the same change
  std::size_t word;
  Word a;
  Word b;
};
struct Differences {
  std::vector<Difference> words = {}; ///< the first ones, and all of those that follow from others
  std::size_t plain = 0;
  std::size_t entries = 0;
};

void keep(Differences &found, const Piece &piece, std::size_t entry, std::size_t word, Word a, Word b) {
  const Role role = piece.fields[word].role;
  const bool is_plain = piece.is_array && !isDerived(role) && role != Role::tag;
  for (std::size_t back = 1; back <= std::min<std::size_t>(found.words.size(), 8); ++back) {
    Difference &last = found.words[found.words.size() - back];
    if (last.word == word && last.entry + last.count == entry && last.a == a && last.b == b) {
      ++last.count;
      return;
    }
  }
  found.plain += is_plain;
  if (!is_plain || found.plain <= MOST_WORDS)
    found.words.push_back({entry, 1, word, a, b});
}

Differences differencesOf(const Pair &pair, std::size_t entries, bool &is_wrong) {
  Differences found;
  const std::size_t words = pair.a.fields.size(), bytes = words * sizeof(Word);
  const bool bits = bitsSay(pair);
  const unsigned char *a = dataOf(pair.a), *b = dataOf(pair.b);
  if (bits && pair.a.stride == bytes && pair.b.stride == bytes && std::memcmp(a, b, entries * bytes) == 0)
    return found;
  for (std::size_t entry = 0; entry < entries; ++entry, a += pair.a.stride, b += pair.b.stride) {
    if (bits && std::memcmp(a, b, bytes) == 0)
      continue;
    bool differs = false;
    for (std::size_t word = 0; word < words; ++word)
      if (!sameWord(pair, entry, word, is_wrong)) {
        keep(found, pair.a, entry, word, wordOf(pair.a, entry, word), wordOf(pair.b, entry, word));
        differs = true;
      }
    found.entries += differs;
  }
  return found;
}

std::string entryName(const Piece &piece, const Difference &difference) {
  const Field &field = piece.fields[difference.word];
  std::string name;
  const std::size_t first = piece.first + difference.entry;
  if (piece.is_array) {
    name = '[' + std::to_string(first);
    if (difference.count > 1)
      name += ".." + std::to_string(first + difference.count - 1);
    name += ']';
  }
  if (field.name.length > 0 && (piece.is_array || *piece.name != 0))
    name += '.';
  name += std::string_view(field.name);
  return name;
}

void compareWords(Found &found, const Pair &pair) {
  const std::string name = pathOf(pair.all_a, pair.a.parent) + pair.a.name;
  const Differences all = differencesOf(pair, std::min(pair.a.entries, pair.b.entries), found.is_wrong);
  const bool same_number = pair.a.entries == pair.b.entries;
  if (same_number && all.plain <= MOST_WORDS) {
    for (const Difference &word : all.words)
      found.changes.push_back(valueChange(name + entryName(pair.a, word), pair.a, word.word, word.a, word.b));
    return;
  }
  if (same_number && all.words.empty())
    return;
  Change change = {.what = What::entries, .field = name, .counts = {pair.a.entries, pair.b.entries}};
  change.differing = same_number ? all.entries : 0;
  if (!all.words.empty()) {
    Difference first = all.words[0];
    first.count = 1;
    const Change value = valueChange("", pair.a, first.word, first.a, first.b);
    change.first = entryName(pair.a, first);
    change.old_value = value.old_value;
    change.new_value = value.new_value;
    change.ulps = value.ulps;
  }
  found.changes.push_back(std::move(change));
}

void compareTexels(Found &found, const Pair &pair) {
  const std::size_t least = std::min(pair.a.entries, pair.b.entries);
  if (pair.a.entries == pair.b.entries && std::memcmp(pair.a.data, pair.b.data, least) == 0)
    return;
  Change change = {.what = What::entries, .field = pathOf(pair.all_a, pair.a.parent) + pair.a.name};
  change.counts = {pair.a.entries, pair.b.entries};
  const auto first =
      static_cast<std::size_t>(std::mismatch(pair.a.data, pair.a.data + least, pair.b.data).first - pair.a.data);
  for (std::size_t i = 0; i < least && pair.a.entries == pair.b.entries; ++i)
    change.differing += pair.a.data[i] != pair.b.data[i];
  if (first < least) {
    change.first = '[' + std::to_string(first) + ']';
    change.old_value = std::to_string(pair.a.data[first]);
    change.new_value = std::to_string(pair.b.data[first]);
  }
  found.changes.push_back(std::move(change));
}

std::string textOf(const Piece &piece) {
  return textBytes({reinterpret_cast<const Word *>(piece.data), piece.entries});
}

void comparePair(Found &found, const Pair &pair) {
  if (isIgnored(pair.all_a, pair.a, pair.against.rules))
    return;
  switch (pair.a.matter) {
  case Matter::words:
    return compareWords(found, pair);
  case Matter::bytes:
    return compareTexels(found, pair);
  case Matter::text:
    if (pair.a.entries != pair.b.entries || std::memcmp(pair.a.data, pair.b.data, pair.a.entries * sizeof(Word)) != 0)
      found.changes.push_back({.field = pathOf(pair.all_a, pair.a.parent) + pair.a.name,
                               .old_value = textOf(pair.a),
                               .new_value = textOf(pair.b),
                               .is_text = true});
    return;
  case Matter::number:
    if (pair.a.entries != pair.b.entries)
      found.changes.push_back({.what = What::entries,
                               .field = pathOf(pair.all_a, pair.a.parent) + pair.a.name,
                               .counts = {pair.a.entries, pair.b.entries}});
    return;
  case Matter::gap:
    if (!pair.against.rules.ignore_gaps)
      compareBytes(found, pair.against, pathOf(pair.all_a, pair.a.parent), pair.a.at, pair.a.entries, pair.b.at,
                   pair.b.entries);
    return;
  }
}

// --- Pieces ---------------------------------------------------------------------------------------------------------

bool sameParents(const Pieces &all_a, std::size_t a, const Pieces &all_b, std::size_t b) {
  while (a != 0 && b != 0) {
    const Around &in_a = all_a.parents[a], &in_b = all_b.parents[b];
    if (in_a.name != in_b.name || in_a.number != in_b.number)
      return false;
    a = in_a.parent;
    b = in_b.parent;
  }
  return a == b;
}

bool sameName(const Pieces &all_a, const Piece &a, const Pieces &all_b, const Piece &b) {
  return a.matter == b.matter && a.name == b.name && a.fields.data() == b.fields.data() &&
         sameParents(all_a, a.parent, all_b, b.parent);
}

/// @return a number that pieces of the same name have in common.
std::uint64_t keyOf(const Pieces &all, const Piece &piece) {
  std::uint64_t key = reinterpret_cast<std::uintptr_t>(piece.name) * 31 + static_cast<std::uint64_t>(piece.matter);
  for (std::size_t parent = piece.parent; parent != 0; parent = all.parents[parent].parent)
    key = (key * 0x9e3779b97f4a7c15) ^
          (reinterpret_cast<std::uintptr_t>(all.parents[parent].name) + all.parents[parent].number);
  return key;
}

/// Tells of a piece that one of two records has. A record is told as a whole.
void tellAlone(Found &found, const Against &against, const Pieces &all, const Piece &piece, bool is_b) {
  const bool is_record = !piece.is_array && piece.matter == Matter::words;
  for (std::size_t parent = piece.parent; parent != 0; parent = all.parents[parent].parent)
    if (found.alone[is_b ? 1 : 0] == parent)
      return;
  found.is_wrong = true;
  if (piece.parent == 0 && is_record) // other words of the header tell that it has such
    return;
  if (is_record) {
    found.alone[is_b ? 1 : 0] = piece.parent;
    found.lacks[is_b ? 0 : 1] = true;
  }
  const std::string path = pathOf(all, piece.parent) + piece.name;
  if (piece.matter == Matter::gap) {
    if (!against.rules.ignore_gaps)
      compareBytes(found, against, pathOf(all, piece.parent), piece.at, is_b ? 0 : piece.entries, piece.at,
                   is_b ? piece.entries : 0);
    return;
  }
  if (ignoredWords(piece, against.rules) == ~std::uint64_t{0} || isIgnored(all, piece, against.rules))
    return;
  if (is_record) {
    found.changes.push_back(
        {.what = is_b ? What::only_b : What::only_a, .field = path.substr(0, path.find_last_not_of('.') + 1)});
    return;
  }
  Change change = {.what = What::entries, .field = path};
  change.counts[is_b ? 1 : 0] = piece.entries;
  found.changes.push_back(std::move(change));
}

/// @return the words of a piece as a file has them at its place.
std::vector<unsigned char> readPiece(const Source &source, const Piece &piece) {
  const std::size_t words = piece.fields.size();
  const std::size_t bytes = piece.entries * (words > 0 ? words * sizeof(Word) : piece.stride);
  std::vector<unsigned char> read(bytes);
  readBytes(source, piece.at, read);
  if (piece.matter == Matter::bytes)
    return read;
  copyConverted(read.data(), read.data(), bytes);
  if (!piece.columns)
    return read;
  std::vector<unsigned char> rows(bytes);
  for (std::size_t entry = 0; entry < piece.entries; ++entry)
    for (std::size_t word = 0; word < words; ++word)
      std::memcpy(&rows[(entry * words + word) * sizeof(Word)], &read[(word * piece.entries + entry) * sizeof(Word)],
                  sizeof(Word));
  return rows;
}

} // namespace

bool compareBytes(Found &found, const Against &against, std::string what, std::uint64_t at_a, std::uint64_t bytes_a,
                  std::uint64_t at_b, std::uint64_t bytes_b) {
  constexpr std::uint64_t AT_ONCE = 64 * 1024;
  const std::uint64_t least = std::min(bytes_a, bytes_b);
  std::vector<unsigned char> a(static_cast<std::size_t>(std::min(least, AT_ONCE))), b(a.size());
  std::uint64_t same = 0;
  while (same < least) {
    const auto bytes = static_cast<std::size_t>(std::min(AT_ONCE, least - same));
    readBytes(against.a.source, at_a + same, std::span(a).first(bytes));
    readBytes(against.b.source, at_b + same, std::span(b).first(bytes));
    const auto equal = static_cast<std::size_t>(
        std::mismatch(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(bytes), b.begin()).first - a.begin());
    same += equal;
    if (equal < bytes)
      break;
  }
  if (same == least && bytes_a == bytes_b)
    return false;
  Change change = {.what = What::bytes, .field = std::move(what), .counts = {bytes_a, bytes_b}};
  change.first = std::to_string(same);
  found.changes.push_back(std::move(change));
  return true;
}

void compareInPlace(Found &found, const Against &against, const Pieces &record, bool is_b) {
  Pieces other;
  other.parents = record.parents;
  for (const Piece &piece : record.pieces) {
    if (piece.matter == Matter::number)
      continue;
    Piece own = piece, read = piece;
    own.derived = read.derived = NONE;
    std::vector<unsigned char> bytes;
    if (piece.matter != Matter::gap) {
      bytes = readPiece(is_b ? against.a.source : against.b.source, piece);
      read.data = bytes.data();
      read.stride = piece.fields.empty() ? piece.stride : piece.fields.size() * sizeof(Word);
    }
    const Against raw = {against.a, against.b, against.rules, nullptr};
    comparePair(found, {raw, is_b ? other : record, is_b ? record : other, is_b ? read : own, is_b ? own : read,
                        ignoredWords(piece, against.rules)});
  }
}

void comparePieces(Found &found, const Against &against, const Pieces &a, const Pieces &b) {
  found.alone = {0, 0};
  std::size_t j = 0;
  std::vector<std::pair<std::uint64_t, std::size_t>> places; // of the pieces of B, by name, once they are not in step
  const auto find_in_b = [&](const Piece &piece) {
    if (places.empty()) {
      for (std::size_t i = 0; i < b.pieces.size(); ++i)
        places.emplace_back(keyOf(b, b.pieces[i]), i);
      std::sort(places.begin(), places.end());
    }
    const std::uint64_t key = keyOf(a, piece);
    auto at = std::lower_bound(places.begin(), places.end(), std::pair{key, j});
    while (at != places.end() && at->first == key && !sameName(a, piece, b, b.pieces[at->second]))
      ++at;
    return at != places.end() && at->first == key ? at->second : NONE;
  };
  for (const Piece &piece : a.pieces) {
    std::size_t at = j < b.pieces.size() && sameName(a, piece, b, b.pieces[j]) ? j : find_in_b(piece);
    if (at == NONE) {
      tellAlone(found, against, a, piece, false);
      continue;
    }
    for (; j < at; ++j)
      tellAlone(found, against, b, b.pieces[j], true);
    comparePair(found, {against, a, b, piece, b.pieces[j], ignoredWords(piece, against.rules)});
    ++j;
  }
  for (; j < b.pieces.size(); ++j)
    tellAlone(found, against, b, b.pieces[j], true);
}

} // namespace kova::diff
