#include "kova/kb.h"

#include "format/lists.h"
#include "writer/elements.h"
#include "writer/lists.h"

#include <algorithm>

namespace kova {

namespace {

/// @return whether any word of a fixed head is set. A list that was never reached has a head of zeros.
template <WordRecord Head> bool anyWord(const Head &head) {
  const auto *const bytes = reinterpret_cast<const unsigned char *>(&head);
  return std::any_of(bytes, bytes + sizeof head, [](unsigned char byte) { return byte != 0; });
}
bool isHeld(const ListHead &list) { return anyWord(list); }
bool isHeld(const TwoKindListHead &list) { return anyWord(list); }
bool isHeld(const SceneHead &scene) { return anyWord(scene); }

struct ListWriter {
  const char *list;
  void (*write)(Output &, const Kis &);
  bool (*held)(const Kis &);
};

/// Of the record in the model and its writer.
template <auto RECORD, auto WRITE> constexpr ListWriter listWriter(const char *list) {
  return {list, [](Output &out, const Kis &kis) { WRITE(out, kis.*RECORD); },
          [](const Kis &kis) { return isHeld(kis.*RECORD); }};
}

constexpr auto WRITERS = inListOrder({
    listWriter<&Kis::scene, writeSceneList>("SceneList"),
    listWriter<&Kis::env, writeEnvList>("EnvList"),
    listWriter<&Kis::cam, writeCamList>("CamList"),
    listWriter<&Kis::light, writeLightList>("LightList"),
    listWriter<&Kis::obj, writeObjList>("ObjList"),
    listWriter<&Kis::shape, writeShapeList>("ShapeList"),
    listWriter<&Kis::vtx, writeVtxList>("VtxList"),
    listWriter<&Kis::tri, writeTriList>("TriList"),
    listWriter<&Kis::color, writeColorList>("ColorList"),
    listWriter<&Kis::vector, writeVectorList>("VectorList"),
    listWriter<&Kis::st, writeStList>("StList"),
    listWriter<&Kis::part, writePartList>("PartList"),
    listWriter<&Kis::mat, writeMatList>("MatList"),
    listWriter<&Kis::tex, writeTexList>("TexList"),
    listWriter<&Kis::teximg, writeTeximgList>("TeximgList"),
    listWriter<&Kis::anim, writeAnimList>("AnimList"),
    listWriter<&Kis::coll, writeCollList>("CollList"),
    listWriter<&Kis::switch_, writeSwitchList>("SwitchList"),
    listWriter<&Kis::name, writeNameList>("NameList"),
    listWriter<&Kis::ci_img, writeCiImgList>("CiImgList"),
    listWriter<&Kis::color_palette, writeColorPaletteList>("ColorPaletteList"),
    listWriter<&Kis::envelope, writeEnvelopeList>("EnvelopeList"),
    listWriter<&Kis::cluster, writeClusterList>("ClusterList"),
    listWriter<&Kis::weight, writeWeightList>("WeightList"),
    listWriter<&Kis::chain_root, writeChainRootList>("ChainRootList"),
    listWriter<&Kis::joint, writeJointList>("JointList"),
    listWriter<&Kis::effector, writeEffectorList>("EffectorList"),
    listWriter<&Kis::external_name, writeNameList>("ExternalNameList"),
});

/// @return the bytes that the header's blocks take: one sum, which wraps.
std::uint64_t sizeofBlocks(const FileHeader &header) { return Word{header.van_ext_blk_size + header.usr_ext_blk_size}; }

/// The same of the blocks as far as they are held. Bytes that are no whole words follow both blocks.
std::uint64_t sizeofHeldBlocks(const FileHeader &header) {
  const std::size_t van = vanExtBlk(header.ext_blk).size();
  const std::size_t usr = usrExtBlk(header.ext_blk).size();
  const bool whole = van == header.van_ext_blk_size / sizeof(Word) && usr == header.usr_ext_blk_size / sizeof(Word);
  return whole ? sizeofBlocks(header) : (van + usr) * sizeof(Word);
}

/// @return how many lists the file has room for: those of version 2.0 only where the maker block has all of their
/// sizes.
std::size_t listNum(const FileHeader &header) {
  const bool version2 = kvKOVAver(header) == VERSION_2 && header.van_ext_blk_size >= VERSION_2_SIZES_BYTES;
  return version2 ? LIST_NUM : VERSION_1_LIST_NUM;
}

/// @return where the version-2 lists begin, if nothing wraps.
std::uint64_t sizeofVersion1(const FileHeader &header) {
  std::uint64_t sum = header.file_header_num;
  for (std::size_t list = 0; list < VERSION_1_LIST_NUM; ++list)
    sum += header.*LISTS[list].size;
  return sum;
}

/// @return whether a model can be written: its version is known, and its version-2 lists follow the others.
bool canBeWritten(const FileHeader &header) {
  const Word version = kvKOVAver(header);
  const bool wraps = sizeofVersion1(header) != kvSizeofKOVA1file(header);
  return version == VERSION_1 || (version == VERSION_2 && !(wraps && anyWord<Version2Sizes>(header)));
}

/// Writes the header and its blocks as a piece of `size` bytes.
void writeHeader(Output &out, const FileHeader &header, std::uint64_t size) {
  beginList(out, size);
  putFixed<FileHeaderHead>(out, header);
  std::span<const Word> van = vanExtBlk(header.ext_blk);
  if (kvKOVAver(header) == VERSION_2) { // the sizes by which the lists are placed
    const std::size_t sizes = std::min(van.size(), VERSION_2_LIST_NUM);
    const Version2Sizes &table = header;
    putWords(out, &table, sizes * sizeof(Word));
    van = van.subspan(sizes);
  }
  const std::span<const Word> usr = usrExtBlk(header.ext_blk);
  putWords(out, van.data(), van.size_bytes());
  putWords(out, usr.data(), usr.size_bytes());
  endList(out);
}

/// Writes the lists from `place` in the file on, and zeros up to its end.
void writeLists(Output &out, const Kis &kis, std::uint64_t place) {
  const std::uint64_t end = kis.file_header.size;
  for (std::size_t list = 0; list < listNum(kis.file_header) && place < end; ++list) {
    const Word size = kis.file_header.*LISTS[list].size;
    if (size == 0)
      continue;
    beginList(out, std::min<std::uint64_t>(size, end - place));
    WRITERS[list].write(out, kis);
    endList(out);
    place += size;
  }
  beginList(out, place < end ? end - place : 0);
  endList(out);
}

} // namespace

int kvWriteKb(std::FILE *stream, const Kis &kis) {
  const FileHeader &header = kis.file_header;
  if (!canBeWritten(header))
    return 0;
  Output out(stream);
  if (std::any_of(WRITERS.begin(), WRITERS.end(), [&](const ListWriter &list) { return list.held(kis); })) {
    const std::uint64_t header_size = FILE_HEADER_BYTES + sizeofBlocks(header);
    writeHeader(out, header,
                std::min<std::uint64_t>(header_size, std::max<std::uint64_t>(header.size, FILE_HEADER_BYTES)));
    writeLists(out, kis, header_size);
  } else {
    writeHeader(out, header, FILE_HEADER_BYTES + sizeofHeldBlocks(header));
  }
  return std::fflush(stream) == 0 && !out.failed ? 1 : 0;
}

} // namespace kova
