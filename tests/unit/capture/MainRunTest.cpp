#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <limits>
#include <thread>

#include "capture/EventMap.h"
#include "capture/Vardel.h"
#include "foundation/TcTrace.h"
#include "platform/Folders.h"
#include "platform/SettingsStore.h"
#include "platform/TreeSettingsStore.h"
#include "tests/unit/support/AlertRecorder.h"
#include "tests/unit/support/OwnDataFolder.h"
#include "tests/unit/support/RecordingSystem.h"
#include "tests/unit/support/ScriptedCapture.h"
#include "tests/unit/support/TestFolder.h"
#include "tests/unit/support/TestServices.h"
#include "tests/unit/support/TracedLines.h"

namespace vardel {
namespace {

constexpr i64 kWeek = 604800;

// A frame whose user does `whileItRuns` and then leaves.
class ScriptedFrame : public VardelFrame {
  public:
    explicit ScriptedFrame(test::Record& record) : record_(record) {}

    bool CreateApp(VardelData& data, Vardel& app) override {
        record_.Add("create app");
        if (whileItRuns) whileItRuns(data, app);
        record_.Add("app left");
        return true;
    }
    void ShowError(const char* title, const char* text) override {
        record_.Add(std::string("error ") + title + ": " + text);
    }
    std::unique_ptr<NotifyPopup> MakeUpdatePopup() override {
        record_.Add("make update popup");
        return hasPopup ? std::make_unique<test::RecordingPopup>("update", popupCalls) : nullptr;
    }

    std::function<void(VardelData&, Vardel&)> whileItRuns;
    bool hasPopup = true;
    test::Calls popupCalls;

  private:
    test::Record& record_;
};

struct MainRunTest : testing::Test {
    MainRunTest() {
        TheEventMap().SetGuard(nullptr, nullptr);
        TheEventMap().Clear();
        capture.devices = {{.name = "lan0"}};
        capture.onExhausted = [] { std::this_thread::sleep_for(std::chrono::milliseconds(5)); };
        test::InstallCapture(capture.EntryPoints(), system.captureModules);
        threads.functions = {{&SnifferThread, "SnifferThread"},
                             {&FileSharingThread, "FileSharingThread"},
                             {&WMIThread, "WMIThread"},
                             {&CheckNetResThread, "CheckNetResThread"},
                             {&ReadVendorThread, "ReadVendorThread"},
                             {&NotifyPluginThread, "NotifyPluginThread"},
                             {&WriteEventsThread, "WriteEventsThread"}};
        system.strings.texts[33] = "no adapter text";
        system.strings.texts[34] = "no data text";
        system.strings.texts[158] = "no library text";
        frame.whileItRuns = [](VardelData&, Vardel&) {};
    }
    ~MainRunTest() override {
        app.reset();
        threads.CollectLeft();
        TheEventMap().SetGuard(nullptr, nullptr);
        TheEventMap().Clear();
    }

    // The settings as an earlier run left them.
    void Stored(const std::function<void(VardelSettings&)>& change) {
        VardelSettings settings;
        change(settings);
        settings.WriteSettings();
        settings.WriteLastUpdateTime();
    }
    i64 StoredLastUpdateTime() {
        VardelSettings settings;
        settings.ReadSettings();
        return settings.LastUpdateTime;
    }

    u32 Run(const char* commandLine = "") {
        app = std::make_unique<Vardel>(services, frame);
        app->MainInit(nullptr, nullptr, commandLine, 0);
        return app->MainRun();
    }
    void EndApp() { app.reset(); }

    std::vector<i32> EventKinds() {
        std::vector<i32> kinds;
        TheEventMap().ForEach([&](i32, const EventRecord* event) { kinds.push_back(event->kind); });
        return kinds;
    }

    test::Record record;
    test::RecordingEvents events{record};
    test::RecordingThreads threads{record};
    test::TestServices system;
    Services services = system.services.With(events).With(threads);
    test::ScriptedCapture capture;
    TreeSettingsStore store;
    ScopedSettingsStore installed{store};
    ScriptedFrame frame{record};
    std::unique_ptr<Vardel> app;
};

using Lines = std::vector<std::string>;

// The start

TEST_F(MainRunTest, ASecondInstanceLeavesAtOnceAndShowsNothing) {
    system.process.anotherRuns = true;
    EXPECT_EQ(Run(), 0u);
    EXPECT_EQ(system.process.claimed, Lines{"Vardelwatch"});
    EXPECT_EQ(system.process.debugTexts, Lines{"Vardel - MainRun - only one instance can be started... EXIT !"});
    EXPECT_EQ(record.Lines(), Lines{});
    EXPECT_EQ(EventKinds(), std::vector<i32>{});
    EXPECT_EQ(system.process.apartmentsEntered, 0);
}

TEST_F(MainRunTest, TheFirstInstanceComesToItsFrame) {
    EXPECT_EQ(Run(), 0u);
    EXPECT_TRUE(record.Has("create app"));
    EXPECT_TRUE(app->ThreadsHaveEnded());
    EXPECT_TRUE(app->captureLibraryReady);
}

TEST_F(MainRunTest, PostsStartFirstAndExitLast) {
    frame.whileItRuns = [](VardelData&, Vardel&) { PostEvent(EventKind::NewHost, "desk", "10.0.0.5"); };
    Run();
    EXPECT_EQ(EventKinds(), (std::vector<i32>{1, 5, 2}));
}

TEST_F(MainRunTest, TheFirstEventIsPostedBeforeItsGuardExists) {
    events.refused = {"ReadInARPMap"};  // ends the run right after the guard was made
    Run();
    EXPECT_EQ(EventKinds(), std::vector<i32>{1});
    // Posting through the guard would have signalled it.
    EXPECT_FALSE(record.Has("set WriteEventMapHandle"));
}

u32 GermanInfo(char* name, int, u32* languageId) {
    std::strcpy(name, "Deutsch");
    *languageId = 7;
    return 200;
}

TEST_F(MainRunTest, TextsComeFromTheChosenLanguage) {
    system.folders.programPath = "/opt/watch/vardelwatch";
    system.modules.folders["/opt/watch/Language"] = {{"german.lang", false}};
    system.modules.modules.insert("/opt/watch/Language/german.lang");
    system.modules.entryPoints["/opt/watch/Language/german.lang!GetModuleLanguageInfo"] =
        reinterpret_cast<void*>(&GermanInfo);
    Stored([](VardelSettings& settings) { settings.Language = "Deutsch"; });
    frame.whileItRuns = [this](VardelData& data, Vardel& running) {
        EXPECT_EQ(system.modules.PathOf(data.resourceInstance), "/opt/watch/Language/german.lang");
        EXPECT_EQ(running.arpImpl.resourceInstance, data.resourceInstance);
        EXPECT_EQ(running.ipImpl.resourceInstance, data.resourceInstance);
        EXPECT_EQ(data.programInstance, running.GetInstance());
        EXPECT_EQ(data.languageId, 7u);
    };
    Run();
    EXPECT_TRUE(record.Has("create app"));
}

TEST_F(MainRunTest, WithoutALanguageTheProgramHasTheTexts) {
    Stored([](VardelSettings& settings) { settings.Language = "Deutsch"; });
    frame.whileItRuns = [](VardelData& data, Vardel& running) {
        EXPECT_EQ(data.resourceInstance, running.GetInstance());
        EXPECT_EQ(data.languageId, 0u);
    };
    Run();
    EXPECT_TRUE(record.Has("create app"));
}

TEST_F(MainRunTest, CreatesTheGuardThenTheFencesThenTheThreads) {
    Run();
    const Lines created = record.Starting("create ");
    EXPECT_EQ((Lines{created.begin(), created.begin() + 10}),
              (Lines{"create WriteEventMapHandle manual signalled", "create ReadInARPMap manual signalled",
                     "create ReadInMACSpoofList manual signalled", "create ReadInNewEntryList manual signalled",
                     "create ReadShareList manual signalled", "create ReadWMIAccessList manual signalled",
                     "create ReadNetResList manual signalled", "create ReadSysLogList manual signalled",
                     "create ReadNotifyList manual signalled", "create ReadVendorMap manual signalled"}));
    EXPECT_LT(record.Position("create ReadVendorMap manual signalled"), record.Position("start SnifferThread"));
    EXPECT_EQ(record.Starting("start "), (Lines{"start SnifferThread", "start FileSharingThread", "start WMIThread",
                                                "start CheckNetResThread", "start ReadVendorThread",
                                                "start NotifyPluginThread"}));
    EXPECT_LT(record.Position("start NotifyPluginThread"), record.Position("create app"));
}

TEST_F(MainRunTest, StartsTheLogWriterLastAndOnlyIfEventsAreSaved) {
    Stored([](VardelSettings& settings) { settings.EventLogSave = 1; });
    Run();
    EXPECT_EQ(record.Starting("start ").back(), "start WriteEventsThread");
    EXPECT_EQ(record.Starting("start ").size(), 7u);
    EXPECT_LT(record.Position("start WriteEventsThread"), record.Position("create app"));
}

TEST_F(MainRunTest, TheThreadsFindTheirBlocksFilled) {
    frame.whileItRuns = [this](VardelData& data, Vardel& running) {
        for (const ThreadParams* block : {&running.workerParams, &running.shareParams, &running.eventWriterParams}) {
            EXPECT_EQ(block->arp, &running.arpImpl);
            EXPECT_EQ(block->ip, &running.ipImpl);
            EXPECT_EQ(block->data, &data);
            EXPECT_EQ(block->app, &running);
            EXPECT_EQ(block->stop, 0);
            EXPECT_NE(block->stopRequested, nullptr);
        }
        EXPECT_EQ(data.app, &running);
        EXPECT_STREQ(data.packetLibraryVersion, "scripted 1.0");
    };
    Run();
    EXPECT_TRUE(record.Has("create app"));
}

TEST_F(MainRunTest, TakesCaptureSwitchAndInterfaceFromTheSettings) {
    Stored([](VardelSettings& settings) {
        settings.AutoCapture = 1;
        settings.Interface = "lan0";
    });
    frame.whileItRuns = [](VardelData& data, Vardel&) {
        EXPECT_EQ(data.capturing, 1);
        EXPECT_STREQ(data.interfaceName, "lan0");
        EXPECT_EQ(data.adapterIndex, 1u);
    };
    Run();
    EXPECT_TRUE(record.Has("create app"));
}

TEST_F(MainRunTest, FlushesTheArpCacheOnlyIfTheSettingsSaySo) {
    Run();
    EXPECT_EQ(system.arpCache.flushes, 0);
    EndApp();
    Stored([](VardelSettings& settings) { settings.DeleteARPCache = 1; });
    Run();
    EXPECT_EQ(system.arpCache.flushes, 1);
}

// Tracing

struct MainRunTrace : MainRunTest {
    ~MainRunTrace() override {
        TcTrace::SetupTracing(0, 0);
        std::remove(TracePath().c_str());
    }

    static std::string TracePath() {
        return SystemFolders().LocalApplicationData() + SystemFolders().Separator() + kTraceFileName;
    }
    static std::string Traced() {
        std::ifstream file(TracePath(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    test::OwnDataFolder folder;
};

TEST_F(MainRunTrace, IsOffWithoutOptions) {
    Run();
    EXPECT_FALSE(TcTrace::IsOn());
}

TEST_F(MainRunTrace, FileAloneTurnsNothingOn) {
    Run("-file");
    EXPECT_FALSE(TcTrace::IsOn());
    EXPECT_FALSE(std::ifstream(TracePath()).is_open());
}

TEST_F(MainRunTrace, DebugAndFileTraceTheRunToTheFile) {
    Run("-debug -file");
    EXPECT_TRUE(TcTrace::IsOn());
    const std::string traced = Traced();
    std::size_t last = 0;
    for (const char* step : {"MainRun: Create SnifferThread - ID: ", "MainRun: Create app", "MainRun: App goes home",
                             "MainRun: Wait for exiting threads", "MainRun: after WaitForMultipleObjects"}) {
        const std::size_t at = traced.find(step);
        ASSERT_NE(at, std::string::npos) << step;
        EXPECT_GE(at, last) << step;
        last = at;
    }
}

TEST_F(MainRunTrace, OptionsAreFoundAnywhereInTheLine) {
    Run("something-filething and x-debugger");
    EXPECT_TRUE(TcTrace::IsOn());
    EXPECT_NE(Traced().find("Create app"), std::string::npos);
}

// Failures of the start

struct StartFailure {
    const char* name;
    const char* missing;  // a module, an entry point, "adapter" or a fence
    const char* message;
    bool leavesGuardOpen;
};

constexpr StartFailure kStartFailures[] = {
    {"CaptureLibraryMissing", "wpcap.dll", "no library text", false},
    {"PacketLibraryMissing", "packet.dll", "no library text", false},
    {"EntryPointMissing", "wpcap.dll!pcap_datalink", "no library text", false},
    {"NoAdapter", "adapter", "no adapter text", false},
    {"NoArpMapFence", "ReadInARPMap", "no data text", true},
    {"NoSpoofFence", "ReadInMACSpoofList", "no data text", true},
    {"NoNewEntryFence", "ReadInNewEntryList", "no data text", true},
    {"NoShareFence", "ReadShareList", "no data text", true},
    {"NoSysLogFence", "ReadSysLogList", "no data text", true},
    {"NoNotifyFence", "ReadNotifyList", "no data text", true},
    {"NoVendorFence", "ReadVendorMap", "no data text", true},
};

// Names a parametrised case by its row.
struct RowName {
    template <class Info>
    std::string operator()(const Info& row) const {
        return row.param.name;
    }
};

struct MainRunFailure : MainRunTest, testing::WithParamInterface<StartFailure> {
    void TakeAway(const std::string& missing) {
        if (missing == "adapter") capture.devices.clear();
        system.captureModules.modules.erase(missing);
        system.captureModules.entryPoints.erase(missing);
        events.refused = {missing};
    }
};

TEST_P(MainRunFailure, ShowsItsMessageAndStartsNoThread) {
    TakeAway(GetParam().missing);
    EXPECT_EQ(Run(), 0u);
    EXPECT_EQ(record.Starting("error "), Lines{std::string("error Vardelwatch - Error: ") + GetParam().message});
    EXPECT_EQ(record.Starting("start "), Lines{});
    EXPECT_FALSE(record.Has("create app"));
    EXPECT_EQ(EventKinds(), std::vector<i32>{1});
    EXPECT_EQ(record.Has("close WriteEventMapHandle"), !GetParam().leavesGuardOpen);
    EXPECT_EQ(system.process.apartments, 0);
}

INSTANTIATE_TEST_SUITE_P(Causes, MainRunFailure, testing::ValuesIn(kStartFailures), RowName());

TEST_F(MainRunTest, RunsWithoutTheFencesOfTheInspectionQueues) {
    events.refused = {"ReadWMIAccessList", "ReadNetResList"};
    Run();
    EXPECT_TRUE(record.Has("create app"));
    EXPECT_EQ(record.Starting("error "), Lines{});
}

TEST_F(MainRunTest, RunsWithoutAnEventGuard) {
    events.refused = {"WriteEventMapHandle"};
    Run();
    EXPECT_EQ(EventKinds(), (std::vector<i32>{1, 2}));
}

// The update check

TEST(UpdateCheckMoment, IsDueFromSevenDaysOn) {
    EXPECT_FALSE(IsUpdateCheckDue(1'700'000'000, 1'700'000'000));
    EXPECT_FALSE(IsUpdateCheckDue(1'700'000'000, 1'700'000'000 - kWeek + 1));
    EXPECT_TRUE(IsUpdateCheckDue(1'700'000'000, 1'700'000'000 - kWeek));
    EXPECT_TRUE(IsUpdateCheckDue(1'700'000'000, 1'700'000'000 - kWeek - 1));
    EXPECT_TRUE(IsUpdateCheckDue(1'700'000'000, 0));
}

TEST(UpdateCheckMoment, AMomentInTheFutureIsNotDue) {
    EXPECT_FALSE(IsUpdateCheckDue(1'700'000'000, 1'700'000'001));
    EXPECT_FALSE(IsUpdateCheckDue(1'700'000'000, 1'700'000'000 + 10 * kWeek));
    EXPECT_FALSE(IsUpdateCheckDue(0, std::numeric_limits<i64>::max()));
}

TEST(UpdateCheckMoment, AnyStoredMomentIsTaken) {
    // The difference leaves the range of 64 bits and comes out negative.
    EXPECT_FALSE(IsUpdateCheckDue(1'700'000'000, std::numeric_limits<i64>::min()));
    EXPECT_TRUE(IsUpdateCheckDue(-1, std::numeric_limits<i64>::min()));
}

struct UpdateCheckCase {
    const char* name;
    u8 isOn;
    i64 age;  // how long the last check lies back, seconds
    bool isNoted;
};
struct MainRunUpdateCheck : MainRunTest, testing::WithParamInterface<UpdateCheckCase> {};

TEST_P(MainRunUpdateCheck, NotesItsMomentWhenDue) {
    const i64 before = system.clock.now - GetParam().age;
    Stored([&](VardelSettings& settings) {
        settings.UpdateCheck = GetParam().isOn;
        settings.LastUpdateTime = before;
    });
    Run();
    if (GetParam().isOn) {
        EXPECT_EQ(StoredLastUpdateTime(), GetParam().isNoted ? system.clock.now : before);
        EXPECT_EQ(app->data.settings.LastUpdateTime, GetParam().isNoted ? system.clock.now : before);
        return;
    }
    // Switched off, the stored moment isn't even read; on again it is still the old one.
    Stored([](VardelSettings& settings) { settings.UpdateCheck = 1; });
    EXPECT_EQ(app->data.settings.LastUpdateTime, 0);
}

INSTANTIATE_TEST_SUITE_P(Moments, MainRunUpdateCheck,
                         testing::Values(UpdateCheckCase{"SevenDaysOld", 1, kWeek, true},
                                         UpdateCheckCase{"ASecondLessThanSevenDaysOld", 1, kWeek - 1, false},
                                         UpdateCheckCase{"InTheFuture", 1, -60, false},
                                         UpdateCheckCase{"SwitchedOff", 0, 10 * kWeek, false}),
                         RowName());

struct MainRunUpdates : MainRunTest {
    MainRunUpdates() {
        system.strings.texts[218] = "New updates are available!";
        Stored([this](VardelSettings& settings) {
            settings.UpdateCheck = 1;
            settings.LastUpdateTime = system.clock.now - kWeek;
        });
    }
    void Offers(const std::string& file, const std::string& text) {
        system.http.documents["https://update.vardelwatch.example/download/versions/" + file] = text;
    }
    std::vector<std::string> Agents() const {
        std::vector<std::string> agents;
        for (const auto& fetch : system.http.fetches) agents.push_back(fetch.agent);
        return agents;
    }
};

TEST_F(MainRunUpdates, BothChecksRunBeforeAnythingElseIsMade) {
    Offers("vardelwatch.version", "9.0.0.0");
    bool madeEarlier = false;
    system.http.onFetch = [&] { madeEarlier |= record.Has("create WriteEventMapHandle manual signalled"); };
    Run();
    EXPECT_EQ(Agents(), (Lines{"Vardelwatch - UpdateCheck", "Vardelwatch - UpdateMACCheck"}));
    EXPECT_FALSE(madeEarlier);
}

TEST_F(MainRunUpdates, AFailedCheckIsNotTriedAgainForAWeekAndTellsNothing) {
    Run();
    EXPECT_EQ(Agents().size(), 2u);
    EXPECT_EQ(StoredLastUpdateTime(), system.clock.now);
    EXPECT_FALSE(record.Has("make update popup"));
    EndApp();
    Run();
    EXPECT_EQ(Agents().size(), 2u);
}

TEST_F(MainRunUpdates, ANewerProgramOrListIsToldInAPopup) {
    const Lines notice{"update time 5000",
                       "update ramp",
                       "update at the edge",
                       "update colors (220,220,220) (160,160,160) (50,105,0) (140,140,140)",
                       "update font 10 700",
                       "update show New updates are available!"};
    const std::pair<const char*, const char*> offers[] = {{"vardelwatch.version", "9.0.0.0"}, {"arplist.version", "99"}};
    for (const auto& [file, text] : offers) {
        system.http.documents.clear();
        Offers(file, text);
        frame.popupCalls.clear();
        Stored([](VardelSettings& settings) { settings.UpdateCheck = 1; });
        Run();
        EXPECT_EQ(frame.popupCalls, notice) << file;
        EndApp();
    }
}

TEST_F(MainRunUpdates, WithoutAPopupTheRunGoesOn) {
    frame.hasPopup = false;
    Offers("arplist.version", "99");
    Run();
    EXPECT_TRUE(record.Has("create app"));
}

// The end

TEST_F(MainRunTest, StopsTheBlocksInTheirOrderAndThenWaits) {
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

TEST_F(MainRunTest, ClosesThreadsThenFencesThenTheGuard) {
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

TEST_F(MainRunTest, LeavesTheApartmentItEntered) {
    Run();
    EXPECT_EQ(system.process.apartmentsEntered, 1);
    EXPECT_EQ(system.process.apartments, 0);
}

TEST_F(MainRunTest, AnIdleRunEndsWithinASecondAndAHalf) {
    Stored([](VardelSettings& settings) { settings.EventLogSave = 1; });
    std::chrono::steady_clock::time_point left;
    frame.whileItRuns = [&](VardelData&, Vardel&) { left = std::chrono::steady_clock::now(); };
    Run();
    EXPECT_LT(std::chrono::steady_clock::now() - left, std::chrono::milliseconds(1500));
}

TEST_F(MainRunTest, TheWriterHasWrittenAllEventsWhenItIsStopped) {
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

TEST_F(MainRunTest, AWriterThatFallsBehindIsGivenThreeSecondsInAll) {
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

TEST_F(MainRunTest, BatchesThatComeTooLateAreWaitedForNoMore) {
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

TEST_F(MainRunTest, TheLogFileRunsFromTheFirstEventToTheLast) {
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

TEST_F(MainRunTest, AStoppedWriterIsNotWaitedFor) {
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

TEST_F(MainRunTest, AThreadThatStillRunsKeepsEverythingOpen) {
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

TEST_F(MainRunTest, TheDestructorFreesTheModulesAndLeavesTheNetwork) {
    Run();
    EXPECT_EQ(system.captureModules.freed, 0);
    EXPECT_EQ(system.process.networks, 1);
    EndApp();
    EXPECT_EQ(system.captureModules.freed, 2);
    EXPECT_EQ(system.process.networks, 0);
}

TEST_F(MainRunTest, TheDestructorOfAnApplicationThatNeverRanFreesNothing) {
    app = std::make_unique<Vardel>(services, frame);
    EndApp();
    EXPECT_EQ(system.captureModules.freed, 0);
    EXPECT_EQ(record.Lines(), Lines{});
}

TEST_F(MainRunTest, TheDestructorStopsAThreadThatIsStillRecorded) {
    frame.whileItRuns = [this](VardelData&, Vardel&) { threads.neverEnd = true; };
    Run();
    threads.neverEnd = false;
    record.Clear();
    EndApp();
    EXPECT_EQ(record.Starting("wait "), Lines{"wait 15000"});
    EXPECT_TRUE(record.Has("close SnifferThread"));
    EXPECT_TRUE(record.Has("close ReadVendorThread"));
}

TEST_F(MainRunTest, TheDestructorTracesTheThreadsThatItStops) {
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

TEST_F(MainRunTest, TheDestructorPassesOverAThreadThatNeverCameToRun) {
    Run();
    app->snifferThread.id = 7;  // without a handle
    record.Clear();
    EndApp();
    EXPECT_EQ(record.Starting("wait "), Lines{});
}

}  // namespace
}  // namespace vardel
