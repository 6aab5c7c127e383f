#include "frame/AlertLines.h"

#include <gtest/gtest.h>

#include "tests/unit/support/RecordingNotices.h"
#include "tests/unit/support/TextStream.h"

namespace vardel {
namespace {

struct AlertLinesTest : testing::Test {
    test::TextStream output;
    test::RecordingNotices notices;
    AlertLines lines{output.File(), notices};
};

TEST_F(AlertLinesTest, APopupBecomesLines) {
    EXPECT_TRUE(lines.HostPopup()->Show("New host(s) found :\n\tdesk [10.0.0.5]\n\tprinter [10.0.0.6]"));
    EXPECT_EQ(output.Content(), "Alert: New host(s) found :\n    desk [10.0.0.5]\n    printer [10.0.0.6]\n");
}

TEST_F(AlertLinesTest, ABalloonIsToldLikeAPopup) {
    lines.ShowTrayNotify(kTrayMacSpoofing, "MAC spoofing alert on following addresses :\ndesk (10.0.0.5)", "tip");
    EXPECT_EQ(output.Content(), "Alert: MAC spoofing alert on following addresses :\n    desk (10.0.0.5)\n");
}

TEST_F(AlertLinesTest, TheTooltipIsShownNowhere) {
    lines.ShowTrayNotify(kTrayProgram, "Vardelwatch", "Vardelwatch - 3 host(s) found");
    EXPECT_EQ(output.Content(), "");
    EXPECT_TRUE(notices.shown.empty());
}

TEST_F(AlertLinesTest, EveryAlertIsHandedToTheDesktop) {
    lines.SyslogPopup()->Show("Syslog message");
    lines.ShowTrayNotify(kTrayInformation, "New host(s) found :\n\tdesk [10.0.0.5]", "");
    EXPECT_EQ(notices.shown, (std::vector<std::string>{"Vardelwatch: Syslog message",
                                                       "Vardelwatch: New host(s) found :\n\tdesk [10.0.0.5]"}));
}

TEST_F(AlertLinesTest, NoPopupEverCountsAsShowing) {
    const std::unique_ptr<NotifyPopup> update = lines.MakePopup();
    for (NotifyPopup* popup : {lines.HostPopup(), lines.WatchPopup(), lines.SyslogPopup(), update.get()}) {
        ASSERT_NE(popup, nullptr);
        popup->Show("text");
        EXPECT_FALSE(popup->IsShowing());
    }
}

TEST_F(AlertLinesTest, TextOfTheNetworkCannotSteerTheTerminal) {
    lines.WatchPopup()->Show("Host \x1b[2J\rforged is alive !");
    EXPECT_EQ(output.Content(), "Alert: Host \\x1b[2J\\x0dforged is alive !\n");
}

TEST_F(AlertLinesTest, ALineFeedInANameCannotForgeAnAlert) {
    lines.HostPopup()->Show("New host(s) found :\n\tdesk\nAlert: all is well [10.0.0.5]");
    EXPECT_EQ(output.Content(), "Alert: New host(s) found :\n    desk\n    Alert: all is well [10.0.0.5]\n");
}

TEST_F(AlertLinesTest, AnEmptyTextTellsNothing) {
    lines.HostPopup()->Show("");
    EXPECT_EQ(output.Content(), "");
    EXPECT_TRUE(notices.shown.empty());
}

TEST_F(AlertLinesTest, WithoutOutputOnlyTheDesktopHears) {
    AlertLines silent(nullptr, notices);
    silent.HostPopup()->Show("text");
    EXPECT_EQ(notices.shown.size(), 1u);
}

}  // namespace
}  // namespace vardel
