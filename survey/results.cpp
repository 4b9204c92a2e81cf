#include "survey/results.h"

#include "common/text.h"
#include "survey/json_line.h"
#include "survey/junit.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

namespace kova::survey {

namespace {

constexpr std::size_t SPARE_BYTES = 64 * 1024;

/// Of a plain file, all that the page and the JUnit report show is kept in memory.
bool isPlain(const FileResult &result) { return result.verdict == Verdict::ok && result.counts.empty(); }

/// @return whether all files are kept until the end.
bool listsAll(const Results &results) {
  return !results.json.target.empty() || isWanted(results.junit) || isWanted(results.html);
}

bool goesToStore(const Results &results, const FileResult &result) {
  return !results.json.target.empty() || (listsAll(results) && !isPlain(result));
}

/// @return the line of a file that is told; with --print0, only a folder has one.
std::string printedLine(const Results &results, const FileResult &result) {
  if (!isTold(result.verdict, result.compared.since))
    return "";
  if (!results.print0)
    return fileLine(result, results.style);
  return result.reason == Reason::unreadable_folder ? printable(result.path) + ": " + whatIsWrong(result) : "";
}

Listed listedOf(const Results &results, const FileResult &result) {
  return {.path = {},
          .line = printedLine(results, result),
          .bytes = result.bytes,
          .version = result.version,
          .verdict = result.verdict,
          .plain = isPlain(result),
          .folder = result.reason == Reason::unreadable_folder,
          .compared = result.compared};
}

/// Counts a result and keeps what is needed of it. What can fail comes first: then nothing was done. There is room in
/// the list.
void list(Results &results, FileResult &&result, Listed &&listed) {
  count(results.tally, result);
  if (isWanted(results.html))
    count(results.shown, result);
  if (!listsAll(results) && !isTold(result.verdict, result.compared.since))
    return;
  listed.path = std::move(result.path);
  results.listed.push_back(std::move(listed));
}

/// Writes a result's line and lists it, under the lock. A line of the store that is not listed then, because there was
/// no memory for that, is no part of the reports.
void writeAndList(Results &results, FileResult &&result, Listed &&listed, std::string_view line,
                  std::size_t first_findings) {
  if (goesToStore(results, result))
    listed.place = append(results.store, line, first_findings);
  list(results, std::move(result), std::move(listed));
  write(results.json.stream, line);
  flush(results.json.stream);
}

/// What was found in a file is given up if there is no memory for it.
void giveUp(FileResult &result) {
  result.findings = {};
  result.counts = {};
  result.detail = {};
  result.version = Version::unknown;
  result.repair_words = result.repair_undone = 0;
  result.repair_lines = {};
  if (result.repair != Repair::not_asked)
    result.repair = Repair::needless;
  result.verdict = Verdict::none;
  result.reason = Reason::no_memory;
}

/// Takes what is left of a result. Needs no memory, unless the path is longer than one of the system.
void takeGivenUp(Results &results, FileResult &&result) {
  giveUp(result);
  if (!results.baseline.path.empty())
    result.compared.since = Since::worse;
  const std::lock_guard lock(results.mutex);
  try {
    results.spare.clear();
    const std::size_t first_findings = appendLine(results.spare, result);
    Listed listed{.path = {}, .bytes = result.bytes, .compared = result.compared};
    writeAndList(results, std::move(result), std::move(listed), results.spare, first_findings);
  } catch (const std::exception &) {
    ++results.lost;
  }
}

/// Makes the store for the lines of which reports are made in the end, beside the first of them.
bool openStore(Results &results, Keeping keeping) {
  if (keeping == Keeping::journal && !listsAll(results))
    return true;
  const Report *const reports[] = {&results.json, &results.junit, &results.html};
  const auto replaced = std::find_if(std::begin(reports), std::end(reports),
                                     [](const Report *report) { return !report->target.empty(); });
  if (keeping == Keeping::journal && !results.json.target.empty()) {
    results.left = leftJournals(results.json.target);
    openJournal(results.store, results.json.target);
  } else if (replaced != std::end(reports))
    openUnnamed(results.store, std::filesystem::path((*replaced)->target).parent_path());
  else
    openUnnamed(results.store, folderForUnnamed());
  if (results.store.error != 0)
    std::fprintf(stderr, "kbsurvey: no file can be made for what is found: %s.\n", std::strerror(results.store.error));
  return results.store.error == 0;
}

bool isGone(const Listed &listed) { return listed.compared.since == Since::gone; }

/// Reads the line of a file, or of a long one as much as has its first findings. @return 1; 0 with a reason in `errno`
int readLine(Results &results, Place place, bool first_findings, std::string &line) {
  if (first_findings)
    place.bytes = place.first_findings;
  const bool is_read = read(results.store, place, line);
  if (first_findings)
    completeLine(line);
  errno = results.store.error;
  return is_read ? 1 : 0;
}

/// Hands on the results of all files. @return 1; 0 with a reason in `errno`
int forEach(Results &results, bool first_findings, const TakeEach &take) {
  std::string line;
  for (const Listed &listed : results.listed) {
    if (listed.plain || isGone(listed)) {
      take({.path = listed.path,
            .bytes = listed.bytes,
            .version = listed.version,
            .verdict = listed.verdict,
            .compared = listed.compared});
      continue;
    }
    if (readLine(results, listed.place, first_findings, line) == 0)
      return 0;
    std::optional<FileResult> result = resultOf(line);
    if (!result) {
      errno = EIO; // somebody else has changed the store
      return 0;
    }
    result->compared = listed.compared;
    take(*result);
  }
  return 1;
}

/// Writes the JSON report. @return 1; 0 with a reason in `errno`
int writeJson(Results &results, std::FILE *to) {
  std::string line;
  for (const Listed &listed : results.listed)
    if (!isGone(listed) && (readLine(results, listed.place, false, line) == 0 ||
                            std::fwrite(line.data(), 1, line.size(), to) != line.size()))
      return 0;
  return 1;
}

/// Removes the journal. @return whether it is gone; a failure is told
bool removeJournal(LineStore &store) {
  const std::string path = store.path;
  store.error = 0; // told by now
  return removeStore(store) || tellNotWritten(path, store.error);
}

/// Writes the reports that are made in the end. @return whether that succeeded; a failure is told
bool saveReports(Results &results) {
  // A store that could not be written has not all lines.
  const auto complete = [&] {
    errno = results.store.error;
    return results.store.error == 0;
  };
  bool ok = results.json.target.empty()
                ? finish(results.json.stream)
                : saveReport(results.json, [&](std::FILE *to) { return complete() ? writeJson(results, to) : 0; });
  if (ok && !results.json.target.empty())
    ok = removeStores(results.left);
  ok = saveReport(results.junit,
                  [&](std::FILE *to) {
                    const auto each = [&](const TakeEach &take_each) { return forEach(results, false, take_each); };
                    return complete() ? writeJunit(to, results.tally, each) : 0;
                  }) &&
       ok;
  ok = saveReport(results.html,
                  [&](std::FILE *to) {
                    const auto each = [&](const TakeEach &take_each) { return forEach(results, true, take_each); };
                    return complete() ? writePage(to, results.head, results.tally, results.shown, each) : 0;
                  }) &&
       ok;
  return ok;
}

std::string lineOf(const Listed &file, const Style &style) {
  // What was found in it is given up, and there was no memory for a line.
  return !file.line.empty()
             ? file.line
             : fileLine({.path = file.path, .reason = Reason::no_memory, .compared = file.compared}, style);
}

void printResults(Results &results, std::optional<double> seconds) {
  for (const Listed &file : results.listed)
    if (!isTold(file.verdict, file.compared.since))
      continue;
    else if (!results.print0)
      write(results.print, lineOf(file, results.style));
    else if (file.verdict == Verdict::ok || isGone(file))
      continue;
    else if (file.folder) // what is done with the files of the list would be done with all that it holds
      std::fprintf(stderr, "kbsurvey: %s.\n", file.line.c_str());
    else
      write(results.print, file.path + '\0');
  if (!results.print0)
    write(results.print, summary(results.tally, seconds, results.baseline.path));
}

/// Adds the files of the baseline that are not there any more. @return whether all were; a failure is told
bool addGone(Results &results) {
  const bool ok = eachGone(results.baseline, [&](FileResult &&result) {
    ++results.tally.by_since[static_cast<std::size_t>(Since::gone)];
    results.listed.push_back(listedOf(results, result));
    results.listed.back().path = std::move(result.path);
  });
  if (!ok)
    std::fprintf(stderr, "kbsurvey: the baseline cannot be read again: %s.\n",
                 std::strerror(results.baseline.store.error));
  return ok;
}

Status statusOf(const Tally &tally) {
  if (tally.files == 0 || tally.failing[static_cast<std::size_t>(Verdict::none)] != 0)
    return SOME_WITHOUT_VERDICT;
  return tally.failing[static_cast<std::size_t>(Verdict::err)] != 0 ? SOME_ERR : ALL_OK;
}

} // namespace

bool openResults(Results &results, const Options &options, Keeping keeping) {
  results.print0 = options.print0;
  results.head = {.command = options.command,
                  .paths = options.task == Task::survey ? options.paths : std::vector<std::string>()};
  results.spare.reserve(SPARE_BYTES);
  results.baseline.path = results.head.baseline = options.baseline;
  results.baseline.shard = options.shard;
  results.baseline.merged = options.task == Task::merge;
  if (const std::string wrong = openBaseline(results.baseline); !wrong.empty()) {
    std::fprintf(stderr, "kbsurvey: %s.\n", wrong.c_str());
    return false;
  }
  bool ok = openReport(results.json, options.json);
  ok = openReport(results.junit, options.junit) && ok;
  ok = openReport(results.html, options.html) && ok;
  // Standard output belongs to the report that is written there.
  if (options.json != "-" && options.junit != "-" && options.html != "-")
    openOutput(results.print, "-");
  else
    openStandardError(results.print);
  results.style = styleOf(results.print.stream == stdout ? STDOUT_FILENO : STDERR_FILENO, options.colour);
  return ok && openStore(results, keeping);
}

void reserveResults(Results &results, std::size_t files) { results.listed.reserve(files); }

void take(Results &results, FileResult &&result) {
  try {
    compare(results.baseline, result);
    Listed listed = listedOf(results, result);
    std::string line;
    std::size_t first_findings = 0;
    if (results.json.stream.stream != nullptr || goesToStore(results, result))
      first_findings = appendLine(line, result);
    const std::lock_guard lock(results.mutex);
    writeAndList(results, std::move(result), std::move(listed), line, first_findings);
  } catch (const std::exception &) {
    takeGivenUp(results, std::move(result));
  }
}

void takeStored(Results &results, FileResult &&result, Place place) {
  compare(results.baseline, result);
  Listed listed = listedOf(results, result);
  listed.place = place;
  if (results.json.stream.stream != nullptr) {
    std::string line;
    appendLine(line, result);
    write(results.json.stream, line);
  }
  list(results, std::move(result), std::move(listed));
}

Status finishResults(Results &results, std::optional<double> seconds) {
  bool ok = addGone(results);
  std::sort(results.listed.begin(), results.listed.end(),
            [](const Listed &a, const Listed &b) { return a.path < b.path; });
  results.head.seconds = seconds;
  if (results.lost != 0)
    std::fprintf(stderr, "kbsurvey: not enough memory for the results of %llu files.\n",
                 static_cast<unsigned long long>(results.lost));
  ok = results.lost == 0 && ok;
  ok = saveReports(results) && ok;
  ok = removeJournal(results.store) && ok;
  printResults(results, seconds); // a reader that hangs up ends the program here
  ok = finish(results.print) && ok;
  return ok ? statusOf(results.tally) : FAILED;
}

bool removeStores(std::vector<LineStore> &stores) {
  bool ok = true;
  for (LineStore &store : stores)
    ok = removeJournal(store) && ok;
  stores.clear();
  return ok;
}

void dropResults(Results &results) { removeStore(results.store); }

} // namespace kova::survey
