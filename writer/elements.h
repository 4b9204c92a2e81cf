/// Writing records: the steps of `content` that put what a model holds into the file.
#pragma once

#include "format/content.h"
#include "reader/cursor.h"
#include "writer/makerblock.h"
#include "writer/output.h"

namespace kova {

/// Writes the fixed words of a record.
template <WordRecord Head> void putFixed(Output &out, const std::type_identity_t<Head> &record) {
  putWords(out, &record, sizeof(Head));
}

/// @return the items that a count takes in, as far as they are held.
template <class Item>
std::span<const Item> taken(const Output &out, const std::vector<Item> &held, std::uint64_t count) {
  return counted(out.all_held ? held.size() : count, held);
}

/// Writes the items that a count takes in, as far as they are held.
template <WordRecord Item> void putRun(Output &out, const std::vector<Item> &run, std::uint64_t count) {
  const auto held = taken(out, run, count);
  putWords(out, held.data(), held.size_bytes());
}

/// Writes what follows the fixed words of a record.
/// @tparam Around the record that this one is inside of; itself where there is none
template <class Record, class Around = Record> struct RecordWriter {
  Output &out;
  bool version_2;
  const Record &record;
  const Around &around;
  std::uint64_t begin; ///< of the record, in its list

  template <class Text, class Item, class Holder, class Count>
  int array(Text, std::vector<Item> Holder::*member, Count count, To = To::nothing) {
    putRun(out, record.*member, numberOf(record, count));
    return 1;
  }

  template <class Text, class Item, class Holder, class Count>
  int pairs(Text, std::vector<Item> Holder::*member, Count count, To = To::nothing) {
    const auto held = taken(out, record.*member, numberOf(record, count));
    for (std::size_t word = 0; word < sizeof(Item) / sizeof(Word); ++word)
      for (const Item &item : held)
        putWords(out, reinterpret_cast<const unsigned char *>(&item) + word * sizeof(Word), sizeof(Word));
    return 1;
  }

  template <class Form, class Item, class Holder, class Count>
  int run(Form, std::vector<Item> Holder::*member, Count count) {
    if constexpr (Form::bytes == sizeof(Item))
      return array(0, member, count);
    for (const Item &item : taken(out, record.*member, numberOf(record, count)))
      putWords(out, &item, Form::bytes);
    return 1;
  }

  template <class Form, class Item, class Holder, class Count>
  int records(Form form, std::vector<Item> Holder::*member, Count count) {
    for (const Item &item : taken(out, record.*member, numberOf(record, count)))
      put(form, item);
    return 1;
  }

  template <class Form, class Item, class Holder> int inner(Form form, Item Holder::*member) {
    put(form, record.*member);
    return 1;
  }

  int blocks() {
    putBlocks(record.ext_blk, record);
    return 1;
  }

  template <class Form, class Ext, class Holder> int blocks(Form, std::unique_ptr<Ext> Holder::*ext) {
    if (!version_2 || record.*ext == nullptr)
      return blocks();
    putMakerBlock<typename Form::Head>(&out, record, record.*ext);
    putUserBlock(record.ext_blk, record);
    return 1;
  }

  template <class Holder> int blocksAround(ExtBlk Holder::*member) {
    putBlocks(record.*member, around);
    return 1;
  }

  /// Where that is less than the fixed words, what follows lies upon them.
  template <class Holder> int header(Word Holder::*bytes) {
    moveTo(out, begin + record.*bytes);
    return 1;
  }

  template <class Text, class Holder, class Count> int absent(Text, Word Holder::*, Count) { return 1; }

  template <class Holder> int refs(std::unique_ptr<Index[]> Holder::*) {
    const std::array<AnimRef, REF_KIND_NUM> all = kvRefs(record);
    for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind) {
      if (refForm(record.tri_anim_type, kind) == RefForm::keys)
        putFixed<Word>(out, all[kind].key_num);
      putWords(out, all[kind].key.data(), all[kind].key.size_bytes());
      putWords(out, all[kind].group_index.data(), all[kind].group_index.size_bytes());
    }
    return 1;
  }

  /// The ten words of data, of which those past the collision's own size are again those of what follows: that is
  /// written over them. A collision with a wrong tag may hold no data, its read having ended there.
  int data(CollData Coll::*member) {
    const std::uint64_t start = out.offset;
    const std::int64_t bytes =
        std::int64_t{static_cast<Index>(record.coll_size)} - static_cast<Index>(record.coll_header_size);
    if (record.coll_tag == COLL_TAG || record.*member != CollData{})
      putFixed<CollData>(out, record.*member);
    moveTo(out, start + static_cast<std::uint64_t>(std::max<std::int64_t>(bytes, 0)));
    return 1;
  }

  template <class Holder> int texels(std::vector<unsigned char> Holder::*member, std::uint64_t) {
    putBytes(out, (record.*member).data(), (record.*member).size());
    return 1;
  }

  template <class Holder> int text(Words Holder::*member, std::uint64_t count) { return array(0, member, count); }

private:
  template <class Form, class Item> void put(Form, const Item &item) {
    const typename Form::Head &head = item;
    RecordWriter<Item, Record> writer{out, version_2, item, record, out.offset};
    putWords(out, &head, Form::bytes);
    content(writer, head);
  }

  /// Puts a block of so many bytes, of which whole words are stored; those that the model lacks are zeros.
  void putBlock(std::span<const Word> held, Word bytes) {
    const std::uint64_t words = out.all_held ? held.size() : bytes / sizeof(Word);
    const std::uint64_t end = out.offset + words * sizeof(Word);
    putWords(out, held.data(), static_cast<std::size_t>(std::min<std::uint64_t>(words, held.size())) * sizeof(Word));
    moveTo(out, end);
  }

  template <class Sizes> void putUserBlock(const ExtBlk &blk, const Sizes &sizes) {
    putBlock(usrExtBlk(blk), sizes.usr_ext_blk_size);
  }

  template <class Sizes> void putBlocks(const ExtBlk &blk, const Sizes &sizes) {
    putBlock(vanExtBlk(blk), sizes.van_ext_blk_size);
    putUserBlock(blk, sizes);
  }
};

/// Writes a list.
template <class List> void putList(Output &out, const List &list, bool version_2) {
  using Format = ListFormat<List>;
  const typename Format::Head &head = list;
  RecordWriter<List> writer{out, version_2, list, list, 0};
  putWords(out, &head, sizeof head);
  Format::content(writer, head);
}

} // namespace kova
