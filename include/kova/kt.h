/// The text form of a KOVA file: everything that a model holds, line by line.
///
/// A program calls `kvPrintKt` or `kvSaveAsKt`. The other functions are those of the format's library, and those that
/// write to a stream close it for a 1.0 file and leave it open for a 2.0 file.
///
/// Nothing here asks for memory or fails on a model that was only partly read: what is held is printed, to the last
/// closing tag. Where a program has lowered a count or a size in a model, as much is printed as that says.
#pragma once

#include "kova/kova.h"

namespace kova {

/// Writes the whole dump of `kis`, of either version, and closes nothing.
/// @return 1; 0 where the stream does not take all of it.
KOVA_API int kvPrintKt(std::FILE *stream, const Kis &kis);

/// Writes the section of the list called `name` ("SceneList" to "ExternalNameList") as the whole dump has it, and
/// closes nothing. A version-2 list that the dump leaves out prints nothing.
/// @return 1; 0 for a name that no list has, or where the stream does not take all of it.
KOVA_API int kvPrintKtList(std::FILE *stream, const Kis &kis, const char *name);

/// As `kvPrintKt`, into a new file at `path`. `kvSaveAsKt1` writes the 1.0 dump of any file.
/// @return 1; 0 after "Output File Open Error\n" or "Output File Write Error\n" on standard error.
KOVA_API int kvSaveAsKt(const Kis &kis, const char *path);
KOVA_API int kvSaveAsKt1(const Kis &kis, const char *path);

/// Writes the whole dump of `kis`: of a 1.0 file the 1.0 dump, after which the stream is closed, also when it is
/// standard output; else the 2.0 dump, after which it is left open.
/// @return 1; 0 where the stream does not take all of it.
KOVA_API int kvWriteKt(std::FILE *stream, const Kis &kis);

/// Writes the header and the nineteen version-1 lists, then closes the stream, also when it is standard output.
/// @return 1; 0 where the stream does not take all of it.
KOVA_API int kvWriteKt1(std::FILE *stream, const Kis &kis);

/// `kvWriteKt` and `kvWriteKt1` to standard output.
KOVA_API int kvOutputKt(const Kis &kis);
KOVA_API int kvOutputKt1(const Kis &kis);

} // namespace kova
