#include "harness/invariants.h"

#include <algorithm>

namespace kova::harness {

namespace {

/// The place that is looked at, and what was found.
struct Walk {
  std::string place = "FileHeader";
  std::string broken = {};
  bool last = true; ///< whether the element may be one at which reading ended
};

void demand(Walk &walk, bool holds, std::string_view what) {
  if (!holds)
    walk.broken.append(walk.place).append(": ").append(what).append("\n");
}

/// For pairs of a count and an array that holds at most so many.
void atMost(const Walk &) {}
template <class Array, class... Pairs>
void atMost(Walk &walk, std::uint64_t count, const Array &held, const Pairs &...more) {
  if (held.size() > count)
    demand(walk, false, std::to_string(held.size()) + " held of " + std::to_string(count));
  atMost(walk, more...);
}

/// For pairs of a count and an array that is all or, where reading ended, nothing.
void whole(const Walk &) {}
template <class Array, class... Pairs>
void whole(Walk &walk, std::uint64_t count, const Array &held, const Pairs &...more) {
  if (held.size() != count && !(walk.last && held.empty()))
    demand(walk, false, "an array of " + std::to_string(held.size()) + " for " + std::to_string(count));
  whole(walk, more...);
}

/// For records that are held one by one.
template <class Record, class Visit>
void oneByOne(Walk &walk, Word count, const std::vector<Record> &held, Visit visit) {
  atMost(walk, count, held);
  demand(walk, held.size() == count || walk.last, "fewer records than counted");
  const bool last = walk.last;
  for (const Record &record : held) {
    walk.last = last && &record == &held.back();
    visit(record);
  }
  walk.last = last;
}

template <class Record> void blocks(Walk &walk, const Record &record) {
  atMost(walk, record.van_ext_blk_size / sizeof(Word), vanExtBlk(record.ext_blk),
         record.usr_ext_blk_size / sizeof(Word), usrExtBlk(record.ext_blk));
}

template <class Element, class Visit>
void elements(Walk &walk, const std::string &name, Word count, const std::vector<Element> &held, Visit visit) {
  walk.place = name;
  atMost(walk, count, held);
  for (std::size_t i = 0; i < held.size(); ++i) {
    walk.place = name + "[" + std::to_string(i) + "]";
    walk.last = i + 1 == held.size();
    visit(held[i]);
  }
  walk.place = name;
  walk.last = true;
}

template <class Element, class Visit> void list(Walk &walk, const char *name, const List<Element> &list, Visit visit) {
  elements(walk, name, list.num, list.element, [&](const Element &element) {
    visit(element);
    if constexpr (requires { element.ext_blk; })
      blocks(walk, element);
    if constexpr (requires { element.ext; })
      demand(walk, !element.ext || element.van_ext_blk_size != 0, "decoded without a block");
  });
  whole(walk, list.num, list.num_byte);
  blocks(walk, list);
}

constexpr auto NOTHING_ELSE = [](const auto &) {};

void sceneLists(Walk &walk, const Kis &kis) {
  const Scene &scene = kis.scene;
  walk.place = "SceneList";
  whole(walk, scene.scene_obj_link_num, scene.obj_link, scene.scene_env_link_num, scene.env_link,
        scene.scene_cam_link_num, scene.cam_link, scene.scene_light_link_num, scene.light_link);
  blocks(walk, scene);
  if (const SceneListExt *const ext = scene.ext.get())
    atMost(walk, ext->scene_chain_root_link_num, ext->chain_root_link, ext->external_obj_num, ext->external_obj,
           ext->external_env_num, ext->external_env, ext->external_cam_num, ext->external_cam, ext->external_light_num,
           ext->external_light);
  list(walk, "EnvList", kis.env, NOTHING_ELSE);
  list(walk, "CamList", kis.cam, NOTHING_ELSE);
  list(walk, "LightList", kis.light, [&](const Light &light) {
    const bool stores = light.light_type <= 1;
    const Word zeroed = light.zeroed_dir_light_num;
    whole(walk, stores ? light.dir_light_num : 0, light.dir_light);
    demand(walk, zeroed == 0 || (!stores && zeroed == light.dir_light_num), "zeroed directional lights");
  });
  list(walk, "ObjList", kis.obj, [&](const Obj &obj) {
    whole(walk, obj.obj_lod_num, obj.LOD_dist, obj.obj_lod_num, obj.LOD_link, obj.obj_child_num, obj.child_link);
    if (const ObjExt *const ext = obj.ext.get())
      atMost(walk, ext->obj_chain_root_link_num, ext->obj_chain_root_link, ext->external_lod_obj_num,
             ext->external_lod_obj_dist, ext->external_lod_obj_num, ext->external_lod_obj, ext->external_obj_num,
             ext->external_obj);
  });
  list(walk, "ShapeList", kis.shape,
       [&](const Shape &shape) { whole(walk, shape.shape_part_num, shape.shape_part_link); });
}

void reference(Walk &walk, const TriGroup &group, std::size_t kind) {
  const AnimRef ref = kvRefs(group)[kind];
  const RefForm form = refForm(group.tri_anim_type, kind);
  const std::int64_t frames = std::max(std::int64_t{group.tri_anim_frame_num} + 1, std::int64_t{0});
  const Word keys = form == RefForm::keys ? ref.key_num : 0;
  demand(walk, ref.key_num == keys, "a key count without keys");
  whole(walk, keys, ref.key);
  whole(walk,
        form == RefForm::frames ? static_cast<std::uint64_t>(frames)
        : form == RefForm::keys ? keys
                                : 1,
        ref.group_index);
}

void geometryLists(Walk &walk, const Kis &kis) {
  list(walk, "VtxList", kis.vtx, [&](const VtxGroup &group) { whole(walk, group.vtx_num, group.vtx); });
  list(walk, "TriList", kis.tri, [&](const TriGroup &group) {
    for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind)
      reference(walk, group, kind);
    oneByOne(walk, group.tri_num, group.tri, [&](const Tri &tri) { blocks(walk, tri); });
  });
  elements(walk, "TriColorGroup", kis.color.tri_group_num, kis.color.tri_group,
           [&](const TriColorGroup &group) { whole(walk, group.tri_color_num, group.color); });
  elements(walk, "VtxColorGroup", kis.color.tri_group_num, kis.color.vtx_group, // read by the first count
           [&](const VtxColorGroup &group) { whole(walk, group.vtx_color_num, group.color); });
  elements(walk, "TriNvGroup", kis.vector.tri_group_num, kis.vector.tri_group,
           [&](const TriNvGroup &group) { whole(walk, group.tri_nv_num, group.normal); });
  elements(walk, "VtxNvGroup", kis.vector.vtx_group_num, kis.vector.vtx_group,
           [&](const VtxNvGroup &group) { whole(walk, group.vtx_nv_num, group.normal); });
  const auto tables = [&](const auto &list) {
    whole(walk, list.tri_group_num, list.tri_group_size, list.vtx_group_num, list.vtx_group_size);
    blocks(walk, list);
  };
  tables(kis.color);
  tables(kis.vector);
  list(walk, "StList", kis.st, [&](const StGroup &group) { whole(walk, group.st_num, group.st); });
  list(walk, "PartList", kis.part, [&](const Part &part) { whole(walk, part.part_tri_num, part.tri_index); });
}

void materialLists(Walk &walk, const Kis &kis) {
  list(walk, "MatList", kis.mat, [&](const Mat &mat) {
    whole(walk, mat.tex_num, mat.tex_index);
    if (const MatExt *const ext = mat.ext.get())
      atMost(walk, ext->external_tex_num, ext->external_tex, ext->prim_color_anim_num, ext->prim_color_anim,
             ext->prim_color_anim_num_for_fog, ext->prim_color_anim_for_fog);
  });
  list(walk, "TexList", kis.tex, [&](const Tex &tex) {
    const TexTiles &tiles = tex.tiles;
    const Word scales = tiles.tex_tile_scale_num, offsets = tiles.tex_tile_offset_num, images = tiles.tex_tile_img_num;
    demand(walk, tex.tex_anim != 0 || (scales | offsets | images) == 0, "tiles of a still texture");
    whole(walk, scales, tiles.tex_tile_scale_key, scales, tiles.tex_tile_width, scales, tiles.tex_tile_height, offsets,
          tiles.tex_tile_offset_key, offsets, tiles.tex_tile_offset_x, offsets, tiles.tex_tile_offset_y, images,
          tiles.tex_tile_img_key, images, tiles.tex_tile_img_index);
    if (const TexExt *const ext = tex.ext.get())
      atMost(walk, kvCiTileNum(tex), ext->color_palette_index, kvCiTileNum(tex), ext->tlut_palette_number,
             ext->external_tex_img_num, ext->external_tex_img, ext->external_tex_img_num, ext->external_palette);
  });
  std::size_t index = 0;
  list(walk, "TeximgList", kis.teximg, [&](const Teximg &image) {
    whole(walk, kvSizeofTeximg(kis.teximg, index++), image.texel);
    if (image.ext)
      atMost(walk, image.ext->mipmap_max_level, image.ext->mipmap_img_offset);
  });
}

void nameText(Walk &walk, const Name &name) {
  const Index length = kvGetNamelen(name);
  whole(walk, length < 0 ? 0 : static_cast<Word>(length) / sizeof(Word), name.text);
}

void behaviorLists(Walk &walk, const Kis &kis) {
  list(walk, "AnimList", kis.anim, [&](const AnimGroup &group) {
    const Word num = group.anim_num;
    const bool step = group.type == 0 || group.type == 2, keyframe = group.type == 3, node = group.type == 4;
    whole(walk, step ? num : 0, group.step, keyframe ? num : 0, group.keyframe, node ? num : 0, group.node);
    demand(walk, group.zeroed_anim_num == 0 || (!step && !keyframe && !node && group.zeroed_anim_num == num),
           "zeroed records");
    if (const AnimGroupExt *const ext = group.ext.get())
      atMost(walk, ext->rotate_axis_num, ext->rotate_axis, ext->rotate_x_num, ext->rotate_x, ext->rotate_y_num,
             ext->rotate_y, ext->rotate_z_num, ext->rotate_z, ext->orientation_xy_num, ext->orientation_xy,
             ext->translation_num, ext->translation, ext->unique_scale_num, ext->unique_scale, ext->classic_scale_num,
             ext->classic_scale);
  });
  list(walk, "CollList", kis.coll, [&](const CollGroup &group) {
    whole(walk, group.coll_num, group.coll_num_byte);
    oneByOne(walk, group.coll_num, group.coll, NOTHING_ELSE);
    demand(walk, !group.coll.empty() || !group.ext_blk.words, "blocks without a collision");
  });
  list(walk, "SwitchList", kis.switch_, [&](const Switch &node) {
    whole(walk, node.case_node_num, node.case_val, node.case_node_num, node.case_dest_index);
  });
  list(walk, "NameList", kis.name, [&](const Name &name) { nameText(walk, name); });
}

void envelopeParts(Walk &walk, const Envelope &envelope) {
  oneByOne(walk, envelope.full_weighted_part_num, envelope.full_weighted_part,
           [&](const FullWeightedPart &part) { blocks(walk, part); });
  oneByOne(walk, envelope.weighted_part_num, envelope.weighted_part, [&](const WeightedPart &part) {
    const std::uint64_t affected = std::uint64_t{part.affected_node_num} + part.external_affected_obj_num;
    whole(walk, part.affected_node_num, part.affected_node, part.external_affected_obj_num, part.external_affected_obj,
          affected, part.weight_group_index, affected, part.group_index);
    blocks(walk, part);
  });
  oneByOne(walk, envelope.morph_part_num, envelope.morph_part, [&](const MorphPart &part) {
    whole(walk, part.table_num, part.group_index);
    blocks(walk, part);
  });
  whole(walk, envelope.envelope_tri_num, envelope.envelope_tri);
}

void version2Lists(Walk &walk, const Kis &kis) {
  const auto chain = [&](const auto &node) {
    whole(walk, node.obj_num, node.obj_index, node.external_obj_num, node.external_obj);
  };
  list(walk, "CiImgList", kis.ci_img,
       [&](const CiImg &image) { whole(walk, kvSizeofPixelIndexArray(image), image.pixel_index_array); });
  list(walk, "ColorPaletteList", kis.color_palette,
       [&](const ColorPalette &palette) { whole(walk, palette.color_num / 2, palette.color_array); });
  list(walk, "EnvelopeList", kis.envelope, [&](const Envelope &envelope) { envelopeParts(walk, envelope); });
  list(walk, "ClusterList", kis.cluster, [&](const ClusterShape &shape) {
    whole(walk, shape.cluster_num, shape.cluster, shape.cluster_tri_num, shape.cluster_tri);
  });
  list(walk, "WeightList", kis.weight, [&](const WeightGroup &group) { whole(walk, group.weight_num, group.weight); });
  list(walk, "ChainRootList", kis.chain_root, chain);
  list(walk, "JointList", kis.joint, chain);
  list(walk, "EffectorList", kis.effector, chain);
  list(walk, "ExternalNameList", kis.external_name, [&](const Name &name) { nameText(walk, name); });
}

} // namespace

std::string brokenInvariants(const Kis &kis) {
  Walk walk;
  blocks(walk, kis.file_header);
  sceneLists(walk, kis);
  geometryLists(walk, kis);
  materialLists(walk, kis);
  behaviorLists(walk, kis);
  version2Lists(walk, kis);
  return walk.broken;
}

} // namespace kova::harness
