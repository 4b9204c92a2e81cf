/// The parts of the search by themselves: going over a record, the one word that has to be another, and what follows.

#include "mend/derive.h"
#include "mend/links.h"
#include "mend/list_view.h"
#include "samples/builder.h"

#include <gtest/gtest.h>

namespace kova::mend {

namespace {

/// A record of a file, of which words were changed: the first element of a list.
struct Case {
  Word version;
  const char *list, *scene, *edits;
  const char *expected;
};

struct Built {
  samples::File whole, damaged;
  FileBytes file;
  RecordAt record;
  std::uint64_t end; ///< of the record as it was

  explicit Built(const Case &built)
      : whole(samples::build(built.version, built.scene, samples::LinkWords::none)),
        damaged(samples::edited(whole, built.edits)), file(damaged.bytes) {
    std::size_t list = 0;
    while (std::string_view(LISTS[list].name) != built.list)
      ++list;
    const FileBytes before(whole.bytes);
    const ListView view(before, list, samples::offsetOf(whole, built.list, 0, "list_tag"));
    record = view.element(0, view.elements());
    end = record.begin + before[view.entry(0)];
  }
};

std::string text(std::int64_t number) { return std::to_string(number); }

TEST(FileBytes, HasNothingOutside) {
  unsigned char bytes[] = {1, 2, 3, 4, 5, 6};
  FileBytes file(std::span<unsigned char>(bytes, 5));
  for (const std::uint64_t at : {std::uint64_t{2}, std::uint64_t{5}, ~std::uint64_t{0}}) {
    file.set(at, 7);
    EXPECT_EQ(file[at], 0U) << at;
  }
  EXPECT_EQ(file[1], 0x02030405U);
  EXPECT_EQ(bytes[5], 6);
}

TEST(Walk, GoesOverARecordByItsOwnWords) {
  // how much further than the record it comes, whether that is beyond the file, doubts, faults, bytes of the maker
  // block that nothing uses
  constexpr Case CASES[] = {
      {VERSION_1, "EnvList", "EnvList { Env U=8 }", "", "0 0 0 0 0"},
      {VERSION_1, "EnvList", "EnvList { Env U=8 }", "Env 0 usr_ext_blk_size 6", "-4 0 0 1 0"},
      {VERSION_1, "ObjList", "ObjList { Obj obj_child_num=2 }", "Obj 0 obj_child_num 5", "12 0 0 0 0"},
      {VERSION_1, "ObjList", "ObjList { Obj }", "Obj 0 obj_lod_num 0x7fffffff", "17179869176 0 0 0 0"},
      {VERSION_2, "ObjList", "ObjList { Obj }", "", "0 0 0 0 0"},
      {VERSION_2, "ObjList", "ObjList { Obj { ObjExt external_obj_num=1 } }", "ObjExt 0 external_obj_num 3",
       "0 0 0 1 -16"},
      {VERSION_2, "ObjList", "ObjList { Obj { ObjExt external_obj_num=1 } }", "ObjExt 0 external_obj_num 0",
       "0 0 0 0 8"},
      {VERSION_1, "TriList", "TriList { TriGroup { Tri*3 } }", "Tri 1 this_tri_index 7", "0 0 1 0 0"},
      {VERSION_1, "TriList", "TriList { TriGroup { Tri*3 } }", "TriGroup 0 tri_num 2", "-76 0 0 0 0"},
      {VERSION_1, "TriList", "TriList { TriGroup { Tri*3 } }", "TriGroup 0 tri_num 0x10000", "4980508 1 0 0 0"},
  };
  for (const Case &tried : CASES) {
    const Built built(tried);
    Walk walk(built.file, built.file.size(), tried.version == VERSION_2);
    const std::uint64_t end = walk.over(built.record);
    EXPECT_EQ(text(static_cast<std::int64_t>(end - built.end)) + ' ' + text(walk.broken) + ' ' + text(walk.doubts) +
                  ' ' + text(walk.faults) + ' ' + text(walk.maker_spare),
              tried.expected)
        << tried.scene << "; " << tried.edits;
  }
}

TEST(Solve, FindsTheWordThatHasToBeAnother) {
  // each proposal: the word, its value, what it costs, what is doubtful
  constexpr Case CASES[] = {
      {VERSION_1, "EnvList", "EnvList { Env U=8 }", "", "as it is 0 0"},
      {VERSION_1, "EnvList", "EnvList { Env U=8 }", "Env 0 usr_ext_blk_size 0",
       "van_ext_blk_size 8 1 0, usr_ext_blk_size 8 1 0"},
      {VERSION_1, "ObjList", "ObjList { Obj obj_child_num=2 }", "Obj 0 obj_child_num 5", "obj_child_num 2 1 0"},
      {VERSION_1, "ObjList", "ObjList { Obj obj_child_num=2 obj_lod_num=1 }", "Obj 0 obj_lod_num 0",
       "obj_lod_num 1 1 0, obj_child_num 4 1 0, van_ext_blk_size 8 1 0, usr_ext_blk_size 8 1 0"},
      {VERSION_1, "TriList", "TriList { TriGroup { Tri*3 } }", "TriGroup 0 tri_num 2", "tri_num 3 1 0"},
      {VERSION_1, "TriList", "TriList { TriGroup { Tri*3 } }", "Tri 1 usr_ext_blk_size 4", "usr_ext_blk_size 0 1 0"},
      {VERSION_1, "ShapeList", "ShapeList { Shape shape_part_num=3 }", "Shape 0 shape_part_num -1 usr_ext_blk_size 1",
       "usr_ext_blk_size 4 1 0"},
      {VERSION_2, "ObjList", "ObjList { Obj { ObjExt external_obj_num=1 } }", "ObjExt 0 external_obj_num 3",
       "external_obj_num 1 1 0"},
      {VERSION_1, "TriList", "TriList { TriGroup { Tri*3 } }", "TriGroup 0 tri_num 2; Tri 0 van_ext_blk_size 8", ""},
  };
  for (const Case &tried : CASES) {
    const Built built(tried);
    Reader reader(built.file);
    reader.beginList(built.file.size());
    std::string proposals;
    for (const Reader::Proposal &proposal : reader.solve(built.record, built.end))
      proposals += (proposals.empty() ? "" : ", ") +
                   (proposal.changes ? proposal.length_word.field + (' ' + text(proposal.value)) : "as it is") + ' ' +
                   text(proposal.cost) + ' ' + text(proposal.doubts);
    EXPECT_EQ(proposals, tried.expected) << tried.scene << "; " << tried.edits;
  }
}

TEST(Derive, SetsWhatFollowsFromWhereEverythingStands) {
  // the words that are set, and whether the audit looks at one of them; too few triangles show what their numbers are
  constexpr Case CASES[] = {
      {VERSION_1, "EnvList", "EnvList { Env }", "", " 0"},
      {VERSION_1, "EnvList", "EnvList { Env Env }",
       "EnvList 0 list_tag 1 list_size 2; Env 1 env_tag 3 this_env_index 9 env_size 4",
       "env_list_tag 1048576, env_list_size 144, env_tag 1048832, this_env_index 1, env_size 56 1"},
      {VERSION_1, "EnvList", "EnvList { Env }", "FileHeader 0 size 1 header_tag 2 file_header_num 3 env_list_num 4",
       "size 644, header_tag 0, file_header_num 100, env_list_num 84 1"},
      {VERSION_1, "ColorList", "ColorList { TriColorGroup VtxColorGroup }",
       "ColorList 0 tri_group_size[0] 1 vtx_group_size[0] 2",
       "tri_color_group_size[0] 20, vtx_color_group_size[0] 20 1"},
      {VERSION_1, "TriList", "TriList { TriGroup { Tri*5 } }", "Tri 2 this_tri_index 9", "this_tri_index 2 0"},
      {VERSION_1, "TriList", "TriList { TriGroup { Tri*3 } }", "Tri 1 this_tri_index 9", " 0"},
  };
  for (const Case &tried : CASES) {
    Built built(tried);
    Spans spans = {};
    const FileBytes whole(built.whole.bytes);
    std::uint64_t begin = whole[header_at::HEADER_SIZE];
    for (std::size_t list = 0; list < VERSION_1_LIST_NUM; ++list) {
      const std::uint64_t end = begin + whole[LAYOUT[list].header_word_at];
      if (begin != end)
        spans[list] = {.sort = Decision::Sort::list, .begin = begin, .end = end, .list = list};
      begin = end;
    }
    const Applied applied = applyReading(built.file, {.decisions = linkSpans(spans)});
    std::string changes;
    for (const Change &change : applied.changes)
      changes += (changes.empty() ? "" : ", ") + change.field + ' ' + text(change.new_value);
    EXPECT_EQ(changes + ' ' + text(applied.checked_words), tried.expected) << tried.scene << "; " << tried.edits;
  }
}

/// Rows of words that are compared at once, what is left of them, the end of the file, and a word that is tried.
TEST(Parts, AWordIsFoundWhereItStandsAndNowhereElse) {
  constexpr Word WORD = 0x01020304;
  for (const std::uint64_t from : {0U, 1U, 2U, 3U, 4U})
    for (std::uint64_t at = from; at + sizeof(Word) <= 203; at += sizeof(Word)) {
      std::vector<unsigned char> bytes(203);
      FileBytes file(bytes);
      EXPECT_EQ(file.with(at, WORD).findWord(from, 200, WORD), at < 200 ? at : from + (203 - from) / 4 * 4);
      file.set(at, WORD);
      EXPECT_EQ(file.findWord(from, 200, WORD), at < 200 ? at : from + (203 - from) / 4 * 4);
      EXPECT_GE(file.with(at + 2, 0).findWord(from, 200, WORD), 200U);
    }
}

} // namespace

} // namespace kova::mend
