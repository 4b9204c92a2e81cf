#include "survey/file_result.h"

#include "survey/deep.h"

#include <cstring>

namespace kova::survey {

bool countFinding(FileResult &result, const char *id) {
  ++result.counts[id];
  return result.findings.size() < MOST_FINDINGS;
}

void keepFinding(FileResult &result, KeptFinding &&finding) {
  if (finding.text.size() > MOST_TEXT) {
    finding.text.resize(MOST_TEXT - 3);
    finding.text += "...";
  }
  result.findings.push_back(std::move(finding));
}

std::uint64_t findingCount(const FileResult &result) {
  std::uint64_t sum = 0;
  for (const auto &[id, count] : result.counts)
    sum += count;
  return sum;
}

const FindingRow *rowOf(const char *id) {
  for (const FindingRow &row : deepRows())
    if (std::strcmp(row.id, id) == 0)
      return &row;
  return kvFindingRow(id);
}

std::vector<const FindingRow *> allRows() {
  std::vector<const FindingRow *> rows;
  for (const std::span<const FindingRow> table : {kvFindingRows(), deepRows()})
    for (const FindingRow &row : table)
      rows.push_back(&row);
  return rows;
}

} // namespace kova::survey
