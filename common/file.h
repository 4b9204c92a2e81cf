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

/// Reads a file whole. @return 0 or the system's reason; ESTALE where the file has become shorter.
int readWhole(const Descriptor &file, std::size_t bytes, unsigned char *to);

} // namespace kova
