#include "repair/options.h"

#include "common/text.h"
#include "kova/version.h"

#include <CLI/CLI.hpp>
#include <cstdio>

namespace kova::repair {

namespace {

constexpr const char *DESCRIPTION =
    "Mends a damaged KOVA scene file: recomputes the sizes, counts, indices and tags that follow from\n"
    "the rest of the file. Prints every word that it changes. INPUT is never changed.";

constexpr const char *FOOTER =
    "Exit status: 0: OUTPUT audits OK; 1: the file cannot be mended; 2: INPUT cannot be read; 3: wrong\n"
    "usage, or an output that cannot be written.";

void declare(CLI::App &app, Options &options) {
  app.set_version_flag("--version", std::string("kbrepair ") + KOVA_VERSION, "Print the version");
  app.set_help_flag("-h,--help", "Print this help");
  app.add_option("INPUT", options.input, "The file to mend")->type_name("")->required();
  app.add_option("OUTPUT", options.output, "The mended file; may be absent with --dry-run")->type_name("");
  app.add_flag("--salvage", options.asked.salvage, "Of a file that was cut, keep what is whole");
  app.add_option("--part", options.asked.part, "Of several scenes in one file, take this one, from 1")
      ->type_name("N")
      ->check(CLI::Range(1, 1'000'000));
  app.add_flag("--force", options.force, "Replace OUTPUT if it exists");
  app.add_flag("--partial", options.partial, "Write OUTPUT also if it does not audit OK");
  app.add_flag("--dry-run", options.dry_run, "Write nothing; only print what would be changed");
  app.add_flag("--json", options.json, "Print JSON, an object for each line");
}

int refuse(const std::string &message) {
  std::fprintf(stderr, "kbrepair: %s.\nTry 'kbrepair --help'.\n", message.c_str());
  return FAILED;
}

} // namespace

std::optional<Options> readOptions(int argc, const char *const *argv, int &status) {
  Options options;
  CLI::App app(DESCRIPTION, "kbrepair");
  app.footer(FOOTER);
  try {
    declare(app, options);
    app.parse(argc, argv);
  } catch (const CLI::ParseError &error) {
    const bool asked = error.get_exit_code() == 0; // help or version
    status = asked ? app.exit(error) : refuse(printable(error.what()));
    return std::nullopt;
  }
  if (options.output.empty() && !options.dry_run) {
    status = refuse("OUTPUT is missing");
    return std::nullopt;
  }
  return options;
}

} // namespace kova::repair
