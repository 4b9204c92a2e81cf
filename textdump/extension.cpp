#include "textdump/extension.h"

#include "textdump/chain.h"
#include "textdump/lines.h"
#include "textdump/palette.h"
#include "textdump/skinning.h"

namespace kova {

namespace {

// Sizes are sums of words: they wrap at 32 bits.
template <class Item> constexpr Word BYTES = sizeof(Item);

template <class Record> void writeBlocks(Text &text, const Record &record, Word decoded) {
  kvWriteKtExtBlk2(text, record.ext_blk, record.van_ext_blk_size, record.usr_ext_blk_size, decoded);
}

struct Constraint {
  const char *label;
  const char *external_label;
  NodeIndex AnimGroupExtHead::*node;
  External AnimGroupExtHead::*external;
};
constexpr std::array<Constraint, 7> CONSTRAINTS = {{
    {"orientation constraint", "external orientation constraint", &AnimGroupExtHead::orientation_constraint,
     &AnimGroupExtHead::external_orientation_constraint},
    {"direction constraint", "external direction constraint", &AnimGroupExtHead::direction_constraint,
     &AnimGroupExtHead::external_direction_constraint},
    {"upvector constraint", "external upvector constraint", &AnimGroupExtHead::upvector_constraint,
     &AnimGroupExtHead::external_upvector_constraint},
    {"preferred axis constraint", "external preferred axis constraint", &AnimGroupExtHead::preferred_axis_constraint,
     &AnimGroupExtHead::external_preferred_axis_constraint},
    {"position constraint", "external position constraint", &AnimGroupExtHead::position_constraint,
     &AnimGroupExtHead::external_position_constraint},
    {"unique scale constraint", "external unique scale constraint", &AnimGroupExtHead::unique_scale_constraint,
     &AnimGroupExtHead::external_unique_scale_constraint},
    {"classic scale constraint", "external classic scale constraint", &AnimGroupExtHead::classic_scale_constraint,
     &AnimGroupExtHead::external_classic_scale_constraint},
}};

template <Format HEADING, class Key> void writeKeyTop(Text &text, Index position, const Key &key) {
  print<HEADING>(text, position);
  print<"interpolation type  %0#10x\n">(text, key.interpolation_type);
  print<"key  %d\n">(text, key.key);
}

void writeRotateAxis(Text &text, std::span<const RotateAxis> keys) {
  Index position = 0;
  for (const RotateAxis &key : keys) {
    writeKeyTop<"RotateAxis(%d)\n">(text, position++, key);
    kvWriteKtXYZ(text, key.axis, "axis");
    print<"rotation angle  %#g\n">(text, key.rotation_angle);
    kvWriteKtXYZ(text, key.differential_axis, "differential axis");
    print<"differential rotation angle  %#g\n">(text, key.differential_rotation_angle);
  }
}

void writeOrientationXY(Text &text, std::span<const OrientationXY> keys) {
  Index position = 0;
  for (const OrientationXY &key : keys) {
    writeKeyTop<"OrientationXY(%d)\n">(text, position++, key);
    kvWriteKtXYZ(text, key.x_axis, "x axis");
    kvWriteKtXYZ(text, key.y_axis, "y axis");
    kvWriteKtXYZ(text, key.differential_x_axis, "differential x axis");
    kvWriteKtXYZ(text, key.differential_y_axis, "differential y axis");
  }
}

void writeTranslation(Text &text, std::span<const Translation> keys) {
  Index position = 0;
  for (const Translation &key : keys) {
    writeKeyTop<"Translation(%d)\n">(text, position++, key);
    kvWriteKtXYZ(text, key.translate, "translate");
    kvWriteKtXYZ(text, key.differential_translate, "differential translate");
  }
}

void writeKeyframes(Text &text, const AnimGroupExt &ext) {
  writeRotateAxis(text, ext.rotate_axis);
  kvWriteKtRotateX(text, ext.rotate_x, "RotateX");
  kvWriteKtRotateX(text, ext.rotate_y, "RotateY");
  kvWriteKtRotateX(text, ext.rotate_z, "RotateZ");
  writeOrientationXY(text, ext.orientation_xy);
  writeTranslation(text, ext.translation);
  kvWriteKtUniqScale(text, ext.unique_scale, "Unique");
  kvWriteKtUniqScale(text, ext.classic_scale, "Classic");
}

} // namespace

void writeSceneListExt(Text &text, const Scene &scene) {
  if (!scene.ext)
    return writeBlocks(text, scene, 0);
  const SceneListExt &ext = *scene.ext;
  putRecord<SCENE_LIST_EXT_LINES, SceneListExtHead>(text, ext);
  kvWriteKtArray(text, ext.chain_root_link, "chain root link");
  kvWriteKtExternal(text, ext.external_obj, "external obj");
  kvWriteKtExternal(text, ext.external_env, "external env");
  kvWriteKtExternal(text, ext.external_cam, "external cam");
  kvWriteKtExternal(text, ext.external_light, "external light");
  writeBlocks(text, scene, kvSizeofSceneListExt(ext));
}

void writeCamExt(Text &text, const Cam &cam) {
  if (!cam.ext)
    return writeBlocks(text, cam, 0);
  const CamExt &ext = *cam.ext;
  kvWriteKtExternal(text, one(ext.external_lookat_obj), "external lookat obj");
  kvWriteKtExternal(text, one(ext.external_eye_obj), "external eye obj");
  kvWriteKtExternal(text, one(ext.external_up_obj), "external up obj");
  writeBlocks(text, cam, BYTES<CamExt>);
}

void writeObjExt(Text &text, const Obj &obj) {
  if (!obj.ext)
    return writeBlocks(text, obj, 0);
  const ObjExt &ext = *obj.ext;
  putRecord<OBJ_EXT_LINES, ObjExtHead>(text, ext);
  printEach<"obj_chain_root_link[%d] %d\n">(text, ext.obj_chain_root_link);
  printEach<"external_lod_obj_dist[%d]  %#g\n">(text, ext.external_lod_obj_dist);
  kvWriteKtExternal(text, ext.external_lod_obj, "external lod obj");
  kvWriteKtExternal(text, ext.external_obj, "external obj");
  writeBlocks(text, obj, kvSizeofObjExt(ext));
}

void writeShapeExt(Text &text, const Shape &shape) {
  if (!shape.ext)
    return writeBlocks(text, shape, 0);
  print<"kind_of_node_for_geometry  %0#10x\n">(text, shape.ext->kind_of_node_for_geometry);
  kvWriteKtExternal(text, one(shape.ext->external_mat), "external mat");
  writeBlocks(text, shape, BYTES<ShapeExt>);
}

void writeMatExt(Text &text, const Mat &mat) {
  if (!mat.ext)
    return writeBlocks(text, mat, 0);
  const MatExt &ext = *mat.ext;
  kvWriteKtRGBA(text, ext.ambient, "ambient");
  kvWriteKtRGBA(text, ext.emission, "emission");
  kvWriteKtRGBA(text, ext.diffuse, "diffuse");
  putRecord<MAT_EXT_TYPE_LINES, MatExtTypes>(text, ext);
  kvWriteKtRGBA(text, ext.prim_for_fog, "prim_for_fog");
  putRecord<MAT_EXT_COUNT_LINES, MatExtCounts>(text, ext);
  kvWriteKtPrimColorAnim(text, ext.prim_color_anim, "");
  kvWriteKtPrimColorAnim(text, ext.prim_color_anim_for_fog, "ForFog");
  kvWriteKtExternal(text, one(ext.external_local_light), "external local light");
  kvWriteKtExternal(text, ext.external_tex, "external tex");
  writeBlocks(text, mat, kvSizeofMatExt(ext));
}

void writeTexExt(Text &text, const Tex &tex) {
  if (!tex.ext)
    return writeBlocks(text, tex, 0);
  const TexExt &ext = *tex.ext;
  putRecord<TEX_EXT_LINES, TexExtHead>(text, ext);
  kvWriteKtArray(text, ext.color_palette_index, "color_palette_index");
  kvWriteKtArray(text, ext.tlut_palette_number, "tlut_palette_number");
  kvWriteKtExternal(text, ext.external_tex_img, "external_tex_img");
  kvWriteKtExternal(text, ext.external_palette, "external_palette");
  writeBlocks(text, tex, kvSizeofTexExt(ext, kvCiTileNum(tex)));
}

void writeTeximgExt(Text &text, const Teximg &teximg) {
  if (!teximg.ext)
    return writeBlocks(text, teximg, 0);
  const TeximgExt &ext = *teximg.ext;
  putRecord<TEXIMG_EXT_LINES, TeximgExtHead>(text, ext);
  kvWriteKtArray(text, ext.mipmap_img_offset, "mipmap img offset");
  writeBlocks(text, teximg, kvSizeofTeximgExt(ext));
}

void writeAnimGroupExt(Text &text, const AnimGroup &group) {
  if (!group.ext)
    return writeBlocks(text, group, 0);
  const AnimGroupExt &ext = *group.ext;
  putRecord<ANIM_GROUP_EXT_LINES, AnimGroupExtCounts>(text, ext);
  for (const Constraint &constraint : CONSTRAINTS)
    kvWriteKtNodeIndex(text, one(ext.*constraint.node), constraint.label);
  writeKeyframes(text, ext);
  for (const Constraint &constraint : CONSTRAINTS)
    kvWriteKtExternal(text, one(ext.*constraint.external), constraint.external_label);
  writeBlocks(text, group, kvSizeofAnimGroupExt(ext));
}

void kvWriteKt2Ext(Text &text, const Kis &kis) {
  const Version2Sizes &size = kis.file_header;
  if (size.ci_img_list_num != 0)
    kvWriteKtCiimgList(text, kis.ci_img);
  if (size.color_palette_list_num != 0)
    kvWriteKtColorPaletteList(text, kis.color_palette);
  if (size.envelope_list_num != 0)
    kvWriteKtEnvelopeList(text, kis.envelope);
  if (size.cluster_list_num != 0)
    kvWriteKtClusterList(text, kis.cluster);
  if (size.weight_list_num != 0)
    kvWriteKtWeightList(text, kis.weight);
  if (size.chain_root_list_num != 0)
    kvWriteKtChainRootList(text, kis.chain_root);
  if (size.joint_list_num != 0)
    kvWriteKtJointList(text, kis.joint);
  if (size.effector_list_num != 0)
    kvWriteKtEffectorList(text, kis.effector);
  if (size.external_name_list_num != 0)
    kvWriteKtExternalNameList(text, kis.external_name);
}

} // namespace kova
