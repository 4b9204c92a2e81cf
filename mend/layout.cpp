#include "mend/layout.h"

#include "mend/record_io.h"

namespace kova::mend {

namespace {

/// The scene is a list that is a single record.
constexpr auto &SCENE_FORM = items<SceneHead, "scene", "Scene", SCENE_LIST_TAG>;
/// External names are names with tags of their own.
constexpr auto &EXTERNAL_NAME_FORM = items<NameHead, "element", "Name", EXTERNAL_NAME_LIST_TAG + ELEMENT_KIND>;

template <const auto &FORM> constexpr const RecordLayout *kindOf() {
  return &RECORD_LAYOUT<std::remove_cvref_t<decltype(FORM)>>;
}

/// The name of a size table.
template <const auto &TABLE> inline constexpr WordName TABLE_NAME = TABLE.name();

template <class Format> constexpr ListLayout layoutOf(Word tag) {
  ListLayout layout;
  layout.tag_name = NAME_OF<Format::words, Role::tag>;
  layout.header_size_name = NAME_OF<Format::words, Role::header_size>;
  layout.size_name = NAME_OF<Format::words, Role::size>;
  layout.head_bytes = sizeof(typename Format::Head);
  layout.blocks_at = PLACE_OF<Format::words, Role::van_size>;
  if constexpr (requires { Format::elements; }) {
    layout.first = tag == EXTERNAL_NAME_LIST_TAG ? kindOf<EXTERNAL_NAME_FORM>() : kindOf<Format::elements>();
    layout.count_name = WORD_INFOS<Format::words>[list_at::COUNT / sizeof(Word)].name.c_str();
    layout.table_name = TABLE_NAME<Format::table>.c_str();
  }
  if constexpr (requires { Format::second_elements; }) {
    layout.second = kindOf<Format::second_elements>();
    layout.second_count_name = WORD_INFOS<Format::words>[list_at::SECOND_COUNT / sizeof(Word)].name.c_str();
    layout.second_table_name = TABLE_NAME<Format::second_table>.c_str();
  }
  return layout;
}

/// Names the word of the file's header with the size of a list, which for the lists of version 2.0 is behind it.
template <class Head> constexpr void nameHeaderWord(ListLayout &layout, Word FileHeader::*size, std::uint64_t begin) {
  const std::size_t word = wordOf<Head>(static_cast<Word Head::*>(size));
  layout.header_word = WORD_INFOS<WORDS<Head>>[word].name.c_str();
  layout.header_word_at = begin + word * sizeof(Word);
}

constexpr std::array<ListLayout, LIST_NUM> layouts() {
  std::array<ListLayout, LIST_NUM> all{};
  std::size_t list = 0;
  eachList([&](const auto &row) {
    using List = std::remove_cvref_t<decltype(std::declval<Kis>().*row.list)>;
    all[list] = layoutOf<ListFormat<List>>(row.tag);
    if (list < VERSION_1_LIST_NUM)
      nameHeaderWord<FileHeaderHead>(all[list], row.size, 0);
    else
      nameHeaderWord<Version2Sizes>(all[list], row.size, sizeof(FileHeaderHead));
    ++list;
  });
  return all;
}

constexpr const RecordLayout &NAME = *kindOf<ListFormat<NameList>::elements>();
constexpr const RecordLayout &EXTERNAL_NAME = *kindOf<EXTERNAL_NAME_FORM>();

} // namespace

constexpr RecordLayout SCENE = *kindOf<SCENE_FORM>();
constexpr std::array<ListLayout, LIST_NUM> LAYOUT = layouts();

const char *headerWordName(std::uint64_t at) {
  return WORD_INFOS<WORDS<FileHeaderHead>>[static_cast<std::size_t>(at / sizeof(Word))].name.c_str();
}

const char *listName(std::size_t list) { return list < LIST_NUM ? LISTS[list].name : "FileHeader"; }

bool isListTag(std::size_t list, Word tag) {
  return tag == LISTS[list].tag || (LAYOUT[list].first == &NAME && tag == EXTERNAL_NAME_LIST_TAG);
}

bool isElementTag(const RecordLayout &kind, Word tag) {
  return tag == kind.tag || (&kind == &NAME && tag == EXTERNAL_NAME.tag);
}

const RecordLayout &elementLayout(std::size_t list, bool second) {
  const ListLayout &layout = LAYOUT[list];
  return layout.first == nullptr ? SCENE : second ? *layout.second : *layout.first;
}

} // namespace kova::mend
