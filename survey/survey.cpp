#include "survey/survey.h"

#include "common/text.h"
#include "survey/json.h"
#include "survey/pool.h"
#include "survey/results.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_map>

namespace kova::survey {

namespace {

Status refuse(const std::string &message) {
  std::fprintf(stderr, "kbsurvey: %s.\n", message.c_str());
  return FAILED;
}

/// @return whether standard error is a terminal on which a line can be written again and again.
bool canShowProgress() {
  const char *const terminal = std::getenv("TERM");
  return ::isatty(STDERR_FILENO) == 1 && terminal != nullptr && *terminal != '\0' && std::strcmp(terminal, "dumb") != 0;
}

// --- Finding the files ----------------------------------------------------------------------------------------------

/// Adds the paths of --files-from. @return what is wrong, for people; empty if nothing is.
std::string addListed(const std::string &list, std::vector<std::string> &paths) {
  if (list.empty())
    return "";
  const std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(list == "-" ? stdin : std::fopen(list.c_str(), "rbe"),
                                                              std::fclose);
  std::string text;
  char part[4096];
  for (std::size_t got = 1; file && got != 0; text.append(part, got))
    got = std::fread(part, 1, sizeof part, file.get());
  if (!file || std::ferror(file.get()) != 0)
    return printable(list) + ": " + std::strerror(errno);
  for (std::string &path : splitList(text))
    paths.push_back(std::move(path));
  return "";
}

// --- Resuming -------------------------------------------------------------------------------------------------------

/// What an earlier report says, by path.
using Earlier = std::unordered_map<std::string, FileResult>;

/// A report that does not exist is an empty one, so that the first run and the next ones have the same command line.
std::string readEarlier(const std::string &path, Earlier &earlier) {
  if (path.empty() || (::access(path.c_str(), F_OK) != 0 && errno == ENOENT))
    return "";
  Report report = readReport(path);
  for (FileResult &record : report.records) {
    std::string key = record.path;
    earlier.insert_or_assign(std::move(key), std::move(record));
  }
  return report.error;
}

/// A file that could not be read, or for which there was no memory, is tried again.
bool stillHolds(const FileResult &record, const Input &input, Questions asked) {
  return input.error.empty() && record.bytes == input.bytes && record.modified == input.modified &&
         record.deep == asked.deep && (record.repair != Repair::not_asked) == asked.repairable &&
         record.repair != Repair::unknown && record.reason != Reason::unreadable && record.reason != Reason::no_memory;
}

/// Takes the files of which the earlier report still holds out of those to do. @return their records.
std::vector<FileResult> takeOver(Earlier &earlier, std::vector<Input> &inputs, Questions asked) {
  std::vector<FileResult> records;
  std::erase_if(inputs, [&](const Input &input) {
    const auto at = earlier.find(input.path);
    if (at == earlier.end() || !stillHolds(at->second, input, asked))
      return false;
    records.push_back(std::move(at->second));
    return true;
  });
  return records;
}

bool sameFile(const std::string &a, const std::string &b) {
  struct stat first, second;
  return ::stat(a.c_str(), &first) == 0 && ::stat(b.c_str(), &second) == 0 && first.st_dev == second.st_dev &&
         first.st_ino == second.st_ino;
}

/// Opens the results. A JSON report that is also the one to resume is never without the records that were taken over,
/// also if this run is interrupted; they are then not written again.
bool openResumed(Results &results, const Options &options, const std::vector<FileResult> &taken_over) {
  if (options.json.empty() || !sameFile(options.json, options.resume)) {
    if (!openResults(results, options, Opening::replace))
      return false;
    for (const FileResult &record : taken_over)
      write(results.json, jsonLine(record));
    flush(results.json);
    return true;
  }
  std::string lines;
  for (const FileResult &record : taken_over)
    lines += jsonLine(record);
  if (const int error = replaceFile(options.json, lines)) {
    refuse(printable(options.json) + ": " + std::strerror(error));
    return false;
  }
  return openResults(results, options, Opening::append);
}

} // namespace

Status surveyFiles(const Options &options) {
  const auto begin = std::chrono::steady_clock::now();
  Search search{options.paths, options.names, options.workers};
  Earlier earlier;
  for (const std::string &wrong : {addListed(options.files_from, search.paths), readEarlier(options.resume, earlier)})
    if (!wrong.empty())
      return refuse(wrong);
  std::vector<Input> inputs = findFiles(search);
  const bool nothing = inputs.empty();
  std::erase_if(inputs, [&](const Input &input) { return !inShard(input.path, options.shard); });
  std::vector<FileResult> taken_over = takeOver(earlier, inputs, options.asked);

  Results results;
  if (!openResumed(results, options, taken_over))
    return FAILED;
  for (FileResult &record : taken_over)
    keepResult(results, std::move(record));
  auditAll(std::move(inputs), {.workers = options.workers,
                               .asked = options.asked,
                               .show_progress = !options.quiet && canShowProgress(),
                               .take = [&](FileResult &&record) { take(results, std::move(record)); }});
  if (nothing)
    std::fputs("kbsurvey: no file was found.\n", stderr);
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
  const Status status = finishResults(results, seconds.count());
  // A part of a survey may have no file; the survey has.
  return status == SOME_WITHOUT_VERDICT && results.tally.files == 0 && !nothing ? ALL_OK : status;
}

Status mergeReports(const Options &options) {
  std::vector<FileResult> records;
  for (const std::string &path : options.paths) {
    Report report = readReport(path);
    if (!report.error.empty())
      return refuse(report.error);
    records.insert(records.end(), std::make_move_iterator(report.records.begin()),
                   std::make_move_iterator(report.records.end()));
  }
  sortRecords(records);
  Results results;
  if (!openResults(results, options, Opening::replace))
    return FAILED;
  for (FileResult &record : records)
    take(results, std::move(record));
  return finishResults(results, std::nullopt);
}

} // namespace kova::survey
