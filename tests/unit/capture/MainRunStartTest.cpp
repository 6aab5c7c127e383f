#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <fstream>

#include "foundation/TcTrace.h"
#include "platform/Folders.h"
#include "tests/unit/support/MainRunFixture.h"
#include "tests/unit/support/OwnDataFolder.h"

namespace vardel {
namespace {

struct MainRunStart : test::MainRunFixture {};

TEST_F(MainRunStart, ASecondInstanceLeavesAtOnceAndShowsNothing) {
    system.process.anotherRuns = true;
    EXPECT_EQ(Run(), 0u);
    EXPECT_EQ(system.process.claimed, Lines{"Vardelwatch"});
    EXPECT_EQ(system.process.debugTexts, Lines{"Vardel - MainRun - only one instance can be started... EXIT !"});
    EXPECT_EQ(record.Lines(), Lines{});
    EXPECT_EQ(EventKinds(), std::vector<i32>{});
    EXPECT_EQ(system.process.apartmentsEntered, 0);
}

TEST_F(MainRunStart, TheFirstInstanceComesToItsFrame) {
    EXPECT_EQ(Run(), 0u);
    EXPECT_TRUE(record.Has("create app"));
    EXPECT_TRUE(app->ThreadsHaveEnded());
    EXPECT_TRUE(app->captureLibraryReady);
}

TEST_F(MainRunStart, PostsStartFirstAndExitLast) {
    frame.whileItRuns = [](VardelData&, Vardel&) { PostEvent(EventKind::NewHost, "desk", "10.0.0.5"); };
    Run();
    EXPECT_EQ(EventKinds(), (std::vector<i32>{1, 5, 2}));
}

TEST_F(MainRunStart, TheFirstEventIsPostedBeforeItsGuardExists) {
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

TEST_F(MainRunStart, TextsComeFromTheChosenLanguage) {
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

TEST_F(MainRunStart, WithoutALanguageTheProgramHasTheTexts) {
    Stored([](VardelSettings& settings) { settings.Language = "Deutsch"; });
    frame.whileItRuns = [](VardelData& data, Vardel& running) {
        EXPECT_EQ(data.resourceInstance, running.GetInstance());
        EXPECT_EQ(data.languageId, 0u);
    };
    Run();
    EXPECT_TRUE(record.Has("create app"));
}

TEST_F(MainRunStart, CreatesTheGuardThenTheFencesThenTheThreads) {
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

TEST_F(MainRunStart, StartsTheLogWriterLastAndOnlyIfEventsAreSaved) {
    Stored([](VardelSettings& settings) { settings.EventLogSave = 1; });
    Run();
    EXPECT_EQ(record.Starting("start ").back(), "start WriteEventsThread");
    EXPECT_EQ(record.Starting("start ").size(), 7u);
    EXPECT_LT(record.Position("start WriteEventsThread"), record.Position("create app"));
}

TEST_F(MainRunStart, TheThreadsFindTheirBlocksFilled) {
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

TEST_F(MainRunStart, TakesCaptureSwitchAndInterfaceFromTheSettings) {
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

TEST_F(MainRunStart, FlushesTheArpCacheOnlyIfTheSettingsSaySo) {
    Run();
    EXPECT_EQ(system.arpCache.flushes, 0);
    EndApp();
    Stored([](VardelSettings& settings) { settings.DeleteARPCache = 1; });
    Run();
    EXPECT_EQ(system.arpCache.flushes, 1);
}

// Tracing

struct MainRunTrace : MainRunStart {
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

struct MainRunFailure : MainRunStart, testing::WithParamInterface<StartFailure> {
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

INSTANTIATE_TEST_SUITE_P(Causes, MainRunFailure, testing::ValuesIn(kStartFailures), test::RowName());

TEST_F(MainRunStart, RunsWithoutTheFencesOfTheInspectionQueues) {
    events.refused = {"ReadWMIAccessList", "ReadNetResList"};
    Run();
    EXPECT_TRUE(record.Has("create app"));
    EXPECT_EQ(record.Starting("error "), Lines{});
}

TEST_F(MainRunStart, RunsWithoutAnEventGuard) {
    events.refused = {"WriteEventMapHandle"};
    Run();
    EXPECT_EQ(EventKinds(), (std::vector<i32>{1, 2}));
}

}  // namespace
}  // namespace vardel
