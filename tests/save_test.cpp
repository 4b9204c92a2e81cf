/// A save leaves the old file or the new one, with the right permissions, and nothing else.

#include "kova/kb.h"
#include "tests/support.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kova::test {

namespace {

namespace fs = std::filesystem;

Bytes bytesOf(const std::string &text) { return Bytes(text.begin(), text.end()); }

/// A folder of its own, removed with this.
struct ScratchFolder {
  std::string path;

  ScratchFolder() {
    path = ScratchFile().path + "-folder";
    fs::create_directory(path);
  }
  ScratchFolder(const ScratchFolder &) = delete;
  ScratchFolder &operator=(const ScratchFolder &) = delete;
  ~ScratchFolder() { fs::remove_all(path); }

  std::size_t files() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(path), fs::directory_iterator()));
  }
};

/// The folder is the current one while this lives. Paths in it are then found also by a user to whom the folders above
/// are closed.
struct Inside {
  fs::path before = fs::current_path();

  explicit Inside(const ScratchFolder &folder) { fs::current_path(folder.path); }
  Inside(const Inside &) = delete;
  Inside &operator=(const Inside &) = delete;
  ~Inside() { fs::current_path(before); }
};

/// Saves a model. @return what was printed on standard error, and the result.
std::string save(const Kis &kis, const std::string &path) {
  int ok = 0;
  const std::string errors = capture([&] { ok = kvSaveAsKb(kis, path.c_str()); }).err;
  return errors + (ok ? "saved" : "failed");
}

/// The same for the bytes of a file; the result with the system's reason.
std::string save(const Bytes &bytes, const std::string &path, Existing existing = Existing::replace,
                 unsigned mode = 0666) {
  int ok = 0;
  int reason = 0;
  const std::string errors = capture([&] {
                               ok = kvSaveBytes(bytes, path.c_str(), existing, mode);
                               reason = errno;
                             }).err;
  return errors + (ok ? "saved" : std::strerror(reason));
}

mode_t modeOf(const std::string &path) {
  struct stat status {};
  ::lstat(path.c_str(), &status);
  return status.st_mode;
}

} // namespace

/// A model or bytes, under a long name or through links, the first of which leads to nothing at first.
TEST(Save, ReplacesTheTargetAndKeepsItsPermissions) {
  const ScratchFolder folder;
  fs::create_directory(folder.path + "/there");
  fs::create_symlink("there/second", folder.path + "/first");
  fs::create_symlink("file", folder.path + "/there/second");
  Kis kis;
  ASSERT_TRUE(loadBytes(goodFile1().bytes, kis));
  const std::string name = folder.path + '/' + std::string(250, 'n'); // no room for an ending
  for (const auto &[path, target] : {std::pair{name, name}, {folder.path + "/first", folder.path + "/there/file"}}) {
    const mode_t mask = ::umask(027);
    EXPECT_EQ(save(Bytes(300000, 0xa5), path), "saved"); // no KOVA file
    ::umask(mask);
    EXPECT_EQ(modeOf(target), S_IFREG | 0640U);
    ::chmod(target.c_str(), 07604); // a saved file has no set-user-ID bit
    EXPECT_EQ(save(kis, path), "saved");
    EXPECT_EQ(bytesOf(readFile(target)), goodFile1().bytes);
    EXPECT_EQ(save(Bytes(), path), "saved");
    EXPECT_EQ(bytesOf(readFile(target)), Bytes());
    EXPECT_EQ(modeOf(target), S_IFREG | 0604U);
    EXPECT_EQ(fs::is_symlink(path), path != target);
  }
  EXPECT_TRUE(fs::is_symlink(folder.path + "/there/second"));
  fs::create_symlink("round", folder.path + "/round");
  EXPECT_EQ(save(kis, folder.path + "/round"), "Output File Open Error\nfailed");
  EXPECT_EQ(folder.files(), 4U);
}

/// What is there already, or appears while the file is written, stays.
TEST(Save, ANewFileTakesAFreeNameOnly) {
  const ScratchFolder folder;
  const std::string path = folder.path + "/file", link = folder.path + "/link";
  fs::create_symlink("nothing", link);
  const mode_t mask = ::umask(022);
  EXPECT_EQ(save(Bytes(9), path, Existing::refuse, 07620), "saved");
  ::umask(mask);
  EXPECT_EQ(modeOf(path), S_IFREG | 0600U);
  for (const std::string &taken : {path, link, folder.path})
    EXPECT_EQ(save(Bytes(10), taken, Existing::refuse), "File exists");
  EXPECT_EQ(fs::file_size(path), 9U);
  const std::string late = folder.path + "/late";
  EXPECT_EQ(kvSaveFile(late.c_str(), Existing::refuse, 0600,
                       [&](std::FILE *) { return save(Bytes(7), late) == "saved" ? 1 : 0; }),
            0);
  EXPECT_EQ(errno, EEXIST);
  EXPECT_EQ(fs::file_size(late), 7U);
  const std::string taken = folder.path + "/taken"; // by a folder, which no file replaces
  EXPECT_EQ(kvSaveFile(taken.c_str(), Existing::replace, 0600,
                       [&](std::FILE *) {
                         for (const fs::directory_entry &entry : fs::directory_iterator(folder.path))
                           if (const std::string name = entry.path().filename(); name.starts_with('.')) {
                             EXPECT_EQ(name.size(), std::string(".kova-0123456789abcdef").size()) << name;
                           }
                         return fs::create_directory(taken) ? 1 : 0;
                       }),
            0);
  EXPECT_EQ(errno, EISDIR);
  EXPECT_EQ(folder.files(), 4U);
}

/// A process that is told to end while it saves ends afterwards: nothing is left beside the target.
TEST(Save, ASignalLeavesNothingBehind) {
  const ScratchFolder folder;
  const std::string path = folder.path + "/file";
  for (const int signal : {SIGTERM, SIGINT, SIGPIPE}) {
    const pid_t child = ::fork();
    if (child == 0) {
      ::signal(signal, SIG_DFL); // shells let what runs in the background ignore some
      kvSaveFile(path.c_str(), Existing::replace, 0600, [&](std::FILE *) { return ::raise(signal) == 0 ? 1 : 0; });
      ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal);
    EXPECT_EQ(folder.files(), 1U);
  }
}

/// Also on a disk that is full, as a limit on the size of files makes one.
TEST(Save, AFailureLeavesTheTargetAsItWas) {
  const ScratchFolder folder;
  const std::string path = folder.path + "/file";
  Kis kis;
  ASSERT_TRUE(loadBytes(goodFile1().bytes, kis));
  ASSERT_EQ(save(kis, path), "saved");
  for (const std::string &wrong : {folder.path, folder.path + "/none/file", path + "/file"})
    EXPECT_EQ(save(kis, wrong), "Output File Open Error\nfailed");
  EXPECT_EQ(save(Bytes(1), folder.path), "Is a directory");
  if (fs::exists("/dev/full")) {
    EXPECT_EQ(save(kis, "/dev/full"), "Output File Write Error\nfailed");
    EXPECT_EQ(save(Bytes(1), "/dev/full"), "No space left on device");
    EXPECT_TRUE(fs::is_character_file("/dev/full")) << "a device is not replaced";
  }
  kis.file_header.version = 0; // writing fails after the new file was made
  struct rlimit before {};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const struct rlimit small = {100000, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  for (const std::string &to : {path, folder.path + "/new"}) {
    EXPECT_EQ(save(kis, to), "Output File Write Error\nfailed");
    EXPECT_EQ(save(Bytes(300000), to), "File too large");
  }
  EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
  EXPECT_EQ(bytesOf(readFile(path)), goodFile1().bytes);
  EXPECT_EQ(folder.files(), 1U);
  const std::string pipe = folder.path + "/pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(save(Bytes(1), pipe), "No such device or address") << "a pipe that nobody reads";
}

/// Owner and group stay where the system allows it; a group that has to change gets no more than everybody.
TEST(Save, KeepsOwnerAndGroupWhereItMay) {
  if (::geteuid() != 0)
    GTEST_SKIP() << "only the superuser gives files away";
  const ScratchFolder folder;
  const Inside inside(folder);
  const std::string path = "file";
  const auto saveAs = [&](uid_t user) {
    EXPECT_EQ(save(Bytes(1), path), "saved");
    EXPECT_EQ(::chown(path.c_str(), 65534, 12345), 0);
    ::chmod(path.c_str(), 0664);
    EXPECT_EQ(::seteuid(user), 0);
    EXPECT_EQ(save(Bytes(2), path), "saved");
    EXPECT_EQ(::seteuid(0), 0);
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return std::array<unsigned, 3>{status.st_uid, status.st_gid, status.st_mode & 0777U};
  };
  EXPECT_EQ(saveAs(0), (std::array<unsigned, 3>{65534, 12345, 0664}));
  ::chmod(folder.path.c_str(), 0777);
  EXPECT_EQ(saveAs(65534), (std::array<unsigned, 3>{65534, ::getegid(), 0644}));
}

/// Whoever may not write to the file or its folder cannot save there, also where the other one would allow it.
TEST(Save, NeedsTheRightToWrite) {
  Kis kis;
  EXPECT_TRUE(loadBytes(goodFile1().bytes, kis));
  const ScratchFolder folder;
  const Inside inside(folder);
  // The superuser may write everywhere, and so is somebody else for a while.
  constexpr uid_t NOBODY = 65534;
  const uid_t user = ::geteuid();
  if (user == 0 && (::chown(".", NOBODY, gid_t(-1)) != 0 || ::seteuid(NOBODY) != 0))
    GTEST_SKIP() << "the superuser may write everywhere, and cannot become somebody else";
  EXPECT_EQ(save(kis, "file"), "saved");
  ::chmod("file", 0400);
  EXPECT_EQ(save(kis, "file"), "Output File Open Error\nfailed");
  ::chmod("file", 0600);
  ::chmod(".", 0500);
  EXPECT_EQ(save(kis, "file"), "Output File Open Error\nfailed");
  EXPECT_EQ(save(kis, "new"), "Output File Open Error\nfailed");
  ::chmod(".", 0700);
  EXPECT_EQ(bytesOf(readFile("file")), goodFile1().bytes);
  EXPECT_EQ(::seteuid(user), 0);
  EXPECT_EQ(folder.files(), 1U);
}

} // namespace kova::test
