/// What a file can cost at worst: memory, output and time in units of its size, held against what is promised.
///
/// Every row makes a file that is nearly all one form of one record. The smallest such file is built from its notation.
/// Words that may be anything get values that print long. Then the record or the entry is repeated up to a size.

#include "harness/bytes.h"
#include "kova/check.h"
#include "kova/kt.h"
#include "tests/allocations.h"
#include "tests/support.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sstream>
#include <thread>
#include <unistd.h>

namespace kova::test {

namespace {

// --- What a run costs -----------------------------------------------------------------------------------------------

/// Turns an output of the process over to a file descriptor for as long as it lives.
struct Turned {
  std::FILE *stream;
  int kept = ::dup(::fileno(stream));

  Turned(std::FILE *out, int to) : stream(out) {
    std::fflush(stream);
    ::dup2(to, ::fileno(stream));
    ::close(to);
  }
  Turned &operator=(Turned &&) = delete;
  ~Turned() {
    std::fflush(stream);
    ::dup2(kept, ::fileno(stream));
    ::close(kept);
  }
};

/// Loads, checks and dumps as the program does. @return what the load returned.
int auditQuietly(const std::string &path) {
  Kis kis;
  const int loaded = kvOpenKb(path.c_str(), kis);
  checkKOVA(kis);
  std::fflush(stdout);
  std::FILE *const dump = ::fdopen(::dup(STDOUT_FILENO), "w");
  kvWriteKt(dump, kis);
  if (kvKOVAver(kis.file_header) != VERSION_1) // a 1.0 dump has closed it
    std::fclose(dump);
  return loaded;
}

struct Cost {
  int loaded;
  std::size_t memory; ///< the most bytes held at once
  std::size_t output; ///< bytes of findings and dump
};

Cost costOf(const Bytes &bytes) {
  const ScratchFile file(bytes);
  Cost cost{};
  std::array<int, 2> pipe;
  EXPECT_EQ(::pipe(pipe.data()), 0);
  std::thread reader([&] {
    std::array<char, 64 * 1024> piece;
    for (ssize_t got; (got = ::read(pipe[0], piece.data(), piece.size())) > 0;)
      cost.output += static_cast<std::size_t>(got);
    ::close(pipe[0]);
  });
  {
    const Turned errors(stderr, ::open("/dev/null", O_WRONLY));
    const Turned findings(stdout, pipe[1]);
    const std::size_t before = allocations.held;
    allocations.peak = before;
    cost.loaded = auditQuietly(file.path);
    cost.memory = allocations.peak - before;
  }
  reader.join();
  return cost;
}

/// @return the seconds that a run takes on a processor.
double secondsOf(const ScratchFile &file) {
  const Turned errors(stderr, ::open("/dev/null", O_WRONLY));
  const Turned findings(stdout, ::open("/dev/null", O_WRONLY));
  const std::clock_t begin = std::clock();
  auditQuietly(file.path);
  return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

// --- The worst files ------------------------------------------------------------------------------------------------

/// Bytes of memory that are promised for each byte of a file: of geometry, of geometry that claims more than it has, of
/// anything.
constexpr std::size_t GEOMETRY = 3;
constexpr std::size_t CLAIMED = 5;
constexpr std::size_t ANYTHING = 40;

struct Row {
  const char *name;
  Word version;
  std::size_t memory;      ///< bytes promised for each byte of the file
  const char *text;        ///< two of the record that is repeated, or one entry of the array
  const char *unit;        ///< what is repeated: "Kind", "Kind.array", or "Kind.word+" for what stands behind that word
  std::size_t words = 0;   ///< of an entry; 0 for a record
  const char *count = "";  ///< the words that count it: "Kind.word", with "*4" where it counts bytes; else the list's
  const char *table = "";  ///< its size table: the list's where the list counts it, else none
  std::size_t claim = 0;   ///< the fewest bytes of an element of the list, which then counts as many as would fit
  bool table_only = false; ///< repeats the entries of the size table, not the record
};

/// Longest as a decimal and as a float.
constexpr Word LONG = 0x8a123456;
constexpr Word LONG_SIZE = 0x80000000;

std::size_t placeOf(const File &file, const std::string &word) {
  const std::size_t dot = word.find('.');
  return offsetOf(file, word.substr(0, dot), 0, word.substr(dot + 1));
}

/// Where record `number` of a kind begins.
std::size_t beginOf(const File &file, const std::string &kind, std::size_t number) {
  const auto first = std::ranges::find_if(
      file.words, [&](const NamedWord &word) { return word.kind == kind && word.number == number; });
  return first->offset;
}

/// The list of a row: its text begins with it.
std::string listOf(const Row &row) { return std::string(row.text, std::strcspn(row.text, " ")); }

std::string countOf(const Row &row) { return *row.count != '\0' ? row.count : listOf(row) + ".num"; }

/// @return the size table, empty where the unit has none.
std::string tableOf(const Row &row) {
  return *row.table != '\0' ? row.table : *row.count == '\0' || row.claim != 0 ? listOf(row) + ".num_byte" : "";
}

/// The bytes of a file that are repeated: the first record, whose second one ends what is there; or an entry.
struct Unit {
  std::size_t begin, end, all_end, held;
};

Unit unitOf(const File &file, const Row &row) {
  const std::string name = row.unit;
  if (row.words == 0) {
    const std::size_t begin = beginOf(file, name, 0), end = beginOf(file, name, 1);
    return {begin, end, 2 * end - begin, 2};
  }
  const std::size_t begin =
      name.back() == '+' ? placeOf(file, name.substr(0, name.size() - 1)) + sizeof(Word) : placeOf(file, name + "[0]");
  const std::size_t end = begin + row.words * sizeof(Word);
  return {begin, end, end, 1};
}

/// Adds to the size of the list in which byte `at` stands, as the header has it, and to that of the file.
void resize(Bytes &bytes, std::size_t at, std::size_t by) {
  std::size_t end = wordAt(bytes, 12);
  for (const ListRow &list : LISTS)
    if (end += wordAt(bytes, sizeOffset(list)); at < end) {
      setWordAt(bytes, sizeOffset(list), wordAt(bytes, sizeOffset(list)) + static_cast<Word>(by));
      break;
    }
  setWordAt(bytes, 4, wordAt(bytes, 4) + static_cast<Word>(by));
}

/// @return the file with its unit repeated until it is about `size` bytes long.
Bytes grown(const File &file, const Row &row, std::size_t size) {
  const Unit unit = unitOf(file, row);
  const std::string table_name = tableOf(row);
  const std::size_t table = table_name.empty() ? unit.begin : placeOf(file, table_name + "[0]");
  const std::size_t entries = table_name.empty() ? 0 : row.claim != 0 ? 1 : unit.held; // as the file has them
  const std::size_t claims = row.claim != 0 ? size / (row.claim + sizeof(Word)) : 0;
  const std::size_t copied = row.table_only ? 0 : unit.end - unit.begin;
  const std::size_t entry = claims != 0 ? 0 : entries / unit.held * sizeof(Word); // of the table, for each copy
  const std::size_t n = (size - file.bytes.size() - claims * sizeof(Word)) / (copied + entry);

  Bytes bytes = file.bytes;
  std::istringstream counts(countOf(row));
  for (std::string count; counts >> count;) {
    const std::size_t star = std::min(count.find('*'), count.size());
    const std::size_t step = star < count.size() ? std::stoul(count.substr(star + 1)) : 1;
    const std::size_t at = placeOf(file, count.substr(0, star));
    setWordAt(bytes, at, wordAt(bytes, at) + static_cast<Word>(step * (n - unit.held)));
  }
  if (claims != 0)
    setWordAt(bytes, placeOf(file, listOf(row) + ".num"), static_cast<Word>(claims));

  Bytes out;
  const auto copy = [&](std::size_t from, std::size_t to) {
    out.insert(out.end(), bytes.begin() + static_cast<std::ptrdiff_t>(from),
               bytes.begin() + static_cast<std::ptrdiff_t>(to));
  };
  copy(0, table);
  for (std::size_t i = 0; entries != 0 && i < (claims != 0 ? claims : n); ++i) {
    out.resize(out.size() + sizeof(Word));
    setWordAt(out, out.size() - sizeof(Word), LONG_SIZE);
  }
  copy(table + entries * sizeof(Word), unit.begin);
  for (std::size_t i = 0; i < (row.table_only ? 1 : n); ++i)
    copy(unit.begin, unit.end);
  copy(unit.all_end, bytes.size());
  resize(out, table, out.size() - bytes.size());
  return out;
}

/// Gives every word of the unit that may be anything a value that prints long: the one with the longest output, as long
/// as the file is still read.
File lengthened(const Row &row) {
  constexpr std::size_t SMALL = 4096;
  File file = build(row.version, row.text);
  const Unit unit = unitOf(file, row);
  Cost best = costOf(grown(file, row, SMALL));
  for (std::size_t at = unit.begin; at < unit.end && !std::string_view(row.unit).ends_with('+'); at += sizeof(Word))
    for (const Word value : {LONG, Word{1}}) {
      const Word old = wordAt(file.bytes, at);
      setWordAt(file.bytes, at, value);
      const Cost cost = costOf(grown(file, row, SMALL));
      if (cost.loaded >= best.loaded && cost.output > best.output)
        best = cost;
      else
        setWordAt(file.bytes, at, old);
    }
  return file;
}

const Row ROWS[] = {
    {"scene links", 0x100, ANYTHING, "SceneList scene_light_link_num=1", "SceneList.light_link", 1,
     "SceneList.scene_light_link_num"},
    {"references of the scene", 0x200, ANYTHING, "SceneList { SceneListExt external_light_num=1 }",
     "SceneListExt.external_light", 2, "SceneListExt.external_light_num SceneList.van_ext_blk_size*8"},
    {"environments", 0x100, ANYTHING, "EnvList { Env*2 }", "Env"},
    {"environments with blocks", 0x100, ANYTHING, "EnvList { Env*2 V=4 U=4 }", "Env"},
    {"a block", 0x100, ANYTHING, "EnvList { Env V=4 }", "Env.van", 1, "Env.van_ext_blk_size*4"},
    {"cameras", 0x100, ANYTHING, "CamList { Cam*2 }", "Cam"},
    {"cameras with a promised block", 0x200, ANYTHING, "CamList { Cam*2 V=0 }", "Cam"},
    {"lights", 0x100, ANYTHING, "LightList { Light*2 }", "Light"},
    {"lights that share one element", 0x100, ANYTHING, "LightList { Light*2 light_header_size=0 light_type=2 }",
     "Light", 0, "", "", 0, true},
    {"directional lights", 0x100, ANYTHING, "LightList { Light light_type=1 { DirLight1*2 } }", "DirLight1", 0,
     "Light.dir_light_num"},
    {"objects", 0x100, ANYTHING, "ObjList { Obj*2 }", "Obj"},
    {"objects with a promised block", 0x200, ANYTHING, "ObjList { Obj*2 V=0 }", "Obj"},
    {"levels of detail", 0x100, ANYTHING, "ObjList { Obj obj_lod_num=1 }", "Obj.LOD_dist", 2, "Obj.obj_lod_num"},
    {"references of an object", 0x200, ANYTHING, "ObjList { Obj { ObjExt external_obj_num=1 } }", "ObjExt.external_obj",
     2, "ObjExt.external_obj_num Obj.van_ext_blk_size*8"},
    {"shapes", 0x100, ANYTHING, "ShapeList { Shape*2 }", "Shape"},
    {"shapes with a promised block", 0x200, ANYTHING, "ShapeList { Shape*2 V=0 }", "Shape"},
    {"vertices", 0x100, GEOMETRY, "VtxList { VtxGroup vtx_num=1 }", "VtxGroup.vtx", 3, "VtxGroup.vtx_num"},
    {"vertex groups", 0x100, GEOMETRY, "VtxList { VtxGroup*2 }", "VtxGroup"},
    {"vertex groups of one", 0x100, GEOMETRY, "VtxList { VtxGroup*2 vtx_num=1 }", "VtxGroup"},
    {"vertex groups that are claimed", 0x100, CLAIMED, "VtxList { VtxGroup vtx_num=1 }", "VtxGroup.vtx", 3,
     "VtxGroup.vtx_num", "", 24},
    {"triangle groups", 0x100, GEOMETRY, "TriList { TriGroup*2 }", "TriGroup"},
    {"triangle groups of one", 0x100, GEOMETRY, "TriList { TriGroup*2 { Tri } }", "TriGroup"},
    {"triangle groups without references", 0x100, GEOMETRY,
     "TriList { TriGroup*2 tri_anim_type=0x111111 tri_anim_frame_num=-1 }", "TriGroup"},
    {"triangle groups of one reference", 0x100, GEOMETRY,
     "TriList { TriGroup*2 tri_anim_type=0x111110 tri_anim_frame_num=-1 }", "TriGroup"},
    {"triangle groups with a key", 0x100, GEOMETRY, "TriList { TriGroup*2 tri_anim_type=0x222222 keys=1 { Tri } }",
     "TriGroup"},
    {"triangle groups without keys", 0x100, GEOMETRY, "TriList { TriGroup*2 tri_anim_type=0x222222 keys=0 }",
     "TriGroup"},
    {"triangle groups with blocks", 0x100, GEOMETRY, "TriList { TriGroup*2 { Tri V=4 U=4 } }", "TriGroup"},
    {"triangle groups that are claimed", 0x100, CLAIMED, "TriList { TriGroup { Tri*2 } }", "Tri", 0, "TriGroup.tri_num",
     "", 32},
    {"triangles with a block, groups claimed", 0x100, CLAIMED, "TriList { TriGroup { Tri*2 V=4 U=4 } }", "Tri", 0,
     "TriGroup.tri_num", "", 32},
    {"triangles", 0x100, GEOMETRY, "TriList { TriGroup { Tri*2 } }", "Tri", 0, "TriGroup.tri_num"},
    {"triangles with blocks", 0x100, GEOMETRY, "TriList { TriGroup { Tri*2 V=4 U=4 } }", "Tri", 0, "TriGroup.tri_num"},
    {"triangles with a block", 0x100, GEOMETRY, "TriList { TriGroup { Tri*2 V=4 } }", "Tri", 0, "TriGroup.tri_num"},
    {"frames", 0x100, GEOMETRY, "TriList { TriGroup tri_anim_type=0x100 tri_anim_frame_num=0 }",
     "TriGroup.vtx_color_group_index", 1, "TriGroup.tri_anim_frame_num"},
    {"keys", 0x100, GEOMETRY, "TriList { TriGroup tri_anim_type=0x200 keys=1 }", "TriGroup.vtx_color_anim_key", 2,
     "TriGroup.vtx_color_anim_key_num"},
    {"colours", 0x100, GEOMETRY, "ColorList { TriColorGroup tri_color_num=1  VtxColorGroup }", "TriColorGroup.color", 4,
     "TriColorGroup.tri_color_num"},
    {"normals", 0x100, GEOMETRY, "VectorList { VtxNvGroup vtx_nv_num=1 }", "VtxNvGroup.normal", 3,
     "VtxNvGroup.vtx_nv_num"},
    {"groups of triangle normals", 0x100, GEOMETRY, "VectorList { TriNvGroup*2 tri_nv_num=1 }", "TriNvGroup", 0,
     "VectorList.tri_group_num", "VectorList.tri_group_size"},
    {"groups of vertex normals", 0x100, GEOMETRY, "VectorList { VtxNvGroup*2 }", "VtxNvGroup", 0,
     "VectorList.vtx_group_num", "VectorList.vtx_group_size"},
    {"texture coordinates", 0x100, GEOMETRY, "StList { StGroup st_num=1 }", "StGroup.st", 2, "StGroup.st_num"},
    {"groups of texture coordinates", 0x100, GEOMETRY, "StList { StGroup*2 st_num=1 }", "StGroup"},
    {"groups of texture coordinates that are claimed", 0x100, CLAIMED, "StList { StGroup st_num=1 }", "StGroup.st", 2,
     "StGroup.st_num", "", 20},
    {"parts", 0x100, ANYTHING, "PartList { Part*2 }", "Part"},
    {"materials", 0x100, ANYTHING, "MatList { Mat*2 }", "Mat"},
    {"materials with a promised block", 0x200, ANYTHING, "MatList { Mat*2 V=0 }", "Mat"},
    {"colour keys", 0x200, ANYTHING, "MatList { Mat { MatExt prim_color_anim_num_for_fog=1 } }",
     "MatExt.prim_color_anim_for_fog", 6, "MatExt.prim_color_anim_num_for_fog Mat.van_ext_blk_size*24"},
    {"textures", 0x100, ANYTHING, "TexList { Tex*2 { TexStill } }", "Tex"},
    {"tile-animated textures", 0x100, ANYTHING, "TexList { Tex*2 tex_anim=1 { TexTiles } }", "Tex"},
    {"textures of one tile", 0x200, ANYTHING,
     "TexList { Tex*2 tex_anim=1 { TexTiles tex_tile_scale_num=1 tex_tile_offset_num=1 tex_tile_img_num=1 TexExt use_color_palette=1 tiles=1 external_tex_img_num=1 } }",
     "Tex"},
    {"textures with a promised block", 0x200, ANYTHING, "TexList { Tex*2 V=0 { TexStill } }", "Tex"},
    {"images", 0x100, ANYTHING, "TeximgList { Teximg*2 }", "Teximg"},
    {"images of one texel", 0x100, ANYTHING, "TeximgList { Teximg*2 texels=4 }", "Teximg"},
    {"images with a promised block", 0x200, ANYTHING, "TeximgList { Teximg*2 V=1 tex_img_size=25 }", "Teximg"},
    {"images with a block", 0x200, ANYTHING, "TeximgList { Teximg*2 U=4 { TeximgExt mipmap_max_level=1 } }", "Teximg"},
    {"texels", 0x100, GEOMETRY, "TeximgList { Teximg texels=4 }", "Teximg.usr_ext_blk_size+", 1,
     "Teximg.tex_img_size*4"},
    {"animation groups", 0x100, ANYTHING, "AnimList { AnimGroup*2 }", "AnimGroup"},
    {"animation groups with a promised block", 0x200, ANYTHING, "AnimList { AnimGroup*2 V=0 }", "AnimGroup"},
    {"animation records that are only promised", 0x100, ANYTHING, "AnimList { AnimGroup*2 type=5 anim_num=12 }",
     "AnimGroup"},
    {"animation steps", 0x100, ANYTHING, "AnimList { AnimGroup { AnimStep*2 } }", "AnimStep", 0, "AnimGroup.anim_num"},
    {"animation nodes", 0x100, ANYTHING, "AnimList { AnimGroup type=4 { AnimNode*2 } }", "AnimNode", 0,
     "AnimGroup.anim_num"},
    {"scale keys", 0x200, ANYTHING, "AnimList { AnimGroup { AnimGroupExt classic_scale_num=1 } }",
     "AnimGroupExt.classic_scale", 8, "AnimGroupExt.classic_scale_num AnimGroup.van_ext_blk_size*32"},
    {"collision groups", 0x100, ANYTHING, "CollList { CollGroup*2 }", "CollGroup"},
    {"collisions", 0x100, ANYTHING, "CollList { CollGroup { Coll*2 coll_type=0x21 } }", "Coll", 0, "CollGroup.coll_num",
     "CollGroup.coll_num_byte"},
    {"switches", 0x100, ANYTHING, "SwitchList { Switch*2 V=4 U=4 case_node_num=1 }", "Switch"},
    {"cases", 0x100, ANYTHING, "SwitchList { Switch case_node_num=1 }", "Switch.case_val", 2, "Switch.case_node_num"},
    {"names", 0x100, ANYTHING, "NameList { Name*2 text=a }", "Name"},
    {"a name", 0x100, ANYTHING, "NameList { Name text=long }", "Name.name_size+", 1, "Name.name_size*4"},
    {"colour-index images", 0x200, ANYTHING, "CiImgList { CiImg*2 }", "CiImg"},
    {"colour indices", 0x200, ANYTHING, "CiImgList { CiImg ci_img_width=1 ci_img_height=1 ci_img_pixel_depth=32 }",
     "CiImg.pixel_index_array", 1, "CiImg.ci_img_width"},
    {"palettes", 0x200, ANYTHING, "ColorPaletteList { ColorPalette*2 }", "ColorPalette"},
    {"palettes of which one is there", 0x200, ANYTHING, "ColorPaletteList { ColorPalette*2 }", "ColorPalette", 0, "",
     "", 0, true},
    {"envelopes", 0x200, ANYTHING, "EnvelopeList { Envelope*2 }", "Envelope"},
    {"full weighted parts", 0x200, ANYTHING, "EnvelopeList { Envelope { FullWeightedPart*2 } }", "FullWeightedPart", 0,
     "Envelope.full_weighted_part_num"},
    {"weighted parts", 0x200, ANYTHING, "EnvelopeList { Envelope { WeightedPart*2 V=4 U=4 affected_node_num=1 } }",
     "WeightedPart", 0, "Envelope.weighted_part_num"},
    {"weighted parts behind claimed envelopes", 0x200, ANYTHING, "EnvelopeList { Envelope { WeightedPart*2 V=4 U=4 } }",
     "WeightedPart", 0, "Envelope.weighted_part_num", "", 44},
    {"morph parts", 0x200, ANYTHING, "EnvelopeList { Envelope { MorphPart*2 } }", "MorphPart", 0,
     "Envelope.morph_part_num"},
    {"envelope triangles", 0x200, ANYTHING, "EnvelopeList { Envelope { EnvelopeTri*2 } }", "EnvelopeTri", 0,
     "Envelope.envelope_tri_num"},
    {"cluster shapes", 0x200, ANYTHING, "ClusterList { ClusterShape*2 }", "ClusterShape"},
    {"clusters", 0x200, ANYTHING, "ClusterList { ClusterShape { Cluster*2 } }", "Cluster", 0,
     "ClusterShape.cluster_num"},
    {"cluster triangles", 0x200, ANYTHING, "ClusterList { ClusterShape { ClusterTri*2 } }", "ClusterTri", 0,
     "ClusterShape.cluster_tri_num"},
    {"weight groups", 0x200, ANYTHING, "WeightList { WeightGroup*2 }", "WeightGroup"},
    {"chain roots", 0x200, ANYTHING, "ChainRootList { ChainRoot*2 obj_num=1 external_obj_num=1 }", "ChainRoot"},
    {"joints", 0x200, ANYTHING, "JointList { Joint*2 }", "Joint"},
    {"effectors", 0x200, ANYTHING, "EffectorList { Effector*2 }", "Effector"},
    {"external names", 0x200, ANYTHING, "ExternalNameList { Name*2 name_tag=0x00110100 text= }", "Name"},
};

const Row &rowOf(const std::string &name) {
  return *std::ranges::find_if(ROWS, [&](const Row &row) { return row.name == name; });
}

/// A 2.0 file in which a version-2 list lies over the size table of lights that share one element. The sum of the
/// version-1 lists, where the version-2 lists begin, wraps at 32 bits: the last of them claims more than there is.
Bytes overlaid(const Row &over, std::size_t size) {
  Row lights = rowOf("lights that share one element");
  lights.version = 0x200;
  File file = lengthened(lights);
  const std::size_t at = placeOf(file, "LightList.num_byte[0]");
  const Bytes under = grown(file, lights, size);
  const File over_file = lengthened(over);
  const Bytes list = grown(over_file, over, size - 8 * file.bytes.size());
  const auto lists2 = std::span(LISTS).subspan(VERSION_1_LIST_NUM);
  const auto laid_over =
      std::ranges::find_if(lists2, [&](const ListRow &row) { return wordAt(list, sizeOffset(row)) != 0; });
  const std::size_t list_bytes = wordAt(list, sizeOffset(*laid_over));
  Bytes bytes = under;
  std::copy(list.end() - static_cast<std::ptrdiff_t>(list_bytes), list.end(),
            bytes.begin() + static_cast<std::ptrdiff_t>(at));
  setWordAt(bytes, sizeOffset(*laid_over), static_cast<Word>(list_bytes));
  Word begin = wordAt(bytes, 12);
  for (const ListRow &row : std::span(LISTS).first(VERSION_1_LIST_NUM))
    begin += wordAt(bytes, sizeOffset(row));
  const std::size_t names = sizeOffset(LISTS[VERSION_1_LIST_NUM - 1]);
  setWordAt(bytes, names, wordAt(bytes, names) + static_cast<Word>(at) - begin);
  return bytes;
}

constexpr std::size_t MEGABYTE = 1 << 20;

/// Holds a file's cost against what is promised, and tells it. Of the fixed part of the memory a test needs little: the
/// rest is for the program itself.
Cost expectWithin(const std::string &name, const Bytes &bytes, std::size_t memory) {
  const Cost cost = costOf(bytes);
  const auto size = static_cast<double>(bytes.size());
  std::printf("%-52s %4.1f MB %6.2f x memory %7.2f x output\n", name.c_str(), size / MEGABYTE,
              static_cast<double>(cost.memory) / size, static_cast<double>(cost.output) / size);
  EXPECT_LE(cost.memory, 256 * 1024 + memory * bytes.size()) << name;
  EXPECT_LE(cost.output, outputBound(bytes.size())) << name;
  EXPECT_GE(cost.output, bytes.size()) << name << ": the form is not dumped";
  return cost;
}

/// As `expectWithin` for one megabyte and for four; a byte may not cost more for there being more of them, but for the
/// digits of the numbers that records have.
void expectLinear(const std::string &name, const Bytes &small, const Bytes &large, std::size_t memory) {
  const Cost once = expectWithin(name, small, memory);
  const Cost more = expectWithin(name, large, memory);
  const double growth = 1.1 * static_cast<double>(large.size()) / static_cast<double>(small.size());
  EXPECT_LE(static_cast<double>(more.memory), growth * static_cast<double>(once.memory)) << name;
  EXPECT_LE(static_cast<double>(more.output), growth * static_cast<double>(once.output)) << name;
}

/// The version-2 lists that are laid over the size table of the lights.
const char *const OVERLAYS[] = {"envelopes",      "weighted parts behind claimed envelopes",
                                "cluster shapes", "weight groups",
                                "external names", "palettes of which one is there"};

} // namespace

TEST(Bounds, AreKept) {
  for (const Row &row : ROWS)
    expectWithin(row.name, grown(lengthened(row), row, MEGABYTE), row.memory);
  for (const char *const over : OVERLAYS)
    expectWithin(std::string("lights under ") + over, overlaid(rowOf(over), MEGABYTE), ANYTHING);
}

TEST(SlowBounds, AreKeptAtFourTimesTheSize) {
  for (const Row &row : ROWS) {
    const File file = lengthened(row);
    expectLinear(row.name, grown(file, row, MEGABYTE), grown(file, row, 4 * MEGABYTE), row.memory);
  }
  for (const char *const over : OVERLAYS)
    expectLinear(std::string("lights under ") + over, overlaid(rowOf(over), MEGABYTE),
                 overlaid(rowOf(over), 4 * MEGABYTE), ANYTHING);
}

/// Work for each byte may not double where the size becomes four times as large; a quadratic step makes it four times
/// as much. The quickest of several runs counts, as few of them as will do.
TEST(Bounds, TimeIsLinear) {
  for (const Row &row : ROWS) {
    const File file = lengthened(row);
    const ScratchFile small(grown(file, row, MEGABYTE / 16));
    const ScratchFile large(grown(file, row, MEGABYTE / 4));
    double quick = secondsOf(small);
    double slow = secondsOf(large);
    for (int round = 0; round < 4 && slow > 8 * quick; ++round) {
      quick = std::min(quick, secondsOf(small));
      slow = std::min(slow, secondsOf(large));
    }
    EXPECT_LE(slow, 8 * quick) << row.name;
  }
}

} // namespace kova::test
