#include "survey/deep.h"

#include "common/text.h"
#include "survey/deep_io.h"

namespace kova::survey {

namespace deep {

namespace {

// --- The catalogue --------------------------------------------------------------------------------------------------

inline constexpr std::size_t LINK_NUM =
    std::apply([]<class... Head>(const Linked<Head> &...) { return (LINKS<Head>.size() + ...); }, LINKED);

consteval auto makeRows() {
  std::array<FindingRow, LINK_NUM + ROW_NUM> rows{};
  auto row = rows.begin();
  const auto add = [&row](const auto &links) {
    for (const Link &link : links)
      *row++ = warning(link.id.c_str(), LINK_FORMAT, link.meaning, LINK_NEXT_STEP);
  };
  std::apply([&add]<class... Head>(const Linked<Head> &...) { (add(LINKS<Head>), ...); }, LINKED);
  std::copy(std::begin(OTHER_ROWS), std::end(OTHER_ROWS), row);
  return rows;
}
constexpr auto ROWS = makeRows();

// --- Words ----------------------------------------------------------------------------------------------------------

std::size_t wordNum(const WordBytes &words) { return words.bytes.size() / sizeof(Word); }

Word wordAt(const WordBytes &words, std::size_t number) {
  Word word;
  std::memcpy(&word, words.bytes.data() + number * sizeof word, sizeof word);
  return word;
}

bool notFinite(Word bits) { return (bits & 0x7f800000) == 0x7f800000; }

} // namespace

void checkLinks(Check &check, const Link &link, const WordBytes &words, std::size_t first, std::size_t num,
                const Place &place) {
  const std::uint64_t number = check[link.to];
  for (std::size_t begin = first; begin < wordNum(words); begin += words.stride)
    for (std::size_t i = begin; i < std::min(begin + num, wordNum(words)); ++i) {
      const Word index = wordAt(words, i);
      if (index < number || index == NO_LINK)
        continue;
      const auto has = static_cast<Word>(number);
      say(check, link.id.c_str(), LINK_FORMAT, after(place, i * sizeof(Word)), {index, has}, link.label.c_str(), index,
          link.target, has);
    }
}

void checkFloats(Check &check, const LabelledWords &floats, const WordBytes &words, const Place &place) {
  for (std::size_t begin = floats.first; begin < wordNum(words); begin += words.stride)
    for (std::size_t i = begin; i < std::min(begin + floats.num, wordNum(words)); ++i)
      if (notFinite(wordAt(words, i)))
        return say<floatNotFinite>(check, after(place, i * sizeof(Word)), {}, floats.label.c_str());
}

void checkKeys(Check &check, const LabelledWords &keys, const WordBytes &words, const Place &place) {
  for (std::size_t i = words.stride + keys.first; i < wordNum(words); i += words.stride) {
    const Word before = wordAt(words, i - words.stride), key = wordAt(words, i);
    if (static_cast<Index>(key) < static_cast<Index>(before))
      return say<keysOutOfOrder>(check, place, {key, before}, keys.label.c_str(), key, before);
  }
}

void checkName(Check &check, const Name &name, const Place &place) {
  const std::string text = kvGetName(name);
  if (const std::size_t at = controlByte(text); at != text.npos) {
    const Word byte = static_cast<unsigned char>(text[at]);
    say<nameControlByte>(check, after(place, sizeof(NameHead) + at), {byte}, byte);
  }
}

// --- Lists ----------------------------------------------------------------------------------------------------------

namespace {

/// @return the number of records of a list; unknown where the file has more than could be read.
template <class Record> std::uint64_t known(Word bytes, Word tag, Word num, const std::vector<Record> &records) {
  const bool was_read = bytes == 0 || (tag != 0 && records.size() >= num);
  return was_read ? records.size() : UNKNOWN;
}

template <class Record> void count(Check &check, To to, Word bytes, const List<Record> &list) {
  check[to] = known(bytes, list.list_tag, list.num, list.element);
}
void count(Check &check, To to, Word bytes, const ColorList &list) {
  check[to] = known(bytes, list.list_tag, list.tri_group_num, list.tri_group);
  // as many groups of vertex colours are read as of triangle colours
  check[To::vtx_color] = known(bytes, list.list_tag, list.tri_group_num, list.vtx_group);
}
void count(Check &check, To to, Word bytes, const VectorList &list) {
  check[to] = known(bytes, list.list_tag, list.tri_group_num, list.tri_group);
  check[To::vtx_nv] = known(bytes, list.list_tag, list.vtx_group_num, list.vtx_group);
}
/// Nothing leads to the scene.
void count(Check &, To, Word, const Scene &) {}

Check checkOf(const Kis &kis, FileResult &result) {
  Check check{kis, result};
  check.sizes = groupSizes(kis);
  check.number.fill(UNKNOWN);
  check[To::nothing] = 0;
  std::size_t list = 0;
  eachList([&](const auto &row) { count(check, static_cast<To>(list++), kis.file_header.*row.size, kis.*row.list); });
  check[To::image] = std::max(check[To::teximg], check[To::ci_img]); // unknown is more than any number
  const auto lists = std::span(check.number).first(static_cast<std::size_t>(To::image));
  check[To::any] = *std::max_element(lists.begin(), lists.end());
  return check;
}

template <class List> void checkList(Check &check, const char *name, const List &list) {
  ListCheck<List> io{{}, check, list, name};
  ListFormat<List>::content(io, list);
}
/// The scene is a record; without a tag it was not read.
void checkList(Check &check, const char *name, const Scene &scene) {
  if (scene.scene_header_tag != 0)
    checkRecord<SceneHead>(check, scene, {name, {}, scene.offset});
}

} // namespace

} // namespace deep

void deepCheck(const Kis &kis, FileResult &result) {
  using namespace deep;
  Check check = checkOf(kis, result);
  eachList([&](const auto &row) { checkList(check, row.name, kis.*row.list); });
  if (check[To::obj] != UNKNOWN) // else links to objects that were not read look like contradictions
    checkTree(check, kis.obj.element);
}

std::span<const FindingRow> deepRows() { return deep::ROWS; }

} // namespace kova::survey
