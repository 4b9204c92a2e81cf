/// Where the lists and elements of a damaged file are. The header tells where each list was; a list's size table tells
/// where each element was. What lies before the damage is still there. What lies behind it stands as much further, or
/// less far, as the file is longer, or shorter, than its header says.
#pragma once

#include "mend/walk.h"

#include <vector>

namespace kova::mend {

inline constexpr std::uint64_t NOWHERE = ~std::uint64_t{0};

/// An element of a damaged file.
struct FoundElement {
  std::uint64_t begin = NOWHERE; ///< NOWHERE: it was not found
  std::uint64_t size = 0;        ///< by its own word, or by the size table
  bool whole = false;            ///< nothing of it is missing, as far as its words and its neighbours tell
  bool doubtful = false;         ///< it seems whole, but what follows was not found: its end may not be its own
  std::uint64_t stray = 0;       ///< bytes between it and what follows, which may have been put into it

  bool isFound() const { return begin != NOWHERE; }
};

/// A list of a damaged file. The scene is its own only element.
struct FoundList {
  std::size_t list = 0;
  std::uint64_t was_at = 0;      ///< before the damage
  std::uint64_t size = 0;        ///< by the header
  std::uint64_t begin = NOWHERE; ///< of its head; NOWHERE: it was not found
  std::uint64_t end = 0;         ///< where what follows begins, or the latest place where it could
  std::int64_t moved_behind = 0; ///< how far what follows has moved
  bool next_found = false;       ///< what follows was found
  std::array<std::vector<FoundElement>, 2> elements = {};
  bool numbers_known = false; ///< else there may have been more elements behind the last one
  bool table_whole = false;

  bool isFound() const { return begin != NOWHERE; }
  /// @return how far the head has moved.
  std::int64_t shift() const { return static_cast<std::int64_t>(begin - was_at); }
};

struct Found {
  std::vector<FoundList> lists; ///< those of the header
  bool whole = false;           ///< all was found, all is whole, and nothing is between it
  bool behind = false;          ///< something was found behind bytes that are missing or too much
  bool strange = false;         ///< where something should begin, nothing is like it
};

/// Looks for all that a file with a whole header holds. Takes time linear in the file.
Found locate(FileBytes file);

} // namespace kova::mend
