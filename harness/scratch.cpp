#include "harness/scratch.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace kova::harness {

namespace {

std::string scratchPath() {
  static std::atomic<int> made = 0;
  const char *const folder = ::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : std::getenv("TMPDIR");
  return std::string(folder != nullptr ? folder : "/tmp") + "/kova-scratch-" + std::to_string(::getpid()) + "-" +
         std::to_string(made++);
}

} // namespace

ScratchFile::ScratchFile(std::span<const unsigned char> bytes) : path(scratchPath()) {
  std::FILE *const file = std::fopen(path.c_str(), "wb");
  // fwrite takes no null pointer, also for nothing.
  const bool written =
      file != nullptr && (bytes.empty() || std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size());
  if (file != nullptr && std::fclose(file) == 0 && written)
    return;
  std::perror(path.c_str());
  std::abort();
}

ScratchFile::~ScratchFile() { std::remove(path.c_str()); }

} // namespace kova::harness
