#include "survey/report.h"

#include "common/file.h"
#include "kova/kb.h"

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
