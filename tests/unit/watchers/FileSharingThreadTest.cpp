#include <gtest/gtest.h>

#include <new>

#include "capture/EventMap.h"
#include "tests/unit/support/TracedLines.h"
#include "tests/unit/support/WorkerFixture.h"

namespace vardel {
namespace {

class FileSharingThreadTest : public test::WorkerFixture {
  protected:
    FileSharingThreadTest() { TheEventMap().Clear(); }
    ~FileSharingThreadTest() override { TheEventMap().Clear(); }

    test::TracedLines traced;
};

using Steps = std::vector<std::string>;

TEST_F(FileSharingThreadTest, EndsWithoutParameters) {
    FileSharingThread(nullptr);
    EXPECT_EQ(traced.Steps(), (Steps{"Vardel::FileSharingThread: No params - Exit..."}));
}

TEST_F(FileSharingThreadTest, EndsWithoutData) {
    params.data = nullptr;
    FileSharingThread(&params);
    EXPECT_EQ(traced.Steps(), (Steps{"Vardel::FileSharingThread: Exit..."}));
}

TEST_F(FileSharingThreadTest, EndsForTheRunWhereThereIsNobodyToAsk) {
    system.serverConnections.canEnter = false;
    FileSharingThread(&params);
    EXPECT_EQ(system.serverConnections.lists, 0);
    EXPECT_EQ(system.serverConnections.leaves, 0);
    EXPECT_TRUE(events.created.empty());
    EXPECT_EQ(traced.Steps(), (Steps{"Vardel::FileSharingThread: Exit..."}));
}

TEST_F(FileSharingThreadTest, LooksOnceASecondUntilTheStop) {
    StopAfter(3);
    system.serverConnections.rows = {{.computer = "10.0.0.5", .share = "Public", .user = "ann", .activeTime = 7}};
    FileSharingThread(&params);
    EXPECT_EQ(system.serverConnections.entries, 1);
    EXPECT_EQ(system.serverConnections.leaves, 1);
    EXPECT_EQ(system.serverConnections.lists, 3);
    EXPECT_EQ(events.sleeps, (std::vector<u32>{1000, 1000, 1000}));
    ASSERT_EQ(events.created.size(), 1u);
    EXPECT_EQ(events.created[0].name, "DoNothingEventFS");
    EXPECT_FALSE(events.created[0].manualReset);
    EXPECT_FALSE(events.created[0].signalled);
    EXPECT_EQ(events.open, 0);
    EXPECT_EQ(data.remoteAccesses.Count(), 1u);
    EXPECT_EQ(data.shareAccesses.Count(), 1u);
    EXPECT_EQ(traced.Steps(), (Steps{"Vardel::FileSharingThread: Exit..."}));
}

TEST_F(FileSharingThreadTest, LooksNotOnceWhenItIsStoppedBefore) {
    params.stop = 1;
    FileSharingThread(&params);
    EXPECT_EQ(system.serverConnections.lists, 0);
    EXPECT_EQ(system.serverConnections.leaves, 1);
}

TEST_F(FileSharingThreadTest, ALookThatFailsIsFollowedByTheNext) {
    StopAfter(3);
    system.serverConnections.onList = [this] {
        if (system.serverConnections.lists == 2) throw std::bad_alloc();
    };
    FileSharingThread(&params);
    EXPECT_EQ(system.serverConnections.lists, 3);
}

TEST(FileSharingThread, TheStopRequestEndsItsSleep) {
    test::TestServices system;
    VardelData data(system.services);
    Events& events = system.services.events;
    ThreadParams params;
    params.data = &data;
    params.stopRequested = events.Create(nullptr, true, false);
    EventHandle looked = events.Create(nullptr, true, false);
    system.serverConnections.onList = [&] { events.Set(looked); };
    ThreadHandle thread = nullptr;
    u32 id = 0;
    ASSERT_TRUE(SystemThreads().Start(&FileSharingThread, &params, thread, id));
    EXPECT_EQ(events.Wait(looked, 20000), WaitResult::Signalled);
    RequestStop(params, events);
    EXPECT_TRUE(SystemThreads().WaitAll({&thread, 1}, 20000));
    EXPECT_LE(system.serverConnections.lists, 2);
    SystemThreads().Close(thread);
    events.Close(looked);
    events.Close(params.stopRequested);
}

}  // namespace
}  // namespace vardel
