/// Saving a file: a new one beside the target that takes its place when it is whole.
#include "kova/kb.h"

#include "reader/findings.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace kova {

namespace {

/// How saving ended.
struct Saved {
  enum Outcome { whole, notOpened, notWritten } outcome = whole;
  int reason = 0; ///< the system's
};

Saved failed(Saved::Outcome outcome) { return {outcome, errno}; }

/// Holds back the signals that would end the process while its new file is there under a name that nobody knows. Where
/// the file has become too large, saving fails instead.
struct HeldSignals {
  sigset_t before;

  HeldSignals() {
    sigset_t ending;
    ::sigemptyset(&ending);
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGXCPU, SIGXFSZ})
      ::sigaddset(&ending, signal);
    ::pthread_sigmask(SIG_BLOCK, &ending, &before);
  }
  HeldSignals(const HeldSignals &) = delete;
  HeldSignals &operator=(const HeldSignals &) = delete;
  ~HeldSignals() {
    sigset_t pending;
    if (::sigismember(&before, SIGXFSZ) == 0 && ::sigpending(&pending) == 0 && ::sigismember(&pending, SIGXFSZ) == 1) {
      sigset_t too_large;
      int signal = 0;
      ::sigemptyset(&too_large);
      ::sigaddset(&too_large, SIGXFSZ);
      ::sigwait(&too_large, &signal);
    }
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  }
};

/// A new file, removed with this unless it was given its place.
struct NewFile {
  std::string path;
  Stream stream;

  NewFile() = default;
  NewFile(const NewFile &) = delete;
  NewFile &operator=(const NewFile &) = delete;
  ~NewFile() {
    if (!path.empty())
      ::unlink(path.c_str());
  }
};

/// @return the folder part of a path, with its slash; empty for a name alone.
std::string folderOf(const std::string &path) { return path.substr(0, path.rfind('/') + 1); }

/// Follows `path` while it is a symbolic link, also one that leads to nothing yet. @return false after too many, and
/// where the system does not say.
bool followLinks(std::string &path) {
  for (int links = 0; links < 40; ++links) {
    std::array<char, 4096> to;
    const ssize_t length = ::readlink(path.c_str(), to.data(), to.size());
    if (length < 0)
      return errno == EINVAL || errno == ENOENT; // no link, or nothing yet
    if (length == static_cast<ssize_t>(to.size()))
      break;
    const std::string next(to.data(), static_cast<std::size_t>(length));
    path = next.starts_with('/') ? next : folderOf(path) + next;
  }
  errno = ELOOP;
  return false;
}

/// @return ".kova-" and 16 digits that nobody can foresee; empty where the system has none.
std::string newName() {
  std::array<unsigned char, 8> random;
  if (::getentropy(random.data(), random.size()) != 0)
    return {};
  std::string name = ".kova-";
  for (const unsigned char byte : random) {
    name += "0123456789abcdef"[byte >> 4];
    name += "0123456789abcdef"[byte & 15];
  }
  return name;
}

/// Creates a file in a folder under a name that was not there.
bool create(NewFile &file, const std::string &folder, mode_t mode) {
  for (int tries = 0; tries < 100; ++tries) {
    const std::string name = newName();
    if (name.empty())
      return false;
    std::string path = folder + name;
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
    if (descriptor < 0 && errno == EEXIST)
      continue;
    if (descriptor < 0)
      return false;
    file.path = std::move(path);
    file.stream.reset(::fdopen(descriptor, "wb"));
    if (!file.stream)
      ::close(descriptor);
    return file.stream != nullptr;
  }
  return false;
}

/// @return whether this process may write to a file that is there.
bool mayWrite(const std::string &path) {
  const int descriptor = ::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK);
  return descriptor >= 0 && ::close(descriptor) == 0;
}

/// Gives the new file owner, group and permissions of the old one. Owner and group stay another's where the system does
/// not allow it; another group gets no more than everybody.
bool resemble(const NewFile &file, const struct stat &old) {
  const int descriptor = ::fileno(file.stream.get());
  mode_t mode = old.st_mode & 0777;
  if (::fchown(descriptor, old.st_uid, old.st_gid) != 0 &&
      ::fchown(descriptor, static_cast<uid_t>(-1), old.st_gid) != 0)
    mode = (mode & 0707) | ((mode & 07) << 3);
  return ::fchmod(descriptor, mode) == 0;
}

bool closeStream(Stream &stream) { return std::fclose(stream.release()) == 0; }

/// Writes the new file, whole and to the disk.
bool writeToDisk(NewFile &file, const Writing &write) {
  std::FILE *const stream = file.stream.get();
  const bool written = write(stream) != 0 && std::fflush(stream) == 0 && ::fsync(::fileno(stream)) == 0;
  const int reason = errno;
  const bool closed = closeStream(file.stream);
  if (!written)
    errno = reason;
  return closed && written;
}

/// Gives the new file a name that nothing has. Some file systems know only one of the two ways.
bool takeFreeName(NewFile &file, const std::string &target) {
#ifdef RENAME_NOREPLACE
  if (::renameat2(AT_FDCWD, file.path.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) {
    file.path.clear();
    return true;
  }
  if (errno != EINVAL && errno != ENOSYS)
    return false;
#endif
  return ::link(file.path.c_str(), target.c_str()) == 0;
}

bool takeName(NewFile &file, const std::string &target) {
  if (::rename(file.path.c_str(), target.c_str()) != 0)
    return false;
  file.path.clear();
  return true;
}

/// Makes a new file. @param mode its permissions, less those that the umask withholds; no other bits are taken from it
Saved saveNew(const Writing &write, const std::string &target, Existing existing, mode_t mode) {
  const HeldSignals held;
  NewFile file;
  if (!create(file, folderOf(target), mode & 0777))
    return failed(Saved::notOpened);
  if (!writeToDisk(file, write))
    return failed(Saved::notWritten);
  const bool named = existing == Existing::refuse ? takeFreeName(file, target) : takeName(file, target);
  return named ? Saved{} : failed(Saved::notWritten);
}

/// Puts a new file in the place of a regular one.
Saved replaceFile(const Writing &write, const std::string &target, const struct stat &old) {
  const HeldSignals held;
  NewFile file;
  // Until it has the permissions of the old one, nobody else may read it.
  if (!mayWrite(target) || !create(file, folderOf(target), 0600) || !resemble(file, old))
    return failed(Saved::notOpened);
  return writeToDisk(file, write) && takeName(file, target) ? Saved{} : failed(Saved::notWritten);
}

/// Writes to what cannot be replaced: a device, a pipe that somebody reads.
Saved writeInPlace(const Writing &write, const char *path) {
  const int descriptor = ::open(path, O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC); // does not wait for a reader
  if (descriptor < 0)
    return failed(Saved::notOpened);
  Stream stream(::fcntl(descriptor, F_SETFL, 0) == 0 ? ::fdopen(descriptor, "wb") : nullptr);
  if (!stream) {
    ::close(descriptor);
    return failed(Saved::notOpened);
  }
  if (write(stream.get()) == 0)
    return failed(Saved::notWritten);
  return closeStream(stream) ? Saved{} : failed(Saved::notWritten);
}

/// Saves a file whole or not at all, unless the target is one that cannot be replaced.
Saved save(const char *path, Existing existing, mode_t mode, const Writing &write) {
  try {
    std::string target = path;
    struct stat status;
    errno = 0;
    if (existing == Existing::refuse) {
      if (::lstat(path, &status) != 0)
        return saveNew(write, target, existing, mode);
      errno = EEXIST;
      return failed(Saved::notOpened);
    }
    const bool exists = ::stat(path, &status) == 0;
    if (exists && !S_ISREG(status.st_mode))
      return writeInPlace(write, path);
    if ((!exists && errno != ENOENT) || !followLinks(target))
      return failed(Saved::notOpened);
    return exists ? replaceFile(write, target, status) : saveNew(write, target, existing, mode);
  } catch (const std::exception &) { // the memory for a path
    errno = ENOMEM;
    return failed(Saved::notOpened);
  }
}

} // namespace

int kvSaveAsKb(const Kis &kis, const char *path) {
  const Saved saved = save(path, Existing::replace, 0666, [&](std::FILE *stream) { return kvWriteKb(stream, kis); });
  switch (saved.outcome) {
  case Saved::notOpened:
    return report<"output-open">({}, {});
  case Saved::notWritten:
    return report<"output-write">({}, {});
  case Saved::whole:
    break;
  }
  return 1;
}

int kvSaveFile(const char *path, Existing existing, unsigned mode, const Writing &write) {
  const Saved saved = save(path, existing, mode, write);
  errno = saved.reason;
  return saved.outcome == Saved::whole ? 1 : 0;
}

int kvSaveBytes(std::span<const unsigned char> bytes, const char *path, Existing existing, unsigned mode) {
  return kvSaveFile(path, existing, mode, [&](std::FILE *stream) {
    return bytes.empty() || std::fwrite(bytes.data(), 1, bytes.size(), stream) == bytes.size() ? 1 : 0;
  });
}

} // namespace kova
