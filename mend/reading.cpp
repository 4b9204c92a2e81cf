/// The whole file, and what readings have in common: every place that something gives for an end is followed, and the
/// readings that come to the same place are compared.
#include "mend/reading.h"

#include "mend/list_view.h"

#include <algorithm>

namespace kova::mend {

namespace {

/// More readings than these are never followed at a time: a true one does not fall so far behind.
constexpr std::size_t MOST_READINGS = 6;

bool sameClaims(const Decision *a, const Decision *b) {
  for (; a != b; a = a->before, b = b->before)
    if (a == nullptr || b == nullptr || a->sort != b->sort || a->begin != b->begin || a->end != b->end ||
        a->value != b->value)
      return false;
  return true;
}

} // namespace

bool hasVersion2Lists(const FileBytes &file) {
  return hasVersion2(file.version()) && file[header_at::BLOCKS] >= VERSION_2_SIZES_BYTES;
}

const Decision *Reader::decide(const Decision &made, const Decision *before) {
  decisions.push_back(made);
  decisions.back().before = before;
  return &decisions.back();
}

bool Reader::isBetter(const Reading &a, const Reading &b) {
  return a.cost != b.cost ? a.cost < b.cost : a.doubts < b.doubts;
}

/// Adds a reading; of two that come to the same place the better one stays.
void Reader::add(Readings &readings, const Reading &reading) const {
  for (Reading &other : readings) {
    if (other.at != reading.at)
      continue;
    if (isBetter(reading, other))
      other = reading;
    else if (!isBetter(other, reading) && !other.has_rival && !sameClaims(reading.decisions, other.decisions)) {
      other.rival = reading.decisions;
      other.rivals_at = other.decisions;
      other.has_rival = true;
    }
    return;
  }
  readings.push_back(reading);
}

/// Keeps the best readings.
void Reader::prune(Readings &readings) const {
  if (readings.size() < 2)
    return;
  std::stable_sort(readings.begin(), readings.end(), isBetter);
  const Word best = readings.front().cost;
  std::erase_if(readings, [&](const Reading &reading) { return reading.cost > best + cost::MOST_BEHIND; });
  if (readings.size() > MOST_READINGS)
    readings.resize(MOST_READINGS);
}

/// @return the first place at which a record with that tag, and with that word behind it, could begin; 0 if there is
/// none or no more may be searched.
std::uint64_t Reader::find(std::uint64_t from, std::uint64_t to, Word tag, std::optional<Word> behind) {
  to = std::min(to, file.size());
  const std::uint64_t room = to >= from + 2 * sizeof(Word) ? to - from - sizeof(Word) : 0;
  to = from + std::min(room, list_left.scan_bytes) / sizeof(Word) * sizeof(Word);
  std::uint64_t at = file.findWord(from, to, tag);
  while (at < to && behind && file[at + sizeof(Word)] != *behind)
    at = file.findWord(at + sizeof(Word), to, tag);
  list_left.scan_bytes -= at - from;
  return at < to ? at : 0;
}

void Reader::beginList(std::uint64_t bytes) {
  const Budget share = budgetOf(bytes, 1);
  for (std::uint64_t Budget::*const kind : {&Budget::scan_bytes, &Budget::read_steps, &Budget::search_steps}) {
    file_left.*kind += list_left.*kind;
    list_left.*kind = std::min(share.*kind, file_left.*kind);
    file_left.*kind -= list_left.*kind;
  }
}

/// Goes over a record as it is.
Walk Reader::read(const RecordAt &record, std::uint64_t &end) {
  Walk walk(file, version_2, nullptr, list_left.read_steps);
  end = walk.over(record);
  return walk;
}

/// The first place behind the fixed words of a record at which the next one of its kind could begin.
std::uint64_t Reader::findNext(const RecordAt &record, std::uint64_t to) {
  return find(record.begin + record.kind->fixed, to, record.kind->tag,
              tells(*record.kind, Own::index) ? std::optional(record.number + 1) : std::nullopt);
}

const Conventions &Reader::known() {
  if (!conventions)
    conventions.emplace(file);
  return *conventions;
}

/// @return whether the audit looks at a word, or else whether it follows the rule in this file.
bool Reader::tells(const RecordLayout &kind, Own own) {
  const bool is_checked = own == Own::index ? kind.index_checked : kind.size_checked;
  return is_checked || known().follows(kind, own);
}

Word Reader::declared(std::size_t list) const { return file[LAYOUT[list].header_word_at]; }

// --- The file -------------------------------------------------------------------------------------------------------

/// Follows every place that the header, or the tag of the scene, gives for its end.
void Reader::readHeader(Readings &readings) {
  const std::uint64_t by_words = headerEnd(file);
  const std::uint64_t by_size = file[header_at::HEADER_SIZE];
  beginList(file.size());
  std::vector<std::uint64_t> ends = {by_words};
  addEnd(ends, by_size);
  if (ends.size() == 2)
    addEnd(ends, find(FILE_HEADER_BYTES, file.size(), LISTS[0].tag, SCENE.fixed));
  for (const std::uint64_t end : ends)
    if (end >= FILE_HEADER_BYTES && end <= file.size())
      for (const Reading &closed :
           closeBlocks(LIST_NUM, header_at::BLOCKS, FILE_HEADER_BYTES, {.at = end, .cost = Word{end != by_size}}))
        readings.push_back(closed);
}

std::optional<Reading> Reader::readFile() {
  Readings headers;
  readHeader(headers);
  Readings whole;
  for (const Reading &header : headers) {
    // The size words of the version-2 lists are there only if the header's maker block is.
    const Decision *const changed = header.decisions;
    const bool changes_maker = changed != nullptr && changed->begin == header_at::BLOCKS;
    const Word maker = changes_maker ? changed->value : file[header_at::BLOCKS];
    const bool version_2_lists = version_2 && maker >= VERSION_2_SIZES_BYTES;
    Readings readings = {header};
    if (version_2 && maker == 0) // no file of version 2.0 lacks the block
      readings.clear();
    const std::size_t lists = version_2_lists ? LIST_NUM : VERSION_1_LIST_NUM;
    for (std::size_t list = 0; list < lists; ++list) {
      Readings after;
      for (const Reading &reading : readings)
        readList(list, reading, after);
      prune(after);
      readings = std::move(after);
    }
    for (const Reading &reading : readings)
      if (reading.at == file.size())
        add(whole, reading);
  }
  return whole.empty() ? std::nullopt : std::optional(whole.front());
}

Reading rivalOf(const Reading &reading, std::deque<Decision> &store) {
  std::vector<const Decision *> shared;
  for (const Decision *decision = reading.decisions; decision != reading.rivals_at; decision = decision->before)
    shared.push_back(decision);
  Reading rival = {.at = reading.at, .cost = reading.cost, .doubts = reading.doubts, .decisions = reading.rival};
  for (auto decision = shared.rbegin(); decision != shared.rend(); ++decision) {
    store.push_back(**decision);
    store.back().before = rival.decisions;
    rival.decisions = &store.back();
  }
  return rival;
}

} // namespace kova::mend
