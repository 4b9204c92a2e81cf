#include "survey/output.h"

#include "common/text.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace kova::survey {

namespace {

void note(Output &output) {
  if (output.error == 0)
    output.error = errno != 0 ? errno : EIO;
}

} // namespace

void openOutput(Output &output, const std::string &path) {
  output.path = path;
  errno = 0;
  output.stream = path == "-" ? stdout : std::fopen(path.c_str(), "abe");
  if (output.stream == nullptr)
    note(output);
}

void openStandardError(Output &output) {
  output.path = "standard error";
  errno = 0;
  output.stream = ::fdopen(::dup(STDERR_FILENO), "w");
  if (output.stream == nullptr) // it was closed when the program began
    note(output);
}

void write(Output &output, std::string_view text) {
  errno = 0;
  if (output.stream != nullptr && output.error == 0 &&
      std::fwrite(text.data(), 1, text.size(), output.stream) != text.size())
    note(output);
}

void flush(Output &output) {
  errno = 0;
  if (output.stream != nullptr && output.error == 0 && std::fflush(output.stream) != 0)
    note(output);
}

bool finish(Output &output) {
  errno = 0;
  if (output.stream != nullptr && std::fclose(output.stream) != 0)
    note(output);
  output.stream = nullptr;
  return output.error == 0 || tellNotWritten(output.path, output.error);
}

bool tellNotWritten(const std::string &path, int error) {
  std::fprintf(stderr, "kbsurvey: %s cannot be written: %s.\n",
               path == "-" ? "standard output" : printable(path).c_str(), std::strerror(error));
  return false;
}

} // namespace kova::survey
