/// The words of a record that follow from the rest of it: its tag, own index, sizes and counts.
///
/// Both directions ask here: a word that a document leaves out is what is derived, and a lean document leaves out the
/// words that are what is derived.
#pragma once

#include "format/all.h"
#include "records/slots.h"

namespace kova {

/// Goes over what follows the fixed words of a record, or of a list.
template <class Io, class Record> int goOver(Io &io, const Record &record) {
  if constexpr (requires { typename ListFormat<Record>::Head; })
    return ListFormat<Record>::content(io, record);
  else if constexpr (requires { content(io, record); })
    return content(io, record);
  else
    return 1;
}

// --- Sizes ----------------------------------------------------------------------------------------------------------

inline std::uint64_t bytesOf(const ExtBlk &blk) { return vanExtBlk(blk).size_bytes() + usrExtBlk(blk).size_bytes(); }

/// @return the bytes of data that the sizes of a collision give.
inline std::uint64_t dataBytes(const CollHead &coll) {
  const std::int64_t bytes =
      std::int64_t{static_cast<Index>(coll.coll_size)} - static_cast<Index>(coll.coll_header_size);
  return static_cast<std::uint64_t>(std::max<std::int64_t>(bytes, 0));
}

/// Adds up the bytes of a record as it is written: what is held, whatever its counts say.
template <class Record> struct Measure : PassingIo {
  const Record &record;
  std::uint64_t bytes;     ///< at first those of the fixed words
  std::uint64_t empty = 0; ///< of these, as many as its sizes say and nothing is held of

  template <class Text, class Item, class Holder, class... Rest>
  int array(Text, std::vector<Item> Holder::*member, const Rest &...) {
    bytes += (record.*member).size() * sizeof(Item);
    return 1;
  }
  template <class... Arguments> int pairs(const Arguments &...all) { return array(all...); }
  template <class Form, class Item, class Holder, class Count> int run(Form, std::vector<Item> Holder::*member, Count) {
    bytes += (record.*member).size() * Form::bytes;
    return 1;
  }
  template <class Form, class Item, class Holder, class Count>
  int records(Form, std::vector<Item> Holder::*member, Count) {
    for (const Item &item : record.*member)
      add(item, Form::bytes);
    return 1;
  }
  template <class Form, class Item, class Holder> int inner(Form, Item Holder::*member) {
    return add(record.*member, Form::bytes);
  }
  int blocks() {
    bytes += bytesOf(record.ext_blk);
    return 1;
  }
  template <class Form, class Ext> int blocks(Form, Ext) { return blocks(); }
  template <class Holder> int blocksAround(ExtBlk Holder::*member) {
    bytes += bytesOf(record.*member);
    return 1;
  }
  template <class Holder> int header(Word Holder::*size) {
    empty += record.*size > bytes ? record.*size - bytes : 0;
    bytes = record.*size;
    return 1;
  }
  template <class Holder> int refs(std::unique_ptr<Index[]> Holder::*) {
    const std::array<AnimRef, REF_KIND_NUM> all = kvRefs(record);
    for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind)
      bytes += (refForm(record.tri_anim_type, kind) == RefForm::keys ? sizeof(Word) : 0) + all[kind].key.size_bytes() +
               all[kind].group_index.size_bytes();
    return 1;
  }
  int data(CollData Coll::*) {
    const std::uint64_t said = dataBytes(record);
    empty += said - std::min<std::uint64_t>(said, sizeof(CollData));
    bytes += said;
    return 1;
  }
  template <class Holder> int texels(std::vector<unsigned char> Holder::*member, std::uint64_t) {
    bytes += (record.*member).size();
    return 1;
  }
  template <class Holder> int text(Words Holder::*member, std::uint64_t) { return array(0, member); }
  Word tiles() const { return 0; }

private:
  template <class Item> int add(const Item &item, std::size_t fixed) {
    Measure<Item> inside{{}, item, fixed};
    goOver(inside, item);
    bytes += inside.bytes;
    empty += inside.empty;
    return 1;
  }
};

/// @return the bytes of a record, or of a list, with `fixed` bytes of fixed words.
template <class Record> std::uint64_t bytesOf(const Record &record, std::size_t fixed) {
  Measure<Record> measure{{}, record, fixed};
  goOver(measure, record);
  return measure.bytes;
}

/// @return whether a list is larger by what its records leave empty than by what it holds: a document of a few words
/// would stand for a file of any size.
template <class List> bool isMostlyEmpty(const List &list) {
  constexpr std::uint64_t ALWAYS_FINE = 64 * 1024;
  Measure<List> measure{{}, list, sizeof(typename ListFormat<List>::Head)};
  goOver(measure, list);
  return measure.empty > ALWAYS_FINE && measure.empty > measure.bytes - measure.empty;
}

// --- Records without content ----------------------------------------------------------------------------------------

/// Whether a record has anything behind its fixed words but blocks.
struct HasMore : PassingIo {
  bool more = false;
  template <class... Arguments> int array(const Arguments &...) { return more = true; }
  template <class... Arguments> int pairs(const Arguments &...) { return more = true; }
};

/// @return whether records of a type may have nothing but their fixed words: they are no elements and have no arrays.
template <class Item> bool canHaveWordsAlone() {
  if constexpr (
      requires(Item item) { item.offset; } || requires(Item item) { item.group_ext_blk; })
    return false;
  HasMore io;
  if constexpr (requires(Item item) { item.ext_blk; })
    content(io, Item{});
  return !io.more;
}

/// @return whether records have nothing but their fixed words.
template <class Item> bool haveWordsAlone(const std::vector<Item> &items) {
  if constexpr (requires(Item item) { item.ext_blk; })
    if (std::any_of(items.begin(), items.end(), [](const Item &item) { return item.ext_blk.words != nullptr; }))
      return false;
  return canHaveWordsAlone<Item>();
}

// --- Counts ---------------------------------------------------------------------------------------------------------

/// Sets the counts of a record to what is held.
template <class Head, class Record> struct Counting : PassingIo {
  const Record &record;
  Head &head;
  Marks given = {};               ///< words that stay whatever they say
  const char *conflict = nullptr; ///< the name of an array that is not as long as another one with the same count
  Marks counted = {};             ///< the words that are set

  template <class Named, class Item, class Holder, class Count, class... Rest>
  int array(Named, std::vector<Item> Holder::*member, Count count, Rest...) {
    static constexpr auto NAME = Named::name();
    if (!set(count, (record.*member).size()))
      conflict = NAME.c_str();
    return 1;
  }
  template <class... Arguments> int pairs(const Arguments &...all) { return array(all...); }
  template <class... Arguments> int run(const Arguments &...all) { return array(all...); }
  template <class Form, class Item, class Holder, class Count>
  int records(Form form, std::vector<Item> Holder::*member, Count count) {
    if constexpr (requires(Item item) { item.group_ext_blk; })
      if (!(record.*member).empty())
        blocksOf((record.*member)[0].group_ext_blk);
    return array(form, member, count);
  }
  int blocks() { return blocksOf(record.ext_blk); }
  template <class Form, class Ext> int blocks(Form, Ext) { return blocks(); }
  template <class Holder> int refs(std::unique_ptr<Index[]> Holder::*) {
    const std::array<AnimRef, REF_KIND_NUM> all = kvRefs(record);
    head.tri_anim_frame_num = 0;
    for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind)
      if (refForm(record.tri_anim_type, kind) == RefForm::frames)
        head.tri_anim_frame_num = static_cast<Index>(all[kind].group_index.size()) - 1;
    return 1;
  }
  Word tiles() const { return 0; }

private:
  int blocksOf(const ExtBlk &blk) {
    head.van_ext_blk_size = static_cast<Word>(vanExtBlk(blk).size_bytes());
    head.usr_ext_blk_size = static_cast<Word>(usrExtBlk(blk).size_bytes());
    return 1;
  }
  template <class Holder> std::size_t placeOf(Word Holder::*word) const {
    return static_cast<std::size_t>(reinterpret_cast<const char *>(&(head.*word)) -
                                    reinterpret_cast<const char *>(&head)) /
           sizeof(Word);
  }
  template <class Holder> bool set(Word Holder::*count, std::size_t number) {
    const std::size_t at = placeOf(count);
    if (!counted[at])
      head.*count = static_cast<Word>(number);
    counted.set(at);
    return head.*count == number || given[at];
  }
  template <class Holder> bool set(const Half<Holder> &count, std::size_t number) {
    head.*count.number = static_cast<Word>(2 * number);
    return true;
  }
  /// The two counts of a sum are those of arrays before this one.
  template <class Holder> bool set(const Sum<Holder> &count, std::size_t number) {
    return numberOf(head, count) == number || given[placeOf(count.first)] || given[placeOf(count.second)];
  }
  bool set(std::uint64_t, std::size_t) { return true; } // other words say it, which are no counts
};

// --- All words ------------------------------------------------------------------------------------------------------

/// What is known of a record from outside.
struct Own {
  Word tag;                 ///< 0 where the format does not say it
  Word index;               ///< among its siblings
  std::size_t fixed;        ///< bytes of its fixed words, as far as they are stored
  std::uint64_t behind = 0; ///< bytes of a list behind its content
};

/// @return the tag of records inside of another one; 0 where the format does not say it. The elements of the list of
/// external names are those of the list of names.
template <class Form, class Around> constexpr Word tagOf(Word list_tag) {
  return std::is_same_v<Around, NameList> ? list_tag + ELEMENT_KIND : Form::tag;
}

/// @return the fixed words of a record with those set that follow, but for its size.
/// @param given words that need not fit the arrays
/// @param conflict set to the name of an array that does not fit another one; else as it was
template <const auto &TABLE, class Head, class Record>
Head derivedWords(const Record &record, const Own &own, const Marks &given, const char *&conflict) {
  Head head = record;
  for (const Slot &slot : SLOTS<TABLE>)
    if (slot.role == Role::count || slot.role == Role::van_size || slot.role == Role::usr_size)
      setWordIn(head, slot.first, 0);
  setRole<TABLE>(head, Role::tag, own.tag);
  setRole<TABLE>(head, Role::own_index, own.index);
  setRole<TABLE>(head, Role::header_size, static_cast<Word>(own.fixed));
  Counting<Head, Record> counting{{}, record, head, given};
  goOver(counting, record);
  if (counting.conflict != nullptr)
    conflict = counting.conflict;
  return head;
}

/// @return the size of a record, or of a list.
template <class Record> Word derivedSize(const Record &record, const Own &own) {
  return static_cast<Word>(bytesOf(record, own.fixed) + own.behind);
}
/// A collision takes up what its size says, but for its group's blocks. As many words of data as are held say it.
inline Word derivedSize(const Coll &coll, const Own &) {
  const std::uint64_t words = std::min<std::uint64_t>(dataBytes(coll) / sizeof(Word), coll.data.size());
  return static_cast<Word>(coll.coll_header_size + words * sizeof(Word));
}

/// @return whether a word follows from others, so that it may be left out.
constexpr bool follows(Role role) {
  return role != Role::plain && role != Role::link && role != Role::key && role != Role::data_size;
}

/// @return the fixed words of a record without content that follow, but for its own index.
template <class Form> typename Form::Head plainWords(Word tag) {
  typename Form::Head head{};
  setRole<Form::words>(head, Role::tag, tag);
  setRole<Form::words>(head, Role::size, static_cast<Word>(Form::bytes));
  return head;
}

/// @return the slots that are stored in so many bytes of fixed words.
template <const auto &TABLE> std::span<const Slot> storedSlots(std::size_t fixed) {
  std::size_t number = 0;
  while (number < SLOTS<TABLE>.size() && SLOTS<TABLE>[number].first * sizeof(Word) < fixed)
    ++number;
  return std::span(SLOTS<TABLE>).first(number);
}

/// @return the sizes of the elements that a table of sizes is about; none for other arrays.
template <class Record, class Member> std::optional<Words> derivedTable(const Record &, Member) { return std::nullopt; }

template <const auto &TABLE, class Item> Words sizesOf(const std::vector<Item> &items) {
  Words sizes;
  sizes.reserve(items.size());
  for (const Item &item : items)
    sizes.push_back(roleIn<TABLE>(item, Role::size));
  return sizes;
}
template <class Element> std::optional<Words> derivedTable(const List<Element> &list, Words List<Element>::*) {
  return sizesOf<std::remove_cvref_t<decltype(ListFormat<List<Element>>::elements)>::words>(list.element);
}
template <class First, class Second>
std::optional<Words> derivedTable(const TwoKindList<First, Second> &list, Words TwoKindList<First, Second>::*member) {
  using Format = ListFormat<TwoKindList<First, Second>>;
  return member == &TwoKindList<First, Second>::tri_group_size
             ? sizesOf<std::remove_cvref_t<decltype(Format::elements)>::words>(list.tri_group)
             : sizesOf<std::remove_cvref_t<decltype(Format::second_elements)>::words>(list.vtx_group);
}
inline std::optional<Words> derivedTable(const CollGroup &group, Words CollGroup::*) {
  return sizesOf<WORDS<CollHead>>(group.coll);
}

} // namespace kova
