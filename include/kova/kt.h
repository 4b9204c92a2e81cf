/// The text form of a KOVA file: everything that a model holds, line by line.
///
/// The front door of the dump. Nothing here asks for memory or fails on a model that was only partly read: what is held
/// is printed, to the last closer. Write errors of a stream are not reported.
#pragma once

#include "kova/kova.h"

namespace kova {

/// Writes the whole dump of `kis`, of either version, and closes nothing: the function for programs.
/// @return 1; 0 where the stream does not take all of it.
KOVA_API int kvPrintKt(std::FILE *stream, const Kis &kis);

/// Writes the whole dump of `kis` to `stream`: the version-1 dump of a 1.0 file (which closes the stream, also
/// when it is standard output), else the 2.0 dump (which leaves it open). @return 1.
KOVA_API int kvWriteKt(std::FILE *stream, const Kis &kis);

/// Writes the header and the nineteen version-1 lists, then closes the stream, also when it is standard output.
/// @return 1.
KOVA_API int kvWriteKt1(std::FILE *stream, const Kis &kis);

/// `kvWriteKt` and `kvWriteKt1` to standard output.
KOVA_API int kvOutputKt(const Kis &kis);
KOVA_API int kvOutputKt1(const Kis &kis);

/// As `kvWriteKt` and `kvWriteKt1`, into a new file at `path`, which is closed afterwards.
/// @return 1; 0 after "Output File Open Error\n" on standard error where the file cannot be opened.
KOVA_API int kvSaveAsKt(const Kis &kis, const char *path);
KOVA_API int kvSaveAsKt1(const Kis &kis, const char *path);

} // namespace kova
