#include "mend/mend.h"

#include "common/memory.h"
#include "kova/check.h"
#include "mend/derive.h"
#include "mend/holes.h"
#include "mend/locate.h"
#include "mend/losses.h"
#include "mend/rebuild.h"
#include "mend/returns.h"
#include "mend/salvage.h"
#include "mend/swap.h"

#include <algorithm>

namespace kova::mend {

namespace {

/// What the audit says about the bytes of a file.
struct Audit {
  bool ok = false;
  bool out_of_memory = false;
  std::string first = {}; ///< error, as text
};

Audit auditBytes(const std::vector<unsigned char> &bytes) {
  Audit audit;
  const FindingReceiver receiver([&](const Finding &finding) {
    audit.out_of_memory |= finding.row->id == std::string_view("out-of-memory");
    if (finding.row->severity == Severity::error && audit.first.empty())
      audit.first = kvFindingText(finding);
  });
  const ModelMemory memory; // is there before the model and after it
  const KisHandle kis = kvNewKis();
  if (!kis)
    throw std::bad_alloc();
  const int loaded = kvOpenKbMemory(bytes, "", *kis);
  if (audit.out_of_memory)
    throw std::bad_alloc();
  audit.ok = (checkKOVA(*kis) & loaded) != 0;
  return audit;
}

/// @return a finding's text without the line breaks at its end.
std::string withoutLineEnd(std::string text) {
  text.resize(text.find_last_not_of('\n') + 1);
  return text;
}

/// Sets the words of changes to their old or their new values.
void setWords(FileBytes file, const std::vector<Change> &changes, Word Change::*value) {
  for (const Change &change : changes)
    file.set(change.offset, change.*value);
}

/// @return whether a reading moves a place, or leaves one open.
bool changesStructure(const Reading &reading) {
  for (const Decision *decision = reading.decisions; decision != nullptr; decision = decision->before)
    if (decision->sort != Decision::Sort::list)
      return true;
  return false;
}

/// @return what of the file has no reading, for people; empty if all has.
std::string unsolvedPart(const Reading &reading) {
  std::string text;
  for (const Decision *decision = reading.decisions; decision != nullptr; decision = decision->before)
    if (decision->sort == Decision::Sort::unsolved)
      text = std::string("nothing explains where ") + LISTS[decision->list].name +
             (decision->element ? '[' + std::to_string(*decision->element) + ']' : "") + " ends";
  return text;
}

constexpr const char *OTHER_END = "its lists do not end where the file ends";

Result hopeless(std::string reason) { return {.outcome = Outcome::hopeless, .reason = std::move(reason)}; }

/// @return whether the header is right and promises more than there is: its sizes add up to the size that it states.
/// Words that are wrong hardly agree like that, so the file was cut.
bool isCut(const FileBytes &file) {
  const bool version_2_lists = hasVersion2Lists(file);
  if (file.size() < FILE_HEADER_BYTES + (version_2_lists ? Word{VERSION_2_SIZES_BYTES} : 0))
    return true;
  std::uint64_t sum = file[header_at::HEADER_SIZE];
  for (std::size_t list = 0; list < (version_2_lists ? LIST_NUM : VERSION_1_LIST_NUM); ++list)
    sum += file[LAYOUT[list].header_word_at];
  return sum > file.size() && sum == file[header_at::SIZE];
}

/// Mends a file as a reading has it. @return `hopeless` if it does not audit OK then.
Result mendAs(const std::vector<unsigned char> &bytes, FileBytes &file, const Reading &reading, bool salvage) {
  const bool moves = changesStructure(reading);
  Bytes original = moves ? bytes : Bytes();
  Applied applied = applyReading(file, reading);
  Result result = {.changes = std::move(applied.changes)};
  if (applied.checked_words || reading.cost != 0) { // then what the audit accepts stays as it is
    setWords(file, result.changes, &Change::old_value);
    if (auditBytes(bytes).ok)
      return {};
    setWords(file, result.changes, &Change::new_value);
  }
  if (applied.doubtful_maker) {
    result.outcome = Outcome::hopeless;
    result.reason = "a count in a maker block is too large, and nothing tells by how much";
    return result;
  }
  const auto withdraw = [&](std::string reason) { // changes of which none is sure
    setWords(file, result.changes, &Change::old_value);
    return hopeless(std::move(reason));
  };
  if (std::string strange = strangeness(file, result.changes, applied.looked_at); !strange.empty())
    return withdraw(std::move(strange));
  if (moves)
    result.losses = lossesOf(FileBytes(original), file, reading);
  const Audit audit = auditBytes(bytes);
  if (!result.losses.empty() && (!salvage || !audit.ok))
    return withdraw(result.losses.front().list + std::string(": ") + result.losses.front().what);
  if (!audit.ok) {
    result.outcome = Outcome::hopeless;
    result.reason = unsolvedPart(reading);
    if (result.reason.empty())
      result.reason = withoutLineEnd(audit.first);
  } else if (!result.changes.empty()) {
    result.outcome = result.losses.empty() ? Outcome::mended : Outcome::salvaged;
  }
  return result;
}

bool isMended(const Result &result) { return result.outcome == Outcome::good || result.outcome == Outcome::mended; }

/// So many zeros around a word that is 0 and should not be are hardly its record's own.
constexpr std::uint64_t MANY_ZEROS = 32;
/// The same of a word that nothing else but a zero contradicts.
constexpr std::uint64_t VERY_MANY_ZEROS = 128;

/// The row of zeros that a word stands in, from byte to byte; not more of it than `most` bytes or so on either side.
/// The file begins with its version, which is not 0.
struct ZeroRow {
  std::uint64_t begin;
  std::uint64_t end;

  ZeroRow(const FileBytes &file, std::uint64_t at, std::uint64_t most) : begin(at), end(at) {
    while (at - begin < most && file[begin - sizeof(Word)] == 0)
      begin -= sizeof(Word);
    while (end < file.size() && end - at < most && file[end] == 0)
      end += sizeof(Word);
  }
  std::uint64_t size() const { return end - begin; }
};

/// @return whether a word that would be changed stands among so many zeros that they are not its record's own.
bool standInZeros(const FileBytes &file, const std::vector<Change> &changes) {
  return std::any_of(changes.begin(), changes.end(), [&](const Change &change) {
    return change.old_value == 0 && ZeroRow(file, change.offset, MANY_ZEROS).size() >= MANY_ZEROS;
  });
}

/// @return whether words that would be changed lie in a hole of zeros: two of them in one row, or one in a long one.
/// The header can hold many zeros.
bool lieInZeros(const FileBytes &file, const std::vector<Change> &changes) {
  for (std::size_t i = 0; i < changes.size(); ++i) {
    if (changes[i].old_value != 0 || changes[i].offset < file[header_at::HEADER_SIZE])
      continue;
    const ZeroRow row(file, changes[i].offset, VERY_MANY_ZEROS);
    const bool has_two = i + 1 < changes.size() && changes[i + 1].offset < row.end;
    if (row.size() >= (has_two ? MANY_ZEROS : VERY_MANY_ZEROS))
      return true;
  }
  return false;
}

/// Mends a file of two readings: as the one that is asked for, or else as the one that leads to a good file, if the
/// other does not.
Result mendAsEither(std::vector<unsigned char> &bytes, const Reading &reading, std::size_t asked) {
  std::deque<Decision> store;
  const std::array<Reading, 2> readings = {reading, rivalOf(reading, store)};
  std::array<Bytes, 2> files;
  std::array<Result, 2> results;
  for (const std::size_t i : {std::size_t{0}, std::size_t{1}}) {
    if (asked == 2 - i) // it is the other one
      continue;
    files[i] = bytes;
    FileBytes file(files[i]);
    results[i] = mendAs(files[i], file, readings[i], false);
  }
  const auto is_withdrawn = [](const Result &result) {
    return result.outcome == Outcome::hopeless && result.changes.empty();
  };
  if (asked == 0 && is_withdrawn(results[0]) && is_withdrawn(results[1]))
    return std::move(results[0]);
  const bool first_good = isMended(results[0]);
  const std::size_t taken = asked != 0 ? asked - 1 : first_good ? 0 : 1;
  const FileBytes file(bytes);
  const bool decided = first_good != isMended(results[1]) && !standInZeros(file, results[taken].changes);
  if (asked == 0 && !decided)
    return {.outcome = Outcome::ambiguous,
            .changes = changesOf(file, readings[0].decisions),
            .alternative = changesOf(file, readings[1].decisions)};
  std::copy(files[taken].begin(), files[taken].end(), bytes.begin()); // others look at these bytes
  return std::move(results[taken]);
}

/// Mends a file whose lists are all there.
Result mendWhole(std::vector<unsigned char> &bytes, const Asked &asked) {
  FileBytes file(bytes);
  if (isCut(file))
    return hopeless("it is cut: " + std::to_string(file.size()) + " of " + std::to_string(file[header_at::SIZE]) +
                    " bytes are left");
  Reader reader(file);
  const std::optional<Reading> reading = reader.readFile();
  if (!reading)
    return auditBytes(bytes).ok ? Result{} : hopeless(OTHER_END);
  // What the audit accepts has no other structure than the one that it sees.
  if ((changesStructure(*reading) || reading->has_rival) && auditBytes(bytes).ok)
    return {};
  if (reading->has_rival && changesOf(file, reading->decisions) != changesOf(file, reading->rival))
    return mendAsEither(bytes, *reading, asked.reading);
  return mendAs(bytes, file, *reading, asked.salvage);
}

/// Makes a file of what is left of one that was cut.
Result salvageCut(std::vector<unsigned char> &bytes) {
  std::optional<Salvaged> salvaged = salvageFile(FileBytes(bytes));
  if (!salvaged)
    return hopeless("it is cut, and what is left of it is damaged, too");
  const Audit audit = auditBytes(salvaged->bytes);
  if (!audit.ok)
    return hopeless("it is cut, and what is left of it is damaged, too: " + withoutLineEnd(audit.first));
  bytes = std::move(salvaged->bytes);
  return {.outcome = Outcome::salvaged, .changes = std::move(salvaged->changes), .losses = std::move(salvaged->losses)};
}

/// Fills up the maker blocks of a file that has nothing else that is wrong, or not any more. @return whether it audits
/// OK then; else it stays as it is.
bool salvageShort(std::vector<unsigned char> &bytes, Result &result) {
  if (bytes.size() < FILE_HEADER_BYTES)
    return false;
  std::optional<Salvaged> filled = fillMakerBlocks(FileBytes(bytes));
  if (!filled || !auditBytes(filled->bytes).ok)
    return false;
  bytes = std::move(filled->bytes);
  result.outcome = Outcome::salvaged;
  result.losses = std::move(filled->losses);
  result.reason.clear();
  return true;
}

/// @return whether the header of a file is whole, and tells that others of its bytes are not what or where they were.
bool hasHoles(std::vector<unsigned char> &bytes) {
  const HeaderFacts facts = headerFacts({bytes});
  if (facts.holding < HEADER_FACTS - 2 || facts.sum != facts.stated)
    return false;
  const Found found = locate(FileBytes(bytes));
  return found.behind || (found.strange && facts.stated == bytes.size());
}

/// @return whether the words that would be changed are neighbours, as in a hole and hardly else: four in a row, two of
/// three in a row that are the same, or such as lie among zeros.
bool areHole(std::vector<unsigned char> &bytes, const std::vector<Change> &changes) {
  const FileBytes file(bytes);
  if (lieInZeros(file, changes))
    return true;
  std::size_t row = 1;
  for (std::size_t i = 1; i < changes.size(); ++i) {
    const std::uint64_t at = changes[i - 1].offset;
    const Word old = changes[i].old_value;
    row = changes[i].offset == at + sizeof(Word) ? row + 1 : 1;
    const bool same = row > 1 && changes[i - 1].old_value == old;
    if (row == 4 || (same && (file[at - sizeof(Word)] == old || file[at + 2 * sizeof(Word)] == old)))
      return true;
  }
  return false;
}

constexpr const char *HOLED = "bytes in the middle of it are missing, strange or too many";

/// Makes a file of what is left of one with holes. @return none if there is none, or if it would not audit OK.
std::optional<Result> salvageHoled(std::vector<unsigned char> &bytes, HolesAsked asked) {
  const HeaderFacts facts = headerFacts({bytes});
  if (facts.holding < HEADER_FACTS - 2 || facts.sum != facts.stated)
    return std::nullopt;
  for (const bool parts : {true, false}) { // words in a part can be wrong, too
    asked.parts = parts;
    std::optional<Salvaged> salvaged = salvageHoles(FileBytes(bytes), asked);
    if (!salvaged)
      return std::nullopt;
    if (!auditBytes(salvaged->bytes).ok)
      continue;
    bytes = std::move(salvaged->bytes);
    return Result{
        .outcome = Outcome::salvaged, .changes = std::move(salvaged->changes), .losses = std::move(salvaged->losses)};
  }
  return std::nullopt;
}

/// Mends a file as it is.
Result mendAsIs(std::vector<unsigned char> &bytes, const Asked &asked) {
  const bool salvage = asked.salvage;
  FileBytes file(bytes);
  if (file.size() < sizeof(Word))
    return hopeless("it is too short even for a version");
  const Word version = file.version();
  if (!isVersion(version))
    return hopeless("it is of no version that is known");
  const bool has_header = file.size() >= FILE_HEADER_BYTES;
  const std::uint64_t stated = has_header ? file[header_at::SIZE] : file.size() + 1;
  Result result = has_header ? mendWhole(bytes, asked) : hopeless("it is shorter than a header");
  if (!salvage || (result.outcome != Outcome::ambiguous && result.outcome != Outcome::hopeless))
    return result;
  if (result.outcome == Outcome::ambiguous && stated > file.size())
    return salvageCut(bytes);
  if (result.outcome == Outcome::ambiguous)
    return standInZeros(file, result.changes)
               ? salvageHoled(bytes, {.sure = false, .drop = asked.drop}).value_or(result)
               : result;
  if (salvageShort(bytes, result))
    return result;
  setWords(file, result.changes, &Change::old_value);
  if (std::optional<Result> holed = salvageHoled(bytes, {.sure = false, .drop = asked.drop}))
    return std::move(*holed);
  if (stated > file.size())
    return salvageCut(bytes);
  setWords(file, result.changes, &Change::new_value);
  return result;
}

/// Makes the header of a file again that has none. @return none if its lists are not there, or damaged, too.
std::optional<Result> salvageHeaderless(std::vector<unsigned char> &bytes, const Asked &asked) {
  std::optional<Rebuilt> rebuilt = rebuildHeader(bytes);
  if (!rebuilt)
    return std::nullopt;
  Bytes made = rebuilt->bytes;
  Result result = mendAsIs(made, {});
  if (!isMended(result)) {
    made = std::move(rebuilt->bytes);
    std::optional<Result> holed = salvageHoled(made, {.sure = true, .drop = asked.drop});
    if (!holed)
      return std::nullopt;
    result = std::move(*holed);
  }
  std::erase_if(result.changes, [&](Change &change) {
    change.offset -= static_cast<std::uint64_t>(rebuilt->moved);
    return change.offset < rebuilt->gone || change.offset >= bytes.size();
  });
  std::string told = "it is gone: made again from what its lists say";
  if (rebuilt->first != 0)
    told += std::string("; nothing is left of the lists in front of ") + LISTS[rebuilt->first].name;
  result.losses.insert(result.losses.begin(), {"FileHeader", {}, std::move(told)});
  result.outcome = Outcome::salvaged;
  result.header_gone = std::max<std::uint64_t>(rebuilt->gone, 1);
  bytes = std::move(made);
  return result;
}

/// Undoes the steps, and mends the file that results.
Result undoAndMend(std::vector<unsigned char> &bytes, const std::vector<Undoing> &steps, const Asked &asked) {
  std::vector<Undoing> undone;
  std::vector<Change> version;
  for (const Undoing &step : steps) {
    bytes = undo(bytes, step);
    if (setsVersion(step))
      version.push_back({0,
                         "FileHeader",
                         {},
                         "version",
                         static_cast<Word>(step.count),
                         static_cast<Word>(step.value),
                         "the version under which all agrees"});
    else
      undone.push_back(step);
  }
  Result result = mendAsIs(bytes, asked);
  result.undone = std::move(undone);
  result.changes.insert(result.changes.begin(), version.begin(), version.end());
  if (result.outcome == Outcome::good)
    result.outcome = Outcome::mended;
  return result;
}

bool isGood(Bytes &file) { return mendAsIs(file, {}).outcome == Outcome::good; }

/// @return the steps to the file that audits OK, at once.
std::vector<Undoing> findGood(const std::vector<unsigned char> &bytes) {
  return findOriginal(bytes, [](Bytes &file, const HeaderFacts &facts, bool is_judged) {
    return facts.isWhole() && (is_judged ? isGood(file) : auditBytes(file).ok);
  });
}

/// @return the steps to a file that audits OK when it is mended. More of its lists are in their place than now.
std::vector<Undoing> findMendable(const std::vector<unsigned char> &bytes) {
  int most = headerFacts({bytes}).agreement + 1;
  findOriginal(bytes, [&](Bytes &, const HeaderFacts &facts, bool is_judged) {
    most = std::max(most, is_judged ? 0 : facts.agreement);
    return false;
  });
  return findOriginal(bytes, [&](Bytes &file, const HeaderFacts &facts, bool is_judged) {
    return facts.agreement == most && !is_judged && isMended(mendAsIs(file, {}));
  });
}

} // namespace

Result mendBytes(std::vector<unsigned char> &bytes, const Asked &asked) {
  const bool whole = headerFacts({bytes}).isWhole() && asked.part < 2;
  if (!whole) {
    const std::vector<Part> parts = findParts(bytes);
    if (asked.part > std::max<std::size_t>(parts.size(), 1))
      return hopeless("it holds no such part: there are " + std::to_string(parts.size()));
    if (parts.size() > 1)
      return asked.part != 0 ? undoAndMend(bytes, {takePart(parts, asked.part)}, asked)
                             : hopeless("it holds " + std::to_string(parts.size()) + " scenes, one behind the other");
    if (const std::vector<Undoing> steps = findGood(bytes); !steps.empty())
      return undoAndMend(bytes, steps, {});
    if (const std::vector<Undoing> ways = eitherReturns(bytes, isGood); !ways.empty()) {
      if (asked.reading != 0)
        return undoAndMend(bytes, {ways[asked.reading - 1]}, {});
      if (!asked.salvage)
        return {.outcome = Outcome::ambiguous, .undone = {ways[0]}, .undone_instead = {ways[1]}};
    }
  }
  Result result = mendAsIs(bytes, {.reading = asked.reading});
  setWords(FileBytes(bytes), result.changes, &Change::old_value); // what follows looks at the file as it is
  const bool good = result.outcome == Outcome::good;
  if (!good)
    if (const std::vector<Undoing> steps = findSwap(bytes, isGood); !steps.empty())
      return undoAndMend(bytes, steps, {});
  const bool holed =
      !good && asked.reading == 0 && (hasHoles(bytes) || (isMended(result) && areHole(bytes, result.changes)));
  if (holed && auditBytes(bytes).ok) // only words that the audit takes as they are lie in it
    return {};
  if (holed)
    return asked.salvage ? salvageHoled(bytes, {.sure = true, .drop = asked.drop}).value_or(hopeless(HOLED))
                         : hopeless(HOLED);
  if (!isMended(result)) {
    if (const std::vector<Undoing> steps = findMendable(bytes); !steps.empty())
      return undoAndMend(bytes, steps, {});
    if (asked.salvage && !headerFacts({bytes}).isHeader())
      if (std::optional<Result> headed = salvageHeaderless(bytes, asked))
        return std::move(*headed);
    if (asked.salvage)
      return mendAsIs(bytes, asked);
  }
  if (result.outcome != Outcome::ambiguous)
    setWords(FileBytes(bytes), result.changes, &Change::new_value);
  return result;
}

} // namespace kova::mend
