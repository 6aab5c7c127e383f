#include "platform/LeaveSignals.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

namespace vardel {
namespace {

struct LeaveSignalsTest : testing::TestWithParam<int> {
    ~LeaveSignalsTest() override {
        // The object leaves the signals blocked; the test program takes them again.
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_UNBLOCK, &all, nullptr);
        SystemEvents().Close(leave);
    }
    EventHandle leave = SystemEvents().Create(nullptr, true, false);
};

TEST_P(LeaveSignalsTest, SetsTheEvent) {
    LeaveSignals signals(SystemEvents(), leave);
    kill(getpid(), GetParam());
    EXPECT_EQ(SystemEvents().Wait(leave, 10000), WaitResult::Signalled);
}

INSTANTIATE_TEST_SUITE_P(Both, LeaveSignalsTest, testing::Values(SIGINT, SIGTERM));

TEST_F(LeaveSignalsTest, GoesOnAfterASignalOfNoConcern) {
    LeaveSignals signals(SystemEvents(), leave);
    kill(getpid(), SIGUSR1);
    EXPECT_EQ(SystemEvents().Wait(leave, 50), WaitResult::TimedOut);
    kill(getpid(), SIGTERM);
    EXPECT_EQ(SystemEvents().Wait(leave, 10000), WaitResult::Signalled);
}

TEST_F(LeaveSignalsTest, EndsWithoutASignal) {
    { LeaveSignals signals(SystemEvents(), leave); }
    EXPECT_EQ(SystemEvents().Wait(leave, 0), WaitResult::TimedOut);
}

}  // namespace
}  // namespace vardel
