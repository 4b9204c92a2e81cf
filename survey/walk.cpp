#include "survey/walk.h"

#include "common/parallel.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <dirent.h>
#include <exception>
#include <fnmatch.h>
#include <memory>
#include <strings.h>
#include <sys/stat.h>
#include <unordered_set>
#include <utility>

namespace kova::survey {

namespace {

struct IdentityHash {
  std::size_t operator()(const Identity &identity) const { return identity.number * 31 + identity.device; }
};

/// What was found, and then what it is.
struct Found {
  Input input;
  bool named = false; ///< by the user; else in a folder
  bool wanted = true; ///< a file, or something that the user has to know of
};

/// A search, with what it has found by now.
struct FolderWalk {
  const Search &search;
  std::vector<Found> found = {};
  std::vector<std::string> folders = {}; ///< to look into
};

bool fits(const Search &search, const char *name) {
  const std::size_t length = std::strlen(name);
  if (search.names.empty())
    return length >= 3 && ::strcasecmp(name + length - 3, ".kb") == 0;
  return std::any_of(search.names.begin(), search.names.end(),
                     [&](const std::string &pattern) { return ::fnmatch(pattern.c_str(), name, 0) == 0; });
}

/// What the user has named is taken, whatever it is.
void addNamed(FolderWalk &walk, const std::string &path) {
  struct stat status;
  if (::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode))
    walk.folders.push_back(path);
  else
    walk.found.push_back({.input = {.path = path}, .named = true});
}

/// @return whether an entry of a folder is a folder, and no link to one.
bool isFolder(const dirent &entry, const std::string &path) {
  struct stat status;
  if (entry.d_type != DT_UNKNOWN)
    return entry.d_type == DT_DIR;
  return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

void addEntry(FolderWalk &walk, const std::string &folder, const dirent &entry) {
  if (std::strcmp(entry.d_name, ".") == 0 || std::strcmp(entry.d_name, "..") == 0)
    return;
  std::string path = folder + entry.d_name;
  if (isFolder(entry, path))
    walk.folders.push_back(std::move(path));
  else if (fits(walk.search, entry.d_name))
    walk.found.push_back({.input = {.path = std::move(path)}});
}

void lookInto(FolderWalk &walk, const std::string &folder) {
  const std::unique_ptr<DIR, int (*)(DIR *)> stream(::opendir(folder.c_str()), ::closedir);
  const std::string prefix = folder.ends_with('/') ? folder : folder + '/';
  errno = stream ? 0 : errno;
  while (const dirent *const entry = stream ? ::readdir(stream.get()) : nullptr) {
    addEntry(walk, prefix, *entry);
    errno = 0; // an error and the end of the folder are told apart by it
  }
  if (errno != 0)
    walk.found.push_back({.input = {.path = folder, .error = std::strerror(errno), .folder = true}});
}

/// Of what is in folders, files are taken and links to files. A link that leads nowhere is a file that cannot be read.
void identify(Found &found) {
  if (!found.input.error.empty())
    return;
  struct stat status;
  if (::stat(found.input.path.c_str(), &status) != 0) {
    found.input.error = std::strerror(errno);
  } else if (!S_ISREG(status.st_mode)) {
    found.input.error = "not a regular file";
    found.wanted = found.named;
  } else {
    found.input.bytes = static_cast<std::uint64_t>(status.st_size);
    found.input.modified = fileTime(status.st_mtim);
    found.input.identity = identityOf(status);
  }
}

/// The same in a thread, which nothing may leave by an exception.
void identifySafely(Found &found) noexcept {
  try {
    identify(found);
  } catch (const std::exception &) {
    found.input.error = "no memory"; // short enough to need none
  }
}

/// Leaves the first of the entries that mean the same file, or that cannot be read and have the same path.
std::vector<Input> withoutDoubles(std::vector<Found> found) {
  std::erase_if(found, [](const Found &file) { return !file.wanted; });
  std::stable_sort(found.begin(), found.end(),
                   [](const Found &a, const Found &b) { return a.input.path < b.input.path; });
  std::unordered_set<Identity, IdentityHash> seen;
  seen.reserve(found.size());
  std::vector<Input> inputs;
  inputs.reserve(found.size());
  for (Found &file : found) {
    const bool first = file.input.error.empty() ? seen.insert(file.input.identity).second
                                                : inputs.empty() || inputs.back().path != file.input.path;
    if (first)
      inputs.push_back(std::move(file.input));
  }
  return inputs;
}

} // namespace

std::vector<Input> findFiles(const Search &search) {
  FolderWalk walk{search};
  for (const std::string &path : search.paths)
    addNamed(walk, path);
  // A list of its own instead of recursion: folders may be nested as deep as their owner likes.
  while (!walk.folders.empty()) {
    const std::string folder = std::move(walk.folders.back());
    walk.folders.pop_back();
    lookInto(walk, folder);
  }
  forEachNumber(walk.found.size(), search.threads, [&](std::size_t i) { identifySafely(walk.found[i]); });
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
