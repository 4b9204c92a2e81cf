/// What the deep checks are made of: reporting, and what the format's description does not tell of some records.
#pragma once

#include "format/roles.h"
#include "kova/kova.h"
#include "survey/deep_catalogue.h"
#include "survey/file_result.h"

#include <array>
#include <cstdio>
#include <limits>

namespace kova::survey::deep {

// --- Reporting -------------------------------------------------------------------------------------------------------

/// What a warning is about.
struct Place {
  const char *list;
  std::optional<Word> element = {};
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

/// @return the place `bytes` after another, whose offset may be unknown.
inline Place after(Place place, std::uint64_t bytes) {
  if (place.offset != NO_OFFSET)
    place.offset += bytes;
  return place;
}

/// Two numbers that were compared, if there are two.
struct Compared {
  std::optional<Word> found = {};
  std::optional<Word> expected = {};
};

/// Stands for a target about which nothing is known: no index is wrong there.
inline constexpr std::uint64_t UNKNOWN = std::numeric_limits<std::uint64_t>::max();

/// The groups that triangles use, and the weights of those of a skin.
inline constexpr std::size_t WEIGHTS = REF_KIND_NUM;
inline constexpr std::size_t GROUP_KIND_NUM = WEIGHTS + 1;
inline constexpr auto FIRST_OWN = static_cast<std::size_t>(To::own_vtx);
static_assert(FIRST_OWN + WEIGHTS == static_cast<std::size_t>(To::own_weight), "in the order of the targets");

/// The sizes of all groups.
using GroupSizes = std::array<std::vector<Word>, GROUP_KIND_NUM>;

/// What triangles can use of a part, for each kind of group.
using Reach = std::array<std::uint64_t, GROUP_KIND_NUM>;

/// What all checks need.
struct Check {
  const Kis &kis;
  FileResult &result; ///< gets the warnings
  /// The number of elements of each target; those of a triangle group or part as long as that is looked at.
  std::array<std::uint64_t, TO_NUM> number = {};
  GroupSizes sizes = {};
  std::vector<Reach> reach = {}; ///< of each part of the skin that is looked at

  std::uint64_t &operator[](To target) { return number[static_cast<std::size_t>(target)]; }
};

/// Words are shown as signed numbers; the bytes that are shown in hexadecimal are small.
inline Index printed(Word word) { return static_cast<Index>(word); }
inline const char *printed(const char *text) { return text; }

/// @return whether a format has a conversion for a text and then one for each argument.
template <class... Arguments> consteval bool formatFits(std::string_view format) {
  constexpr bool IS_WORD[] = {false, std::is_same_v<Arguments, Word>...};
  for (const bool is_word : IS_WORD) {
    const std::size_t at = format.find('%');
    if (at == format.npos)
      return false;
    format.remove_prefix(format.find_first_of("sdx", at));
    if (is_word == (format[0] == 's'))
      return false;
  }
  return format.find('%') == format.npos;
}
static_assert(formatFits<const char *, Word, const char *, Word>(LINK_FORMAT));

/// @param arguments of the format, which begins with the element
template <class... Arguments>
void say(Check &check, const char *id, const char *format, const Place &place, const Compared &compared,
         const Arguments &...arguments) {
  if (!countFinding(check.result, id))
    return;
  const std::string element = place.element ? '[' + std::to_string(*place.element) + ']' : "";
  char text[256]; // longer than any that the formats can make
  std::snprintf(text, sizeof text, format, (place.list + element).c_str(), printed(arguments)...);
  keepFinding(check.result, {.id = id,
                             .stage = Stage::check,
                             .severity = Severity::warning,
                             .list = place.list,
                             .element = place.element,
                             .offset = place.offset == NO_OFFSET ? std::nullopt : std::optional(place.offset),
                             .found = compared.found,
                             .expected = compared.expected,
                             .text = text});
}

/// As above, by a row of the catalogue.
template <std::size_t ROW, class... Arguments>
void say(Check &check, const Place &place, const Compared &compared, const Arguments &...arguments) {
  constexpr const FindingRow &FINDING = OTHER_ROWS[ROW];
  static_assert(formatFits<Arguments...>(FINDING.format), "the arguments do not fit the format");
  say(check, FINDING.id, FINDING.format, place, compared, arguments...);
}

// --- What the records around say ------------------------------------------------------------------------------------

/// Sets what the links inside of a record, or its own, lead to, where that depends on the record: the groups of a
/// triangle group, the triangles of a part, the parts of a skin.
template <class Record> void enter(Check &, const Record &) {}
void enter(Check &check, const TriGroup &group);
void enter(Check &check, const Part &part);
void enter(Check &check, const Envelope &envelope);
void enter(Check &check, const ClusterShape &shape);
void enter(Check &check, const EnvelopeTri &triangle);
void enter(Check &check, const EnvelopeVtx &corner);
void enter(Check &check, const ClusterTri &triangle);
void enter(Check &check, const ClusterVtx &corner);

/// @return the place of the first of the records inside of one. Where arrays begin is not known, and so where most
/// records do.
template <class Record> Place inside(const Record &, const Place &place) { return {place.list, place.element}; }
Place inside(const TriGroup &group, const Place &place);
Place inside(const Tex &tex, const Place &place);

/// @return the place behind a record inside of another one.
template <class Record> Place behind(const Record &, const Place &place) { return place; }
Place behind(const Tri &triangle, const Place &place);

/// @return the sizes of all groups of a model.
GroupSizes groupSizes(const Kis &kis);

/// @return the size of a group: 0 if none is meant, unknown if it is not there.
inline std::uint64_t sizeOf(const std::vector<Word> &sizes, Index group) {
  const auto at = static_cast<Word>(group);
  return at < sizes.size() ? sizes[at] : at == NO_LINK ? 0 : UNKNOWN;
}

// --- Checks of their own --------------------------------------------------------------------------------------------

/// Reports the first control byte of a name.
void checkName(Check &check, const Name &name, const Place &place);

/// @return whether the file ends before the data of a texture.
bool lacksData(const Check &check, const Tex &tex);

/// Checks the parents and children of objects.
void checkTree(Check &check, const std::vector<Obj> &objects);

} // namespace kova::survey::deep
