/// Differences, as they are found.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kova::diff {

enum class What : std::uint8_t {
  value,   ///< of a word, or of a text
  entries, ///< of an array
  bytes,   ///< that no record takes in, or that could not be read as records
  only_a,  ///< A has it, B does not
  only_b,
  moved
};

/// What is different in an element, or in a list.
struct Change {
  What what = What::value;
  std::string field = {}; ///< "tri[3].vtx_index0"; empty where it is about the element
  std::string old_value = {};
  std::string new_value = {};
  bool is_link = false;
  bool is_text = false;                     ///< the values are texts of the file
  std::optional<std::uint64_t> ulps = {};   ///< between two floats
  std::array<std::uint64_t, 2> counts = {}; ///< of entries or bytes
  std::uint64_t differing = 0;              ///< of as many entries; 0: their number is another one
  std::string first = {};                   ///< the first entry that differs: "[17].x"

  bool operator==(const Change &) const = default;
};

/// The place of changes.
struct Place {
  const char *list = "";               ///< or "FileHeader"
  const char *kind = nullptr;          ///< of a list with two kinds of elements
  std::optional<std::uint64_t> a = {}; ///< the element's number in A
  std::optional<std::uint64_t> b = {};
  std::string name = {}; ///< of the element

  bool operator==(const Place &) const = default;
};

} // namespace kova::diff
