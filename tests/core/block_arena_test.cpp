#include "core/block_arena.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace pelinor {
namespace {

TEST(BlockArena, AlignsAndKeepsAllocationsApart) {
  BlockArena arena;
  struct Case {
    size_t bytes;
    size_t align;
  } cases[] = {{1, 1}, {3, 8}, {1, 64}, {100, 16}, {5, 4096}, {1 << 20, 8}};
  std::vector<std::pair<char*, size_t>> got;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.bytes);
    auto* p = static_cast<char*>(arena.Allocate(c.bytes, c.align));
    EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % c.align, 0u);
    std::memset(p, 0xAB, c.bytes);  // writable to the last byte
    got.emplace_back(p, c.bytes);
  }
  for (size_t i = 0; i < got.size(); ++i) {
    for (size_t j = i + 1; j < got.size(); ++j) {
      const bool apart = got[i].first + got[i].second <= got[j].first ||
                         got[j].first + got[j].second <= got[i].first;
      EXPECT_TRUE(apart) << i << " overlaps " << j;
    }
  }
}

TEST(BlockArena, GrowsIntoLargerBlocks) {
  BlockArena arena;
  size_t total = 0;
  for (int i = 0; i < 100000; ++i) {
    arena.Allocate(1000, 8);
    total += 1000;
  }
  EXPECT_GE(arena.BytesReserved(), total);
  // Doubling blocks waste at most about as much as they hold.
  EXPECT_LT(arena.BytesReserved(), 2 * total + (size_t{64} << 20));
}

TEST(ArenaAllocator, ObjectsOutliveTheirArenaHandle) {
  std::vector<std::shared_ptr<std::string>> kept;
  {
    const ArenaAllocator<std::string> alloc(std::make_shared<BlockArena>());
    for (int i = 0; i < 1000; ++i) {
      kept.push_back(std::allocate_shared<std::string>(
          alloc,
          "a string long enough to live on the heap #" + std::to_string(i)));
    }
  }
  // The allocator copies inside the control blocks keep the arena alive.
  kept.erase(kept.begin(), kept.begin() + 500);
  EXPECT_EQ(*kept.front(), "a string long enough to live on the heap #500");
  EXPECT_EQ(*kept.back(), "a string long enough to live on the heap #999");
}

TEST(BlockArena, ReusesLargeBlocksOfAnEarlierArena) {
  // Two arenas one after the other, each past its largest block size: the
  // second must work whether or not it is handed the first one's blocks.
  for (int round = 0; round < 2; ++round) {
    BlockArena arena;
    for (int i = 0; i < 200; ++i) {
      auto* p = static_cast<char*>(arena.Allocate(1 << 20, 16));
      p[0] = 1;
      p[(1 << 20) - 1] = 2;
    }
    EXPECT_GE(arena.BytesReserved(), size_t{200} << 20);
  }
}

}  // namespace
}  // namespace pelinor
