#include "checker/steps.h"

namespace kova {

Place sizeWordPlace(const FileHeader &header, const ListRow &row) {
  Place place = headerWord(header, row.size);
  place.list = row.name;
  return place;
}

} // namespace kova
