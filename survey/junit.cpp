#include "survey/junit.h"

#include "common/text.h"
#include "survey/summary.h"

#include <pugixml.hpp>
#include <sstream>

namespace kova::survey {

namespace {

/// @return the findings, one a line.
std::string findingLines(const FileResult &record) {
  std::string lines;
  for (const KeptFinding &finding : record.findings)
    lines += printable(finding.id) + ": " + oneLine(finding.text) + '\n';
  const std::uint64_t more = findingCount(record) - record.findings.size();
  return more == 0 ? lines : lines + std::to_string(more) + " more\n";
}

void appendCase(pugi::xml_node suite, const FileResult &record) {
  pugi::xml_node test = suite.append_child("testcase");
  test.append_attribute("classname") = "kbsurvey";
  test.append_attribute("name") = printable(record.path).c_str();
  if (record.verdict == Verdict::ok)
    return;
  pugi::xml_node result = test.append_child(record.verdict == Verdict::err ? "failure" : "error");
  result.append_attribute("type") =
      record.verdict == Verdict::err ? "ERR" : REASON_NAMES[static_cast<std::size_t>(record.reason)];
  result.append_attribute("message") = whatIsWrong(record).c_str();
  result.text() = findingLines(record).c_str();
}

} // namespace

std::string junitReport(const std::vector<FileResult> &records) {
  const Tally tally = tallyOf(records);
  pugi::xml_document document;
  pugi::xml_node declaration = document.append_child(pugi::node_declaration);
  declaration.append_attribute("version") = "1.0";
  declaration.append_attribute("encoding") = "UTF-8";
  pugi::xml_node suites = document.append_child("testsuites");
  pugi::xml_node suite = suites.append_child("testsuite");
  suite.append_attribute("name") = "kbsurvey";
  suite.append_attribute("tests") = static_cast<unsigned long long>(tally.files);
  suite.append_attribute("failures") = static_cast<unsigned long long>(tally.of(Verdict::err));
  suite.append_attribute("errors") = static_cast<unsigned long long>(tally.of(Verdict::none));
  for (const FileResult &record : records)
    appendCase(suite, record);
  std::ostringstream text;
  document.save(text, "  ");
  return text.str();
}

} // namespace kova::survey
