#include "frame/HeadlessFrame.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include "capture/Vardel.h"
#include "tests/unit/support/RecordingNotices.h"
#include "tests/unit/support/TestServices.h"
#include "tests/unit/support/TextStream.h"

namespace vardel {
namespace {

struct HeadlessFrameTest : testing::Test {
    HeadlessFrameTest() {
        TheEventMap().SetGuard(nullptr, nullptr);
        TheEventMap().Clear();
    }
    ~HeadlessFrameTest() override {
        TheEventMap().Clear();
        SystemEvents().Close(leave);
    }
    void Leave() { SystemEvents().Set(leave); }
    // Runs the frame until `done` says so, at most ten seconds.
    template <class Done>
    void RunUntil(Done&& done) {
        std::thread user([&] {
            for (int tries = 0; tries < 1000 && !done(); ++tries)
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
            Leave();
        });
        frame.CreateApp(app.data, app);
        user.join();
    }
    // A line of the output without its time of day.
    std::string WithoutTimes() {
        std::string text;
        std::string content = output.Content();
        for (std::size_t at = 0; at < content.size();) {
            const std::size_t end = content.find('\n', at);
            const std::string line = content.substr(at, end - at);
            text += (line.size() > 8 && line[2] == ':' ? line.substr(8) : line) + "\n";
            at = end + 1;
        }
        return text;
    }

    test::TestServices system;
    test::TextStream output, errors;
    test::RecordingNotices notices;
    EventHandle leave = SystemEvents().Create(nullptr, true, false);
    HeadlessFrame frame{system.services, leave, output.File(), errors.File(), notices};
    Vardel app{system.services, frame};
};

TEST_F(HeadlessFrameTest, PrintsEventsAsTheLinesOfTheEventLog) {
    PostEvent(EventKind::ProgramStarted);
    PostEvent(EventKind::NewHost, "desk", "10.0.0.5");
    Leave();
    EXPECT_TRUE(frame.CreateApp(app.data, app));
    EXPECT_EQ(WithoutTimes(),
              " | Vardelwatch started successfully |  |  | \n"
              " | New host found | 10.0.0.5 | desk | \n");
}

TEST_F(HeadlessFrameTest, PrintsEventsAsTheyAppear) {
    std::thread user([&] {
        PostEvent(EventKind::CaptureStarted, "lan0");
        std::this_thread::sleep_for(std::chrono::milliseconds(600));
        PostEvent(EventKind::ProgramExited);
        Leave();
    });
    EXPECT_TRUE(frame.CreateApp(app.data, app));
    user.join();
    // The second one came too late for the loop, and is told at the end.
    EXPECT_NE(WithoutTimes().find(" | Capturing started |  | lan0 | \n"), std::string::npos);
    frame.Report().PrintNewEvents(app.data);
    EXPECT_NE(WithoutTimes().find(" | Vardelwatch exited |  |  | \n"), std::string::npos);
}

TEST_F(HeadlessFrameTest, PrintsEachEventOnce) {
    PostEvent(EventKind::NewHost, "desk", "10.0.0.5");
    Leave();
    frame.CreateApp(app.data, app);
    frame.Report().PrintNewEvents(app.data);
    frame.Report().PrintEnd(app.data);
    const std::string text = WithoutTimes();
    EXPECT_EQ(text.find("New host found"), text.rfind("New host found"));
}

TEST_F(HeadlessFrameTest, TextOfTheNetworkCannotSteerTheTerminal) {
    PostEvent(EventKind::SyslogNotification, "10.0.0.5", nullptr, "\x1b[2J\nforged line");
    Leave();
    frame.CreateApp(app.data, app);
    EXPECT_EQ(WithoutTimes(), " | Syslog notification |  | 10.0.0.5 | \\x1b[2J\\x0aforged line\n");
}

TEST_F(HeadlessFrameTest, EndsWithTheHostTableAndTheCounts) {
    HostRecord* host = app.data.Adopt(std::make_unique<HostRecord>());
    host->ip = "10.0.0.5";
    host->hostName = "desk";
    app.data.arpMap.Insert(host->ip, host);
    PostEvent(EventKind::NewHost, "desk", "10.0.0.5");
    Leave();
    frame.CreateApp(app.data, app);
    frame.Report().PrintEnd(app.data);
    EXPECT_EQ(WithoutTimes(),
              " | New host found | 10.0.0.5 | desk | \n"
              "\n"
              "IP        MAC  Vendor  Name  Device  OS  Trust    Last seen\n"
              "10.0.0.5               desk              unknown\n"
              "\n"
              "1 hosts, 1 events\n");
}

TEST_F(HeadlessFrameTest, ParsesTheNotificationWordsBeforeItsLoop) {
    app.data.settings.SyslogNotificationWords = "panic,oops";
    Leave();
    frame.CreateApp(app.data, app);
    EXPECT_EQ(app.data.notificationWords.Count(), 2u);
    EXPECT_NE(app.data.notificationWords.FindValue("oops"), nullptr);
}

TEST_F(HeadlessFrameTest, TellsOfNewHostsBeforeItLeaves) {
    app.data.settings.UseToolTips = 1;
    app.data.settings.NotifyTrusted = 0;
    HostRecord* host = app.data.Adopt(std::make_unique<HostRecord>());
    host->ip = "10.0.0.5";
    host->hostName = "desk";
    app.data.arpMap.Insert(host->ip, host);
    app.data.newEntries.Append(host);
    system.strings.texts[76] = "New host(s) found :";
    RunUntil([&] { return app.data.newEntries.IsEmpty(); });
    EXPECT_NE(output.Content().find("Alert: New host(s) found :\n    desk [10.0.0.5]\n"), std::string::npos);
    EXPECT_EQ(notices.shown, std::vector<std::string>{"Vardelwatch: New host(s) found :\n\tdesk [10.0.0.5]"});
}

TEST_F(HeadlessFrameTest, TellsEveryAlertSinceItsPopupsNeverShow) {
    app.data.settings.UseToolTips = 1;
    app.data.settings.NotifyTrusted = 0;
    app.data.settings.MACSpoofingVisualization = 1;
    HostRecord* host = app.data.Adopt(std::make_unique<HostRecord>());
    host->ip = "10.0.0.5";
    app.data.newEntries.Append(host);
    app.data.macSpoofs.Append(host);
    system.strings.texts[76] = "New host(s) found :";
    system.strings.texts[77] = "MAC spoofing alert on following addresses :";
    RunUntil([&] { return app.data.macSpoofs.IsEmpty(); });
    EXPECT_EQ(notices.shown.size(), 2u);
}

TEST_F(HeadlessFrameTest, FreesExpiredSyslogMessagesNowAndThen) {
    auto list = std::make_unique<SyslogSourceList>();
    SyslogSourceList* messages = list.get();
    for (int i = 0; i < 3; ++i) {
        messages->ExpireOldest(1);
        messages->Append(std::make_unique<SyslogRecord>());
    }
    app.data.syslogs.Insert("10.0.0.5", std::move(list));
    RunUntil([&] { return messages->RecordCount() == 1; });
    EXPECT_EQ(messages->RecordCount(), 1u);
}

TEST_F(HeadlessFrameTest, AnIntervalOfZeroDoesNotKeepItBusy) {
    app.data.settings.WatchInterval = 0;
    int rounds = 0;
    system.strings.onLoad = [&](u32 id) { rounds += id == 75; };
    const auto begin = std::chrono::steady_clock::now();
    RunUntil([&] { return std::chrono::steady_clock::now() - begin > std::chrono::milliseconds(700); });
    EXPECT_GE(rounds, 1);  // the tray tick has its turn all the same
}

TEST_F(HeadlessFrameTest, LeavesAtOnceWhenAsked) {
    std::thread user([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        Leave();
    });
    const auto begin = std::chrono::steady_clock::now();
    frame.CreateApp(app.data, app);
    user.join();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    EXPECT_TRUE(frame.WasBuilt());
}

TEST_F(HeadlessFrameTest, IsNotBuiltWithoutAWayToLeave) {
    HeadlessFrame endless{system.services, nullptr, output.File(), errors.File(), notices};
    EXPECT_FALSE(endless.CreateApp(app.data, app));
    EXPECT_FALSE(endless.WasBuilt());
}

TEST_F(HeadlessFrameTest, TheUpdateNoticeIsALine) {
    const std::unique_ptr<NotifyPopup> popup = frame.MakeUpdatePopup();
    ShowUpdateNotice(*popup, "New updates are available!");
    EXPECT_EQ(output.Content(), "Alert: New updates are available!\n");
    EXPECT_EQ(notices.shown, std::vector<std::string>{"Vardelwatch: New updates are available!"});
}

TEST_F(HeadlessFrameTest, ErrorsOfTheStartGoToTheErrorStream) {
    frame.ShowError("Vardelwatch - Error", "no adapter");
    EXPECT_EQ(errors.Content(), "Vardelwatch - Error: no adapter\n");
    EXPECT_EQ(output.Content(), "");
    EXPECT_FALSE(frame.WasBuilt());
}

TEST_F(HeadlessFrameTest, AReportWithoutOutputWritesNothing) {
    RunReport silent(nullptr);
    PostEvent(EventKind::NewHost, "desk", "10.0.0.5");
    silent.PrintNewEvents(app.data);
    silent.PrintEnd(app.data);
    EXPECT_EQ(output.Content(), "");
}

}  // namespace
}  // namespace vardel
