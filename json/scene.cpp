#include "json/scene.h"

#include "writer/list.h"
#include "writer/output.h"

namespace kova::json {

void writeContent(std::FILE *stream, const Kis &kis, std::size_t list, std::uint64_t bytes) {
  Output out(stream);
  out.all_held = true;
  beginList(out, bytes);
  writeList(out, kis, list);
  endList(out);
}

namespace {

bool put(std::FILE *stream, std::span<const unsigned char> bytes) {
  return bytes.empty() || std::fwrite(bytes.data(), 1, bytes.size(), stream) == bytes.size();
}

void writeHeader(std::FILE *stream, const Document &document) {
  const FileHeader &header = document.kis.file_header;
  const FileHeaderHead &words = header;
  const Version2Sizes &sizes = header;
  const std::span<const Word> van = vanExtBlk(header.ext_blk), usr = usrExtBlk(header.ext_blk);
  const std::size_t bytes_of_sizes = document.has_sizes ? sizeof sizes : 0;
  Output out(stream);
  beginList(out, sizeof words + bytes_of_sizes + van.size_bytes() + usr.size_bytes());
  putWords(out, &words, sizeof words);
  putWords(out, &sizes, bytes_of_sizes);
  putWords(out, van.data(), van.size_bytes());
  putWords(out, usr.data(), usr.size_bytes());
  endList(out);
}

} // namespace

int writeScene(std::FILE *stream, const Document &document) {
  if (document.file.given)
    return put(stream, document.file.bytes) && std::fflush(stream) == 0;
  writeHeader(stream, document);
  bool ok = put(stream, document.header_blocks.bytes);
  for (std::size_t list = 0; list < LIST_NUM; ++list) {
    const ListBytes &bytes = document.lists[list];
    if (bytes.raw.given)
      ok = put(stream, bytes.raw.bytes) && ok;
    else if (document.bytes[list] > 0)
      writeContent(stream, document.kis, list, document.bytes[list] - bytes.behind.bytes.size());
    ok = put(stream, bytes.behind.bytes) && ok;
  }
  ok = put(stream, document.behind.bytes) && ok;
  return ok && std::fflush(stream) == 0 && std::ferror(stream) == 0;
}

} // namespace kova::json
