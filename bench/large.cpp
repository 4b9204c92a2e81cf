#include "bench/large.h"

#include "kova/kova.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <functional>
#include <random>

namespace kova::bench {

namespace {

using Random = std::mt19937;
using Elements = std::vector<Words>;

constexpr std::size_t GROUPS = 32;

/// Coordinates of a scene some hundred units wide, as finely as single precision has them.
float coordinate(Random &random) { return std::uniform_real_distribution<float>(-250.0F, 250.0F)(random); }

void append(Words &words, float value) { words.push_back(std::bit_cast<Word>(value)); }

/// A group of `count` tuples behind its head: tag, index, header size, size, [name,] count.
Words tupleGroup(Word tag, Word index, bool named, Word count, Word tuple, const std::function<float()> &value) {
  const Word head = named ? 24 : 20;
  Words words = {tag, index, head, head + count * tuple * 4};
  if (named)
    words.push_back(0);
  words.push_back(count);
  words.reserve(words.size() + std::size_t{count} * tuple);
  for (Word i = 0; i < count * tuple; ++i)
    append(words, value());
  return words;
}

/// A list of the common form around its elements.
Words list(Word tag, const Elements &elements) {
  Words words = {tag, static_cast<Word>(24 + 4 * elements.size()), 0, static_cast<Word>(elements.size()), 0, 0};
  for (const Words &element : elements)
    words.push_back(static_cast<Word>(element.size() * 4));
  for (const Words &element : elements)
    words.insert(words.end(), element.begin(), element.end());
  words[2] = static_cast<Word>(words.size() * 4);
  return words;
}

Words twoKindList(Word tag, const Elements &vertex_groups) {
  Words words = {
      tag, static_cast<Word>(28 + 4 * vertex_groups.size()), 0, 0, static_cast<Word>(vertex_groups.size()), 0, 0};
  for (const Words &group : vertex_groups)
    words.push_back(static_cast<Word>(group.size() * 4));
  for (const Words &group : vertex_groups)
    words.insert(words.end(), group.begin(), group.end());
  words[2] = static_cast<Word>(words.size() * 4);
  return words;
}

/// Puts a file together from its nineteen lists, empty ones where `lists` has none, and turns it into file order.
std::vector<unsigned char> file(std::array<Words, 19> lists) {
  // The header's word for each list in file order, and the tag of a list of the common form.
  constexpr std::array<Word, 19> HEADER_WORD = {4, 5, 6, 7, 8, 9, 10, 14, 11, 12, 13, 15, 16, 17, 18, 19, 20, 21, 22};
  constexpr std::array<Word, 19> TAG = {SCENE_LIST_TAG, ENV_LIST_TAG,  CAM_LIST_TAG,    LIGHT_LIST_TAG, OBJ_LIST_TAG,
                                        SHAPE_LIST_TAG, VTX_LIST_TAG,  TRI_LIST_TAG,    COLOR_LIST_TAG, VECTOR_LIST_TAG,
                                        ST_LIST_TAG,    PART_LIST_TAG, MAT_LIST_TAG,    TEX_LIST_TAG,   TEXIMG_LIST_TAG,
                                        ANIM_LIST_TAG,  COLL_LIST_TAG, SWITCH_LIST_TAG, NAME_LIST_TAG};
  Words words(FILE_HEADER_BYTES / 4);
  for (std::size_t i = 0; i < lists.size(); ++i) {
    if (i == 0)
      lists[i] = {SCENE_LIST_TAG, 44, 44, 0, 0, 0, 0, 0, 0, 0, 0};
    else if (lists[i].empty())
      lists[i] = i == 8 || i == 9 ? twoKindList(TAG[i], {}) : list(TAG[i], {});
    words[HEADER_WORD[i]] = static_cast<Word>(lists[i].size() * 4);
    words.insert(words.end(), lists[i].begin(), lists[i].end());
    lists[i] = {};
  }
  words[0] = VERSION_1;
  words[1] = static_cast<Word>(words.size() * 4);
  words[3] = FILE_HEADER_BYTES;
  std::vector<unsigned char> bytes(words.size() * 4);
  endianSwap4(words.data(), bytes.size());
  std::memcpy(bytes.data(), words.data(), bytes.size());
  return bytes;
}

Words triangleGroup(Word index, Word triangles, Word vertices, Random &random) {
  std::uniform_int_distribution<Word> vertex(0, vertices - 1);
  Words words = {TRI_LIST_TAG + ELEMENT_KIND, index, 56, 32 + 24 + triangles * 76, 0, 0, 0, triangles};
  words.insert(words.end(), {index, ~Word{0}, ~Word{0}, ~Word{0}, index, index});
  for (Word i = 0; i < triangles; ++i) {
    words.insert(words.end(), {TRI_LIST_TAG + 0x1000, i, 76, ~Word{0}, ~Word{0}});
    for (int corner = 0; corner < 3; ++corner) {
      const Word at = vertex(random);
      words.insert(words.end(), {at, at, at, ~Word{0}});
    }
    words.insert(words.end(), {0, 0});
  }
  return words;
}

} // namespace

std::vector<unsigned char> makeMesh() {
  constexpr Word TRIANGLES = 24'000;
  constexpr Word VERTICES = 32'000;
  Random random(1);
  std::uniform_real_distribution<float> unit(-1.0F, 1.0F);
  std::uniform_real_distribution<float> texture(0.0F, 4.0F);
  Elements vtx, tri, normal, st;
  for (Word i = 0; i < GROUPS; ++i) {
    vtx.push_back(tupleGroup(VTX_LIST_TAG + ELEMENT_KIND, i, true, VERTICES, 3, [&] { return coordinate(random); }));
    tri.push_back(triangleGroup(i, TRIANGLES, VERTICES, random));
    normal.push_back(
        tupleGroup(VECTOR_LIST_TAG + SECOND_ELEMENT_KIND, i, false, VERTICES, 3, [&] { return unit(random); }));
    st.push_back(tupleGroup(ST_LIST_TAG + ELEMENT_KIND, i, false, VERTICES, 2, [&] { return texture(random); }));
  }
  std::array<Words, 19> lists;
  lists[6] = list(VTX_LIST_TAG, vtx);
  lists[7] = list(TRI_LIST_TAG, tri);
  lists[9] = twoKindList(VECTOR_LIST_TAG, normal);
  lists[10] = list(ST_LIST_TAG, st);
  return file(std::move(lists));
}

std::vector<unsigned char> makeFloats() {
  Random random(2);
  Elements vtx;
  for (Word i = 0; i < GROUPS; ++i)
    vtx.push_back(tupleGroup(VTX_LIST_TAG + ELEMENT_KIND, i, true, 234'000, 3, [&] { return coordinate(random); }));
  std::array<Words, 19> lists;
  lists[6] = list(VTX_LIST_TAG, vtx);
  return file(std::move(lists));
}

std::vector<unsigned char> makeTexels() {
  Random random(3);
  Elements images;
  constexpr Word TEXEL_WORDS = 256 * 1024;
  for (Word i = 0; i < GROUPS; ++i) {
    Words image = {TEXIMG_LIST_TAG + ELEMENT_KIND, i, 24, 24 + TEXEL_WORDS * 4, 0, 0};
    for (Word texel = 0; texel < TEXEL_WORDS; ++texel)
      image.push_back(static_cast<Word>(random()));
    images.push_back(std::move(image));
  }
  std::array<Words, 19> lists;
  lists[14] = list(TEXIMG_LIST_TAG, images);
  return file(std::move(lists));
}

} // namespace kova::bench
