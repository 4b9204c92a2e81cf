/// kbdiff: what is different between two KOVA scene files.

#include "common/file.h"
#include "diff/diff.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace kova::diff {

namespace {

/// Ends standard output. `std::fclose` would leave the C++ streams, which flush it once more at the end, a closed one.
int endOutput(int status) {
  const bool written = std::ferror(stdout) == 0;
  if (std::fflush(stdout) == 0 && ::close(STDOUT_FILENO) == 0 && written)
    return status;
  std::fprintf(stderr, "kbdiff: standard output cannot be written: %s.\n", std::strerror(errno != 0 ? errno : EIO));
  return TROUBLE;
}

/// @return the path in a folder of what is called like a file.
std::string inFolder(const std::string &folder, const std::string &file) {
  return folder + '/' + file.substr(file.rfind('/') + 1);
}

Status refuse(const std::string &message) {
  std::fprintf(stderr, "kbdiff: %s.\n", message.c_str());
  return TROUBLE;
}

/// @return what opens a file by its path also where that is standard input.
std::string pathOf(const std::string &path) { return path == "-" ? "/dev/stdin" : path; }

int run(int argc, char **argv) {
  int status = TROUBLE;
  const std::optional<Options> options = readOptions(argc, argv, status);
  if (!options)
    return endOutput(status);
  if (!printsElsewhere({pathOf(options->a), pathOf(options->b)}))
    return TROUBLE;
  const bool is_folder_a = isFolder(options->a), is_folder_b = isFolder(options->b);
  if (is_folder_a && is_folder_b)
    return endOutput(diffFolders(*options, stdout));
  if ((is_folder_a && options->b == "-") || (is_folder_b && options->a == "-"))
    return refuse("standard input cannot be compared with a folder: it has no name to look for there");
  Printer printer = {.look = options->look,
                     .style = styleOf(STDOUT_FILENO, options->colour),
                     .path_a = is_folder_a ? inFolder(options->a, options->b) : options->a,
                     .path_b = is_folder_b ? inFolder(options->b, options->a) : options->b};
  std::string reason;
  status = diffFiles(options->rules, printer, reason);
  errno = 0;
  std::fwrite(printer.text.data(), 1, printer.text.size(), stdout);
  if (status == TROUBLE)
    refuse(reason);
  return endOutput(status);
}

} // namespace

} // namespace kova::diff

int main(int argc, char **argv) {
  try {
    kova::prepareStreams();
    return kova::diff::run(argc, argv);
  } catch (const std::exception &) {
    std::fputs("kbdiff: not enough memory.\n", stderr);
    return kova::diff::TROUBLE;
  }
}
