/// The words of records and of entries of arrays, by their names, made of what the format says.
#pragma once

#include "diff/pieces.h"

namespace kova::diff {

/// @return the name of a word among those of its member; null where they have numbers.
constexpr const char *partName(std::span<const WordRow> rows, std::size_t word) {
  for (const WordRow &row : rows)
    if (word >= row.first && word < row.first + row.words) {
      const std::size_t part = word - row.first;
      if (!row.inner.empty())
        return partName(row.inner, part % (row.words / row.count));
      return row.parts.empty() ? nullptr : row.parts[part];
    }
  return nullptr;
}

constexpr void appendPart(WordName &name, const char *part, std::size_t number) {
  if (part != nullptr) {
    append(name, name.length > 0 ? "." : "");
    append(name, part);
    return;
  }
  append(name, "[");
  if (number > 9)
    name.text[name.length++] = static_cast<char>('0' + number / 10);
  name.text[name.length++] = static_cast<char>('0' + number % 10);
  append(name, "]");
}

/// The words of a record.
template <const auto &TABLE>
inline constexpr auto FIELDS = [] {
  std::array<Field, TABLE.WORD_NUM> fields{};
  for (const Slot &slot : SLOTS<TABLE>)
    for (std::size_t part = 0; part < slot.words; ++part) {
      const WordInfo info = wordAt(TABLE, slot.first + part);
      Field &field = fields[slot.first + part];
      field.name = slot.key;
      if (slot.words > 1)
        appendPart(field.name, partName(TABLE, slot.first + part), part);
      field.role = info.role;
      field.to = info.to;
      field.real = (slot.real >> part & 1) != 0;
      field.hex = (slot.hex >> part & 1) != 0 && info.role != Role::link;
    }
  return fields;
}();

/// The words of an entry of an array.
template <class Item, class Named>
inline constexpr auto ENTRY_FIELDS = [] {
  if constexpr (!std::is_null_pointer_v<std::remove_cvref_t<decltype(WORDS<Item>)>>) {
    return FIELDS<WORDS<Item>>;
  } else {
    constexpr Slot SLOT = itemSlot<Item>(Named::TEXT.text);
    std::array<Field, SLOT.words> fields{};
    for (std::size_t part = 0; part < SLOT.words; ++part) {
      if (SLOT.words > 1)
        appendPart(fields[part].name, PARTS<Item>.empty() ? nullptr : PARTS<Item>[part], part);
      fields[part].linkable = !std::is_same_v<Item, NodeIndex> || part == 1;
      fields[part].real = (SLOT.real >> part & 1) != 0;
      fields[part].hex = (SLOT.hex >> part & 1) != 0;
    }
    return fields;
  }
}();

/// The one word of an entry of a block, and of an index.
inline constexpr std::array<Field, 1> BLOCK_FIELDS = {{{.hex = true}}};
inline constexpr std::array<Field, 1> INDEX_FIELDS = {{{.linkable = true}}};

} // namespace kova::diff
