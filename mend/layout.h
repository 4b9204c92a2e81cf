/// The layout of a KOVA file as far as its lengths, its own numbering and its links go: what stands where, by which
/// words the places are found, and which words follow from others.
///
/// `Walk` goes over one record by its own words and says where it ends. What a record holds behind its fixed words is
/// said once, by the function `content` of its kind; those who need more than the end take part as `Events`.
#pragma once

#include "format/lists.h"
#include "format/roles.h"
#include "mend/bytes.h"

#include <initializer_list>

namespace kova::mend {

/// Where words of the file's header stand.
namespace header_at {
inline constexpr std::uint64_t SIZE = 4;
inline constexpr std::uint64_t TAG = 8;
inline constexpr std::uint64_t HEADER_SIZE = 12;
inline constexpr std::uint64_t BLOCKS = 92; ///< the size of the maker block; that of the user block follows
} // namespace header_at

static_assert(static_cast<std::size_t>(To::external_name) + 1 == LIST_NUM);

/// A link among the fixed words of a record.
struct Link {
  std::uint16_t at;
  To to;
};

/// An array of a record; arrays that share a count are the columns of one table.
struct Column {
  std::uint8_t bytes; ///< of one entry
  To to = To::nothing;
  bool counts = true; ///< whether the audit takes it into account in the size of a maker block
};

class Conventions;
class Walk;
struct Kind;

/// Where a record stands.
struct Spot {
  const Kind *kind = nullptr;
  std::uint64_t begin = 0;
  Word number = 0;          ///< its position among those of its kind
  std::uint64_t around = 0; ///< where the record begins that it is a part of
};

inline constexpr std::uint16_t NO_WORD = 0xffff;

/// A kind of record.
struct Kind {
  const char *name = "";
  Word tag = 0;                      ///< 0 where the audit does not look at it
  std::uint16_t fixed = 0;           ///< bytes of the fixed words
  std::uint16_t index_at = NO_WORD;  ///< byte offsets of words
  std::uint16_t size_at = NO_WORD;   ///< of the word that says how long the record is
  std::uint16_t blocks_at = NO_WORD; ///< of the size of the maker block; that of the user block follows
  const char *tag_name = "";
  const char *index_name = "";
  const char *size_name = "";
  bool index_checked = false; ///< by the audit
  bool size_checked = false;
  bool size_in_bytes = false;        ///< its size may end within a word; it takes up whole words only
  void (*content)(Walk &) = nullptr; ///< goes over what follows the fixed words, if anything does
  void (*maker)(Walk &) = nullptr;   ///< what the maker block of version 2.0 begins with, its fixed words included
  std::span<const Link> links = {};
};

/// A word on which a length depends.
struct Site {
  std::uint64_t offset;
  const char *field;
  Word value;
  std::int32_t unit;   ///< bytes by which the length grows with it, as far as can be said beforehand;
                       ///< -1: a header size; 0: of what is not stored
  const Kind *records; ///< what it counts; null if that is no records
  bool block;          ///< it is the size of a block, not a number of something
  bool maker;          ///< it stands in a maker block, and says only how much of that is used
};

/// What those who follow a walk are told of.
struct Events {
  virtual ~Events() = default;
  virtual void enter(const Spot & /*spot*/, int /*depth*/) {}
  virtual void leave(const Spot & /*spot*/, std::uint64_t /*end*/, int /*depth*/) {}
  virtual void site(const Site & /*site*/) {}
  /// `entries` entries of each column stand one column behind the other from `begin` on. Their number stands at
  /// `count_at`; 0: it is not a number for this table alone.
  virtual void table(std::uint64_t /*begin*/, std::uint64_t /*entries*/, std::span<const Column> /*columns*/,
                     std::uint64_t /*count_at*/) {}
  /// Whether records that cannot all be there are gone over as far as they are.
  virtual bool wantsBroken() const { return false; }
  /// Records of a kind begin, one behind the other; `first` is the place of the first one.
  virtual void series(const Spot & /*first*/, Word /*number*/) {}
};

/// Goes over a record. Nothing beyond `limit` is read; lengths go on in 64 bits.
class Walk {
public:
  Walk(const FileBytes &walked, std::uint64_t end_of_bytes, bool is_version_2, Events *follower = nullptr)
      : image(walked), limit(end_of_bytes), version_2(is_version_2), events(follower) {}
  /// The same over no more records than `steps_left` says, which counts down.
  Walk(const FileBytes &walked, bool is_version_2, Events *follower, std::uint64_t &steps_left,
       const Conventions *known = nullptr)
      : image(walked), limit(walked.size()), version_2(is_version_2), events(follower), steps(&steps_left),
        conventions(known) {}

  /// @return the end of the record.
  std::uint64_t over(const Spot &spot, int depth = 0);

  bool broken = false;          ///< a word that had to be read lies beyond the limit
  Word doubts = 0;              ///< what is unusual: a record inside that has not its own number or size, ...
  Word faults = 0;              ///< what the audit does not accept: a maker block too short for what it holds, ...
  std::int64_t maker_spare = 0; ///< bytes of the record's maker block beyond what it holds; negative: it lacks them
  Spot suspect = {};            ///< the first record inside that raised a doubt
  Spot before = {};             ///< the record inside before that, or the last one

  // --- For the functions that say what a record holds ---

  /// A word of the record, or of the maker block; 0 where there is none.
  Word word(Word at) { return wordAt(base + at); }
  /// A word of the record around the maker block, or around the record.
  Word outerWord(Word at) { return wordAt(outer + at); }
  /// @return where a word of the record stands in the file.
  std::uint64_t place(Word at) const { return base + at; }
  /// The next word, which is passed.
  Word next();
  /// The same of words on which a length depends.
  Word count(Word at, const char *field, std::int32_t unit, const Kind *records = nullptr);
  Word nextCount(const char *field, std::int32_t unit);
  void table(std::uint64_t entries, std::initializer_list<Column> columns, std::uint64_t count_at = 0);
  /// The table of one column whose number of entries stands at that place of the record.
  void column(Word at, const char *count_name, const Column &entry) {
    table(count(at, count_name, entry.bytes), {entry}, base + at);
  }
  void records(Word number, const Kind &kind);
  /// Bytes that are not looked at. A negative number comes from sizes that are wrong.
  void pass(std::int64_t bytes) {
    position += static_cast<std::uint64_t>(bytes);
    went_back |= bytes < 0;
  }
  /// Both blocks of the record.
  void blocks();
  /// The same of a record that has the sizes of its blocks in the record around it, `at` bytes from its begin.
  void outerBlocks(Word at);
  /// The same, of sizes that are no sites.
  void passBlocks(Word maker, Word user);
  void doubt() { ++doubts; }
  void fault() { ++faults; }

private:
  bool isOdd(const Spot &spot);
  bool isInMakerBlock(std::uint64_t offset) const;
  Word wordAt(std::uint64_t offset);
  void takeSite(std::uint64_t offset, const char *field, Word value, std::int32_t unit, const Kind *records,
                bool block);
  void blocksOf(std::uint64_t sizes_at);
  void lookIntoMakerBlock(Word bytes);

  const FileBytes &image;
  std::uint64_t limit;
  bool version_2;
  Events *events;
  std::uint64_t *steps = nullptr;
  const Conventions *conventions = nullptr;
  const Kind *kind_ = nullptr;
  std::uint64_t base = 0;  ///< of the record, or of the maker block that is looked at
  std::uint64_t outer = 0; ///< of what is around that
  std::uint64_t position = 0;
  bool went_back = false;
  std::uint64_t maker_end = 0;         ///< of the maker block that is looked at; 0: none is
  std::uint64_t maker_not_counted = 0; ///< bytes of it that the audit leaves out
};

/// A list: what its elements are and what its words are called.
struct ListLayout {
  const char *list;
  const Kind *first;  ///< null for the scene, which has no elements
  const Kind *second; ///< null but for the two lists with two kinds
  const char *tag_name;
  const char *size_name;
  const char *count_name;
  const char *table_name;
  const char *second_count_name;
  const char *second_table_name;
  const char *header_word; ///< the word of the file's header, or of its maker block, with the size of the list

  Word headBytes() const { return second != nullptr ? 28 : 24; }
  Word blocksAt() const { return headBytes() - 8; }
};

extern const Kind SCENE;
extern const std::array<ListLayout, LIST_NUM> LAYOUT;

/// @return whether the word is a tag of the list or, of an element, one that its reader takes.
bool isListTag(std::size_t list, Word tag);
bool isElementTag(const Kind &kind, Word tag);

} // namespace kova::mend
