#include "repair/print.h"

#include "common/text.h"

#include <array>
#include <nlohmann/json.hpp>

namespace kova::repair {

namespace {

using Json = nlohmann::ordered_json;

/// In the order of `Outcome`.
constexpr std::array<const char *, 5> OUTCOME_NAMES = {"good", "mended", "salvaged", "ambiguous", "hopeless"};

/// @return "1 word", "2 words".
std::string counted(std::size_t count, const char *one, const char *more) {
  return std::to_string(count) + ' ' + (count == 1 ? one : more);
}

Json elementJson(const std::optional<Word> &element) { return element ? Json(*element) : Json(); }

Json textOrNull(const std::string &text) { return text.empty() ? Json() : Json(escaped(text)); }

std::string jsonLine(const Json &json) { return json.dump() + '\n'; }

/// @return "3 words changed"; if they were not: "1 transformation to undo, 3 words to change, 2 losses".
std::string doneText(const Ending &ending) {
  std::string text;
  const bool written = !ending.output.empty();
  if (!ending.result.undone.empty())
    text = counted(ending.result.undone.size(), "transformation", "transformations") +
           (written ? " undone, " : " to undo, ");
  text += counted(ending.result.changes.size(), "word", "words");
  text += written ? " changed" : " to change";
  if (!ending.result.losses.empty())
    text += ", " + counted(ending.result.losses.size(), "loss", "losses");
  return text;
}

std::string mendedText(const char *done, const char *possible, const Ending &ending) {
  if (ending.output.empty())
    return std::string(possible) + ": " + doneText(ending);
  return std::string(done) + ": " + doneText(ending) + ", " + printable(ending.output) + " audits OK";
}

std::string hopelessText(const Ending &ending) {
  std::string text = "cannot be mended: " + printable(ending.result.reason) + "; ";
  if (!ending.result.changes.empty())
    text += doneText(ending) + ", ";
  return text + (ending.output.empty() ? "nothing written" : printable(ending.output) + " does not audit OK");
}

std::string endingText(const Ending &ending) {
  const std::string output = printable(ending.output);
  switch (ending.result.outcome) {
  case Outcome::good:
    return "nothing to mend; " + (output.empty() ? printable(ending.input) : output) + " audits OK";
  case Outcome::mended:
    return mendedText("mended", "can be mended", ending);
  case Outcome::salvaged:
    return mendedText("salvaged", "can be salvaged", ending);
  case Outcome::ambiguous:
    return "two readings, nothing changed; " + (output.empty() ? "nothing written" : output + " is a copy");
  case Outcome::hopeless:
    return hopelessText(ending);
  }
  return "";
}

std::string readingText(int reading) { return reading != 0 ? "reading " + std::to_string(reading) + ": " : ""; }

Json withReading(Json json, int reading) {
  if (reading != 0)
    json["reading"] = reading;
  return json;
}

} // namespace

std::string changeLine(const Change &change, Form form, int reading) {
  if (form == Form::json) {
    Json json = {{"offset", change.offset},
                 {"list", change.list},
                 {"element", elementJson(change.element)},
                 {"field", escaped(change.field)},
                 {"old", change.old_value},
                 {"new", change.new_value},
                 {"why", change.why}};
    return jsonLine(withReading(std::move(json), reading));
  }
  return readingText(reading) + printable(textOf(change)) + '\n';
}

std::string undoneLine(const Undoing &undone, Form form, int reading) {
  if (form == Form::text)
    return readingText(reading) + textOf(undone) + '\n';
  Json json = {{"undone", undone.transformation->id},
               {"what", textOf(undone)},
               {"at", undone.at},
               {"count", undone.count},
               {"value", undone.value}};
  return jsonLine(withReading(std::move(json), reading));
}

std::string lossLine(const Loss &loss, Form form) {
  if (form == Form::json)
    return jsonLine({{loss.is_added ? "added" : "loss", escaped(loss.what)},
                     {"list", loss.list},
                     {"element", elementJson(loss.element)}});
  return (loss.is_added ? "added: " : "lost: ") + mend::placeText(loss.list, loss.element) + ": " +
         printable(loss.what) + '\n';
}

std::string diagnosisLines(const mend::Diagnosis &diagnosis, const std::string &input, Form form) {
  std::string lines;
  const std::string remedy = mend::remedyText(diagnosis);
  for (const mend::Damage &damage : diagnosis.damages)
    lines += form == Form::text ? printable(textOf(damage)) + '\n'
                                : jsonLine({{"damage", damage.kind},
                                            {"sure", mend::sureText(damage.sure)},
                                            {"begin", damage.begin},
                                            {"end", damage.end},
                                            {"list", textOrNull(damage.list)},
                                            {"element", elementJson(damage.element)},
                                            {"what", escaped(damage.what)}});
  if (form == Form::text)
    return lines + printable(input) + ": " + printable(remedy) + '\n';
  return lines + jsonLine({{"diagnosis", OUTCOME_NAMES.at(static_cast<std::size_t>(diagnosis.result.outcome))},
                           {"input", escaped(input)},
                           {"damages", diagnosis.damages.size()},
                           {"remedy", escaped(remedy)}});
}

std::string endingLine(const Ending &ending, Form form) {
  if (form == Form::text)
    return endingText(ending) + '\n';
  const Result &result = ending.result;
  const bool one_reading = result.outcome != Outcome::ambiguous;
  return jsonLine({{"outcome", OUTCOME_NAMES.at(static_cast<std::size_t>(result.outcome))},
                   {"input", escaped(ending.input)},
                   {"output", textOrNull(ending.output)},
                   {"written", !ending.output.empty()},
                   {"undone", one_reading ? result.undone.size() : 0},
                   {"changes", one_reading ? result.changes.size() : 0},
                   {"losses", result.losses.size()},
                   {"reason", textOrNull(result.reason)}});
}

} // namespace kova::repair
