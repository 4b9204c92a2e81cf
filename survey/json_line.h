/// The line of a file in a JSON report. docs/report.md describes it.
#pragma once

#include "survey/file_result.h"

#include <optional>
#include <string>
#include <string_view>

namespace kova::survey {

/// Appends a result as a line, with the line break. Asks for no memory but that of the line.
/// @return where the first `FIRST_FINDINGS` findings end in the line: see `firstFindings`
std::size_t appendLine(std::string &lines, const FileResult &result);

/// What the page shows of a file, at most.
inline constexpr std::size_t FIRST_FINDINGS = 100;

/// Makes a line of a line that was cut where its first findings end: that of a file that has only these, but for the
/// counts.
void completeLine(std::string &cut);

/// @return the result of a line, with or without its line break; none if the line is not one of a report. What is
/// taken from it gives a line that fits the schema.
std::optional<FileResult> resultOf(std::string_view line);

} // namespace kova::survey
