/// The elements of a good file, found without the program: by its size tables.
#pragma once

#include "mend/tests/mending.h"

#include <map>

namespace kova::mend {

/// From byte to byte.
struct Extent {
  std::size_t begin, end;
};

/// By list and group.
using Elements = std::map<std::pair<std::string, int>, std::vector<Extent>>;

Elements elementsOf(const Bytes &file);

} // namespace kova::mend
