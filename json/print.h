/// From the model to JSON: the steps of `content` that print what a record holds.
#pragma once

#include "common/text.h"
#include "reader/makerblock.h"
#include "records/derive.h"
#include "records/maker.h"
#include "json/text.h"

namespace kova::json {

struct Printing {
  Text &out;
  bool lean;      ///< words that follow from others are left out
  bool version_2; ///< maker blocks are decoded
  Word list_tag;
};

/// From so many records without arrays of their own on, they are printed as rows of numbers.
inline constexpr std::size_t FEWEST_ROWS = 9;

inline constexpr Slot BLOCK_WORDS = {{}, 0, 1, Role::plain, 0, 1};

inline void printBlock(Printing &to, const char *name, std::span<const Word> words) {
  if (words.empty())
    return;
  putKey(to.out, name);
  putItems(to.out, BLOCK_WORDS, words);
}

/// @return the text of a name, bytes that are no UTF-8 escaped, without the zeros that fill up its last word.
std::string nameText(std::span<const Word> words);

/// Prints the fixed words of a record.
/// @param derived null where all are printed
template <const auto &TABLE, class Head>
void printWords(Printing &to, const Head &head, std::size_t fixed, const Head *derived) {
  for (const Slot &slot : storedSlots<TABLE>(fixed)) {
    if (derived != nullptr && follows(slot.role) && sameSlot(slot, head, *derived))
      continue;
    putKey(to.out, slot.key);
    putSlot(to.out, slot, head);
  }
}

template <class Record> struct Printer;

/// Prints the members of a record, or of a list.
template <const auto &TABLE, class Head, class Record> void printMembers(Printing &to, Record &record, const Own &own) {
  const Head &head = record;
  if (to.lean) {
    const char *conflict = nullptr;
    Head derived = derivedWords<TABLE, Head>(record, own, {}, conflict);
    setRole<TABLE>(derived, Role::size, derivedSize(record, own));
    printWords<TABLE, Head>(to, head, own.fixed, &derived);
  } else {
    printWords<TABLE, Head>(to, head, own.fixed, nullptr);
  }
  Printer<Record> printer{{}, to, record};
  goOver(printer, record);
}

/// Prints a record as an object.
template <const auto &TABLE, class Head, class Record> void printRecord(Printing &to, Record &record, const Own &own) {
  open(to.out, '{');
  printMembers<TABLE, Head>(to, record, own);
  close(to.out, '}');
}

/// @return whether all counts of a record are those of its arrays.
template <const auto &TABLE, class Head, class Record> bool countsFit(const Record &record) {
  const char *conflict = nullptr;
  const Head &head = record;
  const Head derived = derivedWords<TABLE, Head>(record, Own{0, 0, sizeof(Head)}, {}, conflict);
  return conflict == nullptr && std::all_of(SLOTS<TABLE>.begin(), SLOTS<TABLE>.end(), [&](const Slot &slot) {
           return slot.role != Role::count || sameSlot(slot, head, derived);
         });
}

/// @return whether records can stand as rows: they are no elements and have nothing but fixed words.
template <class Item> bool areRows(const std::vector<Item> &items) {
  return items.size() >= FEWEST_ROWS && haveWordsAlone(items);
}

/// The columns of records that stand as rows.
struct Columns {
  Marks shown;    ///< the slots that differ from row to row
  Marks constant; ///< the slots that are equal in all of them
};

template <class Form, class Item> Columns columnsOf(const Printing &to, const std::vector<Item> &items) {
  const std::span<const Slot> all = storedSlots<Form::words>(Form::bytes);
  typename Form::Head plain = plainWords<Form>(Form::tag);
  Marks derived, constant, stored;
  for (std::size_t i = 0; i < all.size(); ++i) {
    stored.set(i);
    derived[i] = to.lean && follows(all[i].role);
  }
  constant = stored;
  Word index = 0;
  const typename Form::Head &first = items[0];
  for (const typename Form::Head &head : items) {
    setRole<Form::words>(plain, Role::own_index, index++);
    for (std::size_t i = 0; i < all.size(); ++i) {
      derived[i] = derived[i] && sameSlot(all[i], head, plain);
      constant[i] = constant[i] && sameSlot(all[i], head, first);
    }
  }
  return {stored & ~derived & ~constant, constant & ~derived};
}

/// Prints words of a record as [...].
template <class Head> void printRow(Text &out, const Head &head, const std::vector<const Slot *> &shown) {
  char *const begin = room(out, sizeof head / sizeof(Word) * (WORD_CHARACTERS + 3) + 2);
  char *at = begin;
  *at++ = '[';
  for (const Slot *const slot : shown) {
    if (slot != shown[0])
      *at++ = ',';
    at = writeSlot(at, *slot, reinterpret_cast<const unsigned char *>(&head) + slot->first * sizeof(Word));
  }
  *at++ = ']';
  out.used += static_cast<std::size_t>(at - begin);
}

/// Prints records as {"all": {...}, "words": [...], "rows": [[...], ...]}.
template <class Form, class Item> void printRows(Printing &to, const std::vector<Item> &items) {
  constexpr auto &ALL = SLOTS<Form::words>;
  const Columns columns = columnsOf<Form>(to, items);
  const typename Form::Head &first = items[0];
  open(to.out, '{');
  putKey(to.out, "all");
  open(to.out, '{');
  for (std::size_t i = 0; i < ALL.size(); ++i)
    if (columns.constant[i]) {
      putKey(to.out, ALL[i].key);
      putSlot(to.out, ALL[i], first);
    }
  close(to.out, '}');
  putKey(to.out, "words");
  open(to.out, '[', true);
  std::vector<const Slot *> shown;
  for (std::size_t i = 0; i < ALL.size(); ++i)
    if (columns.shown[i]) {
      nextItem(to.out);
      putString(to.out, ALL[i].key);
      shown.push_back(&ALL[i]);
    }
  close(to.out, ']');
  putKey(to.out, "rows");
  open(to.out, '[');
  for (const typename Form::Head &head : items) {
    nextItem(to.out);
    printRow(to.out, head, shown);
  }
  close(to.out, ']');
  close(to.out, '}');
}

/// Prints what follows the fixed words of a record.
template <class Record> struct Printer : PassingIo {
  Printing &to;
  Record &record;

  template <class Named, class Item, class Holder, class Count, class... Rest>
  int array(Named, std::vector<Item> Holder::*member, Count, Rest...) {
    static constexpr auto NAME = Named::name();
    static constexpr Slot SLOT = itemSlot<Item>(Named::TEXT.text);
    const std::vector<Item> &items = record.*member;
    bool left_out = items.empty();
    if constexpr (std::is_same_v<Item, Word>)
      if (const std::optional<Words> sizes = derivedTable(record, member))
        left_out = to.lean || items.empty() ? items == *sizes : false;
    if (left_out)
      return 1;
    putKey(to.out, NAME);
    if constexpr (isPacked<Named, Item, Count>())
      putBase64(to.out, std::span<const Word>(items));
    else
      putItems(to.out, SLOT, std::span<const Item>(items));
    return 1;
  }
  template <class... Arguments> int pairs(const Arguments &...all) { return array(all...); }

  template <class Form, class Item, class Holder, class Count>
  int records(Form, std::vector<Item> Holder::*member, Count) {
    static constexpr auto NAME = Form::name();
    std::vector<Item> &items = record.*member;
    if (items.empty())
      return 1;
    putKey(to.out, NAME);
    if (areRows(items)) {
      printRows<Form>(to, items);
      return 1;
    }
    open(to.out, '[');
    Word index = 0;
    for (Item &item : items) {
      nextItem(to.out);
      printOne<Form>(item, index++);
    }
    close(to.out, ']');
    return 1;
  }
  template <class... Arguments> int run(const Arguments &...all) { return records(all...); }

  template <class Form, class Item, class Holder> int inner(Form, Item Holder::*member) {
    static constexpr auto NAME = Form::name();
    putKey(to.out, NAME);
    printOne<Form>(record.*member, 0);
    return 1;
  }

  int blocks() { return printBlocks(record.ext_blk, 0); }
  template <class Holder> int blocksAround(ExtBlk Holder::*member) { return printBlocks(record.*member, 0); }

  /// A block that is shorter than its counts call for is printed as it is.
  template <class Form, class Ext, class Holder> int blocks(Form, std::unique_ptr<Ext> Holder::*member) {
    const std::span<const Word> van = vanExtBlk(record.ext_blk);
    Fault fault = Fault::none;
    if (!to.version_2 || van.empty() || !setupBlock<typename Form::Head>(record, fault))
      return blocks();
    const Words words = encoded<typename Form::Head>(*(record.*member));
    const bool is_whole = words.size() <= van.size() && std::equal(words.begin(), words.end(), van.begin()) &&
                          countsFit<Form::words, typename Form::Head>(*(record.*member));
    if (is_whole) {
      putKey(to.out, "ext");
      printRecord<Form::words, typename Form::Head>(to, *(record.*member), Own{0, 0, sizeof(typename Form::Head)});
    }
    (record.*member).reset();
    return printBlocks(record.ext_blk, is_whole ? words.size() : 0);
  }

  template <class Holder> int refs(std::unique_ptr<Index[]> Holder::*) {
    const std::array<AnimRef, REF_KIND_NUM> all = kvRefs(record);
    static constexpr Slot INDEX = {{}, 0, 1};
    for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind) {
      const RefForm form = refForm(record.tri_anim_type, kind);
      if (form == RefForm::keys) {
        if (!to.lean || all[kind].key.size() != all[kind].key_num) {
          putKey(to.out, REFS[kind].key_num);
          putSlot(to.out, INDEX, all[kind].key_num);
        }
        putKey(to.out, REFS[kind].key);
        putItems(to.out, INDEX, all[kind].key);
      }
      putKey(to.out, REFS[kind].group_index);
      if (form == RefForm::single)
        putSlot(to.out, INDEX, all[kind].group_index[0]);
      else
        putItems(to.out, INDEX, all[kind].group_index);
    }
    return 1;
  }

  /// Of a kind that is known and as long as it should be: its words by their names.
  int data(CollData Coll::*member) {
    const std::uint64_t bytes = dataBytes(record);
    bool named = false;
    withCollData(record, [&]<class Data>(Data held) {
      if (bytes != sizeof held)
        return;
      named = true;
      putKey(to.out, "data");
      open(to.out, '{');
      Data derived = held;
      setRole<WORDS<Data>>(derived, Role::size, static_cast<Word>(sizeof held));
      setRole<WORDS<Data>>(derived, Role::tag, 0);
      setRole<WORDS<Data>>(derived, Role::own_index, 0);
      printWords<WORDS<Data>, Data>(to, held, sizeof held, to.lean ? &derived : nullptr);
      close(to.out, '}');
    });
    if (!named)
      printBlock(to, "data", std::span<const Word>(record.*member).first(std::min<std::size_t>(bytes / 4, 10)));
    return 1;
  }

  template <class Holder> int texels(std::vector<unsigned char> Holder::*member, std::uint64_t) {
    if ((record.*member).empty())
      return 1;
    putKey(to.out, "texel");
    putBase64(to.out, std::span<const unsigned char>(record.*member));
    return 1;
  }

  template <class Holder> int text(Words Holder::*member, std::uint64_t) {
    putKey(to.out, "text");
    putString(to.out, nameText(record.*member));
    return 1;
  }

  Word tiles() const { return 1; }

private:
  template <class Form, class Item> void printOne(Item &item, Word index) {
    printRecord<Form::words, typename Form::Head>(to, item, Own{tagOf<Form, Record>(to.list_tag), index, Form::bytes});
  }

  int printBlocks(const ExtBlk &blk, std::size_t van_from) {
    printBlock(to, "van", vanExtBlk(blk).subspan(van_from));
    printBlock(to, "usr", usrExtBlk(blk));
    return 1;
  }
};

} // namespace kova::json
