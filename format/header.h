/// The words of the file header.
#pragma once

#include "format/words.h"
#include "kova/kova.h"

namespace kova {

/// The file header, and the nine sizes after it in a 2.0 file.
template <>
inline constexpr auto WORDS<FileHeaderHead> = words<FileHeaderHead>({
    {"version           %0#10x\n", &FileHeaderHead::version},
    {"size              %d\n", &FileHeaderHead::size, SIZE},
    {"header_tag        %0#10x\n", &FileHeaderHead::header_tag, TAG},
    {"file_header_num   %d\n", &FileHeaderHead::file_header_num, HEADER_SIZE},
    {"scene_list_num    %d\n", &FileHeaderHead::scene_list_num, LIST_SIZE},
    {"env_list_num      %d\n", &FileHeaderHead::env_list_num, LIST_SIZE},
    {"cam_list_num      %d\n", &FileHeaderHead::cam_list_num, LIST_SIZE},
    {"light_list_num    %d\n", &FileHeaderHead::light_list_num, LIST_SIZE},
    {"obj_list_num      %d\n", &FileHeaderHead::obj_list_num, LIST_SIZE},
    {"shape_list_num    %d\n", &FileHeaderHead::shape_list_num, LIST_SIZE},
    {"vtx_list_num      %d\n", &FileHeaderHead::vtx_list_num, LIST_SIZE},
    {"color_list_num    %d\n", &FileHeaderHead::color_list_num, LIST_SIZE},
    {"vector_list_num   %d\n", &FileHeaderHead::vector_list_num, LIST_SIZE},
    {"st_list_num       %d\n", &FileHeaderHead::st_list_num, LIST_SIZE},
    {"tri_list_num      %d\n", &FileHeaderHead::tri_list_num, LIST_SIZE},
    {"part_list_num     %d\n", &FileHeaderHead::part_list_num, LIST_SIZE},
    {"mat_list_num      %d\n", &FileHeaderHead::mat_list_num, LIST_SIZE},
    {"tex_list_num      %d\n", &FileHeaderHead::tex_list_num, LIST_SIZE},
    {"tex_img_list_num  %d\n", &FileHeaderHead::tex_img_list_num, LIST_SIZE},
    {"anim_list_num     %d\n", &FileHeaderHead::anim_list_num, LIST_SIZE},
    {"coll_list_num     %d\n", &FileHeaderHead::coll_list_num, LIST_SIZE},
    {"switch_list_num   %d\n", &FileHeaderHead::switch_list_num, LIST_SIZE},
    {"name_list_num     %d\n", &FileHeaderHead::name_list_num, LIST_SIZE},
    {"van_ext_blk_size  %d\n", &FileHeaderHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size  %d\n", &FileHeaderHead::usr_ext_blk_size, USR_SIZE},
});
template <>
inline constexpr auto WORDS<Version2Sizes> = words<Version2Sizes>({
    {"ci_img_list_num        %d\n", &Version2Sizes::ci_img_list_num, LIST_SIZE},
    {"color_palette_list_num %d\n", &Version2Sizes::color_palette_list_num, LIST_SIZE},
    {"envelope_list_num      %d\n", &Version2Sizes::envelope_list_num, LIST_SIZE},
    {"cluster_list_num       %d\n", &Version2Sizes::cluster_list_num, LIST_SIZE},
    {"weight_list_num        %d\n", &Version2Sizes::weight_list_num, LIST_SIZE},
    {"chain_root_list_num    %d\n", &Version2Sizes::chain_root_list_num, LIST_SIZE},
    {"joint_list_num         %d\n", &Version2Sizes::joint_list_num, LIST_SIZE},
    {"effector_list_num      %d\n", &Version2Sizes::effector_list_num, LIST_SIZE},
    {"external_name_list_num %d\n", &Version2Sizes::external_name_list_num, LIST_SIZE},
});

} // namespace kova
