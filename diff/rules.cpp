#include "diff/rules.h"

#include <cmath>

namespace kova::diff {

std::uint64_t ignoredWords(const Piece &piece, const Rules &rules) {
  std::uint64_t words = 0;
  for (std::size_t word = 0; word < piece.fields.size() && (rules.ignore_derived || !rules.ignored.empty()); ++word) {
    const Field &field = piece.fields[word];
    const std::string_view name = field.name;
    const std::string_view member = name.substr(0, name.find_first_of(".["));
    const bool is_ignored = (rules.ignore_derived && isDerived(field.role)) || rules.ignored.contains(member) ||
                            rules.ignored.contains(name);
    words |= std::uint64_t{is_ignored} << word;
  }
  // A table of sizes, and the number of records.
  if (rules.ignore_derived && (piece.is_array || piece.matter == Matter::number) && piece.derived != NONE)
    words = ~std::uint64_t{0};
  return words;
}

bool isIgnored(const Pieces &all, const Piece &piece, const Rules &rules) {
  if (rules.ignored.empty())
    return false;
  bool is_ignored = rules.ignored.contains(std::string_view(piece.name));
  for (std::size_t in = piece.parent; in != 0 && !is_ignored; in = all.parents[in].parent)
    is_ignored = rules.ignored.contains(std::string_view(all.parents[in].name));
  return is_ignored;
}

namespace {

bool isNaN(Word word) { return (word & 0x7fffffff) > 0x7f800000; }

/// @return a number that grows by one from float to float.
std::int64_t rankOf(Word word) {
  const auto magnitude = static_cast<std::int64_t>(word & 0x7fffffff);
  return (word >> 31) != 0 ? -magnitude : magnitude;
}

} // namespace

std::optional<std::uint64_t> ulpsBetween(Word a, Word b) {
  if (isNaN(a) || isNaN(b))
    return std::nullopt;
  return static_cast<std::uint64_t>(std::abs(rankOf(a) - rankOf(b)));
}

bool closeFloats(Word a, Word b, const Rules &rules) {
  const std::optional<std::uint64_t> ulps = ulpsBetween(a, b);
  if (!ulps)
    return false;
  if (rules.ulp && *ulps <= *rules.ulp)
    return true;
  const double difference = std::fabs(double{std::bit_cast<float>(a)} - double{std::bit_cast<float>(b)});
  return rules.epsilon && difference <= *rules.epsilon;
}

} // namespace kova::diff
