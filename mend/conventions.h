/// The words that the audit does not look at: whether the records of a file fill them as the format says.
///
/// Some programs leave the own numbers of triangles or names at 0, or put something else there. In such a file these
/// words tell nothing about what is damaged, and nothing is to be changed in them.
#pragma once

#include "mend/walk.h"

#include <vector>

namespace kova::mend {

/// What a word of a record is to its record.
enum class Own : std::uint8_t { tag, index, size, table_entry };

class Conventions {
public:
  Conventions() = default;
  /// Goes over the file as far as it can be read by its own words.
  explicit Conventions(const FileBytes &file);

  /// @return whether that word of the records of a kind says what the format has it say: of those that were seen, at
  /// least half do.
  bool follows(const RecordLayout &kind, Own own) const;

  void count(const RecordLayout &kind, Own own, bool as_expected);
  void add(const Conventions &others);

private:
  void countByTags(const FileBytes &file, const RecordLayout &kind, std::uint64_t table, std::uint64_t end);

  struct Row {
    const RecordLayout *kind;
    Own own;
    std::size_t as_expected = 0;
    std::size_t others = 0;
  };
  Row &rowOf(const RecordLayout &kind, Own own);

  std::vector<Row> rows = {};
};

} // namespace kova::mend
