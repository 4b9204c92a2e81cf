/// Files that are read whole.
#pragma once

#include <cstddef>

namespace kova {

/// An open file that closes itself; a negative number where opening failed.
struct Descriptor {
  int number;

  explicit Descriptor(int opened) : number(opened) {}
  Descriptor(const Descriptor &) = delete;
  Descriptor &operator=(const Descriptor &) = delete;
  ~Descriptor();
};

/// Opens a file for reading without waiting: the opening of a pipe would wait for somebody to write.
Descriptor openToRead(const char *path);

/// Sees to it that no file that is opened later takes the number of a standard stream that is closed: what is printed
/// would get into it. Printing fails as before.
void occupyStandardStreams();

inline constexpr const char *FILE_HAS_CHANGED = "it has changed";

/// Reads a file whole, from its start. @return null, or why it cannot be read, for people: `FILE_HAS_CHANGED` where it
/// has become shorter.
const char *readWhole(const Descriptor &file, std::size_t bytes, unsigned char *to);

} // namespace kova
