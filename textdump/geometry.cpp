#include "textdump/geometry.h"

#include "textdump/content.h"

namespace kova {

namespace {

void writeTriGroupEnd(Text &text, const TriGroup &group);

constexpr const char *VTX_SECTION = "VtxList";
constexpr const char *COLOR_SECTION = "ColorList";
constexpr const char *VECTOR_SECTION = "VectorList";
constexpr const char *ST_SECTION = "StList";
constexpr Section<TriGroup> TRI_SECTION = {"TriList", kvWriteKtTriGroupFix1, true};
constexpr Section<Part> PART_SECTION = {"PartList", writeElement<PartList>};

/// The groups of a list whose header section holds them.
template <class Group>
void writeGroups(Text &text, Word count, const std::vector<Group> &held, void (*group)(Text &, const Group &, Index)) {
  writeElements(text, count, held, group, writeEmptyLine<Group>);
}

} // namespace

// --- VtxList: its header section holds the groups --------------------------------------------------------------------

void kvWriteKtVtxListFix1(Text &text, const VtxList &list) {
  writeListHead(text, list, VTX_SECTION);
  print<"\n">(text);
  writeGroups(text, list.num, list.element, writeElement<VtxList>);
}

void kvWriteKtVtxList1(Text &text, const VtxList &list) {
  kvWriteKtVtxListFix1(text, list);
  writeListEnd(text, list, VTX_SECTION);
}
void kvWriteKtVtxList(Text &text, const VtxList &list) { kvWriteKtVtxList1(text, list); }

// --- TriList ---------------------------------------------------------------------------------------------------------

namespace {

/// The line or lines of one kind of reference, by the form in which it is stored.
template <Format FRAME_INDEX, Format KEY_NUM, Format KEY, Format KEY_INDEX, Format SINGLE_INDEX>
void writeRef(Text &text, const AnimRef &ref, RefForm form) {
  if (form == RefForm::frames) {
    printEach<FRAME_INDEX>(text, ref.group_index);
  } else if (form == RefForm::keys) {
    print<KEY_NUM>(text, ref.key_num);
    printEach<KEY>(text, ref.key);
    printEach<KEY_INDEX>(text, ref.group_index);
  } else {
    for (const Index index : ref.group_index) // one, or none where reading ended before it
      print<SINGLE_INDEX>(text, index);
  }
}

/// The formats of the six kinds. Two are odd on purpose: a key's vertex-colour group has an expression for its name,
/// and a frame's texture-coordinate group has no line end, so that the next text continues its line.
using WriteRef = void (*)(Text &, const AnimRef &, RefForm);
// clang-format off
constexpr std::array<WriteRef, REF_KIND_NUM> REF_WRITERS = {
    writeRef<"refVtx->vtx_group_index[%d]          %d\n",
             "refVtx->vtx_anim_key_num             %d\n",
             "refVtx->vtx_anim_key[%d]             %d\n",
             "refVtx->vtx_group_index[%d]          %d\n",
             "refVtx->vtx_group_index                 %d\n">,
    writeRef<"refTriColor->tri_color_group_index[%d]  %d\n",
             "refTriColor->tri_color_anim_key_num     %d\n",
             "refTriColor->tri_color_anim_key[%d]     %d\n",
             "refTriColor->tri_color_group_index[%d]  %d\n",
             "refTriColor->tri_color_group_index      %d\n">,
    writeRef<"refVtxColor->vtx_color_group_index[%d] %d\n",
             "refVtxColor->vtx_color_anim_key_num             %d\n",
             "refVtxColor->vtx_color_anim_key[%d] %d\n",
             "l->trig[i].refVtxColor->vtx_color_group_index[%d] %d\n",
             "refVtxColor->vtx_color_group_index      %d\n">,
    writeRef<"refTriNv->tri_nv_group_index[%d]  %d\n",
             "refTriNv->tri_nv_anim_key_num              %d\n",
             "refTriNv->tri_nv_anim_key[%d]  %d\n",
             "refTriNv->tri_nv_group_index[%d]  %d\n",
             "refTriNv->tri_nv_group_index            %d\n">,
    writeRef<"refVtxNv->vtx_nv_group_index[%d]  %d\n",
             "refVtxNv->vtx_nv_anim_key_num              %d\n",
             "refVtxNv->vtx_nv_anim_key[%d] %d\n",
             "refVtxNv->vtx_nv_group_index[%d]  %d\n",
             "refVtxNv->vtx_nv_group_index            %d\n">,
    writeRef<"refSt->st_group_index[%d]  %d",
             "refSt->st_anim_key_num          %d\n",
             "refSt->st_anim_key[%d]  %d\n",
             "refSt->st_group_index[%d]  %d\n",
             "refSt->st_group_index                   %d\n">,
};
// clang-format on

void writeTriangles(Text &text, std::span<const Tri> triangles) {
  for (std::size_t i = 0; (i += printTriangles(text, triangles.subspan(i), i)) < triangles.size(); ++i) {
    kvWriteKtTriFix1(text, triangles[i], static_cast<Index>(i));
    writeExtBlk(text, triangles[i]);
  }
}

/// A group has no blocks of its own: its last triangle has ended it with an empty line, or, where it has none, this
/// does.
void writeTriGroupEnd(Text &text, const TriGroup &group) {
  if (counted(group.tri_num, group.tri).empty())
    writeEmptyLine(text, group);
}

} // namespace

void kvWriteKtTriGroupFix1(Text &text, const TriGroup &group, Index number) {
  writeElement<TriList>(text, group, number);
  const std::array<AnimRef, REF_KIND_NUM> refs = kvRefs(group);
  for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind)
    REF_WRITERS[kind](text, refs[kind], refForm(group.tri_anim_type, kind));
  writeTriangles(text, counted(group.tri_num, group.tri));
}

void kvWriteKtTriFix1(Text &text, const Tri &tri, Index number) {
  print<"Tri(%d)\n">(text, number);
  putRecord<LINES<TriHead>>(text, tri);
}

void kvWriteKtTriList1(Text &text, const TriList &list) { writeSection(text, TRI_SECTION, list, writeTriGroupEnd); }
void kvWriteKtTriList(Text &text, const TriList &list) { kvWriteKtTriList1(text, list); }

// --- ColorList -------------------------------------------------------------------------------------------------------

void kvWriteKtColorListFix1(Text &text, const ColorList &list) {
  kvWriteKtListName(text, COLOR_SECTION);
  putRecord<LINES_OF<COLOR_LIST_WORDS>>(text, list);
  printEach<ListFormat<ColorList>::table.TEXT>(text, counted(list.tri_group_num, list.tri_group_size));
  printEach<ListFormat<ColorList>::second_table.TEXT>(text, counted(list.vtx_group_num, list.vtx_group_size));
  print<"\n">(text);
  writeGroups(text, list.tri_group_num, list.tri_group, writeElement<ColorList>);
  writeGroups(text, list.vtx_group_num, list.vtx_group, writeSecondElement<ColorList>);
}

void kvWriteKtColorList1(Text &text, const ColorList &list) {
  kvWriteKtColorListFix1(text, list);
  writeListEnd(text, list, COLOR_SECTION);
}
void kvWriteKtColorList(Text &text, const ColorList &list) { kvWriteKtColorList1(text, list); }

// --- VectorList ------------------------------------------------------------------------------------------------------

void kvWriteKtVectorListFix1(Text &text, const VectorList &list) {
  kvWriteKtListName(text, VECTOR_SECTION);
  putRecord<LINES_OF<VECTOR_LIST_WORDS>>(text, list);
  printEach<ListFormat<VectorList>::table.TEXT>(text, counted(list.tri_group_num, list.tri_group_size));
  printEach<ListFormat<VectorList>::second_table.TEXT>(text, counted(list.vtx_group_num, list.vtx_group_size));
  print<"\n">(text);
  writeGroups(text, list.tri_group_num, list.tri_group, writeElement<VectorList>);
  writeGroups(text, list.vtx_group_num, list.vtx_group, writeSecondElement<VectorList>);
}

void kvWriteKtVectorList1(Text &text, const VectorList &list) {
  kvWriteKtVectorListFix1(text, list);
  writeListEnd(text, list, VECTOR_SECTION);
}
void kvWriteKtVectorList(Text &text, const VectorList &list) { kvWriteKtVectorList1(text, list); }

// --- StList ----------------------------------------------------------------------------------------------------------

void kvWriteKtStListFix1(Text &text, const StList &list) {
  writeListHead(text, list, ST_SECTION);
  print<"\n">(text);
  writeGroups(text, list.num, list.element, writeElement<StList>);
}

void kvWriteKtStList1(Text &text, const StList &list) {
  kvWriteKtStListFix1(text, list);
  writeListEnd(text, list, ST_SECTION);
}
void kvWriteKtStList(Text &text, const StList &list) { kvWriteKtStList1(text, list); }

// --- PartList --------------------------------------------------------------------------------------------------------

void kvWriteKtPartList1(Text &text, const PartList &list) { writeSection(text, PART_SECTION, list); }
void kvWriteKtPartList(Text &text, const PartList &list) { kvWriteKtPartList1(text, list); }

} // namespace kova
