#include "frame/PeriodicTick.h"

#include <gtest/gtest.h>

#include "tests/unit/support/TickFixture.h"

namespace vardel {
namespace {

using test::Calls;

class PeriodicTickTest : public test::TickFixture {};

TEST_F(PeriodicTickTest, TheWatchTimerChecksTheWatchedHostsOnTheWatchPopup) {
    Tick(kWatchTimer);
    surface.hasWatch = false;
    Tick(kWatchTimer);
    EXPECT_EQ(TakeCalls(), (Calls{"watch on the popup", "watch without popup"}));
}

TEST_F(PeriodicTickTest, TheReportTimerWritesTheReport) {
    Tick(kReportTimer);
    EXPECT_EQ(TakeCalls(), Calls{"report"});
}

TEST_F(PeriodicTickTest, TheArpTimerFlushesEveryInterfaceFromOneOn) {
    system.arpCache.interfaces = 3;
    Tick(kArpFlushTimer);
    EXPECT_EQ(system.arpCache.flushedInterfaces, (std::vector<u32>{1, 2, 3}));
    EXPECT_EQ(system.arpCache.flushes, 0);
}

TEST_F(PeriodicTickTest, WithoutInterfacesNothingIsFlushed) {
    Tick(kArpFlushTimer);
    EXPECT_EQ(system.arpCache.flushedInterfaces, std::vector<u32>{});
}

TEST_F(PeriodicTickTest, OtherTimersDoNothing) {
    Arrives("10.0.0.5");
    for (const u32 id : {0u, 1u, 9999u, 10001u, 10002u, 10005u, 10006u, 10007u, 10009u + 2}) Tick(id);
    EXPECT_EQ(TakeCalls(), Calls{});
}

TEST_F(PeriodicTickTest, WithoutDataNothingHappens) {
    PeriodicTick blind(nullptr, surface, deeds);
    for (const u32 id : {kTrayTimer, kShareTimer, kArpFlushTimer, kWatchTimer, kReportTimer, kSyslogTimer})
        blind.OnTimer(id);
    EXPECT_EQ(TakeCalls(), Calls{});
}

TEST_F(PeriodicTickTest, TextsComeFromTheFramesLanguageFromTheChangeOn) {
    const auto first = reinterpret_cast<ModuleHandle>(16), second = reinterpret_cast<ModuleHandle>(32);
    data.resourceInstance = first;
    PeriodicTick own(&data, surface, deeds);
    own.OnTimer(kTrayTimer);
    EXPECT_EQ(system.strings.lastModule, first);
    own.SetLanguage(second);
    own.OnTimer(kTrayTimer);
    EXPECT_EQ(system.strings.lastModule, second);
    EXPECT_EQ(data.resourceInstance.Get(), first);  // the workers keep theirs
}

}  // namespace
}  // namespace vardel
