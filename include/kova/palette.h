/// Colour-index images and colour palettes (version 2.0).
#pragma once

#include "kova/list.h"

#include <array>

namespace kova {

inline constexpr Word CI_IMG_LIST_TAG = 0x00200000;
inline constexpr Word COLOR_PALETTE_LIST_TAG = 0x00210000;

struct CiImgHead : ElementHead {
  Word ci_img_width;
  Word ci_img_height;
  Word ci_img_pixel_depth; ///< bits per pixel
  std::array<Word, 12> reserved;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(CiImgHead) == 84);

struct CiImg : CiImgHead {
  Words pixel_index_array; ///< `kvSizeofPixelIndexArray` words
  ExtBlk ext_blk;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

struct ColorPaletteHead : ElementHead {
  Word color_num;
  Word color_type;
  std::array<Word, 13> reserved;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
static_assert(sizeof(ColorPaletteHead) == 84);

struct ColorPalette : ColorPaletteHead {
  Words color_array; ///< two 16-bit colours to a word; the last colour of an odd number is not kept
  ExtBlk ext_blk;
  std::uint64_t offset = NO_OFFSET; ///< in the file
};

using CiImgList = List<CiImg>;
using ColorPaletteList = List<ColorPalette>;

/// @return the words of an image's pixel indices, which are packed bits padded to a whole word. Width x height x depth
/// + 31 wraps at 32 bits.
KOVA_API Word kvSizeofPixelIndexArray(const CiImgHead &image);

} // namespace kova
