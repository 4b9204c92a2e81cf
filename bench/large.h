/// Large scene files for the benchmarks: version 1.0, valid, the same bytes on every run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kova::bench {

struct Workload {
  const char *name;
  std::vector<unsigned char> (*make)();
};

/// About 90 MB of triangles with their vertices, normals and texture coordinates.
std::vector<unsigned char> makeMesh();
/// About 90 MB of triangles over few vertices: nearly all of it integers.
std::vector<unsigned char> makeTriangles();
/// About 90 MB of vertex groups.
std::vector<unsigned char> makeFloats();
/// 32 MB of texels.
std::vector<unsigned char> makeTexels();

inline constexpr Workload WORKLOADS[] = {
    {"mesh", makeMesh}, {"triangles", makeTriangles}, {"floats", makeFloats}, {"texels", makeTexels}};

} // namespace kova::bench
