#include "reader/kova.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <new>
#include <optional>

namespace kova {

namespace {

// --- Bytes from a stream --------------------------------------------------------------------------------------------

/// @return the length of the stream in bytes; none where its end cannot be found (a pipe) or it cannot be read
/// (a directory, which names lengths of its own invention).
std::optional<std::uint64_t> streamLength(std::FILE *stream) {
  const long here = std::ftell(stream);
  if (here < 0 || std::ferror(stream) != 0 || std::fseek(stream, 0, SEEK_END) != 0)
    return std::nullopt;
  const long end = std::ftell(stream);
  std::fseek(stream, here, SEEK_SET);
  return end < 0 ? std::nullopt : std::optional<std::uint64_t>(end);
}

/// @return the bytes between a place in a stream and its end.
std::uint64_t bytesAhead(std::uint64_t length, long here) {
  return length > static_cast<std::uint64_t>(here) ? length - static_cast<std::uint64_t>(here) : 0;
}

struct Buffer {
  std::unique_ptr<unsigned char[]> bytes;
  std::size_t size = 0;
};

Cursor cursorOf(const Buffer &buffer) { return Cursor{buffer.bytes.get(), buffer.size}; }

void grow(Buffer &buffer, std::size_t capacity) {
  auto bytes = std::make_unique_for_overwrite<unsigned char[]>(capacity);
  std::copy_n(buffer.bytes.get(), buffer.size, bytes.get());
  buffer.bytes = std::move(bytes);
}

/// Reads up to `size` bytes from the stream's position and converts them to host order. Memory is asked for by what the
/// stream holds; where that cannot be told, by what it has given so far. Throws where memory cannot be had.
Buffer readBuffer(std::FILE *stream, Word size) {
  constexpr std::size_t FIRST_GUESS = 64 * 1024;
  const std::optional<std::uint64_t> length = streamLength(stream);
  const std::uint64_t ahead = length ? bytesAhead(*length, std::ftell(stream)) : FIRST_GUESS;
  std::size_t capacity = static_cast<std::size_t>(std::min<std::uint64_t>(size, ahead));
  Buffer buffer;
  for (;;) {
    grow(buffer, capacity);
    buffer.size += freadEndianSwap4(buffer.bytes.get() + buffer.size, capacity - buffer.size, stream);
    if (length || buffer.size < capacity || capacity == size)
      return buffer;
    capacity = std::min<std::size_t>(size, 2 * capacity);
  }
}

// --- The list table -------------------------------------------------------------------------------------------------

/// What the loader and the size bookkeeping know of a list.
struct ListRow {
  const char *name;
  Word tag;
  Word FileHeaderHead::*size1; ///< the header word with a version-1 list's size
  Word Version2Sizes::*size2;  ///< the table entry with a version-2 list's size
  int (*read)(Cursor &, Kis &);
  int (*clear)(Kis &);
  void (*resizeList)(Kis &, Word delta);
  int (*resizeElement)(Kis &, Word index, Word delta); ///< 0 for an index that no element has
};

Word &listSize(ListHead &list) { return list.list_size; }
Word &listSize(TwoKindListHead &list) { return list.list_size; }
Word &listSize(Scene &scene) { return scene.scene_size; }

template <class Element> auto &sizeTable(List<Element> &list) { return list.num_byte; }
template <class Element> auto &elements(List<Element> &list) { return list.element; }
template <class First, class Second> auto &sizeTable(TwoKindList<First, Second> &list) { return list.tri_group_size; }
template <class First, class Second> auto &elements(TwoKindList<First, Second> &list) { return list.tri_group; }

template <auto RECORD, auto ELEMENT_SIZE> int resizeElement(Kis &kis, Word index, Word delta) {
  auto &list = kis.*RECORD;
  if (index >= elements(list).size() || index >= sizeTable(list).size())
    return 0;
  sizeTable(list)[index] += delta;
  elements(list)[index].*ELEMENT_SIZE += delta;
  listSize(list) += delta;
  return 1;
}

/// Makes a row out of the record in the handle, its reader and clearer, and the size word of its elements (none for the
/// scene, which has no elements).
template <auto RECORD, auto READ, auto CLEAR, auto... ELEMENT_SIZE>
constexpr ListRow row(const char *name, Word tag, Word FileHeaderHead::*size1, Word Version2Sizes::*size2 = nullptr) {
  ListRow made{name, tag, size1, size2, nullptr, nullptr, nullptr, nullptr};
  made.read = [](Cursor &cursor, Kis &kis) { return READ(cursor, kis.*RECORD); };
  made.clear = [](Kis &kis) { return CLEAR(kis.*RECORD); };
  made.resizeList = [](Kis &kis, Word delta) { listSize(kis.*RECORD) += delta; };
  if constexpr (sizeof...(ELEMENT_SIZE) == 1)
    made.resizeElement = &resizeElement<RECORD, ELEMENT_SIZE...>;
  return made;
}

using H = FileHeaderHead;
using V2 = Version2Sizes;

/// The lists in file order, which is neither the order of their tags nor that of the header's words.
constexpr std::array<ListRow, 28> LISTS = {
    row<&Kis::scene, kvSetupSceneList, kvSetScene0>("SceneList", SCENE_LIST_TAG, &H::scene_list_num),
    row<&Kis::env, kvSetupEnvList, kvSetEnv0, &Env::env_size>("EnvList", ENV_LIST_TAG, &H::env_list_num),
    row<&Kis::cam, kvSetupCamList, kvSetCam0, &Cam::cam_size>("CamList", CAM_LIST_TAG, &H::cam_list_num),
    row<&Kis::light, kvSetupLightList, kvSetLight0, &Light::light_size>("LightList", LIGHT_LIST_TAG,
                                                                        &H::light_list_num),
    row<&Kis::obj, kvSetupObjList, kvSetObj0, &Obj::obj_size>("ObjList", OBJ_LIST_TAG, &H::obj_list_num),
    row<&Kis::shape, kvSetupShapeList, kvSetShape0, &Shape::shape_size>("ShapeList", SHAPE_LIST_TAG,
                                                                        &H::shape_list_num),
    row<&Kis::vtx, kvSetupVtxList, kvSetVtx0, &VtxGroup::vtx_group_size>("VtxList", VTX_LIST_TAG, &H::vtx_list_num),
    row<&Kis::tri, kvSetupTriList, kvSetTri0, &TriGroup::tri_group_size>("TriList", TRI_LIST_TAG, &H::tri_list_num),
    row<&Kis::color, kvSetupColorList, kvSetColor0, &TriColorGroup::tri_color_group_size>("ColorList", COLOR_LIST_TAG,
                                                                                          &H::color_list_num),
    row<&Kis::vector, kvSetupVectorList, kvSetVector0, &TriNvGroup::tri_nv_group_size>("VectorList", VECTOR_LIST_TAG,
                                                                                       &H::vector_list_num),
    row<&Kis::st, kvSetupStList, kvSetSt0, &StGroup::st_group_size>("StList", ST_LIST_TAG, &H::st_list_num),
    row<&Kis::part, kvSetupPartList, kvSetPart0, &Part::part_size>("PartList", PART_LIST_TAG, &H::part_list_num),
    row<&Kis::mat, kvSetupMatList, kvSetMat0, &Mat::mat_size>("MatList", MAT_LIST_TAG, &H::mat_list_num),
    row<&Kis::tex, kvSetupTexList, kvSetTex0, &Tex::tex_size>("TexList", TEX_LIST_TAG, &H::tex_list_num),
    row<&Kis::teximg, kvSetupTeximgList, kvSetTeximg0, &Teximg::tex_img_size>("TeximgList", TEXIMG_LIST_TAG,
                                                                              &H::tex_img_list_num),
    row<&Kis::anim, kvSetupAnimList, kvSetAnim0, &AnimGroup::anim_group_size>("AnimList", ANIM_LIST_TAG,
                                                                              &H::anim_list_num),
    row<&Kis::coll, kvSetupCollList, kvSetColl0, &CollGroup::coll_group_size>("CollList", COLL_LIST_TAG,
                                                                              &H::coll_list_num),
    row<&Kis::switch_, kvSetupSwitchList, kvSetSwitch0, &Switch::switch_size>("SwitchList", SWITCH_LIST_TAG,
                                                                              &H::switch_list_num),
    row<&Kis::name, kvSetupNameList, kvSetName0, &Name::name_size>("NameList", NAME_LIST_TAG, &H::name_list_num),
    row<&Kis::ci_img, kvSetupCiimgList, kvSetCiimg0, &CiImg::size>("CiImgList", CI_IMG_LIST_TAG, nullptr,
                                                                   &V2::ci_img_list_num),
    row<&Kis::color_palette, kvSetupColorPaletteList, kvSetColorPalette0, &ColorPalette::size>(
        "ColorPaletteList", COLOR_PALETTE_LIST_TAG, nullptr, &V2::color_palette_list_num),
    row<&Kis::envelope, kvSetupEnvelopeList, kvSetEnvelope0, &Envelope::size>("EnvelopeList", ENVELOPE_LIST_TAG,
                                                                              nullptr, &V2::envelope_list_num),
    row<&Kis::cluster, kvSetupClusterList, kvSetCluster0, &ClusterShape::size>("ClusterList", CLUSTER_LIST_TAG, nullptr,
                                                                               &V2::cluster_list_num),
    row<&Kis::weight, kvSetupWeightList, kvSetWeight0, &WeightGroup::size>("WeightList", WEIGHT_LIST_TAG, nullptr,
                                                                           &V2::weight_list_num),
    row<&Kis::chain_root, kvSetupChainRootList, kvSetChainRoot0, &ChainRoot::size>("ChainRootList", CHAIN_ROOT_LIST_TAG,
                                                                                   nullptr, &V2::chain_root_list_num),
    row<&Kis::joint, kvSetupJointList, kvSetJoint0, &Joint::size>("JointList", JOINT_LIST_TAG, nullptr,
                                                                  &V2::joint_list_num),
    row<&Kis::effector, kvSetupEffectorList, kvSetEffector0, &Effector::size>("EffectorList", EFFECTOR_LIST_TAG,
                                                                              nullptr, &V2::effector_list_num),
    row<&Kis::external_name, kvSetupExternalNameList, kvSetExternalName0, &Name::name_size>(
        "ExternalNameList", EXTERNAL_NAME_LIST_TAG, nullptr, &V2::external_name_list_num),
};

Word sizeOf(const ListRow &list, const FileHeader &header) {
  return list.size1 ? header.*list.size1 : header.version2.*list.size2;
}

/// Reads the lists of one version in file order. The first that fails ends it: where the next one begins is known, but
/// the format's library gives up here, and the verdict says so.
int readLists(std::FILE *stream, Kis &kis, bool version2) {
  for (const ListRow &list : LISTS)
    if ((list.size2 != nullptr) == version2 && !kvReadList(stream, sizeOf(list, kis.file_header), kis, list.name))
      return 0;
  return 1;
}

// --- The checks of the header ---------------------------------------------------------------------------------------

int checkVersion(const FileHeader &header) {
  const Word version = kvKOVAver(header);
  if (version == VERSION_1 || version == VERSION_2)
    return 1;
  std::fprintf(stderr, "%8x\n", header.version);
  std::fputs("Unknown version number.\n", stderr);
  return 0;
}

int checkFileSize(const FileHeader &header, std::uint64_t length) {
  if (length == header.size)
    return 1;
  std::fprintf(stderr, "file size %d %d\n", static_cast<Index>(length), static_cast<Index>(header.size));
  std::fprintf(stderr, "Data file size is incorrect - %s data.\n", length < header.size ? "missing" : "extra");
  return 0;
}

int checkHeaderSize(const FileHeader &header) {
  if (header.file_header_num == header.van_ext_blk_size + header.usr_ext_blk_size + Word{FILE_HEADER_BYTES})
    return 1;
  std::fputs("Incorrect file header size.\n", stderr);
  return 0;
}

int checkListSum(const FileHeader &header) {
  const Word sum = kvSizeofKOVA1file(header);
  // The version-2 sizes are not known yet; the checker adds them up.
  if (kvKOVAver(header) != VERSION_1 || header.size == sum)
    return 1;
  std::fprintf(stderr, "file size=%d,sum of list=%d\n", static_cast<Index>(header.size), static_cast<Index>(sum));
  std::fputs("Some of list_num data is incorrect.\n", stderr);
  return 0;
}

int checkHeaderTag(const FileHeader &header) {
  if (header.header_tag == 0)
    return 1;
  std::fputs("tag error.\n", stderr);
  return 0;
}

/// Reads the header's two blocks with one read of their sum, which wraps. A shortage is none of the header's faults.
int readHeaderBlocks(std::FILE *stream, FileHeader &header) {
  try {
    const Buffer buffer = readBuffer(stream, header.van_ext_blk_size + header.usr_ext_blk_size);
    Cursor cursor = cursorOf(buffer);
    if (kvSetupExtBlk1(cursor, header.ext_blk, header.van_ext_blk_size, header.usr_ext_blk_size))
      return 1;
  } catch (const std::exception &) { // told below, like the fault of the cursor
  }
  return sayNoMemory("FileHeader");
}

/// A pipe cannot be read a second time, and opening one that nobody writes to any more would wait for ever.
bool isPipe(const std::string &path) {
  try {
    std::error_code ignored;
    return std::filesystem::is_fifo(path, ignored);
  } catch (const std::exception &) {
    return false;
  }
}

} // namespace

KisHandle kvNewKis() { return KisHandle(new (std::nothrow) Kis); }

int kvOpenKb(const char *path, Kis &kis) {
  const int ok = kvOpenKb1(path, kis);
  if (kvKOVAver(kis.file_header) != VERSION_2)
    return ok;
  // Also run on what a version-1 part that failed has left.
  if (!kvSetupSceneListExt(kis.scene) || !kvSetupCamExt(kis.cam) || !kvSetupObjExt(kis.obj) ||
      !kvSetupShapeExt(kis.shape) || !kvSetupMatExt(kis.mat) || !kvSetupTexExt(kis.tex) ||
      !kvSetupTeximgExt(kis.teximg) || !kvSetupAnimGroupExt(kis.anim))
    return 0;
  // A maker block that cannot hold the nine sizes means a file without version-2 lists, which is no error.
  if (kis.file_header.van_ext_blk_size < VERSION_2_SIZES_BYTES)
    return ok;
  return kvOpenKb2Ext(kis) ? ok : 0;
}

int kvOpenKb1(const char *path, Kis &kis) {
  kis = Kis();
  const Stream stream = kvKbReadOpen(path);
  if (!stream)
    return 0;
  kvSetFilename(path, kis);
  return kvReadFileHeader(stream.get(), kis) && readLists(stream.get(), kis, false);
}

int kvOpenKb2Ext(Kis &kis) {
  if (isPipe(kis.file_name)) {
    std::fputs(INPUT_OPEN_ERROR, stderr);
    return 0;
  }
  const Stream stream = kvKbReadOpen(kis.file_name.c_str());
  if (!stream || std::fseek(stream.get(), static_cast<long>(kvSizeofKOVA1file(kis.file_header)), SEEK_SET) != 0)
    return 0;
  return readLists(stream.get(), kis, true);
}

int kvReadFileHeader(std::FILE *stream, Kis &kis) {
  FileHeader &header = kis.file_header;
  header = FileHeader();
  FileHeaderHead &words = header;
  [[maybe_unused]] const std::size_t got = std::fread(&words, 1, sizeof words, stream); // what the file lacks stays 0
  endianSwap4(&words, sizeof words);
  int ok = checkVersion(header);
  ok *= checkFileSize(header, streamLength(stream).value_or(0));
  ok *= checkHeaderSize(header);
  ok *= checkListSum(header);
  ok *= checkHeaderTag(header);
  ok *= readHeaderBlocks(stream, header);
  ok *= kvSetupFileHeaderExt(header);
  return ok;
}

int kvSetupFileHeaderExt(FileHeader &header) {
  if (kvKOVAver(header) != VERSION_2)
    return 1;
  if (header.van_ext_blk_size == 0)
    return 0;
  Cursor cursor = cursorOf(vanExtBlk(header.ext_blk));
  setupFixed(cursor, header.version2);
  return 1;
}

int kvReadList(std::FILE *stream, Word size, Kis &kis, const char *name) {
  const auto *const list = std::find_if(LISTS.begin(), LISTS.end(),
                                        [name](const ListRow &each) { return std::strcmp(each.name, name) == 0; });
  if (list == LISTS.end())
    return 0;
  if (size == 0)
    return list->clear(kis);
  try {
    Buffer buffer;
    ListStream source{stream, std::ftell(stream), nullptr};
    Cursor cursor;
    if (const std::optional<std::uint64_t> length = streamLength(stream)) {
      cursor.size = std::min<std::size_t>(size, bytesAhead(*length, source.begin));
      source.window = std::make_unique_for_overwrite<unsigned char[]>(std::min<std::size_t>(cursor.size, LIST_WINDOW));
      cursor.source = &source;
    } else {
      buffer = readBuffer(stream, size);
      cursor = cursorOf(buffer);
    }
    const int ok = list->read(cursor, kis);
    if (cursor.source) // whatever its reader made of it, the list ends where the header says
      std::fseek(stream, source.begin + static_cast<long>(cursor.size), SEEK_SET);
    if (cursor.fault == Fault::past_end)
      std::fprintf(stderr, "%s runs past its end.\n", name);
    return cursor.fault == Fault::no_memory ? sayNoMemory(name) : ok;
  } catch (const std::exception &) {
    return sayNoMemory(name);
  }
}

std::span<const char *const> kvListNames() {
  static constexpr auto NAMES = [] {
    std::array<const char *, LISTS.size()> names{};
    std::transform(LISTS.begin(), LISTS.end(), names.begin(), [](const ListRow &list) { return list.name; });
    return names;
  }();
  return NAMES;
}

int kvSetFilename(const char *name, Kis &kis) {
  try {
    kis.file_name = name;
    return 1;
  } catch (const std::exception &) {
    kis.file_name.clear();
    return 0;
  }
}

Word kvSizeofKOVA1file(const FileHeaderHead &header) {
  Word sum = header.file_header_num;
  for (const ListRow &list : LISTS)
    if (list.size1)
      sum += header.*list.size1;
  return sum;
}

void kvAdjustListSizeData(Kis &kis, Word index, Index delta, Word tag) {
  const Word by = static_cast<Word>(delta);
  FileHeader &header = kis.file_header;
  header.size += by;
  for (const ListRow &list : LISTS) {
    const bool of_list = tag == list.tag;
    if (!of_list && (!list.resizeElement || tag != list.tag + ELEMENT_KIND || !list.resizeElement(kis, index, by)))
      continue;
    if (of_list)
      list.resizeList(kis, by);
    (list.size1 ? header.*list.size1 : header.version2.*list.size2) += by;
  }
}

} // namespace kova
