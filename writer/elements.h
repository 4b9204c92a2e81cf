/// Writing lists: the steps that the list writers are made of, each the twin of a step of the list readers.
#pragma once

#include "kova/list.h"
#include "reader/cursor.h"
#include "writer/output.h"

#include <algorithm>
#include <type_traits>

namespace kova {

/// Writes the fixed words of a record.
template <WordRecord Head> void putFixed(Output &out, const std::type_identity_t<Head> &record) {
  putWords(out, &record, sizeof(Head));
}

/// Writes the items that a count takes in, as far as they are held.
template <WordRecord Item> void putRun(Output &out, const std::vector<Item> &run, std::uint64_t count) {
  putWords(out, run.data(), static_cast<std::size_t>(std::min<std::uint64_t>(count, run.size())) * sizeof(Item));
}

/// Writes one member of each record as a run of words, then the next member: pairs and the like are stored so.
template <class Record, class... Member>
void putMembers(Output &out, const std::vector<Record> &records, std::uint64_t count, Member Record::*...member) {
  const auto held = std::span(records).first(static_cast<std::size_t>(std::min<std::uint64_t>(count, records.size())));
  const auto putMember = [&](auto Record::*one) {
    for (const Record &record : held)
      putWords(out, &(record.*one), sizeof(Word));
  };
  (putMember(member), ...);
}

inline void putExternal(Output &out, const std::vector<External> &pairs, Word count) {
  putMembers(out, pairs, count, &External::file_name, &External::name);
}

inline void putNodeIndex(Output &out, const std::vector<NodeIndex> &pairs, Word count) {
  putMembers(out, pairs, count, &NodeIndex::kind, &NodeIndex::index);
}

/// Writes the two blocks of a record from their raw words.
inline void putExtBlk(Output &out, const ExtBlk &blk, Word van_size, Word usr_size) {
  if (!blk.words)
    return;
  putRun(out, blk.words->van, van_size / sizeof(Word));
  putRun(out, blk.words->usr, usr_size / sizeof(Word));
}

/// The same of a record in whose head the sizes of its blocks stand.
template <class Record> void putExtBlk(Output &out, const Record &record) {
  putExtBlk(out, record.ext_blk, record.van_ext_blk_size, record.usr_ext_blk_size);
}

/// Writes a list that begins with the common header: header, size table, elements, blocks.
template <class Element, class PutElement> void putList(Output &out, const List<Element> &list, PutElement putElement) {
  putFixed<ListHead>(out, list);
  putRun(out, list.num_byte, list.num);
  for (const Element &element : counted(list.num, list.element))
    putElement(out, element);
  putExtBlk(out, list);
}

} // namespace kova
