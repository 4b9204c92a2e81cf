/// The Io that goes over the bytes of a record for a `Walk`, without a model: it fills the fixed words from the file,
/// and passes what `content` names. Layouts of records are made here, too, from the tables of words.
#pragma once

#include "mend/audited.h"
#include "mend/walk.h"

namespace kova::mend {

// --- Layouts --------------------------------------------------------------------------------------------------------

/// The links among the fixed words of a record.
template <const auto &TABLE>
inline constexpr auto LINKS = [] {
  constexpr auto IS_LINK = [](const WordInfo &word) { return word.role == Role::link; };
  std::array<Link, std::count_if(WORD_INFOS<TABLE>.begin(), WORD_INFOS<TABLE>.end(), IS_LINK)> links{};
  std::size_t link = 0;
  for (std::size_t word = 0; word < WORD_INFOS<TABLE>.size(); ++word)
    if (IS_LINK(WORD_INFOS<TABLE>[word]))
      links[link++] = {static_cast<std::uint16_t>(word * sizeof(Word)), WORD_INFOS<TABLE>[word].to};
  return links;
}();

/// The name of the first word with a role; empty where there is none.
template <const auto &TABLE, Role ROLE>
inline constexpr const char *NAME_OF = PLACE_OF<TABLE, ROLE> != NO_WORD
                                           ? WORD_INFOS<TABLE>[PLACE_OF<TABLE, ROLE> / sizeof(Word)].name.c_str()
                                           : "";

template <class Form, class Around> class RecordIo;

/// The layout of the records of a form.
/// @tparam Around the fixed words of the record that they are a part of; void: none, they are elements
/// @tparam HAS_CONTENT whether something follows their fixed words
template <class Form, class Around = void, bool HAS_CONTENT = true>
inline constexpr RecordLayout RECORD_LAYOUT = [] {
  using Head = typename Form::Head;
  static_assert(std::is_void_v<Around> ||
                (PLACE_OF<Form::words, Role::tag> != NO_WORD && PLACE_OF<Form::words, Role::own_index> != NO_WORD));
  constexpr bool IS_AUDITED = std::is_void_v<Around> && Form::tag != UNAUDITED_TAG;
  RecordLayout kind;
  kind.tag = Form::tag;
  kind.fixed = Form::bytes;
  kind.index_at = PLACE_OF<Form::words, Role::own_index>;
  kind.header_size_at = PLACE_OF<Form::words, Role::header_size>;
  kind.data_size_at = PLACE_OF<Form::words, Role::data_size>;
  if (SIZE_IS_OF_ALL<Head>)
    kind.size_at = PLACE_OF<Form::words, Role::size>;
  if (BLOCKS_ARE_OWN<Head>)
    kind.blocks_at = PLACE_OF<Form::words, Role::van_size>;
  kind.tag_name = NAME_OF<Form::words, Role::tag>;
  kind.header_size_name = NAME_OF<Form::words, Role::header_size>;
  kind.data_size_name = NAME_OF<Form::words, Role::data_size>;
  kind.index_name = NAME_OF<Form::words, Role::own_index>;
  kind.size_name = NAME_OF<Form::words, Role::size>;
  kind.index_checked = IS_AUDITED && kind.index_at != NO_WORD;
  kind.size_checked = std::is_void_v<Around> ? IS_AUDITED : SIZE_IS_AUDITED<Head>;
  kind.size_in_bytes = Form::tag == UNAUDITED_TAG;
  if constexpr (HAS_CONTENT)
    kind.content = RecordIo<Form, Around>::goOver;
  kind.links = LINKS<Form::words>;
  return kind;
}();

/// Whether items are records with words of their own number and size, not entries of a table.
template <class Form> inline constexpr bool IS_RECORD = PLACE_OF<Form::words, Role::own_index> != NO_WORD;

/// @return at which byte of the fixed words a member stands.
template <class Head, class Member> std::uint64_t placeIn(const Head &head, const Member &member) {
  return static_cast<std::uint64_t>(reinterpret_cast<const unsigned char *>(&member) -
                                    reinterpret_cast<const unsigned char *>(&head));
}

/// Where the last count among the fixed words of a record ends.
template <const auto &TABLE>
inline constexpr std::uint64_t COUNTS_END = [] {
  std::uint64_t end = 0;
  for (std::size_t word = 0; word < TABLE.WORD_NUM; ++word)
    if (wordAt(TABLE, word).role == Role::count)
      end = (word + 1) * sizeof(Word);
  return end;
}();

// --- Length words ---------------------------------------------------------------------------------------------------

/// The words among the fixed ones of a record on which its length depends, each with the bytes by which the record
/// grows with it, in the order in which `content` uses them.
template <class Form> struct LengthWords : PassingIo {
  using Head = typename Form::Head;

  struct Counted {
    std::uint64_t place;
    std::int32_t unit;
    const RecordLayout *records;
  };

  const Head &head;
  std::array<Counted, Form::words.WORD_NUM> words = {};
  std::size_t found = 0;

  void add(std::uint64_t place, std::size_t unit, const RecordLayout *records = nullptr) {
    std::size_t i = 0;
    while (i < found && words[i].place != place)
      ++i;
    if (i == found)
      words[found++].place = place;
    words[i].unit += static_cast<std::int32_t>(unit);
    if (records != nullptr)
      words[i].records = records;
  }
  void addCount(Word Head::*count, std::size_t unit, const RecordLayout *records = nullptr) {
    add(placeIn(head, head.*count), unit, records);
  }
  void addCount(const Sum<Head> &count, std::size_t unit) {
    add(placeIn(head, head.*count.first), unit);
    add(placeIn(head, head.*count.second), unit);
  }
  void addCount(const Half<Head> &count, std::size_t unit) { add(placeIn(head, head.*count.number), unit / 2); }
  void addCount(std::uint64_t, std::size_t) {}

  template <class Text, class Item, class Holder, class Count>
  int array(Text, std::vector<Item> Holder::*, Count count, To = To::nothing) {
    addCount(count, sizeof(Item));
    return 1;
  }
  template <class... Arguments> int pairs(const Arguments &...all) { return array(all...); }
  template <class Items, class Array, class Count> int run(Items, Array, Count count) {
    if constexpr (IS_RECORD<Items>)
      addCount(count, Items::bytes, &RECORD_LAYOUT<Items, Head, false>);
    else
      addCount(count, Items::bytes);
    return 1;
  }
  template <class Items, class Array, class Count> int records(Items, Array, Count count) {
    addCount(count, Items::bytes, &RECORD_LAYOUT<Items, Head>);
    return 1;
  }
  int header(Word Head::*member) {
    add(placeIn(head, head.*member), HEADER_SIZE_IS_FREE<Head> ? 1 : -std::size_t{1});
    return 1;
  }
  template <class Text, class Array, class Count> int absent(Text, Array, Count count) {
    if constexpr (ABSENT_IS_AUDITED<Head>)
      addCount(count, 0);
    return 1;
  }
  template <class Array> int refs(Array) {
    for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind)
      if (refForm(head.tri_anim_type, kind) == RefForm::frames)
        add(placeIn(head, head.tri_anim_frame_num), sizeof(Word));
    return 1;
  }
  Word tiles() const { return 0; }
};

// --- Going over a record --------------------------------------------------------------------------------------------

/// @return where a word of an item of several words leads to, if `to` says where the items lead to.
template <class Item, std::size_t PART> constexpr To targetOf(To to) {
  if constexpr (!std::is_null_pointer_v<std::remove_cvref_t<decltype(WORDS<Item>)>>)
    return WORD_INFOS<WORDS<Item>>[PART].to;
  else
    return KINDS<Item>[PART] == kova::Kind::index ? to : To::nothing;
}

template <class Text> inline constexpr WordName ARRAY_NAME = Text::name();

/// @tparam Form of the record, or of what a maker block or another part of a record begins with
/// @tparam Around the fixed words of the record around
template <class Form, class Around> class RecordIo {
public:
  using Head = typename Form::Head;

  RecordIo(Walk &walks, const Head &fixed_words, std::uint64_t begins_at, std::uint64_t around_it, Word tiles_around)
      : walk(walks), head(fixed_words), begin(begins_at), around(around_it), tile_num(tiles_around) {}

  /// Goes over what follows the fixed words of a record.
  static void goOver(Walk &walk, const RecordAt &record) {
    const Head head = walk.file.head<Head>(record.begin, walk.limit);
    RecordIo(walk, head, record.begin, record.around, 1).go();
  }

  int go() {
    if (walk.events != nullptr && walk.events->wants_length_words)
      tellLengthWords();
    return content(*this, head);
  }

  template <class Text, class Item, class Holder, class Count>
  int array(Text, std::vector<Item> Holder::*member, Count count, To to = To::nothing) {
    walk.table(numberOf(head, count), {{sizeof(Item), to, isAudited(member), ARRAY_NAME<Text>.c_str()}},
               placeOfCount(count));
    return 1;
  }
  template <class Text, class Item, class Holder, class Count>
  int pairs(Text, std::vector<Item> Holder::*member, Count count, To to = To::nothing) {
    return columns<Item>(numberOf(head, count), to, isAudited(member),
                         std::make_index_sequence<sizeof(Item) / sizeof(Word)>());
  }
  template <class Items, class Array, class Count> int run(Items, Array, Count count) {
    if constexpr (IS_RECORD<Items>)
      walk.records(static_cast<Word>(numberOf(head, count)), RECORD_LAYOUT<Items, Head, false>, begin);
    else
      walk.table(numberOf(head, count), {{Items::bytes}});
    return 1;
  }
  template <class Items, class Array, class Count> int records(Items, Array, Count count) {
    walk.records(static_cast<Word>(numberOf(head, count)), RECORD_LAYOUT<Items, Head>, begin);
    return 1;
  }

  /// A part of the record that has no number and size of its own.
  template <class Items, class Array> int inner(Items, Array) {
    const std::uint64_t part = walk.position;
    const auto words = walk.file.head<typename Items::Head>(part, walk.limit);
    tellLinks<Items::words>();
    walk.position += Items::bytes;
    if constexpr (std::is_same_v<typename Items::Head, TexTilesHead>)
      tile_num = words.tex_tile_img_num;
    RecordIo<Items, Head>(walk, words, part, begin, 0).go();
    // A count that is not there; other words need not be.
    walk.broken |= part + COUNTS_END<Items::words> > walk.limit;
    return 1;
  }

  int blocks() {
    tellOwnBlocks();
    walk.passBlocks(head.van_ext_blk_size, head.usr_ext_blk_size);
    return 1;
  }
  template <class Items, class Array> int blocks(Items, Array) {
    tellOwnBlocks();
    if (walk.version_2)
      lookIntoMakerBlock<Items>(head.van_ext_blk_size);
    walk.passBlocks(head.van_ext_blk_size, head.usr_ext_blk_size);
    return 1;
  }
  template <class Array> int blocksAround(Array) {
    const std::uint64_t at = around + PLACE_OF<WORDS<Around>, Role::van_size>;
    tellBlocks(at, walk.file[at], walk.file[at + sizeof(Word)]);
    walk.passBlocks(walk.file[at], walk.file[at + sizeof(Word)]);
    return 1;
  }

  int header(Word Head::*member) {
    walk.pass(std::int64_t{head.*member} - std::int64_t{Form::bytes});
    walk.doubts += head.*member != Form::bytes;
    return 1;
  }
  template <class Text, class Array, class Count> int absent(Text, Array, Count count) {
    walk.faults += ABSENT_IS_AUDITED<Head> && numberOf(head, count) != 0;
    return 1;
  }

  /// A negative number of frames is a large one here, so that the length tells by how much it is wrong.
  template <class Array> int refs(Array) {
    for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind) {
      const RefWords &ref = REFS[kind];
      if (refForm(head.tri_anim_type, kind) == RefForm::keys) {
        const std::uint64_t at = walk.position;
        const Word keys = walk.next();
        walk.lengthWord(at, ref.key_num, keys, 2 * sizeof(Word));
        walk.table(keys, {{sizeof(Word)}, {sizeof(Word), ref.to}});
      } else {
        const bool frames = refForm(head.tri_anim_type, kind) == RefForm::frames;
        walk.table(frames ? static_cast<Word>(head.tri_anim_frame_num) + 1 : 1, {{sizeof(Word), ref.to}});
      }
    }
    return 1;
  }

  // What is between the head of these and their blocks takes up what their sizes leave.

  template <class Array> int data(Array) {
    const std::int64_t bytes = bytesBySize();
    if (walk.events != nullptr) {
      Coll coll = {};
      coll.coll_type = head.coll_type;
      withCollData(coll, [&](const auto &of_kind) { tellLinks<WORDS<std::remove_cvref_t<decltype(of_kind)>>>(bytes); });
    }
    walk.pass(bytes);
    return 1;
  }
  /// The sizes of the blocks say only how much of it are texels.
  template <class Array> int texels(Array, std::uint64_t) {
    is_by_size = true;
    walk.pass(bytesBySize() - head.van_ext_blk_size - head.usr_ext_blk_size);
    return 1;
  }
  template <class Array> int text(Array, std::uint64_t) {
    walk.pass(bytesBySize() & ~std::int64_t{3});
    return 1;
  }

  Word tiles() const { return tile_num; }

private:
  std::uint64_t placeOfCount(Word Head::*count) const { return begin + placeIn(head, head.*count); }
  template <class Count> std::uint64_t placeOfCount(const Count &) const { return 0; }

  template <class Item, std::size_t... PART>
  int columns(std::uint64_t entries, To to, bool counts, std::index_sequence<PART...>) {
    walk.table(entries, {{sizeof(Word), targetOf<Item, PART>(to), counts}...});
    return 1;
  }

  void tellLengthWords() {
    LengthWords<Form> lengths{{}, head};
    content(lengths, head);
    for (const auto &word : std::span(lengths.words).first(lengths.found)) {
      const std::size_t position = static_cast<std::size_t>(word.place) / sizeof(Word);
      walk.lengthWord(begin + word.place, WORD_INFOS<Form::words>[position].name.c_str(),
                      std::bit_cast<std::array<Word, Form::words.WORD_NUM>>(head)[position], word.unit, word.records);
    }
  }
  /// The links of a part of a record, which has no layout of its own, as far as they lie within so many bytes.
  template <const auto &TABLE> void tellLinks(std::int64_t bytes = TABLE.WORD_NUM * sizeof(Word)) {
    if (walk.events == nullptr)
      return;
    for (const Link &link : LINKS<TABLE>) {
      const Column entry = {sizeof(Word), link.to};
      if (link.at + std::int64_t{sizeof(Word)} <= bytes)
        walk.events->table(walk.position + link.at, 1, {&entry, 1}, 0);
    }
  }

  void tellOwnBlocks() {
    if (!is_by_size)
      tellBlocks(begin + PLACE_OF<Form::words, Role::van_size>, head.van_ext_blk_size, head.usr_ext_blk_size);
  }
  void tellBlocks(std::uint64_t at, Word maker, Word user) {
    if (walk.events == nullptr)
      return;
    walk.lengthWord(at, NAME_OF<WORDS<FileHeaderHead>, Role::van_size>, maker, 1, nullptr, true);
    walk.lengthWord(at + sizeof(Word), NAME_OF<WORDS<FileHeaderHead>, Role::usr_size>, user, 1, nullptr, true);
  }

  /// Goes over what a maker block begins with, and comes back to where it begins.
  template <class Items> void lookIntoMakerBlock(Word bytes) {
    using Ext = typename Items::Head;
    const std::uint64_t block = walk.position;
    walk.maker_end = std::max<std::uint64_t>(std::min(block + bytes, walk.limit), 1);
    walk.maker_not_counted = 0;
    const Ext words = walk.file.head<Ext>(block, walk.maker_end);
    tellLinks<Items::words>();
    walk.position += Items::bytes;
    RecordIo<Items, Head>(walk, words, block, begin, tile_num).go();
    const std::uint64_t taken = walk.position - block;
    walk.faults += taken - walk.maker_not_counted > bytes;
    walk.has_maker = true;
    walk.maker_spare = static_cast<std::int64_t>(bytes) - static_cast<std::int64_t>(taken);
    walk.maker_end = 0;
    walk.position = block;
  }

  std::int64_t bytesBySize() {
    constexpr std::uint64_t SIZE_AT = PLACE_OF<Form::words, Role::size>;
    constexpr std::uint64_t HEADER_AT = PLACE_OF<Form::words, Role::header_size>;
    const Word size = walk.file[begin + SIZE_AT];
    const Word header = walk.file[begin + HEADER_AT];
    walk.lengthWord(begin + SIZE_AT, NAME_OF<Form::words, Role::size>, size, 1);
    walk.lengthWord(begin + HEADER_AT, NAME_OF<Form::words, Role::header_size>, header, -1);
    walk.doubts += header != Form::bytes;
    return std::int64_t{size} - header;
  }

  Walk &walk;
  const Head &head;
  std::uint64_t begin;
  std::uint64_t around; ///< where the record begins that it is a part of
  Word tile_num;        ///< of a texture, or of that around
  bool is_by_size = false;
};

} // namespace kova::mend
