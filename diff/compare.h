/// The comparison of two loaded files.
#pragma once

#include "diff/change.h"
#include "diff/match.h"

#include <functional>

namespace kova::diff {

/// Who is told what was found, list by list.
struct Listener {
  /// Two elements that are the same, or one that only one file has, with what is different in them, if anything is.
  std::function<void(const Place &, const std::vector<Change> &)> take;
  /// What is known of a list that is damaged.
  std::function<void(const char *list, const char *finding_a, const char *finding_b)> damaged;
  bool wants_all = false; ///< also elements in which nothing is different
};

/// Compares two files. Throws `Trouble`.
/// @return whether there is a difference
bool compareSides(const Side &a, const Side &b, const Rules &rules, const Listener &listener);

} // namespace kova::diff
