/// What the survey knows of one file: its verdict and its findings.
#pragma once

#include "format/versions.h"
#include "kova/findings.h"
#include "survey/file_time.h"

#include <array>
#include <cstdint>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace kova::survey {

/// The version of the format: unknown, or one more than its place among all of them.
enum class Version : std::uint8_t { unknown, one, two };
inline constexpr auto VERSION_NAMES = [] {
  std::array<const char *, 1 + std::size(VERSIONS)> names = {""};
  for (std::size_t i = 0; i < std::size(VERSIONS); ++i)
    names[1 + i] = VERSIONS[i].name;
  return names;
}();

enum class Verdict : std::uint8_t { ok, err, none };
inline constexpr const char *VERDICT_NAMES[] = {"OK", "ERR", "none"};

/// Why a file has no verdict.
enum class Reason : std::uint8_t { has_verdict, unreadable, unreadable_folder, not_kova, other_version, no_memory };
inline constexpr const char *REASON_NAMES[] = {"",         "unreadable",    "unreadable-folder",
                                               "not-kova", "other-version", "no-memory"};
inline constexpr const char *REASON_TEXTS[] = {
    "", "cannot be read", "folder cannot be read", "not a KOVA file", "other version", "not enough memory"};

/// Whether kbrepair could mend a file.
enum class Repair : std::uint8_t {
  not_asked,
  needless, ///< the file is OK; or there is nothing to mend, as it was not read or is no KOVA file
  mended,   ///< it would audit OK, with all that it has
  salvaged, ///< with --salvage it would, with what is left of it
  no,
  unknown ///< there was not enough memory, or the file has changed
};
inline constexpr const char *REPAIR_NAMES[] = {"", "", "mended", "salvaged", "no", "unknown"};
inline constexpr const char *REPAIR_TEXTS[] = {
    "", "", "can be mended", "can be salvaged", "cannot be mended", "unknown whether it can be mended"};

/// What has become of a file since an earlier survey, the baseline.
enum class Since : std::uint8_t { not_asked, same, fresh, worse, changed, better, gone };
inline constexpr const char *SINCE_NAMES[] = {"", "same", "new", "worse", "changed", "better", "gone"};

struct Compared {
  Since since = Since::not_asked;
  Verdict verdict = Verdict::ok; ///< what it was; not of a new file
  std::uint64_t findings = 0;    ///< that it had

  bool operator==(const Compared &) const = default;
};

inline constexpr const char *STAGE_NAMES[] = {"load", "check"};
inline constexpr const char *SEVERITY_NAMES[] = {"error", "warning"};

/// A finding that is kept when the library has forgotten it.
struct KeptFinding {
  std::string id = {};
  Stage stage = Stage::load;
  Severity severity = Severity::error;
  std::string list = {}; ///< empty if it is about none
  std::optional<Word> element = {};
  std::optional<std::uint64_t> offset = {};
  std::optional<Word> found = {};
  std::optional<Word> expected = {};
  std::string text = {}; ///< as it is printed, at most `MOST_TEXT` bytes of it

  bool operator==(const KeptFinding &) const = default;
};

/// Bounds of what is kept of one file: a hostile file can have millions of findings, and a message with all the sizes
/// of a list in it.
inline constexpr std::size_t MOST_FINDINGS = 1000;
inline constexpr std::size_t MOST_TEXT = 1024;
inline constexpr std::size_t MOST_NAME = 64; ///< of an id or a list
inline constexpr std::size_t MOST_CHANGES = 20;

struct FileResult {
  std::string path = {};
  std::uint64_t bytes = 0;
  std::optional<FileTime> modified = {};
  Version version = Version::unknown;
  Verdict verdict = Verdict::none;
  Reason reason = Reason::has_verdict;
  std::string detail = {}; ///< more about the reason; may be empty
  bool deep = false;       ///< whether the deep checks have run, too
  Repair repair = Repair::not_asked;
  /// Of a file that can be mended: the number of words that would be changed and of transformations undone, and the
  /// latter alone.
  std::uint64_t repair_words = 0, repair_undone = 0;
  std::vector<std::string> repair_lines = {}; ///< and the first of them, or of the damages of another file, each as
                                              ///< kbrepair prints it
  std::vector<KeptFinding> findings = {};
  std::map<std::string, std::uint64_t> counts = {}; ///< of all findings by id, also of those not kept
  Compared compared = {};                           ///< no part of a report's line

  bool operator==(const FileResult &) const = default;
};

/// Counts a finding. @return whether there is room to keep it, too: of many, only the first are kept.
bool countFinding(FileResult &result, const char *id);

/// Keeps a finding that was counted; a long text is cut.
void keepFinding(FileResult &result, KeptFinding &&finding);

/// @return the number of findings, also of those not kept.
std::uint64_t findingCount(const FileResult &result);

/// @return whether a file is worth a line: without a baseline if it is not OK.
inline bool isTold(Verdict verdict, Since since) {
  return since <= Since::fresh ? verdict != Verdict::ok && since != Since::same : true;
}

/// @return whether a file makes the survey fail if it is not OK: with a baseline only if it is new or worse.
inline bool countsForStatus(Since since) {
  return since == Since::not_asked || since == Since::fresh || since == Since::worse;
}

/// @return whether there is something to mend: only in a file of the format, whatever its version, that was read.
inline bool needsRepair(const FileResult &result) {
  return result.verdict == Verdict::err || result.reason == Reason::other_version;
}

/// @return whether an answer about the repair fits the file. One that does not look like one of the format can turn out
/// to be one when it is mended.
inline bool mayHaveRepair(const FileResult &result) {
  return result.repair <= Repair::needless || needsRepair(result) ||
         (result.reason == Reason::not_kova && result.repair != Repair::no);
}

/// @return the row of a finding's id, also one of the deep checks; null for an id of another version of the program.
const FindingRow *rowOf(const char *id);

/// @return all rows, those of the library and those of the deep checks.
std::vector<const FindingRow *> allRows();

} // namespace kova::survey
