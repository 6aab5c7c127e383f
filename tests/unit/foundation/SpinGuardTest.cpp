#include "foundation/SpinGuard.h"

#include <gtest/gtest.h>

#include <mutex>
#include <thread>
#include <vector>

namespace vardel {
namespace {

TEST(SpinGuard, IsFreeAtFirstAndAfterEachHold) {
    SpinGuard guard;
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(guard.try_lock());
        EXPECT_FALSE(guard.try_lock());
        guard.unlock();
    }
    guard.lock();
    EXPECT_FALSE(guard.try_lock());
    guard.unlock();
    EXPECT_TRUE(guard.try_lock());
}

TEST(SpinGuard, LetsOneThreadInAtATime) {
    SpinGuard guard;
    int count = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int step = 0; step < 5000; ++step) {
                const std::lock_guard hold(guard);
                ++count;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(count, 20'000);
}

}  // namespace
}  // namespace vardel
