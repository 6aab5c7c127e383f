#include "capture/ReadVendorThread.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>

#include "capture/Vardel.h"
#include "tests/unit/support/Gate.h"
#include "tests/unit/support/NoFrame.h"
#include "tests/unit/support/TestFolder.h"
#include "tests/unit/support/TestServices.h"
#include "tests/unit/support/TracedLines.h"

namespace vardel {

namespace {

class NoMoreThreads : public Threads {
  public:
    bool Start(ThreadFunction, void*, ThreadHandle&, u32&) override { return false; }
    bool WaitAll(std::span<const ThreadHandle> handles, u32 timeoutMs) override {
        return SystemThreads().WaitAll(handles, timeoutMs);
    }
    void Close(ThreadHandle handle) override { SystemThreads().Close(handle); }
};

// A vendor list in two places, some hosts, and the worker that joins them.
class VendorRuns : public testing::Test {
  protected:
    VendorRuns() {
        system.folders.localApplicationData = folder.Path("user");
        system.folders.programPath = folder.Path("program/vardelwatch");
        system.folders.onLookUp = [this] { beforeReading.Pass(); };
        system.strings.onLoad = [this](u32 id) {
            if (id == 91) insideBackfill.Pass();
        };
        params.data = &data;
        params.stopRequested = events.Create(nullptr, true, false);
        data.fences.CreateAll();
    }
    ~VendorRuns() override {
        beforeReading.Open();
        insideBackfill.Open();
        RequestStop(params, events);
        AwaitEnd();
        AwaitAbandoned();
        events.Close(params.stopRequested);
    }

    void UserList(const std::string& text) { folder.Write("user/Vardelwatch/ethercodes.dat", text); }
    void ProgramList(const std::string& text) { folder.Write("program/ethercodes.dat", text); }

    HostRecord* Host(const char* ip, const char* mac) {
        HostRecord* host = data.Adopt(std::make_unique<HostRecord>());
        host->ip = ip;
        host->mac = mac;
        host->vendor = "Unknown vendor";
        data.arpMap.Insert(ip, host);
        return host;
    }

    bool Restart() { return RestartVendorRun(thread, run, params, abandoned, SystemThreads()); }
    void AwaitEnd() {
        EXPECT_TRUE(SystemThreads().WaitAll({&thread.handle, 1}, 20000));
        SystemThreads().Close(thread.handle);
        thread = {};
        run.reset();
    }
    void AwaitAbandoned() {
        EXPECT_TRUE(SystemThreads().WaitAll(abandoned, 20000));
        for (ThreadHandle handle : abandoned) SystemThreads().Close(handle);
        abandoned.clear();
    }
    void RunOnce() {
        ASSERT_TRUE(Restart());
        AwaitEnd();
    }

    std::string Vendor(const char* prefix) {
        ReadPin pin;
        const auto* entry = data.vendors.Find(prefix);
        return entry && entry->Value() ? entry->Value()->GetContent() : "(none)";
    }
    bool Signalled(Fence fence) { return events.Wait(data.fences.Handle(fence), 0) == WaitResult::Signalled; }

    test::TestFolder folder;
    test::TestServices system;
    Events& events = system.services.events;
    test::Gate beforeReading;   // the table is empty and its guard taken
    test::Gate insideBackfill;  // the fence of the host table is raised
    VardelData data{system.services};
    ThreadParams params;
    RunningThread thread;
    std::shared_ptr<VendorRun> run;
    std::vector<ThreadHandle> abandoned;
};

TEST(ReadVendorThread, EndsWithoutParametersOrData) {
    ReadVendorThread(nullptr);
    VendorRun noParameters(nullptr);
    ReadVendorThread(&noParameters);
    ThreadParams params;
    VendorRun noData(&params);
    ReadVendorThread(&noData);
    EXPECT_FALSE(noData.Abandoned());
}

TEST_F(VendorRuns, UsersCopyWins) {
    UserList("0:0:c\tFrom the user\n");
    ProgramList("0:0:c\tFrom the program\n8:0:20\tSun\n");
    RunOnce();
    EXPECT_EQ(Vendor("00:00:0c"), "From the user");
    EXPECT_EQ(data.vendors.Count(), 1u);
    EXPECT_TRUE(Signalled(Fence::VendorMap));
}

TEST_F(VendorRuns, CopyBesideTheProgramIsReadWhenTheUsersIsMissing) {
    ProgramList("0:0:c\tFrom the program\n");
    RunOnce();
    EXPECT_EQ(Vendor("00:00:0c"), "From the program");
}

TEST_F(VendorRuns, CopyBesideTheProgramIsReadWithoutAUserFolder) {
    system.folders.localApplicationData = "";
    ProgramList("0:0:c\tFrom the program\n");
    RunOnce();
    EXPECT_EQ(Vendor("00:00:0c"), "From the program");
}

TEST_F(VendorRuns, WithoutAFileTheTableIsEmptyAndHostsAreUnknown) {
    HostRecord* host = Host("10.0.0.1", "00:00:0c:11:22:33");
    host->vendor = "";
    data.vendors.Insert("00:00:0c", std::make_unique<TcString>("Old"));
    RunOnce();
    EXPECT_TRUE(data.vendors.IsEmpty());
    EXPECT_TRUE(Signalled(Fence::VendorMap));
    EXPECT_TRUE(Signalled(Fence::ArpMap));
    EXPECT_TRUE(host->vendor == "Unknown vendor");
    EXPECT_EQ(host->vendorUnknown, 1);
}

TEST_F(VendorRuns, ReloadStartsFromAnEmptyTableWithTheGuardTaken) {
    data.vendors.Insert("00:00:0c", std::make_unique<TcString>("Old"));
    UserList("8:0:20\tSun\n");
    beforeReading.Arm();
    ASSERT_TRUE(Restart());
    ASSERT_TRUE(beforeReading.AwaitHeld());
    EXPECT_TRUE(data.vendors.IsEmpty());
    EXPECT_FALSE(Signalled(Fence::VendorMap));
    beforeReading.Open();
    AwaitEnd();
    EXPECT_EQ(Vendor("08:00:20"), "Sun");
    EXPECT_EQ(Vendor("00:00:0c"), "(none)");
    EXPECT_TRUE(Signalled(Fence::VendorMap));
}

TEST_F(VendorRuns, WaitsForTheGuardBeforeItEmptiesTheTable) {
    data.vendors.Insert("00:00:0c", std::make_unique<TcString>("Old"));
    UserList("8:0:20\tSun\n");
    data.fences.Raise(Fence::VendorMap);
    ASSERT_TRUE(Restart());
    EXPECT_FALSE(SystemThreads().WaitAll({&thread.handle, 1}, 100));
    EXPECT_EQ(Vendor("00:00:0c"), "Old");
    data.fences.Lower(Fence::VendorMap);
    AwaitEnd();
    EXPECT_EQ(Vendor("08:00:20"), "Sun");
}

TEST_F(VendorRuns, StopEndsTheWaitForTheGuard) {
    data.fences.Raise(Fence::VendorMap);
    ASSERT_TRUE(Restart());
    RequestStop(params, events);
    EXPECT_TRUE(SystemThreads().WaitAll({&thread.handle, 1}, 5000));
    EXPECT_TRUE(Signalled(Fence::VendorMap));
}

TEST_F(VendorRuns, StopEndsTheParseAndTheLaterStepsRunAsUsual) {
    HostRecord* host = Host("10.0.0.1", "00:00:0c:11:22:33");
    host->vendor = "";
    UserList("0:0:c\tCisco\n");
    beforeReading.Arm();
    ASSERT_TRUE(Restart());
    ASSERT_TRUE(beforeReading.AwaitHeld());
    RequestStop(params, events);
    beforeReading.Open();
    AwaitEnd();
    EXPECT_TRUE(data.vendors.IsEmpty());
    EXPECT_TRUE(Signalled(Fence::VendorMap));
    EXPECT_TRUE(host->vendor == "Unknown vendor");
}

TEST_F(VendorRuns, BackfillGivesAnEarlierHostItsVendor) {
    HostRecord* host = Host("10.0.0.1", "00:00:0c:11:22:33");
    UserList("0:0:c\tCisco\n");
    RunOnce();
    EXPECT_TRUE(host->vendor == "Cisco");
    EXPECT_EQ(host->vendorUnknown, 0);
    EXPECT_TRUE(Signalled(Fence::ArpMap));
}

TEST_F(VendorRuns, KnownVendorIsKeptThroughAReload) {
    HostRecord* host = Host("10.0.0.1", "00:00:0c:11:22:33");
    UserList("0:0:c\tCisco\n");
    RunOnce();
    UserList("0:0:c\tSomebody else\n");
    RunOnce();
    EXPECT_TRUE(host->vendor == "Cisco");
    UserList("8:0:20\tSun\n");
    RunOnce();
    EXPECT_TRUE(host->vendor == "Cisco");
    EXPECT_EQ(host->vendorUnknown, 0);
}

TEST_F(VendorRuns, BackfillLeavesRecordsWithoutTheFlagAlone) {
    HostRecord* host = Host("10.0.0.1", "00:00:0c:11:22:33");
    host->vendor = "Set by hand";
    host->vendorUnknown = 0;
    UserList("0:0:c\tCisco\n");
    RunOnce();
    EXPECT_TRUE(host->vendor == "Set by hand");
}

TEST_F(VendorRuns, EmptyVendorCountsAsUnknown) {
    HostRecord* host = Host("10.0.0.1", "00:00:0c:11:22:33");
    host->vendor = "";
    UserList("0:0:c\t  \n");
    RunOnce();
    EXPECT_EQ(Vendor("00:00:0c"), "");
    EXPECT_TRUE(host->vendor == "Unknown vendor");
    EXPECT_EQ(host->vendorUnknown, 1);
}

TEST_F(VendorRuns, KeysInUpperCaseMeetNoHost) {
    HostRecord* host = Host("10.0.0.1", "00:00:0c:11:22:33");
    UserList("00:00:0C\tCisco\n");
    RunOnce();
    EXPECT_EQ(Vendor("00:00:0C"), "Cisco");
    EXPECT_EQ(host->vendorUnknown, 1);
}

TEST_F(VendorRuns, HostWithAShortMacOrANullRecordIsNoTrouble) {
    HostRecord* host = Host("10.0.0.1", "");
    data.arpMap.Insert("10.0.0.2", nullptr);
    UserList("0:0:c\tCisco\n");
    RunOnce();
    EXPECT_EQ(host->vendorUnknown, 1);
}

TEST_F(VendorRuns, BackfillTakesTheFenceOfTheHostTableOnlyForHosts) {
    data.fences.Raise(Fence::ArpMap);
    RunOnce();
    EXPECT_FALSE(Signalled(Fence::ArpMap));  // no host: untouched
    Host("10.0.0.1", "00:00:0c:11:22:33");
    insideBackfill.Arm();
    data.fences.Lower(Fence::ArpMap);
    ASSERT_TRUE(Restart());
    ASSERT_TRUE(insideBackfill.AwaitHeld());
    EXPECT_FALSE(Signalled(Fence::ArpMap));
    EXPECT_TRUE(Signalled(Fence::VendorMap));  // the table is in force already
    insideBackfill.Open();
    AwaitEnd();
    EXPECT_TRUE(Signalled(Fence::ArpMap));
}

TEST_F(VendorRuns, BackfillDoesNotWaitForTheFenceOfTheHostTable) {
    HostRecord* host = Host("10.0.0.1", "00:00:0c:11:22:33");
    UserList("0:0:c\tCisco\n");
    data.fences.Raise(Fence::ArpMap);
    ASSERT_TRUE(Restart());
    EXPECT_TRUE(SystemThreads().WaitAll({&thread.handle, 1}, 5000));
    EXPECT_EQ(host->vendorUnknown, 0);
}

TEST_F(VendorRuns, RestartWhileReadingAbandonsTheOldWorker) {
    UserList("0:0:c\tOld list\n");
    HostRecord* host = Host("10.0.0.1", "00:00:0c:11:22:33");
    beforeReading.Arm();
    ASSERT_TRUE(Restart());
    ASSERT_TRUE(beforeReading.AwaitHeld());

    UserList("8:0:20\tNew list\n");
    ASSERT_TRUE(Restart());
    EXPECT_EQ(abandoned.size(), 1u);
    AwaitEnd();
    EXPECT_EQ(Vendor("08:00:20"), "New list");
    EXPECT_TRUE(Signalled(Fence::VendorMap));

    // Whatever the old worker still does, nobody sees it: no table, no vendor, no signal.
    UserList("0:0:c\tOld list\n");
    data.fences.Raise(Fence::VendorMap);
    data.fences.Raise(Fence::ArpMap);
    beforeReading.Open();
    AwaitAbandoned();
    EXPECT_EQ(data.vendors.Count(), 1u);
    EXPECT_EQ(Vendor("08:00:20"), "New list");
    EXPECT_EQ(host->vendorUnknown, 1);
    EXPECT_FALSE(Signalled(Fence::VendorMap));
    EXPECT_FALSE(Signalled(Fence::ArpMap));
}

TEST_F(VendorRuns, RestartWhileWaitingForTheGuardAbandonsTheOldWorker) {
    UserList("0:0:c\tCisco\n");
    data.fences.Raise(Fence::VendorMap);
    ASSERT_TRUE(Restart());
    ASSERT_TRUE(Restart());  // signals the guard
    AwaitEnd();
    AwaitAbandoned();
    EXPECT_EQ(Vendor("00:00:0c"), "Cisco");
    EXPECT_TRUE(Signalled(Fence::VendorMap));
}

TEST_F(VendorRuns, RestartInTheBackfillLeavesItsHostsToTheNewWorker) {
    HostRecord* host = Host("10.0.0.1", "00:00:0c:11:22:33");
    UserList("0:0:c\tOld list\n");
    insideBackfill.Arm();
    ASSERT_TRUE(Restart());
    ASSERT_TRUE(insideBackfill.AwaitHeld());
    UserList("0:0:c\tNew list\n");
    ASSERT_TRUE(Restart());
    AwaitEnd();
    EXPECT_TRUE(host->vendor == "New list");
    host->vendorUnknown = 1;
    host->vendor = "Not touched";
    data.fences.Raise(Fence::ArpMap);
    insideBackfill.Open();
    AwaitAbandoned();
    EXPECT_TRUE(host->vendor == "Not touched");
    EXPECT_FALSE(Signalled(Fence::ArpMap));
}

TEST_F(VendorRuns, RestartReleasesBothFencesEvenWhenNoNewWorkerComes) {
    Host("10.0.0.1", "00:00:0c:11:22:33");
    insideBackfill.Arm();
    ASSERT_TRUE(Restart());
    ASSERT_TRUE(insideBackfill.AwaitHeld());
    data.fences.Raise(Fence::VendorMap);
    RequestStop(params, events);
    EXPECT_FALSE(Restart());
    EXPECT_TRUE(Signalled(Fence::ArpMap));
    EXPECT_TRUE(Signalled(Fence::VendorMap));
    EXPECT_EQ(thread.handle, nullptr);
    EXPECT_EQ(thread.id, 0u);
    EXPECT_EQ(run, nullptr);
}

TEST_F(VendorRuns, RestartAfterTheBackfillLeavesTheFenceOfTheHostTableToItsTaker) {
    Host("10.0.0.1", "00:00:0c:11:22:33");
    UserList("0:0:c\tCisco\n");
    ASSERT_TRUE(Restart());
    ASSERT_TRUE(SystemThreads().WaitAll({&thread.handle, 1}, 20000));
    data.fences.Raise(Fence::ArpMap);  // by someone else, who is still inside
    RequestStop(params, events);
    EXPECT_FALSE(Restart());
    EXPECT_FALSE(Signalled(Fence::ArpMap));
}

TEST_F(VendorRuns, NoWorkerStartsOnceTheStopByteIsSet) {
    params.stop = 1;
    UserList("0:0:c\tCisco\n");
    EXPECT_FALSE(Restart());
    EXPECT_EQ(thread.handle, nullptr);
    EXPECT_TRUE(data.vendors.IsEmpty());
}

TEST_F(VendorRuns, FailedThreadStartGivesFalseAndRecordsNothing) {
    RunOnce();
    NoMoreThreads none;
    EXPECT_FALSE(RestartVendorRun(thread, run, params, abandoned, none));
    EXPECT_EQ(thread.handle, nullptr);
    EXPECT_EQ(run, nullptr);
    EXPECT_TRUE(Restart());
}

TEST_F(VendorRuns, EndedWorkersAreNotKept) {
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(Restart());
        ASSERT_TRUE(SystemThreads().WaitAll({&thread.handle, 1}, 20000));
    }
    ASSERT_TRUE(Restart());
    EXPECT_LE(abandoned.size(), 1u);
    EXPECT_NE(thread.id, 0u);
}

TEST_F(VendorRuns, TracesItsStartAndItsEnd) {
    test::TracedLines traced;
    ReadVendorThread(nullptr);
    EXPECT_EQ(traced.Steps(), (std::vector<std::string>{"Vardel::ReadVendorThread: No params - Exit..."}));
    ASSERT_TRUE(Restart());
    const std::string start =
        "Vardel::ReadMACVendorFile: Create ReadVendorThread - ID: " + std::to_string(thread.id);
    AwaitEnd();
    const std::vector<std::string> steps = traced.Steps();
    EXPECT_EQ(std::multiset<std::string>(steps.begin() + 1, steps.end()),
              (std::multiset<std::string>{start, "Vardel::ReadVendorThread: Exit..."}));
}

TEST_F(VendorRuns, AbandonedWorkerTracesNothing) {
    beforeReading.Arm();
    ASSERT_TRUE(Restart());
    ASSERT_TRUE(beforeReading.AwaitHeld());
    ASSERT_TRUE(Restart());
    AwaitEnd();
    test::TracedLines traced;
    beforeReading.Open();
    AwaitAbandoned();
    EXPECT_TRUE(traced.Steps().empty());
}

// The application's own operation, from the update's point of view: no file name, and a new list counts at
// once.
TEST(Vardel, RereadsTheVendorFileOnItsSharedBlock) {
    test::TestFolder folder;
    test::TestServices system;
    system.folders.programPath = folder.Path("vardelwatch");
    folder.Write("ethercodes.dat", "0:0:c\tCisco\n");
    test::NoFrame frame;
    Vardel app(system.services, frame);
    app.data.fences.CreateAll();
    app.workerParams.data = &app.data;
    app.workerParams.app = &app;
    ASSERT_TRUE(app.ReadMACVendorFile());
    EXPECT_NE(app.readVendorThread.id, 0u);
    ASSERT_TRUE(SystemThreads().WaitAll({&app.readVendorThread.handle, 1}, 20000));
    EXPECT_NE(app.data.vendors.FindValue("00:00:0c"), nullptr);

    folder.Write("ethercodes.dat", "8:0:20\tSun\n");
    ASSERT_TRUE(app.ReadMACVendorFile());
    ASSERT_TRUE(SystemThreads().WaitAll({&app.readVendorThread.handle, 1}, 20000));
    EXPECT_EQ(app.data.vendors.FindValue("00:00:0c"), nullptr);
    EXPECT_NE(app.data.vendors.FindValue("08:00:20"), nullptr);
    EXPECT_TRUE(app.abandonedThreads.empty());

    app.workerParams.stop = 1;
    EXPECT_FALSE(app.ReadMACVendorFile());
    EXPECT_EQ(app.readVendorThread.handle, nullptr);
}

// Look-ups, a growing host table and restarts in quick succession: what is in force at the end is the last
// list, whole.
TEST_F(VendorRuns, RestartsUnderLookUps) {
    constexpr int kRestarts = 60;
    std::string list;
    for (int i = 0; i < 256; ++i) {
        char line[64];
        std::snprintf(line, sizeof line, "00:00:%02x\tVendor %d\n", static_cast<unsigned>(i), i);
        list += line;
    }
    UserList(list);
    std::atomic<bool> done{false};
    std::thread capture([&] {
        for (int i = 0; !done; ++i) {
            char ip[20], mac[24];
            std::snprintf(ip, sizeof ip, "10.0.%d.%d", (i / 256) % 4, i % 256);
            std::snprintf(mac, sizeof mac, "00:00:%02x:00:00:01", static_cast<unsigned>(i % 256));
            if (!data.arpMap.FindValue(ip)) Host(ip, mac);
            if (i % 7 == 0) data.DeleteHost(ip);
            const std::string vendor = Vendor("00:00:07");
            EXPECT_TRUE(vendor == "(none)" || vendor == "Vendor 7") << vendor;
        }
    });
    for (int i = 0; i < kRestarts; ++i) EXPECT_TRUE(Restart());
    SystemThreads().WaitAll({&thread.handle, 1}, 20000);
    done = true;
    capture.join();
    RunOnce();
    EXPECT_EQ(data.vendors.Count(), 256u);
    EXPECT_TRUE(Signalled(Fence::VendorMap));
    EXPECT_TRUE(Signalled(Fence::ArpMap));
    data.arpMap.ForEach(
        [&](const TcString& ip, HostRecord* host) { EXPECT_EQ(host->vendorUnknown, 0) << ip.GetContent(); });
}

}  // namespace

}  // namespace vardel
