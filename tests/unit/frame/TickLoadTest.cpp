// What the ticks do where there is a great deal to tell.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

#include "tests/unit/support/TickFixture.h"

namespace vardel {
namespace {

using test::Calls;
using Clock = std::chrono::steady_clock;

class TickLoadTest : public test::TickFixture {
  protected:
    TickLoadTest() { TellHostsInPopups(); }
    static std::string AddressOf(u32 host) {
        return "10." + std::to_string(host >> 16) + "." + std::to_string(host >> 8 & 255) + "." +
               std::to_string(host & 255);
    }
    static std::size_t LinesOf(const std::string& text) {
        return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
    }
    static std::size_t WordsOf(const std::string& text) {
        return static_cast<std::size_t>(std::count(text.begin(), text.end(), ' ')) + 1;
    }
};

TEST_F(TickLoadTest, TenThousandNewHostsMakeOneAlertAndOnePluginItemWithAllOfThem) {
    for (u32 host = 0; host < 10'000; ++host) Arrives(AddressOf(host));
    Tick(kTrayTimer);
    const Calls calls = TakeAlerts();
    ASSERT_EQ(calls.size(), 4u);
    EXPECT_EQ(LinesOf(calls[2]), 500u);
    EXPECT_TRUE(calls[2].ends_with("\n... (+9502)"));
    EXPECT_EQ(WordsOf(calls[3]), 2u + 10'000);  // "plugins 0:" and the addresses
    EXPECT_TRUE(calls[3].ends_with(" 10.0.39.15"));
    EXPECT_TRUE(data.newEntries.IsEmpty());
    EXPECT_EQ(data.arpMap.Count(), 10'000u);
}

TEST_F(TickLoadTest, ABalloonIsCutAsAPopupIs) {
    data.settings.Visualization = 1;
    for (u32 host = 0; host < 10'000; ++host) Arrives(AddressOf(host));
    Tick(kTrayTimer);
    EXPECT_EQ(LinesOf(TakeAlerts()[0]), 500u);
}

TEST_F(TickLoadTest, HostsThatArriveInManyTicksBehindAnOpenPopupAreAllToldAtOnce) {
    surface.host.showing = true;
    for (u32 host = 0; host < 10'000; ++host) {
        Arrives(AddressOf(host));
        if (host % 1000 == 0) Tick(kTrayTimer);
    }
    EXPECT_TRUE(TakeAlerts().empty());
    surface.host.showing = false;
    Tick(kTrayTimer);
    EXPECT_EQ(WordsOf(TakeAlerts()[3]), 2u + 10'000);
}

TEST_F(TickLoadTest, AMillionSpoofedFramesBehindAnOpenPopupDoNotHoldUpTheTick) {
    surface.host.showing = true;
    for (u32 host = 0; host < 1000; ++host) Knows(AddressOf(host));
    for (u32 frame = 0; frame < 1'000'000; ++frame)
        data.macSpoofs.Append(data.arpMap.FindValue(AddressOf(frame % 1000).c_str()));
    const auto begin = Clock::now();
    for (int round = 0; round < 20; ++round) Tick(kTrayTimer);
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(2));
    EXPECT_EQ(data.macSpoofs.Count(), 1'000'000u);
    TakeCalls();

    surface.host.showing = false;
    deeds.quiet = true;
    Tick(kTrayTimer);
    const Calls calls = TakeAlerts();
    EXPECT_TRUE(calls.back().ends_with("\n... (+999502)")) << calls.back().substr(calls.back().size() - 40);
    EXPECT_TRUE(data.macSpoofs.IsEmpty());
}

TEST_F(TickLoadTest, AMillionNewHostsBehindAnOpenPopupDoNotHoldUpTheTick) {
    surface.host.showing = true;
    data.settings.NotifyTrusted = 1;
    HostRecord& host = Knows("10.0.0.1");
    for (u32 i = 0; i < 1'000'000; ++i) data.newEntries.Append(&host);
    const auto begin = Clock::now();
    for (int round = 0; round < 20; ++round) Tick(kTrayTimer);
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(2));
    EXPECT_EQ(data.newEntries.Count(), 1'000'000u);
}

}  // namespace
}  // namespace vardel
