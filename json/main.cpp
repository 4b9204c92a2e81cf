/// kbjson: a KOVA scene file as a JSON document, and back.

#include "common/file.h"
#include "common/text.h"
#include "kova/kb.h"
#include "json/options.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kova::json {

namespace {

int refuse(const std::string &message, Status status) {
  std::fprintf(stderr, "kbjson: %s.\n", message.c_str());
  return status;
}

int refuseInput(const Options &options, int reason) {
  return refuse(printable(options.input) + ": " + std::strerror(reason), UNREADABLE);
}

/// @return why the output may not be written, for people; empty if it may, as far as is known.
std::string outputRefusal(const Options &options, const struct stat &input) {
  if (options.output == "-") {
    if (options.to_kb && ::isatty(STDOUT_FILENO) != 0)
      return "standard output is a terminal, to which no file is written";
    const bool is_input = S_ISREG(input.st_mode) && fileAt(STDOUT_FILENO) == identityOf(input);
    return is_input ? "standard output is the input, which is never changed" : "";
  }
  const std::string name = printable(options.output);
  struct stat status;
  const bool is_there = ::stat(options.output.c_str(), &status) == 0;
  if (is_there && S_ISDIR(status.st_mode))
    return name + " is a folder";
  if (is_there && status.st_dev == input.st_dev && status.st_ino == input.st_ino)
    return name + " is the same file as the input, which is never changed";
  if (!options.force && ::lstat(options.output.c_str(), &status) == 0)
    return name + " exists; --force replaces it";
  return "";
}

/// Ends standard output. `std::fclose` would leave the C++ streams, which flush it once more at the end, a closed one.
int endOutput(bool written, int status) {
  const bool ended = std::fflush(stdout) == 0 && ::close(STDOUT_FILENO) == 0;
  if (written && ended)
    return status;
  return refuse(std::string("standard output cannot be written: ") + std::strerror(errno != 0 ? errno : EIO), FAILED);
}

int writeOutput(const Options &options, mode_t mode, const Writing &write) {
  errno = 0;
  if (options.output == "-")
    return endOutput(write(stdout) != 0, DONE);
  const Existing existing = options.force ? Existing::replace : Existing::refuse;
  if (kvSaveFile(options.output.c_str(), existing, mode, write))
    return DONE;
  const std::string name = printable(options.output);
  return refuse(errno == EEXIST ? name + " exists; --force replaces it"
                                : name + " cannot be written: " + std::strerror(errno),
                FAILED);
}

/// An input that is open, and what the system says of it.
struct Input {
  Stream opened = nullptr; ///< null for standard input
  std::FILE *stream = nullptr;
  struct stat status = {};
};

/// @return 0, or the system's reason.
int openInput(const Options &options, Input &input) {
  if (options.input != "-") {
    Descriptor file{::open(options.input.c_str(), O_RDONLY | O_CLOEXEC)}; // waits for who writes into a pipe
    input.opened.reset(file.number < 0 ? nullptr : ::fdopen(file.number, "rb"));
    if (!input.opened)
      return errno;
    file.number = -1; // the stream closes it
  }
  input.stream = input.opened ? input.opened.get() : stdin;
  if (::fstat(::fileno(input.stream), &input.status) != 0)
    return errno;
  return S_ISDIR(input.status.st_mode) ? EISDIR : 0;
}

/// Reads what is left of a stream. @return 0, or the system's reason
int readAll(const Input &input, std::vector<unsigned char> &bytes) {
  bytes.resize(S_ISREG(input.status.st_mode) ? static_cast<std::size_t>(input.status.st_size) + 1 : 65536);
  std::size_t size = 0;
  for (;;) {
    errno = 0;
    size += std::fread(bytes.data() + size, 1, bytes.size() - size, input.stream);
    if (size < bytes.size())
      break;
    bytes.resize(2 * bytes.size());
  }
  bytes.resize(size);
  return std::ferror(input.stream) != 0 ? (errno != 0 ? errno : EIO) : 0;
}

mode_t modeOf(const Input &input) { return S_ISREG(input.status.st_mode) ? input.status.st_mode & 0777 : 0666; }

int toJson(const Options &options, const Input &input) {
  std::vector<unsigned char> bytes;
  if (const int reason = readAll(input, bytes); reason != 0)
    return refuseInput(options, reason);
  return writeOutput(options, modeOf(input),
                     [&](std::FILE *stream) { return printScene(stream, bytes, options.shape) ? 1 : 0; });
}

int toKb(const Options &options, const Input &input) {
  const auto document = std::make_unique<Document>();
  const std::string wrong = readScene(input.stream, *document);
  if (!wrong.empty())
    return refuse(printable(options.input) + ':' + wrong, std::ferror(input.stream) != 0 ? UNREADABLE : WRONG_DOCUMENT);
  return writeOutput(options, modeOf(input), [&](std::FILE *stream) { return writeScene(stream, *document); });
}

int run(int argc, char **argv) {
  int status = FAILED;
  const std::optional<Options> options = readOptions(argc, argv, status);
  if (!options)
    return endOutput(std::ferror(stdout) == 0, status);
  Input input;
  if (const int reason = openInput(*options, input); reason != 0)
    return refuseInput(*options, reason);
  if (S_ISREG(input.status.st_mode) && fileAt(STDERR_FILENO) == identityOf(input.status))
    return FAILED; // nothing can be told
  if (const std::string refusal = outputRefusal(*options, input.status); !refusal.empty())
    return refuse(refusal, FAILED);
  return options->to_kb ? toKb(*options, input) : toJson(*options, input);
}

} // namespace

} // namespace kova::json

int main(int argc, char **argv) {
  try {
    kova::prepareStreams();
    return kova::json::run(argc, argv);
  } catch (const std::exception &) {
    std::fputs("kbjson: not enough memory.\n", stderr);
    return kova::json::UNREADABLE;
  }
}
