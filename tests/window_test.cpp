/// Lists much larger than the window through which they are read: what comes from a stream must be what comes from
/// memory.

#include "format/lists.h"
#include "kova/setup.h"
#include "tests/support.h"

#include <gtest/gtest.h>

namespace kova::test {

namespace {

/// The public functions that read a list, decode its maker blocks, and clear it.
template <class List> struct Steps {
  List Kis::*list;
  int (*read)(Cursor &, List &);
  int (*clear)(List &);
  int (*decode)(List &) = nullptr;
};

constexpr std::tuple STEPS = {
    Steps<Scene>{&Kis::scene, kvSetupSceneList, kvSetScene0, kvSetupSceneListExt},
    Steps<EnvList>{&Kis::env, kvSetupEnvList, kvSetEnv0},
    Steps<CamList>{&Kis::cam, kvSetupCamList, kvSetCam0, kvSetupCamExt},
    Steps<LightList>{&Kis::light, kvSetupLightList, kvSetLight0},
    Steps<ObjList>{&Kis::obj, kvSetupObjList, kvSetObj0, kvSetupObjExt},
    Steps<ShapeList>{&Kis::shape, kvSetupShapeList, kvSetShape0, kvSetupShapeExt},
    Steps<VtxList>{&Kis::vtx, kvSetupVtxList, kvSetVtx0},
    Steps<TriList>{&Kis::tri, kvSetupTriList, kvSetTri0},
    Steps<ColorList>{&Kis::color, kvSetupColorList, kvSetColor0},
    Steps<VectorList>{&Kis::vector, kvSetupVectorList, kvSetVector0},
    Steps<StList>{&Kis::st, kvSetupStList, kvSetSt0},
    Steps<PartList>{&Kis::part, kvSetupPartList, kvSetPart0},
    Steps<MatList>{&Kis::mat, kvSetupMatList, kvSetMat0, kvSetupMatExt},
    Steps<TexList>{&Kis::tex, kvSetupTexList, kvSetTex0, kvSetupTexExt},
    Steps<TeximgList>{&Kis::teximg, kvSetupTeximgList, kvSetTeximg0, kvSetupTeximgExt},
    Steps<AnimList>{&Kis::anim, kvSetupAnimList, kvSetAnim0, kvSetupAnimGroupExt},
    Steps<CollList>{&Kis::coll, kvSetupCollList, kvSetColl0},
    Steps<SwitchList>{&Kis::switch_, kvSetupSwitchList, kvSetSwitch0},
    Steps<NameList>{&Kis::name, kvSetupNameList, kvSetName0},
    Steps<CiImgList>{&Kis::ci_img, kvSetupCiimgList, kvSetCiimg0},
    Steps<ColorPaletteList>{&Kis::color_palette, kvSetupColorPaletteList, kvSetColorPalette0},
    Steps<EnvelopeList>{&Kis::envelope, kvSetupEnvelopeList, kvSetEnvelope0},
    Steps<ClusterList>{&Kis::cluster, kvSetupClusterList, kvSetCluster0},
    Steps<WeightList>{&Kis::weight, kvSetupWeightList, kvSetWeight0},
    Steps<ChainRootList>{&Kis::chain_root, kvSetupChainRootList, kvSetChainRoot0},
    Steps<JointList>{&Kis::joint, kvSetupJointList, kvSetJoint0},
    Steps<EffectorList>{&Kis::effector, kvSetupEffectorList, kvSetEffector0},
    Steps<ExternalNameList>{&Kis::external_name, kvSetupExternalNameList, kvSetExternalName0},
};

/// Calls `visit` with the steps of each list, its place in the order of the lists and its bytes in a file.
template <class Visit> void eachListIn(const File &file, const FileHeader &header, Visit visit) {
  std::size_t at = header.file_header_num, number = 0;
  const auto next = [&](const auto &steps) {
    const std::size_t size = header.*LISTS[number].size;
    EXPECT_LE(at + size, file.bytes.size());
    Bytes list(file.bytes.begin() + static_cast<std::ptrdiff_t>(at),
               file.bytes.begin() + static_cast<std::ptrdiff_t>(at + size));
    at += size;
    visit(steps, number++, std::move(list));
  };
  std::apply([&](const auto &...steps) { (next(steps), ...); }, STEPS);
}

/// Reads all lists of a file again, from memory, with the functions for each of them.
void readAgain(const File &file, Kis &kis) {
  eachListIn(file, kis.file_header, [&](const auto &steps, std::size_t number, Bytes list) {
    if (list.empty())
      return;
    endianSwap4(list.data(), list.size());
    Cursor cursor{list.data(), list.size()};
    kis.*steps.list = {};
    EXPECT_EQ(steps.read(cursor, kis.*steps.list), 1) << LISTS[number].name;
    if (steps.decode != nullptr && kis.file_header.version == VERSION_2) {
      EXPECT_EQ(steps.decode(kis.*steps.list), 1) << LISTS[number].name;
    }
  });
}

} // namespace

TEST(Window, ShowsWhatMemoryShows) {
  // Sizes that are no multiple of the window's, records that straddle its end, steps back to a light's own head and to
  // a collision's data, an odd number of texels before blocks, runs longer than the window at any place in it.
  const File file = build(0x100, R"(
LightList { Light*3 light_type=2 U=30004  Light*9 V=9000 { DirLight0*2 } }
TriList { TriGroup { Tri*30 V=4 U=3000 }  TriGroup tri_anim_type=0x11 tri_anim_frame_num=17000 { Tri*4 } }
VtxList { VtxGroup vtx_num=7  VtxGroup vtx_num=6000  VtxGroup vtx_num=2 }
CollList { CollGroup V=4000 { Coll*20 coll_type=0x21 }  CollGroup V=12 { Coll*30 coll_type=0x10 } }
TeximgList U=8 { Teximg texels=65536  Teximg texels=70004 V=4  Teximg texels=200003 V=8 U=4 }
NameList V=70000 { Name*60 text=a~rather~long~name~of~forty~four~characters })");
  Kis streamed;
  EXPECT_EQ(loadBytes(file.bytes, streamed), 1);
  Kis held;
  EXPECT_EQ(loadBytes(file.bytes, held), 1);
  readAgain(file, held);
  EXPECT_EQ(kvGetName(streamed.name.element.back()), "a_rather_long_name_of_forty_four_characters");
  EXPECT_TRUE(sameText(dumpOf(streamed), dumpOf(held)));
}

/// The functions for one list make together what a load makes; a list that was cleared has no elements, or in version 1
/// stays.
TEST(Window, ListsAreReadOneByOne) {
  for (const Sample &sample : goodSamples()) {
    const File &file = sample.file;
    Kis loaded, again;
    ASSERT_EQ(loadBytes(file.bytes, loaded) * loadBytes(file.bytes, again), 1);
    const std::string dump = dumpOf(loaded);
    readAgain(file, again);
    EXPECT_TRUE(sameText(dumpOf(again), dump)) << sample.name;
    eachListIn(file, loaded.file_header, [&](const auto &steps, std::size_t number, const Bytes &list) {
      auto &record = again.*steps.list;
      EXPECT_EQ(steps.clear(record), 1);
      if constexpr (requires { record.num; })
        if (number >= VERSION_1_LIST_NUM && !list.empty()) {
          EXPECT_EQ(record.num, 0U);
        }
    });
  }
}

/// A jump that leaves the window, forwards, and a file that ends before the list does.
TEST(Window, FollowsJumpsAndEnds) {
  const File jump = build(0x100, "SceneList scene_header_size=200000 scene_obj_link_num=2 U=4");
  Bytes bytes = jump.bytes;
  Kis kis;
  // The links lie 200,000 bytes into the list, whose size the header is told.
  Bytes gap(200000 - 44, 0x5a);
  bytes.insert(bytes.begin() + 100 + 44, gap.begin(), gap.end());
  File file{bytes, jump.words};
  for (const char *const word : {"size", "scene_list_num"})
    setWord(file, "FileHeader", 0, word, getWord(file, "FileHeader", 0, word) + static_cast<Word>(gap.size()));
  EXPECT_EQ(loadBytes(file.bytes, kis), 1);
  ASSERT_EQ(kis.scene.obj_link.size(), 2U);
  EXPECT_EQ(Word(kis.scene.obj_link[1]), getWord(jump, "SceneList", 0, "obj_link[1]"));

  file.bytes.resize(150000);
  std::FILE *const stream = ::fmemopen(file.bytes.data(), file.bytes.size(), "rb");
  std::fseek(stream, 100, SEEK_SET);
  int read = 1;
  EXPECT_EQ(capture([&] { read = kvReadList(stream, 300000, kis, "SceneList"); }).err,
            "SceneList runs past its end.\n");
  std::fclose(stream);
  EXPECT_EQ(read, 0);
  EXPECT_EQ(kis.scene.scene_header_size, 200000U);
  EXPECT_TRUE(kis.scene.obj_link.empty());
}

} // namespace kova::test
