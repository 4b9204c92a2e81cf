/// A scene as a JSON document, and back.
#pragma once

#include "json/pieces.h"
#include "json/text.h"

namespace kova::json {

/// What of a scene is printed, and how.
struct Shape {
  Layout layout = Layout::compact;
  bool lean = false;               ///< without the words that follow from others
  std::bitset<LIST_NUM> only = {}; ///< these lists alone; none: all of the file
};

/// Prints the bytes of a file as a document. @return false where the stream fails
bool printScene(std::FILE *stream, std::span<const unsigned char> file, const Shape &shape);

/// What a document says.
struct Document {
  Kis kis = {};
  std::array<ListBytes, LIST_NUM> lists = {};
  std::array<std::uint64_t, LIST_NUM> bytes = {}; ///< of each list, with what is behind its content
  RawBytes header_blocks = {};                    ///< the blocks of the header where they are not whole words
  bool has_sizes = false;                         ///< the header has the sizes of the version-2 lists
  RawBytes behind = {};                           ///< what follows the last list
  RawBytes file = {};                             ///< a file of another kind
};

/// Reads a document whole. @return what is wrong, "LINE:COLUMN: PATH: what"; empty if nothing is
std::string readScene(std::FILE *stream, Document &document);

/// Writes the file that a document is about. @return 1; 0 where the stream fails
int writeScene(std::FILE *stream, const Document &document);

/// Writes the content of a list, `bytes` long, whatever its counts say.
void writeContent(std::FILE *stream, const Kis &kis, std::size_t list, std::uint64_t bytes);

} // namespace kova::json
