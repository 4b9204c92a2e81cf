#include "survey/report_paths.h"

#include "common/text.h"

#include <algorithm>
#include <unistd.h>

namespace kova::survey {

namespace {

/// A path that was given, and what is there.
struct Given {
  std::string path;
  std::optional<struct stat> status = {}; ///< none if there is nothing yet
  std::string target = {};                ///< then, the file that will be made
  bool is_list = false;                   ///< of paths, which no report replaces
};

Given givenOf(const std::string &path) {
  struct stat status;
  if (::stat(path.c_str(), &status) == 0)
    return {.path = path, .status = status};
  return {.path = path, .target = targetOf(path)};
}

/// Whatever is written to a device, such as /dev/null, does not get in the way of anything.
bool isDevice(const Given &given) {
  return given.status && (S_ISCHR(given.status->st_mode) || S_ISBLK(given.status->st_mode));
}

bool isSame(const Given &a, const Given &b) {
  if (isDevice(a) || a.status.has_value() != b.status.has_value())
    return false;
  return a.status ? identityOf(*a.status) == identityOf(*b.status) : a.target == b.target;
}

/// @return a standard stream, if it can be written to by a path of its own.
std::optional<Given> givenOf(int stream) {
  constexpr const char *NAMES[] = {"standard input", "standard output", "standard error"};
  struct stat status;
  if (::fstat(stream, &status) != 0 || !(S_ISREG(status.st_mode) || S_ISFIFO(status.st_mode)))
    return std::nullopt;
  return Given{.path = NAMES[stream], .status = status};
}

/// What is read besides the files to audit.
std::vector<Given> readPaths(const Options &options) {
  std::vector<Given> read;
  const auto add = [&](const std::string &path) {
    if (path == "-") {
      if (const std::optional<Given> input = givenOf(STDIN_FILENO))
        read.push_back(*input);
    } else if (!path.empty()) {
      read.push_back(givenOf(path));
    }
  };
  add(options.files_from);
  for (Given &list : read)
    list.is_list = true;
  add(options.resume);
  add(options.baseline);
  if (options.task == Task::merge)
    std::for_each(options.paths.begin(), options.paths.end(), add);
  return read;
}

std::string sameFile(const Given &a, const Given &b, const char *what) {
  return printable(a.path) + " is the same file as " + printable(b.path) + ", which " + what;
}

/// @param json whether it is the JSON report, which may take the place of one that it is made of
std::string clashWithRead(const Options &options, const Given &report, bool json) {
  for (const Given &read : readPaths(options))
    if (isSame(report, read) && !(json && !read.is_list))
      return sameFile(report, read, "is read");
  return "";
}

std::string clashWithInputs(const Given &report, const std::vector<Input> &inputs) {
  if (report.status && S_ISREG(report.status->st_mode))
    for (const Input &input : inputs)
      if (input.identity == identityOf(*report.status))
        return printable(report.path) + " is one of the files to audit (" + printable(input.path) + ")";
  return "";
}

/// @param json as above
std::string clashWith(const Options &options, const std::vector<Input> &inputs, const Given &written, bool json) {
  const std::string clash = clashWithRead(options, written, json);
  return clash.empty() ? clashWithInputs(written, inputs) : clash;
}

} // namespace

bool canTell(const Options &options, const std::vector<Input> &inputs) {
  const std::optional<Given> error = givenOf(STDERR_FILENO);
  return !error || clashWith(options, inputs, *error, false).empty();
}

std::string clashOfReports(const Options &options, const std::vector<Input> &inputs) {
  std::vector<Given> written;
  if (const std::optional<Given> output = givenOf(STDOUT_FILENO)) {
    if (std::string clash = clashWith(options, inputs, *output, false); !clash.empty())
      return clash;
    written.push_back(*output);
  }
  for (const std::string *const path : {&options.json, &options.junit, &options.html}) {
    if (path->empty() || *path == "-")
      continue;
    const Given report = givenOf(*path);
    for (const Given &other : written)
      if (isSame(report, other))
        return sameFile(report, other, "takes one report");
    if (std::string clash = clashWith(options, inputs, report, path == &options.json); !clash.empty())
      return clash;
    written.push_back(report);
  }
  return "";
}

} // namespace kova::survey
