/// The versions of the format: the one place that knows which there are, and what each has.
#pragma once

#include "kova/kova.h"

#include <algorithm>
#include <iterator>

namespace kova {

struct VersionRow {
  Word number;
  const char *name;
  bool version_2; ///< it has what version 2.0 has added: lists, and words in maker blocks
};
inline constexpr VersionRow VERSIONS[] = {{VERSION_1, "1.0", false}, {VERSION_2, "2.0", true}};

/// @return the row of the number in the low 16 bits of a version word; null if no version has it.
constexpr const VersionRow *versionRow(Word number) {
  const auto *const row =
      std::find_if(std::begin(VERSIONS), std::end(VERSIONS), [&](const VersionRow &it) { return it.number == number; });
  return row != std::end(VERSIONS) ? row : nullptr;
}
constexpr bool isVersion(Word number) { return versionRow(number) != nullptr; }
constexpr bool hasVersion2(Word number) { return isVersion(number) && versionRow(number)->version_2; }

} // namespace kova
