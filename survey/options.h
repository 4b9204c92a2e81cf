/// The command line.
#pragma once

#include "common/terminal.h"
#include "survey/walk.h"

namespace kova::survey {

enum class Task { survey, merge, list_findings, explain };

struct Options {
  Task task = Task::survey;
  std::vector<std::string> command = {}; ///< what was given, behind the name of the program
  std::vector<std::string> paths = {};   ///< files and folders, or the reports to merge
  std::vector<std::string> names = {};
  std::string files_from = {};
  std::size_t workers = 1;
  Questions asked = {};
  bool quiet = false;
  bool print0 = false;
  Colour colour = Colour::automatic;
  std::string json = {};
  std::string junit = {};
  std::string html = {};
  std::string resume = {};
  std::string baseline = {};
  Shard shard = {};
  std::string explained = {}; ///< the id of a finding
};

enum Status { ALL_OK, SOME_ERR, SOME_WITHOUT_VERDICT, FAILED };

/// Reads the command line. @return the options; none after help, the version or an error was printed, with the exit
/// status in `status`.
std::optional<Options> readOptions(int argc, const char *const *argv, int &status);

} // namespace kova::survey
