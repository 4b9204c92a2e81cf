#include "samples/notation.h"

#include <algorithm>

namespace kova::samples {

namespace {

constexpr char GENERAL[] = R"(
FileHeader .version .size .header_tag =file_header_num .scene_list_num .env_list_num .cam_list_num .light_list_num
  .obj_list_num .shape_list_num .vtx_list_num .color_list_num .vector_list_num .st_list_num .tri_list_num .part_list_num
  .mat_list_num .tex_list_num .tex_img_list_num .anim_list_num .coll_list_num .switch_list_num .name_list_num V U
FileHeaderExt .ci_img_list_num .color_palette_list_num .envelope_list_num .cluster_list_num .weight_list_num
  .chain_root_list_num .joint_list_num .effector_list_num .external_name_list_num
List !list_tag ^list_header_size =list_size @num:* V U *num_byte:* %absent
TwoKindList !list_tag ^list_header_size =list_size @tri_group_num:Tri* @vtx_group_num:Vtx* V U *tri_group_size:Tri*
  *vtx_group_size:Vtx* %absent
)";

constexpr char SCENE[] = R"(
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
)";

constexpr char GEOMETRY[] = R"(
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
)";

constexpr char MATERIAL[] = R"(
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
)";

constexpr char BEHAVIOR[] = R"(
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
)";

constexpr char PALETTE[] = R"(
CiImg !tag #this_index =size >name_index .ci_img_width .ci_img_height .ci_img_pixel_depth reserved[12] V U
  pixel_index_array[ci_img_width*ci_img_height*ci_img_pixel_depth+31/32]
ColorPalette !tag #this_index =size >name_index .color_num color_type reserved[13] V U color_array[color_num/2]
)";

constexpr char SKINNING[] = R"(
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
)";

constexpr char CHAIN[] = R"(
ChainRoot !tag #this_index =size >name_index chain_root_type .obj_num .external_obj_num >anim_index >joint_index V U
  >obj_index[obj_num] >external_obj[external_obj_num*2]
Joint !tag #this_index =size >name_index joint_type ~joint_length ~resplain_axis[3] .obj_num .external_obj_num
  >joint_index >effector_index >anim_index V U >obj_index[obj_num] >external_obj[external_obj_num*2]
Effector !tag #this_index =size >name_index effector_type .obj_num .external_obj_num >anim_index V U >obj_index[obj_num]
  >external_obj[external_obj_num*2]
)";

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

} // namespace

std::map<std::string, Layout> parseLayouts() {
  std::map<std::string, Layout> layouts;
  for (const char *const group : {GENERAL, SCENE, GEOMETRY, MATERIAL, BEHAVIOR, PALETTE, SKINNING, CHAIN}) {
    std::istringstream text(group);
    std::string kind;
    for (std::string line; std::getline(text, line);) {
      std::istringstream tokens(line);
      if (!line.starts_with(' '))
        tokens >> kind;
      for (std::string token; tokens >> token;)
        layouts[kind].push_back(parseField(token));
    }
  }
  return layouts;
}

} // namespace kova::samples
