#include "harness/golden.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace kova::harness {

std::string firstDifference(const std::string &found, const std::string &expected) {
  std::istringstream is(found), should(expected);
  std::string section = "no section", line, wanted;
  for (std::size_t number = 1; found != expected; ++number) {
    const bool has_line = !std::getline(is, line).fail(), has_wanted = !std::getline(should, wanted).fail();
    if ((wanted.starts_with("<") && !wanted.starts_with("</")) || wanted.starts_with("=="))
      section = wanted;
    if (line != wanted || !has_line || !has_wanted)
      return "line " + std::to_string(number) + ", in " + section + "\n  found:    " + (has_line ? line : "(the end)") +
             "\n  expected: " + (has_wanted ? wanted : "(the end)");
  }
  return "";
}

std::string differsFromGolden(const std::string &path, const std::string &found) {
  if (std::getenv("KOVA_RENEW") != nullptr)
    std::ofstream(path, std::ios::binary) << found;
  std::ostringstream golden;
  golden << std::ifstream(path, std::ios::binary).rdbuf();
  const std::string difference = firstDifference(found, golden.str());
  return difference.empty() ? "" : path + ", " + difference;
}

} // namespace kova::harness
