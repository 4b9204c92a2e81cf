#include "survey/options.h"

#include "common/text.h"
#include "kova/version.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <thread>

namespace kova::survey {

namespace {

constexpr const char *DESCRIPTION =
    "Audits KOVA scene files: every file named and, in folders, every *.kb. Prints a line for each\n"
    "file that is not OK, and a summary.";

constexpr const char *FOOTER =
    "Exit status: 0: all files are OK; 1: some are ERR; 2: some have no verdict, or no file was found;\n"
    "3: wrong usage, or an output that could not be written. If several apply, it is the highest.";

/// What the command line says beyond the options themselves.
struct Given {
  std::string shard;
  bool merge = false;
  bool list_findings = false;
};

/// For all options that are empty where they are not given.
const CLI::Validator NOT_EMPTY([](const std::string &value) { return std::string(value.empty() ? "is empty" : ""); },
                               "");

/// @param arguments the number of arguments, at least 1
void declare(CLI::App &app, int arguments, Options &options, Given &given) {
  app.set_version_flag("--version", std::string("kbsurvey ") + KOVA_VERSION, "Print the version");
  app.set_help_flag("-h,--help", "Print this help");
  // Where extra arguments are allowed, CLI11 takes a path like "[a,b]" for a list. So none are: all can be paths.
  app.add_option("PATH", options.paths, "Files and folders; with --merge, reports")
      ->type_name("")
      ->check(NOT_EMPTY)
      ->expected(arguments, CLI::detail::expected_max_vector_size)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
      ->allow_extra_args(false);
  app.add_option("-j,--jobs", options.workers, "Number of files audited at a time (default: the processors)")
      ->type_name("N")
      ->check(CLI::Range(1U, 4096U).description(""));
  app.add_option("--name", options.names, "In folders, take files of this name instead of *.kb; may be repeated")
      ->type_name("GLOB")
      ->check(NOT_EMPTY)
      ->allow_extra_args(false);
  app.add_option("--files-from", options.files_from,
                 "Read more paths from FILE (- for standard input), separated by NUL or line breaks")
      ->type_name("FILE")
      ->check(NOT_EMPTY);
  app.add_flag("--deep", options.asked.deep, "Also check what the verdict does not look at; gives warnings");
  app.add_flag("--repairable", options.asked.repairable, "Tell of each bad file whether kbrepair could mend it");
  app.add_flag("-q,--quiet", options.quiet, "No progress line");
  app.add_flag("-0,--print0", options.print0, "Print only the paths of files that are not OK, a NUL behind each");
  app.add_option("--json", options.json, "Write a JSON report, a line for each file (- for standard output)")
      ->type_name("FILE")
      ->check(NOT_EMPTY);
  app.add_option("--junit", options.junit, "Write a JUnit report")->type_name("FILE")->check(NOT_EMPTY);
  app.add_option("--html", options.html, "Write a page to look at")->type_name("FILE")->check(NOT_EMPTY);
  app.add_option("--resume", options.resume, "Take over what this JSON report says of files that have not changed")
      ->type_name("FILE")
      ->check(NOT_EMPTY);
  app.add_option("--shard", given.shard, "Audit only the I-th of N parts of the files")
      ->type_name("I/N")
      ->check(NOT_EMPTY);
  app.add_flag("--merge", given.merge, "Make one report of several JSON reports; audit nothing");
  app.add_flag("--list-findings", given.list_findings, "List all kinds of findings");
  app.add_option("--explain", options.explained, "Explain a kind of finding")->type_name("ID")->check(NOT_EMPTY);
}

/// @return what is wrong with the options, for people; empty if nothing is.
std::string contradiction(const Options &options, const Given &given) {
  const bool explain = !options.explained.empty();
  if (given.merge + given.list_findings + explain > 1)
    return "--merge, --list-findings and --explain exclude one another";
  if (given.list_findings || explain)
    return "";
  if (options.paths.empty() && options.files_from.empty())
    return given.merge ? "no report to merge" : "no file or folder to audit";
  if (given.merge && !(options.files_from.empty() && options.resume.empty() && given.shard.empty() &&
                       options.names.empty() && !options.asked.deep && !options.asked.repairable))
    return "--merge audits nothing: --files-from, --name, --shard, --deep, --repairable and --resume do not go with it";
  const auto on_output = [](const std::string &path) { return path == "-" ? 1 : 0; };
  if (on_output(options.json) + on_output(options.junit) + on_output(options.html) + options.print0 > 1)
    return "standard output takes one report, or the paths of --print0";
  if (!given.shard.empty() && !parseShard(given.shard))
    return "--shard needs I/N with I from 1 to N";
  return "";
}

int refuse(const std::string &message) {
  std::fprintf(stderr, "kbsurvey: %s.\nTry 'kbsurvey --help'.\n", message.c_str());
  return FAILED;
}

} // namespace

std::optional<Options> readOptions(int argc, const char *const *argv, int &status) {
  Options options;
  options.command.assign(argv + std::min(argc, 1), argv + argc);
  options.workers = std::max(1U, std::thread::hardware_concurrency());
  Given given;
  CLI::App app(DESCRIPTION, "kbsurvey");
  app.footer(FOOTER);
  try {
    declare(app, std::max(1, argc - 1), options, given);
    app.parse(argc, argv);
  } catch (const CLI::ParseError &error) {
    const bool asked = error.get_exit_code() == 0; // help or version
    status = asked ? app.exit(error) : refuse(printable(error.what()));
    if (!std::cout.flush()) {
      std::fprintf(stderr, "kbsurvey: standard output cannot be written: %s.\n", std::strerror(errno));
      status = FAILED;
    }
    return std::nullopt;
  }
  const std::string wrong = contradiction(options, given);
  if (!wrong.empty()) {
    status = refuse(wrong);
    return std::nullopt;
  }
  if (!given.shard.empty())
    options.shard = *parseShard(given.shard);
  options.task = given.merge                  ? Task::merge
                 : given.list_findings        ? Task::list_findings
                 : !options.explained.empty() ? Task::explain
                                              : Task::survey;
  return options;
}

} // namespace kova::survey
