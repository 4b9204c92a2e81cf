#include "mend/links.h"

#include <algorithm>
#include <map>

namespace kova::mend {

namespace {

std::size_t slot(To to) { return static_cast<std::size_t>(to); }

/// Sets the links into what is gone to none.
class LinkCutter : public Events {
public:
  LinkCutter(FileBytes &file, Gone &what, std::vector<Loss> &told) : image(file), gone(what), losses(told) {
    for (const CutElement &element : gone.cut)
      cut[{element.to, element.number}] = element.entries;
  }

  void startElement(const char *list, std::optional<Word> element) {
    finish();
    where = {list, element, {}};
    own = {};
  }
  /// Tells what was cut of the links of one element.
  void finish() {
    if (count != 0) {
      where.what = std::to_string(count) + (count == 1 ? " link" : " links") + " into what is gone: now none";
      losses.push_back(where);
    }
    count = 0;
  }

  void enter(const Spot &spot, int) override {
    for (const Link &link : spot.kind->links)
      follow(spot.begin + link.at, link.to);
  }
  void table(std::uint64_t begin, std::uint64_t entries, std::span<const Column> columns, std::uint64_t) override {
    for (const Column &column : columns) {
      if (column.to != To::nothing)
        for (std::uint64_t i = 0; i < entries && begin + 4 * i + 4 <= image.size(); ++i)
          follow(begin + 4 * i, column.to);
      begin += entries * column.bytes;
    }
  }

private:
  static constexpr std::size_t OWN_NUM = 6;

  void follow(std::uint64_t at, To to) {
    const Word index = image[at];
    if (slot(to) > slot(To::nothing)) {
      if (own[slot(to) - slot(To::own_vtx)].gone(index))
        none(at);
      return;
    }
    noteGroup(to, index);
    if (gone[to].gone(index))
      none(at);
  }
  void none(std::uint64_t at) {
    image.set(at, NO_LINK);
    ++count;
  }
  /// Where triangles refer to a group that is there in part, their corners are links into it.
  void noteGroup(To to, Word index) {
    static constexpr To GROUPS[OWN_NUM] = {To::vtx, To::tri_color, To::vtx_color, To::tri_nv, To::vtx_nv, To::st};
    const auto *const group = std::find(std::begin(GROUPS), std::end(GROUPS), to);
    const auto found = group != std::end(GROUPS) ? cut.find({to, index}) : cut.end();
    if (found != cut.end())
      own[static_cast<std::size_t>(group - GROUPS)] = found->second;
  }

  FileBytes &image;
  Gone &gone;
  std::map<std::pair<To, Word>, Left> cut = {};
  std::vector<Loss> &losses;
  std::array<Left, OWN_NUM> own = {};
  Loss where = {};
  std::size_t count = 0;
};

} // namespace

To toKind(std::size_t list, bool second) {
  if (!second)
    return static_cast<To>(list);
  return LISTS[list].tag == COLOR_LIST_TAG ? To::vtx_color : To::vtx_nv;
}

void cutLinks(FileBytes &image, const Spans &spans, Gone gone, std::vector<Loss> &losses) {
  const Left &images = gone[To::teximg];
  const Left &index_images = gone[To::ci_img];
  gone[To::image] = {std::max(images.before, index_images.before), std::max(images.now, index_images.now)};
  const bool version_2 = image.version() == VERSION_2;
  LinkCutter cutter(image, gone, losses);
  for (std::size_t list = 0; list < LIST_NUM; ++list) {
    const Claim &span = spans[list];
    if (span.end == 0)
      continue;
    const ListLayout &layout = LAYOUT[list];
    if (layout.first == nullptr) {
      cutter.startElement(LISTS[list].name, {});
      Walk(image, image.size(), version_2, &cutter).over({&SCENE, span.begin});
      continue;
    }
    const Word first = image[span.begin + 12];
    const Word second = layout.second != nullptr ? image[span.begin + 16] : 0;
    std::uint64_t at = span.begin + layout.headBytes() + (std::uint64_t{first} + second) * sizeof(Word);
    for (std::uint64_t i = 0; i < std::uint64_t{first} + second && at < span.end; ++i) {
      const Kind &kind = i < first ? *layout.first : *layout.second;
      const auto number = static_cast<Word>(i < first ? i : i - first);
      cutter.startElement(LISTS[list].name, number);
      at = Walk(image, image.size(), version_2, &cutter).over({&kind, at, number});
    }
  }
  cutter.finish();
}

} // namespace kova::mend
