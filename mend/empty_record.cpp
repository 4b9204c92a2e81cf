#include "mend/empty_record.h"

namespace kova::mend {

namespace {

/// Sets the links of a record to none.
struct NoLinks : Events {
  explicit NoLinks(FileBytes &of) : file(of) {}

  void enter(const RecordAt &record, int) override {
    for (const Link &link : record.kind->links)
      file.set(record.begin + link.at, NO_LINK);
  }
  void table(std::uint64_t begin, std::uint64_t entries, std::span<const Column> columns, std::uint64_t) override {
    for (const Column &column : columns) {
      for (std::uint64_t i = 0; column.to != To::nothing && i < entries; ++i)
        file.set(begin + i * sizeof(Word), NO_LINK);
      begin += entries * column.bytes;
    }
  }

  FileBytes &file;
};

} // namespace

Bytes emptyRecord(const RecordLayout &kind, Word number, bool version_2) {
  Bytes bytes(kind.fixed);
  FileBytes record(bytes);
  record.set(0, kind.tag);
  if (kind.index_at != NO_WORD)
    record.set(kind.index_at, number);
  if (kind.header_size_at != NO_WORD)
    record.set(kind.header_size_at, kind.fixed);
  record.set(kind.size_at, kind.fixed);
  // What has no count is there in any case.
  for (int i = 0; i < 2; ++i) {
    Walk walk(record, UNKNOWN, version_2);
    const std::uint64_t end = walk.over({&kind, 0, number});
    const auto lacking = static_cast<std::uint64_t>(walk.maker_spare < 0 ? -walk.maker_spare : 0);
    if (lacking != 0)
      record.set(kind.blocks_at, static_cast<Word>(lacking));
    bytes.resize(static_cast<std::size_t>(end + lacking));
    record = FileBytes(bytes);
    record.set(kind.size_at, static_cast<Word>(bytes.size()));
  }
  NoLinks none(record);
  Walk(record, bytes.size(), version_2, &none).over({&kind, 0, number});
  return bytes;
}

} // namespace kova::mend
