/// Threads: models that share nothing are loaded, checked and dumped at once, and give what they give alone.

#include "kova/check.h"
#include "kova/findings.h"
#include "kova/kt.h"
#include "tests/support.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <thread>

namespace kova::test {

namespace {

/// What a file gives: its findings and its dump.
std::string reportOf(const std::string &path) {
  std::string report;
  Kis kis;
  {
    const FindingReceiver receiver([&report](const Finding &finding) {
      report.append(std::to_string(finding.offset.value_or(0))).append(" ").append(kvFindingText(finding));
    });
    const int loaded = kvOpenKb(path.c_str(), kis);
    report.append(std::to_string(loaded * checkKOVA(kis)));
  }
  return report + dumpOf(kis);
}

} // namespace

TEST(Threads, WorkOnModelsOfTheirOwn) {
  constexpr std::size_t THREADS = 8;
  std::vector<std::string> paths;
  for (const auto &entry : std::filesystem::directory_iterator(KOVA_SOURCE_DIR "/samples"))
    if (entry.path().extension() == ".kb")
      paths.push_back(entry.path());
  ASSERT_GE(paths.size(), THREADS);
  std::vector<std::string> alone;
  for (const std::string &path : paths)
    alone.push_back(reportOf(path));

  std::vector<std::size_t> differ(THREADS);
  {
    std::vector<std::jthread> threads;
    for (std::size_t number = 0; number < THREADS; ++number)
      threads.emplace_back([&, number] {
        for (std::size_t i = 0; i < paths.size(); ++i) { // each begins at another file
          const std::size_t file = (i + number * paths.size() / THREADS) % paths.size();
          differ[number] += reportOf(paths[file]) != alone[file];
        }
      });
  }
  EXPECT_EQ(differ, std::vector<std::size_t>(THREADS));
}

} // namespace kova::test
