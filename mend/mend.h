/// Mending a KOVA file in memory: the reading of its bytes that changes the fewest words.
///
/// Nearly everything in a KOVA file is told more than once. Where an element ends follows from its counts, from its own
/// size, from the size table and from the tag of the next one; where a list ends, from its elements, from its own size,
/// from the header and from the tag of the next list. The readings of the file that these allow are compared by the
/// number of words that each would have to change. The one with the fewest is taken if it is alone, and its words are
/// changed; if there are two, neither is.
#pragma once

#include "mend/transform.h"

#include <span>
#include <string>
#include <vector>

namespace kova::mend {

/// A word that is to be changed, or was.
struct Change {
  std::uint64_t offset = 0;         ///< in the file
  const char *list = "";            ///< "FileHeader" or the list's name
  std::optional<Word> element = {}; ///< the position of the element in its list
  std::string field = {};           ///< the name of the word in the format, with its number in an array
  Word old_value = 0;
  Word new_value = 0;
  const char *why = ""; ///< what the new value follows from

  bool operator==(const Change &) const = default;
};

/// Something that a salvaged file does not have any more, or has in addition.
struct Loss {
  const char *list = "";
  std::optional<Word> element = {};
  std::string what;      ///< for people: "12 of 20 elements are left"
  bool is_added = false; ///< what was put in
};

enum class Outcome {
  good,      ///< nothing was wrong
  mended,    ///< the file audits OK now
  salvaged,  ///< it does, but is not the file that it was: `losses` says what is gone
  ambiguous, ///< there are two readings, and either both lead to a good file or none does; `changes` and `alternative`
             ///< tell them apart, or `undone` and `undone_instead`
  hopeless   ///< no reading was found; `reason` says where it ended
};

struct Result {
  Outcome outcome = Outcome::good;
  std::vector<Undoing> undone = {};         ///< in this order, before the changes
  std::vector<Undoing> undone_instead = {}; ///< in the other reading
  std::vector<Change> changes = {};         ///< by offset, in the input, or in what it is when all is undone; of a file
                                            ///< without hope those that were sure
  std::vector<Change> alternative = {};     ///< the other reading
  std::vector<Loss> losses = {};
  std::string reason = {};
  std::uint64_t header_gone = 0; ///< of a file whose header was made again: up to here nothing of it is left
};

/// What is asked for.
struct Asked {
  bool salvage = false;
  std::size_t part = 0;    ///< which of several scenes that stand one behind the other, from 1; 0: there is to be one
  std::size_t reading = 0; ///< which of two readings, 1 or 2; 0: none, if nothing decides
  bool drop = false;       ///< a salvage leaves out the elements that lie in a hole, where it can; else they are empty
};

/// Mends the bytes of a file in place. What can be undone exactly of what was done to all of them is undone first, if
/// the file then audits OK, at once or mended, and if there is no other way. An ambiguous file stays as it is. Of one
/// without hope, the words are changed of which there is no doubt. Where `salvage` is set and the file is cut, or has
/// maker blocks that are too short, `bytes` is the salvaged file afterwards.
Result mendBytes(std::vector<unsigned char> &bytes, const Asked &asked);

/// @return a change, or what is undone, as people read it: one line, without its line break.
std::string textOf(const Change &change);
std::string textOf(const Undoing &undone);

/// @return "0x000002f8".
std::string offsetText(std::uint64_t offset);

/// @return "ObjList[2]", or without an element the list alone.
std::string placeText(const char *list, const std::optional<Word> &element);

} // namespace kova::mend
