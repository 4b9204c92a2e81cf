/// The audit of one file.
#pragma once

#include "survey/record.h"

#include <memory>

namespace kova::survey {

/// A file to audit, as the search has found it.
struct Input {
  std::string path = {};
  std::uint64_t bytes = 0;
  std::string modified = {}; ///< as in `Record`
  std::string error = {};    ///< why it cannot be read; empty if it can, as far as is known
  bool folder = false;       ///< it is a folder, which is only here because it cannot be read
};

/// @return a time as `Record::modified` shows it.
std::string timeText(const struct timespec &time);

/// Small files are read whole, with one call, before they are loaded.
inline constexpr std::size_t SMALL_FILE = 1024 * 1024;

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
Record audit(Input input, Questions asked, Workspace &workspace) noexcept;

} // namespace kova::survey
