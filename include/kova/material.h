/// Materials, textures and texture images.
#pragma once

#include "kova/list.h"

namespace kova {

inline constexpr Word MAT_LIST_TAG = 0x000a0000;
inline constexpr Word TEX_LIST_TAG = 0x000b0000;
inline constexpr Word TEXIMG_LIST_TAG = 0x00120000;

/// A colour keyframe.
struct PrimColorAnim {
  Word interpolation_type;
  Index key;
  Rgba prim_color_anim;
};
static_assert(sizeof(PrimColorAnim) == 24);

struct MatExtHead {
  Rgba ambient;
  Rgba emission;
  Rgba diffuse;
  Word mat_type_for_fog;
  Word mat_color_type0_for_fog;
  Word mat_color_type1_for_fog;
  Word mat_alpha_type0_for_fog;
  Word mat_alpha_type1_for_fog;
  Rgba prim_for_fog;
  External external_local_light;
  Word external_tex_num;
  Word prim_color_anim_num;
  Word prim_color_anim_num_for_fog;
};
static_assert(sizeof(MatExtHead) == 104);

struct MatExt : MatExtHead {
  std::vector<External> external_tex;
  std::vector<PrimColorAnim> prim_color_anim;
  std::vector<PrimColorAnim> prim_color_anim_for_fog;
};

struct TexExtHead {
  Word tex_filter;
  Word use_perspective_correction;
  Index mipmap_level;
  Word use_color_palette; ///< 0: no palette
  Word external_tex_img_num;
};
static_assert(sizeof(TexExtHead) == 20);

/// The first two arrays have `kvCiTileNum` entries, the other two `external_tex_img_num`.
struct TexExt : TexExtHead {
  Indices color_palette_index;
  Indices tlut_palette_number;
  std::vector<External> external_tex_img;
  std::vector<External> external_palette;
};

struct TeximgExtHead {
  Word mipmap_max_level;
};
static_assert(sizeof(TeximgExtHead) == 4);

struct TeximgExt : TeximgExtHead {
  Indices mipmap_img_offset;
};

struct MatHead {
  Word mat_tag;
  Index this_mat_index;
  Word mat_size;
  Index mat_name_index;
  Word mat_type;
  Word mat_shade_type;
  Word mat_color_type0;
  Word mat_color_type1;
  Word mat_alpha_type0;
  Word mat_alpha_type1;
  float prim_red;
  float prim_green;
  float prim_blue;
  float prim_alpha;
  Word usr_flag0;
  Word usr_flag1;
  Word usr_flag2;
  Word usr_flag3;
  Word usr_flag4;
  Word usr_flag5;
  Word usr_flag6;
  Word usr_flag7;
  Index local_light_index;
  Word tex_num;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(MatHead) == 104);

struct Mat : MatHead {
  Words tex_index;
  ExtBlk ext_blk;
  std::unique_ptr<MatExt> ext;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

struct TexHead {
  Word tex_tag;
  Index this_tex_index;
  Word tex_header_size;
  Word tex_size;
  Index tex_name_index;
  Word tex_type;
  Word tex_wrap_s;
  Word tex_wrap_t;
  Word tex_anim;           ///< 0: still; else tile-animated
  Word tex_data_area_size; ///< bytes; recorded, never used to find what follows
  Index tex_anim_frame_rate;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(TexHead) == 52);

/// The data area of a still texture.
struct TexStill {
  Index tex_img_width;
  Index tex_img_height;
  Index tex_tile_width;
  Index tex_tile_height;
  Index tex_offset_x;
  Index tex_offset_y;
  Index tex_img_index;
};
static_assert(sizeof(TexStill) == 28);

struct TexTilesHead {
  Index tex_img_width;
  Index tex_img_height;
  Word tex_tile_scale_num;  ///< of the keys, the widths and the heights
  Word tex_tile_offset_num; ///< of the keys, and of x and y
  Word tex_tile_img_num;    ///< of the keys and the images
};
static_assert(sizeof(TexTilesHead) == 20);

/// The data area of a tile-animated texture.
struct TexTiles : TexTilesHead {
  Indices tex_tile_scale_key;
  Indices tex_tile_width;
  Indices tex_tile_height;
  Indices tex_tile_offset_key;
  Indices tex_tile_offset_x;
  Indices tex_tile_offset_y;
  Indices tex_tile_img_key;
  Indices tex_tile_img_index;
};

/// A texture has one of the two data areas, by `tex_anim`; the other one is all zeros.
struct Tex : TexHead {
  TexStill still;
  TexTiles tiles;
  ExtBlk ext_blk;
  std::unique_ptr<TexExt> ext;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

struct TeximgHead {
  Word tex_img_tag;
  Index this_tex_img_index;
  Word tex_img_header_size;
  Word tex_img_size; ///< bytes of all of it; the texels are what its header and blocks leave
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(TeximgHead) == 24);

struct Teximg : TeximgHead {
  std::vector<unsigned char> texel; ///< in file order
  ExtBlk ext_blk;
  std::unique_ptr<TeximgExt> ext;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

using MatList = List<Mat>;
using TexList = List<Tex>;
using TeximgList = List<Teximg>;

/// @return the bytes of texels that image `index` states (wraps at 32 bits); it may hold fewer. 0 for an index that no
/// image has.
KOVA_API Word kvSizeofTeximg(const TeximgList &list, std::size_t index);
KOVA_API Word kvSizeofTeximg(const TeximgHead &image);

/// @return the number of colour-index tiles of a texture: 0 where it uses no palette (or has no decoded maker block), 1
/// for a still texture, else its `tex_tile_img_num`.
KOVA_API Word kvCiTileNum(const Tex &tex);

/// @return the bytes of maker block that the counts call for; see `kvSizeofSceneListExt`. `tile_num` is what
/// `kvCiTileNum` says of the texture.
KOVA_API Word kvSizeofMatExt(const MatExtHead &ext);
KOVA_API Word kvSizeofTexExt(const TexExtHead &ext, Word tile_num);
KOVA_API Word kvSizeofTeximgExt(const TeximgExtHead &ext);

} // namespace kova
