/// Rows about the fields of records: what the tables of the deep checks are made of.
#pragma once

#include "kova/kova.h"
#include "survey/deep_targets.h"

#include <string_view>

namespace kova::survey::deep {

using FieldBytes = std::span<const std::byte>;

/// A field of a record: one word, a structure, or an array of these.
struct Field {
  std::string_view record; ///< tells the types of records from one another
  const char *name;
  bool is_array;
  FieldBytes (*bytes)(const void *record);
};

/// Stands for a type of record. The address of something would do as well, but that g++ compares no two of them at
/// compile time if it looks for undefined behaviour.
template <class Record> consteval std::string_view recordType() { return __PRETTY_FUNCTION__; }

template <class Record, auto MEMBER> FieldBytes fieldBytes(const void *record) {
  const auto &field = static_cast<const Record *>(record)->*MEMBER;
  if constexpr (requires { field.data(); })
    return std::as_bytes(std::span(field));
  else
    return std::as_bytes(std::span(&field, 1));
}

template <class Record, RefKind KIND> FieldBytes refGroupBytes(const void *record) {
  return std::as_bytes(kvRefs(*static_cast<const TriGroup *>(record))[KIND].group_index);
}

template <class Record, RefKind KIND> FieldBytes refKeyBytes(const void *record) {
  return std::as_bytes(kvRefs(*static_cast<const TriGroup *>(record))[KIND].key);
}

template <class Record, auto MEMBER> constexpr Field field(const char *name) {
  constexpr bool IS_ARRAY = requires(const Record &record) { (record.*MEMBER).data(); };
  return {recordType<Record>(), name, IS_ARRAY, &fieldBytes<Record, MEMBER>};
}

/// An index, or an array of them, or references of two of them.
struct LinkRow : Field {
  const char *id;
  Target target;
  std::size_t stride = 1, first = 0; ///< of each `stride` words, those from `first` on are indices
};

template <class Record, auto MEMBER> constexpr LinkRow link(const char *id, const char *name, Target target) {
  return {field<Record, MEMBER>(name), id, target};
}

/// A node reference or an array of them: of the two words, the second one is the index.
template <class Record, auto MEMBER>
constexpr LinkRow nodeLink(const char *id, const char *name, Target target = Target::any) {
  return {field<Record, MEMBER>(name), id, target, 2, 1};
}

template <RefKind KIND> constexpr LinkRow refLink(const char *id, const char *name, Target target) {
  return {{recordType<TriGroup>(), name, true, &refGroupBytes<TriGroup, KIND>}, id, target};
}

/// Words of each of an array's records: `count` of them, from word `first` of its `stride` words.
struct WordsRow : Field {
  std::size_t stride, first, count;
};

/// Floats. Without more numbers, all words of the field are.
template <class Record, auto MEMBER>
constexpr WordsRow floats(const char *name, std::size_t stride = 1, std::size_t first = 0, std::size_t count = 1) {
  return {field<Record, MEMBER>(name), stride, first, count};
}

/// Keys: a word of each of an array's records.
template <class Record, auto MEMBER>
constexpr WordsRow keys(const char *name, std::size_t stride = 1, std::size_t first = 0) {
  return {field<Record, MEMBER>(name), stride, first, 1};
}

template <RefKind KIND> constexpr WordsRow refKeys(const char *name) {
  return {{recordType<TriGroup>(), name, true, &refKeyBytes<TriGroup, KIND>}, 1, 0, 1};
}

/// @return the rows of a table that are about one type of record. Rows that do not stand together do not compile.
template <class Record, class Row, std::size_t N> consteval std::span<const Row> rowsOf(const Row (&table)[N]) {
  std::size_t first = 0;
  while (first < N && table[first].record != recordType<Record>())
    ++first;
  std::size_t end = first;
  while (end < N && table[end].record == recordType<Record>())
    ++end;
  for (std::size_t i = end; i < N; ++i)
    if (table[i].record == recordType<Record>())
      throw "the rows of a record do not stand together";
  return std::span<const Row>(table).subspan(first, end - first);
}

} // namespace kova::survey::deep
