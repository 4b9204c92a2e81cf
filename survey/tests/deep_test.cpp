#include "survey/deep.h"

#include "harness/scratch.h"
#include "samples/builder.h"
#include "survey/audit.h"
#include "survey/json_line.h"
#include "survey/summary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>

namespace kova::survey {

namespace {

using harness::Bytes;
using harness::setWordAt;
using harness::wordAt;
using samples::edited;
using samples::File;
using samples::LinkWords;
using Lines = std::vector<std::string>;

/// Has every record and every form that has links, floats or keys, and lists of different lengths. Nothing refers to
/// anything, but for what the links below say.
constexpr const char *SCENE = R"(
SceneList scene_obj_link_num=1 scene_env_link_num=1 scene_cam_link_num=1 scene_light_link_num=1
  { SceneListExt scene_chain_root_link_num=1 external_obj_num=1 external_env_num=1 external_cam_num=1
    external_light_num=1 }
EnvList { Env*2 }  CamList { Cam*3 }  LightList { Light { DirLight0 }  Light light_type=1 { DirLight1*2 }  Light*2 }
ObjList { Obj*3  Obj obj_child_num=1  Obj obj_lod_num=1 obj_child_num=1
  { ObjExt obj_chain_root_link_num=1 external_lod_obj_num=1 external_obj_num=1 } }
ShapeList { Shape shape_part_num=1  Shape*5 }
VtxList { VtxGroup vtx_num=3  VtxGroup vtx_num=2  VtxGroup*5 vtx_num=3 }
TriList { TriGroup*6  TriGroup tri_anim_type=0x222222 keys=2 { Tri }  TriGroup { Tri V=8  Tri } }
ColorList { TriColorGroup*9 tri_color_num=1  VtxColorGroup*9 vtx_color_num=2 }
VectorList { TriNvGroup*10 tri_nv_num=4  VtxNvGroup*11 vtx_nv_num=5 }
StList { StGroup*12 st_num=6 }
PartList { Part*12  Part part_tri_num=1 }
MatList { Mat tex_num=1 { MatExt external_tex_num=1 prim_color_anim_num=2 prim_color_anim_num_for_fog=2 }  Mat*13 }
TexList { Tex { TexStill }  Tex tex_anim=1 { TexTiles tex_tile_scale_num=2 tex_tile_offset_num=2 tex_tile_img_num=2 }
  Tex { TexStill TexExt use_color_palette=1 tiles=1 external_tex_img_num=1 }
  Tex tex_anim=1 { TexTiles tex_tile_img_num=1 TexExt use_color_palette=1 tiles=1 }  Tex*11 { TexStill } }
TeximgList { Teximg*16 }
AnimList { AnimGroup type=3 { AnimKey*2 }  AnimGroup { AnimStep*2 }  AnimGroup type=4 { AnimNode }
  AnimGroup type=5 { AnimGroupExt rotate_axis_num=2 rotate_x_num=2 rotate_y_num=2 rotate_z_num=2
  orientation_xy_num=2 translation_num=2 unique_scale_num=2 classic_scale_num=2 }  AnimGroup*13 }
SwitchList { Switch case_node_num=1 }
CollList { CollGroup { Coll coll_type=0x10 { Terrain }  Coll coll_type=0x20 { Point }  Coll coll_type=0x21 { Circle }
  Coll coll_type=0x22 { Sphere }  Coll coll_type=0x23 { Cylinder }  Coll coll_type=0x24 { Box }
  Coll coll_type=0x11 { Point } }
  CollGroup { Coll coll_type=0x24 { Point }  Coll coll_type=0x23 { Sphere }  Coll coll_type=0x10  Coll }  CollGroup*16 }
NameList { Name*19 text=root }
CiImgList { CiImg*18 }
ColorPaletteList { ColorPalette*20 }
EnvelopeList { Envelope { FullWeightedPart  WeightedPart affected_node_num=1 external_affected_obj_num=1
  MorphPart table_num=1 }  Envelope { WeightedPart affected_node_num=2  MorphPart  EnvelopeTri } }
ClusterList { ClusterShape { Cluster ClusterTri } }
WeightList { WeightGroup*21 weight_num=1 }
ChainRootList { ChainRoot*21 ChainRoot obj_num=1 external_obj_num=1 }
JointList { Joint*22 Joint obj_num=1 external_obj_num=1 }
EffectorList { Effector*23 Effector obj_num=1 external_obj_num=1 }
ExternalNameList { Name*25 text=other.kb }
)";

/// A tree of two objects; triangles, a part, and the triangles of two skins that use something.
constexpr const char *LINKS = R"(
Obj 0 obj_parent_link 4; Obj 4 child_link[0] 0;
TriGroup 6 vtx_group_index[0] 0 vtx_group_index[1] 0 tri_color_group_index[0] 0 vtx_color_group_index[1] 0
  tri_nv_group_index[0] 0 vtx_nv_group_index[1] 0 st_group_index[0] 0;
TriGroup 7 vtx_group_index[0] 0 tri_color_group_index[0] 0 vtx_color_group_index[0] 0 tri_nv_group_index[0] 0
  vtx_nv_group_index[0] 0 st_group_index[0] 0;
Part 12 tri_group_index 6 tri_index[0] 0;
WeightedPart 1 weight_st_group_index 0 weight_group_index[0] 0 group_index[0] 0 group_index[3] 0 group_index[5] 0
  group_index[7] 0 group_index[8] 0;
EnvelopeTri 0 envelope_part_for_tri[1] 0 vtx[1] 0 vtx[8] 0 vtx[15] 0;
Cluster 0 group_index[0] 0 group_index[1] 0 group_index[2] 0 group_index[3] 0 group_index[4] 0
  cluster_st_group_index 0;
ClusterTri 0 cluster_for_tri[1] 0 vtx[1] 0 vtx[7] 0 vtx[13] 0
)";

const File &consistentScene() {
  static const File SCENE_FILE = edited(samples::build(VERSION_2, SCENE, LinkWords::none), LINKS);
  return SCENE_FILE;
}

/// What the deep checks find in a file; nothing if the file cannot be loaded whole.
std::optional<FileResult> deepResult(const Bytes &bytes) {
  const FindingReceiver nobody([](const Finding &) {});
  const KisHandle kis = kvNewKis();
  FileResult result;
  const int loaded = kvOpenKbMemory(bytes, "scene.kb", *kis);
  deepCheck(*kis, result);
  return loaded != 0 ? std::optional(std::move(result)) : std::nullopt;
}

/// The findings of a file that loads, "id element" each.
Lines deepFindings(const Bytes &bytes) {
  const std::optional<FileResult> result = deepResult(bytes);
  if (!result)
    return {"not loaded"};
  Lines lines;
  for (const KeptFinding &finding : result->findings)
    lines.push_back(finding.id + " " + (finding.element ? std::to_string(*finding.element) : "-"));
  return lines;
}

// --- Every word -----------------------------------------------------------------------------------------------------

/// Too large for an index, no finite float, a late key.
constexpr Word PROBE = 0x7fc00000;

/// What the deep checks find if one word of the scene has another value; nothing if it cannot be loaded then.
std::optional<FileResult> withWord(const samples::NamedWord &word, Word value) {
  static Bytes bytes = consistentScene().bytes;
  const Word old = wordAt(bytes, word.offset);
  setWordAt(bytes, word.offset, value);
  std::optional<FileResult> result = deepResult(bytes);
  setWordAt(bytes, word.offset, old);
  return result;
}

bool isLink(const FindingRow &row) { return std::string_view(row.format).find("but %s has") != std::string_view::npos; }

/// A link is wrong from the number of what is there on, but for -1.
void tryBounds(const samples::NamedWord &word, const KeptFinding &finding) {
  const Word end = finding.expected.value_or(0);
  for (const auto &[value, wrong] : {std::pair(end, true), {end - 1, false}, {~Word{0}, false}, {~Word{1}, true}}) {
    const std::optional<FileResult> result = withWord(word, value);
    EXPECT_TRUE(result && result->counts.contains(finding.id) == wrong)
        << word.kind << ' ' << word.number << ' ' << word.field << " = " << static_cast<Index>(value);
  }
}

/// The words of one field, in records of one kind, that bring about the same, but for the number of the element.
struct Outcome {
  std::string kind, field;
  std::set<std::size_t> numbers;   ///< of the records
  std::set<std::size_t> positions; ///< in an array
  std::string findings;            ///< of the last word: id, whether it points to the word (@), text
};

void take(Outcome &outcome, const samples::NamedWord &word, const FileResult &result) {
  const std::size_t bracket = word.field.find('[');
  outcome.kind = word.kind;
  outcome.field = word.field.substr(0, bracket);
  outcome.numbers.insert(word.number);
  if (bracket != word.field.npos)
    outcome.positions.insert(std::stoul(word.field.substr(bracket + 1)));
  outcome.findings.clear();
  for (const KeptFinding &finding : result.findings)
    outcome.findings += " | " + finding.id + (finding.offset == word.offset ? " @ " : " ") + finding.text;
}

/// Appends numbers as in "0-3,7".
void append(std::string &text, const std::set<std::size_t> &numbers) {
  for (const std::size_t number : numbers) {
    const bool follows = number > 0 && numbers.contains(number - 1), goes_on = numbers.contains(number + 1);
    if (!follows || !goes_on)
      text.append(number == *numbers.begin() ? "" : follows ? "-" : ",").append(std::to_string(number));
  }
}

std::string lineOf(const Outcome &outcome) {
  std::string line = outcome.kind + ' ';
  append(line, outcome.numbers);
  line.append(" ").append(outcome.field);
  if (!outcome.positions.empty()) {
    line += '[';
    append(line, outcome.positions);
    line += ']';
  }
  return line + std::regex_replace(outcome.findings, std::regex("\n"), "") + '\n';
}

/// Sets each word in the first eight and in the last record of each kind to the probe, one after the other.
/// deep_test.txt has what is to come of it: a line for each field that the deep checks look at, and none for any other.
TEST(SurveyDeep, EveryWord) {
  const std::vector<samples::NamedWord> &words = consistentScene().words;
  std::map<std::string, std::size_t> last;
  for (const samples::NamedWord &word : words)
    last[word.kind] = word.number;
  std::vector<Outcome> outcomes;
  std::map<std::string, std::size_t> outcome_of;
  std::set<std::string> untried;
  for (const FindingRow &row : deepRows())
    untried.insert(row.id);
  for (const samples::NamedWord &word : words) {
    if (word.number > 7 && word.number != last[word.kind])
      continue;
    const std::optional<FileResult> result = withWord(word, PROBE);
    if (!result || result->findings.empty())
      continue;
    for (const KeptFinding &finding : result->findings) {
      untried.erase(finding.id);
      if (isLink(*rowOf(finding.id.c_str())) && finding.found == PROBE)
        tryBounds(word, finding);
    }
    Outcome outcome;
    take(outcome, word, *result);
    const std::string same = std::regex_replace(outcome.findings, std::regex("\\[[0-9]+\\]"), "");
    const auto at = outcome_of.emplace(outcome.kind + ' ' + outcome.field + same, outcomes.size());
    if (at.second)
      outcomes.push_back(outcome);
    else
      take(outcomes[at.first->second], word, *result);
  }
  std::string text;
  for (const Outcome &outcome : outcomes)
    text += lineOf(outcome);
  std::ifstream file(KOVA_SOURCE_DIR "/survey/tests/deep_test.txt");
  EXPECT_EQ(text, std::string(std::istreambuf_iterator<char>(file), {}));
  EXPECT_EQ(untried,
            (std::set<std::string>{"name-control-byte", "object-circle", "object-parent", "object-twice-child"}));
}

// --- Several words --------------------------------------------------------------------------------------------------

struct Edited {
  const char *edits;
  Lines findings;
  const char *scene = nullptr; ///< else the one that is consistent
};
const Edited EDITS[] = {
    {"Obj 0 obj_state 1", {}},
    // the first float that is not finite, the first key that is too early
    {"VtxGroup 6 vtx[8] 0xffc00000; VtxGroup 6 vtx[2] 0xff800000; Cam 2 cam_fovy 0x7f7fffff", {"float-not-finite 6"}},
    {"AnimKey 1 key 2", {"keys-out-of-order 0"}},
    {"TriGroup 6 st_anim_key[1] 0xfffffffb", {"keys-out-of-order 6"}},
    // of the groups that a reference names, the smallest; one that is not there has a finding of its own
    {"TriGroup 6 vtx_group_index[1] 1; Tri 0 vtx_index2 1", {}},
    {"TriGroup 6 vtx_group_index[1] 1; Tri 0 vtx_index2 2", {"tri-vtx-index2 6"}},
    {"TriGroup 7 vtx_group_index[0] 99; Tri 1 vtx_index2 99", {"tri-group-vtx-link 7"}},
    {"TriGroup 6 st_group_index[0] 99; Tri 0 st_index0 99", {"tri-group-st-link 6"}},
    // none has nothing to use, unless another frame or key names one
    {"TriGroup 7 st_group_index[0] 0xffffffff; Tri 1 st_index2 0", {"tri-st-index2 7"}},
    {"TriGroup 6 st_group_index[0] 0xffffffff; Tri 0 st_index2 0", {"tri-st-index2 6"}},
    {"TriGroup 6 vtx_group_index[1] 0xffffffff; Tri 0 vtx_index2 2", {}},
    // a collision's data ends where it ends, whatever its kind; what follows is the next collision
    {"Coll 8 this_coll_index 0x7fc00000", {}},
    {"Coll 9 this_coll_index 0x7fc00000 coll_tag 0x000d1000; Sphere 1 radius 0x7fc00000", {"float-not-finite 1"}},
    {"Coll 10 coll_type 99", {}},
    // any part with the number of a corner's will do that has groups, and any of its groups: the one of 3 vertices
    {"WeightedPart 1 group_index[1] 1; EnvelopeTri 0 vtx[2] 2", {}},
    {"WeightedPart 1 group_index[0] 1 group_index[1] 1; EnvelopeTri 0 vtx[2] 2", {"envelope-vtx-index 1"}},
    {"WeightedPart 1 group_index[0] 0xffffffff; EnvelopeTri 0 vtx[2] 0", {"envelope-vtx-index 1"}},
    {"WeightedPart 1 group_index[0] 99; EnvelopeTri 0 vtx[2] 99", {"skin-vtx-link 1"}},
    {"WeightedPart 1 weight_group_index[1] 99; EnvelopeTri 0 vtx[6] 99", {"weighted-weight-link 1"}},
    {"ClusterTri 0 vtx[1] 0xffffffff vtx[2] 99", {}},
    // the tree
    {"Obj 0 obj_parent_link 2", {"object-parent 0"}},
    {"Obj 0 obj_parent_link 0xffffffff", {"object-parent 0"}},
    {"Obj 1 obj_parent_link 4", {"object-parent 1"}},
    {"Obj 3 child_link[0] 0", {"object-twice-child 0"}}, // the other parent is the one that it names
    {"Obj 3 child_link[0] 3; Obj 3 obj_parent_link 3", {"object-circle 3"}},
    {"Obj 3 child_link[0] 4; Obj 4 obj_parent_link 3; Obj 4 child_link[0] 3; Obj 3 obj_parent_link 4; "
     "Obj 0 obj_parent_link 0xffffffff",
     {"object-circle 3"}},
    // small files
    {"", {}, "ObjList { Obj }"},
    {"Obj 0 obj_mat_link 0", {"obj-mat-link 0"}, "ObjList { Obj }"}, // of an empty list
    // words that a maker block lacks are no links
    {"CamExt 0 external_eye_obj[1] 5", {"cam-external-eye 0"}, "CamList { Cam V=16 { CamExt } }"},
    {"CamExt 0 external_eye_obj[0] 5", {"cam-external-eye 0"}, "CamList { Cam V=12 { CamExt } }"},
    // a part that shares its number with one that has no groups
    {"FullWeightedPart 0 group_index[0] 0; EnvelopeTri 0 vtx[1] 0 vtx[2] 2 vtx[8] 0 vtx[9] 1 vtx[13] 7",
     {"envelope-vtx-index 0"},
     "VtxList { VtxGroup vtx_num=2 } EnvelopeList { Envelope { FullWeightedPart MorphPart EnvelopeTri } }"},
    // the last texture lacks its data only if it is one of a still image
    {"TexTiles 0 tex_tile_img_index[0] 5",
     {"tex-tile-img-link 0"},
     "TexList { Tex tex_anim=1 { TexTiles tex_tile_img_num=1 } }"},
    // as many groups of vertex colours are read as of triangle colours
    {"TriGroup 0 vtx_color_group_index[0] 2",
     {"tri-group-vtx-color-link 0"},
     "TriList { TriGroup } ColorList { TriColorGroup VtxColorGroup*3 }"},
};

TEST(SurveyDeep, Edits) {
  for (const Edited &tried : EDITS) {
    const File scene = tried.scene ? samples::build(VERSION_2, tried.scene, LinkWords::none) : consistentScene();
    EXPECT_EQ(deepFindings(edited(scene, tried.edits).bytes), tried.findings) << tried.edits;
  }
}

TEST(SurveyDeep, ControlBytesInNames) {
  for (const char *const list : {"NameList", "ExternalNameList"}) {
    Bytes bytes = consistentScene().bytes;
    // The names of both lists are one kind of record for the builder; those of the other list come first.
    const std::size_t number = (list == std::string("NameList") ? 0 : 19) + 2;
    const std::size_t text = samples::offsetOf(consistentScene(), "Name", number, "name_size") + 4;
    setWordAt(bytes, text, 0x61c39c20); // letters, also such as are not ASCII, and a blank
    EXPECT_EQ(deepFindings(bytes), Lines{});
    setWordAt(bytes, text, 0x619b0062);
    const std::optional<FileResult> result = deepResult(bytes);
    ASSERT_TRUE(result && result->findings.size() == 1);
    EXPECT_EQ(result->findings[0].text,
              "WARN : " + (list + std::string("[2] : control byte 0x0000009b in the name\n")));
    EXPECT_EQ(result->findings[0].offset, text + 1);
    setWordAt(bytes, text, 0x61001b7f); // behind the end of the name
    EXPECT_EQ(deepFindings(bytes), Lines{});
  }
}

// --- Whole files ----------------------------------------------------------------------------------------------------

/// What else is wrong with a file does not matter here: only what the deep checks add to it.
TEST(SurveyDeep, SilentAboutAllSamplesThatAreOK) {
  int ok = 0;
  for (const auto &entry : std::filesystem::directory_iterator(KOVA_SOURCE_DIR "/samples")) {
    Workspace workspace;
    const FileResult shallow = audit({.path = entry.path()}, {}, workspace);
    if (shallow.verdict != Verdict::ok)
      continue;
    const FileResult deep = audit({.path = entry.path()}, {.deep = true}, workspace);
    EXPECT_EQ(deep.counts, shallow.counts) << entry.path() << ": " << deep.findings.back().text;
    ++ok;
  }
  EXPECT_GE(ok, 9);
  EXPECT_EQ(deepFindings(consistentScene().bytes), Lines{});
}

/// The deep findings of a damaged file point into it: to the number that they tell, or to a float.
void tryDamaged(const Bytes &bytes) {
  const FindingReceiver nobody([](const Finding &) {});
  const KisHandle kis = kvNewKis();
  kvOpenKbMemory(bytes, "scene.kb", *kis);
  FileResult result;
  deepCheck(*kis, result);
  for (const KeptFinding &finding : result.findings) {
    if (!finding.offset)
      continue;
    const bool is_byte = finding.id == "name-control-byte";
    ASSERT_LE(*finding.offset + (is_byte ? 1 : sizeof(Word)), bytes.size()) << finding.text;
    if (finding.found && !is_byte) {
      ASSERT_EQ(wordAt(bytes, *finding.offset), *finding.found) << finding.text;
    }
  }
}

TEST(SurveyDeep, PointsIntoDamagedFiles) {
  std::vector<samples::Sample> files = samples::smallSamples();
  files.push_back(
      {"a texture without images", samples::build(VERSION_1, "TexList { Tex { TexStill } } TeximgList absent=1")});
  for (const auto &[name, good] : files)
    for (std::size_t at = 0; at + 4 <= good.bytes.size(); at += 4) {
      ASSERT_NO_FATAL_FAILURE(tryDamaged(Bytes(good.bytes.begin(), good.bytes.begin() + static_cast<long>(at + 2))))
          << name << " cut at " << at + 2;
      Bytes bytes = good.bytes;
      for (const Word value : {0U, ~0U, wordAt(good.bytes, at) + 4, PROBE}) {
        setWordAt(bytes, at, value);
        ASSERT_NO_FATAL_FAILURE(tryDamaged(bytes)) << name << " at " << at << ": " << value;
      }
    }
}

/// Lists that could not be read say nothing about the links to them.
TEST(SurveyDeep, SilentAboutWhatCouldNotBeRead) {
  const File good = consistentScene();
  for (const char *const edit : {"MatList 0 list_tag 1", "Name 3 name_tag 1", "ObjList 0 list_tag 1"}) {
    const File file = edited(good, edit);
    const KisHandle kis = kvNewKis();
    const FindingReceiver nobody([](const Finding &) {});
    EXPECT_EQ(kvOpenKbMemory(file.bytes, "scene.kb", *kis), 0) << edit;
    FileResult result;
    deepCheck(*kis, result);
    EXPECT_EQ(result.counts.size(), 0U) << edit;
  }
}

TEST(SurveyDeep, LeavesTheVerdictAsItIs) {
  const harness::ScratchFile scratch(edited(consistentScene(), "Cam 1 cam_eye_obj 5").bytes);
  Workspace workspace;
  const FileResult shallow = audit({.path = scratch.path}, {}, workspace);
  const FileResult deep = audit({.path = scratch.path}, {.deep = true}, workspace);
  ASSERT_EQ(shallow.verdict, Verdict::ok) << shallow.findings[0].text;
  EXPECT_EQ(deep.verdict, Verdict::ok);
  EXPECT_TRUE(shallow.findings.empty());
  ASSERT_EQ(deep.findings.size(), 1U);
  EXPECT_EQ(deep.findings[0].severity, Severity::warning);
}

std::uint64_t countOf(const FileResult &result, const char *id) {
  const auto at = result.counts.find(id);
  return at == result.counts.end() ? 0 : at->second;
}

/// Of many findings only the first are kept, of a long text only the beginning; all are counted.
TEST(SurveyAudit, FindingsAreBounded) {
  constexpr std::size_t OBJECTS = 1500;
  // Each object has six links that lead nowhere and an index of its own that is wrong.
  File file = samples::build(VERSION_1, "ObjList { Obj*" + std::to_string(OBJECTS) + " obj_child_num=1 }");
  for (const samples::NamedWord &word : file.words)
    if (word.field == "this_obj_index" || word.field == "child_link[0]")
      harness::setWordAt(file.bytes, word.offset, 0x7fffffff);
  // The text about the sum of the sizes lists them all.
  const harness::ScratchFile scratch(samples::edited(file, "ObjList 0 num_byte[0] +4").bytes);
  Workspace workspace;
  const FileResult shallow = audit({.path = scratch.path}, {}, workspace);
  const FileResult deep = audit({.path = scratch.path}, {.deep = true}, workspace);
  for (const FileResult &result : {shallow, deep}) {
    EXPECT_EQ(result.verdict, Verdict::err);
    EXPECT_EQ(result.findings.size(), MOST_FINDINGS);
    EXPECT_EQ(countOf(result, "element-index"), OBJECTS);
    const auto cut = [](const KeptFinding &kept) {
      return kept.text.size() == MOST_TEXT && kept.text.ends_with("...");
    };
    EXPECT_TRUE(std::ranges::any_of(result.findings, cut));
    std::string line, again;
    appendLine(line, result);
    appendLine(again, *resultOf(line));
    EXPECT_LE(line.size(), MOST_FINDINGS * 1000);
    EXPECT_EQ(again, line);
    EXPECT_TRUE(whatIsWrong(result).starts_with(std::to_string(findingCount(result)) + " findings: "));
  }
  for (const char *const id : {"obj-name-link", "obj-mat-link", "obj-child-link", "obj-coll-link"})
    EXPECT_EQ(countOf(deep, id), OBJECTS) << id;
  EXPECT_EQ(findingCount(deep), findingCount(shallow) + 6 * OBJECTS + 2); // the scene's name; one is its own parent
}

/// Warnings that do not fit leave the verdict as it is.
TEST(SurveyAudit, MoreWarningsThanAreKept) {
  const harness::ScratchFile scratch(samples::build(VERSION_1, "EnvList { Env*2000 }").bytes);
  Workspace workspace;
  const FileResult result = audit({.path = scratch.path}, {.deep = true}, workspace);
  EXPECT_EQ(result.verdict, Verdict::ok);
  EXPECT_EQ(result.findings.size(), MOST_FINDINGS);
  EXPECT_EQ(findingCount(result), 2 * 2000U + 1);
}

TEST(SurveyDeep, RowsHaveIdsOfTheirOwn) {
  std::set<std::string> ids;
  for (const FindingRow *const row : allRows()) {
    EXPECT_TRUE(ids.insert(row->id).second) << row->id;
    EXPECT_EQ(rowOf(row->id), row);
  }
}

} // namespace

} // namespace kova::survey
