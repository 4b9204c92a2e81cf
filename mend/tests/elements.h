/// The elements of a good file, found without the program: by its size tables.
#pragma once

#include "mend/tests/mending.h"

#include <functional>
#include <map>

namespace kova::mend {

/// From byte to byte.
struct Extent {
  std::size_t begin, end;
};

/// By list and group.
using Elements = std::map<std::pair<std::string, int>, std::vector<Extent>>;

Elements elementsOf(const Bytes &file);

/// Says of a word of the salvaged file that is -1, and of what it was, whether it had to be given up.
using IsDead = std::function<bool(std::size_t at, Word was)>;

/// @return the first element outside the hole that is not there, or differs in more than links that lead nowhere now;
/// empty if there is none. A hole without bytes lies between two.
std::string firstLost(const Bytes &original, Extent hole, const Bytes &salvaged, const IsDead &is_dead = {});

/// A bundled sample.
Bytes sampleFile(const std::string &name);

} // namespace kova::mend
