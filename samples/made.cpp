#include "samples/made.h"

#include <functional>

namespace kova::samples {

namespace {

/// A 1.0 scene of a few records, for damage.
constexpr const char *SCENE_1 = R"(
SceneList scene_obj_link_num=1 scene_cam_link_num=1 scene_light_link_num=1
CamList { Cam }
LightList { Light { DirLight0*2 }  Light light_type=1 { DirLight1 } }
ObjList { Obj obj_child_num=2  Obj obj_lod_num=1  Obj }
ShapeList { Shape shape_part_num=1 }
VtxList { VtxGroup vtx_num=3 }
TriList { TriGroup { Tri  Tri } }
ColorList { TriColorGroup tri_color_num=1  VtxColorGroup vtx_color_num=2 }
PartList { Part part_tri_num=2 }
MatList { Mat tex_num=1  Mat }
TexList { Tex { TexStill } }
TeximgList { Teximg texels=16 }
AnimList { AnimGroup { AnimStep } }
NameList { Name text=root  Name text=a~door  Name text=window }
)";

/// A door and a window with one shape between them; links that are not here lead nowhere.
constexpr const char *LINKS_1 = R"(
SceneList 0 scene_name_index 0 obj_link[0] 0 cam_link[0] 0 light_link[0] 1;
Cam 0 cam_lookat_obj 1;
Obj 0 obj_name_index 0 child_link[0] 1 child_link[1] 2;
Obj 1 obj_name_index 1 obj_parent_link 0 obj_shape_link 0 obj_anim_link 0 LOD_link[0] 2;
Obj 2 obj_name_index 2 obj_parent_link 0 obj_shape_link 0 obj_mat_link 1;
Shape 0 shape_name_index 1 shape_tri_link 0 shape_mat_link 0 shape_part_link[0] 0;
TriGroup 0 vtx_group_index[0] 0 tri_color_group_index[0] 0 vtx_color_group_index[0] 0;
Tri 0 tri_color_index 0 vtx_index0 0 vtx_index1 1 vtx_index2 2 vtx_color_index0 0 vtx_color_index1 1 vtx_color_index2 1;
Tri 1 tri_color_index 0 vtx_index0 2 vtx_index1 1 vtx_index2 0;
Part 0 mat_index 0 tri_group_index 0 tri_index[0] 0 tri_index[1] 1;
Mat 0 tex_index[0] 0;
TexStill 0 tex_img_index 0
)";

/// The same for 2.0, with the lists of a skin.
constexpr const char *SCENE_2 = R"(
SceneList scene_obj_link_num=1 { SceneListExt external_obj_num=1 }
CamList { Cam { CamExt }  Cam { CamExt } }
ObjList { Obj obj_child_num=1 { ObjExt external_obj_num=1 }  Obj }
MatList { Mat tex_num=1 { MatExt external_tex_num=1 } }
EnvelopeList { Envelope { FullWeightedPart
  WeightedPart affected_node_num=2 external_affected_obj_num=1  EnvelopeTri*2 } }
ClusterList { ClusterShape { Cluster ClusterTri } }
NameList { Name text=root  Name text=arm }
ExternalNameList { Name text=other.kb }
)";

constexpr const char *LINKS_2 = R"(
SceneList 0 scene_name_index 0 obj_link[0] 0;
SceneListExt 0 external_obj[0] 0 external_obj[1] 0;
Cam 0 cam_lookat_obj 1;
CamExt 1 external_eye_obj[0] 0 external_eye_obj[1] 0;
Obj 0 obj_name_index 0 obj_mat_link 0 child_link[0] 1;
ObjExt 0 external_obj[0] 0 external_obj[1] 0;
Obj 1 obj_name_index 1 obj_parent_link 0;
MatExt 0 external_tex[0] 0 external_tex[1] 0;
Envelope 0 name_index 1;
FullWeightedPart 0 external_transform_obj[0] 0 external_transform_obj[1] 0;
WeightedPart 0 affected_node[0] 0 affected_node[1] 0 external_affected_obj[0] 0 external_affected_obj[1] 0;
EnvelopeTri 0 envelope_part_for_tri[1] 0 vtx[0] 0 vtx[1] 0 vtx[7] 0 vtx[8] 0 vtx[14] 0 vtx[15] 0;
EnvelopeTri 1 vtx[0] 0 vtx[7] 0 vtx[14] 0;
ClusterTri 0 cluster_for_tri[1] 0 vtx[0] 0 vtx[1] 0 vtx[6] 0 vtx[7] 0 vtx[12] 0 vtx[13] 0
)";

/// The skin of a figure, its bones and its palettes.
constexpr const char *SKIN = R"(
SceneList scene_obj_link_num=1
ObjList { Obj }
CiImgList { CiImg ci_img_width=4 ci_img_height=4 ci_img_pixel_depth=8 }
EnvelopeList { Envelope { FullWeightedPart  WeightedPart affected_node_num=1  MorphPart table_num=1  EnvelopeTri*2 }  Envelope }
ClusterList { ClusterShape { Cluster Cluster ClusterTri }  ClusterShape { Cluster } }
WeightList { WeightGroup weight_num=2 }
ChainRootList { ChainRoot obj_num=1 }
NameList { Name text=root }
)";

constexpr const char *SKIN_LINKS = R"(
SceneList 0 scene_name_index 0 obj_link[0] 0;
Obj 0 obj_name_index 0;
Envelope 0 name_index 0;
WeightedPart 0 affected_node[0] 0 weight_group_index[0] 0;
EnvelopeTri 0 envelope_part_for_tri[1] 0 vtx[0] 0 vtx[1] 0 vtx[7] 0 vtx[8] 0 vtx[14] 0 vtx[15] 0;
EnvelopeTri 1 vtx[0] 0 vtx[7] 0 vtx[14] 0;
ClusterTri 0 cluster_for_tri[1] 1 vtx[0] 0 vtx[1] 1 vtx[6] 0 vtx[7] 1 vtx[12] 0 vtx[13] 0;
ChainRoot 0 name_index 0 obj_index[0] 0
)";

/// Links between the records of `goodFile1` and `goodFile2`, and those that the latter has besides.
constexpr const char *EVERY_FORM_LINKS = R"(
SceneList 0 scene_name_index 1 obj_link[0] 0 env_link[0] 1 cam_link[0] 0 cam_link[1] 1 light_link[0] 0 light_link[1] 3;
Env 0 env_name_index 2 bg_sprite_img 2;
Cam 0 came_name_index 1 cam_lookat_obj 1 cam_eye_obj 0 cam_up_obj 0;
Light 1 light_name_index 3;
Obj 0 obj_name_index 1 obj_shape_link 0 obj_mat_link 1 obj_anim_link 2 obj_coll_link 1 LOD_link[0] 1 child_link[0] 1;
Obj 1 obj_name_index 3 obj_parent_link 0;
Shape 0 shape_name_index 2 shape_tri_link 0 shape_mat_link 0 shape_part_link[0] 0 shape_part_link[1] 1;
VtxGroup 0 vtx_group_name 3;
TriGroup 0 tri_group_name_index 2 vtx_group_index[0] 0 tri_color_group_index[0] 0 vtx_color_group_index[0] 1
  tri_nv_group_index[0] 0 vtx_nv_group_index[0] 0 st_group_index[0] 0;
Tri 0 tri_nv_index 1 tri_color_index 1 vtx_index0 0 st_index0 1 vtx_nv_index0 0 vtx_color_index0 1
  vtx_index1 1 st_index1 0 vtx_nv_index1 0 vtx_color_index1 0 vtx_index2 1 st_index2 1 vtx_nv_index2 0;
Tri 1 vtx_index0 1 vtx_index1 0 vtx_index2 0;
TriGroup 1 vtx_group_index[0] 0 vtx_group_index[1] 0 vtx_group_index[2] 0 st_group_index[0] 0;
Tri 2 vtx_index0 1 vtx_index1 0 vtx_index2 1 st_index0 1;
TriGroup 2 tri_color_group_index[0] 0 tri_color_group_index[1] 0;
Tri 3 tri_color_index 1;
Part 0 part_name_index 1 mat_index 1 tri_group_index 0 tri_index[0] 1 tri_index[1] 0;
Mat 0 mat_name_index 2 local_light_index 1 tex_index[0] 0 tex_index[1] 2;
Tex 0 tex_name_index 3;
TexStill 0 tex_img_index 0;
TexStill 1 tex_img_index 1;
TexTiles 0 tex_tile_img_index[0] 1 tex_tile_img_index[1] 2;
AnimGroup 2 anim_name_index 1;
CollGroup 0 coll_group_name_index 2;
Coll 1 coll_name_index 3;
Terrain 0 shape_list_index 1;
Switch 0 default_link_index 0 case_dest_index[0] 0 case_dest_index[1] 1
)";
constexpr const char *EVERY_FORM_2_LINKS = R"(
SceneListExt 0 chain_root_link[0] 0 chain_root_link[1] 1 external_obj[0] 0 external_obj[2] 1
  external_env[0] 0 external_env[1] 1 external_light[0] 0 external_light[2] 1;
CamExt 0 external_lookat_obj[0] 0 external_lookat_obj[1] 1;
ObjExt 0 obj_chain_root_link[0] 1 external_lod_obj[0] 0 external_lod_obj[2] 1 external_obj[0] 0 external_obj[1] 1;
ShapeExt 1 external_mat[0] 0 external_mat[1] 1;
MatExt 0 external_local_light[0] 0 external_local_light[1] 1 external_tex[0] 0 external_tex[2] 1;
TexExt 1 color_palette_index[0] 1 external_tex_img[0] 0 external_tex_img[2] 1 external_palette[0] 0 external_palette[2] 1;
TexExt 2 color_palette_index[0] 0 color_palette_index[1] 1;
AnimGroupExt 2 external_constraint[0] 0 external_constraint[1] 1;
CiImg 0 name_index 1;
ColorPalette 0 name_index 2;
Envelope 0 name_index 1;
FullWeightedPart 0 name_index 2 external_transform_obj[0] 0 external_transform_obj[1] 1 group_index[0] 0 group_index[1] 0
  group_index[2] 0 group_index[3] 1 group_index[4] 0 full_weighted_st_group_index 0;
WeightedPart 0 affected_node[0] 0 affected_node[1] 0 external_affected_obj[0] 0 external_affected_obj[1] 1
  weight_group_index[0] 0 weight_group_index[1] 0 weight_group_index[2] 1
  group_index[0] 0 group_index[1] 0 group_index[2] 0 weight_st_group_index 0;
MorphPart 0 group_index[0] 0 group_index[1] 0 morph_st_group_index 0;
EnvelopeTri 0 envelope_part_for_tri[1] 0 tri_nv_index 1 vtx[0] 0 vtx[1] 0 vtx[2] 1 vtx[3] 1 vtx[7] 0 vtx[8] 0 vtx[9] 0
  vtx[14] 0 vtx[15] 0 vtx[16] 1;
EnvelopeTri 1 vtx[0] 0 vtx[7] 0 vtx[14] 0;
ClusterShape 0 name_index 3;
Cluster 0 name_index 2 group_index[0] 0 cluster_st_group_index 0;
ClusterTri 0 cluster_for_tri[1] 1 vtx[0] 0 vtx[1] 0 vtx[2] 1 vtx[6] 0 vtx[7] 0 vtx[8] 0 vtx[12] 0 vtx[13] 1;
ClusterTri 1 vtx[0] 0 vtx[6] 0 vtx[12] 0;
WeightGroup 0 name_index 1;
ChainRoot 0 name_index 1 anim_index 2 joint_index 0 obj_index[0] 0 obj_index[1] 1 external_obj[0] 0 external_obj[2] 1;
Joint 0 name_index 2 joint_index 1 effector_index 0 anim_index 3 obj_index[0] 1 external_obj[0] 0 external_obj[2] 1;
Effector 0 name_index 3 anim_index 4 obj_index[0] 0 external_obj[0] 0 external_obj[1] 1
)";

/// A scene of the builder's notation, with its links.
struct Scene {
  Word version;
  const char *text;
  const char *links;
};
constexpr Scene EMPTY = {VERSION_1, "", ""};
constexpr Scene SMALL_1 = {VERSION_1, SCENE_1, LINKS_1};
constexpr Scene SMALL_2 = {VERSION_2, SCENE_2, LINKS_2};
constexpr Scene SKINNED = {VERSION_2, SKIN, SKIN_LINKS};

File buildScene(const Scene &scene) { return edited(build(scene.version, scene.text, LinkWords::none), scene.links); }

struct Damage {
  const char *name;
  Word version;
  std::function<void(File &)> inflict;
  Scene scene = version == VERSION_2 ? SMALL_2 : SMALL_1;
};

void add(File &file, const std::string &kind, std::size_t number, const std::string &field, Word delta) {
  setWord(file, kind, number, field, getWord(file, kind, number, field) + delta);
}

const Damage DAMAGES[] = {
    {"cut", 0x100, [](File &file) { file.bytes.resize(file.bytes.size() / 2); }},
    {"extra", 0x100, [](File &file) { file.bytes.resize(file.bytes.size() + 12); }},
    {"header-size", 0x100, [](File &file) { add(file, "FileHeader", 0, "file_header_num", 4); }},
    {"list-size", 0x100, [](File &file) { add(file, "FileHeader", 0, "mat_list_num", 4); }},
    {"list-tag", 0x100, [](File &file) { setWord(file, "ShapeList", 0, "list_tag", 0x00020000); }},
    {"element-tag", 0x100, [](File &file) { setWord(file, "Obj", 1, "obj_tag", 0x00030100); }},
    {"index", 0x100, [](File &file) { setWord(file, "Obj", 2, "this_obj_index", 7); }},
    {"count", 0x100, [](File &file) { setWord(file, "Part", 0, "part_tri_num", 1000); }},
    {"size-table", 0x100, [](File &file) { add(file, "MatList", 0, "num_byte[1]", 8); }},
    {"light-type", 0x100, [](File &file) { setWord(file, "Light", 1, "light_type", 3); }},
    {"object-size", 0x100,
     [](File &file) {
       add(file, "ObjList", 0, "num_byte[0]", 4); // the sizes of the list agree, the object's content does not
       add(file, "ObjList", 0, "num_byte[1]", ~Word{3});
       add(file, "Obj", 0, "obj_size", 4);
       add(file, "Obj", 1, "obj_size", ~Word{3});
     }},
    {"triangle-count", 0x100, [](File &file) { add(file, "Tri", 1, "usr_ext_blk_size", 3); }},
    {"version", 0x300, [](File &) {}},
    {"maker-block-missing", 0x200, [](File &file) { setWord(file, "Cam", 1, "van_ext_blk_size", 0); }},
    {"maker-block-short", 0x200, [](File &file) { setWord(file, "ObjExt", 0, "external_obj_num", 2); }},
    {"envelope", 0x200, [](File &file) { add(file, "WeightedPart", 0, "size", 4); }},
    {"external-name-tag", 0x200, [](File &file) { setWord(file, "ExternalNameList", 0, "list_tag", 0x00110000); }},
    {"header-tag", 0x100, [](File &file) { setWord(file, "FileHeader", 0, "header_tag", 1); }},
    {"scene-size", 0x100, [](File &file) { add(file, "SceneList", 0, "scene_size", 4); }},
    {"color-size", 0x100, [](File &file) { add(file, "ColorList", 0, "vtx_group_size[0]", 4); }},
    {"name-tag", 0x100, [](File &file) { setWord(file, "Name", 1, "name_tag", 0x00110000); }},
    {"scene-block-short", 0x200, [](File &file) { setWord(file, "SceneListExt", 0, "external_obj_num", 2); }},
    {"list-size-2", 0x200, [](File &file) { add(file, "FileHeaderExt", 0, "external_name_list_num", 4); }},
    {"skin", 0x200,
     [](File &file) {
       add(file, "CiImg", 0, "size", 4);
       add(file, "Envelope", 1, "size", 4);
       for (const char *const part : {"FullWeightedPart", "WeightedPart", "MorphPart", "ChainRoot", "WeightGroup"})
         add(file, part, 0, "size", 4);
       add(file, "EnvelopeTri", 1, "envelope_tri_size", 4);
       add(file, "Cluster", 1, "size", 4);
       add(file, "ClusterTri", 0, "cluster_tri_size", 4);
       add(file, "ClusterShape", 1, "size", 4);
     },
     SKINNED},
};

} // namespace

std::vector<Made> madeSamples() {
  const File every_form2 = edited(goodFile2(LinkWords::none), EVERY_FORM_LINKS);
  std::vector<Made> made = {{"every-form-1", edited(goodFile1(LinkWords::none), EVERY_FORM_LINKS).bytes},
                            {"every-form-2", edited(every_form2, EVERY_FORM_2_LINKS).bytes},
                            {"empty", buildScene(EMPTY).bytes},
                            {"small-1", buildScene(SMALL_1).bytes},
                            {"small-2", buildScene(SMALL_2).bytes}};
  for (const Damage &damage : DAMAGES) {
    File file = buildScene(damage.scene);
    setWord(file, "FileHeader", 0, "version", damage.version);
    damage.inflict(file);
    made.push_back({damage.name, file.bytes});
  }
  return made;
}

} // namespace kova::samples
