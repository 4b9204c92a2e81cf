/// Reading records that stand as rows of numbers.
#pragma once

#include "records/derive.h"
#include "json/pieces.h"

#include <utility>

namespace kova::json {

/// What a table of rows says before its rows.
struct RowHead {
  std::vector<const Slot *> columns = {};
  Marks given = {};
  bool has_all = false;
  bool has_words = false;
  bool has_rows = false;
};

/// Reads the names of columns.
bool readColumns(Lexer &in, std::span<const Slot> slots, RowHead &rows);

/// @param numbered set if the rows say their own indices
/// @return whether the rows have all words that nothing tells
bool areAllThere(Lexer &in, std::span<const Slot> slots, const RowHead &rows, bool &numbered);

/// Reads one row. @param words the fixed words of its record
bool readRow(Lexer &in, std::span<const Slot *const> columns, unsigned char *words);

/// Reads what all rows have in common.
template <class Head> bool readAll(Lexer &in, std::span<const Slot> slots, Head &head, Marks &given) {
  std::size_t hint = 0;
  enter(in, "all");
  const bool ok = readObject(in, [&](std::string_view key) {
    const Slot *const slot = slotNamed(slots, key, hint);
    return slot == nullptr ? unknownKey(in, key) : readSlotOf(in, slots, *slot, head, given);
  });
  if (ok)
    leave(in);
  return ok;
}

template <class Form, class Item>
bool readRowItems(Lexer &in, std::vector<Item> &items, typename Form::Head plain, std::span<const Slot *const> columns,
                  bool number_them) {
  bool first = true;
  if (!take(in, '[', "an array of rows"))
    return false;
  enter(in, "rows");
  enter(in, nullptr);
  while (next(in, ']', first)) {
    in.path[in.depth - 1].position = items.size();
    if (number_them)
      setRole<Form::words>(plain, Role::own_index, static_cast<Word>(items.size()));
    typename Form::Head &head = items.emplace_back();
    head = plain;
    if (!readRow(in, columns, reinterpret_cast<unsigned char *>(&head)))
      return false;
  }
  leave(in);
  leave(in);
  return in.error.empty();
}

/// Reads records as {"all": {...}, "words": [...], "rows": [[...], ...]}.
template <class Form, class Item> bool readRows(Lexer &in, std::vector<Item> &items, Word tag) {
  const std::span<const Slot> slots = storedSlots<Form::words>(Form::bytes);
  typename Form::Head plain = plainWords<Form>(tag);
  RowHead rows;
  const bool ok = readObject(in, [&](std::string_view key) {
    bool numbered = false;
    if (rows.has_rows)
      return fail(in, "\"rows\" come last");
    rows.has_rows = key == "rows";
    if (bool *const had = key == "all" ? &rows.has_all : key == "words" ? &rows.has_words : nullptr)
      if (std::exchange(*had, true))
        return fail(in, '"' + std::string(key) + "\" is given twice");
    return key == "all"     ? readAll(in, slots, plain, rows.given)
           : key == "words" ? readColumns(in, slots, rows)
           : rows.has_rows
               ? areAllThere(in, slots, rows, numbered) && readRowItems<Form>(in, items, plain, rows.columns, !numbered)
               : unknownKey(in, key);
  });
  return ok && (rows.has_rows || missing(in, "rows"));
}

} // namespace kova::json
