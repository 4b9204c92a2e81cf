#include "tests/support.h"

#include "harness/golden.h"
#include "kova/check.h"
#include "kova/kt.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace kova::test {

namespace {

/// Turns a stream of the process over to a temporary file until `stop`.
struct Redirection {
  std::FILE *stream;
  std::FILE *file = std::tmpfile();
  int kept = ::dup(::fileno(stream));

  void start() const {
    std::fflush(stream);
    ::dup2(::fileno(file), ::fileno(stream));
  }

  /// @return what was printed.
  std::string stop() const {
    std::fflush(stream);
    ::dup2(kept, ::fileno(stream));
    ::close(kept);
    std::string text(static_cast<std::size_t>(::lseek(::fileno(file), 0, SEEK_END)), '\0');
    text.resize(static_cast<std::size_t>(::pread(::fileno(file), text.data(), text.size(), 0)));
    std::fclose(file);
    return text;
  }
};

} // namespace

std::string readFile(const std::string &path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

Printed capture(const std::function<void()> &run) {
  const Redirection out{stdout};
  const Redirection err{stderr};
  out.start();
  err.start();
  run();
  return {out.stop(), err.stop()};
}

int loadBytes(const Bytes &bytes, Kis &kis) {
  const ScratchFile file(bytes);
  return kvOpenKb(file.path.c_str(), kis);
}

std::string dumpOf(const Kis &kis) {
  const ScratchFile file;
  kvSaveAsKt(kis, file.path.c_str());
  return readFile(file.path);
}

Audit audit(const Bytes &bytes) {
  Audit audit{};
  audit.errors = capture([&] { audit.loaded = loadBytes(bytes, audit.kis); }).err;
  const std::string findings = capture([&] { audit.verdict = checkKOVA(audit.kis); }).out;
  audit.findings = linesWithout(findings, "---- checking ");
  audit.dump = dumpOf(audit.kis);
  return audit;
}

std::string linesWithout(const std::string &text, const std::string &beginning) {
  std::string kept;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);)
    if (!line.starts_with(beginning))
      kept += line + "\n";
  return kept;
}

::testing::AssertionResult sameText(const std::string &found, const std::string &expected) {
  const std::string difference = firstDifference(found, expected);
  return difference.empty() ? ::testing::AssertionSuccess() : ::testing::AssertionFailure() << difference;
}

std::string sectionOf(const std::string &dump, const std::string &list) {
  const std::size_t begin = dump.find("<" + list + "> ;");
  if (begin == std::string::npos)
    return "no section " + list;
  const std::size_t end = dump.find("</" + list + ">", begin);
  const std::size_t next = dump.find("\n<", end);
  return dump.substr(begin, next == std::string::npos ? next : next + 2 - begin);
}

std::string nameOf(const NamedWord &word) { return word.kind + " " + std::to_string(word.number) + " " + word.field; }

Ran runProgram(const std::vector<std::string> &arguments) {
  const ScratchFile out;
  const ScratchFile err;
  std::string command = KBAUDIT_COMMAND;
  for (const std::string &argument : arguments)
    command += " '" + argument + "'";
  const int status = std::system((command + " >" + out.path + " 2>" + err.path).c_str());
  return {{readFile(out.path), readFile(err.path)}, WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

} // namespace kova::test
