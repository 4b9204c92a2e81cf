#include "samples/builder.h"

#include <sstream>

namespace kova::samples {

namespace {

/// Every list of version 1.0 but the TeximgList, with every form of its records; then those of version 2.0.
constexpr char VERSION_1_TEXT[] = R"(
SceneList U=8 scene_obj_link_num=2 scene_env_link_num=1 scene_cam_link_num=2 scene_light_link_num=3 {
  SceneListExt scene_chain_root_link_num=2 external_obj_num=2 external_env_num=1 external_cam_num=1
  external_light_num=2 }
EnvList V=4 U=8 { Env V=8 U=4  Env }
CamList { Cam U=28 { CamExt }  Cam }
LightList V=8 { Light { DirLight0*2 }  Light light_type=1 V=4 { DirLight1*2 }  Light light_type=2 U=4  Light }
ObjList U=4 { Obj obj_lod_num=2 obj_child_num=1 U=4 {
  ObjExt obj_chain_root_link_num=2 external_lod_obj_num=2 external_obj_num=1 }  Obj obj_child_num=2 }
ShapeList { Shape shape_part_num=2 { ShapeExt }  Shape U=4 }
VtxList V=4 { VtxGroup vtx_num=2  VtxGroup }
TriList U=8 { TriGroup { Tri  Tri V=4 U=8 }  TriGroup tri_anim_type=0x111111 tri_anim_frame_num=2 { Tri V=4 }
  TriGroup tri_anim_type=0x222222 keys=2 { Tri }  TriGroup tri_anim_type=0x300023 tri_anim_frame_num=1 keys=3
  TriGroup tri_anim_type=0x2 }
ColorList U=4 { TriColorGroup tri_color_num=2  TriColorGroup  VtxColorGroup vtx_color_num=1
  VtxColorGroup vtx_color_num=2 }
VectorList V=4 { TriNvGroup tri_nv_num=2  VtxNvGroup vtx_nv_num=1  VtxNvGroup }
StList U=4 { StGroup st_num=2  StGroup }
PartList V=4 { Part part_tri_num=2 V=4 U=4  Part }
MatList { Mat tex_num=2 U=4 { MatExt external_tex_num=2 prim_color_anim_num=1 prim_color_anim_num_for_fog=2 }  Mat }
TexList { Tex { TexStill }  Tex U=4 { TexStill TexExt use_color_palette=1 tiles=1 external_tex_img_num=2 }
  Tex tex_anim=1 { TexTiles tex_tile_scale_num=2 tex_tile_offset_num=1 tex_tile_img_num=2
  TexExt use_color_palette=1 tiles=2 }  Tex tex_anim=2 { TexTiles } }
AnimList { AnimGroup type=1 anim_num=3  AnimGroup type=5 anim_num=2  AnimGroup U=4 { AnimStep*2
  AnimGroupExt rotate_axis_num=1 rotate_x_num=2 rotate_y_num=1 rotate_z_num=1 orientation_xy_num=1
  translation_num=2 unique_scale_num=1 classic_scale_num=1 }  AnimGroup type=2 { AnimStep }  AnimGroup type=3 {
  AnimKey*2 }  AnimGroup type=4 { AnimNode*2 } }
CollList V=8 { CollGroup V=8 U=4 { Coll  Coll coll_type=0x10 { Terrain }  Coll coll_type=0x20 { Point }
  Coll coll_type=0x21 { Circle } }  CollGroup { Coll coll_type=0x22 { Sphere }  Coll coll_type=0x23 { Cylinder }
  Coll coll_type=0x24 { Box }  Coll coll_type=0x11 { Point } }  CollGroup V=8 }
SwitchList U=8 { Switch case_node_num=2 V=4 U=4  Switch }
NameList U=4 { Name text=  Name text=four  Name text=a~name~of~blanks  Name text=seven77 }
)";
constexpr char VERSION_2_TEXT[] = R"(
CiImgList U=4 { CiImg ci_img_width=3 ci_img_height=5 ci_img_pixel_depth=4 V=4  CiImg U=8 }
ColorPaletteList V=4 { ColorPalette color_num=4 U=4  ColorPalette color_num=5 }
EnvelopeList V=4 { Envelope V=4 U=8 { FullWeightedPart V=4  FullWeightedPart U=4
  WeightedPart affected_node_num=2 external_affected_obj_num=1 V=4  WeightedPart  MorphPart table_num=2 V=8  MorphPart
  EnvelopeTri*2 }  Envelope }
ClusterList U=4 { ClusterShape V=4 { Cluster*2 ClusterTri*2 }  ClusterShape }
WeightList V=4 { WeightGroup weight_num=3 U=4  WeightGroup }
ChainRootList U=4 { ChainRoot obj_num=2 external_obj_num=2 V=4  ChainRoot }
JointList V=4 { Joint obj_num=1 external_obj_num=2 U=4  Joint }
EffectorList U=4 { Effector obj_num=2 external_obj_num=1 V=4  Effector }
ExternalNameList U=4 { Name text=other~house.kb  Name text= }
)";

/// A version, a name, and the text of a file. A line that begins with blanks continues the one above it.
constexpr char SAMPLES[] = R"(
0x100 empty lists:
0x100 no scene, no names: SceneList absent=1 NameList absent=1
0x100 header blocks: FileHeader V=8 U=28
0x100 scene: SceneList V=4 U=8 scene_obj_link_num=2 scene_env_link_num=1 scene_cam_link_num=3 scene_light_link_num=1
0x100 environments: EnvList U=4 { Env V=4 U=8  Env }
0x100 cameras: CamList { Cam V=4  Cam }
0x100 lights with directions: LightList { Light { DirLight0*2 }  Light U=4 { DirLight0 } }
0x100 lights with positions: LightList { Light light_type=1 V=4 { DirLight1*2 }  Light light_type=1 }
0x100 lights of another type: LightList { Light light_type=2  Light light_type=0xffffffff U=4 }
0x100 objects: ObjList { Obj obj_lod_num=2 obj_child_num=3 V=8 U=4  Obj obj_child_num=1  Obj obj_lod_num=1 }
0x100 shapes: ShapeList { Shape shape_part_num=3 V=4  Shape }
0x100 vertices: VtxList V=4 U=4 { VtxGroup vtx_num=3  VtxGroup }
0x100 triangles: TriList U=4 { TriGroup { Tri V=4  Tri U=4 }  TriGroup { Tri } }
0x100 triangles by frame: TriList { TriGroup tri_anim_type=0x111111 tri_anim_frame_num=2 { Tri }
  TriGroup tri_anim_type=0x10101 }
0x100 triangles by key: TriList { TriGroup tri_anim_type=0x222222 keys=2 { Tri }
  TriGroup tri_anim_type=0x20202 keys=0 }
0x100 triangles of both bits: TriList { TriGroup tri_anim_type=0x333333 tri_anim_frame_num=1 { Tri } }
0x100 colours: ColorList V=4 { TriColorGroup tri_color_num=2  TriColorGroup  VtxColorGroup*2 vtx_color_num=1 }
0x100 normals: VectorList U=4 { TriNvGroup tri_nv_num=2  VtxNvGroup vtx_nv_num=1  VtxNvGroup vtx_nv_num=2 }
0x100 vertex normals alone: VectorList { VtxNvGroup vtx_nv_num=1 }
0x100 texture coordinates: StList V=4 { StGroup st_num=2  StGroup }
0x100 parts: PartList { Part part_tri_num=3 V=4 U=4  Part }
0x100 materials: MatList { Mat tex_num=2 V=4  Mat U=4 }
0x100 textures: TexList { Tex V=4 { TexStill }  Tex { TexStill } }
0x100 tiles: TexList { Tex tex_anim=1 U=4 { TexTiles tex_tile_scale_num=2 tex_tile_offset_num=1 tex_tile_img_num=3 }
  Tex tex_anim=1 { TexTiles } }
0x100 texels: TeximgList U=4 { Teximg texels=24 V=4  Teximg texels=12 U=4  Teximg }
0x100 an odd number of texels: TeximgList { Teximg texels=8 V=4 Teximg texels=13 }
0x100 animation steps: AnimList { AnimGroup { AnimStep*2 }  AnimGroup type=2 V=4 { AnimStep } }
0x100 animation keyframes: AnimList { AnimGroup type=3 U=4 { AnimKey*2 } }
0x100 animation nodes: AnimList { AnimGroup type=4 { AnimNode*2 } }
0x100 animation without records: AnimList { AnimGroup type=1 anim_num=5 U=4  AnimGroup type=7 anim_num=1
  AnimGroup type=3 }
0x100 collisions: CollList { CollGroup V=8 { Coll coll_type=0x10 { Terrain }  Coll  Coll coll_type=0x20 { Point } }
  CollGroup U=4 }
0x100 round collisions: CollList { CollGroup { Coll coll_type=0x21 { Circle } Coll coll_type=0x22 { Sphere }
  Coll coll_type=0x23 { Cylinder } } }
0x100 other collisions: CollList U=4 { CollGroup { Coll coll_type=0x24 { Box }  Coll coll_type=0x30 { Terrain }
  Coll coll_type=0x11 } }
0x100 switches: SwitchList { Switch case_node_num=2 V=4  Switch U=4 }
0x100 names: NameList V=4 { Name text=  Name text=four  Name text=a~b~~c  Name name_size=21 text=long }
0x200 version 2 alone:
0x200 version 2 header blocks: FileHeader V=44 U=4
0x200 scene extension: SceneList U=4 {
  SceneListExt scene_chain_root_link_num=2 external_obj_num=1 external_env_num=2 external_cam_num=1
  external_light_num=1 }
0x200 camera extension: CamList { Cam U=4 { CamExt }  Cam V=32 }
0x200 object extension: ObjList { Obj { ObjExt obj_chain_root_link_num=2 external_lod_obj_num=3 external_obj_num=1 }
  Obj V=32 }
0x200 shape extension: ShapeList { Shape shape_part_num=1 { ShapeExt }  Shape V=20 }
0x200 material extension: MatList { Mat tex_num=1 {
  MatExt external_tex_num=2 prim_color_anim_num=2 prim_color_anim_num_for_fog=1 }  Mat }
0x200 texture extension: TexList { Tex { TexStill TexExt external_tex_img_num=2 }  Tex { TexStill
  TexExt use_color_palette=1 tiles=1 external_tex_img_num=1 } }
0x200 tile extension: TexList { Tex tex_anim=1 { TexTiles tex_tile_img_num=2 TexExt use_color_palette=1 tiles=2 }
  Tex tex_anim=1 { TexTiles tex_tile_img_num=1 } }
0x200 image extension: TeximgList { Teximg texels=16 { TeximgExt mipmap_max_level=3 }  Teximg }
0x200 animation extension: AnimList { AnimGroup { AnimStep
  AnimGroupExt rotate_axis_num=1 rotate_x_num=1 rotate_y_num=1 rotate_z_num=2 }  AnimGroup type=4 { AnimNode
  AnimGroupExt orientation_xy_num=1 translation_num=1 unique_scale_num=1 classic_scale_num=1 } }
0x200 colour-index images: CiImgList { CiImg ci_img_width=3 ci_img_height=5 ci_img_pixel_depth=4 V=4 U=4  CiImg }
0x200 palettes: ColorPaletteList { ColorPalette color_num=5 U=4  ColorPalette color_num=4 }
0x200 full weighted parts: EnvelopeList { Envelope V=4 { FullWeightedPart V=4  FullWeightedPart U=8 }  Envelope }
0x200 weighted parts: EnvelopeList { Envelope { WeightedPart affected_node_num=2 external_affected_obj_num=1 U=4
  WeightedPart affected_node_num=1 } }
0x200 morph parts: EnvelopeList U=4 { Envelope { MorphPart table_num=2 V=4  MorphPart } }
0x200 envelope triangles: EnvelopeList { Envelope U=4 { EnvelopeTri*2 }  Envelope { EnvelopeTri } }
0x200 clusters: ClusterList { ClusterShape V=4 { Cluster*2 ClusterTri }  ClusterShape { ClusterTri*2 } }
0x200 weights: WeightList { WeightGroup weight_num=3 V=4  WeightGroup }
0x200 chain roots: ChainRootList { ChainRoot obj_num=2 external_obj_num=1 U=4  ChainRoot }
0x200 joints: JointList { Joint obj_num=1 external_obj_num=2 V=4  Joint }
0x200 effectors: EffectorList { Effector obj_num=2 external_obj_num=2 U=4  Effector }
0x200 external names: ExternalNameList V=4 { Name text=a~b.kb  Name text= }
)";

} // namespace

File goodFile1(LinkWords links) {
  return build(VERSION_1,
               std::string("FileHeader V=8 U=8 TeximgList { Teximg texels=24 V=4  Teximg U=4  Teximg texels=13 }") +
                   VERSION_1_TEXT,
               links);
}

File goodFile2(LinkWords links) {
  return build(VERSION_2,
               std::string("FileHeader V=44 U=4 TeximgList { Teximg texels=24 U=4 { TeximgExt mipmap_max_level=2 }"
                           "  Teximg texels=12  Teximg }") +
                   VERSION_1_TEXT + VERSION_2_TEXT,
               links);
}

std::vector<Sample> smallSamples() {
  std::vector<std::string> lines;
  std::istringstream text(SAMPLES);
  for (std::string line; std::getline(text, line);)
    if (line.starts_with(' '))
      lines.back() += line;
    else if (!line.empty())
      lines.push_back(line);
  std::vector<Sample> samples;
  for (const std::string &line : lines) {
    const std::size_t colon = line.find(':');
    samples.push_back(
        {line.substr(6, colon - 6), build(line.starts_with("0x100") ? VERSION_1 : VERSION_2, line.substr(colon + 1))});
  }
  return samples;
}

std::vector<Sample> goodSamples() {
  std::vector<Sample> samples = {{"good 1", goodFile1()}, {"good 2", goodFile2()}};
  for (Sample &sample : smallSamples())
    samples.push_back(std::move(sample));
  return samples;
}

} // namespace kova::samples
