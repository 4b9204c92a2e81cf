/// Writing the maker blocks of a 2.0 file: from what is decoded of them, then the words behind it as they were read.
#pragma once

#include "format/content.h"
#include "writer/output.h"

#include <algorithm>
#include <cstring>

namespace kova {

/// Goes over a maker block by what is decoded of it. A block that was shorter than its counts call for is as long as it
/// was; the words that could not be decoded there, such as the first words of pairs that were cut off, stay those that
/// were read. Everywhere else, what a count takes in and the model does not hold is zeros.
/// @tparam Ext what is decoded
/// @tparam Around the record that has the block
template <class Ext, class Around> struct MakerWriter : PassingIo {
  Output *out; ///< null: nothing is written, it is only seen whether all fits
  const Ext &ext;
  const Around &around;
  std::span<const Word> read; ///< the block as it was read
  bool was_short;             ///< it was shorter than its counts call for, and these are the same
  std::uint64_t room;         ///< words of the block
  std::uint64_t position = 0; ///< in words
  bool fits = true;           ///< whether all that is decoded lies inside the block

  std::uint64_t inside(std::uint64_t words) const { return position < room ? std::min(words, room - position) : 0; }

  /// The words of a run at the present position that the block had when it was read.
  std::uint64_t wasRead(std::uint64_t words) const {
    return position < read.size() ? std::min<std::uint64_t>(words, read.size() - position) : 0;
  }

  /// Puts decoded words. Zeros that the block did not have are only passed: where its reading ended before it,
  /// something else may lie there.
  void put(const void *words, std::uint64_t count) {
    const std::uint64_t taken = inside(count);
    fits = fits && taken == count;
    if (out != nullptr) {
      const auto *const from = static_cast<const unsigned char *>(words);
      const auto known = static_cast<std::size_t>(wasRead(taken)) * sizeof(Word);
      putWords(*out, from, known);
      for (std::size_t at = known; at < taken * sizeof(Word); at += sizeof(Word))
        putUnlessZero(from + at);
    }
    position += count;
  }

  void putUnlessZero(const unsigned char *from) {
    constexpr unsigned char ZERO[sizeof(Word)] = {};
    if (std::memcmp(from, ZERO, sizeof ZERO) == 0)
      moveTo(*out, out->offset + sizeof(Word));
    else
      putWords(*out, from, sizeof(Word));
  }

  /// Passes words that are not decoded; those of a block that was too short stay where they stand.
  void keep(std::uint64_t count) {
    const std::uint64_t taken = inside(count);
    if (out != nullptr && taken > 0) {
      const std::uint64_t end = out->offset + taken * sizeof(Word);
      if (was_short && wasRead(taken) != 0)
        putWords(*out, read.data() + position, static_cast<std::size_t>(wasRead(taken)) * sizeof(Word));
      moveTo(*out, end);
    }
    position += count;
  }

  /// @return the items that a count takes in and that are held: all of them, or the edit is no whole one.
  template <class Item> std::span<const Item> taken(std::uint64_t number, const std::vector<Item> &held) {
    fits = fits && held.size() <= number;
    return counted(number, held);
  }

  /// Puts the fixed words. Those beyond the block are 0 unless a program has set them.
  template <class Head> void putHead(const Head &head) {
    const auto words = std::bit_cast<std::array<Word, sizeof(Head) / sizeof(Word)>>(head);
    const auto taken = static_cast<std::size_t>(inside(words.size()));
    fits = std::all_of(words.begin() + static_cast<std::ptrdiff_t>(taken), words.end(),
                       [](Word word) { return word == 0; });
    put(words.data(), taken);
    position = words.size();
  }

  template <class Text, class Item, class Holder, class Count>
  int array(Text, std::vector<Item> Holder::*member, Count count, To = To::nothing) {
    constexpr std::uint64_t WORDS_EACH = sizeof(Item) / sizeof(Word);
    const std::uint64_t number = numberOf(ext, count);
    const auto held = taken(number, ext.*member);
    put(held.data(), held.size() * WORDS_EACH);
    keep((number - held.size()) * WORDS_EACH);
    return 1;
  }

  template <class Form, class Item, class Holder, class Count>
  int run(Form form, std::vector<Item> Holder::*member, Count count) {
    return array(form, member, count);
  }

  template <class Text, class Item, class Holder, class Count>
  int pairs(Text, std::vector<Item> Holder::*member, Count count, To) {
    const std::uint64_t number = numberOf(ext, count);
    const auto held = taken(number, ext.*member);
    for (std::size_t word = 0; word < sizeof(Item) / sizeof(Word); ++word) {
      for (const Item &item : held)
        put(reinterpret_cast<const unsigned char *>(&item) + word * sizeof(Word), 1);
      keep(number - held.size());
    }
    return 1;
  }

  Word tiles() const { return kvCiTileNum(around); }
};

/// Measures what a maker block begins with, as its counts call for it.
template <class Head, class Around> struct MakerMeasure : PassingIo {
  const Head &head;
  const Around &around;
  std::uint64_t words = sizeof(Head) / sizeof(Word);

  template <class Text, class Item, class Holder, class Count, class... Target>
  int array(Text, std::vector<Item> Holder::*, Count count, Target...) {
    words += numberOf(head, count) * (sizeof(Item) / sizeof(Word));
    return 1;
  }
  template <class... Arguments> int run(const Arguments &...all) { return array(all...); }
  template <class... Arguments> int pairs(const Arguments &...all) { return array(all...); }

  Word tiles() const { return kvCiTileNum(around); }
};

/// @return the words that a maker block takes up by its counts.
template <class Head, class Around> std::uint64_t measuredWords(const Head &head, const Around &around) {
  MakerMeasure<Head, Around> measure{{}, head, around};
  content(measure, head);
  return measure.words;
}

/// @return the same of a block as it was read.
template <class Head, class Around> std::uint64_t measuredWords(std::span<const Word> read, const Around &around) {
  std::array<Word, sizeof(Head) / sizeof(Word)> words{};
  std::copy_n(read.begin(), std::min(read.size(), words.size()), words.begin());
  return measuredWords<Head>(std::bit_cast<Head>(words), around);
}

/// Goes over the maker block of a record that has one decoded. @return whether it has room for everything.
template <class Head, class Record, class Ext>
bool putMakerBlock(Output *out, const Record &record, const std::unique_ptr<Ext> &ext) {
  const std::uint64_t room = record.van_ext_blk_size / sizeof(Word);
  const std::span<const Word> read = vanExtBlk(record.ext_blk);
  const std::uint64_t decoded = measuredWords<Head>(read, record);
  const Head &head = *ext;
  const bool was_short = decoded > read.size() && decoded == measuredWords<Head>(head, record);
  MakerWriter<Ext, Record> writer{{}, out, *ext, record, read, was_short, room};
  writer.putHead(head);
  content(writer, head);
  const auto behind = read.subspan(static_cast<std::size_t>(std::min<std::uint64_t>(decoded, read.size())));
  if (!behind.empty())
    writer.put(behind.data(), behind.size());
  writer.keep(writer.inside(room));
  return writer.fits;
}

} // namespace kova
