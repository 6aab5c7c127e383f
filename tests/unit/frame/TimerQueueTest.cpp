#include "frame/TimerQueue.h"

#include <gtest/gtest.h>

namespace vardel {
namespace {

TEST(TimerQueue, IsFirstDueOnePeriodAfterItsStart) {
    TimerQueue timers;
    timers.Arm(10000, 500, 1000);
    EXPECT_EQ(timers.TakeDue(1499), std::nullopt);
    EXPECT_EQ(timers.TakeDue(1500), 10000u);
    EXPECT_EQ(timers.TakeDue(1500), std::nullopt);
}

TEST(TimerQueue, TellsHowLongToWaitForTheNextTimer) {
    TimerQueue timers;
    EXPECT_EQ(timers.UntilNext(0, 700), 700u);
    timers.Arm(1, 500, 0);
    timers.Arm(2, 300, 0);
    EXPECT_EQ(timers.UntilNext(100, 60000), 200u);
    EXPECT_EQ(timers.UntilNext(100, 50), 50u);
    EXPECT_EQ(timers.UntilNext(9000, 60000), 0u);
}

TEST(TimerQueue, KeepsItsBeatWhenItIsServedLate) {
    TimerQueue timers;
    timers.Arm(1, 100, 0);
    EXPECT_EQ(timers.TakeDue(130), 1u);
    EXPECT_EQ(timers.TakeDue(199), std::nullopt);
    EXPECT_EQ(timers.TakeDue(200), 1u);
}

TEST(TimerQueue, IsDueOnceAfterSeveralMissedPeriods) {
    TimerQueue timers;
    timers.Arm(1, 100, 0);
    EXPECT_EQ(timers.TakeDue(1050), 1u);
    EXPECT_EQ(timers.TakeDue(1050), std::nullopt);
    EXPECT_EQ(timers.UntilNext(1050, 60000), 50u);
}

TEST(TimerQueue, GivesTheLongestWaitingTimerFirst) {
    TimerQueue timers;
    timers.Arm(1, 300, 0);
    timers.Arm(2, 100, 0);
    EXPECT_EQ(timers.TakeDue(300), 2u);
    EXPECT_EQ(timers.TakeDue(300), 1u);
    EXPECT_EQ(timers.TakeDue(300), std::nullopt);
}

TEST(TimerQueue, ArmingAgainBeginsANewPeriod) {
    TimerQueue timers;
    timers.Arm(1, 100, 0);
    timers.Arm(1, 1000, 50);
    EXPECT_EQ(timers.TakeDue(1049), std::nullopt);
    EXPECT_EQ(timers.TakeDue(1050), 1u);
}

TEST(TimerQueue, AKilledTimerIsNeverDue) {
    TimerQueue timers;
    timers.Arm(1, 100, 0);
    EXPECT_TRUE(timers.Kill(1));
    EXPECT_FALSE(timers.Kill(1));
    EXPECT_EQ(timers.TakeDue(10000), std::nullopt);
}

TEST(TimerQueue, APeriodOfZeroDoesNotStandStill) {
    TimerQueue timers;
    timers.Arm(1, 0, 10);
    EXPECT_EQ(timers.TakeDue(11), 1u);
    EXPECT_EQ(timers.TakeDue(11), std::nullopt);
}

}  // namespace
}  // namespace vardel
