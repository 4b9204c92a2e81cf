#include "diff/diff.h"

#include "common/parallel.h"
#include "common/text.h"
#include "diff/scene.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <map>
#include <mutex>
#include <strings.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace kova::diff {

namespace {

namespace fs = std::filesystem;

/// A path in the folders, and what was found of it.
struct FilePair {
  std::string path = {};
  bool is_in_a = false;
  bool is_in_b = false;
  Status status = SAME;
  std::string text = {};
  std::string reason = {}; ///< of trouble
  bool is_done = false;
};

bool isScene(const std::string &name) {
  return name.size() >= 3 && ::strcasecmp(name.c_str() + name.size() - 3, ".kb") == 0;
}

/// @return whether something holds no scene: a folder, or a pipe or a device, which may have no end. Links are
/// followed.
bool isNoFile(const fs::directory_entry &entry) {
  std::error_code ignored;
  const fs::file_status status = entry.status(ignored);
  return fs::status_known(status) && fs::exists(status) && !fs::is_regular_file(status);
}

/// Finds the scenes in a folder, by their paths in it. Links to folders are not followed. Throws `Trouble`.
std::vector<std::string> scenesIn(const std::string &folder) {
  std::vector<std::string> found;
  std::error_code error;
  for (fs::recursive_directory_iterator at(folder, error), end; !error && at != end; at.increment(error))
    if (isScene(at->path().filename().string()) && !isNoFile(*at))
      found.push_back(at->path().lexically_relative(folder).string());
  if (error)
    throw Trouble{folder, error.message()};
  return found;
}

std::vector<FilePair> pairsOf(const Options &options) {
  std::map<std::string, FilePair> pairs;
  for (const std::string &path : scenesIn(options.a))
    pairs[path].is_in_a = true;
  for (const std::string &path : scenesIn(options.b))
    pairs[path].is_in_b = true;
  std::vector<FilePair> all;
  for (auto &[path, pair] : pairs) {
    pair.path = path;
    all.push_back(std::move(pair));
  }
  return all;
}

void addMember(std::string &json, const char *key, std::size_t value) {
  json += (json.size() > 1 ? ",\"" : "\"") + std::string(key) + "\":" + std::to_string(value);
}

/// @return the paths of the files that are compared.
std::vector<std::string> pathsOf(const Options &options, const std::vector<FilePair> &pairs) {
  std::vector<std::string> paths;
  for (const FilePair &pair : pairs)
    for (const std::string &folder : {options.a, options.b})
      paths.push_back((fs::path(folder) / pair.path).string());
  return paths;
}

/// Compares the files of a path, if both are there.
void comparePair(const Options &options, const Style &style, FilePair &pair) {
  Printer printer = {.look = options.look,
                     .style = style,
                     .path_a = (fs::path(options.a) / pair.path).string(),
                     .path_b = (fs::path(options.b) / pair.path).string(),
                     .path = pair.path};
  const std::string shown = showOf(style)(pair.path);
  if (pair.is_in_a && pair.is_in_b) {
    pair.status = diffFiles(options.rules, printer, pair.reason);
    const bool has_heading = options.look == Look::text || options.look == Look::stat;
    pair.text = pair.status == DIFFERENT && has_heading ? "== " + shown + '\n' : "";
    pair.text += printer.text;
    return;
  }
  pair.status = DIFFERENT;
  take(printer, {"File"}, {{.what = pair.is_in_a ? What::only_a : What::only_b}});
  finish(printer);
  if (options.look == Look::json)
    pair.text = printer.text;
  else if (options.look != Look::quiet)
    pair.text = std::string("Only in ") + (pair.is_in_a ? "A" : "B") + ": " + shown + '\n';
}

std::string summaryOf(const Options &options, const std::vector<FilePair> &pairs) {
  const auto number = [&](auto holds) {
    return static_cast<std::size_t>(std::count_if(pairs.begin(), pairs.end(), holds));
  };
  const std::size_t only_a = number([](const FilePair &pair) { return !pair.is_in_b; });
  const std::size_t only_b = number([](const FilePair &pair) { return !pair.is_in_a; });
  const std::size_t same = number([](const FilePair &pair) { return pair.status == SAME; });
  const std::size_t trouble = number([](const FilePair &pair) { return pair.status == TROUBLE; });
  const std::size_t different = pairs.size() - same - trouble - only_a - only_b;
  if (options.look == Look::quiet)
    return "";
  if (options.look == Look::json) {
    std::string json = "{";
    addMember(json, "files", pairs.size());
    addMember(json, "same", same);
    addMember(json, "different", different);
    addMember(json, "only_a", only_a);
    addMember(json, "only_b", only_b);
    addMember(json, "trouble", trouble);
    return json + "}\n";
  }
  std::string text = std::to_string(pairs.size()) + (pairs.size() == 1 ? " file: " : " files: ") +
                     std::to_string(same) + " same, " + std::to_string(different) + " different, " +
                     std::to_string(only_a) + " only in A, " + std::to_string(only_b) + " only in B";
  return text + (trouble > 0 ? ", " + std::to_string(trouble) + " not compared\n" : "\n");
}

/// Prints what is done, in the order of the paths.
struct InOrder {
  std::vector<FilePair> &pairs;
  std::FILE *stream;
  std::mutex mutex = {};
  std::size_t next = 0;
};

void done(InOrder &order, FilePair &pair) {
  const std::lock_guard lock(order.mutex);
  pair.is_done = true;
  for (; order.next < order.pairs.size() && order.pairs[order.next].is_done; ++order.next) {
    FilePair &first = order.pairs[order.next];
    std::fwrite(first.text.data(), 1, first.text.size(), order.stream);
    std::string().swap(first.text);
    if (first.status == TROUBLE)
      std::fprintf(stderr, "kbdiff: %s.\n", first.reason.c_str());
  }
}

} // namespace

bool isFolder(const std::string &path) {
  struct stat status;
  return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool printsElsewhere(const std::vector<std::string> &paths) {
  if (isOneOf(STDERR_FILENO, paths))
    return false; // nothing can be told
  if (!isOneOf(STDOUT_FILENO, paths))
    return true;
  std::fputs("kbdiff: standard output is one of the files to compare.\n", stderr);
  return false;
}

Status diffFolders(const Options &options, std::FILE *stream) {
  std::vector<FilePair> pairs;
  try {
    pairs = pairsOf(options);
  } catch (const Trouble &trouble) {
    std::fprintf(stderr, "kbdiff: %s: %s.\n", printable(trouble.path).c_str(), trouble.reason.c_str());
    return TROUBLE;
  }
  if (!printsElsewhere(pathsOf(options, pairs)))
    return TROUBLE;
  const Style style = styleOf(STDOUT_FILENO, options.colour);
  InOrder order{pairs, stream};
  std::atomic<std::size_t> next = 0;
  const std::size_t jobs =
      options.jobs > 0 ? options.jobs : std::max<std::size_t>(std::thread::hardware_concurrency(), 1);
  inParallel(std::min(jobs, pairs.size()), [&] {
    for (std::size_t i = next++; i < pairs.size(); i = next++) {
      try {
        comparePair(options, style, pairs[i]);
      } catch (const std::exception &) {
        pairs[i].status = TROUBLE;
        pairs[i].reason = "not enough memory";
      }
      done(order, pairs[i]);
    }
  });
  const std::string summary = summaryOf(options, pairs);
  std::fwrite(summary.data(), 1, summary.size(), stream);
  Status worst = SAME;
  for (const FilePair &pair : pairs)
    worst = std::max(worst, pair.status);
  return worst;
}

} // namespace kova::diff
