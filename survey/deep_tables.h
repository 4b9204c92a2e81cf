/// The tables of the deep checks: which fields lead where, which are floats, which are keys.
#pragma once

#include "kova/kova.h"

#include <array>
#include <cstring>
#include <iterator>
#include <string_view>

namespace kova::survey {

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

// --- Fields ---------------------------------------------------------------------------------------------------------

using FieldBytes = std::span<const std::byte>;

/// A field of a record: one word, a structure, or an array of these.
struct Field {
  std::string_view record; ///< tells the types of records from one another
  const char *name;
  bool is_array;
  FieldBytes (*bytes)(const void *record);
};

/// Stands for a type of record. The address of something would do as well, but that g++ compares no two of them at
/// compile time if it looks for undefined behaviour.
template <class Record> consteval std::string_view recordType() { return __PRETTY_FUNCTION__; }

template <class Record, auto MEMBER> FieldBytes fieldBytes(const void *record) {
  const auto &field = static_cast<const Record *>(record)->*MEMBER;
  if constexpr (requires { field.data(); })
    return std::as_bytes(std::span(field));
  else
    return std::as_bytes(std::span(&field, 1));
}

template <class Record, RefKind KIND> FieldBytes refGroupBytes(const void *record) {
  return std::as_bytes(kvRefs(*static_cast<const TriGroup *>(record))[KIND].group_index);
}

template <class Record, RefKind KIND> FieldBytes refKeyBytes(const void *record) {
  return std::as_bytes(kvRefs(*static_cast<const TriGroup *>(record))[KIND].key);
}

template <class Record, auto MEMBER> constexpr Field field(const char *name) {
  constexpr bool IS_ARRAY = requires(const Record &record) { (record.*MEMBER).data(); };
  return {recordType<Record>(), name, IS_ARRAY, &fieldBytes<Record, MEMBER>};
}

/// An index, or an array of them, or references of two of them.
struct LinkRow : Field {
  const char *id;
  Target target;
  std::size_t stride = 1, first = 0; ///< of each `stride` words, those from `first` on are indices
};

template <class Record, auto MEMBER> constexpr LinkRow link(const char *id, const char *name, Target target) {
  return {field<Record, MEMBER>(name), id, target};
}

/// A node reference or an array of them: of the two words, the second one is the index.
template <class Record, auto MEMBER>
constexpr LinkRow nodeLink(const char *id, const char *name, Target target = Target::any) {
  return {field<Record, MEMBER>(name), id, target, 2, 1};
}

template <RefKind KIND> constexpr LinkRow refLink(const char *id, const char *name, Target target) {
  return {{recordType<TriGroup>(), name, true, &refGroupBytes<TriGroup, KIND>}, id, target};
}

/// Words of each of an array's records: `count` of them, from word `first` of its `stride` words.
struct WordsRow : Field {
  std::size_t stride, first, count;
};

/// Floats. Without more numbers, all words of the field are.
template <class Record, auto MEMBER>
constexpr WordsRow floats(const char *name, std::size_t stride = 1, std::size_t first = 0, std::size_t count = 1) {
  return {field<Record, MEMBER>(name), stride, first, count};
}

/// Keys: a word of each of an array's records.
template <class Record, auto MEMBER>
constexpr WordsRow keys(const char *name, std::size_t stride = 1, std::size_t first = 0) {
  return {field<Record, MEMBER>(name), stride, first, 1};
}

template <RefKind KIND> constexpr WordsRow refKeys(const char *name) {
  return {{recordType<TriGroup>(), name, true, &refKeyBytes<TriGroup, KIND>}, 1, 0, 1};
}

/// @return the rows of a table that are about one type of record. Rows that do not stand together do not compile.
template <class Record, class Row, std::size_t N> consteval std::span<const Row> rowsOf(const Row (&table)[N]) {
  std::size_t first = 0;
  while (first < N && table[first].record != recordType<Record>())
    ++first;
  std::size_t end = first;
  while (end < N && table[end].record == recordType<Record>())
    ++end;
  for (std::size_t i = end; i < N; ++i)
    if (table[i].record == recordType<Record>())
      throw "the rows of a record do not stand together";
  return std::span<const Row>(table).subspan(first, end - first);
}

// --- Links ----------------------------------------------------------------------------------------------------------

/// Not here, as the format does not say that they are indices, or of what: `lookat` and `upper` of an animation,
/// `next_key`, `obj_group`, `tlut_palette_number`, the offsets of mipmap images, the pixels of a colour-index image.
inline constexpr LinkRow LINKS[] = {
    link<Scene, &Scene::scene_name_index>("scene-name-link", "scene_name_index", Target::name),
    link<Scene, &Scene::obj_link>("scene-obj-link", "obj link", Target::obj),
    link<Scene, &Scene::env_link>("scene-env-link", "env link", Target::env),
    link<Scene, &Scene::cam_link>("scene-cam-link", "cam link", Target::cam),
    link<Scene, &Scene::light_link>("scene-light-link", "light link", Target::light),
    link<SceneListExt, &SceneListExt::chain_root_link>("scene-chain-root-link", "chain root link", Target::chain_root),
    link<SceneListExt, &SceneListExt::external_obj>("scene-external-obj", "external obj", Target::external_name),
    link<SceneListExt, &SceneListExt::external_env>("scene-external-env", "external env", Target::external_name),
    link<SceneListExt, &SceneListExt::external_cam>("scene-external-cam", "external cam", Target::external_name),
    link<SceneListExt, &SceneListExt::external_light>("scene-external-light", "external light", Target::external_name),
    link<Env, &Env::env_name_index>("env-name-link", "env_name_index", Target::name),
    link<Env, &Env::bg_sprite_img>("env-bg-sprite-link", "bg_sprite_img", Target::image),
    link<Cam, &Cam::came_name_index>("cam-name-link", "came_name_index", Target::name),
    link<Cam, &Cam::cam_lookat_obj>("cam-lookat-link", "cam_lookat_obj", Target::obj),
    link<Cam, &Cam::cam_eye_obj>("cam-eye-link", "cam_eye_obj", Target::obj),
    link<Cam, &Cam::cam_up_obj>("cam-up-link", "cam_up_obj", Target::obj),
    link<CamExt, &CamExt::external_lookat_obj>("cam-external-lookat", "external lookat obj", Target::external_name),
    link<CamExt, &CamExt::external_eye_obj>("cam-external-eye", "external eye obj", Target::external_name),
    link<CamExt, &CamExt::external_up_obj>("cam-external-up", "external up obj", Target::external_name),
    link<Light, &Light::light_name_index>("light-name-link", "light_name_index", Target::name),
    link<Obj, &Obj::obj_name_index>("obj-name-link", "obj_name_index", Target::name),
    link<Obj, &Obj::obj_parent_link>("obj-parent-link", "obj_parent_link", Target::obj),
    link<Obj, &Obj::obj_shape_link>("obj-shape-link", "obj_shape_link", Target::shape),
    link<Obj, &Obj::obj_mat_link>("obj-mat-link", "obj_mat_link", Target::mat),
    link<Obj, &Obj::obj_anim_link>("obj-anim-link", "obj_anim_link", Target::anim),
    link<Obj, &Obj::obj_coll_link>("obj-coll-link", "obj_coll_link", Target::coll),
    link<Obj, &Obj::LOD_link>("obj-lod-link", "LOD_link", Target::obj),
    link<Obj, &Obj::child_link>("obj-child-link", "child link", Target::obj),
    link<ObjExt, &ObjExt::obj_chain_root_link>("obj-chain-root-link", "obj_chain_root_link", Target::chain_root),
    link<ObjExt, &ObjExt::external_lod_obj>("obj-external-lod", "external lod obj", Target::external_name),
    link<ObjExt, &ObjExt::external_obj>("obj-external-obj", "external obj", Target::external_name),
    link<Shape, &Shape::shape_name_index>("shape-name-link", "shape_name_index", Target::name),
    link<Shape, &Shape::shape_tri_link>("shape-tri-link", "shape_tri_link", Target::tri),
    link<Shape, &Shape::shape_mat_link>("shape-mat-link", "shape_mat_link", Target::mat),
    link<Shape, &Shape::shape_part_link>("shape-part-link", "shape_part_link", Target::part),
    link<ShapeExt, &ShapeExt::external_mat>("shape-external-mat", "external mat", Target::external_name),
    link<VtxGroup, &VtxGroup::vtx_group_name>("vtx-group-name-link", "vtx_group_name", Target::name),
    link<TriGroup, &TriGroup::tri_group_name_index>("tri-group-name-link", "tri_group_name_index", Target::name),
    refLink<refVtx>("tri-group-vtx-link", "vtx_group_index", Target::vtx),
    refLink<refTriColor>("tri-group-tri-color-link", "tri_color_group_index", Target::tri_color),
    refLink<refVtxColor>("tri-group-vtx-color-link", "vtx_color_group_index", Target::vtx_color),
    refLink<refTriNv>("tri-group-tri-nv-link", "tri_nv_group_index", Target::tri_nv),
    refLink<refVtxNv>("tri-group-vtx-nv-link", "vtx_nv_group_index", Target::vtx_nv),
    refLink<refSt>("tri-group-st-link", "st_group_index", Target::st),
    link<Tri, &Tri::tri_nv_index>("tri-nv-index", "tri_nv_index", Target::own_tri_nv),
    link<Tri, &Tri::tri_color_index>("tri-color-index", "tri_color_index", Target::own_tri_color),
    link<Tri, &Tri::vtx_index0>("tri-vtx-index0", "vtx_index0", Target::own_vtx),
    link<Tri, &Tri::st_index0>("tri-st-index0", "st_index0", Target::own_st),
    link<Tri, &Tri::vtx_nv_index0>("tri-vtx-nv-index0", "vtx_nv_index0", Target::own_vtx_nv),
    link<Tri, &Tri::vtx_color_index0>("tri-vtx-color-index0", "vtx_color_index0", Target::own_vtx_color),
    link<Tri, &Tri::vtx_index1>("tri-vtx-index1", "vtx_index1", Target::own_vtx),
    link<Tri, &Tri::st_index1>("tri-st-index1", "st_index1", Target::own_st),
    link<Tri, &Tri::vtx_nv_index1>("tri-vtx-nv-index1", "vtx_nv_index1", Target::own_vtx_nv),
    link<Tri, &Tri::vtx_color_index1>("tri-vtx-color-index1", "vtx_color_index1", Target::own_vtx_color),
    link<Tri, &Tri::vtx_index2>("tri-vtx-index2", "vtx_index2", Target::own_vtx),
    link<Tri, &Tri::st_index2>("tri-st-index2", "st_index2", Target::own_st),
    link<Tri, &Tri::vtx_nv_index2>("tri-vtx-nv-index2", "vtx_nv_index2", Target::own_vtx_nv),
    link<Tri, &Tri::vtx_color_index2>("tri-vtx-color-index2", "vtx_color_index2", Target::own_vtx_color),
    link<Part, &Part::part_name_index>("part-name-link", "part_name_index", Target::name),
    link<Part, &Part::mat_index>("part-mat-link", "mat_index", Target::mat),
    link<Part, &Part::tri_group_index>("part-tri-group-link", "tri_group_index", Target::tri),
    link<Part, &Part::tri_index>("part-tri-index", "tri_index", Target::own_tri),
    link<Mat, &Mat::mat_name_index>("mat-name-link", "mat_name_index", Target::name),
    link<Mat, &Mat::local_light_index>("mat-light-link", "local_light_index", Target::light),
    link<Mat, &Mat::tex_index>("mat-tex-link", "tex_index", Target::tex),
    link<MatExt, &MatExt::external_local_light>("mat-external-light", "external local light", Target::external_name),
    link<MatExt, &MatExt::external_tex>("mat-external-tex", "external tex", Target::external_name),
    link<Tex, &Tex::tex_name_index>("tex-name-link", "tex_name_index", Target::name),
    link<TexStill, &TexStill::tex_img_index>("tex-img-link", "tex_img_index", Target::teximg),
    link<TexStill, &TexStill::tex_img_index>("tex-palette-img-link", "tex_img_index", Target::image),
    link<TexTiles, &TexTiles::tex_tile_img_index>("tex-tile-img-link", "tex_tile_img_index", Target::teximg),
    link<TexTiles, &TexTiles::tex_tile_img_index>("tex-palette-tile-img-link", "tex_tile_img_index", Target::image),
    link<TexExt, &TexExt::color_palette_index>("tex-palette-link", "color_palette_index", Target::color_palette),
    link<TexExt, &TexExt::external_tex_img>("tex-external-img", "external_tex_img", Target::external_name),
    link<TexExt, &TexExt::external_palette>("tex-external-palette", "external_palette", Target::external_name),
    link<AnimGroup, &AnimGroup::anim_name_index>("anim-name-link", "anim_name_index", Target::name),
    nodeLink<AnimGroupExt, &AnimGroupExt::orientation_constraint>("anim-orientation-link", "orientation constraint"),
    nodeLink<AnimGroupExt, &AnimGroupExt::direction_constraint>("anim-direction-link", "direction constraint"),
    nodeLink<AnimGroupExt, &AnimGroupExt::upvector_constraint>("anim-upvector-link", "upvector constraint"),
    nodeLink<AnimGroupExt, &AnimGroupExt::preferred_axis_constraint>("anim-preferred-axis-link",
                                                                     "preferred axis constraint"),
    nodeLink<AnimGroupExt, &AnimGroupExt::position_constraint>("anim-position-link", "position constraint"),
    nodeLink<AnimGroupExt, &AnimGroupExt::unique_scale_constraint>("anim-unique-scale-link", "unique scale constraint"),
    nodeLink<AnimGroupExt, &AnimGroupExt::classic_scale_constraint>("anim-classic-scale-link",
                                                                    "classic scale constraint"),
    link<AnimGroupExt, &AnimGroupExt::external_orientation_constraint>(
        "anim-external-orientation", "external orientation constraint", Target::external_name),
    link<AnimGroupExt, &AnimGroupExt::external_direction_constraint>(
        "anim-external-direction", "external direction constraint", Target::external_name),
    link<AnimGroupExt, &AnimGroupExt::external_upvector_constraint>(
        "anim-external-upvector", "external upvector constraint", Target::external_name),
    link<AnimGroupExt, &AnimGroupExt::external_preferred_axis_constraint>(
        "anim-external-preferred-axis", "external preferred axis constraint", Target::external_name),
    link<AnimGroupExt, &AnimGroupExt::external_position_constraint>(
        "anim-external-position", "external position constraint", Target::external_name),
    link<AnimGroupExt, &AnimGroupExt::external_unique_scale_constraint>(
        "anim-external-unique-scale", "external unique scale constraint", Target::external_name),
    link<AnimGroupExt, &AnimGroupExt::external_classic_scale_constraint>(
        "anim-external-classic-scale", "external classic scale constraint", Target::external_name),
    link<CollGroup, &CollGroup::coll_group_name_index>("coll-group-name-link", "coll_group_name_index", Target::name),
    link<Coll, &Coll::coll_name_index>("coll-name-link", "coll_name_index", Target::name),
    link<CollTerrain, &CollTerrain::shape_list_index>("coll-shape-link", "shape_list_index", Target::shape),
    link<Switch, &Switch::default_link_index>("switch-default-link", "default_link_index", Target::any),
    link<Switch, &Switch::case_dest_index>("switch-case-link", "case_dest_index", Target::any),
    link<CiImg, &CiImg::name_index>("ci-img-name-link", "name_index", Target::name),
    link<ColorPalette, &ColorPalette::name_index>("color-palette-name-link", "name_index", Target::name),
    link<Envelope, &Envelope::name_index>("envelope-name-link", "name_index", Target::name),
    link<FullWeightedPart, &FullWeightedPart::name_index>("full-weighted-name-link",
                                                          "name_index of a full weighted part", Target::name),
    nodeLink<FullWeightedPart, &FullWeightedPart::transform_node_full>("full-weighted-node-link",
                                                                       "transform_node_full"),
    link<FullWeightedPart, &FullWeightedPart::external_transform_obj>("full-weighted-external-obj",
                                                                      "external_transform_obj", Target::external_name),
    link<FullWeightedPart, &FullWeightedPart::full_weighted_st_group_index>("full-weighted-st-link",
                                                                            "full_weighted_st_group_index", Target::st),
    link<WeightedPart, &WeightedPart::name_index>("weighted-name-link", "name_index of a weighted part", Target::name),
    link<WeightedPart, &WeightedPart::weight_st_group_index>("weighted-st-link", "weight_st_group_index", Target::st),
    nodeLink<WeightedPart, &WeightedPart::affected_node>("weighted-node-link", "affected_node"),
    link<WeightedPart, &WeightedPart::external_affected_obj>("weighted-external-obj", "external_affected_obj",
                                                             Target::external_name),
    link<WeightedPart, &WeightedPart::weight_group_index>("weighted-weight-link", "weight_group_index", Target::weight),
    link<MorphPart, &MorphPart::name_index>("morph-name-link", "name_index of a morph part", Target::name),
    nodeLink<MorphPart, &MorphPart::node0>("morph-node0-link", "node[0]"),
    nodeLink<MorphPart, &MorphPart::node1>("morph-node1-link", "node[1]"),
    link<MorphPart, &MorphPart::external_obj0>("morph-external-obj0", "external_obj[0]", Target::external_name),
    link<MorphPart, &MorphPart::external_obj1>("morph-external-obj1", "external_obj[1]", Target::external_name),
    link<MorphPart, &MorphPart::morph_st_group_index>("morph-st-link", "morph_st_group_index", Target::st),
    link<VtxTriNvColor, &VtxTriNvColor::vtx_group_index>("skin-vtx-link", "vtx_group_index", Target::vtx),
    link<VtxTriNvColor, &VtxTriNvColor::vtx_nv_group_index>("skin-vtx-nv-link", "vtx_nv_group_index", Target::vtx_nv),
    link<VtxTriNvColor, &VtxTriNvColor::tri_nv_group_index>("skin-tri-nv-link", "tri_nv_group_index", Target::tri_nv),
    link<VtxTriNvColor, &VtxTriNvColor::vtx_color_group_index>("skin-vtx-color-link", "vtx_color_group_index",
                                                               Target::vtx_color),
    link<VtxTriNvColor, &VtxTriNvColor::tri_color_group_index>("skin-tri-color-link", "tri_color_group_index",
                                                               Target::tri_color),
    nodeLink<EnvelopeTri, &EnvelopeTri::envelope_part_for_tri>("envelope-tri-part", "envelope_part_for_tri",
                                                               Target::own_part),
    link<EnvelopeTri, &EnvelopeTri::tri_nv_index>("envelope-tri-nv-index", "tri_nv_index", Target::own_tri_nv),
    link<EnvelopeTri, &EnvelopeTri::tri_color_index>("envelope-tri-color-index", "tri_color_index",
                                                     Target::own_tri_color),
    link<EnvelopeTri, &EnvelopeTri::weight_index_tri>("envelope-tri-weight-index", "weight_index_tri",
                                                      Target::own_weight),
    nodeLink<EnvelopeVtx, &EnvelopeVtx::envelope_part>("envelope-vtx-part", "envelope_part", Target::own_part),
    link<EnvelopeVtx, &EnvelopeVtx::vtx_index>("envelope-vtx-index", "vtx_index", Target::own_vtx),
    link<EnvelopeVtx, &EnvelopeVtx::st_index>("envelope-st-index", "st_index", Target::own_st),
    link<EnvelopeVtx, &EnvelopeVtx::vtx_nv_index>("envelope-vtx-nv-index", "vtx_nv_index", Target::own_vtx_nv),
    link<EnvelopeVtx, &EnvelopeVtx::vtx_color_index>("envelope-vtx-color-index", "vtx_color_index",
                                                     Target::own_vtx_color),
    link<EnvelopeVtx, &EnvelopeVtx::weight_index>("envelope-weight-index", "weight_index", Target::own_weight),
    link<ClusterShape, &ClusterShape::name_index>("cluster-shape-name-link", "name_index", Target::name),
    link<Cluster, &Cluster::name_index>("cluster-name-link", "name_index of a cluster", Target::name),
    nodeLink<Cluster, &Cluster::transform_node>("cluster-node-link", "transform_node"),
    link<Cluster, &Cluster::external_transform_obj>("cluster-external-obj", "external_transform_obj",
                                                    Target::external_name),
    link<Cluster, &Cluster::cluster_st_group_index>("cluster-st-link", "cluster_st_group_index", Target::st),
    nodeLink<ClusterTri, &ClusterTri::cluster_for_tri>("cluster-tri-cluster", "cluster_for_tri", Target::own_cluster),
    link<ClusterTri, &ClusterTri::tri_nv_index>("cluster-tri-nv-index", "tri_nv_index", Target::own_tri_nv),
    link<ClusterTri, &ClusterTri::tri_color_index>("cluster-tri-color-index", "tri_color_index", Target::own_tri_color),
    nodeLink<ClusterVtx, &ClusterVtx::cluster>("cluster-vtx-cluster", "cluster", Target::own_cluster),
    link<ClusterVtx, &ClusterVtx::vtx_index>("cluster-vtx-index", "vtx_index", Target::own_vtx),
    link<ClusterVtx, &ClusterVtx::st_index>("cluster-st-index", "st_index", Target::own_st),
    link<ClusterVtx, &ClusterVtx::vtx_nv_index>("cluster-vtx-nv-index", "vtx_nv_index", Target::own_vtx_nv),
    link<ClusterVtx, &ClusterVtx::vtx_color_index>("cluster-vtx-color-index", "vtx_color_index", Target::own_vtx_color),
    link<WeightGroup, &WeightGroup::name_index>("weight-group-name-link", "name_index", Target::name),
    link<ChainRoot, &ChainRoot::name_index>("chain-root-name-link", "name_index", Target::name),
    link<ChainRoot, &ChainRoot::anim_index>("chain-root-anim-link", "anim_index", Target::anim),
    link<ChainRoot, &ChainRoot::joint_index>("chain-root-joint-link", "joint_index", Target::joint),
    link<ChainRoot, &ChainRoot::obj_index>("chain-root-obj-link", "obj_index", Target::obj),
    link<ChainRoot, &ChainRoot::external_obj>("chain-root-external-obj", "external_obj", Target::external_name),
    link<Joint, &Joint::name_index>("joint-name-link", "name_index", Target::name),
    link<Joint, &Joint::joint_index>("joint-joint-link", "joint_index", Target::joint),
    link<Joint, &Joint::effector_index>("joint-effector-link", "effector_index", Target::effector),
    link<Joint, &Joint::anim_index>("joint-anim-link", "anim_index", Target::anim),
    link<Joint, &Joint::obj_index>("joint-obj-link", "obj_index", Target::obj),
    link<Joint, &Joint::external_obj>("joint-external-obj", "external_obj", Target::external_name),
    link<Effector, &Effector::name_index>("effector-name-link", "name_index", Target::name),
    link<Effector, &Effector::anim_index>("effector-anim-link", "anim_index", Target::anim),
    link<Effector, &Effector::obj_index>("effector-obj-link", "obj_index", Target::obj),
    link<Effector, &Effector::external_obj>("effector-external-obj", "external_obj", Target::external_name),
};
inline constexpr std::size_t LINK_NUM = std::size(LINKS);

// --- Floats and keys ------------------------------------------------------------------------------------------------

inline constexpr WordsRow FLOATS[] = {
    floats<Cam, &Cam::cam_near_clip>("cam_near_clip"),
    floats<Cam, &Cam::cam_far_clip>("cam_far_clip"),
    floats<Cam, &Cam::cam_right_clip>("cam_right_clip"),
    floats<Cam, &Cam::cam_left_clip>("cam_left_clip"),
    floats<Cam, &Cam::cam_top_clip>("cam_top_clip"),
    floats<Cam, &Cam::cam_bottom_clip>("cam_bottom_clip"),
    floats<Cam, &Cam::cam_fovy>("cam_fovy"),
    floats<Cam, &Cam::cam_aspect>("cam_aspect"),
    floats<Cam, &Cam::cam_scale>("cam_scale"),
    floats<Light, &Light::ambient_r>("ambient_r"),
    floats<Light, &Light::ambient_g>("ambient_g"),
    floats<Light, &Light::ambient_b>("ambient_b"),
    floats<Light, &Light::dir_light>("a directional light", 11, 3, 8),
    floats<Obj, &Obj::LOD_dist>("LOD_dist"),
    floats<ObjExt, &ObjExt::external_lod_obj_dist>("external_lod_obj_dist"),
    floats<VtxGroup, &VtxGroup::vtx>("vtx"),
    floats<TriColorGroup, &TriColorGroup::color>("a triangle colour"),
    floats<VtxColorGroup, &VtxColorGroup::color>("a vertex colour"),
    floats<TriNvGroup, &TriNvGroup::normal>("a triangle normal"),
    floats<VtxNvGroup, &VtxNvGroup::normal>("a vertex normal"),
    floats<StGroup, &StGroup::st>("st"),
    floats<Mat, &Mat::prim_red>("prim_red"),
    floats<Mat, &Mat::prim_green>("prim_green"),
    floats<Mat, &Mat::prim_blue>("prim_blue"),
    floats<Mat, &Mat::prim_alpha>("prim_alpha"),
    floats<MatExt, &MatExt::ambient>("ambient"),
    floats<MatExt, &MatExt::emission>("emission"),
    floats<MatExt, &MatExt::diffuse>("diffuse"),
    floats<MatExt, &MatExt::prim_for_fog>("prim_for_fog"),
    floats<MatExt, &MatExt::prim_color_anim>("prim_color_anim", 6, 2, 4),
    floats<MatExt, &MatExt::prim_color_anim_for_fog>("prim_color_anim_for_fog", 6, 2, 4),
    floats<AnimGroup, &AnimGroup::step>("translate or rotate_axis", 13, 3, 6),
    floats<AnimGroup, &AnimGroup::step>("scale", 13, 10, 3),
    floats<AnimGroup, &AnimGroup::keyframe>("translate or rotate_axis", 16, 6, 6),
    floats<AnimGroup, &AnimGroup::keyframe>("scale", 16, 13, 3),
    floats<AnimGroupExt, &AnimGroupExt::rotate_axis>("RotateAxis", 10, 2, 8),
    floats<AnimGroupExt, &AnimGroupExt::rotate_x>("RotateX", 4, 2, 2),
    floats<AnimGroupExt, &AnimGroupExt::rotate_y>("RotateY", 4, 2, 2),
    floats<AnimGroupExt, &AnimGroupExt::rotate_z>("RotateZ", 4, 2, 2),
    floats<AnimGroupExt, &AnimGroupExt::orientation_xy>("OrientationXY", 14, 2, 12),
    floats<AnimGroupExt, &AnimGroupExt::translation>("Translation", 8, 2, 6),
    floats<AnimGroupExt, &AnimGroupExt::unique_scale>("unique scale", 8, 2, 6),
    floats<AnimGroupExt, &AnimGroupExt::classic_scale>("classic scale", 8, 2, 6),
    floats<CollPoint, &CollPoint::coll_point>("coll_point"),
    floats<CollCircle, &CollCircle::center>("center"),
    floats<CollCircle, &CollCircle::normal>("normal"),
    floats<CollCircle, &CollCircle::radius>("radius"),
    floats<CollSphere, &CollSphere::center>("center"),
    floats<CollSphere, &CollSphere::radius>("radius"),
    floats<CollCylinder, &CollCylinder::center>("center"),
    floats<CollCylinder, &CollCylinder::radius>("radius"),
    floats<CollCylinder, &CollCylinder::height>("height"),
    floats<CollBox, &CollBox::center>("center"),
    floats<CollBox, &CollBox::length>("length"),
    floats<WeightGroup, &WeightGroup::weight>("weight"),
    floats<Joint, &Joint::joint_length>("joint_length"),
    floats<Joint, &Joint::resplain_axis>("resplain_axis"),
};

inline constexpr WordsRow KEYS[] = {
    refKeys<refVtx>("vtx_anim_key"),
    refKeys<refTriColor>("tri_color_anim_key"),
    refKeys<refVtxColor>("vtx_color_anim_key"),
    refKeys<refTriNv>("tri_nv_anim_key"),
    refKeys<refVtxNv>("vtx_nv_anim_key"),
    refKeys<refSt>("st_anim_key"),
    keys<MatExt, &MatExt::prim_color_anim>("prim_color_anim", 6, 1),
    keys<MatExt, &MatExt::prim_color_anim_for_fog>("prim_color_anim_for_fog", 6, 1),
    keys<TexTiles, &TexTiles::tex_tile_scale_key>("tex_tile_scale_key"),
    keys<TexTiles, &TexTiles::tex_tile_offset_key>("tex_tile_offset_key"),
    keys<TexTiles, &TexTiles::tex_tile_img_key>("tex_tile_img_key"),
    keys<AnimGroup, &AnimGroup::keyframe>("key", 16, 3),
    keys<AnimGroupExt, &AnimGroupExt::rotate_axis>("RotateAxis", 10, 1),
    keys<AnimGroupExt, &AnimGroupExt::rotate_x>("RotateX", 4, 1),
    keys<AnimGroupExt, &AnimGroupExt::rotate_y>("RotateY", 4, 1),
    keys<AnimGroupExt, &AnimGroupExt::rotate_z>("RotateZ", 4, 1),
    keys<AnimGroupExt, &AnimGroupExt::orientation_xy>("OrientationXY", 14, 1),
    keys<AnimGroupExt, &AnimGroupExt::translation>("Translation", 8, 1),
    keys<AnimGroupExt, &AnimGroupExt::unique_scale>("unique scale", 8, 1),
    keys<AnimGroupExt, &AnimGroupExt::classic_scale>("classic scale", 8, 1),
};

} // namespace kova::survey
