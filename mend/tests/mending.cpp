#include "mend/tests/mending.h"

#include "kova/check.h"
#include "kova/findings.h"
#include "kova/kb.h"

#include <algorithm>

namespace kova::mend {

namespace {

/// @return the changes as a line, short.
std::string listed(const std::vector<Change> &changes) {
  std::string line;
  for (const Change &change : changes)
    line += std::to_string(change.offset) + ' ' + change.field + ' ' + std::to_string(change.old_value) + "->" +
            std::to_string(change.new_value) + "; ";
  return line;
}

/// @return whether the changes, by offset, make the first file the second one, each in its part.
bool tellAll(const std::vector<Change> &changes, Bytes before, const Bytes &after) {
  std::uint64_t from = 0;
  for (const Change &change : changes) {
    if (change.offset < from || change.offset + sizeof(Word) > before.size() || change.old_value == change.new_value ||
        harness::wordAt(before, static_cast<std::size_t>(change.offset)) != change.old_value)
      return false;
    harness::setWordAt(before, static_cast<std::size_t>(change.offset), change.new_value);
    from = change.offset + sizeof(Word);
  }
  return std::equal(after.begin(), after.end(), before.begin(), before.begin() + static_cast<long>(after.size()));
}

/// @return whether the changes are ones of words of the file.
bool fit(const std::vector<Change> &changes, const Bytes &file) {
  return std::all_of(changes.begin(), changes.end(), [&](const Change &change) {
    return change.offset + sizeof(Word) <= file.size() &&
           harness::wordAt(file, static_cast<std::size_t>(change.offset)) == change.old_value;
  });
}

/// Two readings are told by what each would change in the file.
bool areReadings(const Result &result, const Bytes &file) {
  if (!result.undone_instead.empty())
    return undo(file, result.undone.at(0)) != undo(file, result.undone_instead.at(0));
  return result.changes != result.alternative && fit(result.changes, file) && fit(result.alternative, file);
}

/// What is made of a file that was cut is hardly longer than what was left of it.
constexpr std::size_t mostSalvaged(std::size_t size) { return 4096 + 3 * size; }

std::string brokenOutcome(const Bytes &before, const Bytes &after, const Result &result, bool salvage) {
  switch (result.outcome) {
  case Outcome::good:
    return result.changes.empty() && before == after ? "" : "good, but changed";
  case Outcome::mended:
    if (result.changes.empty() && result.undone.empty())
      return "mended without changes";
    return after.size() == before.size() ? "" : "mended, but longer or shorter";
  case Outcome::salvaged:
    if (!salvage || result.losses.empty() || after.size() > mostSalvaged(before.size()))
      return "salvaged: not asked for, too long, or nothing lost";
    return fit(result.changes, before) ? "" : "salvaged with changes that have no place";
  case Outcome::ambiguous:
    return before == after && areReadings(result, before) ? "" : "ambiguous, but changed or without two readings";
  case Outcome::hopeless:
    return !result.reason.empty() && after.size() == before.size() ? "" : "hopeless without a reason";
  }
  return "no outcome";
}

} // namespace

bool auditsOk(const Bytes &file) {
  const FindingReceiver silent([](const Finding &) {});
  Kis kis;
  const int loaded = kvOpenKbMemory(file, "", kis);
  const Word version = kvKOVAver(kis.file_header);
  return (version == VERSION_1 || version == VERSION_2) && (checkKOVA(kis) & loaded) != 0;
}

Mending mendAndCheck(const Bytes &input, bool salvage) {
  Mending mending = {{}, input, ""};
  mending.result = mendBytes(mending.bytes, {.salvage = salvage});
  const Result &result = mending.result;
  Bytes file = input; // as it is when all is undone that is told
  for (const Undoing &step : result.outcome == Outcome::ambiguous ? std::vector<Undoing>() : result.undone)
    file = undo(file, step);
  const auto say = [&](const std::string &what) {
    if (!what.empty())
      mending.broken += what + " (" + listed(result.changes) + result.reason + ")\n";
  };
  say(brokenOutcome(file, mending.bytes, result, salvage));
  if (result.outcome != Outcome::ambiguous && result.outcome != Outcome::salvaged &&
      !tellAll(result.changes, file, mending.bytes))
    say("the changes that are told are not those that were made");
  if (result.outcome != Outcome::salvaged && !result.losses.empty())
    say("losses of what is not salvaged");
  for (const std::size_t reading : {1U, 2U}) {
    Bytes taken = input;
    if (result.outcome != Outcome::ambiguous || mendBytes(taken, {.reading = reading}).outcome != Outcome::mended)
      continue;
    const std::vector<Change> &changes = reading == 1 ? result.changes : result.alternative;
    if (!std::all_of(changes.begin(), changes.end(), [&](const Change &change) {
          return harness::wordAt(taken, static_cast<std::size_t>(change.offset)) == change.new_value;
        }))
      say("the reading that is taken is not the one that is told: " + listed(changes));
  }
  if (result.outcome == Outcome::ambiguous || result.outcome == Outcome::hopeless)
    return mending;
  if (!auditsOk(mending.bytes))
    say("it does not audit OK");
  for (const bool again_salvage : {false, true}) {
    Bytes again = mending.bytes;
    const Result second = mendBytes(again, {.salvage = again_salvage});
    if (second.outcome != Outcome::good || again != mending.bytes)
      say("mended again, it changes: " + listed(second.changes));
  }
  return mending;
}

std::string storyOf(const Mending &mending) {
  constexpr const char *OUTCOMES[] = {"good", "mended", "salvaged", "ambiguous", "hopeless"};
  const Result &result = mending.result;
  std::string story = OUTCOMES[static_cast<std::size_t>(result.outcome)];
  const auto add = [&](const std::string &text) { story += "; " + text; };
  for (const Undoing &step : result.undone)
    add(textOf(step));
  for (const Undoing &step : result.undone_instead)
    add("or " + textOf(step));
  for (const Change &change : result.changes)
    add(textOf(change));
  for (const Change &change : result.alternative)
    add("or " + textOf(change));
  for (const Loss &loss : result.losses)
    add((loss.is_added ? "added " : "lost ") + placeText(loss.list, loss.element) + ' ' + loss.what);
  if (!result.reason.empty())
    add(result.reason);
  if (result.outcome == Outcome::salvaged)
    add(std::to_string(mending.bytes.size()) + " bytes, sum " + std::to_string(sumOf(mending.bytes)));
  return story + '\n';
}

std::string auditMending(std::span<const unsigned char> input) {
  const Bytes file(input.begin(), input.end());
  const Mending mended = mendAndCheck(file, false);
  const Mending salvaged = mendAndCheck(file, true);
  const bool same = mended.result.outcome != Outcome::mended ||
                    (salvaged.bytes == mended.bytes && salvaged.result.changes == mended.result.changes);
  return mended.broken + salvaged.broken + (same ? "" : "salvage mends it in another way\n");
}

} // namespace kova::mend
