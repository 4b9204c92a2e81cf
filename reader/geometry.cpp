#include "kova/geometry.h"

#include "format/geometry.h"
#include "reader/elements.h"

#include <algorithm>
#include <exception>

namespace kova {

namespace {

int skipWords(Cursor &cursor, std::uint64_t count) {
  if (!require(cursor, count, sizeof(Word)))
    return 0;
  cursor.offset += count * sizeof(Word);
  return 1;
}

/// Moves past one reference of a triangle group, in the form that its two bits choose; past its leading arrays alone
/// where not all of it is there.
int skipRef(Cursor &cursor, const TriGroupHead &group, std::size_t kind) {
  Word key_num;
  switch (refForm(group.tri_anim_type, kind)) {
  case RefForm::frames:
    return skipWords(cursor, framesOf(group));
  case RefForm::keys:
    return readFixed(cursor, key_num) && skipWords(cursor, key_num) && skipWords(cursor, key_num);
  case RefForm::single:
    break;
  }
  return skipWords(cursor, 1);
}

/// What stands before the words of the six references in memory: their number, and the form in which they were read,
/// which a program may have changed in the head since.
enum RefRun : std::size_t { refWordNum, refAnimType, refFrameNum, refWords };

/// @return memory for the words of a group's references, with what stands before them. Throws where it cannot be had.
std::unique_ptr<Index[]> refRun(const TriGroupHead &group, std::size_t words) {
  std::unique_ptr<Index[]> ref = std::make_unique_for_overwrite<Index[]>(refWords + words);
  ref[refWordNum] = static_cast<Index>(words);
  ref[refAnimType] = static_cast<Index>(group.tri_anim_type);
  ref[refFrameNum] = group.tri_anim_frame_num;
  return ref;
}

bool isKeyed(const TriGroupHead &group, std::size_t kind) {
  return refForm(group.tri_anim_type, kind) == RefForm::keys;
}

/// @return how many group indices a reference of a group has.
std::uint64_t indexNum(const AnimRef &ref, const TriGroupHead &group, std::size_t kind) {
  const RefForm form = refForm(group.tri_anim_type, kind);
  return form == RefForm::frames ? framesOf(group) : form == RefForm::keys ? ref.key_num : 1;
}

/// @return whether a reference has the arrays of the form that its group gives it.
bool hasItsForm(const AnimRef &ref, const TriGroupHead &group, std::size_t kind) {
  return ref.group_index.size() == indexNum(ref, group, kind) &&
         ref.key.size() == (isKeyed(group, kind) ? ref.key_num : 0);
}

/// Takes an array off the front of a group's words; nothing where it is not all there.
std::span<const Index> takeWords(std::span<const Index> &words, std::uint64_t count) {
  const std::size_t taken = count <= words.size() ? static_cast<std::size_t>(count) : 0;
  const std::span<const Index> array = words.first(taken);
  words = words.subspan(taken);
  return array;
}

/// Takes one reference off the front of a group's words.
AnimRef takeRef(std::span<const Index> &words, const TriGroupHead &group, std::size_t kind) {
  switch (refForm(group.tri_anim_type, kind)) {
  case RefForm::frames:
    return {0, {}, takeWords(words, framesOf(group))};
  case RefForm::keys: {
    const std::span<const Index> count = takeWords(words, 1);
    const Word key_num = count.empty() ? 0 : static_cast<Word>(count[0]);
    const std::span<const Index> key = takeWords(words, key_num);
    return {key_num, key, takeWords(words, key_num)};
  }
  case RefForm::single:
    break;
  }
  return {0, {}, takeWords(words, 1)};
}

/// Cuts a reference to what the head of its group says now.
void limitRef(AnimRef &ref, const TriGroupHead &group, std::size_t kind) {
  const std::uint64_t limit = indexNum(ref, group, kind);
  ref.group_index =
      ref.group_index.first(static_cast<std::size_t>(std::min<std::uint64_t>(limit, ref.group_index.size())));
}

} // namespace

/// Reads the six references as one run: first it is measured, then taken, with memory for exactly what is there.
int readRefs(Cursor &cursor, TriGroup &group) {
  Cursor end = cursor;
  int ok = 1;
  for (std::size_t kind = 0; ok && kind < REF_KIND_NUM; ++kind)
    ok = skipRef(end, group, kind);
  const auto words = static_cast<std::size_t>((end.offset - cursor.offset) / sizeof(Word));
  if (words > 0) {
    group.ref = refRun(group, words);
    if (!copyBytes(cursor, &group.ref[refWords], words * sizeof(Word))) {
      group.ref.reset();
      return 0;
    }
  }
  return ok ? 1 : refuse(cursor, end.fault);
}

int kvSetupVtxList(Cursor &cursor, VtxList &list) { return readList(cursor, list, VTX_LIST_TAG); }
int kvSetupTriList(Cursor &cursor, TriList &list) { return readList(cursor, list, TRI_LIST_TAG); }
int kvSetupColorList(Cursor &cursor, ColorList &list) { return readList(cursor, list, COLOR_LIST_TAG); }
int kvSetupVectorList(Cursor &cursor, VectorList &list) { return readList(cursor, list, VECTOR_LIST_TAG); }
int kvSetupStList(Cursor &cursor, StList &list) { return readList(cursor, list, ST_LIST_TAG); }
int kvSetupPartList(Cursor &cursor, PartList &list) { return readList(cursor, list, PART_LIST_TAG); }

std::array<AnimRef, REF_KIND_NUM> kvRefs(const TriGroup &group) {
  std::array<AnimRef, REF_KIND_NUM> refs{};
  if (!group.ref)
    return refs;
  TriGroupHead read = group;
  read.tri_anim_type = static_cast<Word>(group.ref[refAnimType]);
  read.tri_anim_frame_num = group.ref[refFrameNum];
  std::span<const Index> words = {&group.ref[refWords], static_cast<Word>(group.ref[refWordNum])};
  for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind) {
    refs[kind] = takeRef(words, read, kind);
    limitRef(refs[kind], group, kind);
  }
  return refs;
}

int kvSetRefs(TriGroup &group, const std::array<AnimRef, REF_KIND_NUM> &refs) try {
  std::size_t words = 0;
  for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind) {
    if (!hasItsForm(refs[kind], group, kind))
      return 0;
    words += isKeyed(group, kind) + refs[kind].key.size() + refs[kind].group_index.size();
  }
  std::unique_ptr<Index[]> ref = refRun(group, words);
  Index *at = &ref[refWords];
  for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind) {
    if (isKeyed(group, kind))
      *at++ = static_cast<Index>(refs[kind].key_num);
    at = std::copy(refs[kind].key.begin(), refs[kind].key.end(), at);
    at = std::copy(refs[kind].group_index.begin(), refs[kind].group_index.end(), at);
  }
  group.ref = std::move(ref);
  return 1;
} catch (const std::exception &) { // bad_alloc, or length_error where an address space is small
  return 0;
}

int kvSetVtx0(VtxList &) { return 1; }
int kvSetTri0(TriList &) { return 1; }
int kvSetColor0(ColorList &) { return 1; }
int kvSetVector0(VectorList &) { return 1; }
int kvSetSt0(StList &) { return 1; }
int kvSetPart0(PartList &) { return 1; }

} // namespace kova
