#include "survey/deep.h"

#include "bench/large.h"
#include "harness/scratch.h"
#include "samples/builder.h"
#include "survey/audit.h"
#include "survey/json.h"
#include "survey/summary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>

namespace kova::survey {

namespace {

using samples::File;

/// Has every record that refers to something, and lists of different lengths.
constexpr const char *SCENE = R"(
SceneList scene_obj_link_num=1 scene_env_link_num=1 scene_cam_link_num=1 scene_light_link_num=1
  { SceneListExt scene_chain_root_link_num=1 external_obj_num=1 external_env_num=1 external_cam_num=1
    external_light_num=1 }
EnvList { Env*2 }  CamList { Cam*3 }  LightList { Light { DirLight0 } Light*3 }
ObjList { Obj*3  Obj obj_child_num=1  Obj obj_lod_num=1 obj_child_num=1
  { ObjExt obj_chain_root_link_num=1 external_lod_obj_num=1 external_obj_num=1 } }
ShapeList { Shape shape_part_num=1  Shape*5 }
VtxList { VtxGroup vtx_num=3  VtxGroup vtx_num=2  VtxGroup*5 vtx_num=3 }
TriList { TriGroup*6  TriGroup tri_anim_type=0x222222 keys=2 { Tri }  TriGroup { Tri } }
ColorList { TriColorGroup*9 tri_color_num=1  VtxColorGroup*9 vtx_color_num=2 }
VectorList { TriNvGroup*10 tri_nv_num=4  VtxNvGroup*11 vtx_nv_num=5 }
StList { StGroup*12 st_num=6 }
PartList { Part*12  Part part_tri_num=1 }
MatList { Mat tex_num=1 { MatExt external_tex_num=1 prim_color_anim_num=2 }  Mat*13 }
TexList { Tex { TexStill }  Tex tex_anim=1 { TexTiles tex_tile_scale_num=2 tex_tile_img_num=1 }
  Tex { TexStill TexExt use_color_palette=1 tiles=1 external_tex_img_num=1 }
  Tex tex_anim=1 { TexTiles tex_tile_img_num=1 TexExt use_color_palette=1 tiles=1 }  Tex*11 { TexStill } }
TeximgList { Teximg*16 }
AnimList { AnimGroup type=3 { AnimKey*2 AnimGroupExt rotate_x_num=2 }  AnimGroup*16 }
SwitchList { Switch case_node_num=1 }
CollList { CollGroup { Coll coll_type=0x10 { Terrain }  Coll coll_type=0x22 { Sphere } }  CollGroup*17 }
NameList { Name*19 text=root }
CiImgList { CiImg*18 }
ColorPaletteList { ColorPalette*20 }
EnvelopeList { Envelope { FullWeightedPart  WeightedPart affected_node_num=1 external_affected_obj_num=1
  MorphPart table_num=1 }  Envelope { WeightedPart affected_node_num=2 EnvelopeTri } }
ClusterList { ClusterShape { Cluster ClusterTri } }
WeightList { WeightGroup*21 weight_num=1 }
ChainRootList { ChainRoot*21 ChainRoot obj_num=1 external_obj_num=1 }
JointList { Joint*22 Joint obj_num=1 external_obj_num=1 }
EffectorList { Effector*23 Effector obj_num=1 external_obj_num=1 }
ExternalNameList { Name*25 text=other.kb }
)";

/// A field that leads somewhere: record, its number, field; the finding's id and element; the number of what is there.
constexpr const char *LINK_CASES = R"(
SceneList 0 scene_name_index scene-name-link - 19
SceneList 0 obj_link[0] scene-obj-link - 5
SceneList 0 env_link[0] scene-env-link - 2
SceneList 0 cam_link[0] scene-cam-link - 3
SceneList 0 light_link[0] scene-light-link - 4
SceneListExt 0 chain_root_link[0] scene-chain-root-link - 22
SceneListExt 0 external_obj[1] scene-external-obj - 25
SceneListExt 0 external_env[1] scene-external-env - 25
SceneListExt 0 external_cam[1] scene-external-cam - 25
SceneListExt 0 external_light[1] scene-external-light - 25
Env 1 env_name_index env-name-link 1 19
Env 1 bg_sprite_img env-bg-sprite-link 1 18
Cam 2 came_name_index cam-name-link 2 19
Cam 1 cam_lookat_obj cam-lookat-link 1 5
CamExt 1 external_lookat_obj[0] cam-external-lookat 1 25
Cam 1 cam_eye_obj cam-eye-link 1 5
CamExt 1 external_eye_obj[0] cam-external-eye 1 25
Cam 1 cam_up_obj cam-up-link 1 5
CamExt 1 external_up_obj[0] cam-external-up 1 25
Light 3 light_name_index light-name-link 3 19
Obj 1 obj_name_index obj-name-link 1 19
Obj 1 obj_parent_link obj-parent-link 1 5
Obj 2 obj_shape_link obj-shape-link 2 6
Obj 2 obj_mat_link obj-mat-link 2 14
Obj 2 obj_anim_link obj-anim-link 2 17
Obj 2 obj_coll_link obj-coll-link 2 18
Obj 4 LOD_link[0] obj-lod-link 4 5
Obj 4 child_link[0] obj-child-link 4 5
ObjExt 4 obj_chain_root_link[0] obj-chain-root-link 4 22
ObjExt 4 external_lod_obj[0] obj-external-lod 4 25
ObjExt 4 external_obj[0] obj-external-obj 4 25
Shape 5 shape_name_index shape-name-link 5 19
Shape 5 shape_tri_link shape-tri-link 5 8
Shape 5 shape_mat_link shape-mat-link 5 14
Shape 0 shape_part_link[0] shape-part-link 0 13
ShapeExt 3 external_mat[1] shape-external-mat 3 25
VtxGroup 6 vtx_group_name vtx-group-name-link 6 19
TriGroup 6 tri_group_name_index tri-group-name-link 6 19
TriGroup 0 vtx_group_index[0] tri-group-vtx-link 0 7
TriGroup 0 tri_color_group_index[0] tri-group-tri-color-link 0 9
TriGroup 0 vtx_color_group_index[0] tri-group-vtx-color-link 0 9
TriGroup 0 tri_nv_group_index[0] tri-group-tri-nv-link 0 10
TriGroup 0 vtx_nv_group_index[0] tri-group-vtx-nv-link 0 11
TriGroup 0 st_group_index[0] tri-group-st-link 0 12
Tri 1 tri_nv_index tri-nv-index 7 4
Tri 1 tri_color_index tri-color-index 7 1
Tri 1 vtx_index0 tri-vtx-index0 7 3
Tri 1 st_index0 tri-st-index0 7 6
Tri 1 vtx_nv_index0 tri-vtx-nv-index0 7 5
Tri 1 vtx_color_index0 tri-vtx-color-index0 7 2
Tri 1 vtx_index1 tri-vtx-index1 7 3
Tri 1 st_index1 tri-st-index1 7 6
Tri 1 vtx_nv_index1 tri-vtx-nv-index1 7 5
Tri 1 vtx_color_index1 tri-vtx-color-index1 7 2
Tri 1 vtx_index2 tri-vtx-index2 7 3
Tri 1 st_index2 tri-st-index2 7 6
Tri 1 vtx_nv_index2 tri-vtx-nv-index2 7 5
Tri 1 vtx_color_index2 tri-vtx-color-index2 7 2
Part 3 part_name_index part-name-link 3 19
Part 3 mat_index part-mat-link 3 14
Part 3 tri_group_index part-tri-group-link 3 8
Part 12 tri_index[0] part-tri-index 12 1
Mat 13 mat_name_index mat-name-link 13 19
Mat 13 local_light_index mat-light-link 13 4
Mat 0 tex_index[0] mat-tex-link 0 15
MatExt 0 external_local_light[0] mat-external-light 0 25
MatExt 0 external_tex[1] mat-external-tex 0 25
Tex 14 tex_name_index tex-name-link 14 19
TexStill 0 tex_img_index tex-img-link 0 16
TexTiles 0 tex_tile_img_index[0] tex-tile-img-link 1 16
TexStill 1 tex_img_index tex-palette-img-link 2 18
TexTiles 1 tex_tile_img_index[0] tex-palette-tile-img-link 3 18
TexExt 2 color_palette_index[0] tex-palette-link 2 20
TexExt 2 external_tex_img[0] tex-external-img 2 25
TexExt 2 external_palette[1] tex-external-palette 2 25
AnimGroup 16 anim_name_index anim-name-link 16 19
AnimGroupExt 3 constraint[1] anim-orientation-link 3 25
AnimGroupExt 3 constraint[3] anim-direction-link 3 25
AnimGroupExt 3 constraint[5] anim-upvector-link 3 25
AnimGroupExt 3 constraint[7] anim-preferred-axis-link 3 25
AnimGroupExt 3 constraint[9] anim-position-link 3 25
AnimGroupExt 3 constraint[11] anim-unique-scale-link 3 25
AnimGroupExt 3 constraint[13] anim-classic-scale-link 3 25
AnimGroupExt 3 external_constraint[0] anim-external-orientation 3 25
AnimGroupExt 3 external_constraint[3] anim-external-direction 3 25
AnimGroupExt 3 external_constraint[4] anim-external-upvector 3 25
AnimGroupExt 3 external_constraint[7] anim-external-preferred-axis 3 25
AnimGroupExt 3 external_constraint[8] anim-external-position 3 25
AnimGroupExt 3 external_constraint[11] anim-external-unique-scale 3 25
AnimGroupExt 3 external_constraint[12] anim-external-classic-scale 3 25
CollGroup 17 coll_group_name_index coll-group-name-link 17 19
Coll 1 coll_name_index coll-name-link 0 19
Terrain 0 shape_list_index coll-shape-link 0 6
Switch 0 default_link_index switch-default-link 0 25
Switch 0 case_dest_index[0] switch-case-link 0 25
CiImg 0 name_index ci-img-name-link 0 19
ColorPalette 19 name_index color-palette-name-link 19 19
Envelope 0 name_index envelope-name-link 0 19
FullWeightedPart 0 name_index full-weighted-name-link 0 19
FullWeightedPart 0 transform_node_full[1] full-weighted-node-link 0 25
FullWeightedPart 0 external_transform_obj[0] full-weighted-external-obj 0 25
FullWeightedPart 0 full_weighted_st_group_index full-weighted-st-link 0 12
WeightedPart 0 name_index weighted-name-link 0 19
WeightedPart 1 affected_node[3] weighted-node-link 1 25
WeightedPart 0 weight_st_group_index weighted-st-link 0 12
WeightedPart 0 external_affected_obj[1] weighted-external-obj 0 25
WeightedPart 0 weight_group_index[1] weighted-weight-link 0 21
MorphPart 0 name_index morph-name-link 0 19
MorphPart 0 node0[1] morph-node0-link 0 25
MorphPart 0 node1[1] morph-node1-link 0 25
MorphPart 0 external_obj0[0] morph-external-obj0 0 25
MorphPart 0 external_obj1[1] morph-external-obj1 0 25
MorphPart 0 morph_st_group_index morph-st-link 0 12
FullWeightedPart 0 group_index[0] skin-vtx-link 0 7
WeightedPart 0 group_index[3] skin-vtx-nv-link 0 11
MorphPart 0 group_index[2] skin-tri-nv-link 0 10
Cluster 0 group_index[3] skin-vtx-color-link 0 9
WeightedPart 0 group_index[9] skin-tri-color-link 0 9
EnvelopeTri 0 envelope_part_for_tri[1] envelope-tri-part 1 1
EnvelopeTri 0 tri_nv_index envelope-tri-nv-index 1 4
EnvelopeTri 0 tri_color_index envelope-tri-color-index 1 1
EnvelopeTri 0 weight_index_tri envelope-tri-weight-index 1 1
EnvelopeTri 0 vtx[1] envelope-vtx-part 1 1
EnvelopeTri 0 vtx[2] envelope-vtx-index 1 3
EnvelopeTri 0 vtx[10] envelope-st-index 1 6
EnvelopeTri 0 vtx[18] envelope-vtx-nv-index 1 5
EnvelopeTri 0 vtx[19] envelope-vtx-color-index 1 2
EnvelopeTri 0 vtx[6] envelope-weight-index 1 1
ClusterTri 0 cluster_for_tri[1] cluster-tri-cluster 0 1
ClusterTri 0 tri_nv_index cluster-tri-nv-index 0 4
ClusterTri 0 tri_color_index cluster-tri-color-index 0 1
ClusterTri 0 vtx[13] cluster-vtx-cluster 0 1
ClusterTri 0 vtx[2] cluster-vtx-index 0 3
ClusterTri 0 vtx[9] cluster-st-index 0 6
ClusterTri 0 vtx[16] cluster-vtx-nv-index 0 5
ClusterTri 0 vtx[17] cluster-vtx-color-index 0 2
ClusterShape 0 name_index cluster-shape-name-link 0 19
Cluster 0 name_index cluster-name-link 0 19
Cluster 0 transform_node[1] cluster-node-link 0 25
Cluster 0 external_transform_obj[0] cluster-external-obj 0 25
Cluster 0 cluster_st_group_index cluster-st-link 0 12
WeightGroup 20 name_index weight-group-name-link 20 19
ChainRoot 21 name_index chain-root-name-link 21 19
ChainRoot 21 anim_index chain-root-anim-link 21 17
ChainRoot 21 joint_index chain-root-joint-link 21 23
Joint 22 name_index joint-name-link 22 19
Joint 22 joint_index joint-joint-link 22 23
Joint 22 effector_index joint-effector-link 22 24
Joint 22 anim_index joint-anim-link 22 17
Effector 23 name_index effector-name-link 23 19
Effector 23 anim_index effector-anim-link 23 17
ChainRoot 21 obj_index[0] chain-root-obj-link 21 5
ChainRoot 21 external_obj[1] chain-root-external-obj 21 25
Joint 22 obj_index[0] joint-obj-link 22 5
Joint 22 external_obj[1] joint-external-obj 22 25
Effector 23 obj_index[0] effector-obj-link 23 5
Effector 23 external_obj[1] effector-external-obj 23 25
)";

struct LinkCase {
  std::string kind;
  std::size_t number;
  std::string field, id, element;
  Word end;
};

std::vector<LinkCase> linkCases() {
  std::vector<LinkCase> cases;
  std::istringstream text(LINK_CASES);
  for (LinkCase next; text >> next.kind >> next.number >> next.field >> next.id >> next.element >> next.end;)
    cases.push_back(next);
  return cases;
}

std::string withoutPosition(const std::string &field) { return field.substr(0, field.find('[')); }

/// The scene with all links 0, so that they lead somewhere, and a tree of two objects.
File consistentScene() {
  File file = samples::build(VERSION_2, SCENE);
  std::set<std::pair<std::string, std::string>> links;
  for (const LinkCase &link : linkCases())
    links.insert({link.kind, withoutPosition(link.field)});
  for (const samples::NamedWord &word : file.words)
    if (links.contains({word.kind, withoutPosition(word.field)}))
      harness::setWordAt(file.bytes, word.offset, word.field == "obj_parent_link" ? ~Word{0} : 0);
  return samples::edited(std::move(file),
                         "Obj 0 obj_parent_link 4; Obj 3 child_link[0] 0xffffffff; Part 12 tri_group_index 7");
}

/// What the deep checks report of a file that loads: "id list[element]" for each.
struct Reported {
  std::vector<std::string> lines = {};
  std::vector<std::optional<std::uint64_t>> offsets = {};
  std::vector<std::optional<Word>> found = {}, expected = {};
};

Reported deepFindings(const harness::Bytes &bytes) {
  Reported reported;
  const KisHandle kis = kvNewKis();
  EXPECT_EQ(kvOpenKbMemory(bytes, "scene.kb", *kis), 1);
  Record record;
  deepCheck(*kis, record);
  for (const KeptFinding &finding : record.findings) {
    EXPECT_EQ(finding.text.rfind("WARN : " + finding.list, 0), 0U);
    EXPECT_EQ(finding.severity, Severity::warning);
    const std::string element = finding.element ? std::to_string(*finding.element) : "-";
    reported.lines.push_back(finding.id + " " + element);
    reported.offsets.push_back(finding.offset);
    reported.found.push_back(finding.found);
    reported.expected.push_back(finding.expected);
  }
  return reported;
}

using Lines = std::vector<std::string>;

/// What else is wrong with a file does not matter here: only what the deep checks add to it.
TEST(SurveyDeep, SilentAboutAllSamplesThatAreOK) {
  int ok = 0;
  for (const auto &entry : std::filesystem::directory_iterator(KOVA_SOURCE_DIR "/samples")) {
    Workspace workspace;
    const Record shallow = audit({.path = entry.path()}, {}, workspace);
    if (shallow.verdict != Verdict::ok)
      continue;
    const Record deep = audit({.path = entry.path()}, {.deep = true}, workspace);
    EXPECT_EQ(deep.counts, shallow.counts) << entry.path() << ": " << deep.findings.back().text;
    ++ok;
  }
  EXPECT_GE(ok, 9);
}

TEST(SurveyDeep, SilentAboutTheBenchmarkFiles) {
  for (const bench::Workload &workload : bench::WORKLOADS)
    EXPECT_EQ(deepFindings(workload.make()).lines, Lines{}) << workload.name;
}

TEST(SurveyDeep, SilentAboutAConsistentScene) { EXPECT_EQ(deepFindings(consistentScene().bytes).lines, Lines{}); }

TEST(SurveyDeep, EveryLinkOnePastTheEnd) {
  const File good = consistentScene();
  std::set<std::string> untried;
  for (const FindingRow &row : deepRows())
    if (std::string_view(row.format).find("but %s has") != std::string_view::npos)
      untried.insert(row.id);
  std::size_t with_offset = 0;
  for (const LinkCase &link : linkCases()) {
    SCOPED_TRACE(link.kind + " " + link.field);
    untried.erase(link.id);
    const auto tried = [&](Word value) {
      File file = good;
      samples::setWord(file, link.kind, link.number, link.field, value);
      return deepFindings(file.bytes);
    };
    const Reported past = tried(link.end);
    ASSERT_EQ(past.lines, Lines{link.id + " " + link.element});
    EXPECT_EQ(past.found[0], link.end);
    EXPECT_EQ(past.expected[0], link.end);
    if (past.offsets[0]) {
      EXPECT_EQ(*past.offsets[0], samples::offsetOf(good, link.kind, link.number, link.field));
      ++with_offset;
    }
    EXPECT_EQ(tried(~Word{1}).lines, Lines{link.id + " " + link.element}) << "-2";
    EXPECT_EQ(tried(~Word{0}).lines, Lines{}) << "none";
    if (link.id != "obj-parent-link" && link.id != "obj-child-link") { // else the tree contradicts itself
      EXPECT_EQ(tried(link.end - 1).lines, Lines{}) << "the last one";
    }
  }
  EXPECT_EQ(untried, std::set<std::string>{});
  EXPECT_GT(with_offset, 50U);
}

TEST(SurveyDeep, Edits) {
  struct Case {
    const char *edits;
    Lines findings;
  };
  const Case CASES[] = {
      // floats; words beside them are none
      {"Cam 2 cam_fovy 0x7f800000", {"float-not-finite 2"}},
      {"Cam 2 cam_fovy 0x7f7fffff; AnimKey 0 rotate_expand_flag 0x7fc00000; AnimKey 0 interpolation 0x7fc00000", {}},
      {"VtxGroup 6 vtx[8] 0xffc00000; VtxGroup 6 vtx[2] 0xff800000", {"float-not-finite 6"}},
      {"DirLight0 0 dir_z 0x7fc00000", {"float-not-finite 0"}},
      {"TriColorGroup 8 color[3] 0x7fc00000; VtxNvGroup 10 normal[14] 0x7fc00000",
       {"float-not-finite 8", "float-not-finite 10"}},
      {"MatExt 0 prim_color_anim[11] 0x7fc00000", {"float-not-finite 0"}},
      {"MatExt 0 prim_color_anim[6] 0x7fc00000", {}},
      {"AnimKey 1 scale[2] 0x7fc00000", {"float-not-finite 0"}},
      {"AnimGroupExt 0 rotate_x[7] 0x7fc00000", {"float-not-finite 0"}},
      {"Sphere 0 radius 0x7fc00000", {"float-not-finite 0"}},
      {"WeightGroup 20 weight[0] 0x7fc00000; Joint 5 resplain_axis[2] 0x7fc00000",
       {"float-not-finite 20", "float-not-finite 5"}},
      // keys
      {"AnimKey 1 key 2", {"keys-out-of-order 0"}},
      {"TriGroup 6 st_anim_key[1] 0xfffffffb", {"keys-out-of-order 6"}},
      {"MatExt 0 prim_color_anim[7] 0", {"keys-out-of-order 0"}},
      {"TexTiles 0 tex_tile_scale_key[1] 0", {"keys-out-of-order 1"}},
      {"AnimGroupExt 0 rotate_x[5] 0", {"keys-out-of-order 0"}},
      // the smallest of the groups of a reference, and none that it names
      {"TriGroup 6 vtx_group_index[1] 1; Tri 0 vtx_index2 1", {}},
      {"TriGroup 6 vtx_group_index[1] 1; Tri 0 vtx_index2 2", {"tri-vtx-index2 6"}},
      {"TriGroup 7 vtx_group_index[0] 0xffffffff; Tri 1 vtx_index2 99", {}},
      // the kinds of node references are no indices
      {"AnimGroupExt 3 constraint[0] 99; FullWeightedPart 0 transform_node_full[0] 99; EnvelopeTri 0 vtx[0] 99", {}},
      // any part with the number of a corner's will do, and any of its groups: the one of 3 vertices, not that of 2
      {"WeightedPart 1 group_index[1] 1; EnvelopeTri 0 vtx[2] 2", {}},
      {"WeightedPart 1 group_index[0] 1 group_index[1] 1; EnvelopeTri 0 vtx[2] 2", {"envelope-vtx-index 1"}},
      {"WeightedPart 1 group_index[0] 0xffffffff; EnvelopeTri 0 vtx[2] 99", {}},
      {"WeightedPart 1 weight_group_index[1] 0xffffffff; EnvelopeTri 0 vtx[6] 99", {}},
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
  };
  const File good = consistentScene();
  for (const Case &tried : CASES)
    EXPECT_EQ(deepFindings(samples::edited(good, tried.edits).bytes).lines, tried.findings) << tried.edits;
}

TEST(SurveyDeep, IndexZeroOfAnEmptyListIsOnePastItsEnd) {
  const File file = samples::build(VERSION_1, "ObjList { Obj }", samples::LinkWords::none);
  EXPECT_EQ(deepFindings(file.bytes).lines, Lines{});
  EXPECT_EQ(deepFindings(samples::edited(file, "Obj 0 obj_mat_link 0").bytes).lines, Lines{"obj-mat-link 0"});
}

TEST(SurveyDeep, ControlBytesInNames) {
  for (const char *const list : {"NameList", "ExternalNameList"}) {
    File file = consistentScene();
    // The names of both lists are one kind of record for the builder; those of the other list come first.
    const std::size_t number = (list == std::string("NameList") ? 0 : 19) + 2;
    const std::size_t text = samples::offsetOf(file, "Name", number, "name_size") + 4;
    harness::setWordAt(file.bytes, text, 0x61c3a420); // letters, also such as are not ASCII, and a blank
    EXPECT_EQ(deepFindings(file.bytes).lines, Lines{});
    harness::setWordAt(file.bytes, text, 0x611b0062);
    const Reported reported = deepFindings(file.bytes);
    ASSERT_EQ(reported.lines, Lines{"name-control-byte 2"}) << list;
    EXPECT_EQ(reported.offsets[0], text + 1);
    harness::setWordAt(file.bytes, text, 0x61001b7f); // behind the end of the name
    EXPECT_EQ(deepFindings(file.bytes).lines, Lines{});
  }
}

TEST(SurveyDeep, LeavesTheVerdictAsItIs) {
  const harness::ScratchFile scratch(samples::edited(consistentScene(), "Cam 1 cam_eye_obj 5").bytes);
  Workspace workspace;
  const Record shallow = audit({.path = scratch.path}, {}, workspace);
  const Record deep = audit({.path = scratch.path}, {.deep = true}, workspace);
  EXPECT_EQ(shallow.verdict, Verdict::ok);
  EXPECT_EQ(deep.verdict, Verdict::ok);
  EXPECT_TRUE(shallow.findings.empty());
  ASSERT_EQ(deep.findings.size(), 1U);
  EXPECT_EQ(deep.findings[0].text, "WARN : CamList[1] : cam_eye_obj = 5, but ObjList has 5\n");
  EXPECT_EQ(deep.findings[0].severity, Severity::warning);
}

std::uint64_t countOf(const Record &record, const char *id) {
  const auto at = record.counts.find(id);
  return at == record.counts.end() ? 0 : at->second;
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
  const Record shallow = audit({.path = scratch.path}, {}, workspace);
  const Record deep = audit({.path = scratch.path}, {.deep = true}, workspace);
  for (const Record &record : {shallow, deep}) {
    EXPECT_EQ(record.verdict, Verdict::err);
    EXPECT_EQ(record.findings.size(), MOST_FINDINGS);
    EXPECT_EQ(countOf(record, "element-index"), OBJECTS);
    const auto cut = [](const KeptFinding &kept) {
      return kept.text.size() == MOST_TEXT && kept.text.ends_with("...");
    };
    EXPECT_TRUE(std::ranges::any_of(record.findings, cut));
    EXPECT_LE(jsonLine(record).size(), MOST_FINDINGS * 1000);
    EXPECT_EQ(jsonLine(*recordOf(jsonLine(record))), jsonLine(record));
    EXPECT_TRUE(whatIsWrong(record).starts_with(std::to_string(findingCount(record)) + " findings: "));
  }
  for (const char *const id : {"obj-name-link", "obj-mat-link", "obj-child-link", "obj-coll-link"})
    EXPECT_EQ(countOf(deep, id), OBJECTS) << id;
  EXPECT_EQ(findingCount(deep), findingCount(shallow) + 6 * OBJECTS + 2); // the scene's name; one is its own parent
}

/// Warnings that do not fit leave the verdict as it is.
TEST(SurveyAudit, MoreWarningsThanAreKept) {
  const harness::ScratchFile scratch(samples::build(VERSION_1, "EnvList { Env*2000 }").bytes);
  Workspace workspace;
  const Record record = audit({.path = scratch.path}, {.deep = true}, workspace);
  EXPECT_EQ(record.verdict, Verdict::ok);
  EXPECT_EQ(record.findings.size(), MOST_FINDINGS);
  EXPECT_EQ(findingCount(record), 2 * 2000U + 1);
}

/// Lists that could not be read say nothing about the links to them.
TEST(SurveyDeep, SilentAboutWhatCouldNotBeRead) {
  const File good = consistentScene();
  for (const char *const edit : {"MatList 0 list_tag 1", "Name 3 name_tag 1", "ObjList 0 list_tag 1"}) {
    const File file = samples::edited(good, edit);
    const KisHandle kis = kvNewKis();
    const FindingReceiver nobody([](const Finding &) {});
    EXPECT_EQ(kvOpenKbMemory(file.bytes, "scene.kb", *kis), 0) << edit;
    Record record;
    deepCheck(*kis, record);
    EXPECT_EQ(record.counts.size(), 0U) << edit;
  }
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
