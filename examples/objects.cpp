/// objects: lists the objects of a KOVA file, each with its name and that of its parent.
///
///     objects file

#include "kova/kova.h"

#include <cstdio>

namespace {

/// A name of the file, for a terminal: bytes that are not printable ASCII are shown as '?'.
std::string nameOf(const kova::Kis &kis, const kova::Obj &obj) {
  std::string name = kova::kvNameOf(kis, obj.obj_name_index);
  for (char &character : name)
    if (character < ' ' || character > '~')
      character = '?';
  return name.empty() ? "(no name)" : name;
}

} // namespace

int main(int argc, char **argv) {
  const kova::KisHandle kis = kova::kvNewKis();
  if (argc != 2 || !kis || !kova::kvOpenKb(argv[1], *kis))
    return 1; // the reasons are on standard error
  for (const kova::Obj &obj : kis->obj.element) {
    const kova::Obj *const parent = kova::kvElement(kis->obj, obj.obj_parent_link);
    if (parent != nullptr)
      std::printf("%s, child of %s\n", nameOf(*kis, obj).c_str(), nameOf(*kis, *parent).c_str());
    else
      std::printf("%s\n", nameOf(*kis, obj).c_str());
  }
}
