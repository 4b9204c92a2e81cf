/// What tests do with files and outputs: load bytes, catch what is printed, run the program.
#pragma once

#include "harness/invariants.h"
#include "harness/scratch.h"
#include "samples/builder.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace kova::test {

using namespace harness;
using namespace samples;

/// The most that the checks and the dump may print for a file of that size: what is promised.
inline constexpr std::size_t outputBound(std::size_t size) { return 64 * 1024 + 192 * size; }

std::string readFile(const std::string &path);

/// What was printed on standard output and on standard error.
struct Printed {
  std::string out;
  std::string err;
};

/// Runs something in this process and keeps what it prints. It must leave both streams open.
Printed capture(const std::function<void()> &run);

/// `kvOpenKb` of a file of these bytes.
int loadBytes(const Bytes &bytes, Kis &kis);

/// The whole dump of a model.
std::string dumpOf(const Kis &kis);

/// What the program makes of a file, step by step, without its own lines.
struct Audit {
  Kis kis;
  int loaded;
  int verdict;          ///< of the checks
  std::string errors;   ///< of the load
  std::string findings; ///< of the checks, without their heading lines
  std::string dump;
};
Audit audit(const Bytes &bytes);

/// The lines of a text that do not begin with `beginning`.
std::string linesWithout(const std::string &text, const std::string &beginning);

/// Whether two long texts are equal. Shows only the first lines that differ, and the section of the dump that they
/// stand in.
::testing::AssertionResult sameText(const std::string &found, const std::string &expected);

/// The section of a dump that shows a list, up to the "<" of what follows it.
std::string sectionOf(const std::string &dump, const std::string &list);

/// A word as `edited` names it: "Obj 1 obj_size".
std::string nameOf(const NamedWord &word);

struct Ran : Printed {
  int status;
};

/// Runs kbaudit with these arguments.
Ran runProgram(const std::vector<std::string> &arguments);

} // namespace kova::test
