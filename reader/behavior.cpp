#include "kova/behavior.h"

#include "format/behavior.h"
#include "reader/elements.h"
#include "reader/makerblock.h"
#include "reader/names.h"

#include <algorithm>

namespace kova {

void readCollData(Cursor at, CollData &data) {
  const std::uint64_t there = bytesLeft(at) / sizeof(Word) * sizeof(Word);
  copyBytes(at, data.data(), static_cast<std::size_t>(std::min<std::uint64_t>(sizeof data, there)));
}

int nameTagAt(const Place &place, Word found, Word expected, Word list_tag) {
  const bool is_right = found == expected || found == expected - NAME_LIST_TAG + EXTERNAL_NAME_LIST_TAG;
  return is_right ? 1 : report<"name-tag">(place, {found}, list_tag);
}

int kvSetupAnimList(Cursor &cursor, AnimList &list) { return readList(cursor, list, ANIM_LIST_TAG); }
int kvSetupCollList(Cursor &cursor, CollList &list) { return readList(cursor, list, COLL_LIST_TAG); }
int kvSetupSwitchList(Cursor &cursor, SwitchList &list) { return readList(cursor, list, SWITCH_LIST_TAG); }
int kvSetupNameList(Cursor &cursor, NameList &list) { return readList(cursor, list, NAME_LIST_TAG); }

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

int kvSetupAnimGroupExt(AnimList &list) { return setupBlocks<AnimGroupExtHead>(list, "AnimList"); }

Word kvSizeofAnimGroupExt(const AnimGroupExtHead &ext) {
  return blockBytes<AnimGroupExtHead>(1) + blockBytes<RotateAxis>(ext.rotate_axis_num) +
         blockBytes<RotateE>(ext.rotate_x_num + ext.rotate_y_num + ext.rotate_z_num) +
         blockBytes<OrientationXY>(ext.orientation_xy_num) + blockBytes<Translation>(ext.translation_num) +
         blockBytes<Scale>(ext.unique_scale_num + ext.classic_scale_num);
}

} // namespace kova
