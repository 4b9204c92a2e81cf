/// The rules by which other programs know a scene file.
#include "format/all.h"

#include "format/header.h"
#include "format/versions.h"
#include "json/describe/record.h"

#include <array>
#include <cstdio>

namespace kova::describe {

namespace {

constexpr const char *TYPE = "model/x-kova";
constexpr const char *TITLE = "KOVA 3D scene";

template <class Head> constexpr std::size_t placeOf(Word Head::*word) { return wordOf<Head>(word) * sizeof(Word); }

std::string hex(Word word) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08x", word);
  return text;
}

/// Files whose header and its blocks are longer are not known by their content.
constexpr std::size_t LONGEST_HEADER = 1024;

} // namespace

/// A scene has a version, a header tag of 0, and behind its header the tag of a list and the size of its head.
std::string magicText() {
  const std::string header_size = std::to_string(placeOf(&FileHeaderHead::file_header_num));
  const std::string head_size = std::to_string(placeOf(&ListHead::list_header_size));
  std::string text;
  const auto add = [&](std::initializer_list<std::string_view> pieces) {
    for (const std::string_view piece : pieces)
      text += piece;
    text += '\n';
  };
  add({"# ", TITLE, "s, for file(1)"});
  for (const VersionRow &version : VERSIONS) {
    add({"0\tubelong&0xffff\t", hex(version.number), "\n!:strength +80"});
    add({">", std::to_string(placeOf(&FileHeaderHead::header_tag)), "\tubelong\t0"});
    add({">>", header_size, "\tubelong\t>", std::to_string(FILE_HEADER_BYTES - 1)});
    add({">>>(", header_size, ".L)\tubelong&0xff00ffff\t0"});
    add({">>>>(", header_size, ".L)\tubelong\t>0"});
    add({">>>>>(", header_size, ".L+", head_size, ")\tubelong\t>0"});
    add({">>>>>>(", header_size, ".L+", head_size, ")\tubelong\t<", std::to_string(sizeof(SceneHead) + 1), "\t", TITLE,
         ", version ", version.name, "\n!:mime\t", TYPE, "\n!:ext\tkb"});
    add({">>>>>>>", std::to_string(placeOf(&FileHeaderHead::size)), "\tubelong\tx\t\\b, %u bytes"});
  }
  return text;
}

/// MIME types have no rule that follows an offset in the file, so the tag of a list may stand anywhere behind a short
/// header.
std::string mimeText() {
  std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                     "<mime-info xmlns=\"http://www.freedesktop.org/standards/shared-mime-info\">\n"
                     "  <mime-type type=\"" +
                     std::string(TYPE) + "\">\n    <comment>" + TITLE +
                     "</comment>\n    <glob pattern=\"*.kb\"/>\n    <magic priority=\"60\">\n";
  const auto match = [&](const char *indent, const std::string &offset, Word value, Word mask, const char *end) {
    text.append(indent).append("<match type=\"big32\" offset=\"").append(offset).append("\" value=\"");
    text.append(hex(value)).append("\" mask=\"").append(hex(mask)).append("\"").append(end).append(">\n");
  };
  for (const VersionRow &version : VERSIONS) {
    match("      ", "0", version.number, 0xffff, "");
    match("        ", std::to_string(placeOf(&FileHeaderHead::header_tag)), 0, 0xffffffff, "");
    match("          ", std::to_string(placeOf(&FileHeaderHead::file_header_num)), 0, 0xffff0003, "");
    for (const ListRow &list : LISTS)
      match("            ", std::to_string(FILE_HEADER_BYTES) + ':' + std::to_string(LONGEST_HEADER), list.tag,
            0xffffffff, "/");
    text += "          </match>\n        </match>\n      </match>\n";
  }
  return text + "    </magic>\n  </mime-type>\n</mime-info>\n";
}

} // namespace kova::describe
