#include "reader/file.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kova {

namespace {

static_assert(sizeof(off_t) == 8, "compile with -D_FILE_OFFSET_BITS=64: a file may have more than 2 GiB");

bool canBeReadTwice(const struct stat &status) { return S_ISREG(status.st_mode) || S_ISBLK(status.st_mode); }

InputFile identityOf(const struct stat &status) {
  if (!canBeReadTwice(status))
    return {};
  return {.known = true,
          .device = status.st_dev,
          .inode = status.st_ino,
          .size = static_cast<std::uint64_t>(status.st_size),
          .change_seconds = status.st_ctim.tv_sec,
          .change_nanoseconds = status.st_ctim.tv_nsec};
}

Stream sayAndFail(const char *message) {
  std::fputs(message, stderr);
  return nullptr;
}

} // namespace

std::size_t readBytes(std::FILE *stream, void *to, std::size_t bytes) {
  auto *const at = static_cast<unsigned char *>(to);
  std::size_t done = 0;
  for (;;) {
    errno = 0;
    done += std::fread(at + done, 1, bytes - done, stream);
    if (done == bytes || std::ferror(stream) == 0 || errno != EINTR)
      return done;
    std::clearerr(stream);
  }
}

std::optional<std::uint64_t> streamPlace(std::FILE *stream) {
  const off_t place = ::ftello(stream);
  return place < 0 ? std::nullopt : std::optional<std::uint64_t>(place);
}

bool seekStream(std::FILE *stream, std::uint64_t place) {
  return ::fseeko(stream, static_cast<off_t>(place), SEEK_SET) == 0;
}

std::optional<std::uint64_t> streamLength(std::FILE *stream) {
  const std::optional<std::uint64_t> here = streamPlace(stream);
  if (!here || ::fseeko(stream, 0, SEEK_END) != 0)
    return std::nullopt;
  const std::optional<std::uint64_t> end = streamPlace(stream);
  seekStream(stream, *here);
  return end;
}

InputFile identify(std::FILE *stream) {
  struct stat status;
  return ::fstat(::fileno(stream), &status) == 0 ? identityOf(status) : InputFile{};
}

Stream openAgain(const char *path, const InputFile &first) {
  struct stat status;
  const char *const not_this = first.known ? INPUT_HAS_CHANGED : INPUT_OPEN_ERROR;
  if (::stat(path, &status) != 0)
    return sayAndFail(INPUT_OPEN_ERROR);
  if (!canBeReadTwice(status)) // not even opened: that can wait for ever, or disturb whoever writes to a pipe
    return sayAndFail(not_this);
  const int descriptor = ::open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  Stream stream(descriptor < 0 ? nullptr : ::fdopen(descriptor, "rb"));
  if (!stream) {
    if (descriptor >= 0)
      ::close(descriptor);
    return sayAndFail(INPUT_OPEN_ERROR);
  }
  const InputFile second = identify(stream.get());
  return second.known && (!first.known || first == second) ? std::move(stream) : sayAndFail(not_this);
}

} // namespace kova
