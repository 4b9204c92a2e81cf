#include "repair/options.h"

#include "common/arguments.h"
#include "common/file.h"
#include "common/terminal.h"
#include "common/text.h"
#include "kova/version.h"

#include <cstdio>
#include <unistd.h>

namespace kova::repair {

namespace {

constexpr HelpText HELP = {
    .usage = "Usage: kbrepair [OPTION]... INPUT OUTPUT\n"
             "       kbrepair --dry-run [OPTION]... INPUT [OUTPUT]\n"
             "       kbrepair --diagnose [--json] INPUT\n",
    .description =
        "Mends a damaged KOVA scene file: recomputes the sizes, counts, indices and tags that follow from the rest "
        "of the file. Prints every word that it changes. INPUT is never changed. OUTPUT - is standard output; then "
        "the words are printed on standard error.",
    .footer =
        "Exit status: 0: OUTPUT audits OK, or would; 1: the file cannot be mended; 2: INPUT cannot be read; 3: wrong usage, or "
        "an output that cannot be written."};

/// What the command line says beyond the options themselves.
struct Given {
  bool help = false;
  bool version = false;
};

std::vector<Option> optionsOf(Options &options, Given &given) {
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
      flagOption('V', "version", "Print the version", given.version),
      flagOption('h', "help", "Print this help", given.help),
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
  if (options.diagnose)
    return options.output.empty() ? "" : "--diagnose writes no OUTPUT";
  if (options.dry_run)
    return "";
  return paths.size() < 2 ? "OUTPUT is missing" : options.output.empty() ? "OUTPUT is empty" : "";
}

/// @return whether a standard stream is INPUT.
bool isInput(int stream, const std::vector<std::string> &paths) {
  const std::optional<Identity> file = fileAt(stream);
  return file && !paths.empty() && identityOf(paths[0]) == file;
}

/// @return why the paths cannot be taken, with a hint, for people; empty if they can.
std::string refusalOf(std::string wrong, const std::vector<std::string> &paths, Options &options) {
  if (wrong.empty())
    wrong = takePaths(paths, options);
  if (!wrong.empty())
    return wrong + ".\nTry 'kbrepair --help'.\n";
  return isInput(STDOUT_FILENO, paths) ? "standard output is the same file as INPUT, which is never changed.\n" : "";
}

} // namespace

std::optional<Options> readOptions(int argc, const char *const *argv, int &status) {
  Options options;
  Given given;
  std::vector<std::string> paths;
  const std::vector<Option> known = optionsOf(options, given);
  const std::span<const char *const> arguments(argv, static_cast<std::size_t>(argc < 1 ? 1 : argc));
  std::string wrong = readArguments(arguments.subspan(1), known, paths);
  if (wrong.empty() && (given.help || given.version)) {
    status = AUDITS_OK;
    std::fputs(given.help ? helpText(HELP, known, widthOf(STDOUT_FILENO)).c_str() : "kbrepair " KOVA_VERSION "\n",
               stdout);
    return std::nullopt;
  }
  status = FAILED;
  if (isInput(STDERR_FILENO, paths)) // no message can be shown
    return std::nullopt;
  wrong = refusalOf(std::move(wrong), paths, options);
  if (wrong.empty())
    return options;
  std::fprintf(stderr, "kbrepair: %s", wrong.c_str());
  return std::nullopt;
}

} // namespace kova::repair
