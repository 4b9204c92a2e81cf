/// What the deep checks look at in each type of record: its links, its floats and its keys, as the format tells them.
#pragma once

#include "survey/deep_names.h"

namespace kova::survey::deep {

/// What was found of one kind in a record, as many as there are.
template <class Item> struct Found {
  static constexpr std::size_t MOST = 24;

  std::array<Item, MOST> item{};
  std::size_t num = 0;

  constexpr void add(const Item &added) { item[num++] = added; }
  constexpr Item &last() { return item[num - 1]; }
};

/// The same without room for more.
template <const auto &FOUND> consteval auto tight() {
  std::remove_cvref_t<decltype(FOUND.item)> all = FOUND.item;
  std::array<std::remove_cvref_t<decltype(all[0])>, FOUND.num> items{};
  std::copy_n(all.begin(), FOUND.num, items.begin());
  return items;
}

/// @return whether a word of a record is that of a record inside of it. (Its base has no heading.)
constexpr bool isNested(std::span<const WordRow> table, std::size_t word) {
  return std::any_of(table.begin(), table.end(), [word](const WordRow &row) {
    return word >= row.first && word < row.first + row.words && row.heading[0] != '\0';
  });
}

/// Whether a record has others among its fixed words.
template <class Head>
inline constexpr bool HAS_NESTED = [] {
  for (std::size_t word = 0; word < WORDS<Head>.WORD_NUM; ++word)
    if (isNested(WORDS<Head>, word))
      return true;
  return false;
}();

// --- Links ----------------------------------------------------------------------------------------------------------

/// A link among the fixed words of a record, or an array of links.
struct Link {
  WordName word;
  WordName label; ///< in messages
  WordName id;
  To to;
  const char *target;
  const char *meaning;
  std::size_t first; ///< among the fixed words
  std::size_t words; ///< 0 if it is an array
};

/// Finds the links of a record.
template <class Head> struct LinkFinder : PassingIo {
  Found<Link> links{};

  constexpr void add(const WordName &word, std::string_view label, To to, std::size_t first = 0,
                     std::size_t words = 0) {
    const WordName id = idOf(std::get<Linked<Head>>(LINKED).prefix, word, to);
    // The images of a texture are texture images, or with a palette also others: a finding of its own.
    if ((std::is_same_v<Head, TexStill> || std::is_same_v<Head, TexTilesHead>)&&to == To::image)
      put(word, label, id, To::teximg, first, words);
    put(word, label, idOr<Head>(word, id), to, first, words);
  }
  constexpr void put(const WordName &word, std::string_view label, const WordName &id, To to, std::size_t first,
                     std::size_t words) {
    const Target target = targetOf(to);
    links.add({word, labelOr<Head>(word, label), id, to, target.name, target.meaning, first, words});
  }

  constexpr void fixedWords() {
    constexpr auto &INFOS = WORD_INFOS<WORDS<Head>>;
    for (std::size_t word = 0; word < INFOS.size(); ++word) {
      const WordInfo &info = INFOS[word];
      if (info.role != Role::link || isNested(WORDS<Head>, word))
        continue;
      if (info.part != 0 && INFOS[word - 1].role == Role::link)
        ++links.last().words;
      else
        add(info.name, info.label, info.to, word, 1);
    }
    if constexpr (std::is_same_v<Head, MorphPartHead>) // its nodes are reported before its external references
      std::swap(links.item[2], links.item[3]);
  }

  using PassingIo::array;
  using PassingIo::pairs;
  template <class Text, class Array, class Count> constexpr int array(Text, Array, Count, To to) {
    add(Text::name(), Text::label(), to);
    return 1;
  }
  template <class Text, class Array, class Count> constexpr int pairs(Text text, Array member, Count count, To to) {
    return array(text, member, count, to);
  }
  template <class Member> constexpr int refs(Member) {
    for (const RefWords &ref : REFS)
      add(nameOf(ref.group_index), ref.group_index, ref.to);
    return 1;
  }
  constexpr Word tiles() const { return 0; }
};

/// Records that hold no links behind their fixed words, but a number of others that is computed when the program runs.
template <class Head>
concept ComputedContent =
    std::same_as<Head, TeximgHead> || std::same_as<Head, CiImgHead> || std::same_as<Head, NameHead>;

template <class Head>
inline constexpr bool HAS_LINK_WORDS = [] {
  for (std::size_t word = 0; word < WORDS<Head>.WORD_NUM; ++word)
    if (WORD_INFOS<WORDS<Head>>[word].role == Role::link && !isNested(WORDS<Head>, word))
      return true;
  return false;
}();

template <class Head>
inline constexpr Found<Link> FOUND_LINKS = [] {
  LinkFinder<Head> finder;
  if constexpr (HAS_LINK_WORDS<Head>)
    finder.fixedWords();
  if constexpr (!ComputedContent<Head> && requires(const Head &head) { content(finder, head); })
    content(finder, Head{});
  return finder.links;
}();

/// The links of a type of record: those among its words, then arrays.
template <class Head> inline constexpr auto LINKS = tight<FOUND_LINKS<Head>>();

/// @return those of them that are the array of this name.
template <class Head> consteval std::span<const Link> arrayLinks(std::string_view name) {
  const auto is_meant = [name](const Link &link) { return link.words == 0 && std::string_view(link.word) == name; };
  const auto &links = LINKS<Head>;
  const auto first = std::find_if(links.begin(), links.end(), is_meant);
  const auto end = std::find_if_not(first, links.end(), is_meant);
  if (first == end)
    throw "the links of an array were not found";
  return std::span(first, end);
}

// --- Floats and keys ------------------------------------------------------------------------------------------------

/// Words of a record that are reported under one label.
struct LabelledWords {
  WordName label;
  std::size_t first, num;
};

constexpr bool isFloat(const WordInfo &info) { return info.kind == Kind::real; }
constexpr bool isKey(const WordInfo &info) { return info.role == Role::key; }

/// @param IS_MEANT tells which words
/// @param label of all words that have none of their own; if it is empty, their names
template <class Head, const auto &TABLE, auto IS_MEANT>
consteval Found<LabelledWords> labelled(std::string_view label = "") {
  Found<LabelledWords> found;
  for (std::size_t word = 0; word < TABLE.WORD_NUM; ++word) {
    const WordInfo &info = WORD_INFOS<TABLE>[word];
    if (!IS_MEANT(info) || isNested(TABLE, word))
      continue;
    const WordName own = labelOr<Head>(info.name, label.empty() ? info.label : label);
    const bool goes_on = found.num != 0 && found.last().first + found.last().num == word &&
                         std::string_view(found.last().label) == std::string_view(own);
    if (goes_on)
      ++found.last().num;
    else
      found.add({own, word, 1});
  }
  return found;
}

/// The keys of the references of a triangle group.
inline constexpr auto REF_KEYS = [] {
  std::array<LabelledWords, REF_KIND_NUM> keys{};
  for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind)
    keys[kind] = {copied(REFS[kind].key), 0, 1};
  return keys;
}();

/// The floats among the fixed words of a record.
template <class Head> inline constexpr auto FOUND_FLOATS = labelled<Head, WORDS<Head>, isFloat>();
template <class Head> inline constexpr auto FLOATS = tight<FOUND_FLOATS<Head>>();

/// The floats, or the keys, in each record of a run inside of another record.
template <class Head, class Form, auto IS_MEANT>
inline constexpr auto FOUND_IN_RUN =
    labelled<typename Form::Head, Form::words, IS_MEANT>(std::string_view(labelOr<Head>(Form::name(), Form::kind())));
template <class Head, class Form, auto IS_MEANT>
inline constexpr auto IN_RUN = tight<FOUND_IN_RUN<Head, Form, IS_MEANT>>();

} // namespace kova::survey::deep
