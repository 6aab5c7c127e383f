#include "foundation/Reclaim.h"

#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <thread>

namespace vardel {
namespace {

struct Tracked {
    explicit Tracked(std::atomic<int>& count) : freed(count) {}
    ~Tracked() { ++freed; }
    std::atomic<int>& freed;
};

TEST(Reclaim, FreesAtOnceWhatNobodyCanHold) {
    std::atomic<int> freed{0};
    RetireObject(new Tracked(freed));
    FreeRetired();
    EXPECT_EQ(freed, 1);
}

TEST(Reclaim, KeepsWhatAPinOfAnotherThreadMayHold) {
    std::atomic<int> freed{0};
    {
        ReadPin pin;
        std::thread([&] {
            RetireObject(new Tracked(freed));
            FreeRetired();
        }).join();
        EXPECT_EQ(freed, 0);
    }
    FreeRetired();
    EXPECT_EQ(freed, 1);
}

TEST(Reclaim, NestedPinsEndWithTheOutermost) {
    std::atomic<int> freed{0};
    {
        ReadPin outer;
        { ReadPin inner; }
        RetireObject(new Tracked(freed));
        FreeRetired();
        EXPECT_EQ(freed, 0);
    }
    FreeRetired();
    EXPECT_EQ(freed, 1);
}

TEST(Reclaim, LaterPinsHoldNothingBack) {
    std::atomic<int> freed{0};
    RetireObject(new Tracked(freed));
    ReadPin later;
    FreeRetired();
    EXPECT_EQ(freed, 1);
}

// Threads of the system's own may come and go meanwhile, so the slots are counted and not compared one by one.
TEST(Reclaim, SlotsOfEndedThreadsServeLaterThreads) {
    constexpr std::size_t kThreads = 50;
    std::set<detail::ReaderSlot*> slots;
    for (std::size_t i = 0; i < kThreads; ++i)
        std::thread([&] {
            ReadPin pin;
            slots.insert(detail::slotOfThread);
        }).join();
    EXPECT_EQ(slots.count(nullptr), 0u);
    EXPECT_LT(slots.size(), kThreads / 2);
}

TEST(Reclaim, ManyRetiredObjectsAreFreedWithoutBeingAskedFor) {
    constexpr int kObjects = 1000;
    std::atomic<int> freed{0};
    for (int i = 0; i < kObjects; ++i) RetireObject(new Tracked(freed));
    EXPECT_GT(freed, kObjects - 64) << "at most a batch waits";
    FreeRetired();
    EXPECT_EQ(freed, kObjects);
    EXPECT_EQ(RetiredCount(), 0u);
}

}  // namespace
}  // namespace vardel
