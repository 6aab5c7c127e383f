#include "foundation/SlabPool.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <thread>
#include <vector>

#include "foundation/LargeBlock.h"

namespace vardel {
namespace {

TEST(SlabPool, GivesPiecesThatDoNotOverlapAndLieOnCacheLines) {
    constexpr std::size_t kPiece = 192;
    SlabPool pool(kPiece);
    std::set<char*> pieces;
    for (int i = 0; i < 30'000; ++i) {  // more than one large page
        char* piece = static_cast<char*>(pool.Take());
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(piece) % LargeBlock::kCacheLine, 0u);
        std::memset(piece, 0x5a, kPiece);
        ASSERT_TRUE(pieces.insert(piece).second);
    }
    char* before = nullptr;
    for (char* piece : pieces) {
        if (before) {
            EXPECT_GE(piece - before, static_cast<std::ptrdiff_t>(kPiece));
        }
        before = piece;
    }
    for (char* piece : pieces) pool.Give(piece);
}

TEST(SlabPool, TakesAPieceThatWasGivenBack) {
    SlabPool pool(64);
    for (int round = 0; round < 100'000; ++round) {
        void* first = pool.Take();
        void* second = pool.Take();
        ASSERT_NE(first, second);
        std::memset(first, round, 64);
        std::memset(second, round, 64);
        pool.Give(first);
        pool.Give(second);
    }
    pool.Give(nullptr);
}

TEST(SlabPool, ServesSeveralThreads) {
    SlabPool pool(64);
    const auto work = [&](unsigned char mark) {
        std::vector<unsigned char*> mine;
        for (int i = 0; i < 2000; ++i) {
            mine.push_back(static_cast<unsigned char*>(pool.Take()));
            std::memset(mine.back(), mark, 64);
        }
        for (unsigned char* piece : mine) {
            EXPECT_TRUE(piece[0] == mark && piece[63] == mark);
            pool.Give(piece);
        }
    };
    std::thread other(work, 1);
    work(2);
    other.join();
}

#ifndef VARDEL_PLAIN_HEAP
// The sizes of the first slabs, taken whole: the pieces of one lie side by side, two never adjoin.
std::vector<std::size_t> SlabSizes(std::size_t slabs) {
    constexpr std::size_t kPiece = 64;
    SlabPool pool(kPiece);
    std::vector<std::size_t> sizes;
    for (const char* before = nullptr; sizes.size() <= slabs;) {
        const char* piece = static_cast<const char*>(pool.Take());
        if (piece != before + kPiece || sizes.empty()) sizes.push_back(0);
        sizes.back() += kPiece;
        before = piece;
    }
    sizes.pop_back();  // begun only
    return sizes;
}

TEST(SlabPool, AFewRecordsCost16KilobytesAndManyGetLargePages) {
    constexpr std::size_t kKilobyte = 1024;
    EXPECT_EQ(SlabSizes(9), (std::vector<std::size_t>{16 * kKilobyte, 32 * kKilobyte, 64 * kKilobyte,
                                                      128 * kKilobyte, 256 * kKilobyte, 512 * kKilobyte,
                                                      1024 * kKilobyte, kLargePage, kLargePage}));
}
#endif

TEST(LargeBlock, IsZeroedAndAligned) {
    for (std::size_t size : {std::size_t{1000}, kLargePage, 2 * kLargePage}) {
        const LargeBlock block(size);
        const char* bytes = static_cast<const char*>(block.Data());
        const std::size_t alignment = size % kLargePage == 0 ? kLargePage : LargeBlock::kCacheLine;
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bytes) % alignment, 0u);
        for (std::size_t at = 0; at < size; at += 100) ASSERT_EQ(bytes[at], 0);
    }
}

}  // namespace
}  // namespace vardel
