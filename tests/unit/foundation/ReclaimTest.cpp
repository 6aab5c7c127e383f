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

}  // namespace
}  // namespace vardel
