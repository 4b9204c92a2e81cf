/// Going over a record by its own words.
///
/// `Walk` says where a record ends. What the record holds behind its fixed words is named by its `content` in format/;
/// those who need more than the end take part as `Events`.
#pragma once

#include "mend/bytes.h"
#include "mend/layout.h"

#include <initializer_list>
#include <vector>

namespace kova::mend {

class Conventions;

/// An array of a record; several columns of as many entries stand one behind the other.
struct Column {
  std::uint8_t bytes; ///< of one entry
  To to = To::nothing;
  bool counts = true;    ///< whether the audit takes it into account in the size of a maker block
  const char *name = ""; ///< of an array of single words
};

/// A word on which a length depends.
struct LengthWord {
  std::uint64_t offset;
  const char *field;
  Word value;
  std::int32_t unit;           ///< bytes by which the length grows with it, as far as can be said beforehand;
                               ///< -1: a header size; 0: of what is not stored
  const RecordLayout *records; ///< what it counts; null if that is no records
  bool block;                  ///< it is the size of a block, not a number of something
  bool maker;                  ///< it stands in a maker block, and says only how much of that is used
};

/// What those who follow a walk are told of.
struct Events {
  const bool wants_length_words; ///< to be told of the words on which a length depends

  explicit Events(bool length_words = false) : wants_length_words(length_words) {}
  virtual ~Events() = default;
  virtual void enter(const RecordAt & /*record*/, int /*depth*/) {}
  virtual void leave(const RecordAt & /*record*/, std::uint64_t /*end*/, int /*depth*/) {}
  /// Those of the fixed words come before all that they count.
  virtual void lengthWord(const LengthWord & /*length_word*/) {}
  /// `entries` entries of each column stand one column behind the other from `begin` on. Their number stands at
  /// `count_at`; 0: it is not a word of the record.
  virtual void table(std::uint64_t /*begin*/, std::uint64_t /*entries*/, std::span<const Column> /*columns*/,
                     std::uint64_t /*count_at*/) {}
  /// Records of a kind begin, one behind the other; `first` is the place of the first one.
  virtual void series(const RecordAt & /*first*/, Word /*number*/) {}
};

/// Takes down the words on which the length of a record depends, without those of the records inside, which have no
/// records inside themselves.
struct OwnLengthWords : Events {
  std::vector<LengthWord> length_words;
  int depth_now = 0;

  OwnLengthWords() : Events(true) {}
  void enter(const RecordAt &, int) override { ++depth_now; }
  void leave(const RecordAt &, std::uint64_t, int) override { --depth_now; }
  void lengthWord(const LengthWord &length_word) override {
    if (depth_now == 1)
      length_words.push_back(length_word);
  }
};

/// Goes over a record. Nothing beyond `limit` is read; lengths go on in 64 bits.
class Walk {
public:
  Walk(const FileBytes &walked, std::uint64_t end_of_bytes, bool is_version_2, Events *follower = nullptr)
      : file(walked), limit(end_of_bytes), version_2(is_version_2), events(follower) {}
  /// The same over no more records than `steps_left` says, which counts down.
  Walk(const FileBytes &walked, bool is_version_2, Events *follower, std::uint64_t &steps_left,
       const Conventions *known = nullptr)
      : file(walked), limit(walked.size()), version_2(is_version_2), events(follower), steps(&steps_left),
        conventions(known) {}

  /// @return the end of the record.
  std::uint64_t over(const RecordAt &record, int depth = 0);

  bool broken = false;          ///< a word that had to be read lies beyond the limit
  Word doubts = 0;              ///< what is unusual: a record inside that has not its own number or size, ...
  Word faults = 0;              ///< what the audit does not accept: a maker block too short for what it holds, ...
  bool has_maker = false;       ///< the record's maker block was gone over
  std::int64_t maker_spare = 0; ///< bytes of it beyond what it holds; negative: it lacks them
  RecordAt suspect = {};        ///< the first record inside that raised a doubt
  RecordAt before = {};         ///< the record inside before that, or the last one

private:
  template <class Form, class Around> friend class RecordIo;

  bool isOdd(const RecordAt &record) const;
  bool isInMakerBlock(std::uint64_t offset) const { return maker_end == 0 || offset + sizeof(Word) <= maker_end; }
  Word next();
  void lengthWord(std::uint64_t offset, const char *field, Word value, std::int32_t unit,
                  const RecordLayout *records = nullptr, bool block = false);
  /// Columns of as many entries, which are passed.
  void table(std::uint64_t entries, std::initializer_list<Column> columns, std::uint64_t count_at = 0);
  void records(Word number, const RecordLayout &kind, std::uint64_t around);
  /// Bytes that are not looked at. A negative number comes from sizes that are wrong.
  void pass(std::int64_t bytes) {
    position += static_cast<std::uint64_t>(bytes);
    went_back |= bytes < 0;
  }
  void passBlocks(Word maker, Word user) {
    faults += Word{(maker & 3) != 0} + Word{(user & 3) != 0};
    position += std::uint64_t{maker} - maker % sizeof(Word);
    position += std::uint64_t{user} - user % sizeof(Word);
  }

  const FileBytes &file;
  std::uint64_t limit;
  bool version_2;
  Events *events;
  std::uint64_t *steps = nullptr;
  const Conventions *conventions = nullptr;
  std::uint64_t position = 0;
  bool went_back = false;
  std::uint64_t maker_end = 0;         ///< of the maker block that is looked at; 0: none is
  std::uint64_t maker_not_counted = 0; ///< bytes of it that the audit leaves out
};

/// @return whether the maker blocks of a kind of record begin with what version 2.0 describes.
bool hasMaker(const RecordLayout &kind);

} // namespace kova::mend
