#include "records/parts.h"

#include "format/versions.h"
#include "reader/byte_order.h"

#include <algorithm>
#include <numeric>

namespace kova {

bool takeApart(std::span<const unsigned char> begin, std::uint64_t length, Parts &parts, FileHeader &header) {
  parts = {.length = length};
  if (begin.size() < FILE_HEADER_BYTES)
    return false;
  FileHeaderHead &head = header;
  copyConverted(&head, begin.data(), sizeof head);
  const Word version = kvKOVAver(header);
  if (!isVersion(version))
    return false;
  const std::uint64_t stated = Word{header.van_ext_blk_size + header.usr_ext_blk_size};
  parts.blocks = std::min(stated, length - FILE_HEADER_BYTES);
  parts.whole_words = parts.blocks == std::uint64_t{header.van_ext_blk_size} + header.usr_ext_blk_size &&
                      header.van_ext_blk_size % sizeof(Word) == 0 && header.usr_ext_blk_size % sizeof(Word) == 0;
  parts.has_sizes = parts.whole_words && hasVersion2(version) && header.van_ext_blk_size >= VERSION_2_SIZES_BYTES;
  if (parts.has_sizes) {
    Version2Sizes &sizes = header;
    copyConverted(&sizes, begin.data() + FILE_HEADER_BYTES, sizeof sizes);
  }
  std::uint64_t left = length - FILE_HEADER_BYTES - parts.blocks;
  for (std::size_t list = 0; list < (parts.has_sizes ? LIST_NUM : VERSION_1_LIST_NUM); ++list) {
    parts.lists[list] = std::min<std::uint64_t>(left, header.*LISTS[list].size);
    left -= parts.lists[list];
  }
  parts.behind = left;
  return true;
}

FileHeader derivedHeader(const FileHeader &header, std::uint64_t blocks,
                         const std::array<std::uint64_t, LIST_NUM> &lists, std::uint64_t behind) {
  FileHeader derived;
  static_cast<FileHeaderHead &>(derived) = header;
  for (std::size_t list = 0; list < LIST_NUM; ++list)
    derived.*LISTS[list].size = static_cast<Word>(lists[list]);
  derived.header_tag = 0;
  derived.file_header_num = static_cast<Word>(FILE_HEADER_BYTES + blocks);
  derived.size = static_cast<Word>(std::accumulate(lists.begin(), lists.end(), FILE_HEADER_BYTES + blocks + behind));
  return derived;
}

std::string textBytes(std::span<const Word> words) {
  std::string bytes;
  for (const Word word : words)
    for (const int shift : {24, 16, 8, 0})
      bytes += static_cast<char>(word >> shift & 0xff);
  for (std::size_t i = 0; i < sizeof(Word) - 1 && bytes.ends_with('\0'); ++i)
    bytes.pop_back();
  return bytes;
}

} // namespace kova
