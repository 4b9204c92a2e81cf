#include "survey/results.h"

#include "common/text.h"
#include "survey/json.h"
#include "survey/junit.h"
#include "survey/page.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <thread>
#include <unistd.h>

namespace kova::survey {

namespace {

/// Makes room for one more element.
template <class Element> void makeRoom(std::vector<Element> &list) {
  if (list.size() == list.capacity())
    list.reserve(2 * list.size() + 16);
}

/// @return the line of a file that is not OK; with --print0, only a folder has one.
std::string lineOf(const Results &results, const FileResult &record) {
  if (!results.print0)
    return badLine(record);
  return record.reason == Reason::unreadable_folder ? printable(record.path) + ": " + whatIsWrong(record) : "";
}

/// Counts and keeps a record, and writes its line. If there is no memory for it, nothing is done.
/// @param line for the JSON report; empty if it is not to be written
void keepAndWrite(Results &results, FileResult &&record, const std::string &line) {
  BadFile bad;
  if (record.verdict != Verdict::ok)
    bad = {record.path, lineOf(results, record), record.reason == Reason::unreadable_folder};
  const bool all = results.junit.stream != nullptr || results.html.stream != nullptr;
  const std::lock_guard lock(results.mutex);
  makeRoom(results.bad); // what can fail comes first
  makeRoom(results.records);
  count(results.tally, record);
  if (record.verdict != Verdict::ok)
    results.bad.push_back(std::move(bad));
  if (all)
    results.records.push_back(std::move(record));
  if (line.empty())
    return;
  write(results.json, line);
  flush(results.json);
}

void printResults(Results &results, std::optional<double> seconds) {
  for (const BadFile &file : results.bad)
    if (!results.print0)
      write(results.print, file.line);
    else if (file.folder) // what is done with the files of the list would be done with all that it holds
      std::fprintf(stderr, "kbsurvey: %s.\n", file.line.c_str());
    else
      write(results.print, file.path + '\0');
  if (!results.print0)
    write(results.print, summary(results.tally, seconds));
}

Status statusOf(const Tally &tally) {
  if (tally.files == 0 || tally.of(Verdict::none) != 0)
    return SOME_WITHOUT_VERDICT;
  return tally.of(Verdict::err) != 0 ? SOME_ERR : ALL_OK;
}

} // namespace

bool openResults(Results &results, const Options &options, Opening json) {
  openOutput(results.json, options.json, json);
  openOutput(results.junit, options.junit);
  openOutput(results.html, options.html);
  results.print0 = options.print0;
  // Standard output belongs to the report that is written there.
  if (options.json != "-" && options.junit != "-" && options.html != "-")
    openOutput(results.print, "-");
  else {
    results.print.path = "standard error";
    results.print.stream = ::fdopen(::dup(STDERR_FILENO), "w");
  }
  bool ok = true;
  for (Output *const output : {&results.json, &results.junit, &results.html})
    ok = (output->error == 0 || finish(*output)) && ok;
  return ok;
}

void keepResult(Results &results, FileResult &&record) { keepAndWrite(results, std::move(record), ""); }

void take(Results &results, FileResult &&record) {
  // Other workers may have all the memory for a while. What was found in this file is given up for it.
  constexpr int TRIES = 500;
  constexpr std::chrono::milliseconds PAUSE(10);
  for (int i = 0; i < TRIES; ++i) {
    try {
      const std::string line = results.json.stream != nullptr ? jsonLine(record) : std::string();
      keepAndWrite(results, std::move(record), line);
      return;
    } catch (const std::exception &) {
      record.findings = {};
      record.counts = {};
      record.version = Version::unknown;
      record.detail.clear();
      record.repair_words = 0;
      if (record.repair != Repair::not_asked)
        record.repair = Repair::needless;
      record.verdict = Verdict::none;
      record.reason = Reason::no_memory;
      std::this_thread::sleep_for(PAUSE);
    }
  }
  const std::lock_guard lock(results.mutex);
  ++results.lost;
}

Status finishResults(Results &results, std::optional<double> seconds) {
  std::sort(results.bad.begin(), results.bad.end(), [](const BadFile &a, const BadFile &b) { return a.path < b.path; });
  std::sort(results.records.begin(), results.records.end(), pathLess);
  if (results.junit.stream != nullptr)
    write(results.junit, junitReport(results.records));
  if (results.html.stream != nullptr)
    write(results.html, pageOf(results.records));
  printResults(results, seconds);
  bool ok = results.lost == 0;
  if (!ok)
    std::fprintf(stderr, "kbsurvey: not enough memory for the results of %llu files.\n",
                 static_cast<unsigned long long>(results.lost));
  for (Output *const output : {&results.json, &results.junit, &results.html, &results.print})
    ok = finish(*output) && ok;
  return ok ? statusOf(results.tally) : FAILED;
}

} // namespace kova::survey
