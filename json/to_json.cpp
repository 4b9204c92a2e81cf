#include "json/scene.h"

#include "format/versions.h"
#include "kova/findings.h"
#include "reader/byte_order.h"
#include "reader/file.h"
#include "records/parts.h"
#include "json/print.h"

#include <algorithm>

namespace kova::json {

std::string nameText(std::span<const Word> words) { return escaped(textBytes(words)); }

namespace {

/// A stream that compares what is written to it with bytes that are there.
struct Comparison {
  std::span<const unsigned char> expected;
  bool equal = true;

  static ssize_t write(void *cookie, const char *bytes, std::size_t size) {
    auto &self = *static_cast<Comparison *>(cookie);
    const std::size_t known = std::min(size, self.expected.size());
    self.equal = self.equal && known == size &&
                 std::equal(bytes, bytes + size, self.expected.begin(),
                            [](char a, unsigned char b) { return static_cast<unsigned char>(a) == b; });
    self.expected = self.expected.subspan(known);
    return static_cast<ssize_t>(size);
  }
};

/// @return whether a list, written anew, has these bytes.
bool comesBack(const Kis &kis, std::size_t list, std::span<const unsigned char> bytes) {
  Comparison comparison{bytes};
  const Stream stream(::fopencookie(&comparison, "w", {nullptr, Comparison::write, nullptr, nullptr}));
  if (!stream)
    throw std::bad_alloc();
  std::setvbuf(stream.get(), nullptr, _IONBF, 0);
  writeContent(stream.get(), kis, list, bytes.size());
  return comparison.equal && comparison.expected.empty();
}

struct SceneOut {
  Text &out;
  const Shape &shape;
  std::span<const unsigned char> file;
  Parts parts = {};
  FileHeader header = {};
};

void printRaw(Text &out, std::span<const unsigned char> bytes, std::uint64_t offset, const char *finding) {
  open(out, '{');
  putKey(out, "raw");
  putBase64(out, bytes);
  putKey(out, "offset");
  put(out, std::to_string(offset));
  if (finding != nullptr) {
    putKey(out, "finding");
    putString(out, finding);
  }
  close(out, '}');
}

/// @return the words of a part of the file.
Words wordsOf(std::span<const unsigned char> bytes) {
  Words words(bytes.size() / sizeof(Word));
  copyConverted(words.data(), bytes.data(), bytes.size());
  return words;
}

void printHeader(SceneOut &to) {
  const FileHeader &header = to.header;
  const FileHeader derived = derivedHeader(header, to.parts.blocks, to.parts.lists, to.parts.behind);
  FileHeaderHead expected = derived;
  const std::uint64_t sizes = to.parts.has_sizes ? VERSION_2_SIZES_BYTES : 0;
  // The block is as long as its words, unless it lacks the sizes that one of this version begins with.
  const bool lacks_sizes = hasVersion2(kvKOVAver(header)) && !to.parts.has_sizes;
  expected.van_ext_blk_size = lacks_sizes || !to.parts.whole_words ? ~header.van_ext_blk_size : header.van_ext_blk_size;
  expected.usr_ext_blk_size = to.parts.whole_words ? header.usr_ext_blk_size : ~header.usr_ext_blk_size;
  const bool lean = to.shape.lean || to.shape.only.any();
  if (to.shape.only.any()) // what stands in the document is another file
    expected = header;
  Printing printing{to.out, lean, false, 0};
  putKey(to.out, "FileHeader");
  open(to.out, '{');
  printWords<WORDS<FileHeaderHead>, FileHeaderHead>(printing, header, sizeof(FileHeaderHead),
                                                    lean ? &expected : nullptr);
  const Version2Sizes &expected_sizes = to.shape.only.any() ? header : derived;
  if (to.parts.has_sizes)
    printWords<WORDS<Version2Sizes>, Version2Sizes>(printing, header, sizeof(Version2Sizes),
                                                    lean ? &expected_sizes : nullptr);
  const auto blocks = to.file.subspan(FILE_HEADER_BYTES, static_cast<std::size_t>(to.parts.blocks));
  if (to.parts.whole_words) {
    printBlock(printing, "van",
               wordsOf(blocks.first(header.van_ext_blk_size).subspan(static_cast<std::size_t>(sizes))));
    printBlock(printing, "usr", wordsOf(blocks.subspan(header.van_ext_blk_size)));
  } else {
    putKey(to.out, "blocks");
    printRaw(to.out, blocks, FILE_HEADER_BYTES, nullptr);
  }
  close(to.out, '}');
}

/// Prints the data of a list that comes back.
template <class List>
void printData(SceneOut &to, List &list, std::size_t number, std::span<const unsigned char> bytes, std::size_t content,
               std::uint64_t offset) {
  using Format = ListFormat<List>;
  using Head = typename Format::Head;
  Printing printing{to.out, to.shape.lean, hasVersion2(kvKOVAver(to.header)), LISTS[number].tag};
  open(to.out, '{');
  printMembers<Format::words, Head>(printing, list, Own{LISTS[number].tag, 0, sizeof(Head), bytes.size() - content});
  if (content < bytes.size()) {
    putKey(to.out, "behind");
    printRaw(to.out, bytes.subspan(content), offset + content, nullptr);
  }
  close(to.out, '}');
}

/// Prints a list: as data if that gives the same bytes, else raw.
void printList(SceneOut &to, std::size_t list, std::uint64_t offset) {
  const auto size = static_cast<std::size_t>(to.parts.lists[list]);
  const auto bytes = to.file.subspan(static_cast<std::size_t>(offset), size);
  const char *finding = nullptr;
  const auto kis = std::make_unique<Kis>();
  int ok = 0;
  {
    const FindingReceiver receiver(
        [&](const Finding &found) { finding = finding != nullptr ? finding : found.row->id; });
    Input input = {nullptr, to.file, offset};
    ok = readListAt(input, to.header.*LISTS[list].size, *kis, list);
  }
  putKey(to.out, LISTS[list].name);
  withList(list, [&](const auto &row) {
    auto &model = (*kis).*row.list;
    const std::uint64_t content =
        ok != 0 ? bytesOf(model, sizeof(typename ListFormat<std::remove_cvref_t<decltype(model)>>::Head)) : 0;
    if (ok != 0 && content <= size && !isMostlyEmpty(model) &&
        comesBack(*kis, list, bytes.first(static_cast<std::size_t>(content))))
      printData(to, model, list, bytes, static_cast<std::size_t>(content), offset);
    else
      printRaw(to.out, bytes, offset, finding);
  });
}

void printParts(SceneOut &to) {
  printHeader(to);
  std::uint64_t offset = FILE_HEADER_BYTES + to.parts.blocks;
  for (std::size_t list = 0; list < LIST_NUM; ++list) {
    if (to.parts.lists[list] > 0 && (to.shape.only.none() || to.shape.only[list]))
      printList(to, list, offset);
    offset += to.parts.lists[list];
  }
  if (to.parts.behind == 0 || to.shape.only.any())
    return;
  putKey(to.out, "behind");
  printRaw(to.out, to.file.subspan(static_cast<std::size_t>(offset)), offset, "file-size");
}

} // namespace

bool printScene(std::FILE *stream, std::span<const unsigned char> file, const Shape &shape) {
  Text out{stream, shape.layout};
  SceneOut to{out, shape, {file}};
  open(out, '{');
  putKey(out, "kbjson");
  put(out, '1');
  if (takeApart(file, file.size(), to.parts, to.header)) {
    printParts(to);
  } else {
    putKey(out, "file");
    printRaw(out, file, 0, "version-unknown");
  }
  close(out, '}');
  put(out, '\n');
  flush(out);
  return !out.failed;
}

} // namespace kova::json
