/// What kbdiff prints of two files.
#pragma once

#include "common/terminal.h"
#include "diff/change.h"

#include <map>

namespace kova::diff {

enum class Look : std::uint8_t { text, unified, json, stat, quiet };

/// Makes lines of what is found in two files.
struct Printer {
  Look look = Look::text;
  Style style = {};
  std::string path_a = {};
  std::string path_b = {};
  std::string path = {}; ///< of both, in their folders; empty for two files
  std::string text = {}; ///< the lines
  std::size_t differences = 0;

  struct Run {
    Place place = {};
    std::vector<Change> changes = {};
    std::uint64_t count = 0;
  };
  Run run = {};                   ///< elements one behind the other with the same changes, which are one line
  std::vector<Place> around = {}; ///< elements in front of a difference, of --unified
  std::size_t behind = 0;         ///< how many more elements are shown behind one
  std::string shown_list = {};
  /// Of a list: elements that are changed, only in A, only in B, moved; and other differences.
  struct Counts {
    std::size_t changed = 0, only_a = 0, only_b = 0, moved = 0, others = 0;
  };
  std::vector<std::pair<std::string, Counts>> counts = {};
};

void take(Printer &to, const Place &place, const std::vector<Change> &changes);
void takeDamage(Printer &to, const char *list, const char *finding_a, const char *finding_b);

/// Ends the lines.
void finish(Printer &to);

} // namespace kova::diff
