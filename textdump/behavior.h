/// The line tables and the writers of animation, collision, switches and names.
///
/// Trailing blanks and odd names in the tables are the format's own.
#pragma once

#include "textdump/lines.h"

namespace kova {

// --- Line tables ----------------------------------------------------------------------------------------------------

inline constexpr auto ANIM_LIST_LINES = lines<ListHead>({
    {"anim_list_tag          %0#10x\n", &ListHead::list_tag},
    {"anim_list_header_size  %d\n", &ListHead::list_header_size},
    {"anim_list_size         %d\n", &ListHead::list_size},
    {"anim_group_num         %d\n", &ListHead::num},
    {"van_ext_blk_size       %d\n", &ListHead::van_ext_blk_size},
    {"usr_ext_blk_size       %d\n", &ListHead::usr_ext_blk_size},
});
inline constexpr auto ANIM_GROUP_LINES = lines<AnimGroupHead>({
    {"anim_group_tag          %0#10x\n", &AnimGroupHead::anim_group_tag},
    {"this_anim_group_index   %d\n", &AnimGroupHead::this_anim_group_index},
    {"anim_group_header_size  %d\n", &AnimGroupHead::anim_group_header_size},
    {"anim_group_size         %d\n", &AnimGroupHead::anim_group_size},
    {"anim_name_index         %d\n", &AnimGroupHead::anim_name_index},
    {"type                    %0#10x\n", &AnimGroupHead::type},
    {"frame_rate              %d\n", &AnimGroupHead::frame_rate},
    {"anim_num                %d\n", &AnimGroupHead::anim_num},
    {"anim_loop               %d\n", &AnimGroupHead::anim_loop},
    {"rotation matrix order   %0#10x\n", &AnimGroupHead::rotation_matrix_order},
    {"van_ext_blk_size        %d\n", &AnimGroupHead::van_ext_blk_size},
    {"usr_ext_blk_size        %d\n", &AnimGroupHead::usr_ext_blk_size},
});

/// The three forms of an animation record.
inline constexpr auto ANIM_STEP_LINES = lines<AnimStep>({
    {"anim_tag %0#10x\n", &AnimStep::anim_tag},
    {"this_anim_index   %d\n", &AnimStep::this_anim_index},
    {"anim_size   %d\n", &AnimStep::anim_size},
    {"translate    %#12g  %#12g  %#12g    ; x,y,z\n", &AnimStep::translate},
    {"rotate_axis  %#12g  %#12g  %#12g    ; x,y,z\n", &AnimStep::rotate_axis},
    {"rotate_expand_flag   %0#10x\n", &AnimStep::rotate_expand_flag},
    {"scale  %#12g  %#12g  %#12g    ; x,y,z\n", &AnimStep::scale},
});
inline constexpr auto ANIM_KEYFRAME_LINES = lines<AnimKeyframe>({
    {"anim_tag         %0#10x\n", &AnimKeyframe::anim_tag},
    {"this_anim_index  %d\n", &AnimKeyframe::this_anim_index},
    {"anim_size        %d\n", &AnimKeyframe::anim_size},
    {"key              %d\n", &AnimKeyframe::key},
    {"next_key         %d\n", &AnimKeyframe::next_key},
    {"interpolation    %d\n", &AnimKeyframe::interpolation},
    {"translate    %#12g  %#12g  %#12g    ; x,y,z\n", &AnimKeyframe::translate},
    {"rotate_axis  %#12g  %#12g  %#12g    ; x,y,z\n", &AnimKeyframe::rotate_axis},
    {"rotate_expand_flag   %0#10x\n", &AnimKeyframe::rotate_expand_flag},
    {"scale        %#12g  %#12g  %#12g    ; x,y,z\n", &AnimKeyframe::scale},
});
inline constexpr auto ANIM_NODE_LINES = lines<AnimNode>({
    {"%0#10x  ", &AnimNode::anim_tag},
    {"index   %d, ", &AnimNode::this_anim_index},
    {"size    %d\n", &AnimNode::anim_size},
    {"lookat= %d\n", &AnimNode::lookat},
    {"upper   %d\n", &AnimNode::upper},
});

inline constexpr auto COLL_LIST_LINES = lines<ListHead>({
    {"coll_list_tag          %0#10x\n", &ListHead::list_tag},
    {"coll_list_header_size  %d\n", &ListHead::list_header_size},
    {"coll_list_size         %d\n", &ListHead::list_size},
    {"coll_group_num         %d\n", &ListHead::num},
    {"van_ext_blk_size       %d\n", &ListHead::van_ext_blk_size},
    {"usr_ext_blk_size       %d\n", &ListHead::usr_ext_blk_size},
});
inline constexpr auto COLL_GROUP_LINES = lines<CollGroupHead>({
    {"coll_group_tag         %0#10x\n", &CollGroupHead::coll_group_tag},
    {"this_coll_group_index  %d\n", &CollGroupHead::this_coll_group_index},
    {"coll_group_header      %d\n", &CollGroupHead::coll_group_header},
    {"coll_group_size        %d\n", &CollGroupHead::coll_group_size},
    {"coll_group_name_index  %d\n", &CollGroupHead::coll_group_name_index},
    {"coll_num               %d\n", &CollGroupHead::coll_num},
    {"van_ext_blk_size       %d\n", &CollGroupHead::van_ext_blk_size},
    {"usr_ext_blk_size       %d\n", &CollGroupHead::usr_ext_blk_size},
});

/// The line of the type goes on with the word of the kind.
inline constexpr auto COLL_LINES = lines<CollHead>({
    {"coll_tag          %0#10x\n", &CollHead::coll_tag},
    {"this_coll_index   %d\n", &CollHead::this_coll_index},
    {"coll_header_size  %d\n", &CollHead::coll_header_size},
    {"coll_size         %d\n", &CollHead::coll_size},
    {"coll_name_index   %d\n", &CollHead::coll_name_index},
    {"coll_type         %0#10x ; ", &CollHead::coll_type},
});

/// The data of the kinds of collision. The tag of a terrain has a blank for its line end, and the last line of a point
/// has no line end: both are meant.
inline constexpr auto TERRAIN_LINES = lines<CollTerrain>({
    {"coll_data_tag         %0#10x ", &CollTerrain::coll_data_tag},
    {"this_coll_data_index  %d\n", &CollTerrain::this_coll_data_index},
    {"coll_data_size        %d\n", &CollTerrain::coll_data_size},
    {"x_subdivide           %d\n", &CollTerrain::x_subdivide},
    {"z_subdivide           %d\n", &CollTerrain::z_subdivide},
    {"shape_list_index      %d\n", &CollTerrain::shape_list_index},
});
inline constexpr auto POINT_LINES = lines<CollPoint>({
    {"coll_data_tag         %0#10x\n", &CollPoint::coll_data_tag},
    {"this_coll_data_index  %d\n", &CollPoint::this_coll_data_index},
    {"coll_data_size        %d\n", &CollPoint::coll_data_size},
    {"coll_point    %#12g %#12g %#12g    ; x,y,z", &CollPoint::coll_point},
});
inline constexpr auto CIRCLE_LINES = lines<CollCircle>({
    {"coll_data_tag         %0#10x\n", &CollCircle::coll_data_tag},
    {"this_coll_data_index  %d\n", &CollCircle::this_coll_data_index},
    {"coll_data_size        %d\n", &CollCircle::coll_data_size},
    {"center        %#12g  %#12g  %#12g    ; x,y,z\n", &CollCircle::center},
    {"normal        %#12g  %#12g  %#12g    ; x,y,z\n", &CollCircle::normal},
    {"radius        %#g\n", &CollCircle::radius},
});
inline constexpr auto SPHERE_LINES = lines<CollSphere>({
    {"coll_data_tag         %0#10x\n", &CollSphere::coll_data_tag},
    {"this_coll_data_index  %d\n", &CollSphere::this_coll_data_index},
    {"coll_data_size        %d\n", &CollSphere::coll_data_size},
    {"center        %#12g %#12g  %#12g    ; x,y,z\n", &CollSphere::center},
    {"radius        %#g\n", &CollSphere::radius},
});
inline constexpr auto CYLINDER_LINES = lines<CollCylinder>({
    {"coll_data_tag         %0#10x\n", &CollCylinder::coll_data_tag},
    {"this_coll_data_index  %d\n", &CollCylinder::this_coll_data_index},
    {"coll_data_size        %d\n", &CollCylinder::coll_data_size},
    {"center        %#12g  %#12g  %#12g    ; x,y,z\n", &CollCylinder::center},
    {"radius        %#g\n", &CollCylinder::radius},
    {"height        %#g\n", &CollCylinder::height},
});
inline constexpr auto BOX_LINES = lines<CollBox>({
    {"coll_data_tag         %0#10x\n", &CollBox::coll_data_tag},
    {"this_coll_data_index  %d\n", &CollBox::this_coll_data_index},
    {"coll_data_size        %d\n", &CollBox::coll_data_size},
    {"center        %#12g  %#12g  %#12g    ; x,y,z\n", &CollBox::center},
    {"length        %#12g  %#12g  %#12g    ; x,y,z\n", &CollBox::length},
});

inline constexpr auto SWITCH_LIST_LINES = lines<ListHead>({
    {"switch_list_tag          %0#10x\n", &ListHead::list_tag},
    {"switch_list_header_size  %d\n", &ListHead::list_header_size},
    {"switch_list_size         %d\n", &ListHead::list_size},
    {"switch_num               %d\n", &ListHead::num},
    {"van_ext_blk_size         %d\n", &ListHead::van_ext_blk_size},
    {"usr_ext_blk_size         %d\n", &ListHead::usr_ext_blk_size},
});
inline constexpr auto SWITCH_LINES = lines<SwitchHead>({
    {"switch_tag          %0#10x\n", &SwitchHead::switch_tag},
    {"this_switch_index   %d\n", &SwitchHead::this_switch_index},
    {"switch_size         %d\n", &SwitchHead::switch_size},
    {"link_list_type      %0#10x\n", &SwitchHead::link_list_type},
    {"default_link_index  %d\n", &SwitchHead::default_link_index},
    {"case_node_num       %d\n", &SwitchHead::case_node_num},
    {"switch_condition    %d\n", &SwitchHead::switch_condition},
    {"van_ext_blk_size    %d\n", &SwitchHead::van_ext_blk_size},
    {"usr_ext_blk_size    %d\n", &SwitchHead::usr_ext_blk_size},
});

/// Also of the external names of a 2.0 file.
inline constexpr auto NAME_LIST_LINES = lines<ListHead>({
    {"name_list_tag          %0#10x\n", &ListHead::list_tag},
    {"name_list_header_size  %d\n", &ListHead::list_header_size},
    {"name_list_size         %d\n", &ListHead::list_size},
    {"name_num               %d\n", &ListHead::num},
    {"van_ext_blk_size       %d\n", &ListHead::van_ext_blk_size},
    {"usr_ext_blk_size       %d\n", &ListHead::usr_ext_blk_size},
});

/// The decoded maker block of an animation group in a 2.0 file. The references print after the keyframes.
inline constexpr auto ANIM_GROUP_EXT_LINES = lines<AnimGroupExtHead>({
    {"use animation channel  %0#10x\n", &AnimGroupExtHead::use_animation_channel},
    {"rotate_axis_num        %d\n", &AnimGroupExtHead::rotate_axis_num},
    {"rotate_x_num           %d\n", &AnimGroupExtHead::rotate_x_num},
    {"rotate_y_num           %d\n", &AnimGroupExtHead::rotate_y_num},
    {"rotate_z_num           %d\n", &AnimGroupExtHead::rotate_z_num},
    {"orientation_xy_num     %d\n", &AnimGroupExtHead::orientation_xy_num},
    {"translation_num        %d\n", &AnimGroupExtHead::translation_num},
    {"unique_scale_num       %d\n", &AnimGroupExtHead::unique_scale_num},
    {"classic_scale_num      %d\n", &AnimGroupExtHead::classic_scale_num},
    nodeIndexLines("orientation constraint", &AnimGroupExtHead::orientation_constraint),
    nodeIndexLines("direction constraint", &AnimGroupExtHead::direction_constraint),
    nodeIndexLines("upvector constraint", &AnimGroupExtHead::upvector_constraint),
    nodeIndexLines("preferred axis constraint", &AnimGroupExtHead::preferred_axis_constraint),
    nodeIndexLines("position constraint", &AnimGroupExtHead::position_constraint),
    nodeIndexLines("unique scale constraint", &AnimGroupExtHead::unique_scale_constraint),
    nodeIndexLines("classic scale constraint", &AnimGroupExtHead::classic_scale_constraint),
    later(externalLines("external orientation constraint", &AnimGroupExtHead::external_orientation_constraint)),
    later(externalLines("external direction constraint", &AnimGroupExtHead::external_direction_constraint)),
    later(externalLines("external upvector constraint", &AnimGroupExtHead::external_upvector_constraint)),
    later(externalLines("external preferred axis constraint", &AnimGroupExtHead::external_preferred_axis_constraint)),
    later(externalLines("external position constraint", &AnimGroupExtHead::external_position_constraint)),
    later(externalLines("external unique scale constraint", &AnimGroupExtHead::external_unique_scale_constraint)),
    later(externalLines("external classic scale constraint", &AnimGroupExtHead::external_classic_scale_constraint)),
});

/// Keyframes; those that other lists share stand in lines.h.
inline constexpr auto ROTATE_AXIS_LINES = lines<RotateAxis>({
    {"interpolation type  %0#10x\n", &RotateAxis::interpolation_type},
    {"key  %d\n", &RotateAxis::key},
    xyzLine("axis", &RotateAxis::axis),
    {"rotation angle  %#g\n", &RotateAxis::rotation_angle},
    xyzLine("differential axis", &RotateAxis::differential_axis),
    {"differential rotation angle  %#g\n", &RotateAxis::differential_rotation_angle},
});
inline constexpr auto ORIENTATION_XY_LINES = lines<OrientationXY>({
    {"interpolation type  %0#10x\n", &OrientationXY::interpolation_type},
    {"key  %d\n", &OrientationXY::key},
    xyzLine("x axis", &OrientationXY::x_axis),
    xyzLine("y axis", &OrientationXY::y_axis),
    xyzLine("differential x axis", &OrientationXY::differential_x_axis),
    xyzLine("differential y axis", &OrientationXY::differential_y_axis),
});
inline constexpr auto TRANSLATION_LINES = lines<Translation>({
    {"interpolation type  %0#10x\n", &Translation::interpolation_type},
    {"key  %d\n", &Translation::key},
    xyzLine("translate", &Translation::translate),
    xyzLine("differential translate", &Translation::differential_translate),
});

// --- Writers --------------------------------------------------------------------------------------------------------

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
