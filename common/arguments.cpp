#include "common/arguments.h"

#include "common/file.h"
#include "common/terminal.h"
#include "common/text.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <unistd.h>
#include <utility>

namespace kova {

namespace {

// --- What was meant -------------------------------------------------------------------------------------------------

/// @return the number of letters that are to be put in, left out or exchanged to make one text of the other.
std::size_t distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t i = 0; i <= b.size(); ++i)
    row[i] = i;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t before = row[0]++; // of the row above, to the left
    for (std::size_t j = 1; j <= b.size(); ++j)
      before = std::exchange(row[j], std::min({row[j] + 1, row[j - 1] + 1, before + (a[i - 1] != b[j - 1])}));
  }
  return row[b.size()];
}

/// @return the option whose name is like a wrong one, or begins with it; null if there is none.
const Option *nearest(std::string_view name, std::span<const Option> options) {
  const auto far = [&](const Option &option) {
    return std::string_view(option.name).starts_with(name) ? 0 : distance(name, option.name);
  };
  if (name.empty() || options.empty())
    return nullptr;
  const auto at = std::min_element(options.begin(), options.end(),
                                   [&](const Option &a, const Option &b) { return far(a) < far(b); });
  const std::size_t most = name.size() <= 3 ? 1 : std::max<std::size_t>(2, name.size() / 3); // two: letters exchanged
  return far(*at) <= most ? &*at : nullptr;
}

std::string unknownName(std::string_view name, std::span<const Option> options) {
  const std::string wrong = "there is no option --" + printable(name);
  const Option *const meant = nearest(name, options);
  return meant == nullptr ? wrong : wrong + "; --" + meant->name + " is the nearest";
}

// --- Reading --------------------------------------------------------------------------------------------------------

struct Reading {
  std::span<const char *const> arguments; ///< that are not read yet
  std::span<const Option> options;
  std::vector<bool> given; ///< of each option
};

/// Takes an option. @param shown as it was given, for messages
std::string takeOption(Reading &reading, const Option &option, const std::string &shown, const std::string &value) {
  const auto number = static_cast<std::size_t>(&option - reading.options.data());
  if (reading.given[number] && option.value != nullptr && !option.repeatable)
    return shown + " is given twice";
  reading.given[number] = true;
  const std::string wrong = option.take(value);
  return wrong.empty() ? "" : shown + " " + wrong;
}

/// Takes an option whose value is the next argument.
std::string takeWithNext(Reading &reading, const Option &option, const std::string &shown) {
  if (reading.arguments.empty())
    return shown + " needs " + option.value;
  const std::string value = reading.arguments.front();
  reading.arguments = reading.arguments.subspan(1);
  return takeOption(reading, option, shown, value);
}

/// @param argument without its hyphens
std::string readLong(Reading &reading, std::string_view argument) {
  const std::size_t equals = argument.find('=');
  const std::string_view name = argument.substr(0, equals);
  const auto option = std::find_if(reading.options.begin(), reading.options.end(),
                                   [&](const Option &known) { return name == known.name; });
  if (option == reading.options.end())
    return unknownName(name, reading.options);
  const std::string shown = std::string("--") + option->name;
  if (option->value == nullptr)
    return equals == argument.npos ? takeOption(reading, *option, shown, "") : shown + " takes no value";
  if (equals == argument.npos)
    return takeWithNext(reading, *option, shown);
  return takeOption(reading, *option, shown, std::string(argument.substr(equals + 1)));
}

/// @param argument without its hyphen
std::string readShort(Reading &reading, std::string_view argument) {
  for (; !argument.empty(); argument.remove_prefix(1)) {
    const auto option = std::find_if(reading.options.begin(), reading.options.end(),
                                     [&](const Option &known) { return argument[0] == known.letter; });
    const std::string shown = '-' + printable(argument.substr(0, 1));
    if (option == reading.options.end())
      return "there is no option " + shown;
    if (option->value != nullptr)
      return argument.size() == 1 ? takeWithNext(reading, *option, shown)
                                  : takeOption(reading, *option, shown, std::string(argument.substr(1)));
    if (std::string wrong = takeOption(reading, *option, shown, ""); !wrong.empty())
      return wrong;
  }
  return "";
}

// --- Help -----------------------------------------------------------------------------------------------------------

/// Appends words, from the column where the text is, in lines of `width` that begin at `indent`.
void appendWords(std::string &text, std::string_view words, std::size_t column, std::size_t indent, std::size_t width) {
  bool first = true;
  while (!words.empty()) {
    const std::string_view word = words.substr(0, words.find_first_of(" \n"));
    words.remove_prefix(std::min(words.size(), word.size() + 1));
    if (!first && column + 1 + word.size() > width) {
      text += '\n' + std::string(indent, ' ');
      column = indent;
      first = true;
    }
    text += first ? "" : " ";
    text += word;
    column += word.size() + (first ? 0 : 1);
    first = false;
  }
  text += '\n';
}

std::string leftSide(const Option &option) {
  std::string left = option.letter != 0 ? std::string("  -") + option.letter + ", --" : std::string("      --");
  left += option.name;
  return option.value != nullptr ? left + ' ' + option.value : left;
}

} // namespace

Option flagOption(char letter, const char *name, const char *help, bool &flag) {
  return {letter, name, nullptr, help, [&flag](const std::string &) {
            flag = true;
            return std::string();
          }};
}

Option textOption(char letter, const char *name, const char *value, const char *help, std::string &text) {
  return {letter, name, value, help, [&text, value](const std::string &given) {
            text = given;
            return given.empty() ? std::string("needs ") + value : std::string();
          }};
}

Option numberOption(char letter, const char *name, const char *value, const char *help, std::size_t &number,
                    std::size_t most) {
  return {letter, name, value, help, [&number, most](const std::string &given) {
            const char *const end = given.data() + given.size();
            const auto [behind, error] = std::from_chars(given.data(), end, number);
            const bool ok = behind == end && error == std::errc() && number >= 1 && number <= most;
            return ok ? std::string() : "needs a number from 1 to " + std::to_string(most);
          }};
}

std::string readArguments(std::span<const char *const> arguments, std::span<const Option> options,
                          std::vector<std::string> &others) {
  Reading reading{arguments, options, std::vector<bool>(options.size())};
  bool options_end = false;
  while (!reading.arguments.empty()) {
    const std::string_view argument = reading.arguments.front();
    reading.arguments = reading.arguments.subspan(1);
    std::string wrong;
    if (options_end || argument.size() < 2 || argument[0] != '-')
      others.emplace_back(argument);
    else if (argument == "--")
      options_end = true;
    else
      wrong = argument[1] == '-' ? readLong(reading, argument.substr(2)) : readShort(reading, argument.substr(1));
    if (!wrong.empty())
      return wrong;
  }
  return "";
}

std::string helpText(const HelpText &text, std::span<const Option> options, std::size_t width) {
  std::size_t column = 0;
  for (const Option &option : options)
    column = std::max(column, leftSide(option).size() + 2);
  std::string help = text.usage;
  help += '\n';
  appendWords(help, text.description, 0, 0, width);
  help += "\nOptions:\n";
  for (const Option &option : options) {
    std::string left = leftSide(option);
    left.resize(column, ' ');
    help += left;
    appendWords(help, option.help, column, column, width);
  }
  help += '\n';
  appendWords(help, text.footer, 0, 0, width);
  return help;
}

void tellWrongUsage(const char *program, const std::string &wrong, std::span<const char *const> arguments) {
  const std::optional<Identity> told = fileAt(STDERR_FILENO);
  const bool is_named = told && std::any_of(arguments.begin(), arguments.end(),
                                            [&](const char *name) { return identityOf(std::string(name)) == told; });
  if (!is_named)
    std::fprintf(stderr, "%s: %s.\nTry '%s --help'.\n", program, wrong.c_str(), program);
}

std::optional<int> readCommandLine(const Program &program, std::vector<Option> options,
                                   std::span<const char *const> arguments,
                                   const std::function<std::string(const std::vector<std::string> &)> &take) {
  bool help = false, version = false;
  std::vector<std::string> others;
  options.push_back(flagOption('V', "version", "Print the version", version));
  options.push_back(flagOption('h', "help", "Print this help", help));
  std::string wrong = readArguments(arguments, options, others);
  if (wrong.empty() && (help || version)) {
    std::fputs(help ? helpText(program.help, options, widthOf(STDOUT_FILENO)).c_str()
                    : (std::string(program.name) + ' ' + program.version + '\n').c_str(),
               stdout);
    return 0;
  }
  if (wrong.empty())
    wrong = take(others);
  if (wrong.empty())
    return std::nullopt;
  tellWrongUsage(program.name, wrong, arguments);
  return WRONG_USAGE;
}

} // namespace kova
