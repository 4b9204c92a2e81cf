/// The words of animation, collision, switches and names.
///
/// Trailing blanks and odd names in the tables are the format's own.
#pragma once

#include "format/list.h"
#include "kova/behavior.h"

namespace kova {

inline constexpr auto ANIM_LIST_WORDS = listWords({
    "anim_list_tag          %0#10x\n",
    "anim_list_header_size  %d\n",
    "anim_list_size         %d\n",
    "anim_group_num         %d\n",
    "van_ext_blk_size       %d\n",
    "usr_ext_blk_size       %d\n",
});
template <>
inline constexpr auto WORDS<AnimGroupHead> = words<AnimGroupHead>({
    {"anim_group_tag          %0#10x\n", &AnimGroupHead::anim_group_tag, TAG},
    {"this_anim_group_index   %d\n", &AnimGroupHead::this_anim_group_index, OWN_INDEX},
    {"anim_group_header_size  %d\n", &AnimGroupHead::anim_group_header_size, HEADER_SIZE},
    {"anim_group_size         %d\n", &AnimGroupHead::anim_group_size, SIZE},
    {"anim_name_index         %d\n", &AnimGroupHead::anim_name_index, link(To::name)},
    {"type                    %0#10x\n", &AnimGroupHead::type},
    {"frame_rate              %d\n", &AnimGroupHead::frame_rate},
    {"anim_num                %d\n", &AnimGroupHead::anim_num, COUNT},
    {"anim_loop               %d\n", &AnimGroupHead::anim_loop},
    {"rotation matrix order   %0#10x\n", &AnimGroupHead::rotation_matrix_order},
    {"van_ext_blk_size        %d\n", &AnimGroupHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size        %d\n", &AnimGroupHead::usr_ext_blk_size, USR_SIZE},
});

/// The three forms of an animation record.
template <>
inline constexpr auto WORDS<AnimStep> = words<AnimStep>({
    {"anim_tag %0#10x\n", &AnimStep::anim_tag, TAG},
    {"this_anim_index   %d\n", &AnimStep::this_anim_index, OWN_INDEX},
    {"anim_size   %d\n", &AnimStep::anim_size, SIZE},
    {"translate    %#12g  %#12g  %#12g    ; x,y,z\n", &AnimStep::translate},
    {"rotate_axis  %#12g  %#12g  %#12g    ; x,y,z\n", &AnimStep::rotate_axis},
    {"rotate_expand_flag   %0#10x\n", &AnimStep::rotate_expand_flag},
    {"scale  %#12g  %#12g  %#12g    ; x,y,z\n", &AnimStep::scale},
});
template <>
inline constexpr auto WORDS<AnimKeyframe> = words<AnimKeyframe>({
    {"anim_tag         %0#10x\n", &AnimKeyframe::anim_tag, TAG},
    {"this_anim_index  %d\n", &AnimKeyframe::this_anim_index, OWN_INDEX},
    {"anim_size        %d\n", &AnimKeyframe::anim_size, SIZE},
    {"key              %d\n", &AnimKeyframe::key, KEY},
    {"next_key         %d\n", &AnimKeyframe::next_key},
    {"interpolation    %d\n", &AnimKeyframe::interpolation},
    {"translate    %#12g  %#12g  %#12g    ; x,y,z\n", &AnimKeyframe::translate},
    {"rotate_axis  %#12g  %#12g  %#12g    ; x,y,z\n", &AnimKeyframe::rotate_axis},
    {"rotate_expand_flag   %0#10x\n", &AnimKeyframe::rotate_expand_flag},
    {"scale        %#12g  %#12g  %#12g    ; x,y,z\n", &AnimKeyframe::scale},
});
template <>
inline constexpr auto WORDS<AnimNode> = words<AnimNode>({
    {"%0#10x  ", &AnimNode::anim_tag, named("anim_tag", TAG)},
    {"index   %d, ", &AnimNode::this_anim_index, named("this_anim_index", OWN_INDEX)},
    {"size    %d\n", &AnimNode::anim_size, named("anim_size", SIZE)},
    {"lookat= %d\n", &AnimNode::lookat},
    {"upper   %d\n", &AnimNode::upper},
});

inline constexpr auto COLL_LIST_WORDS = listWords({
    "coll_list_tag          %0#10x\n",
    "coll_list_header_size  %d\n",
    "coll_list_size         %d\n",
    "coll_group_num         %d\n",
    "van_ext_blk_size       %d\n",
    "usr_ext_blk_size       %d\n",
});
template <>
inline constexpr auto WORDS<CollGroupHead> = words<CollGroupHead>({
    {"coll_group_tag         %0#10x\n", &CollGroupHead::coll_group_tag, TAG},
    {"this_coll_group_index  %d\n", &CollGroupHead::this_coll_group_index, OWN_INDEX},
    {"coll_group_header      %d\n", &CollGroupHead::coll_group_header, HEADER_SIZE},
    {"coll_group_size        %d\n", &CollGroupHead::coll_group_size, SIZE},
    {"coll_group_name_index  %d\n", &CollGroupHead::coll_group_name_index, link(To::name)},
    {"coll_num               %d\n", &CollGroupHead::coll_num, COUNT},
    {"van_ext_blk_size       %d\n", &CollGroupHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size       %d\n", &CollGroupHead::usr_ext_blk_size, USR_SIZE},
});

/// The line of the type goes on with the word of the kind.
template <>
inline constexpr auto WORDS<CollHead> = words<CollHead>({
    {"coll_tag          %0#10x\n", &CollHead::coll_tag, TAG},
    {"this_coll_index   %d\n", &CollHead::this_coll_index, OWN_INDEX},
    {"coll_header_size  %d\n", &CollHead::coll_header_size, HEADER_SIZE},
    {"coll_size         %d\n", &CollHead::coll_size, SIZE},
    {"coll_name_index   %d\n", &CollHead::coll_name_index, link(To::name)},
    {"coll_type         %0#10x ; ", &CollHead::coll_type},
});

/// The data of the kinds of collision. The tag of a terrain has a blank for its line end, and the last line of a point
/// has no line end: both are meant.
template <>
inline constexpr auto WORDS<CollTerrain> = words<CollTerrain>({
    {"coll_data_tag         %0#10x ", &CollTerrain::coll_data_tag, TAG},
    {"this_coll_data_index  %d\n", &CollTerrain::this_coll_data_index, OWN_INDEX},
    {"coll_data_size        %d\n", &CollTerrain::coll_data_size, SIZE},
    {"x_subdivide           %d\n", &CollTerrain::x_subdivide},
    {"z_subdivide           %d\n", &CollTerrain::z_subdivide},
    {"shape_list_index      %d\n", &CollTerrain::shape_list_index, link(To::shape)},
});
template <>
inline constexpr auto WORDS<CollPoint> = words<CollPoint>({
    {"coll_data_tag         %0#10x\n", &CollPoint::coll_data_tag, TAG},
    {"this_coll_data_index  %d\n", &CollPoint::this_coll_data_index, OWN_INDEX},
    {"coll_data_size        %d\n", &CollPoint::coll_data_size, SIZE},
    {"coll_point    %#12g %#12g %#12g    ; x,y,z", &CollPoint::coll_point},
});
template <>
inline constexpr auto WORDS<CollCircle> = words<CollCircle>({
    {"coll_data_tag         %0#10x\n", &CollCircle::coll_data_tag, TAG},
    {"this_coll_data_index  %d\n", &CollCircle::this_coll_data_index, OWN_INDEX},
    {"coll_data_size        %d\n", &CollCircle::coll_data_size, SIZE},
    {"center        %#12g  %#12g  %#12g    ; x,y,z\n", &CollCircle::center},
    {"normal        %#12g  %#12g  %#12g    ; x,y,z\n", &CollCircle::normal},
    {"radius        %#g\n", &CollCircle::radius},
});
template <>
inline constexpr auto WORDS<CollSphere> = words<CollSphere>({
    {"coll_data_tag         %0#10x\n", &CollSphere::coll_data_tag, TAG},
    {"this_coll_data_index  %d\n", &CollSphere::this_coll_data_index, OWN_INDEX},
    {"coll_data_size        %d\n", &CollSphere::coll_data_size, SIZE},
    {"center        %#12g %#12g  %#12g    ; x,y,z\n", &CollSphere::center},
    {"radius        %#g\n", &CollSphere::radius},
});
template <>
inline constexpr auto WORDS<CollCylinder> = words<CollCylinder>({
    {"coll_data_tag         %0#10x\n", &CollCylinder::coll_data_tag, TAG},
    {"this_coll_data_index  %d\n", &CollCylinder::this_coll_data_index, OWN_INDEX},
    {"coll_data_size        %d\n", &CollCylinder::coll_data_size, SIZE},
    {"center        %#12g  %#12g  %#12g    ; x,y,z\n", &CollCylinder::center},
    {"radius        %#g\n", &CollCylinder::radius},
    {"height        %#g\n", &CollCylinder::height},
});
template <>
inline constexpr auto WORDS<CollBox> = words<CollBox>({
    {"coll_data_tag         %0#10x\n", &CollBox::coll_data_tag, TAG},
    {"this_coll_data_index  %d\n", &CollBox::this_coll_data_index, OWN_INDEX},
    {"coll_data_size        %d\n", &CollBox::coll_data_size, SIZE},
    {"center        %#12g  %#12g  %#12g    ; x,y,z\n", &CollBox::center},
    {"length        %#12g  %#12g  %#12g    ; x,y,z\n", &CollBox::length},
});

inline constexpr auto SWITCH_LIST_WORDS = listWords({
    "switch_list_tag          %0#10x\n",
    "switch_list_header_size  %d\n",
    "switch_list_size         %d\n",
    "switch_num               %d\n",
    "van_ext_blk_size         %d\n",
    "usr_ext_blk_size         %d\n",
});
template <>
inline constexpr auto WORDS<SwitchHead> = words<SwitchHead>({
    {"switch_tag          %0#10x\n", &SwitchHead::switch_tag, TAG},
    {"this_switch_index   %d\n", &SwitchHead::this_switch_index, OWN_INDEX},
    {"switch_size         %d\n", &SwitchHead::switch_size, SIZE},
    {"link_list_type      %0#10x\n", &SwitchHead::link_list_type},
    {"default_link_index  %d\n", &SwitchHead::default_link_index, link(To::any)},
    {"case_node_num       %d\n", &SwitchHead::case_node_num, COUNT},
    {"switch_condition    %d\n", &SwitchHead::switch_condition},
    {"van_ext_blk_size    %d\n", &SwitchHead::van_ext_blk_size, VAN_SIZE},
    {"usr_ext_blk_size    %d\n", &SwitchHead::usr_ext_blk_size, USR_SIZE},
});

/// Also of the external names of a 2.0 file.
inline constexpr auto NAME_LIST_WORDS = listWords({
    "name_list_tag          %0#10x\n",
    "name_list_header_size  %d\n",
    "name_list_size         %d\n",
    "name_num               %d\n",
    "van_ext_blk_size       %d\n",
    "usr_ext_blk_size       %d\n",
});

/// A name prints as its text alone.
template <>
inline constexpr auto WORDS<NameHead> = words<NameHead>({
    unprinted("name_tag", &NameHead::name_tag, TAG),
    unprinted("this_name_index", &NameHead::this_name_index, OWN_INDEX),
    unprinted("name_header_size", &NameHead::name_header_size, HEADER_SIZE),
    unprinted("name_size", &NameHead::name_size, SIZE),
});

/// The decoded maker block of an animation group in a 2.0 file. The references print after the keyframes.
template <>
inline constexpr auto WORDS<AnimGroupExtHead> = words<AnimGroupExtHead>({
    {"use animation channel  %0#10x\n", &AnimGroupExtHead::use_animation_channel},
    {"rotate_axis_num        %d\n", &AnimGroupExtHead::rotate_axis_num, COUNT},
    {"rotate_x_num           %d\n", &AnimGroupExtHead::rotate_x_num, COUNT},
    {"rotate_y_num           %d\n", &AnimGroupExtHead::rotate_y_num, COUNT},
    {"rotate_z_num           %d\n", &AnimGroupExtHead::rotate_z_num, COUNT},
    {"orientation_xy_num     %d\n", &AnimGroupExtHead::orientation_xy_num, COUNT},
    {"translation_num        %d\n", &AnimGroupExtHead::translation_num, COUNT},
    {"unique_scale_num       %d\n", &AnimGroupExtHead::unique_scale_num, COUNT},
    {"classic_scale_num      %d\n", &AnimGroupExtHead::classic_scale_num, COUNT},
    node("orientation constraint", &AnimGroupExtHead::orientation_constraint),
    node("direction constraint", &AnimGroupExtHead::direction_constraint),
    node("upvector constraint", &AnimGroupExtHead::upvector_constraint),
    node("preferred axis constraint", &AnimGroupExtHead::preferred_axis_constraint),
    node("position constraint", &AnimGroupExtHead::position_constraint),
    node("unique scale constraint", &AnimGroupExtHead::unique_scale_constraint),
    node("classic scale constraint", &AnimGroupExtHead::classic_scale_constraint),
    later(external("external orientation constraint", &AnimGroupExtHead::external_orientation_constraint)),
    later(external("external direction constraint", &AnimGroupExtHead::external_direction_constraint)),
    later(external("external upvector constraint", &AnimGroupExtHead::external_upvector_constraint)),
    later(external("external preferred axis constraint", &AnimGroupExtHead::external_preferred_axis_constraint)),
    later(external("external position constraint", &AnimGroupExtHead::external_position_constraint)),
    later(external("external unique scale constraint", &AnimGroupExtHead::external_unique_scale_constraint)),
    later(external("external classic scale constraint", &AnimGroupExtHead::external_classic_scale_constraint)),
});

/// Keyframes.
template <>
inline constexpr auto WORDS<RotateAxis> = words<RotateAxis>({
    {"interpolation type  %0#10x\n", &RotateAxis::interpolation_type},
    {"key  %d\n", &RotateAxis::key, KEY},
    xyz("axis", &RotateAxis::axis),
    {"rotation angle  %#g\n", &RotateAxis::rotation_angle},
    xyz("differential axis", &RotateAxis::differential_axis),
    {"differential rotation angle  %#g\n", &RotateAxis::differential_rotation_angle},
});
template <>
inline constexpr auto WORDS<OrientationXY> = words<OrientationXY>({
    {"interpolation type  %0#10x\n", &OrientationXY::interpolation_type},
    {"key  %d\n", &OrientationXY::key, KEY},
    xyz("x axis", &OrientationXY::x_axis),
    xyz("y axis", &OrientationXY::y_axis),
    xyz("differential x axis", &OrientationXY::differential_x_axis),
    xyz("differential y axis", &OrientationXY::differential_y_axis),
});
template <>
inline constexpr auto WORDS<Translation> = words<Translation>({
    {"interpolation type  %0#10x\n", &Translation::interpolation_type},
    {"key  %d\n", &Translation::key, KEY},
    xyz("translate", &Translation::translate),
    xyz("differential translate", &Translation::differential_translate),
});

template <>
inline constexpr auto WORDS<RotateE> = words<RotateE>({
    {"interpolation type  %0#10x\n", &RotateE::interpolation_type},
    {"key  %d\n", &RotateE::key, KEY},
    {"rotation angle  %#g\n", &RotateE::rotation_angle},
    {"differential rotation angle  %#g\n", &RotateE::differential_rotation_angle},
});
template <>
inline constexpr auto WORDS<Scale> = words<Scale>({
    {"interpolation type  %0#10x\n", &Scale::interpolation_type},
    {"key  %d\n", &Scale::key, KEY},
    xyz("scale", &Scale::scale),
    xyz("differential scale", &Scale::differential_scale),
});

// --- Content --------------------------------------------------------------------------------------------------------

template <class Io> constexpr int content(Io &io, const AnimGroupExtHead &) {
  using Ext = AnimGroupExt;
  return io.run(items<RotateAxis, "rotate_axis", "RotateAxis(%d)\n">, &Ext::rotate_axis, &Ext::rotate_axis_num) &&
         io.run(items<RotateE, "rotate_x", "RotateX(%d)\n">, &Ext::rotate_x, &Ext::rotate_x_num) &&
         io.run(items<RotateE, "rotate_y", "RotateY(%d)\n">, &Ext::rotate_y, &Ext::rotate_y_num) &&
         io.run(items<RotateE, "rotate_z", "RotateZ(%d)\n">, &Ext::rotate_z, &Ext::rotate_z_num) &&
         io.run(items<OrientationXY, "orientation_xy", "OrientationXY(%d)\n">, &Ext::orientation_xy,
                &Ext::orientation_xy_num) &&
         io.run(items<Translation, "translation", "Translation(%d)\n">, &Ext::translation, &Ext::translation_num) &&
         io.run(items<Scale, "unique_scale", "UniqueScale(%d)">, &Ext::unique_scale, &Ext::unique_scale_num) &&
         io.run(items<Scale, "classic_scale", "ClassicScale(%d)">, &Ext::classic_scale, &Ext::classic_scale_num);
}

/// The type chooses the form of the records; other types store none, whatever the count says.
template <class Io> constexpr int records(Io &io, const AnimGroupHead &group) {
  constexpr auto COUNT_OF = &AnimGroup::anim_num;
  switch (group.type) {
  case 0:
  case 2:
    return io.run(items<AnimStep, "step", "Anim(%d)\n">, &AnimGroup::step, COUNT_OF);
  case 3:
    return io.run(items<AnimKeyframe, "keyframe", "Anim(%d)\n">, &AnimGroup::keyframe, COUNT_OF);
  case 4:
    return io.run(items<AnimNode, "node", "Anim(%d)\n">, &AnimGroup::node, COUNT_OF);
  default:
    return io.absent(line<"Anim(%d)\n", "anim">, &AnimGroup::zeroed_anim_num, COUNT_OF);
  }
}
template <class Io> constexpr int content(Io &io, const AnimGroupHead &group) {
  return records(io, group) && io.blocks(maker<AnimGroupExtHead>, &AnimGroup::ext);
}

/// Calls `visit` with the data of a collision as its kind has it, if it is a kind that has data and is known.
template <class Visit> void withCollData(const Coll &coll, Visit visit) {
  switch (coll.coll_type) {
  case 0x10:
    return visit(collData<CollTerrain>(coll));
  case 0x20:
    return visit(collData<CollPoint>(coll));
  case 0x21:
    return visit(collData<CollCircle>(coll));
  case 0x22:
    return visit(collData<CollSphere>(coll));
  case 0x23:
    return visit(collData<CollCylinder>(coll));
  case 0x24:
    return visit(collData<CollBox>(coll));
  default:
    return;
  }
}

/// A collision takes up what its own sizes say; the blocks behind it are as long as its group says.
template <class Io> constexpr int content(Io &io, const CollHead &) {
  return io.data(&Coll::data) && io.blocksAround(&Coll::group_ext_blk);
}

template <class Io> constexpr int content(Io &io, const CollGroupHead &) {
  return io.array(line<"coll_num_byte[%d]  %d \n">, &CollGroup::coll_num_byte, &CollGroup::coll_num) &&
         io.records(items<CollHead, "coll", "Coll(%d)\n", COLL_TAG>, &CollGroup::coll, &CollGroup::coll_num);
}

template <class Io> constexpr int content(Io &io, const SwitchHead &) {
  return io.array(line<"case_val[%d]  %d\n">, &Switch::case_val, &Switch::case_node_num) &&
         io.array(line<"case_dest_index[%d]  %d\n">, &Switch::case_dest_index, &Switch::case_node_num, To::any) &&
         io.blocks();
}

/// Only the whole words of a text are held; one of negative length is empty.
template <class Io> constexpr int content(Io &io, const NameHead &name) {
  return io.text(&Name::text, static_cast<std::uint64_t>(std::max(kvGetNamelen(name), 0)) / sizeof(Word));
}

template <>
struct ListFormat<AnimList>
    : CommonList<AnimGroup, ANIM_LIST_WORDS, "anim_group_num_byte[%d]  %d \n",
                 items<AnimGroupHead, "element", "AnimGroup(%d)\n", ANIM_LIST_TAG + ELEMENT_KIND>> {};

template <>
struct ListFormat<CollList>
    : CommonList<CollGroup, COLL_LIST_WORDS, "coll_group_num_byte[%d]  %d \n",
                 items<CollGroupHead, "element", "CollGroup(%d)\n", COLL_LIST_TAG + ELEMENT_KIND>> {};

template <>
struct ListFormat<SwitchList>
    : CommonList<Switch, SWITCH_LIST_WORDS, "switch_num_byte[%d]    %d\n",
                 items<SwitchHead, "element", "Switch(%d)\n", SWITCH_LIST_TAG + ELEMENT_KIND>> {};

/// Also the list of external names, whose tags are others.
template <>
struct ListFormat<NameList> : CommonList<Name, NAME_LIST_WORDS, "name_num_byte[%d]    %d\n",
                                         items<NameHead, "element", "Name(%d)\n", NAME_LIST_TAG + ELEMENT_KIND>> {};

} // namespace kova
