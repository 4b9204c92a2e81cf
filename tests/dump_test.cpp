#include "kova/kt.h"
#include "samples/builder.h"
#include "tests/support.h"
#include "textdump/lines.h"

#include <cerrno>
#include <gtest/gtest.h>

namespace kova::test {

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

using Edit = void (*)(Kis &);
constexpr Edit EDITS[] = {
    [](Kis &kis) { kis.scene.scene_obj_link_num = 0; },
    [](Kis &kis) { kis.scene.ext->external_obj_num = 0; },
    [](Kis &kis) { kis.light.element[0].dir_light_num = 0; },
    [](Kis &kis) { kis.obj.element[0].obj_lod_num = 0; },
    [](Kis &kis) { kis.obj.element[0].ext->obj_chain_root_link_num = 0; },
    [](Kis &kis) { kis.obj.element[0].ext->external_lod_obj_num = 0; },
    [](Kis &kis) { kis.vtx.element[0].vtx_num = 0; },
    [](Kis &kis) { kis.tri.element[0].tri_num = 0; },
    [](Kis &kis) { kis.tri.element[1].tri_anim_frame_num = 0; },
    [](Kis &kis) { kis.color.vtx_group_num = 0; },
    [](Kis &kis) { kis.part.element[0].part_tri_num = 0; },
    [](Kis &kis) { kis.mat.element[0].ext->external_tex_num = 0; },
    [](Kis &kis) { kis.mat.element[0].ext->prim_color_anim_num = 0; },
    [](Kis &kis) { kis.tex.element[1].ext->use_color_palette = 0; },
    [](Kis &kis) { kis.tex.element[1].ext->external_tex_img_num = 0; },
    [](Kis &kis) { kis.teximg.element[0].tex_img_size -= 12; },
    [](Kis &kis) { kis.teximg.element[0].ext->mipmap_max_level = 0; },
    [](Kis &kis) { kis.anim.element[2].anim_num = 0; },
    [](Kis &kis) { kis.anim.element[2].ext->rotate_axis_num = 0; },
    [](Kis &kis) { kis.anim.element[2].ext->classic_scale_num = 0; },
    [](Kis &kis) { kis.switch_.element[0].case_node_num = 0; },
    [](Kis &kis) { kis.ci_img.element[0].ci_img_width = 0; },
    [](Kis &kis) { kis.envelope.element[0].weighted_part[0].affected_node_num = 0; },
    [](Kis &kis) { kis.envelope.element[0].morph_part[0].table_num = 0; },
    [](Kis &kis) { kis.cluster.element[0].cluster_num = 0; },
    [](Kis &kis) { kis.weight.element[0].weight_num = 0; },
    [](Kis &kis) { kis.joint.element[0].obj_num = 0; },
    [](Kis &kis) { kis.effector.element[0].external_obj_num = 0; },
    [](Kis &kis) { kis.tri.element[0].tri[1].van_ext_blk_size = 0; },
};

/// A program that has lowered a count or a size in a model sees as much as that says.
TEST(Dump, PrintsAsMuchAsAnEditedCountSays) {
  // What a count of a maker block no longer takes in stands among its raw words, so these are not looked at; the rows
  // about raw words and texels show in the whole dump.
  const auto decoded = [](const std::string &dump) { return linesWithout(linesWithout(dump, "0"), "[").size(); };
  for (const Edit &edit : EDITS) {
    Kis kis;
    ASSERT_EQ(loadBytes(goodFile2().bytes, kis), 1);
    const std::string before = test::dumpOf(kis);
    edit(kis);
    const std::string after = test::dumpOf(kis);
    EXPECT_TRUE(decoded(after) + 3 < decoded(before) || after.size() + 3 < before.size()) << "edit " << &edit - EDITS;
  }
}

TEST(Dump, PassesItsBufferOn) {
  const Words words(60000, 0x01234567);
  const std::string label(70000, 'x');
  const ScratchFile file;
  {
    const Stream stream = kvKtWriteOpen(file.path.c_str());
    Text text(stream.get());
    kvWriteKtList(text, words, 240000, label.c_str());
    flush(text);
  }
  const std::string dump = readFile(file.path);
  EXPECT_EQ(dump.size(), 70003u + 60000 * 12 + 10000);
  EXPECT_TRUE(dump.starts_with("[" + label + "]\n0x01234567  "));
}

} // namespace kova::test
