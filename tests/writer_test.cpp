/// The way back: what was loaded is written again as the same file, byte for byte, or, where the file was damaged, as a
/// file that loads as the same model.

#include "harness/audit.h"
#include "kova/check.h"
#include "kova/kb.h"
#include "tests/allocations.h"
#include "tests/support.h"

#include <gtest/gtest.h>
#include <optional>

namespace kova::test {

namespace {

/// What `kvWriteKb` writes; none where it refuses.
std::optional<Bytes> written(const Kis &kis) {
  const auto text = harness::written([&](std::FILE *stream) { return kvWriteKb(stream, kis); });
  return text ? std::optional(Bytes(text->begin(), text->end())) : std::nullopt;
}

/// @return whether a file that was read whole is written as the same file.
bool comesBack(const Bytes &bytes) {
  Kis kis;
  EXPECT_EQ(loadBytes(bytes, kis), 1);
  EXPECT_EQ(harness::auditFile(bytes), "");
  return written(kis) == bytes;
}

} // namespace

TEST(Writer, GoodFilesComeBack) {
  for (const Sample &sample : goodSamples())
    EXPECT_TRUE(comesBack(sample.file.bytes)) << sample.name;
}

/// Places that others can lie upon, or that nothing lies upon.
TEST(Writer, OddPlacesAndGaps) {
  struct Case {
    const char *what;
    Word version;
    const char *text;
    const char *edits;
    bool same; ///< or with zeros for the bytes that no record takes in
  };
  const Case cases[] = {
      {"a light upon its head", 0x100, "LightList { Light light_type=3  Light light_type=3 U=4 }",
       "Light 1 light_header_size 40; Light 1 usr_ext_blk_size 8", false},
      {"the links of a scene upon its head", 0x100, "SceneList scene_obj_link_num=3",
       "SceneList 0 scene_header_size 40", false},
      {"a gap in a light", 0x100, "LightList { Light light_type=3 U=8 }",
       "Light 0 light_header_size 52; Light 0 usr_ext_blk_size 4", false},
      {"words behind an odd number of texels", 0x100, "TeximgList { Teximg texels=8 U=12 }",
       "Teximg 0 tex_img_size 37; Teximg 0 usr_ext_blk_size 8", false},
      {"the blocks of a group, different ones behind each collision", 0x100,
       "CollList { CollGroup V=8 U=4 { Coll  Coll  Coll } }", "CollGroup 0 usr[0] 77", true},
      {"a collision longer than ten words", 0x100, "CollList { CollGroup U=48 { Coll } }",
       "Coll 0 coll_size +44; CollGroup 0 usr_ext_blk_size 4", false},
      {"a collision that ends at an odd place", 0x100, "CollList { CollGroup U=4 { Coll } }",
       "Coll 0 coll_size +3; CollGroup 0 usr_ext_blk_size 0", true},
      {"blocks of the header that are no whole words", 0x100, "FileHeader V=8 U=8",
       "FileHeader 0 van_ext_blk_size 6; FileHeader 0 usr_ext_blk_size 10", false},
      {"an odd number of colours", 0x200, "SceneList { SceneListExt }  ColorPaletteList { ColorPalette color_num=6 }",
       "ColorPalette 0 color_num 5", false},
      {"text that is no whole words", 0x100, "NameList { Name text=doorway }", "Name 0 name_size -2", false},
  };
  for (const Case &a : cases) {
    SCOPED_TRACE(a.what);
    EXPECT_EQ(comesBack(edited(build(a.version, a.text), a.edits).bytes), a.same);
  }
}

/// Large pieces, at odd places, too: what does not fit into the buffer at once.
TEST(Writer, LargeFilesComeBack) {
  const File file = build(0x100, "LightList { Light light_type=1 { DirLight1*2000 }  Light*500 }"
                                 " VtxList { VtxGroup vtx_num=10000 }  TeximgList { Teximg texels=70001 }");
  EXPECT_TRUE(comesBack(file.bytes));
  const File odd = edited(build(0x100, "TeximgList { Teximg texels=70000 U=70000 }"),
                          "Teximg 0 tex_img_size -3; Teximg 0 usr_ext_blk_size 69996");
  EXPECT_FALSE(comesBack(odd.bytes));
}

/// Lights whose blocks lie upon the last words of their heads, also where the buffer is handed on.
TEST(Writer, ManyShortLightsComeBack) {
  constexpr std::size_t LIGHTS = 1989; // then a buffer of 64 KiB ends within those words
  File file = build(0x100, "LightList { Light*1989 light_type=3 U=4 }");
  for (std::size_t i = 0; i < LIGHTS; ++i) {
    setWord(file, "Light", i, "light_header_size", 40);
    setWord(file, "Light", i, "van_ext_blk_size", 4);
    setWord(file, "Light", i, "usr_ext_blk_size", 8);
  }
  EXPECT_TRUE(comesBack(file.bytes));
}

/// What is changed in a model is what stands in the file, by its place.
TEST(Writer, ChangesOfTheModelAreWritten) {
  const File file = build(0x200, "SceneList { SceneListExt }  ObjList { Obj U=4 { ObjExt }  Obj { ObjExt } }"
                                 " WeightList { WeightGroup weight_num=2  WeightGroup weight_num=1 }");
  Kis kis;
  ASSERT_TRUE(loadBytes(file.bytes, kis));
  kis.obj.element[1].this_obj_index = 7;
  kis.obj.element[0].ext_blk.words->usr[0] = 0x01020304;
  kis.weight.element[0].weight.push_back(0.5F);
  kis.weight.element[0].weight_num = 3;
  kvAdjustListSizeData(kis, 0, 4, WEIGHT_LIST_TAG + ELEMENT_KIND);
  const std::optional<Bytes> saved = written(kis);
  ASSERT_TRUE(saved);
  File expected = build(0x200, "SceneList { SceneListExt }  ObjList { Obj U=4 { ObjExt }  Obj { ObjExt } }"
                               " WeightList { WeightGroup weight_num=3  WeightGroup weight_num=1 }");
  setWord(expected, "Obj", 1, "this_obj_index", 7);
  setWord(expected, "Obj", 0, "usr[0]", 0x01020304);
  setWord(expected, "WeightGroup", 0, "weight[2]", 0x3f000000);
  EXPECT_EQ(*saved, expected.bytes);
}

/// What is decoded of a maker block is what stands in the file; words behind it follow, also where it has grown.
TEST(Writer, ChangesOfMakerBlocksAreWritten) {
  const auto fileWith = [](const char *materials) {
    return build(0x200, std::string("SceneList { SceneListExt } ") + materials +
                            " TexList { Tex U=4 { TexStill TexExt use_color_palette=1 tiles=1 } }");
  };
  const File file = fileWith("MatList { Mat V=144 U=4 { MatExt external_tex_num=1 prim_color_anim_num=1 }  Mat }");
  Kis kis;
  ASSERT_TRUE(loadBytes(file.bytes, kis));
  EXPECT_EQ(written(kis), file.bytes);
  Mat &mat = kis.mat.element[0];
  mat.ext->diffuse.green = 0.5F;
  kis.tex.element[0].ext->color_palette_index[0] = 9;
  File expected = file;
  setWord(expected, "MatExt", 0, "diffuse[1]", 0x3f000000);
  setWord(expected, "TexExt", 0, "color_palette_index[0]", 9);
  EXPECT_EQ(written(kis), expected.bytes);

  mat.ext->external_tex.push_back({5, 6});
  mat.ext->external_tex_num = 2;
  EXPECT_FALSE(written(kis));
  mat.van_ext_blk_size += 8;
  kvAdjustListSizeData(kis, 0, 8, MAT_LIST_TAG + ELEMENT_KIND);
  expected = fileWith("MatList { Mat V=152 U=4 { MatExt external_tex_num=2 prim_color_anim_num=1 }  Mat }");
  Kis grown;
  const std::optional<Bytes> saved = written(kis);
  ASSERT_TRUE(saved);
  ASSERT_TRUE(loadBytes(*saved, grown));
  EXPECT_EQ(saved->size(), expected.bytes.size());
  EXPECT_EQ(grown.mat.element[0].ext->external_tex[1].name, 6);
  EXPECT_EQ(grown.mat.element[0].ext->prim_color_anim[0].key, mat.ext->prim_color_anim[0].key);
  EXPECT_EQ(vanExtBlk(grown.mat.element[0].ext_blk).back(), vanExtBlk(mat.ext_blk).back());
}

/// What becomes of a model that a program has edited, saved and loaded again.
struct Edited {
  Kis kis;

  explicit Edited(const File &file) { EXPECT_EQ(loadBytes(file.bytes, kis), 1); }

  /// @return whether it is refused; else `kis` is what was saved, which has to be consistent.
  bool isRefused() {
    const std::optional<Bytes> saved = written(kis);
    if (saved) {
      EXPECT_EQ(loadBytes(*saved, kis), 1);
      const Printed check = capture([&] { EXPECT_EQ(checkKOVA(kis), 1); });
      EXPECT_EQ(check.err, "") << check.out;
    }
    return !saved;
  }
};

constexpr char OBJECTS_TEXT[] = "SceneList { SceneListExt }  ObjList { Obj V=96 U=8 { ObjExt obj_chain_root_link_num=1"
                                " external_obj_num=2 } }  JointList { Joint V=8 U=4 }";

/// What an edit frees is zeros, and the words behind stay; what is not counted, or has no room, is refused.
TEST(Writer, MakerBlocksShrinkAndGrow) {
  const File file = build(0x200, OBJECTS_TEXT);
  Edited edit(file);
  Obj *obj = &edit.kis.obj.element[0];
  const Words behind(obj->ext_blk.words->van.end() - 4, obj->ext_blk.words->van.end());
  obj->ext->external_obj.pop_back();
  EXPECT_FALSE(edit.isRefused()); // a count without its entry
  obj = &edit.kis.obj.element[0];
  EXPECT_EQ(obj->ext->external_obj.back().name, 0);
  obj->ext->external_obj.pop_back();
  obj->ext->external_obj_num = 1;
  obj->van_ext_blk_size -= 8;
  kvAdjustListSizeData(edit.kis, 0, -8, OBJ_LIST_TAG + ELEMENT_KIND);
  EXPECT_FALSE(edit.isRefused());
  obj = &edit.kis.obj.element[0];
  const std::span<const Word> van = vanExtBlk(obj->ext_blk);
  EXPECT_EQ(Words(van.end() - 4, van.end()), behind);

  obj->ext->external_obj.push_back({7, 8});
  EXPECT_TRUE(edit.isRefused()); // not counted
  obj->ext->external_obj_num = 2;
  EXPECT_TRUE(edit.isRefused()); // no room
  obj->ext->external_obj.pop_back();
  obj->ext->external_obj_num = 1;
  obj->child_link.push_back(0);
  EXPECT_TRUE(edit.isRefused());
  obj->child_link.pop_back();
  obj->ext_blk.words->usr.push_back(0);
  EXPECT_TRUE(edit.isRefused());
}

/// Blocks that are raised, or lack their words, are filled up with zeros; the sizes of the version-2 lists stay.
TEST(Writer, WordsThatBlocksLackAreZeros) {
  Edited edit(build(0x200, OBJECTS_TEXT));
  Joint *joint = &edit.kis.joint.element[0];
  const Word last = joint->ext_blk.words->usr.back();
  joint->van_ext_blk_size += 8;
  kvAdjustListSizeData(edit.kis, 0, 8, JOINT_LIST_TAG + ELEMENT_KIND);
  edit.kis.file_header.ext_blk.words = nullptr;
  EXPECT_FALSE(edit.isRefused());
  ASSERT_EQ(edit.kis.joint.element.size(), 1U);
  joint = &edit.kis.joint.element[0];
  EXPECT_EQ(vanExtBlk(joint->ext_blk).back(), 0U);
  EXPECT_EQ(usrExtBlk(joint->ext_blk).back(), last);
}

/// A triangle group made from nothing, then with references of each form.
TEST(Writer, TriangleReferencesAreSet) {
  Edited edit(build(0x100, "TriList { TriGroup }"));
  const Indices numbers = {4, 5, 6, 7};
  const auto first = [&](std::size_t count) { return std::span<const Index>(numbers).first(count); };
  std::array<AnimRef, REF_KIND_NUM> refs;
  refs.fill({0, {}, first(1)});
  TriGroup group;
  static_cast<TriGroupHead &>(group) = edit.kis.tri.element[0];
  EXPECT_EQ(kvSetRefs(group, refs), 1);
  group.tri_anim_type = 0x21; // frames of vertices, keys of colours
  group.tri_anim_frame_num = 3;
  EXPECT_EQ(kvSetRefs(group, refs), 0);
  refs[refVtx].group_index = first(4);
  refs[refTriColor] = {2, first(1), first(2)};
  EXPECT_EQ(kvSetRefs(group, refs), 0) << "a key is missing";
  refs[refTriColor].key = first(2);
  allocations.left = 0;
  EXPECT_EQ(kvSetRefs(group, refs), 0) << "no memory";
  allocations.left = -1;
  EXPECT_EQ(kvSetRefs(group, refs), 1);
  EXPECT_EQ(kvSetRefs(group, kvRefs(group)), 1); // its own
  group.tri_group_size += 4 * (3 + 4);
  kvAdjustListSizeData(edit.kis, 0, 4 * (3 + 4), TRI_LIST_TAG + ELEMENT_KIND);
  edit.kis.tri.element[0] = std::move(group);
  EXPECT_FALSE(edit.isRefused());
  ASSERT_EQ(edit.kis.tri.element.size(), 1U);
  EXPECT_EQ(kvRefs(edit.kis.tri.element[0])[refVtx].group_index[3], 7);
  EXPECT_EQ(kvRefs(edit.kis.tri.element[0])[refTriColor].key[1], 5);
}

/// A block that ends anywhere in what it holds stays as long as it was; what it lacks cannot be written.
TEST(Writer, ShortMakerBlocksComeBack) {
  const File file = build(
      0x200, "SceneList { SceneListExt }  ObjList { Obj U=96 { ObjExt obj_chain_root_link_num=2 external_lod_obj_num=2"
             " external_obj_num=3 } }");
  const Word size = getWord(file, "Obj", 0, "van_ext_blk_size");
  for (Word cut = 0; cut < size; cut += 4) {
    File shorter = file;
    setWord(shorter, "Obj", 0, "van_ext_blk_size", size - cut);
    setWord(shorter, "Obj", 0, "usr_ext_blk_size", 96 + cut);
    Kis kis;
    ASSERT_TRUE(loadBytes(shorter.bytes, kis));
    EXPECT_EQ(written(kis), shorter.bytes) << cut;
    ObjExt &ext = *kis.obj.element[0].ext;
    ext.external_obj.resize(3);
    ext.external_obj_num = 3;
    EXPECT_EQ(written(kis).has_value(), cut == 0) << cut;
  }
}

TEST(Writer, OtherVersionsAndListsUponEachOtherAreRefused) {
  File file = goodFile1();
  Kis kis;
  ASSERT_TRUE(loadBytes(file.bytes, kis));
  kis.file_header.version = 0x300;
  EXPECT_FALSE(written(kis));
  ASSERT_TRUE(loadBytes(goodFile2().bytes, kis));
  kis.file_header.name_list_num = ~Word{0};
  EXPECT_FALSE(written(kis));
}

TEST(Writer, AStreamThatFailsIsTold) {
  for (const File &file : {goodFile1(), build(0x100, "VtxList { VtxGroup vtx_num=40000 }")}) {
    Kis kis;
    ASSERT_TRUE(loadBytes(file.bytes, kis));
    const Stream full(std::fopen("/dev/full", "wb"));
    if (!full)
      GTEST_SKIP() << "no /dev/full";
    EXPECT_EQ(kvWriteKb(full.get(), kis), 0);
  }
}

} // namespace kova::test
