#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <set>
#include <thread>

#include "capture/EventMap.h"
#include "capture/Vardel.h"
#include "tests/unit/support/Gate.h"
#include "tests/unit/support/NoFrame.h"
#include "tests/unit/support/TestFolder.h"
#include "tests/unit/support/TestServices.h"
#include "tests/unit/support/TracedLines.h"
#include "tests/unit/support/WorkerFixture.h"

namespace vardel {

namespace {

// Real threads, but a wait for their end can be made to give up at once.
class ImpatientThreads : public Threads {
  public:
    bool Start(ThreadFunction function, void* parameter, ThreadHandle& handle, u32& id) override {
        return !none && SystemThreads().Start(function, parameter, handle, id);
    }
    bool WaitAll(std::span<const ThreadHandle> handles, u32 timeoutMs) override {
        lastTimeoutMs = timeoutMs;
        return SystemThreads().WaitAll(handles, impatient ? 0 : timeoutMs);
    }
    void Close(ThreadHandle handle) override { SystemThreads().Close(handle); }
    bool impatient = false;
    bool none = false;
    u32 lastTimeoutMs = 0;
};

// An application whose log writer runs on a folder of the test's own.
class EventWriter : public testing::Test {
  protected:
    EventWriter() {
        TheEventMap().Clear();
        system.folders.localApplicationData = folder.Path();
        system.strings.onLoad = [this](u32) { insideBatch.Pass(); };
        params.data = &app.data;
        params.app = &app;
        params.stopRequested = events.Create(nullptr, true, false);
    }
    ~EventWriter() override {
        insideBatch.Open();
        threads.impatient = false;
        app.StopEventLogWrite();
        EXPECT_TRUE(SystemThreads().WaitAll(app.abandonedThreads, 20000));
        for (ThreadHandle handle : app.abandonedThreads) SystemThreads().Close(handle);
        app.abandonedThreads.clear();
        TheEventMap().SetGuard(nullptr, nullptr);
        events.Close(guard);
        events.Close(params.stopRequested);
        params.stopRequested = nullptr;
        TheEventMap().Clear();
    }

    void MakeGuard() {
        guard = events.Create("WriteEventMapHandle", true, true);
        TheEventMap().SetGuard(&events, guard);
    }
    bool GuardIsFree() { return events.Wait(guard, 0) == WaitResult::Signalled; }
    static void Post(const std::string& text) {
        PostEvent(EventKind::NewHost, nullptr, nullptr, text.c_str());
    }

    // The writer has taken `count` events; its pause is cut short.
    bool Written(u32 count) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (app.eventsWritten < count && std::chrono::steady_clock::now() < deadline) {
            events.Set(params.stopRequested);
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            if (!params.stop) events.Reset(params.stopRequested);
        }
        return app.eventsWritten >= count;
    }
    bool AwaitEnd() { return SystemThreads().WaitAll({&app.writeEventsThread.handle, 1}, 20000); }

    // The texts of the lines in the file.
    std::vector<std::string> Texts() {
        std::vector<std::string> texts;
        std::ifstream file(folder.Path("vdl-events.log"));
        for (std::string line; std::getline(file, line);) texts.push_back(line.substr(line.rfind(" | ") + 3));
        return texts;
    }
    using List = std::vector<std::string>;

    test::TestFolder folder;
    ImpatientThreads threads;
    test::TestServices system{threads};
    Events& events = system.services.events;
    test::Gate insideBatch;
    test::NoFrame frame;
    Vardel app{system.services, frame};
    ThreadParams& params = app.eventWriterParams;
    EventHandle guard = nullptr;
};

TEST(WriteEventsThread, EndsWithoutParametersOrData) {
    WriteEventsThread(nullptr);
    ThreadParams noData;
    WriteEventsThread(&noData);
    EXPECT_EQ(noData.stop, 0);
}

struct PausingEventWriter : test::WorkerFixture {};

TEST_F(PausingEventWriter, PausesASecondFromTheFirstRoundOn) {
    test::TestFolder folder;
    system.folders.localApplicationData = folder.Path();
    StopAfter(3);
    WriteEventsThread(&params);
    EXPECT_EQ(events.sleeps, (std::vector<u32>{1000, 1000, 1000}));
    ASSERT_EQ(events.created.size(), 1u);
    EXPECT_EQ(events.created[0].name, "DoNothingWriteEvents");
    EXPECT_FALSE(events.created[0].manualReset);
    EXPECT_FALSE(events.created[0].signalled) << "the first pause would end at once";
    EXPECT_EQ(events.open, 0);
}

TEST_F(EventWriter, WritesTheFirstEventThoughItWasPostedBeforeTheGuard) {
    PostEvent(EventKind::ProgramStarted);
    MakeGuard();
    ASSERT_TRUE(app.StartEventLogWrite());
    ASSERT_TRUE(Written(1));
    std::string line = folder.Read("vdl-events.log");
    EXPECT_EQ(line.substr(8, line.find_first_of("\r\n") - 8), " | Vardelwatch started successfully |  |  | ");
}

TEST_F(EventWriter, CreatesTheFileAtItsStart) {
    MakeGuard();
    ASSERT_TRUE(app.StartEventLogWrite());
    app.StopEventLogWrite();
    EXPECT_TRUE(std::filesystem::exists(folder.Path("vdl-events.log")));
    EXPECT_EQ(folder.Read("vdl-events.log"), "");
}

TEST_F(EventWriter, StartedLateWritesTheWholeRunOnce) {
    MakeGuard();
    for (const char* text : {"a", "b", "c"}) Post(text);
    ASSERT_TRUE(app.StartEventLogWrite());
    ASSERT_TRUE(Written(3));
    EXPECT_EQ(Texts(), (List{"a", "b", "c"}));
}

TEST_F(EventWriter, EventBetweenBatchesIsWrittenByTheNextAndNoneTwice) {
    MakeGuard();
    Post("a");
    ASSERT_TRUE(app.StartEventLogWrite());
    ASSERT_TRUE(Written(1));
    Post("b");
    Post("c");
    ASSERT_TRUE(Written(3));
    Post("d");
    ASSERT_TRUE(Written(4));
    EXPECT_EQ(Texts(), (List{"a", "b", "c", "d"}));
}

TEST_F(EventWriter, AppendsToTheLogOfEarlierRuns) {
    MakeGuard();
    folder.Write("vdl-events.log", "11:11:11 | Vardelwatch exited |  |  | old\n");
    Post("new");
    ASSERT_TRUE(app.StartEventLogWrite());
    ASSERT_TRUE(Written(1));
    EXPECT_EQ(Texts(), (List{"old", "new"}));
}

TEST_F(EventWriter, SwitchedOffAndOnAgainWritesNothingMore) {
    MakeGuard();
    Post("a");
    ASSERT_TRUE(app.StartEventLogWrite());
    ASSERT_TRUE(Written(1));
    EXPECT_TRUE(app.StopEventLogWrite());
    EXPECT_FALSE(app.IsEventWriterRunning());
    Post("b");
    EXPECT_TRUE(app.StartEventLogWrite());
    ASSERT_TRUE(AwaitEnd());
    EXPECT_TRUE(app.IsEventWriterRunning());  // of the ended thread, as long as it is recorded
    EXPECT_EQ(Texts(), (List{"a"}));
    EXPECT_EQ(app.eventsWritten, 0u);
}

TEST_F(EventWriter, StopWithoutAWriterIsFalse) {
    EXPECT_FALSE(app.IsEventWriterRunning());
    EXPECT_FALSE(app.StopEventLogWrite());
    EXPECT_EQ(params.stop, 0);
}

TEST_F(EventWriter, StopWaitsThirtySecondsAndForgetsTheThread) {
    MakeGuard();
    ASSERT_TRUE(app.StartEventLogWrite());
    EXPECT_TRUE(app.IsEventWriterRunning());
    EXPECT_TRUE(app.StopEventLogWrite());
    EXPECT_EQ(threads.lastTimeoutMs, 30000u);
    EXPECT_EQ(params.stop, 1);
    EXPECT_EQ(app.writeEventsThread.handle, nullptr);
    EXPECT_EQ(app.writeEventsThread.id, 0u);
    EXPECT_TRUE(app.abandonedThreads.empty());
}

TEST_F(EventWriter, WriterThatHangsIsLeftToItself) {
    MakeGuard();
    Post("a");
    insideBatch.Arm();
    ASSERT_TRUE(app.StartEventLogWrite());
    ASSERT_TRUE(insideBatch.AwaitHeld());
    threads.impatient = true;
    EXPECT_TRUE(app.StopEventLogWrite());
    EXPECT_FALSE(app.IsEventWriterRunning());
    ASSERT_EQ(app.abandonedThreads.size(), 1u);
    insideBatch.Open();
    EXPECT_TRUE(SystemThreads().WaitAll(app.abandonedThreads, 20000));
}

TEST_F(EventWriter, StartStopsARecordedWriterFirst) {
    MakeGuard();
    Post("a");
    ASSERT_TRUE(app.StartEventLogWrite());
    ASSERT_TRUE(Written(1));
    EXPECT_TRUE(app.StartEventLogWrite());
    EXPECT_EQ(params.stop, 1);
    ASSERT_TRUE(AwaitEnd());
    EXPECT_EQ(Texts(), (List{"a"}));
}

TEST_F(EventWriter, StartWithoutAThreadIsFalse) {
    threads.none = true;
    EXPECT_FALSE(app.StartEventLogWrite());
    EXPECT_FALSE(app.IsEventWriterRunning());
}

TEST_F(EventWriter, NoPassFollowsTheStopByte) {
    MakeGuard();
    Post("a");
    insideBatch.Arm();
    ASSERT_TRUE(app.StartEventLogWrite());
    ASSERT_TRUE(insideBatch.AwaitHeld());
    RequestStop(params, events);
    insideBatch.Open();
    Post("b");  // comes in when the batch is done
    ASSERT_TRUE(AwaitEnd());
    EXPECT_EQ(Texts(), (List{"a"}));
}

TEST_F(EventWriter, HoldsTheGuardForTheLengthOfABatch) {
    MakeGuard();
    Post("a");
    insideBatch.Arm();
    ASSERT_TRUE(app.StartEventLogWrite());
    ASSERT_TRUE(insideBatch.AwaitHeld());
    EXPECT_FALSE(GuardIsFree());
    insideBatch.Open();
    ASSERT_TRUE(Written(1));
    EXPECT_TRUE(GuardIsFree());
}

TEST_F(EventWriter, WaitsForTheGuard) {
    MakeGuard();
    Post("a");
    events.Reset(guard);
    ASSERT_TRUE(app.StartEventLogWrite());
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ(app.eventsWritten, 0u);
    events.Set(guard);
    EXPECT_TRUE(Written(1));
}

TEST_F(EventWriter, DroppedLinesAreNeverRetried) {
    MakeGuard();
    app.data.settings.MaxEventLogFileSize = 1;
    folder.Write("vdl-events.log", std::string(1020, 'o') + "\n");
    Post("a");
    Post("b");
    ASSERT_TRUE(app.StartEventLogWrite());
    ASSERT_TRUE(Written(2));
    app.data.settings.MaxEventLogFileSize = 0;
    Post("c");
    ASSERT_TRUE(Written(3));
    const List texts = Texts();
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[1], "c");
}

TEST_F(EventWriter, LinesOfABatchThatCouldNotOpenTheFileAreLost) {
    MakeGuard();
    std::filesystem::create_directories(folder.Path("vdl-events.log"));
    Post("a");
    ASSERT_TRUE(app.StartEventLogWrite());
    ASSERT_TRUE(Written(1));
    std::filesystem::remove(folder.Path("vdl-events.log"));
    Post("b");
    ASSERT_TRUE(Written(2));
    EXPECT_EQ(Texts(), (List{"b"}));
}

TEST_F(EventWriter, WithoutAFolderNothingIsWritten) {
    MakeGuard();
    system.folders.localApplicationData = "";
    Post("a");
    ASSERT_TRUE(app.StartEventLogWrite());
    ASSERT_TRUE(Written(1));
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST_F(EventWriter, TracesItsStart) {
    MakeGuard();
    test::TracedLines traced;
    WriteEventsThread(nullptr);
    ASSERT_TRUE(app.StartEventLogWrite());
    EXPECT_EQ(traced.Steps(), (List{"Vardel::WriteEventsThread: No params - Exit...",
                                    "Vardel::StartEventLogWrite: Create WriteEventsThread - ID: " +
                                        std::to_string(app.writeEventsThread.id)}));
}

TEST_F(EventWriter, WritesEachEventOnceWhileManyThreadsPost) {
    constexpr int kPosters = 4, kEach = 250;
    MakeGuard();
    ASSERT_TRUE(app.StartEventLogWrite());
    std::vector<std::thread> posters;
    for (int p = 0; p < kPosters; ++p) {
        posters.emplace_back([p] {
            for (int i = 0; i < kEach; ++i) Post(std::to_string(p * kEach + i));
        });
    }
    for (std::thread& poster : posters) poster.join();
    EXPECT_EQ(TheEventMap().Count(), static_cast<u32>(kPosters * kEach));
    ASSERT_TRUE(Written(kPosters * kEach));
    const List texts = Texts();
    EXPECT_EQ(texts.size(), static_cast<std::size_t>(kPosters * kEach));
    EXPECT_EQ(std::set<std::string>(texts.begin(), texts.end()).size(), texts.size());
}

}  // namespace

}  // namespace vardel
