/// Records of version 2.0 whose maker blocks are shorter than what they hold.
#include "mend/derive.h"
#include "mend/links.h"
#include "mend/list_view.h"
#include "mend/salvage.h"

namespace kova::mend {

namespace {

/// Copies a file, list by list, with zeros behind the maker blocks that are too short.
class Filler {
public:
  explicit Filler(const FileBytes &bytes) : file(bytes) {}

  std::optional<Salvaged> fill(const Reading &reading);

private:
  void copy(std::uint64_t begin, std::uint64_t end);
  bool fillRecord(std::size_t list, const RecordAt &record, std::uint64_t &end);
  bool fillList(const Decision &span);

  const FileBytes &file;
  std::uint64_t filled = 0; ///< bytes of zeros
  Salvaged made = {};
};

void Filler::copy(std::uint64_t begin, std::uint64_t end) {
  const std::span<const unsigned char> part = file.between(begin, end);
  made.bytes.insert(made.bytes.end(), part.begin(), part.end());
}

/// Copies a record, which ends in the file as it was read. @return false where its counts call for more than a file can
/// lack.
bool Filler::fillRecord(std::size_t list, const RecordAt &record, std::uint64_t &end) {
  Walk walk(file, file.size(), true);
  end = walk.over(record);
  if (walk.maker_spare >= 0) {
    copy(record.begin, end);
    return true;
  }
  const auto lacking = static_cast<std::uint64_t>(-walk.maker_spare);
  filled += lacking;
  if (filled > file.size())
    return false;
  const Word blocks_at = record.kind->blocks_at;
  const std::uint64_t user = blockSizes(file, record.begin + blocks_at).user;
  const std::uint64_t made_at = made.bytes.size();
  copy(record.begin, end - user);
  made.bytes.resize(made.bytes.size() + static_cast<std::size_t>(lacking));
  copy(end - user, end);
  FileBytes written(made.bytes);
  for (const std::uint64_t at : {std::uint64_t{blocks_at}, std::uint64_t{record.kind->size_at}})
    written.set(made_at + at, written[made_at + at] + static_cast<Word>(lacking));
  made.losses.push_back({LISTS[list].name, list == 0 ? std::optional<Word>() : record.number,
                         "the maker block is filled up with " + std::to_string(lacking) + " bytes of zeros", true});
  return true;
}

bool Filler::fillList(const Decision &span) {
  std::uint64_t at = span.begin;
  if (LAYOUT[span.list].first == nullptr)
    return fillRecord(span.list, {&SCENE, at}, at);
  const ListView view(file, span.list, span.begin);
  at = view.elements();
  copy(span.begin, at);
  for (std::uint64_t i = 0; i < view.number(); ++i)
    if (!fillRecord(span.list, view.element(i, at), at))
      return false;
  copy(at, span.end);
  return true;
}

std::optional<Salvaged> Filler::fill(const Reading &reading) {
  Spans spans = {};
  for (const Decision *decision = reading.decisions; decision != nullptr; decision = decision->before) {
    if (decision->sort != Decision::Sort::list)
      return std::nullopt;
    spans[decision->list] = *decision;
  }
  copy(0, std::min(headerEnd(file), file.size()));
  for (Decision &span : spans) {
    if (span.end == 0)
      continue;
    const std::uint64_t begin = made.bytes.size();
    if (!fillList(span))
      return std::nullopt;
    span.begin = begin;
    span.end = made.bytes.size();
  }
  if (filled == 0)
    return std::nullopt;
  FileBytes written(made.bytes);
  applyReading(written, {.decisions = linkSpans(spans)});
  return std::move(made);
}

} // namespace

std::optional<Salvaged> fillMakerBlocks(const FileBytes &file) {
  if (!hasVersion2(file.version()))
    return std::nullopt;
  Reader reader(file);
  const std::optional<Reading> reading = reader.readFile();
  return reading && !reading->has_rival ? Filler(file).fill(*reading) : std::nullopt;
}

} // namespace kova::mend
