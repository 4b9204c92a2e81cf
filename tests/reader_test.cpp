#include "kova/check.h"
#include "reader/cursor.h"
#include "samples/builder.h"
#include "tests/allocations.h"
#include "tests/support.h"

#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace kova::test {

namespace {

struct Loaded {
  Kis kis;
  int ok;
  std::string errors;
};

/// Loads something and closes with what holds of every model.
Loaded loadedBy(const std::function<int(Kis &)> &load) {
  Loaded loaded{};
  loaded.errors = capture([&] { loaded.ok = load(loaded.kis); }).err;
  EXPECT_EQ(brokenInvariants(loaded.kis), "");
  return loaded;
}

Loaded load(const File &file) {
  return loadedBy([&](Kis &kis) { return loadBytes(file.bytes, kis); });
}

Loaded load(Word version, const std::string &text) { return load(build(version, text)); }

/// Reads one list through `kvReadList`, from the first bytes of it.
Loaded readList(const File &file, const std::string &list, std::size_t size) {
  const char *const tag = list == "SceneList" ? "scene_header_tag" : "list_tag";
  const auto begin = file.bytes.begin() + static_cast<std::ptrdiff_t>(offsetOf(file, list, 0, tag));
  const ScratchFile bytes(Bytes(begin, begin + static_cast<std::ptrdiff_t>(size)));
  const Stream stream = kvKbReadOpen(bytes.path.c_str());
  return loadedBy([&](Kis &kis) { return kvReadList(stream.get(), static_cast<Word>(size), kis, list.c_str()); });
}

/// The bytes of a list as its own size word gives them.
Word listSize(const File &file, const std::string &list) {
  return getWord(file, list, 0, list == "SceneList" ? "scene_size" : "list_size");
}

Cursor cursorOver(const Words &words) {
  return Cursor{reinterpret_cast<const unsigned char *>(words.data()), words.size() * sizeof(Word)};
}

} // namespace

TEST(Reader, SaysWhichListRunsPastItsEnd) {
  const File good = goodFile2();
  for (const char *const list : kvListNames())
    for (const Word less : {0U, 1U, 4U}) {
      SCOPED_TRACE(list + std::string(", bytes missing: ") + std::to_string(less));
      const Loaded loaded = readList(good, list, listSize(good, list) - less);
      EXPECT_EQ(loaded.ok, less == 0 ? 1 : 0);
      EXPECT_EQ(loaded.errors, less == 0 ? "" : std::string(list) + " runs past its end.\n");
    }
}

TEST(Reader, GoesOnBehindAnOddNumberOfTexels) {
  const Loaded loaded = load(0x100, "TeximgList { Teximg texels=5 V=4 }");
  const Teximg &image = loaded.kis.teximg.element[0];
  EXPECT_EQ(loaded.ok, 1);
  EXPECT_EQ(image.texel, (Bytes{1, 2, 3, 4, 5}));
  // The list ends with the word 05 76 00 00 and with 00, which is no whole word. On any host: as a little-endian one
  // has it, the bytes are 00 00 76 05 00, and the block is the word of the last four.
  EXPECT_EQ(vanExtBlk(image.ext_blk)[0], 0x00057600u);
  EXPECT_EQ(kvSizeofTeximg(loaded.kis.teximg, 0), 5u);
  EXPECT_EQ(kvSizeofTeximg(loaded.kis.teximg, 1), 0u);
}

// --- Version 2.0 ----------------------------------------------------------------------------------------------------

// --- The handle -----------------------------------------------------------------------------------------------------

/// @return the names of the lines of the dump that change where an element grows by 8; all of them do so by 8.
std::string grownWords(Kis &kis, Word index, Word tag) {
  const std::string before = dumpOf(kis);
  kvAdjustListSizeData(kis, index, 8, tag);
  const std::string after = dumpOf(kis);
  kvAdjustListSizeData(kis, index, -8, tag);
  EXPECT_TRUE(sameText(dumpOf(kis), before));
  std::istringstream was(before), is(after);
  std::string names, a, b;
  while (std::getline(was, a) && std::getline(is, b))
    if (a != b) {
      const std::size_t value = a.find_last_of(' ', a.find_last_not_of(' '));
      EXPECT_EQ(std::stol(b.substr(value)), std::stol(a.substr(value)) + 8) << b;
      names += a.substr(0, a.find(' ')) + " ";
    }
  return names;
}

TEST(Reader, KeepsSizesConsistentAfterAnEdit) {
  const File file = goodFile2();
  Kis kis;
  loadBytes(file.bytes, kis);
  const auto grown = [&](Word index, Word tag) { return grownWords(kis, index, tag); };
  for (const NamedWord &word : file.words)
    if (word.field == "list_tag" && word.kind != "VectorList") {
      SCOPED_TRACE(word.kind);
      const Word tag = getWord(file, word.kind, 0, "list_tag");
      const std::string of_list = grown(9, tag);
      const std::string of_element = grown(1, tag + 0x100);
      SCOPED_TRACE(of_element);
      std::istringstream names(of_element);
      std::string file_size, header, list, entry, record, more;
      names >> file_size >> header >> list >> entry >> record >> more;
      EXPECT_EQ(of_list, "size " + header + " " + list + " ");
      EXPECT_TRUE(header.ends_with("_list_num") && list.ends_with("list_size") && entry.ends_with("[1]"));
      EXPECT_TRUE(record.empty() ? word.kind.ends_with("NameList") : record.ends_with("size")) << record;
      EXPECT_TRUE(more.empty());
      header.resize(header.size() - 9); // the element's entry bears the name of the header's word
      EXPECT_TRUE(entry.find(header) != entry.npos || word.kind == "ExternalNameList");
      EXPECT_EQ(grown(9, tag + 0x100), "size ") << "no such element";
    }
  EXPECT_EQ(grown(0, 0x00010000), "size scene_list_num scene_size ");
  EXPECT_EQ(grown(0, 0x00060100), "size vector_list_num vector_list_size tri_nv_group_size[0] tri_nv_group_size ");
  for (const Word tag : {0x00010100U, 0x00050200U, 0x00060200U, 0x000d1000U, 0U})
    EXPECT_EQ(grown(0, tag), "size ") << std::hex << tag;
  kis.env.num_byte.clear(); // a program may take the table away
  EXPECT_EQ(grown(0, ENV_LIST_TAG + ELEMENT_KIND), "size ");
}

TEST(Reader, MakesAnEmptyHandle) {
  const KisHandle kis = kvNewKis();
  EXPECT_EQ(kis->file_name, "");
  EXPECT_EQ(kvKOVAver(kis->file_header), 0u);
  EXPECT_EQ(brokenInvariants(*kis), "");
  for (const char *const name : {"long name", "short", "", "a longer name than before"}) {
    EXPECT_EQ(kvSetFilename(name, *kis), 1);
    EXPECT_EQ(kis->file_name, name);
  }
  Word *const counts[] = {&kis->ci_img.num,  &kis->color_palette.num, &kis->envelope.num,
                          &kis->cluster.num, &kis->weight.num,        &kis->chain_root.num,
                          &kis->joint.num,   &kis->effector.num,      &kis->external_name.num};
  for (Word *const count : counts)
    *count = 4;
  kis->env.num = 4;
  for (const char *const list : kvListNames()) // a list without bytes is cleared, which does nothing in version 1
    EXPECT_EQ(kvReadList(nullptr, 0, *kis, list), 1) << list;
  for (const Word *const count : counts)
    EXPECT_EQ(*count, 0u);
  EXPECT_EQ(kis->env.num, 4u);
  EXPECT_EQ(kvReadList(nullptr, 0, *kis, "NoList"), 0);
  EXPECT_EQ(kvSizeofKOVA1file(load(0x100, "").kis.file_header), 584u);
}

TEST(Reader, TakesOtherThingsThanFiles) {
  const auto errors = [](const std::string &path) {
    const Loaded loaded = loadedBy([&](Kis &kis) { return kvOpenKb(path.c_str(), kis); });
    EXPECT_EQ(loaded.ok, 0) << path;
    return loaded.errors;
  };
  EXPECT_EQ(errors("/no/such/file"), "Input File Open Error\n");
  EXPECT_EQ(capture([] {
              Kis kis;
              kvSetFilename("/no/such/file", kis);
              EXPECT_EQ(kvOpenKb2Ext(kis), 0) << "gone when it is opened again";
            }).err,
            "Input File Open Error\n");
  EXPECT_EQ(errors(""), "Input File Open Error\n");
  const std::string nothing = "       0\nUnknown version number.\nIncorrect file header size.\n";
  EXPECT_EQ(errors("/"), "Input File Read Error\n") << "a directory can be opened, not read";
  EXPECT_EQ(errors(ScratchFile().path), nothing);
  const ScratchFile pipe;
  std::remove(pipe.path.c_str());
  ASSERT_EQ(::mkfifo(pipe.path.c_str(), 0600), 0);
  std::thread writer([&] {
    const File file = build(0x100, "");
    const int descriptor = ::open(pipe.path.c_str(), O_WRONLY);
    EXPECT_EQ(::write(descriptor, file.bytes.data(), file.bytes.size()), 584);
    ::close(descriptor);
  });
  EXPECT_EQ(errors(pipe.path), "file size 0 584\nData file size is incorrect - missing data.\n");
  writer.join();
}

// --- Primitives -----------------------------------------------------------------------------------------------------

TEST(Primitives, ConvertWholeWords) {
  Bytes bytes = {0, 0, 2, 0, 1, 2, 3, 4, 5, 6};
  endianSwap4(bytes.data(), bytes.size());
  Words words(2);
  std::memcpy(words.data(), bytes.data(), 8);
  EXPECT_EQ(words, (Words{0x200, 0x01020304}));
  EXPECT_EQ(bytes[8], 5);

  const ScratchFile file;
  EXPECT_EQ(fwriteEndianSwap4(words.data(), 4, 2, kvKbWriteOpen(file.path.c_str()).get()), 8u);
  EXPECT_EQ(words[0], 0x200u) << "the caller's words stay in host order";
  EXPECT_EQ(readFile(file.path), std::string("\0\0\2\0\1\2\3\4", 8));
  Words read(3);
  EXPECT_EQ(freadEndianSwap4(read.data(), 12, kvKbReadOpen(file.path.c_str()).get()), 8u);
  EXPECT_EQ(read, (Words{0x200, 0x01020304, 0}));
}

TEST(Primitives, OpenFilesOrSaySo) {
  const auto refused = [](Stream (*open)(const char *)) {
    return capture([&] { EXPECT_FALSE(open("/no/file")); }).err;
  };
  EXPECT_EQ(refused(kvKbReadOpen), "Input File Open Error\n");
  EXPECT_EQ(refused(kvKtReadOpen), "Input File Open Error\n");
  EXPECT_EQ(refused(kvKbWriteOpen), "Output File Open Error\n");
  EXPECT_EQ(refused(kvKtWriteOpen), "Output File Open Error\n");
  const ScratchFile file;
  EXPECT_TRUE(kvKtWriteOpen(file.path.c_str()) && kvKtReadOpen(file.path.c_str()));
}

TEST(Primitives, ReadWithinTheBuffer) {
  const Words words = {7, 8, 9, 1, 2, 3};
  Cursor cursor = cursorOver(words);
  Indices some;
  EXPECT_EQ(kvReadArray(cursor, some, 0), 1);
  EXPECT_EQ(kvReadArray(cursor, some, 2), 1);
  EXPECT_EQ(some, (Indices{7, 8}));
  EXPECT_EQ(kvReadArray(cursor, some, 5), 0);
  EXPECT_EQ(cursor.fault, Fault::past_end);
  EXPECT_EQ(kvSetupArray(cursor, some, 5), 1);
  EXPECT_EQ(some, (Indices{9, 1, 2, 3}));
  cursor.offset = 400;
  EXPECT_EQ(kvReadArray(cursor, some, 0), 1) << "reading nothing always succeeds";

  std::vector<External> pairs;
  EXPECT_EQ(kvSetupExternal(cursor = cursorOver(words), pairs, 3), 1);
  ASSERT_EQ(pairs.size(), 3u);
  EXPECT_EQ(pairs[1].file_name * 10 + pairs[1].name, 82);
  EXPECT_EQ(cursor.offset, 24u);
  std::vector<External> none = pairs;
  EXPECT_EQ(kvReadExternal(cursor, none, 3), 0);
  EXPECT_TRUE(none.empty()) << "pairs that are not all there leave nothing";
  kvSetNoExternal(pairs[0]);
  EXPECT_TRUE(pairs[0].file_name == -1 && pairs[0].name == -1);
}

TEST(Primitives, ReadAreasTexelsAndBlocks) {
  const Words words = {7, 8, 9, 1, 2, 3};
  Cursor cursor;
  Words area;
  Word *behind = nullptr;
  const Word *const result = kvReadArea(cursor = cursorOver(words), area, behind, 10, 2);
  EXPECT_EQ(area, (Words{7, 8, 9, 1})) << "two words of each row's ten bytes";
  EXPECT_TRUE(result == area.data() + 4 && behind == result);
  EXPECT_EQ(kvReadArea(cursor, area, behind, 8, 2), nullptr);
  Words empty;
  allocations.left = 0;
  EXPECT_EQ(kvReadArea(cursor, empty, behind, 0, 0), nullptr) << "no memory for a place";
  allocations.left = -1;

  Bytes texels(5);
  const Words packed = {0x01020304, 0x05060708};
  cursor = cursorOver(packed);
  cursor.offset = 1;
  EXPECT_EQ(copyFileOrder(cursor, texels.data(), 5), 1);
  EXPECT_EQ(texels, (Bytes{2, 3, 4, 5, 6})) << "in file order, also from an odd place";

  ExtBlk blk;
  EXPECT_EQ(kvReadExtBlk1(cursor = cursorOver(words), blk, 6, 4), 1);
  EXPECT_EQ(vanExtBlk(blk)[0] * 10 + usrExtBlk(blk)[0], 78u);
  EXPECT_EQ(cursor.offset, 8u) << "a size of 6 is one word";
  EXPECT_EQ(kvSetupExtBlk1(cursor, blk, 12, 8), 1);
  EXPECT_EQ(vanExtBlk(blk).size() + usrExtBlk(blk).size(), 4u);
}

TEST(Primitives, SetSmallThings) {
  EXPECT_EQ(capture([] { EXPECT_EQ(kvCheckTag(0x00100100, 0x00100000), 0); }).err,
            "irregular tag ! 0x00100100 != 0x00100000\n");
  EXPECT_EQ(capture([] { EXPECT_EQ(kvCheckTag(0, 0), 1); }).err, "");
  Word word = 3;
  EXPECT_EQ(kvTestSet(word, 3), 0);
  EXPECT_EQ(kvTestSet(word, 4), 1);
  EXPECT_EQ(word, 4u);
  Words poly = {0, 0, 0, 0, 0, 6};
  kvSetPoly(poly.data(), 1, 2, 3, 4, 5);
  EXPECT_EQ(poly, (Words{1, 2, 3, 4, 5, 6}));
  char text[] = " a b\tc ";
  kvSp2_(text);
  EXPECT_STREQ(text, "_a_b\tc_");
}

/// What the checks say of numbers that no file has.
TEST(Primitives, Check) {
  const Words sizes = {8, 12};
  std::string all;
  for (const std::function<int()> &check : std::initializer_list<std::function<int()>>{
           [] { return checksame("words", 1, ~0U); }, [] { return checkZero(0, "A name of eighteen"); },
           [] { return checksame("words", 7, 7) * checkZero(0x80000000, "x") * checkExtsize(0x80000000, 24); },
           [] { return check_whole_area_size("", 16, 56, 8, 0xfffffffb, 0, 0); },
           [] { return check_whole_structured_size("x", 1, 24, {}, 2, 0, 0); },
           [&] { return check_whole_structured_size("x", 1, 24, sizes, ~0U, 3, 4); },
           [&] { return check_whole_structured_size("x", 59, 24, sizes, 2, 3, 4); },
           [] { return checkExtsizeI(20, 24, 3, "Cam"); }, [] { return checkExtsizeI(24, 24, 3, "Cam"); },
           [&] { return check_color_list_size(1, 28, sizes, 1, sizes, 2, 3, 4); },
           [] { return checkChainRoot("x", 5, 40, 2, 1, 3, 4); },
           [] { return checkChainRoot("x", 63, 40, 2, 1, 3, 4); }, [] { return check_index_size("Obj", 1, -1, 8, 12); },
           [] { return check_index_size("Obj", 1, 1, 8, 8); }}) {
    int result = 0;
    const std::string text = capture([&] { result = check(); }).out;
    all += std::to_string(result) + ' ' + text;
  }
  EXPECT_EQ(all, "0 words is wrong. 1 != -1\n0 A name of eighteen is nothing.\n1 1 "
                 "0 x Some of size data is incorrect. 1 != 24 + 4 * 2 + 0 + 0\n"
                 "0 x Some of size data is incorrect. 1 != 24 + 4 * -1 + 3 + 4\n1 "
                 "0 vantor_extension_block_size is fewer. 20 < 24\n"
                 "This size must be more or equal to KOVA2.0 definition.\nError in Cam[3]\n1 "
                 "0 Some of size data is incorrect. 1 != 28 + 4 * 1 + 4 * 2 + 8 + 8 + 12 + 3 + 4\n"
                 "0 x 5 != 40 + 2*4 + 1*8 + 3 + 4\n1 "
                 "0 Obj[1] index is wrong. 1 != -1\nObj[1] size is wrong. 8 != 12\n1 ");
}

TEST(Model, LinksAndNamesLeadToElements) {
  File file =
      build(VERSION_1,
            "ObjList { Obj*3 } ColorList { TriColorGroup*2 VtxColorGroup*2 } NameList { Name text=a Name text=b~c }",
            LinkWords::none);
  const Loaded loaded = load(edited(file, "Obj 0 obj_name_index 1 obj_parent_link 2; Obj 1 obj_parent_link 3"));
  const Kis &kis = loaded.kis;
  const std::vector<Obj> &obj = kis.obj.element;
  ASSERT_EQ(obj.size(), 3U);
  EXPECT_EQ(kvElement(kis.obj, obj[0].obj_parent_link), &obj[2]);
  EXPECT_EQ(kvElement(kis.obj, obj[1].obj_parent_link), nullptr);
  EXPECT_EQ(kvElement(kis.obj, NO_LINK), nullptr);
  EXPECT_EQ(kvElement(kis.obj, Index{-1}), nullptr);
  EXPECT_EQ(kvElement(kis.color.vtx_group, Index{1}), &kis.color.vtx_group[1]);
  EXPECT_EQ(kvNameOf(kis, obj[0].obj_name_index), "b_c");
  EXPECT_EQ(kvNameOf(kis, obj[1].obj_name_index), "");
  EXPECT_EQ(kvNameOf(kis.external_name, 0), "");
}

TEST(Model, ListsAreVisitedInFileOrder) {
  std::vector<std::string> names;
  std::set<const void *> lists;
  Kis kis;
  kvVisitLists(kis, [&](const char *name, auto &list) {
    names.push_back(name);
    lists.insert(&list);
    list.offset = 1;
  });
  EXPECT_EQ(names, std::vector<std::string>(kvListNames().begin(), kvListNames().end()));
  EXPECT_EQ(lists.size(), names.size());
}

} // namespace kova::test
