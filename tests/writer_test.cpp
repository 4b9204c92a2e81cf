/// The way back: what was loaded is written again as the same file, byte for byte, or, where the file was damaged, as a
/// file that loads as the same model; and a save leaves the old file or the new one.

#include "harness/audit.h"
#include "kova/check.h"
#include "kova/kb.h"
#include "tests/support.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kova::test {

namespace {

namespace fs = std::filesystem;

/// What `kvWriteKb` writes; none where it refuses.
std::optional<Bytes> written(const Kis &kis) {
  char *at = nullptr;
  std::size_t size = 0;
  Stream stream(::open_memstream(&at, &size));
  const int ok = kvWriteKb(stream.get(), kis);
  stream.reset();
  Bytes bytes(at, at + size);
  std::free(at);
  return ok ? std::optional(bytes) : std::nullopt;
}

Bytes bytesOf(const std::string &text) { return Bytes(text.begin(), text.end()); }

/// @return whether a file that was read whole is written as the same file.
bool comesBack(const Bytes &bytes) {
  Kis kis;
  EXPECT_EQ(loadBytes(bytes, kis), 1);
  EXPECT_EQ(harness::auditFile(bytes), "");
  return written(kis) == bytes;
}

/// A folder of its own, removed with this.
struct ScratchFolder {
  std::string path;

  ScratchFolder() {
    path = ScratchFile().path + "-folder";
    fs::create_directory(path);
  }
  ScratchFolder(const ScratchFolder &) = delete;
  ScratchFolder &operator=(const ScratchFolder &) = delete;
  ~ScratchFolder() { fs::remove_all(path); }

  std::size_t files() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(path), fs::directory_iterator()));
  }
};

/// The folder is the current one while this lives. Paths in it are then found also by a user to whom the folders above
/// are closed.
struct Inside {
  fs::path before = fs::current_path();

  explicit Inside(const ScratchFolder &folder) { fs::current_path(folder.path); }
  Inside(const Inside &) = delete;
  Inside &operator=(const Inside &) = delete;
  ~Inside() { fs::current_path(before); }
};

/// Saves a model. @return what was printed on standard error, and the result.
std::string save(const Kis &kis, const std::string &path) {
  int ok = 0;
  const std::string errors = capture([&] { ok = kvSaveAsKb(kis, path.c_str()); }).err;
  return errors + (ok ? "saved" : "failed");
}

/// The same for the bytes of a file; the result with the system's reason.
std::string save(const Bytes &bytes, const std::string &path, Existing existing = Existing::replace,
                 unsigned mode = 0666) {
  int ok = 0;
  int reason = 0;
  const std::string errors = capture([&] {
                               ok = kvSaveBytes(bytes, path.c_str(), existing, mode);
                               reason = errno;
                             }).err;
  return errors + (ok ? "saved" : std::strerror(reason));
}

mode_t modeOf(const std::string &path) {
  struct stat status {};
  ::lstat(path.c_str(), &status);
  return status.st_mode;
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
  const ScratchFolder folder;
  EXPECT_EQ(save(kis, folder.path + "/file"), "Output File Write Error\nfailed");
  EXPECT_EQ(folder.files(), 0U);
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
  kvAdjustListSizeData(edit.kis, 0, static_cast<Word>(-8), OBJ_LIST_TAG + ELEMENT_KIND);
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
  refs[refTriColor] = {2, first(2), first(2)};
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
    EXPECT_EQ(save(kis, "/dev/full"), "Output File Write Error\nfailed");
  }
  EXPECT_TRUE(fs::is_character_file("/dev/full")) << "a device is not replaced";
}

/// A model or bytes, under a long name or through links, the first of which leads to nothing at first.
TEST(Save, ReplacesTheTargetAndKeepsItsPermissions) {
  const ScratchFolder folder;
  fs::create_directory(folder.path + "/there");
  fs::create_symlink("there/second", folder.path + "/first");
  fs::create_symlink("file", folder.path + "/there/second");
  Kis kis;
  ASSERT_TRUE(loadBytes(goodFile1().bytes, kis));
  const std::string name = folder.path + '/' + std::string(250, 'n'); // no room for an ending
  for (const auto &[path, target] : {std::pair{name, name}, {folder.path + "/first", folder.path + "/there/file"}}) {
    const mode_t mask = ::umask(027);
    EXPECT_EQ(save(Bytes(300000, 0xa5), path), "saved"); // no KOVA file
    ::umask(mask);
    EXPECT_EQ(modeOf(target), S_IFREG | 0640U);
    ::chmod(target.c_str(), 07604); // a saved file has no set-user-ID bit
    EXPECT_EQ(save(kis, path), "saved");
    EXPECT_EQ(bytesOf(readFile(target)), goodFile1().bytes);
    EXPECT_EQ(save(Bytes(), path), "saved");
    EXPECT_EQ(bytesOf(readFile(target)), Bytes());
    EXPECT_EQ(modeOf(target), S_IFREG | 0604U);
    EXPECT_EQ(fs::is_symlink(path), path != target);
  }
  EXPECT_TRUE(fs::is_symlink(folder.path + "/there/second"));
  fs::create_symlink("round", folder.path + "/round");
  EXPECT_EQ(save(kis, folder.path + "/round"), "Output File Open Error\nfailed");
  EXPECT_EQ(folder.files(), 4U);
}

/// What is there already, or appears while the file is written, stays.
TEST(Save, ANewFileTakesAFreeNameOnly) {
  const ScratchFolder folder;
  const std::string path = folder.path + "/file", link = folder.path + "/link";
  fs::create_symlink("nothing", link);
  const mode_t mask = ::umask(022);
  EXPECT_EQ(save(Bytes(9), path, Existing::refuse, 07620), "saved");
  ::umask(mask);
  EXPECT_EQ(modeOf(path), S_IFREG | 0600U);
  for (const std::string &taken : {path, link, folder.path})
    EXPECT_EQ(save(Bytes(10), taken, Existing::refuse), "File exists");
  EXPECT_EQ(fs::file_size(path), 9U);
  const std::string late = folder.path + "/late";
  EXPECT_EQ(kvSaveFile(late.c_str(), Existing::refuse, 0600,
                       [&](std::FILE *) { return save(Bytes(7), late) == "saved" ? 1 : 0; }),
            0);
  EXPECT_EQ(errno, EEXIST);
  EXPECT_EQ(fs::file_size(late), 7U);
  EXPECT_EQ(folder.files(), 3U);
}

/// A process that is told to end while it saves ends afterwards: nothing is left beside the target.
TEST(Save, ASignalLeavesNothingBehind) {
  const ScratchFolder folder;
  const std::string path = folder.path + "/file";
  for (const int signal : {SIGTERM, SIGINT, SIGPIPE}) {
    const pid_t child = ::fork();
    if (child == 0) {
      kvSaveFile(path.c_str(), Existing::replace, 0600, [&](std::FILE *) { return ::raise(signal) == 0 ? 1 : 0; });
      ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal);
    EXPECT_EQ(folder.files(), 1U);
  }
}

/// Also on a disk that is full, as a limit on the size of files makes one.
TEST(Save, AFailureLeavesTheTargetAsItWas) {
  const ScratchFolder folder;
  const std::string path = folder.path + "/file";
  Kis kis;
  ASSERT_TRUE(loadBytes(goodFile1().bytes, kis));
  ASSERT_EQ(save(kis, path), "saved");
  for (const std::string &wrong : {folder.path, folder.path + "/none/file", path + "/file"})
    EXPECT_EQ(save(kis, wrong), "Output File Open Error\nfailed");
  EXPECT_EQ(save(Bytes(1), folder.path), "Is a directory");
  kis.file_header.version = 0; // writing fails after the new file was made
  struct rlimit before {};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const struct rlimit small = {100000, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  for (const std::string &to : {path, folder.path + "/new"}) {
    EXPECT_EQ(save(kis, to), "Output File Write Error\nfailed");
    EXPECT_EQ(save(Bytes(300000), to), "File too large");
  }
  EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
  EXPECT_EQ(bytesOf(readFile(path)), goodFile1().bytes);
  EXPECT_EQ(folder.files(), 1U);
  const std::string pipe = folder.path + "/pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(save(Bytes(1), pipe), "No such device or address") << "a pipe that nobody reads";
}

/// Owner and group stay where the system allows it; a group that has to change gets no more than everybody.
TEST(Save, KeepsOwnerAndGroupWhereItMay) {
  if (::geteuid() != 0)
    GTEST_SKIP() << "only the superuser gives files away";
  const ScratchFolder folder;
  const Inside inside(folder);
  const std::string path = "file";
  const auto saveAs = [&](uid_t user) {
    EXPECT_EQ(save(Bytes(1), path), "saved");
    EXPECT_EQ(::chown(path.c_str(), 65534, 12345), 0);
    ::chmod(path.c_str(), 0664);
    EXPECT_EQ(::seteuid(user), 0);
    EXPECT_EQ(save(Bytes(2), path), "saved");
    EXPECT_EQ(::seteuid(0), 0);
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return std::array<unsigned, 3>{status.st_uid, status.st_gid, status.st_mode & 0777U};
  };
  EXPECT_EQ(saveAs(0), (std::array<unsigned, 3>{65534, 12345, 0664}));
  ::chmod(folder.path.c_str(), 0777);
  EXPECT_EQ(saveAs(65534), (std::array<unsigned, 3>{65534, ::getegid(), 0644}));
}

/// Whoever may not write to the file or its folder cannot save there, also where the other one would allow it.
TEST(Save, NeedsTheRightToWrite) {
  Kis kis;
  EXPECT_TRUE(loadBytes(goodFile1().bytes, kis));
  const ScratchFolder folder;
  const Inside inside(folder);
  // The superuser may write everywhere, and so is somebody else for a while.
  constexpr uid_t NOBODY = 65534;
  const uid_t user = ::geteuid();
  if (user == 0 && (::chown(".", NOBODY, gid_t(-1)) != 0 || ::seteuid(NOBODY) != 0))
    GTEST_SKIP() << "the superuser may write everywhere, and cannot become somebody else";
  EXPECT_EQ(save(kis, "file"), "saved");
  ::chmod("file", 0400);
  EXPECT_EQ(save(kis, "file"), "Output File Open Error\nfailed");
  ::chmod("file", 0600);
  ::chmod(".", 0500);
  EXPECT_EQ(save(kis, "file"), "Output File Open Error\nfailed");
  EXPECT_EQ(save(kis, "new"), "Output File Open Error\nfailed");
  ::chmod(".", 0700);
  EXPECT_EQ(bytesOf(readFile("file")), goodFile1().bytes);
  EXPECT_EQ(::seteuid(user), 0);
  EXPECT_EQ(folder.files(), 1U);
}

} // namespace kova::test
