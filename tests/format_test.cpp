/// What the records hold is stated three times on purpose: in format/, in the builder of the samples and in the
/// reference of the format. Here they are compared.

#include "format/all.h"
#include "samples/builder.h"
#include "tests/support.h"

#include <gtest/gtest.h>
#include <sstream>

namespace kova::test {

namespace {

// --- The builder ----------------------------------------------------------------------------------------------------

/// A word of a file, as it is described in one of the two places.
struct Described {
  std::string name;
  Word value;
  bool is_link;
  bool is_float;
};

/// Lists the words of a model in the order of its file, as format/ describes them; texels and text are left out.
template <class Record, class Around = Record> struct Lister : PassingIo {
  std::vector<Described> &all;
  const Record &record;
  const Around &around;

  void add(std::string_view name, Word value, bool is_link = false, bool is_float = false) {
    all.push_back({std::string(name), value, is_link, is_float});
  }

  template <const auto &TABLE, class Head> void addWords(const Head &head, std::size_t bytes = sizeof(Head)) {
    const auto words = std::bit_cast<std::array<Word, sizeof(Head) / sizeof(Word)>>(head);
    for (std::size_t i = 0; i < bytes / sizeof(Word); ++i) {
      const WordInfo &info = WORD_INFOS<TABLE>[i];
      add(info.name, words[i], info.role == Role::link, info.kind == Kind::real);
    }
  }

  template <class Text, class Item, class Holder, class Count>
  int array(Text text, std::vector<Item> Holder::*member, Count count, To to = To::nothing) {
    for (const Item &item : counted(numberOf(record, count), record.*member))
      for (const Word word : std::bit_cast<std::array<Word, sizeof(Item) / sizeof(Word)>>(item))
        add(text.name(), word, to != To::nothing, KINDS<Item>[0] == Kind::real);
    return 1;
  }
  template <class Text, class Item, class Holder, class Count>
  int pairs(Text text, std::vector<Item> Holder::*member, Count count, To = To::nothing) {
    for (std::size_t part = 0; part < sizeof(Item) / sizeof(Word); ++part)
      for (const Item &item : counted(numberOf(record, count), record.*member))
        add(text.name(), std::bit_cast<std::array<Word, sizeof(Item) / sizeof(Word)>>(item)[part],
            !std::is_same_v<Item, NodeIndex> || part == 1);
    return 1;
  }
  template <class Form, class Item, class Holder, class Count>
  int run(Form form, std::vector<Item> Holder::*member, Count count) {
    const std::size_t begin = all.size();
    for (const Item &item : counted(numberOf(record, count), record.*member))
      addWords<Form::words>(item, Form::bytes);
    if constexpr (!requires { record.ext_blk; }) // the builder has keyframes as arrays of floats
      for (std::size_t i = begin; i < all.size(); ++i)
        all[i] = {std::string(form.name()), all[i].value, false, true};
    return 1;
  }
  template <class Form, class Item, class Holder, class Count>
  int records(Form form, std::vector<Item> Holder::*member, Count count) {
    for (const Item &item : counted(numberOf(record, count), record.*member))
      go(form, item);
    return 1;
  }
  template <class Form, class Item, class Holder> int inner(Form form, Item Holder::*member) {
    go(form, record.*member);
    return 1;
  }

  int addBlocks(const ExtBlk &blk, std::size_t decoded) {
    for (const Word word : vanExtBlk(blk).subspan(decoded))
      add("van", word);
    for (const Word word : usrExtBlk(blk))
      add("usr", word);
    return 1;
  }
  int blocks() { return addBlocks(record.ext_blk, 0); }
  template <class Form, class Ext, class Holder> int blocks(Form form, std::unique_ptr<Ext> Holder::*ext) {
    const std::size_t begin = all.size();
    if (record.*ext)
      go(form, *(record.*ext));
    return addBlocks(record.ext_blk, all.size() - begin);
  }
  template <class Holder> int blocksAround(ExtBlk Holder::*blk) { return addBlocks(record.*blk, 0); }
  template <class Holder> int refs(std::unique_ptr<Index[]> Holder::*) {
    for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind) {
      const AnimRef ref = kvRefs(record)[kind];
      if (refForm(record.tri_anim_type, kind) == RefForm::keys)
        add(REFS[kind].key_num, ref.key_num);
      for (const Index key : ref.key)
        add(REFS[kind].key, static_cast<Word>(key));
      for (const Index group : ref.group_index)
        add(REFS[kind].group_index, static_cast<Word>(group), true);
    }
    return 1;
  }
  int data(CollData Coll::*) {
    const std::size_t bytes = record.coll_size - record.coll_header_size;
    const std::size_t begin = all.size();
    withCollData(record, [&](const auto &kind) { addWords<WORDS<std::remove_cvref_t<decltype(kind)>>>(kind, bytes); });
    for (std::size_t i = all.size() - begin; i < bytes / sizeof(Word); ++i)
      add("", record.data[i]); // of a kind that is not known
    return 1;
  }
  Word tiles() const { return kvCiTileNum(around); }

private:
  template <class Form, class Item> void go(Form, const Item &item) {
    Lister<Item, Record> inside{{}, all, item, record};
    const typename Form::Head &head = item;
    inside.template addWords<Form::words>(head, Form::bytes);
    content(inside, head);
  }
};

std::vector<Described> describedByFormat(const Kis &kis) {
  std::vector<Described> all;
  eachList([&](const auto &row) {
    using List = std::remove_cvref_t<decltype(kis.*row.list)>;
    Lister<List> lister{{}, all, kis.*row.list, kis.*row.list};
    const typename ListFormat<List>::Head &head = kis.*row.list;
    if (kis.file_header.*row.size != 0) {
      lister.template addWords<ListFormat<List>::words>(head);
      ListFormat<List>::content(lister, head);
    }
  });
  return all;
}

/// The builder's words behind the header. Links are those that change when there are to be none; words that nobody
/// sets hold their position, as a float if they are floats.
std::vector<Described> describedByBuilder(const File &file, const File &unlinked) {
  std::vector<Described> all;
  for (std::size_t i = 0; i < file.words.size(); ++i) {
    const samples::NamedWord &word = file.words[i];
    if (word.kind.starts_with("FileHeader"))
      continue;
    const Word value = harness::wordAt(file.bytes, word.offset);
    const Word link = harness::wordAt(unlinked.bytes, unlinked.words[i].offset);
    all.push_back({word.field.substr(0, word.field.find('[')), value, link == NO_LINK && value != link,
                   value >= std::bit_cast<Word>(1.0F) && value < std::bit_cast<Word>(4096.0F)});
  }
  return all;
}

/// The builder has shorter names where its notation allows it: those of the lists without their prefix, arrays for
/// members that differ by a number or a word.
bool sameName(const std::string &format, const std::string &builder) {
  constexpr const char *OTHERS[] = {"vtx",
                                    "external_constraint",
                                    "tri_group_num",
                                    "vtx_group_num",
                                    "tri_group_size",
                                    "vtx_group_size",
                                    "group_index",
                                    "num_byte"};
  return format == builder || format.ends_with("_" + builder) || builder.ends_with("_" + format) ||
         (format.starts_with(builder) && format.size() == builder.size() + 1) ||
         std::find(std::begin(OTHERS), std::end(OTHERS), builder) != std::end(OTHERS);
}

// --- The reference of the format ------------------------------------------------------------------------------------

using Lines = std::vector<std::string>;

/// The type of a member, as the reference has it.
std::string typeOf(const WordRow &row) {
  constexpr const char *SIGNED[] = {"light_header_size", "coll_header_size", "coll_size"};
  const std::string name(nameOf(row));
  if (std::find(std::begin(SIGNED), std::end(SIGNED), name) != std::end(SIGNED))
    return "int";
  if (row.kinds.size() == 2)
    return row.kinds[0] == Kind::word ? "node reference" : "external reference";
  if (row.kinds[0] == Kind::real)
    return row.words == 1 ? "float" : row.words == 3 ? "XYZ" : "RGBA";
  if (row.kinds[0] == Kind::index)
    return "int";
  const bool in_hex = row.texts[0] == nullptr || std::string_view(row.texts[0]).find("%0#10x") != std::string::npos;
  const bool is_flags =
      (in_hex || row.words > 1) && (row.meaning.role == Role::plain || row.meaning.role == Role::link);
  return row.meaning.role == Role::tag ? "tag" : is_flags && name != "version" ? "flags" : "uint";
}

/// "offset name type" of each member, or of a record inside "offset".
void addRows(Lines &lines, std::span<const WordRow> rows) {
  for (const WordRow &row : rows)
    if (row.inner.empty())
      lines.push_back(std::to_string(row.first * 4) + " " + std::string(nameOf(row)) + " " + typeOf(row));
    else if (row.first != 0) // a base stands in a table of its own
      lines.push_back(std::to_string(row.first * 4));
}

template <const auto &...TABLES> std::vector<Lines> fieldsOfFormat() {
  std::vector<Lines> all;
  (addRows(all.emplace_back(), TABLES.row), ...);
  return all;
}

std::vector<std::string> cellsOf(const std::string &line) {
  std::vector<std::string> cells;
  std::istringstream in(line.substr(1));
  for (std::string cell; std::getline(in, cell, '|');) {
    std::erase(cell, '`');
    const std::size_t first = cell.find_first_not_of(' ');
    cells.push_back(first == std::string::npos ? "" : cell.substr(first, cell.find_last_not_of(' ') + 1 - first));
  }
  return cells;
}

/// The same of each table of the page, with the rows behind the fixed words, which have no number for an offset or are
/// taken off by their place.
std::vector<Lines> fieldsOfPage() {
  std::vector<Lines> all;
  std::istringstream page(readFile(KOVA_SOURCE_DIR "/docs/format.md"));
  bool inside = false;
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("| Offset") && line.find("| Field |") != line.npos) {
      all.emplace_back();
      inside = true;
    } else if (!line.starts_with('|')) {
      inside = false;
    } else if (inside && std::isdigit(line[2]) != 0) {
      const std::vector<std::string> cells = cellsOf(line);
      const std::size_t bracket = cells[1].find('[');
      const bool is_number = bracket != std::string::npos && cells[1].size() == bracket + 3;
      const WordName name = nameInText(is_number ? cells[1] : cells[1].substr(0, bracket));
      all.back().push_back(cells[0] + " " + name.c_str() + " " + cells[2]);
    }
  }
  return all;
}

} // namespace

TEST(Format, TheBuilderDescribesTheSameWords) {
  const File file = samples::goodFile2();
  Kis kis;
  ASSERT_TRUE(loadBytes(file.bytes, kis));
  const std::vector<Described> format = describedByFormat(kis);
  const std::vector<Described> builder = describedByBuilder(file, samples::goodFile2(samples::LinkWords::none));
  ASSERT_EQ(format.size(), builder.size());
  for (std::size_t i = 0; i < format.size(); ++i) {
    const std::string what = format[i].name + ", " + builder[i].name + " of " + std::to_string(i);
    ASSERT_EQ(format[i].value, builder[i].value) << what;
    if (format[i].name.empty())
      continue;
    ASSERT_TRUE(sameName(format[i].name, builder[i].name)) << what;
    // In these two arrays the builder does not tell the kind of a node from its index.
    const bool is_kind = builder[i].name == "affected_node" || builder[i].name == "vtx";
    ASSERT_TRUE(format[i].is_link == builder[i].is_link || (is_kind && !format[i].is_link)) << what;
    ASSERT_TRUE(format[i].is_float == builder[i].is_float || builder[i].value == 0) << what; // 0 and 0.0 are the same
  }
}

TEST(Format, TheReferenceDescribesTheSameFields) {
  static constexpr auto COMMON_LIST_WORDS = listWords({"list_tag %0#10x", "list_header_size %d", "list_size %d",
                                                       "num %d", "van_ext_blk_size %d", "usr_ext_blk_size %d"});
  const std::vector<Lines> format = fieldsOfFormat<
      WORDS<FileHeaderHead>, WORDS<Version2Sizes>, COMMON_LIST_WORDS, WORDS<VtxTriNvColor>, WORDS<SceneHead>,
      WORDS<EnvHead>, WORDS<CamHead>, WORDS<LightHead>, WORDS<ObjHead>, WORDS<ShapeHead>, WORDS<VtxGroupHead>,
      WORDS<TriGroupHead>, WORDS<TriHead>, COLOR_LIST_WORDS, WORDS<TriColorGroupHead>, WORDS<VtxColorGroupHead>,
      VECTOR_LIST_WORDS, WORDS<TriNvGroupHead>, WORDS<VtxNvGroupHead>, WORDS<StGroupHead>, WORDS<PartHead>,
      WORDS<MatHead>, WORDS<TexHead>, WORDS<TexStill>, WORDS<TexTilesHead>, WORDS<TeximgHead>, WORDS<AnimGroupHead>,
      WORDS<CollGroupHead>, WORDS<CollHead>, WORDS<SwitchHead>, WORDS<NameHead>, WORDS<SceneListExtHead>, WORDS<CamExt>,
      WORDS<ObjExtHead>, WORDS<ShapeExt>, WORDS<MatExtHead>, WORDS<TexExtHead>, WORDS<TeximgExtHead>,
      WORDS<AnimGroupExtHead>, WORDS<ElementHead>, WORDS<CiImgHead>, WORDS<ColorPaletteHead>, WORDS<EnvelopeHead>,
      WORDS<FullWeightedPartHead>, WORDS<WeightedPartHead>, WORDS<MorphPartHead>, WORDS<EnvelopeTri>,
      WORDS<ClusterShapeHead>, WORDS<Cluster>, WORDS<ClusterTri>, WORDS<WeightGroupHead>, WORDS<ChainRootHead>,
      WORDS<JointHead>, WORDS<EffectorHead>>();
  const std::vector<Lines> page = fieldsOfPage();
  ASSERT_EQ(page.size(), format.size());
  for (std::size_t table = 0; table < format.size(); ++table) {
    ASSERT_GE(page[table].size(), format[table].size()) << format[table][0];
    for (std::size_t i = 0; i < format[table].size(); ++i)
      EXPECT_TRUE(page[table][i].starts_with(format[table][i])) << page[table][i] << " is " << format[table][i];
  }
}

} // namespace kova::test
