/// What mending costs at worst: files made so that as much as possible has to be tried.

#include "mend/diagnose.h"
#include "mend/tests/damage.h"

#include <ctime>
#include <gtest/gtest.h>

namespace kova::mend {

namespace {

using harness::Bytes;
using harness::setWordAt;
using harness::wordAt;

double secondsOf(Bytes bytes) {
  const std::clock_t begin = std::clock();
  mendBytes(bytes, {.salvage = true});
  return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

/// A list and its elements, which have counts.
struct Row {
  Word version;
  const char *list, *kind, *element;
};
constexpr Row ROWS[] = {
    {VERSION_1, "TriList", "TriGroup", "tri_anim_type=0x222222 keys=2 { Tri }"},
    {VERSION_1, "TriList", "TriGroup", "tri_anim_type=0x111111 tri_anim_frame_num=2 { Tri }"},
    {VERSION_1, "LightList", "Light", "{ DirLight0*2 }"},
    {VERSION_1, "AnimList", "AnimGroup", "{ AnimStep*2 }"},
    {VERSION_1, "AnimList", "AnimGroup", "type=4 { AnimNode*2 }"},
    {VERSION_1, "CollList", "CollGroup", "{ Coll coll_type=0x20 { Point } }"},
    {VERSION_1, "ObjList", "Obj", "obj_lod_num=2 obj_child_num=2"},
    {VERSION_1, "VtxList", "VtxGroup", "vtx_num=2"},
    {VERSION_2, "AnimList", "AnimGroup", "{ AnimStep AnimGroupExt rotate_x_num=2 translation_num=1 }"},
    {VERSION_2, "MatList", "Mat", "tex_num=1 { MatExt external_tex_num=2 prim_color_anim_num=1 }"},
    {VERSION_2, "TexList", "Tex", "tex_anim=1 { TexTiles tex_tile_scale_num=2 tex_tile_offset_num=1 TexExt }"},
    {VERSION_2, "EnvelopeList", "Envelope", "{ FullWeightedPart WeightedPart*2 MorphPart EnvelopeTri }"},
    {VERSION_2, "ClusterList", "ClusterShape", "{ Cluster*2 ClusterTri*2 }"},
    {VERSION_2, "JointList", "Joint", "obj_num=2 external_obj_num=1"},
};
constexpr std::size_t BULK = 1 << 20;

/// What stands behind the elements is zero, and so is most in them: a walk in the wrong place goes far.
samples::File fileOf(const Row &row) {
  std::string text = row.list + std::string(" U=") + std::to_string(BULK) + " {";
  for (int i = 0; i < 70; ++i)
    text += std::string(" ") + row.kind + ' ' + row.element;
  samples::File file = samples::build(row.version, text + " }");
  for (const samples::NamedWord &word : file.words)
    if (!isStructure(word) && !word.kind.starts_with("FileHeader"))
      setWordAt(file.bytes, word.offset, 0);
  return file;
}

/// The counts of the elements, by name.
std::map<std::string, std::vector<std::size_t>> countsOf(const samples::File &file, const Row &row) {
  std::map<std::string, std::vector<std::size_t>> counts;
  for (const samples::NamedWord &word : file.words) {
    const bool is_count = word.field.ends_with("_num") || word.field.ends_with("_blk_size");
    const bool is_inside = word.kind == row.kind || word.kind == row.kind + std::string("Ext") ||
                           word.kind == "TexTiles" || word.kind == "WeightedPart";
    if (is_count && is_inside)
      counts[word.field].push_back(word.offset);
  }
  for (const auto &[name, places] : std::map(counts))
    counts["all"].insert(counts["all"].end(), places.begin(), places.end());
  return counts;
}

/// One kind of count of all elements, or all of them, reaches to the end of the file or beyond it.
TEST(Bounds, TimeOfMending) {
  double worst = 0;
  for (const Row &row : ROWS) {
    const samples::File file = fileOf(row);
    const double megabytes = static_cast<double>(file.bytes.size()) / (1 << 20);
    for (const auto &[name, places] : countsOf(file, row))
      for (const std::size_t unit : {4U, 20U, 76U, 84U, 0U}) {
        Bytes damaged = file.bytes;
        for (const std::size_t at : places)
          setWordAt(damaged, at, unit != 0 ? static_cast<Word>((damaged.size() - at) / unit - 8) : 0x7fffffff);
        const double seconds = secondsOf(damaged);
        worst = std::max(worst, seconds / megabytes);
        EXPECT_LE(seconds, 0.1 + 0.5 * megabytes) << row.list << ' ' << row.element << ' ' << name << ' ' << unit;
      }
  }
  std::printf("time of mending: up to %.2f s a megabyte\n", worst);
}

// --- What is done to whole files ------------------------------------------------------------------------------------

void put(Bytes &file, std::size_t at, const Bytes &more) {
  file.insert(file.begin() + static_cast<std::ptrdiff_t>(at), more.begin(), more.end());
}

/// Sixteen bytes too many, and eight places at which so many stand twice.
void doubleBlocks(Bytes &file) {
  const std::size_t begin = file.size() - BULK;
  for (std::size_t i = 0; i < BULK; ++i)
    file[begin + i] = static_cast<unsigned char>(i % 4096 < 32 && i < 8 * 4096 ? i / 4096 : i % 251);
  put(file, begin, Bytes(16));
}

/// Four places in front of it at which a header could stand, too.
void addFronts(Bytes &file) {
  const Bytes header(file.begin(), file.begin() + 144);
  for (int i = 0; i < 4; ++i)
    put(file, 0, header);
  put(file, 0, {1});
}

void exchange(Bytes &file, std::size_t one, std::size_t other) {
  std::swap_ranges(file.begin() + static_cast<std::ptrdiff_t>(one),
                   file.begin() + static_cast<std::ptrdiff_t>(one + 512),
                   file.begin() + static_cast<std::ptrdiff_t>(other));
}

/// Bytes are missing among line feeds that stand so far from each other: carriage returns, perhaps.
template <std::size_t EACH> void loseReturns(Bytes &file) {
  const std::size_t begin = file.size() - BULK;
  for (std::size_t i = 0; i < BULK; ++i)
    file[begin + i] = i % EACH == 0 ? '\n' : static_cast<unsigned char>(0x3f00003fU >> i % 4 * 8);
  file.resize(file.size() - 8);
}

/// What can lie upon a file that is damaged in its words, too: all of it is tried.
struct Layer {
  const char *name;
  void (*apply)(Bytes &file);
};
constexpr Layer LAYERS[] = {
    {"behind", [](Bytes &file) { file.resize(file.size() + 1000, 'x'); }},
    {"in front", [](Bytes &file) { put(file, 0, Bytes(77, 'x')); }},
    {"fronts", addFronts},
    {"doubled", doubleBlocks},
    {"doubled, fronts", [](Bytes &file) { doubleBlocks(file), addFronts(file); }},
    {"version", [](Bytes &file) { setWordAt(file, 0, 0x77777777); }},
    {"header", [](Bytes &file) { std::fill_n(file.begin(), 100, static_cast<unsigned char>(0)); }},
    {"header gone", [](Bytes &file) { file.erase(file.begin(), file.begin() + 100); }},
    {"hole", [](Bytes &file) { std::fill_n(file.begin() + 1024, 512, static_cast<unsigned char>(0x55)); }},
    {"missing", [](Bytes &file) { file.erase(file.begin() + 1024, file.begin() + 1100); }},
    {"too many", [](Bytes &file) { put(file, 1024, Bytes(76, 0x55)); }},
    {"returns", loseReturns<1>},
    {"some returns", loseReturns<99>},
    {"returns, fronts", [](Bytes &file) { loseReturns<99>(file), addFronts(file); }},
    {"swapped", [](Bytes &file) { exchange(file, 1024, 2048); }},
    {"swapped far", [](Bytes &file) { exchange(file, 1024, file.size() / 1024 * 512); }},
};

/// Of each row the file of which the counts reach farthest, in each layer.
TEST(Bounds, TimeOfDiagnosis) {
  double worst = 0;
  for (const Row &row : ROWS) {
    const samples::File file = fileOf(row);
    Bytes damaged = file.bytes;
    const std::vector<std::size_t> places = countsOf(file, row).at("all");
    for (const std::size_t at : places)
      setWordAt(damaged, at, static_cast<Word>((damaged.size() - at) / 76 - 8));
    for (const Layer &layer : LAYERS) {
      Bytes hurt = damaged;
      layer.apply(hurt);
      const double megabytes = static_cast<double>(hurt.size()) / (1 << 20);
      const std::clock_t begin = std::clock();
      diagnose(hurt);
      const double seconds = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
      worst = std::max(worst, seconds / megabytes);
      EXPECT_LE(seconds, 0.1 + 0.5 * megabytes) << row.list << ' ' << row.element << ' ' << layer.name;
    }
  }
  std::printf("time of diagnosis: up to %.2f s a megabyte\n", worst);
}

} // namespace

} // namespace kova::mend
