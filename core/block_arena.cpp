#include "block_arena.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <new>
#include <vector>

namespace pelinor {
namespace {

// Blocks grow from 256 KiB to 64 MiB so that a small read wastes little
// and a large one takes few blocks. Blocks of 2 MiB and more are offered to
// the kernel as huge pages, which removes most of the cost of touching
// fresh memory.
constexpr size_t kFirstBlock = size_t{256} << 10;
constexpr size_t kLargestBlock = size_t{64} << 20;
constexpr size_t kHugePage = size_t{2} << 20;

// Largest blocks outlive their arena in a small process-wide pool, so that
// a program reading the same large file again and again (a server polling
// its queue) reuses memory it has already touched. Pooled blocks are marked
// free to the kernel, which may take them back under memory pressure; a
// block it took reads as zeros, which an arena does not mind.
constexpr size_t kPoolLimit = 16;  // blocks of kLargestBlock: 1 GiB

struct BlockPool {
  std::mutex mu;
  std::vector<void*> blocks;
};

BlockPool& Pool() {
  static BlockPool* pool = new BlockPool;  // never destroyed: see above
  return *pool;
}

void* TakePooledBlock() {
  BlockPool& pool = Pool();
  std::lock_guard<std::mutex> lock(pool.mu);
  if (pool.blocks.empty()) return nullptr;
  void* base = pool.blocks.back();
  pool.blocks.pop_back();
  return base;
}

// Keeps a largest-size block for reuse; false when the pool is full.
bool PoolBlock(void* base) {
  BlockPool& pool = Pool();
  std::lock_guard<std::mutex> lock(pool.mu);
  if (pool.blocks.size() >= kPoolLimit) return false;
#ifdef MADV_FREE
  madvise(base, kLargestBlock, MADV_FREE);
#endif
  pool.blocks.push_back(base);
  return true;
}

}  // namespace

BlockArena::~BlockArena() {
  for (const Block& block : blocks_) {
    if (block.size == kLargestBlock && PoolBlock(block.base)) continue;
    munmap(block.base, block.size);
  }
}

void BlockArena::AddBlock(size_t at_least) {
  size_t size = blocks_.empty()
                    ? kFirstBlock
                    : std::min(blocks_.back().size * 2, kLargestBlock);
  size = std::max(size, (at_least + 4095) & ~size_t{4095});
  void* base = size == kLargestBlock ? TakePooledBlock() : nullptr;
  if (base == nullptr) {
    base = mmap(nullptr, size, PROT_READ | PROT_WRITE,
                MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (base == MAP_FAILED) throw std::bad_alloc();
#ifdef MADV_HUGEPAGE
    if (size >= kHugePage) madvise(base, size, MADV_HUGEPAGE);
#endif
  }
  blocks_.push_back({static_cast<char*>(base), size});
  next_ = static_cast<char*>(base);
  end_ = next_ + size;
  reserved_ += size;
}

void* BlockArena::Allocate(size_t bytes, size_t align) {
  auto aligned = [&] {
    auto at = reinterpret_cast<uintptr_t>(next_);
    return reinterpret_cast<char*>((at + align - 1) & ~(align - 1));
  };
  char* at = aligned();
  if (next_ == nullptr || at + bytes > end_) {
    AddBlock(bytes + align);
    at = aligned();
  }
  next_ = at + bytes;
  return at;
}

}  // namespace pelinor
