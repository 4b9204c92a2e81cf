/// The elements of a list, and blocks, as the words of a file say.
#pragma once

#include "mend/walk.h"

namespace kova::mend {

/// Bytes of a maker block and of the user block behind it.
struct BlockSizes {
  std::uint64_t maker = 0;
  std::uint64_t user = 0;

  std::uint64_t sum() const { return maker + user; }
  /// @return what is left of the blocks where so many bytes are there: whole words.
  BlockSizes trimmed(std::uint64_t there) const {
    const auto whole = [](std::uint64_t bytes) { return bytes & ~std::uint64_t{3}; };
    return {std::min(maker, whole(there)), there > maker ? std::min(user, whole(there - maker)) : 0};
  }
};

/// @return the sizes that stand at a place.
inline BlockSizes statedBlockSizes(const FileBytes &file, std::uint64_t at) { return {file[at], file[userSizeAt(at)]}; }
/// @return the same, of the whole words that a block takes up.
inline BlockSizes blockSizes(const FileBytes &file, std::uint64_t at) {
  return {file[at] & ~Word{3}, file[userSizeAt(at)] & ~Word{3}};
}
inline void setBlockSizes(FileBytes &file, std::uint64_t at, const BlockSizes &sizes) {
  file.set(at, static_cast<Word>(sizes.maker));
  file.set(userSizeAt(at), static_cast<Word>(sizes.user));
}

/// @return where the file's header ends by the sizes of its blocks.
inline std::uint64_t headerEnd(const FileBytes &file) {
  return FILE_HEADER_BYTES + statedBlockSizes(file, header_at::BLOCKS).sum();
}

/// A list that has elements.
struct ListView {
  const ListLayout &layout;
  std::uint64_t begin;
  std::uint64_t first;  ///< number of elements of the first kind
  std::uint64_t second; ///< of the second kind, which follow

  ListView(const FileBytes &file, std::size_t list, std::uint64_t begins_at)
      : layout(LAYOUT[list]), begin(begins_at), first(file[begin + list_at::COUNT]),
        second(layout.second != nullptr ? file[begin + list_at::SECOND_COUNT] : 0) {}

  std::uint64_t number() const { return first + second; }
  /// @return where the entry of an element in the size table stands; that of the one behind the last: where the
  /// elements begin.
  std::uint64_t entry(std::uint64_t i) const { return begin + layout.head_bytes + i * sizeof(Word); }
  std::uint64_t elements() const { return entry(number()); }
  const RecordLayout &kind(std::uint64_t i) const { return i < first ? *layout.first : *layout.second; }
  /// @return an element that begins at a place.
  RecordAt element(std::uint64_t i, std::uint64_t at) const {
    return {&kind(i), at, static_cast<Word>(i < first ? i : i - first)};
  }
  /// @return whether the list is so long by its size table and its blocks.
  bool addsUpTo(const FileBytes &file, std::uint64_t size) const {
    if (elements() > file.size()) // the table does not lie within the file
      return false;
    std::uint64_t sum = entry(number()) - begin + blockSizes(file, begin + layout.blocks_at).sum();
    for (std::uint64_t i = 0; i < number(); ++i)
      sum += wholeWords(kind(i), file[entry(i)]);
    return sum == size;
  }
};

} // namespace kova::mend
