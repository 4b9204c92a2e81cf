/// The dump sections of animation, collision, switches and names.
///
/// Trailing blanks and odd names in the tables are the format's own. A vector takes three entries and one line.
#pragma once

#include "kova/behavior.h"
#include "textdump/text.h"

#include <array>

namespace kova {

// One line to a word.

inline constexpr auto ANIM_LIST_LINES = lines<ListHead>({
    "anim_list_tag          %0#10x\n",
    "anim_list_header_size  %d\n",
    "anim_list_size         %d\n",
    "anim_group_num         %d\n",
    "van_ext_blk_size       %d\n",
    "usr_ext_blk_size       %d\n",
});
inline constexpr auto ANIM_GROUP_LINES = lines<AnimGroupHead>({
    "anim_group_tag          %0#10x\n",
    "this_anim_group_index   %d\n",
    "anim_group_header_size  %d\n",
    "anim_group_size         %d\n",
    "anim_name_index         %d\n",
    "type                    %0#10x\n",
    "frame_rate              %d\n",
    "anim_num                %d\n",
    "anim_loop               %d\n",
    "rotation matrix order   %0#10x\n",
    "van_ext_blk_size        %d\n",
    "usr_ext_blk_size        %d\n",
});

/// The three forms of an animation record.
inline constexpr auto ANIM_STEP_LINES = lines<AnimStep>({
    "anim_tag %0#10x\n",
    "this_anim_index   %d\n",
    "anim_size   %d\n",
    "translate    %#12g  ",
    "%#12g  ",
    "%#12g    ; x,y,z\n",
    "rotate_axis  %#12g  ",
    "%#12g  ",
    "%#12g    ; x,y,z\n",
    "rotate_expand_flag   %0#10x\n",
    "scale  %#12g  ",
    "%#12g  ",
    "%#12g    ; x,y,z\n",
});
inline constexpr auto ANIM_KEYFRAME_LINES = lines<AnimKeyframe>({
    "anim_tag         %0#10x\n",
    "this_anim_index  %d\n",
    "anim_size        %d\n",
    "key              %d\n",
    "next_key         %d\n",
    "interpolation    %d\n",
    "translate    %#12g  ",
    "%#12g  ",
    "%#12g    ; x,y,z\n",
    "rotate_axis  %#12g  ",
    "%#12g  ",
    "%#12g    ; x,y,z\n",
    "rotate_expand_flag   %0#10x\n",
    "scale        %#12g  ",
    "%#12g  ",
    "%#12g    ; x,y,z\n",
});
inline constexpr auto ANIM_NODE_LINES = lines<AnimNode>({
    "%0#10x  ",
    "index   %d, ",
    "size    %d\n",
    "lookat= %d\n",
    "upper   %d\n",
});

inline constexpr auto COLL_LIST_LINES = lines<ListHead>({
    "coll_list_tag          %0#10x\n",
    "coll_list_header_size  %d\n",
    "coll_list_size         %d\n",
    "coll_group_num         %d\n",
    "van_ext_blk_size       %d\n",
    "usr_ext_blk_size       %d\n",
});
inline constexpr auto COLL_GROUP_LINES = lines<CollGroupHead>({
    "coll_group_tag         %0#10x\n",
    "this_coll_group_index  %d\n",
    "coll_group_header      %d\n",
    "coll_group_size        %d\n",
    "coll_group_name_index  %d\n",
    "coll_num               %d\n",
    "van_ext_blk_size       %d\n",
    "usr_ext_blk_size       %d\n",
});

/// The line of the type goes on with the word of the kind.
inline constexpr auto COLL_LINES = lines<CollHead>({
    "coll_tag          %0#10x\n",
    "this_coll_index   %d\n",
    "coll_header_size  %d\n",
    "coll_size         %d\n",
    "coll_name_index   %d\n",
    "coll_type         %0#10x ; ",
});

/// The data of the kinds of collision, as much of it as each kind has. The tag of a terrain has a blank for its line
/// end, and the last line of a point has no line end: both are meant.
inline constexpr auto TERRAIN_LINES = lines<std::array<Word, 6>>({
    "coll_data_tag         %0#10x ",
    "this_coll_data_index  %d\n",
    "coll_data_size        %d\n",
    "x_subdivide           %d\n",
    "z_subdivide           %d\n",
    "shape_list_index      %d\n",
});
inline constexpr auto POINT_LINES = lines<std::array<Word, 6>>({
    "coll_data_tag         %0#10x\n",
    "this_coll_data_index  %d\n",
    "coll_data_size        %d\n",
    "coll_point    %#12g ",
    "%#12g ",
    "%#12g    ; x,y,z",
});
inline constexpr auto CIRCLE_LINES = lines<std::array<Word, 10>>({
    "coll_data_tag         %0#10x\n",
    "this_coll_data_index  %d\n",
    "coll_data_size        %d\n",
    "center        %#12g  ",
    "%#12g  ",
    "%#12g    ; x,y,z\n",
    "normal        %#12g  ",
    "%#12g  ",
    "%#12g    ; x,y,z\n",
    "radius        %#g\n",
});
inline constexpr auto SPHERE_LINES = lines<std::array<Word, 7>>({
    "coll_data_tag         %0#10x\n",
    "this_coll_data_index  %d\n",
    "coll_data_size        %d\n",
    "center        %#12g ",
    "%#12g  ",
    "%#12g    ; x,y,z\n",
    "radius        %#g\n",
});
inline constexpr auto CYLINDER_LINES = lines<std::array<Word, 8>>({
    "coll_data_tag         %0#10x\n",
    "this_coll_data_index  %d\n",
    "coll_data_size        %d\n",
    "center        %#12g  ",
    "%#12g  ",
    "%#12g    ; x,y,z\n",
    "radius        %#g\n",
    "height        %#g\n",
});
inline constexpr auto BOX_LINES = lines<std::array<Word, 9>>({
    "coll_data_tag         %0#10x\n",
    "this_coll_data_index  %d\n",
    "coll_data_size        %d\n",
    "center        %#12g  ",
    "%#12g  ",
    "%#12g    ; x,y,z\n",
    "length        %#12g  ",
    "%#12g  ",
    "%#12g    ; x,y,z\n",
});

inline constexpr auto SWITCH_LIST_LINES = lines<ListHead>({
    "switch_list_tag          %0#10x\n",
    "switch_list_header_size  %d\n",
    "switch_list_size         %d\n",
    "switch_num               %d\n",
    "van_ext_blk_size         %d\n",
    "usr_ext_blk_size         %d\n",
});
inline constexpr auto SWITCH_LINES = lines<SwitchHead>({
    "switch_tag          %0#10x\n",
    "this_switch_index   %d\n",
    "switch_size         %d\n",
    "link_list_type      %0#10x\n",
    "default_link_index  %d\n",
    "case_node_num       %d\n",
    "switch_condition    %d\n",
    "van_ext_blk_size    %d\n",
    "usr_ext_blk_size    %d\n",
});

/// Also of the external names of a 2.0 file.
inline constexpr auto NAME_LIST_LINES = lines<ListHead>({
    "name_list_tag          %0#10x\n",
    "name_list_header_size  %d\n",
    "name_list_size         %d\n",
    "name_num               %d\n",
    "van_ext_blk_size       %d\n",
    "usr_ext_blk_size       %d\n",
});

/// Whole sections of a 1.0 dump.
void kvWriteKtAnimList1(Text &text, const AnimList &list);
void kvWriteKtCollList1(Text &text, const CollList &list);
void kvWriteKtSwitchList1(Text &text, const SwitchList &list);
void kvWriteKtNameList1(Text &text, const NameList &list);

/// Whole sections of a 2.0 dump: only animation has decoded maker blocks, the others look as in a 1.0 dump.
void kvWriteKtAnimList(Text &text, const AnimList &list);
void kvWriteKtCollList(Text &text, const CollList &list);
void kvWriteKtSwitchList(Text &text, const SwitchList &list);
void kvWriteKtNameList(Text &text, const NameList &list);

/// The section of a list of names under the given name of opener and closer: the external names share it.
void writeNameSection(Text &text, const NameList &list, const char *name);

/// Opener, header lines and size table; of names without the opener, which the section prints.
void kvWriteKtAnimListFix1(Text &text, const AnimList &list);
void kvWriteKtCollListFix1(Text &text, const CollList &list);
void kvWriteKtSwitchListFix1(Text &text, const SwitchList &list);
void kvWriteKtNameListFix1(Text &text, const NameList &list);

/// Heading, fields, arrays and sub-records of one element, without its blocks.
void kvWriteKtAnimGroupFix1(Text &text, const AnimGroup &group, Index number);
void kvWriteKtCollGroupFix1(Text &text, const CollGroup &group, Index number);
void kvWriteKtSwitchFix1(Text &text, const Switch &node, Index number);

} // namespace kova
