#include "mend/bytes.h"

namespace kova::mend {

void FileBytes::copyWords(std::uint64_t offset, std::uint64_t end, std::span<Word> words) const {
  for (Word &word : words) {
    word = offset + sizeof word <= end ? (*this)[offset] : 0;
    offset += sizeof word;
  }
}

} // namespace kova::mend
