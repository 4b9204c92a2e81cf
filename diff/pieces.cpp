#include "diff/pieces.h"

#include "diff/take.h"
#include "reader/makerblock.h"
#include "records/maker.h"

namespace kova::diff {

namespace {

// --- Lists ----------------------------------------------------------------------------------------------------------

/// Adds an element, behind its entry in the table of sizes.
template <class Form, class Named, class Element>
void addElement(Pieces &out, const std::vector<Element> &elements, std::size_t number, const Words &table,
                std::uint64_t table_at) {
  static constexpr auto NAME = Named::name();
  const Element &element = elements[number];
  if (number < table.size()) {
    out.at = table_at + number * sizeof(Word);
    Piece piece = {.name = NAME.c_str(),
                   .fields = INDEX_FIELDS,
                   .data = bytesAt(&table[number]),
                   .stride = sizeof(Word),
                   .entries = 1,
                   .first = number,
                   .is_array = true};
    if (out.derives) {
      piece.derived = out.derived.size();
      out.derived.push_back(static_cast<Word>(bytesOf(element, Form::bytes)));
    }
    add(out, piece, sizeof(Word));
  }
  out.at = element.offset;
  addRecord<Form::words, typename Form::Head>(out, element, Own{Form::tag, static_cast<Word>(number), Form::bytes});
}

template <class Named> using Plain = std::remove_cvref_t<Named>;

/// What is done with a list whose type is not known.
struct ListAccess {
  std::size_t (*elements)(const Kis &, bool second);
  std::uint64_t (*place)(const Kis &, bool second, std::size_t element);
  std::uint64_t (*content)(const Kis &);
  void (*takeElement)(Pieces &, const Kis &, bool second, std::size_t element);
  void (*takeList)(Pieces &, const Kis &, std::uint64_t behind);
  bool has_two_kinds;
};

template <std::size_t LIST> struct Access {
  static const auto &listOf(const Kis &kis) { return kis.*std::get<LIST>(LIST_ROWS).list; }
  using List = std::remove_cvref_t<decltype(listOf(std::declval<const Kis &>()))>;
  using Format = ListFormat<List>;
  static constexpr bool IS_SCENE = std::is_same_v<List, Scene>;
  static constexpr bool HAS_TWO = requires(const List &list) { list.vtx_group; };

  /// Calls `visit` with the elements of a kind.
  template <class Visit> static auto withElements(const Kis &kis, bool second, Visit visit) {
    if constexpr (HAS_TWO)
      return second ? visit(listOf(kis).vtx_group) : visit(listOf(kis).tri_group);
    else
      return visit(listOf(kis).element);
  }
  static std::size_t elements(const Kis &kis, bool second) {
    if constexpr (IS_SCENE)
      return second || kis.scene.offset == NO_OFFSET ? 0 : 1;
    else
      return second && !HAS_TWO ? 0 : withElements(kis, second, [](const auto &held) { return held.size(); });
  }
  static std::uint64_t place(const Kis &kis, bool second, std::size_t element) {
    if constexpr (IS_SCENE)
      return kis.scene.offset;
    else
      return withElements(kis, second, [&](const auto &held) { return held[element].offset; });
  }
  static std::uint64_t content(const Kis &kis) { return bytesOf(listOf(kis), sizeof(typename Format::Head)); }

  static void takeElement(Pieces &out, const Kis &kis, bool second, std::size_t element) {
    const List &list = listOf(kis);
    out.list_begin = list.offset;
    const std::uint64_t table_at = list.offset + sizeof(typename Format::Head);
    if constexpr (IS_SCENE)
      takeList(out, kis, 0);
    else if constexpr (!HAS_TWO)
      addElement<Plain<decltype(Format::elements)>, Plain<decltype(Format::table)>>(out, list.element, element,
                                                                                    list.num_byte, table_at);
    else if (second)
      addElement<Plain<decltype(Format::second_elements)>, Plain<decltype(Format::second_table)>>(
          out, list.vtx_group, element, list.vtx_group_size, table_at + list.tri_group_size.size() * sizeof(Word));
    else
      addElement<Plain<decltype(Format::elements)>, Plain<decltype(Format::table)>>(out, list.tri_group, element,
                                                                                    list.tri_group_size, table_at);
  }
  static void takeList(Pieces &out, const Kis &kis, std::uint64_t behind) {
    const List &list = listOf(kis);
    using Head = typename Format::Head;
    out.list_begin = list.offset;
    out.at = list.offset;
    addRecord<Format::words, Head>(out, list, Own{LISTS[LIST].tag, 0, sizeof(Head), behind});
  }
};

constexpr auto ACCESS = []<std::size_t... LIST>(std::index_sequence<LIST...>) {
  return std::array{ListAccess{Access<LIST>::elements, Access<LIST>::place, Access<LIST>::content,
                               Access<LIST>::takeElement, Access<LIST>::takeList, Access<LIST>::HAS_TWO}...};
}
(std::make_index_sequence<LIST_NUM>());

/// Lets go of the decoded maker blocks of a list, or of the scene, that are cut.
template <class Head, class Record> void dropCut(Record &record) {
  if (!record.ext)
    return;
  const Words words = encoded<Head>(*record.ext);
  const std::span<const Word> van = vanExtBlk(record.ext_blk);
  const char *conflict = nullptr;
  const Head &head = *record.ext;
  const Head derived = derivedWords<WORDS<Head>, Head>(*record.ext, Own{0, 0, sizeof(Head)}, {}, conflict);
  if (words.size() > van.size() || !std::equal(words.begin(), words.end(), van.begin()) || conflict != nullptr ||
      std::memcmp(&head, &derived, sizeof head) != 0)
    record.ext.reset();
}

} // namespace

std::string pathOf(const Pieces &all, std::size_t parent) {
  if (parent == 0)
    return "";
  const Around &around = all.parents[parent];
  const std::string number = around.number == NONE ? "" : '[' + std::to_string(around.number) + ']';
  return pathOf(all, around.parent) + around.name + number + '.';
}

std::size_t elementsOf(const Kis &kis, std::size_t list, bool second) { return ACCESS[list].elements(kis, second); }
std::uint64_t placeOf(const Kis &kis, std::size_t list, bool second, std::size_t element) {
  return ACCESS[list].place(kis, second, element);
}
std::uint64_t contentOf(const Kis &kis, std::size_t list) { return ACCESS[list].content(kis); }
const char *kindOf(std::size_t list, bool second) {
  return !ACCESS[list].has_two_kinds ? nullptr : second ? "vtx_group" : "tri_group";
}

void takeElement(Pieces &out, const Kis &kis, std::size_t list, bool second, std::size_t element) {
  ACCESS[list].takeElement(out, kis, second, element);
}
void takeList(Pieces &out, const Kis &kis, std::size_t list, const std::array<std::size_t, 2> &elements,
              std::uint64_t behind) {
  out.elements = elements;
  ACCESS[list].takeList(out, kis, behind);
}

void takeHeader(Pieces &out, const FileHeader &header, bool has_sizes, const FileHeader *derived) {
  const FileHeaderHead &head = header;
  const Version2Sizes &sizes = header;
  Piece first = {.fields = FIELDS<WORDS<FileHeaderHead>>, .data = bytesAt(&head), .stride = sizeof head, .entries = 1};
  Piece second = {
      .fields = FIELDS<WORDS<Version2Sizes>>, .data = bytesAt(&sizes), .stride = sizeof sizes, .entries = 1};
  if (derived != nullptr) {
    first.derived = keepDerived(out, static_cast<const FileHeaderHead &>(*derived));
    second.derived = keepDerived(out, static_cast<const Version2Sizes &>(*derived));
  }
  add(out, first, sizeof head);
  if (has_sizes)
    add(out, second, sizeof sizes);
  addBlocks(out, header.ext_blk, 0);
}

void dropCutMakers(Kis &kis) {
  dropCut<SceneListExtHead>(kis.scene);
  const auto drop = []<class Head, class Element>(Head, List<Element> &list) {
    for (Element &element : list.element)
      dropCut<Head>(element);
  };
  drop(CamExt(), kis.cam);
  drop(ObjExtHead(), kis.obj);
  drop(ShapeExt(), kis.shape);
  drop(MatExtHead(), kis.mat);
  drop(TexExtHead(), kis.tex);
  drop(TeximgExtHead(), kis.teximg);
  drop(AnimGroupExtHead(), kis.anim);
}

} // namespace kova::diff
