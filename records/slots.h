/// The keys of a record's fixed words, made of its table of words.
///
/// A slot is a member: its name is the key, its words are the value. Members that are records themselves are taken
/// apart: "VtxTriNvColor.vtx_group_index", and of several "EnvelopeVtx[0].vtx_index".
#pragma once

#include "format/words.h"

#include <bitset>
#include <cstring>

namespace kova {

struct Slot {
  WordName key = {};
  std::size_t first = 0; ///< word of the record
  std::size_t words = 0;
  Role role = Role::plain;
  std::uint32_t real = 0; ///< a bit for each word: it is a float
  std::uint32_t hex = 0;  ///< the same: the dump shows it in hexadecimal
};

/// Marks of the slots of a record, or of its steps of `content`.
using Marks = std::bitset<64>;

/// @return the letter of the conversion that shows a word of a member; 0 where none does. A "%d" behind a bracket is a
/// position.
constexpr char letterOf(std::span<const char *const> texts, std::size_t part) {
  for (const char *const text : texts) {
    const std::string_view all = text == nullptr ? "" : text;
    for (std::size_t at = all.find('%'); at != all.npos; at = all.find('%', at + 1)) {
      if (at > 0 && (all[at - 1] == '[' || all[at - 1] == '('))
        continue;
      if (part-- == 0)
        return all[all.find_first_of("dxg", at)];
    }
  }
  return 0;
}

/// @return whether a word is shown in hexadecimal. Of the words that the dump leaves out, tags are.
constexpr bool isHex(const WordRow &row, std::size_t part) {
  const char letter = letterOf(row.texts, part);
  return letter == 'x' || (letter == 0 && row.meaning.role == Role::tag);
}

constexpr std::size_t slotsIn(std::span<const WordRow> rows) {
  std::size_t number = 0;
  for (const WordRow &row : rows)
    number += row.inner.empty() ? 1 : row.count * slotsIn(row.inner);
  return number;
}

constexpr void append(WordName &name, std::string_view text) {
  for (const char character : text)
    name.text[name.length++] = character;
}

/// @return what the key of a word inside a member begins with: nothing for a base.
constexpr WordName prefixOf(const WordRow &row, std::size_t position) {
  WordName name;
  const std::string_view heading = row.heading;
  append(name, heading.substr(0, heading.find('(')));
  if (row.count > 1) {
    append(name, "[");
    name.text[name.length++] = static_cast<char>('0' + position);
    append(name, "]");
  }
  if (name.length > 0)
    append(name, ".");
  return name;
}

constexpr Slot slotOf(const WordRow &row, std::size_t base, const WordName &prefix) {
  Slot slot{prefix, base + row.first, row.words, row.meaning.role};
  append(slot.key, nameOf(row));
  for (std::size_t part = 0; part < row.words; ++part) {
    slot.real |= row.kinds[part] == Kind::real ? 1U << part : 0;
    slot.hex |= isHex(row, part) ? 1U << part : 0;
  }
  return slot;
}

constexpr void putSlots(Slot *&at, std::span<const WordRow> rows, std::size_t base, const WordName &prefix) {
  for (const WordRow &row : rows) {
    if (row.inner.empty())
      *at++ = slotOf(row, base, prefix);
    for (std::size_t i = 0; !row.inner.empty() && i < row.count; ++i)
      putSlots(at, row.inner, base + row.first + i * (row.words / row.count), prefixOf(row, i));
  }
}

/// The slots of a record, in file order.
template <const auto &TABLE>
inline constexpr auto SLOTS = [] {
  std::array<Slot, slotsIn(TABLE)> slots{};
  Slot *at = slots.data();
  putSlots(at, TABLE, 0, {});
  return slots;
}();

/// How the words of one item of an array are shown: as those of a slot. Group indices have no kinds of their own.
template <class Item> constexpr Slot itemSlot(const char *text) {
  const char *const texts[] = {text};
  Slot slot{{}, 0, sizeof(Item) / sizeof(Word)};
  for (std::size_t part = 0; part < slot.words; ++part) {
    Kind kind = Kind::index;
    if constexpr (!KINDS<Item>.empty())
      kind = KINDS<Item>[part];
    slot.real |= kind == Kind::real ? 1U << part : 0;
    slot.hex |= kind == Kind::word && letterOf(texts, part) != 'd' ? 1U << part : 0;
  }
  return slot;
}

/// @return whether the words of an array are packed bits, which nothing shows and other words count.
template <class Named, class Item, class Count> constexpr bool isPacked() {
  const char *const texts[] = {Named::TEXT.text};
  return std::is_same_v<Item, Word> && std::is_integral_v<Count> && letterOf(texts, 0) == 0;
}

// --- The words of a record ------------------------------------------------------------------------------------------

template <class Head> Word wordIn(const Head &head, std::size_t word) {
  Word value;
  std::memcpy(&value, reinterpret_cast<const unsigned char *>(&head) + word * sizeof value, sizeof value);
  return value;
}
template <class Head> void setWordIn(Head &head, std::size_t word, Word value) {
  std::memcpy(reinterpret_cast<unsigned char *>(&head) + word * sizeof value, &value, sizeof value);
}

/// Sets the first word with a role, if the record has one.
template <const auto &TABLE, class Head> void setRole(Head &head, Role role, Word value) {
  for (const Slot &slot : SLOTS<TABLE>)
    if (slot.role == role)
      return setWordIn(head, slot.first, value);
}

/// @return the first word with a role; 0 if there is none.
template <const auto &TABLE, class Head> Word roleIn(const Head &head, Role role) {
  for (const Slot &slot : SLOTS<TABLE>)
    if (slot.role == role)
      return wordIn(head, slot.first);
  return 0;
}

/// @return whether the words of a slot are the same in two records.
template <class Head> bool sameSlot(const Slot &slot, const Head &a, const Head &b) {
  const std::size_t at = slot.first * sizeof(Word);
  return std::memcmp(reinterpret_cast<const unsigned char *>(&a) + at, reinterpret_cast<const unsigned char *>(&b) + at,
                     slot.words * sizeof(Word)) == 0;
}

} // namespace kova
