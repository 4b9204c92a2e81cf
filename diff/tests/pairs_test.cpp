/// Every edit is told, and nothing else; what holds of all pairs of files holds of damaged ones.
#include "diff/names.h"
#include "diff/tests/edits.h"
#include "mend/mend.h"
#include "mend/tests/damage.h"
#include "samples/builder.h"
#include "samples/made.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace kova::diff {
namespace {

/// Scenes without damage.
const std::vector<Bytes> &scenes() {
  static const std::vector<Bytes> SCENES = [] {
    std::vector<Bytes> found;
    for (const samples::Sample &made : mend::madeFiles())
      found.push_back(made.file.bytes);
    for (const samples::Made &made : samples::madeSamples()) {
      const FindingReceiver receiver([](const Finding &) {});
      if (const auto kis = kvNewKis(); kvOpenKbMemory(made.bytes, "", *kis))
        found.push_back(made.bytes);
    }
    return found;
  }();
  return SCENES;
}

std::string joined(const std::vector<std::string> &lines) {
  std::string text;
  for (const std::string &line : lines)
    text += line + '\n';
  return text;
}

/// @return a changed word as kbrepair has it: without the record inside of the element that it stands in.
std::string wordsOf(const Seen &seen) {
  const auto number = [](const std::string &text) {
    const bool hex = text.starts_with("0x");
    return std::to_string(static_cast<Word>(std::stoll(hex ? text.substr(2) : text, nullptr, hex ? 16 : 10)));
  };
  const std::string &field = seen.change.field;
  if (seen.change.what != What::value)
    return seen.place.list + (' ' + field);
  return seen.place.list + (' ' + field.substr(field.rfind('.') + 1)) + ' ' + number(seen.change.old_value) + " -> " +
         number(seen.change.new_value);
}

void expectEdits(std::uint32_t first, std::uint32_t number) {
  for (std::uint32_t seed = first; seed < first + number; ++seed) {
    const EditedPair pair = editedPair(scenes()[seed % scenes().size()], seed);
    const SeenAll forth = differencesOf(pair.a, pair.b);
    ASSERT_EQ(joined(toldBy(forth)), joined(pair.expected)) << "pair " << seed;
    SeenAll back = differencesOf(pair.b, pair.a);
    for (Seen &seen : back)
      seen = mirrored(seen);
    ASSERT_EQ(linesOf(forth), linesOf(back)) << "pair " << seed << ", exchanged";
  }
}

TEST(Floats, areEqualIfTheyAreClose) {
  const auto bits = [](float value) { return std::bit_cast<Word>(value); };
  constexpr Word NAN_BITS = 0x7fc00000, INF = 0x7f800000, LEAST = 1, SIGN = 0x80000000;
  EXPECT_EQ(ulpsBetween(bits(1), bits(1) + 3), 3U);
  EXPECT_EQ(ulpsBetween(LEAST, LEAST | SIGN), 2U);
  EXPECT_EQ(ulpsBetween(0, SIGN), 0U);
  EXPECT_EQ(ulpsBetween(NAN_BITS, bits(1)), std::nullopt);
  const struct {
    Word a, b;
    Rules rules;
    bool close;
  } CASES[] = {
      {bits(1), bits(1) + 3, {.ulp = 3}, true},
      {bits(1), bits(1) + 3, {.ulp = 2}, false},
      {0, SIGN, {}, false},
      {0, SIGN, {.ulp = 0}, true},
      {bits(1), bits(1.5F), {.epsilon = 0.5}, true},
      {bits(1), bits(1.5F), {.epsilon = 0.25}, false},
      {INF, INF | SIGN, {.epsilon = 1e300}, false},
      {INF, bits(1), {.epsilon = 1e300}, false},
      {NAN_BITS, NAN_BITS + 1, {.ulp = 9, .epsilon = 9}, false},
  };
  for (const auto &pair : CASES) {
    EXPECT_EQ(closeFloats(pair.a, pair.b, pair.rules), pair.close) << pair.a << ' ' << pair.b;
    EXPECT_EQ(closeFloats(pair.b, pair.a, pair.rules), pair.close) << pair.b << ' ' << pair.a;
  }
}

TEST(Pairs, everyEditIsToldAndNothingElse) { expectEdits(0, 300); }
/// A list is turned round, links with it: only --order tells of that.
TEST(Pairs, areEqualWhenOnlyRenumbered) {
  std::size_t moved = 0;
  for (std::uint32_t seed = 0; seed < 60; ++seed) {
    const EditedPair pair = editedPair(scenes()[seed % scenes().size()], seed, true);
    EXPECT_EQ(linesOf(differencesOf(pair.a, pair.b)), "") << "pair " << seed;
    for (const Seen &seen : differencesOf(pair.a, pair.b, {.order = true})) {
      EXPECT_EQ(seen.change.what, What::moved);
      ++moved;
    }
  }
  EXPECT_GT(moved, 30U);
}
/// Six objects that only their parents tell apart, one below the other, in all orders.
TEST(Pairs, areEqualWhenEqualElementsAreRenumbered) {
  std::array<int, 6> at = {0, 1, 2, 3, 4, 5};
  const auto chain = [&] {
    std::array<int, 6> parents;
    for (std::size_t i = 0; i < at.size(); ++i)
      parents[static_cast<std::size_t>(at[i])] = i == 0 ? -1 : at[i - 1];
    std::string text = "ObjList {";
    for (const int parent : parents)
      text += " Obj obj_parent_link=" + std::to_string(parent);
    return samples::build(0x100, text + " }", samples::LinkWords::none).bytes;
  };
  for (const Bytes first = chain(); std::next_permutation(at.begin(), at.end());)
    ASSERT_EQ(linesOf(differencesOf(first, chain())), "") << testing::PrintToString(at);
}
/// The names that stand in differences can be ignored, and are not told then.
TEST(Pairs, lackWhatIsIgnored) {
  const auto nameOf = [](const Seen &seen) {
    return seen.change.field.substr(0, seen.change.field.find_first_of(".["));
  };
  std::set<std::string> names;
  for (std::uint32_t seed = 0; seed < 200; ++seed) {
    const Bytes a = mend::damagedFile(seed), &b = scenes()[seed % scenes().size()];
    for (const Seen &seen : differencesOf(a, b))
      if (const std::string name = nameOf(seen);
          !name.empty() && name != "behind the lists" && names.insert(name).second) {
        EXPECT_TRUE(isFieldName(name)) << name;
        for (const Seen &left : differencesOf(a, b, {.ignored = {name}}))
          EXPECT_NE(nameOf(left), name);
      }
  }
  EXPECT_GT(names.size(), 100U);
}
TEST(SlowPairs, everyEditIsToldAndNothingElse) { expectEdits(300, 10'000); }

/// Any two files: damaged ones, and each with the one that it was made of.
void expectWhole(std::uint32_t first, std::uint32_t number) {
  for (std::uint32_t seed = first; seed < first + number; ++seed) {
    const Bytes a = mend::damagedFile(seed),
                b = seed % 3 == 0 ? mend::damagedFile(seed + 1) : scenes()[seed % scenes().size()];
    ASSERT_EQ(brokenPair(a, b), "") << "pair " << seed;
  }
}

TEST(Pairs, holdOfDamagedFiles) { expectWhole(0, 300); }
TEST(SlowPairs, holdOfDamagedFiles) { expectWhole(300, 10'000); }

/// What kbrepair changes is what is different: the same words, no more.
void expectMended(std::uint32_t first, std::uint32_t number) {
  std::size_t mended_files = 0;
  for (std::uint32_t seed = first; seed < first + number; ++seed) {
    const Bytes damaged = mend::damagedFile(seed);
    Bytes mended = damaged;
    const mend::Result result = mend::mendBytes(mended, {});
    if (result.outcome != mend::Outcome::mended || !result.undone.empty())
      continue;
    ++mended_files;
    std::vector<std::string> changed, told;
    for (const mend::Change &change : result.changes)
      changed.push_back(change.list + (' ' + change.field) + ' ' + std::to_string(change.old_value) + " -> " +
                        std::to_string(change.new_value));
    for (const Seen &seen : differencesOf(damaged, mended))
      told.push_back(wordsOf(seen));
    std::sort(changed.begin(), changed.end());
    std::sort(told.begin(), told.end());
    ASSERT_EQ(joined(told), joined(changed)) << "file " << seed;
  }
  EXPECT_GT(mended_files, number / 10);
}

TEST(Pairs, nameTheWordsThatWereMended) { expectMended(0, 500); }
TEST(SlowPairs, nameTheWordsThatWereMended) { expectMended(500, 10'000); }

} // namespace
} // namespace kova::diff
