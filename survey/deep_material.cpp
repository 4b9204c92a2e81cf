#include "survey/deep_check.h"

#include <cstring>

namespace kova::survey::deep {

bool lacksData(const Check &check, const Tex &tex) {
  constexpr TexStill ZEROS = {};
  return &tex == &check.kis.tex.element.back() && tex.tex_anim == 0 &&
         std::memcmp(&tex.still, &ZEROS, sizeof ZEROS) == 0;
}

/// The data area follows the fixed words.
Place inside(const Tex &, const Place &place) { return after(place, sizeof(TexHead)); }

} // namespace kova::survey::deep
