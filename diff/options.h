/// The command line.
#pragma once

#include "diff/print.h"
#include "diff/rules.h"

namespace kova::diff {

struct Options {
  std::string a = {};
  std::string b = {};
  Rules rules = {};
  Look look = Look::text;
  Colour colour = Colour::automatic;
  std::size_t jobs = 0; ///< 0: as many as there are processors
};

/// As those of diff.
enum Status { SAME, DIFFERENT, TROUBLE };

/// Reads the command line. @return the options; none after help, the version or an error was printed, with the exit
/// status in `status`.
std::optional<Options> readOptions(int argc, const char *const *argv, int &status);

} // namespace kova::diff
