/// How the deep checks call links, floats and keys where the format's own names do not say it.
#pragma once

#include "format/all.h"

#include <span>

namespace kova::survey::deep {

// --- Targets --------------------------------------------------------------------------------------------------------

/// What the findings say of a target of links.
struct Target {
  To to;
  const char *meaning;
  const char *name = nullptr; ///< of what a list has; else it is the list's own
};

inline constexpr Target TARGETS[] = {
    {To::env, "A link leads to an environment that is not there."},
    {To::cam, "A link leads to a camera that is not there."},
    {To::light, "A link leads to a light that is not there."},
    {To::obj, "A link leads to an object that is not there."},
    {To::shape, "A link leads to a shape that is not there."},
    {To::vtx, "An index leads to a vertex group that is not there."},
    {To::tri, "An index leads to a triangle group that is not there."},
    {To::tri_color, "An index leads to a group of triangle colours that is not there.", "the list of triangle colours"},
    {To::tri_nv, "An index leads to a group of triangle normals that is not there.", "the list of triangle normals"},
    {To::st, "An index leads to a group of texture coordinates that is not there."},
    {To::part, "A link leads to a part that is not there."},
    {To::mat, "A link leads to a material that is not there."},
    {To::tex, "An index leads to a texture that is not there."},
    {To::teximg, "An index leads to a texture image that is not there."},
    {To::anim, "A link leads to an animation group that is not there."},
    {To::coll, "A link leads to a collision group that is not there."},
    {To::name, "An index leads to a name that is not there."},
    {To::color_palette, "An index leads to a colour palette that is not there."},
    {To::weight, "An index leads to a weight group that is not there."},
    {To::chain_root, "A link leads to a chain root that is not there."},
    {To::joint, "An index leads to a joint that is not there."},
    {To::effector, "An index leads to an effector that is not there."},
    {To::external_name, "A reference into another file leads to a name that is not there."},
    {To::vtx_color, "An index leads to a group of vertex colours that is not there.", "the list of vertex colours"},
    {To::vtx_nv, "An index leads to a group of vertex normals that is not there.", "the list of vertex normals"},
    {To::image, "An index leads to an image that is not there.", "the longer list of images"},
    {To::any, "A link leads to a record that is not there, whatever its kind.", "the longest list"},
    {To::own_vtx, "A triangle uses a vertex that its vertex group lacks.", "its vertex group"},
    {To::own_tri_color, "A triangle uses a colour that its group of triangle colours lacks.",
     "its group of triangle colours"},
    {To::own_vtx_color, "A triangle uses a colour that its group of vertex colours lacks.",
     "its group of vertex colours"},
    {To::own_tri_nv, "A triangle uses a normal that its group of triangle normals lacks.",
     "its group of triangle normals"},
    {To::own_vtx_nv, "A triangle uses a normal that its group of vertex normals lacks.", "its group of vertex normals"},
    {To::own_st, "A triangle uses coordinates that its group of texture coordinates lacks.",
     "its group of texture coordinates"},
    {To::own_weight, "A triangle of a skin uses a weight that its weight group lacks.", "its weight group"},
    {To::own_tri, "A part uses a triangle that its triangle group lacks.", "its triangle group"},
    {To::own_part, "A triangle of a skin uses a part that its envelope lacks.", "the envelope's longest list of parts"},
    {To::own_cluster, "A triangle of a skin uses a cluster that its cluster shape lacks.", "its shape"},
};

/// Does not compile for a target that has no row, unless it is an element of a list.
constexpr Target targetOf(To to) {
  Target target = {to, "An index leads to an element of a list that is not there."};
  for (const Target &row : TARGETS)
    if (row.to == to)
      target = row;
  if (target.name == nullptr)
    target.name = LISTS.at(static_cast<std::size_t>(to)).name;
  return target;
}

// --- Ids ------------------------------------------------------------------------------------------------------------

/// @return a copy of a text.
constexpr WordName copied(std::string_view text) {
  WordName copy;
  for (const char character : text)
    copy.text[copy.length++] = character;
  return copy;
}

/// A type of record, and what the ids of its links begin with.
template <class Head> struct Linked { WordName prefix; };
template <class Head> constexpr Linked<Head> linked(std::string_view prefix) { return {copied(prefix)}; }

/// @return the elements of a list, under the name that they have in the dump: of "ChainRoot" it is "chain_root".
template <class List> constexpr auto linkedElements() {
  using Elements = std::remove_cvref_t<decltype(ListFormat<List>::elements)>;
  Linked<typename Elements::Head> linked;
  WordName &prefix = linked.prefix;
  for (const char character : Elements::kind()) {
    const bool is_capital = character >= 'A' && character <= 'Z';
    if (is_capital && prefix.length != 0)
      prefix.text[prefix.length++] = '_';
    prefix.text[prefix.length++] = is_capital ? static_cast<char>(character - 'A' + 'a') : character;
  }
  return linked;
}

/// The records of a list that may have links. Specialized where there are links behind the words of its elements, in
/// records inside of them.
template <class List> inline constexpr auto LINKED_IN = std::tuple{linkedElements<List>()};

template <>
inline constexpr auto LINKED_IN<Scene> = std::tuple{linked<SceneHead>("scene"), linked<SceneListExtHead>("scene")};
template <> inline constexpr auto LINKED_IN<CamList> = std::tuple{linked<CamHead>("cam"), linked<CamExt>("cam")};
template <> inline constexpr auto LINKED_IN<ObjList> = std::tuple{linked<ObjHead>("obj"), linked<ObjExtHead>("obj")};
template <>
inline constexpr auto LINKED_IN<ShapeList> = std::tuple{linked<ShapeHead>("shape"), linked<ShapeExt>("shape")};
template <>
inline constexpr auto LINKED_IN<TriList> = std::tuple{linked<TriGroupHead>("tri_group"), linked<TriHead>("tri")};
template <> inline constexpr auto LINKED_IN<MatList> = std::tuple{linked<MatHead>("mat"), linked<MatExtHead>("mat")};
template <>
inline constexpr auto LINKED_IN<TexList> =
    std::tuple{linked<TexHead>("tex"), linked<TexStill>("tex"), linked<TexTilesHead>("tex"), linked<TexExtHead>("tex")};
template <>
inline constexpr auto LINKED_IN<AnimList> = std::tuple{linked<AnimGroupHead>("anim"), linked<AnimGroupExtHead>("anim")};
template <>
inline constexpr auto LINKED_IN<CollList> =
    std::tuple{linked<CollGroupHead>("coll_group"), linked<CollHead>("coll"), linked<CollTerrain>("coll")};
template <>
inline constexpr auto LINKED_IN<EnvelopeList> =
    std::tuple{linked<EnvelopeHead>("envelope"),     linked<FullWeightedPartHead>("full_weighted"),
               linked<WeightedPartHead>("weighted"), linked<MorphPartHead>("morph"),
               linked<VtxTriNvColor>("skin"),        linked<EnvelopeTri>("envelope"),
               linked<EnvelopeVtx>("envelope")};
template <>
inline constexpr auto LINKED_IN<ClusterList> =
    std::tuple{linked<ClusterShapeHead>("cluster_shape"), linked<Cluster>("cluster"), linked<ClusterTri>("cluster"),
               linked<ClusterVtx>("cluster")};

/// In the order of the catalogue.
inline constexpr auto LINKED =
    std::apply([]<class... List>(const ListOf<List> &...) { return std::tuple_cat(LINKED_IN<List>...); }, LIST_ROWS);

/// @return the id of a link: what its record is called, and its word without what many of them end with. So
/// `obj_shape_link` of an object is "obj-shape-link"; a reference into another file, as `external_lod_obj`, is
/// "obj-external-lod"; what a triangle uses keeps its name, as `vtx_index0` in "tri-vtx-index0".
constexpr WordName idOf(std::string_view prefix, std::string_view word, To to) {
  const bool is_own = to >= To::own_vtx, is_external = to == To::external_name;
  for (const std::string_view ending :
       {"_img", "_obj", "_group_index", "_list_index", "_index", "_link", "_constraint"})
    if (!is_own && word.ends_with(ending) && word != "external_obj")
      word.remove_suffix(ending.size());
  if (word.starts_with(prefix) && word.substr(prefix.size()).starts_with('_'))
    word.remove_prefix(prefix.size() + 1);
  WordName id;
  for (const std::string_view part :
       {prefix, std::string_view("-"), word, std::string_view(is_own || is_external ? "" : "-link")})
    for (const char character : part)
      id.text[id.length++] = character == '_'                       ? '-'
                             : character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                                    : character;
  return id;
}

// --- Exceptions -----------------------------------------------------------------------------------------------------

/// Stands for a type of record. The address of something would do as well, but that g++ compares no two of them at
/// compile time if it looks for undefined behaviour.
template <class Record> consteval std::string_view recordType() { return __PRETTY_FUNCTION__; }

/// A word, or an array, with an id or a label that does not follow from its name.
struct Exception {
  std::string_view record, word;
  const char *id = nullptr;
  const char *label = nullptr;
};
template <class Head> consteval Exception id(const char *word, const char *id) {
  return {recordType<Head>(), word, id};
}
template <class Head> consteval Exception label(const char *word, const char *label) {
  return {recordType<Head>(), word, nullptr, label};
}

inline constexpr Exception EXCEPTIONS[] = {
    id<CamHead>("came_name_index", "cam-name-link"),
    id<PartHead>("tri_group_index", "part-tri-group-link"),
    id<MatHead>("local_light_index", "mat-light-link"),
    id<MatExtHead>("external_local_light", "mat-external-light"),
    id<TexStill>("tex_img_index", "tex-palette-img-link"),
    id<TexTilesHead>("tex_tile_img_index", "tex-palette-tile-img-link"),
    id<TexExtHead>("color_palette_index", "tex-palette-link"),
    id<TexExtHead>("external_tex_img", "tex-external-img"),
    id<SwitchHead>("case_dest_index", "switch-case-link"),
    id<FullWeightedPartHead>("transform_node_full", "full-weighted-node-link"),
    id<FullWeightedPartHead>("external_transform_obj", "full-weighted-external-obj"),
    id<WeightedPartHead>("weight_st_group_index", "weighted-st-link"),
    id<WeightedPartHead>("affected_node", "weighted-node-link"),
    id<WeightedPartHead>("external_affected_obj", "weighted-external-obj"),
    id<EnvelopeTri>("envelope_part_for_tri", "envelope-tri-part"),
    id<EnvelopeTri>("weight_index_tri", "envelope-tri-weight-index"),
    id<EnvelopeVtx>("envelope_part", "envelope-vtx-part"),
    id<Cluster>("transform_node", "cluster-node-link"),
    id<Cluster>("external_transform_obj", "cluster-external-obj"),
    id<ClusterTri>("cluster_for_tri", "cluster-tri-cluster"),
    id<ClusterVtx>("cluster", "cluster-vtx-cluster"),

    label<FullWeightedPartHead>("name_index", "name_index of a full weighted part"),
    label<WeightedPartHead>("name_index", "name_index of a weighted part"),
    label<MorphPartHead>("name_index", "name_index of a morph part"),
    label<Cluster>("name_index", "name_index of a cluster"),
    label<LightHead>("dir_light", "a directional light"),
    label<TriColorGroupHead>("color", "a triangle colour"),
    label<VtxColorGroupHead>("color", "a vertex colour"),
    label<TriNvGroupHead>("normal", "a triangle normal"),
    label<VtxNvGroupHead>("normal", "a vertex normal"),
    label<MatExtHead>("prim_color_anim", "prim_color_anim"),
    label<MatExtHead>("prim_color_anim_for_fog", "prim_color_anim_for_fog"),
    label<AnimStep>("translate", "translate or rotate_axis"),
    label<AnimStep>("rotate_axis", "translate or rotate_axis"),
    label<AnimStep>("scale", "scale"),
    label<AnimKeyframe>("translate", "translate or rotate_axis"),
    label<AnimKeyframe>("rotate_axis", "translate or rotate_axis"),
    label<AnimKeyframe>("scale", "scale"),
    label<AnimKeyframe>("key", "key"),
    label<AnimGroupExtHead>("unique_scale", "unique scale"),
    label<AnimGroupExtHead>("classic_scale", "classic scale"),
};

/// @return the id, or the label, that a word of a record has instead of another one.
template <class Head> constexpr WordName idOr(std::string_view word, const WordName &other) {
  for (const Exception &row : EXCEPTIONS)
    if (row.id != nullptr && row.record == recordType<Head>() && row.word == word)
      return copied(row.id);
  return other;
}
template <class Head> constexpr WordName labelOr(std::string_view word, std::string_view other) {
  for (const Exception &row : EXCEPTIONS)
    if (row.label != nullptr && row.record == recordType<Head>() && row.word == word)
      return copied(row.label);
  return copied(other);
}

} // namespace kova::survey::deep
