/// The deep checks of a record: going over its words and its content.
#pragma once

#include "survey/deep_check.h"
#include "survey/deep_format.h"

#include <utility>

namespace kova::survey::deep {

// --- Words ----------------------------------------------------------------------------------------------------------

/// Words of a record, or of several of them, one behind the other.
struct WordBytes {
  std::span<const std::byte> bytes;
  std::size_t stride; ///< the words of one record
};

template <class Item> WordBytes wordsOf(std::span<const Item> items) {
  return {std::as_bytes(items), sizeof(Item) / sizeof(Word)};
}

/// Check words of each record: `num` of them from `first` on. All links are reported; of floats the first that is not
/// finite; of keys the first that is less than the one before it.
/// @param place of the first record
void checkLinks(Check &check, const Link &link, const WordBytes &words, std::size_t first, std::size_t num,
                const Place &place);
void checkFloats(Check &check, const LabelledWords &floats, const WordBytes &words, const Place &place);
void checkKeys(Check &check, const LabelledWords &keys, const WordBytes &words, const Place &place);

/// Bytes of a record, if all of them are in the file.
inline constexpr std::uint64_t WHOLE = UNKNOWN;

/// @return the words of a record that are in the file. The others were not read.
template <class Head> WordBytes heldWords(const Head &head, std::uint64_t held) {
  WordBytes words = wordsOf(std::span(&head, 1));
  words.bytes = words.bytes.first(static_cast<std::size_t>(std::min<std::uint64_t>(held, sizeof head)));
  return words;
}

// --- Records --------------------------------------------------------------------------------------------------------

/// What is looked at in a record, one after the other: the order of its findings.
enum class Pass : std::uint8_t { links, floats, keys, maker_block, inside };

template <class Head, class Record>
void checkRecord(Check &check, const Record &record, const Place &place, std::uint64_t held = WHOLE);

/// Checks what follows the fixed words of a record.
template <class Head, class Record> struct ContentCheck : PassingIo {
  Check &check;
  const Record &record;
  Place place;
  Place somewhere; ///< in the record: where its arrays begin is not known
  Pass pass = {};

  template <class Text, class Item, class Holder, class Count>
  int array(Text, std::vector<Item> Holder::*member, Count) {
    static constexpr LabelledWords ALL = {labelOr<Head>(Text::name(), Text::label()), 0, sizeof(Item) / sizeof(Word)};
    if (KINDS<Item>[0] == Kind::real && pass == Pass::floats)
      checkFloats(check, ALL, wordsOf<Item>(record.*member), somewhere);
    if (Text::are_keys && pass == Pass::keys)
      checkKeys(check, ALL, wordsOf<Item>(record.*member), somewhere);
    return 1;
  }

  /// Of nodes, the first word is no link but a kind.
  template <class Text, class Item, class Holder, class Count>
  int array(Text, std::vector<Item> Holder::*member, Count, To) {
    constexpr std::size_t FIRST = std::is_same_v<Item, NodeIndex> ? 1 : 0;
    if (pass == Pass::links)
      for (const Link &link : arrayLinks<Head>(Text::name()))
        checkLinks(check, link, wordsOf<Item>(record.*member), FIRST, sizeof(Item) / sizeof(Word) - FIRST, somewhere);
    return 1;
  }

  template <class Text, class Member, class Count> int pairs(Text text, Member member, Count count, To to) {
    return array(text, member, count, to);
  }
  template <class Text, class Holder, class Count> int pairs(Text, std::vector<VtxTriNvColor> Holder::*member, Count) {
    return records<VtxTriNvColor>(member);
  }

  template <class Form, class Item, class Holder, class Count> int run(Form, std::vector<Item> Holder::*member, Count) {
    if (pass == Pass::floats)
      for (const LabelledWords &floats : IN_RUN<Head, Form, isFloat>)
        checkFloats(check, floats, wordsOf<Item>(record.*member), somewhere);
    if (pass == Pass::keys)
      for (const LabelledWords &keys : IN_RUN<Head, Form, isKey>)
        checkKeys(check, keys, wordsOf<Item>(record.*member), somewhere);
    return HAS_LINK_WORDS<Item> ? records<Item>(member) : 1;
  }

  template <class Form, class Member, class Count> int records(Form, Member member, Count) {
    return records<typename Form::Head>(member);
  }

  /// The data area of a texture. Without a palette all images are texture images.
  template <class Form, class Item, class Holder> int inner(Form, Item Holder::*member) {
    if (pass != Pass::inside || lacksData(check, record))
      return 1;
    std::uint64_t &not_meant = check[record.ext && record.ext->use_color_palette != 0 ? To::teximg : To::image];
    const std::uint64_t images = std::exchange(not_meant, UNKNOWN);
    checkRecord<typename Form::Head>(check, record.*member, inside(record, place));
    not_meant = images;
    return 1;
  }

  int blocks() { return 1; }
  /// Words that a maker block lacks are no links.
  template <class Form, class Ext, class Holder> int blocks(Form, std::unique_ptr<Ext> Holder::*member) {
    if (const Ext *const ext = (record.*member).get(); ext != nullptr && pass == Pass::maker_block)
      checkRecord<typename Form::Head>(check, *ext, somewhere, vanExtBlk(record.ext_blk).size_bytes());
    return 1;
  }

  template <class Holder> int refs(std::unique_ptr<Index[]> Holder::*) {
    if (pass != Pass::links && pass != Pass::keys)
      return 1;
    const auto refs = kvRefs(record);
    for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind)
      if (pass == Pass::links) // they are the last of its links
        checkLinks(check, *(LINKS<Head>.end() - REF_KIND_NUM + kind), wordsOf(refs[kind].group_index), 0, 1, somewhere);
      else
        checkKeys(check, REF_KEYS[kind], wordsOf(refs[kind].key), somewhere);
    return 1;
  }

  /// A collision can be shorter than its kind; what follows in its words is the next record.
  int data(CollData Coll::*) {
    if (pass == Pass::inside)
      withCollData(record, [this](const auto &data) {
        checkRecord<std::remove_cvref_t<decltype(data)>>(check, data, somewhere,
                                                         Word{record.coll_size - record.coll_header_size});
      });
    return 1;
  }

  /// No count is asked for: arrays are looked at as far as they are held.
  Word tiles() const { return 0; }

  template <class Member> int text(Member, std::uint64_t) {
    if (pass == Pass::inside)
      checkName(check, record, place);
    return 1;
  }

private:
  template <class ItemHead, class Item, class Holder> int records(std::vector<Item> Holder::*member) {
    if (pass != Pass::inside)
      return 1;
    Place at = inside(record, place);
    for (const Item &item : record.*member) {
      checkRecord<ItemHead>(check, item, at);
      at = behind(item, at);
    }
    return 1;
  }
};

/// Checks the fixed words of a record, as far as they are held.
template <class Head>
void checkWords(Check &check, const Head &head, const Place &place, Pass pass, std::uint64_t held) {
  const WordBytes words = heldWords(head, held);
  if (pass == Pass::links)
    for (const Link &link : LINKS<Head>)
      checkLinks(check, link, words, link.first, link.words, place);
  if (pass == Pass::floats)
    for (const LabelledWords &floats : FLOATS<Head>)
      checkFloats(check, floats, words, place);
}

/// Checks the records among the fixed words of a record.
template <class Head> void checkNested(Check &check, const Head &head, const Place &place) {
  if constexpr (requires { head.vtx; })
    for (const auto &corner : head.vtx)
      checkRecord<std::remove_cvref_t<decltype(corner)>>(check, corner, place);
  else
    checkRecord<VtxTriNvColor>(check, head.group_index, place);
}

/// Checks a record and what is inside of it.
/// @param held the bytes of its fixed words that are in the file
template <class Head, class Record>
void checkRecord(Check &check, const Record &record, const Place &place, std::uint64_t held) {
  const Head &head = record;
  enter(check, record);
  ContentCheck<Head, Record> io{{}, check, record, place, {place.list, place.element}};
  for (const Pass pass : {Pass::links, Pass::floats, Pass::keys, Pass::maker_block, Pass::inside}) {
    io.pass = pass;
    checkWords(check, head, place, pass, held);
    if constexpr (HAS_NESTED<Head>)
      if (pass == Pass::inside)
        checkNested(check, head, io.somewhere);
    if constexpr (requires { content(io, head); })
      content(io, head);
  }
}

/// Checks the elements of a list.
template <class List> struct ListCheck : PassingIo {
  Check &check;
  const List &list;
  const char *name;

  template <class Form, class Item, class Holder, class Count>
  int records(Form, std::vector<Item> Holder::*member, Count) {
    Place place = {name, 0};
    for (const Item &item : list.*member) {
      place.offset = item.offset;
      checkRecord<typename Form::Head>(check, item, place);
      ++*place.element;
    }
    return 1;
  }
};

} // namespace kova::survey::deep
