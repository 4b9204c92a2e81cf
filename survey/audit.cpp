#include "survey/audit.h"

#include "common/file.h"
#include "common/memory.h"
#include "format/versions.h"
#include "kova/check.h"
#include "mend/diagnose.h"
#include "survey/deep.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace kova::survey {

namespace {

void refuse(FileResult &result, Reason reason, std::string detail) {
  result.verdict = Verdict::none;
  result.reason = reason;
  result.detail = std::move(detail);
}

/// Puts a finding of the library into the result. Its text, which can be as long as a list, is made only if it is kept.
void receive(FileResult &result, const Finding &finding) {
  if (!countFinding(result, finding.row->id))
    return;
  std::string text = kvFindingText(finding);
  if (text.empty())
    throw std::bad_alloc();
  keepFinding(result, {.id = finding.row->id,
                       .stage = finding.row->stage,
                       .severity = finding.row->severity,
                       .list = finding.list != nullptr ? finding.list : "",
                       .element = finding.element,
                       .offset = finding.offset,
                       .found = finding.found,
                       .expected = finding.expected,
                       .text = std::move(text)});
}

bool has(const FileResult &result, const char *id) { return result.counts.contains(id); }

/// @return a stream of an open file, for which nothing is opened: what lies at the path by now may be another file.
Stream streamOf(const Descriptor &file) {
  const int copy = ::fcntl(file.number, F_DUPFD_CLOEXEC, 0);
  Stream stream(copy < 0 ? nullptr : ::fdopen(copy, "rb"));
  if (!stream && copy >= 0)
    ::close(copy);
  return stream;
}

/// Loads a file of `result.bytes` bytes. @return what the library returns; 0 with a reason in the result if it cannot
/// be read.
int load(const Descriptor &file, FileResult &result, Kis &kis, Workspace &workspace) {
  if (result.bytes > SMALL_FILE) {
    if (const Stream stream = streamOf(file))
      return kvOpenKbStream(stream.get(), result.path.c_str(), kis);
    refuse(result, Reason::unreadable, std::strerror(errno));
    return 0;
  }
  const auto bytes = static_cast<std::size_t>(result.bytes);
  if (!workspace.bytes)
    workspace.bytes = std::make_unique_for_overwrite<unsigned char[]>(SMALL_FILE);
  if (const char *const error = readWhole(file, bytes, workspace.bytes.get())) {
    refuse(result, Reason::unreadable, error);
    return 0;
  }
  return kvOpenKbMemory({workspace.bytes.get(), bytes}, result.path.c_str(), kis);
}

/// A header of an unknown version is taken for one of the format if the rest of it fits the file.
void refuseVersion(FileResult &result, const FileHeader &header) {
  if (result.bytes < FILE_HEADER_BYTES || header.header_tag != 0 || header.size != result.bytes)
    return refuse(result, Reason::not_kova, "");
  char text[32];
  std::snprintf(text, sizeof text, "version word %#010x", header.version);
  refuse(result, Reason::other_version, text);
}

bool hasChanged(const Descriptor &file, const FileResult &result) {
  struct stat status;
  return ::fstat(file.number, &status) != 0 || static_cast<std::uint64_t>(status.st_size) != result.bytes ||
         fileTime(status.st_mtim) != result.modified;
}

/// Loads and checks an opened file; findings go to the receiver in place.
void judge(const Descriptor &file, FileResult &result, Workspace &workspace) {
  const ModelMemory memory; // is there before the model and after it
  const KisHandle kis = kvNewKis();
  if (!kis)
    return refuse(result, Reason::no_memory, "");
  int ok = load(file, result, *kis, workspace);
  if (result.reason != Reason::has_verdict)
    return;
  if (has(result, "input-read"))
    return refuse(result, Reason::unreadable, "");
  if (hasChanged(file, result))
    return refuse(result, Reason::unreadable, FILE_HAS_CHANGED);
  if (has(result, "out-of-memory"))
    return refuse(result, Reason::no_memory, "");
  const Word version = kvKOVAver(kis->file_header);
  if (!isVersion(version))
    return refuseVersion(result, kis->file_header);
  result.version = static_cast<Version>(1 + (versionRow(version) - std::begin(VERSIONS)));
  ok *= checkKOVA(*kis); // what could be read is checked, also after a failed load
  if (result.deep)
    deepCheck(*kis, result);
  result.verdict = ok != 0 ? Verdict::ok : Verdict::err;
}

/// Keeps the first changes, or of a file that is not mended the first damages.
void keepChanges(FileResult &result, const mend::Diagnosis &diagnosis) {
  const auto keep = [&](const auto &change) {
    if (result.repair_lines.size() < MOST_CHANGES)
      result.repair_lines.push_back(textOf(change).substr(0, MOST_TEXT));
  };
  const mend::Result &mending = diagnosis.result;
  if (mending.outcome != mend::Outcome::mended) {
    std::for_each(diagnosis.damages.begin(), diagnosis.damages.end(), keep);
    return;
  }
  std::for_each(mending.undone.begin(), mending.undone.end(), keep);
  std::for_each(mending.changes.begin(), mending.changes.end(), keep);
}

/// Finds out whether kbrepair could mend a file that was judged. The model of the audit is gone: beside the bytes of
/// the file there is one model at a time.
Repair repairOf(const Descriptor &file, FileResult &result, const Workspace &workspace) {
  std::vector<unsigned char> bytes;
  if (result.bytes > MOST_REPAIR_BYTES)
    return Repair::unknown;
  const auto size = static_cast<std::size_t>(result.bytes);
  if (result.bytes <= SMALL_FILE)
    bytes.assign(workspace.bytes.get(), workspace.bytes.get() + size); // as they were loaded
  else if (bytes.resize(size); readWhole(file, size, bytes.data()) != nullptr)
    return Repair::unknown;
  // Also with the salvage, a file is mended without a loss if it can be.
  const mend::Diagnosis diagnosis = mend::diagnose(bytes);
  const bool is_answer =
      diagnosis.result.outcome == mend::Outcome::mended || diagnosis.result.outcome == mend::Outcome::salvaged;
  if (result.reason == Reason::not_kova && !is_answer)
    return Repair::needless;
  keepChanges(result, diagnosis);
  switch (diagnosis.result.outcome) {
  case mend::Outcome::good: // it has changed
    return Repair::unknown;
  case mend::Outcome::mended:
    result.repair_words = diagnosis.result.changes.size() + diagnosis.result.undone.size();
    result.repair_undone = diagnosis.result.undone.size();
    return Repair::mended;
  case mend::Outcome::salvaged:
    return Repair::salvaged;
  case mend::Outcome::ambiguous:
  case mend::Outcome::hopeless:
    return Repair::no;
  }
  return Repair::no;
}

/// @return whether kbrepair is asked: also about small files that do not look like ones of the format, since a transfer
/// may have changed them.
bool asksForRepair(const FileResult &result) {
  return needsRepair(result) || (result.reason == Reason::not_kova && result.bytes <= SMALL_FILE);
}

/// Answers whether the file can be mended. If there is no memory for that, only this answer is lost.
void answerRepair(const Descriptor &file, FileResult &result, const Workspace &workspace) {
  try {
    result.repair = asksForRepair(result) ? repairOf(file, result, workspace) : Repair::needless;
  } catch (const std::exception &) {
    result.repair = Repair::unknown;
  }
}

/// Judges a file, and keeps what is found.
void judgeAndKeep(const Descriptor &file, FileResult &result, Workspace &workspace) {
  bool lost = false; // no memory for what was found
  const FindingReceiver receiver([&](const Finding &finding) {
    try {
      receive(result, finding);
    } catch (const std::exception &) {
      lost = true;
    }
  });
  judge(file, result, workspace);
  if (lost)
    refuse(result, Reason::no_memory, "");
}

/// Opens a file, judges it and answers what was asked. Only a regular file is read.
void openAndJudge(FileResult &result, Workspace &workspace) {
  const Descriptor file = openToRead(result.path.c_str());
  struct stat status;
  if (file.number < 0 || ::fstat(file.number, &status) != 0)
    return refuse(result, Reason::unreadable, std::strerror(errno));
  if (!S_ISREG(status.st_mode))
    return refuse(result, Reason::unreadable, "not a regular file");
  result.bytes = static_cast<std::uint64_t>(status.st_size);
  result.modified = fileTime(status.st_mtim);
  judgeAndKeep(file, result, workspace);
  if (result.repair != Repair::not_asked)
    answerRepair(file, result, workspace);
}

} // namespace

FileTime fileTime(const struct timespec &time) {
  return {.seconds = time.tv_sec, .nanoseconds = static_cast<std::int32_t>(time.tv_nsec)};
}

FileResult audit(Input input, Questions asked, Workspace &workspace) noexcept {
  FileResult result; // nothing is copied: there is a result also where memory has run out
  result.path = std::move(input.path);
  result.bytes = input.bytes;
  result.modified = input.modified;
  result.deep = asked.deep;
  if (asked.repairable)
    result.repair = Repair::needless;
  try {
    if (!input.error.empty())
      refuse(result, input.folder ? Reason::unreadable_folder : Reason::unreadable, std::move(input.error));
    else
      openAndJudge(result, workspace);
  } catch (const std::exception &) {
    refuse(result, Reason::no_memory, "");
  }
  if (result.reason == Reason::no_memory) { // what was found says little, and takes the memory that is short
    result.findings = {};
    result.counts = {};
  }
  return result;
}

} // namespace kova::survey
