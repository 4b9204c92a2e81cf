/// Where a damaged file is damaged: the parts of it in which nothing is whole.
#pragma once

#include "mend/locate.h"

namespace kova::mend {

/// A part of a file between what was found whole.
struct Gap {
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
  std::int64_t missing = 0;    ///< bytes of the original that are not there; negative: bytes that are too many
  std::size_t list = LIST_NUM; ///< of the first thing in it; LIST_NUM: the file's header
  std::optional<Word> element = {};
};

/// @return the gaps of a file with a whole header, in its order.
std::vector<Gap> gapsOf(const FileBytes &file, const Found &found);

} // namespace kova::mend
