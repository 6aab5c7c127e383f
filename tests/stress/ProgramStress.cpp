// The whole program at once, from its start to its exit: capture, inspection, share access, share scan, plugin
// notification, vendor and log threads, with the real tick, settings saves, host removal, host watch, reports and
// plugin calls on the main thread, readers beside them, and plugins that are loaded at the start and unloaded at
// the end while everything runs. Run under ThreadSanitizer; what is counted is asserted in any build.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <fstream>
#include <random>
#include <string>
#include <thread>

#include "capture/EventMap.h"
#include "capture/Vardel.h"
#include "frame/EngineDeeds.h"
#include "frame/FrameTimers.h"
#include "frame/PeriodicTick.h"
#include "plugins/PluginCalls.h"
#include "settings/VardelSettings.h"
#include "tests/stress/StressAlerts.h"
#include "tests/stress/StressCapture.h"
#include "tests/stress/StressSystem.h"
#include "tests/unit/support/RecordingTimers.h"
#include "tests/unit/support/TestFolder.h"
#include "tests/unit/support/TestServices.h"

namespace vardel::test {
namespace {

constexpr int kSaves = 1'000;
constexpr int kDeletes = 1'000;
constexpr int kReloads = 100;
constexpr int kTurns = 10'000;  // of all ticks
constexpr int kVendorLines = 3'000;
constexpr const char* kModules[] = {"counting_view_plugin.so", "counting_notify_plugin.so",
                                    "counting_columns_plugin.so"};

std::string VendorLines() {
    std::string lines;
    for (int n = 0; n < kVendorLines; ++n) {
        char line[80];
        std::snprintf(line, sizeof line, "02:%02x:%02x\tVendor %d with a name that is long\n", n >> 8, n & 255, n);
        lines += line;
    }
    return lines;
}

template <class Record>
std::unique_ptr<GuardedRecord<Record>> Guarded(const Record& record) {
    return std::make_unique<GuardedRecord<Record>>(record);
}

void ListHosts(ListedHostTable& table, int from, int count) {
    for (int n = from; n < from + count; ++n) {
        ListedHost record{};
        StressAddress(n).copy(record.ipAddress, sizeof record.ipAddress - 1);
        table.Insert(record.ipAddress, Guarded(record));
    }
}

void WatchHosts(WatchedHostTable& table, int count) {
    for (int n = 0; n < count; ++n) {
        WatchedHost record{};
        StressAddress(n * 11).copy(record.ipAddress, sizeof record.ipAddress - 1);
        table.Insert(record.ipAddress, Guarded(record));
    }
}

class ProgramStress : public testing::Test, public VardelFrame {
  protected:
    ProgramStress() {
        TheEventMap().SetGuard(nullptr, nullptr);
        TheEventMap().Clear();
        setenv("XDG_CONFIG_HOME", folder.Path("config").c_str(), 1);
        system.folders.localApplicationData = folder.Path("data");
        system.folders.programPath = folder.Path("vardelwatch");
        folder.Write("data/Vardelwatch/ethercodes.dat", VendorLines());
        folder.Write("templates/hosts.txt.vdlt",
                     "%VDL_HOSTCOUNT%\n<VDL_HOSTS - begin>%VDL_HOST_IP% %VDL_HOST_NAME% %VDL_HOST_OS%\n<VDL_HOSTS - end>"
                     "<VDL_SHARE_ACCESS - begin>%VDL_SHARE_HOST%\n<VDL_SHARE_ACCESS - end>");
        for (const char* module : kModules)
            folder.Write(std::string("Plugins/") + module, FileBytes(std::string(VARDEL_TEST_MODULES "/") + module));
        capture.Install(system.captureModules);
        for (VardelSettings* form : {&first, &second}) Fill(*form);
        second.Interface = StressCapture::kOtherDevice;
        second.ShareSearch = 0;
        second.Visualization = 1;
        second.MACSpoofingVisualizationStyle = 1;
        second.RAVisualizationType = 1;
        ListHosts(first.trustedHosts, 0, 100);
        ListHosts(second.trustedHosts, 50, 100);
        ListHosts(second.distrustedHosts, 0, 40);
        first.WriteSettings();
    }
    ~ProgramStress() override { TheEventMap().Clear(); }

    static std::string FileBytes(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    void Fill(VardelSettings& form) const {
        form.Interface = StressCapture::kDevice;
        form.AutoCapture = form.UseToolTips = form.UseWMI = form.ShareSearch = form.EventLogSave = 1;
        form.MACSpoofingVisualization = form.RAVisualization = form.ShareVisualization = 1;
        form.WatchVisualization = form.Syslog = form.SyslogNotification = 1;
        form.Visualization = form.MACSpoofingVisualizationStyle = form.RAVisualizationType = form.NotifyTrusted = 0;
        form.RAIgnoreLocalhost = form.RAIgnoreTrustedHosts = form.RAIgnoreIPCNoUsername = form.UpdateCheck = 0;
        form.SyslogMaxEntries = 50;
        form.SyslogNotificationLevel = 2;
        form.SyslogNotificationType = 0;
        form.SyslogNotificationWords = "door,a long word that lies outside of the text object";
        form.TrustedApp = "trusted program";
        form.OtherApp = "other program";
        form.TrustedAppParams = form.OtherAppParams = "--host \"%VDLW_HOST%\" %VDLW_IP% %VDLW_LIP%";
        form.ReportTemplate = folder.Path("templates/hosts.txt.vdlt").c_str();
        form.ReportPath = folder.Path("").c_str();
        WatchHosts(form.watchedHosts, 5);
        AdminAccount account{};
        std::strcpy(account.userName, "administrator");
        form.accounts.Write({{0, account}, {1, account}});
    }

    // ---- the frame, on the main thread ----

    bool CreateApp(VardelData& data, Vardel& app) override {
        EngineDeeds deeds(data);
        PeriodicTick tick(&data, surface, deeds);
        ArmTimers(timers, data);
        SwitchPluginsOn(data);
        std::thread views([&] { ReadAsViews(data); });
        for (turns = 0; turns < kTurns || !capture.IsThrough(); ++turns) {
            if (turns % 4 == 0) ActAsUser(data, app);
            RunTicks(tick);
            KeepPace();
            if (turns % 1'000 == 0) PrintCounts();
        }
        done = true;
        views.join();
        TellTheRest(data, tick);
        return true;
    }
    void ShowError(const char*, const char*) override { ++wrong; }
    std::unique_ptr<NotifyPopup> MakeUpdatePopup() override { return nullptr; }

    static void SwitchPluginsOn(VardelData& data) {
        for (LoadedPlugin* plugin = data.plugins.FirstPlugin(0); plugin; plugin = data.plugins.NextPlugin())
            plugin->active = 1;
    }

    // Frames and turns are spread over each other.
    void KeepPace() {
        constexpr int kFramesEachTurn = StressCapture::kFrames / kTurns;
        capture.Allow((turns + 10) * kFramesEachTurn);
        do std::this_thread::sleep_for(std::chrono::microseconds(100));
        while (!capture.IsThrough() && turns > capture.Given() / kFramesEachTurn);
    }

    void RunTicks(PeriodicTick& tick) {
        for (const u32 timer : {kTrayTimer, kShareTimer, kSyslogTimer}) tick.OnTimer(timer);
        if (turns % 20 == 0) tick.OnTimer(kWatchTimer);
        if (turns % 100 == 0) tick.OnTimer(kArpFlushTimer);
        if (turns % 500 == 0) tick.OnTimer(kReportTimer);
        surface.LetTimePass();
    }

    void ActAsUser(VardelData& data, Vardel& app) {
        const int step = turns / 4;
        deletes += data.DeleteHost(StressAddress(static_cast<int>(random() % kAddresses)).c_str());
        if (step % 2 == 0) {
            // The interface is changed now and then only: capture goes through a whole reconnection each time.
            if (!data.settings.AssignSettings(step / 2 % 10 == 9 ? &second : &first)) ++wrong;
            ApplySavedSettings(timers, data, app);
            ++saves;
        }
        if (step % 200 == 0) data.settings.WriteSettings();
        if (step % 20 == 0) reloads += app.ReadMACVendorFile();
        CallPlugins(data);
    }

    void CallPlugins(VardelData& data) {
        const PluginHostText host = HostText("10.9.0.1", "02:00:00:00:00:05", "nas");
        for (LoadedPlugin* plugin = data.plugins.FirstPlugin(0); plugin; plugin = data.plugins.NextPlugin()) {
            pluginCalls += RunPluginOnHost(*plugin, this, host);
            PluginCellText(*plugin, 0, host);
        }
    }

    // What waits at the end is told too, as long as it takes the popups to come free.
    void TellTheRest(VardelData& data, PeriodicTick& tick) {
        const auto waits = [&] {
            return !data.newEntries.IsEmpty() || !data.macSpoofs.IsEmpty() || !data.syslogNotifications.IsEmpty();
        };
        while (waits()) RunTicks(tick), ++turns;
        hostsSeen = EventsOf(EventKind::NewHost);
        messagesSeen = EventsOf(EventKind::SyslogNotification);
        watchEvents = EventsOf(EventKind::WatchedHostOnline) + EventsOf(EventKind::WatchedHostOffline);
        eventsAtTheEnd = static_cast<int>(TheEventMap().Count());
    }

    // ---- beside it ----

    void ReadAsViews(VardelData& data) {
        for (int round = 0; !done; ++round) {
            data.arpMap.ForEach([&](const TcString& key, HostRecord* host) {
                if (!(host->ip == key) || host->mac.GetLength() != 17) ++wrong;
                const TcString vendor(host->vendor), name(host->hostName), os(host->os);
                if (vendor.GetLength() > 60 || std::strchr(os, '|')) ++wrong;
                host->shares.ForEach([&](i32, NetShare* share) { sharesRead += !share->name.IsEmpty(); });
                host->rowDirty = 0;
            });
            data.syslogs.ForEach([&](const TcString&, SyslogSourceList* list) {
                list->PurgeExpired();
                list->ForEach([&](const SyslogRecord& record) { wrong += !(record.text == "door opened"); });
            });
            i32 last = 0;
            if (round % 10 == 0)
                TheEventMap().ForEach([&](i32 key, EventRecord* event) {
                    if (key != last + 1 || event->kind < 1) ++wrong;
                    last = key;
                });
            PostEvent(EventKind::DeviceAnnounced, "a reader", nullptr, nullptr);
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
    }

    static int EventsOf(EventKind kind) {
        int count = 0;
        TheEventMap().ForEach([&](i32, EventRecord* event) { count += event->kind == static_cast<i32>(kind); });
        return count;
    }

    int LogLines() const {
        const std::string log = folder.Read("data/vdl-events.log");
        return static_cast<int>(std::count(log.begin(), log.end(), '\n'));
    }

    void PrintCounts() const {
        std::printf("frames %d, turns %d, saves %d, deletes %d, vendor reloads %d, events %u, inspections %d, scans %d, "
                    "looks at connections %d, echoes %d, fetches %d, starts %d\n",
                    capture.Given(), turns, saves, deletes, reloads, TheEventMap().Count(), wmi.names.load(),
                    shares.calls.load(), connections.looks.load(), icmp.sent.load(), http.fetches.load(),
                    shell.launches.load());
        std::fflush(stdout);
    }

    TestFolder folder;
    TestServices system;
    HurriedEvents events;
    StressResolver resolver;
    StressArpCache arpCache;
    StressShell shell;
    StressHttp http;
    StressIcmp icmp;
    StressShares shares;
    StressWmi wmi;
    StressConnections connections;
    StressArpRequests arpRequests;
    Services services{events,        system.threads,       system.clock,          system.folders, resolver,
                      SystemStringResources(), arpCache,   system.process,        system.machineConfig,
                      system.captureModules,   shell,      http,                  SystemModules(), icmp,
                      shares,        wmi,                  connections,           arpRequests};
    StressCapture capture;
    StressSurface surface;
    RecordingTimers timers;
    VardelSettings first, second;
    std::mt19937 random{2};
    int turns = 0, saves = 0, deletes = 0, reloads = 0, pluginCalls = 0, hostsSeen = 0, messagesSeen = 0;
    int watchEvents = 0, eventsAtTheEnd = 0;
    std::atomic<int> wrong{0}, sharesRead{0};
    std::atomic<bool> done{false};
};

TEST_F(ProgramStress, RunsFromStartToExitWithEverythingAtOnce) {
    int accesses = 0;
    {
        Vardel app(services, *this);
        app.MainInit(nullptr, nullptr, "", 0);
        app.MainRun();
        ASSERT_TRUE(app.ThreadsHaveEnded());
        EXPECT_EQ(app.data.plugins.FirstPlugin(0), nullptr);
        accesses = static_cast<int>(app.data.remoteAccesses.Count());
    }
    PrintCounts();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(shell.wrong, 0);

    EXPECT_GE(capture.Given(), StressCapture::kFrames);
    EXPECT_GE(turns, kTurns);
    EXPECT_GE(saves, kSaves);
    EXPECT_GE(deletes, kDeletes);
    EXPECT_GE(reloads, kReloads);
    EXPECT_GT(pluginCalls, kTurns / 4);

    // Every thread came to its work.
    EXPECT_GT(wmi.names, 100);
    EXPECT_GT(shares.calls, 100);
    EXPECT_GT(sharesRead, 0);
    EXPECT_GT(accesses, 100);
    EXPECT_GT(icmp.sent, 100);
    EXPECT_EQ(icmp.open, 0);
    EXPECT_GT(http.fetches, 10);
    EXPECT_GT(shell.launches, kDeletes / 2);
    EXPECT_GT(arpRequests.asked, 0);
    EXPECT_GT(arpCache.flushes, 0);
    EXPECT_FALSE(folder.Read("hosts.txt").empty());
    EXPECT_FALSE(folder.Read("config/vardelwatch/settings.reg").empty());

    // No alert was lost, none told twice, and every event is in the log.
    EXPECT_EQ(surface.told.Lines("New host(s) found :"), hostsSeen);
    EXPECT_EQ(surface.told.SyslogMessages(), messagesSeen);
    EXPECT_EQ(surface.watch.shows, watchEvents);
    EXPECT_GT(surface.told.Lines("MAC spoofing alert"), 0);
    EXPECT_GT(surface.told.Lines("Remoteaccess detected :"), 100);
    EXPECT_GT(surface.told.Lines("New remote share(s) found :"), 100);
    EXPECT_GT(watchEvents, 0);
    EXPECT_GE(LogLines(), eventsAtTheEnd);
}

}  // namespace
}  // namespace vardel::test
