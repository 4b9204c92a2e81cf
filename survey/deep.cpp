#include "survey/deep.h"

#include "common/text.h"
#include "survey/deep_tables.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <tuple>
#include <utility>

namespace kova::survey {

namespace {

// --- The catalogue --------------------------------------------------------------------------------------------------

constexpr FindingRow warning(const char *id, const char *format, const char *meaning, const char *next_step) {
  return {id, Stage::check, Severity::warning, format, meaning, next_step};
}

/// All links have this text: the element, the field, its value, the target and the number of elements there.
constexpr const char *LINK_FORMAT = "WARN : %s : %s = %d, but %s has %d\n";
constexpr const char *LINK_NEXT_STEP = "Correct the index in the program that wrote the file; -1 stands for none.";

/// The rows behind those of the links.
enum : std::size_t {
  floatNotFinite = LINK_NUM,
  keysOutOfOrder,
  objectParent,
  objectTwiceChild,
  objectCircle,
  nameControlByte,
  ROW_NUM
};

constexpr FindingRow OTHER_ROWS[] = {
    warning("float-not-finite", "WARN : %s : %s is not a finite number\n",
            "A float is infinite or not a number, so what is computed from it is, too.",
            "Look for a division by zero in the program that wrote the file."),
    warning("keys-out-of-order", "WARN : %s : %s : key %d behind key %d\n",
            "Keyframes do not stand in the order of their keys, so a search for the frame can fail.",
            "Sort the keys, together with what belongs to them, before the file is written."),
    warning("object-parent", "WARN : %s : its parent is %d, but it is a child of %d\n",
            "The parent that an object names and the object that has it as a child are not the same; -1: none.",
            "Write the parent link and the child links of the tree from one source."),
    warning("object-twice-child", "WARN : %s : a child of %d, and again of %d\n",
            "An object is a child twice, so it is drawn twice or moved by two parents.",
            "Make a second object, or remove one of the child links."),
    warning("object-circle", "WARN : %s is its own ancestor\n",
            "The parent links form a circle, so a program that follows them does not come to an end.",
            "Correct the parent links; the top of a tree has -1."),
    warning("name-control-byte", "WARN : %s : control byte %0#10x in the name\n",
            "A name contains a control byte, which can change what a terminal or a log shows.",
            "Rename it in the program that wrote the file."),
};
static_assert(LINK_NUM + std::size(OTHER_ROWS) == ROW_NUM, "a row for each number");

consteval std::array<FindingRow, ROW_NUM> makeRows() {
  std::array<FindingRow, ROW_NUM> rows{};
  for (std::size_t i = 0; i < LINK_NUM; ++i)
    rows[i] =
        warning(LINKS[i].id, LINK_FORMAT, TARGETS[static_cast<std::size_t>(LINKS[i].target)].meaning, LINK_NEXT_STEP);
  std::copy(std::begin(OTHER_ROWS), std::end(OTHER_ROWS), rows.begin() + LINK_NUM);
  return rows;
}
constexpr std::array<FindingRow, ROW_NUM> ROWS = makeRows();

// --- Reporting ------------------------------------------------------------------------------------------------------

/// What a warning is about.
struct Place {
  const char *list;
  std::optional<Word> element = {};
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

/// @return the place `bytes` after another, whose offset may be unknown.
Place after(Place place, std::uint64_t bytes) {
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
constexpr std::uint64_t UNKNOWN = std::numeric_limits<std::uint64_t>::max();

/// What all checks need.
struct Check {
  Record &record; ///< gets the warnings
  /// The number of elements of each target; those of a triangle group or part as long as that is looked at.
  std::array<std::uint64_t, TARGET_NUM> number = {};

  std::uint64_t &operator[](Target target) { return number[static_cast<std::size_t>(target)]; }
};

/// Words are shown as signed numbers; the bytes that are shown in hexadecimal are small.
Index printed(Word word) { return static_cast<Index>(word); }
const char *printed(const char *text) { return text; }

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
  if (!countFinding(check.record, row.id))
    return;
  const std::string element = place.element ? '[' + std::to_string(*place.element) + ']' : "";
  char text[256]; // longer than any that the rows can make
  std::snprintf(text, sizeof text, row.format, (place.list + element).c_str(), printed(arguments)...);
  keepFinding(check.record, {.id = row.id,
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

Word wordAt(FieldBytes bytes, std::size_t number) {
  Word word;
  std::memcpy(&word, bytes.data() + number * sizeof word, sizeof word);
  return word;
}

std::size_t wordsIn(FieldBytes bytes) { return bytes.size() / sizeof(Word); }

/// @return the place of a field of the record at `place`. Where the arrays begin is not known.
Place fieldPlace(const Place &place, const Field &field, const void *record, FieldBytes bytes) {
  if (field.is_array)
    return {place.list, place.element};
  return after(place, static_cast<std::uint64_t>(bytes.data() - static_cast<const std::byte *>(record)));
}

/// Bytes of a record, if all of them are in the file.
constexpr std::uint64_t WHOLE = UNKNOWN;

/// @return the bytes of a field as far as they are among the first `held` of its record, those that are in the file.
FieldBytes heldBytes(const Field &field, const void *record, std::uint64_t held) {
  const FieldBytes bytes = field.bytes(record);
  if (field.is_array || held == WHOLE)
    return bytes;
  const auto begin = static_cast<std::uint64_t>(bytes.data() - static_cast<const std::byte *>(record));
  const std::uint64_t there = std::min<std::uint64_t>(bytes.size(), held - std::min(held, begin));
  return bytes.first(static_cast<std::size_t>(there / sizeof(Word) * sizeof(Word)));
}

void checkLink(Check &check, const LinkRow &row, const void *record, FieldBytes bytes, const Place &place) {
  const std::uint64_t number = check[row.target];
  for (std::size_t i = row.first; i < wordsIn(bytes); i += row.stride) {
    const Word index = wordAt(bytes, i);
    if (index < number || index == NO_LINK)
      continue;
    const auto has = static_cast<Word>(number);
    say(check, static_cast<std::size_t>(&row - LINKS), after(fieldPlace(place, row, record, bytes), i * sizeof(Word)),
        {index, has}, row.name, index, TARGETS[static_cast<std::size_t>(row.target)].name, has);
  }
}

bool notFinite(Word bits) { return (bits & 0x7f800000) == 0x7f800000; }

/// Reports the first float of a field that is not finite.
void checkFloats(Check &check, const WordsRow &row, const void *record, FieldBytes bytes, const Place &place) {
  for (std::size_t begin = 0; begin + row.stride <= wordsIn(bytes); begin += row.stride)
    for (std::size_t i = begin + row.first; i < begin + row.first + row.count; ++i)
      if (notFinite(wordAt(bytes, i)))
        return say<floatNotFinite>(check, after(fieldPlace(place, row, record, bytes), i * sizeof(Word)), {}, row.name);
}

/// Reports the first key of a field that is less than the one before it.
void checkKeys(Check &check, const WordsRow &row, const void *record, FieldBytes bytes, const Place &place) {
  for (std::size_t i = row.stride + row.first; i < wordsIn(bytes); i += row.stride) {
    const Word before = wordAt(bytes, i - row.stride), key = wordAt(bytes, i);
    if (static_cast<Index>(key) < static_cast<Index>(before))
      return say<keysOutOfOrder>(check, fieldPlace(place, row, record, bytes), {key, before}, row.name, key, before);
  }
}

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

// --- Triangles and parts --------------------------------------------------------------------------------------------

/// The number of vertices, colours and so on in each group, and of the weights: what a triangle's indices must be
/// below.
constexpr std::size_t WEIGHTS = REF_KIND_NUM;
struct GroupSizes {
  std::array<std::vector<Word>, REF_KIND_NUM + 1> number;
};
static_assert(FIRST_OWN + WEIGHTS == static_cast<std::size_t>(Target::own_weight), "in the order of the targets");

template <class Group> std::vector<Word> sizesOf(const std::vector<Group> &groups, Word Group::*number) {
  std::vector<Word> sizes;
  sizes.reserve(groups.size());
  for (const Group &group : groups)
    sizes.push_back(group.*number);
  return sizes;
}

GroupSizes groupSizes(const Kis &kis) {
  GroupSizes sizes;
  sizes.number[refVtx] = sizesOf<VtxGroup>(kis.vtx.element, &VtxGroup::vtx_num);
  sizes.number[refTriColor] = sizesOf<TriColorGroup>(kis.color.tri_group, &TriColorGroup::tri_color_num);
  sizes.number[refVtxColor] = sizesOf<VtxColorGroup>(kis.color.vtx_group, &VtxColorGroup::vtx_color_num);
  sizes.number[refTriNv] = sizesOf<TriNvGroup>(kis.vector.tri_group, &TriNvGroup::tri_nv_num);
  sizes.number[refVtxNv] = sizesOf<VtxNvGroup>(kis.vector.vtx_group, &VtxNvGroup::vtx_nv_num);
  sizes.number[refSt] = sizesOf<StGroup>(kis.st.element, &StGroup::st_num);
  sizes.number[WEIGHTS] = sizesOf<WeightGroup>(kis.weight.element, &WeightGroup::weight_num);
  return sizes;
}

/// @return the size of a group: 0 if none is meant, unknown if it is not there.
std::uint64_t sizeOf(const std::vector<Word> &sizes, Index group) {
  const auto at = static_cast<Word>(group);
  return at < sizes.size() ? sizes[at] : at == NO_LINK ? 0 : UNKNOWN;
}

/// @return the size of the smallest group that a reference names; unknown if it names none that is there, 0 if it names
/// none at all.
std::uint64_t smallestGroup(const AnimRef &ref, const std::vector<Word> &sizes) {
  std::optional<std::uint64_t> smallest;
  for (const Index group : ref.group_index)
    if (static_cast<Word>(group) != NO_LINK)
      smallest = std::min(smallest.value_or(UNKNOWN), sizeOf(sizes, group));
  return smallest.value_or(0);
}

/// @return the bytes of a group before its first triangle.
std::uint64_t bytesBefore(const TriGroup &group, const std::array<AnimRef, REF_KIND_NUM> &refs) {
  std::uint64_t bytes = sizeof(TriGroupHead);
  for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind) {
    bytes += sizeof(Word) * (refs[kind].key.size() + refs[kind].group_index.size());
    if (refForm(group.tri_anim_type, kind) == RefForm::keys)
      bytes += sizeof(Word);
  }
  return bytes;
}

void checkTriangles(Check &check, const GroupSizes &sizes, const TriGroup &group, Place place) {
  const auto refs = kvRefs(group);
  for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind)
    check.number[FIRST_OWN + kind] = smallestGroup(refs[kind], sizes.number[kind]);
  place = after(place, bytesBefore(group, refs));
  for (const Tri &tri : group.tri) {
    checkRecord(check, tri, place);
    place = after(place, sizeof(TriHead) + vanExtBlk(tri.ext_blk).size_bytes() + usrExtBlk(tri.ext_blk).size_bytes());
  }
}

/// @return the number of triangles of a part's group; unknown if the group is not there.
std::uint64_t trianglesOf(const TriList &list, const Part &part) {
  const auto group = static_cast<Word>(part.tri_group_index);
  return group < list.element.size() ? list.element[group].tri_num : UNKNOWN;
}

void checkParts(Check &check, const TriList &triangles, const PartList &list) {
  Place place = {"PartList", 0};
  for (const Part &part : list.element) {
    place.offset = part.offset;
    check[Target::own_tri] = trianglesOf(triangles, part);
    checkRecord(check, part, place);
    ++*place.element;
  }
}

// --- Records with records inside ------------------------------------------------------------------------------------

/// Images of a texture with a palette can also be of the other list.
/// @param is_last whether the list ends with this texture
void checkTexture(Check &check, const Tex &tex, bool is_last, const Place &place) {
  constexpr TexStill ZEROS = {};
  if (is_last && tex.tex_anim == 0 && std::memcmp(&tex.still, &ZEROS, sizeof ZEROS) == 0)
    return; // the file ends before its data
  const bool has_palette = tex.ext && tex.ext->use_color_palette != 0;
  std::uint64_t &not_meant = check[has_palette ? Target::teximg : Target::image];
  const std::uint64_t images = std::exchange(not_meant, UNKNOWN);
  if (tex.tex_anim == 0)
    checkRecord(check, tex.still, after(place, sizeof(TexHead)));
  else
    checkRecord(check, tex.tiles, {place.list, place.element});
  not_meant = images;
}

/// A collision can be shorter than its kind; what follows in its words is the next record.
template <class Data> void checkCollisionData(Check &check, const Coll &coll, const Place &place) {
  checkRecord(check, collData<Data>(coll), place, Word{coll.coll_size - coll.coll_header_size});
}

void checkCollisions(Check &check, const CollGroup &group, const Place &place) {
  const Place inside = {place.list, place.element};
  for (const Coll &coll : group.coll) {
    checkRecord(check, coll, inside);
    switch (coll.coll_type) {
    case 0x10:
      checkCollisionData<CollTerrain>(check, coll, inside);
      break;
    case 0x20:
      checkCollisionData<CollPoint>(check, coll, inside);
      break;
    case 0x21:
      checkCollisionData<CollCircle>(check, coll, inside);
      break;
    case 0x22:
      checkCollisionData<CollSphere>(check, coll, inside);
      break;
    case 0x23:
      checkCollisionData<CollCylinder>(check, coll, inside);
      break;
    case 0x24:
      checkCollisionData<CollBox>(check, coll, inside);
      break;
    default: // has no data that is known
      break;
    }
  }
}

/// What the triangles of a skin can use of a part: for each kind the size of the largest group, as it is not said which
/// of them an index is about; unknown if a group is not there.
using Reach = std::array<std::uint64_t, REF_KIND_NUM + 1>;

/// Extends a reach by the groups of a part. A part without groups has nothing that a triangle could use.
void extend(Reach &reach, const GroupSizes &sizes, std::span<const VtxTriNvColor> groups, Index st,
            std::span<const Index> weights) {
  if (groups.empty())
    return;
  const auto take = [&](std::size_t kind, Index group) {
    reach[kind] = std::max(reach[kind], sizeOf(sizes.number[kind], group));
  };
  for (const VtxTriNvColor &group : groups) {
    take(refVtx, group.vtx_group_index);
    take(refTriColor, group.tri_color_group_index);
    take(refVtxColor, group.vtx_color_group_index);
    take(refTriNv, group.tri_nv_group_index);
    take(refVtxNv, group.vtx_nv_group_index);
  }
  take(refSt, st);
  for (const Index group : weights)
    take(WEIGHTS, group);
  if (weights.empty()) // what its corners then say of weights is nowhere laid down
    reach[WEIGHTS] = UNKNOWN;
}

/// @return what triangles can use of the parts with each number. The kind of a reference to a part would say which of
/// the lists it is about; as kinds are not known, any of the parts with the number will do.
std::vector<Reach> reachOfParts(const GroupSizes &sizes, const Envelope &envelope) {
  const auto &[full, weighted, morph] =
      std::tie(envelope.full_weighted_part, envelope.weighted_part, envelope.morph_part);
  std::vector<Reach> reach(std::max({full.size(), weighted.size(), morph.size()}));
  for (std::size_t i = 0; i < full.size(); ++i)
    extend(reach[i], sizes, std::span(&full[i].group_index, 1), full[i].full_weighted_st_group_index, {});
  for (std::size_t i = 0; i < weighted.size(); ++i)
    extend(reach[i], sizes, weighted[i].group_index, weighted[i].weight_st_group_index, weighted[i].weight_group_index);
  for (std::size_t i = 0; i < morph.size(); ++i)
    extend(reach[i], sizes, morph[i].group_index, morph[i].morph_st_group_index, {});
  return reach;
}

std::vector<Reach> reachOfClusters(const GroupSizes &sizes, const ClusterShape &shape) {
  std::vector<Reach> reach(shape.cluster.size());
  for (std::size_t i = 0; i < reach.size(); ++i)
    extend(reach[i], sizes, std::span(&shape.cluster[i].group_index, 1), shape.cluster[i].cluster_st_group_index, {});
  return reach;
}

const NodeIndex &partOf(const EnvelopeTri &triangle) { return triangle.envelope_part_for_tri; }
const NodeIndex &partOf(const EnvelopeVtx &corner) { return corner.envelope_part; }
const NodeIndex &partOf(const ClusterTri &triangle) { return triangle.cluster_for_tri; }
const NodeIndex &partOf(const ClusterVtx &corner) { return corner.cluster; }

/// Checks a triangle or a corner against the part that it names.
template <class Record>
void checkAgainstPart(Check &check, const std::vector<Reach> &reach, const Record &record, const Place &place) {
  const auto part = static_cast<Word>(partOf(record).index);
  for (std::size_t kind = 0; kind < REF_KIND_NUM + 1; ++kind)
    check.number[FIRST_OWN + kind] = part < reach.size() ? reach[part][kind] : UNKNOWN;
  checkRecord(check, record, place);
}

template <class Triangle>
void checkSkinTriangles(Check &check, const std::vector<Reach> &reach, const std::vector<Triangle> &triangles,
                        const Place &place) {
  for (const Triangle &triangle : triangles) {
    checkAgainstPart(check, reach, triangle, place);
    for (const auto &corner : triangle.vtx)
      checkAgainstPart(check, reach, corner, place);
  }
}

void checkEnvelope(Check &check, const GroupSizes &sizes, const Envelope &envelope, const Place &place) {
  const Place inside = {place.list, place.element};
  for (const FullWeightedPart &part : envelope.full_weighted_part) {
    checkRecord(check, part, inside);
    checkRecord(check, part.group_index, inside);
  }
  for (const WeightedPart &part : envelope.weighted_part) {
    checkRecord(check, part, inside);
    for (const VtxTriNvColor &groups : part.group_index)
      checkRecord(check, groups, inside);
  }
  for (const MorphPart &part : envelope.morph_part) {
    checkRecord(check, part, inside);
    for (const VtxTriNvColor &groups : part.group_index)
      checkRecord(check, groups, inside);
  }
  const std::vector<Reach> reach = reachOfParts(sizes, envelope);
  check[Target::own_part] = reach.size();
  checkSkinTriangles(check, reach, envelope.envelope_tri, inside);
}

void checkClusters(Check &check, const GroupSizes &sizes, const ClusterShape &shape, const Place &place) {
  const Place inside = {place.list, place.element};
  for (const Cluster &cluster : shape.cluster) {
    checkRecord(check, cluster, inside);
    checkRecord(check, cluster.group_index, inside);
  }
  const std::vector<Reach> reach = reachOfClusters(sizes, shape);
  check[Target::own_cluster] = reach.size();
  checkSkinTriangles(check, reach, shape.cluster_tri, inside);
}

/// Reports the first control byte of each name.
void checkNames(Check &check, const char *list, const std::vector<Name> &names) {
  Place place = {list, 0};
  for (const Name &name : names) {
    place.offset = name.offset;
    const std::string text = kvGetName(name);
    if (const std::size_t at = controlByte(text); at != text.npos) {
      const Word byte = static_cast<unsigned char>(text[at]);
      say<nameControlByte>(check, after(place, sizeof(NameHead) + at), {byte}, byte);
    }
    ++*place.element;
  }
}

// --- The tree of objects --------------------------------------------------------------------------------------------

/// What the child links say of the objects.
struct Tree {
  std::vector<Word> parent;    ///< who has it as a child, or none
  std::vector<bool> is_broken; ///< whether a child link leads nowhere: it may have been meant for any object
};

Place objectPlace(const std::vector<Obj> &objects, std::size_t number) {
  return {"ObjList", static_cast<Word>(number), objects[number].offset};
}

Tree followChildren(Check &check, const std::vector<Obj> &objects) {
  Tree tree = {std::vector<Word>(objects.size(), NO_LINK), std::vector<bool>(objects.size())};
  for (std::size_t i = 0; i < objects.size(); ++i)
    for (const Word child : objects[i].child_link) {
      const auto parent = static_cast<Word>(i);
      if (child >= objects.size()) {
        tree.is_broken[i] = true;
        continue;
      }
      Word &has_it = tree.parent[child];
      if (has_it != NO_LINK)
        say<objectTwiceChild>(check, objectPlace(objects, child), {}, has_it, parent);
      if (has_it == NO_LINK || objects[child].obj_parent_link == parent) // of two, the one that the child names
        has_it = parent;
    }
  return tree;
}

/// Compares the parents that the objects name with those that have them as children. Links that lead nowhere have
/// findings of their own.
void checkParents(Check &check, const std::vector<Obj> &objects, const Tree &tree) {
  for (std::size_t i = 0; i < objects.size(); ++i) {
    const Word named = objects[i].obj_parent_link, has_it = tree.parent[i];
    const bool leads_nowhere = named >= objects.size() && named != NO_LINK;
    if (named == has_it || leads_nowhere || (has_it == NO_LINK && tree.is_broken[named]))
      continue;
    const Place place = objectPlace(objects, i);
    say<objectParent>(check, after(place, offsetof(ObjHead, obj_parent_link)), {named, has_it}, named, has_it);
  }
}

/// Follows the parent links up from each object, no object twice; a circle is reported once.
void checkCircles(Check &check, const std::vector<Obj> &objects) {
  std::vector<Word> walk(objects.size()); // in which walk an object was met; 0: in none
  for (std::size_t i = 0; i < objects.size(); ++i) {
    const auto number = static_cast<Word>(i + 1);
    std::size_t at = i;
    for (; at < objects.size() && walk[at] == 0; at = objects[at].obj_parent_link)
      walk[at] = number;
    if (at < objects.size() && walk[at] == number)
      say<objectCircle>(check, objectPlace(objects, at), {});
  }
}

// --- The whole model ------------------------------------------------------------------------------------------------

/// @return the number of elements of a list; unknown where the file has more than could be read.
template <class Record> std::uint64_t known(Word bytes, Word tag, Word num, const std::vector<Record> &records) {
  const bool was_read = bytes == 0 || (tag != 0 && records.size() >= num);
  return was_read ? records.size() : UNKNOWN;
}

template <class Record> std::uint64_t known(Word bytes, const List<Record> &list) {
  return known(bytes, list.list_tag, list.num, list.element);
}

Check checkOf(const Kis &kis, Record &record) {
  const FileHeader &bytes = kis.file_header;
  Check check{record};
  check.number.fill(UNKNOWN);
  check[Target::env] = known(bytes.env_list_num, kis.env);
  check[Target::cam] = known(bytes.cam_list_num, kis.cam);
  check[Target::light] = known(bytes.light_list_num, kis.light);
  check[Target::obj] = known(bytes.obj_list_num, kis.obj);
  check[Target::shape] = known(bytes.shape_list_num, kis.shape);
  check[Target::vtx] = known(bytes.vtx_list_num, kis.vtx);
  check[Target::tri] = known(bytes.tri_list_num, kis.tri);
  const ColorList &color = kis.color; // as many groups of vertex colours are read as of triangle colours
  check[Target::tri_color] = known(bytes.color_list_num, color.list_tag, color.tri_group_num, color.tri_group);
  check[Target::vtx_color] = known(bytes.color_list_num, color.list_tag, color.tri_group_num, color.vtx_group);
  const VectorList &vector = kis.vector;
  check[Target::tri_nv] = known(bytes.vector_list_num, vector.list_tag, vector.tri_group_num, vector.tri_group);
  check[Target::vtx_nv] = known(bytes.vector_list_num, vector.list_tag, vector.vtx_group_num, vector.vtx_group);
  check[Target::st] = known(bytes.st_list_num, kis.st);
  check[Target::part] = known(bytes.part_list_num, kis.part);
  check[Target::mat] = known(bytes.mat_list_num, kis.mat);
  check[Target::tex] = known(bytes.tex_list_num, kis.tex);
  check[Target::teximg] = known(bytes.tex_img_list_num, kis.teximg);
  check[Target::anim] = known(bytes.anim_list_num, kis.anim);
  check[Target::coll] = known(bytes.coll_list_num, kis.coll);
  check[Target::name] = known(bytes.name_list_num, kis.name);
  check[Target::color_palette] = known(bytes.color_palette_list_num, kis.color_palette);
  check[Target::weight] = known(bytes.weight_list_num, kis.weight);
  check[Target::chain_root] = known(bytes.chain_root_list_num, kis.chain_root);
  check[Target::joint] = known(bytes.joint_list_num, kis.joint);
  check[Target::effector] = known(bytes.effector_list_num, kis.effector);
  check[Target::external_name] = known(bytes.external_name_list_num, kis.external_name);
  const std::uint64_t ci_images = known(bytes.ci_img_list_num, kis.ci_img);
  check[Target::image] = std::max(check[Target::teximg], ci_images); // unknown is more than any number
  const auto lists = std::span(check.number).first(static_cast<std::size_t>(Target::any));
  check[Target::any] =
      std::max({*std::max_element(lists.begin(), lists.end()), known(bytes.switch_list_num, kis.switch_),
                known(bytes.envelope_list_num, kis.envelope), known(bytes.cluster_list_num, kis.cluster)});
  return check;
}

void checkVersion1(Check &check, const GroupSizes &sizes, const Kis &kis) {
  if (kis.scene.scene_header_tag != 0) // else it was not read
    checkWithBlock(check, kis.scene, {"SceneList", {}, kis.scene.offset});
  checkList(check, "EnvList", kis.env.element);
  checkList(check, "CamList", kis.cam.element);
  checkList(check, "LightList", kis.light.element);
  checkList(check, "ObjList", kis.obj.element);
  checkList(check, "ShapeList", kis.shape.element);
  checkList(check, "VtxList", kis.vtx.element);
  checkList(check, "TriList", kis.tri.element,
            [&](const TriGroup &group, const Place &place) { checkTriangles(check, sizes, group, place); });
  checkList(check, "ColorList", kis.color.tri_group);
  checkList(check, "ColorList", kis.color.vtx_group);
  checkList(check, "VectorList", kis.vector.tri_group);
  checkList(check, "VectorList", kis.vector.vtx_group);
  checkList(check, "StList", kis.st.element);
  checkParts(check, kis.tri, kis.part);
  checkList(check, "MatList", kis.mat.element);
  checkList(check, "TexList", kis.tex.element, [&](const Tex &tex, const Place &place) {
    checkTexture(check, tex, &tex == &kis.tex.element.back(), place);
  });
  checkList(check, "AnimList", kis.anim.element);
  checkList(check, "CollList", kis.coll.element,
            [&](const CollGroup &group, const Place &place) { checkCollisions(check, group, place); });
  checkList(check, "SwitchList", kis.switch_.element);
  checkNames(check, "NameList", kis.name.element);
}

void checkVersion2(Check &check, const GroupSizes &sizes, const Kis &kis) {
  checkList(check, "CiImgList", kis.ci_img.element);
  checkList(check, "ColorPaletteList", kis.color_palette.element);
  checkList(check, "EnvelopeList", kis.envelope.element,
            [&](const Envelope &envelope, const Place &place) { checkEnvelope(check, sizes, envelope, place); });
  checkList(check, "ClusterList", kis.cluster.element,
            [&](const ClusterShape &shape, const Place &place) { checkClusters(check, sizes, shape, place); });
  checkList(check, "WeightList", kis.weight.element);
  checkList(check, "ChainRootList", kis.chain_root.element);
  checkList(check, "JointList", kis.joint.element);
  checkList(check, "EffectorList", kis.effector.element);
  checkNames(check, "ExternalNameList", kis.external_name.element);
}

} // namespace

void deepCheck(const Kis &kis, Record &record) {
  Check check = checkOf(kis, record);
  const GroupSizes sizes = groupSizes(kis);
  checkVersion1(check, sizes, kis);
  checkVersion2(check, sizes, kis);
  if (check[Target::obj] == UNKNOWN)
    return; // links to objects that were not read look like contradictions
  const Tree tree = followChildren(check, kis.obj.element);
  checkParents(check, kis.obj.element, tree);
  checkCircles(check, kis.obj.element);
}

std::span<const FindingRow> deepRows() { return ROWS; }

} // namespace kova::survey
