#include "survey/options.h"

#include "common/arguments.h"
#include "common/text.h"
#include "kova/version.h"
#include "survey/output.h"

#include <algorithm>
#include <thread>
#include <unistd.h>

namespace kova::survey {

namespace {

constexpr HelpText HELP = {
    .usage = "Usage: kbsurvey [OPTION]... PATH...\n"
             "       kbsurvey --merge [OPTION]... REPORT...\n"
             "       kbsurvey --list-findings\n"
             "       kbsurvey --explain ID\n",
    .description =
        "Audits KOVA scene files: every file named and, in folders, every *.kb. Prints a line for each file that "
        "is not OK, and a summary.",
    .footer =
        "Exit status: 0: all files are OK; 1: some are ERR; 2: some have no verdict, or no file was found; 3: wrong "
        "usage, or an output that could not be written. If several apply, it is the highest."};

/// What the command line says beyond the options themselves.
struct Given {
  std::string shard;
  bool merge = false;
  bool list_findings = false;
  bool help = false;
  bool version = false;
};

std::string takeColour(const std::string &value, Colour &colour) {
  constexpr const char *NAMES[] = {"auto", "always", "never"};
  const auto at = std::find(std::begin(NAMES), std::end(NAMES), value);
  colour = static_cast<Colour>(at - std::begin(NAMES));
  return at != std::end(NAMES) ? "" : "needs auto, always or never";
}

std::vector<Option> optionsOf(Options &options, Given &given) {
  return {
      numberOption('j', "jobs", "N", "Number of files audited at a time (default: the processors)", options.workers,
                   4096),
      {0, "name", "GLOB", "In folders, take files of this name instead of *.kb; may be repeated",
       [&](const std::string &value) {
         options.names.push_back(value);
         return std::string(value.empty() ? "needs GLOB" : "");
       },
       true},
      textOption(0, "files-from", "FILE",
                 "Read more paths from FILE (- for standard input), separated by NUL or line breaks",
                 options.files_from),
      flagOption(0, "deep", "Also check what the verdict does not look at; gives warnings", options.asked.deep),
      flagOption(0, "repairable", "Tell of each bad file whether kbrepair could mend it", options.asked.repairable),
      flagOption('q', "quiet", "No progress line", options.quiet),
      flagOption('0', "print0", "Print only the paths of files that are not OK, a NUL behind each", options.print0),
      {0, "color", "WHEN", "Colour: auto (on a terminal), always or never",
       [&](const std::string &value) { return takeColour(value, options.colour); }},
      textOption(0, "json", "FILE", "Write a JSON report, a line for each file (- for standard output)", options.json),
      textOption(0, "junit", "FILE", "Write a JUnit report", options.junit),
      textOption(0, "html", "FILE", "Write a page to look at", options.html),
      textOption(0, "resume", "FILE", "Take over what this JSON report says of files that have not changed",
                 options.resume),
      textOption(0, "baseline", "FILE",
                 "Compare with this earlier JSON report: tell and fail only what has changed since", options.baseline),
      textOption(0, "shard", "I/N", "Audit only the I-th of N parts of the files", given.shard),
      flagOption(0, "merge", "Make one report of several JSON reports; audit nothing", given.merge),
      flagOption(0, "list-findings", "List all kinds of findings", given.list_findings),
      textOption(0, "explain", "ID", "Explain a kind of finding", options.explained),
      flagOption('V', "version", "Print the version", given.version),
      flagOption('h', "help", "Print this help", given.help),
  };
}

/// @return what is wrong with the options, for people; empty if nothing is.
std::string contradiction(const Options &options, const Given &given) {
  const bool explain = !options.explained.empty();
  if (given.merge + given.list_findings + explain > 1)
    return "--merge, --list-findings and --explain exclude one another";
  if (given.list_findings || explain)
    return options.paths.empty() ? "" : printable(options.paths[0]) + " is one argument too many";
  if (given.merge && !(options.files_from.empty() && options.resume.empty() && given.shard.empty() &&
                       options.names.empty() && !options.asked.deep && !options.asked.repairable))
    return "--merge audits nothing: --files-from, --name, --shard, --deep, --repairable and --resume do not go with it";
  const auto on_output = [](const std::string &path) { return path == "-" ? 1 : 0; };
  if (on_output(options.json) + on_output(options.junit) + on_output(options.html) + options.print0 > 1)
    return "standard output takes one report, or the paths of --print0";
  if (!given.shard.empty() && !parseShard(given.shard))
    return "--shard needs I/N with I from 1 to N";
  if (std::find(options.paths.begin(), options.paths.end(), "") != options.paths.end())
    return "a path is empty";
  // What is missing comes last: it may be missing because of something else.
  if (options.paths.empty() && options.files_from.empty())
    return given.merge ? "no report to merge" : "no file or folder to audit";
  return "";
}

Status print(const std::string &text) {
  Output output;
  openOutput(output, "-");
  write(output, text);
  return finish(output) ? ALL_OK : FAILED;
}

Task taskOf(const Options &options, const Given &given) {
  return given.merge                  ? Task::merge
         : given.list_findings        ? Task::list_findings
         : !options.explained.empty() ? Task::explain
                                      : Task::survey;
}

} // namespace

std::optional<Options> readOptions(int argc, const char *const *argv, int &status) {
  Options options;
  options.command.assign(argv + std::min(argc, 1), argv + argc);
  options.workers = std::max<std::size_t>(1, std::thread::hardware_concurrency());
  Given given;
  const std::vector<Option> known = optionsOf(options, given);
  std::string wrong = readArguments(argumentsOf(argc, argv), known, options.paths);
  if (wrong.empty() && (given.help || given.version)) {
    status = print(given.help ? helpText(HELP, known, widthOf(STDOUT_FILENO))
                              : "kbsurvey " + std::string(KOVA_VERSION) + '\n');
    return std::nullopt;
  }
  if (wrong.empty())
    wrong = contradiction(options, given);
  if (!wrong.empty()) {
    tellWrongUsage("kbsurvey", wrong, argumentsOf(argc, argv));
    status = FAILED;
    return std::nullopt;
  }
  if (!given.shard.empty())
    options.shard = *parseShard(given.shard);
  options.task = taskOf(options, given);
  return options;
}

} // namespace kova::survey
