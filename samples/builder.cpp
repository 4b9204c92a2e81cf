#include "samples/builder.h"

#include <algorithm>
#include <bit>
#include <cctype>
#include <iterator>
#include <map>
#include <sstream>
#include <stdexcept>

namespace kova::samples {

namespace {

/// The records: the kind, then its words in file order. A line that begins with blanks continues the one above it.
///
///     name               a word; it holds its position in the record unless set
///     ~name              the same as a float
///     .name              a word that is 0 unless set: a count, or what chooses a form
///     >name              a link or an index: a word like the first, or -1 for none, as the caller wishes
///     &name              the same for node references: pairs of a kind, which is 0 where there are no links, and a
///     link !name  #name       the record's tag, its index among its siblings ^name  =name       bytes of its head,
///     bytes of the whole record
///     @name:Kind         the number of its children of that kind; `Kind*` means all whose kind begins so
///     *name:Kind         the table of those children's sizes, as many entries as their number says
///     name[count]        an array; its number of entries is worked out from left to right
///     V  U               the sizes of the maker block and of the user block
///     %name              a number that a text may set and that is not stored
///     $form              words that `putForm` knows
///
/// Of the children, the record of a decoded maker block stands last.
constexpr char LAYOUTS[] = R"(
FileHeader .version .size .header_tag =file_header_num .scene_list_num .env_list_num .cam_list_num .light_list_num
  .obj_list_num .shape_list_num .vtx_list_num .color_list_num .vector_list_num .st_list_num .tri_list_num .part_list_num
  .mat_list_num .tex_list_num .tex_img_list_num .anim_list_num .coll_list_num .switch_list_num .name_list_num V U
FileHeaderExt .ci_img_list_num .color_palette_list_num .envelope_list_num .cluster_list_num .weight_list_num
  .chain_root_list_num .joint_list_num .effector_list_num .external_name_list_num
List !list_tag ^list_header_size =list_size @num:* V U *num_byte:* %absent
TwoKindList !list_tag ^list_header_size =list_size @tri_group_num:Tri* @vtx_group_num:Vtx* V U *tri_group_size:Tri*
  *vtx_group_size:Vtx* %absent
SceneList !scene_header_tag ^scene_header_size =scene_size scene_cfg >scene_name_index .scene_obj_link_num
  .scene_env_link_num .scene_cam_link_num .scene_light_link_num V U >obj_link[scene_obj_link_num]
  >env_link[scene_env_link_num] >cam_link[scene_cam_link_num] >light_link[scene_light_link_num] %absent
SceneListExt .scene_chain_root_link_num .external_obj_num .external_env_num .external_cam_num .external_light_num
  >chain_root_link[scene_chain_root_link_num] >external_obj[external_obj_num*2] >external_env[external_env_num*2]
  >external_cam[external_cam_num*2] >external_light[external_light_num*2]
Env !env_tag #this_env_index =env_size >env_name_index fog fog_color fog_near fog_far fill_color fill_depth
  >bg_sprite_img bg_sprite_depth V U
Cam !cam_tag #this_cam_index =cam_size >came_name_index cam_type ~cam_near_clip ~cam_far_clip ~cam_right_clip
  ~cam_left_clip ~cam_top_clip ~cam_bottom_clip ~cam_fovy ~cam_aspect ~cam_scale >cam_lookat_obj >cam_eye_obj
  >cam_up_obj V U
CamExt >external_lookat_obj[2] >external_eye_obj[2] >external_up_obj[2]
Light !light_tag #this_light_index ^light_header_size =light_size >light_name_index .light_type ~ambient_r ~ambient_g
  ~ambient_b @dir_light_num:DirLight* V U
DirLight0 !dir_light_tag #this_dir_light_index =dir_light_size ~dir_color_r ~dir_color_g ~dir_color_b ~dir_x ~dir_y
  ~dir_z
DirLight1 !dir_light_tag #this_dir_light_index =dir_light_size ~dir_color_r ~dir_color_g ~dir_color_b ~pos_x ~pos_y
  ~pos_z ~dir_a1 ~dir_a2
Obj !obj_tag #this_obj_index =obj_size >obj_name_index obj_state obj_type obj_group obj_pri obj_render_cycle_type
  obj_render_pri obj_render_type0 obj_render_type1 have_link_billboard .obj_lod_num .obj_child_num >obj_parent_link
  >obj_shape_link >obj_mat_link >obj_anim_link >obj_coll_link V U ~LOD_dist[obj_lod_num] >LOD_link[obj_lod_num]
  >child_link[obj_child_num]
ObjExt obj_render_cycle_type_for_fog obj_render_pri_for_fog obj_render_type0_for_fog obj_render_type1_for_fog
  .obj_chain_root_link_num .external_lod_obj_num .external_obj_num >obj_chain_root_link[obj_chain_root_link_num]
  ~external_lod_obj_dist[external_lod_obj_num] >external_lod_obj[external_lod_obj_num*2]
  >external_obj[external_obj_num*2]
Shape !shape_tag #this_shape_index =shape_size >shape_name_index shape_type >shape_tri_link >shape_mat_link
  .shape_part_num V U >shape_part_link[shape_part_num]
ShapeExt kind_of_node_for_geometry >external_mat[2]
VtxGroup !vtx_group_tag #this_vtx_group_index ^vtx_group_header_size =vtx_group_size >vtx_group_name .vtx_num
  ~vtx[vtx_num*3]
TriGroup !tri_group_tag #this_tri_group_index ^tri_group_header_size =tri_group_size >tri_group_name_index
  .tri_anim_type .tri_anim_frame_num @tri_num:Tri %keys $refs
Tri !tri_tag #this_tri_index =tri_size >tri_nv_index >tri_color_index >vtx_index0 >st_index0 >vtx_nv_index0
  >vtx_color_index0 >vtx_index1 >st_index1 >vtx_nv_index1 >vtx_color_index1 >vtx_index2 >st_index2 >vtx_nv_index2
  >vtx_color_index2 V U
TriColorGroup !tri_color_group_tag #this_tri_color_group_index ^tri_color_group_header_size =tri_color_group_size
  .tri_color_num ~color[tri_color_num*4]
VtxColorGroup !vtx_color_group_tag #this_vtx_color_group_index ^vtx_color_group_header_size =vtx_color_group_size
  .vtx_color_num ~color[vtx_color_num*4]
TriNvGroup !tri_nv_group_tag #this_tri_nv_group_index ^tri_nv_group_header_size =tri_nv_group_size .tri_nv_num
  ~normal[tri_nv_num*3]
VtxNvGroup !vtx_nv_group_tag #vtx_nv_group_index ^nv_group_header_size =vtx_nv_group_size .vtx_nv_num
  ~normal[vtx_nv_num*3]
StGroup !st_group_tag #this_st_group_index ^st_group_header_size =st_group_size .st_num ~st[st_num*2]
Part !part_tag #this_part_index =part_size >part_name_index >mat_index >tri_group_index .part_tri_num V U
  >tri_index[part_tri_num]
Mat !mat_tag #this_mat_index =mat_size >mat_name_index mat_type mat_shade_type mat_color_type0 mat_color_type1
  mat_alpha_type0 mat_alpha_type1 ~prim_red ~prim_green ~prim_blue ~prim_alpha usr_flag[8] >local_light_index .tex_num V
  U >tex_index[tex_num]
MatExt ~ambient[4] ~emission[4] ~diffuse[4] mat_type_for_fog mat_color_type0_for_fog mat_color_type1_for_fog
  mat_alpha_type0_for_fog mat_alpha_type1_for_fog ~prim_for_fog[4] >external_local_light[2] .external_tex_num
  .prim_color_anim_num .prim_color_anim_num_for_fog >external_tex[external_tex_num*2]
  ~prim_color_anim[prim_color_anim_num*6] ~prim_color_anim_for_fog[prim_color_anim_num_for_fog*6]
Tex !tex_tag #this_tex_index ^tex_header_size =tex_size >tex_name_index tex_type tex_wrap_s tex_wrap_t .tex_anim
  tex_data_area_size tex_anim_frame_rate V U
TexStill tex_img_width tex_img_height tex_tile_width tex_tile_height tex_offset_x tex_offset_y >tex_img_index
TexTiles tex_img_width tex_img_height .tex_tile_scale_num .tex_tile_offset_num .tex_tile_img_num
  tex_tile_scale_key[tex_tile_scale_num] tex_tile_width[tex_tile_scale_num] tex_tile_height[tex_tile_scale_num]
  tex_tile_offset_key[tex_tile_offset_num] tex_tile_offset_x[tex_tile_offset_num] tex_tile_offset_y[tex_tile_offset_num]
  tex_tile_img_key[tex_tile_img_num] >tex_tile_img_index[tex_tile_img_num]
TexExt tex_filter use_perspective_correction mipmap_level .use_color_palette .external_tex_img_num %tiles
  >color_palette_index[tiles] tlut_palette_number[tiles] >external_tex_img[external_tex_img_num*2]
  >external_palette[external_tex_img_num*2]
Teximg !tex_img_tag #this_tex_img_index ^tex_img_header_size =tex_img_size V U %texels $texels
TeximgExt .mipmap_max_level mipmap_img_offset[mipmap_max_level]
AnimGroup !anim_group_tag #this_anim_group_index ^anim_group_header_size =anim_group_size >anim_name_index .type
  frame_rate @anim_num:Anim* anim_loop rotation_matrix_order V U
AnimStep !anim_tag #this_anim_index =anim_size ~translate[3] ~rotate_axis[3] rotate_expand_flag ~scale[3]
AnimKey !anim_tag #this_anim_index =anim_size key next_key interpolation ~translate[3] ~rotate_axis[3]
  rotate_expand_flag ~scale[3]
AnimNode !anim_tag #this_anim_index =anim_size lookat upper
AnimGroupExt use_animation_channel .rotate_axis_num .rotate_x_num .rotate_y_num .rotate_z_num .orientation_xy_num
  .translation_num .unique_scale_num .classic_scale_num &constraint[14] >external_constraint[14]
  ~rotate_axis[rotate_axis_num*10] ~rotate_x[rotate_x_num*4] ~rotate_y[rotate_y_num*4] ~rotate_z[rotate_z_num*4]
  ~orientation_xy[orientation_xy_num*14] ~translation[translation_num*8] ~unique_scale[unique_scale_num*8]
  ~classic_scale[classic_scale_num*8]
CollGroup !coll_group_tag #this_coll_group_index ^coll_group_header =coll_group_size >coll_group_name_index
  @coll_num:Coll V U *coll_num_byte:Coll
Coll !coll_tag #this_coll_index ^coll_header_size =coll_size >coll_name_index .coll_type
Terrain coll_data_tag this_coll_data_index coll_data_size x_subdivide z_subdivide >shape_list_index
Point coll_data_tag this_coll_data_index coll_data_size ~coll_point[3]
Circle coll_data_tag this_coll_data_index coll_data_size ~center[3] ~normal[3] ~radius
Sphere coll_data_tag this_coll_data_index coll_data_size ~center[3] ~radius
Cylinder coll_data_tag this_coll_data_index coll_data_size ~center[3] ~radius ~height
Box coll_data_tag this_coll_data_index coll_data_size ~center[3] ~length[3]
Switch !switch_tag #this_switch_index =switch_size link_list_type >default_link_index .case_node_num switch_condition V
  U case_val[case_node_num] >case_dest_index[case_node_num]
Name !name_tag #this_name_index ^name_header_size =name_size $text
CiImg !tag #this_index =size >name_index .ci_img_width .ci_img_height .ci_img_pixel_depth reserved[12] V U
  pixel_index_array[ci_img_width*ci_img_height*ci_img_pixel_depth+31/32]
ColorPalette !tag #this_index =size >name_index .color_num color_type reserved[13] V U color_array[color_num/2]
Envelope !tag #this_index =size >name_index envelope_type @full_weighted_part_num:FullWeightedPart
  @weighted_part_num:WeightedPart @morph_part_num:MorphPart @envelope_tri_num:EnvelopeTri V U
FullWeightedPart !tag #this_index =size >name_index &transform_node_full[2] >external_transform_obj[2] >group_index[5]
  >full_weighted_st_group_index V U
WeightedPart !tag #this_index =size >name_index .affected_node_num >weight_st_group_index .external_affected_obj_num V U
  >affected_node[affected_node_num*2] >external_affected_obj[external_affected_obj_num*2]
  >weight_group_index[affected_node_num+external_affected_obj_num]
  >group_index[affected_node_num+external_affected_obj_num*5]
MorphPart !tag #this_index =size >name_index &node0[2] >external_obj0[2] &node1[2] >external_obj1[2]
  >morph_st_group_index .table_num V U >group_index[table_num*5]
EnvelopeTri !envelope_tri_tag #this_envelope_tri_index =envelope_tri_size &envelope_part_for_tri[2] >tri_nv_index
  >tri_color_index >weight_index_tri >vtx[21]
ClusterShape !tag #this_index =size >name_index cluster_shape_type @cluster_num:Cluster @cluster_tri_num:ClusterTri V U
Cluster !tag #this_index =size >name_index &transform_node[2] >external_transform_obj[2] >group_index[5]
  >cluster_st_group_index
ClusterTri !cluster_tri_tag #this_cluster_tri_index =cluster_tri_size &cluster_for_tri[2] >tri_nv_index >tri_color_index
  >vtx[18]
WeightGroup !tag #this_index =size >name_index .weight_num V U ~weight[weight_num]
ChainRoot !tag #this_index =size >name_index chain_root_type .obj_num .external_obj_num >anim_index >joint_index V U
  >obj_index[obj_num] >external_obj[external_obj_num*2]
Joint !tag #this_index =size >name_index joint_type ~joint_length ~resplain_axis[3] .obj_num .external_obj_num
  >joint_index >effector_index >anim_index V U >obj_index[obj_num] >external_obj[external_obj_num*2]
Effector !tag #this_index =size >name_index effector_type .obj_num .external_obj_num >anim_index V U >obj_index[obj_num]
  >external_obj[external_obj_num*2]
)";

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

// --- Layouts and the notation ---------------------------------------------------------------------------------------

struct Field {
  char mark; ///< 'w' for a plain word
  std::string name;
  std::string count; ///< of an array: how many entries; of @ and *: which children
};
using Layout = std::vector<Field>;

[[noreturn]] void fail(const std::string &what) { throw std::invalid_argument("builder: " + what); }

/// The two sizes that end most heads have short names here.
std::string fullName(const std::string &name) {
  return name == "V" ? "van_ext_blk_size" : name == "U" ? "usr_ext_blk_size" : name;
}

Field parseField(std::string token) {
  if (token == "V" || token == "U")
    return {'.', fullName(token), ""};
  const bool marked = std::string("!#^=@*~.>&%$").find(token[0]) != std::string::npos;
  const char mark = marked ? token[0] : 'w';
  token.erase(0, marked ? 1 : 0);
  const std::size_t end = std::min(token.find_first_of("[:"), token.size());
  std::string count = token.substr(std::min(end + 1, token.size()));
  if (count.ends_with("]"))
    count.pop_back();
  return {mark, token.substr(0, end), count};
}

std::map<std::string, Layout> parseLayouts() {
  std::map<std::string, Layout> layouts;
  std::istringstream text(LAYOUTS);
  std::string kind;
  for (std::string line; std::getline(text, line);) {
    std::istringstream tokens(line);
    if (!line.starts_with(' '))
      tokens >> kind;
    for (std::string token; tokens >> token;)
      layouts[kind].push_back(parseField(token));
  }
  return layouts;
}

struct Node {
  std::string kind;
  std::map<std::string, Word> set;
  std::string text; ///< of a name
  std::vector<Node> child;
};

/// Parses nodes up to the end or a closing brace. What follows `Kind*2` holds for both.
std::vector<Node> parseNodes(std::istringstream &tokens) {
  std::vector<Node> nodes;
  std::size_t times = 0;
  for (std::string token; tokens >> token && token != "}";) {
    const std::size_t end = std::min(token.find_first_of("*="), token.size());
    const std::string name = fullName(token.substr(0, end));
    const std::string value = end < token.size() ? token.substr(end + 1) : "1";
    if (token != "{" && token[end] != '=')
      nodes.insert(nodes.end(), times = std::stoul(value), Node{name, {}, "", {}});
    const std::vector<Node> children = token == "{" ? parseNodes(tokens) : std::vector<Node>();
    for (Node &node : std::span(nodes).last(times)) {
      if (token == "{")
        node.child = children;
      else if (name == "text")
        std::ranges::replace_copy(value, std::back_inserter(node.text), '~', ' ');
      else if (token[end] == '=')
        node.set[name] = static_cast<Word>(std::stoll(value, nullptr, 0));
    }
  }
  return nodes;
}

// --- Building -------------------------------------------------------------------------------------------------------

struct Out {
  Word version;
  LinkWords links;
  std::map<std::string, Layout> layouts = parseLayouts();
  File file = {};
  std::map<std::string, std::size_t> seen = {}; ///< records of each kind so far
};

struct Record {
  const Node &node;
  const Layout &layout;
  std::size_t number;
  std::size_t begin;
};

bool isExt(const Node &node) { return node.kind.ends_with("Ext"); }

/// Whether a child is one of those that a layout means: a kind, or with * at the end the beginning of kinds.
bool isMeant(const Node &child, const std::string &pattern) {
  return !isExt(child) && (pattern.back() == '*' ? child.kind.starts_with(pattern.substr(0, pattern.size() - 1))
                                                 : child.kind == pattern);
}

Word countOf(const Node &node, const std::string &pattern) {
  return static_cast<Word>(
      std::ranges::count_if(node.child, [&pattern](const Node &child) { return isMeant(child, pattern); }));
}

/// What the text says, else the number of children for a count of them, else 0.
Word stated(const Record &record, const std::string &name) {
  if (const auto set = record.node.set.find(name); set != record.node.set.end())
    return set->second;
  const auto field = std::ranges::find(record.layout, name, &Field::name);
  return field != record.layout.end() && field->mark == '@' ? countOf(record.node, field->count) : 0;
}

/// The entries of a size table: as many as its count says.
Word entriesOf(const Record &record, const Field &table) {
  for (const Field &field : record.layout)
    if (field.mark == '@' && field.count == table.count)
      return stated(record, field.name);
  return 0;
}

Word evaluate(const Record &record, const std::string &expression) {
  Word value = 0;
  char operation = '+';
  for (std::size_t at = 0; at < expression.size();) {
    const std::size_t end = std::min(expression.find_first_of("*/+", at), expression.size());
    const std::string atom = expression.substr(at, end - at);
    const Word operand = std::isdigit(atom[0]) != 0 ? static_cast<Word>(std::stoul(atom)) : stated(record, atom);
    value = operation == '+' ? value + operand : operation == '*' ? value * operand : value / operand;
    operation = end < expression.size() ? expression[end] : ' ';
    at = end + 1;
  }
  return value;
}

void put(Out &out, const Record &record, const std::string &field, Word value) {
  const std::size_t at = out.file.bytes.size();
  out.file.words.push_back({record.node.kind, record.number, field, at});
  out.file.bytes.resize(at + sizeof(Word));
  harness::setWordAt(out.file.bytes, at, value);
}

/// Words that nobody sets hold their position in the record, unless they are links and there are to be none.
/// @param i the position in an array
void putOwn(Out &out, const Record &record, const std::string &field, char mark, Word i = 0) {
  const auto position = static_cast<Word>((out.file.bytes.size() - record.begin) / sizeof(Word));
  const bool is_link = mark == '>' || mark == '&';
  Word value = mark == '~' ? std::bit_cast<Word>(static_cast<float>(position)) : position;
  if (is_link && out.links == LinkWords::none)
    value = mark == '&' && i % 2 == 0 ? 0 : NO_LINK;
  put(out, record, field, value);
}

std::string entry(const std::string &array, std::size_t i) { return array + "[" + std::to_string(i) + "]"; }

void putArray(Out &out, const Record &record, const std::string &name, Word count, char mark = 'w') {
  for (Word i = 0; i < count; ++i)
    putOwn(out, record, entry(name, i), mark, i);
}

/// The six references of a triangle group, each in the form that its bits of `tri_anim_type` choose.
void putRefs(Out &out, const Record &record) {
  Word bits = stated(record, "tri_anim_type");
  for (const std::string name : {"vtx", "tri_color", "vtx_color", "tri_nv", "vtx_nv", "st"}) {
    Word entries = (bits & 1) != 0 ? stated(record, "tri_anim_frame_num") + 1 : 1;
    if ((bits & 3) == 2) {
      entries = stated(record, "keys");
      put(out, record, name + "_anim_key_num", entries);
      putArray(out, record, name + "_anim_key", entries);
    }
    putArray(out, record, name + "_group_index", entries, '>');
    bits >>= 4;
  }
}

void putForm(Out &out, const Record &record, const std::string &form) {
  Bytes &bytes = out.file.bytes;
  if (form == "refs")
    putRefs(out, record);
  for (Word i = 0; form == "texels" && i < stated(record, "texels"); ++i)
    bytes.push_back(static_cast<unsigned char>(i + 1));
  bytes.insert(bytes.end(), record.node.text.begin(), record.node.text.end());
  bytes.resize(bytes.size() + (form == "text" ? -record.node.text.size() % 4 : 0));
}

bool isScalar(const Field &field) {
  return std::string("%$*").find(field.mark) == std::string::npos && (field.mark == '@' || field.count.empty());
}

void putField(Out &out, const Record &record, const Field &field, Word tag, Word position) {
  if (field.mark == '$')
    putForm(out, record, field.name);
  else if (field.mark == '*')
    putArray(out, record, field.name, entriesOf(record, field));
  else if (!isScalar(field))
    putArray(out, record, field.name, field.mark == '%' ? 0 : evaluate(record, field.count), field.mark);
  else if (record.node.set.contains(field.name) || field.mark == '@' || field.mark == '.')
    put(out, record, field.name, stated(record, field.name));
  else if (field.mark == '!' || field.mark == '#')
    put(out, record, field.name, field.mark == '!' ? tag : position);
  else if (field.mark == '^')
    put(out, record, field.name, static_cast<Word>(4 * std::ranges::count_if(record.layout, isScalar)));
  else
    putOwn(out, record, field.name, field.mark); // sizes, too, until they are known
}

void patch(Out &out, const Record &record, const std::string &field, std::size_t value) {
  if (!record.node.set.contains(field))
    setWord(out.file, record.node.kind, record.number, field, static_cast<Word>(value));
}

std::size_t putRecord(Out &out, const Node &node, Word tag, Word position);

/// A block of stated size is cut or filled up to it; else it is as long as what it carries.
void putBlock(Out &out, const Record &record, const std::string &size, const std::string &name, const Node *ext) {
  const std::size_t begin = out.file.bytes.size();
  if (ext != nullptr)
    putRecord(out, *ext, 0, 0);
  if (!record.node.set.contains(size))
    return patch(out, record, size, out.file.bytes.size() - begin);
  const std::size_t bytes = stated(record, size) / 4 * 4;
  std::erase_if(out.file.words, [=](const NamedWord &word) { return word.offset >= begin + bytes; });
  out.file.bytes.resize(std::min(out.file.bytes.size(), begin + bytes));
  for (std::size_t at = out.file.bytes.size() - begin; at < bytes; at += 4)
    put(out, record, entry(name, at / 4), static_cast<Word>(name[0]) << 24 | static_cast<Word>(at / 4));
}

void putBlocks(Out &out, const Record &record) {
  const std::string van = fullName("V");
  if (std::ranges::find(record.layout, van, &Field::name) == record.layout.end())
    return;
  const Node bare{record.node.kind + "Ext", {}, "", {}};
  const bool decoded = out.version == VERSION_2 && out.layouts.contains(bare.kind);
  const bool has_own = !record.node.child.empty() && isExt(record.node.child.back());
  const bool wants = decoded && (!record.node.set.contains(van) || stated(record, van) > 0);
  putBlock(out, record, van, "van", has_own ? &record.node.child.back() : wants ? &bare : nullptr);
  putBlock(out, record, fullName("U"), "usr", nullptr);
}

void putChildren(Out &out, const Record &record, Word tag) {
  std::map<std::string, Word> siblings;
  std::map<std::string, Word> entries;
  for (const Node &child : record.node.child) {
    if (isExt(child))
      continue;
    // Tags of sub-records are never tested, but for that of a collision.
    const bool second_kind = child.kind == "VtxColorGroup" || child.kind == "VtxNvGroup";
    const Word child_tag = child.kind == "Coll" ? 0x000d1000 : tag + (second_kind ? 0x200 : 0x100);
    const std::size_t bytes = putRecord(out, child, child_tag, siblings[child.kind]++);
    for (const Field &field : record.layout)
      if (field.mark == '*' && isMeant(child, field.count) && entries[field.name] < entriesOf(record, field))
        patch(out, record, entry(field.name, entries[field.name]++), bytes);
    if (child.kind == "Coll") // a collision group's blocks follow each of its collisions
      putBlocks(out, record);
  }
  if (record.node.kind != "CollGroup")
    putBlocks(out, record);
}

const Layout &layoutOf(const Out &out, const std::string &kind) {
  const bool two_kinds = kind == "ColorList" || kind == "VectorList";
  const bool common = kind.ends_with("List") && !out.layouts.contains(kind);
  return out.layouts.at(two_kinds ? "TwoKindList" : common ? "List" : kind);
}

/// @return the record's bytes.
std::size_t putRecord(Out &out, const Node &node, Word tag, Word position) {
  const Record record{node, layoutOf(out, node.kind), out.seen[node.kind]++, out.file.bytes.size()};
  for (const auto &[name, value] : node.set)
    if (std::ranges::find(record.layout, name, &Field::name) == record.layout.end())
      fail(node.kind + " has no " + name);
  for (const Field &field : record.layout)
    putField(out, record, field, tag, position);
  putChildren(out, record, tag);
  for (const Field &field : record.layout)
    if (field.mark == '=')
      patch(out, record, field.name, out.file.bytes.size() - record.begin);
  return out.file.bytes.size() - record.begin;
}

/// Takes the node of that kind out of the tree, or else a bare one.
Node takeNode(std::vector<Node> &nodes, const std::string &kind, bool &named) {
  const auto found = std::ranges::find(nodes, kind, &Node::kind);
  named = found != nodes.end();
  Node node = named ? *found : Node{kind, {}, "", {}};
  if (named)
    nodes.erase(found);
  return node;
}

} // namespace

File build(Word version, const std::string &text, LinkWords links) {
  std::istringstream tokens(text);
  std::vector<Node> nodes = parseNodes(tokens);
  bool named;
  Node header = takeNode(nodes, "FileHeader", named);
  header.set.emplace("version", version);
  Out out{version, links};
  const std::size_t header_bytes = putRecord(out, header, 0, 0);
  for (const ListRow &list : LISTS) {
    const Node node = takeNode(nodes, list.name, named);
    const bool of_version2 = &list >= LISTS.data() + VERSION_1_LIST_NUM;
    if (node.set.contains("absent") || (!named && of_version2))
      continue;
    const std::size_t size_at = harness::sizeOffset(list);
    if (size_at >= header_bytes)
      fail(node.kind + ": the header has no word for its size");
    harness::setWordAt(out.file.bytes, size_at, static_cast<Word>(putRecord(out, node, list.tag, 0)));
  }
  if (!nodes.empty())
    fail("no such list: " + nodes[0].kind);
  setWord(out.file, "FileHeader", 0, "size", static_cast<Word>(out.file.bytes.size()));
  return out.file;
}

std::size_t offsetOf(const File &file, const std::string &kind, std::size_t number, const std::string &field) {
  for (const NamedWord &named : file.words)
    if (named.kind == kind && named.number == number && named.field == field)
      return named.offset;
  fail("no word " + kind + " " + std::to_string(number) + " " + field);
}

Word getWord(const File &file, const std::string &kind, std::size_t number, const std::string &field) {
  return harness::wordAt(file.bytes, offsetOf(file, kind, number, field));
}

void setWord(File &file, const std::string &kind, std::size_t number, const std::string &field, Word value) {
  harness::setWordAt(file.bytes, offsetOf(file, kind, number, field), value);
}

File edited(File file, const std::string &edits) {
  std::istringstream each(edits);
  for (std::string edit; std::getline(each, edit, ';');) {
    std::istringstream words(edit);
    std::string kind, field, value;
    std::size_t number;
    words >> kind >> number;
    while (words >> field >> value) {
      const bool relative = value[0] == '+' || value[0] == '-';
      const Word base = relative ? getWord(file, kind, number, field) : 0;
      setWord(file, kind, number, field, base + static_cast<Word>(std::stoll(value, nullptr, 0)));
    }
  }
  return file;
}

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

} // namespace kova::samples
