/// triangles: prints the triangles of each shape of a KOVA file, a line for each with the coordinates of its corners.
///
///     triangles file

#include "kova/kova.h"

#include <cstdio>

namespace {

/// A corner that is not there is passed over.
void printCorner(const kova::VtxGroup &vertices, kova::Index index) {
  if (const kova::Xyz *const at = kova::kvElement(vertices.vtx, index))
    std::printf("  (%g %g %g)", static_cast<double>(at->x), static_cast<double>(at->y), static_cast<double>(at->z));
}

void printTriangles(const kova::Kis &kis, const kova::TriGroup &group) {
  // A reference can name a group for each frame or key; the first one is that of the shape at rest.
  const kova::AnimRef ref = kova::kvRefs(group)[kova::refVtx];
  const kova::VtxGroup *const vertices =
      ref.group_index.empty() ? nullptr : kova::kvElement(kis.vtx, ref.group_index.front());
  if (vertices == nullptr)
    return;
  for (const kova::Tri &tri : group.tri) {
    printCorner(*vertices, tri.vtx_index0);
    printCorner(*vertices, tri.vtx_index1);
    printCorner(*vertices, tri.vtx_index2);
    std::putchar('\n');
  }
}

} // namespace

int main(int argc, char **argv) {
  const kova::KisHandle kis = kova::kvNewKis();
  if (argc != 2 || !kis || !kova::kvOpenKb(argv[1], *kis))
    return 1; // the reasons are on standard error
  for (const kova::Shape &shape : kis->shape.element) {
    const kova::TriGroup *const group = kova::kvElement(kis->tri, shape.shape_tri_link);
    std::printf("shape %d: %zu triangles\n", shape.this_shape_index, group != nullptr ? group->tri.size() : 0);
    if (group != nullptr)
      printTriangles(*kis, *group);
  }
}
