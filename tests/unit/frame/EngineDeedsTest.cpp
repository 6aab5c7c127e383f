#include "frame/EngineDeeds.h"

#include <gtest/gtest.h>

#include <cstring>

#include "capture/EventMap.h"
#include "platform/SettingsStore.h"
#include "platform/TreeSettingsStore.h"
#include "tests/unit/support/TestFolder.h"
#include "tests/unit/support/TickFixture.h"

namespace vardel {
namespace {

using Launches = std::vector<test::RecordingShell::Launch>;

class EngineDeedsTest : public test::TickFixture {
  protected:
    EngineDeedsTest() { TheEventMap().Clear(); }
    ~EngineDeedsTest() override { TheEventMap().Clear(); }
    TreeSettingsStore store;
    ScopedSettingsStore installed{store};
    EngineDeeds real{data};
};

TEST_F(EngineDeedsTest, AnApplicationStartsWithItsParametersExpanded) {
    HostRecord& host = Knows("10.0.0.5", "desk");
    system.shell.splitsParameters = true;
    real.StartApplication("app", "-h %VDLW_HOST% %VDLW_IP%", host);
    EXPECT_EQ(system.shell.launches, (Launches{{ShellVerb::Open, "app", {"-h", "desk", "10.0.0.5"}}}));
}

TEST_F(EngineDeedsTest, AnApplicationStartsAlsoWithoutParameters) {
    real.StartApplication("app", "", Knows("10.0.0.5"));
    ASSERT_EQ(system.shell.launches.size(), 1u);
    EXPECT_EQ(system.shell.launches[0].file, "app");
}

TEST_F(EngineDeedsTest, AStartThatFailsDoesNotStopTheOthers) {
    system.shell.succeeds = false;
    data.settings.UseToolTips = 1;
    data.settings.NotifyTrusted = 0;
    data.settings.OtherApp = "app";
    data.settings.OtherAppParams = "%VDLW_IP%";
    for (const char* ip : {"10.0.0.5", "10.0.0.6", "10.0.0.7"}) Arrives(ip);
    PeriodicTick ticks(&data, surface, real);
    ticks.OnTimer(kTrayTimer);
    ASSERT_EQ(system.shell.launches.size(), 3u);
    EXPECT_EQ(system.shell.launches[2].pieces, std::vector<std::string>{"10.0.0.7"});
    EXPECT_TRUE(data.newEntries.IsEmpty());
}

TEST_F(EngineDeedsTest, AWatchedHostThatDoesNotAnswerIsToldOnTheWatchPopup) {
    WatchedHost watched{};
    std::strcpy(watched.hostName, "router");
    std::strcpy(watched.ipAddress, "10.0.0.1");
    watched.online = 1;
    data.settings.watchedHosts.Insert("10.0.0.1", std::make_unique<GuardedRecord<WatchedHost>>(watched));
    data.settings.WatchVisualization = 1;
    system.strings.texts[IDS_HOST_NOT_REACHABLE] = "Host %s is not reachable !";
    PeriodicTick ticks(&data, surface, real);
    ticks.OnTimer(kWatchTimer);
    EXPECT_EQ(TakeCalls().back(), "watch show Host router is not reachable !");
    EXPECT_EQ(data.settings.watchedHosts.FindValue("10.0.0.1")->Read().online, 0);
}

TEST_F(EngineDeedsTest, TheReportTimerWritesTheReport) {
    test::TestFolder folder;
    data.settings.ReportTemplate = folder.Write("hosts.txt.vdlt", "%VDL_HOSTCOUNT% hosts").c_str();
    data.settings.ReportPath = (folder.Path() + "/").c_str();
    Knows("10.0.0.5");
    PeriodicTick ticks(&data, surface, real);
    ticks.OnTimer(kReportTimer);
    EXPECT_EQ(folder.Read("hosts.txt"), "1 hosts");
}

}  // namespace
}  // namespace vardel
