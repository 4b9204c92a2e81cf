#include "kova/kova.h"

#include "format/all.h"
#include "format/versions.h"
#include "reader/cursor.h"
#include "reader/elements.h"
#include "reader/file.h"
#include "reader/findings.h"
#include "reader/window.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <optional>

namespace kova {

namespace {

// --- Bytes of the file ---------------------------------------------------------------------------------------------

/// @return the bytes between a place in a file and its end.
std::uint64_t bytesAhead(std::uint64_t length, std::uint64_t here) { return length > here ? length - here : 0; }

struct Bytes {
  std::unique_ptr<unsigned char[]> bytes;
  std::size_t size = 0;
};

void grow(Bytes &held, std::size_t capacity) {
  auto bytes = std::make_unique_for_overwrite<unsigned char[]>(capacity);
  std::copy_n(held.bytes.get(), held.size, bytes.get());
  held.bytes = std::move(bytes);
}

/// Reads up to `size` bytes from the input's position, as they stand in the file. Memory is asked for by what the
/// input holds; where that is not known, by what it has given so far. Throws where memory cannot be had.
Bytes readAll(Input &input, Word size) {
  constexpr std::size_t FIRST_GUESS = 64 * 1024;
  const std::optional<std::uint64_t> length = inputLength(input);
  const std::uint64_t ahead = length ? bytesAhead(*length, inputPlace(input).value_or(0)) : FIRST_GUESS;
  std::size_t capacity = static_cast<std::size_t>(std::min<std::uint64_t>(size, ahead));
  Bytes held;
  for (;;) {
    grow(held, capacity);
    held.size += readBytes(input, held.bytes.get() + held.size, capacity - held.size);
    if (length || held.size < capacity || capacity == size)
      return held;
    capacity = static_cast<std::size_t>(std::min<std::uint64_t>(size, 2 * std::uint64_t{capacity}));
  }
}

/// A window at the input's position for a list of `size` bytes, or of as many as are there. A stream whose length
/// is not known (a pipe) is read now, and the window holds all of the list. Throws where memory cannot be had.
ListWindow windowFor(Input &input, Word size) {
  const std::optional<std::uint64_t> length = inputLength(input);
  if (!length) {
    Bytes held = readAll(input, size);
    const unsigned char *const bytes = held.bytes.get();
    return {nullptr, NO_OFFSET, held.size, held.size, std::move(held.bytes), bytes, 0, held.size};
  }
  const std::uint64_t begin = std::min(inputPlace(input).value_or(0), *length);
  const std::uint64_t there = std::min<std::uint64_t>(size, bytesAhead(*length, begin));
  if (input.stream == nullptr)
    return {nullptr, begin, there, there, nullptr, input.bytes.data() + begin, 0, there};
  auto owned = std::make_unique_for_overwrite<unsigned char[]>(
      static_cast<std::size_t>(std::min<std::uint64_t>(there, WINDOW_BYTES)));
  const unsigned char *const bytes = owned.get();
  return {input.stream, begin, there, 0, std::move(owned), bytes};
}

bool failed(const Input &input) { return input.stream != nullptr && std::ferror(input.stream) != 0; }

/// Reports a read that failed, once for a model. @return 0.
int sayReadError(const Input &input, Kis &kis, const char *list) {
  if (!kis.input_file.read_error)
    report<"input-read">({.list = list}, {});
  kis.input_file.read_error = true;
  std::clearerr(input.stream); // reported: what is read from the stream next is judged by itself
  return 0;
}

// --- The readers of the lists ---------------------------------------------------------------------------------------

Word &listSize(ListHead &list) { return list.list_size; }
Word &listSize(TwoKindListHead &list) { return list.list_size; }
Word &listSize(Scene &scene) { return scene.scene_size; }

template <class Element> auto &sizeTable(List<Element> &list) { return list.num_byte; }
template <class Element> auto &elements(List<Element> &list) { return list.element; }
template <class First, class Second> auto &sizeTable(TwoKindList<First, Second> &list) { return list.tri_group_size; }
template <class First, class Second> auto &elements(TwoKindList<First, Second> &list) { return list.tri_group; }

/// Adds to the size of an element: in its own word, in the size table and in the size of the list.
template <class List> bool resizeElement(List &list, Word index, Word delta) {
  using Form = std::remove_cvref_t<decltype(ListFormat<List>::elements)>;
  constexpr std::size_t SIZE_AT = wordWith(Form::words, Role::size) * sizeof(Word);
  if (index >= elements(list).size() || index >= sizeTable(list).size())
    return false;
  typename Form::Head &head = elements(list)[index];
  unsigned char *const size = reinterpret_cast<unsigned char *>(&head) + SIZE_AT;
  Word bytes;
  std::memcpy(&bytes, size, sizeof bytes);
  bytes += delta;
  std::memcpy(size, &bytes, sizeof bytes);
  sizeTable(list)[index] += delta;
  listSize(list) += delta;
  return true;
}
/// The scene has no elements.
bool resizeElement(Scene &, Word, Word) { return false; }

/// What the loader and the size bookkeeping do with a list.
struct ListReader {
  int (*read)(Cursor &, Kis &);
  void (*clear)(Kis &);
  void (*resizeList)(Kis &, Word delta);
  bool (*resizeElement)(Kis &, Word index, Word delta); ///< false for an index that no element has
};

template <std::size_t LIST> inline constexpr auto &ROW = std::get<LIST>(LIST_ROWS);

template <std::size_t LIST> constexpr ListReader listReader() {
  using List = std::remove_cvref_t<decltype(std::declval<Kis &>().*ROW<LIST>.list)>;
  // Of names, there is one reader: it takes the tags of both of their lists, and tells of the first.
  constexpr Word TAG_OF_LIST = std::is_same_v<List, NameList> ? NAME_LIST_TAG : ROW<LIST>.tag;
  return {[](Cursor &cursor, Kis &kis) { return readList(cursor, kis.*ROW<LIST>.list, TAG_OF_LIST); },
          []([[maybe_unused]] Kis &kis) {
            if constexpr (LIST >= VERSION_1_LIST_NUM)
              (kis.*ROW<LIST>.list).num = 0;
          },
          [](Kis &kis, Word delta) { listSize(kis.*ROW<LIST>.list) += delta; },
          [](Kis &kis, Word index, Word delta) { return resizeElement(kis.*ROW<LIST>.list, index, delta); }};
}

constexpr auto READERS = []<std::size_t... LIST>(std::index_sequence<LIST...>) {
  return std::array{listReader<LIST>()...};
}
(std::make_index_sequence<LIST_NUM>());

/// The place at which the reader of a list stopped, which is not past its end; without an offset if the file ends
/// there.
Place stoppedAt(const Cursor &cursor, std::uint64_t file_length) {
  const std::uint64_t at = offsetAfter(cursor.begin, std::min<std::uint64_t>(cursor.offset, cursor.size));
  Place place = {cursor.list, cursor.element};
  if (at < file_length)
    place.offset = at;
  return place;
}

/// Reads the lists `first` to `last` - 1 in file order. The first that fails ends it: where the next one begins is
/// known, but the format's library stops here, and the verdict says so.
int readLists(Input &input, Kis &kis, std::size_t first, std::size_t last) {
  for (std::size_t list = first; list < last; ++list)
    if (!readListAt(input, kis.file_header.*LISTS[list].size, kis, list))
      return 0;
  return 1;
}

// --- The checks of the header ---------------------------------------------------------------------------------------

int checkVersion(const FileHeader &header) {
  const Word version = kvKOVAver(header);
  if (isVersion(version))
    return 1;
  return report<"version-unknown">(headerWord(header, &FileHeader::version), {header.version}, header.version);
}

int checkFileSize(const FileHeader &header, std::uint64_t length) {
  if (length == header.size)
    return 1;
  const Word shown = static_cast<Word>(length);
  return report<"file-size">(headerWord(header, &FileHeader::size), {header.size, shown}, shown, header.size,
                             length < header.size ? "missing" : "extra");
}

int checkHeaderSize(const FileHeader &header) {
  const Word sum = header.van_ext_blk_size + header.usr_ext_blk_size + Word{FILE_HEADER_BYTES};
  if (header.file_header_num == sum)
    return 1;
  return report<"header-size">(headerWord(header, &FileHeader::file_header_num), {header.file_header_num, sum});
}

int checkListSum(const FileHeader &header) {
  const Word sum = kvSizeofKOVA1file(header);
  // The version-2 sizes are not known yet; the checker adds them up.
  if (kvKOVAver(header) != VERSION_1 || header.size == sum)
    return 1;
  return report<"lists-sum">(headerWord(header, &FileHeader::size), {header.size, sum}, header.size, sum);
}

int checkHeaderTag(const FileHeader &header) {
  if (header.header_tag == 0)
    return 1;
  return report<"header-tag">(headerWord(header, &FileHeader::header_tag), {header.header_tag, 0});
}

/// Reads the header's two blocks with one read of their sum, which wraps. A shortage is none of the header's faults.
int readHeaderBlocks(Input &input, Kis &kis) {
  FileHeader &header = kis.file_header;
  try {
    const Bytes held = readAll(input, header.van_ext_blk_size + header.usr_ext_blk_size);
    endianSwap4(held.bytes.get(), held.size);
    Cursor cursor{held.bytes.get(), held.size};
    if (kvSetupExtBlk1(cursor, header.ext_blk, header.van_ext_blk_size, header.usr_ext_blk_size))
      return failed(input) ? sayReadError(input, kis, HEADER.list) : 1;
  } catch (const std::exception &) { // reported below, like the fault of the cursor
  }
  return sayNoMemory(HEADER.list);
}

int readFileHeader(Input &input, Kis &kis) {
  FileHeader &header = kis.file_header;
  header = FileHeader();
  FileHeaderHead &words = header;
  header.held = readBytes(input, &words, sizeof words); // what the file lacks stays 0, also the rest of a word
  endianSwap4(&words, sizeof words);
  if (failed(input))
    return sayReadError(input, kis, HEADER.list);
  const int known_version = checkVersion(header);
  int ok = known_version;
  ok *= checkFileSize(header, inputLength(input).value_or(0));
  ok *= checkHeaderSize(header);
  ok *= checkListSum(header);
  ok *= checkHeaderTag(header);
  if (known_version) // else nothing would look at them
    ok *= readHeaderBlocks(input, kis);
  ok *= kvSetupFileHeaderExt(header);
  return ok;
}

// --- The two parts of a file ----------------------------------------------------------------------------------------

/// The header and the version-1 lists.
int readVersion1(Input &input, Kis &kis) {
  return readFileHeader(input, kis) && readLists(input, kis, 0, VERSION_1_LIST_NUM);
}

/// The version-2 lists.
int readVersion2(Input &input, Kis &kis) {
  if (!seekInput(input, kvSizeofKOVA1file(kis.file_header)))
    return sayReadError(input, kis, HEADER.list);
  return readLists(input, kis, VERSION_1_LIST_NUM, LIST_NUM);
}

/// Whether the version-2 lists are to be read, once the version-1 part was read with the result `ok`: decodes the maker
/// blocks of a 2.0 file, also of what a part that failed has left.
struct Version2 {
  int ok;          ///< 0 where the load has failed
  bool read_lists; ///< whether the file has version-2 lists
};
Version2 version2Of(Kis &kis, int ok) {
  if (!hasVersion2(kvKOVAver(kis.file_header)))
    return {ok, false};
  if (!std::all_of(MAKER_DECODERS.begin(), MAKER_DECODERS.end(), [&](MakerDecoder decode) { return decode(kis) != 0; }))
    return {0, false};
  // A maker block that cannot hold the nine sizes means a file without version-2 lists, which is no error.
  return {ok, kis.file_header.van_ext_blk_size >= VERSION_2_SIZES_BYTES};
}

/// Both parts of a file whose input can be moved back.
int readBoth(Input &input, Kis &kis) {
  const Version2 version_2 = version2Of(kis, readVersion1(input, kis));
  return version_2.read_lists ? readVersion2(input, kis) * version_2.ok : version_2.ok;
}

} // namespace

int readListAt(Input &input, Word size, Kis &kis, std::size_t list) {
  if (size == 0)
    return READERS[list].clear(kis), 1;
  const char *const name = LISTS[list].name;
  try {
    ListWindow window = windowFor(input, size);
    Cursor cursor;
    cursor.size = static_cast<std::size_t>(window.list_size);
    cursor.window = &window;
    cursor.list = name;
    cursor.begin = window.list_begin;
    const int ok = READERS[list].read(cursor, kis);
    // Whatever its reader made of it, the list ends where the header says.
    if (window.list_begin != NO_OFFSET)
      seekInput(input, window.list_begin + window.list_size);
    if (failed(input))
      return sayReadError(input, kis, name);
    if (cursor.fault == Fault::past_end)
      report<"list-runs-past-end">(stoppedAt(cursor, inputLength(input).value_or(0)), {}, name);
    return cursor.fault == Fault::no_memory ? sayNoMemory(name) : ok;
  } catch (const std::exception &) {
    return sayNoMemory(name);
  }
}

KisHandle kvNewKis() { return KisHandle(new (std::nothrow) Kis); }

int kvOpenKb(const char *path, Kis &kis) {
  const Version2 version_2 = version2Of(kis, kvOpenKb1(path, kis));
  return version_2.read_lists ? kvOpenKb2Ext(kis) * version_2.ok : version_2.ok;
}

int kvOpenKbMemory(std::span<const unsigned char> bytes, const char *name, Kis &kis) {
  Kis cleared; // `name` may lie in the model, so it is kept before the model is cleared
  kvSetFilename(name, cleared);
  kis = std::move(cleared);
  Input input = {nullptr, bytes};
  return readBoth(input, kis);
}

int kvOpenKbStream(std::FILE *stream, const char *name, Kis &kis) {
  Kis cleared;
  kvSetFilename(name, cleared);
  cleared.input_file = identify(stream);
  kis = std::move(cleared);
  Input input = {stream};
  return readBoth(input, kis);
}

int kvOpenKb1(const char *path, Kis &kis) {
  const Stream stream = kvKbReadOpen(path);
  Kis cleared; // `path` may lie in the model, so it is kept before the model is cleared
  if (stream) {
    kvSetFilename(path, cleared);
    cleared.input_file = identify(stream.get());
  }
  kis = std::move(cleared);
  if (!stream)
    return 0;
  Input input = {stream.get()};
  return readVersion1(input, kis);
}

int kvOpenKb2Ext(Kis &kis) {
  const Stream stream = openAgain(kis.file_name.c_str(), kis.input_file);
  if (!stream)
    return 0;
  Input input = {stream.get()};
  return readVersion2(input, kis);
}

int kvReadFileHeader(std::FILE *stream, Kis &kis) {
  Input input = {stream};
  return readFileHeader(input, kis);
}

int kvSetupFileHeaderExt(FileHeader &header) {
  if (!hasVersion2(kvKOVAver(header)))
    return 1;
  if (header.van_ext_blk_size == 0)
    return 0;
  Cursor cursor = cursorOf(vanExtBlk(header.ext_blk));
  Version2Sizes &sizes = header;
  setupFixed(cursor, sizes);
  return 1;
}

int kvReadList(std::FILE *stream, Word size, Kis &kis, const char *name) {
  Input input = {stream};
  for (std::size_t list = 0; list < LIST_NUM; ++list)
    if (std::strcmp(LISTS[list].name, name) == 0)
      return readListAt(input, size, kis, list);
  return 0;
}

std::span<const char *const> kvListNames() {
  static constexpr auto NAMES = [] {
    std::array<const char *, LIST_NUM> names{};
    std::transform(std::begin(LISTS), std::end(LISTS), names.begin(), [](const ListRow &list) { return list.name; });
    return names;
  }();
  return NAMES;
}

int kvSetFilename(const char *name, Kis &kis) {
  try {
    kis.file_name = name;
    return 1;
  } catch (const std::exception &) {
    kis.file_name.clear();
    return 0;
  }
}

Word kvSizeofKOVA1file(const FileHeader &header) {
  Word sum = header.file_header_num;
  for (std::size_t list = 0; list < VERSION_1_LIST_NUM; ++list)
    sum += header.*LISTS[list].size;
  return sum;
}

void kvAdjustListSizeData(Kis &kis, Word index, Index delta, Word tag) {
  const Word by = static_cast<Word>(delta);
  kis.file_header.size += by;
  for (std::size_t list = 0; list < LIST_NUM; ++list) {
    bool resized = false;
    if (tag == LISTS[list].tag) {
      READERS[list].resizeList(kis, by);
      resized = true;
    } else if (tag == LISTS[list].tag + ELEMENT_KIND) {
      resized = READERS[list].resizeElement(kis, index, by);
    }
    if (resized)
      kis.file_header.*LISTS[list].size += by;
  }
}

} // namespace kova
