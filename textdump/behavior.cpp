#include "textdump/behavior.h"

#include "reader/names.h"
#include "textdump/content.h"

namespace kova {

namespace {

constexpr Section<AnimGroup> ANIM_SECTION = {"AnimList", writeElement<AnimList>};
constexpr Section<CollGroup> COLL_SECTION = {"CollList", kvWriteKtCollGroupFix1};
constexpr Section<Switch> SWITCH_SECTION = {"SwitchList", writeElement<SwitchList>};

} // namespace

// --- AnimList --------------------------------------------------------------------------------------------------------

namespace {

void writeAnimGroupExt(Text &text, const AnimGroup &group) {
  if (!group.ext)
    return writeExtBlkAfter(text, group, 0);
  printMaker<AnimGroupExtHead>(text, *group.ext, group);
  writeExtBlkAfter(text, group, kvSizeofAnimGroupExt(*group.ext));
}

} // namespace

void kvWriteKtAnimList1(Text &text, const AnimList &list) { writeSection(text, ANIM_SECTION, list); }
void kvWriteKtAnimList(Text &text, const AnimList &list) { writeSection(text, ANIM_SECTION, list, writeAnimGroupExt); }

// --- CollList --------------------------------------------------------------------------------------------------------

namespace {

struct CollKind {
  Word coll_type;
  const char *word; ///< ends the line of the type
  void (*data)(Text &, const Coll &);
};

void writeNoData(Text &, const Coll &) {}

template <const auto &TABLE> void writeData(Text &text, const Coll &coll) {
  putRecord<TABLE>(text, collData<RecordOf<TABLE>>(coll));
}

constexpr std::array<CollKind, 7> COLL_KINDS = {{{0x00, "NONE\n", writeNoData},
                                                 {0x10, "TERRAIN\n", writeData<LINES<CollTerrain>>},
                                                 {0x20, "POINT\n", writeData<LINES<CollPoint>>},
                                                 {0x21, "CIRCLE\n", writeData<LINES<CollCircle>>},
                                                 {0x22, "SPHERE\n", writeData<LINES<CollSphere>>},
                                                 {0x23, "CYLINDER\n", writeData<LINES<CollCylinder>>},
                                                 {0x24, "BOX\n", writeData<LINES<CollBox>>}}};
constexpr CollKind UNKNOWN_COLL_KIND = {0, "????\n", writeNoData};

const CollKind &collKind(Word coll_type) {
  for (const CollKind &kind : COLL_KINDS)
    if (kind.coll_type == coll_type)
      return kind;
  return UNKNOWN_COLL_KIND;
}

void writeColl(Text &text, const Coll &coll, Index number) {
  print<"Coll(%d)\n">(text, number);
  putRecord<LINES<CollHead>>(text, coll);
  const CollKind &kind = collKind(coll.coll_type);
  putString(text, kind.word);
  kind.data(text, coll);
}

} // namespace

void kvWriteKtCollGroupFix1(Text &text, const CollGroup &group, Index number) {
  writeElement<CollList>(text, group, number);
  Index position = 0;
  for (const Coll &coll : counted(group.coll_num, group.coll))
    writeColl(text, coll, position++);
}

void kvWriteKtCollList1(Text &text, const CollList &list) { writeSection(text, COLL_SECTION, list); }
void kvWriteKtCollList(Text &text, const CollList &list) { kvWriteKtCollList1(text, list); }

// --- SwitchList ------------------------------------------------------------------------------------------------------

void kvWriteKtSwitchList1(Text &text, const SwitchList &list) { writeSection(text, SWITCH_SECTION, list); }
void kvWriteKtSwitchList(Text &text, const SwitchList &list) { kvWriteKtSwitchList1(text, list); }

// --- NameList: a line for each name, without blocks and empty lines --------------------------------------------------

namespace {

/// A name may be of any length, so it is unpacked in pieces.
void putName(Text &text, const Name &name) {
  std::array<char, 1024> piece;
  std::size_t first = 0;
  std::size_t length;
  do {
    length = unpackName(name, first, piece.data(), piece.size());
    putBytes(text, piece.data(), length);
    first += length;
  } while (length == piece.size());
}

} // namespace

void kvWriteKtNameListFix1(Text &text, const NameList &list) {
  putRecord<LINES_OF<NAME_LIST_WORDS>>(text, list);
  printEach<ListFormat<NameList>::table.TEXT>(text, counted(list.num, list.num_byte));
  print<"\n">(text);
}

namespace {

void writeNameSection(Text &text, const NameList &list, const char *name) {
  kvWriteKtListName(text, name);
  kvWriteKtNameListFix1(text, list);
  Index position = 0;
  for (const Name &each : counted(list.num, list.element)) {
    print<"Name(%d) ">(text, position++);
    putName(text, each);
    print<"\n">(text);
  }
  writeListEnd(text, list, name);
}

} // namespace

void kvWriteKtNameList1(Text &text, const NameList &list) { writeNameSection(text, list, "NameList"); }
void kvWriteKtNameList(Text &text, const NameList &list) { kvWriteKtNameList1(text, list); }
void kvWriteKtExternalNameList(Text &text, const NameList &list) { writeNameSection(text, list, "ExternalNameList"); }

} // namespace kova
