#include "mend/diagnose.h"

#include "mend/foreign.h"
#include "mend/reading.h"
#include "mend/returns.h"

#include <algorithm>

namespace kova::mend {

namespace {

std::string counted(std::uint64_t number, const char *one, const char *more) {
  return std::to_string(number) + ' ' + (number == 1 ? one : more);
}

// --- What was undone, and single words ------------------------------------------------------------------------------

/// Those that take something out of one place begin where it stood and count its bytes; the others are about all bytes
/// from there on.
Damage damageOf(const Undoing &undone, std::uint64_t size) {
  const std::string_view id = undone.transformation->id;
  const bool one_place = id == "front" || id == "behind" || id == "doubled" || id == "swapped";
  return {.kind = undone.transformation->id,
          .sure = id == "returns-lost" ? Sure::likely : Sure::certain, // the audit does not look at contents
          .begin = undone.at,
          .end = one_place ? std::min(size, undone.at + undone.count) : size,
          .what = textOf(undone)};
}

/// Tells of the words that are wrong outside of gaps, those of an element or of a list's head at a time.
void tellWords(const std::vector<Change> &changes, const std::vector<Gap> &gaps, std::vector<Damage> &damages) {
  constexpr const char *WORDS_KIND = "words";
  const std::size_t before = damages.size();
  std::size_t number = 0;
  for (const Change &change : changes) {
    const auto holds = [&](const Gap &gap) { return change.offset >= gap.begin && change.offset < gap.end; };
    if (std::any_of(gaps.begin(), gaps.end(), holds))
      continue;
    if (change.field == "version") {
      damages.push_back(
          {"version", Sure::certain, 0, sizeof(Word), change.list, {}, "the version is none that is known"});
      continue;
    }
    const bool goes_on = damages.size() > before && damages.back().kind == WORDS_KIND &&
                         damages.back().list == std::string_view(change.list) &&
                         damages.back().element == change.element;
    number = goes_on ? number + 1 : 1;
    if (!goes_on)
      damages.push_back({WORDS_KIND, Sure::likely, change.offset, 0, change.list, change.element});
    damages.back().end = change.offset + sizeof(Word);
    damages.back().what = number == 1 ? change.field + " does not fit the rest of the file"
                                      : std::to_string(number) + " words do not fit the rest of the file";
  }
}

// --- Gaps -----------------------------------------------------------------------------------------------------------

struct Zeros {
  std::uint64_t begin = 0;
  std::uint64_t end = 0;

  std::uint64_t size() const { return end - begin; }
};

/// @return the longest row of zero bytes between two places.
Zeros mostZeros(BytesView file, std::uint64_t begin, std::uint64_t end) {
  Zeros most;
  Zeros row = {begin, begin};
  for (std::uint64_t at = begin; at < end; ++at) {
    if (file[static_cast<std::size_t>(at)] != 0)
      row.begin = at + 1;
    row.end = at + 1;
    if (row.size() > most.size())
      most = row;
  }
  return most;
}

/// So many zeros in a row are hardly the contents of a record that is damaged otherwise.
constexpr std::uint64_t MANY_ZEROS = 32;

Damage damageOf(const Gap &gap, BytesView file) {
  Damage damage = {.begin = gap.begin, .end = gap.end, .list = listName(gap.list), .element = gap.element};
  if (gap.missing != 0) {
    damage.kind = gap.missing > 0 ? "missing" : "too-many";
    const auto number = static_cast<std::uint64_t>(gap.missing > 0 ? gap.missing : -gap.missing);
    damage.what = counted(number, "byte is ", "bytes are ") + (gap.missing > 0 ? "missing" : "too many");
    return damage;
  }
  const Zeros zeros = mostZeros(file, gap.begin, gap.end);
  const bool to_end = zeros.end == file.size();
  if (zeros.size() >= MANY_ZEROS || (to_end && zeros.size() != 0)) {
    damage.kind = to_end ? "cut-padded" : "zeros";
    if (!to_end && zeros.size() < (gap.end - gap.begin) / 2) // what is damaged may have held zeros
      damage.sure = Sure::possible;
    damage.begin = zeros.begin;
    damage.end = zeros.end;
    damage.what = counted(zeros.size(), "zero stands", "zeros stand") +
                  (to_end ? " in place of the end of the file" : " in place of what was there");
    return damage;
  }
  damage.kind = "strange";
  damage.sure = gap.element ? Sure::possible : Sure::likely;
  damage.what = "other bytes stand in place of some that were there";
  return damage;
}

/// Tells of a file that is shorter than its header says, and where all that is left is in its place.
void tellCut(BytesView file, const HeaderFacts &facts, const std::vector<Gap> &gaps, std::vector<Damage> &damages) {
  Damage damage = {.kind = "cut", .sure = Sure::certain, .begin = file.size(), .end = facts.stated};
  damage.list = gaps.empty() ? "" : listName(gaps.back().list);
  damage.element = gaps.empty() ? std::nullopt : gaps.back().element;
  damage.what = std::to_string(file.size()) + " of " + std::to_string(facts.stated) + " bytes are left";
  damages.push_back(damage);
  constexpr std::size_t MANY = 1024; // any byte is likely among so many
  if (file.size() < MANY || std::find(file.begin(), file.end(), 0x1a) != file.end())
    return;
  damage.kind = "cut-at-1a";
  damage.sure = Sure::possible;
  damage.end = damage.begin;
  damage.what = "a transfer of text may have ended at a byte 1a: there is none in what is left";
  damages.push_back(damage);
}

/// Tells where a file is damaged of which the header is known to be right.
void tellGaps(BytesView file, const HeaderFacts &facts, const std::vector<Gap> &gaps, std::vector<Damage> &damages) {
  const bool ends_early = gaps.size() == 1 && gaps[0].missing > 0 && gaps[0].end == file.size();
  if (file.size() < facts.stated && (gaps.empty() || ends_early))
    return tellCut(file, facts, gaps, damages);
  const std::uint64_t missing = facts.stated - std::min<std::uint64_t>(file.size(), facts.stated);
  if (canLackReturns(file, gaps))
    damages.push_back({.kind = "returns-lost",
                       .sure = missing > 2 ? Sure::likely : Sure::possible,
                       .begin = gaps.front().begin,
                       .end = gaps.back().end,
                       .what = "carriage returns before line feeds may have been taken out: " +
                               std::to_string(missing) + (missing == 1 ? " is" : " are") + " missing"});
  for (const Gap &gap : gaps)
    damages.push_back(damageOf(gap, file));
}

// --- Files that are hardly ones of the format any more --------------------------------------------------------------

/// @return where bytes from 80 to ff were replaced, if all of them were; their number in `count`.
std::optional<Zeros> replacedBytes(BytesView file, std::uint64_t &count) {
  std::optional<Zeros> replaced;
  for (std::size_t i = 0; i < file.size(); ++i) {
    if (file[i] < 0x80)
      continue;
    if (i + 2 >= file.size() || file[i] != 0xef || file[i + 1] != 0xbf || file[i + 2] != 0xbd)
      return std::nullopt;
    replaced = Zeros{replaced ? replaced->begin : i, i + 3};
    i += 2;
    ++count;
  }
  return replaced;
}

/// Tells what the bytes of a file look like of which nothing else is known.
void tellBytes(BytesView file, const HeaderFacts &facts, std::vector<Damage> &damages) {
  const auto tell = [&](const char *kind, Sure sure, std::uint64_t begin, std::uint64_t end, std::string what) {
    damages.push_back({.kind = kind, .sure = sure, .begin = begin, .end = end, .what = std::move(what)});
  };
  if (file.empty())
    return tell("empty", Sure::certain, 0, 0, "the file is empty");
  if (std::all_of(file.begin(), file.end(), [](unsigned char byte) { return byte == 0; }))
    return tell("zeros", Sure::certain, 0, file.size(), "the file holds nothing but zeros");
  std::uint64_t count = 0;
  if (const std::optional<Zeros> replaced = replacedBytes(file, count))
    return tell("replaced", count > 8 ? Sure::certain : Sure::likely, replaced->begin, replaced->end,
                "bytes from 80 to ff were replaced by the character U+FFFD: " + std::to_string(count));
  if (facts.isHeader())
    return;
  if (const ForeignKind *const kind = foreignKind(file))
    return tell(kind->packed ? "packed" : "other-kind", Sure::likely, 0, std::min(file.size(), FOREIGN_BYTES),
                std::string("by its first bytes it is ") + kind->name);
  tell("unknown", Sure::likely, 0, file.size(), "nothing in it is like a KOVA file");
}

/// What is left to tell of: a word of the engine's, which no place in the file shows.
void tellResult(const Result &result, std::uint64_t size, std::vector<Damage> &damages) {
  for (const Loss &loss : result.losses)
    if (damages.empty() || loss.is_added)
      damages.push_back({.kind = loss.is_added ? "block-short" : "strange",
                         .sure = loss.is_added ? Sure::certain : Sure::possible,
                         .end = size,
                         .list = loss.list,
                         .element = loss.element,
                         .what = loss.what});
  if (damages.empty() && !result.reason.empty())
    damages.push_back({.kind = "unknown", .sure = Sure::likely, .end = size, .what = result.reason});
}

/// @return whether the file holds several scenes, which are told.
bool tellParts(BytesView file, std::vector<Damage> &damages) {
  const std::vector<Part> parts = findParts(file);
  for (std::size_t i = 0; parts.size() > 1 && i < parts.size(); ++i)
    damages.push_back({.kind = "part",
                       .sure = Sure::certain,
                       .begin = parts[i].begin,
                       .end = parts[i].end,
                       .what = "scene " + std::to_string(i + 1) + " of " + std::to_string(parts.size())});
  return parts.size() > 1;
}

/// Tells of a file that is not mended exactly.
void tellDamage(Bytes &file, Diagnosis &diagnosis) {
  if (diagnosis.result.outcome == Outcome::hopeless && tellParts(file, diagnosis.damages))
    return;
  const HeaderFacts facts = headerFacts({file});
  std::vector<Gap> gaps;
  if (const std::uint64_t gone = diagnosis.result.header_gone; gone != 0)
    diagnosis.damages.push_back({"header", Sure::certain, 0, gone, "FileHeader", {}, "the header is gone"});
  if (facts.holding >= HEADER_FACTS - 2 && facts.sum == facts.stated) {
    const FileBytes bytes(file);
    gaps = gapsOf(bytes, locate(bytes));
    tellGaps(file, facts, gaps, diagnosis.damages);
  }
  if (diagnosis.result.outcome == Outcome::hopeless)
    tellBytes(file, facts, diagnosis.damages);
  for (const std::vector<Change> *const reading : {&diagnosis.result.changes, &diagnosis.result.alternative})
    tellWords(*reading, gaps, diagnosis.damages);
  tellResult(diagnosis.result, file.size(), diagnosis.damages);
}

} // namespace

Diagnosis diagnose(BytesView file) {
  Bytes mended(file.begin(), file.end());
  Diagnosis diagnosis = {.result = mendBytes(mended, {.salvage = true})};
  const Result &result = diagnosis.result;
  if (result.outcome == Outcome::good)
    return diagnosis;
  mended.assign(file.begin(), file.end()); // as it is when all is undone
  for (const Undoing &step : result.undone) {
    diagnosis.damages.push_back(damageOf(step, mended.size()));
    mended = undo(mended, step);
  }
  if (result.outcome == Outcome::mended)
    tellWords(result.changes, {}, diagnosis.damages);
  else
    tellDamage(mended, diagnosis);
  return diagnosis;
}

const char *sureText(Sure sure) {
  constexpr const char *TEXTS[] = {"possible", "likely", "certain"};
  return TEXTS[static_cast<std::size_t>(sure)];
}

std::string textOf(const Damage &damage) {
  std::string place = damage.begin == damage.end ? "at " + offsetText(damage.begin)
                                                 : offsetText(damage.begin) + " to " + offsetText(damage.end);
  if (*damage.list != '\0')
    place += ' ' + placeText(damage.list, damage.element);
  return place + ' ' + damage.kind + ": " + damage.what + " (" + sureText(damage.sure) + ')';
}

std::string remedyText(const Diagnosis &diagnosis) {
  const std::string_view kind = diagnosis.damages.empty() ? "" : diagnosis.damages.front().kind;
  switch (diagnosis.result.outcome) {
  case Outcome::good:
    return "nothing is wrong";
  case Outcome::mended:
    return "kbrepair mends it";
  case Outcome::salvaged:
    return "kbrepair --salvage keeps what is left";
  case Outcome::ambiguous:
    return "there are two readings, between which nothing in the file decides";
  case Outcome::hopeless:
    break;
  }
  if (kind == "part")
    return "kbrepair --part N takes one of them";
  if (kind == "packed")
    return "what is in it may be a KOVA file: unpack it";
  return "kbrepair cannot mend it: " + diagnosis.result.reason;
}

} // namespace kova::mend
