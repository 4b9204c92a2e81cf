#include "survey/report_reader.h"

#include "common/text.h"
#include "survey/json_line.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace kova::survey {

namespace {

/// Longer lines are not those of a report: with all that may stand in it, one has a third of this.
constexpr std::size_t MOST_LINE = 16 * 1024 * 1024;

struct Reading {
  const TakeResult &take;
  std::size_t number = 1; ///< of the line
  std::string line = {};  ///< as far as it was read
};

/// What is wrong is said in words that follow the name of the file.
std::string wrongLine(const Reading &reading) {
  return ':' + std::to_string(reading.number) + ": not a line of a report";
}

/// Takes the lines that a piece of a file ends. @return what is wrong; empty if nothing is.
std::string takePiece(Reading &reading, std::string_view piece) {
  while (!piece.empty()) {
    const std::size_t end = piece.find('\n');
    reading.line += piece.substr(0, end);
    if (reading.line.size() > MOST_LINE)
      return wrongLine(reading);
    if (end == piece.npos)
      break;
    std::optional<FileResult> result = resultOf(reading.line);
    if (!result)
      return wrongLine(reading);
    reading.take(std::move(*result));
    reading.line.clear();
    ++reading.number;
    piece.remove_prefix(end + 1);
  }
  return "";
}

std::string readFrom(int file, const TakeResult &take, CutLine cut_line) {
  Reading reading{take};
  std::string piece(64 * 1024, '\0');
  for (;;) {
    const ssize_t got = ::read(file, piece.data(), piece.size());
    if (got < 0 && errno == EINTR)
      continue;
    if (got < 0)
      return std::string(": ") + std::strerror(errno);
    if (got == 0)
      return reading.line.empty() || cut_line == CutLine::ignored ? "" : wrongLine(reading);
    const std::string wrong = takePiece(reading, std::string_view(piece).substr(0, static_cast<std::size_t>(got)));
    if (!wrong.empty())
      return wrong;
  }
}

} // namespace

std::string readReport(const std::string &path, const TakeResult &take, CutLine cut_line) {
  const Descriptor opened(path == "-" ? -1 : ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
  const std::string name = path == "-" ? "standard input" : printable(path);
  if (path != "-" && opened.number < 0)
    return name + ": " + std::strerror(errno);
  const std::string wrong = readFrom(path == "-" ? STDIN_FILENO : opened.number, take, cut_line);
  return wrong.empty() ? "" : name + wrong;
}

bool readLines(const Descriptor &file, const TakeResult &take) {
  return ::lseek(file.number, 0, SEEK_SET) == 0 && readFrom(file.number, take, CutLine::ignored).empty();
}

} // namespace kova::survey
