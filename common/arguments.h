/// The command line of a program: a table of options, and what is read and printed by it.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kova {

/// An option.
struct Option {
  char letter;       ///< of the short form; 0 if there is none
  const char *name;  ///< of the long form, without hyphens
  const char *value; ///< what it needs, such as "FILE"; null for a flag
  const char *help;  ///< a sentence without its point
  /// Takes the option, with its value. @return what is wrong, for people, behind the name of the option; empty if
  /// nothing is.
  std::function<std::string(const std::string &value)> take;
  bool repeatable = false; ///< whether it may be given again; a flag always may
};

/// @return an option that sets a flag.
Option flagOption(char letter, const char *name, const char *help, bool &flag);

/// @return an option whose value is a text that is not empty.
Option textOption(char letter, const char *name, const char *value, const char *help, std::string &text);

/// @return an option whose value is a number from 1 to `most`.
Option numberOption(char letter, const char *name, const char *value, const char *help, std::size_t &number,
                    std::size_t most);

/// Reads the arguments of a program, without its name: "--name VALUE", "--name=VALUE", "-n VALUE", "-nVALUE", and flags
/// of one letter in one argument. Behind "--" there are no options.
/// @param others all other arguments, in their order
/// @return what is wrong with the first option that is, for people; empty if nothing is
std::string readArguments(std::span<const char *const> arguments, std::span<const Option> options,
                          std::vector<std::string> &others);

/// What the help has besides the options.
struct HelpText {
  const char *usage;       ///< lines
  const char *description; ///< a paragraph
  const char *footer;      ///< a paragraph
};

/// @return the help, in lines of at most `width` characters if the words allow it.
std::string helpText(const HelpText &text, std::span<const Option> options, std::size_t width);

/// A program, as its command line tells of it.
struct Program {
  const char *name;
  const char *version;
  HelpText help;
};

inline constexpr int WRONG_USAGE = 3;

/// Prints what is wrong with a command line on standard error, unless that is one of the files that the arguments name:
/// it may be an input.
void tellWrongUsage(const char *program, const std::string &wrong, std::span<const char *const> arguments);

/// Reads the command line of a program. Adds --version and --help to its options, and answers them. Tells what is
/// wrong.
/// @param take takes the arguments that are no options, when all options are read. @return what is wrong, for people;
/// empty if nothing is
/// @return the exit status if there is nothing more to do: 0, or `WRONG_USAGE`
std::optional<int> readCommandLine(const Program &program, std::vector<Option> options,
                                   std::span<const char *const> arguments,
                                   const std::function<std::string(const std::vector<std::string> &)> &take);

/// @return the arguments of `main`, without the name of the program.
inline std::span<const char *const> argumentsOf(int argc, const char *const *argv) {
  return {argv + (argc > 0 ? 1 : 0), static_cast<std::size_t>(argc > 0 ? argc - 1 : 0)};
}

} // namespace kova
