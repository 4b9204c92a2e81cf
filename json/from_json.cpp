#include "json/scene.h"

#include "format/versions.h"
#include "records/parts.h"
#include "json/parse.h"

#include <limits>
#include <numeric>

namespace kova::json {

namespace {

/// What the header of a document has given.
struct HeaderGiven {
  Marks words = {};
  Marks sizes = {};
  Marks others = {};
  bool there = false;
};

bool readHeaderMember(Lexer &in, std::string_view key, Document &document, HeaderGiven &given) {
  FileHeader &header = document.kis.file_header;
  static constexpr std::array<const char *, 3> OTHERS = {"van", "usr", "blocks"};
  const auto found = std::find(OTHERS.begin(), OTHERS.end(), key);
  if (found == OTHERS.end())
    return unknownKey(in, key);
  const auto which = static_cast<std::size_t>(found - OTHERS.begin());
  enter(in, *found);
  if (given.others[which])
    return twice(in);
  given.others.set(which);
  const bool ok = which == 2 ? readRaw(in, document.header_blocks)
                             : readBlock(in, header.ext_blk, which == 0 ? &ExtBlkWords::van : &ExtBlkWords::usr);
  if (ok)
    leave(in);
  return ok;
}

bool readHeader(Lexer &in, Document &document, HeaderGiven &given) {
  static constexpr auto &HEAD = SLOTS<WORDS<FileHeaderHead>>;
  static constexpr auto &SIZES = SLOTS<WORDS<Version2Sizes>>;
  FileHeaderHead &head = document.kis.file_header;
  Version2Sizes &sizes = document.kis.file_header;
  std::size_t hint = 0;
  given.there = true;
  return readObject(in, [&](std::string_view key) {
    std::size_t second_hint = 0;
    const Slot *const word = slotNamed(HEAD, key, hint);
    const Slot *const size = word == nullptr ? slotNamed(SIZES, key, second_hint) : nullptr;
    return word != nullptr   ? readSlotOf(in, HEAD, *word, head, given.words)
           : size != nullptr ? readSlotOf(in, SIZES, *size, sizes, given.sizes)
                             : readHeaderMember(in, key, document, given);
  });
}

bool readList(Lexer &in, Document &document, std::size_t list) {
  bool ok = false;
  ListBytes &bytes = document.lists[list];
  withList(list, [&](const auto &row) {
    auto &model = document.kis.*row.list;
    using Format = ListFormat<std::remove_cvref_t<decltype(model)>>;
    using Head = typename Format::Head;
    Parsing from{in, row.tag};
    ok = readRecord<Format::words, Head>(from, model, Own{row.tag, 0, sizeof(Head)}, &bytes);
    if (ok && isMostlyEmpty(model))
      ok = fail(in, "the sizes of the records leave most of the list empty: such a list has to be raw bytes");
    document.bytes[list] = bytes.raw.given ? bytes.raw.bytes.size() : bytesOf(model, sizeof(Head));
    document.bytes[list] += bytes.behind.bytes.size();
  });
  return ok;
}

/// The members of a document behind the lists, as marks.
enum Part : std::size_t { KBJSON = LIST_NUM, FILE_HEADER, BEHIND, FILE_BYTES };

/// Reads one member of the document.
bool readPart(Lexer &in, std::string_view key, Document &document, HeaderGiven &given, Marks &seen) {
  std::size_t which = 0;
  while (which < LIST_NUM && key != LISTS[which].name)
    ++which;
  static constexpr std::array<const char *, 4> OTHERS = {"kbjson", "FileHeader", "behind", "file"};
  if (which == LIST_NUM)
    which += static_cast<std::size_t>(std::find(OTHERS.begin(), OTHERS.end(), key) - OTHERS.begin());
  if (which == LIST_NUM + OTHERS.size())
    return unknownKey(in, key);
  enter(in, which < LIST_NUM ? LISTS[which].name : OTHERS[which - LIST_NUM]);
  if (seen[which])
    return twice(in);
  seen.set(which);
  Word form = 1;
  const bool ok = which < LIST_NUM       ? readList(in, document, which)
                  : which == KBJSON      ? readWord(in, form, false)
                  : which == FILE_HEADER ? readHeader(in, document, given)
                  : which == BEHIND      ? readRaw(in, document.behind)
                                         : readRaw(in, document.file);
  if (!ok)
    return false;
  if (form != 1)
    return fail(in, "expected 1, the form of document that this program knows");
  leave(in);
  return true;
}

bool anyVersion2List(const Document &document) {
  return std::any_of(document.bytes.begin() + VERSION_1_LIST_NUM, document.bytes.end(),
                     [](std::uint64_t bytes) { return bytes > 0; });
}

/// Sets the words of the header that the document leaves out.
bool finishHeader(Lexer &in, Document &document, const HeaderGiven &given) {
  static constexpr auto &HEAD = SLOTS<WORDS<FileHeaderHead>>;
  FileHeader &header = document.kis.file_header;
  const auto is_given = [&](Word FileHeaderHead::*word) { return given.words[wordOf<FileHeaderHead>(word)]; };
  enter(in, "FileHeader");
  if (!is_given(&FileHeaderHead::version))
    return missing(in, "version");
  const bool no_sizes = is_given(&FileHeaderHead::van_ext_blk_size) && header.van_ext_blk_size < VERSION_2_SIZES_BYTES;
  document.has_sizes = hasVersion2(kvKOVAver(header)) && !no_sizes && !document.header_blocks.given;
  if (!document.has_sizes && (given.sizes.any() || anyVersion2List(document)))
    return fail(in, "the lists of version 2.0 need version 0x200 and a maker block that has their sizes");
  const std::uint64_t van = (document.has_sizes ? VERSION_2_SIZES_BYTES : 0) + vanExtBlk(header.ext_blk).size_bytes();
  const std::uint64_t usr = usrExtBlk(header.ext_blk).size_bytes();
  const std::uint64_t blocks = van + usr + document.header_blocks.bytes.size();
  const FileHeader derived = derivedHeader(header, blocks, document.bytes, document.behind.bytes.size());
  const std::uint64_t total = std::accumulate(document.bytes.begin(), document.bytes.end(),
                                              FILE_HEADER_BYTES + blocks + document.behind.bytes.size());
  if (total > std::numeric_limits<Word>::max())
    return fail(in, "the file would be larger than its size word can say");
  FileHeaderHead words = derived;
  words.van_ext_blk_size = static_cast<Word>(van);
  words.usr_ext_blk_size = static_cast<Word>(usr);
  for (std::size_t word = 0; word < HEAD.size(); ++word)
    if (!given.words[word])
      setWordIn(static_cast<FileHeaderHead &>(header), word, wordIn(words, word));
  const Version2Sizes &sizes = derived;
  for (std::size_t word = 0; word < sizeof sizes / sizeof(Word); ++word)
    if (!given.sizes[word])
      setWordIn(static_cast<Version2Sizes &>(header), word, wordIn(sizes, word));
  leave(in);
  return true;
}

bool readDocument(Lexer &in, Document &document) {
  HeaderGiven given;
  Marks seen;
  if (!readObject(in, [&](std::string_view key) { return readPart(in, key, document, given, seen); }))
    return false;
  if (peek(in) != '\0' || in.at != in.end || std::ferror(in.stream) != 0)
    return fail(in, "expected the end of the document");
  if (!document.file.given)
    return given.there ? finishHeader(in, document, given) : missing(in, "FileHeader");
  seen.reset(KBJSON).reset(FILE_BYTES);
  return seen.none() || fail(in, "\"file\" stands alone");
}

} // namespace

std::string readScene(std::FILE *stream, Document &document) {
  Lexer in(stream);
  readDocument(in, document);
  return in.error;
}

} // namespace kova::json
