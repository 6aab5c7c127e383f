#include "platform/Events.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace vardel {
namespace {

constexpr u32 kLong = 20000;  // ms; passes only where a wake-up was lost

class EventsTest : public testing::Test {
  protected:
    ~EventsTest() override {
        for (EventHandle event : made_) events.Close(event);
    }
    EventHandle Make(bool manualReset, bool signalled) {
        made_.push_back(events.Create(nullptr, manualReset, signalled));
        EXPECT_NE(made_.back(), nullptr);
        return made_.back();
    }
    static int Milliseconds(std::chrono::steady_clock::time_point since) {
        using namespace std::chrono;
        return static_cast<int>(duration_cast<milliseconds>(steady_clock::now() - since).count());
    }

    Events& events = SystemEvents();

  private:
    std::vector<EventHandle> made_;
};

TEST_F(EventsTest, AManualResetEventStaysSignalledUntilItIsReset) {
    EventHandle event = Make(true, true);
    EXPECT_EQ(events.Wait(event, 0), WaitResult::Signalled);
    EXPECT_EQ(events.Wait(event, 0), WaitResult::Signalled);
    EXPECT_TRUE(events.Reset(event));
    EXPECT_EQ(events.Wait(event, 0), WaitResult::TimedOut);
    EXPECT_TRUE(events.Set(event));
    EXPECT_EQ(events.Wait(event, 0), WaitResult::Signalled);
}

TEST_F(EventsTest, AnAutoResetEventLetsOneWaitPass) {
    EventHandle event = Make(false, false);
    EXPECT_EQ(events.Wait(event, 0), WaitResult::TimedOut);
    events.Set(event);
    events.Set(event);  // no second pass
    EXPECT_EQ(events.Wait(event, 0), WaitResult::Signalled);
    EXPECT_EQ(events.Wait(event, 0), WaitResult::TimedOut);
}

TEST_F(EventsTest, AWaitGivesUpAfterItsTime) {
    EventHandle event = Make(true, false);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(events.Wait(event, 60), WaitResult::TimedOut);
    EXPECT_GE(Milliseconds(start), 50);
}

TEST_F(EventsTest, NullHandlesFailAtOnce) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(events.Wait(nullptr, kLong), WaitResult::Failed);
    EXPECT_EQ(events.WaitEither(nullptr, nullptr, kLong), WaitResult::Failed);
    EXPECT_LT(Milliseconds(start), static_cast<int>(kLong));
    EXPECT_FALSE(events.Set(nullptr));
    EXPECT_FALSE(events.Reset(nullptr));
    events.Close(nullptr);
}

TEST_F(EventsTest, EitherOfTwoEventsEndsAWait) {
    EventHandle first = Make(true, false), second = Make(true, false);
    EXPECT_EQ(events.WaitEither(first, second, 10), WaitResult::TimedOut);
    for (EventHandle event : {first, second}) {
        events.Set(event);
        EXPECT_EQ(events.WaitEither(first, second, kLong), WaitResult::Signalled);
        EXPECT_EQ(events.WaitEither(event, nullptr, kLong), WaitResult::Signalled);
        EXPECT_EQ(events.WaitEither(nullptr, event, kLong), WaitResult::Signalled);
        EXPECT_EQ(events.WaitEither(event, event, kLong), WaitResult::Signalled);
        events.Reset(event);
    }
}

TEST_F(EventsTest, AWaitThatHasBegunIsWoken) {
    EventHandle first = Make(true, false), second = Make(true, false);
    for (EventHandle event : {first, second}) {
        std::thread waiter([&] { EXPECT_EQ(events.WaitEither(first, second, kLong), WaitResult::Signalled); });
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        events.Set(event);
        waiter.join();
        events.Reset(event);
    }
}

TEST_F(EventsTest, AManualResetEventWakesAllWhoWait) {
    EventHandle event = Make(true, false);
    std::vector<std::thread> waiters;
    std::atomic<int> passed{0};
    for (int i = 0; i < 4; ++i)
        waiters.emplace_back([&] { passed += events.Wait(event, kLong) == WaitResult::Signalled; });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    events.Set(event);
    for (std::thread& waiter : waiters) waiter.join();
    EXPECT_EQ(passed, 4);
}

// Two threads hand a turn to and fro, which hangs where one wake-up is lost or passes twice.
TEST_F(EventsTest, NoWakeUpIsLostOrDoubled) {
    constexpr int kTurns = 3000;
    EventHandle ping = Make(false, false), pong = Make(false, false), never = Make(true, false);
    int turns = 0;
    std::thread other([&] {
        for (int i = 0; i < kTurns; ++i) {
            ASSERT_EQ(events.WaitEither(never, ping, kLong), WaitResult::Signalled);
            ++turns;
            events.Set(pong);
        }
    });
    for (int i = 0; i < kTurns; ++i) {
        events.Set(ping);
        ASSERT_EQ(events.Wait(pong, kLong), WaitResult::Signalled);
        ASSERT_EQ(turns, i + 1);
    }
    other.join();
}

TEST_F(EventsTest, AnAutoResetEventPassesAsOftenAsItWasSetByTurns) {
    EventHandle gate = Make(false, true);  // used as a lock
    int inside = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 1000; ++round) {
                ASSERT_EQ(events.Wait(gate, kLong), WaitResult::Signalled);
                ASSERT_EQ(++inside, 1);
                --inside;
                events.Set(gate);
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(inside, 0);
}

}  // namespace
}  // namespace vardel
