#include "common/file.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <initializer_list>
#include <unistd.h>

namespace kova {

Descriptor::~Descriptor() {
  if (number >= 0)
    ::close(number);
}

Descriptor openToRead(const char *path) {
  return Descriptor(::open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
}

std::optional<Identity> identityOf(const std::string &path) {
  struct stat status;
  return ::stat(path.c_str(), &status) == 0 ? std::optional(identityOf(status)) : std::nullopt;
}

std::optional<Identity> fileAt(int stream) {
  struct stat status;
  const bool is_file = ::fstat(stream, &status) == 0 && (S_ISREG(status.st_mode) || S_ISFIFO(status.st_mode));
  return is_file ? std::optional(identityOf(status)) : std::nullopt;
}

bool isOneOf(int stream, const std::vector<std::string> &paths) {
  const std::optional<Identity> file = fileAt(stream);
  return file &&
         std::any_of(paths.begin(), paths.end(), [&](const std::string &path) { return identityOf(path) == file; });
}

std::string targetOf(const std::string &path) {
  constexpr int MOST_LINKS = 40;
  std::error_code error;
  std::filesystem::path target = std::filesystem::absolute(path, error);
  for (int i = 0; i < MOST_LINKS && std::filesystem::is_symlink(target, error); ++i)
    target = target.parent_path() / std::filesystem::read_symlink(target, error);
  const std::filesystem::path whole = std::filesystem::weakly_canonical(target, error);
  return error ? target.string() : whole.string();
}

void prepareStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    if (::fcntl(stream, F_GETFD) < 0 && errno == EBADF)
      ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY); // takes the lowest number that is free
  std::signal(SIGXFSZ, SIG_IGN);
}

int writeWhole(const Descriptor &file, const void *bytes, std::size_t size) {
  const auto *const from = static_cast<const char *>(bytes);
  for (std::size_t done = 0; done < size;) {
    const ssize_t put = ::write(file.number, from + done, size - done);
    if (put < 0 && errno != EINTR)
      return errno;
    done += static_cast<std::size_t>(put < 0 ? 0 : put);
  }
  return 0;
}

const char *readWhole(const Descriptor &file, std::size_t bytes, unsigned char *to) {
  for (std::size_t done = 0; done < bytes;) {
    const ssize_t got = ::pread(file.number, to + done, bytes - done, static_cast<off_t>(done));
    if (got < 0 && errno == EINTR)
      continue;
    if (got <= 0)
      return got < 0 ? std::strerror(errno) : FILE_HAS_CHANGED;
    done += static_cast<std::size_t>(got);
  }
  return nullptr;
}

} // namespace kova
