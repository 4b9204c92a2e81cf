/// The command line.
#pragma once

#include "mend/mend.h"

#include <optional>
#include <string>

namespace kova::repair {

struct Options {
  std::string input = {};
  std::string output = {}; ///< may be empty if `dry_run` or `diagnose` is set, which write none
  mend::Asked asked = {};
  bool force = false;
  bool partial = false;
  bool dry_run = false;
  bool diagnose = false;
  bool json = false;

  bool toStandardOutput() const { return output == "-" && !dry_run; }
};

/// Equal to those of kbsurvey where they mean the same.
enum Status { AUDITS_OK, NOT_MENDED, UNREADABLE, FAILED };

/// Reads the command line. @return the options; none after help, the version or an error was printed, with the exit
/// status in `status`. Nothing is printed into INPUT: it may be a standard stream.
std::optional<Options> readOptions(int argc, const char *const *argv, int &status);

} // namespace kova::repair
