#include "foundation/SlabPool.h"

#include "foundation/LargeBlock.h"

namespace vardel {

namespace {

// Slabs double up to a large page, so that a network of a few hosts doesn't pay for one.
constexpr std::size_t kFirstSlab = std::size_t{16} << 10;

#ifdef VARDEL_PLAIN_HEAP
constexpr bool kPlainHeap = true;
#else
constexpr bool kPlainHeap = false;
#endif

}  // namespace

void* SlabPool::Take() {
    if (kPlainHeap) return ::operator new (pieceSize_, std::align_val_t{LargeBlock::kCacheLine});
    std::lock_guard hold(guard_);
    if (FreePiece* piece = free_) {
        free_ = piece->next;
        return piece;
    }
    if (freshSize_ < pieceSize_) AddSlab();
    void* piece = fresh_;
    fresh_ += pieceSize_;
    freshSize_ -= pieceSize_;
    return piece;
}

void SlabPool::Give(void* piece) noexcept {
    if (!piece) return;
    if (kPlainHeap) {
        ::operator delete (piece, std::align_val_t{LargeBlock::kCacheLine});
        return;
    }
    std::lock_guard hold(guard_);
    free_ = new (piece) FreePiece{free_};
}

void SlabPool::AddSlab() {
    std::size_t size = slabSize_ == 0 ? kFirstSlab : slabSize_ * 2;
    if (size > kLargePage) size = kLargePage;
    // Never freed: pieces may be in use until the process ends.
    fresh_ = static_cast<char*>((new LargeBlock(size))->Data());
    freshSize_ = size;
    slabSize_ = size;
}

}  // namespace vardel
