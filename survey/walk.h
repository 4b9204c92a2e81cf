/// The search for files.
#pragma once

#include "survey/audit.h"

#include <string>
#include <string_view>
#include <vector>

namespace kova::survey {

struct Search {
  std::vector<std::string> paths; ///< files and folders
  std::vector<std::string> names; ///< patterns of the names in folders; empty for *.kb in any case
  std::size_t threads = 1;
};

/// Finds the files to audit: those that are named, and in folders those whose names fit. Links to folders are followed
/// only where they are named. What cannot be read is among them, too, with the reason.
/// @return the files by path; one that has several names stands there once, with the first of them.
std::vector<Input> findFiles(const Search &search);

/// @return the entries of a list that are separated by NUL, if there is one in the list, else by line breaks.
std::vector<std::string> splitList(std::string_view list);

/// The part of the files that one of several machines audits.
struct Shard {
  std::uint64_t number = 1; ///< from 1
  std::uint64_t count = 1;
};

/// @return the shard of "I/N"; none for another text.
std::optional<Shard> parseShard(std::string_view text);

/// @return whether a file is in a shard. That depends on nothing but its path, so that shards of a folder that changes
/// meanwhile still have no file twice.
bool inShard(std::string_view path, const Shard &shard);

} // namespace kova::survey
