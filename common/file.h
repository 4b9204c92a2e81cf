/// Files as the system knows them.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace kova {

/// An open file that closes itself; a negative number where opening failed.
struct Descriptor {
  int number = -1;

  Descriptor() = default;
  explicit Descriptor(int opened) : number(opened) {}
  Descriptor(Descriptor &&other) noexcept : number(std::exchange(other.number, -1)) {}
  Descriptor &operator=(Descriptor &&other) noexcept {
    std::swap(number, other.number);
    return *this;
  }
  ~Descriptor();
};

/// Which file it is, whatever its name.
struct Identity {
  dev_t device = 0;
  ino_t number = 0;

  bool operator==(const Identity &) const = default;
};

inline Identity identityOf(const struct stat &status) { return {status.st_dev, status.st_ino}; }

/// @return which file lies at a path, behind links; none if there is none.
std::optional<Identity> identityOf(const std::string &path);

/// @return the regular file or the pipe that a standard stream is; none for a terminal, a device, and one that is
/// closed, into which anything may be printed.
std::optional<Identity> fileAt(int stream);

/// @return whether a standard stream is one of the files at some paths, as `fileAt` has it.
bool isOneOf(int stream, const std::vector<std::string> &paths);

/// Follows links, also one that leads to nothing yet. @return the path that a file would get that is written there,
/// from the root.
std::string targetOf(const std::string &path);

/// Opens a file for reading without waiting: the opening of a pipe would wait for somebody to write.
Descriptor openToRead(const char *path);

/// Called first by a program that writes files. No file that is opened later takes the number of a standard stream that
/// is closed: what is printed would get into it. Printing fails as before. A file that becomes too large for a limit is
/// a failure that can be told, no signal.
void prepareStreams();

inline constexpr const char *FILE_HAS_CHANGED = "it has changed";

/// Writes bytes to a file, wherever it stands. @return 0 or the system's reason.
int writeWhole(const Descriptor &file, const void *bytes, std::size_t size);

/// Reads a file whole, from its start. @return null, or why it cannot be read, for people: `FILE_HAS_CHANGED` where it
/// has become shorter.
const char *readWhole(const Descriptor &file, std::size_t bytes, unsigned char *to);

} // namespace kova
