#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "tests/unit/support/MainRunFixture.h"
#include "tests/unit/support/TestFolder.h"
#include "tests/unit/support/TracedLines.h"

namespace vardel {
namespace {

struct MainRunEnd : test::MainRunFixture {};

TEST_F(MainRunEnd, StopsTheBlocksInTheirOrderAndThenWaits) {
    Run();
    // The blocks' waitables in the order of their making: workers, share access, log writer.
    const Lines stops = record.Starting("set #");
    EXPECT_EQ(stops, (Lines{"set #1", "set #2", "set #0"}));
    EXPECT_LT(record.Position("app left"), record.Position("set #1"));
    EXPECT_LT(record.Position("set #0"), record.Position("wait 15000"));
    EXPECT_EQ(app->workerParams.stop, 1);
    EXPECT_EQ(app->shareParams.stop, 1);
    EXPECT_EQ(app->eventWriterParams.stop, 1);
}

TEST_F(MainRunEnd, ClosesThreadsThenFencesThenTheGuard) {
    Stored([](VardelSettings& settings) { settings.EventLogSave = 1; });
    Run();
    Lines closed = record.Starting("close ");
    // The sleep events of the threads are theirs to close, whenever they end.
    std::erase_if(closed, [](const std::string& line) { return line.starts_with("close DoNothing"); });
    std::erase_if(closed, [](const std::string& line) { return line.starts_with("close #"); });
    EXPECT_EQ(closed, (Lines{"close SnifferThread", "close FileSharingThread", "close ReadVendorThread",
                             "close WMIThread", "close CheckNetResThread", "close NotifyPluginThread",
                             "close WriteEventsThread",
                             "close ReadInARPMap", "close ReadInMACSpoofList", "close ReadInNewEntryList",
                             "close ReadShareList", "close ReadSysLogList", "close ReadWMIAccessList",
                             "close ReadNetResList", "close ReadNotifyList", "close ReadVendorMap",
                             "close WriteEventMapHandle"}));
    EXPECT_LT(record.Position("wait 15000"), record.Position("close SnifferThread"));
    EXPECT_EQ(system.process.apartments, 0);
    EXPECT_EQ(app->snifferThread.handle, nullptr);
    EXPECT_EQ(app->snifferThread.id, 0u);
    EXPECT_FALSE(app->IsEventWriterRunning());
}

TEST_F(MainRunEnd, LeavesTheApartmentItEntered) {
    Run();
    EXPECT_EQ(system.process.apartmentsEntered, 1);
    EXPECT_EQ(system.process.apartments, 0);
}

TEST_F(MainRunEnd, AnIdleRunEndsWithinASecondAndAHalf) {
    Stored([](VardelSettings& settings) { settings.EventLogSave = 1; });
    std::chrono::steady_clock::time_point left;
    frame.whileItRuns = [&](VardelData&, Vardel&) { left = std::chrono::steady_clock::now(); };
    Run();
    EXPECT_LT(std::chrono::steady_clock::now() - left, std::chrono::milliseconds(1500));
}

TEST_F(MainRunEnd, TheWriterHasWrittenAllEventsWhenItIsStopped) {
    Stored([](VardelSettings& settings) { settings.EventLogSave = 1; });
    Run();
    EXPECT_EQ(app->eventsWritten, TheEventMap().Count());
    EXPECT_EQ(EventKinds().back(), 2);
}

// A log writer that hangs in its file until it is stopped.
void WriteNothing(void* raw) {
    const ThreadParams& params = *static_cast<ThreadParams*>(raw);
    while (!params.stop) std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

TEST_F(MainRunEnd, AWriterThatFallsBehindIsGivenThreeSecondsInAll) {
    Stored([](VardelSettings& settings) { settings.EventLogSave = 1; });
    threads.instead[&WriteEventsThread] = &WriteNothing;
    std::vector<u32> waits;  // milliseconds
    // Named by its place behind the three blocks' stop requests. Twice it tells of a batch, each after a second.
    events.waits["#3"] = [&](u32 timeoutMs) {
        waits.push_back(timeoutMs);
        system.clock.ticks += 1000;
        return waits.size() < 3 ? WaitResult::Signalled : WaitResult::TimedOut;
    };
    Run();
    EXPECT_EQ(waits, (std::vector<u32>{3000, 2000, 1000}));
    EXPECT_TRUE(app->ThreadsHaveEnded());
}

TEST_F(MainRunEnd, BatchesThatComeTooLateAreWaitedForNoMore) {
    Stored([](VardelSettings& settings) { settings.EventLogSave = 1; });
    threads.instead[&WriteEventsThread] = &WriteNothing;
    int waits = 0;
    events.waits["#3"] = [&](u32) {
        ++waits;
        system.clock.ticks += 3000;
        return WaitResult::Signalled;
    };
    Run();
    EXPECT_EQ(waits, 1);
}

TEST_F(MainRunEnd, TheLogFileRunsFromTheFirstEventToTheLast) {
    test::TestFolder folder;
    system.folders.localApplicationData = folder.Path();
    Stored([](VardelSettings& settings) { settings.EventLogSave = 1; });
    frame.whileItRuns = [](VardelData&, Vardel&) { PostEvent(EventKind::NewHost, "desk", "10.0.0.5"); };
    Run();
    std::ifstream file(folder.Path("vdl-events.log"));
    Lines lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line.substr(8));
    EXPECT_EQ(lines, (Lines{" | Vardelwatch started successfully |  |  | ", " | New host found | 10.0.0.5 | desk | ",
                             " | Vardelwatch exited |  |  | "}));
}

TEST_F(MainRunEnd, AStoppedWriterIsNotWaitedFor) {
    Stored([](VardelSettings& settings) { settings.EventLogSave = 1; });
    std::chrono::steady_clock::time_point left;
    frame.whileItRuns = [&](VardelData&, Vardel& running) {
        running.StopEventLogWrite();
        running.StartEventLogWrite();  // ends at once: its stop byte stays set
        left = std::chrono::steady_clock::now();
    };
    Run();
    EXPECT_LT(std::chrono::steady_clock::now() - left, std::chrono::milliseconds(1500));
    EXPECT_TRUE(app->ThreadsHaveEnded());
}

TEST_F(MainRunEnd, AThreadThatStillRunsKeepsEverythingOpen) {
    frame.whileItRuns = [this](VardelData&, Vardel&) { threads.neverEnd = true; };
    Run();
    EXPECT_FALSE(app->ThreadsHaveEnded());
    EXPECT_EQ(record.Starting("close ReadIn"), Lines{});
    EXPECT_EQ(record.Starting("close WriteEventMapHandle"), Lines{});
    EXPECT_EQ(record.Starting("close SnifferThread"), Lines{});
    EXPECT_NE(app->snifferThread.handle, nullptr);
    EXPECT_EQ(system.process.apartments, 1);
    EXPECT_EQ(system.captureModules.freed, 0);
    threads.neverEnd = false;  // so that the destructor can collect it
}

// The destructor

TEST_F(MainRunEnd, TheDestructorFreesTheModulesAndLeavesTheNetwork) {
    Run();
    EXPECT_EQ(system.captureModules.freed, 0);
    EXPECT_EQ(system.process.networks, 1);
    EndApp();
    EXPECT_EQ(system.captureModules.freed, 2);
    EXPECT_EQ(system.process.networks, 0);
}

TEST_F(MainRunEnd, TheDestructorOfAnApplicationThatNeverRanFreesNothing) {
    app = std::make_unique<Vardel>(services, frame);
    EndApp();
    EXPECT_EQ(system.captureModules.freed, 0);
    EXPECT_EQ(record.Lines(), Lines{});
}

TEST_F(MainRunEnd, TheDestructorStopsAThreadThatIsStillRecorded) {
    frame.whileItRuns = [this](VardelData&, Vardel&) { threads.neverEnd = true; };
    Run();
    threads.neverEnd = false;
    record.Clear();
    EndApp();
    EXPECT_EQ(record.Starting("wait "), Lines{"wait 15000"});
    EXPECT_TRUE(record.Has("close SnifferThread"));
    EXPECT_TRUE(record.Has("close ReadVendorThread"));
}

TEST_F(MainRunEnd, TheDestructorTracesTheThreadsThatItStops) {
    Stored([](VardelSettings& settings) { settings.EventLogSave = 1; });
    frame.whileItRuns = [this](VardelData&, Vardel&) { threads.neverEnd = true; };
    Run();
    threads.neverEnd = false;
    const test::TracedLines traced;
    EndApp();
    Lines steps = traced.Steps();
    std::erase_if(steps, [](const std::string& step) { return !step.starts_with("Vardel::~Vardel"); });
    EXPECT_EQ(steps, (Lines{"Vardel::~Vardel: exit sniffer thread", "Vardel::~Vardel: exit filesharing thread",
                            "Vardel::~Vardel: exit wmi thread", "Vardel::~Vardel: exit netresource thread",
                            "Vardel::~Vardel: exit vendor thread", "Vardel::~Vardel: exit plugin thread",
                            "Vardel::~Vardel: exit event writer thread"}));
}

TEST_F(MainRunEnd, TheDestructorPassesOverAThreadThatNeverCameToRun) {
    Run();
    app->snifferThread.id = 7;  // without a handle
    record.Clear();
    EndApp();
    EXPECT_EQ(record.Starting("wait "), Lines{});
}

}  // namespace
}  // namespace vardel
