/// color: sets the colour of a material, and saves the scene as another file.
///
///     color input output material red green blue
///
/// The material is given by its number, from 0, the colour by three numbers from 0 to 1. All else stays as it is. In a
/// 2.0 file this is also the material's diffuse colour, which stands in its maker block.

#include "kova/kb.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char **argv) {
  const kova::KisHandle kis = kova::kvNewKis();
  if (argc != 7 || !kis || !kova::kvOpenKb(argv[1], *kis))
    return 1; // the reasons are on standard error
  kova::Mat *const mat = kova::kvElement(kis->mat, kova::Index{std::atoi(argv[3])});
  if (mat == nullptr) {
    std::fprintf(stderr, "there are %zu materials\n", kis->mat.element.size());
    return 1;
  }
  mat->prim_red = std::strtof(argv[4], nullptr);
  mat->prim_green = std::strtof(argv[5], nullptr);
  mat->prim_blue = std::strtof(argv[6], nullptr);
  if (mat->ext)
    mat->ext->diffuse = {mat->prim_red, mat->prim_green, mat->prim_blue, mat->ext->diffuse.alpha};
  return kova::kvSaveAsKb(*kis, argv[2]) ? 0 : 1;
}
