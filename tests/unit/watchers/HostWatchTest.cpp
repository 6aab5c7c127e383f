#include "watchers/HostWatch.h"

#include <set>
#include <stdexcept>

#include "capture/EventMap.h"
#include "tests/unit/support/AlertRecorder.h"
#include "tests/unit/support/SettingsFixture.h"
#include "tests/unit/support/TestServices.h"
#include "tests/unit/support/TracedLines.h"

namespace vardel::test {
namespace {

constexpr char kOnlineColors[] = "watch colors (0,100,0) (0,150,0) (255,255,255) (45,98,19)";
constexpr char kOfflineColors[] = "watch colors (180,0,0) (128,0,0) (255,255,255) (100,0,0)";

struct WatchEvent {
    i32 kind;
    std::string host, info, text;
    bool operator==(const WatchEvent&) const = default;
};
using WatchEvents = std::vector<WatchEvent>;

// Some watched hosts, those of them that are up, and one popup.
class HostWatch : public SettingsFixture {
  protected:
    HostWatch() {
        TheEventMap().Clear();
        system.strings.texts[105] = "Host %s is alive !";
        system.strings.texts[106] = "Host %s is not reachable !";
        data.settings.WatchVisualization = 1;
        data.settings.WatchConfirm = 1;
    }
    ~HostWatch() override { TheEventMap().Clear(); }

    void Watches(const std::string& ip, u8 online, const std::string& name = "nas") {
        WatchedHost host{};
        Put(host.ipAddress, ip);
        Put(host.hostName, name);
        host.online = online;
        Add(data.settings.watchedHosts, ip, host);
    }
    HostRecord& Knows(const std::string& ip) {
        HostRecord* host = data.Adopt(std::make_unique<HostRecord>());
        host->ip = ip.c_str();
        data.arpMap.Insert(ip.c_str(), host);
        return *host;
    }
    void Tick(NotifyPopup* shown) {
        CheckWatchedHosts(data, shown, nullptr, [this](const char* address) {
            probed.push_back(address);
            if (failing.count(address)) throw std::runtime_error("probe");
            return up.count(address) != 0;
        });
    }
    void Tick() { Tick(&popup); }
    int State(const std::string& ip) { return data.settings.watchedHosts.FindValue(ip.c_str())->Read().online; }
    // The state in the settings store; -1 when nothing was saved.
    int SavedState(int number = 0) {
        const RegistryValue* value = store.Value(kProduct + "\\WatchedHosts", "Host" + std::to_string(number));
        return value && value->data.size() == sizeof(WatchedHost) ? value->data[offsetof(WatchedHost, online)] : -1;
    }
    static WatchEvents Events() {
        WatchEvents all;
        TheEventMap().ForEach([&](i32, const EventRecord* event) {
            all.push_back({event->kind, event->host.GetContent(), event->info.GetContent(), event->text.GetContent()});
        });
        return all;
    }

    TestServices system;
    VardelData data{system.services};
    Calls calls;
    RecordingPopup popup{"watch", calls};
    std::set<std::string> up, failing;
    std::vector<std::string> probed;
};

TEST_F(HostWatch, EndsAtOnceWithAnEmptyTable) {
    Tick();
    EXPECT_TRUE(calls.empty());
    EXPECT_TRUE(probed.empty());
}

TEST_F(HostWatch, ProbesEachHostOnceAndSaysNothingWithoutAChange) {
    Watches("10.0.0.5", 1);
    Watches("10.0.0.6", 0);
    up = {"10.0.0.5"};
    HostRecord& known = Knows("10.0.0.5");
    known.offline = 1;
    HostRecord& other = Knows("10.0.0.6");
    Tick();
    EXPECT_EQ(probed, (std::vector<std::string>{"10.0.0.5", "10.0.0.6"}));
    EXPECT_TRUE(calls.empty());
    EXPECT_TRUE(Events().empty());
    EXPECT_EQ(SavedState(), -1);
    EXPECT_EQ(known.offline, 1) << "without a change the mark isn't touched";
    EXPECT_EQ(other.offline, 0) << "a host that was offline already isn't marked";
}

TEST_F(HostWatch, TellsThatAHostWentOffline) {
    Watches("10.0.0.5", 1);
    HostRecord& known = Knows("10.0.0.5");
    Tick();
    EXPECT_EQ(calls, (Calls{"watch time -1", kOfflineColors, "watch show Host nas is not reachable !"}));
    EXPECT_EQ(Events(), (WatchEvents{{8, "nas", "10.0.0.5", ""}}));
    EXPECT_EQ(State("10.0.0.5"), 0);
    EXPECT_EQ(SavedState(), 0);
    EXPECT_EQ(known.offline, 1);
}

TEST_F(HostWatch, TellsThatAHostCameBack) {
    Watches("10.0.0.5", 0);
    HostRecord& known = Knows("10.0.0.5");
    known.offline = 1;
    up = {"10.0.0.5"};
    Tick();
    EXPECT_EQ(calls, (Calls{"watch time -1", kOnlineColors, "watch show Host nas is alive !"}));
    EXPECT_EQ(Events(), (WatchEvents{{7, "nas", "10.0.0.5", ""}}));
    EXPECT_EQ(State("10.0.0.5"), 1);
    EXPECT_EQ(SavedState(), 1);
    EXPECT_EQ(known.offline, 0);
}

TEST_F(HostWatch, ShowsThePopupForAWhileWhenNoClickIsAskedFor) {
    data.settings.WatchConfirm = 0;
    Watches("10.0.0.5", 1);
    Tick();
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ(calls[0], "watch time 7500");
}

TEST_F(HostWatch, NeedsNoHostRecord) {
    Watches("192.0.2.1", 1);
    Tick();
    EXPECT_EQ(State("192.0.2.1"), 0);
}

TEST_F(HostWatch, WithoutVisualizationSavesAndMarksButNeitherShowsNorLogs) {
    data.settings.WatchVisualization = 0;
    Watches("10.0.0.5", 1);
    Watches("10.0.0.6", 0);
    up = {"10.0.0.6"};
    HostRecord& down = Knows("10.0.0.5");
    HostRecord& back = Knows("10.0.0.6");
    back.offline = 1;
    popup.showing = true;
    Tick();
    EXPECT_TRUE(calls.empty());
    EXPECT_TRUE(Events().empty());
    EXPECT_EQ(State("10.0.0.5"), 0);
    EXPECT_EQ(State("10.0.0.6"), 1);
    EXPECT_EQ(SavedState(0), 0);
    EXPECT_EQ(SavedState(1), 1);
    EXPECT_EQ(down.offline, 1);
    EXPECT_EQ(back.offline, 0);
}

TEST_F(HostWatch, WithoutAPopupKeepsTheStateAndMovesOnlyTheMark) {
    Watches("10.0.0.5", 1);
    HostRecord& known = Knows("10.0.0.5");
    Tick(nullptr);
    EXPECT_EQ(State("10.0.0.5"), 1);
    EXPECT_EQ(SavedState(), -1);
    EXPECT_TRUE(Events().empty());
    EXPECT_EQ(known.offline, 1);
}

TEST_F(HostWatch, WhileThePopupShowsOnlyItsTimeAndTheMarkChange) {
    data.settings.WatchConfirm = 0;
    Watches("10.0.0.5", 1);
    HostRecord& known = Knows("10.0.0.5");
    popup.showing = true;
    Tick();
    EXPECT_EQ(calls, Calls{"watch time 7500"}) << "the time reaches the popup that is showing";
    EXPECT_EQ(State("10.0.0.5"), 1);
    EXPECT_EQ(SavedState(), -1);
    EXPECT_TRUE(Events().empty());
    EXPECT_EQ(known.offline, 1);
}

TEST_F(HostWatch, SecondChangeOfATickWaitsUntilThePopupIsGone) {
    Watches("10.0.0.5", 1, "nas");
    Watches("10.0.0.6", 1, "printer");
    Tick();
    EXPECT_EQ(Events(), (WatchEvents{{8, "nas", "10.0.0.5", ""}}));
    EXPECT_EQ(State("10.0.0.6"), 1);
    Tick();
    EXPECT_EQ(Events().size(), 1u) << "it is still showing";
    popup.showing = false;
    Tick();
    EXPECT_EQ(Events(), (WatchEvents{{8, "nas", "10.0.0.5", ""}, {8, "printer", "10.0.0.6", ""}}));
    EXPECT_EQ(State("10.0.0.6"), 0);
    EXPECT_EQ(SavedState(1), 0);
}

TEST_F(HostWatch, PopupLeftUnclickedHoldsEveryFurtherChangeBack) {
    Watches("10.0.0.5", 1);
    Tick();
    up = {"10.0.0.5"};
    for (int i = 0; i < 50; ++i) Tick();
    EXPECT_EQ(Events().size(), 1u);
    EXPECT_EQ(State("10.0.0.5"), 0);
    EXPECT_EQ(SavedState(), 0);
}

TEST_F(HostWatch, NamelessHostIsShownByItsAddressAndLoggedWithoutAName) {
    Watches("10.0.0.5", 1, "");
    Tick();
    EXPECT_EQ(calls.back(), "watch show Host 10.0.0.5 is not reachable !");
    EXPECT_EQ(Events(), (WatchEvents{{8, "", "10.0.0.5", ""}}));
}

TEST_F(HostWatch, NameIsNoFormat) {
    Watches("10.0.0.5", 1, "%s%n%d");
    Tick();
    EXPECT_EQ(calls.back(), "watch show Host %s%n%d is not reachable !");
}

TEST_F(HostWatch, CutsTheTextAt255Characters) {
    system.strings.texts[106] = std::string(280, 'x') + " %s";
    Watches("10.0.0.5", 1);
    Tick();
    EXPECT_EQ(calls.back(), "watch show " + std::string(255, 'x'));
}

TEST_F(HostWatch, TakesTheTextFromTheLanguageItIsGiven) {
    system.strings.texts[106] = "%s antwortet nicht";
    Watches("10.0.0.5", 1);
    Tick();
    EXPECT_EQ(calls.back(), "watch show nas antwortet nicht");
}

TEST_F(HostWatch, ExceptionOnTheFirstHostMakesItOffline) {
    Watches("10.0.0.5", 1);
    failing = {"10.0.0.5"};
    const TracedLines traced;
    Tick();
    EXPECT_EQ(State("10.0.0.5"), 0);
    EXPECT_EQ(traced.Steps(), std::vector<std::string>{"VardelGui::OnTimer: Exception on ping check"});
}

TEST_F(HostWatch, ExceptionOnALaterHostMakesItWhatTheOneBeforeWas) {
    data.settings.WatchVisualization = 0;
    Watches("10.0.0.5", 0);
    Watches("10.0.0.6", 0);
    Watches("10.0.0.7", 1);
    Watches("10.0.0.8", 1);
    up = {"10.0.0.5"};
    failing = {"10.0.0.6", "10.0.0.8"};
    Tick();
    EXPECT_EQ(State("10.0.0.5"), 1);
    EXPECT_EQ(State("10.0.0.6"), 1) << "as the one before, which answered";
    EXPECT_EQ(State("10.0.0.7"), 0);
    EXPECT_EQ(State("10.0.0.8"), 0) << "as the one before, which did not";
}

TEST_F(HostWatch, SavesTheWholeTableAtAChange) {
    Watches("10.0.0.5", 1);
    Watches("10.0.0.6", 0);
    Tick();
    EXPECT_EQ(SavedState(0), 0);
    EXPECT_EQ(SavedState(1), 0);
}

TEST_F(HostWatch, SaveThatFailsIsSilent) {
    Watches("10.0.0.5", 1);
    store.fails = [](const std::string&) { return true; };
    Tick();
    EXPECT_EQ(State("10.0.0.5"), 0);
    EXPECT_EQ(Events().size(), 1u);
}

TEST_F(HostWatch, EveryResultOfTheEchoButAnAnswerMeansOffline) {
    Watches("10.0.0.5", 1, "silent");
    Watches("no-such-name", 1, "unknown");
    data.settings.WatchVisualization = 0;
    system.resolver.addresses["10.0.0.5"] = 0x0500000a;
    CheckWatchedHosts(data, &popup);
    EXPECT_EQ(State("10.0.0.5"), 0);
    EXPECT_EQ(State("no-such-name"), 0);
    system.rawIcmp.answer = IcmpWait::Readable;
    CheckWatchedHosts(data, &popup);
    EXPECT_EQ(State("10.0.0.5"), 1);
    EXPECT_EQ(State("no-such-name"), 0);
    system.rawIcmp.refuses = true;
    CheckWatchedHosts(data, &popup);
    EXPECT_EQ(State("10.0.0.5"), 0) << "without the right to probe every host is offline";
}

}  // namespace
}  // namespace vardel::test
