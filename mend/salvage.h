/// What is left of a file that was cut, and what has to be added where a file lacks something.
#pragma once

#include "mend/mend.h"
#include "mend/reading.h"

namespace kova::mend {

/// The file that is made of what was whole.
struct Salvaged {
  std::vector<unsigned char> bytes;
  std::vector<Change> changes; ///< of what was wrong beside, by offset in the cut file
  std::vector<Loss> losses;
};

/// What stands between `begin` and `end` of that file, and stood at `from` before.
struct Copied {
  std::uint64_t begin;
  std::uint64_t end;
  std::uint64_t from;
};

/// @return the changes of words that were there before, by where they stood then. The others follow from the salvage.
std::vector<Change> changesBefore(std::vector<Change> changes, const std::vector<Copied> &copied,
                                  std::uint64_t size_before);

/// @return the file; none where the lists do not stand where the header says. Its version is left.
std::optional<Salvaged> salvageFile(const FileBytes &cut);

/// Fills up with zeros the maker blocks of a whole 2.0 file that are too short for what they hold.
/// @return the file; none where there is no such block, or something else is wrong.
std::optional<Salvaged> fillMakerBlocks(const FileBytes &file);

} // namespace kova::mend
