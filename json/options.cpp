#include "json/options.h"

#include "common/arguments.h"
#include "common/text.h"
#include "kova/version.h"

namespace kova::json {

namespace {

constexpr Program PROGRAM = {
    "kbjson",
    KOVA_VERSION,
    {.usage = "Usage: kbjson [OPTION]... SCENE.kb [OUT.json]\n"
              "       kbjson --to-kb [OPTION]... IN.json OUT.kb\n",
     .description =
         "Prints a KOVA scene file as a JSON document, and writes the file that such a document is about. Every file "
         "comes back byte for byte, also a damaged one. The input is never changed. - is a standard stream.",
     .footer =
         "Exit status: 0: done; 1: the document is wrong; 2: the input cannot be read; 3: wrong usage, or an output that "
         "cannot be written."}};

/// What the command line says beyond the options themselves.
struct Given {
  bool lines = false;
  bool pretty = false;
};

/// Takes the names of lists. @return what is wrong, for people; empty if nothing is
std::string takeLists(const std::string &names, std::bitset<LIST_NUM> &lists) {
  for (std::size_t at = 0; at <= names.size();) {
    const std::size_t end = std::min(names.find(',', at), names.size());
    const std::string name = names.substr(at, end - at);
    std::size_t list = 0;
    while (list < LIST_NUM && name != LISTS[list].name)
      ++list;
    if (list == LIST_NUM)
      return "knows no list " + printable(name) + "; they are SceneList, ObjList and so on";
    lists.set(list);
    at = end + 1;
  }
  return "";
}

std::vector<Option> optionsOf(Options &options, Given &given) {
  return {
      flagOption(0, "to-kb", "Write the file that the document IN.json is about", options.to_kb),
      flagOption('l', "lean", "Leave out the words that follow from others and are right", options.shape.lean),
      {0, "only", "LIST[,LIST]", "Print these lists alone, such as ObjList,MatList",
       [&options](const std::string &names) { return takeLists(names, options.shape.only); }, true},
      flagOption(0, "lines", "Print one element on a line, for jq and grep", given.lines),
      flagOption('p', "pretty", "Print one member on a line, indented", given.pretty),
      flagOption('f', "force", "Replace the output if it exists", options.force),
  };
}

/// Takes the paths, and what options say together. @return what is wrong, for people; empty if nothing is
std::string takeRest(const std::vector<std::string> &paths, const Given &given, Options &options) {
  if (paths.size() > 2)
    return printable(paths[2]) + " is one argument too many";
  if (paths.empty())
    return options.to_kb ? "IN.json is missing" : "SCENE.kb is missing";
  options.input = paths[0];
  options.output = paths.size() == 2 ? paths[1] : "-";
  if (options.to_kb && paths.size() == 1)
    return "OUT.kb is missing";
  if (given.lines && given.pretty)
    return "--lines and --pretty exclude each other";
  if (options.to_kb && (given.lines || given.pretty || options.shape.lean || options.shape.only.any()))
    return "--lean, --only, --lines and --pretty do not go with --to-kb";
  options.shape.layout = given.lines ? Layout::lines : given.pretty ? Layout::pretty : Layout::compact;
  return "";
}

} // namespace

std::optional<Options> readOptions(int argc, const char *const *argv, int &status) {
  Options options;
  Given given;
  const std::optional<int> ended =
      readCommandLine(PROGRAM, optionsOf(options, given), argumentsOf(argc, argv),
                      [&](const std::vector<std::string> &paths) { return takeRest(paths, given, options); });
  if (!ended)
    return options;
  status = *ended;
  return std::nullopt;
}

} // namespace kova::json
