#include "survey/walk.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <fnmatch.h>
#include <set>
#include <strings.h>
#include <sys/stat.h>
#include <utility>

namespace kova::survey {

namespace {

namespace fs = std::filesystem;

/// A file that was found, and which one it is, whatever its name.
struct Found {
  Input input;
  std::pair<dev_t, ino_t> identity = {};
};

struct Walk {
  const Search &search;
  std::vector<Found> found = {};
  std::vector<std::string> folders = {}; ///< to look into
};

void addError(Walk &walk, std::string path, std::string error) {
  walk.found.push_back({{.path = std::move(path), .error = std::move(error)}});
}

void addFile(Walk &walk, std::string path, const struct stat &status) {
  walk.found.push_back({{.path = std::move(path),
                         .bytes = static_cast<std::uint64_t>(status.st_size),
                         .modified = timeText(status.st_mtim)},
                        {status.st_dev, status.st_ino}});
}

bool fits(const Search &search, const std::string &name) {
  if (search.names.empty())
    return name.size() >= 3 && ::strcasecmp(name.c_str() + name.size() - 3, ".kb") == 0;
  return std::any_of(search.names.begin(), search.names.end(),
                     [&](const std::string &pattern) { return ::fnmatch(pattern.c_str(), name.c_str(), 0) == 0; });
}

/// What the user has named is taken, whatever it is.
void addNamed(Walk &walk, const std::string &path) {
  struct stat status;
  if (::stat(path.c_str(), &status) != 0)
    addError(walk, path, std::strerror(errno));
  else if (S_ISDIR(status.st_mode))
    walk.folders.push_back(path);
  else if (S_ISREG(status.st_mode))
    addFile(walk, path, status);
  else
    addError(walk, path, "not a regular file");
}

/// Of what is in folders, files are taken and links to files. A link that leads nowhere is a file that cannot be read.
void addEntry(Walk &walk, const fs::directory_entry &entry) {
  std::error_code ignored;
  const bool link = entry.is_symlink(ignored);
  if (!link && entry.is_directory(ignored)) {
    walk.folders.push_back(entry.path().native());
    return;
  }
  const std::string &path = entry.path().native();
  struct stat status;
  if (!fits(walk.search, entry.path().filename().native()))
    return;
  if (::stat(path.c_str(), &status) != 0)
    addError(walk, path, std::strerror(errno));
  else if (S_ISREG(status.st_mode))
    addFile(walk, path, status);
}

void lookInto(Walk &walk, const std::string &folder) {
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
    addEntry(walk, *entry);
  if (error)
    addError(walk, folder, error.message());
}

/// Leaves the first of the entries that mean the same file, or that cannot be read and have the same path.
std::vector<Input> withoutDoubles(std::vector<Found> found) {
  std::stable_sort(found.begin(), found.end(),
                   [](const Found &a, const Found &b) { return a.input.path < b.input.path; });
  std::set<std::pair<dev_t, ino_t>> seen;
  std::vector<Input> inputs;
  for (Found &file : found) {
    const bool first = file.input.error.empty() ? seen.insert(file.identity).second
                                                : inputs.empty() || inputs.back().path != file.input.path;
    if (first)
      inputs.push_back(std::move(file.input));
  }
  return inputs;
}

} // namespace

std::vector<Input> findFiles(const Search &search) {
  Walk walk{search};
  for (const std::string &path : search.paths)
    addNamed(walk, path);
  // A list of its own instead of recursion: folders may be nested as deep as their owner likes.
  while (!walk.folders.empty()) {
    const std::string folder = std::move(walk.folders.back());
    walk.folders.pop_back();
    lookInto(walk, folder);
  }
  return withoutDoubles(std::move(walk.found));
}

std::vector<std::string> splitList(std::string_view list) {
  const char separator = list.find('\0') != list.npos ? '\0' : '\n';
  std::vector<std::string> entries;
  while (!list.empty()) {
    const std::string_view entry = list.substr(0, list.find(separator));
    if (!entry.empty())
      entries.emplace_back(entry);
    list.remove_prefix(std::min(list.size(), entry.size() + 1));
  }
  return entries;
}

std::optional<Shard> parseShard(std::string_view text) {
  const std::size_t slash = text.find('/');
  if (slash == text.npos)
    return std::nullopt;
  Shard shard;
  const auto read = [](std::string_view digits, std::uint64_t &number) {
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return error == std::errc() && end == digits.data() + digits.size();
  };
  const bool ok = read(text.substr(0, slash), shard.number) && read(text.substr(slash + 1), shard.count);
  return ok && shard.number >= 1 && shard.number <= shard.count ? std::optional(shard) : std::nullopt;
}

bool inShard(std::string_view path, const Shard &shard) {
  // FNV-1a, and then a mix of its bits: its low ones alone depend on little of the path.
  std::uint64_t hash = 0xcbf29ce484222325;
  for (const char byte : path)
    hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
  hash = (hash ^ hash >> 32) * 0x9e3779b97f4a7c15;
  return (hash ^ hash >> 32) % shard.count == shard.number - 1;
}

} // namespace kova::survey
