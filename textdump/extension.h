/// What a 2.0 dump adds to the version-1 sections: the decoded maker blocks of eight kinds of record, and the sections
/// of the nine further lists.
#pragma once

#include "kova/kova.h"
#include "textdump/text.h"

namespace kova {

/// Write the decoded lines of a record's maker block (none where it was not decoded): single values, then arrays with
/// the keyframes, then external references. Then the blocks of the record, the maker block from behind the bytes that
/// its counts call for.
void writeSceneListExt(Text &text, const Scene &scene);
void writeCamExt(Text &text, const Cam &cam);
void writeObjExt(Text &text, const Obj &obj);
void writeShapeExt(Text &text, const Shape &shape);
void writeMatExt(Text &text, const Mat &mat);
void writeTexExt(Text &text, const Tex &tex);
void writeTeximgExt(Text &text, const Teximg &teximg);
void writeAnimGroupExt(Text &text, const AnimGroup &group);

/// Writes the sections of the nine version-2 lists in file order, each only where its size in the header is not 0.
void kvWriteKt2Ext(Text &text, const Kis &kis);

// --- Line tables ----------------------------------------------------------------------------------------------------

inline constexpr auto SCENE_LIST_EXT_LINES = lines<SceneListExtHead>({
    "scene_chain_root_link_num %d\n",
    "external_obj_num          %d\n",
    "external_env_num          %d\n",
    "external_cam_num          %d\n",
    "external_light_num        %d\n",
});

/// Flags and counts stand in columns of their own.
inline constexpr auto OBJ_EXT_LINES = lines<ObjExtHead>({
    "obj_render_cycle_type_for_fog %0#10x\n",
    "obj_render_pri_for_fog        %0#10x\n",
    "obj_render_type0_for_fog      %0#10x\n",
    "obj_render_type1_for_fog      %0#10x\n",
    "obj_chain_root_link_num     %d\n",
    "external_lod_obj_num        %d\n",
    "external_obj_num            %d\n",
});

using MatExtTypes = Run<MatExtHead, &MatExtHead::mat_type_for_fog, &MatExtHead::mat_alpha_type1_for_fog>;
inline constexpr auto MAT_EXT_TYPE_LINES = lines<MatExtTypes>({
    "mat_type_for_fog         %0#10x\n",
    "mat_color_type0_for_fog  %0#10x\n",
    "mat_color_type1_for_fog  %0#10x\n",
    "mat_alpha_type0_for_fog  %0#10x\n",
    "mat_alpha_type1_for_fog  %0#10x\n",
});

using MatExtCounts = Run<MatExtHead, &MatExtHead::external_tex_num, &MatExtHead::prim_color_anim_num_for_fog>;
inline constexpr auto MAT_EXT_COUNT_LINES = lines<MatExtCounts>({
    "external_tex_num             %d\n",
    "prim_color_anim_num          %d\n",
    "prim_color_anim_num_for_fog  %d\n",
});

/// The count stands in hexadecimal among the flags.
inline constexpr auto TEX_EXT_LINES = lines<TexExtHead>({
    "tex_filter                  %0#10x\n",
    "use_perspective_correction  %0#10x\n",
    "mipmap_level              %d\n",
    "use_color_palette           %0#10x\n",
    "external_tex_img_num        %0#10x\n",
});

inline constexpr auto TEXIMG_EXT_LINES = lines<TeximgExtHead>({
    "mipmap_max_level  %d\n",
});

using AnimGroupExtCounts =
    Run<AnimGroupExtHead, &AnimGroupExtHead::use_animation_channel, &AnimGroupExtHead::classic_scale_num>;
inline constexpr auto ANIM_GROUP_EXT_LINES = lines<AnimGroupExtCounts>({
    "use animation channel  %0#10x\n",
    "rotate_axis_num        %d\n",
    "rotate_x_num           %d\n",
    "rotate_y_num           %d\n",
    "rotate_z_num           %d\n",
    "orientation_xy_num     %d\n",
    "translation_num        %d\n",
    "unique_scale_num       %d\n",
    "classic_scale_num      %d\n",
});

} // namespace kova
