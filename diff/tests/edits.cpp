#include "diff/tests/edits.h"

#include "diff/take.h"
#include "harness/scratch.h"
#include "kova/kb.h"

#include <algorithm>
#include <numeric>

namespace kova::diff {

namespace {

using Random = std::mt19937;

/// A scene while it is edited, with the number that each element of it had at first.
struct Model {
  Kis kis;
  std::array<std::vector<std::uint32_t>, LIST_NUM> origin;
};

Bytes write(const Kis &kis) {
  const std::string text = harness::written([&](std::FILE *to) { return kvWriteKb(to, kis); }).value();
  return Bytes(text.begin(), text.end());
}

void setWord(const Piece &piece, std::size_t entry, std::size_t word, Word value) {
  std::memcpy(const_cast<unsigned char *>(piece.data) + entry * piece.stride + word * sizeof value, &value,
              sizeof value);
}

/// Calls `visit` with each word of the scene that leads into a list. Links of which only a kind beside them says where
/// they lead are taken for links to objects and texture images.
template <class Visit> void eachLinkInto(const Kis &kis, std::size_t list, Visit visit) {
  for (std::size_t space = 0; space < SPACE_NUM; ++space)
    for (std::size_t i = 0; i < elementsOf(kis, spaceOf(space).list, spaceOf(space).second); ++i) {
      Pieces pieces;
      takeElement(pieces, kis, spaceOf(space).list, spaceOf(space).second, i);
      for (const Piece &piece : pieces.pieces)
        for (std::size_t word = 0; word < piece.fields.size(); ++word) {
          To to = targetOf(piece, piece.fields[word]);
          to = to == To::any ? To::obj : to == To::image ? To::teximg : to;
          for (std::size_t entry = 0; static_cast<std::size_t>(to) == list && entry < piece.entries; ++entry)
            visit(piece, entry, word);
        }
    }
}

std::unique_ptr<Model> load(const Bytes &scene) {
  auto model = std::make_unique<Model>();
  const FindingReceiver receiver([](const Finding &) {});
  kvOpenKbMemory(scene, "", model->kis);
  for (std::size_t list = 1; list < LIST_NUM; ++list) {
    model->origin[list].resize(elementsOf(model->kis, list, false));
    std::iota(model->origin[list].begin(), model->origin[list].end(), 0U);
  }
  // Links that lead nowhere in the list that they are taken for might lead into another one.
  for (const To to : {To::obj, To::teximg})
    eachLinkInto(model->kis, static_cast<std::size_t>(to),
                 [&](const Piece &piece, std::size_t entry, std::size_t word) {
                   const bool is_there =
                       wordOf(piece, entry, word) < elementsOf(model->kis, static_cast<std::size_t>(to), false);
                   if (!is_there && targetOf(piece, piece.fields[word]) != to)
                     setWord(piece, entry, word, NO_LINK);
                 });
  return model;
}

/// Calls `visit` with a list that has one kind of elements, of which none has to stand behind whole words.
template <class Visit> void withPlainList(Kis &kis, std::size_t number, Visit visit) {
  for (const Teximg &image : kis.teximg.element)
    if (LISTS[number].tag == TEXIMG_LIST_TAG && image.texel.size() % sizeof(Word) != 0)
      return;
  withList(number, [&](const auto &row) {
    if constexpr (requires { (kis.*row.list).element; })
      visit(kis.*row.list, row);
  });
}

template <class List> void setOwnIndex(List &list, std::size_t at, std::size_t before) {
  constexpr auto &TABLE = std::remove_cvref_t<decltype(ListFormat<List>::elements)>::words;
  auto &element = list.element[at];
  setRole<TABLE>(element, Role::own_index, roleIn<TABLE>(element, Role::own_index) + static_cast<Word>(at - before));
}

/// Puts the elements of a list into another order, links with them.
void permute(Model &model, std::size_t number, Random &random) {
  withPlainList(model.kis, number, [&](auto &list, const auto &) {
    const std::size_t size = list.element.size();
    if (list.num_byte.size() != size)
      return;
    std::vector<std::uint32_t> order(size), to(size), origin(size);
    std::iota(order.begin(), order.end(), 0U);
    std::shuffle(order.begin(), order.end(), random);
    auto elements = std::move(list.element);
    const Words table = list.num_byte;
    list.element.clear();
    for (std::size_t i = 0; i < size; ++i) {
      list.element.push_back(std::move(elements[order[i]]));
      list.num_byte[i] = table[order[i]];
      to[order[i]] = static_cast<std::uint32_t>(i);
      origin[i] = model.origin[number][order[i]];
      setOwnIndex(list, i, order[i]);
    }
    model.origin[number] = origin;
    eachLinkInto(model.kis, number, [&](const Piece &piece, std::size_t entry, std::size_t word) {
      if (const Word link = wordOf(piece, entry, word); link < size)
        setWord(piece, entry, word, to[link]);
    });
  });
}

/// Takes an element out of a list to which nothing leads. @return the number that it had at first; ALONE if none was
std::uint32_t takeOut(Model &model, std::size_t number, Random &random) {
  std::uint32_t gone = ALONE;
  withPlainList(model.kis, number, [&](auto &list, const auto &row) {
    const std::size_t at = random() % (list.element.size() + 1);
    if (at >= list.element.size() || list.num_byte.size() != list.element.size())
      return;
    bool is_linked = false;
    const auto each_link = [&](auto visit) { eachLinkInto(model.kis, number, visit); };
    each_link([&](const Piece &piece, std::size_t entry, std::size_t word) {
      is_linked |= wordOf(piece, entry, word) == at;
    });
    if (is_linked)
      return;
    const auto bytes = static_cast<Word>(
        bytesOf(list.element[at],
                std::remove_cvref_t<decltype(ListFormat<std::remove_cvref_t<decltype(list)>>::elements)>::bytes));
    const auto place = static_cast<std::ptrdiff_t>(at);
    if (list.list_header_size == sizeof(ListHead) + list.num * sizeof(Word))
      list.list_header_size -= Word{sizeof(Word)};
    list.element.erase(list.element.begin() + place);
    list.num_byte.erase(list.num_byte.begin() + place);
    --list.num;
    kvAdjustListSizeData(model.kis, 0, -static_cast<Index>(bytes + sizeof(Word)), row.tag);
    gone = model.origin[number][at];
    model.origin[number].erase(model.origin[number].begin() + place);
    for (std::size_t i = at; i < list.element.size(); ++i)
      setOwnIndex(list, i, i + 1);
    each_link([&](const Piece &piece, std::size_t entry, std::size_t word) {
      const Word link = wordOf(piece, entry, word);
      if (link > at && link <= list.element.size())
        setWord(piece, entry, word, link - 1);
    });
  });
  return gone;
}

/// Whether a word may get another value without making the record another form.
bool mayChange(const Piece &piece, const Field &field) {
  const To to = targetOf(piece, field);
  if (piece.matter != Matter::words || piece.data == nullptr || isDerived(field.role) || field.role == Role::tag ||
      std::string_view(piece.name) == "van" || (piece.is_array && piece.derived != NONE) || to == To::any ||
      to == To::image)
    return false;
  return field.real || to != To::nothing || (piece.is_array && !field.hex);
}

/// Changes a word of an element. @return the name of the field; empty if none could be changed.
std::string changeWord(const Kis &kis, std::size_t list, std::size_t element, Random &random) {
  Pieces pieces;
  takeElement(pieces, kis, list, false, element);
  for (int tries = 0; tries < 20; ++tries) {
    const Piece &piece = pieces.pieces[random() % pieces.pieces.size()];
    if (piece.fields.empty() || piece.entries == 0)
      continue;
    const std::size_t word = random() % piece.fields.size(), entry = random() % piece.entries;
    const Field &field = piece.fields[word];
    if (!mayChange(piece, field))
      continue;
    const Word old = wordOf(piece, entry, word);
    setWord(piece, entry, word, field.real ? old ^ 1 : old + 1);
    std::string name = pathOf(pieces, piece.parent) + piece.name;
    name += piece.is_array ? '[' + std::to_string(entry) + ']' : "";
    name += field.name.length > 0 && (piece.is_array || *piece.name != 0) ? "." : "";
    return name + std::string(std::string_view(field.name));
  }
  return "";
}

std::string placeText(const char *list, std::size_t a, std::size_t b) {
  return list + ('[' + std::to_string(a) + " -> " + std::to_string(b)) + "] ";
}

std::size_t placeOf(const Model &model, std::size_t list, std::uint32_t origin) {
  const auto &all = model.origin[list];
  return static_cast<std::size_t>(std::find(all.begin(), all.end(), origin) - all.begin());
}

} // namespace

EditedPair editedPair(const Bytes &scene, std::uint32_t seed, bool only_permuted) {
  Random random(seed);
  const std::unique_ptr<Model> a = load(scene), b = load(scene);
  std::vector<std::pair<std::size_t, std::uint32_t>> alone_in_a, alone_in_b;
  struct Changed {
    std::size_t list;
    std::uint32_t origin;
    std::string field;
  };
  std::vector<Changed> changed;
  for (std::size_t list = 1; list < LIST_NUM; ++list) {
    Model &one = random() % 2 == 0 ? *a : *b;
    const std::size_t elements = b->origin[list].size();
    const auto edit = only_permuted ? 0 : random() % 6;
    if (edit == 0 || edit == 1)
      permute(one, list, random);
    if (edit == 1 || edit == 2)
      if (const std::uint32_t gone = takeOut(one, list, random); gone != ALONE)
        (&one == a.get() ? alone_in_b : alone_in_a).emplace_back(list, gone);
    if (edit == 3 && elements > 0) {
      const std::size_t element = random() % elements;
      if (const std::string field = changeWord(b->kis, list, element, random); !field.empty())
        changed.push_back({list, b->origin[list][element], field});
    }
  }
  EditedPair pair = {write(a->kis), write(b->kis), {}};
  for (const auto &[list, origin] : alone_in_a)
    pair.expected.push_back(LISTS[list].name + ('[' + std::to_string(placeOf(*a, list, origin))) + "] only in A");
  for (const auto &[list, origin] : alone_in_b)
    pair.expected.push_back(LISTS[list].name + ('[' + std::to_string(placeOf(*b, list, origin))) + "] only in B");
  for (const Changed &change : changed)
    pair.expected.push_back(placeText(LISTS[change.list].name, placeOf(*a, change.list, change.origin),
                                      placeOf(*b, change.list, change.origin)) +
                            change.field);
  std::sort(pair.expected.begin(), pair.expected.end());
  return pair;
}

std::vector<std::string> toldBy(const SeenAll &all) {
  std::vector<std::string> told;
  for (const auto &[place, change] : all) {
    if (change.what == What::only_a && change.field.empty() && place.a)
      told.push_back(place.list + ('[' + std::to_string(*place.a)) + "] only in A");
    else if (change.what == What::only_b && change.field.empty() && place.b)
      told.push_back(place.list + ('[' + std::to_string(*place.b)) + "] only in B");
    else
      told.push_back(placeText(place.list, place.a.value_or(0), place.b.value_or(0)) + change.field);
  }
  std::sort(told.begin(), told.end());
  return told;
}

} // namespace kova::diff
