/// What the deep checks are made of: reporting, checks of records by the tables, and the checks of each group of lists.
#pragma once

#include "survey/deep_catalogue.h"
#include "survey/file_result.h"

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

/// What all checks need.
struct Check {
  FileResult &result; ///< gets the warnings
  /// The number of elements of each target; those of a triangle group or part as long as that is looked at.
  std::array<std::uint64_t, TARGET_NUM> number = {};

  std::uint64_t &operator[](Target target) { return number[static_cast<std::size_t>(target)]; }
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

/// @param arguments of the row's format, which begins with the element
template <class... Arguments>
void say(Check &check, std::size_t row_number, const Place &place, const Compared &compared,
         const Arguments &...arguments) {
  const FindingRow &row = ROWS[row_number];
  if (!countFinding(check.result, row.id))
    return;
  const std::string element = place.element ? '[' + std::to_string(*place.element) + ']' : "";
  char text[256]; // longer than any that the rows can make
  std::snprintf(text, sizeof text, row.format, (place.list + element).c_str(), printed(arguments)...);
  keepFinding(check.result, {.id = row.id,
                             .stage = row.stage,
                             .severity = row.severity,
                             .list = place.list,
                             .element = place.element,
                             .offset = place.offset == NO_OFFSET ? std::nullopt : std::optional(place.offset),
                             .found = compared.found,
                             .expected = compared.expected,
                             .text = text});
}

/// As above, for a row whose number is known: its format is checked.
template <std::size_t ROW, class... Arguments>
void say(Check &check, const Place &place, const Compared &compared, const Arguments &...arguments) {
  static_assert(formatFits<Arguments...>(ROWS[ROW].format), "the arguments do not fit the format");
  say(check, ROW, place, compared, arguments...);
}

// --- Records --------------------------------------------------------------------------------------------------------

/// Bytes of a record, if all of them are in the file.
inline constexpr std::uint64_t WHOLE = UNKNOWN;

/// @return the bytes of a field as far as they are among the first `held` of its record, those that are in the file.
FieldBytes heldBytes(const Field &field, const void *record, std::uint64_t held);

/// Check the bytes of a field of the record at `place` by a row: all its links; its floats, of which the first that is
/// not finite is reported; its keys, of which the first is reported that is less than the one before it.
void checkLink(Check &check, const LinkRow &row, const void *record, FieldBytes bytes, const Place &place);
void checkFloats(Check &check, const WordsRow &row, const void *record, FieldBytes bytes, const Place &place);
void checkKeys(Check &check, const WordsRow &row, const void *record, FieldBytes bytes, const Place &place);

/// Checks a record by all rows of the tables that are about its type.
/// @param held the bytes of its fixed words that are in the file
template <class Record>
void checkRecord(Check &check, const Record &record, const Place &place, std::uint64_t held = WHOLE) {
  static constexpr auto LINKS_HERE = rowsOf<Record>(LINKS);
  static constexpr auto FLOATS_HERE = rowsOf<Record>(FLOATS);
  static constexpr auto KEYS_HERE = rowsOf<Record>(KEYS);
  static_assert(LINKS_HERE.size() + FLOATS_HERE.size() + KEYS_HERE.size() != 0, "no table has rows for this");
  for (const LinkRow &row : LINKS_HERE)
    checkLink(check, row, &record, heldBytes(row, &record, held), place);
  for (const WordsRow &row : FLOATS_HERE)
    checkFloats(check, row, &record, heldBytes(row, &record, held), place);
  for (const WordsRow &row : KEYS_HERE)
    checkKeys(check, row, &record, heldBytes(row, &record, held), place);
}

/// Checks a record and its decoded maker block.
template <class Record> void checkWithBlock(Check &check, const Record &record, const Place &place) {
  checkRecord(check, record, place);
  if constexpr (requires { record.ext; })
    if (record.ext)
      checkRecord(check, *record.ext, {place.list, place.element}, vanExtBlk(record.ext_blk).size_bytes());
}

/// Checks the records of a list; `inside` then does what the tables cannot.
template <class Record, class Inside>
void checkList(Check &check, const char *name, const std::vector<Record> &records, const Inside &inside) {
  Place place = {name, 0};
  for (const Record &record : records) {
    place.offset = record.offset;
    checkWithBlock(check, record, place);
    inside(record, place);
    ++*place.element;
  }
}

template <class Record> void checkList(Check &check, const char *name, const std::vector<Record> &records) {
  checkList(check, name, records, [](const Record &, const Place &) {});
}

// --- Groups of triangles ---------------------------------------------------------------------------------------------

/// The number of vertices, colours and so on in each group, and of the weights: what a triangle's indices must be
/// below.
inline constexpr std::size_t WEIGHTS = REF_KIND_NUM;
struct GroupSizes {
  std::array<std::vector<Word>, REF_KIND_NUM + 1> number;
};
static_assert(FIRST_OWN + WEIGHTS == static_cast<std::size_t>(Target::own_weight), "in the order of the targets");

/// @return the sizes of all groups of a model.
GroupSizes groupSizes(const Kis &kis);

/// @return the size of a group: 0 if none is meant, unknown if it is not there.
inline std::uint64_t sizeOf(const std::vector<Word> &sizes, Index group) {
  const auto at = static_cast<Word>(group);
  return at < sizes.size() ? sizes[at] : at == NO_LINK ? 0 : UNKNOWN;
}

// --- The groups of lists ---------------------------------------------------------------------------------------------

void checkSceneLists(Check &check, const Kis &kis);
void checkGeometryLists(Check &check, const GroupSizes &sizes, const Kis &kis);
void checkMaterialLists(Check &check, const Kis &kis);
void checkBehaviorLists(Check &check, const Kis &kis);
void checkPaletteLists(Check &check, const Kis &kis);
void checkSkinningLists(Check &check, const GroupSizes &sizes, const Kis &kis);
void checkChainLists(Check &check, const Kis &kis);

/// Checks the names of a list.
void checkNames(Check &check, const char *list, const std::vector<Name> &names);

/// Checks the parents and children of objects.
void checkTree(Check &check, const std::vector<Obj> &objects);

} // namespace kova::survey::deep
