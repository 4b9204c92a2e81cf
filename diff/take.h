/// Taking a record apart: its fixed words, and the steps of `content`, as pieces.
#pragma once

#include "diff/fields.h"

namespace kova::diff {

inline Piece &add(Pieces &out, Piece piece, std::uint64_t bytes) {
  out.is_odd |= (out.at - out.list_begin) % sizeof(Word) != 0 && bytes > 0;
  piece.parent = out.parent;
  piece.at = out.at;
  out.at += bytes;
  return out.pieces.emplace_back(piece);
}

template <class Item> const unsigned char *bytesAt(const Item *items) {
  return reinterpret_cast<const unsigned char *>(items);
}

inline void addWords(Pieces &out, const char *name, Fields fields, std::span<const Word> words) {
  if (!words.empty())
    add(out,
        {.name = name,
         .fields = fields,
         .data = bytesAt(words.data()),
         .stride = sizeof(Word),
         .entries = words.size(),
         .is_array = true},
        words.size_bytes());
}

/// Adds bytes that the model does not hold.
inline void addGap(Pieces &out, std::uint64_t bytes) {
  if (bytes > 0)
    add(out, {.matter = Matter::gap, .entries = static_cast<std::size_t>(bytes)}, bytes);
}

inline void addBlocks(Pieces &out, const ExtBlk &blk, std::size_t van_from) {
  out.at += van_from * sizeof(Word);
  addWords(out, "van", BLOCK_FIELDS, vanExtBlk(blk).subspan(van_from));
  addWords(out, "usr", BLOCK_FIELDS, usrExtBlk(blk));
}

/// Keeps what words follow from. @return its place
template <class Head> std::size_t keepDerived(Pieces &out, const Head &head) {
  const std::size_t place = out.derived.size();
  for (std::size_t word = 0; word < sizeof head / sizeof(Word); ++word)
    out.derived.push_back(wordIn(head, word));
  return place;
}

template <class Record> struct Taker;

/// Adds the fixed words of a record, and what follows them.
template <const auto &TABLE, class Head, class Record>
void addRecord(Pieces &out, const Record &record, const Own &own) {
  const std::uint64_t begin = out.at;
  const Head &head = record;
  Piece piece = {.fields = Fields(FIELDS<TABLE>).first(own.fixed / sizeof(Word)),
                 .data = bytesAt(&head),
                 .stride = sizeof head,
                 .entries = 1};
  if (out.derives) {
    const char *conflict = nullptr;
    Head derived = derivedWords<TABLE, Head>(record, own, {}, conflict);
    setRole<TABLE>(derived, Role::size, derivedSize(record, own));
    piece.derived = keepDerived(out, derived);
  }
  const std::size_t number = out.pieces.size();
  add(out, piece, own.fixed);
  Taker<Record> taker{{}, out, record, begin};
  goOver(taker, record);
  out.pieces[number].table_bytes = taker.table_bytes;
}

/// Adds what follows the fixed words of a record.
template <class Record> struct Taker : PassingIo {
  Pieces &out;
  const Record &record;
  std::uint64_t begin;
  Word table_bytes = 0;

  static constexpr bool HAS_TWO = requires { record.vtx_group; };
  static constexpr bool IS_LIST = HAS_TWO || requires { record.num_byte; };

  template <class Named, class Item, class Holder, class Count>
  int array(Named, std::vector<Item> Holder::*member, Count, To to = To::nothing) {
    static constexpr auto NAME = Named::name();
    const std::vector<Item> &items = record.*member;
    Piece piece = pieceOf(NAME.c_str(), ENTRY_FIELDS<Item, Named>, items);
    piece.to = to;
    if constexpr (IS_LIST) { // its arrays are tables of sizes
      bool second = false;
      if constexpr (HAS_TWO)
        second = member == &Record::vtx_group_size;
      return addRestOfTable(piece, out.elements[second ? 1 : 0]);
    }
    if constexpr (std::is_same_v<Item, Word>)
      if (const std::optional<Words> sizes = derivedTable(record, member)) {
        table_bytes += static_cast<Word>(items.size() * sizeof(Word));
        if (out.derives) {
          piece.derived = out.derived.size();
          out.derived.insert(out.derived.end(), sizes->begin(), sizes->end());
        }
      }
    return addArray(piece, items.size() * sizeof(Item));
  }
  template <class Named, class Item, class Holder, class Count>
  int pairs(Named, std::vector<Item> Holder::*member, Count, To to = To::nothing) {
    static constexpr auto NAME = Named::name();
    Piece piece = pieceOf(NAME.c_str(), ENTRY_FIELDS<Item, Named>, record.*member);
    piece.to = to;
    piece.columns = true;
    return addArray(piece, (record.*member).size() * sizeof(Item));
  }

  /// Those that have nothing but their words are one array.
  template <class Form, class Item, class Holder, class Count> int run(Form, std::vector<Item> Holder::*member, Count) {
    static constexpr auto NAME = Form::name();
    const Piece piece =
        pieceOf(NAME.c_str(), Fields(FIELDS<Form::words>).first(Form::bytes / sizeof(Word)), record.*member);
    return addArray(piece, (record.*member).size() * Form::bytes);
  }
  template <class Form, class Item, class Holder, class Count>
  int records(Form form, std::vector<Item> Holder::*member, Count count) {
    static constexpr auto NAME = Form::name();
    const std::vector<Item> &items = record.*member;
    if (items.empty())
      return 1;
    if constexpr (IS_LIST) { // elements are taken one by one
      if constexpr (requires { items[0].offset; })
        out.at = items.back().offset + bytesOf(items.back(), Form::bytes);
      return 1;
    }
    if (haveWordsAlone(items))
      return run(form, member, count);
    add(out, {.matter = Matter::number, .name = NAME.c_str(), .entries = items.size()}, 0);
    for (std::size_t i = 0; i < items.size(); ++i)
      addInside<Form>(items[i], NAME.c_str(), i);
    return 1;
  }
  template <class Form, class Item, class Holder> int inner(Form, Item Holder::*member) {
    static constexpr auto NAME = Form::name();
    addInside<Form>(record.*member, NAME.c_str(), NONE);
    return 1;
  }

  int blocks() {
    addBlocks(out, record.ext_blk, 0);
    return 1;
  }
  template <class Holder> int blocksAround(ExtBlk Holder::*member) {
    addBlocks(out, record.*member, 0);
    return 1;
  }
  template <class Form, class Ext, class Holder> int blocks(Form, std::unique_ptr<Ext> Holder::*member) {
    const std::uint64_t block = out.at;
    std::size_t decoded = 0;
    if (const Ext *const ext = (record.*member).get()) {
      addInside<Form>(*ext, "ext", NONE);
      decoded = static_cast<std::size_t>((out.at - block) / sizeof(Word));
    }
    out.at = block;
    addBlocks(out, record.ext_blk, decoded);
    return 1;
  }

  /// Where the header size is too small, what follows lies upon the fixed words.
  template <class Holder> int header(Word Holder::*size) {
    const std::uint64_t end = begin + record.*size;
    if (end > out.at)
      addGap(out, end - out.at);
    out.at = end;
    return 1;
  }

  template <class Holder> int refs(std::unique_ptr<Index[]> Holder::*) {
    const std::array<AnimRef, REF_KIND_NUM> all = kvRefs(record);
    const std::uint64_t first = out.at;
    for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind) {
      const RefWords &ref = REFS[kind];
      if (refForm(record.tri_anim_type, kind) == RefForm::keys) {
        const Piece number = {.name = ref.key_num, .fields = INDEX_FIELDS, .entries = 1, .own = all[kind].key_num};
        add(out, number, sizeof(Word));
        addIndices(ref.key, all[kind].key, To::nothing);
      }
      addIndices(ref.group_index, all[kind].group_index, ref.to);
    }
    table_bytes = static_cast<Word>(out.at - first);
    return 1;
  }

  /// Of a kind that is known and as long as it should be: its words by their names.
  int data(CollData Coll::*member) {
    const std::uint64_t end = out.at + dataBytes(record);
    const std::span<const Word> words(record.*member);
    bool named = false;
    withCollData(record, [&]<class Data>(Data) {
      if (dataBytes(record) != sizeof(Data))
        return;
      named = true;
      add(out,
          {.name = "data",
           .fields = FIELDS<WORDS<Data>>,
           .data = bytesAt(words.data()),
           .stride = sizeof(Data),
           .entries = 1},
          sizeof(Data));
    });
    if (!named)
      addWords(out, "data", BLOCK_FIELDS,
               words.first(std::min<std::size_t>(dataBytes(record) / sizeof(Word), words.size())));
    addGap(out, end - out.at);
    return 1;
  }
  template <class Holder> int texels(std::vector<unsigned char> Holder::*member, std::uint64_t) {
    const std::vector<unsigned char> &texel = record.*member;
    if (!texel.empty())
      add(out,
          {.matter = Matter::bytes,
           .name = "texel",
           .data = texel.data(),
           .stride = 1,
           .entries = texel.size(),
           .is_array = true},
          texel.size());
    return 1;
  }
  template <class Holder> int text(Words Holder::*member, std::uint64_t) {
    const Words &words = record.*member;
    if (!words.empty())
      add(out,
          {.matter = Matter::text,
           .name = "text",
           .data = bytesAt(words.data()),
           .stride = sizeof(Word),
           .entries = words.size()},
          words.size() * sizeof(Word));
    return 1;
  }
  Word tiles() const { return 1; } // what is held counts

private:
  template <class Item> static Piece pieceOf(const char *name, Fields fields, const std::vector<Item> &items) {
    return {.name = name,
            .fields = fields,
            .data = bytesAt(items.data()),
            .stride = sizeof(Item),
            .entries = items.size(),
            .is_array = true};
  }
  int addArray(const Piece &piece, std::uint64_t bytes) {
    if (piece.entries > 0)
      add(out, piece, bytes);
    return 1;
  }
  void addIndices(const char *name, std::span<const Index> indices, To to) {
    Piece piece = {.name = name,
                   .fields = INDEX_FIELDS,
                   .data = bytesAt(indices.data()),
                   .stride = sizeof(Index),
                   .entries = indices.size(),
                   .is_array = true};
    piece.to = to;
    addArray(piece, indices.size_bytes());
  }
  /// The entries of a table of sizes belong to the elements; others are left for the list.
  int addRestOfTable(Piece piece, std::size_t elements) {
    const std::size_t own = std::min(elements, piece.entries);
    table_bytes += static_cast<Word>(piece.entries * sizeof(Word));
    out.at += own * sizeof(Word);
    piece.first = own;
    piece.entries -= own;
    piece.data += own * sizeof(Word);
    return addArray(piece, piece.entries * sizeof(Word));
  }
  template <class Form, class Item> void addInside(const Item &item, const char *name, std::size_t number) {
    const std::size_t around = out.parent;
    out.parents.push_back({around, name, number});
    out.parent = out.parents.size() - 1;
    const Word index = number == NONE ? 0 : static_cast<Word>(number);
    addRecord<Form::words, typename Form::Head>(out, item, Own{Form::tag, index, Form::bytes});
    out.parent = around;
  }
};

} // namespace kova::diff
