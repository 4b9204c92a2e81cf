#include "survey/line_store.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <sys/file.h>
#include <sys/mman.h>
#include <unistd.h>

namespace kova::survey {

namespace {

/// A journal is called as its report, with a point in front, and behind it this and six characters that nobody can
/// foresee. Of a very long name the beginning is enough.
constexpr std::string_view JOURNAL = ".kova-";
constexpr std::size_t RANDOM = 6;
constexpr std::size_t MOST_NAME_BYTES = 200;

std::string folderOf(const std::string &target) { return target.substr(0, target.rfind('/') + 1); }

std::string journalName(const std::string &target) {
  std::string name = target.substr(target.rfind('/') + 1);
  name.resize(std::min(name.size(), MOST_NAME_BYTES));
  return "." + name + std::string(JOURNAL);
}

/// A journal is locked as long as its run lives.
bool lock(const Descriptor &file) { return ::flock(file.number, LOCK_EX | LOCK_NB) == 0; }

/// @return whether the file still lies at the path: before it was locked, another run can have removed it.
bool liesAt(const Descriptor &file, const std::string &path) {
  struct stat opened, there;
  return ::fstat(file.number, &opened) == 0 && ::lstat(path.c_str(), &there) == 0 &&
         identityOf(opened) == identityOf(there);
}

/// Makes a new private file, whose path begins with `path`.
Descriptor makeFile(std::string &path) {
  path.append(RANDOM, 'X');
  return Descriptor(::mkostemp(path.data(), O_CLOEXEC));
}

/// Opens a file of this user that may be a journal, and locks it.
Descriptor openLeft(const std::string &path) {
  Descriptor file(::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  struct stat status;
  if (::fstat(file.number, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == ::geteuid() && lock(file) &&
      liesAt(file, path))
    return file;
  return {};
}

} // namespace

void openJournal(LineStore &store, const std::string &target) {
  constexpr int TRIES = 100;
  for (int i = 0; i < TRIES; ++i) {
    store.path = folderOf(target) + journalName(target);
    store.file = makeFile(store.path);
    if (store.file.number < 0) {
      store.error = errno;
      store.path.clear();
      return;
    }
    static_cast<void>(lock(store.file)); // a file system without locks has no other run that would look for it
    if (liesAt(store.file, store.path))
      return;
    ::unlink(store.path.c_str());
  }
  store.path.clear();
  store.error = EAGAIN;
}

void openUnnamed(LineStore &store, const std::string &folder) {
  store.file = Descriptor(::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
  if (store.file.number < 0) { // not all file systems can do that
    std::string path = folder + "/" + std::string(JOURNAL);
    store.file = makeFile(path);
    if (store.file.number >= 0)
      ::unlink(path.c_str());
  }
  if (store.file.number < 0)
    store.file = Descriptor(::memfd_create("kbsurvey", MFD_CLOEXEC));
  store.error = store.file.number < 0 ? errno : 0;
}

std::string folderForUnnamed() {
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
  return error ? "/tmp" : folder.string();
}

Place append(LineStore &store, std::string_view line, std::size_t first_findings) {
  if (store.error == 0)
    store.error = writeWhole(store.file, line.data(), line.size());
  const Place place{store.size, static_cast<std::uint32_t>(line.size()), static_cast<std::uint32_t>(first_findings)};
  store.size += line.size();
  return place;
}

bool read(LineStore &store, Place place, std::string &text) {
  text.resize(place.bytes);
  for (std::size_t done = 0; done < text.size();) {
    const ssize_t got =
        ::pread(store.file.number, text.data() + done, text.size() - done, static_cast<off_t>(place.at + done));
    if (got < 0 && errno == EINTR)
      continue;
    if (got <= 0) {
      store.error = got < 0 ? errno : EIO;
      return false;
    }
    done += static_cast<std::size_t>(got);
  }
  return true;
}

bool removeStore(LineStore &store) {
  if (!store.path.empty() && ::unlink(store.path.c_str()) != 0)
    store.error = errno;
  store.path.clear();
  store.file = {};
  return store.error == 0;
}

std::vector<LineStore> leftJournals(const std::string &target) {
  const std::string folder = folderOf(target), name = journalName(target);
  std::vector<LineStore> left;
  const std::unique_ptr<DIR, int (*)(DIR *)> stream(::opendir(folder.empty() ? "." : folder.c_str()), ::closedir);
  while (const dirent *const entry = stream ? ::readdir(stream.get()) : nullptr) {
    const std::string_view found = entry->d_name;
    if (!found.starts_with(name) || found.size() != name.size() + RANDOM)
      continue;
    const std::string path = folder + entry->d_name;
    if (Descriptor file = openLeft(path); file.number >= 0)
      left.push_back({.file = std::move(file), .path = path});
  }
  return left;
}

} // namespace kova::survey
