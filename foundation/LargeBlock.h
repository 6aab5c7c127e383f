// LargeBlock: one block of zeroed memory for a table or for many records, in large pages where it is big
// enough.
//
// Owned by whoever made it; knows no threads.
#pragma once

#include <cstring>
#include <new>

#include "platform/LargePages.h"

namespace vardel {

class LargeBlock {
  public:
    static constexpr std::size_t kCacheLine = 64;

    // Aligned to a cache line at least. Throws std::bad_alloc.
    explicit LargeBlock(std::size_t size)
        : alignment_{size % kLargePage == 0 ? kLargePage : kCacheLine},
          memory_(::operator new(size, alignment_)) {
        if (size % kLargePage == 0) PreferLargePages(memory_, size);
        std::memset(memory_, 0, size);
    }
    ~LargeBlock() { ::operator delete(memory_, alignment_); }
    LargeBlock(const LargeBlock&) = delete;
    LargeBlock& operator=(const LargeBlock&) = delete;

    void* Data() const { return memory_; }

  private:
    const std::align_val_t alignment_;
    void* const memory_;
};

}  // namespace vardel
