// SlabPool: equally large pieces of memory that lie close together, for records of which there can be tens of
// thousands and that are met in no order.
//
// Any thread may take and give. The memory stays with the pool, which is made to last as long as the process.
// Builds with a sanitizer define VARDEL_PLAIN_HEAP: there each piece is an allocation of its own, which it
// can watch.
#pragma once

#include <mutex>

#include "platform/Types.h"

namespace vardel {

class SlabPool {
  public:
    // `pieceSize` is a multiple of the cache line, 64 bytes, and so is the alignment.
    explicit SlabPool(std::size_t pieceSize) : pieceSize_(pieceSize) {}
    SlabPool(const SlabPool&) = delete;
    SlabPool& operator=(const SlabPool&) = delete;

    // Throws std::bad_alloc.
    void* Take();
    void Give(void* piece) noexcept;

  private:
    struct FreePiece {
        FreePiece* next;
    };

    void AddSlab();

    const std::size_t pieceSize_;
    std::mutex guard_;
    FreePiece* free_ = nullptr;
    char* fresh_ = nullptr;  // what the newest slab has left
    std::size_t freshSize_ = 0;
    std::size_t slabSize_ = 0;
};

}  // namespace vardel
