/// The places of words in the layout are those of the tables of words in format/.
#include "mend/layout.h"

#include "format/all.h"

#include <gtest/gtest.h>

namespace kova::mend {

namespace {

template <const auto &TABLE> void expectSame(const Kind &kind) {
  const auto &words = WORD_INFOS<TABLE>;
  const auto placeOf = [&](Role role) {
    const std::size_t word = wordWith(TABLE, role);
    return word == words.size() ? NO_WORD : static_cast<std::uint16_t>(word * sizeof(Word));
  };
  SCOPED_TRACE(kind.name);
  EXPECT_EQ(kind.fixed, words.size() * sizeof(Word));
  EXPECT_EQ(kind.index_at, placeOf(Role::own_index));
  EXPECT_EQ(kind.size_at, placeOf(Role::size));
  if (kind.blocks_at != NO_WORD) { // the blocks of collision groups stand behind each collision
    EXPECT_EQ(kind.blocks_at, placeOf(Role::van_size));
  }
  std::size_t link = 0;
  for (std::size_t word = 0; word < words.size(); ++word) {
    if (words[word].role != Role::link)
      continue;
    ASSERT_LT(link, kind.links.size()) << words[word].name.c_str();
    EXPECT_EQ(kind.links[link].at, word * sizeof(Word));
    EXPECT_EQ(kind.links[link].to, words[word].to) << words[word].name.c_str();
    ++link;
  }
  EXPECT_EQ(link, kind.links.size());
}

} // namespace

TEST(Layout, PlacesAreThoseOfTheTablesOfWords) {
  std::size_t number = 0;
  eachList([&](const auto &row) {
    using Format = ListFormat<std::remove_cvref_t<decltype(std::declval<Kis>().*row.list)>>;
    const ListLayout &layout = LAYOUT[number++];
    if constexpr (requires { Format::elements; })
      expectSame<Format::elements.words>(*layout.first);
    else
      expectSame<Format::words>(SCENE);
    if constexpr (requires { Format::second_elements; })
      expectSame<Format::second_elements.words>(*layout.second);
  });
}

} // namespace kova::mend
