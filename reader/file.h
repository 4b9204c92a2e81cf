/// What the reader asks of the system: bytes of a stream, places in it, and which file it is.
#pragma once

#include "kova/kova.h"

#include <optional>

namespace kova {

/// Reads up to `bytes` bytes. A call that a signal has interrupted is made again.
/// @return the bytes read; fewer where the stream ends, or where it fails (then `std::ferror` says so).
std::size_t readBytes(std::FILE *stream, void *to, std::size_t bytes);

/// @return where the stream stands, in bytes from its start; none where it cannot tell (a pipe).
std::optional<std::uint64_t> streamPlace(std::FILE *stream);

/// Moves the stream to a place. @return false where it cannot be moved there.
bool seekStream(std::FILE *stream, std::uint64_t place);

/// @return the length of the stream in bytes; none where its end cannot be found (a pipe).
std::optional<std::uint64_t> streamLength(std::FILE *stream);

/// @return which file the stream reads. Unknown for whatever is neither a regular file nor a block device.
InputFile identify(std::FILE *stream);

/// Opens the file at `path` once more, for binary reading. Nothing but a regular file or a block device is opened, and
/// the opening never waits.
/// @return the stream; null after "Input File Open Error\n" on standard error, or after "Input File Has Changed\n"
/// where `first` is known and this is another file, or the same one changed.
Stream openAgain(const char *path, const InputFile &first);

} // namespace kova
