#include "survey/audit.h"

#include "common/file.h"
#include "kova/check.h"
#include "repair/mend.h"
#include "survey/deep.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace kova::survey {

namespace {

void refuse(FileResult &record, Reason reason, std::string detail) {
  record.verdict = Verdict::none;
  record.reason = reason;
  record.detail = std::move(detail);
}

/// Puts a finding of the library into the record. Its text, which can be as long as a list, is made only if it is kept.
void receive(FileResult &record, const Finding &finding) {
  if (!countFinding(record, finding.row->id))
    return;
  keepFinding(record, {.id = finding.row->id,
                       .stage = finding.row->stage,
                       .severity = finding.row->severity,
                       .list = finding.list != nullptr ? finding.list : "",
                       .element = finding.element,
                       .offset = finding.offset,
                       .found = finding.found,
                       .expected = finding.expected,
                       .text = kvFindingText(finding)});
}

bool has(const FileResult &record, const char *id) { return record.counts.contains(id); }

/// @return a stream of an open file, for which nothing is opened: what lies at the path by now may be another file.
Stream streamOf(const Descriptor &file) {
  const int copy = ::fcntl(file.number, F_DUPFD_CLOEXEC, 0);
  Stream stream(copy < 0 ? nullptr : ::fdopen(copy, "rb"));
  if (!stream && copy >= 0)
    ::close(copy);
  return stream;
}

/// Loads a file of `record.bytes` bytes. @return what the library returns; 0 with a reason in the record if it cannot
/// be read.
int load(const Descriptor &file, FileResult &record, Kis &kis, Workspace &workspace) {
  if (record.bytes > SMALL_FILE) {
    if (const Stream stream = streamOf(file))
      return kvOpenKbStream(stream.get(), record.path.c_str(), kis);
    refuse(record, Reason::unreadable, std::strerror(errno));
    return 0;
  }
  const auto bytes = static_cast<std::size_t>(record.bytes);
  if (!workspace.bytes)
    workspace.bytes = std::make_unique_for_overwrite<unsigned char[]>(SMALL_FILE);
  if (const char *const error = readWhole(file, bytes, workspace.bytes.get())) {
    refuse(record, Reason::unreadable, error);
    return 0;
  }
  return kvOpenKbMemory({workspace.bytes.get(), bytes}, record.path.c_str(), kis);
}

/// A header of an unknown version is taken for one of the format if the rest of it fits the file.
void refuseVersion(FileResult &record, const FileHeader &header) {
  if (record.bytes < FILE_HEADER_BYTES || header.header_tag != 0 || header.size != record.bytes)
    return refuse(record, Reason::not_kova, "");
  char text[32];
  std::snprintf(text, sizeof text, "version word %#010x", header.version);
  refuse(record, Reason::other_version, text);
}

bool hasChanged(const Descriptor &file, const FileResult &record) {
  struct stat status;
  return ::fstat(file.number, &status) != 0 || static_cast<std::uint64_t>(status.st_size) != record.bytes ||
         fileTime(status.st_mtim) != record.modified;
}

/// Loads and checks an opened file; findings go to the receiver in place.
void judge(const Descriptor &file, FileResult &record, Workspace &workspace) {
  const KisHandle kis = kvNewKis();
  if (!kis)
    return refuse(record, Reason::no_memory, "");
  int ok = load(file, record, *kis, workspace);
  if (record.reason != Reason::has_verdict)
    return;
  if (has(record, "input-read"))
    return refuse(record, Reason::unreadable, "");
  if (hasChanged(file, record))
    return refuse(record, Reason::unreadable, FILE_HAS_CHANGED);
  if (has(record, "out-of-memory"))
    return refuse(record, Reason::no_memory, "");
  const Word version = kvKOVAver(kis->file_header);
  if (version != VERSION_1 && version != VERSION_2)
    return refuseVersion(record, kis->file_header);
  record.version = version == VERSION_1 ? Version::one : Version::two;
  ok *= checkKOVA(*kis); // what could be read is checked, also after a failed load
  if (record.deep)
    deepCheck(*kis, record);
  record.verdict = ok != 0 ? Verdict::ok : Verdict::err;
}

/// Finds out whether kbrepair could mend a file that was judged. The model of the audit is gone: beside the bytes of
/// the file there is one model at a time.
Repair repairOf(const Descriptor &file, FileResult &record, const Workspace &workspace) {
  std::vector<unsigned char> bytes;
  if (record.bytes > bytes.max_size())
    return Repair::unknown;
  const auto size = static_cast<std::size_t>(record.bytes);
  if (record.bytes <= SMALL_FILE)
    bytes.assign(workspace.bytes.get(), workspace.bytes.get() + size); // as they were loaded
  else if (bytes.resize(size); readWhole(file, size, bytes.data()) != nullptr)
    return Repair::unknown;
  // Also with the salvage, a file is mended without a loss if it can be.
  const repair::Result result = repair::mend(bytes, {.salvage = true});
  switch (result.outcome) {
  case repair::Outcome::good: // it has changed
    return Repair::unknown;
  case repair::Outcome::mended:
    record.repair_words = result.changes.size() + result.undone.size();
    return Repair::mended;
  case repair::Outcome::salvaged:
    return Repair::salvaged;
  case repair::Outcome::ambiguous:
  case repair::Outcome::hopeless:
    return Repair::no;
  }
  return Repair::no;
}

/// Answers whether the file can be mended. If there is no memory for that, only this answer is lost.
void answerRepair(const Descriptor &file, FileResult &record, const Workspace &workspace) {
  try {
    record.repair = needsRepair(record) ? repairOf(file, record, workspace) : Repair::needless;
  } catch (const std::exception &) {
    record.repair = Repair::unknown;
  }
}

/// Judges a file, and keeps what is found.
void judgeAndKeep(const Descriptor &file, FileResult &record, Workspace &workspace) {
  bool lost = false; // no memory for what was found
  const FindingReceiver receiver([&](const Finding &finding) {
    try {
      receive(record, finding);
    } catch (const std::exception &) {
      lost = true;
    }
  });
  judge(file, record, workspace);
  if (lost)
    refuse(record, Reason::no_memory, "");
}

/// Opens a file, judges it and answers what was asked. Only a regular file is read.
void openAndJudge(FileResult &record, Workspace &workspace) {
  const Descriptor file = openToRead(record.path.c_str());
  struct stat status;
  if (file.number < 0 || ::fstat(file.number, &status) != 0)
    return refuse(record, Reason::unreadable, std::strerror(errno));
  if (!S_ISREG(status.st_mode))
    return refuse(record, Reason::unreadable, "not a regular file");
  record.bytes = static_cast<std::uint64_t>(status.st_size);
  record.modified = fileTime(status.st_mtim);
  judgeAndKeep(file, record, workspace);
  if (record.repair != Repair::not_asked)
    answerRepair(file, record, workspace);
}

} // namespace

FileTime fileTime(const struct timespec &time) {
  return {.seconds = time.tv_sec, .nanoseconds = static_cast<std::int32_t>(time.tv_nsec)};
}

FileResult audit(Input input, Questions asked, Workspace &workspace) noexcept {
  FileResult record; // nothing is copied: there is a record also where memory has run out
  record.path = std::move(input.path);
  record.bytes = input.bytes;
  record.modified = input.modified;
  record.deep = asked.deep;
  if (asked.repairable)
    record.repair = Repair::needless;
  try {
    if (!input.error.empty())
      refuse(record, input.folder ? Reason::unreadable_folder : Reason::unreadable, std::move(input.error));
    else
      openAndJudge(record, workspace);
  } catch (const std::exception &) {
    refuse(record, Reason::no_memory, "");
  }
  if (record.reason == Reason::no_memory) // what was found says little, and takes the memory that is short
    record.findings = {};
  return record;
}

} // namespace kova::survey
