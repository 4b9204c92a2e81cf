#include "kova/behavior.h"

#include "reader/elements.h"
#include "reader/makerblock.h"
#include "reader/names.h"

#include <algorithm>

namespace kova {

namespace {

int readAnims(Cursor &cursor, AnimGroup &group) {
  switch (group.type) {
  case 0:
  case 2:
    return readRun(cursor, group.step, group.anim_num);
  case 3:
    return readRun(cursor, group.keyframe, group.anim_num);
  case 4:
    return readRun(cursor, group.node, group.anim_num);
  default:
    return takeZeroed(cursor, group.zeroed_anim_num, group.anim_num);
  }
}

/// Ten words are taken whatever the kind; those past the end of the list are 0. They do not move the cursor.
void readCollData(Cursor at, CollData &data) {
  const std::uint64_t there = bytesLeft(at) / sizeof(Word) * sizeof(Word);
  copyBytes(at, data.data(), static_cast<std::size_t>(std::min<std::uint64_t>(sizeof data, there)));
}

/// The group's blocks follow every collision; those of the last one are the group's.
int readGroupBlocks(Cursor &cursor, Coll &coll, CollGroup &group) {
  const int ok = readExtBlk(cursor, group);
  if (group.ext_blk.words)
    coll.group_ext_blk.words = std::make_unique<ExtBlkWords>(*group.ext_blk.words);
  return ok;
}

int readColl(Cursor &cursor, Coll &coll, CollGroup &group) {
  if (!readHead<CollHead>(cursor, coll, COLL_TAG))
    return 0;
  readCollData(cursor, coll.data);
  const std::int64_t data_bytes =
      std::int64_t{static_cast<Index>(coll.coll_size)} - static_cast<Index>(coll.coll_header_size);
  return moveBy(cursor, data_bytes) && readGroupBlocks(cursor, coll, group);
}

int readCollGroup(Cursor &cursor, CollGroup &group) {
  return readHead<CollGroupHead>(cursor, group, COLL_LIST_TAG + ELEMENT_KIND) &&
         kvReadArray(cursor, group.coll_num_byte, group.coll_num) &&
         readElements<CollHead>(cursor, group.coll, group.coll_num, sizeof(CollHead),
                                [&group](Cursor &at, Coll &coll) { return readColl(at, coll, group); });
}

/// Both name lists are read here, and a name may carry the tag of either whatever its list's tag is.
bool isOneOf(Word tag, Word kind) { return tag == NAME_LIST_TAG + kind || tag == EXTERNAL_NAME_LIST_TAG + kind; }

/// The message shows the list's tag, also if the wrong one is a name's.
int sayIrregular(const Place &place, Word found, Word list_tag) { return report<"name-tag">(place, {found}, list_tag); }

} // namespace

int kvSetupAnimList(Cursor &cursor, AnimList &list) {
  return readList<AnimGroupHead>(cursor, list, ANIM_LIST_TAG, [](Cursor &at, AnimGroup &group) {
    return readHead<AnimGroupHead>(at, group, ANIM_LIST_TAG + ELEMENT_KIND) && readAnims(at, group) &&
           readExtBlk(at, group);
  });
}

int kvSetupCollList(Cursor &cursor, CollList &list) {
  return readList<CollGroupHead>(cursor, list, COLL_LIST_TAG, readCollGroup);
}

int kvSetupSwitchList(Cursor &cursor, SwitchList &list) {
  return readList<SwitchHead>(cursor, list, SWITCH_LIST_TAG, [](Cursor &at, Switch &node) {
    return readHead<SwitchHead>(at, node, SWITCH_LIST_TAG + ELEMENT_KIND) &&
           kvReadArray(at, node.case_val, node.case_node_num) &&
           kvReadArray(at, node.case_dest_index, node.case_node_num) && readExtBlk(at, node);
  });
}

int kvSetupNameList(Cursor &cursor, NameList &list) {
  return readListTagged<NameHead>(
      cursor, list, sizeof(NameHead),
      [](const Place &place, Word found) { return isOneOf(found, 0) ? 1 : sayIrregular(place, found, found); },
      [&list](Cursor &at, Name &name) {
        NameHead &head = name;
        if (!readFixed(at, head))
          return 0;
        if (!isOneOf(name.name_tag, ELEMENT_KIND))
          return sayIrregular(placeBefore(at, sizeof(NameHead)), name.name_tag, list.list_tag);
        const Index length = kvGetNamelen(name);
        return kvReadArray(at, name.text, length < 0 ? 0 : static_cast<Word>(length) / sizeof(Word));
      });
}

int kvSetAnim0(AnimList &) { return 1; }
int kvSetColl0(CollList &) { return 1; }
int kvSetSwitch0(SwitchList &) { return 1; }
int kvSetName0(NameList &) { return 1; }

Index kvGetNamelen(const NameHead &name) { return static_cast<Index>(name.name_size - name.name_header_size); }

std::size_t unpackName(const Name &name, std::size_t first, char *to, std::size_t room) {
  const Index length = kvGetNamelen(name);
  const std::size_t held = std::min(name.text.size() * sizeof(Word), static_cast<std::size_t>(std::max(length, 0)));
  const std::size_t end = std::min(held, first + room);
  for (std::size_t i = first; i < end; ++i) {
    const char character = static_cast<char>(name.text[i / sizeof(Word)] >> (8 * (3 - i % sizeof(Word))) & 0xff);
    if (character == '\0')
      return i - first;
    to[i - first] = character == ' ' ? '_' : character;
  }
  return end > first ? end - first : 0;
}

std::string kvGetName(const Name &name) {
  try {
    std::string text(name.text.size() * sizeof(Word), '\0');
    text.resize(unpackName(name, 0, text.data(), text.size()));
    return text;
  } catch (const std::exception &) {
    return {};
  }
}

int kvSetupRotateE(Cursor &cursor, std::vector<RotateE> &destination, Word count) {
  return setupRun(cursor, destination, count);
}

int kvSetupScale(Cursor &cursor, std::vector<Scale> &destination, Word count) {
  return setupRun(cursor, destination, count);
}

int kvSetupAnimGroupExt(AnimList &list) {
  return setupBlocks<AnimGroupExtHead>(list, "AnimList", [](Cursor &cursor, AnimGroupExt &ext, const AnimGroup &) {
    return setupRun(cursor, ext.rotate_axis, ext.rotate_axis_num) &&
           kvSetupRotateE(cursor, ext.rotate_x, ext.rotate_x_num) &&
           kvSetupRotateE(cursor, ext.rotate_y, ext.rotate_y_num) &&
           kvSetupRotateE(cursor, ext.rotate_z, ext.rotate_z_num) &&
           setupRun(cursor, ext.orientation_xy, ext.orientation_xy_num) &&
           setupRun(cursor, ext.translation, ext.translation_num) &&
           kvSetupScale(cursor, ext.unique_scale, ext.unique_scale_num) &&
           kvSetupScale(cursor, ext.classic_scale, ext.classic_scale_num);
  });
}

Word kvSizeofAnimGroupExt(const AnimGroupExtHead &ext) {
  return blockBytes<AnimGroupExtHead>(1) + blockBytes<RotateAxis>(ext.rotate_axis_num) +
         blockBytes<RotateE>(ext.rotate_x_num + ext.rotate_y_num + ext.rotate_z_num) +
         blockBytes<OrientationXY>(ext.orientation_xy_num) + blockBytes<Translation>(ext.translation_num) +
         blockBytes<Scale>(ext.unique_scale_num + ext.classic_scale_num);
}

} // namespace kova
