#include "frame/FrameTimers.h"

#include <gtest/gtest.h>

#include "capture/EventMap.h"
#include "capture/Vardel.h"
#include "tests/unit/support/RecordingTimers.h"
#include "tests/unit/support/TestServices.h"

namespace vardel {
namespace {

using Lines = std::vector<std::string>;

class NoFrame : public VardelFrame {
  public:
    bool CreateApp(VardelData&, Vardel&) override { return true; }
    void ShowError(const char*, const char*) override {}
    std::unique_ptr<NotifyPopup> MakeUpdatePopup() override { return nullptr; }
};

struct FrameTimersTest : testing::Test {
    FrameTimersTest() {
        settings.DeleteARPCache = 0;
        settings.WatchInterval = 60;
        settings.ReportInterval = 0;
        settings.ReportTemplate = "";
        settings.SyslogNotification = 0;
        settings.SyslogNotificationType = 0;
        settings.SyslogNotificationWords = "";
        settings.EventLogSave = 0;
    }
    Lines AtStart() {
        timers.calls.clear();
        ArmTimers(timers, app.data);
        return timers.calls;
    }
    bool AfterSave() {
        timers.calls.clear();
        return ApplySavedSettings(timers, app.data, app);
    }

    test::TestServices system;
    NoFrame frame;
    Vardel app{system.services, frame};
    VardelSettings& settings = app.data.settings;
    test::RecordingTimers timers;
};

// ---- at the start ----

TEST_F(FrameTimersTest, ThreeTimersAlwaysRun) {
    EXPECT_EQ(AtStart(), (Lines{"arm 10000 500", "arm 10003 1000", "arm 10008 60000"}));
}

TEST_F(FrameTimersTest, AllTimersAreArmedInTheirOrder) {
    settings.DeleteARPCache = 1;
    settings.WatchInterval = 7;
    settings.ReportTemplate = "status.txt.vdlt";
    settings.ReportInterval = 15;
    settings.SyslogNotification = 1;
    EXPECT_EQ(AtStart(), (Lines{"arm 10000 500", "arm 10003 1000", "arm 10004 60000", "arm 10008 7000",
                                "arm 10009 900000", "arm 10010 5000"}));
}

TEST_F(FrameTimersTest, AtTheStartAReportNeedsATemplateAndAnInterval) {
    settings.ReportInterval = 15;
    EXPECT_EQ(AtStart().size(), 3u);
    settings.ReportInterval = 0;
    settings.ReportTemplate = "status.txt.vdlt";
    EXPECT_EQ(AtStart().size(), 3u);
}

TEST_F(FrameTimersTest, SyslogIsOnlyToldByPopup) {
    settings.SyslogNotification = 1;
    settings.SyslogNotificationType = 1;
    EXPECT_EQ(AtStart().size(), 3u);
    settings.SyslogNotification = 0;
    settings.SyslogNotificationType = 0;
    EXPECT_EQ(AtStart().size(), 3u);
}

TEST_F(FrameTimersTest, LongIntervalsDoNotWrapAround) {
    settings.WatchInterval = 0xffffffff;
    settings.ReportInterval = 0xffffffff;
    settings.ReportTemplate = "status.txt.vdlt";
    const Lines calls = AtStart();
    EXPECT_EQ(calls[2], "arm 10008 4294967295000");
    EXPECT_EQ(calls[3], "arm 10009 257698037700000");
}

TEST_F(FrameTimersTest, TheNotificationWordsAreParsedAtTheStart) {
    settings.SyslogNotificationWords = "panic,oops";
    AtStart();
    EXPECT_EQ(app.data.notificationWords.Count(), 2u);
}

// ---- after a save ----

TEST_F(FrameTimersTest, ASaveLeavesTrayAndShareTimersAlone) {
    AfterSave();
    EXPECT_EQ(timers.calls,
              (Lines{"kill 10004", "kill 10008", "arm 10008 60000", "kill 10009", "kill 10010"}));
}

TEST_F(FrameTimersTest, ASaveArmsTheOthersAnewAndSyslogWithItsLongerPeriod) {
    settings.DeleteARPCache = 1;
    settings.WatchInterval = 7;
    settings.ReportTemplate = "status.txt.vdlt";
    settings.ReportInterval = 15;
    settings.SyslogNotification = 1;
    AfterSave();
    EXPECT_EQ(timers.calls, (Lines{"kill 10004", "arm 10004 60000", "kill 10008", "arm 10008 7000", "kill 10009",
                                   "arm 10009 900000", "kill 10010", "arm 10010 10000"}));
}

TEST_F(FrameTimersTest, AfterASaveATemplateAloneArmsTheReport) {
    settings.ReportTemplate = "status.txt.vdlt";
    AfterSave();
    EXPECT_EQ(timers.calls[4], "arm 10009 0");
}

TEST_F(FrameTimersTest, AfterASaveSyslogIsOnlyToldByPopup) {
    settings.SyslogNotification = 1;
    settings.SyslogNotificationType = 1;
    AfterSave();
    EXPECT_EQ(timers.calls.back(), "kill 10010");
}

TEST_F(FrameTimersTest, AChangedInterfaceIsTakenOver) {
    app.data.interfaceName = "lan0";
    settings.Interface = "lan1";
    AfterSave();
    EXPECT_EQ(app.data.interfaceName, "lan1");
    EXPECT_EQ(app.data.interfaceChanged, 1);
}

TEST_F(FrameTimersTest, TheSameInterfaceIsNoChange) {
    app.data.interfaceName = settings.Interface = "lan0";
    AfterSave();
    EXPECT_EQ(app.data.interfaceChanged, 0);
}

TEST_F(FrameTimersTest, AChosenInterfaceSwitchesCaptureOn) {
    settings.Interface = "lan0";
    EXPECT_TRUE(AfterSave());
    EXPECT_EQ(app.data.capturing, 1);
    EXPECT_FALSE(AfterSave());  // it is on
}

TEST_F(FrameTimersTest, WithoutAnInterfaceCaptureStaysOff) {
    settings.Interface = "";
    EXPECT_FALSE(AfterSave());
    EXPECT_EQ(app.data.capturing, 0);
}

TEST_F(FrameTimersTest, AnInterfaceThatIsTakenAwayLeavesCaptureOn) {
    app.data.interfaceName = "lan0";
    app.data.capturing = 1;
    settings.Interface = "";
    EXPECT_FALSE(AfterSave());
    EXPECT_EQ(app.data.capturing, 1);
    EXPECT_TRUE(app.data.interfaceName.IsEmpty());
}

TEST_F(FrameTimersTest, TheNotificationWordsAreParsedAgain) {
    settings.SyslogNotificationWords = "panic,oops";
    AtStart();
    settings.SyslogNotificationWords = "fire";
    AfterSave();
    EXPECT_EQ(app.data.notificationWords.Count(), 1u);
    EXPECT_NE(app.data.notificationWords.FindValue("fire"), nullptr);
}

TEST_F(FrameTimersTest, TheEventLogsWriterIsStartedAndStopped) {
    app.eventWriterParams.stopRequested = SystemEvents().Create(nullptr, true, true);
    app.eventWriterParams.stop = 1;  // so that its thread ends by itself
    app.eventWriterParams.data = &app.data;
    app.eventWriterParams.app = &app;
    settings.EventLogSave = 1;
    AfterSave();
    EXPECT_TRUE(app.IsEventWriterRunning());
    const u32 first = app.writeEventsThread.id;
    AfterSave();
    EXPECT_EQ(app.writeEventsThread.id, first);  // it is running
    settings.EventLogSave = 0;
    AfterSave();
    EXPECT_FALSE(app.IsEventWriterRunning());
    AfterSave();
    EXPECT_FALSE(app.IsEventWriterRunning());
    SystemEvents().Close(app.eventWriterParams.stopRequested);
    app.eventWriterParams.stopRequested = nullptr;
}

}  // namespace
}  // namespace vardel
