// Internal: a bump allocator for the many small objects a large file read
// creates (a million queue entries), so that their memory comes from a few
// large blocks instead of a million heap allocations and page faults. Not
// part of the public interface.
//
// Objects are made with std::allocate_shared and an ArenaAllocator; each
// object's control block holds a copy of the allocator and so keeps the
// arena alive. The arena's blocks are released when the arena and every
// object made from it are gone; releasing one object frees no memory. Up to
// 1 GiB of the largest blocks is then kept for the next arena, marked free
// to the kernel, so that re-reading a large file touches no new memory.
//
// Thread safety: one thread allocates from an arena at a time. Objects may
// be released from any thread.

#ifndef PELINOR_CORE_BLOCK_ARENA_H_
#define PELINOR_CORE_BLOCK_ARENA_H_

#include <cstddef>
#include <memory>
#include <vector>

namespace pelinor {

class BlockArena {
 public:
  BlockArena() = default;
  BlockArena(const BlockArena&) = delete;
  BlockArena& operator=(const BlockArena&) = delete;
  ~BlockArena();

  // Allocate()
  //
  // `bytes` of memory aligned to `align`, valid until the arena is
  // destroyed. Throws std::bad_alloc when the system has no memory.
  // REQUIRES: `align` is a power of two no greater than 4096.
  void* Allocate(size_t bytes, size_t align);

  // BytesReserved()
  //
  // The size of all blocks taken from the system so far.
  size_t BytesReserved() const { return reserved_; }

 private:
  struct Block {
    char* base;
    size_t size;
  };
  void AddBlock(size_t at_least);

  std::vector<Block> blocks_;
  char* next_ = nullptr;
  char* end_ = nullptr;
  size_t reserved_ = 0;
};

// ArenaAllocator
//
// A standard allocator over a shared BlockArena, for std::allocate_shared.
// deallocate() does nothing: memory returns with the arena.
template <typename T>
class ArenaAllocator {
 public:
  using value_type = T;

  explicit ArenaAllocator(std::shared_ptr<BlockArena> arena)
      : arena_(std::move(arena)) {}
  template <typename U>
  ArenaAllocator(const ArenaAllocator<U>& other) : arena_(other.arena()) {}

  T* allocate(size_t n) {
    return static_cast<T*>(arena_->Allocate(n * sizeof(T), alignof(T)));
  }
  void deallocate(T*, size_t) {}

  const std::shared_ptr<BlockArena>& arena() const { return arena_; }

  template <typename U>
  bool operator==(const ArenaAllocator<U>& other) const {
    return arena_ == other.arena();
  }

 private:
  std::shared_ptr<BlockArena> arena_;
};

}  // namespace pelinor

#endif  // PELINOR_CORE_BLOCK_ARENA_H_
