/// What seems to have happened to a file: what kind of damage it has, where, and what can be done.
#pragma once

#include "mend/mend.h"

namespace kova::mend {

enum class Sure { possible, likely, certain };

struct Damage {
  const char *kind = ""; ///< its name: one of those in docs/repair.md
  Sure sure = Sure::likely;
  std::uint64_t begin = 0; ///< from byte to byte; in a file of which something is undone, as it is then
  std::uint64_t end = 0;
  const char *list = ""; ///< of the first thing in it; empty where none is known
  std::optional<Word> element = {};
  std::string what = {}; ///< for people
};

struct Diagnosis {
  std::vector<Damage> damages = {}; ///< those of the whole file first, then by place; none of a file that is good
  Result result = {};               ///< of a mending that may salvage
};

/// Looks at a file that may be damaged, and tries to mend it. Takes as long as that.
Diagnosis diagnose(BytesView file);

/// @return "likely".
const char *sureText(Sure sure);

/// @return the damage as people read it: one line, without its line break.
std::string textOf(const Damage &damage);

/// @return what can be done, for people: "kbrepair --salvage keeps what is left".
std::string remedyText(const Diagnosis &diagnosis);

} // namespace kova::mend
