/// What the words of a record mean: their roles, and where the links among them lead.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kova {

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

enum class Role : std::uint8_t {
  plain,
  tag,
  own_index,   ///< the position of the record among those of its kind
  size,        ///< bytes of the whole record
  header_size, ///< bytes of its fixed words
  count,       ///< of what follows the fixed words
  list_size,   ///< in the file's header: bytes of a list
  van_size,    ///< bytes of the record's maker block
  usr_size,    ///< bytes of its user block
  link,
  key ///< of a keyframe: the frame that it is about
};

/// The meaning of a word.
struct Meaning {
  Role role = Role::plain;
  To to = To::nothing;        ///< of a link
  const char *name = nullptr; ///< of the word, where its text does not begin with it
};

inline constexpr Meaning TAG = {Role::tag};
inline constexpr Meaning OWN_INDEX = {Role::own_index};
inline constexpr Meaning SIZE = {Role::size};
inline constexpr Meaning HEADER_SIZE = {Role::header_size};
inline constexpr Meaning COUNT = {Role::count};
inline constexpr Meaning LIST_SIZE = {Role::list_size};
inline constexpr Meaning VAN_SIZE = {Role::van_size};
inline constexpr Meaning USR_SIZE = {Role::usr_size};
inline constexpr Meaning KEY = {Role::key};
constexpr Meaning link(To to) { return {Role::link, to}; }

/// A word whose text does not begin with its name.
constexpr Meaning named(const char *name, Meaning meaning = {}) {
  meaning.name = name;
  return meaning;
}

} // namespace kova
