/// What is found in files and what is shown of them, held against golden files: every word of the two files with
/// everything in them is changed alone, and small files show the rules of reading and the rare forms of lines.
/// With KOVA_RENEW in the environment the golden files are written anew; read the difference like code.

#include "harness/golden.h"
#include "kova/check.h"
#include "kova/findings.h"
#include "tests/support.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>

namespace kova::test {

namespace {

/// Where a finding points, by the name that the builder has for it.
std::string placeOf(const File &file, const Finding &finding) {
  std::string place = finding.list != nullptr ? finding.list : "nothing";
  if (finding.element)
    place += '[' + std::to_string(*finding.element) + ']';
  if (!finding.offset)
    return place;
  const auto word = std::ranges::find(file.words, *finding.offset, &NamedWord::offset);
  return place + ", " + (word != file.words.end() ? nameOf(*word) : "byte " + std::to_string(*finding.offset));
}

/// What a file brings: a line for each finding, as many as `most`, and what became of it in the end.
struct Story {
  std::string text;
  std::size_t findings = 0;
  Kis kis;
};

Story storyOf(const File &file, std::size_t most) {
  Story story;
  const FindingReceiver receiver([&](const Finding &finding) {
    std::string text = kvFindingText(finding);
    for (std::size_t at; (at = text.find('\n')) != text.npos;)
      text.replace(at, 1, at + 1 == text.size() ? "" : " / ");
    if (story.findings++ < most)
      story.text += std::string("  ") + finding.row->id + " at " + placeOf(file, finding) + ": " + text + '\n';
  });
  const int loaded = kvOpenKbMemory(file.bytes, "", story.kis);
  const int verdict = checkKOVA(story.kis);
  if (story.findings > most)
    story.text += "  and " + std::to_string(story.findings - most) + " more\n";
  if (!loaded || !verdict)
    story.text += std::string("  ") + (loaded ? "" : "not read whole ") + (verdict ? "" : "ERR") + '\n';
  return story;
}

void expectGolden(const std::string &name, const std::string &found) {
  EXPECT_EQ(differsFromGolden(KOVA_SOURCE_DIR "/tests/golden/" + name + ".out", found), "");
}

/// Each word alone, greater by one. Words of which nothing is said are not watched.
std::string everyWordOf(const File &good) {
  std::string all = storyOf(good, 9).text;
  for (const NamedWord &word : good.words) {
    File file = good;
    setWord(file, word.kind, word.number, word.field, getWord(good, word.kind, word.number, word.field) + 1);
    const Story story = storyOf(file, 2);
    EXPECT_EQ(brokenInvariants(story.kis), "") << nameOf(word);
    if (!story.text.empty())
      all += nameOf(word) + '\n' + story.text;
  }
  return all;
}

struct Case {
  const char *what;
  Word version;
  const char *text; ///< whose lists are shown; null for the file with everything in it
  const char *edits = "";
};
const Case CASES[] = {
    // Empty lists, and lists that the file lacks.
    {"empty lists", VERSION_1, "SceneList EnvList VtxList ColorList VectorList NameList"},
    {"an empty list of version 2", VERSION_2, "JointList"},
    {"lists that may be absent", VERSION_1, "SceneList absent=1 NameList absent=1"},
    {"lists that may not", VERSION_1, "EnvList absent=1 ObjList absent=1 ColorList absent=1"},
    // Scene, lights, objects.
    {"links behind a longer header, fewer of one kind", VERSION_1,
     "SceneList scene_obj_link_num=2 scene_env_link_num=1",
     "SceneList 0 scene_header_size 48; SceneList 0 scene_env_link_num 0"},
    {"links behind a negative header size", VERSION_1, "SceneList scene_cam_link_num=1",
     "SceneList 0 scene_header_size 0xfffffffc"},
    {"external references", VERSION_2, "SceneList { SceneListExt external_env_num=1 external_cam_num=1 }"},
    {"a header size that is not used", VERSION_1, "EnvList { Env*2 }", "EnvList 0 list_header_size 999"},
    {"a light's own header size", VERSION_1, "LightList { Light { DirLight0*2 } }",
     "Light 0 light_header_size 84; Light 0 dir_light_num 1"},
    {"a negative header size is refused before the tag is tested", VERSION_1, "LightList { Light }",
     "Light 0 light_header_size 0xfffffffc; Light 0 light_tag 7"},
    {"lights that another type does not store", VERSION_1, "LightList { Light light_type=2 dir_light_num=3 }"},
    // Two such lights are 24 + 8 + 2 * 48 bytes, 32 words.
    {"such lights, as many as the list could hold", VERSION_1,
     "LightList { Light light_type=2 dir_light_num=3  Light light_type=9 dir_light_num=29 }"},
    {"such lights, one more than the list could hold", VERSION_1,
     "LightList { Light light_type=2 dir_light_num=3  Light light_type=9 dir_light_num=30 }"},
    {"an array longer than its object", VERSION_1, "ObjList { Obj  Obj obj_lod_num=2 }", "Obj 1 obj_lod_num 3"},
    {"a block longer than its list", VERSION_1, "ObjList { Obj U=4  Obj V=4 }", "Obj 1 van_ext_blk_size 12"},
    // Maker blocks: too short, too long, not decoded.
    {"a maker block shorter than its words", VERSION_2, "ObjList { Obj V=12 }"},
    {"a maker block cut within its arrays", VERSION_2,
     "ObjList { Obj V=32 { ObjExt obj_chain_root_link_num=2 external_lod_obj_num=2 } }"},
    {"a maker block cut within its pairs", VERSION_2,
     "ObjList { Obj V=56 { ObjExt obj_chain_root_link_num=2 external_lod_obj_num=2 external_obj_num=1 } }"},
    {"a maker block cut within its records", VERSION_2,
     "AnimList { AnimGroup V=227 { AnimGroupExt rotate_axis_num=1 rotate_x_num=3 rotate_y_num=1 } }"},
    {"a maker block of one word", VERSION_2, "ShapeList { Shape V=4 }"},
    {"a maker block longer than its words", VERSION_2, "ShapeList { Shape V=20 U=4 }"},
    {"a maker block behind tiles", VERSION_2, "TexList { Tex tex_anim=1 { TexTiles TexExt } }"},
    // Triangles and colours.
    {"references with both bits", VERSION_1, "TriList { TriGroup tri_anim_type=0x333333 tri_anim_frame_num=1 }"},
    {"references by key", VERSION_1, "TriList { TriGroup tri_anim_type=0x222222 keys=1 { Tri V=4 } }"},
    {"one reference by key without a key", VERSION_1, "TriList { TriGroup tri_anim_type=0x100000 { Tri V=4 } }"},
    {"a triangle with a block", VERSION_1, "TriList { TriGroup { Tri V=4 } }"},
    {"a negative number of frames", VERSION_1, "TriList { TriGroup tri_anim_type=0x3 }",
     "TriGroup 0 tri_anim_frame_num 0x80000000"},
    {"too many frames", VERSION_1, "TriList { TriGroup tri_anim_type=1 }", "TriGroup 0 tri_anim_frame_num 0x7fffffff"},
    {"vertex groups go by the number of triangle groups", VERSION_1,
     "ColorList vtx_group_num=0 { TriColorGroup*2  VtxColorGroup*2 vtx_color_num=1 }"},
    {"vertex groups without triangle groups", VERSION_1, "ColorList U=4 { VtxColorGroup*3 }"},
    // Texels, animations, collisions.
    {"an odd number of texels", VERSION_1, "TeximgList { Teximg texels=12 U=4  Teximg texels=1 }"},
    {"a type that stores no records", VERSION_1, "AnimList { AnimGroup type=6 anim_num=2 }"},
    {"a negative number of such records", VERSION_1, "AnimList { AnimGroup type=1 }",
     "AnimGroup 0 anim_num 0xffffffff"},
    {"a point, and an unknown kind", VERSION_1,
     "CollList { CollGroup { Coll coll_type=0x20 { Point }  Coll coll_type=0x25 } }"},
    {"words past the end are 0", VERSION_1, "CollList { CollGroup { Coll coll_type=0x11  Coll coll_type=0x20 } }"},
    {"what follows a shorter kind", VERSION_1, "CollList { CollGroup { Coll coll_type=0x10  Coll } }"},
    {"of the blocks behind each collision the last ones are kept", VERSION_1, "CollList { CollGroup V=4 { Coll*2 } }",
     "CollGroup 0 van[0] 7"},
    {"blocks of a group without collisions", VERSION_1, "CollList { CollGroup V=4 U=4 }"},
    {"a collision's size shorter than its words", VERSION_1, "CollList { CollGroup { Coll } }", "Coll 0 coll_size 20"},
    // Names.
    {"names of odd sizes", VERSION_1,
     "NameList V=4 { Name name_size=12 text=  Name name_size=21 text=four  Name text=a~b  Name text=abcd }"},
    {"the tags of the external names", VERSION_1, "NameList { Name text=a  Name text=b }",
     "NameList 0 list_tag 0x00270000; Name 1 name_tag 0x00270100"},
    {"the list's tag in a name", VERSION_1, "NameList { Name text=a  Name text=b }", "Name 0 name_tag 0x00270000"},
    // Version-2 lists.
    {"an odd number of colours", VERSION_2, "ColorPaletteList { ColorPalette color_num=5 }"},
    {"a wrong tag in an earlier list", VERSION_2, "EnvList { Env }  ExternalNameList { Name text=x }",
     "Env 0 env_tag 0"},
    {"a wrong tag in the list before", VERSION_2, "EnvelopeList { Envelope }  ClusterList",
     "Envelope 0 tag 0x00220000"},
    // The header.
    {"an unknown version", VERSION_1, "", "FileHeader 0 version 0x300"},
    {"high bits of the version", VERSION_1, "", "FileHeader 0 version 0xabcd0100"},
    {"a negative size", VERSION_2, "", "FileHeader 0 size 0xffffffff"},
    {"all that can be wrong", VERSION_1, "",
     "FileHeader 0 size -4; FileHeader 0 file_header_num -8; FileHeader 0 header_tag 1"},
    {"all that can be wrong, of an unknown version", VERSION_1, "",
     "FileHeader 0 version 0x10201; FileHeader 0 size 600; FileHeader 0 usr_ext_blk_size 4; FileHeader 0 header_tag 8"},
    {"a header without the sizes of version 2", VERSION_2, "",
     "FileHeader 0 van_ext_blk_size 0; FileHeader 0 file_header_num 100"},
    {"a short block of sizes", VERSION_2, "FileHeader V=32 CiImgList { CiImg }"},
    {"a long block of sizes", VERSION_2, "FileHeader V=40 CiImgList { CiImg }"},
    // Counts and sizes.
    {"a type of animation that is not known", VERSION_1,
     "AnimList { AnimGroup type=3 { AnimKey }  AnimGroup type=9 anim_num=2 }"},
    {"a count that no file has", VERSION_1, "PartList { Part }", "Part 0 part_tri_num 100000"},
    {"short maker blocks", VERSION_2,
     "SceneList V=16 CamList { Cam V=20 } ObjList { Obj V=24 } ShapeList { Shape  Shape V=8 }"},
    {"no maker blocks", VERSION_2, "ShapeList { Shape V=0 } TexList { Tex V=0 { TexStill } }"},
    {"no maker block of the scene: the others stay raw", VERSION_2,
     "SceneList V=0 CamList { Cam { CamExt } } ObjList { Obj { ObjExt } } ShapeList { Shape { ShapeExt } } MatList { Mat { MatExt } } TexList { Tex { TexStill TexExt } } TeximgList { Teximg { TeximgExt } } AnimList { AnimGroup { AnimGroupExt } }"},
    {"the second block is missing", VERSION_2, "CamList { Cam  Cam V=0  Cam }"},
    {"the second block is missing", VERSION_2, "ObjList { Obj  Obj V=0  Obj } CiImgList { CiImg }"},
    {"the second block is missing", VERSION_2, "ShapeList { Shape  Shape V=0  Shape }"},
    {"the second block is missing", VERSION_2, "MatList { Mat  Mat V=0  Mat }"},
    {"the second block is missing", VERSION_2, "TexList { Tex { TexStill }  Tex V=0 { TexStill }  Tex { TexStill } }"},
    {"the second block is missing", VERSION_2, "TeximgList { Teximg  Teximg V=0  Teximg }"},
    {"the second block is missing", VERSION_2, "AnimList { AnimGroup  AnimGroup V=0  AnimGroup }"},
    // Edits of the file with everything in it, which is not shown.
    {"objects that are too long for their parts", VERSION_2, nullptr,
     "Obj 0 obj_size +4; ObjList 0 num_byte[0] +4; Obj 1 obj_size -4; ObjList 0 num_byte[1] -4"},
    {"triangle groups of all three forms", VERSION_2, nullptr,
     "TriGroup 1 tri_group_size +4; TriList 0 num_byte[1] +4; TriGroup 2 tri_group_size -8; TriList 0 num_byte[2] -8; TriGroup 3 tri_group_size +4; TriList 0 num_byte[3] +4"},
    {"sizes in a table that make up for each other", VERSION_2, nullptr,
     "TeximgList 0 num_byte[1] +4; TeximgList 0 num_byte[2] -4"},
    {"what nobody looks at in names", VERSION_2, nullptr,
     "NameList 0 list_size +4; NameList 0 num_byte[1] 7; Name 1 this_name_index 9"},
    {"a list that the header does not tell of", VERSION_2, nullptr, "FileHeaderExt 0 external_name_list_num 0"},
    {"a pair too many", VERSION_2, nullptr, "ObjExt 1 external_obj_num 1"},
    {"three counts of a material", VERSION_2, nullptr,
     "MatExt 1 external_tex_num 1; MatExt 1 prim_color_anim_num 1; MatExt 1 prim_color_anim_num_for_fog 2"},
    {"images, counted with half of what they take", VERSION_2, nullptr, "TexExt 1 external_tex_img_num +2"},
    {"one image more", VERSION_2, nullptr, "TexExt 1 external_tex_img_num +3"},
    {"records of 36 bytes", VERSION_2, nullptr,
     "AnimGroupExt 0 rotate_axis_num 1; AnimGroupExt 0 orientation_xy_num 1"},
    {"records of 16 bytes", VERSION_2, nullptr,
     "AnimGroupExt 1 rotate_x_num 1; AnimGroupExt 1 rotate_y_num 1; AnimGroupExt 1 rotate_z_num 1"},
    {"records of 32 bytes", VERSION_2, nullptr,
     "AnimGroupExt 5 translation_num 1; AnimGroupExt 5 unique_scale_num 1; AnimGroupExt 5 classic_scale_num 1"},
    {"sizes of weighted parts", VERSION_2, nullptr, "WeightedPart 0 size 100; WeightedPart 1 size +36"},
    {"a part with another number", VERSION_2, nullptr,
     "MorphPart 0 this_index 5; MorphPart 0 size -4; EnvelopeTri 1 this_envelope_tri_index 8; EnvelopeTri 1 envelope_tri_size +4"},
    {"a cluster with another number", VERSION_2, nullptr,
     "Cluster 1 size 57; Cluster 1 this_index 7; ClusterTri 0 cluster_tri_size 0"},
    {"external names with the tags of names", VERSION_2, nullptr,
     "ExternalNameList 0 list_tag 0x00110000; Name 5 name_tag 0x00110100"},
};

/// What is found in the file of a case, and the lists that its text names.
std::string shown(const Case &a) {
  const bool whole = a.text == nullptr;
  const File file = edited(whole ? goodFile2() : build(a.version, a.text), a.edits);
  const Story story = storyOf(file, 12);
  EXPECT_EQ(brokenInvariants(story.kis), "") << a.what;
  std::string all = std::string("\n== ") + a.what + ": " + (whole ? "" : a.text) + " | " + a.edits + "\n" + story.text;
  const std::string dump = dumpOf(story.kis);
  std::istringstream words(whole ? "" : a.text);
  for (std::string word; words >> word;)
    if (word.ends_with("List"))
      all += sectionOf(dump, word == "TeximgList" ? "TexImgList" : word) + '\n';
  return all;
}

} // namespace

TEST(Golden, Cases) {
  std::string all;
  for (const Case &a : CASES)
    all += shown(a);
  expectGolden("cases", all);
}

/// A 2.0 file says which further lists it lacks, and nothing else.
TEST(Golden, SmallFilesAreGood) {
  for (const Sample &sample : smallSamples()) {
    const Story story = storyOf(sample.file, LIST_NUM);
    const std::string rest = linesWithout(story.text, "  version-2-list-missing at ");
    EXPECT_EQ(rest + brokenInvariants(story.kis), "") << sample.name;
  }
}

TEST(Golden, EveryWordOfA10File) { expectGolden("words-1", everyWordOf(goodFile1())); }
TEST(Golden, EveryWordOfA20File) { expectGolden("words-2", everyWordOf(goodFile2())); }

} // namespace kova::test
