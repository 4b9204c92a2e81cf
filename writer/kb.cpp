#include "kova/kb.h"

#include "format/all.h"
#include "format/versions.h"
#include "writer/elements.h"
#include "writer/list.h"

#include <algorithm>

namespace kova {

namespace {

/// @return whether any word of a fixed head is set. A list that was never reached has a head of zeros.
template <WordRecord Head> bool anyWord(const Head &head) {
  const auto *const bytes = reinterpret_cast<const unsigned char *>(&head);
  return std::any_of(bytes, bytes + sizeof head, [](unsigned char byte) { return byte != 0; });
}
bool anyListHeld(const Kis &kis) {
  bool any = false;
  eachList([&](const auto &row) {
    using List = std::remove_cvref_t<decltype(kis.*row.list)>;
    any = any || anyWord<typename ListFormat<List>::Head>(kis.*row.list);
  });
  return any;
}

/// @return whether the words of a block are no more than its size says.
bool blockFits(std::span<const Word> words, Word bytes) { return words.size() <= bytes / sizeof(Word); }

/// The same of both blocks of a record, or of the file's header.
template <class Record> bool blocksFit(const Record &record) {
  return blockFits(vanExtBlk(record.ext_blk), record.van_ext_blk_size) &&
         blockFits(usrExtBlk(record.ext_blk), record.usr_ext_blk_size);
}

/// Finds out whether a file takes in all that a record holds: what a program has added without counting it, or for
/// which the maker block has no room, would be lost.
template <class Record> struct FitCheck : PassingIo {
  const Record &record;
  bool version_2;
  bool fits = true;

  template <class Text, class Item, class Holder, class Count, class... Target>
  int array(Text, std::vector<Item> Holder::*member, Count count, Target...) {
    fits = fits && (record.*member).size() <= numberOf(record, count);
    return 1;
  }
  template <class... Arguments> int pairs(const Arguments &...all) { return array(all...); }
  template <class... Arguments> int run(const Arguments &...all) { return array(all...); }
  template <class... Arguments> int text(const Arguments &...all) { return array(0, all...); }
  template <class... Arguments> int texels(const Arguments &...all) { return array(0, all...); }

  template <class Form, class Item, class Holder, class Count>
  int records(Form form, std::vector<Item> Holder::*member, Count count) {
    array(form, member, count);
    for (const Item &item : record.*member)
      look(form, item);
    return 1;
  }

  template <class Form, class Item, class Holder> int inner(Form form, Item Holder::*member) {
    look(form, record.*member);
    return 1;
  }

  int blocks() {
    fits = fits && blocksFit(record);
    return 1;
  }

  template <class Form, class Ext, class Holder> int blocks(Form, std::unique_ptr<Ext> Holder::*ext) {
    if (!version_2 || record.*ext == nullptr)
      return blocks();
    fits = fits && putMakerBlock<typename Form::Head>(nullptr, record, record.*ext) &&
           blockFits(usrExtBlk(record.ext_blk), record.usr_ext_blk_size);
    return 1;
  }

private:
  template <class Form, class Item> void look(Form, const Item &item) {
    FitCheck<Item> check{{}, item, version_2};
    const typename Form::Head &head = item;
    content(check, head);
    fits = fits && check.fits;
  }
};

/// @return whether a file takes in all that the header and the lists of a model hold.
bool allFits(const Kis &kis) {
  bool fit = blocksFit(kis.file_header);
  eachList([&](const auto &row) {
    const auto &list = kis.*row.list;
    using List = std::remove_cvref_t<decltype(list)>;
    FitCheck<List> check{{}, list, hasVersion2(kvKOVAver(kis.file_header))};
    ListFormat<List>::content(check, list);
    fit = fit && check.fits;
  });
  return fit;
}

/// @return the bytes that the header's blocks take: one sum, which wraps.
std::uint64_t sizeofBlocks(const FileHeader &header) { return Word{header.van_ext_blk_size + header.usr_ext_blk_size}; }

/// The same of the blocks as far as they are held. Bytes that are no whole words follow both blocks.
std::uint64_t sizeofHeldBlocks(const FileHeader &header) {
  const std::size_t van = vanExtBlk(header.ext_blk).size();
  const std::size_t usr = usrExtBlk(header.ext_blk).size();
  const bool whole = van == header.van_ext_blk_size / sizeof(Word) && usr == header.usr_ext_blk_size / sizeof(Word);
  return whole ? sizeofBlocks(header) : (van + usr) * sizeof(Word);
}

/// @return how many lists the file has room for: those of version 2.0 only where the maker block has all of their
/// sizes.
std::size_t listNum(const FileHeader &header) {
  const bool version2 = hasVersion2(kvKOVAver(header)) && header.van_ext_blk_size >= VERSION_2_SIZES_BYTES;
  return version2 ? LIST_NUM : VERSION_1_LIST_NUM;
}

/// @return where the version-2 lists begin, if nothing wraps.
std::uint64_t sizeofVersion1(const FileHeader &header) {
  std::uint64_t sum = header.file_header_num;
  for (std::size_t list = 0; list < VERSION_1_LIST_NUM; ++list)
    sum += header.*LISTS[list].size;
  return sum;
}

/// @return whether a model can be written: its version is known, and its version-2 lists follow the others.
bool canBeWritten(const FileHeader &header) {
  const Word version = kvKOVAver(header);
  const bool wraps = sizeofVersion1(header) != kvSizeofKOVA1file(header);
  return version == VERSION_1 || (hasVersion2(version) && !(wraps && anyWord<Version2Sizes>(header)));
}

/// Writes the header and its blocks as a piece of `size` bytes. What the model lacks of the blocks is zeros, but for
/// the sizes by which the version-2 lists are placed: these are its own.
void writeHeader(Output &out, const FileHeader &header, std::uint64_t size) {
  const std::uint64_t van_words = header.van_ext_blk_size / sizeof(Word);
  beginList(out, size);
  putFixed<FileHeaderHead>(out, header);
  std::span<const Word> van = vanExtBlk(header.ext_blk);
  if (hasVersion2(kvKOVAver(header))) {
    const auto sizes = static_cast<std::size_t>(std::min<std::uint64_t>(van_words, VERSION_2_LIST_NUM));
    const Version2Sizes &table = header;
    putWords(out, &table, sizes * sizeof(Word));
    van = van.subspan(std::min(van.size(), sizes));
  }
  putWords(out, van.data(), van.size_bytes());
  moveTo(out, FILE_HEADER_BYTES + van_words * sizeof(Word));
  const std::span<const Word> usr = usrExtBlk(header.ext_blk);
  putWords(out, usr.data(), usr.size_bytes());
  endList(out);
}

/// Writes the lists from `place` in the file on, and zeros up to its end.
void writeLists(Output &out, const Kis &kis, std::uint64_t place) {
  const std::uint64_t end = kis.file_header.size;
  for (std::size_t list = 0; list < listNum(kis.file_header) && place < end; ++list) {
    const Word size = kis.file_header.*LISTS[list].size;
    if (size == 0)
      continue;
    beginList(out, std::min<std::uint64_t>(size, end - place));
    writeList(out, kis, list);
    endList(out);
    place += size;
  }
  beginList(out, place < end ? end - place : 0);
  endList(out);
}

} // namespace

void writeList(Output &out, const Kis &kis, std::size_t list) {
  std::size_t number = 0;
  eachList([&](const auto &row) {
    if (number++ == list)
      putList(out, kis.*row.list, hasVersion2(kvKOVAver(kis.file_header)));
  });
}

int kvWriteKb(std::FILE *stream, const Kis &kis) {
  const FileHeader &header = kis.file_header;
  if (!canBeWritten(header) || !allFits(kis))
    return 0;
  Output out(stream);
  if (anyListHeld(kis)) {
    const std::uint64_t header_size = FILE_HEADER_BYTES + sizeofBlocks(header);
    writeHeader(out, header,
                std::min<std::uint64_t>(header_size, std::max<std::uint64_t>(header.size, FILE_HEADER_BYTES)));
    writeLists(out, kis, header_size);
  } else {
    writeHeader(out, header, FILE_HEADER_BYTES + sizeofHeldBlocks(header));
  }
  return std::fflush(stream) == 0 && !out.failed ? 1 : 0;
}

} // namespace kova
