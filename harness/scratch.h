/// Files that live as long as a test or a round of fuzzing needs them.
#pragma once

#include "kova/words.h"

#include <cstdlib>
#include <optional>
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

/// @return what `write` puts into a stream; nothing if it says that it has failed.
template <class Write> std::optional<std::string> written(Write write) {
  char *at = nullptr;
  std::size_t size = 0;
  Stream stream(::open_memstream(&at, &size));
  const bool ok = write(stream.get()) != 0;
  stream.reset();
  const std::string text(at, size);
  std::free(at);
  return ok ? std::optional(text) : std::nullopt;
}

} // namespace kova::harness
