#include <gtest/gtest.h>

#include "tests/unit/support/TracedLines.h"
#include "tests/unit/support/WorkerFixture.h"

namespace vardel {
namespace {

using Steps = std::vector<std::string>;

class WMIThreadTest : public test::WorkerFixture {
  protected:
    HostRecord* Host(const char* ip) {
        HostRecord* host = data.Adopt(std::make_unique<HostRecord>());
        host->ip = ip;
        return host;
    }
    // As the capture thread does.
    void Queue(HostRecord* host, u8 isLocal = 0) {
        auto item = std::make_unique<WmiWorkItem>();
        item->host = host;
        item->isLocal = isLocal;
        data.wmiWork.Prepend(item.release());
    }

    test::TracedLines traced;
};

TEST_F(WMIThreadTest, EndsWithoutParameters) {
    WMIThread(nullptr);
    EXPECT_EQ(traced.Steps(), (Steps{"Vardel::TestWMIAccess: No params - Exit..."}));
}

TEST_F(WMIThreadTest, EndsWithoutData) {
    params.data = nullptr;
    WMIThread(&params);
    EXPECT_EQ(traced.Steps(), (Steps{"Vardel::TestWMIAccess: Exit..."}));
}

TEST_F(WMIThreadTest, SleepsASecondWhileThereIsNothingToDo) {
    StopAfter(2);
    WMIThread(&params);
    EXPECT_EQ(events.sleeps, (std::vector<u32>{1000, 1000}));
    ASSERT_EQ(events.created.size(), 1u);
    EXPECT_EQ(events.created[0].name, "DoNothingEventWMI");
    EXPECT_FALSE(events.created[0].manualReset);
    EXPECT_FALSE(events.created[0].signalled);
    EXPECT_EQ(events.open, 0);
    EXPECT_EQ(system.wmi.calls, (Steps{"enter", "leave"}));
    EXPECT_EQ(traced.Steps(), (Steps{"Vardel::TestWMIAccess: Exit..."}));
}

TEST_F(WMIThreadTest, AnApartmentThatWasNotEnteredIsNotLeft) {
    StopAfter(1);
    system.wmi.enter = kWmiOutOfMemory;
    WMIThread(&params);
    EXPECT_EQ(system.wmi.calls, (Steps{"enter"}));
    EXPECT_EQ(events.sleeps.size(), 1u);
}

TEST_F(WMIThreadTest, ServesTheOldestHostFirstAndOneASecond) {
    HostRecord* older = Host("10.0.0.5");
    HostRecord* newer = Host("10.0.0.6");
    Queue(older);
    Queue(newer);
    std::vector<i32> statuses;
    events.onSleep = [&] {
        statuses.push_back(older->wmiStatus);
        statuses.push_back(newer->wmiStatus);
        if (events.sleeps.size() == 2) params.stop = 1;
    };
    WMIThread(&params);
    EXPECT_EQ(statuses, (std::vector<i32>{300, 999, 300, 300}));
    EXPECT_TRUE(data.wmiWork.IsEmpty());
}

TEST_F(WMIThreadTest, ALocalItemGoesTheLocalWay) {
    HostRecord* host = Host("10.0.0.1");
    Queue(host, 1);
    StopAfter(1);
    system.wmi.scripts = {test::WmiScript{.rows = {{.properties = {{"Name", "Windows 11|x"}}}}}};
    WMIThread(&params);
    EXPECT_EQ(host->wmiStatus, 0);
    EXPECT_EQ(system.wmi.CallsOf("connect"), (Steps{"connect root\\cimv2"}));
}

TEST_F(WMIThreadTest, NothingQueuesAHostAgain) {
    HostRecord* host = Host("10.0.0.5");
    AdminAccount account{};
    data.settings.accounts.Write({{0, account}});
    Queue(host);
    StopAfter(3);
    WMIThread(&params);
    EXPECT_EQ(host->wmiStatus, 200);
    EXPECT_EQ(system.wmi.CallsOf("connect").size(), 1u);
}

TEST_F(WMIThreadTest, AnEmptyItemIsPassedOver) {
    HostRecord* host = Host("10.0.0.5");
    data.wmiWork.Prepend(nullptr);
    Queue(nullptr);
    Queue(host);
    StopAfter(3);
    WMIThread(&params);
    EXPECT_EQ(host->wmiStatus, 300);
}

TEST_F(WMIThreadTest, WorkThatIsLeftAtTheStopStays) {
    Queue(Host("10.0.0.5"));
    params.stop = 1;
    WMIThread(&params);
    EXPECT_EQ(data.wmiWork.Count(), 1u);
}

TEST(WMIThread, TheStopRequestEndsItsSleep) {
    test::TestServices system;
    VardelData data(system.services);
    Events& events = system.services.events;
    ThreadParams params;
    params.data = &data;
    params.stopRequested = events.Create(nullptr, true, false);
    ThreadHandle thread = nullptr;
    u32 id = 0;
    ASSERT_TRUE(SystemThreads().Start(&WMIThread, &params, thread, id));
    EXPECT_FALSE(SystemThreads().WaitAll({&thread, 1}, 50));
    RequestStop(params, events);
    EXPECT_TRUE(SystemThreads().WaitAll({&thread, 1}, 20000));
    SystemThreads().Close(thread);
    events.Close(params.stopRequested);
}

TEST(WMIThread, TheFenceStandsOnlyForTheTaking) {
    test::TestServices system;
    VardelData data(system.services);
    data.fences.CreateAll();
    Events& events = system.services.events;
    const auto free = [&] {
        return events.Wait(data.fences.Handle(Fence::WmiAccess), 0) == WaitResult::Signalled;
    };
    HostRecord* host = data.Adopt(std::make_unique<HostRecord>());
    host->ip = "10.0.0.5";
    auto item = std::make_unique<WmiWorkItem>();
    item->host = host;
    data.wmiWork.Prepend(item.release());
    ThreadParams params;
    params.data = &data;
    params.stopRequested = events.Create(nullptr, true, false);
    ThreadHandle thread = nullptr;
    u32 id = 0;
    ASSERT_TRUE(SystemThreads().Start(&WMIThread, &params, thread, id));
    for (int looks = 0; host->wmiStatus == 999 && looks < 2000; ++looks)
        EXPECT_FALSE(SystemThreads().WaitAll({&thread, 1}, 10));
    EXPECT_EQ(host->wmiStatus, 300);
    EXPECT_TRUE(free());
    RequestStop(params, events);
    EXPECT_TRUE(SystemThreads().WaitAll({&thread, 1}, 20000));
    SystemThreads().Close(thread);
    events.Close(params.stopRequested);
}

}  // namespace
}  // namespace vardel
