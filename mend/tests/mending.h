/// What holds of every mending, whatever the file. Shared by the tests and the fuzz target.
#pragma once

#include "harness/bytes.h"
#include "mend/mend.h"

namespace kova::mend {

using harness::Bytes;

/// @return whether the program would say OK.
bool auditsOk(const Bytes &file);

/// A file that was mended once.
struct Mending {
  Result result;
  Bytes bytes;        ///< afterwards
  std::string broken; ///< what was promised of it and does not hold, a line for each
};

/// Mends a copy of the file, and mends the copy again. A file that is good, mended or salvaged has to audit OK, and to
/// stay as it is from then on. The words that differ are those that are told, and a loss is told where there is one.
Mending mendAndCheck(const Bytes &file, bool salvage);

/// @return a sum that tells whether bytes are the same, added to another one.
template <class Items> Word sumOf(const Items &items, Word sum = 0) {
  for (const auto item : items)
    sum = sum * 31 + static_cast<unsigned char>(item);
  return sum;
}

/// What was made of a file, in a line: the outcome, each change and loss as they are told, and, of what is not as long
/// as the file or was salvaged, how long it is and the sum of its bytes.
std::string storyOf(const Mending &mending);

/// The same as `mendAndCheck` with and without salvage. @return what does not hold; empty where all is well.
std::string auditMending(std::span<const unsigned char> input);

} // namespace kova::mend
