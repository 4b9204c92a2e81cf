#include "mend/tests/elements.h"

#include <fstream>
#include <iterator>

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

std::string firstLost(const Bytes &original, Extent hole, const Bytes &salvaged, const IsDead &is_dead) {
  const std::size_t hole_end = hole.end + (hole.begin == hole.end ? 1 : 0);
  Elements kept = elementsOf(salvaged);
  for (const auto &[list, elements] : elementsOf(original))
    for (std::size_t i = 0; i < elements.size(); ++i) {
      const Extent &was = elements[i];
      if (was.begin < hole_end && hole.begin < was.end)
        continue;
      const std::string what = list.first + '[' + std::to_string(i) + ']';
      const Extent is = i < kept[list].size() ? kept[list][i] : Extent{0, 0};
      if (is.end - is.begin != was.end - was.begin)
        return what + " is gone";
      for (std::size_t at = 0; at < was.end - was.begin; ++at) {
        if (original[was.begin + at] == salvaged[is.begin + at])
          continue;
        const std::size_t word = is.begin + at / 4 * 4;
        if (wordAt(salvaged, word) != ~0U || (is_dead && !is_dead(word, wordAt(original, was.begin + at / 4 * 4))))
          return what + " is another at byte " + std::to_string(at);
      }
    }
  return "";
}

Bytes sampleFile(const std::string &name) {
  std::ifstream stream(KOVA_SOURCE_DIR "/samples/" + name + ".kb", std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(stream), {});
}

} // namespace kova::mend
