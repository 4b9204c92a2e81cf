#include "mend/layout.h"

#include <algorithm>

namespace kova::mend {

namespace {

// --- Pieces that many records hold ----------------------------------------------------------------------------------

/// References into other files: all file names, then all names.
void externals(Walk &walk, Word number, bool counts = true) {
  walk.table(number, {{4, To::external_name, counts}, {4, To::external_name, counts}});
}

/// One such reference.
void external(Walk &walk) { walk.table(2, {{4, To::external_name}}); }

/// A run of group indices, a column for each kind of group.
void vtxTriNvColors(Walk &walk, std::uint64_t number) {
  walk.table(number, {{4, To::vtx}, {4, To::vtx_nv}, {4, To::tri_nv}, {4, To::vtx_color}, {4, To::tri_color}});
}

// --- Scene, environment, camera, light, object, shape ---------------------------------------------------------------

/// What follows begins where the header size says. `unit` as in `Site`.
void headerFirst(Walk &walk, const char *field, Word at, Word usual, std::int32_t unit) {
  const Word size = walk.count(at, field, unit);
  walk.pass(std::int64_t{size} - usual);
  if (size != usual)
    walk.doubt();
}

void scene(Walk &walk) {
  headerFirst(walk, "scene_header_size", 4, 44, 1);
  walk.column(20, "scene_obj_link_num", {4, To::obj});
  walk.column(24, "scene_env_link_num", {4, To::env});
  walk.column(28, "scene_cam_link_num", {4, To::cam});
  walk.column(32, "scene_light_link_num", {4, To::light});
  walk.blocks();
}

void sceneMaker(Walk &walk) {
  const Word chain_roots = walk.nextCount("scene_chain_root_link_num", 4);
  const Word objs = walk.nextCount("external_obj_num", 8);
  const Word envs = walk.nextCount("external_env_num", 8);
  const Word cams = walk.nextCount("external_cam_num", 8);
  const Word lights = walk.nextCount("external_light_num", 8);
  walk.table(chain_roots, {{4, To::chain_root}});
  for (const Word number : {objs, envs, cams, lights})
    externals(walk, number);
}

void onlyBlocks(Walk &walk) { walk.blocks(); }

void camMaker(Walk &walk) {
  for (int i = 0; i < 3; ++i)
    external(walk);
}

/// The directional lights of either type; another type stores none.
const Kind DIR_LIGHTS[] = {
    {.name = "DirLight",
     .fixed = 36,
     .index_at = 4,
     .size_at = 8,
     .index_name = "this_dir_light_index",
     .size_name = "dir_light_size",
     .size_checked = true},
    {.name = "DirLight",
     .fixed = 44,
     .index_at = 4,
     .size_at = 8,
     .index_name = "this_dir_light_index",
     .size_name = "dir_light_size",
     .size_checked = true},
};

void light(Walk &walk) {
  headerFirst(walk, "light_header_size", 8, 48, -1);
  const Word type = walk.word(20);
  if (type < std::size(DIR_LIGHTS)) {
    const Kind &kind = DIR_LIGHTS[type];
    walk.records(walk.count(36, "dir_light_num", kind.fixed, &kind), kind);
  } else if (walk.count(36, "dir_light_num", 0) != 0) {
    walk.fault();
  }
  walk.blocks();
}

void obj(Walk &walk) {
  walk.table(walk.count(52, "obj_lod_num", 8), {{4}, {4, To::obj}});
  walk.column(56, "obj_child_num", {4, To::obj});
  walk.blocks();
}

void objMaker(Walk &walk) {
  walk.pass(16);
  const Word chain_roots = walk.nextCount("obj_chain_root_link_num", 4);
  const Word levels = walk.nextCount("external_lod_obj_num", 12);
  const Word objs = walk.nextCount("external_obj_num", 8);
  walk.table(chain_roots, {{4, To::chain_root, false}});
  walk.table(levels, {{4}, {4, To::external_name}, {4, To::external_name}});
  externals(walk, objs);
}

void shape(Walk &walk) {
  walk.column(28, "shape_part_num", {4, To::part});
  walk.blocks();
}

void shapeMaker(Walk &walk) {
  walk.pass(4);
  external(walk);
}

// --- Geometry -------------------------------------------------------------------------------------------------------

void vtxGroup(Walk &walk) { walk.column(20, "vtx_num", {12}); }
void triColorGroup(Walk &walk) { walk.column(16, "tri_color_num", {16}); }
void vtxColorGroup(Walk &walk) { walk.column(16, "vtx_color_num", {16}); }
void triNvGroup(Walk &walk) { walk.column(16, "tri_nv_num", {12}); }
void vtxNvGroup(Walk &walk) { walk.column(16, "vtx_nv_num", {12}); }
void stGroup(Walk &walk) { walk.column(16, "st_num", {8}); }

constexpr Link TRI_LINKS[] = {
    {12, To::own_tri_nv}, {16, To::own_tri_color},                                                //
    {20, To::own_vtx},    {24, To::own_st},        {28, To::own_vtx_nv}, {32, To::own_vtx_color}, //
    {36, To::own_vtx},    {40, To::own_st},        {44, To::own_vtx_nv}, {48, To::own_vtx_color}, //
    {52, To::own_vtx},    {56, To::own_st},        {60, To::own_vtx_nv}, {64, To::own_vtx_color},
};

const Kind TRI = {.name = "Tri",
                  .fixed = 76,
                  .index_at = 4,
                  .size_at = 8,
                  .blocks_at = 68,
                  .index_name = "this_tri_index",
                  .size_name = "tri_size",
                  .content = onlyBlocks,
                  .links = TRI_LINKS};

/// One reference: a group for each frame, for each key, or one for all.
struct Ref {
  To to;
  const char *key_count;
};
constexpr Ref REFS[] = {
    {To::vtx, "vtx_anim_key_num"},
    {To::tri_color, "tri_color_anim_key_num"},
    {To::vtx_color, "vtx_color_anim_key_num"},
    {To::tri_nv, "tri_nv_anim_key_num"},
    {To::vtx_nv, "vtx_nv_anim_key_num"},
    {To::st, "st_anim_key_num"},
};

void triGroup(Walk &walk) {
  const Word type = walk.word(20);
  std::int32_t frame_bytes = 0; // for each frame
  for (std::size_t i = 0; i < std::size(REFS); ++i)
    frame_bytes += (type >> (4 * i) & 1) != 0 ? 4 : 0;
  const Word frames = frame_bytes != 0 ? walk.count(24, "tri_anim_frame_num", frame_bytes) : 0;
  const Word tris = walk.count(28, "tri_num", TRI.fixed, &TRI);
  for (std::size_t i = 0; i < std::size(REFS); ++i) {
    const Word bits = type >> (4 * i) & 3;
    if (bits == 2) {
      const Word keys = walk.nextCount(REFS[i].key_count, 8);
      walk.table(keys, {{4}, {4, REFS[i].to}});
    } else {
      walk.table(bits == 0 ? 1 : Word{frames + 1}, {{4, REFS[i].to}});
    }
  }
  walk.records(tris, TRI);
}

void part(Walk &walk) {
  walk.column(24, "part_tri_num", {4, To::own_tri});
  walk.blocks();
}

// --- Material, texture, texture image -------------------------------------------------------------------------------

void mat(Walk &walk) {
  walk.column(92, "tex_num", {4, To::tex});
  walk.blocks();
}

void matMaker(Walk &walk) {
  walk.pass(84);
  external(walk);
  const Word texs = walk.nextCount("external_tex_num", 8);
  const Word colors = walk.nextCount("prim_color_anim_num", 24);
  const Word fog_colors = walk.nextCount("prim_color_anim_num_for_fog", 24);
  externals(walk, texs);
  walk.table(colors, {{24}});
  walk.table(fog_colors, {{24}});
}

/// The counts of an animated texture stand behind the size of its image.
constexpr Word TEX_ANIM = 32;
constexpr Word TEX_TILE_IMG_NUM = 68;

void tex(Walk &walk) {
  if (walk.word(TEX_ANIM) == 0) {
    walk.pass(24);
    walk.table(1, {{4, To::image}});
  } else {
    walk.pass(8);
    const Word scales = walk.nextCount("tex_tile_scale_num", 12);
    const Word offsets = walk.nextCount("tex_tile_offset_num", 12);
    const Word images = walk.nextCount("tex_tile_img_num", 8);
    walk.table(scales, {{4}, {4}, {4}});
    walk.table(offsets, {{4}, {4}, {4}});
    walk.table(images, {{4}, {4, To::image}});
  }
  walk.blocks();
}

void texMaker(Walk &walk) {
  walk.pass(12);
  const bool palette = walk.next() != 0;
  const Word images = walk.nextCount("external_tex_img_num", 16);
  const Word tiles = !palette ? 0 : walk.outerWord(TEX_ANIM) == 0 ? 1 : walk.outerWord(TEX_TILE_IMG_NUM);
  walk.table(tiles, {{4, To::color_palette}, {4}});
  externals(walk, images);
  externals(walk, images, false);
}

/// What is between the head of a record and its blocks takes up what its two sizes leave. Negative: the sizes are
/// wrong.
std::int64_t sized(Walk &walk, Word size_at, const char *size_name, Word header_at, const char *header_name,
                   Word head) {
  const Word size = walk.count(size_at, size_name, 1);
  const Word header = walk.count(header_at, header_name, -1);
  if (header != head)
    walk.doubt();
  return std::int64_t{size} - header;
}

/// (The sizes of its blocks say only how much of it are texels.)
void teximg(Walk &walk) {
  const Word maker = walk.word(16);
  const Word user = walk.word(20);
  walk.pass(sized(walk, 12, "tex_img_size", 8, "tex_img_header_size", 24) - maker - user);
  walk.passBlocks(maker, user);
}

void teximgMaker(Walk &walk) {
  const Word levels = walk.nextCount("mipmap_max_level", 4);
  walk.table(levels, {{4}});
}

// --- Animation, collision, switch, name -----------------------------------------------------------------------------

constexpr Kind animKind(std::uint16_t bytes) {
  return {.name = "Anim",
          .fixed = bytes,
          .index_at = 4,
          .size_at = 8,
          .index_name = "this_anim_index",
          .size_name = "anim_size"};
}
const Kind ANIM_STEP = animKind(52);
const Kind ANIM_KEY = animKind(64);
const Kind ANIM_NODE = animKind(20);

const Kind *animKindOf(Word type) {
  switch (type) {
  case 0:
  case 2:
    return &ANIM_STEP;
  case 3:
    return &ANIM_KEY;
  case 4:
    return &ANIM_NODE;
  default: // stores no records
    return nullptr;
  }
}

void animGroup(Walk &walk) {
  if (const Kind *const kind = animKindOf(walk.word(20)))
    walk.records(walk.count(28, "anim_num", kind->fixed, kind), *kind);
  walk.blocks();
}

void animMaker(Walk &walk) {
  struct Keys {
    const char *count;
    std::uint8_t bytes;
  };
  static constexpr Keys KEYS[] = {{"rotate_axis_num", 40},  {"rotate_x_num", 16},       {"rotate_y_num", 16},
                                  {"rotate_z_num", 16},     {"orientation_xy_num", 56}, {"translation_num", 32},
                                  {"unique_scale_num", 32}, {"classic_scale_num", 32}};
  std::array<Word, std::size(KEYS)> numbers;
  walk.pass(4);
  for (std::size_t i = 0; i < numbers.size(); ++i)
    numbers[i] = walk.nextCount(KEYS[i].count, KEYS[i].bytes);
  for (int i = 0; i < 7; ++i)
    walk.table(1, {{4}, {4, To::any}});
  for (int i = 0; i < 7; ++i)
    external(walk);
  for (std::size_t i = 0; i < numbers.size(); ++i)
    walk.table(numbers[i], {{KEYS[i].bytes}});
}

/// Behind each collision stand blocks of its group's sizes.
constexpr Word COLL_BLOCKS = 24;

void coll(Walk &walk) {
  walk.pass(sized(walk, 12, "coll_size", 8, "coll_header_size", 24));
  walk.outerBlocks(COLL_BLOCKS);
}

constexpr Link COLL_LINKS[] = {{16, To::name}};
const Kind COLL = {.name = "Coll",
                   .tag = 0xd1000,
                   .fixed = 24,
                   .index_at = 4,
                   .tag_name = "coll_tag",
                   .index_name = "this_coll_index",
                   .content = coll,
                   .links = COLL_LINKS};

void collGroup(Walk &walk) {
  constexpr Word COLL_NUM = 20;
  const Word number = walk.count(COLL_NUM, "coll_num", 4 + COLL.fixed, &COLL);
  walk.table(number, {{4}}, walk.place(COLL_NUM));
  walk.records(number, COLL);
}

void switch_(Walk &walk) {
  walk.table(walk.count(20, "case_node_num", 8), {{4}, {4, To::any}});
  walk.blocks();
}

void name(Walk &walk) { walk.pass(sized(walk, 12, "name_size", 8, "name_header_size", 16) & ~std::int64_t{3}); }

// --- Palettes, skins, chains ----------------------------------------------------------------------------------------

void ciImg(Walk &walk) {
  walk.pass(std::int64_t{(walk.word(16) * walk.word(20) * walk.word(24) + 31) / 32} * int{sizeof(Word)});
  walk.blocks();
}

/// Two colours to a word. (The last colour of an odd number has no room, so numbers are even.)
void colorPalette(Walk &walk) {
  walk.table(walk.count(16, "color_num", 2) / 2, {{4}});
  walk.blocks();
}

constexpr Link FULL_WEIGHTED_LINKS[] = {
    {12, To::name},   {20, To::any},    {24, To::external_name}, {28, To::external_name}, {32, To::vtx},
    {36, To::vtx_nv}, {40, To::tri_nv}, {44, To::vtx_color},     {48, To::tri_color},     {52, To::st}};
const Kind FULL_WEIGHTED_PART = {.name = "FullWeightedPart",
                                 .fixed = 64,
                                 .index_at = 4,
                                 .size_at = 8,
                                 .blocks_at = 56,
                                 .index_name = "this_index",
                                 .size_name = "size",
                                 .size_checked = true,
                                 .content = onlyBlocks,
                                 .links = FULL_WEIGHTED_LINKS};

void weightedPart(Walk &walk) {
  const Word nodes = walk.count(16, "affected_node_num", 32);
  const Word objs = walk.count(24, "external_affected_obj_num", 32);
  walk.table(nodes, {{4}, {4, To::any}});
  externals(walk, objs);
  walk.table(std::uint64_t{nodes} + objs, {{4, To::weight}});
  vtxTriNvColors(walk, std::uint64_t{nodes} + objs);
  walk.blocks();
}
constexpr Link WEIGHTED_LINKS[] = {{12, To::name}, {20, To::st}};
const Kind WEIGHTED_PART = {.name = "WeightedPart",
                            .fixed = 36,
                            .index_at = 4,
                            .size_at = 8,
                            .blocks_at = 28,
                            .index_name = "this_index",
                            .size_name = "size",
                            .size_checked = true,
                            .content = weightedPart,
                            .links = WEIGHTED_LINKS};

void morphPart(Walk &walk) {
  vtxTriNvColors(walk, walk.count(52, "table_num", 20));
  walk.blocks();
}
constexpr Link MORPH_LINKS[] = {
    {12, To::name},          {20, To::any},           {36, To::any},           {24, To::external_name},
    {28, To::external_name}, {40, To::external_name}, {44, To::external_name}, {48, To::st}};
const Kind MORPH_PART = {.name = "MorphPart",
                         .fixed = 64,
                         .index_at = 4,
                         .size_at = 8,
                         .blocks_at = 56,
                         .index_name = "this_index",
                         .size_name = "size",
                         .size_checked = true,
                         .content = morphPart,
                         .links = MORPH_LINKS};

/// A triangle of a skin and its corners: each names a part, and then what it uses of it.
constexpr Link ENVELOPE_TRI_LINKS[] = {{16, To::own_part},      {20, To::own_tri_nv},     {24, To::own_tri_color},
                                       {28, To::own_weight}, //
                                       {36, To::own_part},      {40, To::own_vtx},        {44, To::own_st},
                                       {48, To::own_vtx_nv},    {52, To::own_vtx_color}, //
                                       {56, To::own_weight},    {64, To::own_part},       {68, To::own_vtx},
                                       {72, To::own_st},        {76, To::own_vtx_nv}, //
                                       {80, To::own_vtx_color}, {84, To::own_weight},     {92, To::own_part},
                                       {96, To::own_vtx},       {100, To::own_st}, //
                                       {104, To::own_vtx_nv},   {108, To::own_vtx_color}, {112, To::own_weight}};
const Kind ENVELOPE_TRI = {.name = "EnvelopeTri",
                           .fixed = 116,
                           .index_at = 4,
                           .size_at = 8,
                           .index_name = "this_envelope_tri_index",
                           .size_name = "envelope_tri_size",
                           .size_checked = true,
                           .links = ENVELOPE_TRI_LINKS};

void envelope(Walk &walk) {
  const Word full = walk.count(20, "full_weighted_part_num", FULL_WEIGHTED_PART.fixed, &FULL_WEIGHTED_PART);
  const Word weighted = walk.count(24, "weighted_part_num", WEIGHTED_PART.fixed, &WEIGHTED_PART);
  const Word morphs = walk.count(28, "morph_part_num", MORPH_PART.fixed, &MORPH_PART);
  const Word tris = walk.count(32, "envelope_tri_num", ENVELOPE_TRI.fixed, &ENVELOPE_TRI);
  walk.records(full, FULL_WEIGHTED_PART);
  walk.records(weighted, WEIGHTED_PART);
  walk.records(morphs, MORPH_PART);
  walk.records(tris, ENVELOPE_TRI);
  walk.blocks();
}

constexpr Link CLUSTER_LINKS[] = {
    {12, To::name},   {20, To::any},    {24, To::external_name}, {28, To::external_name}, {32, To::vtx},
    {36, To::vtx_nv}, {40, To::tri_nv}, {44, To::vtx_color},     {48, To::tri_color},     {52, To::st}};
const Kind CLUSTER = {.name = "Cluster",
                      .fixed = 56,
                      .index_at = 4,
                      .size_at = 8,
                      .index_name = "this_index",
                      .size_name = "size",
                      .size_checked = true,
                      .links = CLUSTER_LINKS};
constexpr Link CLUSTER_TRI_LINKS[] = {{16, To::own_cluster}, {20, To::own_tri_nv},    {24, To::own_tri_color}, //
                                      {32, To::own_cluster}, {36, To::own_vtx},       {40, To::own_st},
                                      {44, To::own_vtx_nv},  {48, To::own_vtx_color}, //
                                      {56, To::own_cluster}, {60, To::own_vtx},       {64, To::own_st},
                                      {68, To::own_vtx_nv},  {72, To::own_vtx_color}, //
                                      {80, To::own_cluster}, {84, To::own_vtx},       {88, To::own_st},
                                      {92, To::own_vtx_nv},  {96, To::own_vtx_color}};
const Kind CLUSTER_TRI = {.name = "ClusterTri",
                          .fixed = 100,
                          .index_at = 4,
                          .size_at = 8,
                          .index_name = "this_cluster_tri_index",
                          .size_name = "cluster_tri_size",
                          .size_checked = true,
                          .links = CLUSTER_TRI_LINKS};

void clusterShape(Walk &walk) {
  const Word clusters = walk.count(20, "cluster_num", CLUSTER.fixed, &CLUSTER);
  const Word tris = walk.count(24, "cluster_tri_num", CLUSTER_TRI.fixed, &CLUSTER_TRI);
  walk.records(clusters, CLUSTER);
  walk.records(tris, CLUSTER_TRI);
  walk.blocks();
}

void weightGroup(Walk &walk) {
  walk.column(16, "weight_num", {4});
  walk.blocks();
}

template <std::uint16_t COUNTS_AT> void chainNode(Walk &walk) {
  const Word objs = walk.count(COUNTS_AT, "obj_num", 4);
  const Word others = walk.count(COUNTS_AT + 4, "external_obj_num", 8);
  walk.table(objs, {{4, To::obj}});
  externals(walk, others);
  walk.blocks();
}

// --- The elements ---------------------------------------------------------------------------------------------------

struct ElementWords {
  std::uint16_t fixed;
  std::uint16_t size_at; ///< 8, or 12 where a header size stands before it
  std::uint16_t blocks_at;
  const char *tag;
  const char *index;
  const char *size;
};

constexpr Kind element(const char *name, Word tag, const ElementWords &words, void (*content)(Walk &),
                       std::span<const Link> links, void (*maker)(Walk &) = nullptr) {
  return {.name = name,
          .tag = tag,
          .fixed = words.fixed,
          .index_at = 4,
          .size_at = words.size_at,
          .blocks_at = words.blocks_at,
          .tag_name = words.tag,
          .index_name = words.index,
          .size_name = words.size,
          .index_checked = true,
          .size_checked = true,
          .content = content,
          .maker = maker,
          .links = links};
}

/// An element at which the audit does not look.
constexpr Kind unchecked(Kind kind) {
  kind.index_checked = false;
  kind.size_checked = false;
  return kind;
}

/// An element of a version-2 list.
constexpr Kind element2(const char *name, Word tag, std::uint16_t fixed, std::uint16_t blocks_at,
                        void (*content)(Walk &), std::span<const Link> links) {
  return element(name, tag, {fixed, 8, blocks_at, "tag", "this_index", "size"}, content, links);
}

constexpr Link ENV_LINKS[] = {{12, To::name}, {40, To::image}};
constexpr Link NAME_AT_12[] = {{12, To::name}};
constexpr Link NAME_AT_16[] = {{16, To::name}};
constexpr Link CAM_LINKS[] = {{12, To::name}, {56, To::obj}, {60, To::obj}, {64, To::obj}};
constexpr Link OBJ_LINKS[] = {{12, To::name}, {60, To::obj},  {64, To::shape},
                              {68, To::mat},  {72, To::anim}, {76, To::coll}};
constexpr Link SHAPE_LINKS[] = {{12, To::name}, {20, To::tri}, {24, To::mat}};
constexpr Link PART_LINKS[] = {{12, To::name}, {16, To::mat}, {20, To::tri}};
constexpr Link MAT_LINKS[] = {{12, To::name}, {88, To::light}};
constexpr Link CHAIN_ROOT_LINKS[] = {{12, To::name}, {28, To::anim}, {32, To::joint}};
constexpr Link JOINT_LINKS[] = {{12, To::name}, {44, To::joint}, {48, To::effector}, {52, To::anim}};
constexpr Link EFFECTOR_LINKS[] = {{12, To::name}, {28, To::anim}};
constexpr Link SWITCH_LINKS[] = {{16, To::any}};
constexpr Link SCENE_LINKS[] = {{16, To::name}};

const Kind ENV = element("Env", 0x100100, {56, 8, 48, "env_tag", "this_env_index", "env_size"}, onlyBlocks, ENV_LINKS);
const Kind CAM =
    element("Cam", 0xe0100, {76, 8, 68, "cam_tag", "this_cam_index", "cam_size"}, onlyBlocks, CAM_LINKS, camMaker);
const Kind LIGHT =
    element("Light", 0xf0100, {48, 12, 40, "light_tag", "this_light_index", "light_size"}, light, NAME_AT_16);
const Kind OBJ =
    element("Obj", 0x20100, {88, 8, 80, "obj_tag", "this_obj_index", "obj_size"}, obj, OBJ_LINKS, objMaker);
const Kind SHAPE = element("Shape", 0x30100, {40, 8, 32, "shape_tag", "this_shape_index", "shape_size"}, shape,
                           SHAPE_LINKS, shapeMaker);
const Kind VTX_GROUP =
    element("VtxGroup", 0x40100, {24, 12, NO_WORD, "vtx_group_tag", "this_vtx_group_index", "vtx_group_size"}, vtxGroup,
            NAME_AT_16);
const Kind TRI_GROUP =
    element("TriGroup", 0x80100, {32, 12, NO_WORD, "tri_group_tag", "this_tri_group_index", "tri_group_size"}, triGroup,
            NAME_AT_16);
const Kind TRI_COLOR_GROUP = element(
    "TriColorGroup", 0x50100,
    {20, 12, NO_WORD, "tri_color_group_tag", "this_tri_color_group_index", "tri_color_group_size"}, triColorGroup, {});
const Kind VTX_COLOR_GROUP = element(
    "VtxColorGroup", 0x50200,
    {20, 12, NO_WORD, "vtx_color_group_tag", "this_vtx_color_group_index", "vtx_color_group_size"}, vtxColorGroup, {});
const Kind TRI_NV_GROUP =
    element("TriNvGroup", 0x60100,
            {20, 12, NO_WORD, "tri_nv_group_tag", "this_tri_nv_group_index", "tri_nv_group_size"}, triNvGroup, {});
const Kind VTX_NV_GROUP =
    element("VtxNvGroup", 0x60200, {20, 12, NO_WORD, "vtx_nv_group_tag", "vtx_nv_group_index", "vtx_nv_group_size"},
            vtxNvGroup, {});
const Kind ST_GROUP =
    element("StGroup", 0x70100, {20, 12, NO_WORD, "st_group_tag", "this_st_group_index", "st_group_size"}, stGroup, {});
const Kind PART = element("Part", 0x90100, {36, 8, 28, "part_tag", "this_part_index", "part_size"}, part, PART_LINKS);
const Kind MAT =
    element("Mat", 0xa0100, {104, 8, 96, "mat_tag", "this_mat_index", "mat_size"}, mat, MAT_LINKS, matMaker);
const Kind TEX =
    element("Tex", 0xb0100, {52, 12, 44, "tex_tag", "this_tex_index", "tex_size"}, tex, NAME_AT_16, texMaker);
const Kind TEXIMG = element("Teximg", 0x120100, {24, 12, 16, "tex_img_tag", "this_tex_img_index", "tex_img_size"},
                            teximg, {}, teximgMaker);
const Kind ANIM_GROUP =
    element("AnimGroup", 0xc0100, {48, 12, 40, "anim_group_tag", "this_anim_group_index", "anim_group_size"}, animGroup,
            NAME_AT_16, animMaker);
const Kind COLL_GROUP =
    element("CollGroup", 0xd0100, {32, 12, NO_WORD, "coll_group_tag", "this_coll_group_index", "coll_group_size"},
            collGroup, NAME_AT_16);
const Kind SWITCH =
    element("Switch", 0x130100, {36, 8, 28, "switch_tag", "this_switch_index", "switch_size"}, switch_, SWITCH_LINKS);
constexpr Kind nameKind() {
  Kind kind =
      unchecked(element("Name", 0x110100, {16, 12, NO_WORD, "name_tag", "this_name_index", "name_size"}, name, {}));
  kind.size_in_bytes = true;
  return kind;
}
const Kind NAME = nameKind();
const Kind EXTERNAL_NAME =
    element("ExternalName", 0x270100, {16, 12, NO_WORD, "name_tag", "this_name_index", "name_size"}, name, {});
const Kind CI_IMG = element2("CiImg", 0x200100, 84, 76, ciImg, NAME_AT_12);
const Kind COLOR_PALETTE = element2("ColorPalette", 0x210100, 84, 76, colorPalette, NAME_AT_12);
const Kind ENVELOPE = element2("Envelope", 0x220100, 44, 36, envelope, NAME_AT_12);
const Kind CLUSTER_SHAPE = element2("ClusterShape", 0x280100, 36, 28, clusterShape, NAME_AT_12);
const Kind WEIGHT_GROUP = element2("WeightGroup", 0x230100, 28, 20, weightGroup, NAME_AT_12);
const Kind CHAIN_ROOT = element2("ChainRoot", 0x240100, 44, 36, chainNode<20>, CHAIN_ROOT_LINKS);
const Kind JOINT = element2("Joint", 0x250100, 64, 56, chainNode<36>, JOINT_LINKS);
const Kind EFFECTOR = element2("Effector", 0x260100, 40, 32, chainNode<20>, EFFECTOR_LINKS);

// --- The lists ------------------------------------------------------------------------------------------------------

constexpr ListLayout version2List(const char *list, const Kind &first, const char *count, const char *table,
                                  const char *header_word) {
  return {list, &first, nullptr, "list_tag", "list_size", count, table, nullptr, nullptr, header_word};
}

} // namespace

const Kind SCENE = {.name = "Scene",
                    .tag = 0x10000,
                    .fixed = 44,
                    .index_at = NO_WORD,
                    .size_at = 8,
                    .blocks_at = 36,
                    .tag_name = "scene_header_tag",
                    .size_name = "scene_size",
                    .size_checked = true,
                    .content = scene,
                    .maker = sceneMaker,
                    .links = SCENE_LINKS};

const std::array<ListLayout, LIST_NUM> LAYOUT = inListOrder<ListLayout>({
    {"SceneList", nullptr, nullptr, "scene_header_tag", "scene_size", nullptr, nullptr, nullptr, nullptr,
     "scene_list_num"},
    {"EnvList", &ENV, nullptr, "env_list_tag", "env_list_size", "env_num", "env_num_byte", nullptr, nullptr,
     "env_list_num"},
    {"CamList", &CAM, nullptr, "cam_list_tag", "cam_list_size", "cam_num", "cam_num_byte", nullptr, nullptr,
     "cam_list_num"},
    {"LightList", &LIGHT, nullptr, "light_list_tag", "light_list_size", "light_num", "light_num_byte", nullptr, nullptr,
     "light_list_num"},
    {"ObjList", &OBJ, nullptr, "obj_list_tag", "obj_list_size", "obj_num", "obj_num_byte", nullptr, nullptr,
     "obj_list_num"},
    {"ShapeList", &SHAPE, nullptr, "shape_list_tag", "shape_list_size", "shape_num", "shape_num_byte", nullptr, nullptr,
     "shape_list_num"},
    {"VtxList", &VTX_GROUP, nullptr, "vtx_list_tag", "vtx_list_size", "vtx_group_num", "vtx_group_num_byte", nullptr,
     nullptr, "vtx_list_num"},
    {"TriList", &TRI_GROUP, nullptr, "tri_list_tag", "tri_list_size", "tri_group_num", "tri_group_num_byte", nullptr,
     nullptr, "tri_list_num"},
    {"ColorList", &TRI_COLOR_GROUP, &VTX_COLOR_GROUP, "color_list_tag", "color_list_size", "tri_color_group_num",
     "tri_color_group_size", "vtx_color_group_num", "vtx_color_group_size", "color_list_num"},
    {"VectorList", &TRI_NV_GROUP, &VTX_NV_GROUP, "vector_list_tag", "vector_list_size", "tri_nv_group_num",
     "tri_nv_group_size", "vtx_nv_group_num", "vtx_nv_group_size", "vector_list_num"},
    {"StList", &ST_GROUP, nullptr, "st_list_tag", "st_list_size", "st_group_num", "st_group_size", nullptr, nullptr,
     "st_list_num"},
    {"PartList", &PART, nullptr, "part_list_tag", "part_list_size", "part_num", "part_num_byte", nullptr, nullptr,
     "part_list_num"},
    {"MatList", &MAT, nullptr, "mat_list_tag", "mat_list_size", "mat_num", "mat_num_byte", nullptr, nullptr,
     "mat_list_num"},
    {"TexList", &TEX, nullptr, "tex_list_tag", "tex_list_size", "tex_num", "tex_num_byte", nullptr, nullptr,
     "tex_list_num"},
    {"TeximgList", &TEXIMG, nullptr, "tex_img_list_tag", "tex_img_list_size", "tex_img_num", "tex_img_num_byte",
     nullptr, nullptr, "tex_img_list_num"},
    {"AnimList", &ANIM_GROUP, nullptr, "anim_list_tag", "anim_list_size", "anim_group_num", "anim_group_num_byte",
     nullptr, nullptr, "anim_list_num"},
    {"CollList", &COLL_GROUP, nullptr, "coll_list_tag", "coll_list_size", "coll_group_num", "coll_group_num_byte",
     nullptr, nullptr, "coll_list_num"},
    {"SwitchList", &SWITCH, nullptr, "switch_list_tag", "switch_list_size", "switch_num", "switch_num_byte", nullptr,
     nullptr, "switch_list_num"},
    {"NameList", &NAME, nullptr, "name_list_tag", "name_list_size", "name_num", "name_num_byte", nullptr, nullptr,
     "name_list_num"},
    version2List("CiImgList", CI_IMG, "ci_img_num", "ci_img_num_byte", "ci_img_list_num"),
    version2List("ColorPaletteList", COLOR_PALETTE, "color_palette_num", "color_palette_num_byte",
                 "color_palette_list_num"),
    version2List("EnvelopeList", ENVELOPE, "envelope_num", "envelope_size", "envelope_list_num"),
    version2List("ClusterList", CLUSTER_SHAPE, "cluster_shape_num", "cluster_shape_size", "cluster_list_num"),
    version2List("WeightList", WEIGHT_GROUP, "weight_group_num", "weight_group_num_byte", "weight_list_num"),
    version2List("ChainRootList", CHAIN_ROOT, "chain_root_num", "chain_root_num_byte", "chain_root_list_num"),
    version2List("JointList", JOINT, "joint_num", "joint_num_byte", "joint_list_num"),
    version2List("EffectorList", EFFECTOR, "effector_num", "effector_num_byte", "effector_list_num"),
    {"ExternalNameList", &EXTERNAL_NAME, nullptr, "name_list_tag", "name_list_size", "name_num", "name_num_byte",
     nullptr, nullptr, "external_name_list_num"},
});

bool isListTag(std::size_t list, Word tag) {
  return tag == LISTS[list].tag || (LAYOUT[list].first == &NAME && tag == EXTERNAL_NAME.tag - ELEMENT_KIND);
}

bool isElementTag(const Kind &kind, Word tag) {
  return tag == kind.tag || (&kind == &NAME && tag == EXTERNAL_NAME.tag);
}

} // namespace kova::mend
