/// The audit of one file.
#pragma once

#include "common/file.h"
#include "survey/file_result.h"

#include <memory>

namespace kova::survey {

/// A file to audit, as the search has found it.
struct Input {
  std::string path = {};
  std::uint64_t bytes = 0;
  std::optional<FileTime> modified = {};
  std::string error = {}; ///< why it cannot be read; empty if it can, as far as is known
  Identity identity = {}; ///< of a file that is there
  bool folder = false;    ///< it is a folder, which is only here because it cannot be read
};

/// @return a time that the system tells.
FileTime fileTime(const struct timespec &time);

/// Small files are read whole, with one call, before they are loaded.
inline constexpr std::size_t SMALL_FILE = 1024 * 1024;

/// Of larger files it is not known whether they can be mended: that takes the memory of the file and of its model.
inline constexpr std::uint64_t MOST_REPAIR_BYTES = 256 * 1024 * 1024;

/// What is asked beyond the verdict.
struct Questions {
  bool deep = false;
  bool repairable = false;
};

/// What a worker needs again and again; made when it is first needed.
struct Workspace {
  std::unique_ptr<unsigned char[]> bytes = nullptr;
};

/// Audits one file. Its memory is free again when this returns. A file for which there is not enough memory has no
/// verdict.
FileResult audit(Input input, Questions asked, Workspace &workspace) noexcept;

} // namespace kova::survey
