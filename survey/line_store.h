/// The lines of a survey, in a file: memory does not grow with what is found.
///
/// Reports are made of the lines when the survey has ended. A survey with a JSON report keeps them in a journal, a
/// hidden file beside the report, which is removed when the report is written. A run that is killed leaves its journal,
/// and the next one that resumes the report takes its lines over.
#pragma once

#include "common/file.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kova::survey {

/// A file of lines.
struct LineStore {
  Descriptor file = {};
  std::string path = {};  ///< of a journal; empty for a file without a name
  std::uint64_t size = 0; ///< in bytes
  int error = 0;          ///< the system's reason for the first failure; then nothing is written any more
};

/// Where a line is in a store.
struct Place {
  std::uint64_t at = 0;
  std::uint32_t bytes = 0;
  std::uint32_t first_findings = 0; ///< where its first findings end: see `appendLine`
};

/// Makes a new store: a journal of the report that will be written to `target`. It is private, and its name cannot be
/// foreseen.
void openJournal(LineStore &store, const std::string &target);

/// Makes a new store without a name, in a folder if it can be there.
void openUnnamed(LineStore &store, const std::string &folder);

/// @return the folder for such a store that goes with no report: that of TMPDIR, if it is one.
std::string folderForUnnamed();

/// Puts a line behind what was written. @return its place
Place append(LineStore &store, std::string_view line, std::size_t first_findings);

/// Reads the text at a place. @return whether it could be read; else the store has an error.
bool read(LineStore &store, Place place, std::string &text);

/// Ends a store. @return whether its journal is gone; else the store has an error.
bool removeStore(LineStore &store);

/// Journals that runs have left which were killed, as long as this lives in the hands of this process alone.
std::vector<LineStore> leftJournals(const std::string &target);

} // namespace kova::survey
