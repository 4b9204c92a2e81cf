#include "diff/match.h"

namespace kova::diff {

namespace {

constexpr std::uint64_t PRIME = 0x9e3779b97f4a7c15;

std::uint64_t mix(std::uint64_t hash, std::uint64_t value) {
  hash = (hash ^ value) * PRIME;
  return hash ^ hash >> 29;
}

/// Four at a time, since a multiplication waits for the one before it.
std::uint64_t hashBytes(std::uint64_t hash, const unsigned char *bytes, std::size_t size) {
  std::array<std::uint64_t, 4> lanes = {hash, hash + 1, hash + 2, hash + 3};
  std::array<std::uint64_t, 4> words;
  for (; size >= sizeof words; bytes += sizeof words, size -= sizeof words) {
    std::memcpy(words.data(), bytes, sizeof words);
    for (std::size_t lane = 0; lane < lanes.size(); ++lane)
      lanes[lane] = mix(lanes[lane], words[lane]);
  }
  words = {};
  if (size > 0)
    std::memcpy(words.data(), bytes, size);
  for (std::size_t lane = 0; lane < lanes.size(); ++lane)
    hash = mix(mix(hash, lanes[lane]), words[lane]);
  return hash;
}

bool isLink(To to) { return to != To::nothing && to <= To::any; }

/// @return the words of an entry that do not tell elements apart.
std::uint64_t leftOut(const Piece &piece, const Rules &rules) {
  std::uint64_t words = ignoredWords(piece, rules);
  const bool is_close = rules.ulp || rules.epsilon;
  for (std::size_t word = 0; word < piece.fields.size(); ++word) {
    const Field &field = piece.fields[word];
    if (isDerived(field.role) || isLink(targetOf(piece, field)) || (field.real && is_close))
      words |= std::uint64_t{1} << word;
  }
  return piece.derived != NONE && piece.is_array ? ~std::uint64_t{0} : words;
}

std::uint64_t hashPiece(std::uint64_t hash, const Pieces &all, const Piece &piece, const Rules &rules) {
  if (isIgnored(all, piece, rules))
    return hash;
  hash = mix(mix(hash, reinterpret_cast<std::uintptr_t>(piece.name)), piece.entries);
  if (piece.matter == Matter::gap || piece.matter == Matter::number)
    return hash;
  const std::uint64_t out = leftOut(piece, rules);
  const std::size_t bytes = piece.matter == Matter::words ? piece.fields.size() * sizeof(Word) : piece.stride;
  if (out == 0 && bytes == piece.stride)
    return hashBytes(hash, dataOf(piece), piece.entries * bytes);
  std::array<Word, 64> entry{};
  for (std::size_t i = 0; i < piece.entries; ++i) {
    std::memcpy(entry.data(), dataOf(piece) + i * piece.stride, bytes);
    for (std::size_t word = 0; word < piece.fields.size(); ++word)
      if ((out >> word & 1) != 0)
        entry[word] = 0;
    hash = hashBytes(hash, reinterpret_cast<const unsigned char *>(entry.data()), bytes);
  }
  return hash;
}

} // namespace

std::uint64_t hashOf(const Pieces &element, const Rules &rules) {
  std::uint64_t hash = PRIME;
  for (const Piece &piece : element.pieces)
    hash = hashPiece(mix(hash, piece.parent), element, piece, rules);
  return hash;
}

} // namespace kova::diff
