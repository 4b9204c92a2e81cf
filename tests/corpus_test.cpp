/// Replays the inputs that fuzzing has kept, each through the target that it belongs to.

#include "harness/audit.h"
#include "tests/support.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace kova::test {

TEST(Corpus, EveryInputIsClean) {
  struct Target {
    const char *folder;
    std::string (*audit)(std::span<const unsigned char>);
  };
  std::size_t replayed = 0;
  for (const Target &target :
       {Target{"file", auditFile}, Target{"list", auditList}, Target{"extension", auditExtension}})
    for (const auto &input :
         std::filesystem::directory_iterator(std::string(KOVA_SOURCE_DIR "/fuzz/corpus/") + target.folder)) {
      const std::string bytes = readFile(input.path());
      std::string broken;
      capture([&] { broken = target.audit({reinterpret_cast<const unsigned char *>(bytes.data()), bytes.size()}); });
      EXPECT_EQ(broken, "") << input.path();
      ++replayed;
    }
  EXPECT_GT(replayed, 100U);
}

} // namespace kova::test
