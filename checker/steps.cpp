#include "checker/steps.h"

namespace kova {

Place sizeWordPlace(const FileHeader &header, const ListRow &row) {
  Place place = wordOf(HEADER, header, row.size);
  place.list = row.name;
  if (place.offset >= FILE_HEADER_BYTES + vanExtBlk(header.ext_blk).size_bytes())
    place.offset = NO_OFFSET;
  return place;
}

Place listPlace(const Kis &kis, const ListRow &row, std::uint64_t offset) {
  return offset == NO_OFFSET ? sizeWordPlace(kis.file_header, row) : Place{row.name, {}, offset};
}

} // namespace kova
