// The engine's shared state with everything at once: frames, settings saves, host removal, vendor reloads, event
// posting, list draining, syslog purging, the log writer and readers. Run under ThreadSanitizer; what is counted is
// asserted in any build.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "capture/EventMap.h"
#include "capture/FrameLookAhead.h"
#include "capture/Vardel.h"
#include "tests/unit/support/Frames.h"
#include "tests/unit/support/TestServices.h"

namespace vardel::test {
namespace {

constexpr int kFrames = 1'000'000;
constexpr int kRun = 32;  // of frames
constexpr int kSaves = 1'000;
constexpr int kDeletes = 1'000;
constexpr int kReloads = 100;
constexpr int kDrains = 10'000;
constexpr int kPosts = 20'000;
constexpr int kAddresses = 3'000;  // more than a look-ahead leaves alone

class SilentFrame : public VardelFrame {
  public:
    bool CreateApp(VardelData&, Vardel&) override { return true; }
    void ShowError(const char*, const char*) override {}
    std::unique_ptr<NotifyPopup> MakeUpdatePopup() override { return nullptr; }
};

std::string Address(int n) { return "10.9." + std::to_string(n / 250) + "." + std::to_string(n % 250 + 1); }

class EngineStress : public ::testing::Test {
  protected:
    EngineStress() {
        char pattern[] = "/tmp/vardelwatch-stress-XXXXXX";
        folder = mkdtemp(pattern);
        setenv("XDG_CONFIG_HOME", (folder + "/config").c_str(), 1);
        system.folders.localApplicationData = folder;
        system.folders.programPath = folder + "/vardelwatch";
        std::filesystem::create_directories(folder + "/Vardelwatch");
        std::ofstream vendors(folder + "/Vardelwatch/ethercodes.dat");
        for (int n = 0; n < 3000; ++n) {
            char line[64];
            std::snprintf(line, sizeof line, "02:%02x:%02x\tVendor %d with a name that is long\n", n >> 8, n & 255, n);
            vendors << line;
        }
    }
    ~EngineStress() override { std::filesystem::remove_all(folder); }

    std::string folder;
    TestServices system;
    SilentFrame frame;
    Vardel app{system.services, frame};
    VardelData& data = app.data;
    std::atomic<int> frames{0}, saves{0}, deletes{0}, reloads{0}, drains{0}, posts{0}, wrong{0};
    std::atomic<bool> done{false};

    // Spreads the other threads' work evenly over the frames. Fences are raised for moments, not for most of the time:
    // a taker that came back at once would leave feeders hardly a chance, which no part of the program does.
    void KeepPace(int turns, int framesEach) const {
        do Rest(200);
        while (!done && frames < kFrames && turns * framesEach > frames);
    }
    static void Rest(int microseconds) { std::this_thread::sleep_for(std::chrono::microseconds(microseconds)); }

    void PrepareRun() {
        TheEventMap().SetGuard(&system.services.events, system.services.events.Create("stress guard", true, true));
        ASSERT_TRUE(data.fences.CreateAll());
        for (ThreadParams* block : {&app.workerParams, &app.shareParams, &app.eventWriterParams}) {
            block->arp = &app.arpImpl;
            block->ip = &app.ipImpl;
            block->data = &data;
            block->app = &app;
            block->stopRequested = system.services.events.Create(nullptr, true, false);
        }
        data.settings.EventLogSave = 1;
        ASSERT_TRUE(app.StartEventLogWrite());
    }

    // One run of frames comes one by one, as a capture gives them, the next one together, as a savefile's do. Hosts by
    // ARP from changing cards, browse announcements and syslog of the same addresses.
    void FeedFrames() {
        std::mt19937 random(1);
        std::vector<Frame> pool;
        for (int n = 0; n < kAddresses; ++n) {
            char mac[18];
            std::snprintf(mac, sizeof mac, "02:%02x:%02x:00:00:01", n >> 8, n & 255);
            pool.push_back(ArpReply{.ip = Address(n), .mac = mac});
            if (n % 10 == 0) pool.push_back(ArpReply{.ip = Address(n), .mac = "66:66:66:66:66:66"});
            if (n % 20 == 0)
                pool.push_back(UdpFrame{.sourceIp = Address(n), .destinationPort = 514, .payload = "<9>door opened"});
            if (n % 50 == 0) pool.push_back(TcpFrame{.sourceIp = Address(n)});
        }
        FrameLookAhead lookAhead(app.arpImpl, app.ipImpl, data);
        std::array<pcap_pkthdr, kRun> headers;
        std::array<HeldFrame, kRun> run;
        for (bool looksAhead = false; frames < kFrames; frames += kRun, looksAhead = !looksAhead) {
            for (std::size_t at = 0; at < kRun; ++at) {
                const Frame& bytes = pool[random() % pool.size()];
                const auto size = static_cast<u32>(bytes.size());
                headers[at] = {{1'700'000'000 + frames / 1000, 0}, size, size};
                run[at] = {&headers[at], bytes.data()};
            }
            if (looksAhead)
                lookAhead.Dispatch(kRun, [&run](std::size_t at) { return run[at]; });
            else
                for (const HeldFrame& one : run) DispatchFrame(one.header, one.bytes, app.arpImpl, app.ipImpl, &data);
        }
    }

    static void ListHosts(ListedHostTable& table, int from, int count) {
        for (int n = from; n < from + count; ++n) {
            ListedHost record{};
            Address(n).copy(record.ipAddress, sizeof record.ipAddress - 1);
            table.Insert(record.ipAddress, std::make_unique<GuardedRecord<ListedHost>>(record));
        }
    }

    // What the main thread does: saves settings, reloads vendors, removes hosts.
    void ActAsMainThread() {
        VardelSettings first, second;
        for (VardelSettings* source : {&first, &second}) {
            source->Syslog = 1;
            source->SyslogMaxEntries = 50;
            source->SyslogNotification = 1;
            source->SyslogNotificationLevel = 2;
            source->UseWMI = 1;
            source->ShareSearch = source == &first;
            source->EventLogSave = 1;
            source->SyslogNotificationWords = "door,a long word that lies outside of the text object";
        }
        ListHosts(first.trustedHosts, 0, 100);
        ListHosts(second.trustedHosts, 50, 100);
        ListHosts(second.distrustedHosts, 0, 40);
        std::mt19937 random(2);
        while (!done) {
            if (!data.settings.AssignSettings(saves % 2 ? &first : &second)) ++wrong;
            data.ParseNotificationWords(data.settings.SyslogNotificationWords);
            if (saves % 100 == 0) data.settings.WriteSettings();
            ++saves;
            deletes += data.DeleteHost(Address(static_cast<int>(random() % kAddresses)).c_str());
            if (saves % 10 == 0 && app.ReadMACVendorFile()) ++reloads;
            KeepPace(saves, kFrames / kSaves * 9 / 10);
        }
    }

    void DrainLists() {
        while (!done) {
            const auto mark = data.newEntries.TakeMark();
            std::size_t told = 0;
            {
                FenceTaken inside(data.fences, Fence::NewEntries);
                data.newEntries.ForEach(mark, [&](HostRecord* host) {
                    if (host->ip.IsEmpty()) ++wrong;
                    return ++told, true;
                });
                if (data.newEntries.ClearTo(mark) != told) ++wrong;
            }
            {
                FenceTaken inside(data.fences, Fence::MacSpoofs);
                data.macSpoofs.ClearTo(data.macSpoofs.TakeMark(), [&](HostRecord* host) {
                    if (host->mac.GetLength() != 17) ++wrong;
                });
            }
            {
                FenceTaken inside(data.fences, Fence::SysLog);
                data.syslogNotifications.ClearTo(data.syslogNotifications.TakeMark(),
                                                 [](SyslogRecord* record) { delete record; });
            }
            while (auto item = data.wmiWork.TakeBack()) delete *item;
            for (int n = 0; n < 200 && data.netResWork.TakeBack(); ++n) {
            }
            ++drains;
            KeepPace(drains, kFrames / kDrains * 9 / 10);
        }
    }

    void PostEvents() {
        for (; !done; ++posts) {
            if (posts < kPosts) PostEvent(7, "a watched host", "10.9.0.1", nullptr);
            KeepPace(posts, kFrames / kPosts * 9 / 10);
            if (posts % 1000 != 0) continue;
            i32 last = 0;
            TheEventMap().ForEach([&](i32 key, EventRecord* event) {
                if (key != last + 1 || event->kind < 1) ++wrong;
                last = key;
            });
        }
    }

    void ReadHosts() {
        while (!done) {
            data.arpMap.ForEach([&](const TcString& key, HostRecord* host) {
                if (!(host->ip == key)) ++wrong;
                const TcString vendor(host->vendor), name(host->hostName);
                if (vendor.GetLength() > 60 || name.IsEmpty()) ++wrong;
                host->rowDirty = 0;
            });
            data.syslogs.ForEach([&](const TcString&, SyslogSourceList* list) {
                list->PurgeExpired();
                list->ForEach([&](const SyslogRecord& record) { wrong += !(record.text == "door opened"); });
            });
            Rest(1000);
        }
    }

    void PrintProgress() const {
        std::printf("frames %d, saves %d, deletes %d, vendor reloads %d, drains %d, posts %d, events %u, hosts %u\n",
                    frames.load(), saves.load(), deletes.load(), reloads.load(), drains.load(), posts.load(),
                    TheEventMap().Count(), data.arpMap.Count());
        std::fflush(stdout);
    }

    bool Reached() const {
        return frames >= kFrames && saves >= kSaves && deletes >= kDeletes && reloads >= kReloads &&
               drains >= kDrains && posts >= kPosts;
    }

    void EndRun() {
        for (ThreadParams* block : {&app.eventWriterParams, &app.shareParams, &app.workerParams})
            RequestStop(*block, system.services.events);
        std::vector<ThreadHandle> threads = app.abandonedThreads;
        threads.push_back(app.readVendorThread.handle);
        threads.push_back(app.writeEventsThread.handle);
        EXPECT_TRUE(system.services.threads.WaitAll(threads, 60000));
        for (ThreadHandle thread : threads) system.services.threads.Close(thread);
        app.abandonedThreads.clear();
        app.readVendorThread = {};
        app.writeEventsThread = {};
        TheEventMap().SetGuard(nullptr, nullptr);
    }
};

TEST_F(EngineStress, EverythingAtOnceLeavesTheStateWhole) {
    ASSERT_NO_FATAL_FAILURE(PrepareRun());
    std::vector<std::thread> threads;
    threads.emplace_back([&] { FeedFrames(); });
    threads.emplace_back([&] { ActAsMainThread(); });
    threads.emplace_back([&] { DrainLists(); });
    threads.emplace_back([&] { PostEvents(); });
    threads.emplace_back([&] { ReadHosts(); });
    for (int looks = 1; !Reached(); ++looks) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        if (looks % 500 == 0) PrintProgress();
    }
    done = true;
    for (std::thread& thread : threads) thread.join();
    EndRun();

    PrintProgress();
    EXPECT_EQ(wrong, 0);
    EXPECT_GE(frames, kFrames);
    EXPECT_GE(saves, kSaves);
    EXPECT_GE(deletes, kDeletes);
    EXPECT_GE(reloads, kReloads);
    EXPECT_GE(drains, kDrains);
    EXPECT_GT(std::filesystem::file_size(folder + "/vdl-events.log"), 0u);
    EXPECT_TRUE(std::filesystem::exists(folder + "/config/vardelwatch/settings.reg"));
    TheEventMap().Clear();
}

}  // namespace
}  // namespace vardel::test
