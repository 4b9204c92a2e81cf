/// Files that live as long as a test or a round of fuzzing needs them.
#pragma once

#include <span>
#include <string>

namespace kova::harness {

/// A file of its own, in memory where the system has such a place, removed with this. One that cannot be written ends
/// the process.
struct ScratchFile {
  std::string path;

  explicit ScratchFile(std::span<const unsigned char> bytes = {});
  ScratchFile(const ScratchFile &) = delete;
  ScratchFile &operator=(const ScratchFile &) = delete;
  ~ScratchFile();
};

} // namespace kova::harness
