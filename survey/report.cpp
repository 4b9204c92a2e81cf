#include "survey/report.h"

#include "common/file.h"
#include "common/text.h"
#include "format/versions.h"
#include "kova/kb.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace kova::survey {

namespace {

/// @return the reason why a file cannot be made or replaced; 0 if it can, as far as is known.
int refusalOf(const std::string &target) {
  const auto may = [](const std::string &path, int mode) {
    return ::faccessat(AT_FDCWD, path.c_str(), mode, AT_EACCESS) == 0;
  };
  const std::string folder = target.substr(0, target.rfind('/') + 1);
  if (!may(folder.empty() ? "." : folder, W_OK | X_OK) || (!may(target, W_OK) && errno != ENOENT))
    return errno;
  return target.ends_with('/') ? EISDIR : 0;
}

/// @return whether a file is a KOVA scene, also a damaged one: by the version, or by the tag and the size of its
/// header.
bool isScene(const std::string &path) {
  const Descriptor file = openToRead(path.c_str());
  struct stat status;
  std::array<unsigned char, FILE_HEADER_BYTES> header;
  if (file.number < 0 || ::fstat(file.number, &status) != 0)
    return false;
  const auto size = static_cast<std::uint64_t>(status.st_size);
  const std::size_t bytes = std::min<std::uint64_t>(size, header.size());
  const KisHandle kis = kvNewKis();
  if (!kis || readWhole(file, bytes, header.data()) != nullptr)
    return false;
  const FindingReceiver unheard([](const Finding &) {});
  kvOpenKbMemory(std::span(header).first(bytes), path.c_str(), *kis);
  const Word version = kvKOVAver(kis->file_header);
  return bytes >= sizeof(Word) &&
         (isVersion(version) || (kis->file_header.header_tag == 0 && kis->file_header.size == size));
}

bool refuseScene(const std::string &path) {
  std::fprintf(stderr, "kbsurvey: %s is a KOVA scene, which no report replaces.\n", printable(path).c_str());
  return false;
}

} // namespace

bool openReport(Report &report, const std::string &path) {
  report.path = path;
  if (path.empty())
    return true;
  struct stat status;
  if (path == "-" || (::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode))) {
    openOutput(report.stream, path);
    return report.stream.error == 0 || finish(report.stream);
  }
  if (isScene(path))
    return refuseScene(path);
  report.target = targetOf(path);
  const int error = refusalOf(report.target);
  return error == 0 || tellNotWritten(path, error);
}

bool saveReport(Report &report, const std::function<int(std::FILE *)> &write) {
  if (!isWanted(report))
    return true;
  if (report.target.empty()) {
    Output &output = report.stream;
    errno = 0;
    if (output.error == 0 && write(output.stream) == 0)
      output.error = errno != 0 ? errno : EIO;
    return finish(output);
  }
  return kvSaveFile(report.path.c_str(), Existing::replace, 0666, write) != 0 || tellNotWritten(report.path, errno);
}

} // namespace kova::survey
