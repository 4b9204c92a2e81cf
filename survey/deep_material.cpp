#include "survey/deep_check.h"

#include <cstring>
#include <utility>

namespace kova::survey::deep {

namespace {

/// Images of a texture with a palette can also be of the other list.
/// @param is_last whether the list ends with this texture
void checkTexture(Check &check, const Tex &tex, bool is_last, const Place &place) {
  constexpr TexStill ZEROS = {};
  if (is_last && tex.tex_anim == 0 && std::memcmp(&tex.still, &ZEROS, sizeof ZEROS) == 0)
    return; // the file ends before its data
  const bool has_palette = tex.ext && tex.ext->use_color_palette != 0;
  std::uint64_t &not_meant = check[has_palette ? Target::teximg : Target::image];
  const std::uint64_t images = std::exchange(not_meant, UNKNOWN);
  if (tex.tex_anim == 0)
    checkRecord(check, tex.still, after(place, sizeof(TexHead)));
  else
    checkRecord(check, tex.tiles, {place.list, place.element});
  not_meant = images;
}

} // namespace

void checkMaterialLists(Check &check, const Kis &kis) {
  checkList(check, "MatList", kis.mat.element);
  checkList(check, "TexList", kis.tex.element, [&](const Tex &tex, const Place &place) {
    checkTexture(check, tex, &tex == &kis.tex.element.back(), place);
  });
}

} // namespace kova::survey::deep
