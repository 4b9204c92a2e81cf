#include "common/file.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
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

void occupyStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    if (::fcntl(stream, F_GETFD) < 0 && errno == EBADF)
      ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY); // takes the lowest number that is free
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
