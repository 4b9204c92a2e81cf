#include "mend/foreign.h"

#include <algorithm>
#include <string_view>

namespace kova::mend {

namespace {

constexpr ForeignKind foreign(const char *name, std::string_view mark, bool packed = false, std::size_t at = 0) {
  return {name, packed, at, mark.data(), mark.size()};
}

using namespace std::string_view_literals;

constexpr ForeignKind KINDS[] = {
    foreign("a ZIP archive", "PK\3\4"sv, true),
    foreign("a gzip archive", "\x1f\x8b\x08"sv, true),
    foreign("a bzip2 archive", "BZh"sv, true),
    foreign("an xz archive",
            "\xfd"
            "7zXZ\0"sv,
            true),
    foreign("a zstd archive", "\x28\xb5\x2f\xfd"sv, true),
    foreign("a 7z archive", "7z\xbc\xaf\x27\x1c"sv, true),
    foreign("a tar archive", "ustar"sv, true, 257),
    foreign("a RAR archive", "Rar!\x1a\7"sv, true),
    foreign("a PNG image", "\x89PNG\r\n\x1a\n"sv),
    foreign("a JPEG image", "\xff\xd8\xff"sv),
    foreign("a GIF image", "GIF8"sv),
    foreign("a TIFF image", "II*\0"sv),
    foreign("a TIFF image", "MM\0*"sv),
    foreign("a PDF document", "%PDF-"sv),
    foreign("a PostScript document", "%!PS"sv),
    foreign("a RIFF file: sound, a film or an image", "RIFF"sv),
    foreign("an Ogg file: sound or a film", "OggS"sv),
    foreign("a program", "\x7f"
                         "ELF"sv),
    foreign("a program", "MZ\x90\0"sv),
    foreign("a program", "\xcf\xfa\xed\xfe"sv),
    foreign("a program", "\xca\xfe\xba\xbe"sv),
    foreign("a database", "SQLite format 3\0"sv),
    foreign("a script", "#!"sv),
    foreign("an XML document", "<?xml"sv),
    foreign("a text in UTF-16", "\xff\xfe"sv),
    foreign("a text in UTF-16", "\xfe\xff"sv),
};

constexpr ForeignKind TEXT = foreign("a text", ""sv);
constexpr ForeignKind BITMAP = foreign("a BMP image", "BM"sv); // a text may begin like that, too

bool has(BytesView file, const ForeignKind &kind) {
  return file.size() >= kind.at + kind.length &&
         std::equal(kind.mark, kind.mark + kind.length, file.begin() + static_cast<std::ptrdiff_t>(kind.at),
                    [](char mark, unsigned char byte) { return static_cast<unsigned char>(mark) == byte; });
}

/// @return whether the bytes are those of a text, of which some may be of another language.
bool isText(BytesView bytes) {
  const auto is_control = [](unsigned char byte) { return byte < 0x20 && (byte < '\t' || byte > '\r'); };
  const auto letters = std::count_if(bytes.begin(), bytes.end(), [](unsigned char byte) { return byte < 0x7f; });
  return bytes.size() >= 16 && std::none_of(bytes.begin(), bytes.end(), is_control) &&
         letters * 4 >= static_cast<std::ptrdiff_t>(bytes.size()) * 3;
}

} // namespace

const ForeignKind *foreignKind(BytesView file) {
  const auto *const kind =
      std::find_if(std::begin(KINDS), std::end(KINDS), [&](const ForeignKind &other) { return has(file, other); });
  if (kind != std::end(KINDS))
    return kind;
  if (isText(file.first(std::min(file.size(), FOREIGN_BYTES))))
    return &TEXT;
  return has(file, BITMAP) ? &BITMAP : nullptr;
}

} // namespace kova::mend
