#include "platform/ThreadBarrier.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace vardel {
namespace {

// Two threads each store and then look at what the other stores. Without a barrier in between both may miss it; the
// one of the slow side has to do for both.
TEST(ThreadBarrier, OrdersAStoreBeforeALookInEveryOtherThread) {
    if (!PrepareThreadBarrier()) {
        EXPECT_FALSE(PrepareThreadBarrier()) << "the answer stays the same";
        return;
    }
    constexpr int kRounds = 20'000;
    std::atomic<int> fast{0}, slow{0}, fastRound{0}, slowRound{0};
    int fastSaw = 0, slowSaw = 0, bothMissed = 0;
    std::thread other([&] {
        for (int round = 1; round <= kRounds; ++round) {
            while (slowRound.load() != round) std::this_thread::yield();
            fast.store(round, std::memory_order_relaxed);
            std::atomic_signal_fence(std::memory_order_seq_cst);
            fastSaw = slow.load(std::memory_order_relaxed);
            fastRound.store(round);
        }
    });
    for (int round = 1; round <= kRounds; ++round) {
        slowRound.store(round);
        slow.store(round, std::memory_order_relaxed);
        PutThreadBarrier();
        slowSaw = fast.load(std::memory_order_relaxed);
        while (fastRound.load() != round) std::this_thread::yield();
        bothMissed += fastSaw != round && slowSaw != round;
    }
    other.join();
    EXPECT_EQ(bothMissed, 0);
}

}  // namespace
}  // namespace vardel
