/// Streams that are written as the program goes on.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace kova::survey {

/// A stream with its name. The first failure is kept; what is written later is ignored.
struct Output {
  std::string path = {};       ///< for messages
  std::FILE *stream = nullptr; ///< null: everything that is written is ignored
  int error = 0;               ///< the system's reason for the first failure
};

/// @param path a file that is there and cannot be replaced, or "-" for standard output
void openOutput(Output &output, const std::string &path);

void openStandardError(Output &output);

void write(Output &output, std::string_view text);

/// Writes what the program holds back, so that what was written is there if the program is ended.
void flush(Output &output);

/// Closes the output, if that has not been done yet. @return whether everything was written; a failure is told on
/// standard error.
bool finish(Output &output);

/// Tells on standard error that a file, or "-" for standard output, cannot be written. @return false.
bool tellNotWritten(const std::string &path, int error);

} // namespace kova::survey
