#include "survey/output.h"

#include "common/text.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace kova::survey {

namespace {

void note(Output &output) {
  if (output.error == 0)
    output.error = errno != 0 ? errno : EIO;
}

} // namespace

void openOutput(Output &output, const std::string &path, Opening opening) {
  output.path = path;
  errno = 0;
  if (path == "-")
    output.stream = stdout;
  else if (!path.empty())
    output.stream = std::fopen(path.c_str(), opening == Opening::append ? "abe" : "wbe");
  if (!path.empty() && output.stream == nullptr)
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
  if (output.error != 0)
    std::fprintf(stderr, "kbsurvey: %s cannot be written: %s.\n",
                 output.path == "-" ? "standard output" : printable(output.path).c_str(), std::strerror(output.error));
  return output.error == 0;
}

int replaceFile(const std::string &path, std::string_view text) {
  // Of a link, the file that it leads to is replaced.
  const std::unique_ptr<char, void (*)(void *)> real(::realpath(path.c_str(), nullptr), std::free);
  const std::string target = real ? real.get() : path;
  Output output;
  openOutput(output, target + ".new");
  write(output, text);
  errno = 0;
  if (output.stream != nullptr && std::fclose(output.stream) != 0)
    note(output);
  if (output.error == 0 && std::rename(output.path.c_str(), target.c_str()) != 0)
    note(output);
  if (output.error != 0)
    std::remove(output.path.c_str());
  return output.error;
}

} // namespace kova::survey
