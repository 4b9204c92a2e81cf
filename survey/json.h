/// The JSON report: a line for each file. docs/report.md describes it.
#pragma once

#include "survey/file_result.h"

#include <optional>
#include <string>
#include <vector>

namespace kova::survey {

/// @return the record as a line, with the line break.
std::string jsonLine(const FileResult &record);

/// @return the record of a line, with or without its line break; none if the line is not one of a report.
std::optional<FileResult> recordOf(const std::string &line);

/// A report that was read.
struct Report {
  std::vector<FileResult> records;
  std::string error; ///< what is wrong with it, for people; empty if nothing is
};

/// Reads a report from a file, or from standard input for "-". A last line without its line break is what an
/// interrupted run leaves: it is ignored.
Report readReport(const std::string &path);

/// Sorts records by path and leaves one for each path: of several the one modified last, of equal ones any.
void sortRecords(std::vector<FileResult> &records);

} // namespace kova::survey
