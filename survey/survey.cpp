#include "survey/survey.h"

#include "common/text.h"
#include "survey/pool.h"
#include "survey/report_paths.h"
#include "survey/report_reader.h"
#include "survey/results.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <unistd.h>

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

/// Adds the paths of --files-from. @return what is wrong, for people; empty if nothing is.
std::string addListed(const std::string &list, std::vector<std::string> &paths) {
  if (list.empty())
    return "";
  const auto end = [](std::FILE *opened) { return opened == stdin ? 0 : std::fclose(opened); };
  const std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(list == "-" ? stdin : std::fopen(list.c_str(), "rbe"),
                                                              end);
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

/// A file that could not be read, or for which there was no memory, is tried again.
bool stillHolds(const FileResult &result, const Input &input, Questions asked) {
  return input.error.empty() && result.bytes == input.bytes && result.modified == input.modified &&
         result.deep == asked.deep && (result.repair != Repair::not_asked) == asked.repairable &&
         (result.repair != Repair::unknown || result.bytes > MOST_REPAIR_BYTES) &&
         result.reason != Reason::unreadable && result.reason != Reason::no_memory;
}

/// The files to audit, and of which of them an earlier result was taken over.
struct TakingOver {
  const std::vector<Input> &inputs; ///< sorted by path
  Questions asked;
  Results &results;
  std::vector<bool> taken;
};

void takeOver(TakingOver &taking, FileResult &&result) {
  const auto at = std::lower_bound(taking.inputs.begin(), taking.inputs.end(), result.path,
                                   [](const Input &input, const std::string &path) { return input.path < path; });
  const auto number = static_cast<std::size_t>(at - taking.inputs.begin());
  if (at == taking.inputs.end() || at->path != result.path || taking.taken[number] ||
      !stillHolds(result, *at, taking.asked))
    return;
  take(taking.results, std::move(result));
  taking.taken[number] = true;
}

/// Takes over what an earlier report, and runs that were killed before they had written it, say of files that have not
/// changed, and takes these files out of those to do. A report that does not exist is an empty one, so that the first
/// run and the next ones have the same command line.
/// @return what is wrong, for people; empty if nothing is
std::string resume(const Options &options, std::vector<Input> &inputs, Results &results) {
  if (options.resume.empty())
    return "";
  TakingOver taking{inputs, options.asked, results, std::vector<bool>(inputs.size())};
  const auto take_over = [&](FileResult &&result) { takeOver(taking, std::move(result)); };
  if (::access(options.resume.c_str(), F_OK) == 0 || errno != ENOENT)
    if (std::string wrong = readReport(options.resume, take_over); !wrong.empty())
      return wrong;
  std::vector<LineStore> others;
  if (const std::string target = targetOf(options.resume); target != results.json.target)
    others = leftJournals(target);
  const std::vector<LineStore> *const left[] = {&results.left, &others};
  for (const std::vector<LineStore> *const journals : left)
    for (const LineStore &journal : *journals)
      readLines(journal.file, take_over); // whatever lines it has
  std::size_t number = 0;
  std::erase_if(inputs, [&](const Input &) { return taking.taken[number++]; });
  return "";
}

} // namespace

Status surveyFiles(const Options &options) {
  const auto begin = std::chrono::steady_clock::now();
  Search search{options.paths, options.names, options.workers};
  if (const std::string wrong = addListed(options.files_from, search.paths); !wrong.empty())
    return refuse(wrong);
  std::vector<Input> inputs = findFiles(search);
  if (!canTell(options, inputs))
    return FAILED;
  if (const std::string clash = clashOfReports(options, inputs); !clash.empty())
    return refuse(clash);
  const bool nothing = inputs.empty();
  std::erase_if(inputs, [&](const Input &input) { return !inShard(input.path, options.shard); });

  Results results;
  if (!openResults(results, options, Keeping::journal))
    return FAILED;
  reserveResults(results, inputs.size());
  if (const std::string wrong = resume(options, inputs, results); !wrong.empty()) {
    dropResults(results);
    return refuse(wrong);
  }
  // What they have is in the journal of this run by now.
  if (!options.resume.empty() && results.store.error == 0 && !removeStores(results.left)) {
    dropResults(results);
    return FAILED;
  }
  auditAll(std::move(inputs), {.workers = options.workers,
                               .asked = options.asked,
                               .show_progress = !options.quiet && canShowProgress(),
                               .take = [&](FileResult &&result) { take(results, std::move(result)); }});
  if (nothing)
    std::fputs("kbsurvey: no file was found.\n", stderr);
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
  const Status status = finishResults(results, seconds.count());
  // A part of a survey may have no file; the survey has.
  return status == SOME_WITHOUT_VERDICT && results.tally.files == 0 && !nothing ? ALL_OK : status;
}

} // namespace kova::survey
