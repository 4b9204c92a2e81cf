/// The command line of a program: a table of options, and what is read and printed by it.
#pragma once

#include <functional>
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

} // namespace kova
