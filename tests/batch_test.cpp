/// Numbers written many at a time, against the same numbers one at a time.

#include "textdump/batch.h"
#include "format/geometry.h"
#include "textdump/text.h"

#include <algorithm>
#include <bit>
#include <cfenv>
#include <gtest/gtest.h>
#include <random>
#include <string>

namespace kova {
namespace {

/// What `write` writes, after checking that it used no more than its room.
template <class Write> std::string written(std::size_t room, Write write) {
  constexpr char GUARD = '\x5a';
  std::string text(room + 64, GUARD);
  const char *const end = write(text.data());
  EXPECT_EQ(text.find_first_not_of(GUARD, room), std::string::npos);
  text.resize(static_cast<std::size_t>(end - text.data()));
  return text;
}

/// Floats at the edges of all decades, halfway between two texts, of every exponent, and what is no number.
std::vector<float> manyFloats() {
  std::vector<float> floats = {0.0F, -0.0F};
  std::mt19937 random(1);
  const auto add = [&](std::uint32_t bits) {
    for (const std::uint32_t near : {bits - 1, bits, bits + 1})
      floats.push_back(std::bit_cast<float>(near ^ static_cast<std::uint32_t>(random() % 2 << 31)));
  };
  for (std::uint32_t exponent = 0; exponent < 256; ++exponent)
    for (int i = exponent > 110 && exponent < 150 ? 40 : 2; i > 0; --i)
      add(exponent << 23 | (i == 1 ? 0 : static_cast<std::uint32_t>(random() & 0x7fffff)));
  for (double decade = 1e-9; decade < 1e9; decade *= 10)
    for (const double digits : {1.0, 0.9999995, 0.9999985, 1.000005, 1.234565, 6.5, 2.5})
      add(std::bit_cast<std::uint32_t>(static_cast<float>(digits * decade)));
  for (std::uint32_t odd = 200001; odd < 2000000; odd += 1098) // six digits and a half
    floats.push_back(static_cast<float>(odd) / 2);
  std::shuffle(floats.begin(), floats.end(), random);
  return floats;
}

template <Format FORMAT, std::size_t... I>
std::string oneByOne(std::span<const float> floats, std::size_t first, std::index_sequence<I...>) {
  std::string text;
  for (std::size_t i = 0; i < floats.size(); i += sizeof...(I)) {
    std::array<char, 256> line;
    const Index number = static_cast<Index>(first + i / sizeof...(I));
    text.append(line.data(), putFormat<FORMAT>(line.data(), number, floats[i + I]...));
  }
  return text;
}

template <Format FORMAT> void expectTuples(const Batch &batch, std::span<const float> floats) {
  static constexpr TupleLines LINES = tupleLines(FORMAT.text);
  std::size_t first = 0;
  for (std::size_t count = 1; count * LINES.width <= floats.size(); count = count % TUPLES_AT_ONCE + 1) {
    const std::span<const float> some = floats.first(count * LINES.width);
    floats = floats.subspan(some.size());
    ASSERT_EQ(written(TUPLES_ROOM, [&](char *at) { return putTuples(batch, at, LINES, some.data(), count, first); }),
              oneByOne<FORMAT>(some, first, std::make_index_sequence<LINES.width>()));
    first = first == 1000 ? 2147483500 : first == 2147483500 ? 0 : first + 100;
  }
}

TEST(Batch, Tuples) {
  const std::vector<float> floats = manyFloats();
  for (const Batch &batch : batches())
    for (const int rounding : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
      SCOPED_TRACE(batch.name);
      std::fesetround(rounding); // of the thread: the text does not depend on it
      expectTuples<"St(%d)  %#12g  %#12g    ; s,t\n">(batch, floats);
      expectTuples<" Vtx(%d) %#12g %#12g %#12g   ; x,y,z\n">(batch, floats);
      expectTuples<"VtxColor(%d) %#12g %#12g %#12g %#12g    ; RGBA\n">(batch, floats);
      std::fesetround(FE_TONEAREST);
    }
}

/// Triangles of numbers of every length; one number of each is close to where numbers are too long for a batch. Some
/// have blocks.
std::vector<Tri> manyTriangles() {
  std::mt19937 random(2);
  std::vector<Tri> triangles(3000);
  for (Tri &tri : triangles) {
    std::array<Word, sizeof(TriHead) / sizeof(Word)> words;
    for (Word &word : words)
      word = static_cast<Word>(static_cast<Index>(random()) >> (random() % 32));
    const Word most = 9999999 + static_cast<Word>(random() % 2);
    words[1 + random() % 16] = random() % 2 == 0 ? most : 0 - most;
    words[17] = words[18] = 0;
    static_cast<TriHead &>(tri) = std::bit_cast<TriHead>(words);
  }
  triangles[100].van_ext_blk_size = 4;
  triangles[101].usr_ext_blk_size = 0x80000000;
  return triangles;
}

TEST(Batch, Triangles) {
  const std::vector<Tri> triangles = manyTriangles();
  for (const Batch &batch : batches()) {
    SCOPED_TRACE(batch.name);
    std::size_t asked = 1;
    for (std::size_t i = 0; i + asked <= triangles.size(); asked = asked % TRIANGLES_AT_ONCE + 1) {
      std::size_t done = 0;
      const std::string text = written(TRIANGLES_ROOM, [&](char *at) {
        done = putTriangles(batch, at, std::span(triangles).subspan(i, asked), i);
        return at;
      });
      ASSERT_EQ(done, i <= 101 && i + asked > 100 ? i == 101 ? 0 : 100 - i : asked);
      Text expected(nullptr); // has room for all of it
      for (std::size_t number = i; number < i + done; ++number) {
        print<"Tri(%d)\n">(expected, static_cast<Index>(number));
        putRecord<LINES<TriHead>>(expected, triangles[number]);
        print<"\n">(expected);
      }
      ASSERT_EQ(text, std::string_view(expected.buffer.data(), expected.used));
      i += std::max<std::size_t>(done, 1); // one with blocks is left to the caller
    }
  }
}

TEST(Batch, Texels) {
  std::vector<unsigned char> texels(TEXEL_ROWS_AT_ONCE * TEXELS_TO_A_ROW + 4);
  for (std::size_t i = 0; i < texels.size(); ++i)
    texels[i] = static_cast<unsigned char>(i * 7 / (i % 5 == 0 ? 300 : 1));
  std::string expected;
  for (std::size_t i = 0; i + 4 < texels.size(); ++i) {
    std::array<char, 32> text;
    expected += i % TEXELS_TO_A_ROW == 0 ? "\n" : "";
    expected.append(text.data(), putByte(text.data(), texels[i]));
  }
  for (const Batch &batch : batches())
    EXPECT_EQ(
        written(TEXEL_ROWS_ROOM, [&](char *at) { return putTexels(batch, at, texels.data(), TEXEL_ROWS_AT_ONCE); }),
        expected);
}

} // namespace
} // namespace kova
