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

struct Damage {
  const char *name;
  Word version;
  std::function<void(File &)> inflict;
  const char *scene = version == 0x200 ? SCENE_2 : SCENE_1;
};

void add(File &file, const std::string &kind, std::size_t number, const std::string &field, Word delta) {
  setWord(file, kind, number, field, getWord(file, kind, number, field) + delta);
}

const std::vector<Damage> &damages() {
  static const std::vector<Damage> DAMAGES = {
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
       SKIN},
  };
  return DAMAGES;
}

} // namespace

std::vector<Made> madeSamples() {
  std::vector<Made> made = {{"every-form-1", goodFile1().bytes},
                            {"every-form-2", goodFile2().bytes},
                            {"empty", build(0x100, "").bytes},
                            {"small-1", build(0x100, SCENE_1).bytes},
                            {"small-2", build(0x200, SCENE_2).bytes}};
  for (const Damage &damage : damages()) {
    File file = build(damage.version == 0x200 ? 0x200 : 0x100, damage.scene);
    setWord(file, "FileHeader", 0, "version", damage.version);
    damage.inflict(file);
    made.push_back({damage.name, file.bytes});
  }
  return made;
}

} // namespace kova::samples
