/// kbrepair: mends a damaged KOVA scene file, as far as this is possible without guessing.

#include "common/file.h"
#include "common/memory.h"
#include "common/text.h"
#include "kova/kb.h"
#include "repair/options.h"
#include "repair/print.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <sys/stat.h>
#include <unistd.h>

namespace kova::repair {

namespace {

int refuse(const std::string &message, Status status = FAILED) {
  std::fprintf(stderr, "kbrepair: %s.\n", message.c_str());
  return status;
}

std::string existsText(const Options &options) { return printable(options.output) + " exists; --force replaces it"; }

/// @return why OUTPUT may not be written, for people; empty if it may, as far as is known.
std::string outputRefusal(const Options &options, const struct stat &input) {
  if (options.toStandardOutput())
    return ::isatty(STDOUT_FILENO) != 0 ? "standard output is a terminal, to which no file is written" : "";
  const std::string name = printable(options.output);
  struct stat status;
  if (::stat(options.output.c_str(), &status) == 0 && S_ISDIR(status.st_mode))
    return name + " is a folder";
  if (::stat(options.output.c_str(), &status) == 0 && status.st_dev == input.st_dev && status.st_ino == input.st_ino)
    return name + " is the same file as INPUT, which is never changed";
  if (options.force && fileAt(STDOUT_FILENO) && fileAt(STDOUT_FILENO) == identityOf(options.output))
    return name + " is standard output, where the changes are printed";
  if (!options.force && ::lstat(options.output.c_str(), &status) == 0)
    return existsText(options);
  return "";
}

/// INPUT, as it is or mended.
struct Scene {
  std::vector<unsigned char> bytes = {};
  mode_t mode = 0; ///< the permissions of INPUT
};

/// Looks at INPUT before it is read. @return what is wrong, for people; empty if nothing is.
std::string inputRefusal(const Descriptor &file, struct stat &status) {
  if (file.number < 0 || ::fstat(file.number, &status) != 0)
    return std::strerror(errno);
  return S_ISREG(status.st_mode) ? "" : "not a regular file";
}

/// Reads INPUT whole. @return what is wrong, for people; empty if nothing is.
std::string readInput(const Descriptor &file, const struct stat &status, Scene &scene) {
  if (static_cast<std::uint64_t>(status.st_size) > scene.bytes.max_size())
    return "not enough memory";
  scene.mode = status.st_mode & 0777;
  reserveMemory(static_cast<std::uint64_t>(status.st_size), 1);
  scene.bytes.resize(static_cast<std::size_t>(status.st_size));
  const char *const error = readWhole(file, scene.bytes.size(), scene.bytes.data());
  return error != nullptr ? error : "";
}

void print(const std::string &line, std::FILE *to = stdout) { std::fwrite(line.data(), 1, line.size(), to); }

/// Prints what was found, all but the last line.
void printWords(const Result &result, Form form, std::FILE *to) {
  const bool two = result.outcome == Outcome::ambiguous;
  for (const Undoing &undone : result.undone)
    print(undoneLine(undone, form, two ? 1 : 0), to);
  for (const Undoing &undone : result.undone_instead)
    print(undoneLine(undone, form, 2), to);
  for (const Change &change : result.changes)
    print(changeLine(change, form, two ? 1 : 0), to);
  for (const Change &change : result.alternative)
    print(changeLine(change, form, 2), to);
  for (const Loss &loss : result.losses)
    print(lossLine(loss, form), to);
}

/// Ends a standard stream. `std::fclose` would leave the C++ streams, which flush it once more at the end, a closed
/// one.
int closeStream(std::FILE *stream) { return std::fflush(stream) == 0 && ::close(::fileno(stream)) == 0 ? 0 : EOF; }

/// Hands what was printed to the system, with `std::fflush` or `closeStream`. A step that has failed to print has left
/// the system's reason in `errno`, and what is printed afterwards with success leaves it there. @return 0, or the
/// reason why the stream is not complete.
int endStream(std::FILE *stream, int (*end)(std::FILE *)) {
  const bool failed = std::ferror(stream) != 0;
  return end(stream) == 0 && !failed ? 0 : errno != 0 ? errno : EIO;
}

int refuseStream(std::FILE *stream, int error) {
  return refuse(std::string(stream == stdout ? "standard output" : "standard error") +
                " cannot be written: " + std::strerror(error));
}

/// Ends a standard stream. @return `status`, or `FAILED` where it is not complete, which is told.
int endOutput(int status, int (*end)(std::FILE *), std::FILE *stream = stdout) {
  const int error = endStream(stream, end);
  return error == 0 ? status : refuseStream(stream, error);
}

/// Writes OUTPUT. It gets its name only when it is whole and the last line is printed.
int writeOutput(const Options &options, const Scene &scene, const std::string &last_line, int status) {
  int error = 0; // of standard output; told when a signal that it has caused is no longer held back
  const Writing write = [&](std::FILE *stream) {
    if (std::fwrite(scene.bytes.data(), 1, scene.bytes.size(), stream) != scene.bytes.size() ||
        std::fflush(stream) != 0)
      return 0;
    errno = 0;
    print(last_line);
    error = endStream(stdout, std::fflush);
    return error == 0 ? 1 : 0;
  };
  const Existing existing = options.force ? Existing::replace : Existing::refuse;
  if (kvSaveFile(options.output.c_str(), existing, scene.mode, write))
    return status;
  if (error != 0)
    return refuseStream(stdout, error);
  return refuse(errno == EEXIST ? existsText(options)
                                : printable(options.output) + " cannot be written: " + std::strerror(errno));
}

/// Writes the file to standard output. What was found is printed on standard error then.
int writeStandardOutput(const Scene &scene, const std::string &last_line, int status) {
  errno = 0;
  std::fwrite(scene.bytes.data(), 1, scene.bytes.size(), stdout);
  if (endOutput(status, closeStream) == FAILED)
    return FAILED;
  errno = 0;
  print(last_line, stderr);
  return endOutput(status, std::fflush, stderr);
}

/// Reads INPUT, unless OUTPUT may not be written. @return the exit status if there is nothing to go on with.
std::optional<int> load(const Options &options, Scene &scene) {
  const Descriptor file = openToRead(options.input.c_str());
  struct stat status;
  std::string wrong = inputRefusal(file, status);
  if (wrong.empty() && !options.dry_run && !options.diagnose)
    if (const std::string refusal = outputRefusal(options, status); !refusal.empty())
      return refuse(refusal);
  if (wrong.empty())
    wrong = readInput(file, status, scene);
  return wrong.empty() ? std::nullopt : std::optional(refuse(printable(options.input) + ": " + wrong, UNREADABLE));
}

int statusOf(const Result &result) {
  return result.outcome == Outcome::ambiguous || result.outcome == Outcome::hopeless ? NOT_MENDED : AUDITS_OK;
}

int diagnose(const Options &options, const Scene &scene) {
  const mend::Diagnosis diagnosis = mend::diagnose(scene.bytes);
  errno = 0;
  print(diagnosisLines(diagnosis, options.input, options.json ? Form::json : Form::text));
  return endOutput(statusOf(diagnosis.result), closeStream);
}

int repair(const Options &options) {
  Scene scene;
  if (const std::optional<int> refused = load(options, scene))
    return *refused;
  if (options.diagnose)
    return diagnose(options, scene);
  const Form form = options.json ? Form::json : Form::text;
  const Result result = mend::mendBytes(scene.bytes, options.asked);
  const int status = statusOf(result);
  std::FILE *const told = options.toStandardOutput() ? stderr : stdout;
  errno = 0;
  printWords(result, form, told);
  // No change is written that could not be printed.
  if (endOutput(status, std::fflush, told) == FAILED)
    return FAILED;
  const bool write = !options.dry_run && (status == AUDITS_OK || options.partial);
  const std::string last_line = endingLine({result, options.input, write ? options.output : ""}, form);
  if (write)
    return options.toStandardOutput() ? writeStandardOutput(scene, last_line, status)
                                      : writeOutput(options, scene, last_line, status);
  errno = 0;
  print(last_line, told);
  return endOutput(status, closeStream, told);
}

int run(int argc, char **argv) {
  int status = FAILED;
  const std::optional<Options> options = readOptions(argc, argv, status);
  return options ? repair(*options) : endOutput(status, closeStream);
}

} // namespace

} // namespace kova::repair

int main(int argc, char **argv) {
  try {
    kova::prepareStreams();
    return kova::repair::run(argc, argv);
  } catch (const std::exception &) {
    std::fputs("kbrepair: not enough memory.\n", stderr);
    return kova::repair::UNREADABLE;
  }
}
