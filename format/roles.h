/// What the words of a record mean: their roles, and where the links among them lead.
#pragma once

#include "format/lists.h"

#include <cstddef>
#include <cstdint>

namespace kova {

enum class Role : std::uint8_t {
  plain,
  tag,
  own_index,   ///< the position of the record among those of its kind
  size,        ///< bytes of the whole record
  header_size, ///< bytes of its fixed words
  data_size,   ///< bytes of what stands between its fixed words and its blocks
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
inline constexpr Meaning DATA_SIZE = {Role::data_size};
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
