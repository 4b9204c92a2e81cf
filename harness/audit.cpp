#include "harness/audit.h"

#include "harness/invariants.h"
#include "harness/scratch.h"
#include "kova/check.h"
#include "kova/kb.h"
#include "kova/kt.h"
#include "kova/setup.h"

#include <algorithm>
#include <cstddef>

namespace kova::harness {

namespace {

/// Checks and dumps a model as a file of the version in its header. @return the invariants that it breaks.
std::string checkAndDump(const Kis &kis) {
  const std::string broken = brokenInvariants(kis);
  if (!broken.empty())
    return broken;
  checkKOVA(kis);
  kvSaveAsKt(kis, "/dev/null");
  return "";
}

std::string dumpOf(const Kis &kis) {
  return written([&](std::FILE *stream) { return kvPrintKt(stream, kis); }).value();
}

/// Written and loaded again, a model is the same: the same dump, the same verdict. What was read whole is the same
/// file, with zeros for the bytes that no record takes in. A model that was not read whole may be refused.
std::string changedByWriting(const Kis &first, int loaded, std::span<const unsigned char> input) {
  const auto file = written([&](std::FILE *stream) { return kvWriteKb(stream, first); });
  if (!file)
    return loaded ? "a model that was read whole is not written\n" : "";
  const Bytes bytes(file->begin(), file->end());
  Kis second;
  const int loaded_again = kvOpenKbMemory(bytes, "written", second);
  if (dumpOf(first) != dumpOf(second) || checkKOVA(first) != checkKOVA(second))
    return "another model after it was written\n";
  const auto is_same = [](unsigned char now, unsigned char was) { return now == was || now == 0; };
  if (loaded && (!loaded_again || !std::equal(bytes.begin(), bytes.end(), input.begin(), input.end(), is_same)))
    return "another file after it was written\n";
  return "";
}

/// Gives each list a size that fits into the `left` bytes not given away. @return what is left then.
std::size_t fitSizes(Bytes &file, std::span<const ListRow> lists, std::size_t left) {
  for (const ListRow &list : lists) {
    const std::size_t size = std::min<std::size_t>(wordAt(file, sizeOffset(list)), left);
    setWordAt(file, sizeOffset(list), static_cast<Word>(size));
    left -= size;
  }
  return left;
}

/// @param number of tiles, times 2; odd: the texture is animated
void giveTiles(Tex &tex, Word number) {
  tex.tex_anim = number % 2;
  tex.tiles.tex_tile_img_num = tex.tex_anim * (number / 2);
  tex.tiles.tex_tile_img_key.resize(tex.tiles.tex_tile_img_num);
  tex.tiles.tex_tile_img_index.resize(tex.tiles.tex_tile_img_num);
}

/// Gives the records of one kind their blocks, and decodes these.
void decodeExtension(Kis &kis, std::span<const unsigned char> input, const auto &give, const auto &giveAll) {
  switch (input[0] % 8) {
  case 0:
    give(kis.scene);
    kvSetupSceneListExt(kis.scene);
    break;
  case 1:
    giveAll(kis.cam);
    kvSetupCamExt(kis.cam);
    break;
  case 2:
    giveAll(kis.obj);
    kvSetupObjExt(kis.obj);
    break;
  case 3:
    giveAll(kis.shape);
    kvSetupShapeExt(kis.shape);
    break;
  case 4:
    giveAll(kis.mat);
    kvSetupMatExt(kis.mat);
    break;
  case 5:
    giveAll(kis.tex);
    for (Tex &tex : kis.tex.element)
      giveTiles(tex, input[1] / 16);
    kvSetupTexExt(kis.tex);
    break;
  case 6:
    giveAll(kis.teximg);
    for (Teximg &image : kis.teximg.element)
      image.tex_img_size = image.van_ext_blk_size; // no texels
    kvSetupTeximgExt(kis.teximg);
    break;
  default:
    giveAll(kis.anim);
    kvSetupAnimGroupExt(kis.anim);
  }
}

} // namespace

std::string auditFile(std::span<const unsigned char> input) {
  Kis kis;
  const int loaded = kvOpenKb(ScratchFile(input).path.c_str(), kis);
  const std::string broken = checkAndDump(kis);
  return broken.empty() ? changedByWriting(kis, loaded, input) : broken;
}

std::string auditList(std::span<const unsigned char> input) {
  if (input.empty())
    return "";
  const std::size_t number = input[0] % LIST_NUM;
  const ListRow &list = LISTS[number];
  const Word bytes = static_cast<Word>(input.size() - 1);
  Kis kis;
  kis.file_header.version = number < VERSION_1_LIST_NUM ? VERSION_1 : VERSION_2;
  kis.file_header.*list.size = bytes; // the dump passes over a version-2 list whose size is 0
  Bytes copy(input.begin() + 1, input.end());
  copy.push_back(0); // a stream over no bytes cannot be opened
  if (const Stream stream{::fmemopen(copy.data(), copy.size(), "rb")})
    kvReadList(stream.get(), bytes, kis, list.name);
  return checkAndDump(kis);
}

std::string auditExtension(std::span<const unsigned char> input) {
  if (input.size() < 2)
    return "";
  const std::span<const unsigned char> block = input.subspan(2);
  Kis kis;
  kis.file_header.version = VERSION_2;
  const std::size_t count = 1 + input[0] / 8 % 4;
  const Word held = static_cast<Word>(block.size());
  // Little-endian on every host: an input means the same words everywhere.
  Words words;
  for (std::size_t at = 0; at + sizeof(Word) <= block.size(); at += sizeof(Word))
    words.push_back(Word{block[at]} | Word{block[at + 1]} << 8 | Word{block[at + 2]} << 16 | Word{block[at + 3]} << 24);
  // The last record of a list may hold less than it states: a read ended there.
  const auto give = [&](auto &record, bool last = true) {
    record.van_ext_blk_size = last ? held + input[1] % 16 * 4 : held;
    record.ext_blk.words = std::make_unique<ExtBlkWords>();
    record.ext_blk.words->van = words;
  };
  const auto giveAll = [&](auto &list) {
    list.num = static_cast<Word>(count);
    list.element.resize(count);
    for (auto &element : list.element)
      give(element, &element == &list.element.back());
  };
  decodeExtension(kis, input, give, giveAll);
  return checkAndDump(kis);
}

void repairHeader(Bytes &file) {
  constexpr std::size_t VAN = offsetof(FileHeaderHead, van_ext_blk_size),
                        USR = offsetof(FileHeaderHead, usr_ext_blk_size);
  if (file.size() < FILE_HEADER_BYTES)
    return;
  std::size_t left = file.size() - FILE_HEADER_BYTES;
  const Word version = wordAt(file, offsetof(FileHeaderHead, version));
  const bool version2 = version % 2 == 0 && left >= VERSION_2_SIZES_BYTES && version != VERSION_1;
  const std::size_t least = version2 ? VERSION_2_SIZES_BYTES : 0;
  const std::size_t van = std::max(least, std::min<std::size_t>(wordAt(file, VAN) % 64 & ~std::size_t{3}, left));
  const std::size_t usr = std::min<std::size_t>(wordAt(file, USR) % 64 & ~std::size_t{3}, left - van);
  left -= van + usr;
  setWordAt(file, offsetof(FileHeaderHead, version), version2 ? VERSION_2 : VERSION_1);
  setWordAt(file, offsetof(FileHeaderHead, size), static_cast<Word>(file.size()));
  setWordAt(file, offsetof(FileHeaderHead, header_tag), 0);
  setWordAt(file, offsetof(FileHeaderHead, file_header_num), static_cast<Word>(FILE_HEADER_BYTES + van + usr));
  setWordAt(file, VAN, static_cast<Word>(van));
  setWordAt(file, USR, static_cast<Word>(usr));
  // The last list takes what the others leave.
  const std::span<const ListRow> lists = std::span(LISTS).first(version2 ? LIST_NUM : VERSION_1_LIST_NUM);
  left = fitSizes(file, lists.first(lists.size() - 1), left);
  setWordAt(file, sizeOffset(lists.back()), static_cast<Word>(left));
}

} // namespace kova::harness
