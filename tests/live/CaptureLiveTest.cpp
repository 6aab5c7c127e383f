// Capture of real frames on a real interface.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>

#include "capture/AdapterDiscovery.h"
#include "capture/CaptureLoop.h"
#include "capture/FrameDispatch.h"
#include "tests/live/OwnNetwork.h"
#include "tests/unit/support/SystemCapture.h"
#include "tests/unit/support/TestServices.h"

namespace vardel::test {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// Far beyond anything that is waited for; a test that needs it has failed.
constexpr milliseconds kPatience{30000};

bool Becomes(const std::function<bool()>& condition) {
    const auto deadline = Clock::now() + kPatience;
    while (!condition()) {
        if (Clock::now() > deadline) return false;
        std::this_thread::sleep_for(milliseconds(20));
    }
    return true;
}

// The system's entry points, with openings and reads counted on their way.
struct Counted {
    inline static CaptureEntryPoints system;
    inline static std::atomic<int> opened = 0, refused = 0, failedReads = 0, timedOutReads = 0;

    static CaptureEntryPoints EntryPoints() {
        system = SystemEntryPoints();
        opened = refused = failedReads = timedOutReads = 0;
        CaptureEntryPoints entries = system;
        entries.open = [](const char* name, int snapLength, int flags, int timeoutMs, void* auth,
                          char* errors) {
            pcap_handle* handle = system.open(name, snapLength, flags, timeoutMs, auth, errors);
            ++(handle ? opened : refused);
            return handle;
        };
        entries.next_ex = [](pcap_handle* handle, pcap_pkthdr** header, const u8** frame) {
            const int result = system.next_ex(handle, header, frame);
            if (result == 0) ++timedOutReads;
            if (result < 0) ++failedReads;
            return result;
        };
        return entries;
    }
};

// The capture thread at work on the test's interface.
class LiveCapture : public testing::Test {
  protected:
    void SetUp() override {
        data.interfaceName = kWatched;
        data.capturing = 1;
        params.stopRequested = system.services.events.Create(nullptr, true, false);
    }
    void TearDown() override {
        if (thread.joinable()) Stop();
        system.services.events.Close(params.stopRequested);
    }
    void Start() {
        thread = std::thread([this] { CaptureLoop(params, entries).Run(); });
    }
    void Stop() {
        RequestStop(params, system.services.events);
        thread.join();
    }
    // Says it until the host is known: frames that arrive between two connections are lost.
    bool IsHeard(const std::string& address) {
        return Becomes([&] {
            EXPECT_TRUE(Send(ArpReply{.ip = address}));
            return data.arpMap.FindValue(address.c_str()) != nullptr;
        });
    }

    TestServices system;
    VardelData data{system.services};
    VardelARPImpl arp;
    VardelIPImpl ip;
    ThreadParams params{&arp, &ip, &data, nullptr, 0, nullptr};
    CaptureEntryPoints entries = Counted::EntryPoints();
    std::thread thread;
};

// One connection, read by hand.
class LiveConnection : public testing::Test {
  protected:
    void SetUp() override {
        handle = capture.open(kWatched, 65536, 1, 1000, nullptr, errors);
        ASSERT_NE(handle, nullptr) << errors;
        pcap_filter program{};
        ASSERT_GE(capture.compile(handle, &program, "arp or rarp or ip", 1, 0xffff0000), 0);
        ASSERT_GE(capture.setfilter(handle, &program), 0);
    }
    void TearDown() override {
        if (handle) capture.close(handle);
    }
    int Read() { return capture.next_ex(handle, &header, &frame); }

    const CaptureEntryPoints capture = SystemEntryPoints();
    pcap_handle* handle = nullptr;
    pcap_pkthdr* header = nullptr;
    const u8* frame = nullptr;
    char errors[kPcapErrorBufferSize] = "";
};

}  // namespace

TEST_F(LiveConnection, GivesZeroAfterASilentSecond) {
    for (int round = 0; round < 2; ++round) {
        const auto start = Clock::now();
        EXPECT_EQ(Read(), 0);
        EXPECT_GE(Clock::now() - start, milliseconds(1000));
    }
}

TEST_F(LiveConnection, HandsOutTheFrameAsItWasSent) {
    const Frame sent = ArpReply{.ip = "10.0.0.7", .mac = "02:00:00:00:00:07"};
    ASSERT_TRUE(Send(sent));
    ASSERT_EQ(Read(), 1);
    EXPECT_EQ(Frame(frame, frame + header->caplen), sent);
    EXPECT_EQ(header->len, sent.size());
    EXPECT_EQ(capture.datalink(handle), 1);
}

TEST_F(LiveConnection, HearsWhatIsMeantForOthers) {
    Frame foreign = UdpFrame{};
    const Frame address = FrameWriter().Mac("02:11:22:33:44:55").Done(false);
    std::copy(address.begin(), address.end(), foreign.begin());
    ASSERT_TRUE(Send(foreign));
    EXPECT_EQ(Read(), 1);
}

TEST_F(LiveConnection, LeavesTheOtherProtocolsOut) {
    Frame ipv6 = ArpReply{};
    ipv6[12] = 0x86;
    ipv6[13] = 0xdd;
    ASSERT_TRUE(Send(ipv6));
    EXPECT_EQ(Read(), 0);
}

// Frames that came during the last moments of the silence are still in the kernel's hands when the time-out
// is due.
TEST_F(LiveConnection, GivesAFrameOfTheLastMomentRatherThanZero) {
    // A busy machine may send too late; then the round says nothing and is done again.
    for (int round = 0; round < 20; ++round) {
        Clock::time_point sent;
        const auto start = Clock::now();
        std::thread sender([&] {
            std::this_thread::sleep_until(start + milliseconds(930));
            EXPECT_TRUE(Send(ArpReply{}));
            sent = Clock::now();
        });
        const int result = Read();
        sender.join();
        if (sent - start < milliseconds(990)) {
            EXPECT_EQ(result, 1);
            return;
        }
        while (Read() == 1) {
        }
    }
    FAIL() << "no frame could be sent in time";
}

TEST_F(LiveConnection, KeepsAllFramesThatComeWhileNobodyReads) {
    constexpr int kFrames = 20000;
    for (int i = 0; i < kFrames; ++i)
        ASSERT_TRUE(Send(ArpReply{.ip = "10.1." + std::to_string(i / 250) + "." + std::to_string(i % 250)}));
    int read = 0;
    while (Read() == 1) ++read;
    EXPECT_EQ(read, kFrames);
}

// The kernel hands a trickle over in many blocks; all of them must outlast a slow handler.
TEST_F(LiveConnection, KeepsATrickleThatComesWhileNobodyReads) {
    constexpr int kFrames = 30;
    for (int i = 0; i < kFrames; ++i) {
        ASSERT_TRUE(Send(ArpReply{}));
        std::this_thread::sleep_for(milliseconds(100));
    }
    int read = 0;
    while (Read() == 1) ++read;
    EXPECT_EQ(read, kFrames);
}

TEST_F(LiveCapture, LearnsAHostFromTheWire) {
    Start();
    EXPECT_TRUE(IsHeard("10.0.0.5"));
    EXPECT_STREQ(arp.interfaceName.GetContent(), kWatched);
}

TEST_F(LiveCapture, ReopensASilentInterfaceAgainAndAgain) {
    Start();
    EXPECT_TRUE(Becomes([] { return Counted::timedOutReads >= 3; }));
    Stop();
    EXPECT_GE(Counted::opened, 3);
    EXPECT_EQ(Counted::failedReads, 0);
    EXPECT_EQ(data.capturing, 1);
}

TEST_F(LiveCapture, HearsFramesAgainWhenTheInterfaceIsBack) {
    Start();
    ASSERT_TRUE(IsHeard("10.0.0.5"));
    ASSERT_TRUE(TakeInterfaceAway());
    EXPECT_TRUE(Becomes([] { return Counted::refused >= 2; })) << "it is tried again each second";
    EXPECT_GE(Counted::failedReads + Counted::timedOutReads, 1);
    EXPECT_EQ(data.capturing, 1);
    ASSERT_TRUE(BringInterface());
    EXPECT_TRUE(IsHeard("10.0.0.6"));
}

TEST_F(LiveCapture, HearsFramesAgainWhenTheInterfaceIsSwitchedOnAgain) {
    Start();
    ASSERT_TRUE(IsHeard("10.0.0.5"));
    ASSERT_TRUE(SwitchInterface(false));
    EXPECT_TRUE(Becomes([] { return Counted::refused >= 1; }));
    ASSERT_TRUE(SwitchInterface(true));
    EXPECT_TRUE(IsHeard("10.0.0.6"));
}

TEST_F(LiveCapture, GoesOnToAnotherInterfaceAtASilentSecond) {
    Start();
    ASSERT_TRUE(IsHeard("10.0.0.5"));
    data.interfaceName = "vardel-no-such";
    EXPECT_TRUE(Becomes([] { return Counted::refused >= 1; }));
    data.interfaceName = kWatched;
    EXPECT_TRUE(IsHeard("10.0.0.6"));
}

TEST_F(LiveConnection, FailsWhenTheInterfaceIsTakenAway) {
    ASSERT_TRUE(TakeInterfaceAway());
    int result = 0;
    for (int round = 0; round < 5 && result == 0; ++round) result = Read();
    EXPECT_LT(result, 0);
    ASSERT_TRUE(BringInterface());
}

TEST(LiveDiscovery, TellsTheInterfaceItsMacAndItsAddress) {
    ASSERT_EQ(
        std::system("ip address add 10.9.8.7/20 dev vcap0 && ip link set vcap0 address 02:0a:0b:0c:0d:ef"),
        0);
    TestServices system;
    system.resolver.shortName = "watcher";
    VardelData data(system.services);
    data.interfaceName = kWatched;
    EXPECT_GE(FindAdapters(data, SystemEntryPoints()), 1u);
    ASSERT_NE(data.adapterIndex, 0u);
    const AdapterRecord& adapter = *data.adapters.at(data.adapterIndex);
    EXPECT_STREQ(adapter.deviceName.GetContent(), kWatched);
    EXPECT_STREQ(adapter.ipAddress.GetContent(), "10.9.8.7");
    EXPECT_STREQ(adapter.netMask.GetContent(), "255.255.240.0");
    EXPECT_STREQ(adapter.macAddress.GetContent(), "02:0a:0b:0c:0d:ef");
    EXPECT_STREQ(data.localMac.GetContent(), "02:0a:0b:0c:0d:ef");
    HostRecord* host = data.arpMap.FindValue("10.9.8.7");
    ASSERT_NE(host, nullptr);
    EXPECT_EQ(host->isLocal, 1);
}

}  // namespace vardel::test

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (const std::string why = vardel::test::EnterOwnNetwork(); !why.empty()) {
        std::fprintf(stderr, "live capture can't be tested here: %s\n", why.c_str());
        return 1;
    }
    return RUN_ALL_TESTS();
}
