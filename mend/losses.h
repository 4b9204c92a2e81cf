/// What a reading would take away. Such a reading is no mending: it is told as a loss, and left to a salvage.
#pragma once

#include "mend/mend.h"
#include "mend/reading.h"

namespace kova::mend {

/// @param file as it was
/// @param read as the reading has it
/// @return the elements that are in the file and not in the reading: those that one of their lists counts, and those
/// that have their tag and are sound. Only lists in which the reading changes a count or the size of a block are looked
/// at, since blocks may hold anything.
std::vector<Loss> lossesOf(const FileBytes &file, const FileBytes &read, const Reading &reading);

/// @return why so much is wrong with a file that its contents must be, too, for people; empty if it is not.
/// @param file with the changes
/// @param looked_at how many words were compared with what they should be
std::string strangeness(const FileBytes &file, const std::vector<Change> &changes, std::size_t looked_at);

} // namespace kova::mend
