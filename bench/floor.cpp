/// floor: the least that a program which dumps a scene as text has to do, without parsing or formatting anything.
///
///     floor file text-bytes
///
/// Reads the file into fresh memory, turns its words to host order, and copies `text-bytes` bytes of text through a
/// 64 KiB buffer to standard output.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t BUFFER_BYTES = 64 * 1024;

bool readAndTurn(const char *path) {
  const int file = ::open(path, O_RDONLY);
  struct stat status;
  if (file < 0 || ::fstat(file, &status) != 0)
    return false;
  const auto bytes = static_cast<std::size_t>(status.st_size);
  const auto words = std::make_unique_for_overwrite<std::uint32_t[]>(bytes / 4);
  for (std::size_t done = 0; done < bytes / 4 * 4;) {
    const ssize_t got = ::read(file, reinterpret_cast<char *>(words.get()) + done, bytes / 4 * 4 - done);
    if (got <= 0)
      return false;
    done += static_cast<std::size_t>(got);
  }
  std::uint32_t sum = 0;
  for (std::size_t i = 0; i < bytes / 4; ++i) {
    words[i] = __builtin_bswap32(words[i]);
    sum += words[i];
  }
  ::close(file);
  return sum != 1; // uses what was turned
}

bool copyText(std::size_t bytes) {
  static char text[BUFFER_BYTES];
  static char buffer[BUFFER_BYTES];
  std::memset(text, 'x', sizeof text);
  while (bytes > 0) {
    const std::size_t piece = bytes < BUFFER_BYTES ? bytes : BUFFER_BYTES;
    std::memcpy(buffer, text, piece);
    if (std::fwrite(buffer, 1, piece, stdout) != piece)
      return false;
    bytes -= piece;
  }
  return true;
}

} // namespace

int main(int argc, char **argv) {
  if (argc != 3) {
    std::fputs("Usage: floor file text-bytes\n", stderr);
    return 2;
  }
  return readAndTurn(argv[1]) && copyText(std::strtoull(argv[2], nullptr, 10)) ? 0 : 1;
}
