#include "diff/print.h"

#include "common/text.h"

#include <algorithm>

namespace kova::diff {

namespace {

constexpr const char *GREEN = "32";
constexpr std::size_t CONTEXT = 3; ///< elements around a difference

std::string quoted(const Printer &to, const std::string &text) { return '"' + showOf(to.style)(text) + '"'; }

std::string valueOf(const Printer &to, const Change &change, const std::string &value) {
  return change.is_text ? quoted(to, value) : value;
}

std::string numberText(const std::optional<std::uint64_t> &first, std::uint64_t count) {
  const std::string number = std::to_string(*first);
  return count > 1 ? number + ".." + std::to_string(*first + count - 1) : number;
}

/// @return "[5]", "[5..9]", or "[5 -> 7]" where the numbers are not the same.
std::string numbersOf(const Printer::Run &run) {
  const Place &place = run.place;
  if (!place.a && !place.b)
    return "";
  std::string text = (place.kind != nullptr ? ' ' + std::string(place.kind) : "") + '[';
  text += numberText(place.a ? place.a : place.b, run.count);
  if (place.a && place.b && *place.a != *place.b)
    text += " -> " + numberText(place.b, run.count);
  return text + ']';
}

std::string ulpText(const Change &change) { return change.ulps ? " (" + std::to_string(*change.ulps) + " ulp)" : ""; }

std::string arrow(const Printer &to, const Change &change) {
  return coloured(to.style, RED, valueOf(to, change, change.old_value)) + " -> " +
         coloured(to.style, GREEN, valueOf(to, change, change.new_value)) + ulpText(change) +
         (change.is_link && change.old_value == change.new_value ? " (not the same element)" : "");
}

std::string entriesText(const Printer &to, const Change &change) {
  if (change.differing > 0)
    return std::to_string(change.differing) + " of " + std::to_string(change.counts[0]) + " entries differ, first " +
           change.first + ": " + arrow(to, change);
  std::string text = std::to_string(change.counts[0]) + " -> " + std::to_string(change.counts[1]) + " entries";
  return change.first.empty() ? text : text + ", first difference " + change.first + ": " + arrow(to, change);
}

std::string bytesText(const Change &change) {
  const std::string number = change.counts[0] == change.counts[1]
                                 ? std::to_string(change.counts[0])
                                 : std::to_string(change.counts[0]) + " -> " + std::to_string(change.counts[1]);
  return number + " bytes that no record takes in, first difference at byte " + change.first;
}

/// @return what a line tells behind the place.
std::string changeText(const Printer &to, const Change &change) {
  const std::string field = change.field.empty() ? "" : change.field + ": ";
  switch (change.what) {
  case What::value:
    return field + arrow(to, change);
  case What::entries:
    return field + entriesText(to, change);
  case What::bytes:
    return field + bytesText(change);
  case What::only_a:
    return (change.field.empty() ? "" : change.field + ' ') + coloured(to.style, RED, "only in A");
  case What::only_b:
    return (change.field.empty() ? "" : change.field + ' ') + coloured(to.style, GREEN, "only in B");
  case What::moved:
    return "moved";
  }
  return "";
}

bool isWhole(const Change &change) {
  return change.field.empty() && (change.what == What::only_a || change.what == What::only_b);
}

std::string textLine(const Printer &to, const Printer::Run &run, const Change &change) {
  const std::string numbers = numbersOf(run);
  if (isWhole(change) && !numbers.empty())
    return std::string(run.place.list) + ':' + (numbers[0] == ' ' ? "" : " ") + numbers + ' ' +
           (run.place.name.empty() || run.count > 1 ? "" : quoted(to, run.place.name) + ' ') + changeText(to, change) +
           '\n';
  const bool is_sentence = change.field.empty() && change.what == What::bytes;
  return run.place.list + numbers + (is_sentence ? ": " : " ") + changeText(to, change) + '\n';
}

// --- JSON -----------------------------------------------------------------------------------------------------------

std::string jsonString(std::string_view text) {
  std::string json = "\"";
  for (const char character : escaped(text)) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte < 0x20) {
      constexpr char DIGITS[] = "0123456789abcdef";
      json += std::string("\\u00") + DIGITS[byte >> 4] + DIGITS[byte & 15];
      continue;
    }
    if (character == '"' || character == '\\')
      json += '\\';
    json += character;
  }
  return json + '"';
}

/// @return a value as a number, if it is one of JSON.
std::string jsonValue(const Change &change, const std::string &value) {
  const bool is_number = !change.is_text && !value.starts_with("0x") && value.find_first_of("ni") == value.npos;
  return is_number ? value : jsonString(value);
}

void addMember(std::string &json, const char *key, const std::string &value) {
  json += (json.size() > 1 ? ",\"" : "\"") + std::string(key) + "\":" + value;
}

void addPlace(std::string &json, const Printer &to, const Printer::Run &run) {
  const Place &place = run.place;
  if (!to.path.empty())
    addMember(json, "path", jsonString(to.path));
  addMember(json, "list", jsonString(place.list));
  if (place.kind != nullptr)
    addMember(json, "kind", jsonString(place.kind));
  if (place.a)
    addMember(json, "a", std::to_string(*place.a));
  if (place.b)
    addMember(json, "b", std::to_string(*place.b));
  if (run.count > 1)
    addMember(json, "elements", std::to_string(run.count));
  if (!place.name.empty() && run.count == 1)
    addMember(json, "name", jsonString(place.name));
}

std::string jsonLine(const Printer &to, const Printer::Run &run, const Change &change) {
  constexpr const char *WHATS[] = {"value", "entries", "bytes", "only in A", "only in B", "moved"};
  std::string json = "{";
  addPlace(json, to, run);
  addMember(json, "what", jsonString(WHATS[static_cast<std::size_t>(change.what)]));
  if (!change.field.empty())
    addMember(json, "field", jsonString(change.field));
  if (change.what == What::entries || change.what == What::bytes)
    addMember(json, "counts", '[' + std::to_string(change.counts[0]) + ',' + std::to_string(change.counts[1]) + ']');
  if (change.differing > 0)
    addMember(json, "differing", std::to_string(change.differing));
  if (!change.first.empty())
    addMember(json, "first", change.what == What::bytes ? change.first : jsonString(change.first));
  if (!change.old_value.empty() || change.is_text || !change.new_value.empty()) {
    addMember(json, "old", jsonValue(change, change.old_value));
    addMember(json, "new", jsonValue(change, change.new_value));
  }
  if (change.ulps)
    addMember(json, "ulps", std::to_string(*change.ulps));
  return json + "}\n";
}

// --- Unified --------------------------------------------------------------------------------------------------------

std::string elementText(const Printer &to, const Printer::Run &run) {
  const std::string numbers = numbersOf(run);
  return numbers.substr(numbers.starts_with(' ') ? 1 : 0) +
         (run.place.name.empty() || run.count > 1 ? "" : ' ' + quoted(to, run.place.name));
}

void addUnified(Printer &to, char sign, const std::string &text) {
  const char *const colour = sign == '-' ? RED : GREEN;
  to.text += (sign == ' ' ? ' ' + text : coloured(to.style, colour, sign + text)) + '\n';
}

/// @return what one of the files has of a change, in --unified.
std::string sideText(const Printer &to, const Change &change, bool is_b) {
  const std::string value = valueOf(to, change, is_b ? change.new_value : change.old_value);
  if (change.what == What::value)
    return ": " + value;
  const std::string number = ": " + std::to_string(change.counts[is_b ? 1 : 0]);
  if (change.what == What::bytes)
    return number + " bytes that no record takes in";
  return number + " entries" + (change.first.empty() ? "" : ", first difference " + change.first + ": " + value);
}

/// Adds a change as what A has, and what B has.
void addBoth(Printer &to, const std::string &element, const Change &change) {
  const std::string before = element + (element.empty() || change.field.empty() ? "" : " ") + change.field;
  if (change.what == What::moved)
    return addUnified(to, '+', before + " moved");
  const bool is_only = change.what == What::only_a || change.what == What::only_b;
  if (change.what != What::only_b)
    addUnified(to, '-', is_only ? before : before + sideText(to, change, false));
  if (change.what != What::only_a)
    addUnified(to, '+', is_only ? before : before + sideText(to, change, true));
}

void addUnifiedRun(Printer &to, const Printer::Run &run) {
  if (to.shown_list != run.place.list)
    to.text += "@@ " + std::string(run.place.list) + " @@\n";
  to.shown_list = run.place.list;
  for (const Place &place : to.around)
    if (place.list == std::string_view(run.place.list))
      addUnified(to, ' ', elementText(to, {place, {}, 1}));
  to.around.clear();
  to.behind = CONTEXT;
  for (const Change &change : run.changes)
    addBoth(to, elementText(to, run), change);
}

// --- Runs -----------------------------------------------------------------------------------------------------------

/// @return whether a place is the one behind a run.
bool continues(const Printer::Run &run, const Place &place, const std::vector<Change> &changes) {
  const auto is_next = [&](const std::optional<std::uint64_t> &first, const std::optional<std::uint64_t> &number) {
    return first ? number && *number == *first + run.count : !number;
  };
  const bool are_named = isWhole(changes[0]) && !place.name.empty();
  return run.count > 0 && (place.a || place.b) && !are_named && run.place.list == std::string_view(place.list) &&
         run.place.kind == place.kind && is_next(run.place.a, place.a) && is_next(run.place.b, place.b) &&
         run.changes == changes;
}

void flush(Printer &to) {
  const Printer::Run run = std::move(to.run);
  to.run = {};
  if (run.count == 0)
    return;
  to.differences += run.changes.size();
  if (to.look == Look::unified)
    return addUnifiedRun(to, run);
  for (const Change &change : run.changes)
    if (to.look == Look::text)
      to.text += textLine(to, run, change);
    else if (to.look == Look::json)
      to.text += jsonLine(to, run, change);
}

void count(Printer &to, const Place &place, const std::vector<Change> &changes) {
  if (to.counts.empty() || to.counts.back().first != place.list)
    to.counts.emplace_back(place.list, Printer::Counts());
  Printer::Counts &counts = to.counts.back().second;
  if (!place.a && !place.b)
    ++counts.others;
  else if (isWhole(changes[0]))
    ++(place.a ? counts.only_a : counts.only_b);
  else if (changes.size() == 1 && changes[0].what == What::moved)
    ++counts.moved;
  else
    ++counts.changed;
}

} // namespace

void take(Printer &to, const Place &place, const std::vector<Change> &changes) {
  if (changes.empty()) { // only --unified wants them
    if (!place.a && !place.b)
      return;
    flush(to);
    if (!to.around.empty() && to.around.back().list != std::string_view(place.list))
      to.around.clear();
    if (to.shown_list != place.list)
      to.behind = 0;
    if (to.behind > 0) {
      --to.behind;
      return addUnified(to, ' ', elementText(to, {place, {}, 1}));
    }
    if (to.around.size() == CONTEXT)
      to.around.erase(to.around.begin());
    to.around.push_back(place);
    return;
  }
  count(to, place, changes);
  if (continues(to.run, place, changes)) {
    ++to.run.count;
    return;
  }
  flush(to);
  to.run = {place, changes, 1};
}

namespace {

std::string damageText(const std::string &list, const std::string &finding, bool is_b) {
  const std::string side = is_b ? "B" : "A";
  if (list == "File")
    return "File: no KOVA scene in " + side + '\n';
  return list + ": damaged in " + side + " (" + finding + "), compared as far as it is held\n";
}

} // namespace

void takeDamage(Printer &to, const char *list, const char *finding_a, const char *finding_b) {
  flush(to);
  for (const bool is_b : {false, true}) {
    const char *const finding = is_b ? finding_b : finding_a;
    if (finding == nullptr)
      continue;
    if (to.look == Look::json)
      to.text += "{" + (to.path.empty() ? "" : "\"path\":" + jsonString(to.path) + ',') + "\"list\":\"" + list +
                 "\",\"what\":\"damaged\",\"side\":\"" + (is_b ? 'B' : 'A') + "\",\"finding\":\"" + finding + "\"}\n";
    else if (to.look == Look::text || to.look == Look::unified)
      to.text += damageText(list, finding, is_b);
  }
}

void finish(Printer &to) {
  flush(to);
  if (to.look != Look::stat)
    return;
  for (const auto &[list, counts] : to.counts) {
    std::string line = list + ':';
    const auto add = [&](std::size_t number, const char *what) {
      if (number > 0)
        line += (line.ends_with(':') ? " " : ", ") + std::to_string(number) + what;
    };
    add(counts.changed, " changed");
    add(counts.only_a, " only in A");
    add(counts.only_b, " only in B");
    add(counts.moved, " moved");
    add(counts.others, " beside the elements");
    to.text += line + '\n';
  }
}

} // namespace kova::diff
