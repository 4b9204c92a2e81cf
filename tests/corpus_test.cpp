/// Replays the inputs that fuzzing has kept, each through the target that it belongs to.

#include "fuzz/audit.h"
#include "tests/support.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace kova::test {

TEST(Corpus, EveryInputIsClean) {
  struct Target {
    const char *folder;
    void (*audit)(const std::uint8_t *, std::size_t);
  };
  std::size_t replayed = 0;
  for (const Target &target :
       {Target{"file", fuzz::auditFile}, Target{"list", fuzz::auditList}, Target{"extension", fuzz::auditExtension}})
    for (const auto &input :
         std::filesystem::directory_iterator(std::string(KOVA_SOURCE_DIR "/fuzz/corpus/") + target.folder)) {
      const std::string bytes = readFile(input.path());
      capture([&] { target.audit(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size()); });
      ++replayed;
    }
  EXPECT_GT(replayed, 100U);
}

} // namespace kova::test
