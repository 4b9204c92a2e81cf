/// A record as pieces: its fixed words, its arrays and so on, all in one form, so that whoever compares, hashes or
/// names them need not know the types of the records. What a record holds is asked of `content`.
#pragma once

#include "records/derive.h"

#include <limits>
#include <string>

namespace kova::diff {

/// A word of an entry of a piece.
struct Field {
  WordName name = {}; ///< empty where an entry is one word
  Role role = Role::plain;
  To to = To::nothing;
  bool linkable = false; ///< it leads where the links of its array lead, if they do
  bool real = false;
  bool hex = false;
};
using Fields = std::span<const Field>;

enum class Matter : std::uint8_t {
  words,
  bytes,  ///< texels
  text,   ///< the words of a name
  number, ///< how many records follow, which are pieces of their own
  gap     ///< bytes of the file that the model does not hold
};

inline constexpr std::size_t NONE = std::numeric_limits<std::size_t>::max();

struct Piece {
  Matter matter = Matter::words;
  const char *name = "";               ///< of an array; empty for the fixed words of a record
  std::size_t parent = 0;              ///< in `Pieces::parents`; 0: the element
  Fields fields = {};                  ///< of an entry
  const unsigned char *data = nullptr; ///< null: `own`
  std::size_t stride = 0;              ///< from entry to entry, in the model
  std::size_t entries = 0;
  std::size_t first = 0;      ///< the number of the first entry
  std::size_t derived = NONE; ///< in `Pieces::derived`: what the words of this record or table follow from
  std::uint64_t at = 0;       ///< in the file
  Word table_bytes = 0;       ///< by which some writers make the header size of the record larger
  Word own = 0;               ///< a word that stands nowhere in the model
  To to = To::nothing;        ///< where the links of an array lead
  bool is_array = false;      ///< its entries have numbers
  bool columns = false;       ///< stored as all first words, all second words and so on
};

/// A record around others.
struct Around {
  std::size_t parent = 0;
  const char *name = "";
  std::size_t number = NONE; ///< among its siblings
};

struct Pieces {
  std::vector<Piece> pieces = {};
  std::vector<Around> parents = std::vector<Around>(1);
  Words derived = {};
  bool derives = true; ///< words that follow from others are compared with what they follow from
  bool is_odd = false; ///< words lie at places that are no multiples of 4
  std::uint64_t list_begin = 0;
  std::array<std::size_t, 2> elements = {}; ///< of a list, those that are taken for themselves
  std::uint64_t at = 0;
  std::size_t parent = 0;
};

inline const unsigned char *dataOf(const Piece &piece) {
  return piece.data != nullptr ? piece.data : reinterpret_cast<const unsigned char *>(&piece.own);
}
inline Word wordOf(const Piece &piece, std::size_t entry, std::size_t field) {
  Word word;
  std::memcpy(&word, dataOf(piece) + entry * piece.stride + field * sizeof word, sizeof word);
  return word;
}

/// @return where a word of a piece leads to.
inline To targetOf(const Piece &piece, const Field &field) {
  return field.to != To::nothing ? field.to : field.linkable ? piece.to : To::nothing;
}

/// @return "tri[3].", "ext." and so on.
std::string pathOf(const Pieces &all, std::size_t parent);

/// @return how many elements a list holds, of its first or second kind; the scene is one element of its list.
std::size_t elementsOf(const Kis &kis, std::size_t list, bool second);
/// @return where an element begins in the file.
std::uint64_t placeOf(const Kis &kis, std::size_t list, bool second, std::size_t element);
/// @return the bytes of a list that the model holds.
std::uint64_t contentOf(const Kis &kis, std::size_t list);
/// @return the name of a kind of element, where a list has two; else null.
const char *kindOf(std::size_t list, bool second);

/// Takes an element apart.
void takeElement(Pieces &out, const Kis &kis, std::size_t list, bool second, std::size_t element);
/// Takes apart what a list has beside its elements.
/// @param elements that are taken for themselves, with their entries in the tables of sizes
/// @param behind the bytes behind its content
void takeList(Pieces &out, const Kis &kis, std::size_t list, const std::array<std::size_t, 2> &elements,
              std::uint64_t behind);
/// Takes the header of a file apart, which is at its begin.
/// @param derived what its words follow from; null if they are compared as they are
void takeHeader(Pieces &out, const FileHeader &header, bool has_sizes, const FileHeader *derived);

/// Lets go of decoded maker blocks that are not all of what they were decoded from.
void dropCutMakers(Kis &kis);

} // namespace kova::diff
