/// Documents that people write: what is computed, what is kept, what is refused, and with which words.
#include "samples/builder.h"
#include "json/tests/roundtrip.h"

#include <bit>
#include <gtest/gtest.h>
#include <random>

namespace kova::json {
namespace {

/// A document of version 1.0 with these members.
std::string scene(const std::string &members) { return R"({"FileHeader":{"version":"0x100"},)" + members + '}'; }

constexpr const char *CAMERA =
    R"("cam_type":0,"cam_near_clip":1,"cam_far_clip":2,"cam_right_clip":3,"cam_left_clip":4,"cam_top_clip":5,)"
    R"("cam_bottom_clip":6,"cam_fovy":7,"cam_aspect":8,"cam_scale":9,"cam_lookat_obj":-1,"cam_eye_obj":-1,)"
    R"("cam_up_obj":-1,"came_name_index":-1)";
constexpr const char *LIGHT = R"("light_name_index":-1,"ambient_r":0,"ambient_g":0,"ambient_b":0)";
constexpr const char *DIRECTION = R"({"dir_color_r":1,"dir_color_g":1,"dir_color_b":1,"dir_x":0,"dir_y":0,"dir_z":1})";
constexpr const char *ANIM = R"("anim_name_index":-1,"frame_rate":0,"anim_loop":0,"rotation_matrix_order":0)";
constexpr const char *TRI_GROUP = R"("tri_group_name_index":-1)";

std::string element(const std::string &list, const std::string &members) {
  return scene('"' + list + R"(":{"element":[{)" + members + "}]}");
}

struct Refused {
  std::string document;
  const char *message;
};

const Refused REFUSED[] = {
    {"", "1:1: expected an object"},
    {"[]", "1:1: expected an object"},
    {"{}", R"(1:3: "FileHeader" is missing)"},
    {"{\"FileHeader\":{}}", R"(FileHeader: "version" is missing)"},
    {"{\n  \"FileHeader\": {\"version\": 256},\n  \"CamList\": {\"element\": [{}]}}",
     R"(3:29: CamList.element[0]: "came_name_index" is missing)"},
    {scene(R"("ObjList":{"element":[{"obj_statt":1}]})"), R"(ObjList.element[0]: there is no "obj_statt" here)"},
    {scene(R"("ObjList":{"element":[{"obj_state":1,"obj_state":1}]})"), "ObjList.element[0].obj_state: given twice"},
    {scene(R"("ObjList":{"element":[{"LOD_dist":[],"LOD_dist":[]}]})"), "ObjList.element[0].LOD_dist: given twice"},
    {scene(R"("EnvList":{},"EnvList":{})"), "EnvList: given twice"},
    {element("AnimList", ANIM + std::string(R"(,"type":4,"node":{"all":{},"all":{},"rows":[]})")),
     "\"all\" is given twice"},
    {element("AnimList", ANIM + std::string(R"(,"type":4,"node":{"words":[],"words":[],"rows":[]})")),
     "\"words\" is given twice"},
    {scene(R"("TexList":{"element":{"rows":[]}})"), "TexList.element: expected an array"}, // it has more than words
    {scene(R"("behind":{"raw":"","offset":,"finding":})"), "behind: expected a number"},
    {R"({"file":{"raw":""},"ObjList":{}})", R"("file" stands alone)"},
    {element("VtxList", R"("vtx_group_name":0,"vtx":[[0.)" + std::string(300, '1') + ",0,0]]"), "expected a number"},
    {scene(R"("Gap":{})"), R"(there is no "Gap" here)"},
    {scene(R"("ObjList":{"element":[{"child_link":[1,2,true]}]})"), "child_link[2]: expected a whole number"},
    {scene(R"("ObjList":{"element":[{"obj_state":1.5}]})"), "obj_state: expected a whole number"},
    {scene(R"("ObjList":{"element":[{"obj_state":01}]})"), "obj_state: expected a whole number"},
    {scene(R"("ObjList":{"element":[{"obj_state":4294967296}]})"), "obj_state: expected a whole number"},
    {scene(R"("ObjList":{"element":[{"obj_state":-2147483649}]})"), "obj_state: expected a whole number"},
    {scene(R"("ObjList":{"element":[{"obj_state":"0x123456789"}]})"), "obj_state: expected a whole number"},
    {element("CamList", R"("cam_fovy":1e39)"), "cam_fovy: expected a number that a float can hold"},
    {element("CamList", R"("cam_fovy":1.)"), "cam_fovy: expected a number that a float can hold"},
    {element("CamList", R"("cam_fovy":inf)"), "cam_fovy: expected a number that a float can hold"},
    {element("LightList", std::string(R"("dir_light":[)") + DIRECTION + R"(],"light_type":1)"),
     "LightList.element[0]: light_type chooses the form"},
    {element("LightList", std::string(LIGHT) + R"(,"light_type":2,"dir_light":[])"), R"(there is no "dir_light" here)"},
    {element("LightList", R"("light_type":0,"dir_light":[{"dir_a1":0}])"),
     R"(dir_light[0]: there is no "dir_a1" here)"},
    {element("ObjList", R"("LOD_dist":[1,2],"LOD_link":[1],"obj_name_index":0)"), "LOD_link is not as long"},
    {element("TriList", std::string(TRI_GROUP) + R"(,"tri_anim_type":0)"), R"("vtx_group_index" is missing)"},
    {element("TriList", R"("tri":{"words":["tri_nv"]})"), R"(element[0].tri.words: there is no "tri_nv" here)"},
    {element("TriList", R"("tri":{"words":["tri_nv_index"],"rows":[]})"), R"(tri: "tri_color_index" is missing)"},
    {element("AnimList", std::string(ANIM) + R"(,"type":4,"node":{"words":["lookat","upper"],"rows":[[1,2],[3]]})"),
     "AnimList.element[0].node.rows[1].upper: expected 2 columns"},
    {element("VtxList", R"("vtx":[[1,2,3],[1,2]])"), "vtx[1]: expected 3 words"},
    {element("NameList", R"("text":"a\\q")"), R"(text: expected \x and two hexadecimal digits)"},
    {element("NameList", "\"text\":\"\xff\""), "text: the string is no valid UTF-8"},
    {element("NameList", R"("text":"\ud800")"), "text: half a character"},
    {element("NameList", "\"text\":\"\n\""), "text: a control character in a string"},
    {element("NameList", R"("text":"a)"), "text: "},
    {element("TeximgList", R"("texel":"AAA")"), "texel: expected base64"},
    {element("TeximgList", R"("texel":"AAAB=")"), "texel: expected base64"},
    {scene(R"("ObjList":{"raw":"","obj_num":1})"), "ObjList: a list has either raw bytes or data"},
    {scene(R"("CiImgList":{})"), "FileHeader: the lists of version 2.0 need version 0x200"},
    {R"({"FileHeader":{"version":256},"FileHeader":{}})", "FileHeader: given twice"},
    {scene(R"("behind":{"raw":"","raw":""})"), "behind.raw: given twice"},
    {scene(R"("behind":{"raw":1})"), "behind.raw: expected a string of base64"},
    {scene(R"("behind":{"raw":"","finding":nil})"), "behind: expected null"},
    {element("CamList", R"("usr":[1],"usr":[2])"), "usr: given twice"},
    {element("TeximgList", R"("texel":"","texel":"")"), "texel: given twice"},
    {element("NameList", R"("text":"","text":"")"), "text: given twice"},
    {element("TriList", R"("tri_anim_type":17,"vtx_group_index":[1],"tri_nv_group_index":[1,2])"), "is not as long as"},
    {element("TriList", R"("tri_anim_type":2,"vtx_group_index":[1],"vtx_anim_key":[1,2])"), "does not fit"},
    {R"({"FileHeader":{"version":256}} {})", "expected the end of the document"},
    {R"({"kbjson":2,"FileHeader":{"version":256}})", "kbjson: expected 1"},
    {element("TriList", R"("tri":{"words":1})"), "tri: expected an array of keys"},
    {element("AnimList", ANIM + std::string(R"(,"type":4,"node":{"words":["lookat","upper"],"rows":[],"all":{}})")),
     "\"rows\" come last"},
    {element("AnimList", ANIM + std::string(R"(,"type":4,"node":{"words":["lookat"],"all":{"upper":1},"rows":1})")),
     "expected an array of rows"},
    {element("AnimList", ANIM + std::string(R"(,"type":4,"node":{"words":["lookat"],"all":{"upper":1},"rows":[1]})")),
     "expected a row"},
    {element("NameList", R"("text":"\u00g0")"), R"(expected four hexadecimal digits behind \u)"},
    {element("NameList", R"("text":"\q")"), R"(expected one of "\/bfnrtu behind the backslash)"},
    {element("TeximgList", R"("texel":1)"), "expected a string of base64"},
    {element("VtxList", R"("vtx":[[1,2,3,4]])"), "expected ] behind 3 words"},
    {scene(R"("ObjList")"), "expected : behind the key"},
    {scene(R"("ObjList":{"raw":""]})"), "expected , or }"},
    {element("VtxList", R"("vtx":[[1,2,3]})"), "expected , or ]"},
    {std::string(1'000'000, '['), "1:1: expected an object"},
    {"{\"FileHeader\":" + std::string(1'000'000, '{'), "1:16: FileHeader: expected a key in quotes"},
    {"{\"" + std::string(1'000'000, 'k') + "\":1}", "there is no \"kkkk"},
    {scene(R"("ObjList":{"obj_num":)" + std::string(1'000'000, '9') + "}"), "obj_num: expected a whole number"},
    {element("CamList", R"("cam_fovy":)" + std::string(1'000'000, '9')), "cam_fovy: expected a number"},
};

TEST(Document, WhatIsWrongIsToldWithItsPlace) {
  for (const Refused &refused : REFUSED) {
    const Back back = fileOf(refused.document);
    EXPECT_NE(back.wrong.find(refused.message), std::string::npos)
        << refused.document.substr(0, 300) << "\nsays: " << back.wrong << "\nnot: " << refused.message;
    EXPECT_LT(back.wrong.size(), 400U);
  }
}

/// A word of the file that a document is about.
struct Kept {
  std::string document;
  std::size_t offset;
  Word word;
};

TEST(Document, WordsAreComputedOrKept) {
  const std::string camera = CAMERA;
  const std::string name = R"("NameList":{"element":[{"text":"root"},{"text":"a"}])";
  constexpr std::size_t LIST = FILE_HEADER_BYTES;
  constexpr std::size_t CAM = LIST + 24 + 4; // behind a table of one size
  const Kept cases[] = {
      {scene(name + "}"), 4, LIST + 24 + 8 + 40},                           // size of the file
      {scene(name + "}"), LIST, NAME_LIST_TAG},                             //
      {scene(name + "}"), LIST + 8, 72},                                    // size of the list
      {scene(name + "}"), LIST + 12, 2},                                    // names
      {scene(name + "}"), LIST + 28, 20},                                   // table of sizes
      {scene(name + "}"), LIST + 32 + 20 + 4, 1},                           // own index
      {scene(name + "}"), LIST + 32 + 20 + 16, 0x61000000},                 // text
      {scene(name + R"(,"name_num":9})"), LIST + 12, 9},                    // kept though it is wrong
      {scene(name + R"(,"name_num":0})"), LIST + 32 + 20 + 16, 0x61000000}, // nothing is lost by it
      {scene(name + R"(,"name_num":2,"name_num_byte":[1,2,3]})"), 4, LIST + 24 + 12 + 40},
      {scene(name + R"(,"behind":{"raw":"AAAB","offset":1,"finding":null}})"), LIST + 8, 75},
      {element("NameList", R"("text":"\u0041\u00e9\n")"), LIST + 44, 0x41c3a90a},
      {element("NameList", R"("text":"\u20ac/")"), LIST + 44, 0xe282ac2f},
      {element("NameList", R"("text":"\ud83d\uDE00")"), LIST + 44, 0xf09f9880},
      {element("NameList", R"("text":"\\x22\\x5c")"), LIST + 44, 0x225c0000},
      {R"({"FileHeader":{"version":256,"size":7,"van":["0xabcd"]}})", 4, 7},
      {R"({"FileHeader":{"version":256,"size":7,"van":["0xabcd"]}})", 100, 0xabcd},
      {R"({"FileHeader":{"version":256,"size":7,"van":["0xabcd"]}})", 92, 4},
      {R"({"FileHeader":{"version":"0x200"},"CiImgList":{}})", 100, 24}, // the sizes of the version-2 lists
      {element("CamList", camera), CAM + 20, std::bit_cast<Word>(1.0F)},
      {element("CamList", R"("cam_tag":"0xff",)" + camera), CAM, 0xff},
      {element("CamList", camera + R"(,"usr":["0x1",2,-1])"), CAM + 72, 12},
      {element("AnimList",
               std::string(ANIM) + R"(,"type":4,"node":{"all":{"upper":7},"words":["lookat"],"rows":[[3],[4]]})"),
       CAM + 48 + 20 + 12, 4},
      {element("AnimList",
               std::string(ANIM) + R"(,"type":4,"node":{"all":{"upper":7},"words":["lookat"],"rows":[[3],[4]]})"),
       CAM + 48 + 20 + 4, 1},
  };
  for (const Kept &kept : cases) {
    const Back back = fileOf(kept.document);
    ASSERT_EQ(back.wrong, "") << kept.document;
    EXPECT_EQ(harness::wordAt(back.file, kept.offset), kept.word) << kept.document << " at " << kept.offset;
  }
}

TEST(Document, WordsHaveManyForms) {
  const std::pair<const char *, Word> forms[] = {
      {"-0", 0x80000000},
      {"1e-3", 0x3a83126f},
      {"16777217.0", 0x4b800000},
      {"\"0x3f800000\"", 0x3f800000},
      {"\"nan:7fc00001\"", 0x7fc00001},
      {"3.4028235e38", 0x7f7fffff},
      {"1e-45", 1},
      {"-1e-46", 0x80000000},
      {"-1e-400", 0x80000000},
      {"\"0XFF\"", 0},
  };
  for (const auto &[form, word] : forms) {
    const Back back = fileOf(element("VtxList", R"("vtx_group_name":-1,"vtx":[[)" + std::string(form) + ",0,0]]"));
    if (word == 0) {
      EXPECT_NE(back.wrong, "") << form;
      continue;
    }
    ASSERT_EQ(back.wrong, "") << form;
    EXPECT_EQ(harness::wordAt(back.file, FILE_HEADER_BYTES + 28 + 24), word) << form;
  }
}

/// No document that was cut is taken for a whole one, and none that was changed does any harm.
TEST(Document, DamagedDocuments) {
  const std::string document = documentOf(samples::goodFile2().bytes, {Layout::compact, true});
  for (std::size_t size = 0; size < document.size() - 2; size += size < 2'000 ? 1 : 37)
    ASSERT_NE(fileOf(document.substr(0, size)).wrong, "") << size;
  std::mt19937 random(1);
  for (int i = 0; i < 1'000; ++i) {
    std::string changed = document;
    for (std::size_t n = 1 + random() % 3; n > 0; --n)
      changed[random() % changed.size()] = "0123456789\"{}[],:\\\0x-e.a "[random() % 25];
    ASSERT_EQ(brokenDocument(changed), "") << changed;
  }
}

} // namespace
} // namespace kova::json
