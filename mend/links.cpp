#include "mend/links.h"

#include "mend/list_view.h"

#include <algorithm>
#include <map>

namespace kova::mend {

namespace {

std::size_t slot(To to) { return static_cast<std::size_t>(to); }

/// What triangles or corners can use of the groups that they belong to.
struct Reach {
  bool some_gone = false; ///< a reference to a group was cut
  bool some_left = false;
  bool some_whole = false;
  Remaining cut = {}; ///< of a group that is there in part

  /// @return whether an index led to something that is gone. `largest`: which of several groups it is about is not
  /// said, so that the largest counts; else the smallest.
  bool gone(Word index, bool largest) const {
    if (index == NO_LINK || (largest && some_whole))
      return false;
    return some_left ? cut.gone(index) : some_gone;
  }
};

/// What the indices of triangles are about, in the order of `To::own_vtx` and those behind it.
constexpr To GROUPS[] = {To::vtx, To::tri_color, To::vtx_color, To::tri_nv, To::vtx_nv, To::st, To::weight, To::tri};
using Reaches = std::array<Reach, std::size(GROUPS)>;

/// Sets the links into what is gone to none.
class LinkCutter : public Events {
public:
  LinkCutter(FileBytes &bytes, Gone &what, std::vector<Loss> &all_losses)
      : file(bytes), gone(what), losses(all_losses) {
    for (const CutElement &element : gone.cut)
      cut[{element.to, element.number}] = element.entries;
  }

  void startElement(const char *list, std::optional<Word> element) {
    finish();
    where = {list, element, {}};
    own = {};
    parts.clear();
    current = &own;
  }
  /// Tells what was cut of the links of one element.
  void finish() {
    if (count != 0) {
      where.what = std::to_string(count) + (count == 1 ? " link" : " links") + " into what is gone: now none";
      losses.push_back(where);
    }
    count = 0;
  }

  void enter(const RecordAt &record, int depth) override {
    const std::span<const Link> links = record.kind->links;
    in_part = depth != 0 && std::any_of(links.begin(), links.end(), [](const Link &link) { return link.to == To::st; });
    if (in_part) {
      parts.resize(std::max<std::size_t>(parts.size(), record.number + std::size_t{1}));
      current = &parts[record.number];
      has_weights = false;
    }
    for (const Link &link : links)
      follow(record.begin + link.at, link.to);
  }
  void leave(const RecordAt &, std::uint64_t, int) override {
    if (in_part && !has_weights) { // what its corners say of weights is nowhere laid down
      Reach &weights = (*current)[WEIGHTS];
      weights.some_left = weights.some_whole = true;
    }
    in_part = false;
    current = &own;
  }
  void table(std::uint64_t begin, std::uint64_t entries, std::span<const Column> columns, std::uint64_t) override {
    for (const Column &column : columns) {
      if (column.to != To::nothing)
        for (std::uint64_t i = 0; i < entries && file.holds(begin + i * sizeof(Word)); ++i)
          follow(begin + i * sizeof(Word), column.to);
      begin += entries * column.bytes;
    }
  }

  bool is_unclear = false; ///< a link leads into one of several lists, of which one has lost elements

private:
  bool hasSeveralImageLists() { return gone[To::teximg].before != 0 && gone[To::ci_img].before != 0; }

  static constexpr std::size_t WEIGHTS = 6;
  static_assert(GROUPS[WEIGHTS] == To::weight);

  void follow(std::uint64_t at, To to) {
    const Word index = file[at];
    if (to == To::own_part || to == To::own_cluster) {
      current = index < parts.size() ? &parts[index] : &own;
    } else if (slot(to) >= slot(To::own_vtx)) {
      if ((*current)[slot(to) - slot(To::own_vtx)].gone(index, current != &own))
        none(at);
    } else {
      const std::vector<Word> &numbers = gone.numbers[slot(to)];
      const Word number = index < numbers.size() ? numbers[index] : index;
      const bool is_gone = gone[to].gone(index) || (number == NO_LINK && index != NO_LINK);
      if (index != NO_LINK)
        noteGroup(to, index, is_gone);
      is_unclear |= index < numbers.size() && (to == To::any || (to == To::image && hasSeveralImageLists()));
      if (is_gone)
        none(at);
      else if (number != index)
        file.set(at, number);
    }
  }
  void none(std::uint64_t at) {
    file.set(at, NO_LINK);
    ++count;
  }
  /// Takes down what the triangles that refer to a group can use of it.
  void noteGroup(To to, Word index, bool is_gone) {
    const auto *const group = std::find(std::begin(GROUPS), std::end(GROUPS), to);
    if (group == std::end(GROUPS))
      return;
    has_weights |= to == To::weight;
    Reach &reach = (*current)[static_cast<std::size_t>(group - GROUPS)];
    const auto found = cut.find({to, index});
    if (is_gone) {
      reach.some_gone |= to != To::tri; // a part keeps its triangles where their group is gone
    } else if (found == cut.end()) {
      reach.some_left = reach.some_whole = true;
    } else {
      const bool first = reach.cut.before == 0;
      const std::uint64_t now = found->second.now;
      reach.cut.now = first ? now : in_part ? std::max(reach.cut.now, now) : std::min(reach.cut.now, now);
      reach.cut.before = std::max(reach.cut.before, found->second.before);
      reach.some_left = true;
    }
  }

  FileBytes &file;
  Gone &gone;
  std::map<std::pair<To, Word>, Remaining> cut = {};
  std::vector<Loss> &losses;
  Reaches own = {};
  std::vector<Reaches> parts = {}; ///< of a skin
  Reaches *current = &own;
  bool in_part = false;
  bool has_weights = false;
  Loss where = {};
  std::size_t count = 0;
};

/// What can be of several lists is gone if it is gone of the longest.
void joinLists(Gone &gone) {
  const auto longest = [&](To to, std::initializer_list<To> lists) {
    for (const To list : lists) {
      gone[to] = {std::max(gone[to].before, gone[list].before), std::max(gone[to].now, gone[list].now)};
      if (gone.numbers[slot(list)].size() > gone.numbers[slot(to)].size())
        gone.numbers[slot(to)] = gone.numbers[slot(list)];
    }
  };
  longest(To::image, {To::teximg, To::ci_img});
  for (std::size_t to = slot(To::env); to <= slot(To::vtx_nv); ++to)
    longest(To::any, {static_cast<To>(to)});
}

} // namespace

To toKind(std::size_t list, bool second) {
  if (!second)
    return static_cast<To>(list);
  return LISTS[list].tag == COLOR_LIST_TAG ? To::vtx_color : To::vtx_nv;
}

bool cutLinks(FileBytes &file, const Spans &spans, Gone gone, std::vector<Loss> &losses) {
  joinLists(gone);
  const bool version_2 = hasVersion2(file.version());
  LinkCutter cutter(file, gone, losses);
  for (std::size_t list = 0; list < LIST_NUM; ++list) {
    const Decision &span = spans[list];
    if (span.end == 0)
      continue;
    if (LAYOUT[list].first == nullptr) {
      cutter.startElement(LISTS[list].name, {});
      Walk(file, file.size(), version_2, &cutter).over({&SCENE, span.begin});
      continue;
    }
    const ListView view(file, list, span.begin);
    std::uint64_t at = view.elements();
    for (std::uint64_t i = 0; i < view.number() && at < span.end; ++i) {
      const RecordAt element = view.element(i, at);
      cutter.startElement(LISTS[list].name, element.number);
      at = Walk(file, file.size(), version_2, &cutter).over(element);
    }
  }
  cutter.finish();
  return !cutter.is_unclear;
}

const Decision *linkSpans(Spans &spans) {
  const Decision *before = nullptr;
  for (Decision &span : spans)
    if (span.end != 0) {
      span.before = before;
      before = &span;
    }
  return before;
}

} // namespace kova::mend
