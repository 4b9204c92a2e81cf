#include "fuzz/audit.h"

#include "kova/check.h"
#include "kova/kova.h"
#include "kova/kt.h"
#include "tests/invariants.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace kova::fuzz {

namespace {

void requireInvariants(const Kis &kis) {
  const std::string broken = brokenInvariants(kis);
  if (broken.empty())
    return;
  std::fprintf(stderr, "broken invariants:\n%s\n", broken.c_str());
  std::abort();
}

/// Checks and dumps a model as a file of the version in its header.
void checkAndDump(const Kis &kis) {
  requireInvariants(kis);
  checkKOVA(kis);
  kvSaveAsKt(kis, "/dev/null");
}

/// A file of its own for each process, in memory where the system has such a place.
const std::string &scratchPath() {
  static const std::string PATH = [] {
    std::string name = ::access("/dev/shm", W_OK) == 0 ? "/dev/shm/kova-fuzz-" : "/tmp/kova-fuzz-";
    return name + std::to_string(::getpid());
  }();
  return PATH;
}

Word wordAt(const std::vector<std::uint8_t> &file, std::size_t index) {
  Word word;
  std::memcpy(&word, file.data() + index * sizeof word, sizeof word);
  endianSwap4(&word, sizeof word);
  return word;
}

void setWordAt(std::vector<std::uint8_t> &file, std::size_t index, Word word) {
  endianSwap4(&word, sizeof word);
  std::memcpy(file.data() + index * sizeof word, &word, sizeof word);
}

/// Gives the lists of the words `first` to `last` sizes that fit into `left` bytes; the last list takes the rest.
std::size_t fitSizes(std::vector<std::uint8_t> &file, std::size_t first, std::size_t last, std::size_t left) {
  for (std::size_t index = first; index <= last; ++index) {
    const std::size_t size = index == last ? left : std::min<std::size_t>(wordAt(file, index), left);
    setWordAt(file, index, static_cast<Word>(size));
    left -= size;
  }
  return left;
}

} // namespace

void auditFile(const std::uint8_t *data, std::size_t size) {
  std::FILE *file = std::fopen(scratchPath().c_str(), "wb");
  if (!file)
    std::abort();
  std::fwrite(data, 1, size, file);
  std::fclose(file);
  Kis kis;
  kvOpenKb(scratchPath().c_str(), kis);
  std::remove(scratchPath().c_str());
  checkAndDump(kis);
}

void auditList(const std::uint8_t *data, std::size_t size) {
  if (size < 1)
    return;
  const auto names = kvListNames();
  const std::size_t list = data[0] % names.size();
  Kis kis;
  kis.file_header.version = list < 19 ? VERSION_1 : VERSION_2;
  // The dump passes over a version-2 list whose size is 0.
  const Word bytes = static_cast<Word>(size - 1);
  std::array<Word, sizeof(Version2Sizes) / sizeof(Word)> sizes{};
  if (list >= 19)
    sizes[list - 19] = bytes;
  Version2Sizes &of_lists = kis.file_header;
  of_lists = std::bit_cast<Version2Sizes>(sizes);
  std::vector<std::uint8_t> copy(data + 1, data + size);
  copy.push_back(0); // a stream over no bytes cannot be opened
  std::FILE *stream = ::fmemopen(copy.data(), copy.size(), "rb");
  if (!stream)
    return;
  kvReadList(stream, bytes, kis, names[list]);
  std::fclose(stream);
  checkAndDump(kis);
}

void auditExtension(const std::uint8_t *data, std::size_t size) {
  if (size < 2)
    return;
  Kis kis;
  kis.file_header.version = VERSION_2;
  const std::size_t count = 1 + data[0] / 8 % 4;
  const Word held = static_cast<Word>(size - 2);
  // The last record of a list may hold less than it states: a read ended there.
  const auto give = [&](auto &record, bool last = true) {
    record.van_ext_blk_size = last ? held + data[1] % 16 * 4 : held;
    record.ext_blk.words = std::make_unique<ExtBlkWords>();
    record.ext_blk.words->van.resize((size - 2) / sizeof(Word));
    std::copy_n(data + 2, record.ext_blk.words->van.size() * sizeof(Word),
                reinterpret_cast<std::uint8_t *>(record.ext_blk.words->van.data()));
  };
  const auto giveAll = [&](auto &list) {
    list.num = static_cast<Word>(count);
    list.element.resize(count);
    for (auto &element : list.element)
      give(element, &element == &list.element.back());
  };
  switch (data[0] % 8) {
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
    for (Tex &tex : kis.tex.element) {
      tex.tex_anim = data[1] / 16 % 2;
      tex.tiles.tex_tile_img_num = tex.tex_anim * (data[1] / 32);
      tex.tiles.tex_tile_img_key.resize(tex.tiles.tex_tile_img_num);
      tex.tiles.tex_tile_img_index.resize(tex.tiles.tex_tile_img_num);
    }
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
  checkAndDump(kis);
}

void repairHeader(std::vector<std::uint8_t> &file) {
  constexpr std::size_t SCENE_WORD = offsetof(FileHeaderHead, scene_list_num) / sizeof(Word);
  constexpr std::size_t NAME_WORD = offsetof(FileHeaderHead, name_list_num) / sizeof(Word);
  constexpr std::size_t BLOCK_WORD = FILE_HEADER_BYTES / sizeof(Word);
  if (file.size() < FILE_HEADER_BYTES)
    return;
  std::size_t left = file.size() - FILE_HEADER_BYTES;
  const bool version2 = wordAt(file, 0) % 2 == 0 && left >= VERSION_2_SIZES_BYTES && wordAt(file, 0) != VERSION_1;
  setWordAt(file, 0, version2 ? VERSION_2 : VERSION_1);
  setWordAt(file, 1, static_cast<Word>(file.size()));
  setWordAt(file, 2, 0);
  const std::size_t least = version2 ? VERSION_2_SIZES_BYTES : 0;
  const std::size_t van = std::max(least, std::min<std::size_t>(wordAt(file, 23) % 64 & ~std::size_t{3}, left));
  const std::size_t usr = std::min<std::size_t>(wordAt(file, 24) % 64 & ~std::size_t{3}, left - van);
  setWordAt(file, 23, static_cast<Word>(van));
  setWordAt(file, 24, static_cast<Word>(usr));
  setWordAt(file, 3, static_cast<Word>(FILE_HEADER_BYTES + van + usr));
  left -= van + usr;
  if (!version2) {
    fitSizes(file, SCENE_WORD, NAME_WORD, left);
    return;
  }
  // The version-1 lists leave what the nine sizes of the maker block share out; none takes the rest of its own accord.
  for (std::size_t index = SCENE_WORD; index <= NAME_WORD; ++index) {
    const std::size_t size = std::min<std::size_t>(wordAt(file, index), left);
    setWordAt(file, index, static_cast<Word>(size));
    left -= size;
  }
  fitSizes(file, BLOCK_WORD, BLOCK_WORD + 8, left);
}

} // namespace kova::fuzz
