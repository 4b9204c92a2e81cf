/// Input that does not behave: reads that fail, that are interrupted, that give less than was asked for; files that
/// change while they are read.

#include "harness/invariants.h"
#include "kova/setup.h"
#include "samples/builder.h"
#include "tests/support.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>

namespace kova::test {

namespace {

/// A stream over bytes that gives at most `piece` of them per call, and none from `end` on, whatever its length is.
/// With `failing_seek`, it does not seek from there, or with -2 from nowhere. The calls from `failing_call` to
/// `last_failing_call`, counted from 0, fail with an error.
struct Unreliable {
  Bytes bytes;
  std::size_t piece = 4096;
  long failing_call = -1;
  long last_failing_call = failing_call;
  int error = EIO;
  std::size_t end = SIZE_MAX;
  int failing_seek = -1;
  std::size_t place = 0;
  long calls = 0;
  std::size_t given = 0;
};

ssize_t readUnreliable(void *cookie, char *to, std::size_t size) {
  auto &source = *static_cast<Unreliable *>(cookie);
  const long call = source.calls++;
  if (call >= source.failing_call && call <= source.last_failing_call) {
    errno = source.error;
    return -1;
  }
  const std::size_t end = std::min(source.end, source.bytes.size());
  const std::size_t ahead = end - std::min(source.place, end);
  const std::size_t count = std::min({size, source.piece, ahead});
  std::copy_n(source.bytes.begin() + static_cast<std::ptrdiff_t>(std::min(source.place, end)), count, to);
  source.place += count;
  source.given += count;
  return static_cast<ssize_t>(count);
}

int seekUnreliable(void *cookie, off64_t *offset, int whence) {
  auto &source = *static_cast<Unreliable *>(cookie);
  if (source.failing_seek == whence || source.failing_seek == -2)
    return -1;
  const std::size_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? source.place : source.bytes.size();
  source.place = base + static_cast<std::size_t>(*offset);
  *offset = static_cast<off64_t>(source.place);
  return 0;
}

Stream open(Unreliable &source) {
  return Stream(::fopencookie(&source, "rb", {readUnreliable, nullptr, seekUnreliable, nullptr}));
}

struct Loaded {
  Kis kis;
  int ok;
  std::string errors;
};

/// Loads a 1.0 file from a stream, list by list, as far as that goes.
Loaded load(Unreliable &source) {
  Loaded loaded{};
  loaded.errors = capture([&] {
                    const Stream stream = open(source);
                    loaded.ok = kvReadFileHeader(stream.get(), loaded.kis);
                    Word FileHeader::*const sizes[] = {&FileHeader::scene_list_num, &FileHeader::env_list_num,
                                                       &FileHeader::cam_list_num,   &FileHeader::light_list_num,
                                                       &FileHeader::obj_list_num,   &FileHeader::shape_list_num,
                                                       &FileHeader::vtx_list_num,   &FileHeader::tri_list_num,
                                                       &FileHeader::color_list_num, &FileHeader::vector_list_num};
                    for (std::size_t i = 0; i < std::size(sizes) && loaded.ok; ++i)
                      loaded.ok =
                          kvReadList(stream.get(), loaded.kis.file_header.*sizes[i], loaded.kis, kvListNames()[i]);
                  }).err;
  EXPECT_EQ(brokenInvariants(loaded.kis), "");
  return loaded;
}

} // namespace

/// A call fails: once, from then on, or because it is interrupted. It is told once, the load fails, and later faults
/// leave more of the model. A call that was only made in advance is made again when its bytes are wanted; an
/// interrupted one is.
TEST(Input, ReadsThatFailAreToldOnceOrMadeAgain) {
  const Bytes bytes = goodFile1().bytes;
  Unreliable whole{.bytes = bytes, .piece = 200};
  const std::string all = dumpOf(load(whole).kis);
  ASSERT_GT(whole.calls, 15);
  std::ptrdiff_t most_lines = 0;
  int told_once = 0;
  for (long call = 0; call < whole.calls; ++call)
    for (const auto &[last, error] : {std::pair{whole.calls, EIO}, {call, EIO}, {call, EINTR}}) {
      SCOPED_TRACE("calls " + std::to_string(call) + " to " + std::to_string(last));
      Unreliable source{.bytes = bytes, .piece = 200, .failing_call = call, .last_failing_call = last, .error = error};
      const Loaded loaded = load(source);
      const bool in_advance = call >= whole.calls - 1 || last == call; // the last one reads ahead of what is wanted
      EXPECT_TRUE(loaded.ok ? error == EINTR || in_advance : error == EIO);
      EXPECT_EQ(loaded.errors, loaded.ok ? "" : "Input File Read Error\n");
      EXPECT_EQ(loaded.kis.input_file.read_error, !loaded.ok);
      const std::string dump = dumpOf(loaded.kis);
      const auto differs = std::mismatch(dump.begin(), dump.end(), all.begin(), all.end()).first;
      const std::ptrdiff_t lines = std::count(dump.begin(), differs, '\n');
      EXPECT_TRUE(loaded.ok ? dump == all : last == call || lines >= most_lines);
      most_lines = last == call ? most_lines : std::max(most_lines, lines);
      told_once += last == call && !loaded.ok;
    }
  EXPECT_GT(most_lines, 100);
  EXPECT_GT(told_once, 10);
  for (const std::size_t piece : {1U, 3U, 4U, 7U, 97U}) {
    Unreliable source{.bytes = bytes, .piece = piece};
    EXPECT_TRUE(dumpOf(load(source).kis) == all) << "pieces of " << piece;
  }
}

/// A file that becomes shorter while it is read: its length tells of more than the reads give.
TEST(Input, FilesThatGiveLessThanTheirLengthFail) {
  const FindingReceiver unheard([](const Finding &) {});
  const Bytes odd = build(0x100, "TeximgList { Teximg texels=5 V=8 U=4 }").bytes;
  for (const Bytes &bytes : {goodFile1().bytes, goodFile2().bytes, odd})
    for (std::size_t end = 0; end < bytes.size(); end += 2) {
      Unreliable source{.bytes = bytes, .end = end};
      const Stream stream = open(source);
      Kis kis;
      EXPECT_EQ(kvOpenKbStream(stream.get(), "", kis), 0) << end;
      EXPECT_EQ(brokenInvariants(kis), "") << end;
    }
}

/// Without its length a stream is read as it comes, if its size word is 0, too. Only the version-2 lists need a place
/// that can be gone to.
TEST(Input, StreamsThatDoNotSeekAreReadAsTheyCome) {
  File file = goodFile2();
  setWord(file, "FileHeader", 0, "size", 0);
  for (const int seek : {SEEK_END, -2}) {
    Unreliable source{.bytes = file.bytes, .failing_seek = seek};
    const Stream stream = open(source);
    Kis kis;
    const std::string errors = capture([&] { kvOpenKbStream(stream.get(), "", kis); }).err;
    EXPECT_EQ(errors, seek == -2 ? "Input File Read Error\n" : "");
    EXPECT_FALSE(kis.name.element.empty());
    EXPECT_EQ(kis.ci_img.element.empty(), seek == -2);
  }
  file = build(0x200, "EnvList V=200000 U=4 { Env }");
  setWord(file, "FileHeader", 0, "size", 0);
  for (const std::size_t end : {file.bytes.size(), std::size_t{150'000}}) { // more than is asked for at first
    Unreliable source{.bytes = file.bytes, .end = end, .failing_seek = -2};
    const Stream stream = open(source);
    Kis kis;
    capture([&] { kvOpenKbStream(stream.get(), "", kis); });
    EXPECT_EQ(kis.env.element.size(), 1U);
    EXPECT_EQ(vanExtBlk(kis.env.ext_blk).size(), end == 150'000 ? 0U : 50'000U);
  }
}

/// A part that cannot be read is told of once for the whole file.
TEST(Input, BothPartsOfAFileMayFail) {
  Unreliable source{.bytes = goodFile2().bytes, .piece = 200, .failing_call = 3, .last_failing_call = 1'000'000};
  const Stream stream = open(source);
  Kis kis;
  EXPECT_EQ(capture([&] { kvOpenKbStream(stream.get(), "", kis); }).err, "Input File Read Error\n");
  EXPECT_EQ(capture([&] { EXPECT_EQ(kvReadList(stream.get(), 100, kis, "EnvList"), 0); }).err, "");
}

/// There is no word in the file at which it stopped.
TEST(Input, AListThatLeadsPastTheFileEndsNowhere) {
  const Bytes file = build(0x100, "SceneList scene_header_size=200000 scene_obj_link_num=2").bytes;
  const Bytes bytes(file.begin(), file.begin() + 200);
  Unreliable source{.bytes = bytes};
  const Stream stream = open(source);
  std::fseek(stream.get(), 100, SEEK_SET);
  Kis kis;
  std::optional<std::uint64_t> offset = 0;
  const FindingReceiver receiver([&](const Finding &finding) { offset = finding.offset; });
  EXPECT_EQ(kvReadList(stream.get(), 300'000, kis, "SceneList"), 0);
  EXPECT_FALSE(offset) << *offset;
}

TEST(Input, BlocksOfAnUnknownVersionAreNotRead) {
  File file = build(0x100, "");
  setWord(file, "FileHeader", 0, "version", 0x300);
  setWord(file, "FileHeader", 0, "van_ext_blk_size", 0x7ffffff0);
  file.bytes.resize(1 << 20);
  Unreliable source{.bytes = file.bytes};
  const Stream stream = open(source);
  Kis kis;
  const std::string errors = capture([&] { EXPECT_EQ(kvReadFileHeader(stream.get(), kis), 0); }).err;
  EXPECT_TRUE(errors.starts_with("     300\nUnknown version number.\nfile size ")) << errors;
  EXPECT_TRUE(errors.ends_with("Incorrect file header size.\n")) << errors;
  EXPECT_LE(source.given, 8192U) << "what the stream's own buffer takes in";
}

namespace fs = std::filesystem;

constexpr const char *NO_DESCRIPTOR = "it cannot be opened";
constexpr const char *CHANGED = "Input File Has Changed\n";
constexpr const char *NO_FILE = "Input File Open Error\n";

/// What happens to a file between its two openings.
struct Replacement {
  const char *name;
  void (*replace)(const std::string &path, const Bytes &bytes);
  const char *errors;
};
constexpr Replacement REPLACEMENTS[] = {
    {"left alone", [](const std::string &, const Bytes &) {}, ""},
    {"an equal file in its place",
     [](const std::string &path, const Bytes &bytes) {
       const ScratchFile other(bytes);
       fs::rename(other.path, path);
     },
     CHANGED},
    {"longer by a byte", [](const std::string &path, const Bytes &bytes) { fs::resize_file(path, bytes.size() + 1); },
     CHANGED},
    {"written again",
     [](const std::string &path, const Bytes &) {
       std::this_thread::sleep_for(std::chrono::milliseconds(20)); // the clock of files goes in steps
       fs::last_write_time(path, fs::file_time_type::min());
     },
     CHANGED},
    {"gone", [](const std::string &path, const Bytes &) { fs::remove(path); }, NO_FILE},
    {"a pipe that nobody writes to",
     [](const std::string &path, const Bytes &) {
       fs::remove(path);
       ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
     },
     CHANGED},
    {"a folder",
     [](const std::string &path, const Bytes &) {
       fs::remove(path);
       fs::create_directory(path);
     },
     CHANGED},
    {NO_DESCRIPTOR, [](const std::string &, const Bytes &) {}, NO_FILE},
};

TEST(Input, AFileThatIsReplacedIsToldAndNotMixed) {
  const Bytes bytes = build(0x200, "CiImgList { CiImg }").bytes;
  struct rlimit usual;
  ::getrlimit(RLIMIT_NOFILE, &usual);
  for (const Replacement &row : REPLACEMENTS) {
    SCOPED_TRACE(row.name);
    const ScratchFile file(bytes);
    Kis kis;
    EXPECT_EQ(kvOpenKb1(file.path.c_str(), kis), 1);
    row.replace(file.path, bytes);
    int second = -1;
    EXPECT_EQ(capture([&] {
                const struct rlimit none = {row.name == NO_DESCRIPTOR ? 0 : usual.rlim_cur, usual.rlim_max};
                ::setrlimit(RLIMIT_NOFILE, &none);
                second = kvOpenKb2Ext(kis);
                ::setrlimit(RLIMIT_NOFILE, &usual);
              }).err,
              row.errors);
    EXPECT_EQ(second, *row.errors == '\0' ? 1 : 0);
    EXPECT_EQ(kis.ci_img.element.size(), *row.errors == '\0' ? 1U : 0U);
    kis.input_file = {}; // it was a pipe, say: then any file is taken
    capture([&] { second = kvOpenKb2Ext(kis); });
    EXPECT_EQ(second, fs::is_regular_file(file.path) ? 1 : 0);
  }
}

TEST(Input, NothingIsAPlaceToo) {
  Cursor cursor;
  Words area;
  Word *end = nullptr;
  EXPECT_NE(kvReadArea(cursor, area, end, 8, 0), nullptr);
  EXPECT_NE(end, nullptr);
  endianSwap4(nullptr, 0);
  EXPECT_EQ(fwriteEndianSwap4(nullptr, 0, 0, stdout), 0U);
  EXPECT_EQ(fwriteEndianSwap4(&cursor, 4, 0, stdout), 0U);
  EXPECT_EQ(freadEndianSwap4(nullptr, 0, stdin), 0U);

  Name name{};
  name.name_header_size = 16;
  name.name_size = 19;
  name.text = {0x61626364, 0x65666768};
  EXPECT_EQ(kvGetName(name), "abc") << "cut at the length that the model tells";
  name.name_size = 4;
  EXPECT_EQ(kvGetName(name), "");
}

} // namespace kova::test
