#include "repair/options.h"

#include "common/arguments.h"
#include "common/file.h"
#include "common/text.h"
#include "kova/version.h"

#include <cstdio>
#include <unistd.h>

namespace kova::repair {

namespace {

constexpr Program PROGRAM = {
    "kbrepair",
    KOVA_VERSION,
    {.usage = "Usage: kbrepair [OPTION]... INPUT OUTPUT\n"
              "       kbrepair --dry-run [OPTION]... INPUT [OUTPUT]\n"
              "       kbrepair --diagnose [--json] INPUT\n",
     .description =
         "Mends a damaged KOVA scene file: recomputes the sizes, counts, indices and tags that follow from the rest "
         "of the file. Prints every word that it changes. INPUT is never changed. OUTPUT - is standard output; then "
         "the words are printed on standard error.",
     .footer =
         "Exit status: 0: OUTPUT audits OK, or would; 1: the file cannot be mended; 2: INPUT cannot be read; 3: wrong usage, or "
         "an output that cannot be written."}};

std::vector<Option> optionsOf(Options &options) {
  return {
      flagOption(0, "salvage", "Of a file that was cut, keep what is whole", options.asked.salvage),
      flagOption(0, "drop", "With --salvage: leave out the elements that lie in a hole, instead of emptying them",
                 options.asked.drop),
      numberOption(0, "part", "N", "Of several scenes in one file, take this one, from 1", options.asked.part,
                   1'000'000),
      numberOption(0, "reading", "N", "If there are two readings, take this one, 1 or 2", options.asked.reading, 2),
      flagOption('f', "force", "Replace OUTPUT if it exists", options.force),
      flagOption(0, "partial", "Write OUTPUT also if it does not audit OK", options.partial),
      flagOption('n', "dry-run", "Write nothing; only print what would be changed", options.dry_run),
      flagOption(0, "diagnose", "Write nothing; say what seems to have happened to INPUT, where, and what can be done",
                 options.diagnose),
      flagOption(0, "json", "Print JSON, an object for each line", options.json),
  };
}

/// Takes INPUT and OUTPUT. @return what is wrong, for people; empty if nothing is
std::string takePaths(const std::vector<std::string> &paths, Options &options) {
  if (paths.size() > 2)
    return printable(paths[2]) + " is one argument too many";
  options.input = paths.empty() ? "" : paths[0];
  options.output = paths.size() == 2 ? paths[1] : "";
  if (paths.empty())
    return "INPUT is missing";
  if (options.asked.drop && !options.asked.salvage)
    return "--drop goes with --salvage";
  if (options.diagnose)
    return options.output.empty() ? "" : "--diagnose writes no OUTPUT";
  if (options.dry_run)
    return "";
  return paths.size() < 2 ? "OUTPUT is missing" : options.output.empty() ? "OUTPUT is empty" : "";
}

} // namespace

std::optional<Options> readOptions(int argc, const char *const *argv, int &status) {
  Options options;
  const std::optional<int> ended =
      readCommandLine(PROGRAM, optionsOf(options), argumentsOf(argc, argv),
                      [&](const std::vector<std::string> &paths) { return takePaths(paths, options); });
  status = ended.value_or(FAILED);
  if (ended || isOneOf(STDERR_FILENO, {options.input})) // of the latter nothing can be shown
    return std::nullopt;
  if (!isOneOf(STDOUT_FILENO, {options.input}))
    return options;
  std::fputs("kbrepair: standard output is the same file as INPUT, which is never changed.\n", stderr);
  return std::nullopt;
}

} // namespace kova::repair
