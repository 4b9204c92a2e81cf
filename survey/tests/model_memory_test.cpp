/// The memory of models: it is used again, but never while a block of it lives.

#include "common/memory.h"

#include <gtest/gtest.h>
#include <thread>

namespace {

TEST(ModelMemory, IsUsedAgainWhenNothingOfTheModelIsLeft) {
  constexpr std::size_t MIB = 1024 * 1024;
  reserveMemory(8 * MIB, 1);
  EXPECT_EQ(takeReserved(MIB), nullptr); // belongs to no model
  void *first, *second;
  {
    const ModelMemory memory;
    EXPECT_EQ(takeReserved(16), nullptr);
    EXPECT_EQ(takeReserved(16 * MIB), nullptr);
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
  const ModelMemory memory;
  EXPECT_EQ(takeReserved(MIB), first);
  EXPECT_TRUE(giveBackReserved(first));
  EXPECT_FALSE(giveBackReserved(&first));
}

} // namespace
