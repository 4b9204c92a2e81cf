#include "format/chain.h"
#include "format/header.h"
#include "format/palette.h"
#include "format/skinning.h"
#include "kova/kt.h"
#include "samples/builder.h"
#include "tests/support.h"
#include "textdump/behavior.h"
#include "textdump/geometry.h"
#include "textdump/lines.h"
#include "textdump/material.h"
#include "textdump/scene.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <list>
#include <sstream>

namespace kova::test {

namespace {

template <class... Numbers> std::string formatted(const char *format, Numbers... numbers) {
  char text[256];
  return {text, static_cast<std::size_t>(std::snprintf(text, sizeof text, format, numbers...))};
}

/// What writers put into a text of their own.
template <class Write> std::string written(Write write) {
  const ScratchFile file;
  {
    const Stream stream = kvKtWriteOpen(file.path.c_str());
    Text text(stream.get());
    write(text);
    flush(text);
  }
  return readFile(file.path);
}

std::string dumpOf(Word version, const std::string &text) {
  Kis kis;
  capture([&] { loadBytes(build(version, text).bytes, kis); });
  return test::dumpOf(kis);
}

/// What the C library makes of some steps of a table.
template <class Record, class Words>
std::string formattedSteps(const Table<Record> &table, const Steps &steps, const Words &words) {
  std::string expected;
  for (std::size_t i = steps.first; i < steps.end; ++i) {
    const Step &step = table.step[i];
    const std::string format = std::string(table.text + step.begin, step.length) + spellingOf(step.conversion).data();
    const Word word = words[step.word];
    expected += step.conversion == Conversion::decimal ? formatted(format.c_str(), static_cast<int>(word))
                : step.conversion == Conversion::hex
                    ? formatted(format.c_str(), word)
                    : formatted(format.c_str(), static_cast<double>(std::bit_cast<float>(word)));
  }
  return expected + std::string(table.text + steps.last_begin, steps.last_length);
}

template <const auto &TABLE> void expectAsPrintf() {
  const auto real = [](float value) { return std::bit_cast<Word>(value); };
  const Word values[] = {
      0,          1,           10,          0x00100100,    0x7fffffff,   0x80000000,    0xffffffff,
      real(1),    real(-0.5F), real(1e-5F), real(0.0001F), real(123456), real(1234567), real(3.4e38F),
      real(-1e6F)};
  for (std::size_t shift = 0; shift < std::size(values); ++shift) {
    std::array<Word, TABLE.WORDS> words;
    for (std::size_t i = 0; i < words.size(); ++i)
      words[i] = values[(i + shift) % std::size(values)];
    const auto record = std::bit_cast<RecordOf<TABLE>>(words);
    EXPECT_EQ(written([&](Text &text) { putRecord<TABLE>(text, record); }), formattedSteps(TABLE, TABLE.now, words));
    if constexpr (TABLE.later.first != TABLE.later.end) {
      EXPECT_EQ(written([&](Text &text) { putLater<TABLE>(text, record); }), formattedSteps(TABLE, TABLE.later, words));
    }
  }
}

template <const auto &...TABLES> void expectAllAsPrintf() { (expectAsPrintf<TABLES>(), ...); }

} // namespace

TEST(Dump, LinesOfRecordsAreThoseOfPrintf) {
  expectAllAsPrintf<
      LINES<FileHeaderHead>, LINES<Version2Sizes>, LINES<ElementHead>, LINES_OF<LIST_TOP_WORDS>, LINES<RotateE>,
      LINES<Scale>, LINES<PrimColorAnim>, LINES<SceneHead>, LINES_OF<ENV_LIST_WORDS>, LINES<EnvHead>,
      LINES_OF<CAM_LIST_WORDS>, LINES<CamHead>, LINES_OF<LIGHT_LIST_WORDS>, LINES<LightHead>, LINES<DirLight>,
      LINES_OF<DIRECTION_LIGHT_WORDS>, LINES_OF<OBJ_LIST_WORDS>, LINES<ObjHead>, LINES_OF<SHAPE_LIST_WORDS>,
      LINES<ShapeHead>, LINES<SceneListExtHead>, LINES<CamExt>, LINES<ObjExtHead>, LINES<ShapeExt>,
      LINES_OF<VTX_LIST_WORDS>, LINES<VtxGroupHead>, LINES_OF<TRI_LIST_WORDS>, LINES<TriGroupHead>, LINES<TriHead>,
      LINES_OF<COLOR_LIST_WORDS>, LINES<TriColorGroupHead>, LINES<VtxColorGroupHead>, LINES_OF<VECTOR_LIST_WORDS>,
      LINES<TriNvGroupHead>, LINES<VtxNvGroupHead>, LINES_OF<ST_LIST_WORDS>, LINES<StGroupHead>,
      LINES_OF<PART_LIST_WORDS>, LINES<PartHead>, LINES_OF<MAT_LIST_WORDS>, LINES<MatHead>, LINES_OF<TEX_LIST_WORDS>,
      LINES<TexHead>, LINES<TexStill>, LINES<TexTilesHead>, LINES_OF<TEXIMG_LIST_WORDS>, LINES<TeximgHead>,
      LINES<MatExtHead>, LINES<TexExtHead>, LINES<TeximgExtHead>, LINES_OF<ANIM_LIST_WORDS>, LINES<AnimGroupHead>,
      LINES<AnimStep>, LINES<AnimKeyframe>, LINES<AnimNode>, LINES_OF<COLL_LIST_WORDS>, LINES<CollGroupHead>,
      LINES<CollHead>, LINES<CollTerrain>, LINES<CollPoint>, LINES<CollCircle>, LINES<CollSphere>, LINES<CollCylinder>,
      LINES<CollBox>, LINES_OF<SWITCH_LIST_WORDS>, LINES<SwitchHead>, LINES_OF<NAME_LIST_WORDS>,
      LINES<AnimGroupExtHead>, LINES<RotateAxis>, LINES<OrientationXY>, LINES<Translation>, LINES_OF<CI_IMG_LIST_WORDS>,
      LINES<CiImgHead>, LINES_OF<COLOR_PALETTE_LIST_WORDS>, LINES<ColorPaletteHead>, LINES<VtxTriNvColor>,
      LINES_OF<ENVELOPE_LIST_WORDS>, LINES<EnvelopeHead>, LINES<FullWeightedPartHead>, LINES<WeightedPartHead>,
      LINES<MorphPartHead>, LINES<EnvelopeVtx>, LINES<EnvelopeTri>, LINES_OF<CLUSTER_LIST_WORDS>,
      LINES<ClusterShapeHead>, LINES<Cluster>, LINES<ClusterVtx>, LINES<ClusterTri>, LINES_OF<WEIGHT_LIST_WORDS>,
      LINES<WeightGroupHead>, LINES_OF<CHAIN_ROOT_LIST_WORDS>, LINES<ChainRootHead>, LINES_OF<JOINT_LIST_WORDS>,
      LINES<JointHead>, LINES_OF<EFFECTOR_LIST_WORDS>, LINES<EffectorHead>>();
}

TEST(Dump, SharedWritersWriteTheirTexts) {
  ExtBlk blk{std::make_unique<ExtBlkWords>(ExtBlkWords{{1, 2, 3, 4, 5, 6, 7}, {0x75000000}})};
  const Words words = {0, 0xffffffff};
  const Floats floats = {1.0F, -2.5F};
  const External externals[] = {{7, 1}, {-1, -1}};
  const NodeIndex nodes[] = {{0x10, 5}, {0, -1}};
  const RotateE turns[] = {{0, 3, 1, 2}, {1, -4, 0, 0.5F}};
  const Scale scales[] = {{2, 9, {1, 2, 3}, {4, 5, 6}}};
  const PrimColorAnim colours[] = {{1, 8, {0, 0.25F, 0.5F, 1}}};
  const ListHead list{0x00200000, 24, 99, 0, 0, 0};
  const ElementHead element{0x00200100, 4, 84, -1};
  const std::string six = "0x00000001  0x00000002  0x00000003  0x00000004  0x00000005  0x00000006  \n";
  struct Row {
    const char *name;
    std::function<void(Text &)> write;
    std::string expected;
  };
  const Row rows[] = {
      {"heading of a list", [](Text &text) { kvWriteKtListName(text, "EnvList"); },
       "<EnvList> ;" + std::string(50, '-') + "\n\n"},
      {"end of a list", [](Text &text) { kvWriteKtListEnd(text, "EnvList"); }, "</EnvList>\n\n"},
      {"head of a list", [&](Text &text) { kvWriteKtListTop(text, list, "X"); },
       "<X> ;" + std::string(50, '-') + "\n\nlist_tag     0x00200000\nheader_size  24\nlist_size    99\n"},
      {"head of an element", [&](Text &text) { kvWriteKtElementTop(text, element, "CiImg"); },
       "CiImg(4)\ntag          0x00200100\nthis_index   4\nsize         84\nname_index   -1\n"},
      {"words, a full line", [&](Text &text) { kvWriteKtList(text, blk.words->van, 24, "six"); }, "[six]\n" + six},
      {"words, more than a line", [&](Text &text) { kvWriteKtList(text, blk.words->van, 31, "seven"); },
       "[seven]\n" + six + "0x00000007  \n"},
      {"words, fewer held than stated", [&](Text &text) { kvWriteKtList(text, blk.words->usr, 400, "held"); },
       "[held]\n0x75000000  \n"},
      {"no words", [&](Text &text) { kvWriteKtList(text, {}, 3, "none"); }, "[none]\n"},
      {"maker block", [&](Text &text) { kvWriteKtExtBlk1(text, blk, 6, 0); }, "[V_EXT]\n0x00000001  \n\n"},
      {"user block", [&](Text &text) { kvWriteKtExtBlk1(text, blk, 0, 4); }, "[U_EXT]\n0x75000000  \n\n"},
      {"no blocks", [](Text &text) { kvWriteKtExtBlk1(text, ExtBlk(), 0, 0); }, "\n"},
      {"blocks that are not held", [](Text &text) { kvWriteKtExtBlk1(text, ExtBlk(), 8, 0); }, "[V_EXT]\n\n"},
      {"blocks behind decoded words", [&](Text &text) { kvWriteKtExtBlk2(text, blk, 28, 4, 20); },
       "[V_EXT_OTHERS]\n0x00000006  0x00000007  \n[U_EXT]\n0x75000000  \n\n"},
      {"nothing behind decoded words", [&](Text &text) { kvWriteKtExtBlk2(text, blk, 28, 0, 28); }, "\n"},
      {"a huge decoded part", [&](Text &text) { kvWriteKtExtBlk2(text, blk, 28, 0, 0x80000000); }, "\n"},
      {"signed numbers", [&](Text &text) { kvWriteKtArray(text, words, "a"); }, "a[0]  0\na[1]  -1\n"},
      {"floats", [&](Text &text) { kvWriteKtArrayf(text, floats, "f"); }, "f[0]  1.00000\nf[1]  -2.50000\n"},
      {"external references", [&](Text &text) { kvWriteKtExternal(text, externals, "e"); },
       "e file name[0]   7\ne file name[1]   -1\ne name[0]        1\ne name[1]        -1\n"},
      {"nodes", [&](Text &text) { kvWriteKtNodeIndex(text, nodes, "n"); },
       "n kind[0]   0x00000010\nn kind[1]   0000000000\nn index[0]  5\nn index[1]  -1\n"},
      {"colour", [&](Text &text) { kvWriteKtRGBA(text, colours[0].prim_color_anim, "c"); },
       "c red  0.00000 green 0.250000 blue 0.500000 alpha 1.00000\n"},
      {"vector", [&](Text &text) { kvWriteKtXYZ(text, scales[0].scale, "v"); }, "v  1.00000 2.00000 3.00000 ; x,y,z\n"},
      {"rotations", [&](Text &text) { kvWriteKtRotateX(text, turns, "RotateY"); },
       "RotateY(0)\ninterpolation type  0000000000\nkey  3\nrotation angle  1.00000\n"
       "differential rotation angle  2.00000\n"
       "RotateY(1)\ninterpolation type  0x00000001\nkey  -4\nrotation angle  0.00000\n"
       "differential rotation angle  0.500000\n"},
      {"unique scales", [&](Text &text) { kvWriteKtUniqScale(text, scales, "Unique"); },
       "UniqueScale(0)interpolation type  0x00000002\nkey  9\nscale  1.00000 2.00000 3.00000 ; x,y,z\n"
       "differential scale  4.00000 5.00000 6.00000 ; x,y,z\n"},
      {"colour animations", [&](Text &text) { kvWriteKtPrimColorAnim(text, colours, "ForFog"); },
       "PrimColorAnimForFog(0)\ninterpolation_type  0x00000001\nkey                 8\n"
       "prim_color_anim red  0.00000 green 0.250000 blue 0.500000 alpha 1.00000\n"},
  };
  for (const Row &row : rows)
    EXPECT_EQ(written(row.write), row.expected) << row.name;
}

// --- Whole dumps ----------------------------------------------------------------------------------------------------

namespace {

void replaceAll(std::string &text, const std::string &from, const std::string &to) {
  for (std::size_t at = text.find(from); at != text.npos; at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
}

/// The numbers of a dump in their order, texels left out.
std::list<std::string> numbersOf(std::string dump) {
  replaceAll(dump, "refSt", " refSt"); // may stand behind a number without a line end
  replaceAll(dump, "Tri(", " Tri(");
  replaceAll(dump, ", ", " ");
  std::istringstream words(dump);
  std::list<std::string> numbers;
  for (std::string word; words >> word;)
    if (word.find_first_not_of("0123456789abcdefx.+-") == word.npos && word.find_first_of("0123456789") <= 1 &&
        !(word.size() == 4 && word.starts_with("0x")))
      numbers.push_back(word);
  return numbers;
}

/// Takes a word out of the numbers, in one of the forms in which it may print, within the next `reach` of them.
bool take(std::list<std::string> &numbers, std::size_t reach, Word word) {
  const std::string forms[] = {formatted("%d", static_cast<int>(word)), formatted("%0#10x", word),
                               formatted("%#g", static_cast<double>(std::bit_cast<float>(word)))};
  for (auto number = numbers.begin(); reach-- > 0 && number != numbers.end(); ++number)
    if (std::find(std::begin(forms), std::end(forms), *number) != std::end(forms)) {
      numbers.erase(number);
      return true;
    }
  return false;
}

} // namespace

// Every word that nobody set holds its position in its record, so the order of the numbers is that of the fields.
TEST(Dump, ShowsEveryWordOfAFileInItsOrder) {
  for (const Sample &sample : smallSamples()) {
    // In these not every word prints, or lists print that the file lacks.
    if (sample.name.ends_with("collisions") || sample.name == "no scene, no names")
      continue;
    Kis kis;
    loadBytes(sample.file.bytes, kis);
    std::list<std::string> numbers = numbersOf(test::dumpOf(kis));
    const std::string reordered = " material extension animation extension weighted parts morph parts ";
    const bool in_order = reordered.find(" " + sample.name + " ") == reordered.npos;
    for (const NamedWord &word : sample.file.words) {
      const Word value = getWord(sample.file, word.kind, word.number, word.field);
      ASSERT_TRUE(word.kind == "Name" || take(numbers, in_order ? 1 : numbers.size(), value))
          << sample.name << ": " << nameOf(word);
    }
    EXPECT_TRUE(numbers.empty()) << sample.name << ": " << numbers.front();
  }
}

TEST(Dump, StandsInTheOrderOfTheFile) {
  const auto sections = [](const std::string &dump) {
    std::string names;
    std::istringstream lines(dump);
    for (std::string line; std::getline(lines, line);)
      if (line.starts_with("<") && !line.starts_with("</"))
        names += line.substr(1, line.find('>') - 1) + " ";
    return names;
  };
  std::string version1 = "FileHeader ", version2;
  for (const ListRow &list : LISTS) {
    const std::string name = list.name == std::string_view("TeximgList") ? "TexImgList" : list.name;
    (&list < LISTS.data() + VERSION_1_LIST_NUM ? version1 : version2) += name + " ";
  }
  EXPECT_EQ(sections(dumpOf(0x100, "SceneList absent=1 NameList absent=1 ObjList absent=1")), version1);
  EXPECT_EQ(sections(dumpOf(0x200, "")), version1);
  EXPECT_EQ(sections(dumpOf(0x200, "EnvelopeList  JointList")), version1 + "EnvelopeList JointList ");
  Kis kis;
  loadBytes(goodFile2().bytes, kis);
  EXPECT_EQ(sections(test::dumpOf(kis)), version1 + version2);
}

// Small files, and what is shown of them: the rules of reading that the other tests do not reach, and every form of
// line that is rare.
TEST(Dump, ShowsWhatWasRead) {
  struct Row {
    const char *list; ///< that shows it
    const char *name;
    Word version;
    const char *text;
    const char *edits;
    const char *shown;
    const char *errors = "";
  };
  const Row rows[] = {
      // Empty lists.
      {"EnvList", "an empty list", 0x100, "", "",
       "-\n\nenv_list_tag          0x00100000\nenv_list_header_size  24\nenv_list_size         24\n"
       "env_num               0\nvan_ext_blk_size      0\nusr_ext_blk_size      0\n\n\n\n</EnvList>\n\n<"},
      {"ObjList", "a list that the file lacks", 0x100, "ObjList absent=1", "",
       "-\n\nobj_list_tag          0000000000\nobj_list_header_size  0 \nobj_list_size         0 \n"
       "obj_num               0\nvan_ext_blk_size      0\nusr_ext_blk_size      0\n\n\n</ObjList>\n\n<"},
      {"VtxList", "an empty list", 0x100, "", "",
       "-\n\nvtx_list_tag 0x00040000\nvtx_list_header_size  24\nvtx_list_size         24\n"
       "vtx_group_num         0\nvan_ext_blk_size      0\nusr_ext_blk_size      0\n\n\n</VtxList>\n\n<"},
      {"ColorList", "an empty list of two kinds", 0x100, "", "",
       "vtx_color_group_num     0\nvan_ext_blk_size        0\nusr_ext_blk_size        0\n\n\n</ColorList>"},
      {"NameList", "an empty list", 0x100, "", "",
       "name_num               0\nvan_ext_blk_size       0\nusr_ext_blk_size       0\n\n\n</NameList>"},
      {"SceneList", "no links", 0x100, "", "",
       "scene_light_link_num  0\nvan_ext_blk_size      0\nusr_ext_blk_size      0\n\n</SceneList>"},
      {"JointList", "an empty list of version 2", 0x200, "JointList", "",
       "joint_num          0\nvan_ext_blk_size   0\nusr_ext_blk_size   0\n\n\n</JointList>"},
      // Scene, lights, objects.
      {"SceneList", "links behind a longer header, fewer of one kind", 0x100,
       "SceneList scene_obj_link_num=2 scene_env_link_num=1",
       "SceneList 0 scene_header_size 48; SceneList 0 scene_env_link_num 0",
       "\nobj link[0]    12\nobj link[1]    13\n\n</SceneList>"},
      {"SceneList", "links behind a negative header size", 0x100, "SceneList scene_cam_link_num=1",
       "SceneList 0 scene_header_size 0xfffffffc", "scene_header_size     -4\n", "SceneList runs past its end.\n"},
      {"SceneList", "external references", 0x200, "SceneList { SceneListExt external_env_num=1 external_cam_num=1 }",
       "",
       "external_light_num        0\nexternal env file name[0]   5\nexternal env name[0]        6\n"
       "external cam file name[0]   7\nexternal cam name[0]        8\n\n</SceneList>"},
      {"EnvList", "a header size that is not used", 0x100, "EnvList { Env*2 }", "EnvList 0 list_header_size 999",
       "env_list_header_size  999\n"},
      {"LightList", "a light's own header size", 0x100, "LightList { Light { DirLight0*2 } }",
       "Light 0 light_header_size 84; Light 0 dir_light_num 1",
       "DirLight(0)\ndir_light_tag         0x000f0200\nthis_dir_light_index  1\n"},
      {"LightList", "a negative header size is refused before the tag is tested", 0x100, "LightList { Light }",
       "Light 0 light_header_size 0xfffffffc; Light 0 light_tag 7",
       "Light(0)\nlight_tag          0x00000007\nthis_light_index   0\nlight_header_size  -4\n",
       "LightList runs past its end.\n"},
      {"LightList", "lights that another type does not store", 0x100,
       "LightList { Light light_type=2 dir_light_num=3 }", "",
       "dir_light_num      3\nvan_ext_blk_size   0\nusr_ext_blk_size   0\n\n\n</LightList>"},
      // Two such lights are 24 + 8 + 2 * 48 bytes, 32 words.
      {"LightList", "such lights, as many as the list could hold", 0x100,
       "LightList { Light light_type=2 dir_light_num=3  Light light_type=9 dir_light_num=29 }", "", "</LightList>"},
      {"LightList", "such lights, one more than the list could hold", 0x100,
       "LightList { Light light_type=2 dir_light_num=3  Light light_type=9 dir_light_num=30 }", "", "</LightList>",
       "LightList runs past its end.\n"},
      {"ObjList", "an array longer than its object", 0x100, "ObjList { Obj  Obj obj_lod_num=2 }", "Obj 1 obj_lod_num 3",
       "LOD_dist[2]   3.36312e-44\n\n\n</ObjList>", "ObjList runs past its end.\n"},
      {"ObjList", "a block longer than its list", 0x100, "ObjList { Obj U=4  Obj V=4 }", "Obj 1 van_ext_blk_size 12",
       "van_ext_blk_size       12\n"
       "usr_ext_blk_size       0\n[V_EXT]\n\n\n</ObjList>",
       "ObjList runs past its end.\n"},
      // Maker blocks: too short, too long, not decoded.
      {"ObjList", "a maker block shorter than its words", 0x200, "ObjList { Obj V=12 }", "",
       "obj_render_type0_for_fog      0x00000002\nobj_render_type1_for_fog      0000000000\n"},
      {"ObjList", "a maker block cut within its arrays", 0x200,
       "ObjList { Obj V=32 { ObjExt obj_chain_root_link_num=2 external_lod_obj_num=2 } }", "",
       "external_lod_obj_num        2\nexternal_obj_num            0\nobj_chain_root_link[0] 7\n\n\n</ObjList>"},
      {"ObjList", "a maker block cut within its pairs", 0x200,
       "ObjList { Obj V=56 { ObjExt obj_chain_root_link_num=2 external_lod_obj_num=2 external_obj_num=1 } }", "",
       "external_lod_obj_dist[1]  10.0000\nexternal lod obj file name[0]   11\nexternal lod obj name[0]        13\n\n\n"
       "</ObjList>"},
      {"AnimList", "a maker block cut within its records", 0x200,
       "AnimList { AnimGroup V=227 { AnimGroupExt rotate_axis_num=1 rotate_x_num=3 rotate_y_num=1 } }", "",
       "RotateX(1)\ninterpolation type  0x424c0000\nkey  1112539136\nrotation angle  53.0000\n"
       "differential rotation angle  54.0000\nexternal orientation"},
      {"ShapeList", "a maker block of one word", 0x200, "ShapeList { Shape V=4 }", "",
       "kind_of_node_for_geometry  0000000000\nexternal mat file name[0]   0\nexternal mat name[0]        0\n\n\n<"},
      {"ShapeList", "a maker block longer than its words", 0x200, "ShapeList { Shape V=20 U=4 }", "",
       "external mat name[0]        2\n[V_EXT_OTHERS]\n0x76000003  0x76000004  \n[U_EXT]\n0x75000000  \n\n\n"
       "</ShapeList>"},
      {"TexList", "a maker block behind tiles", 0x200, "TexList { Tex tex_anim=1 { TexTiles TexExt } }", "",
       "tex_tile_img_num     0\n\ntex_filter                  0000000000\n"},
      // Triangles and colours.
      {"TriList", "plain references", 0x100, "TriList { TriGroup }", "",
       "refVtx->vtx_group_index                 8\nrefTriColor->tri_color_group_index      9\n"
       "refVtxColor->vtx_color_group_index      10\nrefTriNv->tri_nv_group_index            11\n"
       "refVtxNv->vtx_nv_group_index            12\nrefSt->st_group_index                   13\n\n\n</TriList>"},
      {"TriList", "references with both bits", 0x100,
       "TriList { TriGroup tri_anim_type=0x333333 tri_anim_frame_num=1 }", "",
       "refVtx->vtx_group_index[0]          8\nrefVtx->vtx_group_index[1]          9\n"
       "refTriColor->tri_color_group_index[0]  10\nrefTriColor->tri_color_group_index[1]  11\n"
       "refVtxColor->vtx_color_group_index[0] 12\nrefVtxColor->vtx_color_group_index[1] 13\n"
       "refTriNv->tri_nv_group_index[0]  14\nrefTriNv->tri_nv_group_index[1]  15\n"
       "refVtxNv->vtx_nv_group_index[0]  16\nrefVtxNv->vtx_nv_group_index[1]  17\n"
       "refSt->st_group_index[0]  18refSt->st_group_index[1]  19\n\n</TriList>"},
      {"TriList", "references by key", 0x100, "TriList { TriGroup tri_anim_type=0x222222 keys=1 { Tri V=4 } }", "",
       "refVtx->vtx_anim_key_num             1\nrefVtx->vtx_anim_key[0]             9\n"
       "refVtx->vtx_group_index[0]          10\nrefTriColor->tri_color_anim_key_num     1\n"
       "refTriColor->tri_color_anim_key[0]     12\nrefTriColor->tri_color_group_index[0]  13\n"
       "refVtxColor->vtx_color_anim_key_num             1\nrefVtxColor->vtx_color_anim_key[0] 15\n"
       "l->trig[i].refVtxColor->vtx_color_group_index[0] 16\nrefTriNv->tri_nv_anim_key_num              1\n"
       "refTriNv->tri_nv_anim_key[0]  18\nrefTriNv->tri_nv_group_index[0]  19\n"
       "refVtxNv->vtx_nv_anim_key_num              1\nrefVtxNv->vtx_nv_anim_key[0] 21\n"
       "refVtxNv->vtx_nv_group_index[0]  22\nrefSt->st_anim_key_num          1\nrefSt->st_anim_key[0]  24\n"
       "refSt->st_group_index[0]  25\nTri(0)\n"},
      {"TriList", "one reference by key without a key", 0x100,
       "TriList { TriGroup tri_anim_type=0x100000 { Tri V=4 } }", "", "refSt->st_group_index[0]  13Tri(0)\n"},
      {"TriList", "a triangle with a block", 0x100, "TriList { TriGroup { Tri V=4 } }", "",
       "vtx_color_index2  16\nvan_ext_blk_size  4\nusr_ext_blk_size  0\n[V_EXT]\n0x76000000  \n\n\n</TriList>"},
      {"TriList", "a negative number of frames", 0x100, "TriList { TriGroup tri_anim_type=0x3 }",
       "TriGroup 0 tri_anim_frame_num 0x80000000",
       "tri_num                0\nrefTriColor->tri_color_group_index      8\n"},
      {"TriList", "too many frames", 0x100, "TriList { TriGroup tri_anim_type=1 }",
       "TriGroup 0 tri_anim_frame_num 0x7fffffff", "tri_num                0\n\n\n</TriList>",
       "TriList runs past its end.\n"},
      {"ColorList", "vertex groups go by the number of triangle groups", 0x100,
       "ColorList vtx_group_num=0 { TriColorGroup*2  VtxColorGroup*2 vtx_color_num=1 }", "",
       "TriColorGroup(1)\ntri_color_group_tag          0x00050100\nthis_tri_color_group_index   1\n"
       "tri_color_group_header_size  20\ntri_color_group_size         20\n"
       "tri_color_num                0\n\n\n</ColorList>"},
      {"ColorList", "vertex groups without triangle groups", 0x100, "ColorList U=4 { VtxColorGroup*3 }", "",
       "vtx_color_group_size[2]   20\n\n[U_EXT]\n0x00050200  \n\n</ColorList>"},
      // Texels, animations, collisions.
      {"TexImgList", "an odd number of texels", 0x100, "TeximgList { Teximg texels=12 U=4  Teximg texels=1 }", "",
       "TexImgData\n0x01 0x02 0x03 0x04 0x05 0x06 0x07 0x08 0x09 0x0a 0x0b 0x0c \n[U_EXT]\n0x75000000  \n\n"
       "TexImg(1)\ntex_img_tag          0x00120100\nthis_tex_img_index   1\ntex_img_header_size  24\n"
       "tex_img_size         25\nvan_ext_blk_size     0\nusr_ext_blk_size     0\nTexImgData\n0x01 \n\n\n</TexImgList>"},
      {"AnimList", "a type that stores no records", 0x100, "AnimList { AnimGroup type=6 anim_num=2 }", "",
       "usr_ext_blk_size        0\nAnim(0)\nAnim(1)\n\n\n</AnimList>"},
      {"AnimList", "a negative number of such records", 0x100, "AnimList { AnimGroup type=1 }",
       "AnimGroup 0 anim_num 0xffffffff", "anim_num                -1\n", "AnimList runs past its end.\n"},
      {"CollList", "a point, and an unknown kind", 0x100,
       "CollList { CollGroup { Coll coll_type=0x20 { Point }  Coll coll_type=0x25 } }", "",
       "; POINT\ncoll_data_tag         0000000000\nthis_coll_data_index  1\n"
       "coll_data_size        2\ncoll_point         3.00000      4.00000      5.00000    ; x,y,zColl(1)\n"
       "coll_tag          0x000d1000\nthis_coll_index   1\ncoll_header_size  24\ncoll_size         24\n"
       "coll_name_index   4\ncoll_type         0x00000025 ; ????\n\n\n</CollList>"},
      {"CollList", "words past the end are 0", 0x100,
       "CollList { CollGroup { Coll coll_type=0x11  Coll coll_type=0x20 } }", "",
       "coll_type         0x00000011 ; ????\nColl(1)\ncoll_tag          0x000d1000\nthis_coll_index   1\n"
       "coll_header_size  24\ncoll_size         24\ncoll_name_index   4\ncoll_type         0x00000020 ; POINT\n"
       "coll_data_tag         0000000000\nthis_coll_data_index  0\ncoll_data_size        0\n"
       "coll_point         0.00000      0.00000      0.00000    ; x,y,z\n\n</CollList>"},
      {"CollList", "what follows a shorter kind", 0x100, "CollList { CollGroup { Coll coll_type=0x10  Coll } }", "",
       "; TERRAIN\ncoll_data_tag         0x000d1000 this_coll_data_index  1\ncoll_data_size        24\n"
       "x_subdivide           24\nz_subdivide           4\nshape_list_index      0\nColl(1)\n"},
      {"CollList", "of the blocks behind each collision the last ones are kept", 0x100,
       "CollList { CollGroup V=4 { Coll*2 } }", "CollGroup 0 van[0] 7",
       "; NONE\n[V_EXT]\n0x76000000  \n\n\n</CollList>"},
      {"CollList", "blocks of a group without collisions", 0x100, "CollList { CollGroup V=4 U=4 }", "",
       "usr_ext_blk_size       4\n[V_EXT]\n[U_EXT]\n\n\n</CollList>"},
      {"CollList", "a collision's size shorter than its words", 0x100, "CollList { CollGroup { Coll } }",
       "Coll 0 coll_size 20", "coll_type         0000000000 ; NONE\n\n\n</CollList>", "CollList runs past its end.\n"},
      // Names.
      {"NameList", "names of odd sizes", 0x100,
       "NameList V=4 { Name name_size=12 text=  Name name_size=21 text=four  Name text=a~b  Name text=abcd }", "",
       "\n\nName(0) \nName(1) four\nName(2) a_b\nName(3) abcd\n[V_EXT]\n0x76000000  \n\n</NameList>"},
      {"NameList", "the tags of the external names", 0x100, "NameList { Name text=a  Name text=b }",
       "NameList 0 list_tag 0x00270000; Name 1 name_tag 0x00270100", "Name(0) a\nName(1) b\n"},
      {"NameList", "the list's tag in a name", 0x100, "NameList { Name text=a  Name text=b }",
       "Name 0 name_tag 0x00270000", "Name(0) \n\n</NameList>",
       "irregular tag ! 0x00110000\n"}, // the list's tag, though the name's was the wrong one
      {"ExternalNameList", "a name with a blank", 0x200, "ExternalNameList { Name text=x~y }", "",
       "name_num_byte[0]    20\n\nName(0) x_y\n\n</ExternalNameList>"},
      // Version-2 lists.
      {"ColorPaletteList", "an odd number of colours", 0x200, "ColorPaletteList { ColorPalette color_num=5 }", "",
       "[color_array]\n0x00000015  0x00000016  \n\n\n</ColorPaletteList>"},
      {"ExternalNameList", "a wrong tag in an earlier list", 0x200, "EnvList { Env }  ExternalNameList { Name text=x }",
       "Env 0 env_tag 0", "Name(0) x\n", "irregular tag ! 0000000000 != 0x00100100\n"},
      {"ClusterList", "a wrong tag in the list before", 0x200, "EnvelopeList { Envelope }  ClusterList",
       "Envelope 0 tag 0x00220000",
       "<ClusterList> ;--------------------------------------------------\n\nlist_tag     0000000000\n",
       "irregular tag ! 0x00220000 != 0x00220100\n"},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(std::string(row.list) + ": " + row.name);
    const Audit result = audit(edited(build(row.version, row.text), row.edits).bytes);
    EXPECT_EQ(result.errors, row.errors);
    EXPECT_EQ(result.loaded, result.errors.empty() ? 1 : 0);
    const std::string section = sectionOf(result.dump, row.list);
    EXPECT_TRUE(section.find(row.shown) != std::string::npos) << row.shown << "is not in\n" << section;
    EXPECT_EQ(brokenInvariants(result.kis), "");
  }
}

TEST(Dump, LeavesWhatWasNotDecodedRaw) {
  for (const std::string kind : {"Cam", "Obj", "Shape", "Mat", "Tex", "Teximg", "AnimGroup"}) {
    const std::string list = (kind == "AnimGroup" ? "Anim" : kind) + "List { " + kind + " { " +
                             (kind == "Tex" ? "TexStill " : "") + kind + "Ext } }";
    const std::string raw = between(dumpOf(0x100, list), "[V_EXT]\n", "\n\n");
    const std::string others = between(dumpOf(0x200, "SceneList V=0 " + list), "[V_EXT_OTHERS]\n", "\n\n");
    EXPECT_EQ(others.substr(others.find('\n')), raw.substr(raw.find('\n'))) << kind;
  }
}

TEST(Dump, SavesToFiles) {
  for (const File &file : {goodFile1(), goodFile2()}) {
    Kis kis;
    loadBytes(file.bytes, kis);
    const ScratchFile saved;
    EXPECT_EQ(kvSaveAsKt(kis, saved.path.c_str()), 1);
    const std::string dump = test::dumpOf(kis);
    SCOPED_TRACE(kis.file_header.version);
    EXPECT_TRUE(sameText(readFile(saved.path), dump));
    EXPECT_EQ(kvSaveAsKt1(kis, saved.path.c_str()), 1);
    kis.file_header.version = VERSION_1;
    EXPECT_TRUE(sameText(linesWithout(readFile(saved.path), "version "), linesWithout(test::dumpOf(kis), "version ")));
    EXPECT_EQ(capture([&] { EXPECT_EQ(kvSaveAsKt(kis, "/no/file") + kvSaveAsKt1(kis, "/no/file"), 0); }).err,
              "Output File Open Error\nOutput File Open Error\n");
  }
}

TEST(Dump, PrintsOneSectionByItsName) {
  for (const File &file : {goodFile1(), goodFile2()}) {
    Kis kis;
    loadBytes(file.bytes, kis);
    const ScratchFile printed;
    {
      const Stream stream = kvKtWriteOpen(printed.path.c_str());
      for (const char *const list : kvListNames())
        EXPECT_EQ(kvPrintKtList(stream.get(), kis, list), 1) << list;
      EXPECT_EQ(kvPrintKtList(stream.get(), kis, "NoList"), 0);
    }
    const std::string dump = test::dumpOf(kis);
    EXPECT_EQ(readFile(printed.path), dump.substr(dump.find("<SceneList>")));
  }
}

TEST(Dump, SaysWhenItCannotBeWritten) {
  Kis kis;
  for (const Word version : {VERSION_1, VERSION_2}) {
    kis.file_header.version = version;
    EXPECT_EQ(capture([&] { EXPECT_EQ(kvSaveAsKt(kis, "/dev/full"), 0); }).err, "Output File Write Error\n");
    const Stream full = kvKtWriteOpen("/dev/full");
    EXPECT_EQ(kvPrintKt(full.get(), kis), 0);
    EXPECT_EQ(kvPrintKtList(full.get(), kis, "EnvList"), 0);
    EXPECT_EQ(kvWriteKt(std::fopen("/dev/full", "w"), kis), 0);
  }
}

namespace {

/// A stream of which one write, counted from 0, fails.
struct FailingSink {
  long failing_write;
  long writes = 0;
};

ssize_t writeToSink(void *cookie, const char *, std::size_t size) {
  auto &sink = *static_cast<FailingSink *>(cookie);
  if (sink.writes++ != sink.failing_write)
    return static_cast<ssize_t>(size);
  errno = EIO;
  return 0;
}

} // namespace

/// One write fails in the middle, and all after it succeed: the dump is not complete all the same.
TEST(Dump, SaysWhenOneWriteFails) {
  Kis kis;
  ASSERT_EQ(loadBytes(goodFile2().bytes, kis), 1);
  const auto print = [&](FailingSink &sink) {
    const Stream stream(::fopencookie(&sink, "w", {nullptr, writeToSink, nullptr, nullptr}));
    std::setvbuf(stream.get(), nullptr, _IONBF, 0);
    for (int i = 0; i < 3; ++i)
      std::fputs("before\n", stream.get());
    return kvPrintKt(stream.get(), kis);
  };
  FailingSink whole{-1};
  EXPECT_EQ(print(whole), 1);
  ASSERT_GT(whole.writes, 3);
  for (long k = 0; k < whole.writes; ++k) {
    FailingSink sink{k};
    EXPECT_EQ(print(sink), 0) << "write " << k << " of " << whole.writes;
  }
}

/// A program that has lowered a count or a size in a model sees as much as that says.
TEST(Dump, PrintsAsMuchAsAnEditedCountSays) {
  struct Row {
    const char *name;
    void (*edit)(Kis &);
  };
  const Row rows[] = {
      {"scene_obj_link_num", [](Kis &kis) { kis.scene.scene_obj_link_num = 0; }},
      {"external_obj_num of the scene", [](Kis &kis) { kis.scene.ext->external_obj_num = 0; }},
      {"dir_light_num", [](Kis &kis) { kis.light.element[0].dir_light_num = 0; }},
      {"obj_lod_num", [](Kis &kis) { kis.obj.element[0].obj_lod_num = 0; }},
      {"obj_chain_root_link_num", [](Kis &kis) { kis.obj.element[0].ext->obj_chain_root_link_num = 0; }},
      {"external_lod_obj_num", [](Kis &kis) { kis.obj.element[0].ext->external_lod_obj_num = 0; }},
      {"vtx_num", [](Kis &kis) { kis.vtx.element[0].vtx_num = 0; }},
      {"tri_num", [](Kis &kis) { kis.tri.element[0].tri_num = 0; }},
      {"tri_anim_frame_num", [](Kis &kis) { kis.tri.element[1].tri_anim_frame_num = 0; }},
      {"vtx_group_num", [](Kis &kis) { kis.color.vtx_group_num = 0; }},
      {"part_tri_num", [](Kis &kis) { kis.part.element[0].part_tri_num = 0; }},
      {"external_tex_num", [](Kis &kis) { kis.mat.element[0].ext->external_tex_num = 0; }},
      {"prim_color_anim_num", [](Kis &kis) { kis.mat.element[0].ext->prim_color_anim_num = 0; }},
      {"use_color_palette", [](Kis &kis) { kis.tex.element[1].ext->use_color_palette = 0; }},
      {"external_tex_img_num", [](Kis &kis) { kis.tex.element[1].ext->external_tex_img_num = 0; }},
      {"tex_img_size", [](Kis &kis) { kis.teximg.element[0].tex_img_size -= 12; }},
      {"mipmap_max_level", [](Kis &kis) { kis.teximg.element[0].ext->mipmap_max_level = 0; }},
      {"anim_num", [](Kis &kis) { kis.anim.element[2].anim_num = 0; }},
      {"rotate_axis_num", [](Kis &kis) { kis.anim.element[2].ext->rotate_axis_num = 0; }},
      {"classic_scale_num", [](Kis &kis) { kis.anim.element[2].ext->classic_scale_num = 0; }},
      {"case_node_num", [](Kis &kis) { kis.switch_.element[0].case_node_num = 0; }},
      {"ci_img_width", [](Kis &kis) { kis.ci_img.element[0].ci_img_width = 0; }},
      {"affected_node_num", [](Kis &kis) { kis.envelope.element[0].weighted_part[0].affected_node_num = 0; }},
      {"table_num", [](Kis &kis) { kis.envelope.element[0].morph_part[0].table_num = 0; }},
      {"cluster_num", [](Kis &kis) { kis.cluster.element[0].cluster_num = 0; }},
      {"weight_num", [](Kis &kis) { kis.weight.element[0].weight_num = 0; }},
      {"obj_num", [](Kis &kis) { kis.joint.element[0].obj_num = 0; }},
      {"external_obj_num", [](Kis &kis) { kis.effector.element[0].external_obj_num = 0; }},
      {"van_ext_blk_size", [](Kis &kis) { kis.tri.element[0].tri[1].van_ext_blk_size = 0; }},
  };
  // What a count of a maker block no longer takes in stands among its raw words, so these are not looked at; the rows
  // about raw words and texels show in the whole dump.
  const auto decoded = [](const std::string &dump) { return linesWithout(linesWithout(dump, "0"), "[").size(); };
  for (const Row &row : rows) {
    Kis kis;
    ASSERT_EQ(loadBytes(goodFile2().bytes, kis), 1);
    const std::string before = test::dumpOf(kis);
    row.edit(kis);
    const std::string after = test::dumpOf(kis);
    EXPECT_TRUE(decoded(after) + 3 < decoded(before) || after.size() + 3 < before.size()) << row.name;
  }
}

TEST(Dump, PassesItsBufferOn) {
  const Words words(60000, 0x01234567);
  const std::string label(70000, 'x');
  const std::string dump = written([&](Text &text) { kvWriteKtList(text, words, 240000, label.c_str()); });
  EXPECT_EQ(dump.size(), 70003u + 60000 * 12 + 10000);
  EXPECT_TRUE(dump.starts_with("[" + label + "]\n0x01234567  "));
}

} // namespace kova::test
