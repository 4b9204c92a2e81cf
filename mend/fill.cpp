/// Records of version 2.0 whose maker blocks are shorter than what they hold.
#include "mend/derive.h"
#include "mend/list_view.h"
#include "mend/salvage.h"

namespace kova::mend {

namespace {

/// Copies a file, list by list, with zeros behind the maker blocks that are too short.
class Filler {
public:
  explicit Filler(const FileBytes &file) : image(file) {}

  std::optional<Salvaged> fill(const Reading &reading);

private:
  void copy(std::uint64_t begin, std::uint64_t end);
  bool fillRecord(std::size_t list, const RecordAt &spot, std::uint64_t &end);
  bool fillList(const Claim &span);

  const FileBytes &image;
  std::uint64_t filled = 0; ///< bytes of zeros
  Salvaged made = {};
};

void Filler::copy(std::uint64_t begin, std::uint64_t end) {
  const std::span<const unsigned char> part = image.between(begin, end);
  made.bytes.insert(made.bytes.end(), part.begin(), part.end());
}

/// Copies a record. @return false where it is none, or where its counts call for more than a file can lack.
bool Filler::fillRecord(std::size_t list, const RecordAt &spot, std::uint64_t &end) {
  if (spot.begin + spot.kind->fixed > image.size())
    return false;
  Walk walk(image, image.size(), true);
  end = walk.over(spot);
  if (walk.broken || end > image.size())
    return false;
  if (walk.maker_spare >= 0) {
    copy(spot.begin, end);
    return true;
  }
  const auto lacking = static_cast<std::uint64_t>(-walk.maker_spare);
  filled += lacking;
  if (filled > image.size())
    return false;
  const Word blocks_at = spot.kind->blocks_at;
  const std::uint64_t user = image[spot.begin + blocks_at + 4] & ~Word{3};
  const std::uint64_t record = made.bytes.size();
  copy(spot.begin, end - user);
  made.bytes.resize(made.bytes.size() + static_cast<std::size_t>(lacking));
  copy(end - user, end);
  FileBytes written(made.bytes);
  for (const std::uint64_t at : {std::uint64_t{blocks_at}, std::uint64_t{spot.kind->size_at}})
    written.set(record + at, written[record + at] + static_cast<Word>(lacking));
  made.losses.push_back({LISTS[list].name, list == 0 ? std::optional<Word>() : spot.number,
                         "the maker block is filled up with " + std::to_string(lacking) + " bytes of zeros", true});
  return true;
}

bool Filler::fillList(const Claim &span) {
  std::uint64_t at = span.begin;
  if (LAYOUT[span.list].first == nullptr)
    return fillRecord(span.list, {&SCENE, at}, at);
  const ListView view(image, span.list, span.begin);
  at = view.elements();
  copy(span.begin, at);
  for (std::uint64_t i = 0; i < view.number(); ++i)
    if (!fillRecord(span.list, view.element(i, at), at))
      return false;
  if (at > span.end)
    return false;
  copy(at, span.end);
  return true;
}

std::optional<Salvaged> Filler::fill(const Reading &reading) {
  std::array<Claim, LIST_NUM> spans = {};
  for (const Claim *claim = reading.claims; claim != nullptr; claim = claim->before) {
    if (claim->sort != Claim::Sort::list)
      return std::nullopt;
    spans[claim->list] = *claim;
  }
  copy(0,
       std::min<std::uint64_t>(
           FILE_HEADER_BYTES + std::uint64_t{image[header_at::BLOCKS]} + image[header_at::BLOCKS + 4], image.size()));
  const Claim *before = nullptr;
  for (Claim &span : spans) {
    if (span.end == 0)
      continue;
    const std::uint64_t begin = made.bytes.size();
    if (!fillList(span))
      return std::nullopt;
    span.begin = begin;
    span.end = made.bytes.size();
    span.before = before;
    before = &span;
  }
  if (filled == 0)
    return std::nullopt;
  FileBytes written(made.bytes);
  applyReading(written, {.claims = before});
  return std::move(made);
}

} // namespace

std::optional<Salvaged> fillMakerBlocks(const FileBytes &image) {
  if (image.version() != VERSION_2)
    return std::nullopt;
  Reader reader(image);
  const std::optional<Reading> reading = reader.readFile();
  return reading && !reading->has_rival ? Filler(image).fill(*reading) : std::nullopt;
}

} // namespace kova::mend
