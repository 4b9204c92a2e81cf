/// The binary form of a KOVA file, written from a model: the way back from `kvOpenKb`.
///
/// Words are written as the model holds them, also wrong ones: tags, indices, counts and sizes. So a damaged file that
/// was loaded comes back as damaged as it was. Nothing is computed anew, and nothing is checked that is not lost
/// otherwise: whoever changes the number of something also changes its count, and keeps the sizes right with
/// `kvAdjustListSizeData` (and the triangle references with `kvSetRefs`). `checkKOVA` tells what was forgotten. A model
/// that holds more than a count or the size of a block says, or has no room for it, is refused. What is counted and not
/// held is zeros, unless the list ends there.
///
/// The maker blocks of a 2.0 file are written from what was decoded from them (`ext`, and the nine sizes in the
/// header), followed by the other words of the block as they were read. A block that was too short for its counts stays
/// as long as it was. What a program adds must fit the block: whoever needs more room raises `van_ext_blk_size`. Where
/// `ext` is null, and in a 1.0 file, which has none, the block is its words in `ext_blk`; those that it lacks are
/// zeros.
///
/// A file for which `kvOpenKb` returned 1 comes back byte for byte, but for the bytes that no record takes in. The
/// model does not hold them, and they are written as zeros:
///
/// - the gap between a light or the scene and what its header size points to,
/// - what a list has after its blocks, or the file after its last list: where a size says more than the
///   content fills, such as the last colour of an odd number, or bytes that are no whole word,
/// - the data of a collision after its tenth word,
/// - the version-2 lists of a file whose maker block is too short for their sizes,
/// - single bytes beside words at a place that is no multiple of 4, as after an odd number of texels. Those
///   words are stored so that a load takes them as they are in the model.
///
/// A list begins and ends where the sizes in the header say. What a list holds beyond its size, or beyond the size of
/// the file, is not written. A model of a file that was not read whole is written as far as it is held, zeros in place
/// of what is lacking: loaded again it is the same model. A model without any list, as a load leaves it that ended at
/// the header, is written as its header and the header's blocks alone.
#pragma once

#include "kova/kova.h"

#include <functional>

namespace kova {

/// Writes a model of version 1.0 or 2.0 to the stream's position and flushes the stream, which stays open. Asks for no
/// memory.
/// @return 1; 0 where the stream fails, and 0 with nothing written for a model of another version, of a 2.0 file with
/// version-2 lists whose version-1 sizes add up to more than 32 bits (its lists lie upon each other), or where the
/// model holds something for which a count, or the size of a block, leaves no place.
KOVA_API int kvWriteKb(std::FILE *stream, const Kis &kis);

/// Writes the model to the file at `path`, whole or not at all: to a new file in the same folder, which is flushed to
/// the disk and then takes the place of the old one. Whoever reads `path` sees the old file or the new one. A symbolic
/// link stays, and the file that it leads to is replaced; other hard links to that file keep the old one. The new file
/// has owner, group and permissions of the old one as far as the system allows, or the permissions that the umask
/// gives; no set-user-ID or set-group-ID. What is no regular file (a device, a pipe with a reader) is written to as is.
///
/// Signals that ask the process to end (SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGXCPU) are held back in the
/// calling thread until the file is saved. A file that becomes larger than the process may write is a failure, no
/// SIGXFSZ. So nothing is left behind, unless the process is killed: then the new file may be (".kova-" and 16 digits).
/// @return 1; 0 after "Output File Open Error\n" on standard error where the target may not be written or no file can
/// be made beside it, or after "Output File Write Error\n" where writing fails or `kvWriteKb` refuses the model. Then
/// the target is as it was and the new file is gone.
KOVA_API int kvSaveAsKb(const Kis &kis, const char *path);

/// What becomes of a file that is there already.
enum class Existing { replace, refuse };

/// Writes the whole content of a file to a stream, and does not close it. @return 1; 0 where it fails.
using Writing = std::function<int(std::FILE *)>;

/// Saves any file in the same way: for a program that edits the bytes of a file, or writes a report. Prints nothing.
/// @param path the file, as for `kvSaveAsKb`
/// @param existing `refuse`: `path` must be free, also when the file is whole; no link is followed
/// @param mode the permissions, at most 0777, of a file that was not there, less those that the umask withholds
/// @param write whatever has to succeed before `path` is changed may be part of it
/// @return 1; 0 with the system's reason in `errno`, EEXIST for what is refused
KOVA_API int kvSaveFile(const char *path, Existing existing, unsigned mode, const Writing &write);

/// As `kvSaveFile` where the content is in memory.
KOVA_API int kvSaveBytes(std::span<const unsigned char> bytes, const char *path, Existing existing, unsigned mode);

} // namespace kova
