#include "survey/junit.h"

#include "common/text.h"
#include "survey/output.h"

#include <cerrno>
#include <pugixml.hpp>

namespace kova::survey {

namespace {

/// @return the findings, one a line.
std::string findingLines(const FileResult &result) {
  std::string lines;
  for (const KeptFinding &finding : result.findings)
    lines += printable(finding.id) + ": " + oneLine(finding.text) + '\n';
  const std::uint64_t more = findingCount(result) - result.findings.size();
  return more == 0 ? lines : lines + std::to_string(more) + " more\n";
}

struct Writer : pugi::xml_writer {
  Output to;

  explicit Writer(std::FILE *file) : to{.stream = file} {}
  void write(const void *data, std::size_t size) override {
    survey::write(to, {static_cast<const char *>(data), size});
  }
};

void writeCase(Writer &writer, const FileResult &file) {
  pugi::xml_document document;
  pugi::xml_node test = document.append_child("testcase");
  test.append_attribute("classname") = "kbsurvey";
  test.append_attribute("name") = printable(file.path).c_str();
  const Since since = file.compared.since;
  if (since == Since::gone)
    test.append_child("skipped").append_attribute("message") = ("gone, " + wasText(file.compared)).c_str();
  else if (file.verdict != Verdict::ok && countsForStatus(since)) {
    const bool err = file.verdict == Verdict::err;
    pugi::xml_node result = test.append_child(err ? "failure" : "error");
    result.append_attribute("type") = err ? "ERR" : REASON_NAMES[static_cast<std::size_t>(file.reason)];
    result.append_attribute("message") = whatIsWrong(file).c_str();
    result.text() = findingLines(file).c_str();
  } else if (since > Since::fresh)
    test.append_child("system-out").text() = (std::string(SINCE_NAMES[static_cast<std::size_t>(since)]) + ", " +
                                              wasText(file.compared) + '\n' + findingLines(file))
                                                 .c_str();
  constexpr unsigned DEPTH = 2;
  test.print(writer, "  ", pugi::format_default, pugi::encoding_utf8, DEPTH);
}

void put(Writer &writer, std::string_view text) { write(writer.to, text); }

} // namespace

int writeJunit(std::FILE *to, const Tally &tally, const EachResult &each) {
  const auto of = [&](Since since) { return tally.by_since[static_cast<std::size_t>(since)]; };
  const std::uint64_t cases = tally.files - of(Since::same) + of(Since::gone);
  const auto failing = [&](Verdict verdict) {
    return std::to_string(tally.failing[static_cast<std::size_t>(verdict)]);
  };
  Writer writer(to);
  put(writer, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n  <testsuite name=\"kbsurvey\" tests=\"" +
                  std::to_string(cases) + "\" failures=\"" + failing(Verdict::err) + "\" errors=\"" +
                  failing(Verdict::none) + "\"");
  if (of(Since::gone) != 0)
    put(writer, " skipped=\"" + std::to_string(of(Since::gone)) + "\"");
  put(writer, cases == 0 ? " />\n" : ">\n");
  const auto write_case = [&](const FileResult &file) {
    if (file.compared.since != Since::same)
      writeCase(writer, file);
  };
  if (each(write_case) == 0)
    return 0;
  put(writer, cases == 0 ? "</testsuites>\n" : "  </testsuite>\n</testsuites>\n");
  errno = writer.to.error;
  return errno == 0 ? 1 : 0;
}

} // namespace kova::survey
