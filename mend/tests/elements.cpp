#include "mend/tests/elements.h"

namespace kova::mend {

using harness::wordAt;

Elements elementsOf(const Bytes &file) {
  Elements elements;
  std::size_t begin = wordAt(file, 12);
  const bool version_2 = wordAt(file, 0) == VERSION_2;
  for (const ListRow &list : std::span(LISTS).first(version_2 ? LIST_NUM : VERSION_1_LIST_NUM)) {
    const std::size_t size = wordAt(file, harness::sizeOffset(list));
    if (size != 0 && list.tag != SCENE_LIST_TAG) {
      const bool two = list.tag == COLOR_LIST_TAG || list.tag == VECTOR_LIST_TAG;
      const std::size_t numbers[] = {wordAt(file, begin + 12), two ? wordAt(file, begin + 16) : 0};
      std::size_t table = begin + (two ? 28 : 24);
      std::size_t at = table + 4 * (numbers[0] + numbers[1]);
      for (const int group : {0, 1})
        for (std::size_t i = 0; i < numbers[group]; ++i, table += 4) {
          elements[{list.name, group}].push_back({at, at + wordAt(file, table)});
          at += wordAt(file, table);
        }
    }
    begin += size;
  }
  return elements;
}

} // namespace kova::mend
