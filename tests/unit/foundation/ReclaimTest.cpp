#include "foundation/Reclaim.h"

#include <gtest/gtest.h>

#include <atomic>
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

TEST(Reclaim, AnEndedThreadsSlotServesTheNextThread) {
    const auto slotOfAThread = [] {
        detail::ReaderSlot* slot = nullptr;
        std::thread([&] {
            ReadPin pin;
            slot = detail::slotOfThread;
        }).join();
        return slot;
    };
    detail::ReaderSlot* first = slotOfAThread();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(slotOfAThread(), first);
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
