/// Lists much larger than the window through which they are read: what comes from a stream must be what comes from
/// memory.

#include "kova/setup.h"
#include "tests/support.h"

#include <gtest/gtest.h>

namespace kova::test {

namespace {

/// Reads a list of the file again, from memory.
template <class Record>
int readFromMemory(const Bytes &bytes, const FileHeader &header, Word offset, Word size,
                   int (*setup)(Cursor &, Record &), Record &record) {
  Bytes list(bytes.begin() + offset, bytes.begin() + offset + size);
  endianSwap4(list.data(), list.size());
  Cursor cursor{list.data(), list.size()};
  EXPECT_LE(offset + size, header.size);
  return setup(cursor, record);
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
  const FileHeader &header = held.file_header;
  Word at = header.file_header_num + header.scene_list_num + header.env_list_num + header.cam_list_num;
  EXPECT_TRUE(readFromMemory(file.bytes, header, at, header.light_list_num, kvSetupLightList, held.light));
  at += header.light_list_num + header.obj_list_num + header.shape_list_num;
  EXPECT_TRUE(readFromMemory(file.bytes, header, at, header.vtx_list_num, kvSetupVtxList, held.vtx));
  at += header.vtx_list_num;
  EXPECT_TRUE(readFromMemory(file.bytes, header, at, header.tri_list_num, kvSetupTriList, held.tri));
  at += header.tri_list_num + header.color_list_num + header.vector_list_num + header.st_list_num +
        header.part_list_num + header.mat_list_num + header.tex_list_num;
  EXPECT_TRUE(readFromMemory(file.bytes, header, at, header.tex_img_list_num, kvSetupTeximgList, held.teximg));
  at += header.tex_img_list_num + header.anim_list_num;
  EXPECT_TRUE(readFromMemory(file.bytes, header, at, header.coll_list_num, kvSetupCollList, held.coll));
  EXPECT_EQ(kvGetName(streamed.name.element.back()), "a_rather_long_name_of_forty_four_characters");
  EXPECT_TRUE(sameText(dumpOf(streamed), dumpOf(held)));
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
