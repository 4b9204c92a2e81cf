/// The sample files that this project makes itself, from the builder's notation.
#pragma once

#include "samples/builder.h"

#include <string>
#include <vector>

namespace kova::samples {

struct Made {
  std::string name; ///< of the file, without ".kb"
  Bytes bytes;
};

/// All of them, the same bytes on every call: valid files first, then one for each typical kind of damage.
std::vector<Made> madeSamples();

} // namespace kova::samples
