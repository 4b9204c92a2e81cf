/// Saving a file: a new one beside the target that takes its place when it is whole.
#include "kova/kb.h"

#include <array>
#include <cerrno>
#include <exception>
#include <fcntl.h>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace kova {

namespace {

/// Writes the whole content of a file to a stream and flushes it. @return 1; 0 where it fails.
using Write = std::function<int(std::FILE *)>;

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

int sayAndFail(const char *message) {
  std::fputs(message, stderr);
  return 0;
}

/// @return the folder part of a path, with its slash; empty for a name alone.
std::string folderOf(const std::string &path) { return path.substr(0, path.rfind('/') + 1); }

/// Follows `path` while it is a symbolic link, also one that leads to nothing yet. @return false after too many.
bool followLinks(std::string &path) {
  for (int links = 0; links < 40; ++links) {
    std::array<char, 4096> to;
    const ssize_t length = ::readlink(path.c_str(), to.data(), to.size());
    if (length < 0) // no link
      return true;
    if (length == static_cast<ssize_t>(to.size()))
      return false;
    const std::string next(to.data(), static_cast<std::size_t>(length));
    path = next.starts_with('/') ? next : folderOf(path) + next;
  }
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
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
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

bool closeStream(Stream &stream) { return std::fclose(stream.release()) == 0; }

/// Writes the new file, whole and to the disk, and gives it the place of the target.
bool writeAndReplace(NewFile &file, const Write &write, const std::string &target) {
  const bool written = write(file.stream.get()) != 0 && ::fsync(::fileno(file.stream.get())) == 0;
  if (!closeStream(file.stream) || !written || ::rename(file.path.c_str(), target.c_str()) != 0)
    return false;
  file.path.clear();
  return true;
}

/// Replaces a regular file, or makes a new one where `old` is null.
int replaceFile(const Write &write, const std::string &target, const struct stat *old) {
  NewFile file;
  // Until it has the permissions of the old one, nobody else may read it.
  if ((old && !mayWrite(target)) || !create(file, folderOf(target), old ? 0600 : 0666))
    return sayAndFail(OUTPUT_OPEN_ERROR);
  if (old && ::fchmod(::fileno(file.stream.get()), old->st_mode & 0777) != 0)
    return sayAndFail(OUTPUT_OPEN_ERROR);
  return writeAndReplace(file, write, target) ? 1 : sayAndFail(OUTPUT_WRITE_ERROR);
}

/// Writes to what cannot be replaced: a device, a pipe.
int writeInPlace(const Write &write, const std::string &target) {
  Stream stream = kvKbWriteOpen(target.c_str());
  if (!stream)
    return 0;
  const bool written = write(stream.get()) != 0;
  return closeStream(stream) && written ? 1 : sayAndFail(OUTPUT_WRITE_ERROR);
}

/// Saves a file whole or not at all, unless the target is one that cannot be replaced.
int save(const char *path, const Write &write) {
  try {
    std::string target = path;
    struct stat status;
    if (!followLinks(target))
      return sayAndFail(OUTPUT_OPEN_ERROR);
    const bool exists = ::stat(target.c_str(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode))
      return writeInPlace(write, target);
    return replaceFile(write, target, exists ? &status : nullptr);
  } catch (const std::exception &) { // the memory for a path
    return sayAndFail(OUTPUT_OPEN_ERROR);
  }
}

} // namespace

int kvSaveAsKb(const Kis &kis, const char *path) {
  return save(path, [&](std::FILE *stream) { return kvWriteKb(stream, kis); });
}

int kvSaveKbBytes(std::span<const unsigned char> bytes, const char *path) {
  return save(path, [&](std::FILE *stream) {
    const bool written = bytes.empty() || std::fwrite(bytes.data(), 1, bytes.size(), stream) == bytes.size();
    return written && std::fflush(stream) == 0 ? 1 : 0;
  });
}

} // namespace kova
