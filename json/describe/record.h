/// The format as data, for languages that describe formats: every record with its fields in file order.
///
/// It is made of the tables of words and the `content` of `format/`. Expressions are in the language of Kaitai Struct;
/// other printers translate them.
#pragma once

#include "kova/words.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kova::describe {

/// The count of a field that goes on to the end of the bytes that its record may take up.
inline constexpr const char *TO_THE_END = "*";

struct Field {
  std::string name;
  std::string type;           ///< "word", "index", "real", "byte", or the name of a record
  std::string count = {};     ///< an expression, or `TO_THE_END`; empty for one
  std::string condition = {}; ///< an expression; empty where the field is always there
  std::string bytes = {};     ///< an expression: what it takes up, also if its type takes less; empty: as its type says
  std::string chosen_by = {}; ///< the word that chooses the type; then `type` is that of values without a case
  std::vector<std::pair<Word, std::string>> cases = {};

  bool operator==(const Field &) const = default;
};

struct Record {
  std::string name;
  std::vector<Field> fields;
};

/// @return the records of a scene file. Each stands behind those that it has inside; the last one is the file.
std::vector<Record> describeFormat();

/// @return whether a record ends where the bytes end that it may take up.
bool fillsItsBytes(const Record &record);

/// @return a name in lower case: "VtxGroup" and "EnvelopeVtx[0].st_index" are "vtx_group", "envelope_vtx0_st_index".
std::string plainName(std::string_view name);

/// The same format in other languages.
std::string kaitaiText(const std::vector<Record> &records);
std::string imhexText(const std::vector<Record> &records);

/// The rules by which other programs know a scene file: of file(1), and of the shared MIME types.
std::string magicText();
std::string mimeText();

} // namespace kova::describe
