/// names: lists the objects of a KOVA file by name, each below its parent.
///
///     names file
///
/// Exit status 1 if the file cannot be loaded whole; what could be read is listed all the same.

#include "kova/kova.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using kova::Kis;
using kova::Obj;
using kova::Word;

constexpr Word NO_LINK = 0xffffffff;
constexpr int DEEPEST = 40; // objects below this are indented like it

/// A name of the file, for a terminal: bytes that are not printable are shown as '?'.
std::string nameOf(const Kis &kis, kova::Index index) {
  if (index < 0 || static_cast<std::size_t>(index) >= kis.name.element.size())
    return "(no name)";
  std::string name = kova::kvGetName(kis.name.element[static_cast<std::size_t>(index)]);
  for (char &character : name)
    if (character < ' ' || character > '~')
      character = '?';
  return name;
}

struct Place {
  Word object;
  int depth;
};

/// Walks the tree with a stack of its own, since a file may nest objects as deep as it likes; an object is listed
/// once, whatever the file's links claim.
void listFrom(const Kis &kis, Word root, std::vector<bool> &listed) {
  std::vector<Place> waiting = {{root, 0}};
  while (!waiting.empty()) {
    const Place place = waiting.back();
    waiting.pop_back();
    if (place.object >= listed.size() || listed[place.object])
      continue;
    listed[place.object] = true;
    const Obj &obj = kis.obj.element[place.object];
    std::printf("%*s%s\n", 2 * std::min(place.depth, DEEPEST), "", nameOf(kis, obj.obj_name_index).c_str());
    for (auto child = obj.child_link.rbegin(); child != obj.child_link.rend(); ++child)
      waiting.push_back({*child, place.depth + 1});
  }
}

} // namespace

int main(int argc, char **argv) {
  if (argc != 2) {
    std::fputs("Usage: names file\n", stderr);
    return 2;
  }
  const kova::KisHandle kis = kova::kvNewKis();
  if (!kis)
    return 2;
  const int loaded = kova::kvOpenKb(argv[1], *kis);
  std::vector<bool> listed(kis->obj.element.size());
  for (Word i = 0; i < listed.size(); ++i)
    if (kis->obj.element[i].obj_parent_link == NO_LINK)
      listFrom(*kis, i, listed);
  for (Word i = 0; i < listed.size(); ++i) // whose parent does not know them, or stands in a circle
    listFrom(*kis, i, listed);
  return loaded ? 0 : 1;
}
