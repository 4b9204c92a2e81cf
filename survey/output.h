/// Files that reports are written to.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace kova::survey {

/// A file that is written, or standard output. The first failure is kept; what is written later is ignored.
struct Output {
  std::string path; ///< empty for an output that is not wanted: everything written to it is ignored
  std::FILE *stream = nullptr;
  int error = 0; ///< the system's reason for the first failure
};

enum class Opening { replace, append };

/// @param path a file, "-" for standard output, empty for no output
void openOutput(Output &output, const std::string &path, Opening opening = Opening::replace);

void write(Output &output, std::string_view text);

/// Writes what the program holds back, so that what was written is there if the program is ended.
void flush(Output &output);

/// Closes the output, if that has not been done yet. @return whether everything was written; a failure is told on
/// standard error.
bool finish(Output &output);

/// Puts a file in the place of another one, at once or not at all. @return 0 or the system's reason.
int replaceFile(const std::string &path, std::string_view text);

} // namespace kova::survey
