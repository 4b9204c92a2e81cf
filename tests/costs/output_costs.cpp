/// Prints what each kind of record costs: the fewest bytes that it takes in a file, and the most characters that the
/// checks and the dump print of it. scripts/prove.py proves from these rows what is promised of the output.
///
///     part  list  kind  role  bytes  characters
///
/// The part is 1 or 2 for the version-1 and the version-2 lists. The role is `entry` of a size table, `element`,
/// `zeroed` for records that are promised only, `once` for what a list prints once, and `other`. Texts are measured
/// with the functions of the dump; no word prints longer than `WORST`.

#include "format/all.h"
#include "kova/check.h"
#include "reader/findings.h"
#include "textdump/behavior.h"
#include "textdump/content.h"
#include "textdump/geometry.h"
#include "textdump/material.h"
#include "textdump/scene.h"

#include <cstdlib>
#include <map>
#include <string>

namespace kova {

namespace {

/// "-2139095040", "0x80800000" and "-1.17549e-38".
constexpr Word WORST = 0x80800000;
constexpr Index WORST_POSITION = static_cast<Index>(WORST);
constexpr std::size_t WORST_DIGITS = 11;

template <class Record> Record worst() {
  std::array<Word, sizeof(Record) / sizeof(Word)> words;
  words.fill(WORST);
  return std::bit_cast<Record>(words);
}

/// @return the characters that `print` prints, which are fewer than the buffer has.
template <class Print> std::size_t printed(Print print) {
  static Text text(nullptr);
  text.used = 0;
  print(text);
  return text.used;
}

// --- Findings -------------------------------------------------------------------------------------------------------

/// Which findings an element may have, beside those about its index and its size in the size table: its sum, and
/// others. A part of an element has only those of its row.
struct Told {
  const char *kind;
  std::array<const char *, 2> ids;
};
constexpr Told ANY_ELEMENT = {"", {"element-sum"}};
constexpr Told TOLD[] = {
    {"Obj", {"object-sum"}},
    {"TriGroup", {"triangle-group-sum"}},
    {"CiImg", {"word-array-sum"}},
    {"ColorPalette", {"word-array-sum"}},
    {"WeightGroup", {"word-array-sum"}},
    {"ChainRoot", {"chain-node-sum"}},
    {"Joint", {"chain-node-sum"}},
    {"Effector", {"chain-node-sum"}},
    {"Name", {"external-name-tag"}},
    {"Envelope", {"envelope-sum", "envelope-faulty"}},
    {"ClusterShape", {"cluster-shape-sum", "cluster-shape-faulty"}},
    {"DirLight", {"directional-light-size"}},
    {"FullWeightedPart", {"full-weighted-part-sum"}},
    {"WeightedPart", {"weighted-part-sum"}},
    {"MorphPart", {"morph-part-sum"}},
    {"EnvelopeTri", {"envelope-triangle-size"}},
    {"Cluster", {"cluster-size"}},
    {"ClusterTri", {"cluster-triangle-size"}},
};
constexpr std::array<const char *, 2> OF_EVERY_ELEMENT = {"element-index", "element-size"};
constexpr const char *OF_MAKER_BLOCK = "element-maker-block-short"; // is checked twice
/// These are not told of elements: once for a list or for the file, or by programs that check by themselves.
constexpr const char *ONCE[] = {"list-size",         "list-sum",      "two-kind-list-sum", "scene-sum",
                                "maker-block-short", "all-lists-sum", "unequal-words",     "version-2-list-missing"};

const Told *toldOf(std::string_view kind) {
  const auto found = std::ranges::find_if(TOLD, [&](const Told &told) { return told.kind == kind; });
  return found == std::end(TOLD) ? nullptr : found;
}

/// @return whether one of the tables above has it.
bool isTold(std::string_view id) {
  const auto isIt = [&](const char *one) { return one != nullptr && id == one; };
  return std::ranges::any_of(TOLD, [&](const Told &told) { return std::ranges::any_of(told.ids, isIt); }) ||
         std::ranges::any_of(OF_EVERY_ELEMENT, isIt) || std::ranges::any_of(ONCE, isIt) || isIt(OF_MAKER_BLOCK) ||
         isIt(ANY_ELEMENT.ids[0]);
}

/// @return the most characters of a finding about what is called by `name` characters, without what is repeated in
/// braces.
std::size_t widthOf(const FindingRow &row, std::size_t name) {
  using namespace std::string_view_literals;
  const std::string_view what = row.id == "directional-light-size"sv ? "[].dirlight size" : "[] index";
  std::size_t width = 0;
  std::string_view format = row.format;
  for (std::string_view piece = firstPiece(format); !piece.empty(); piece = firstPiece(format)) {
    if (piece[0] == '%')
      width += piece.ends_with('s') ? name + WORST_DIGITS + what.size() : WORST_DIGITS;
    else if (piece[0] != '{')
      width += piece.size();
    format.remove_prefix(piece.size());
  }
  return width;
}
std::size_t widthOf(std::string_view id, std::size_t name) {
  return widthOf(*std::ranges::find(FINDING_ROWS, id, &FindingRow::id), name);
}

/// @return the most characters of what is repeated for each term of a sum, over all findings.
std::size_t termWidth(int columns) {
  std::size_t width = 0;
  for (const FindingRow &row : FINDING_ROWS) {
    const std::string_view format = row.format;
    const std::size_t begin = format.find('{');
    const std::string_view part = begin < format.size() ? firstPiece(format.substr(begin)) : std::string_view();
    if (conversionsIn(part) == columns)
      width = std::max(width, part.size() - 2 + static_cast<std::size_t>(columns) * (WORST_DIGITS - 2));
  }
  return width;
}

// --- Rows -----------------------------------------------------------------------------------------------------------

struct Cost {
  std::size_t bytes = SIZE_MAX;
  std::size_t characters = 0;
};

/// By what is printed of a row before its numbers.
std::map<std::string, Cost> costs;
std::string list_name; ///< with its part before it

/// The forms of a record differ: the fewest bytes and the most characters count.
void add(const std::string &kind, const char *role, std::size_t bytes, std::size_t characters) {
  Cost &cost = costs[list_name + '\t' + kind + '\t' + role];
  cost.bytes = std::min(cost.bytes, bytes);
  cost.characters = std::max(cost.characters, characters);
}

/// What follows a light begins where its header size says, so a light may take no bytes. It does take some where one of
/// its sizes has two digits: then its header or a block has at least these.
template <class Head> constexpr std::size_t BYTES = sizeof(Head);
template <> inline constexpr std::size_t BYTES<LightHead> = 8;

/// Lights of which each takes no bytes, and directional lights that they promise: what the dump and the checks print of
/// one of them.
void addSharedLight() {
  LightList list;
  list.num = 1;
  list.num_byte = {0};
  Light &light = list.element.emplace_back();
  static_cast<LightHead &>(light) = worst<LightHead>();
  light.light_header_size = light.van_ext_blk_size = light.usr_ext_blk_size = 9;
  const std::size_t dump = printed([&](Text &to) {
    kvWriteKtLightFix1(to, light, WORST_POSITION);
    kvWriteKtExtBlk1(to, {}, 9, 9);
  });
  std::size_t findings = WORST_DIGITS; // the position that the stored index is not
  std::size_t promised = 0;
  const FindingReceiver receiver([&](const Finding &finding) {
    if (!finding.element)
      return; // about the list
    const bool is_promised = std::string_view(finding.row->id) == "directional-light-size";
    (is_promised ? promised : findings) += kvFindingText(finding).size() + WORST_DIGITS - 1;
  });
  Kis kis;
  light.zeroed_dir_light_num = 1;
  kis.light = std::move(list);
  checkLightList(kis);
  add("Light that takes no bytes", "element", 0, dump + findings);
  add("DirLight", "zeroed", 0, promised);
}

/// Goes over what follows the words of a record and adds a row for each piece; what the record prints by itself is
/// added up in `characters`.
struct CostIo : PassingIo {
  std::size_t name; ///< characters of what labels call the element
  bool is_list;     ///< not an element of one
  std::size_t characters = 0;

  explicit CostIo(std::size_t name_characters, bool is_of_list = false) : name(name_characters), is_list(is_of_list) {}

  template <Format LINE, Format NAME, class Item, class Holder, class Count>
  int array(ArrayLine<LINE, NAME> text, std::vector<Item> Holder::*, Count, To = To::nothing) {
    const std::string kind(std::string_view(text.name()));
    if constexpr (NUMBERS<LINE> == 0) { // words as in a block
      words();
      characters += printed([](Text &to) { kvWriteKtList(to, {}, 0, LINE.text); });
    } else {
      const std::size_t width = printed([](Text &to) { printTuple<LINE>(to, WORST_POSITION, worst<Item>()); });
      add(kind, is_list ? "entry" : "other", sizeof(Item), width + (is_list ? termWidth(1) : 0));
    }
    return 1;
  }

  template <Format LABEL, class Item, class Holder, class Count>
  int pairs(PairsLabel<LABEL> label, std::vector<Item> Holder::*, Count, To = To::nothing) {
    const auto one = worst<Item>();
    const std::size_t width = printed([&](Text &to) { printPairs<LABEL>(to, std::span(&one, 1)); });
    add(std::string(std::string_view(label.name())), "other", sizeof(Item), width + 2 * (WORST_DIGITS - 1));
    return 1;
  }

  template <class Form, class Item, class Holder, class Count> int run(Form form, std::vector<Item> Holder::*, Count) {
    return goInto<false>(form, "other");
  }
  template <class Form, class Item, class Holder, class Count>
  int records(Form form, std::vector<Item> Holder::*, Count) {
    return goInto<true>(form, is_list ? "element" : "other");
  }
  /// Its bytes are left out: of an element that is cut there, it prints all the same.
  template <class Form, class Item, class Holder> int inner(Form, Item Holder::*) {
    characters += printed([](Text &to) {
      putRecord<LINES_OF<Form::words>>(to, worst<typename Form::Head>());
      print<"\n">(to);
    });
    content(*this, typename Form::Head{});
    return 1;
  }

  int blocks() {
    characters += printed([](Text &to) { kvWriteKtExtBlk2(to, {}, 2, 1, 1); });
    words();
    return 1;
  }
  /// The words of a maker block that is not there print as zeros.
  template <class Form, class Ext, class Holder> int blocks(Form, std::unique_ptr<Ext> Holder::*) {
    characters += 2 * widthOf(OF_MAKER_BLOCK, name);
    characters += printed([](Text &to) {
      constexpr auto &TABLE = LINES<typename Form::Head>;
      putRecord<TABLE>(to, worst<typename Form::Head>());
      if constexpr (TABLE.later.first != TABLE.later.end)
        putLater<TABLE>(to, worst<typename Form::Head>());
    });
    content(*this, typename Form::Head{});
    return blocks();
  }
  template <class Holder> int blocksAround(ExtBlk Holder::*) { return blocks(); }

  template <Format LINE, Format NAME, class Holder, class Count>
  int absent([[maybe_unused]] ArrayLine<LINE, NAME> text, Word Holder::*, Count) {
    if constexpr (NUMBERS<LINE> == 1)
      add(std::string(std::string_view(text.name())), "zeroed", 0,
          printed([](Text &to) { print<LINE>(to, WORST_POSITION); }));
    return 1;
  }

  /// By how the characters of a group grow with its references: frames, keys, one group only.
  template <class Holder> int refs(std::unique_ptr<Index[]> Holder::*) {
    for (std::size_t kind = 0; kind < REF_KIND_NUM; ++kind) {
      const std::size_t none = charactersOf(kind, 1, 0);
      addRef(charactersOf(kind, 1, 1) - none, 1);
      addRef(charactersOf(kind, 0, 0) - none, 1);
      addRef(charactersOf(kind, 2, 0) - none, 1);
      addRef(charactersOf(kind, 2, 1) - charactersOf(kind, 2, 0), 2);
    }
    return 1;
  }
  /// A collision prints its data, which take no bytes of their own.
  int data(CollData Coll::*) {
    for (Word type = 0; type < 0x30; ++type) {
      CollGroup group{};
      const std::size_t none = printed([&](Text &to) { kvWriteKtCollGroupFix1(to, group, 0); });
      group.coll_num = 1;
      group.coll.resize(1);
      group.coll[0].data.fill(WORST);
      group.coll[0].coll_type = type;
      const std::size_t one = printed([&](Text &to) { kvWriteKtCollGroupFix1(to, group, 0); });
      data_characters = std::max(data_characters, one - none);
    }
    return 1;
  }
  /// A row of texels has a line end; here each of them.
  template <class Holder> int texels(std::vector<unsigned char> Holder::*, std::uint64_t) {
    characters += printed([](Text &to) { kvWriteKtTeximgFix1(to, Teximg(), 0); }); // more than the label
    add("texel", "other", 1, printed([](Text &to) { print<"%0#4x \n">(to, std::uint8_t{255}); }));
    return 1;
  }
  /// A character prints as one.
  template <class Holder> int text(Words Holder::*, std::uint64_t) {
    add("text", "other", sizeof(Word), sizeof(Word));
    return 1;
  }
  Word tiles() const { return 1; }

private:
  std::size_t data_characters = 0;

  static void words() {
    add("word", "other", sizeof(Word), printed([](Text &to) { kvWriteKtList(to, std::array{WORST}, 4, ""); }));
  }

  /// Of a group all of whose references are frames, and none is there, but for those of one kind.
  static std::size_t charactersOf(std::size_t kind, Word form, Index number) {
    TriGroup group{};
    group.tri_anim_type = 0x111111 - (1U << (4 * kind)) + (form << (4 * kind));
    group.tri_anim_frame_num = form == 1 ? number - 1 : -1;
    group.ref = std::make_unique<Index[]>(3 * REF_KIND_NUM);
    group.ref[0] = number; // of keys
    return printed([&](Text &to) { kvWriteKtTriGroupFix1(to, group, 0); });
  }
  static void addRef(std::size_t characters, std::size_t words) {
    add("ref", "other", sizeof(Word), (characters + 2 * words * (WORST_DIGITS - 1)) / words + 1);
  }

  template <bool HAS_CONTENT, class Form> int goInto(Form form, const char *role) {
    using Head = typename Form::Head;
    std::string kind(std::string_view(form.kind()));
    kind.pop_back(); // the bracket before the number
    // Messages call some elements by the name of their list, which has its part before it and ends in "List".
    CostIo inside(std::max(kind.size(), list_name.size() - 6));
    // The words of a record may choose its form.
    for (Word choice = 0; choice < 8; ++choice) {
      std::array<Word, sizeof(Head) / sizeof(Word)> words;
      words.fill(choice);
      inside.characters = 0;
      inside.data_characters = 0;
      if constexpr (HAS_CONTENT)
        content(inside, std::bit_cast<Head>(words));
      std::size_t all = inside.characters + inside.data_characters + findings(kind, role, inside.name) + WORST_DIGITS;
      all += printed([](Text &to) {
        print<"\n">(to);                                 // behind an element
        if constexpr (LINES_OF<Form::words>.now.end > 0) // a name prints none of its words
          putRecord<LINES_OF<Form::words>>(to, worst<Head>());
        putString(to, Form::TEXT.text);
      });
      add(kind, role, std::min(BYTES<Head>, Form::bytes), all);
    }
    return 1;
  }

  static std::size_t findings(std::string_view kind, std::string_view role, std::size_t name) {
    std::size_t width = kind == "Tri" ? termWidth(3) : 0;
    const Told *told = toldOf(kind);
    if (role == "element") {
      for (const char *const id : OF_EVERY_ELEMENT)
        width += widthOf(id, name);
      told = told != nullptr ? told : &ANY_ELEMENT;
    }
    for (std::size_t i = 0; told != nullptr && i < told->ids.size() && told->ids[i] != nullptr; ++i)
      width += widthOf(told->ids[i], name);
    return width;
  }
};

/// What a list prints once: its header, its blocks, its opener and closer, headings, and findings about it.
template <class List> void addList(const char *name, bool is_scene) {
  using Format = ListFormat<List>;
  using Head = typename Format::Head;
  CostIo io(std::string_view(name).size(), !is_scene);
  Format::content(io, Head{});
  if constexpr (std::is_same_v<List, LightList>)
    addSharedLight();
  for (const char *const id : ONCE)
    io.characters += widthOf(id, io.name);
  for (const FindingRow &row : FINDING_ROWS)
    io.characters += row.stage == Stage::load ? widthOf(row, io.name) : 0;
  io.characters += printed([&](Text &to) {
    kvWriteKtListName(to, name);
    putRecord<LINES_OF<Format::words>>(to, worst<Head>());
    kvWriteKtListEnd(to, name);
    putString(to, "\n---- checking  ----\n---- checking  Vantor Extension Block ----\n");
  });
  add(name, "once", 0, io.characters);
}

/// The scene is described by one content function for its words and what follows them.
void addLists() {
  std::size_t list = 0;
  eachList([&](const auto &row) {
    using List = std::remove_cvref_t<decltype(std::declval<Kis>().*row.list)>;
    list_name = (list++ < VERSION_1_LIST_NUM ? "1\t" : "2\t") + std::string(row.name);
    addList<List>(row.name, std::is_same_v<List, Scene>);
  });
  list_name = "1\tFileHeader";
  FileHeader header;
  static_cast<FileHeaderHead &>(header) = worst<FileHeaderHead>();
  static_cast<Version2Sizes &>(header) = worst<Version2Sizes>();
  add("FileHeader", "once", 0, printed([&](Text &to) { kvWriteKtFileHeader(to, header); }));
}

} // namespace

} // namespace kova

int main() {
  for (const kova::FindingRow &row : kova::FINDING_ROWS)
    if (row.stage == kova::Stage::check && !kova::isTold(row.id)) {
      std::fprintf(stderr, "output_costs: how often is the finding %s told?\n", row.id);
      return EXIT_FAILURE;
    }
  kova::addLists();
  for (const auto &[name, cost] : kova::costs)
    std::printf("%s\t%zu\t%zu\n", name.c_str(), cost.bytes, cost.characters);
}
