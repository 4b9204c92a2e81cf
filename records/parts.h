/// Where the parts of a file are, and the words of its header that follow from that.
#pragma once

#include "format/all.h"

#include <array>
#include <span>
#include <string>

namespace kova {

/// The parts of a file, in bytes: its header, then these.
struct Parts {
  std::uint64_t length = 0; ///< of the file
  std::uint64_t blocks = 0; ///< of the header
  std::array<std::uint64_t, LIST_NUM> lists = {};
  std::uint64_t behind = 0;
  bool has_sizes = false;   ///< whether the header has the sizes of the version-2 lists
  bool whole_words = false; ///< whether the header's blocks are there and are words
};

/// Reads the header and finds out what part of a file is what.
/// @param begin the bytes of the file up to the sizes of the version-2 lists, as far as it has them
/// @return false for a file of another kind
bool takeApart(std::span<const unsigned char> begin, std::uint64_t length, Parts &parts, FileHeader &header);

/// The words of the header that follow from the rest of the file.
/// @param blocks the bytes of the header's blocks
FileHeader derivedHeader(const FileHeader &header, std::uint64_t blocks,
                         const std::array<std::uint64_t, LIST_NUM> &lists, std::uint64_t behind);

/// @return the bytes of a name, without the zeros that fill up its last word.
std::string textBytes(std::span<const Word> words);

/// Calls `visit` with the row of `LIST_ROWS` of a list.
template <class Visit> void withList(std::size_t list, Visit visit) {
  std::size_t number = 0;
  eachList([&](const auto &row) {
    if (number++ == list)
      visit(row);
  });
}

} // namespace kova
