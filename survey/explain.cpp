#include "survey/survey.h"

#include "common/text.h"
#include "survey/output.h"

namespace kova::survey {

namespace {

const char *stageName(const FindingRow &row) { return row.stage == Stage::load ? "load" : "check"; }
const char *severityName(const FindingRow &row) { return row.severity == Severity::error ? "error" : "warning"; }

} // namespace

Status listFindings() {
  Output output;
  openOutput(output, "-");
  for (const FindingRow *const row : allRows()) {
    std::string id = row->id;
    id.resize(std::max<std::size_t>(id.size(), 32), ' ');
    write(output, id + "  " + stageName(*row) + (row->stage == Stage::load ? " " : "") + "  " + severityName(*row) +
                      (row->severity == Severity::error ? "  " : "") + "  " + row->meaning + '\n');
  }
  return finish(output) ? ALL_OK : FAILED;
}

Status explainFinding(const std::string &id) {
  const FindingRow *const row = rowOf(id.c_str());
  if (row == nullptr) {
    std::fprintf(stderr, "kbsurvey: there is no finding called %s. See kbsurvey --list-findings.\n",
                 printable(id).c_str());
    return FAILED;
  }
  Output output;
  openOutput(output, "-");
  write(output, std::string(row->id) + " (" + stageName(*row) + ", " + severityName(*row) + ")\n\n");
  write(output, "Text:       " + oneLine(row->format) + '\n');
  write(output, std::string("Meaning:    ") + row->meaning + '\n');
  write(output, std::string("Next step:  ") + row->next_step + '\n');
  return finish(output) ? ALL_OK : FAILED;
}

} // namespace kova::survey
