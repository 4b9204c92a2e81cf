#include "reader/file.h"

#include "reader/findings.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
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

Stream sayCannotOpen() {
  report<"input-open">({}, {});
  return nullptr;
}

/// The second opening found something else than the first one had read, if that could be identified.
Stream sayNotTheSame(const InputFile &first) {
  if (!first.known)
    return sayCannotOpen();
  report<"input-changed">({}, {});
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

std::size_t readBytes(Input &input, void *to, std::size_t bytes) {
  if (input.stream != nullptr)
    return readBytes(input.stream, to, bytes);
  const std::uint64_t there = input.bytes.size() - std::min<std::uint64_t>(input.at, input.bytes.size());
  const auto got = static_cast<std::size_t>(std::min<std::uint64_t>(bytes, there));
  if (got != 0)
    std::memcpy(to, input.bytes.data() + input.at, got);
  input.at += got;
  return got;
}

std::optional<std::uint64_t> inputPlace(const Input &input) {
  return input.stream != nullptr ? streamPlace(input.stream) : input.at;
}

bool seekInput(Input &input, std::uint64_t place) {
  if (input.stream != nullptr)
    return seekStream(input.stream, place);
  input.at = place;
  return true;
}

std::optional<std::uint64_t> inputLength(const Input &input) {
  return input.stream != nullptr ? streamLength(input.stream) : input.bytes.size();
}

InputFile identify(std::FILE *stream) {
  struct stat status;
  return ::fstat(::fileno(stream), &status) == 0 ? identityOf(status) : InputFile{};
}

Stream openAgain(const char *path, const InputFile &first) {
  struct stat status;
  if (::stat(path, &status) != 0)
    return sayCannotOpen();
  if (!canBeReadTwice(status)) // not even opened: that can wait for ever, or disturb whoever writes to a pipe
    return sayNotTheSame(first);
  const int descriptor = ::open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  Stream stream(descriptor < 0 ? nullptr : ::fdopen(descriptor, "rb"));
  if (!stream) {
    if (descriptor >= 0)
      ::close(descriptor);
    return sayCannotOpen();
  }
  const InputFile second = identify(stream.get());
  if (second.known && (!first.known || first == second))
    return stream;
  return sayNotTheSame(first);
}

} // namespace kova
