/// floor: the least that a program which dumps a scene as text has to do, without parsing or formatting anything.
///
///     floor file text-bytes
///
/// Reads the file through 64 KiB, turns its words to host order into memory that is backed with huge pages, and writes
/// `text-bytes` bytes of text to standard output, through 64 KiB that are filled from a few bytes in the first cache.
/// With 0 bytes, it is the least that loading takes. Nothing of this is done in a way that is slower than it has to be.

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t BUFFER_BYTES = 64 * 1024;
constexpr std::size_t TEXT_BYTES = 4096;
constexpr std::size_t HUGE_PAGE = 2 * 1024 * 1024;

/// @return room for `bytes` bytes that begins with a huge page; none where there is no memory.
std::uint32_t *hugePages(std::size_t bytes) {
  const std::size_t mapped = (bytes / HUGE_PAGE + 2) * HUGE_PAGE;
  void *const space = ::mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (space == MAP_FAILED)
    return nullptr;
  ::madvise(space, mapped, MADV_HUGEPAGE);
  const auto begin = reinterpret_cast<std::uintptr_t>(space);
  return reinterpret_cast<std::uint32_t *>((begin + HUGE_PAGE - 1) / HUGE_PAGE * HUGE_PAGE);
}

#ifdef __x86_64__
[[gnu::target_clones("avx2", "default")]]
#endif
void turn(std::uint32_t *to, const std::uint32_t *from, std::size_t words) {
  for (std::size_t i = 0; i < words; ++i)
    to[i] = __builtin_bswap32(from[i]);
}

bool readAndTurn(const char *path) {
  alignas(64) static std::array<std::uint32_t, BUFFER_BYTES / 4> buffer;
  const int file = ::open(path, O_RDONLY);
  struct stat status;
  if (file < 0 || ::fstat(file, &status) != 0)
    return false;
  std::uint32_t *const words = hugePages(static_cast<std::size_t>(status.st_size));
  if (words == nullptr)
    return false;
  std::size_t done = 0;
  ssize_t got;
  while ((got = ::read(file, buffer.data(), BUFFER_BYTES)) > 0) {
    turn(words + done, buffer.data(), static_cast<std::size_t>(got) / 4);
    done += static_cast<std::size_t>(got) / 4;
  }
  ::close(file);
  return got == 0 && done == static_cast<std::size_t>(status.st_size) / 4;
}

bool writeText(std::size_t bytes) {
  alignas(64) static std::array<char, TEXT_BYTES> text;
  alignas(64) static std::array<char, BUFFER_BYTES> buffer;
  text.fill('x');
  while (bytes > 0) {
    const std::size_t piece = std::min(bytes, BUFFER_BYTES);
    for (std::size_t done = 0; done < piece; done += TEXT_BYTES) {
      std::memcpy(&buffer[done], text.data(), TEXT_BYTES);
      asm volatile("" : : "r"(buffer.data()) : "memory"); // or the same bytes would be copied only once
    }
    if (::write(STDOUT_FILENO, buffer.data(), piece) != static_cast<ssize_t>(piece))
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
  return readAndTurn(argv[1]) && writeText(std::strtoull(argv[2], nullptr, 10)) ? 0 : 1;
}
