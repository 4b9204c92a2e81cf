/// The words that follow from where everything stands.
#pragma once

#include "mend/mend.h"
#include "mend/reading.h"

namespace kova::mend {

/// What a reading has changed.
struct Applied {
  std::vector<Change> changes; ///< by offset
  std::size_t looked_at = 0;   ///< words that were compared with what they should be
  bool checked_words = false;  ///< there are words among them to which the audit pays attention
  /// A count in a maker block was changed so that the block is used up. A block may be longer than what it holds; this
  /// is true where others in the file are, or where there is no other.
  bool doubtful_maker = false;
};

/// Writes what a reading says into the file: the words that it changes, and all that follow from them.
Applied applyReading(FileBytes &file, const Reading &reading);

/// @return the words that a reading changes by itself.
std::vector<Change> changesOf(const FileBytes &file, const Decision *decisions);

} // namespace kova::mend
