/// The lists of a KOVA file in the order in which they stand in it: the one place that knows this order, their names,
/// their tags, the words of the header with their sizes, and what they are called as targets of links.
///
/// Whoever does the same for every list goes over them with `eachList`. Whoever does something of its own for every
/// list has a table with one row for each, built by `inListOrder`, so that a list that is missing, doubled or out of
/// its order does not compile.
#pragma once

#include "kova/kova.h"

#include <array>
#include <string_view>
#include <tuple>

namespace kova {

struct ListRow {
  const char *name;
  Word tag;
  Word FileHeader::*size; ///< the word of the header, or of its maker block, with the list's size in bytes
};

/// The same with the list's place in the model.
template <class List> struct ListOf : ListRow { List Kis::*list; };
template <class List> ListOf(ListRow, List Kis::*) -> ListOf<List>;

/// File order is neither the order of the tags nor that of the header's words.
inline constexpr std::tuple LIST_ROWS = {
    ListOf{{"SceneList", SCENE_LIST_TAG, &FileHeader::scene_list_num}, &Kis::scene},
    ListOf{{"EnvList", ENV_LIST_TAG, &FileHeader::env_list_num}, &Kis::env},
    ListOf{{"CamList", CAM_LIST_TAG, &FileHeader::cam_list_num}, &Kis::cam},
    ListOf{{"LightList", LIGHT_LIST_TAG, &FileHeader::light_list_num}, &Kis::light},
    ListOf{{"ObjList", OBJ_LIST_TAG, &FileHeader::obj_list_num}, &Kis::obj},
    ListOf{{"ShapeList", SHAPE_LIST_TAG, &FileHeader::shape_list_num}, &Kis::shape},
    ListOf{{"VtxList", VTX_LIST_TAG, &FileHeader::vtx_list_num}, &Kis::vtx},
    ListOf{{"TriList", TRI_LIST_TAG, &FileHeader::tri_list_num}, &Kis::tri},
    ListOf{{"ColorList", COLOR_LIST_TAG, &FileHeader::color_list_num}, &Kis::color},
    ListOf{{"VectorList", VECTOR_LIST_TAG, &FileHeader::vector_list_num}, &Kis::vector},
    ListOf{{"StList", ST_LIST_TAG, &FileHeader::st_list_num}, &Kis::st},
    ListOf{{"PartList", PART_LIST_TAG, &FileHeader::part_list_num}, &Kis::part},
    ListOf{{"MatList", MAT_LIST_TAG, &FileHeader::mat_list_num}, &Kis::mat},
    ListOf{{"TexList", TEX_LIST_TAG, &FileHeader::tex_list_num}, &Kis::tex},
    ListOf{{"TeximgList", TEXIMG_LIST_TAG, &FileHeader::tex_img_list_num}, &Kis::teximg},
    ListOf{{"AnimList", ANIM_LIST_TAG, &FileHeader::anim_list_num}, &Kis::anim},
    ListOf{{"CollList", COLL_LIST_TAG, &FileHeader::coll_list_num}, &Kis::coll},
    ListOf{{"SwitchList", SWITCH_LIST_TAG, &FileHeader::switch_list_num}, &Kis::switch_},
    ListOf{{"NameList", NAME_LIST_TAG, &FileHeader::name_list_num}, &Kis::name},
    ListOf{{"CiImgList", CI_IMG_LIST_TAG, &FileHeader::ci_img_list_num}, &Kis::ci_img},
    ListOf{{"ColorPaletteList", COLOR_PALETTE_LIST_TAG, &FileHeader::color_palette_list_num}, &Kis::color_palette},
    ListOf{{"EnvelopeList", ENVELOPE_LIST_TAG, &FileHeader::envelope_list_num}, &Kis::envelope},
    ListOf{{"ClusterList", CLUSTER_LIST_TAG, &FileHeader::cluster_list_num}, &Kis::cluster},
    ListOf{{"WeightList", WEIGHT_LIST_TAG, &FileHeader::weight_list_num}, &Kis::weight},
    ListOf{{"ChainRootList", CHAIN_ROOT_LIST_TAG, &FileHeader::chain_root_list_num}, &Kis::chain_root},
    ListOf{{"JointList", JOINT_LIST_TAG, &FileHeader::joint_list_num}, &Kis::joint},
    ListOf{{"EffectorList", EFFECTOR_LIST_TAG, &FileHeader::effector_list_num}, &Kis::effector},
    ListOf{{"ExternalNameList", EXTERNAL_NAME_LIST_TAG, &FileHeader::external_name_list_num}, &Kis::external_name},
};
inline constexpr std::size_t LIST_NUM = std::tuple_size_v<decltype(LIST_ROWS)>;

/// @return the table of what `make` makes of each row.
template <class Make> constexpr auto ofEachList(Make make) {
  return std::apply([&](const auto &...row) { return std::array{make(row)...}; }, LIST_ROWS);
}

/// Calls `visit` with each row.
template <class Visit> constexpr void eachList(Visit visit) {
  std::apply([&](const auto &...row) { (visit(row), ...); }, LIST_ROWS);
}

inline constexpr std::array<ListRow, LIST_NUM> LISTS = ofEachList([](const ListRow &row) { return row; });

/// The lists of version 1.0 come first; the others belong to version 2.0.
inline constexpr std::size_t VERSION_2_LIST_NUM = sizeof(Version2Sizes) / sizeof(Word);
inline constexpr std::size_t VERSION_1_LIST_NUM = LIST_NUM - VERSION_2_LIST_NUM;
/// Beside the sizes of the lists, the header has its version, size, tag, own size and two block sizes.
static_assert(VERSION_1_LIST_NUM == FILE_HEADER_BYTES / sizeof(Word) - 6, "one list for each size word of the header");

/// What a link leads to: an element of a list; one of the second kind of group in the two lists that have such; what
/// the groups of a triangle or a part hold.
enum class To : std::uint8_t {
  nothing, ///< it is no link
  env,     ///< up to `external_name` by the place of the list in the file
  cam,
  light,
  obj,
  shape,
  vtx,
  tri,
  tri_color,
  tri_nv,
  st,
  part,
  mat,
  tex,
  teximg,
  anim,
  coll,
  switch_,
  name,
  ci_img,
  color_palette,
  envelope,
  cluster,
  weight,
  chain_root,
  joint,
  effector,
  external_name,
  vtx_color,
  vtx_nv,
  image,   ///< of either list of images
  any,     ///< of a list that is not known here: the kind or type beside the link says which
  own_vtx, ///< of the groups that a triangle belongs to; from here on in the order of `RefKind`
  own_tri_color,
  own_vtx_color,
  own_tri_nv,
  own_vtx_nv,
  own_st,
  own_weight,
  own_tri,    ///< of the triangle group of a part
  own_part,   ///< of the envelope around
  own_cluster ///< of the cluster shape around
};
inline constexpr std::size_t TO_NUM = static_cast<std::size_t>(To::own_cluster) + 1;
static_assert(static_cast<std::size_t>(To::external_name) == LIST_NUM - 1, "a target for each list but the scene");

/// @return the rows of a table that has one for each list, or for each of version 1.0, each with the list's name as
/// `list`. Rows that are not those of `LISTS`, in their order, do not compile.
template <class Row, std::size_t N> consteval std::array<Row, N> inListOrder(const Row (&rows)[N]) {
  static_assert(N == LIST_NUM || N == VERSION_1_LIST_NUM, "one row for each list");
  std::array<Row, N> table{};
  for (std::size_t i = 0; i < N; ++i) {
    if (std::string_view(rows[i].list) != LISTS[i].name)
      throw "the rows are not in the order of the lists";
    table[i] = rows[i];
  }
  return table;
}

} // namespace kova
