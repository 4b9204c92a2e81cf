#include "diff/scene.h"

#include "format/versions.h"
#include "kova/findings.h"
#include "kova/setup.h"
#include "reader/byte_order.h"
#include "reader/file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <unistd.h>

namespace kova::diff {

namespace {

[[noreturn]] void refuse(const Source &source, const char *reason) { throw Trouble{source.path, reason}; }

/// Reads a pipe to its end.
void hold(Source &source) {
  source.is_held = true;
  source.held.resize(65536);
  for (;;) {
    const ssize_t got = ::read(source.file.number, source.held.data() + source.size, source.held.size() - source.size);
    if (got < 0 && errno == EINTR)
      continue;
    if (got < 0)
      refuse(source, std::strerror(errno));
    if (got == 0)
      break;
    source.size += static_cast<std::uint64_t>(got);
    if (source.size == source.held.size())
      source.held.resize(2 * source.held.size());
  }
  source.held.resize(static_cast<std::size_t>(source.size));
}

/// @return a stream of an open file; null for one that is held.
Stream streamOf(const Source &source) {
  if (source.is_held)
    return nullptr;
  const int copy = ::fcntl(source.file.number, F_DUPFD_CLOEXEC, 0);
  Stream stream(copy < 0 ? nullptr : ::fdopen(copy, "rb"));
  if (!stream && copy >= 0)
    ::close(copy);
  if (!stream)
    refuse(source, std::strerror(errno));
  return stream;
}

/// Reads a list. @param stated the size that the header gives it
void loadList(Side &side, Input &input, std::size_t list, Word stated) {
  LoadedList &loaded = side.lists[list];
  const FindingReceiver receiver(
      [&](const Finding &finding) { loaded.finding = loaded.finding != nullptr ? loaded.finding : finding.row->id; });
  if (!seekInput(input, loaded.begin))
    refuse(side.source, std::strerror(errno));
  loaded.ok = readListAt(input, stated, side.kis, list) != 0;
  if (loaded.finding != nullptr && std::strcmp(loaded.finding, "out-of-memory") == 0)
    throw std::bad_alloc();
  if (loaded.finding != nullptr && std::strcmp(loaded.finding, "input-read") == 0)
    refuse(side.source, std::strerror(EIO));
}

/// Finds out how much of a list is held.
void measure(Side &side, std::size_t list) {
  LoadedList &loaded = side.lists[list];
  loaded.elements = {elementsOf(side.kis, list, false), elementsOf(side.kis, list, true)};
  loaded.rest = loaded.begin;
  if (loaded.ok && contentOf(side.kis, list) <= loaded.bytes) {
    loaded.rest += contentOf(side.kis, list);
    return;
  }
  side.failed += loaded.ok || loaded.bytes > 0;
  loaded.ok = false;
  const bool second = loaded.elements[1] > 0;
  std::size_t &last = loaded.elements[second ? 1 : 0];
  if (last == 0)
    return;
  --last; // it was not read whole
  const std::uint64_t place = placeOf(side.kis, list, second, last);
  loaded.rest = std::clamp(place, loaded.begin, loaded.begin + loaded.bytes);
}

/// Decodes the maker blocks of a 2.0 file, as far as they are whole. A load ends at the first list with a record that
/// has none; here the others are decoded, too.
void decodeMakers(Kis &kis) {
  bool no_memory = false;
  const FindingReceiver receiver([&](const Finding &) { no_memory = true; });
  for (const MakerDecoder decode : MAKER_DECODERS)
    decode(kis);
  if (no_memory)
    throw std::bad_alloc();
  dropCutMakers(kis);
}

/// Reads all lists, each for itself: one that cannot be read does not keep the others from being compared.
void loadLists(Side &side) {
  const Stream stream = streamOf(side.source);
  Input input = {stream.get(), side.source.held};
  std::uint64_t at = FILE_HEADER_BYTES + side.parts.blocks;
  for (std::size_t list = 0; list < LIST_NUM; ++list) {
    side.lists[list] = {.begin = at, .bytes = side.parts.lists[list]};
    at += side.parts.lists[list];
    const Word size = static_cast<Word>(side.parts.lists[list]);
    const Word stated = side.is_led ? size : side.kis.file_header.*LISTS[list].size;
    if (size > 0)
      loadList(side, input, list, stated);
    measure(side, list);
    side.failed += size == 0 && stated > 0;
    side.lists[list].is_cut = stated > 0 && !side.lists[list].ok;
  }
  if (hasVersion2(side.version))
    decodeMakers(side.kis);
}

/// Reads the sizes and the blocks of the header, if they are words.
void loadHeaderBlocks(Side &side) {
  FileHeader &header = side.kis.file_header;
  if (!side.parts.whole_words || side.parts.blocks == 0)
    return;
  std::vector<unsigned char> bytes(static_cast<std::size_t>(side.parts.blocks));
  readBytes(side.source, FILE_HEADER_BYTES, bytes);
  Words words(bytes.size() / sizeof(Word));
  copyConverted(words.data(), bytes.data(), bytes.size());
  const std::span<const Word> all(words);
  const std::size_t sizes = side.parts.has_sizes ? VERSION_2_SIZES_BYTES / sizeof(Word) : 0;
  Version2Sizes &first = header;
  std::memcpy(&first, words.data(), sizes * sizeof(Word));
  const std::size_t van = side.van_bytes / sizeof(Word);
  header.ext_blk.words = std::make_unique<ExtBlkWords>();
  header.ext_blk.words->van.assign(all.begin() + static_cast<std::ptrdiff_t>(sizes),
                                   all.begin() + static_cast<std::ptrdiff_t>(van));
  header.ext_blk.words->usr.assign(all.begin() + static_cast<std::ptrdiff_t>(van), all.end());
}

void readFile(const Source &source, std::uint64_t at, std::span<unsigned char> to) {
  for (std::size_t done = 0; done < to.size();) {
    const ssize_t got = ::pread(source.file.number, to.data() + done, to.size() - done, static_cast<off_t>(at + done));
    if (got == 0)
      refuse(source, FILE_HAS_CHANGED);
    if (got < 0 && errno != EINTR)
      refuse(source, std::strerror(errno));
    done += got > 0 ? static_cast<std::size_t>(got) : 0;
  }
}

} // namespace

Source openSource(const std::string &path) {
  Source source = {.path = path};
  source.file = path == "-" ? Descriptor(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0))
                            : Descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  struct stat status;
  if (source.file.number < 0 || ::fstat(source.file.number, &status) != 0)
    refuse(source, std::strerror(errno));
  if (S_ISDIR(status.st_mode))
    refuse(source, std::strerror(EISDIR));
  if (S_ISREG(status.st_mode) && path != "-")
    source.size = static_cast<std::uint64_t>(status.st_size);
  else
    hold(source);
  return source;
}

void readBytes(const Source &source, std::uint64_t at, std::span<unsigned char> to) {
  constexpr std::size_t WINDOW = 16 * 1024;
  if (to.empty())
    return;
  if (source.is_held) {
    std::memcpy(to.data(), source.held.data() + at, to.size());
    return;
  }
  if (to.size() > WINDOW / 4)
    return readFile(source, at, to);
  const auto has = [&](const Source::Window &window) {
    return at >= window.at && at + to.size() <= window.at + window.bytes.size();
  };
  if (!has(source.windows[0]))
    std::swap(source.windows[0], source.windows[1]);
  Source::Window &window = source.windows[0];
  if (!has(window)) {
    window = {at,
              std::vector<unsigned char>(static_cast<std::size_t>(std::min<std::uint64_t>(WINDOW, source.size - at)))};
    readFile(source, at, window.bytes);
  }
  std::memcpy(to.data(), window.bytes.data() + (at - window.at), to.size());
}

void loadSide(Side &side) {
  std::array<unsigned char, FILE_HEADER_BYTES + VERSION_2_SIZES_BYTES> begin{};
  const auto there =
      std::span(begin).first(static_cast<std::size_t>(std::min<std::uint64_t>(side.source.size, begin.size())));
  readBytes(side.source, 0, there);
  side.is_scene = takeApart(there, side.source.size, side.parts, side.kis.file_header);
  side.version = kvKOVAver(side.kis.file_header);
  side.van_bytes = side.kis.file_header.van_ext_blk_size;
  if (!side.is_scene)
    return;
  loadHeaderBlocks(side);
  loadLists(side);
}

void loadLike(Side &damaged, const Side &good) {
  const bool is_like = good.is_scene && damaged.source.size == good.source.size && good.failed == 0;
  const bool is_damaged = !damaged.is_scene || damaged.failed > 0 || !damaged.parts.whole_words ||
                          damaged.parts.behind != good.parts.behind;
  const bool is_there = damaged.parts.blocks == good.parts.blocks && damaged.parts.lists == good.parts.lists;
  if (!is_like || !is_damaged || (damaged.is_scene && is_there))
    return;
  Side again = {
      .parts = good.parts, .version = good.version, .van_bytes = good.van_bytes, .is_scene = true, .is_led = true};
  std::swap(again.source, damaged.source);
  static_cast<FileHeaderHead &>(again.kis.file_header) = damaged.kis.file_header;
  loadHeaderBlocks(again);
  loadLists(again);
  damaged = std::move(again);
}

bool sameBytes(const Source &a, const Source &b) {
  if (a.size != b.size)
    return false;
  constexpr std::size_t AT_ONCE = 256 * 1024;
  std::vector<unsigned char> from_a(AT_ONCE), from_b(AT_ONCE);
  for (std::uint64_t at = 0; at < a.size; at += AT_ONCE) {
    const auto bytes = static_cast<std::size_t>(std::min<std::uint64_t>(AT_ONCE, a.size - at));
    readBytes(a, at, std::span(from_a).first(bytes));
    readBytes(b, at, std::span(from_b).first(bytes));
    if (std::memcmp(from_a.data(), from_b.data(), bytes) != 0)
      return false;
  }
  return true;
}

} // namespace kova::diff
