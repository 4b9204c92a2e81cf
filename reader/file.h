/// What the reader asks of the system: bytes of a stream, positions in it, and which file it is; and the same of a file
/// in memory.
#pragma once

#include "kova/setup.h"

#include <array>
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

/// What a model is read from: a stream, or the bytes of a whole file in memory.
struct Input {
  std::FILE *stream;                         ///< not owned; null for bytes in memory
  std::span<const unsigned char> bytes = {}; ///< not owned
  std::uint64_t at = 0;                      ///< the place in `bytes` from which is read next
};

// The functions above for either of them. Reading bytes in memory never fails, it only ends.
std::size_t readBytes(Input &input, void *to, std::size_t bytes);
std::optional<std::uint64_t> inputPlace(const Input &input);
bool seekInput(Input &input, std::uint64_t place);
std::optional<std::uint64_t> inputLength(const Input &input);

/// Reads a list of `size` bytes, by its place in `LISTS`, from the input's position, or clears its record where the
/// size is 0. Maker blocks are not decoded. @return 1; 0 after a finding
int readListAt(Input &input, Word size, Kis &kis, std::size_t list);

/// Decodes the maker blocks of a list of a 2.0 file. @return 0 where a record has none, or memory cannot be had, which
/// is told
using MakerDecoder = int (*)(Kis &);
inline constexpr std::array<MakerDecoder, 8> MAKER_DECODERS = {
    [](Kis &kis) { return kvSetupSceneListExt(kis.scene); }, [](Kis &kis) { return kvSetupCamExt(kis.cam); },
    [](Kis &kis) { return kvSetupObjExt(kis.obj); },         [](Kis &kis) { return kvSetupShapeExt(kis.shape); },
    [](Kis &kis) { return kvSetupMatExt(kis.mat); },         [](Kis &kis) { return kvSetupTexExt(kis.tex); },
    [](Kis &kis) { return kvSetupTeximgExt(kis.teximg); },   [](Kis &kis) { return kvSetupAnimGroupExt(kis.anim); }};

/// @return which file the stream reads. Unknown for whatever is neither a regular file nor a block device.
InputFile identify(std::FILE *stream);

/// Opens the file at `path` once more, for binary reading. Nothing but a regular file or a block device is opened, and
/// the opening never waits.
/// @return the stream; null after "Input File Open Error\n", or after "Input File Has Changed\n" where `first` is known
/// and this is another file, or the same one changed.
Stream openAgain(const char *path, const InputFile &first);

} // namespace kova
