/// The command line.
#pragma once

#include "json/scene.h"

#include <optional>
#include <string>

namespace kova::json {

struct Options {
  std::string input = {};
  std::string output = {}; ///< "-" for standard output
  Shape shape = {};
  bool to_kb = false;
  bool force = false;
};

/// Equal to those of kbsurvey and kbrepair where they mean the same.
enum Status { DONE, WRONG_DOCUMENT, UNREADABLE, FAILED };

/// Reads the command line. @return the options; none after help, the version or an error was printed, with the exit
/// status in `status`.
std::optional<Options> readOptions(int argc, const char *const *argv, int &status);

} // namespace kova::json
