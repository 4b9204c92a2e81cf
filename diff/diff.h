/// The comparison of two files by their paths.
#pragma once

#include "diff/options.h"

#include <cstdio>

namespace kova::diff {

/// Compares two files. What is printed is in `printer`; its paths are those of the files.
/// @param reason of trouble, for people
Status diffFiles(const Rules &rules, Printer &printer, std::string &reason);

/// Whether a path is a folder.
bool isFolder(const std::string &path);

/// Whether nothing that is printed gets into one of these files; if it would by standard output, tells so.
bool printsElsewhere(const std::vector<std::string> &paths);

/// Compares the scenes in two folders, each with the one of the same path, and prints what is different, in the order
/// of the paths, with a summary.
Status diffFolders(const Options &options, std::FILE *stream);

} // namespace kova::diff
