#include "bench/large.h"

#include "harness/bytes.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <functional>
#include <random>
#include <utility>

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
    words.push_back(NO_LINK);
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

/// A list without elements.
Words emptyList(Word tag) {
  if (tag == SCENE_LIST_TAG)
    return {tag, 44, 44, 0, NO_LINK, 0, 0, 0, 0, 0, 0};
  return tag == COLOR_LIST_TAG || tag == VECTOR_LIST_TAG ? twoKindList(tag, {}) : list(tag, {});
}

/// Puts a file together from some of its lists, with empty ones for the others, and turns it into file order.
std::vector<unsigned char> file(std::vector<Words> lists) {
  Words words(FILE_HEADER_BYTES / 4);
  for (const ListRow &row : std::span(LISTS).first(VERSION_1_LIST_NUM)) {
    const auto given =
        std::ranges::find_if(lists, [&](const Words &list) { return !list.empty() && list[0] == row.tag; });
    const Words list = given != lists.end() ? std::exchange(*given, {}) : emptyList(row.tag);
    words[harness::sizeOffset(row) / 4] = static_cast<Word>(list.size() * 4);
    words.insert(words.end(), list.begin(), list.end());
  }
  words[0] = VERSION_1;
  words[1] = static_cast<Word>(words.size() * 4);
  words[3] = FILE_HEADER_BYTES;
  std::vector<unsigned char> bytes(words.size() * 4);
  endianSwap4(words.data(), bytes.size());
  std::memcpy(bytes.data(), words.data(), bytes.size());
  return bytes;
}

/// @param smooth whether there are groups of normals and texture coordinates, too, one of each for each vertex
Words triangleGroup(Word index, Word triangles, Word vertices, bool smooth, Random &random) {
  std::uniform_int_distribution<Word> vertex(0, vertices - 1);
  Words words = {TRI_LIST_TAG + ELEMENT_KIND, index, 56, 32 + 24 + triangles * 76, NO_LINK, 0, 0, triangles};
  const Word other_group = smooth ? index : NO_LINK;
  words.insert(words.end(), {index, NO_LINK, NO_LINK, NO_LINK, other_group, other_group});
  for (Word i = 0; i < triangles; ++i) {
    words.insert(words.end(), {TRI_LIST_TAG + 0x1000, i, 76, NO_LINK, NO_LINK});
    for (int corner = 0; corner < 3; ++corner) {
      const Word at = vertex(random);
      words.insert(words.end(), {at, at, at, NO_LINK}); // as many digits as in a mesh that has all groups
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
    tri.push_back(triangleGroup(i, TRIANGLES, VERTICES, true, random));
    normal.push_back(
        tupleGroup(VECTOR_LIST_TAG + SECOND_ELEMENT_KIND, i, false, VERTICES, 3, [&] { return unit(random); }));
    st.push_back(tupleGroup(ST_LIST_TAG + ELEMENT_KIND, i, false, VERTICES, 2, [&] { return texture(random); }));
  }
  return file(
      {list(VTX_LIST_TAG, vtx), list(TRI_LIST_TAG, tri), twoKindList(VECTOR_LIST_TAG, normal), list(ST_LIST_TAG, st)});
}

std::vector<unsigned char> makeTriangles() {
  constexpr Word VERTICES = 1'000;
  Random random(4);
  Elements vtx, tri;
  for (Word i = 0; i < GROUPS; ++i) {
    vtx.push_back(tupleGroup(VTX_LIST_TAG + ELEMENT_KIND, i, true, VERTICES, 3, [&] { return coordinate(random); }));
    tri.push_back(triangleGroup(i, 37'000, VERTICES, false, random));
  }
  return file({list(VTX_LIST_TAG, vtx), list(TRI_LIST_TAG, tri)});
}

std::vector<unsigned char> makeFloats() {
  Random random(2);
  Elements vtx;
  for (Word i = 0; i < GROUPS; ++i)
    vtx.push_back(tupleGroup(VTX_LIST_TAG + ELEMENT_KIND, i, true, 234'000, 3, [&] { return coordinate(random); }));
  return file({list(VTX_LIST_TAG, vtx)});
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
  return file({list(TEXIMG_LIST_TAG, images)});
}

} // namespace kova::bench
