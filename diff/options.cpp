#include "diff/options.h"

#include "common/arguments.h"
#include "common/text.h"
#include "diff/names.h"
#include "kova/version.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace kova::diff {

namespace {

constexpr Program PROGRAM = {
    "kbdiff",
    KOVA_VERSION,
    {.usage = "Usage: kbdiff [OPTION]... A B\n",
     .description =
         "Prints what is different between two KOVA scene files: list, element, field. Elements are matched by what they "
         "hold and what their links lead to; a scene whose elements were only renumbered, links with them, is the same. "
         "Of two folders, the files *.kb with the same paths are compared. - is standard input.",
     .footer = "Exit status: 0: no difference; 1: differences; 2: trouble."}};

/// What the command line says beyond the options themselves.
struct Given {
  bool unified = false, json = false, stat = false, quiet = false;
  std::bitset<LIST_NUM> only = {};
  std::bitset<LIST_NUM> without = {};
};

/// @return the number of a list; LIST_NUM for another name.
std::size_t listNamed(std::string_view name) {
  std::size_t list = 0;
  while (list < LIST_NUM && name != LISTS[list].name)
    ++list;
  return list;
}

/// Calls `take` with each of the names in a list with commas. @return what is wrong, for people; empty if nothing is
template <class Take> std::string eachName(const std::string &names, Take take) {
  for (std::size_t at = 0; at <= names.size();) {
    const std::size_t end = std::min(names.find(',', at), names.size());
    if (std::string wrong = take(names.substr(at, end - at)); !wrong.empty())
      return wrong;
    at = end + 1;
  }
  return "";
}

std::string takeIgnored(const std::string &name, Rules &rules, Given &given) {
  const std::size_t list = listNamed(name);
  if (name == "derived")
    rules.ignore_derived = true;
  else if (name == "gaps")
    rules.ignore_gaps = true;
  else if (list < LIST_NUM)
    given.without.set(list);
  else if (isFieldName(name))
    rules.ignored.insert(name);
  else
    return "knows no list and no field " + printable(name);
  return "";
}

std::string takeOnly(const std::string &name, Given &given) {
  const std::size_t list = listNamed(name);
  if (list == LIST_NUM)
    return "knows no list " + printable(name) + "; they are SceneList, ObjList and so on";
  given.only.set(list);
  return "";
}

template <class Number>
std::string takeNumber(const std::string &text, std::optional<Number> &number, const char *what) {
  Number value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool is_one = error == std::errc() && end == text.data() + text.size() && value >= 0;
  if (!is_one || (std::is_floating_point_v<Number> && !std::isfinite(static_cast<double>(value))))
    return std::string("needs ") + what + ", not " + printable(text);
  number = value;
  return "";
}

std::string takeColour(const std::string &text, Colour &colour) {
  constexpr std::array<const char *, 3> NAMES = {"auto", "always", "never"};
  for (std::size_t i = 0; i < NAMES.size(); ++i)
    if (text == NAMES[i]) {
      colour = static_cast<Colour>(i);
      return "";
    }
  return "is auto, always or never, not " + printable(text);
}

std::vector<Option> optionsOf(Options &options, Given &given) {
  Rules &rules = options.rules;
  return {
      flagOption('n', "by-name", "Match elements by their names first", rules.by_name),
      {0, "ulp", "N", "Floats are equal that are at most N apart, counted in floats between them",
       [&rules](const std::string &text) { return takeNumber(text, rules.ulp, "a number from 0 on"); }},
      {0, "epsilon", "X", "Floats are equal whose difference is at most X",
       [&rules](const std::string &text) { return takeNumber(text, rules.epsilon, "a number from 0 on"); }},
      {0, "ignore", "WHAT",
       "Ignore derived (sizes, counts, own indices), gaps (bytes that no record takes in), a list, or a field",
       [&](const std::string &names) {
         return eachName(names, [&](const std::string &name) { return takeIgnored(name, rules, given); });
       },
       true},
      {0, "only", "LIST[,LIST]", "Compare these lists alone, such as ObjList,MatList",
       [&given](const std::string &names) {
         return eachName(names, [&](const std::string &name) { return takeOnly(name, given); });
       },
       true},
      flagOption(0, "order", "Tell of elements that have moved, too", rules.order),
      flagOption('u', "unified", "Show the elements around a difference", given.unified),
      flagOption('s', "stat", "Print a line for each list", given.stat),
      flagOption('q', "quiet", "Print nothing; the exit status tells", given.quiet),
      flagOption(0, "json", "Print a JSON object for each difference, one on a line", given.json),
      {0, "color", "WHEN", "Colours: auto, always or never",
       [&options](const std::string &text) { return takeColour(text, options.colour); }, true},
      numberOption('j', "jobs", "N", "Number of files compared at a time (default: the processors)", options.jobs,
                   4096),
  };
}

/// Takes the paths, and what options say together. @return what is wrong, for people; empty if nothing is
std::string takeRest(const std::vector<std::string> &paths, const Given &given, Options &options) {
  if (paths.size() != 2)
    return paths.size() > 2 ? printable(paths[2]) + " is one argument too many"
           : paths.empty()  ? "A is missing"
                            : "B is missing";
  options.a = paths[0];
  options.b = paths[1];
  if (options.a == "-" && options.b == "-")
    return "standard input can be only one of the two";
  if (given.unified + given.json + given.stat + given.quiet > 1)
    return "--unified, --stat, --quiet and --json exclude each other";
  options.look = given.unified ? Look::unified
                 : given.json  ? Look::json
                 : given.stat  ? Look::stat
                 : given.quiet ? Look::quiet
                               : Look::text;
  if (given.only.any())
    options.rules.lists = given.only;
  options.rules.lists &= ~given.without;
  return options.rules.lists.none() ? "no list is left to compare" : "";
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
  status = *ended == 0 ? SAME : TROUBLE;
  return std::nullopt;
}

} // namespace kova::diff
