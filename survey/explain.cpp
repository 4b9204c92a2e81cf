#include "survey/survey.h"

#include "common/text.h"
#include "survey/output.h"

#include <array>
#include <unistd.h>

namespace kova::survey {

namespace {

const char *stageName(const FindingRow &row) { return STAGE_NAMES[static_cast<std::size_t>(row.stage)]; }

std::string severityName(const FindingRow &row, const Style &style) {
  return coloured(style, row.severity == Severity::error ? RED : YELLOW,
                  SEVERITY_NAMES[static_cast<std::size_t>(row.severity)]);
}

/// What stands in an example for the conversions of a text, in their order.
struct Examples {
  const char *string; ///< the first one
  std::size_t strings = 0, numbers = 0;
};

std::string exampleOf(Examples &examples, std::string_view conversion) {
  constexpr std::array<const char *, 3> STRINGS = {"", "name_index", "NameList"};
  constexpr std::array<int, 6> NUMBERS = {40, 36, 24, 4, 8, 2};
  if (conversion.back() == 's') {
    const std::size_t number = examples.strings++;
    return number == 0 ? examples.string : STRINGS[number % STRINGS.size()];
  }
  const int number = NUMBERS[examples.numbers++ % NUMBERS.size()];
  if (conversion.back() == 'd')
    return std::to_string(number);
  return conversion.find('#') != conversion.npos ? "0x000000" + std::to_string(number) : "     300";
}

/// What most texts begin with is an element, and what errors without numbers begin with a list. These are different.
struct Beginning {
  std::string_view id;
  const char *text;
};
constexpr Beginning BEGINNINGS[] = {
    {"element-index", "Obj[5] index"}, {"element-size", "Obj[5] size"}, {"file-size", "missing"}};

const char *beginningOf(const FindingRow &row) {
  for (const Beginning &beginning : BEGINNINGS)
    if (beginning.id == row.id)
      return beginning.text;
  const bool about_list =
      row.severity == Severity::error && std::string_view(row.format).find("%d") == std::string::npos;
  return about_list ? "ObjList" : "Obj[5]";
}

/// @return a text of the catalogue as it could be printed; a part that is repeated stands there once.
std::string exampleText(const FindingRow &row) {
  std::string_view format = row.format;
  Examples examples{beginningOf(row)};
  std::string text;
  while (!format.empty()) {
    const std::size_t end = format[0] == '%' ? format.find_first_of("dsx") + 1 : 1;
    if (format[0] == '%')
      text += exampleOf(examples, format.substr(0, end));
    else if (format[0] != '{' && format[0] != '}')
      text += format[0];
    format.remove_prefix(end);
  }
  return text;
}

} // namespace

Status listFindings(Colour colour) {
  constexpr std::size_t ID_WIDTH = 32, STAGE_WIDTH = 5, SEVERITY_WIDTH = 7;
  const Style style = styleOf(STDOUT_FILENO, colour);
  const auto padding = [](std::string_view text, std::size_t width) {
    return std::string(width - std::min(width, text.size()) + 2, ' ');
  };
  Output output;
  openOutput(output, "-");
  for (const FindingRow *const row : allRows())
    write(output, row->id + padding(row->id, ID_WIDTH) + stageName(*row) + padding(stageName(*row), STAGE_WIDTH) +
                      severityName(*row, style) + padding(severityName(*row, {}), SEVERITY_WIDTH) + row->meaning +
                      '\n');
  return finish(output) ? ALL_OK : FAILED;
}

Status explainFinding(const std::string &id, Colour colour) {
  const FindingRow *const row = rowOf(id.c_str());
  if (row == nullptr) {
    std::fprintf(stderr, "kbsurvey: there is no finding called %s. See kbsurvey --list-findings.\n",
                 printable(id).c_str());
    return FAILED;
  }
  Output output;
  openOutput(output, "-");
  write(output, std::string(row->id) + " (" + stageName(*row) + ", " +
                    severityName(*row, styleOf(STDOUT_FILENO, colour)) + ")\n\n");
  write(output, "Example:    " + oneLine(exampleText(*row)) + '\n');
  write(output, std::string("Meaning:    ") + row->meaning + '\n');
  write(output, std::string("Next step:  ") + row->next_step + '\n');
  return finish(output) ? ALL_OK : FAILED;
}

} // namespace kova::survey
