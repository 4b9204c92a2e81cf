/// The survey: finds the files, audits them, and writes what was asked for.
#pragma once

#include "survey/options.h"

namespace kova::survey {

/// Audits the files of a survey, or merges reports. @return the exit status.
Status surveyFiles(const Options &options);
Status mergeReports(const Options &options);

/// Prints the catalogue of findings, or one row of it. @return the exit status.
Status listFindings(Colour colour);
Status explainFinding(const std::string &id, Colour colour);

} // namespace kova::survey
