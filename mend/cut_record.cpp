#include "mend/cut_record.h"

#include "mend/list_view.h"

#include <algorithm>

namespace kova::mend {

std::string remainingText(const Remaining &left, const char *what) {
  return std::to_string(left.now) + " of " + std::to_string(left.before) + ' ' + what + " are left";
}

void append(Bytes &bytes, const FileBytes &file, std::uint64_t begin, std::uint64_t end) {
  const std::span<const unsigned char> part = file.between(begin, end);
  bytes.insert(bytes.end(), part.begin(), part.end());
}

void appendWords(Bytes &bytes, std::initializer_list<Word> words) {
  for (const Word word : words) {
    bytes.resize(bytes.size() + sizeof word);
    FileBytes(bytes).set(bytes.size() - sizeof word, word);
  }
}

namespace {

/// A table or a row of records of a record.
struct Run {
  std::uint64_t begin;
  std::uint64_t number;
  std::uint64_t bytes; ///< of one entry; 0: records
  std::uint64_t count_at;
  RecordAt first = {}; ///< of the records
};

/// Takes down the runs of a record.
struct Runs : OwnLengthWords {
  std::vector<Run> runs;

  void table(std::uint64_t begin, std::uint64_t entries, std::span<const Column> columns,
             std::uint64_t count_at) override {
    std::uint64_t bytes = 0;
    for (const Column &column : columns)
      bytes += column.bytes;
    if (depth_now == 1)
      runs.push_back({begin, entries, bytes, count_at});
  }
  void series(const RecordAt &first, Word number) override {
    std::uint64_t count_at = 0;
    for (const LengthWord &length_word : length_words)
      if (length_word.records == first.kind)
        count_at = length_word.offset;
    runs.push_back({first.begin, number, 0, count_at, first});
  }
};

/// Keeps what is left of a record.
class Cutter {
public:
  Cutter(const FileBytes &whole, const RecordLayout &kind_of_record, std::uint64_t begins_at, Word number,
         bool is_version_2)
      : file(whole), kind(kind_of_record), begin(begins_at), version_2(is_version_2) {
    if (begin + kind.fixed > file.size() || !isElementTag(kind, file[begin]))
      return;
    Walk walk(file, file.size(), false, &found);
    const std::uint64_t end = walk.over({&kind, begin, number});
    if (!found.runs.empty() && found.runs.front().begin < begin + kind.fixed)
      return; // a header size that puts them upon the fixed words
    cut.is_record = keepRuns(end) && keepBlocks() && isWhole();
  }

  CutRecord cut = {};

private:
  bool keepRuns(std::uint64_t end);
  bool keepRun(const Run &run);
  std::uint64_t wholeRecords(const Run &run, std::uint64_t &end) const;
  bool keepBlocks();
  bool isWhole();

  const FileBytes &file;
  const RecordLayout &kind;
  std::uint64_t begin;
  bool version_2;
  Runs found;
  Bytes &bytes = cut.bytes;
  std::string &what = cut.what;
  bool cut_before_blocks = false;
  BlockSizes blocks = {};
};

/// Keeps the runs as far as they are whole. @return false where what is left is no record.
bool Cutter::keepRuns(std::uint64_t end) {
  const bool has_blocks = kind.blocks_at != NO_WORD;
  if (has_blocks)
    blocks = blockSizes(file, begin + kind.blocks_at);
  append(bytes, file, begin, begin + kind.fixed);
  for (const Run &run : found.runs)
    if (!keepRun(run))
      return false;
  const std::uint64_t content_end = end - blocks.sum();
  if (!cut_before_blocks && content_end >= begin + kind.fixed &&
      content_end <= file.size()) { // also what is no run, as the size of an image
    bytes.clear();
    append(bytes, file, begin, content_end);
    return true;
  }
  return cut_before_blocks;
}

/// @return how many records of a row are whole, and where the last of these ends.
std::uint64_t Cutter::wholeRecords(const Run &run, std::uint64_t &end) const {
  RecordAt record = run.first;
  while (record.number < run.number) {
    const std::uint64_t next = Walk(file, file.size(), false).over(record, 1);
    if (next <= record.begin || next > file.size())
      break;
    record.begin = end = next;
    ++record.number;
  }
  return record.number;
}

bool Cutter::keepRun(const Run &run) {
  std::uint64_t keep = 0;
  std::uint64_t keep_end = run.begin;
  if (!cut_before_blocks) {
    if (run.begin > file.size()) // something before it that is no run is cut
      return false;
    if (run.bytes != 0) {
      keep = std::min(run.number, (file.size() - run.begin) / run.bytes);
      keep_end += keep * run.bytes;
    } else {
      keep = wholeRecords(run, keep_end);
    }
  }
  if (keep == run.number && !cut_before_blocks)
    return true;
  if (!cut_before_blocks) {
    bytes.clear();
    append(bytes, file, begin, std::min(keep_end, file.size()));
  }
  cut_before_blocks = true;
  if (run.number == 0)
    return true;
  // A count that is not that of this run alone cannot be cut.
  const auto others = std::count_if(found.runs.begin(), found.runs.end(),
                                    [&](const Run &other) { return other.count_at == run.count_at; });
  if (run.count_at < begin || others != 1)
    return false;
  FileBytes(bytes).set(run.count_at - begin, static_cast<Word>(keep));
  if (run.bytes == 0 || cut.entries.before == 0) // links lead into records rather than tables
    cut.entries = {run.number, keep};
  if (!what.empty())
    what += ", ";
  what += remainingText({run.number, keep}, run.bytes != 0 ? "entries" : "records");
  return true;
}

/// Keeps the words of the blocks that are there. The maker block of a 2.0 record has to be as long as what it says.
bool Cutter::keepBlocks() {
  if (kind.blocks_at == NO_WORD)
    return true;
  const std::uint64_t blocks_begin = begin + bytes.size();
  const std::uint64_t there = cut_before_blocks ? 0 : file.size() - blocks_begin;
  const BlockSizes left = blocks.trimmed(there);
  append(bytes, file, blocks_begin, blocks_begin + left.maker);
  FileBytes made(bytes);
  setBlockSizes(made, kind.blocks_at, {left.maker, 0});
  made.set(kind.size_at, static_cast<Word>(bytes.size())); // the size of an image follows from it
  Walk walk(made, bytes.size(), version_2);
  walk.over({&kind, 0});
  const std::uint64_t lacking = walk.maker_spare < 0 ? static_cast<std::uint64_t>(-walk.maker_spare) : 0;
  if (lacking > file.size())
    return false;
  bytes.resize(bytes.size() + static_cast<std::size_t>(lacking));
  if (left.user != 0)
    append(bytes, file, blocks_begin + blocks.maker, blocks_begin + blocks.maker + left.user);
  made = FileBytes(bytes);
  setBlockSizes(made, kind.blocks_at, {left.maker + lacking, left.user});
  made.set(kind.size_at, static_cast<Word>(bytes.size()));
  const auto tell = [&](const std::string &text) { what += (what.empty() ? "" : ", ") + text; };
  if (lacking != 0)
    tell("the maker block is filled up with " + std::to_string(lacking) + " bytes of zeros");
  if (left.maker < blocks.maker && lacking == 0)
    tell(remainingText({blocks.maker, left.maker}, "bytes of the maker block"));
  if (left.user < blocks.user)
    tell(remainingText({blocks.user, left.user}, "bytes of the user block"));
  return true;
}

/// @return whether what is left is a record: counts that stand between the tables of some can be cut off.
bool Cutter::isWhole() {
  const FileBytes made(bytes);
  Walk walk(made, bytes.size(), version_2);
  return walk.over({&kind, 0}) == bytes.size() && !walk.broken;
}

} // namespace

CutRecord cutRecord(const FileBytes &file, const RecordLayout &kind, std::uint64_t begin, Word number, bool version_2) {
  return Cutter(file, kind, begin, number, version_2).cut;
}

} // namespace kova::mend
