/// Reading the pieces of which the members of records are made: words, arrays, blocks, raw bytes.
#pragma once

#include "format/all.h"
#include "records/slots.h"
#include "json/lexer.h"

#include <optional>

namespace kova::json {

/// Bytes that stand in a document as they are.
struct RawBytes {
  std::vector<unsigned char> bytes = {};
  bool given = false;
};

/// What a list has besides its data.
struct ListBytes {
  RawBytes raw = {};    ///< the whole list: then it has no data
  RawBytes behind = {}; ///< what follows its content
};

/// What is known of a record while its members are read.
struct Filled {
  Marks given = {}; ///< its slots
  Marks steps = {}; ///< the members behind its fixed words
  Words ext = {};   ///< the words of its decoded maker block
  std::size_t data_bytes = 0;
  bool has_content = false;
  std::size_t form = 0; ///< as the first member behind the fixed words has found it
  std::array<const void *, 2> tables = {};
  struct Ref {
    std::optional<Word> key_num = {};
    Indices key = {};
    Indices group_index = {};
  };
  std::unique_ptr<std::array<Ref, REF_KIND_NUM>> refs = nullptr;
};

bool unknownKey(Lexer &in, std::string_view key);
bool twice(Lexer &in);
bool missing(Lexer &in, std::string_view key);

/// Reads a member of {"raw": "...", "offset": ..., "finding": ...}. @param known set where it is one
bool readRawMember(Lexer &in, std::string_view key, RawBytes &raw, bool &known);
/// Reads such an object.
bool readRaw(Lexer &in, RawBytes &raw);
/// Reads a member of a list that is neither a word nor data. @param known set where it is one
bool readListBytes(Lexer &in, std::string_view key, ListBytes &bytes, bool &known);

/// Reads the words of a slot to `words`.
inline bool readSlot(Lexer &in, const Slot &slot, unsigned char *words) {
  Word word;
  if (slot.words == 1) {
    if (!readWord(in, word, slot.real != 0))
      return false;
    std::memcpy(words, &word, sizeof word);
    return true;
  }
  bool first = true;
  if (!take(in, '[', "an array"))
    return false;
  for (std::size_t part = 0; part < slot.words; ++part) {
    if (!next(in, ']', first))
      return fail(in, "expected " + std::to_string(slot.words) + " words");
    if (!readWord(in, word, (slot.real >> part & 1) != 0))
      return false;
    std::memcpy(words + part * sizeof word, &word, sizeof word);
  }
  if (peek(in) != ']')
    return fail(in, "expected ] behind " + std::to_string(slot.words) + " words");
  ++in.at;
  return true;
}

/// Reads an array of items.
template <class Item> bool readItems(Lexer &in, const Slot &slot, std::vector<Item> &items) {
  items.clear();
  bool first = true;
  if (!take(in, '[', "an array"))
    return false;
  enter(in, nullptr);
  while (next(in, ']', first)) {
    in.path[in.depth - 1].position = items.size();
    Item item;
    if (!readSlot(in, slot, reinterpret_cast<unsigned char *>(&item)))
      return false;
    items.push_back(item);
  }
  leave(in);
  return in.error.empty();
}

bool readBlock(Lexer &in, ExtBlk &blk, Words ExtBlkWords::*member);
/// Reads base64 as words.
bool readPacked(Lexer &in, Words &words);
/// Reads the text of a name.
bool readName(Lexer &in, Words &words);

/// @return the slot of that name; null if there is none. @param hint the slot that is looked at first, then the one
/// behind what was found
inline const Slot *slotNamed(std::span<const Slot> slots, std::string_view key, std::size_t &hint) {
  for (std::size_t i = 0; i < slots.size(); ++i) {
    const std::size_t at = hint + i < slots.size() ? hint + i : hint + i - slots.size();
    if (std::string_view(slots[at].key) == key) {
      hint = at + 1 < slots.size() ? at + 1 : 0;
      return &slots[at];
    }
  }
  return nullptr;
}

/// Reads the value of a slot into the fixed words of a record.
template <class Head>
bool readSlotOf(Lexer &in, std::span<const Slot> slots, const Slot &slot, Head &head, Marks &given) {
  const auto at = static_cast<std::size_t>(&slot - slots.data());
  enter(in, slot.key.c_str());
  if (given[at])
    return twice(in);
  given.set(at);
  if (!readSlot(in, slot, reinterpret_cast<unsigned char *>(&head) + slot.first * sizeof(Word)))
    return false;
  leave(in);
  return true;
}

} // namespace kova::json
