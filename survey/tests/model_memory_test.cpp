/// The memory of models: it is used again, but never while a block of it lives.

#include "common/memory.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <thread>

namespace {

bool isHeld(std::byte *page) {
  unsigned char held = 0;
  EXPECT_EQ(::mincore(page, 1, &held), 0);
  return (held & 1) != 0;
}

TEST(ModelMemory, IsUsedAgainWhenNothingOfTheModelIsLeft) {
  constexpr std::size_t MIB = 1024 * 1024;
  reserveMemory(256 * MIB, 1);
  EXPECT_EQ(takeReserved(MIB), nullptr); // belongs to no model
  void *first, *second;
  {
    const ModelMemory memory;
    EXPECT_EQ(takeReserved(16), nullptr);
    EXPECT_EQ(takeReserved(512 * MIB), nullptr);
    ASSERT_NE(first = takeReserved(MIB), nullptr);
    EXPECT_TRUE(giveBackReserved(first));
    std::jthread([] { // for which nothing is reserved
      const ModelMemory other;
      EXPECT_EQ(takeReserved(MIB), nullptr);
    })
        .join();
  }
  {
    const ModelMemory memory;
    EXPECT_EQ(takeReserved(MIB), first);
  }
  {
    const ModelMemory memory;
    EXPECT_NE(second = takeReserved(MIB), first);
    std::jthread([&] { EXPECT_TRUE(giveBackReserved(first) && giveBackReserved(second)); }).join();
  }
  auto *const pages = static_cast<std::byte *>(first);
  {
    const ModelMemory memory;
    EXPECT_EQ(takeReserved(200 * MIB), first);
    for (const std::size_t at : {4 * MIB, 192 * MIB}) {
      pages[at] = std::byte{1};
      EXPECT_TRUE(isHeld(pages + at));
    }
    EXPECT_TRUE(giveBackReserved(first));
  }
  EXPECT_TRUE(isHeld(pages + 4 * MIB)); // for the next model
  EXPECT_FALSE(isHeld(pages + 192 * MIB));
  EXPECT_FALSE(giveBackReserved(&first));
}

} // namespace
