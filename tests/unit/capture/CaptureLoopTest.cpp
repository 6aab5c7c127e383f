#include "capture/CaptureLoop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "capture/EventMap.h"
#include "capture/FrameDispatch.h"
#include "tests/unit/support/ScriptedCapture.h"
#include "tests/unit/support/ScriptedEvents.h"
#include "tests/unit/support/TestServices.h"
#include "tests/unit/support/TracedLines.h"

namespace vardel::test {

namespace {

using Names = std::vector<std::string>;

struct RecordingArp : VardelARPImpl {
    u32 PacketReceived(const pcap_pkthdr* header, const u8* frame, VardelData*) override {
        frames.emplace_back(frame, frame + header->caplen);
        interfaces.push_back(interfaceName.GetContent());
        return 0;
    }
    std::vector<Frame> frames;
    Names interfaces;  // at each frame
};

struct RecordingIp : VardelIPImpl {
    u32 PacketReceived(const pcap_pkthdr* header, const u8* frame, VardelData*) override {
        frames.emplace_back(frame, frame + header->caplen);
        return 0;
    }
    std::vector<Frame> frames;
};

struct Posted {
    i32 kind;
    std::string host;
    bool operator==(const Posted&) const = default;
    friend void PrintTo(const Posted& posted, std::ostream* out) {
        *out << posted.kind << " '" << posted.host << "'";
    }
};

const Posted kStarted{3, "eth0"};
const Posted kStopped{4, ""};
const Posted kNoInterface{9, ""};

// The capture thread's loop on a scripted adapter. It runs on the test's thread, and nothing takes time:
// where the program sleeps, the script goes on. A script that has come to its end sets the stop byte.
class CaptureLoopTest : public testing::Test {
  protected:
    void SetUp() override {
        data.interfaceName = "eth0";
        data.capturing = 1;
        capture.onExhausted = [this] { params.stop = 1; };
        // A script that doesn't end is an error of the test; better a failure than a hang.
        events.onSleep = [this] {
            if (events.sleeps.size() > 50) params.stop = 1;
        };
    }

    void Run() {
        TheEventMap().Clear();
        CaptureLoop(params, entries).Run();
        EXPECT_EQ(capture.connectionsOpen, entries.close ? 0 : capture.CallsOf("open"));
    }
    std::vector<Posted> PostedEvents() {
        std::vector<Posted> posted;
        TheEventMap().ForEach(
            [&](i32, const EventRecord* event) { posted.push_back({event->kind, event->host.GetContent()}); });
        return posted;
    }
    // Sets the stop byte at the `count`th opening.
    void StopAtOpening(int count, bool opens) {
        capture.onOpen = [this, count, opens](const std::string&) {
            if (capture.CallsOf("open") >= count) params.stop = 1;
            return opens;
        };
    }
    void Hears(const Frame& frame) { capture.reads.push_back({.frame = frame}); }
    void HearsAfter(std::function<void()> before) {
        capture.reads.push_back({.frame = ArpReply{}, .before = before});
    }
    void TimesOutAfter(std::function<void()> before) {
        capture.reads.push_back({.result = 0, .before = before});
    }
    void TimesOut() { capture.reads.push_back({.result = 0}); }

    ScriptedEvents events;
    TestServices system;
    Services services = system.services.With(events);
    VardelData data{services};
    RecordingArp arp;
    RecordingIp ip;
    ScriptedCapture capture;
    CaptureEntryPoints entries = capture.EntryPoints();
    ThreadParams params{&arp, &ip, &data, nullptr, 0, nullptr};
};

const Names kWholeConnection = {"open eth0 65536 1 1000",
                                "datalink",
                                "compile arp or rarp or ip 1 4294901760",
                                "setfilter",
                                "next",
                                "close"};

}  // namespace

TEST_F(CaptureLoopTest, OpensChecksFiltersReadsAndCloses) {
    Run();
    EXPECT_EQ(capture.calls, kWholeConnection);
    EXPECT_TRUE(events.sleeps.empty());
}

TEST_F(CaptureLoopTest, EndsAtOnceWhereStopIsSetBefore) {
    params.stop = 1;
    Run();
    EXPECT_TRUE(capture.calls.empty());
    EXPECT_TRUE(PostedEvents().empty());
}

TEST_F(CaptureLoopTest, SleepsOnAnEventOfItsOwnThatItCloses) {
    Run();
    ASSERT_EQ(events.created.size(), 1u);
    EXPECT_EQ(events.created[0].name, "DoNothingEvent");
    EXPECT_FALSE(events.created[0].manualReset);
    EXPECT_FALSE(events.created[0].signalled);
    EXPECT_EQ(events.open, 0);
}

TEST_F(CaptureLoopTest, WaitsASecondAtATimeWhileSwitchedOff) {
    data.capturing = 0;
    events.onSleep = [this] {
        if (events.sleeps.size() == 3) params.stop = 1;
    };
    Run();
    EXPECT_EQ(events.sleeps, (std::vector<u32>{1000, 1000, 1000}));
    EXPECT_TRUE(capture.calls.empty());
    EXPECT_TRUE(PostedEvents().empty());
}

TEST_F(CaptureLoopTest, StartsWhenItIsSwitchedOn) {
    data.capturing = 0;
    events.onSleep = [this] { data.capturing = 1; };
    Run();
    EXPECT_EQ(capture.calls, kWholeConnection);
    EXPECT_EQ(PostedEvents(), std::vector<Posted>{kStarted});
}

TEST_F(CaptureLoopTest, TellsTheStartOnceOverManyConnections) {
    for (int i = 0; i < 5; ++i) TimesOut();
    Run();
    EXPECT_EQ(capture.CallsOf("open"), 6);
    EXPECT_EQ(PostedEvents(), std::vector<Posted>{kStarted});
}

TEST_F(CaptureLoopTest, EndsCaptureWhereNoInterfaceIsChosen) {
    data.interfaceName = "";
    events.onSleep = [this] { params.stop = 1; };
    Run();
    EXPECT_EQ(PostedEvents(), (std::vector<Posted>{{3, ""}, kNoInterface}));
    EXPECT_EQ(data.capturing, 0);
    EXPECT_TRUE(capture.calls.empty());
}

TEST_F(CaptureLoopTest, TellsTheWantOfAnInterfaceAtEachStart) {
    data.interfaceName = "";
    events.onSleep = [this] {
        data.capturing = 1;
        if (events.sleeps.size() == 2) params.stop = 1;
    };
    Run();
    EXPECT_EQ(PostedEvents(), (std::vector<Posted>{{3, ""}, kNoInterface, {3, ""}, kNoInterface}));
}

TEST_F(CaptureLoopTest, EndsCaptureWhenTheInterfaceIsTakenOutOfTheSettings) {
    TimesOutAfter([this] { data.interfaceName = ""; });
    events.onSleep = [this] { params.stop = 1; };
    Run();
    EXPECT_EQ(PostedEvents(), (std::vector<Posted>{kStarted, kNoInterface}));
    EXPECT_EQ(data.capturing, 0);
}

TEST_F(CaptureLoopTest, RetriesEachSecondSilentlyWhereTheAdapterDoesNotOpen) {
    StopAtOpening(4, false);
    Run();
    EXPECT_EQ(capture.CallsOf("open"), 4);
    EXPECT_EQ(capture.calls.size(), 4u);
    // The last failure meets the stop byte and doesn't sleep.
    EXPECT_EQ(events.sleeps, (std::vector<u32>{1000, 1000, 1000}));
    EXPECT_EQ(PostedEvents(), std::vector<Posted>{kStarted});
    EXPECT_EQ(data.capturing, 1);
}

TEST_F(CaptureLoopTest, GoesOnWhenTheAdapterIsBack) {
    capture.onOpen = [this](const std::string&) {
        return capture.CallsOf("open") != 2 && capture.CallsOf("open") != 3;
    };
    capture.reads.push_back({.result = -1});
    Hears(ArpReply{});
    Run();
    EXPECT_EQ(capture.CallsOf("open"), 4);
    EXPECT_EQ(events.sleeps, (std::vector<u32>{1000, 1000}));
    EXPECT_EQ(arp.frames.size(), 1u);
    EXPECT_EQ(PostedEvents(), std::vector<Posted>{kStarted});
}

TEST_F(CaptureLoopTest, ReopensAtOnceAfterAReadTimeOut) {
    TimesOut();
    Hears(ArpReply{});
    Run();
    EXPECT_EQ(capture.CallsOf("open"), 2);
    EXPECT_EQ(capture.CallsOf("close"), 2);
    EXPECT_TRUE(events.sleeps.empty());
    EXPECT_EQ(arp.frames.size(), 1u);
}

TEST_F(CaptureLoopTest, ReopensAtOnceAfterAReadError) {
    for (int result : {-1, -2}) capture.reads.push_back({.result = result});
    Run();
    EXPECT_EQ(capture.CallsOf("open"), 3);
    EXPECT_TRUE(events.sleeps.empty());
}

TEST_F(CaptureLoopTest, RetriesAnAdapterThatIsNotEthernetWithoutAPauseUntilStopped) {
    capture.linkType = 0;
    StopAtOpening(100, true);
    Run();
    EXPECT_EQ(capture.CallsOf("open"), 100);
    EXPECT_EQ(capture.CallsOf("close"), 100);
    EXPECT_EQ(capture.CallsOf("compile"), 0);
    EXPECT_TRUE(events.sleeps.empty());
    EXPECT_EQ(PostedEvents(), std::vector<Posted>{kStarted});
}

TEST_F(CaptureLoopTest, RetriesWithoutAPauseWhereTheFilterDoesNotCompile) {
    capture.compileResult = -1;
    StopAtOpening(3, true);
    Run();
    EXPECT_EQ(capture.CallsOf("close"), 3);
    EXPECT_EQ(capture.CallsOf("setfilter"), 0);
    EXPECT_TRUE(events.sleeps.empty());
}

TEST_F(CaptureLoopTest, RetriesWithoutAPauseWhereTheFilterIsRefused) {
    capture.setFilterResult = -1;
    StopAtOpening(3, true);
    Run();
    EXPECT_EQ(capture.CallsOf("close"), 3);
    EXPECT_EQ(capture.CallsOf("next"), 0);
    EXPECT_TRUE(events.sleeps.empty());
}

TEST_F(CaptureLoopTest, TakesAPositiveFilterResultForSuccess) {
    capture.compileResult = 1;
    capture.setFilterResult = 1;
    Run();
    EXPECT_EQ(capture.CallsOf("next"), 1);
}

TEST_F(CaptureLoopTest, WithoutAnEntryToOpenWithRetriesEachSecond) {
    entries.open = nullptr;
    events.onSleep = [this] {
        if (events.sleeps.size() == 3) params.stop = 1;
    };
    Run();
    EXPECT_EQ(events.sleeps, (std::vector<u32>{1000, 1000, 1000}));
    EXPECT_TRUE(capture.calls.empty());
}

TEST_F(CaptureLoopTest, WithoutAnEntryForTheLinkTypeClosesAgain) {
    entries.datalink = nullptr;
    StopAtOpening(2, true);
    Run();
    EXPECT_EQ(capture.calls, (Names{kWholeConnection[0], "close", kWholeConnection[0], "close"}));
}

TEST_F(CaptureLoopTest, WithoutAnEntryToCompileClosesAgain) {
    entries.compile = nullptr;
    StopAtOpening(1, true);
    Run();
    EXPECT_EQ(capture.calls, (Names{kWholeConnection[0], "datalink", "close"}));
}

TEST_F(CaptureLoopTest, WithoutAnEntryForTheFilterClosesAgain) {
    entries.setfilter = nullptr;
    StopAtOpening(1, true);
    Run();
    EXPECT_EQ(capture.calls, (Names{kWholeConnection[0], "datalink", kWholeConnection[2], "close"}));
}

TEST_F(CaptureLoopTest, WithoutAnEntryToReadClosesAgain) {
    entries.next_ex = nullptr;
    StopAtOpening(1, true);
    Run();
    EXPECT_EQ(capture.calls,
              (Names{kWholeConnection[0], "datalink", kWholeConnection[2], "setfilter", "close"}));
}

TEST_F(CaptureLoopTest, WithoutAnEntryToCloseGoesOn) {
    entries.close = nullptr;
    TimesOut();
    Run();
    EXPECT_EQ(capture.CallsOf("open"), 2);
}

TEST_F(CaptureLoopTest, HandsArpAndRarpToOneHandlerAndEverythingElseToTheOther) {
    const Frame arpFrame = ArpReply{};
    const Frame rarpFrame = RarpRequest{};
    const Frame ipFrame = UdpFrame{};
    Frame ipv6Frame = ipFrame;
    ipv6Frame[12] = 0x86;
    ipv6Frame[13] = 0xdd;
    Frame swapped = arpFrame;  // 0x0608
    std::swap(swapped[12], swapped[13]);
    for (const Frame& frame : {arpFrame, ipFrame, rarpFrame, ipv6Frame, swapped}) Hears(frame);
    Run();
    EXPECT_EQ(arp.frames, (std::vector<Frame>{arpFrame, rarpFrame}));
    EXPECT_EQ(ip.frames, (std::vector<Frame>{ipFrame, ipv6Frame, swapped}));
}

TEST_F(CaptureLoopTest, HandsAFrameWithoutAnEtherTypeToTheIpHandler) {
    const Frame stump(12, u8{8});
    Frame half = ArpReply{};
    half.resize(13);
    Hears(stump);
    Hears(half);
    Run();
    EXPECT_TRUE(arp.frames.empty());
    EXPECT_EQ(ip.frames, (std::vector<Frame>{stump, half}));
}

TEST_F(CaptureLoopTest, PassesOverAFrameWithoutData) {
    Hears({});
    Hears(ArpReply{});
    Run();
    EXPECT_EQ(arp.frames.size(), 1u);
    EXPECT_TRUE(ip.frames.empty());
    EXPECT_EQ(capture.CallsOf("open"), 1);
}

TEST_F(CaptureLoopTest, TellsAStopThatAFrameFollows) {
    HearsAfter([this] { data.capturing = 0; });
    events.onSleep = [this] { params.stop = 1; };
    Run();
    EXPECT_EQ(PostedEvents(), (std::vector<Posted>{kStarted, kStopped}));
    EXPECT_TRUE(arp.frames.empty()) << "the frame after the stop is nobody's";
    EXPECT_EQ(capture.calls.back(), "close");
}

TEST_F(CaptureLoopTest, TellsTheNextStartAfterAToldStop) {
    HearsAfter([this] { data.capturing = 0; });
    events.onSleep = [this] { data.capturing = 1; };
    Run();
    EXPECT_EQ(PostedEvents(), (std::vector<Posted>{kStarted, kStopped, kStarted}));
}

TEST_F(CaptureLoopTest, OnAQuietNetworkTellsNeitherTheStopNorTheNextStart) {
    TimesOutAfter([this] { data.capturing = 0; });
    events.onSleep = [this] { data.capturing = 1; };
    Hears(ArpReply{});
    Run();
    EXPECT_EQ(PostedEvents(), std::vector<Posted>{kStarted});
    EXPECT_EQ(events.sleeps, std::vector<u32>{1000});
    EXPECT_EQ(arp.frames.size(), 1u);
}

TEST_F(CaptureLoopTest, TellsAStopThatAFrameFollowsAfterAnUntoldRestart) {
    TimesOutAfter([this] { data.capturing = 0; });
    HearsAfter([this] { data.capturing = 0; });
    events.onSleep = [this] {
        data.capturing = 1;
        if (events.sleeps.size() == 2) params.stop = 1;
    };
    Run();
    EXPECT_EQ(PostedEvents(), (std::vector<Posted>{kStarted, kStopped}));
}

TEST_F(CaptureLoopTest, TellsTheWantOfAnInterfaceAfterAnUntoldStop) {
    TimesOutAfter([this] { data.capturing = 0; });
    events.onSleep = [this] {
        data.interfaceName = "";
        data.capturing = 1;
        if (events.sleeps.size() == 2) params.stop = 1;
    };
    Run();
    EXPECT_EQ(PostedEvents(), (std::vector<Posted>{kStarted, kNoInterface}));
}

TEST_F(CaptureLoopTest, LeavesTheFrameThatMeetsTheStopByteToNobody) {
    HearsAfter([this] { params.stop = 1; });
    Run();
    EXPECT_TRUE(arp.frames.empty());
    EXPECT_EQ(PostedEvents(), std::vector<Posted>{kStarted});
    EXPECT_EQ(capture.CallsOf("next"), 1);
    EXPECT_EQ(capture.calls.back(), "close");
}

TEST_F(CaptureLoopTest, EndsAfterTheReadThatWasUnderWayWhenStopped) {
    TimesOutAfter([this] { params.stop = 1; });
    Run();
    EXPECT_EQ(capture.calls, kWholeConnection);
    EXPECT_TRUE(events.sleeps.empty());
}

TEST_F(CaptureLoopTest, TakesAnotherInterfaceAtTheNextConnectionOnly) {
    Hears(ArpReply{});
    HearsAfter([this] { data.interfaceName = "eth1"; });
    Hears(ArpReply{});
    TimesOut();
    Hears(ArpReply{});
    Run();
    EXPECT_EQ(arp.interfaces, (Names{"eth0", "eth0", "eth0", "eth1"}));
    EXPECT_EQ(capture.CallsOf("open"), 2);
    EXPECT_EQ(capture.calls[0], "open eth0 65536 1 1000");
    EXPECT_EQ(PostedEvents(), std::vector<Posted>{kStarted}) << "a change of interface is no new start";
}

TEST_F(CaptureLoopTest, GivesTheNameToTheArpHandlerEvenWhereTheLinkIsUnfit) {
    capture.linkType = 113;
    StopAtOpening(1, true);
    Run();
    EXPECT_STREQ(arp.interfaceName.GetContent(), "eth0");
}

TEST_F(CaptureLoopTest, TracesEachStepOfAConnection) {
    const TracedLines traced;
    Run();
    Names steps;
    for (const char* message :
         {"Connecting...", "Connected...", "Get datalink...", "Datalink ok...", "Compile interface...",
          "Interface compiled...", "Setting filter...", "Setting filter ok...", "Start loop...",
          "PcapNext Result: 0", "Closing connection..."})
        steps.push_back(std::string("Vardel::SnifferThread: ") + message);
    EXPECT_EQ(traced.Steps(), steps);
}

TEST_F(CaptureLoopTest, TracesTheResultThatEndedTheReading) {
    const TracedLines traced;
    capture.reads.push_back({.result = -2});
    HearsAfter([this] { params.stop = 1; });
    Run();
    const Names steps = traced.Steps();
    const auto at = [&](std::size_t fromEnd) {
        return steps.size() < fromEnd ? "" : steps[steps.size() - fromEnd];
    };
    EXPECT_EQ(std::count(steps.begin(), steps.end(), "Vardel::SnifferThread: PcapNext Result: -2"), 1);
    EXPECT_EQ(at(3), "Vardel::SnifferThread: App is going home...");
    EXPECT_EQ(at(2), "Vardel::SnifferThread: PcapNext Result: 1");
    EXPECT_EQ(at(1), "Vardel::SnifferThread: Closing connection...");
}

TEST_F(CaptureLoopTest, TracesNoResultWhereNothingWasRead) {
    const TracedLines traced;
    capture.linkType = 0;
    StopAtOpening(1, true);
    Run();
    EXPECT_EQ(
        traced.Steps(),
        (Names{"Vardel::SnifferThread: Connecting...", "Vardel::SnifferThread: Connected...",
               "Vardel::SnifferThread: Get datalink...", "Vardel::SnifferThread: Closing connection..."}));
}

TEST_F(CaptureLoopTest, TracesTheAttemptToConnectAlone) {
    const TracedLines traced;
    StopAtOpening(1, false);
    Run();
    EXPECT_EQ(traced.Steps(), Names{"Vardel::SnifferThread: Connecting..."});
}

// The loop on a thread of its own with the system's events: a sleep ends with the stop request.
TEST(CaptureLoopThread, LeavesItsSleepOnTheStopRequest) {
    TestServices system;
    VardelData data(system.services);
    RecordingArp arp;
    RecordingIp ip;
    Events& events = system.services.events;
    ThreadParams params{&arp, &ip, &data, nullptr, 0, events.Create(nullptr, true, false)};
    const CaptureEntryPoints none;
    std::thread thread([&] { CaptureLoop(params, none).Run(); });
    RequestStop(params, events);
    thread.join();
    events.Close(params.stopRequested);
    EXPECT_EQ(data.capturing, 0);
}

}  // namespace vardel::test
