#include "json/parse.h"

#include "common/text.h"
#include "reader/elements.h"

#include <numeric>

namespace kova::json {

namespace {

Word fileOrder(const unsigned char *bytes) {
  return std::accumulate(bytes, bytes + sizeof(Word), Word{0},
                         [](Word word, unsigned char byte) { return word << 8 | byte; });
}

void setBytes(Words &words, std::span<const unsigned char> bytes) {
  words.resize(bytes.size() / sizeof(Word));
  for (std::size_t i = 0; i < words.size(); ++i)
    words[i] = fileOrder(bytes.data() + i * sizeof(Word));
}

/// Reads a value that is only for people: a number, a string or null.
bool skipPlain(Lexer &in) {
  if (peek(in) == '"')
    return readString(in);
  if (peek(in) == 'n') {
    for (const char character : {'n', 'u', 'l', 'l'})
      if (!take(in, character, "null"))
        return false;
    return true;
  }
  Word any;
  return readWord(in, any, true);
}

} // namespace

bool unknownKey(Lexer &in, std::string_view key) {
  return fail(in, "there is no \"" + printable(key.substr(0, 100)) + "\" here");
}

bool twice(Lexer &in) { return fail(in, "given twice"); }

bool missing(Lexer &in, std::string_view key) { return fail(in, '"' + std::string(key) + "\" is missing"); }

bool readRawMember(Lexer &in, std::string_view key, RawBytes &raw, bool &known) {
  known = key == "raw" || key == "offset" || key == "finding";
  if (!known)
    return true;
  if (key != "raw")
    return skipPlain(in);
  enter(in, "raw");
  if (raw.given)
    return twice(in);
  raw.given = true;
  if (!readBase64(in, raw.bytes))
    return false;
  leave(in);
  return true;
}

bool readRaw(Lexer &in, RawBytes &raw) {
  const auto member = [&](std::string_view key) {
    bool known = false;
    return readRawMember(in, key, raw, known) && (known || unknownKey(in, key));
  };
  return readObject(in, member) && (raw.given || missing(in, "raw"));
}

bool readListBytes(Lexer &in, std::string_view key, ListBytes &bytes, bool &known) {
  if (key != "behind")
    return readRawMember(in, key, bytes.raw, known);
  known = true;
  enter(in, "behind");
  if (bytes.behind.given)
    return twice(in);
  if (!readRaw(in, bytes.behind))
    return false;
  leave(in);
  return true;
}

bool readBlock(Lexer &in, ExtBlk &blk, Words ExtBlkWords::*member) {
  static constexpr Slot WORD = {{}, 0, 1};
  if (!blk.words)
    blk.words = std::make_unique<ExtBlkWords>();
  return readItems(in, WORD, (*blk.words).*member);
}

bool readPacked(Lexer &in, Words &words) {
  std::vector<unsigned char> bytes;
  if (!readBase64(in, bytes))
    return false;
  if (bytes.size() % sizeof(Word) != 0)
    return fail(in, "expected whole words: a multiple of 4 bytes");
  setBytes(words, bytes);
  return true;
}

bool readName(Lexer &in, Words &words) {
  if (!readString(in))
    return false;
  const std::optional<std::string> bytes = unescaped(in.text);
  if (!bytes)
    return fail(in, "expected \\x and two hexadecimal digits behind a backslash; a backslash itself is \\x5c");
  std::string filled = *bytes;
  filled.resize((filled.size() + sizeof(Word) - 1) / sizeof(Word) * sizeof(Word));
  setBytes(words, {reinterpret_cast<const unsigned char *>(filled.data()), filled.size()});
  return true;
}

bool setRefs(Lexer &in, TriGroup &group, const Filled &filled) {
  constexpr std::size_t FRAME_NUM = wordOf<TriGroupHead>(&TriGroupHead::tri_anim_frame_num);
  static const std::array<Filled::Ref, REF_KIND_NUM> NONE;
  Indices words;
  bool has_frames = filled.given[FRAME_NUM];
  for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind) {
    const Filled::Ref &ref = (filled.refs ? *filled.refs : NONE)[kind];
    const RefForm form = refForm(group.tri_anim_type, kind);
    const std::size_t number = ref.group_index.size();
    const bool has_keys = !ref.key.empty() || ref.key_num;
    if (form == RefForm::single && number != 1)
      return missing(in, REFS[kind].group_index);
    if (form == RefForm::frames && !has_frames)
      group.tri_anim_frame_num = static_cast<Index>(number) - 1;
    has_frames = has_frames || form == RefForm::frames;
    if (form == RefForm::frames && framesOf(group) != number)
      return fail(in,
                  std::string(REFS[kind].group_index) + " is not as long as tri_anim_frame_num or another array says");
    if (form == RefForm::keys ? ref.key.size() != number || ref.key_num.value_or(number) != number : has_keys)
      return fail(in, std::string(REFS[kind].key) + " does not fit " + REFS[kind].group_index + " or tri_anim_type");
    if (form == RefForm::keys)
      words.push_back(static_cast<Index>(number));
    words.insert(words.end(), ref.key.begin(), ref.key.end());
    words.insert(words.end(), ref.group_index.begin(), ref.group_index.end());
  }
  Cursor cursor{reinterpret_cast<const unsigned char *>(words.data()), words.size() * sizeof(Word)};
  return readRefs(cursor, group) != 0;
}

bool readColumns(Lexer &in, std::span<const Slot> slots, RowHead &rows) {
  std::size_t hint = 0;
  bool first = true;
  if (!take(in, '[', "an array of keys"))
    return false;
  enter(in, "words");
  while (next(in, ']', first)) {
    if (!readString(in))
      return false;
    const Slot *const slot = slotNamed(slots, in.text, hint);
    if (slot == nullptr)
      return unknownKey(in, in.text);
    const auto at = static_cast<std::size_t>(slot - slots.data());
    if (rows.given[at])
      return twice(in);
    rows.given.set(at);
    rows.columns.push_back(slot);
  }
  leave(in);
  return in.error.empty();
}

bool areAllThere(Lexer &in, std::span<const Slot> slots, const RowHead &rows, bool &numbered) {
  for (std::size_t i = 0; i < slots.size(); ++i) {
    numbered = numbered || (rows.given[i] && slots[i].role == Role::own_index);
    if (!rows.given[i] && !follows(slots[i].role))
      return missing(in, slots[i].key);
  }
  return true;
}

bool readRow(Lexer &in, std::span<const Slot *const> columns, unsigned char *words) {
  bool first = true;
  if (!take(in, '[', "a row"))
    return false;
  for (const Slot *const slot : columns) {
    enter(in, slot->key.c_str());
    if (!next(in, ']', first))
      return fail(in, "expected " + std::to_string(columns.size()) + " columns");
    if (!readSlot(in, *slot, words + slot->first * sizeof(Word)))
      return false;
    leave(in);
  }
  return take(in, ']', "] at the end of the row");
}

} // namespace kova::json
