/// What the links of the deep checks lead to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace kova::survey::deep {

/// What an index leads to: the elements of a list, or what a group of triangles or a part refers to.
enum class Target : std::uint8_t {
  env,
  cam,
  light,
  obj,
  shape,
  vtx,
  tri,
  tri_color,
  vtx_color,
  tri_nv,
  vtx_nv,
  st,
  part,
  mat,
  tex,
  teximg,
  anim,
  coll,
  name,
  color_palette,
  weight,
  chain_root,
  joint,
  effector,
  external_name,
  image,   ///< of one of the lists of images
  any,     ///< of a list that is not known here: the kind or type beside the link says which
  own_vtx, ///< from here on in the order of `RefKind`
  own_tri_color,
  own_vtx_color,
  own_tri_nv,
  own_vtx_nv,
  own_st,
  own_weight,
  own_tri,
  own_part,
  own_cluster
};
inline constexpr auto FIRST_OWN = static_cast<std::size_t>(Target::own_vtx);

struct TargetRow {
  const char *name;
  const char *meaning;
};

inline constexpr TargetRow TARGETS[] = {
    {"EnvList", "A link leads to an environment that is not there."},
    {"CamList", "A link leads to a camera that is not there."},
    {"LightList", "A link leads to a light that is not there."},
    {"ObjList", "A link leads to an object that is not there."},
    {"ShapeList", "A link leads to a shape that is not there."},
    {"VtxList", "An index leads to a vertex group that is not there."},
    {"TriList", "An index leads to a triangle group that is not there."},
    {"the list of triangle colours", "An index leads to a group of triangle colours that is not there."},
    {"the list of vertex colours", "An index leads to a group of vertex colours that is not there."},
    {"the list of triangle normals", "An index leads to a group of triangle normals that is not there."},
    {"the list of vertex normals", "An index leads to a group of vertex normals that is not there."},
    {"StList", "An index leads to a group of texture coordinates that is not there."},
    {"PartList", "A link leads to a part that is not there."},
    {"MatList", "A link leads to a material that is not there."},
    {"TexList", "An index leads to a texture that is not there."},
    {"TeximgList", "An index leads to a texture image that is not there."},
    {"AnimList", "A link leads to an animation group that is not there."},
    {"CollList", "A link leads to a collision group that is not there."},
    {"NameList", "An index leads to a name that is not there."},
    {"ColorPaletteList", "An index leads to a colour palette that is not there."},
    {"WeightList", "An index leads to a weight group that is not there."},
    {"ChainRootList", "A link leads to a chain root that is not there."},
    {"JointList", "An index leads to a joint that is not there."},
    {"EffectorList", "An index leads to an effector that is not there."},
    {"ExternalNameList", "A reference into another file leads to a name that is not there."},
    {"the longer list of images", "An index leads to an image that is not there."},
    {"the longest list", "A link leads to a record that is not there, whatever its kind."},
    {"its vertex group", "A triangle uses a vertex that its vertex group lacks."},
    {"its group of triangle colours", "A triangle uses a colour that its group of triangle colours lacks."},
    {"its group of vertex colours", "A triangle uses a colour that its group of vertex colours lacks."},
    {"its group of triangle normals", "A triangle uses a normal that its group of triangle normals lacks."},
    {"its group of vertex normals", "A triangle uses a normal that its group of vertex normals lacks."},
    {"its group of texture coordinates", "A triangle uses coordinates that its group of texture coordinates lacks."},
    {"its weight group", "A triangle of a skin uses a weight that its weight group lacks."},
    {"its triangle group", "A part uses a triangle that its triangle group lacks."},
    {"the envelope's longest list of parts", "A triangle of a skin uses a part that its envelope lacks."},
    {"its shape", "A triangle of a skin uses a cluster that its cluster shape lacks."},
};
inline constexpr std::size_t TARGET_NUM = std::size(TARGETS);
static_assert(TARGET_NUM == static_cast<std::size_t>(Target::own_cluster) + 1, "a row for each target");

} // namespace kova::survey::deep
