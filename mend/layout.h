/// The layout of a KOVA file as far as its lengths, its own numbering and its links go: what stands where, by which
/// words the places are found, and which words follow from others. All of it is taken from the tables of words and the
/// content in format/; what the audit looks at stands in mend/audited.h.
#pragma once

#include "format/header.h"
#include "format/list.h"
#include "format/lists.h"
#include "format/versions.h"

namespace kova::mend {

inline constexpr std::uint16_t NO_WORD = 0xffff;

/// Where the first word with a role stands in a record, in bytes from its begin.
template <const auto &TABLE, Role ROLE>
inline constexpr std::uint16_t PLACE_OF = wordWith(TABLE, ROLE) == TABLE.WORD_NUM
                                              ? NO_WORD
                                              : static_cast<std::uint16_t>(wordWith(TABLE, ROLE) * sizeof(Word));

/// Where words of the file's header stand.
namespace header_at {
inline constexpr std::uint64_t SIZE = PLACE_OF<WORDS<FileHeaderHead>, Role::size>;
inline constexpr std::uint64_t TAG = PLACE_OF<WORDS<FileHeaderHead>, Role::tag>;
inline constexpr std::uint64_t HEADER_SIZE = PLACE_OF<WORDS<FileHeaderHead>, Role::header_size>;
/// The size of the maker block.
inline constexpr std::uint64_t BLOCKS = PLACE_OF<WORDS<FileHeaderHead>, Role::van_size>;
} // namespace header_at

/// @return the name of the word of the file's header that stands at a place.
const char *headerWordName(std::uint64_t at);

/// @return where the size of a user block stands: behind that of the maker block.
constexpr std::uint64_t userSizeAt(std::uint64_t blocks_at) { return blocks_at + sizeof(Word); }
static_assert(userSizeAt(header_at::BLOCKS) == PLACE_OF<WORDS<FileHeaderHead>, Role::usr_size>);

/// Where words of the header of a list stand.
namespace list_at {
inline constexpr auto ONE_KIND = version2ListWords("");
inline constexpr auto TWO_KINDS = twoKindListWords({"", "", "", "", "", "", ""});
inline constexpr std::uint64_t HEADER_SIZE = PLACE_OF<ONE_KIND, Role::header_size>;
inline constexpr std::uint64_t SIZE = PLACE_OF<ONE_KIND, Role::size>;
inline constexpr std::uint64_t COUNT = PLACE_OF<ONE_KIND, Role::count>;
/// In the two lists with two kinds of element.
inline constexpr std::uint64_t SECOND_COUNT = COUNT + sizeof(Word);
static_assert(SIZE == PLACE_OF<TWO_KINDS, Role::size> && COUNT == PLACE_OF<TWO_KINDS, Role::count> &&
              wordAt(TWO_KINDS, SECOND_COUNT / sizeof(Word)).role == Role::count);
} // namespace list_at

/// A link among the fixed words of a record.
struct Link {
  std::uint16_t at;
  To to;
};

class Walk;
struct RecordLayout;

/// Where a record stands.
struct RecordAt {
  const RecordLayout *kind = nullptr;
  std::uint64_t begin = 0;
  Word number = 0;          ///< its position among those of its kind
  std::uint64_t around = 0; ///< where the record begins that it is a part of
};

/// A kind of record.
struct RecordLayout {
  Word tag = 0;                           ///< 0 where the audit does not look at it
  std::uint16_t fixed = 0;                ///< bytes of the fixed words
  std::uint16_t index_at = NO_WORD;       ///< byte offsets of words
  std::uint16_t header_size_at = NO_WORD; ///< of the word that says how long the fixed words are
  std::uint16_t data_size_at = NO_WORD;   ///< of the word that says how long what stands before the blocks is
  std::uint16_t size_at = NO_WORD;        ///< of the word that says how long the record is
  std::uint16_t blocks_at = NO_WORD;      ///< of the size of the maker block
  const char *tag_name = "";
  const char *header_size_name = "";
  const char *data_size_name = "";
  const char *index_name = "";
  const char *size_name = "";
  bool index_checked = false; ///< by the audit
  bool size_checked = false;
  bool size_in_bytes = false;                          ///< its size may end within a word; it takes up whole words only
  void (*content)(Walk &, const RecordAt &) = nullptr; ///< goes over what follows the fixed words, if anything does
  std::span<const Link> links = {};
};

/// A list: what its elements are and what its words are called.
struct ListLayout {
  const RecordLayout *first = nullptr;  ///< null for the scene, which has no elements
  const RecordLayout *second = nullptr; ///< null but for the two lists with two kinds
  const char *tag_name = nullptr;
  const char *header_size_name = nullptr;
  const char *size_name = nullptr;
  const char *count_name = nullptr;
  const char *table_name = nullptr;
  const char *second_count_name = nullptr;
  const char *second_table_name = nullptr;
  Word head_bytes = 0;
  Word blocks_at = 0;                ///< of the size of the maker block
  const char *header_word = nullptr; ///< the word of the file's header, or of its maker block, with the list's size
  std::uint64_t header_word_at = 0;
};

extern const RecordLayout SCENE;
extern const std::array<ListLayout, LIST_NUM> LAYOUT;

/// @return what a list is called; that of LIST_NUM is the file's header.
const char *listName(std::size_t list);

/// @return whether the word is a tag of the list or, of an element, one that its reader takes.
bool isListTag(std::size_t list, Word tag);
bool isElementTag(const RecordLayout &kind, Word tag);

/// @return the elements of a list, of its second kind or else of the first; the scene is its own only element.
const RecordLayout &elementLayout(std::size_t list, bool second);

/// @return the bytes that a record of that size takes up.
inline Word wholeWords(const RecordLayout &kind, Word size) { return kind.size_in_bytes ? size & ~Word{3} : size; }

} // namespace kova::mend
