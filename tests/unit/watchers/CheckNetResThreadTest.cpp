#include <gtest/gtest.h>

#include <chrono>
#include <functional>

#include "capture/EventMap.h"
#include "capture/VardelARPImpl.h"
#include "tests/unit/support/Frames.h"
#include "tests/unit/support/TracedLines.h"
#include "tests/unit/support/WorkerFixture.h"

namespace vardel {
namespace {

// Each sleep of the worker runs the next step of the test, the last one stops it.
class CheckNetRes : public test::WorkerFixture {
  protected:
    CheckNetRes() {
        data.fences.CreateAll();
        created = events.created.size();
        TheEventMap().Clear();
    }
    ~CheckNetRes() override { TheEventMap().Clear(); }
    HostRecord& Waits(const std::string& ip) {
        HostRecord* host = data.Adopt(std::make_unique<HostRecord>());
        host->ip = ip.c_str();
        data.netResWork.Prepend(host);
        return *host;
    }
    // Runs the worker for `sleeps` of its pauses.
    void Run(std::size_t sleeps, std::function<void(std::size_t)> onSleep = {}) {
        events.onSleep = [this, sleeps, onSleep] {
            if (onSleep) onSleep(events.sleeps.size());
            if (events.sleeps.size() >= sleeps) params.stop = 1;
        };
        CheckNetResThread(&params);
    }
    std::vector<std::string> Asked() {
        std::vector<std::string> servers;
        for (const auto& call : system.shareEnumeration.calls) servers.push_back(call.server);
        return servers;
    }

    std::size_t created = 0;
};

using Steps = std::vector<std::string>;

TEST_F(CheckNetRes, EndsAtOnceWithoutParameters) {
    const test::TracedLines traced;
    CheckNetResThread(nullptr);
    EXPECT_EQ(traced.Steps(), Steps{"Vardel::CheckNetResThread: No params - Exit..."});
}

TEST_F(CheckNetRes, EndsAtOnceWithoutData) {
    const test::TracedLines traced;
    params.data = nullptr;
    CheckNetResThread(&params);
    EXPECT_EQ(traced.Steps(), Steps{"Vardel::CheckNetResThread: Exit..."});
}

TEST_F(CheckNetRes, EndsOnTheStopByteAndClosesItsEvent) {
    const test::TracedLines traced;
    const int open = events.open;
    params.stop = 1;
    CheckNetResThread(&params);
    ASSERT_EQ(events.created.size(), created + 1);
    EXPECT_EQ(events.created.back().name, "DoNothingEventNetRes");
    EXPECT_FALSE(events.created.back().manualReset);
    EXPECT_FALSE(events.created.back().signalled);
    EXPECT_EQ(events.open, open);
    EXPECT_TRUE(events.sleeps.empty());
    EXPECT_EQ(traced.Steps(), Steps{"Vardel::CheckNetResThread: Exit..."});
}

TEST_F(CheckNetRes, OnlySleepsWhileItsQueueIsEmpty) {
    Run(3);
    EXPECT_EQ(events.sleeps, (std::vector<u32>{10000, 10000, 10000}));
    EXPECT_TRUE(Asked().empty());
}

TEST_F(CheckNetRes, ServesOneEntryEachTenSecondsOldestFirst) {
    for (const char* ip : {"10.0.0.5", "10.0.0.6", "10.0.0.7"}) Waits(ip);
    std::vector<std::size_t> askedAtSleep;
    Run(4, [&](std::size_t) { askedAtSleep.push_back(Asked().size()); });
    EXPECT_EQ(Asked(), (Steps{"\\\\10.0.0.5", "\\\\10.0.0.6", "\\\\10.0.0.7"}));
    EXPECT_EQ(askedAtSleep, (std::vector<std::size_t>{1, 2, 3, 3}));
    EXPECT_EQ(events.sleeps, (std::vector<u32>{10000, 10000, 10000, 10000}));
}

TEST_F(CheckNetRes, HostThatRefusedOnceIsSkippedFromThenOn) {
    HostRecord& host = Waits("10.0.0.5");
    data.netResWork.Prepend(&host);
    data.netResWork.Prepend(&host);
    Run(3);
    EXPECT_EQ(Asked().size(), 1u);
    EXPECT_EQ(host.shareScanRefused, 1);
    EXPECT_EQ(host.shareScanBusy, 0);
    EXPECT_TRUE(data.netResWork.IsEmpty()) << "each entry is removed all the same";
}

TEST_F(CheckNetRes, SkipsAHostThatIsBusyAndSleepsAllTheSame) {
    Waits("10.0.0.5").shareScanBusy = 1;
    Run(1);
    EXPECT_TRUE(Asked().empty());
    EXPECT_TRUE(data.netResWork.IsEmpty());
    EXPECT_EQ(events.sleeps, std::vector<u32>{10000});
}

TEST_F(CheckNetRes, ScansAHostThatWaitsTwiceTwiceAndFindsNothingNew) {
    HostRecord& host = Waits("10.0.0.5");
    data.netResWork.Prepend(&host);
    for (int i = 0; i < 2; ++i)
        system.shareEnumeration.answers.push_back({kAllShares, {{.name = "Photos", .remark = {}, .path = {}}}, 0});
    Run(2);
    EXPECT_EQ(Asked().size(), 2u);
    EXPECT_EQ(data.newShares.Count(), 1u);
}

TEST_F(CheckNetRes, WithShareSearchOffTheQueueStaysEmpty) {
    data.settings.ShareSearch = 0;
    VardelARPImpl arp;
    const test::Frame frame = test::ArpReply{.ip = "10.0.0.5"};
    pcap_pkthdr header{};
    header.caplen = header.len = static_cast<u32>(frame.size());
    for (int i = 0; i < 3; ++i) arp.PacketReceived(&header, frame.data(), &data);
    EXPECT_TRUE(data.netResWork.IsEmpty());
    Run(2);
    EXPECT_TRUE(Asked().empty());
}

TEST_F(CheckNetRes, WithShareSearchOnALiveHostComesUpAgainAndAgain) {
    data.settings.ShareSearch = 1;
    VardelARPImpl arp;
    const test::Frame frame = test::ArpReply{.ip = "10.0.0.5"};
    pcap_pkthdr header{};
    header.caplen = header.len = static_cast<u32>(frame.size());
    system.shareEnumeration.answers.push_back({kAllShares, {{.name = "Photos", .remark = {}, .path = {}}}, 0});
    system.shareEnumeration.answers.push_back({kAllShares, {{.name = "Music", .remark = {}, .path = {}}}, 0});
    Run(2, [&](std::size_t) { arp.PacketReceived(&header, frame.data(), &data); });
    EXPECT_EQ(data.newShares.Count(), 1u);
    params.stop = 0;
    events.sleeps.clear();
    Run(1);
    EXPECT_EQ(data.newShares.Count(), 2u) << "the frame of a known host queued it again";
}

// Real events and a real thread: the pause of ten seconds is no obstacle to the end.
TEST(CheckNetResStop, EndsThePauseOnTheStopRequest) {
    test::TestServices system;
    VardelData data(system.services);
    ThreadParams params;
    params.data = &data;
    params.stopRequested = SystemEvents().Create(nullptr, true, false);
    ThreadHandle handle = nullptr;
    u32 id = 0;
    ASSERT_TRUE(SystemThreads().Start(&CheckNetResThread, &params, handle, id));
    const auto start = std::chrono::steady_clock::now();
    RequestStop(params, SystemEvents());
    EXPECT_TRUE(SystemThreads().WaitAll({&handle, 1}, 9000));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    SystemThreads().Close(handle);
    SystemEvents().Close(params.stopRequested);
}

}  // namespace
}  // namespace vardel
