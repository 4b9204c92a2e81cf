/// From JSON to the model: the steps of `content` that fill the member whose key was read.
#pragma once

#include "records/derive.h"
#include "records/maker.h"
#include "json/pieces.h"
#include "json/rows.h"

namespace kova::json {

struct Parsing {
  Lexer &in;
  Word list_tag;
};

/// Tells the forms of a record apart: a number that depends on what `content` names.
template <class Record> struct FormOf : PassingIo {
  const Record &record;
  std::size_t form = 0;

  template <class Named> int mix() {
    static constexpr char PLACE = 0;
    return mix(reinterpret_cast<std::uintptr_t>(&PLACE));
  }
  int mix(std::size_t number) {
    form = form * 31 + number;
    return 1;
  }
  template <class Form, class... Rest> int run(Form, const Rest &...) { return mix<Form>(); }
  template <class Form, class Member> int inner(Form, Member) { return mix<Form>(); }
  template <class Named, class... Rest> int absent(Named, const Rest &...) { return mix<Named>(); }
  template <class Member> int refs(Member) { return mix(record.tri_anim_type); }
  template <class Member> int data(Member) { return mix(record.coll_type); }
  Word tiles() const { return 1; }
};
template <class Record> std::size_t formOf(const Record &record) {
  FormOf<Record> io{{}, record};
  goOver(io, record);
  return io.form;
}

template <const auto &TABLE, class Head, class Record>
bool readRecord(Parsing &from, Record &record, Own own, ListBytes *bytes = nullptr);

/// Fills the member behind the fixed words of a record that has a key.
template <class Record> struct MemberReader : PassingIo {
  Parsing &from;
  Record &record;
  std::string_view key; ///< good until something else is read
  Filled &filled;
  bool found = false;
  bool ok = true;
  std::size_t step = 0;

  template <class Named, class Item, class Holder, class Count, class... Rest>
  int array(Named, std::vector<Item> Holder::*member, Count, Rest...) {
    static constexpr auto NAME = Named::name();
    static constexpr Slot SLOT = itemSlot<Item>(Named::TEXT.text);
    if (!is(NAME.c_str()))
      return 1;
    std::vector<Item> &items = record.*member;
    if constexpr (std::is_same_v<Item, Word>)
      filled.tables[filled.tables[0] != nullptr ? 1 : 0] = &items;
    if constexpr (isPacked<Named, Item, Count>())
      return done(readPacked(from.in, items));
    else
      return done(readItems(from.in, SLOT, items));
  }
  template <class... Arguments> int pairs(const Arguments &...all) { return array(all...); }

  template <class Form, class Item, class Holder, class Count>
  int records(Form, std::vector<Item> Holder::*member, Count) {
    static constexpr auto NAME = Form::name();
    if (!is(NAME.c_str()))
      return 1;
    std::vector<Item> &items = record.*member;
    const Word tag = tagOf<Form, Record>(from.list_tag);
    if (canHaveWordsAlone<Item>() && peek(from.in) == '{')
      return done(readRows<Form>(from.in, items, tag));
    bool first = true;
    if (!take(from.in, '[', "an array"))
      return done(false);
    enter(from.in, nullptr);
    while (next(from.in, ']', first)) {
      from.in.path[from.in.depth - 1].position = items.size();
      const Own own = {tag, static_cast<Word>(items.size()), Form::bytes};
      if (!readRecord<Form::words, typename Form::Head>(from, items.emplace_back(), own))
        return done(false);
    }
    leave(from.in);
    return done(from.in.error.empty());
  }
  template <class... Arguments> int run(const Arguments &...all) { return records(all...); }

  template <class Form, class Item, class Holder> int inner(Form, Item Holder::*member) {
    static constexpr auto NAME = Form::name();
    if (!is(NAME.c_str()))
      return 1;
    return done(readRecord<Form::words, typename Form::Head>(from, record.*member, Own{Form::tag, 0, Form::bytes}));
  }

  int blocks() { return blocksOf(record.ext_blk); }
  template <class Holder> int blocksAround(ExtBlk Holder::*member) { return blocksOf(record.*member); }
  template <class Form, class Ext, class Holder> int blocks(Form, std::unique_ptr<Ext> Holder::*) {
    if (!is("ext"))
      return blocks();
    Ext ext{};
    if (!readRecord<Form::words, typename Form::Head>(from, ext, Own{0, 0, Form::bytes}))
      return done(false);
    filled.ext = encoded<typename Form::Head>(ext);
    return done(true);
  }

  template <class Holder> int refs(std::unique_ptr<Index[]> Holder::*) {
    static constexpr Slot INDEX = {{}, 0, 1};
    if (!filled.refs)
      filled.refs = std::make_unique<std::array<Filled::Ref, REF_KIND_NUM>>();
    for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind) {
      Filled::Ref &ref = (*filled.refs)[kind];
      if (is(REFS[kind].key_num)) {
        Word number;
        const bool read = readWord(from.in, number, false);
        ref.key_num = number;
        return done(read);
      }
      if (is(REFS[kind].key))
        return done(readItems(from.in, INDEX, ref.key));
      if (!is(REFS[kind].group_index))
        continue;
      if (peek(from.in) == '[')
        return done(readItems(from.in, INDEX, ref.group_index));
      ref.group_index.resize(1);
      return done(readSlot(from.in, INDEX, reinterpret_cast<unsigned char *>(ref.group_index.data())));
    }
    return 1;
  }

  int data(CollData Coll::*member) {
    if (!is("data"))
      return 1;
    if (peek(from.in) == '[')
      return done(readDataWords(record.*member));
    bool known = false;
    withCollData(record, [&]<class Data>(Data held) {
      known = true;
      held = {};
      ok = readRecord<WORDS<Data>, Data>(from, held, Own{0, 0, sizeof held});
      std::memcpy((record.*member).data(), &held, sizeof held);
      filled.data_bytes = sizeof held;
    });
    return done(known ? ok : fail(from.in, "expected an array of words: no such type of collision is known so far"));
  }

  template <class Holder> int texels(std::vector<unsigned char> Holder::*member, std::uint64_t) {
    return is("texel") ? done(readBase64(from.in, record.*member)) : 1;
  }
  template <class Holder> int text(Words Holder::*member, std::uint64_t) {
    return is("text") ? done(readName(from.in, record.*member)) : 1;
  }
  Word tiles() const { return 1; }

private:
  /// Whether a member is the one with the key, which then is entered.
  bool is(const char *name) {
    const std::size_t this_step = step++;
    if (found || key != name)
      return false;
    found = true;
    enter(from.in, name);
    ok = !filled.steps[this_step] || twice(from.in);
    filled.steps.set(this_step);
    return true;
  }
  /// Ends a member. @return 0: nothing else has the key
  int done(bool read) {
    ok = ok && read;
    if (ok)
      leave(from.in);
    return 0;
  }
  int blocksOf(ExtBlk &blk) {
    if (is("van"))
      return done(readBlock(from.in, blk, &ExtBlkWords::van));
    return is("usr") ? done(readBlock(from.in, blk, &ExtBlkWords::usr)) : 1;
  }
  bool readDataWords(CollData &data) {
    static constexpr Slot WORD = {{}, 0, 1};
    Words words;
    if (!readItems(from.in, WORD, words))
      return false;
    if (words.size() > data.size())
      return fail(from.in, "expected at most " + std::to_string(data.size()) + " words");
    std::copy(words.begin(), words.end(), data.begin());
    filled.data_bytes = words.size() * sizeof(Word);
    return true;
  }
};

/// Sets the tables of sizes that a document leaves out.
template <class Record> struct TableFiller : PassingIo {
  Record &record;
  const Filled &filled;

  template <class Named, class Item, class Holder, class... Rest>
  int array(Named, std::vector<Item> Holder::*member, const Rest &...) {
    if constexpr (std::is_same_v<Item, Word>)
      if (filled.tables[0] != &(record.*member) && filled.tables[1] != &(record.*member))
        if (std::optional<Words> sizes = derivedTable(std::as_const(record), member))
          record.*member = std::move(*sizes);
    return 1;
  }
  Word tiles() const { return 1; }
};

/// Puts the references of a triangle group together.
bool setRefs(Lexer &in, TriGroup &group, const Filled &filled);

/// Sets what the members of a record have left open.
template <const auto &TABLE, class Head, class Record>
bool finishRecord(Parsing &from, Record &record, const Own &own, Filled &filled) {
  const std::span<const Slot> all = storedSlots<TABLE>(own.fixed);
  if constexpr (requires { record.ext_blk; })
    if (!filled.ext.empty()) {
      if (!record.ext_blk.words)
        record.ext_blk.words = std::make_unique<ExtBlkWords>();
      Words &van = record.ext_blk.words->van;
      van.insert(van.begin(), filled.ext.begin(), filled.ext.end());
    }
  if constexpr (requires { record.ref; })
    if (!setRefs(from.in, record, filled))
      return false;
  TableFiller<Record> tables{{}, record, filled};
  goOver(tables, record);
  Marks given; // by word
  for (std::size_t i = 0; i < all.size(); ++i)
    given[all[i].first] = filled.given[i];
  const char *conflict = nullptr;
  const Head derived = derivedWords<TABLE, Head>(record, own, given, conflict);
  if (conflict != nullptr)
    return fail(from.in, std::string(conflict) + " is not as long as another array with the same count");
  Head &head = record;
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (filled.given[i])
      continue;
    if (!follows(all[i].role))
      return missing(from.in, all[i].key);
    setWordIn(head, all[i].first, wordIn(derived, all[i].first));
  }
  const auto size = std::find_if(all.begin(), all.end(), [](const Slot &slot) { return slot.role == Role::size; });
  if (size == all.end() || given[size->first])
    return true;
  if constexpr (std::is_same_v<Record, Coll>)
    record.coll_size = record.coll_header_size + static_cast<Word>(filled.data_bytes);
  else
    setRole<TABLE>(head, Role::size, derivedSize(record, own));
  return true;
}

/// Reads a member that is no fixed word.
template <class Record>
bool readMember(Parsing &from, Record &record, std::string_view key, Filled &filled, ListBytes *bytes) {
  MemberReader<Record> member{{}, from, record, key, filled};
  goOver(member, record);
  if (member.found) {
    if (!filled.has_content)
      filled.form = formOf(record);
    filled.has_content = true;
    return member.ok;
  }
  bool known = false;
  if (bytes != nullptr && !readListBytes(from.in, key, *bytes, known))
    return false;
  return known || unknownKey(from.in, key);
}

/// Reads a record, or a list, as an object.
template <const auto &TABLE, class Head, class Record>
bool readRecord(Parsing &from, Record &record, Own own, ListBytes *bytes) {
  const std::span<const Slot> all = storedSlots<TABLE>(own.fixed);
  Lexer &in = from.in;
  Filled filled;
  Head &head = record;
  std::size_t hint = 0;
  const auto member = [&](std::string_view key) {
    const Slot *const slot = slotNamed(all, key, hint);
    if (slot == nullptr)
      return readMember(from, record, key, filled, bytes);
    if (!readSlotOf(in, all, *slot, head, filled.given))
      return false;
    const bool fits = !filled.has_content || slot->real != 0 || formOf(record) == filled.form;
    return fits || fail(in, std::string(slot->key) + " chooses the form of the record and has to stand before it");
  };
  if (!readObject(in, member))
    return false;
  if (bytes != nullptr && bytes->raw.given)
    return filled.given.none() && filled.steps.none() ? true : fail(in, "a list has either raw bytes or data");
  own.behind = bytes != nullptr ? bytes->behind.bytes.size() : 0;
  return finishRecord<TABLE, Head>(from, record, own, filled);
}

} // namespace kova::json
