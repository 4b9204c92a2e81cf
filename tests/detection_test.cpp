/// Which words the program watches: every word of the two files with everything in them is changed alone. A change to a
/// watched word must fail the file, a change to any other must leave findings and verdict as they are.

#include "tests/support.h"

#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>

namespace kova::test {

namespace {

// In these tables each line has a kind of record and its fields. A line that begins with blanks continues the one above
// it.

/// A list with the common header, where no row says otherwise.
constexpr char LIST_FIELDS[] = " list_size list_tag num num_byte[] usr_ext_blk_size van_ext_blk_size";

constexpr char WATCHED[] = R"(
AnimGroup anim_group_size anim_group_tag this_anim_group_index van_ext_blk_size usr_ext_blk_size
AnimGroupExt classic_scale_num orientation_xy_num rotate_axis_num rotate_x_num rotate_y_num rotate_z_num translation_num
  unique_scale_num
Cam cam_size cam_tag this_cam_index van_ext_blk_size usr_ext_blk_size
ChainRoot external_obj_num obj_num size tag this_index van_ext_blk_size usr_ext_blk_size
CiImg size tag this_index van_ext_blk_size usr_ext_blk_size
Cluster size
ClusterShape cluster_num cluster_tri_num size tag this_index van_ext_blk_size usr_ext_blk_size
ClusterTri cluster_tri_size
Coll coll_header_size coll_size coll_tag
CollGroup coll_group_size coll_group_tag coll_num this_coll_group_index
ColorList list_size list_tag tri_group_num tri_group_size[] usr_ext_blk_size van_ext_blk_size vtx_group_num
  vtx_group_size[]
ColorPalette size tag this_index van_ext_blk_size usr_ext_blk_size
DirLight0 dir_light_size
DirLight1 dir_light_size
Effector external_obj_num obj_num size tag this_index van_ext_blk_size usr_ext_blk_size
Env env_size env_tag this_env_index van_ext_blk_size usr_ext_blk_size
Envelope envelope_tri_num full_weighted_part_num morph_part_num size tag this_index usr_ext_blk_size van_ext_blk_size
  weighted_part_num
EnvelopeTri envelope_tri_size
FileHeader anim_list_num cam_list_num coll_list_num color_list_num env_list_num file_header_num header_tag
  light_list_num mat_list_num name_list_num obj_list_num part_list_num scene_list_num shape_list_num size st_list_num
  switch_list_num tex_img_list_num tex_list_num tri_list_num usr_ext_blk_size van_ext_blk_size vector_list_num version
  vtx_list_num
FileHeaderExt chain_root_list_num ci_img_list_num cluster_list_num color_palette_list_num effector_list_num
  envelope_list_num external_name_list_num joint_list_num weight_list_num
FullWeightedPart size van_ext_blk_size usr_ext_blk_size
Joint external_obj_num obj_num size tag this_index van_ext_blk_size usr_ext_blk_size
Light dir_light_num light_header_size light_size light_tag this_light_index van_ext_blk_size usr_ext_blk_size
Mat mat_size mat_tag tex_num this_mat_index van_ext_blk_size usr_ext_blk_size
MatExt external_tex_num prim_color_anim_num prim_color_anim_num_for_fog
MorphPart size table_num van_ext_blk_size usr_ext_blk_size
Name name_tag
NameList list_tag num
Obj obj_child_num obj_lod_num obj_size obj_tag this_obj_index
ObjExt external_lod_obj_num
Part part_size part_tag part_tri_num this_part_index van_ext_blk_size usr_ext_blk_size
SceneList scene_cam_link_num scene_env_link_num scene_header_size scene_header_tag scene_light_link_num
  scene_obj_link_num scene_size van_ext_blk_size usr_ext_blk_size
SceneListExt external_cam_num external_env_num external_light_num external_obj_num scene_chain_root_link_num
Shape shape_part_num shape_size shape_tag this_shape_index van_ext_blk_size usr_ext_blk_size
StGroup st_group_size st_group_tag st_num this_st_group_index
Switch case_node_num switch_size switch_tag this_switch_index
Tex tex_size tex_tag this_tex_index
TexTiles tex_tile_img_num tex_tile_offset_num tex_tile_scale_num
Teximg tex_img_size tex_img_tag this_tex_img_index
TeximgExt mipmap_max_level
TriColorGroup this_tri_color_group_index tri_color_group_size tri_color_group_tag tri_color_num
TriGroup st_anim_key_num this_tri_group_index tri_color_anim_key_num tri_group_size tri_group_tag tri_num
  tri_nv_anim_key_num vtx_anim_key_num vtx_color_anim_key_num vtx_nv_anim_key_num
TriNvGroup this_tri_nv_group_index tri_nv_group_size tri_nv_group_tag tri_nv_num
VectorList list_size list_tag tri_group_num tri_group_size[] usr_ext_blk_size van_ext_blk_size vtx_group_num
  vtx_group_size[]
VtxColorGroup this_vtx_color_group_index vtx_color_group_size vtx_color_group_tag vtx_color_num
VtxGroup this_vtx_group_index vtx_group_size vtx_group_tag vtx_num
VtxNvGroup vtx_nv_group_index vtx_nv_group_size vtx_nv_group_tag vtx_nv_num
WeightGroup size tag this_index usr_ext_blk_size van_ext_blk_size weight_num
WeightedPart affected_node_num external_affected_obj_num size van_ext_blk_size usr_ext_blk_size
)";

/// Reported, but without a verdict.
constexpr char REPORTED[] = R"(
Obj van_ext_blk_size usr_ext_blk_size
Tri van_ext_blk_size usr_ext_blk_size
)";

/// Words that choose a form or are rounded: what a change does depends on the record's other words.
constexpr char BY_FORM[] = R"(
AnimGroup type anim_num
Light light_type
Name name_header_size this_name_index name_size
Tex tex_anim
Teximg tex_img_header_size van_ext_blk_size usr_ext_blk_size
TriGroup tri_anim_frame_num tri_anim_type
CiImg ci_img_width ci_img_height ci_img_pixel_depth
ColorPalette color_num
ObjExt external_obj_num
TexExt external_tex_img_num use_color_palette
)";

using Fields = std::map<std::string, std::set<std::string>>;

Fields fieldsOf(const std::string &table) {
  Fields fields;
  std::istringstream lines(table);
  std::string kind;
  for (std::string line; std::getline(lines, line);) {
    std::istringstream names(line);
    if (!line.starts_with(' '))
      names >> kind;
    for (std::string name; names >> name;)
      fields[kind].insert(name);
  }
  return fields;
}

Fields watchedFields() {
  Fields fields = fieldsOf(WATCHED);
  for (const ListRow &list : LISTS)
    fields.merge(fieldsOf(list.name + std::string(LIST_FIELDS))); // keeps what is there
  return fields;
}

bool has(const Fields &fields, const NamedWord &word) {
  const auto kind = fields.find(word.kind);
  const std::size_t bracket = word.field.find('[');
  const std::string field = bracket == std::string::npos ? word.field : word.field.substr(0, bracket) + "[]";
  return kind != fields.end() && kind->second.contains(field);
}

void changeEveryWord(const File &good, Word version) {
  const Fields watched = watchedFields();
  const Fields reported = fieldsOf(REPORTED);
  const Fields by_form = fieldsOf(BY_FORM);
  const Audit before = audit(good.bytes);
  std::size_t changed = 0;
  for (const NamedWord &word : good.words) {
    if (has(by_form, word))
      continue;
    File file = good;
    setWord(file, word.kind, word.number, word.field, getWord(good, word.kind, word.number, word.field) + 1);
    const Audit after = audit(file.bytes);
    const std::string what = nameOf(word);
    const bool raw = version == VERSION_1 && word.kind.ends_with("Ext"); // a 1.0 file has no decoded maker blocks
    const bool fails = has(watched, word) && !raw;
    EXPECT_EQ(after.loaded * after.verdict, fails ? 0 : 1) << what;
    if (!fails) {
      EXPECT_EQ(after.findings == before.findings, !has(reported, word)) << what << "\n" << after.findings;
    } else {
      EXPECT_NE(after.findings + after.errors, before.findings + before.errors) << what;
    }
    ++changed;
  }
  ::testing::Test::RecordProperty("changed", std::to_string(changed));
}

} // namespace

TEST(Detection, EveryWordOfA10File) { changeEveryWord(goodFile1(), VERSION_1); }
TEST(Detection, EveryWordOfA20File) { changeEveryWord(goodFile2(), VERSION_2); }

} // namespace kova::test
